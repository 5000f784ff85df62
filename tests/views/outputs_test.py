"""Holds JSON and metrics of many snapshots against other readings of the same bytes, and against their formats' own tools.

DECSTATS_RANDOM_SNAPSHOTS is the number of random snapshots, each a record of every component.
"""
import json
import os
import struct
import subprocess
import unittest
from fractions import Fraction

import expected
import exposition
import jsonschema
import layout
import prometheus_client.openmetrics.parser
import prometheus_client.parser
import snapshots

COUNT = int(os.environ.get("DECSTATS_RANDOM_SNAPSHOTS", "8"))
SEED = int(os.environ.get("DECSTATS_RANDOM_SEED", "8"))
RENDER = os.environ["RENDER_SNAPSHOTS"]
DECSTATS = os.environ["DECSTATS"]
BATCH = 50
DECODER = 'tested "decoder" \\ \N{REPLACEMENT CHARACTER}'


def strict(schema):
    """The schema, with no member allowed that it does not have."""
    if isinstance(schema, dict):
        result = {key: strict(value) for key, value in schema.items()}
        if schema.get("type") in ("object", ["object", "null"]) and isinstance(schema.get("properties"), dict) and "$defs" not in schema:
            result["additionalProperties"] = False
        return result
    return [strict(item) for item in schema] if isinstance(schema, list) else schema


def run(*arguments):
    return subprocess.run([DECSTATS, *arguments], stdout=subprocess.PIPE, check=True).stdout


class Case(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.layout = layout.Layout(os.environ["ABI"])
        cls.fields = {field["name"]: field for field in json.loads(run("describe", "--format", "json"))["fields"]}
        schema = json.loads(run("describe", "--schema"))
        jsonschema.Draft202012Validator.check_schema(schema)
        cls.validator = jsonschema.Draft202012Validator(strict(schema))

    def batches(self):
        """All snapshots, some at a time."""
        batch = [*snapshots.directed_snapshots(self.layout), *snapshots.samples(DECSTATS, self.layout)]
        for snapshot in snapshots.random_snapshots(self.layout, SEED, COUNT):
            batch.append(snapshot)
            if len(batch) >= BATCH:
                yield batch
                batch = []
        yield batch

    def each(self, view):
        for batch in self.batches():
            texts = list(snapshots.renderings(RENDER, view, batch))
            self.assertEqual(len(texts), len(batch))
            yield from zip(batch, texts)


class Outputs(Case):
    def check_schema(self, text):
        error = jsonschema.exceptions.best_match(self.validator.iter_errors(json.loads(text)))
        self.assertIsNone(error, error)

    def check_jq(self, texts):
        subprocess.run(["jq", "empty"], input="\n".join(texts).encode(), check=True)

    def test_layouts_agree(self):
        members = {(c, leaf.path) for c, leaves in self.layout.leaves.items() for leaf in leaves}
        offsets = {(c, leaf.path): leaf.offset for c, leaves in self.layout.leaves.items() for leaf in leaves}
        for field in self.fields.values():
            for element in range(field["array"]["count"] if field["array"] else 1):
                path = expected.member_path(field, element)
                offset = field["offset"] + (element * field["array"]["stride"] if element else 0)
                parts = [path + (part,) for part in ("tv_sec", "tv_nsec")] if field["type"] == "timespec" else [path]
                self.assertEqual(offsets[field["component"], parts[0]], offset, field["name"])
                members -= {(field["component"], part) for part in parts}
        self.assertEqual(members, set())

    def test_raw_json_carries_every_value(self):
        for snapshot, text in self.each("raw"):
            components = json.loads(text)["components"]
            self.assertEqual(list(components), list(layout.RECORDS))
            for component, record in self.layout.split(snapshot):
                wanted = self.layout.raw(component, record)
                if components[component] != wanted:
                    self.assertEqual(components[component], wanted)
            self.check_schema(text)

    def test_json_means_the_same_values(self):
        for snapshot, text in self.each("json"):
            whole = json.loads(text, parse_float=expected.Literal)
            self.assertEqual(whole["decoder"], DECODER)
            records = expected.Records(self.fields, self.layout, snapshot)
            wanted = 0
            for field in self.fields.values():
                for element in records.elements(field):
                    value = records.meaning(field, element)
                    block = self.block(whole["components"], field, element)
                    key = field["name"].split(".")[-1]
                    if value is expected.INAPPLICABLE:
                        self.assertFalse(block and key in block, "%s[%d] does not apply" % (field["name"], element))
                        continue
                    self.assertIsNotNone(block, "%s[%d] has no object" % (field["name"], element))
                    problem = expected.json_problem(records, field, value, block)
                    self.assertIsNone(problem, "%s[%d] %s" % (field["name"], element, problem))
                    wanted += 1
            self.assertEqual(self.count_values(whole["components"]), wanted)
            self.check_schema(text)

    @staticmethod
    def block(components, field, element):
        """The object that a field's member stands in, or None."""
        block = components
        for part in field["name"].split(".")[:-1]:
            block = block.get(part[:-2] if part.endswith("[]") else part)
            if part.endswith("[]") and block is not None:
                block = next((e for e in block if e["index"] == element), None)
            if block is None:
                return None
        return block

    def count_values(self, block):
        count = 0
        for key, value in block.items():
            if isinstance(value, list):
                count += sum(self.count_values(element) for element in value)
            elif isinstance(value, dict) and "name" in value and "text" in value:
                count += 1
            elif isinstance(value, dict):
                count += self.count_values(value)
            elif key != "index" and not any(key.endswith(end) and key.removesuffix(end) in block for end in ("_s", "_text")):
                count += 1
        return count

    def test_jq_reads_json(self):
        for view in ("raw", "json"):
            for batch in self.batches():
                self.check_jq(list(snapshots.renderings(RENDER, view, batch)))

    def check_samples(self, snapshot, families):
        records = expected.Records(self.fields, self.layout, snapshot)
        found = {}
        for content in families.values():
            for name, labels, value in content["samples"]:
                self.assertEqual(labels.pop("decoder"), DECODER)
                found[name, tuple(sorted(labels.items()))] = value
        self.assertEqual(found.pop(("decoder_up", ())), "1")
        self.assertEqual(found.pop(("decoder_last_update_timestamp_seconds", ())), "1655208899.123456789")
        for name, labels, value, tolerance in expected.samples(self.fields, records):
            text = self.take(found, name, labels)
            self.assertIsNotNone(text, "no sample %s %s" % (name, labels))
            if isinstance(value, str):
                self.assertEqual(text, value, name)
            elif isinstance(value, float):
                self.assertEqual(struct.pack("<f", float(text)), struct.pack("<f", value), name)
            elif abs(Fraction(text) - value) > abs(value) * tolerance:
                self.fail("%s %s is %s, not %s" % (name, labels, text, value))
        self.assertEqual(found, {})

    def take(self, found, name, labels):
        """Removes a sample. A label that is a pattern matches what it matches."""
        patterns = {k: v for k, v in labels.items() if hasattr(v, "fullmatch")}
        if not patterns:
            return found.pop((name, tuple(sorted(labels.items()))), None)
        for key in found:
            its = dict(key[1])
            if key[0] == name and all(p.fullmatch(its.get(k, "")) for k, p in patterns.items()):
                if {**its, **patterns} == labels:
                    return found.pop(key)
        return None

    def test_openmetrics(self):
        for snapshot, text in self.each("openmetrics"):
            families = exposition.read(text, openmetrics=True)
            self.assertEqual(list(exposition.stateset_problems(families)), [])
            parsed = list(prometheus_client.openmetrics.parser.text_string_to_metric_families(text))
            self.assertEqual([f.name for f in parsed], list(families))
            self.check_samples(snapshot, families)

    def test_prometheus(self):
        for snapshot, text in self.each("prometheus"):
            families = exposition.read(text, openmetrics=False)
            self.assertEqual({f["type"] for f in families.values()} - {"counter", "gauge"}, set())
            list(prometheus_client.parser.text_string_to_metric_families(text))
            self.check_samples(snapshot, families)

    def test_a_comma_locale_changes_nothing(self):
        locale = dict(os.environ, LC_ALL="de_DE.UTF-8")
        probe = subprocess.run(["printf", "%.1f", "1,5"], env=locale, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
        if probe != b"1,5":
            self.skipTest("no locale with a decimal comma")
        batch = next(self.batches())
        for view in ("json", "raw", "openmetrics", "prometheus"):
            plain = list(snapshots.renderings(RENDER, view, batch, dict(os.environ, LC_ALL="C")))
            self.assertEqual(list(snapshots.renderings(RENDER, view, batch, locale)), plain)


class Promtool(Case):
    def test_it_has_nothing_to_say(self):
        for _, text in self.each("prometheus"):
            lint = subprocess.run(["promtool", "check", "metrics"], input=text.encode(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            self.assertEqual((lint.returncode, lint.stdout.decode()), (0, ""))


if __name__ == "__main__":
    unittest.main()
