#!/usr/bin/python3
"""Writes workload W: a data pack and one large configuration file over it.

    generate.py OUTDIR [--scale 1|0.25|0.5|2]

OUTDIR becomes a data pack (catalog.xml, droplists.xml, project/基准工程.kprj, profile/) whose
catalog holds 6 specialties x 10 large categories x 10 small categories, and
OUTDIR/profile/自动套配置/DefaultConfig.xml, the configuration file: every small category with
19 configurations and the default one, each with 4 conditions, 4 bill items of 3 quota items
and 2 quota items of its own, in the shape a save writes. --scale multiplies the number of
small categories per large category (0.25 gives 2 or 3 alternately), and with it the file.

The same arguments give the same bytes on every run and every Python 3: the numbers come from
a generator of our own seeded by category, so a category reads the same at every scale.
"""

import argparse
import os
import sys
from fractions import Fraction

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import domain  # noqa: E402

CONFIGS_PER_SMALL = 20
VERSION = "1.0.0"
PROJECT_NAME = "基准工程"
# The specialty the project works on; it is the last in the file, where a save puts it.
CURRENT_SPEC = "给排水"


class Rng:
    """splitmix64: small, and the same in every Python (random's methods are not promised to)."""

    def __init__(self, seed):
        self.state = seed & 0xFFFFFFFFFFFFFFFF

    def next(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & 0xFFFFFFFFFFFFFFFF
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & 0xFFFFFFFFFFFFFFFF
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & 0xFFFFFFFFFFFFFFFF
        return z ^ (z >> 31)

    def below(self, n):
        return self.next() % n

    def choice(self, items):
        return items[self.below(len(items))]

    def sample(self, items, k):
        """k distinct items, in the order drawn."""
        pool = list(items)
        picked = []
        for _ in range(k):
            picked.append(pool.pop(self.below(len(pool))))
        return picked


def escape(text):
    return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace('"', "&quot;"))


class Writer:
    """Lines of an indented XML file, counting the attributes written."""

    def __init__(self):
        self.lines = []
        self.attributes = 0

    def element(self, depth, tag, attrs, close):
        self.attributes += len(attrs)
        text = "".join(f' {name}="{escape(value)}"' for name, value in attrs)
        end = " />" if close == "empty" else ">"
        self.lines.append(f"{'  ' * depth}<{tag}{text}{end}")

    def end(self, depth, tag):
        self.lines.append(f"{'  ' * depth}</{tag}>")

    def list_element(self, depth, tag, members):
        """A list element: `<X />` when empty, as the store writes it."""
        if not members:
            self.element(depth, tag, [], "empty")
            return
        self.element(depth, tag, [], "open")
        for write in members:
            write(depth + 1)
        self.end(depth, tag)

    def data(self):
        return ("\n".join(self.lines) + "\n").encode("utf-8")


def small_counts(scale, larges):
    """Small categories per large category: scale x 10 on average, spread so the specialty holds
    round(scale x 10 x larges) (0.25 gives 2, 3, 2, 3, ...)."""
    per = Fraction(scale) * 10
    return [int(per * (i + 1)) - int(per * i) for i in range(larges)]


def small_names(names, count):
    result = []
    for i in range(count):
        prefix = "" if i < len(names) else domain.EXTRA_PREFIXES[i // len(names) - 1]
        result.append(prefix + names[i % len(names)])
    return result


def unit_factor(unit):
    """The coefficient a unit carries: "10m" -> "10", "个" -> "1"."""
    digits = ""
    for ch in unit:
        if not ch.isdigit():
            break
        digits += ch
    return digits or "1"


def formula_for(rng, unit):
    base = unit.lstrip("0123456789")
    if base == "m":
        return rng.choice(["L", "L*1.02", "L+N*0.3"])
    if base == "m2":
        return rng.choice(["S", "S*1.05"])
    if base == "kg":
        return rng.choice(["N*1.5", "L*0.85"])
    return "N"


class Catalog:
    """The categories at one scale: [(spec id, name, book, [(large id, name, kind, bills,
    [(small id, name)])])]."""

    def __init__(self, scale):
        self.specs = []
        for s, (spec_name, book, larges) in enumerate(domain.SPECIALTIES, start=1):
            counts = small_counts(scale, len(larges))
            rows = []
            for l, ((large_name, kind, names, bills), count) in enumerate(zip(larges, counts),
                                                                           start=1):
                large_id = s * 100 + l
                if count > 99:
                    sys.exit("generate.py: a large category can't hold more than 99 small ones")
                smalls = [(large_id * 100 + i + 1, name)
                          for i, name in enumerate(small_names(names, count))]
                if len({name for _, name in smalls}) != len(smalls):
                    sys.exit(f"generate.py: repeated small category name in {large_name}")
                rows.append((large_id, large_name, kind, bills, smalls))
            self.specs.append((s, spec_name, book, rows))


class Category:
    """What the configurations of one small category draw from."""

    def __init__(self, spec_id, book, kind_name, bills, small_id):
        self.kind = domain.KINDS[kind_name]
        self.fittings = self.kind["fittings"]
        self.bills = bills or self.kind["bills"]
        self.book = 12 if kind_name == "insulation" else book
        self.rng = Rng(small_id * 7919 + spec_id)
        self.attrs = [(code, domain.ATTRIBUTES[code][0], drop) for code, drop in self.kind["attrs"]]


def conditions(cat, config_id):
    """The four conditions: ＝ on a listed value, a range, ≠ on another list, one bound."""
    rng = cat.rng
    (_, eq_name, eq_drop), (rg_code, rg_name, _), (_, ne_name, ne_drop), \
        (one_code, one_name, _) = cat.attrs
    eq_value = rng.choice(domain.LISTS[eq_drop])
    ladder = domain.LADDERS[rg_code]
    low = rng.below(len(ladder) - 1)
    high = min(len(ladder) - 1, low + 1 + rng.below(3))
    ne_value = rng.choice(domain.LISTS[ne_drop])
    steps = domain.LADDERS[one_code]
    bound = rng.choice(steps)
    # Alternate the two one-bound forms so both occur equally.
    one = ("≥", "", bound, "") if config_id % 2 == 0 else ("", "＜", "", bound)
    rows = [
        (eq_name, "true", "＝", "", "", eq_value, "", ""),
        (rg_name, "false", "", rng.choice(["＞", "≥"]), rng.choice(["≤", "＜"]), "",
         ladder[low], ladder[high]),
        (ne_name, "true", "≠", "", "", ne_value, "", ""),
        (one_name, "false", "", one[0], one[1], "", one[2], one[3]),
    ]
    return rows, ladder[high]


def write_config(w, depth, cat, config_id, default, seq):
    rng = cat.rng
    range_code = cat.attrs[1][0]
    if default:
        cond_rows = []
        upper = domain.LADDERS[range_code][-1]
    else:
        cond_rows, upper = conditions(cat, config_id)
    # Quota names end in the size they are for, as the quota books write it.
    size = domain.SIZE_FORMS[range_code].format(upper)
    picked = rng.sample(cat.bills, 4)
    bill_library = domain.BILL_LIBRARY[1]
    quota_library = domain.BILL_QUOTA_LIBRARY[1]

    def quota(depth, qid, stem_row, formula, code):
        section, stem, unit = stem_row
        w.element(depth, "De", [
            ("id", str(qid)),
            ("strName", f"{stem} {size}"),
            ("strUnit", unit),
            ("strUnitCode", unit_factor(unit)),
            ("strDeId", f"{cat.book}-{section}-{1 + rng.below(260)}"),
            ("strDeCode", code),
            ("strFormula", formula),
            ("strAnnex", ""),
        ], "empty")

    def bill(qid, row):
        code9, name, unit = row
        seq[code9] = seq.get(code9, 0) % 999 + 1
        formula = formula_for(rng, unit)
        stems = rng.sample(cat.kind["quotas"], 3)

        def write(depth):
            w.element(depth, "qd", [
                ("id", str(qid)),
                ("strQdId", f"{code9}{seq[code9]:03d}"),
                ("strQdIdUser", ""),
                ("strName", name),
                ("strUnit", unit),
                ("strUnitCode", "1"),
                ("strtypeid", ""),
                ("strQdCode", bill_library),
                ("strFormula", formula),
                ("strAnnex", rng.choice(["是", "否"]) if cat.fittings else "否"),
            ], "open")
            # About a third of the quota items were picked from the library and carry its
            # code; the others were typed in by number, as a company template gathers them.
            codes = [quota_library if rng.below(3) == 0 else "" for _ in stems]
            w.list_element(depth + 1, "De", [
                (lambda d, i=i, s=s, c=c: quota(d, i, s, formula, c))
                for i, (s, c) in enumerate(zip(stems, codes), 1)])
            w.end(depth, "qd")
        return write

    def condition(cid, row):
        def write(depth):
            w.element(depth, "condition", [("id", str(cid))] + list(zip(
                ["strCFType", "bEqual", "strEqualoperator", "strRangeoperator1",
                 "strRangeoperator2", "strValue", "strRange1", "strRange2"], row)), "empty")
        return write

    own = rng.sample(cat.kind["quotas"], 2)
    w.element(depth, "Config", [
        ("id", str(config_id)),
        ("LastQdId", "4"),
        ("LastConditionId", str(len(cond_rows))),
        ("bDefault", "1" if default else "0"),
        ("LastDeId", "2"),
    ], "open")
    w.list_element(depth + 1, "Condition",
                   [condition(i, row) for i, row in enumerate(cond_rows, 1)])
    w.list_element(depth + 1, "Qd", [bill(i, row) for i, row in enumerate(picked, 1)])
    # Quota items of the configuration's own are typed in by number, so they carry no library
    # code.
    w.list_element(depth + 1, "De", [
        (lambda d, i=i, s=s: quota(d, i, s, formula_for(rng, s[2]), ""))
        for i, s in enumerate(own, 1)])
    w.end(depth, "Config")


def configuration_file(catalog):
    w = Writer()
    w.lines.append('<?xml version="1.0" encoding="UTF-8"?>')
    w.element(0, "自动套清单定额配置信息", [("Version", VERSION)], "open")
    specs = sorted(catalog.specs, key=lambda s: s[1] == CURRENT_SPEC)
    for spec_id, spec_name, book, larges in specs:
        seq = {}
        w.element(1, spec_name, [("id", str(spec_id)), ("name", spec_name)], "open")
        for large_id, large_name, kind, bills, smalls in larges:
            w.element(2, "LMember", [("id", str(large_id)), ("name", large_name)], "open")
            for small_id, small_name in smalls:
                cat = Category(spec_id, book, kind, bills, small_id)
                w.element(3, "SMember", [("id", str(small_id)), ("name", small_name),
                                         ("LastConfigId", str(CONFIGS_PER_SMALL))], "open")
                w.element(4, "Config", [], "open")
                for config_id in list(range(2, CONFIGS_PER_SMALL + 1)) + [1]:
                    write_config(w, 5, cat, config_id, config_id == 1, seq)
                w.end(4, "Config")
                w.end(3, "SMember")
            w.end(2, "LMember")
        w.end(1, spec_name)
    w.end(0, "自动套清单定额配置信息")
    return w


def catalog_xml(catalog):
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             "<!-- Catalog of workload W: every small category carries the attributes its",
             "     configurations' conditions test, and a system number. -->",
             f'<catalog version="{VERSION}">']
    for spec_id, spec_name, _, larges in catalog.specs:
        lines.append(f'  <spec id="{spec_id}" name="{spec_name}">')
        for large_id, large_name, kind, _, smalls in larges:
            lines.append(f'    <large id="{large_id}" name="{large_name}">')
            attrs = domain.KINDS[kind]["attrs"] + [("XTBH", "")]
            pipe_like = 1 if domain.KINDS[kind]["fittings"] else 0
            for small_id, small_name in smalls:
                lines.append(f'      <small id="{small_id}" name="{small_name}" '
                             f'attType="{pipe_like}">')
                for code, drop in attrs:
                    name = escape(domain.ATTRIBUTES[code][0])
                    lines.append(f'        <attr field="{kind.upper()}{code}" name="{name}" '
                                 f'drop="{drop}" code="{code}"/>')
                lines.append("      </small>")
            lines.append("    </large>")
        lines.append("  </spec>")
    lines.append("</catalog>")
    return lines


def droplists_xml():
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', "<droplists>"]
    for key, items in domain.LISTS.items():
        lines.append(f'  <list key="{key}">')
        lines.extend(f"    <item>{escape(item)}</item>" for item in items)
        lines.append("  </list>")
    lines.append("</droplists>")
    return lines


def project_xml():
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             f'<project name="{PROJECT_NAME}" spec="{CURRENT_SPEC}" mode="0">']
    for role, (file, code, local, year) in (("bill", domain.BILL_LIBRARY),
                                            ("billQuota", domain.BILL_QUOTA_LIBRARY),
                                            ("quota", domain.QUOTA_LIBRARY)):
        lines.append(f'  <library role="{role}" file="{escape(file)}" code="{code}" '
                     f'local="{local}" year="{year}"/>')
    lines.append("</project>")
    return lines


def attribute_information_xml():
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', "<属性参数信息>"]
    for code, (name, kind) in domain.ATTRIBUTES.items():
        lines.append(f'  <{code} type="{kind}" name="{escape(name)}"/>')
    lines.append("</属性参数信息>")
    return lines


def write_file(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if isinstance(data, list):
        data = ("\n".join(data) + "\n").encode("utf-8")
    with open(path, "wb") as f:
        f.write(data)


def main():
    parser = argparse.ArgumentParser(description="Write workload W (a data pack and its "
                                     "configuration file) into OUTDIR.")
    parser.add_argument("outdir")
    parser.add_argument("--scale", default="1",
                        help="small categories per large category, as a multiple of 10 "
                        "(0.25, 0.5, 1, 2, ...)")
    args = parser.parse_args()
    try:
        scale = Fraction(args.scale)
    except ValueError:
        parser.error(f"--scale: not a number: {args.scale}")
    if scale <= 0:
        parser.error("--scale must be positive")

    catalog = Catalog(scale)
    out = args.outdir
    write_file(os.path.join(out, "catalog.xml"), catalog_xml(catalog))
    write_file(os.path.join(out, "droplists.xml"), droplists_xml())
    write_file(os.path.join(out, "project", PROJECT_NAME + ".kprj"), project_xml())
    write_file(os.path.join(out, "profile", "QdDeConfig.def"),
               ['<?xml version="1.0" encoding="UTF-8"?>',
                f'<自动套清单定额配置信息 Version="{VERSION}"/>'])
    write_file(os.path.join(out, "profile", "AttributeInformation.xml"),
               attribute_information_xml())
    config = configuration_file(catalog)
    data = config.data()
    path = os.path.join(out, "profile", "自动套配置", "DefaultConfig.xml")
    write_file(path, data)

    smalls = sum(len(l[4]) for s in catalog.specs for l in s[3])
    print(f"scale {args.scale}: {smalls} small categories, {smalls * CONFIGS_PER_SMALL} "
          f"configurations, {len(data)} bytes ({len(data) / 1e6:.1f} MB), "
          f"{config.attributes} attributes")
    print(path)


if __name__ == "__main__":
    main()
