"""decstats diagnose of live decoders and of what was captured of them."""
import json
import signal
import unittest

from host import LiveTest


class Diagnose(LiveTest):
    def diagnose(self, *arguments, status):
        return json.loads(self.run_tool("diagnose", *arguments, "--format", "json", status=status)[0])

    def ids(self, result):
        return [finding["id"] for finding in result["findings"]]

    def test_a_healthy_decoder(self):
        self.simulate()
        result = self.diagnose("--window", "2s", status=0)
        self.assertEqual(result["decoder"], "alpha")
        self.assertAlmostEqual(result["window"], 2, delta=1)
        self.assertEqual(result["verdict"]["state"], "working")
        self.assertEqual({stage["state"] for stage in result["stages"]}, {"working"})
        self.assertEqual(self.ids(result), [])

    def test_a_fault(self):
        self.simulate("live-srt-1080i", "alpha", "--fault", "srt-wrong-key")
        result = self.diagnose("alpha", "--window", "3s", status=2)
        self.assertEqual(self.ids(result), ["link.not-decrypting"])
        self.assertEqual(result["verdict"]["stage"], "link")

    def test_metrics(self):
        self.simulate("live-srt-1080i", "alpha", "--fault", "srt-wrong-key")
        text = self.run_tool("diagnose", "alpha", "--window", "3s", "--format", "openmetrics", status=2)[0]
        self.assertIn('decoder_finding_active{decoder="alpha",id="link.not-decrypting",severity="critical",stage="link"} 1\n', text)
        self.assertIn('decoder_stage_state{decoder="alpha",stage="link",decoder_stage_state="stopped"} 1\n', text)
        self.assertTrue(text.endswith("# EOF\n"))

    def test_a_host_that_hangs(self):
        host = self.simulate()
        host.send_signal(signal.SIGSTOP)
        self.addCleanup(host.send_signal, signal.SIGCONT)
        # A short window alone cannot tell why nothing moves; the heartbeat that is missing then does, in one line.
        self.assertTrue(self.run_tool("diagnose", "alpha", "--window", "1500ms", status=3)[0].startswith("Cannot tell yet\n"))
        self.until(lambda: "hung" in self.run_tool("list")[0], 20)
        verdict, problem = self.run_tool("diagnose", "alpha", "--window", "1500ms", status=2)
        self.assertEqual((verdict, problem.count("\n"), problem.count("hung: no heartbeat")), ("", 1, 1))
        result = self.diagnose("alpha", "--window", "4s", status=2)
        self.assertEqual(self.ids(result), ["host.hung"])
        self.assertEqual({stage["state"] for stage in result["stages"]}, {"unknown"})

    def test_a_host_that_has_ended(self):
        host = self.simulate()
        host.kill()
        host.wait()
        self.refused("diagnose", "alpha", "--window", "1s", part="ended", status=2)

    def test_no_decoder_is_refused(self):
        self.refused("diagnose", "nobody", part="nobody", status=3)
        self.refused("diagnose", part="live", status=3)
        self.refused("diagnose", "sample:idle", "--from", "2022-06-14T12:14:00Z", part="capture files", status=3)

    def test_a_capture_file(self):
        self.simulate("live-srt-1080i", "alpha", "--fault", "decoder-stalled", "--after", "6s")
        self.run_tool("capture", "alpha", "a.cap", "--every", "500ms", "--for", "16s")
        last = self.diagnose("a.cap", "--window", "3s", status=2)
        self.assertEqual(self.ids(last), ["vdecoder.stopped"])
        whole = self.diagnose("a.cap", "--window", "3s", "--from", "2020-01-01T00:00:00Z", status=2)
        self.assertEqual([episode["id"] for episode in whole["episodes"]], ["vdecoder.stopped"])
        self.assertIsNone(whole["episodes"][0]["end_time"])
        self.refused("diagnose", "a.cap", "--from", "2020-01-01T00:00:00Z", "--format", "openmetrics", part="metrics are of one moment", status=3)
        # The fault began some 10 s before the end, within a window.
        age = last["stages"][0]["last_good_time"] - whole["episodes"][0]["begin_time"]
        self.assertTrue(6 <= age <= 14, age)


if __name__ == "__main__":
    unittest.main()
