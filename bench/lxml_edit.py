#!/usr/bin/python3
"""Baseline for one edit of a configuration file in Python: lxml (libxml2) parses the whole
file, one attribute of one bill item changes, and the whole file is written back.

    lxml_edit.py FILE [SPEC LARGE SMALL CONFIG-ID QD-ID FORMULA]

The item is found as the store finds it: specialty, large and small category by name, then the
configuration and the bill item by id within their lists (default: 给排水 管道 给水管 10 2,
strFormula set to L*1.05, the edit bench/xml-layer.sh times through koqdde).
"""

import sys

from lxml import etree


def child_named(parent, name):
    for child in parent:
        if child.get("name") == name:
            return child
    return None


def member_with_id(parent, tag, member_id):
    if parent is None:
        return None
    lists = parent.find(tag)
    if lists is None:
        return None
    for member in lists:
        if member.get("id") == str(member_id):
            return member
    return None


def main():
    args = sys.argv[1:]
    if len(args) not in (1, 7):
        sys.exit("usage: lxml_edit.py FILE [SPEC LARGE SMALL CONFIG-ID QD-ID FORMULA]")
    path = args[0]
    spec, large, small, config_id, qd_id, formula = (
        args[1:] if len(args) == 7 else ["给排水", "管道", "给水管", "10", "2", "L*1.05"])

    tree = etree.parse(path)
    node = tree.getroot()
    for name in (spec, large, small):
        node = child_named(node, name) if node is not None else None
    qd = member_with_id(member_with_id(node, "Config", config_id), "Qd", qd_id)
    if qd is None:
        # A timing of an edit that found nothing to edit would mean nothing.
        sys.exit(f"{path}: no bill item {qd_id} in configuration {config_id} of "
                 f"{spec}\\{large}\\{small}")
    qd.set("strFormula", formula)
    tree.write(path, encoding="UTF-8", xml_declaration=True)


if __name__ == "__main__":
    main()
