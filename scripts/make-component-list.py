#!/usr/bin/env python3
"""Writes data/sample/components.csv: a component list of the sample project's current
specialty (给排水), as a take-off would export it, for `koqdde apply`. Each row is one drawn
component of a small category with values from the category's drop-down lists and plausible
quantities. The same bytes on every run (fixed seed); run it again after changing the
catalog or the lists.

Usage: scripts/make-component-list.py [PACK-DIR [ROWS [OUT]]]
  (default: data/sample, 300 rows, PACK-DIR/components.csv; bench/apply.sh makes 100,000)
"""
import csv
import io
import random
import sys
import xml.etree.ElementTree as ET
from pathlib import Path

ROWS = 300
SPECIALTY = "给排水"


def main():
    pack = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parent.parent / "data/sample")
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else ROWS
    target = Path(sys.argv[3]) if len(sys.argv) > 3 else pack / "components.csv"
    lists = {l.get("key"): [i.text for i in l.findall("item")]
             for l in ET.parse(pack / "droplists.xml").getroot().findall("list")}
    spec = next(s for s in ET.parse(pack / "catalog.xml").getroot().findall("spec")
                if s.get("name") == SPECIALTY)
    smalls = [(large.get("name"), small) for large in spec.findall("large")
              for small in large.findall("small")]
    columns = []
    for _, small in smalls:
        for attr in small.findall("attr"):
            if attr.get("name") not in columns:
                columns.append(attr.get("name"))

    rng = random.Random(20261123)
    out = io.StringIO()
    writer = csv.writer(out, lineterminator="\n")
    writer.writerow(["类别", "L", "N", "S"] + columns)
    for _ in range(rows):
        # Pipes are most of a plumbing take-off; fittings and fixtures come one by one.
        large, small = rng.choice(smalls[:6] * 4 + smalls[6:])
        values = {}
        for attr in small.findall("attr"):
            options = lists.get(attr.get("drop") or "", [])
            name = attr.get("name")
            if options:
                values[name] = rng.choice(options)
            elif name == "系统编号":
                values[name] = f"{rng.choice('JPR')}L-{rng.randint(1, 12)}"
            elif name.endswith("(mm)"):
                values[name] = str(rng.choice([15, 20, 25, 32, 40, 50, 65, 80, 100, 150, 200]))
            elif name.endswith("标高(m)"):
                values[name] = f"{rng.uniform(-1.5, 30):.2f}"
        piped = large == "管道" or small.get("attType") == "1"
        length = f"{rng.uniform(0.6, 12):.2f}" if piped else ""
        writer.writerow([f"{large}\\{small.get('name')}", length, "" if piped else "1", ""]
                        + [values.get(c, "") for c in columns])
    target.write_text(out.getvalue(), encoding="utf-8")


if __name__ == "__main__":
    main()
