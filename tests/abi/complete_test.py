#!/usr/bin/env python3
"""complete_test.py DESCRIPTIONS CHECKS CHECKED MAP HEADER: the stored descriptions have every record, field and enumerator that
the headers' tests check, written in CHECKS and CHECKED, with its offset, size and value, and no other field of those records;
and every function that MAP and HEADER export."""
import pathlib
import re
import sys
import xml.etree.ElementTree

descriptions, checks, checked, export_map, header = map(pathlib.Path, sys.argv[1:])
types, tags, described = {}, {}, set()
for name in ("libstats", "libhostsvc", "headers"):
    for element in xml.etree.ElementTree.parse(descriptions / f"{name}.abi").iter():
        if "id" in element.attrib:
            types.setdefault(element.get("id"), element)
        if element.tag == "typedef-decl":
            tags[element.get("name")] = element.get("type-id")
        elif element.tag == "class-decl" and "id" in element.attrib:
            tags.setdefault(element.get("name").removeprefix("tag"), element.get("id"))
        elif element.tag == "enumerator":
            described.add(("VALUE", element.get("name"), int(element.get("value")) % 2**64))  # as bits: signs differ
        elif element.tag == "elf-symbol":
            described.add(("EXPORT", element.get("name")))


def leaves(type_id, path, offset):
    """The fields below a type: path, offset and size in bytes. Of an array of records the first element and the last."""
    element = types[type_id]
    while element.tag in ("typedef-decl", "qualified-type-def"):
        element = types[element.get("type-id")]
    if element.tag == "enum-decl":
        element = types[element.find("underlying-type").get("type-id")]
    size = int(element.get("size-in-bits", 0)) // 8
    if element.tag in ("class-decl", "union-decl") and element.get("name") != "timespec":
        for member in element.findall("data-member"):
            variable = member.find("var-decl")
            name = f"{path}.{variable.get('name')}" if path else variable.get("name")
            yield from leaves(variable.get("type-id"), name, offset + int(member.get("layout-offset-in-bits", 0)) // 8)
    elif element.tag == "array-type-def" and next(leaves(element.get("type-id"), "", 0))[0]:
        count = int(element.find("subrange").get("length"))
        for index in {0, count - 1}:
            yield from leaves(element.get("type-id"), f"{path}[{index}]", offset + index * (size // count))
    else:
        yield path, offset, size


expected = set()
for kind, first, rest in re.findall(r"^(RECORD|FIELD|VALUE)\((\w+), (.*)\)$", checks.read_text() + checked.read_text(), re.M):
    words = [word if not re.fullmatch(r"-?\d+(ul)?", word) else int(word.removesuffix("ul")) for word in rest.split(", ")]
    if kind == "RECORD":
        expected.add((kind, first, words[0]))
        record = types[tags[first]]
        described.add((kind, first, int(record.get("size-in-bits")) // 8))
        described |= {("FIELD", first, *leaf) for leaf in leaves(tags[first], "", 0)}
    elif kind == "FIELD":
        expected.add((kind, first, *words))
    else:
        expected.add((kind, first, words[0] % 2**64))
for text, pattern in ((export_map.read_text().split("local:")[0], r"^ *(\w+);$"),
                      (header.read_text(), r"^HOSTSVC_API [^(]*[ *](\w+)\(")):
    expected |= {("EXPORT", name) for name in re.findall(pattern, text, re.M)}

missing = sorted(map(str, expected - described))
extra = sorted(map(str, {entry for entry in described if entry[0] == "FIELD"} - expected))
for kind in ("RECORD", "FIELD", "VALUE", "EXPORT"):
    count = sum(entry[0] == kind for entry in expected)
    print(count, kind)
    if not count:
        sys.exit(f"no {kind} to look for")
if missing or extra:
    sys.exit("\n".join(["not described:", *missing, "described and not checked:", *extra]))
