"""decstats simulate: a host process that is not one."""
import os
import signal
import time
import unittest

from host import LiveTest


class Simulate(LiveTest):
    def count(self):
        return int(self.run_tool("show", "alpha", "--field", "tdemux.received_packets")[0].split()[1])

    def test_lives_and_ends(self):
        begin = time.monotonic()
        host = self.simulate("live-srt-1080i", "alpha", "--for", "1500ms")
        first = self.count()
        self.until(lambda: self.count() > first)
        self.assertEqual(host.wait(timeout=20), 0)
        self.assertGreaterEqual(time.monotonic() - begin, 1.5)
        self.assertEqual(os.listdir(self.live), [])

    def test_signals_end_it_cleanly(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            host = self.simulate("idle", "alpha")
            host.send_signal(number)
            self.assertEqual(host.wait(timeout=20), 0)
            self.assertEqual(os.listdir(self.live), [])

    def test_the_name_is_that_of_the_scenario(self):
        host = self.start("simulate", "resolving")
        self.assertEqual(host.stdout.readline(), "%s/resolving.decstats\n" % self.live)

    def test_a_fault_begins_when_it_was_asked_to(self):
        self.simulate("live-srt-1080i", "alpha", "--fault", "network-silent", "--after", "700ms")
        first = self.count()
        self.until(lambda: self.count() > first)

        def is_silent():
            before = self.count()
            time.sleep(0.5)
            return self.count() == before

        self.until(is_silent)

    def test_units_of_durations(self):
        for text, seconds in (("400ms", 0.4), ("0.5s", 0.5), ("0.01m", 0.6), ("0.0001h", 0.36), ("0.000005d", 0.432)):
            begin = time.monotonic()
            self.run_tool("simulate", "idle", "--for", text)
            self.assertGreaterEqual(time.monotonic() - begin, seconds, text)
            self.assertLess(time.monotonic() - begin, seconds + 10, text)

    def test_faults_are_listed(self):
        faults = self.run_tool("simulate", "--list-faults")[0].splitlines()
        self.assertGreater(len(faults), 40)
        self.assertTrue(any(line.startswith("srt-loss ") and line.endswith("(live-srt-1080i)") for line in faults))

    def test_refusals(self):
        self.simulate("idle", "alpha")
        self.refused("simulate", "idle", "--name", "alpha", part="alpha", status=1)
        self.refused("simulate", "idle", "--directory", "missing", part="missing", status=1)
        for name in ("a b", ".a", "a/b", "x" * 65, "\x1b"):
            self.refused("simulate", "idle", "--name=" + name, "--for", "0s", part="name")
        self.refused("simulate", part="SCENARIO")
        self.refused("simulate", "nonsense", part="nonsense")
        self.refused("simulate", "idle", "--fault", "nonsense", part="nonsense")
        self.refused("simulate", "idle", "--after", "1s", part="--fault")
        for part in ("fec-weak", "rtp-fec-2160p", "live-srt-1080i"):  # the fault, the scenario that it is of, and the one that it is not of
            self.refused("simulate", "live-srt-1080i", "--fault", "fec-weak", part=part)
        for text in ("1", "s", "-1s", "1s 2", "1e3s", "inf", "nan s", "5y", "99999999d", ""):
            self.refused("simulate", "idle", "--for=" + text, part="duration" if text else "--for")


if __name__ == "__main__":
    unittest.main()
