#!/usr/bin/env python3
"""readme_test.py FOLDER: README.md is true. FOLDER gets a fresh copy of the tree, and there every command of the README runs, in
the order in which they stand and in one shell; only ./scripts/test does not, which is what runs this. Behind a line "<!-- NAME -->"
stands a source, which is the file NAME, or commands with their output, which is the text with the same NAME; the excerpt is of
lines that the demo prints."""
import pathlib
import re
import shutil
import subprocess
import sys

tree = pathlib.Path(sys.argv[1]).absolute()
source = pathlib.Path(__file__).absolute().parents[2]
shutil.rmtree(tree, ignore_errors=True)
subprocess.run([source / "scripts/copy-tree", tree], check=True)

blocks = re.findall(r"(?:<!-- ([^\n]*) -->\n)?```(\w*)\n(.*?)^```$", (tree / "README.md").read_text(), re.M | re.S)
texts = {name: body for name, language, body in blocks if not language}
failures = []


def check(what, expected, actual):
    if expected != actual:
        failures.append(f"{what}\nexpected:\n{expected}\nactual:\n{actual}")


script = "set -eu\n"
outputs = []
for name, language, body in blocks:
    if language == "sh":
        script += f"{{ {re.sub(r'(?m)^./scripts/test$', ':', body)}}}; printf '\\0'\n"
        outputs.append((name, body))
    elif language:
        check(f"the source {name}", (tree / name).read_text(), body)
assert outputs and "excerpt" in texts, "README.md has no commands or no excerpt"

run = subprocess.run(["sh", "-c", script], cwd=tree, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
printed = run.stdout.split("\0")
if run.returncode != 0:
    sys.exit(f"exit status {run.returncode} of\n{outputs[len(printed) - 1][1]}which printed\n{printed[-1]}")
for (name, body), output in zip(outputs, printed):
    if name:
        # A second may begin between the record and the report.
        check(body, texts[name], output.replace("(Last One: 1s ago)", "(Last One: 0s ago)"))

# The reports count back from now, so a second that begins while one is printed moves its times: look again then.
excerpt = [line for line in texts["excerpt"].splitlines() if line.strip() != "..."]
for attempt in range(3):
    demo = subprocess.run(["build/release/bin/decstats", "demo"], cwd=tree, stdout=subprocess.PIPE, text=True).stdout.splitlines()
    missing = [line for line in excerpt if line not in demo]
    if not missing:
        break
check("the excerpt has lines that the demo does not print", [], missing)
sys.exit("\n".join(failures) or 0)
