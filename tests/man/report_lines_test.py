#!/usr/bin/env python3
"""report_lines_test.py DECSTATS: decstats-reports(5) explains the lines of the reports. Every label and title in the sources of a
report has its entry in the report's section and the other way round; an entry tells the levels at which the samples show the line;
a line that the page refers to exists, and is marked where only the debug level prints it; and the places of fields are right."""
import pathlib
import re
import subprocess
import sys
import tempfile

decstats = pathlib.Path(sys.argv[1]).absolute()
root = pathlib.Path(__file__).absolute().parents[2]
page = (root / "man/decstats-reports.5").read_text()
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def run(*arguments):
    return subprocess.run([decstats, *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout


def argument(text):
    """The first argument of a macro line: a word, or words in quotes."""
    quoted, plain = re.match(r'(?:"([^"]*)"|(\S+))', text).groups()
    return quoted or plain


sections = dict(re.findall(r"^\.Sh (.*)\n((?:(?!\.Sh ).*\n)*)", page, re.M))
components = dict(re.findall(r"^\.It Cm (\S+)\n\.Sx (.*) :$", sections["SYNOPSIS"], re.M))
scenarios = [line.split()[0] for line in run("demo", "--list").splitlines()]
check(len(components) == 8 and scenarios, "SYNOPSIS does not name the eight components, or there are no samples")

# What each line is said to be: "Always", "Debug", "Counted" and so on, by label. Labels of several blocks have several.
marks = {}
for component, title in components.items():
    source = (root / f"src/report_{component.replace('-', '_')}.cpp").read_text()
    body = sections[title]
    labels = set()
    titles = set()
    for function, text in re.findall(r'\b(_[A-Z]\w*)\("([^"]*)"', source):
        (titles if function in ("_PrintText", "_PrintVFramerStreamProperties") else labels).add(text)
    labels |= set(re.findall(r'"[^"]*%-2[02]s: [^"]*",\s*"([^"]*)"', source))
    titles |= set(re.findall(r'fprintf\(stdout, "( [^"%]*)\\n"\)', source))
    # The table is three titles: words above columns, the columns, and a rule.
    for text in [text for text in titles if "    " in text or "---" in text]:
        titles.remove(text)
        labels |= {word for word in re.split(r"  +|\\n", text) if word and " / " not in word and "---" not in word}
    labels = {label.strip() for label in labels}

    entries = {}
    for label, mark in re.findall(r"^\.It Sy (.*) Bq (.*)$", body, re.M):
        entries.setdefault(argument(label), []).append(mark)
    quoted = {text.strip('"') for text in re.findall(r"^\.Ql (.*?)(?: [.,:;])?$", body, re.M)}
    for label in sorted(labels - entries.keys()):
        failures.append(f"{title}: the report has the line {label!r}, the page has no entry")
    for label in sorted(entries.keys() - labels):
        failures.append(f"{title}: the page has the entry {label!r}, the report has no such line")
    for text in titles:
        words = text.replace("\\n", "").strip()
        check(any(f"{words} ".startswith(f"{quote} ") for quote in quoted), f"{title}: the title {words!r} is not explained")

    # The levels. A line may begin in the middle of another, as the load of the decoder behind an unknown format.
    def printed(level, scenario):
        report = run("demo", scenario, "--component", component, "--level", level)
        return {label for label in entries if re.search(rf"(^| ) *{re.escape(label)} *:", report, re.M)}

    operator = [printed("default", scenario) for scenario in scenarios]
    debug = [printed("debug", scenario) for scenario in scenarios]
    for label, found in entries.items():
        marks.setdefault(label, []).extend(found)
        only_debug = all(re.match(r"Debug(?!;)", mark) for mark in found)
        seen = any(label in lines for lines in operator)
        check(not (only_debug and seen), f"{title}: {label!r} is said to be of the debug level, and prints at the default level")
        exists = any(label in lines for lines in debug)
        check(only_debug or seen or not exists, f"{title}: {label!r} is not said to be of the debug level, and prints there alone")
    check(any(debug), f"{title}: no sample prints a line")

# References: lines that exist, and in the sections for operators marked if they are of the debug level.
for title, body in sections.items():
    for reference in re.findall(r"^\.Sy (.*)$", body, re.M):
        label = argument(reference)
        if label not in marks:
            failures.append(f"{title}: refers to {label!r}, which no report prints")
        elif title in ("SYMPTOMS", "ADVICE"):
            only_debug = all(re.match(r"Debug(?!;)", mark) for mark in marks[label])
            check(only_debug == ("Pq debug" in reference), f"{title}: {label!r} should {'' if only_debug else 'not '}be marked (debug)")

# Every counter of this sample is as large as it can be, and no event time is.
with tempfile.TemporaryDirectory() as folder:
    run("sample", "extreme", folder)
    record = (pathlib.Path(folder) / "tdemux.rec").read_bytes()
places = [int(place) for place in re.findall(r"^\$ od .* -j (\d+) -N 8 tdemux\.rec", page, re.M)]
check(len(places) == 2, "the page does not show where the losses stand")
for place in places:
    words = [record[start:start + 8] == b"\xff" * 8 for start in (place - 8, place, place + 8)]
    check(words == [False, True, False], f"no counter between two times at byte {place} of the record")

sys.exit("\n".join(failures) or 0)
