"""What the outputs have to be: the values by layout.py, their meaning by the descriptions of the fields.

Which fields there are, what they are called, when they apply and which values are absent is read from
`decstats describe --format json`; where their bytes stand is not. How numbers, texts and labels are written is written here a
second time.
"""
import ipaddress
import math
import re
import socket
import struct
from fractions import Fraction

import layout

UNSCALED = 1
SCALES = {
    "ms": Fraction(1, 1000),
    "us": Fraction(1, 10**6),
    "90 kHz ticks": Fraction(1, 90000),
    "bit/s": Fraction(1, 8),
    "kbit/s": Fraction(125),
    "%": Fraction(1, 100),
    "ppm": Fraction(1, 10**6),
}
# The label of each array's number, the number of its first element, and the fields that make an element readable.
ARRAYS = {
    "tdemux": ("source", 0, ["pid", "type"]),
    "audio": ("pair", 1, []),
    "metadata": ("channel", 0, ["type"]),
    "buffering": ("channel", 0, ["type"]),
}
ABSENT = object()
INAPPLICABLE = object()


class Literal(str):
    """A number as it stands in JSON."""


class Records:
    """The values of one snapshot, by public name."""

    def __init__(self, fields, records, snapshot):
        self._fields = fields
        self._records = dict(records.split(snapshot))
        self._leaves = {c: {leaf.path: leaf for leaf in records.leaves[c]} for c in layout.RECORDS}

    def _leaf(self, component, path):
        leaf = self._leaves[component].get(path)
        return None if leaf is None else layout.value(leaf, self._records[component])

    def bits(self, field, element):
        leaf = self._leaves[field["component"]][member_path(field, element)]
        return self._records[field["component"]][leaf.offset : leaf.offset + leaf.size]

    def value(self, field, element=0):
        """The value as it stands: a number, bytes, a text without what is behind its NUL, or seconds and nanoseconds."""
        path = member_path(field, element)
        if field["type"] == "timespec":
            return tuple(self._leaf(field["component"], path + (part,)) for part in ("tv_sec", "tv_nsec"))
        value = self._leaf(field["component"], path)
        if field["type"] == "text":
            return value.split(b"\0")[0].decode("utf-8", errors="replace")
        return value

    def applies(self, field, element):
        if field["applies"] is None:
            return True
        if field["applies"] == "never":
            return False
        condition = field["applies"][len("if ") :]
        if " or " in condition and " is " in condition.split(" or ")[1]:
            return any(self._holds(term, element) for term in condition.split(" or "))
        return all(self._holds(term, element) for term in condition.split(" and "))

    def _holds(self, term, element):
        name, wanted = term.split(" is ")
        field = self._fields[name]
        value = self.value(field, element if field["array"] else 0)
        negated = wanted.startswith("not ")
        alternatives = wanted[len("not ") :].split(" or ") if negated else wanted.split(" or ")
        if wanted == "set":
            return value != 0
        if wanted == "not empty":
            return value != ""
        if alternatives[0].isdigit():
            found = str(value) in alternatives
        else:
            found = state_name(field, value) in alternatives
        return found != negated

    def meaning(self, field, element=0):
        """The value, ABSENT or INAPPLICABLE."""
        if not self.applies(field, element):
            return INAPPLICABLE
        value = self.value(field, element)
        if field["absent_with"] and self.value(self._fields[field["absent_with"]], element) == 0:
            return ABSENT
        if field["kind"] == "state" or field["absent"] is None:
            return value
        rule = field["absent"].split(" = ")[0]
        nothing = {
            "0": lambda: value in (0, (0, 0)),
            "0 or less": lambda: value <= 0,
            "all 0": lambda: not any(value),
            "empty": lambda: value == "",
            "with curPllAvg 0": lambda: False,  # absent_with
        }[rule]()
        return ABSENT if nothing else value

    def elements(self, field):
        return range(field["array"]["count"]) if field["array"] else [0]

    def address(self, field, value):
        """An identity of bytes in words."""
        if field["name"].endswith(".ip"):
            family = self.value(self._fields[field["name"][: -len("ip")] + "family"])
            if family == socket.AF_INET:
                return ipaddress.ip_address(value[:4])
            if family == socket.AF_INET6:
                return ipaddress.ip_address(value)
        return value.hex()


def member_path(field, element):
    path = ()
    for part in field["member"].split("."):
        path += (part[: -len("[]")], element) if part.endswith("[]") else (part,)
    return path


def state_name(field, value):
    for state in field["states"]:
        if int(state.get("value_s", state["value"])) == value:
            return state["name"]
    return None


def moment_digits(value):
    total = value[0] * 10**9 + value[1]
    return "%s%d.%09d" % ("-" if total < 0 else "", abs(total) // 10**9, abs(total) % 10**9)


def json_problem(records, field, value, block):
    """What is wrong with a field's member of an interpreted JSON object, or None."""
    key = field["name"].split(".")[-1]
    if key not in block:
        return "is missing"
    found = block[key]
    if value is ABSENT:
        return None if found is None else "is %r in place of null" % found
    if field["kind"] == "state":
        return state_problem(field, value, found)
    if field["type"] == "timespec":
        digits = moment_digits(value)
        return None if found == digits and block.get(key + "_s") == digits else "is %r, not %s" % (found, digits)
    if field["type"] == "bytes":
        wanted = records.address(field, value)
        if not isinstance(wanted, str):
            found = ipaddress.ip_address(found)
        return None if found == wanted else "is %r, not %r" % (found, wanted)
    if isinstance(value, float):
        if math.isfinite(value):
            wanted = struct.pack("<f", value)
            return None if struct.pack("<f", float(found)) == wanted else "is %r, not %r" % (found, value)
        wanted = "NaN" if math.isnan(value) else "Infinity" if value > 0 else "-Infinity"
        return None if found == wanted and not isinstance(found, Literal) else "is %r, not %r" % (found, wanted)
    if field["kind"] == "flag" and value in (0, 1):
        return None if found is bool(value) else "is %r, not %r" % (found, bool(value))
    if found != value or isinstance(found, bool):
        return "is %r, not %r" % (found, value)
    if key.endswith("version"):
        known = 0 <= value <= 0xFFFFFF
        wanted = "%d.%d.%d" % (value >> 16, value >> 8 & 255, value & 255) if known else "Unknown (%d)" % value
        return None if block.get(key + "_text") == wanted else "has %r, not %r, beside it" % (block.get(key + "_text"), wanted)
    exact = block.get(key + "_s")
    wanted = str(value) if isinstance(value, int) and abs(value) > 2**53 - 1 else None
    return None if exact == wanted else "has %r, not %r, beside it" % (exact, wanted)


def state_problem(field, value, found):
    if found["value"] != value or (abs(value) > 2**53 - 1) != ("value_s" in found):
        return "is %r, not %r" % (found, value)
    name = state_name(field, value)
    if found["name"] != name:
        raster = r"\d+x\d+[ip]\d+"  # display formats that have no name of their own
        if name is not None or field["name"] != "vdecoder.display_format" or not re.fullmatch(raster, found["name"]):
            return "is called %r, not %r" % (found["name"], name)
    if found["text"] == "":
        return "has an empty text"
    return None


def samples(fields, records):
    """All samples of a snapshot: name, labels, the value as a Fraction, a float or a word, and how far its text may be from it."""
    infos = {}
    for field in fields.values():
        metric = field["metric"]
        if metric is None:
            continue
        for element in records.elements(field):
            value = records.meaning(field, element)
            if value is ABSENT or value is INAPPLICABLE:
                continue
            labels = element_labels(fields, records, field, element)
            if metric["type"] == "stateset":
                name = state_name(field, value) or "other"
                for state in [s["name"] for s in field["states"]] + ["other"]:
                    yield metric["name"], {**labels, metric["label"]: state}, Fraction(int(state == name)), 0
            elif metric["type"] == "info":
                own = infos.setdefault((metric["name"], element), dict(labels))
                own[metric["label"]] = label_value(records, field, value)
            elif not (metric["type"] == "counter" and value < 0):
                if metric["label_value"] is not None:
                    labels[metric["label"]] = metric["label_value"]
                yield metric["name"], labels, number(field, value), tolerance(field)
    for (name, _), labels in infos.items():
        yield name, labels, Fraction(1), 0


def element_labels(fields, records, field, element):
    if not field["array"]:
        return {}
    label, first, others = ARRAYS[field["component"]]
    labels = {label: str(element + first)}
    for other in others:
        its = fields["%s.%s[].%s" % (field["component"], field["array"]["name"], other)]
        labels[other] = label_value(records, its, records.value(its, element))
    return labels


def label_value(records, field, value):
    if field["kind"] == "state":
        name = state_name(field, value)
        if name is None and field["name"] == "vdecoder.display_format":
            return re.compile(r"\d+x\d+[ip]\d+|%d" % value)
        return str(value) if name is None else name
    if isinstance(value, bytes):
        return str(records.address(field, value))
    return str(value)


def number(field, value):
    if isinstance(value, tuple):
        return Fraction(moment_digits(value))
    if isinstance(value, float):
        return value if math.isfinite(value) else "NaN" if math.isnan(value) else "+Inf" if value > 0 else "-Inf"
    return value * SCALES.get(field["unit"], UNSCALED)


def tolerance(field):
    """Relative. A number without an end is the double next to it, all others are exact."""
    return Fraction(1, 2**51) if field["unit"] == "90 kHz ticks" else 0
