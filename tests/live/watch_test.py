"""decstats watch in a pipe: one object a line."""
import json
import os
import select
import signal
import subprocess
import time
import unittest

from host import LiveTest, OwnHost


class Watch(LiveTest):
    def line(self, process, seconds=20):
        """The next object of a watch that is going on."""
        self.assertTrue(select.select([process.stdout], [], [], seconds)[0], "no line came")
        return json.loads(process.stdout.readline())

    def test_a_line_a_look(self):
        self.simulate()
        begin = time.monotonic()
        lines = self.run_tool("watch", "--every", "100ms", "--count", "4")[0].splitlines()
        self.assertGreaterEqual(time.monotonic() - begin, 0.3)
        looks = [json.loads(line) for line in lines]
        self.assertEqual(len(looks), 4)
        self.assertEqual(len({look["instance"]["id"] for look in looks}), 1)
        moments = [look["taken_at"] for look in looks]
        self.assertEqual(moments, sorted(set(moments)))
        counts = [look["components"]["tdemux"]["received_packets"] for look in looks]
        self.assertEqual(counts, sorted(counts))
        self.assertLess(counts[0], counts[3])
        self.assertEqual(len(looks[0]["components"]), 8)

    def test_chosen_fields_and_components(self):
        self.simulate()
        look = json.loads(self.run_tool("watch", "alpha", "--count", "1", "--field", "tdemux.state", "usage.start_requests")[0])
        self.assertEqual({name: list(fields) for name, fields in look["components"].items()}, {"tdemux": ["state"], "usage": ["start_requests"]})
        look = json.loads(self.run_tool("watch", "alpha", "--count", "1", "--component", "clock-recovery")[0])
        self.assertEqual(list(look["components"]), ["clock_recovery"])

    def test_lines_are_flushed_and_a_signal_ends_it(self):
        self.simulate()
        for number in (signal.SIGINT, signal.SIGTERM):
            watch = self.start("watch", "--every", "50ms")
            first, second = self.line(watch), self.line(watch)
            self.assertLess(first["taken_at"], second["taken_at"])
            watch.send_signal(number)
            self.assertEqual(watch.wait(timeout=20), -number)
            rest = watch.stdout.read()
            for line in rest.splitlines():
                json.loads(line)

    def test_a_restart_and_a_death(self):
        host = self.simulate()
        watch = self.start("watch", "alpha", "--every", "50ms", stderr=subprocess.PIPE)
        first = self.line(watch)["instance"]["id"]
        host.kill()
        host.wait()
        self.assertIn("stale", watch.stderr.readline())
        while select.select([watch.stdout], [], [], 0.5)[0]:
            self.assertEqual(self.line(watch)["instance"]["id"], first)
        self.simulate()
        second = self.line(watch)["instance"]["id"]
        self.assertNotEqual(first, second)

    def test_one_that_ends_and_comes_again(self):
        host = self.simulate()
        watch = self.start("watch", "alpha", "--every", "50ms", stderr=subprocess.PIPE)
        first = self.line(watch)["instance"]["id"]
        host.terminate()
        host.wait()
        self.assertIn("closed", watch.stderr.readline())
        self.simulate()
        while True:
            if self.line(watch)["instance"]["id"] != first:
                break

    def test_one_that_is_starting(self):
        host = OwnHost("alpha", self.live)
        watch = self.start("watch", "alpha", "--every", "50ms", stderr=subprocess.PIPE)
        self.assertIn("still starting", watch.stderr.readline())
        host.close()
        self.simulate()
        self.assertEqual(self.line(watch)["decoder"], "alpha")

    def test_files_that_are_written_anew(self):
        folder = self.directory / "records"
        folder.mkdir()
        self.run_tool("sample", "idle", str(folder))
        watch = self.start("watch", str(folder), "--every", "50ms", "--field", "tdemux.state")
        self.assertEqual(self.line(watch)["components"]["tdemux"]["state"]["name"], "stopped")
        self.run_tool("sample", "trouble", str(folder))
        self.until(lambda: self.line(watch)["components"]["tdemux"]["state"]["name"] == "scrambled")

    def test_playback(self):
        host = self.simulate()
        self.run_tool("capture", "alpha", "day.dcap", "--every", "100ms", "--for", "1900ms")
        host.terminate()
        host.wait()
        call = ("watch", "day.dcap", "--every", "100ms", "--field", "tdemux.received_packets")
        begin = time.monotonic()
        slow = [json.loads(line) for line in self.run_tool(*call)[0].splitlines()]
        middle = time.monotonic()
        fast = [json.loads(line) for line in self.run_tool(*call, "--speed", "5")[0].splitlines()]
        end = time.monotonic()
        self.assertGreater(middle - begin, 1.5)
        self.assertLess(end - middle, 1.3)
        for looks, least, most in ((slow, 15, 20), (fast, 4, 6)):
            moments = [look["taken_at"] for look in looks]
            self.assertEqual(moments, sorted(set(moments)))
            self.assertTrue(least <= len(moments) <= most, len(moments))
        self.assertEqual((fast[0], fast[-1]), (slow[0], slow[-1]))
        part = self.run_tool(*call, "--speed", "100", "--from", slow[3]["taken_at"], "--to", slow[7]["taken_at"])[0].splitlines()
        self.assertEqual((json.loads(part[0]), json.loads(part[-1])), (slow[3], slow[7]))

    def test_playback_is_for_captures(self):
        self.run_tool("capture", "sample:idle", "once.dcap", "--for", "0s")
        self.assertEqual(len(self.run_tool("watch", "once.dcap")[0].splitlines()), 1)
        self.refused("watch", "sample:idle", "--speed", "2", part="--speed")
        self.refused("watch", "once.dcap", "--from", "mtime", part="mtime")
        self.refused("watch", "once.dcap", "--from", "2100-01-01T00:00:00Z", part="no snapshot")
        for speed in ("0", "-1", "x"):
            self.refused("watch", "once.dcap", "--speed=" + speed, part="--speed")

    def test_a_reader_that_goes_away(self):
        self.simulate()
        watch = self.start("watch", "--every", "20ms", stderr=subprocess.PIPE)
        self.line(watch)
        watch.stdout.close()
        self.assertEqual(watch.wait(timeout=20), 1)
        self.assertEqual(watch.stderr.read(), "decstats: standard output: Broken pipe\n")

    def test_refusals(self):
        self.refused("watch", part="no decoder")
        self.simulate()
        self.refused("watch", "--every", "0s", part="too short")
        self.refused("watch", "--every", "1", part="duration")
        self.refused("watch", "--count", "0", part="--count")
        self.refused("watch", "--field", "tdemux.recieved_packets", part="tdemux.received_packets")
        self.refused("watch", "nonsense", part="nonsense")
        with open(self.path("gamma"), "wb") as file:
            file.write(os.urandom(4096))
        self.refused("watch", "gamma", part="damaged")


if __name__ == "__main__":
    unittest.main()
