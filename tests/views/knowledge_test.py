"""Reports, JSON, raw JSON, metrics, descriptions and manual pages know the same fields."""
import json
import os
import pathlib
import re
import subprocess
import unittest

import layout
import snapshots

RENDER = os.environ["RENDER_SNAPSHOTS"]
DECSTATS = os.environ["DECSTATS"]
MAN = os.environ["MAN"]


def run(*arguments):
    return subprocess.run([DECSTATS, *arguments], stdout=subprocess.PIPE, check=True, text=True).stdout


def stands_beside(key, others):
    """Whether a member says what another one says, for readers who want a text."""
    return any(key.endswith(end) and key.removesuffix(end) in others for end in ("_s", "_text"))


def json_names(value, name):
    """The names of the members of interpreted JSON, as public names are written."""
    if isinstance(value, list):
        for element in value:
            yield from json_names(element, name + "[]")
    elif isinstance(value, dict) and not {"value", "name", "text"} <= set(value):
        for key, member in value.items():
            if not stands_beside(key, value) and not (name.endswith("[]") and key == "index"):
                yield from json_names(member, name + "." + key if name else key)
    else:
        yield name


def raw_names(value, name):
    if isinstance(value, list):
        for element in value:
            yield from raw_names(element, name + "[]")
    elif isinstance(value, dict) and set(value) - {"tv_sec_s", "tv_nsec_s"} != {"tv_sec", "tv_nsec"}:
        for key, member in value.items():
            if not (key.endswith("_s") and key[:-2] in value):
                yield from raw_names(member, name + "." + key if name else key)
    else:
        yield name


def page_text(path):
    """A manual page as people read it, without what groff puts in to break lines."""
    page = subprocess.run(["groff", "-mdoc", "-Tutf8", "-P-cbou", path], stdout=subprocess.PIPE, check=True, text=True).stdout
    return re.sub("[\N{HYPHEN}\N{SOFT HYPHEN}]\n +", "", page)


# Not labels of lines but words in headings, which the page explains where the blocks begin.
HEADINGS = {"STREAM", "Channel"}


class Knowledge(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.fields = json.loads(run("describe", "--format", "json"))["fields"]
        cls.layout = layout.Layout(os.environ["ABI"])
        source = list(snapshots.directed_snapshots(cls.layout)) + list(snapshots.random_snapshots(cls.layout, 8, 40))
        cls.render = lambda self, view: snapshots.renderings(RENDER, view, source)

    def test_number(self):
        self.assertEqual(len({field["name"] for field in self.fields}), 745)

    def test_json(self):
        known = {field["name"] for field in self.fields if field["applies"] != "never"}
        shown = set()
        for text in self.render("json"):
            shown.update(json_names(json.loads(text)["components"], ""))
        self.assertEqual(shown, known)

    def test_raw_json(self):
        known = {field["component"] + "." + field["member"] for field in self.fields}
        self.assertEqual(set(raw_names(json.loads(next(self.render("raw")))["components"], "")), known)

    def test_schema(self):
        components = json.loads(run("describe", "--schema"))["$defs"]["snapshot"]["properties"]["components"]["properties"]

        def names(schema, name):
            if schema.get("type") == "array":
                yield from names(schema["items"], name + "[]")
            elif "properties" in schema:
                for key, member in schema["properties"].items():
                    if not stands_beside(key, schema["properties"]) and not (name.endswith("[]") and key == "index"):
                        yield from names(member, name + "." + key)
            else:
                yield name

        shown = {name for component, schema in components.items() for name in names(schema, component)}
        self.assertEqual(shown, {field["name"] for field in self.fields})

    def test_metrics(self):
        known = {field["metric"]["name"] for field in self.fields if field["metric"] and field["applies"] != "never"}
        shown = set()
        for text in self.render("openmetrics"):
            shown.update(re.findall(r"^(\w+)\{", text, re.M))
        self.assertEqual(shown - {"decoder_up", "decoder_last_update_timestamp_seconds"}, known)

    def test_reports(self):
        known = {(field["component"], line["label"]) for field in self.fields for line in field["report_lines"]}
        for component, label in sorted(known):
            with self.subTest(component=component, label=label):
                text = self.reports(component)
                self.assertIn(label.lower(), text.lower())

    def reports(self, component, printed={}):
        if component not in printed:
            printed[component] = "".join(
                run("demo", line.split()[0], "--level", "debug", "--component", component.replace("_", "-"))
                for line in run("demo", "--list").splitlines()
            )
        return printed[component]

    def test_labels_have_entries(self):
        """Every label of a line has its explanation, and describe gives it."""
        page = page_text(os.path.join(MAN, "decstats-reports.5"))
        for label in sorted({line["label"] for field in self.fields for line in field["report_lines"]}):
            with self.subTest(label=label):
                self.assertIn(label, page)
                if label not in HEADINGS:
                    self.assertIn(label + ", a line of the", run("describe", label))

    def test_pages_name_all_fields(self):
        page = page_text(os.path.join(MAN, "decstats-fields.5"))
        words = {word.rstrip(",;").split("{")[0] for word in page.split()}
        self.assertEqual({field["name"] for field in self.fields} - words, set())
        self.assertEqual({field["metric"]["name"] for field in self.fields if field["metric"]} - words, set())

    def test_examples_of_the_json_page(self):
        """Its metrics exist, and its commands print something."""
        source = pathlib.Path(MAN, "decstats-json.5").read_text()
        known = {field["metric"]["name"] for field in self.fields if field["metric"]}
        named = set(re.findall(r"decoder_\w+", source))
        of_no_field = {"decoder_up", "decoder_last_update_timestamp_seconds", "decoder_finding_active", "decoder_stage_state"}
        self.assertEqual(named - known, of_no_field)
        examples = source[source.index(".Sh EXAMPLES") : source.index("In Prometheus")]
        commands = re.findall(r"^(?:\.Dl )?\$ ((?:.*\n)+?)(?=\.)", examples, re.M)
        self.assertEqual(len(commands), 3)
        for command in commands:
            command = command.replace("\\(aq", "'").replace("\\e", "\\")
            path = os.path.dirname(DECSTATS) + ":" + os.environ["PATH"]
            out = subprocess.run(["sh", "-c", command], stdout=subprocess.PIPE, check=True, text=True, env=dict(os.environ, PATH=path)).stdout
            self.assertTrue(out.strip(), command)


if __name__ == "__main__":
    unittest.main()
