"""The page in a browser: it shows what the server says, moves, and never looks live when it is not."""
import pathlib
import re
import signal
import time
import unittest

from browser import PageTest, Unit, until

DEAD_SCRIPT = "for (let i = 1; i < 100000; ++i) { clearTimeout(i); clearInterval(i); } window.fetch = () => new Promise(() => {});"
FAILSAFE = "const style = (selector) => getComputedStyle(document.querySelector(selector)); " \
           "return [style('#expired').visibility, style('#fresh').visibility, style('main').filter]"


class Page(PageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.unit.simulate("alpha")
        cls.unit.simulate("faulty", "--fault", "srt-wrong-key", "--after", "6s")
        cls.unit.simulate("extreme", scenario="extreme")
        cls.unit.simulate("idle", scenario="idle")
        cls.unit.serve()

    def figure(self, stage, column):
        """A figure of a row as a number: 0 in, 1 out, 2 lost."""
        text = self.texts("#stage-%s .cells .n" % stage)[column]
        self.assertRegex(text, r"^[\d\u202f.]+$")
        return float(text.replace("\u202f", ""))

    def test_a_healthy_decoder(self):
        self.open("alpha")
        until(lambda: self.text("#headline") == "Healthy", "the verdict")
        self.assertEqual(self.states(), ["Working"] * 10)
        titles = [stage["title"] for stage in self.unit.ask("decoders/alpha/findings")["stages"]]
        self.assertEqual(self.texts(".stage .name"), titles)
        self.assertEqual(self.text("#decoder"), "alpha")
        self.assertTrue(self.unit.ask("decoders/alpha")["instance"]["id"].startswith(self.text("#instance")))
        self.assertEqual(self.run_script("return document.title"), "Healthy \u00b7 alpha")
        # The simulated stream has 12.8 Mbit/s in 1220 packets, and 29.97 pictures a second.
        until(lambda: all("\u2013" not in one for one in self.texts("#stages .cells div:nth-child(2) .n")), "the rates")
        self.assertAlmostEqual(self.figure("network", 0), 12.8, delta=0.5)
        self.assertAlmostEqual(self.figure("link", 1), 1220, delta=60)
        self.assertAlmostEqual(self.figure("output", 1), 29.97, delta=2)
        self.assertEqual(self.figure("framer", 2), 0)
        # What flows through the transport stream is counted as the diagnosis counts it: in its own packets.
        stages = {stage["id"]: stage for stage in self.unit.ask("decoders/alpha/findings")["stages"]}
        for column, way in ((0, "in"), (1, "out")):
            self.assertLess(stages["ts"][way], 300)
            self.assertAlmostEqual(self.figure("ts", column), stages["ts"][way], delta=30)
        self.assertEqual(self.texts(".ids dt"), ["Instance", "Stream up", "Host started"])
        self.assertIn("RTT", self.text("#words-link"))
        self.assertIn("1920\u00d71080i29.97", self.text("#words-framer"))

    def test_rates_move_and_plots_grow(self):
        self.open("alpha")
        seen, drawn = set(), set()

        def moves():
            seen.add(self.text("#stage-network .cells .n"))
            drawn.add(self.run_script("return document.querySelector('#stage-ts .trace')?.getAttribute('d')"))
            return len(seen) > 1 and len(drawn) > 1

        until(moves, "other rates")
        path = self.run_script("return document.querySelector('#stage-ts .trace').getAttribute('d')")
        self.assertRegex(path, r"^M[\d.]+ [\d.]+L[\d.]+ [\d.]+")

    def test_the_past_is_there_at_once(self):
        def remembered():
            now = time.time()
            history = self.unit.ask("decoders/alpha/history?field=tdemux.bit_rate&from=%.0f&to=%.0f" % (now - 600, now))
            return len(history["times"]) if history else 0

        until(lambda: remembered() >= 12, "a past")
        self.open("alpha")
        opened = time.monotonic()
        trace = "return document.querySelector('#stage-network .trace')?.getAttribute('d') ?? ''"
        until(lambda: len(re.findall("[ML]", self.run_script(trace))) >= 12, "the past")
        self.assertLess(time.monotonic() - opened, 10)  # of its own, the page has a sample a second

    def test_a_fault_appears(self):
        self.open("faulty")
        opened = time.monotonic()
        found = until(lambda: (self.unit.ask("decoders/faulty/findings") or {}).get("findings"), "a finding", 40)
        self.assertEqual([one["id"] for one in found], ["link.not-decrypting"])
        until(lambda: "link.not-decrypting" in self.texts("#findings .code"), "the finding")
        until(lambda: self.text("#stage-link .state b") == "Stopped", "the state")
        self.assertEqual(self.text("#first-link"), "Link")
        # The headline is the fault itself until the picture is gone, which is the headline then.
        self.assertRegex(self.text("#place"), "^((For|%s, for) [0-9][^,]*)?$" % re.escape(found[0]["title"] + ": " + found[0]["detail"]))
        self.assertEqual(self.text("#action"), "Do now: " + found[0]["action"])
        self.assertEqual(self.text("#stage-link .state .first"), "First problem")
        self.assertEqual(self.texts("#stage-link .ref"), ["1"])
        self.assertTrue(self.run_script("return document.title").startswith("Stopped at Link"))
        self.assertEqual(self.run_script("return document.querySelectorAll('[data-first]').length"), 1)
        until(lambda: self.text("#stage-output .state b") == "No input", "what follows")
        time.sleep(max(0, opened + 7 - time.monotonic()))
        self.assertEqual(self.run_script(FAILSAFE)[:2], ["hidden", "visible"])  # longer than the style sheet waits: updates wind it back

    def test_numbers_are_exact(self):
        self.open("extreme")
        self.run_script("document.querySelector('#fields-block').open = true; const f = document.querySelector('#filter'); f.value = 'tdemux.received_bytes';"
                        "f.dispatchEvent(new Event('input'))")
        shown = until(lambda: self.texts("#fieldlist dd:nth-child(2) span:first-child"), "the field")[0]
        exact = self.unit.ask("decoders/extreme")["components"]["tdemux"]["received_bytes_s"]
        self.assertEqual(re.sub(r"\D", "", shown), exact)
        self.assertIn("bytes", self.text("#fieldlist dd:nth-child(3)"))

    def test_an_idle_decoder(self):
        self.open("idle")
        until(lambda: self.text("#headline") == "Idle", "the verdict")
        self.assertEqual(self.states(), ["Idle"] * 10)
        self.assertEqual(set(self.texts("#stages .cells .n")), {"\u2013"})

    def test_all_decoders(self):
        self.open()
        until(lambda: "Healthy" in self.texts("#decoders .d-verdict"), "the verdicts")
        self.unit.simulate("zz-worst", "--fault", "srt-wrong-key")
        self.unit.simulate("a-good-one", "--for", "30s")
        until(lambda: "zz-worst" in self.texts("#decoders .d-name"), "a decoder that has come")
        # The worst first, and among those alike by name.
        until(lambda: self.unit.ask("decoders/zz-worst/findings")["verdict"]["state"] == "stopped", "the fault")
        worst_first = ["stopped", "degraded", "unknown", "no_input", "working", "idle"]

        def in_order():
            place = {one["decoder"]: (worst_first.index(one["verdict"]["state"]), one["decoder"]) for one in self.unit.ask("decoders")["decoders"]
                     if one["state"] == "live"}
            shown = self.texts("#decoders .d-name")
            return {"zz-worst", "a-good-one", "alpha", "idle"} <= set(shown) <= set(place) and shown == sorted(shown, key=place.get) and shown

        shown = until(in_order, "the order")
        self.assertEqual(shown[-1], "idle")
        self.assertLess(shown.index("zz-worst"), shown.index("a-good-one"))
        self.unit.simulate("late-comer", "--for", "8s")
        until(lambda: "late-comer" in self.texts("#decoders .d-name"), "a decoder that has come")
        self.run_script("document.querySelector('[data-key=alpha] a').focus()")
        until(lambda: "late-comer" not in self.texts("#decoders .d-name"), "a decoder that has gone")
        self.assertEqual(self.run_script("return document.activeElement.innerText"), "alpha")
        self.run_script("document.activeElement.click()")
        until(lambda: self.text("#decoder") == "alpha", "the decoder")

    def test_a_name_that_is_not_there(self):
        self.may_fail = ["404"]
        self.browser.get(self.unit.origin + "/?decoder=nobody")
        until(lambda: "There is no decoder nobody here" in self.text("#unknown"), "that it is not there")
        self.assertEqual((self.live(), self.text("#notlive")), ("live", ""))
        self.assertIn("alpha", self.texts("#decoders .d-name"))
        self.unit.simulate("nobody", "--for", "15s")
        until(lambda: self.text("#decoder") == "nobody" and self.text("#headline") == "Healthy", "the decoder, which has come")
        self.assertEqual(self.text("#unknown"), "")

    def test_a_capture_of_another_day_has_its_date(self):
        unit = Unit()
        self.addCleanup(unit.close)
        captured = pathlib.Path(__file__).parent.parent / "capture" / "released" / "version-1.dcap"
        unit.options = (str(captured),)
        unit.serve()
        one, = unit.ask("decoders")["decoders"]
        day = unit.ask("decoders/" + one["decoder"])["taken_at"][:10]
        self.browser.get(unit.origin + "/")
        until(lambda: day in self.text("#notlive-what"), "the date")
        self.assertRegex(self.text("#kicker"), r"^Last known, %s \d\d:\d\d:\d\d UTC$" % day)

    def test_hold(self):
        self.open("alpha")
        self.run_script("document.querySelector('#hold').click()")
        self.assertEqual((self.live(), self.text("#notlive-head"), self.text("#hold")), ("held", "HELD", "Resume"))
        self.assertEqual(set(self.states()), {"was working"})
        figures = self.texts("#stages .cells")
        time.sleep(2.2)
        self.assertEqual(self.texts("#stages .cells"), figures)
        self.run_script("document.querySelector('#hold').click()")
        until(lambda: self.live() == "live" and self.texts("#stages .cells") != figures, "it goes on")

    def test_the_report_at_both_levels(self):
        self.open("alpha")
        self.run_script("document.querySelector('#report-block').open = true")
        until(lambda: "Received Packets" in self.text("#report"), "the report")
        lines = self.text("#report").count("\n")
        self.run_script("document.querySelector('[value=debug]').click()")
        until(lambda: self.text("#report").count("\n") > lines, "the debug level")

    def test_a_host_that_ends_hangs_or_restarts(self):
        host = self.unit.simulate("host")
        until(lambda: (self.unit.ask("decoders/host/findings") or {}).get("stages"), "the decoder")
        self.open("host")
        host.send_signal(signal.SIGSTOP)
        until(lambda: "hangs" in self.text("#notlive-what"), "that it hangs")
        self.not_live()
        host.send_signal(signal.SIGCONT)
        until(lambda: self.live() == "live", "that it goes on")
        self.assertEqual(self.text("#notlive"), "")
        host.kill()
        host.wait()
        until(lambda: "stopped publishing" in self.text("#notlive-what"), "that it has ended")
        self.not_live()
        until(lambda: re.search(r"no data since \d\d:\d\d:\d\d", self.text("#marks")), "the hatching")
        time.sleep(1)  # with the time that it took to be seen, more than the longest step between two samples
        self.unit.simulate("host")
        until(lambda: self.live() == "live" and "decoder restarted" in self.text("#marks"), "the restart")
        self.assertRegex(self.text("#marks"), r"no data for \d+s")

    def test_a_script_that_dies(self):
        self.open("alpha")
        self.assertIn(self.run_script(FAILSAFE), (["hidden", "visible", "none"], ["hidden", "visible", "grayscale(0)"]))
        self.run_script(DEAD_SCRIPT)
        died = time.monotonic()
        until(lambda: self.run_script(FAILSAFE) == ["visible", "hidden", "grayscale(1)"], "the fail-safe")
        self.assertGreater(time.monotonic() - died, 4)
        self.assertTrue(self.text("#expired").startswith("NOT LIVE"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
