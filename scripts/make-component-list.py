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

# What a drawing holds together: each pipe category its systems, each material its joints and
# its share of the category. A value the pack's lists lack is not used, so another catalog
# (the benchmark's) falls back to plain choices from its lists.
SYSTEMS = {"给水管": ["生活给水"], "排水管": ["污水", "污水", "废水", "通气"],
           "热水管": ["热水供水", "热水回水"], "中水管": ["中水"], "雨水管": ["雨水"],
           "压力排水管": ["压力排水"], "阀门": ["生活给水", "生活给水", "热水供水"],
           "水表": ["生活给水"], "水泵": ["生活给水", "压力排水"]}
SYSTEM_PREFIX = {"生活给水": "JL", "热水供水": "RJL", "热水回水": "RHL", "中水": "ZL", "污水": "WL",
                 "废水": "FL", "通气": "TL", "雨水": "YL", "压力排水": "YWL"}
MATERIALS = {"给水管": ["钢塑复合管"] * 3 + ["PP-R管"] * 3 + ["薄壁不锈钢管"] * 2
             + ["镀锌钢管", "衬塑钢管", "焊接钢管"],
             "排水管": ["PVC-U排水管"] * 4 + ["PVC-U螺旋消音管", "柔性铸铁排水管", "柔性铸铁排水管",
                                                   "HDPE排水管"],
             "热水管": ["PP-R管"] * 3 + ["薄壁不锈钢管"] * 2 + ["铜管"],
             "雨水管": ["PVC-U排水管", "HDPE排水管", "镀锌钢管"],
             "压力排水管": ["镀锌钢管", "钢塑复合管"]}
JOINTS = {"镀锌钢管": ["螺纹连接", "沟槽连接"], "焊接钢管": ["焊接", "法兰连接"],
          "无缝钢管": ["焊接", "法兰连接"], "薄壁不锈钢管": ["卡压连接", "环压连接"],
          "钢塑复合管": ["螺纹连接", "沟槽连接"], "衬塑钢管": ["螺纹连接", "沟槽连接"],
          "PP-R管": ["热熔连接"], "PE管": ["热熔连接", "电熔连接"], "PVC-U给水管": ["粘接"],
          "铜管": ["焊接"], "PVC-U排水管": ["粘接"], "PVC-U螺旋消音管": ["粘接"],
          "HDPE排水管": ["热熔连接", "电熔连接"], "柔性铸铁排水管": ["卡箍连接", "法兰承插"],
          "机制铸铁管": ["卡箍连接", "承插连接"]}
# Plastic pipes are sized by outside diameter (De), metal ones by nominal bore (DN).
PLASTIC = ("PP-R", "PE", "PVC", "HDPE")


def pick(rng, preferred, options):
    """One of the preferred values the list holds, else any value of the list."""
    usable = [v for v in preferred if v in options]
    return rng.choice(usable or options)


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
        kind = small.get("name")
        for attr in small.findall("attr"):
            options = lists.get(attr.get("drop") or "", [])
            name = attr.get("name")
            if options and name == "材质":
                values[name] = pick(rng, MATERIALS.get(kind, []), options)
            elif options and name == "系统类型":
                values[name] = pick(rng, SYSTEMS.get(kind, []), options)
            elif options and name == "连接方式":
                values[name] = pick(rng, JOINTS.get(values.get("材质", ""), []), options)
            elif options and name.startswith("管径") and "材质" in values:
                plastic = values["材质"].startswith(PLASTIC)
                values[name] = pick(rng, [v for v in options if v.startswith("De") == plastic],
                                    options)
            elif options:
                values[name] = rng.choice(options)
            elif name == "系统编号":
                prefix = SYSTEM_PREFIX.get(values.get("系统类型", ""), "JL")
                values[name] = f"{prefix}-{rng.randint(1, 12)}"
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
