"""decstats diff against the difference of two outputs of decstats show --raw, worked out here."""
import json
import random
import unittest

from host import LiveTest

NAMING = ("identity", "text", "state", "flag")


class Diff(LiveTest):
    def records(self, name, scenario="live-srt-1080i"):
        folder = self.directory / name
        folder.mkdir()
        self.run_tool("sample", scenario, str(folder))
        return folder

    def raw(self, source):
        return json.loads(self.run_tool("show", str(source), "--format", "ndjson", "--raw", "--at", "1700000000")[0])["components"]

    def difference(self, old, new, *more):
        return json.loads(self.run_tool("diff", str(old), str(new), "--format", "ndjson", *more)[0])

    def fields(self):
        return json.loads(self.run_tool("describe", "--format", "json")[0])["fields"]

    def changed(self, old, new):
        """The fields that differ: by public name their kind and the two raw values."""
        found = {}
        for field in self.fields():
            parts = field["member"].split(".")
            is_array = "[]" in field["name"]
            component = field["component"].replace("-", "_")
            if component not in old or component not in new:
                continue
            for element in range(64 if is_array else 1):
                sides = []
                for side in (old, new):
                    value = side[component]
                    for part in parts:
                        value = value[part.removesuffix("[]")]
                        if part.endswith("[]"):
                            value = value[element] if element < len(value) else None
                            if value is None:
                                break
                    sides.append(value)
                if sides[0] is None:
                    break
                if sides[0] != sides[1]:
                    found[field["name"].replace("[]", "[%d]" % element)] = (field["kind"], *sides)
        return found

    def check(self, old, new):
        expected = self.changed(self.raw(old), self.raw(new))
        answer = self.difference(old, new, "--from", "1700000000", "--to", "1700000010")
        changes = {change["field"]: change for change in answer["changes"]}
        self.assertEqual(set(changes), set(expected))
        for name, (kind, before, after) in expected.items():
            change = changes[name]
            self.assertEqual((change["kind"], change["old_raw"], change["new_raw"]), (kind, before, after), name)
            if change["difference"] is not None and isinstance(before, int):
                self.assertEqual(change["difference"], after - before, name)
            if change["rate"] is not None:
                self.assertEqual(kind, "counter")
                self.assertAlmostEqual(change["rate"], (after - before) / 10, delta=abs(after - before) * 1e-12)
        kinds = [change["kind"] in NAMING for change in answer["changes"]]
        self.assertEqual(kinds, sorted(kinds, reverse=True), "names and states come first")
        return changes

    def test_random_pairs(self):
        generator = random.Random(2)
        for number in range(12):
            old = self.records("old%d" % number, generator.choice(("live-srt-1080i", "rtp-fec-2160p", "trouble", "idle", "extreme")))
            new = self.records("new%d" % number, generator.choice(("live-srt-1080i", "extreme", "resolving")))
            for folder in (old, new):
                for file in folder.iterdir():
                    data = bytearray(file.read_bytes())
                    for _ in range(generator.choice((0, 3, 300))):
                        data[generator.randrange(len(data))] = generator.randrange(256)
                    file.write_bytes(data)
            self.assertTrue(self.check(old, new))

    def test_one_changed_byte_is_one_changed_field(self):
        old, new = self.records("old"), self.records("new")
        for file in old.iterdir():
            (new / file.name).write_bytes(file.read_bytes())
        self.assertEqual(self.check(old, new), {})
        self.assertIn("nothing has changed\n", self.run_tool("diff", str(old), str(new))[0])
        record = bytearray((new / "tdemux.rec").read_bytes())
        field = next(field for field in self.fields() if field["name"] == "tdemux.received_packets")
        count = int.from_bytes(record[field["offset"]:field["offset"] + 8], "little")

        def set_count(value):
            record[field["offset"]:field["offset"] + 8] = value.to_bytes(8, "little")
            (new / "tdemux.rec").write_bytes(record)

        set_count(count + 12345)
        change = self.check(old, new)["tdemux.received_packets"]
        self.assertEqual((change["old"], change["new"], change["difference"], change["rate"]), (count, count + 12345, 12345, 1234.5))
        lines = self.run_tool("diff", str(old), str(new), "--from", "1700000000", "--to", "1700000010")[0].splitlines()
        self.assertEqual(lines[0], "2023-11-14T22:13:20.000000000Z to 2023-11-14T22:13:30.000000000Z, 10 s")
        self.assertEqual(lines[1].split(), ["FIELD", "OLD", "NEW", "DIFFERENCE", "RATE", "UNIT"])
        self.assertEqual(lines[2].split(), ["tdemux.received_packets", str(count), str(count + 12345), "+12345", "1234/s", "packets"])
        self.assertEqual(len(lines), 3)

        # Less than before is a reset, however near the end of its range it was.
        set_count(2**64 - 1)
        record = bytearray(record)
        (old / "tdemux.rec").write_bytes(record)
        set_count(5)
        answer = self.difference(old, new, "--from", "1700000000", "--to", "1700000010")
        change = answer["changes"][0]
        self.assertEqual(answer["fallen_counters"], ["tdemux.received_packets"])
        self.assertEqual((change["difference"], change["rate"]), (5 - (2**64 - 1), None))
        self.assertEqual((change["old"], change["old_s"]), (2**64 - 1, str(2**64 - 1)))
        self.assertIn("reset: tdemux, for tdemux.received_packets has fallen\n", self.run_tool("diff", str(old), str(new))[0])

    def test_no_rate_without_time(self):
        old, new = self.records("old"), self.records("new", "rtp-fec-2160p")
        for moments in (("1700000000", "1700000000"), ("1700000010", "1700000000")):
            answer = self.difference(old, new, "--from", moments[0], "--to", moments[1])
            self.assertEqual({change["rate"] for change in answer["changes"]}, {None})
        self.assertEqual(answer["seconds"], -10)
        self.assertIn("the clock was set back\n", self.run_tool("diff", str(old), str(new), "--from", "1700000010", "--to", "1700000000")[0])

    def test_what_only_one_has(self):
        old, new = self.records("old"), self.records("new")
        (new / "audio.rec").unlink()
        (old / "usage.rec").unlink()
        answer = self.difference(old, new)
        self.assertEqual((answer["only_old"], answer["only_new"]), (["audio"], ["usage"]))
        self.assertFalse(any(change["field"].startswith(("audio.", "usage.")) for change in answer["changes"]))

    def test_an_array_element_that_is_another(self):
        old, new = self.records("old"), self.records("new")
        pid = next(field for field in self.fields() if field["name"] == "tdemux.sources[].pid")
        packets = next(field for field in self.fields() if field["name"] == "tdemux.sources[].received_packets")
        record = bytearray((old / "tdemux.rec").read_bytes())
        record[packets["offset"]] ^= 1
        record[pid["offset"]] ^= 1
        (new / "tdemux.rec").write_bytes(record)
        changes = self.check(old, new)
        self.assertIsNone(changes["tdemux.sources[0].received_packets"]["rate"])
        self.assertIsNone(changes["tdemux.sources[0].received_packets"]["difference"])

    def test_runs_and_decoders(self):
        """Two live decoders, and two runs of one."""
        self.simulate("live-srt-1080i", "alpha")
        self.simulate("live-srt-1080i", "beta")
        answer = self.difference("alpha", "beta")
        self.assertTrue(answer["other_decoder"] and answer["restarted"])
        self.assertEqual({change["rate"] for change in answer["changes"] if change["kind"] == "counter"} - {None}, set())
        self.assertIn("these are two decoders\n", self.run_tool("diff", "alpha", "beta")[0])

        other = self.directory / "other"
        other.mkdir()
        self.simulate_in(other)
        answer = self.difference("alpha", str(other / "alpha.decstats"))
        self.assertTrue(answer["restarted"])
        self.assertFalse(answer["other_decoder"])
        self.assertEqual(answer["fallen_counters"], [])
        text = self.run_tool("diff", "alpha", str(other / "alpha.decstats"))[0]
        self.assertIn("restarted: instance %s of %s became %s of " % (answer["old"]["instance"]["id"], answer["old"]["instance"]["started_at"],
                                                                     answer["new"]["instance"]["id"]), text)

    def simulate_in(self, directory):
        process = self.start("simulate", "live-srt-1080i", "--name", "alpha", "--directory", str(directory))
        process.stdout.readline()

    def test_two_moments_of_a_capture(self):
        self.simulate()
        self.run_tool("capture", "alpha", "day.dcap", "--every", "300ms", "--for", "1400ms")
        looks = [json.loads(line) for line in self.run_tool("watch", "day.dcap", "--every", "10ms", "--speed", "30")[0].splitlines()]
        first, last = looks[0], looks[-1]
        answer = self.difference_of("day.dcap", "--from", first["taken_at"], "--to", last["taken_at"])
        self.assertEqual((answer["old"]["taken_at"], answer["new"]["taken_at"]), (first["taken_at"], last["taken_at"]))
        change = next(change for change in answer["changes"] if change["field"] == "tdemux.received_packets")
        self.assertEqual((change["old"], change["new"]), tuple(look["components"]["tdemux"]["received_packets"] for look in (first, last)))
        self.assertAlmostEqual(change["rate"], change["difference"] / answer["seconds"], places=3)
        self.assertEqual(self.difference_of("day.dcap", "--from", first["taken_at"]), answer)

    def difference_of(self, *arguments):
        return json.loads(self.run_tool("diff", *arguments, "--format", "ndjson")[0])

    def test_refusals(self):
        self.refused("diff", "sample:idle", part="which NEW?")
        self.refused("diff", "sample:idle", "sample:nonsense", part="nonsense")
        self.refused("diff", "sample:idle", "sample:idle", "--from", "yesterday", part="yesterday")


if __name__ == "__main__":
    unittest.main()
