"""A server of simulated decoders, and a headless Chromium that looks at its page."""
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import unittest
import urllib.error
import urllib.parse
import urllib.request

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

DECSTATS = os.environ["DECSTATS"]
SERVER = os.environ["DECSTATS_SERVE"]
os.environ["no_proxy"] = "localhost,127.0.0.1"
WIDE = (1440, 900)


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


class Unit:
    """A directory of live decoders and a server of them."""

    def __init__(self, *options):
        self.directory = pathlib.Path(tempfile.mkdtemp())
        self.live = self.directory / "live"
        self.live.mkdir()
        self.options = options
        self.port = free_port()
        self.origin = "http://127.0.0.1:%d" % self.port
        self.processes = []
        self.server = None

    def start(self, *command):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, cwd=self.directory)
        self.processes.append(process)
        return process

    def simulate(self, name, *more, scenario="live-srt-1080i"):
        process = self.start(DECSTATS, "simulate", scenario, "--name", name, "--directory", str(self.live), *more)
        until(lambda: (self.live / (name + ".decstats")).exists(), "the simulated decoder")
        return process

    def serve(self):
        self.server = self.start(SERVER, "--listen", "127.0.0.1:%d" % self.port, "--directory", str(self.live), *self.options)

        def is_healthy():
            try:
                return urllib.request.urlopen(self.origin + "/-/healthy", timeout=2).status == 200
            except OSError:
                return False

        until(is_healthy, "the server")

    def ask(self, path):
        """JSON that the server answers, or None."""
        try:
            with urllib.request.urlopen(self.origin + "/api/v1/" + path, timeout=5) as answer:
                return json.load(answer)
        except urllib.error.HTTPError:
            return None

    def close(self):
        for process in self.processes:
            if process.poll() is None:
                process.send_signal(signal.SIGCONT)
                process.kill()
            process.wait()
        shutil.rmtree(self.directory, ignore_errors=True)


def until(condition, what, seconds=20):
    """Waits for something that has to come, and gives it."""
    end = time.monotonic() + seconds
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError("it did not come within %d s: %s" % (seconds, what))
        time.sleep(0.05)


class PageTest(unittest.TestCase):
    """Tests with one browser and one unit. Each ends with nothing in the console and no request to anybody else."""

    @classmethod
    def setUpClass(cls):
        options = Options()
        profile = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, profile, ignore_errors=True)
        for argument in ("--headless=new", "--no-sandbox", "--no-proxy-server", "--no-first-run", "--disable-background-networking",
                         "--disable-component-update", "--user-data-dir=" + profile):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        service = Service(shutil.which("chromedriver"))
        cls.browser = webdriver.Chrome(service=service, options=options)
        cls.addClassCleanup(cls.browser.quit)
        cls.browser.set_page_load_timeout(20)
        cls.browser.set_script_timeout(20)
        cls.unit = Unit()
        cls.addClassCleanup(cls.unit.close)

    def setUp(self):
        self.may_fail = []  # parts of messages in the console that a test brings about
        self.size(*WIDE)
        self.prefer("dark")

    def tearDown(self):
        entries = self.browser.get_log("browser")
        bad = [one["message"] for one in entries if not any(part in one["message"] for part in self.may_fail)]
        self.assertEqual(bad, [], "in the console")
        for entry in self.browser.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                url = message["params"]["request"]["url"]
                is_ours = urllib.parse.urlsplit(url).hostname == "127.0.0.1"
                self.assertTrue(is_ours or url.startswith(("data:", "about:", "chrome://")), url)
        self.browser.get("about:blank")

    def size(self, width, height):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                     {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def prefer(self, scheme):
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def open(self, decoder=None, unit=None):
        """Opens the page of a decoder, or of all, and waits until it is live."""
        self.browser.get((unit or self.unit).origin + ("/?decoder=" + decoder if decoder else "/"))
        self.until_live()

    def until_live(self, seconds=20):
        until(lambda: self.live() == "live" and (self.text("#headline") != "Waiting for the first data" or self.text("#decoders")), "live data", seconds)

    def run_script(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def live(self):
        return self.run_script("return document.documentElement.dataset.live")

    def text(self, selector):
        """The text of an element as it is shown; "" if it is hidden."""
        return self.run_script("const e = document.querySelector(arguments[0]); return e && e.checkVisibility() ? e.innerText : ''", selector).strip()

    def texts(self, selector):
        return self.run_script("return [...document.querySelectorAll(arguments[0])].filter((e) => e.checkVisibility()).map((e) => e.innerText.trim())", selector)

    def states(self):
        """The word of the state of each stage."""
        return self.texts(".stage .state b")

    def not_live(self):
        """What is not live does not look so."""
        self.assertEqual(self.live(), "gone")
        self.assertEqual(self.text("#notlive-head"), "NOT LIVE")
        self.assertEqual(self.text("#fresh b"), "Not live")
        self.assertTrue(self.run_script("return document.title").startswith("NOT LIVE"))
        self.assertEqual([one for one in self.states() if not one.startswith(("was ", "had "))], [])
        self.assertEqual((self.text("#action"), self.text("#hold")), ("", ""))
        self.assertRegex(self.text("#kicker"), r"^Last known, \d\d:\d\d:\d\d UTC$")
        colours = self.run_script("return [...new Set([...document.querySelectorAll('.stage .state, .gutter')].map((e) => getComputedStyle(e).color))]")
        self.assertEqual(len(colours), 1, colours)
