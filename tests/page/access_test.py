"""The page for everybody: names and roles, contrast, targets, widths, and the keyboard alone."""
import pathlib
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

from browser import WIDE, PageTest, until

CHECKS = (pathlib.Path(__file__).parent / "access.js").read_text(encoding="utf-8")
WIDTHS = (320, 360, 768, 1024, 1440, 2560)


class Access(PageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.unit.simulate("alpha")
        cls.unit.simulate("trouble", scenario="trouble")
        cls.unit.simulate("gone").send_signal(19)
        cls.unit.serve()

    def check(self, *names):
        for name in names:
            with self.subTest(name):
                self.assertEqual(self.run_script(CHECKS, name), [])

    def open_everything(self):
        self.run_script("for (const e of document.querySelectorAll('details')) e.open = true;"
                        "if (document.querySelector('#plots').getAttribute('aria-pressed') === 'false') document.querySelector('#plots').click();"
                        "const f = document.querySelector('#filter'); f.value = 'tdemux.'; f.dispatchEvent(new Event('input'))")
        until(lambda: self.text("#report") and self.texts("#fieldlist > div"), "report and fields")

    def in_all_looks(self, *names):
        for scheme in ("dark", "light"):
            self.prefer(scheme)
            for width in (360, 768, 1440):
                self.size(width, 900)
                with self.subTest(scheme=scheme, width=width):
                    self.check(*names)

    def test_a_decoder_in_trouble(self):
        self.open("trouble")
        until(lambda: len(self.texts("#findings h3")) >= 3, "the findings", 40)
        self.open_everything()
        self.check("references", "headings")
        self.in_all_looks("contrast", "targets")

    def test_a_decoder_that_is_not_live(self):
        self.browser.get(self.unit.origin + "/?decoder=gone")
        until(lambda: self.text("#notlive-head") == "NOT LIVE", "that it is not live")
        self.check("references")
        self.in_all_looks("contrast", "targets")

    def test_all_decoders(self):
        self.open()
        until(lambda: any(self.texts("#decoders .d-verdict")), "a verdict")
        self.check("references", "headings")
        self.in_all_looks("contrast", "targets", "sideways")

    def test_nothing_is_wider_than_the_window(self):
        self.open("trouble")
        self.open_everything()
        for width in WIDTHS:
            self.size(width, 900)
            with self.subTest(width=width):
                self.check("sideways")

    def test_names_and_roles(self):
        self.open("trouble")
        self.open_everything()
        self.browser.execute_cdp_cmd("Accessibility.enable", {})
        nodes = self.browser.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
        controls = []
        for node in nodes:
            if node.get("ignored"):
                continue
            role = node["role"]["value"]
            focusable = any(one["name"] == "focusable" and one["value"]["value"] for one in node.get("properties", []))
            if role in ("image", "slider", "button", "link", "searchbox", "radio") or (focusable and role != "RootWebArea"):
                name = node.get("name", {}).get("value", "").strip()
                controls.append((role, name))
        self.assertGreater(len(controls), 60)
        # What is the target of a link to a place may be focused by it, without being a control.
        self.assertEqual([one for one in controls if not one[1] and one[0] != "listitem"], [])
        roles = {role for role, _ in controls}
        self.assertTrue({"button", "link", "slider", "radio", "searchbox", "image"} <= roles, roles)
        self.assertNotIn("generic", roles)

    def press(self, *keys):
        ActionChains(self.browser, duration=0).send_keys(*keys).perform()

    def focused(self):
        return self.run_script("const e = document.activeElement; return e.id || e.getAttribute('href') || e.dataset.field ||"
                               "(e.closest('.name') ? e.closest('.stage').id : e.closest('details') ? `${e.closest('details').id} ${e.tagName}` : e.tagName)")

    def test_the_order_of_the_focus(self):
        self.open("trouble")
        until(lambda: len(self.texts("#findings h3")) >= 3, "the findings", 40)
        expected = ["#chain", "#findings-head", "#report-block", "#fields-block", "./", "hold", "first-link", "counts-link", "time"]
        stages = ["network", "link", "ts", "clock", "framer", "vdecoder", "output", "audio", "metadata", "buffering"]
        seen = []
        for _ in range(120):
            self.press(Keys.TAB)
            where = self.focused()
            if where == "BODY":
                break
            self.check("focus")
            seen.append(where)
        self.assertEqual(seen[:len(expected)], expected)
        rows = [one[len("stage-"):] for one in seen if one.startswith("stage-")]
        self.assertEqual(rows, stages)
        self.assertEqual(seen[-2:], ["report-block SUMMARY", "fields-block SUMMARY"])
        fields = seen[seen.index("stage-buffering"):-2]
        self.assertTrue(any(one.startswith("tdemux.") for one in fields), fields)
        self.assertEqual([one for one in fields if one == "BODY"], [])

    def focus(self, selector):
        self.run_script("document.querySelector(arguments[0]).focus()", selector)

    def test_the_keyboard_alone(self):
        self.open("alpha")
        until(lambda: self.text("#headline") == "Healthy", "the verdict")
        self.focus("#stage-network .name button")
        self.press(Keys.ARROW_DOWN)
        self.assertEqual(self.focused(), "stage-link")
        self.press(Keys.END)
        self.assertEqual(self.focused(), "stage-buffering")
        self.press(Keys.HOME, Keys.ARROW_DOWN, Keys.ENTER)
        self.assertTrue(self.text("#more-link"))
        self.press(Keys.TAB)
        name = self.focused()
        self.assertTrue(name.startswith("tdemux."), name)
        self.press(Keys.ENTER)
        self.assertEqual((self.focused(), self.text("#meaning-name")), ("meaning", name))
        self.assertRegex(self.text("#meaning-text"), r"\w+ \w+.*\.")
        self.press(Keys.ESCAPE)
        self.assertEqual((self.focused(), self.text("#meaning")), (name, ""))
        self.focus("#time")
        self.press(Keys.PAGE_DOWN)
        self.assertRegex(self.text("#time-label"), r"\d\d:\d\d:\d\d")
        self.assertIn("ago", self.run_script("return document.querySelector('#time').getAttribute('aria-valuetext')"))
        self.assertEqual(len(self.texts(".qu.at")), 10)
        self.press(Keys.ESCAPE)
        self.assertEqual((self.text("#time-label"), self.texts(".qu.at")), ("Time", []))
        # Updates go on below the focus and leave it where it is.
        self.focus("#stage-link .field")
        figures = self.texts("#stages .cells")
        until(lambda: self.texts("#stages .cells") != figures, "an update")
        self.assertEqual(self.focused(), name)
        self.focus("#hold")
        self.press(Keys.SPACE)
        self.assertEqual(self.live(), "held")

    def test_forced_colours_and_reduced_motion(self):
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "forced-colors", "value": "active"},
                                                                                 {"name": "prefers-reduced-motion", "value": "reduce"}]})
        self.size(*WIDE)
        self.open("trouble")
        until(lambda: len(self.texts("#findings h3")) >= 3, "the findings", 40)
        self.check("contrast")
        first = self.run_script("return getComputedStyle(document.querySelector('[data-first]')).outlineStyle")
        self.assertEqual(first, "solid")
        # The fail-safe is a step and no motion: it stays.
        self.assertEqual(self.run_script("return getComputedStyle(document.querySelector('#expired')).animationName"), "expire")


if __name__ == "__main__":
    unittest.main(verbosity=2)
