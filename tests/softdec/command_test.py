"""The command softdec as people run it: what it prints and writes, and how it refuses what it cannot take."""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOFTDEC, STREAMS = sys.argv.pop(1), sys.argv.pop(1)
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
        for data in (b"", b"\0" * 5000, bytes(range(256)) * 40, b"\x47" * 5000):
            result = run(self.write("a.ts", data), "--report")
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("  Program Number        : Not Found", result.stdout)

    def test_help_and_version(self):
        self.assertIn("--no-decode", run("--help").stdout)
        self.assertRegex(run("--version").stdout, r"^softdec [0-9.]+\n$")


unittest.main(verbosity=2)
