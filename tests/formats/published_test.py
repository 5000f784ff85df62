#!/usr/bin/env python3
"""published_test.py HOST: what docs/publisher-format.md says is enough to read a published decoder. HOST, published_values.c,
publishes values that are repeated here; published_reader.py, which was written from the document, reads them: from a host that
is alive, hung or dead, while it writes, and from files that are damaged or of a later release."""
import json
import os
import pathlib
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

import published_reader

host_program = sys.argv.pop(1)
reader_program = pathlib.Path(published_reader.__file__).absolute()
hour_ms = 3600000


class Host:
    """A host that publishes the decoder "values" in `directory` until the block ends."""

    def __init__(self, directory, mode, interval_ms=hour_ms):
        self.command = [host_program, directory, str(interval_ms), mode]

    def __enter__(self):
        self.process = subprocess.Popen(self.command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        assert self.process.stdout.readline() == b"ready\n"
        return self

    def __exit__(self, failure, *_):
        if failure:
            self.process.kill()
        self.process.communicate(timeout=60)

    def kill(self):
        self.process.kill()
        self.process.wait()


def run_reader(path):
    return subprocess.run([sys.executable, "-B", reader_program, path], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def sections(data):
    """(place of the entry, type, number, offset, size) of each section."""
    (table,) = struct.unpack_from("<I", data, 12)
    count, size = struct.unpack_from("<II", data, 68)
    return [(at, *struct.unpack_from("<IIQQ", data, at)) for at in range(table, table + count * size, size)]


class Case(unittest.TestCase):
    """A directory in memory for a published decoder, and what tests do with its file."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(dir="/dev/shm")
        self.addCleanup(scratch.cleanup)
        self.directory = scratch.name
        self.path = os.path.join(scratch.name, "values.decstats")

    def read(self):
        run = run_reader(self.path)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        return json.loads(run.stdout)

    def known_file(self):
        """The bytes that a host of the known values leaves behind."""
        with Host(self.directory, "known") as host:
            host.kill()
        return bytearray(pathlib.Path(self.path).read_bytes())

    def store(self, data):
        pathlib.Path(self.path).write_bytes(data)

    def check_refused(self, expected):
        run = run_reader(self.path)
        self.assertEqual((run.returncode, run.stdout, run.stderr.count("\n")), (1, "", 1), run.stderr)
        self.assertIn(self.path, run.stderr)
        self.assertIn(expected, run.stderr)


class Published(Case):
    def check_known(self, components):
        vframer, audio, metadata, usage = (components[n]["fields"] for n in ("vframer", "audio", "metadata", "usage"))
        self.assertEqual(vframer["stream.frame_rate"], 13421773 / 2**27)  # the binary32 nearest to 0.1
        self.assertEqual(vframer["previous_stream.frame_rate"], -59.9375)
        self.assertEqual(vframer["stream.framing"], "1080i é")
        self.assertEqual(vframer["stream.colour_primaries"], 255)
        self.assertEqual(vframer["stream.sdi_payload_id"], "89ca0001")
        self.assertEqual(audio["pairs[].av_offset"], [-1000, -2000, -3000, -4000, -5000, -6000, -7000, -8000])
        self.assertEqual(audio["pairs[].audio_timestamp"], list(range(4294967280, 4294967288)))
        self.assertEqual(audio["pairs[].last_output_write_time"], [[1700000000 + i, 999999999 - i] for i in range(8)])
        self.assertEqual(metadata["channels[].name"], ["ABCDEFGH", "", "", "KLV"])
        self.assertEqual(metadata["channels[].allocated_descriptors"], [0, 0, 0, 0xFEDCBA9876543210])
        self.assertEqual((usage["start_requests"], usage["last_start_request_time"]), (1, -2))
        self.assertEqual((usage["save_config_requests"], usage["last_save_config_request_time"]), (17, 18))
        # What the host does not measure, and the neighbours that it does; the record holds 7 and 3 for the first and the last.
        self.assertIsNone(vframer["decoder_id"])
        self.assertIsNone(audio["pairs[].mode"])
        self.assertIsNone(usage["stop_requests"])
        self.assertEqual((vframer["state"], usage["last_stop_request_time"]), (0, 4))
        self.assertEqual((audio["pairs[].record_size"], audio["pairs[].compression"]), ([0] * 8, [0] * 8))
        nulls = sum(value is None for c in components.values() for value in c.get("fields", {}).values())
        self.assertEqual(nulls, 3)

    def test_known_values(self):
        before = time.time_ns()
        with Host(self.directory, "known") as host:
            after = time.time_ns()
            shown = self.read()
            again = self.read()
            host.kill()
            stale = self.read()
        self.assertEqual((shown["decoder"], shown["release"], shown["state"]), ("values", "values é 1.0", "live"))
        self.assertEqual(shown["boot"], pathlib.Path("/proc/sys/kernel/random/boot_id").read_text().strip().replace("-", ""))
        self.assertEqual(shown["heartbeat"]["interval_ms"], hour_ms)
        self.assertLessEqual(before - 10_000_000, shown["start"])  # its clock is brought forward every 10 ms or sooner
        for name in ("vframer", "audio", "metadata", "usage"):
            component = shown["components"][name]
            self.assertEqual((component["slot"], component["writings"]), ("read", 1))
            self.assertTrue(shown["start"] <= component["moment"] <= after)
            self.assertGreater(again["components"][name]["age_s"], component["age_s"])
        for name in ("tdemux", "vdecoder", "buffering", "clock_recovery"):
            self.assertEqual(shown["components"][name], {"slot": "never written"})
        self.check_known(shown["components"])

        self.assertEqual(stale["state"], "stale")
        self.assertEqual(stale["instance"], shown["instance"])
        self.check_known(stale["components"])

        with Host(self.directory, "known"):
            self.assertEqual(self.read()["state"], "live")
            self.assertNotEqual(self.read()["instance"], shown["instance"])
        self.assertEqual(run_reader(self.path).returncode, 1)  # a host that ends in order takes its file along

    def test_starting_and_hung(self):
        with Host(self.directory, "empty"):
            shown = self.read()
            self.assertEqual(shown["state"], "starting")
            self.assertEqual({c["slot"] for c in shown["components"].values()}, {"never written"})
        for mode in ("empty", "moving"):
            with Host(self.directory, mode, interval_ms=1) as host:
                time.sleep(0.02)
                self.assertEqual(self.read()["state"], "hung")
                host.kill()
                self.assertEqual(self.read()["state"], "stale")

    def test_while_it_is_written(self):
        with Host(self.directory, "moving") as host:
            seen, refused, end = [], 0, time.monotonic() + 3
            while time.monotonic() < end and len(seen) < 150:
                shown = published_reader.read_path(self.path)
                self.assertEqual(shown["state"], "live")
                self.check_known(shown["components"])
                component = shown["components"]["tdemux"]
                refused += component["slot"] == "busy"
                if component["slot"] == "read":
                    fields = component["fields"]
                    names = ("pts", "dts", "received_packets", "frames_without_pts")
                    values = {value for name in names for value in fields[f"sources[].{name}"]}
                    self.assertEqual(values, {component["writings"]})
                    seen.append(component["writings"])
            host.kill()
            last = self.read()
        self.assertEqual(seen, sorted(seen))
        self.assertGreater(len(set(seen)), 50, f"{refused} were busy")
        # Unless the host died in the middle of a record, that record is whole too.
        self.assertEqual(last["state"], "stale")
        self.check_known(last["components"])
        tdemux = last["components"]["tdemux"]
        if tdemux["slot"] == "read":
            self.assertGreaterEqual(tdemux["writings"], seen[-1])
            self.assertEqual(tdemux["fields"]["sources[].pts"], [tdemux["writings"]] * 10)
        else:
            self.assertEqual(tdemux, {"slot": "lost"})

    def test_paused_in_the_middle(self):
        """A host that stands still in the middle of a writing: its record is busy, and lost when it is dead."""
        with Host(self.directory, "known") as host:
            host.process.send_signal(signal.SIGSTOP)
            usage = next(at for at in self.slots(2) if self.component_of(at[2]) == "usage")
            with open(self.path, "r+b", 0) as file:
                os.pwrite(file.fileno(), struct.pack("<Q", 3), usage[3])
            shown = self.read()
            self.assertEqual(shown["components"]["usage"], {"slot": "busy"})
            self.assertEqual(shown["components"]["vframer"]["slot"], "read")
            host.kill()
        shown = self.read()
        self.assertEqual((shown["state"], shown["components"]["usage"]), ("stale", {"slot": "lost"}))

    def slots(self, kind):
        return [section for section in sections(pathlib.Path(self.path).read_bytes()) if section[1] == kind]

    def component_of(self, number):
        data = pathlib.Path(self.path).read_bytes()
        layout = next(section for section in sections(data) if section[1] == 1 and section[2] == number)
        return data[layout[3] : layout[3] + 32].rstrip(b"\0").decode()

    def test_layout_of_this_release(self):
        """What the document says of files of version 1 beyond what a reader needs."""
        data = self.known_file()
        self.assertEqual(os.stat(self.path).st_mode & 0o777, 0o640)
        table = sections(data)
        self.assertEqual(sorted(t for _, t, *_ in table), [1] * 8 + [2] * 8 + [3, 4])
        self.assertTrue(all(offset % 128 == 0 for _, kind, _, offset, _ in table if kind > 1))

    def test_later_releases(self):
        """Sections of another type, longer headers, entries and rows, and another order change nothing."""
        data = self.known_file()
        before = self.read()
        table = sections(data)
        for at, kind, number, offset, size in [entry for entry in table if entry[1] == 1]:
            fields, row_size, first = struct.unpack_from("<3I", data, offset + 36)
            rows, texts = data[offset + 48 : offset + 48 + fields * row_size], data[offset + 48 + fields * row_size : offset + size]
            longer = data[offset : offset + 40] + struct.pack("<II", row_size + 8, first)
            for row in range(0, len(rows), row_size):
                public, c_name = struct.unpack_from("<II", rows, row + 16)
                moved = struct.pack("<II", public + 8 * fields, c_name + 8 * fields)
                longer += rows[row : row + 16] + moved + rows[row + 24 : row + row_size] + b"\xff" * 8
            longer += texts
            struct.pack_into("<QQ", data, at + 8, len(data), len(longer))
            data += longer + bytes(-len(longer) % 8)
        entries = [struct.pack("<IIQQ", *entry[1:]) for entry in reversed(sections(data))]
        entries.insert(3, struct.pack("<IIQQ", 99, 0, 0, 16))
        table_at = len(data)
        data += b"".join(entry + b"\xee" * 8 for entry in entries)
        struct.pack_into("<I", data, 12, table_at)
        struct.pack_into("<Q", data, 16, len(data))
        struct.pack_into("<II", data, 68, len(entries), 32)
        self.store(data)
        after = self.read()
        for shown in (before, after):
            for component in shown["components"].values():
                component.pop("age_s", None)
            shown["heartbeat"].pop("age_ms")
        self.assertEqual(after, before)

    def test_types_of_later_releases(self):
        """A row of an unknown type, or of another size than its type has, is no field. The others keep their numbers."""
        whole = self.known_file()
        before = self.read()["components"]
        layouts = {whole[entry[3] :][:32].rstrip(b"\0").decode(): entry[3] for entry in sections(whole) if entry[1] == 1}
        name = next(name for name in before if "fields" in before[name])
        layout, first = layouts[name], next(iter(before[name]["fields"]))
        for at, other in ((28, b"\x0a"), (4, b"\3")):
            self.store(whole[: layout + 48 + at] + other + whole[layout + 48 + at + 1 :])
            after = self.read()["components"]
            self.assertNotIn(first, after[name]["fields"])
            self.assertEqual(after[name]["fields"], {n: value for n, value in before[name]["fields"].items() if n != first})

    def test_no_file(self):
        os.mkfifo(self.path)
        self.check_refused("expected a regular file")
        os.unlink(self.path)
        self.check_refused("No such file")
        self.store(self.known_file())
        os.rename(self.path, self.path + ".real")
        os.symlink(self.path + ".real", self.path)
        self.check_refused("symbolic links")


class Damaged(Case):
    def test_damaged_files(self):
        whole = self.known_file()
        table = sections(whole)
        layout = next(entry[3] for entry in table if entry[1] == 1)
        heartbeat = next(entry for entry in table if entry[1] == 3)
        damages = {
            "header: expected DECSTATS": (0, b"X"),
            "header: expected DECSTATS and version 1": (8, b"\2"),
            "header, size of the file": (16, b"\xff"),
            "header, interval": (64, b"\0\0\0\0"),
            "table of sections: expected": (68, b"\xff\xff\xff\xff"),
            "header, name of the decoder: expected a name": (80, b"/"),
            "header, release: expected UTF-8": (144, b"\x1b"),
            "table of sections, entry 0": (table[0][0] + 8, b"\xff" * 8),
            "table of sections, entry 1: expected another": (table[1][0] + 4, struct.pack("<I", table[0][2])),
            "table of sections: expected a heartbeat": (heartbeat[0], b"\x63"),
            "heartbeat: expected the one": (heartbeat[3], bytes(8)),
            "heartbeat: expected a slot": (heartbeat[0] + 16, b"\x10"),
            "field 0: expected a place in the record": (layout + 48, b"\xff\xff\xff\xff"),
            "field 0: expected names": (layout + 48 + 16, b"\xff\xff\xff\xff"),
            "field 0: expected a value": (layout + 48 + 4, b"\0"),
            "field 0: expected an array's": (layout + 48 + 8, b"\2"),
            "rows": (layout + 40, b"\x1f"),
        }
        for expected, (at, damage) in damages.items():
            with self.subTest(expected):
                self.store(whole[:at] + damage + whole[at + len(damage) :])
                self.check_refused(expected)
        for size in (0, 11, 12, 207, 208, len(whole) - 1):
            with self.subTest(size=size):
                self.store(whole[:size])
                self.check_refused("expected")

    def test_any_byte_damaged(self):
        """Whatever byte of what describes the records is damaged, the file is read or refused, without another exception."""
        whole = self.known_file()
        ends = [640] + [entry[3] + 48 + 32 for entry in sections(whole) if entry[1] == 1]
        refused = 0
        with open(self.path, "r+b", 0) as file:
            for at in [*range(640), *range(ends[1] - 80, ends[1]), *range(ends[-1] - 80, ends[-1])]:
                os.pwrite(file.fileno(), bytes([whole[at] ^ 0xFF]), at)
                try:
                    published_reader.read_path(self.path)
                except ValueError:
                    refused += 1
                os.pwrite(file.fileno(), whole[at : at + 1], at)
        self.assertGreater(refused, 200)


if __name__ == "__main__":
    unittest.main()
