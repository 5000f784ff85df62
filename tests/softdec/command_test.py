"""The command softdec as people run it: what it prints and writes, and how it refuses what it cannot take."""
import datetime
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SOFTDEC, STREAMS, DECSTATS = sys.argv.pop(1), sys.argv.pop(1), sys.argv.pop(1)
CAPTURE = os.path.join(STREAMS, "rtp-fec.pcap")


def run(*arguments):
    return subprocess.run([SOFTDEC, *arguments], capture_output=True, text=True, timeout=60)


class Command(unittest.TestCase):
    def refuse(self, status, beginning, *arguments):
        result = run(*arguments)
        self.assertEqual(result.returncode, status)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("softdec: " + beginning), result.stderr)

    def write(self, name, data):
        path = os.path.join(self.directory.name, name)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.addCleanup(self.directory.cleanup)

    def test_report(self):
        result = run(CAPTURE, "--report")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for line in ("  State                 : Active", "  Received Packets      : 212 (Last One: ", "  Program Number        : 1",
                     "  Number of Columns     : 5", "    Format              : 320x180p25"):
            self.assertIn("\n" + line, result.stdout)

    def test_records_are_the_same_each_time(self):
        def records(name):
            directory = os.path.join(self.directory.name, name)
            os.mkdir(directory)
            self.assertEqual(run(CAPTURE, "--records", directory).returncode, 0)
            return {file.name: file.read_bytes() for file in sorted(pathlib.Path(directory).iterdir())}

        first = records("first")
        self.assertEqual(list(first), ["audio.rec", "buffering.rec", "clock-recovery.rec", "metadata.rec", "tdemux.rec", "usage.rec",
                                       "vdecoder.rec", "vframer.rec"])
        self.assertEqual(first, records("second"))

    def history(self, path):
        result = subprocess.run([DECSTATS, "history", path], capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return dict(re.findall(r"^(\w+) *: (.*)$", result.stdout, re.M))

    def test_a_capture_is_the_same_each_time_and_changes_no_record(self):
        paths = [os.path.join(self.directory.name, name) for name in ("one.dcap", "two.dcap")]
        for path in paths:
            os.mkdir(path + ".records")
            result = run(CAPTURE, "--capture", path, "--records", path + ".records")
            self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        self.assertEqual(pathlib.Path(paths[0]).read_bytes(), pathlib.Path(paths[1]).read_bytes())
        plain = pathlib.Path(self.directory.name, "plain")
        plain.mkdir()
        self.assertEqual(run(CAPTURE, "--records", str(plain)).returncode, 0)
        for file in plain.iterdir():
            self.assertEqual(file.read_bytes(), pathlib.Path(paths[0] + ".records", file.name).read_bytes(), file.name)

    def test_a_capture_has_a_snapshot_each_second(self):
        path = os.path.join(self.directory.name, "one.dcap")
        self.assertEqual(run(CAPTURE, "--name", "one", "--directory", self.directory.name, "--capture", path).returncode, 0)
        shown = subprocess.run([DECSTATS, "watch", path, "--speed", "5", "--every", "10ms"], capture_output=True, text=True, timeout=60)
        moments = [json.loads(line)["taken_at"] for line in shown.stdout.splitlines()]
        self.assertGreaterEqual(len(moments), 8)
        whole = [datetime.datetime.fromisoformat(re.sub(r"(\.0+)?Z$", "+00:00", moment)) for moment in moments[:-1]]
        self.assertEqual([(after - before).total_seconds() for before, after in zip(whole, whole[1:])], [1.0] * (len(whole) - 1))
        facts = self.history(path)
        self.assertEqual((facts["Decoder"], facts["Gaps"], facts["Damage"]), ("one", "0", "0"))
        # The last of them is the records at the end.
        field = subprocess.run([DECSTATS, "show", path, "--field", "tdemux.received_packets"], capture_output=True, text=True, timeout=60)
        self.assertIn("212 packets", field.stdout)

    def test_a_capture_is_appended_to(self):
        path = os.path.join(self.directory.name, "one.dcap")
        for times in (1, 2):
            self.assertEqual(run(CAPTURE, "--capture", path).returncode, 0)
            facts = self.history(path)
            if times == 1:
                first = int(facts["Snapshots"])
            self.assertEqual((int(facts["Snapshots"]), facts["Damage"], facts["Gaps"]), (first * times, "0", str(times - 1)))
        before = pathlib.Path(path).read_bytes()
        self.refuse(1, f"{path}: holds the snapshots of ", CAPTURE, "--capture", path, "--name", "other", "--directory", self.directory.name)
        self.assertEqual(pathlib.Path(path).read_bytes(), before)

    def test_what_is_no_capture_is_not_appended_to(self):
        other = self.write("other", b"something else" * 100)
        self.refuse(1, f"{other}: ", CAPTURE, "--capture", other)
        self.assertEqual(pathlib.Path(other).read_bytes(), b"something else" * 100)
        self.refuse(1, "/nowhere/one.dcap: ", CAPTURE, "--capture", "/nowhere/one.dcap")
        path = os.path.join(self.directory.name, "one.dcap")
        self.refuse(2, "/nowhere.ts: ", "/nowhere.ts", "--capture", path)
        self.assertFalse(os.path.exists(path))

    def test_what_is_no_regular_file_is_not_replaced(self):
        places = pathlib.Path(self.directory.name, "records")
        for make in (lambda path: os.mkfifo(path), lambda path: path.symlink_to("/nowhere"), lambda path: path.symlink_to(__file__)):
            places.mkdir()
            place = places / "usage.rec"
            (places / "audio.rec").write_text("old")
            make(place)
            before = place.lstat()
            self.refuse(1, f"{place}: is not a regular file", CAPTURE, "--records", str(places))
            self.assertEqual((place.lstat().st_ino, place.lstat().st_mode), (before.st_ino, before.st_mode))
            self.assertEqual(sorted(path.name for path in places.iterdir()), ["audio.rec", "usage.rec"])
            self.assertEqual((places / "audio.rec").read_text(), "old")
            shutil.rmtree(places)

    def test_a_reader_sees_the_published_decoder_while_it_runs(self):
        with subprocess.Popen([SOFTDEC, CAPTURE, "--speed", "live", "--name", "one", "--directory", self.directory.name]) as process:
            path = os.path.join(self.directory.name, "one.decstats")
            for _ in range(100):
                if os.path.exists(path):
                    break
                try:
                    process.wait(0.05)
                except subprocess.TimeoutExpired:
                    pass
            self.assertTrue(os.path.exists(path))
            process.terminate()
            self.assertEqual(process.wait(30), 0)
        self.assertEqual(os.listdir(self.directory.name), [])

    def test_refusals(self):
        self.refuse(2, "INPUT is required")
        self.refuse(2, "stream.mp4: expected ", "stream.mp4")
        self.refuse(2, "/nowhere.ts: No such file", "/nowhere.ts")
        self.refuse(2, "/nowhere.pcap: No such file", "/nowhere.pcap")
        self.refuse(2, "udp address 127.0.0.1: expected ", "udp://127.0.0.1")
        self.refuse(2, "udp address 127.0.0.1:0: expected a port", "udp://127.0.0.1:0")
        self.refuse(2, "udp address host.example:5: expected ", "udp://host.example:5")
        self.refuse(2, "udp address 1.2.3.4@127.0.0.1:5: GROUP is no multicast", "udp://1.2.3.4@127.0.0.1:5")
        self.refuse(2, "--speed: ", CAPTURE, "--speed", "fast")
        self.refuse(1, "/nowhere/", CAPTURE, "--records", "/nowhere")
        self.refuse(1, "/nowhere", CAPTURE, "--name", "one", "--directory", "/nowhere")

    def test_names_of_files(self):
        for name, endings in ((CAPTURE, ("pcap", "pcapng", "cap")), (os.path.join(STREAMS, "h264-aac.ts"), ("ts", "m2ts", "mts", "trp"))):
            data = pathlib.Path(name).read_bytes()
            for ending in endings:
                result = run(self.write("stream." + ending, data), "--no-decode", "--report")
                self.assertEqual((result.returncode, result.stderr), (0, ""), ending)
                self.assertIn("\n  Program Number        : 1\n", result.stdout, ending)

    def test_broken_files(self):
        self.refuse(2, self.write("a.pcap", b"no capture"), os.path.join(self.directory.name, "a.pcap"))
        with open(CAPTURE, "rb") as file:
            data = file.read()
        header_only = self.write("b.pcap", data[:24])
        self.refuse(2, header_only + ": no UDP datagram", header_only)
        # A capture that ends within a frame is read as far as it goes.
        cut = self.write("c.pcap", data[:200000])
        result = run(cut, "--report")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn("Received Packets", result.stdout)

    def test_files_that_are_no_stream(self):
        for data in (b"", b"\0" * 5000, bytes(range(256)) * 40):
            path = self.write("a.ts", data)
            self.refuse(2, path + ": no MPEG transport stream found", path, "--report")
        result = run(self.write("a.ts", b"\x47" * 5000), "--report")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn("  Program Number        : Not Found", result.stdout)

    def test_help_and_version(self):
        self.assertIn("--no-decode", run("--help").stdout)
        self.assertRegex(run("--version").stdout, r"^softdec [0-9.]+\n$")


unittest.main(verbosity=2)
