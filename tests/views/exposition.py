"""Reads expositions of metrics line by line, strictly, and keeps each value as its text."""
import re

LABEL = re.compile(r'([a-zA-Z_][a-zA-Z0-9_]*)="((?:[^"\\\n]|\\["\\n])*)"(,|$)')
SAMPLE = re.compile(r"([a-zA-Z_:][a-zA-Z0-9_:]*)\{(.*)\} (\S+)")
NUMBER = re.compile(r"-?[0-9]+(\.[0-9]+)?(e[+-][0-9]+)?|NaN|[+-]Inf")


def unescape(text):
    return re.sub(r"\\(.)", lambda m: {"n": "\n"}.get(m[1], m[1]), text)


def read(text, openmetrics):
    """Yields family, type, and samples as (name, labels, value); raises ValueError at what is wrong."""
    lines = text.split("\n")
    if lines.pop() != "":
        raise ValueError("no newline at the end")
    if openmetrics and lines.pop() != "# EOF":
        raise ValueError("no # EOF at the end")
    families = {}
    current = None
    series = set()
    for line in lines:
        if line.startswith("# "):
            _, word, family, rest = line.split(" ", 3)
            if word == "HELP":
                if family in families:
                    raise ValueError("family twice: " + line)
                current = families[family] = {"help": rest, "type": None, "unit": "", "samples": []}
            elif current is not families.get(family):
                raise ValueError("metadata of another family: " + line)
            elif word == "TYPE":
                current["type"] = rest
            elif word == "UNIT" and openmetrics and family.endswith("_" + rest):
                current["unit"] = rest
            else:
                raise ValueError("unexpected: " + line)
            continue
        match = SAMPLE.fullmatch(line)
        if not match:
            raise ValueError("no sample: " + line)
        name, inside, value = match.groups()
        labels = {}
        while inside:
            label = LABEL.match(inside)
            if not label or label[1] in labels:
                raise ValueError("labels: " + line)
            labels[label[1]] = unescape(label[2])
            inside = inside[label.end() :]
        if not NUMBER.fullmatch(value):
            raise ValueError("value: " + line)
        suffix = {"counter": "_total", "info": "_info"}.get(current["type"], "") if openmetrics else ""
        if families.get(name[: len(name) - len(suffix)]) is not current or not name.endswith(suffix):
            raise ValueError("sample of another family: " + line)
        key = (name, tuple(sorted(labels.items())))
        if key in series:
            raise ValueError("series twice: " + line)
        series.add(key)
        current["samples"].append((name, labels, value))
    for family, content in families.items():
        if not content["samples"]:
            raise ValueError("family without a sample: " + family)
    return families


def stateset_problems(families):
    """Statesets of which not exactly one state is true."""
    for family, content in families.items():
        if content["type"] != "stateset":
            continue
        sets = {}
        for _, labels, value in content["samples"]:
            key = tuple(sorted((k, v) for k, v in labels.items() if k != family))
            sets.setdefault(key, []).append(value)
        for key, values in sets.items():
            if values.count("1") != 1 or set(values) - {"0", "1"}:
                yield family, key, values
