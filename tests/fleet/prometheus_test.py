"""A real Prometheus scrapes decstats serve over living decoders: what it stores, what its rules and the dashboard make of it."""
import json
import os
import pathlib
import re
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

import expected
import exposition

DECSTATS = os.environ["DECSTATS"]
HOST = os.environ["COUNTING_HOST"]
RULES = pathlib.Path(os.environ["RULES"])
MAN = pathlib.Path(os.environ["MAN"])
SCRAPE = 1  # interval [s]
HEARTBEAT = 1  # interval [s]
PACKETS = 1000  # of a counting host, a second


def free_ports(count):
    """Ports that nobody listens on."""
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


def until(condition, what, seconds=30):
    """Waits for something that has to come, and returns it."""
    end = time.monotonic() + seconds
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError("it did not come: " + what)
        time.sleep(0.2)


@unittest.skipUnless(shutil.which("prometheus"), "prometheus, of the complete run, is not installed")
class Fleet(unittest.TestCase):
    """One unit with several decoders for all tests: it takes a while until its Prometheus has seen enough."""

    @classmethod
    def setUpClass(cls):
        cls.processes = []
        cls.addClassCleanup(cls.end)
        cls.directory = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.directory, ignore_errors=True)
        cls.live = cls.directory / "live"
        cls.live.mkdir()
        cls.serve_port, cls.port = free_ports(2)
        for name, scenario, *more in (("srt", "live-srt-1080i"), ("fec", "rtp-fec-2160p"), ("still", "extreme"), ("victim", "live-srt-1080i"),
                                      ("broken", "live-srt-1080i", "--fault", "srt-wrong-key")):
            process = cls.start(DECSTATS, "simulate", scenario, "--name", name, "--directory", str(cls.live), *more, stdout=subprocess.PIPE)
            process.stdout.readline()  # it has published
            if name == "victim":
                cls.victim = process
        cls.counting = cls.start(HOST, "counting", str(cls.live), "1000000000")
        cls.start(DECSTATS, "serve", "--listen", "127.0.0.1:%d" % cls.serve_port, "--directory", str(cls.live))
        cls.start_prometheus()
        until(lambda: cls.query('up == 1'), "a scrape")

    @classmethod
    def start_prometheus(cls):
        configuration = (RULES / "unit.yml").read_text()
        for old, new in (("_interval: 15s", "_interval: %ds" % SCRAPE), ("scrape_timeout: 5s", "scrape_timeout: %ds" % SCRAPE),
                         ("127.0.0.1:9720", "127.0.0.1:%d" % cls.serve_port)):
            if old not in configuration:
                raise AssertionError("unit.yml has no " + old)
            configuration = configuration.replace(old, new)
        (cls.directory / "unit.yml").write_text(configuration)
        for rules in RULES.glob("*.rules.yml"):
            shutil.copy(rules, cls.directory)
        with open(cls.directory / "prometheus.log", "wb") as log:
            cls.start("prometheus", "--config.file", str(cls.directory / "unit.yml"), "--storage.tsdb.path", str(cls.directory / "data"),
                      "--web.listen-address", "127.0.0.1:%d" % cls.port, stderr=log)

    @classmethod
    def start(cls, *command, **options):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, **options)
        cls.processes.append(process)
        return process

    @classmethod
    def end(cls):
        for process in cls.processes:
            if process.poll() is None:
                process.kill()
            process.wait()
            if process.stdout:
                process.stdout.close()

    @classmethod
    def api(cls, path, **parameters):
        """The data of an answer; None while nobody answers."""
        url = "http://127.0.0.1:%d/api/v1/%s?%s" % (cls.port, path, urllib.parse.urlencode(parameters, doseq=True))
        try:
            with urllib.request.urlopen(url, timeout=10) as answer:
                return json.load(answer)["data"]
        except urllib.error.HTTPError as error:
            if error.code == 503:  # it answers, and is not ready
                return None
            raise AssertionError("%s %s: %s" % (path, parameters, error.read().decode())) from None
        except OSError:
            return None

    @classmethod
    def query(cls, text):
        """The samples of an instant query as (labels, value), of a range as (labels, [(moment, value)...])."""
        data = cls.api("query", query=text)
        return data and [(one["metric"], one["value"][1] if "value" in one else [(float(t), v) for t, v in one["values"]])
                         for one in data["result"]]

    def run_tool(self, *arguments):
        return subprocess.run([DECSTATS, *arguments], stdout=subprocess.PIPE, check=True, timeout=30,
                              env={**os.environ, "DECSTATS_DIRECTORY": str(self.live)}).stdout.decode()

    def raw(self, name):
        return json.loads(self.run_tool("show", name, "--raw"))["components"]

    # ---- What is stored is what the records have ----

    def test_every_value_of_a_decoder_that_stands_still(self):
        families = exposition.read(self.run_tool("show", "still", "--format", "openmetrics"), openmetrics=True)
        stored = {(labels.pop("__name__"), tuple(sorted((k, v) for k, v in labels.items() if k not in ("job", "instance")))): value
                  for labels, value in self.query('{decoder="still"}')}
        compared = 0
        for family in families.values():
            for name, labels, value in family["samples"]:
                if name == "decoder_last_update_timestamp_seconds":
                    continue
                got = stored[name, tuple(sorted(labels.items()))]
                same = got == value or float(got) == float(value)
                self.assertTrue(same, "%s %s is %s, not %s" % (name, labels, got, value))
                compared += 1
        self.assertGreater(compared, 800)

    def test_the_counters_of_the_records(self):
        raw = self.raw("still")
        compared = 0
        for field in json.loads(self.run_tool("describe", "--format", "json"))["fields"]:
            metric = field["metric"]
            if not metric or metric["type"] != "counter" or metric["label"] or metric["factor"] != "1" or field["array"] or field["applies"]:
                continue
            value = raw[field["component"]]
            for part in expected.member_path(field, 0):
                value = value[part]
            stored = self.query('%s{decoder="still"}' % metric["name"])
            self.assertEqual([float(one) for _, one in stored], [float(value)] if value >= 0 else [], metric["name"])
            compared += 1
        self.assertGreater(compared, 100)

    def test_a_living_decoder_is_between_two_looks(self):
        before = self.raw("srt")["tdemux"]["tCounters"]["nNumReceivedPackets"]
        moment = time.time()
        metric = 'decoder_tdemux_received_packets_total{decoder="srt"}'
        until(lambda: float(self.query("timestamp(%s)" % metric)[0][1]) > moment + SCRAPE, "a scrape")
        stored = int(self.query(metric)[0][1])
        after = self.raw("srt")["tdemux"]["tCounters"]["nNumReceivedPackets"]
        self.assertLess(before, stored)
        self.assertLessEqual(stored, after)

    # ---- Hosts that go and come ----

    def test_a_restart_is_no_spike(self):
        received = 'decoder_tdemux_received_packets_total{decoder="counting"}'
        until(lambda: self.query("count_over_time(%s[1m]) >= 5" % received), "five scrapes")
        self.counting.kill()
        self.counting.wait()
        type(self).counting = self.start(HOST, "counting", str(self.live), "0")
        until(lambda: self.query("resets(%s[1m]) == 1" % received), "the restart")
        moment = time.time()
        until(lambda: self.query("timestamp(%s) > %f" % (received, moment + 6)), "six more seconds")
        rates = [float(value) for _, value in self.query("rate(%s[5s])[20s:1s]" % received)[0][1]]
        self.assertGreater(len(rates), 5)
        self.assertLess(max(rates), 1.5 * PACKETS)
        self.assertGreaterEqual(min(rates), 0)
        self.assertAlmostEqual(rates[-1], PACKETS, delta=0.3 * PACKETS)

    def test_a_killed_host_is_down_within_two_heartbeats(self):
        self.assertEqual(self.query('decoder_up{decoder="victim"}')[0][1], "1")
        until(lambda: self.query('decoder_stage_state{decoder="victim"}'), "the stages of what will be killed")
        self.victim.send_signal(signal.SIGKILL)
        self.victim.wait()
        killed = time.time()
        until(lambda: self.query('decoder_up{decoder="victim"} == 0'), "decoder_up 0")
        until(lambda: self.query('timestamp(decoder_up{decoder="victim"}) > %f' % (killed + 2 * HEARTBEAT + SCRAPE)), "two heartbeats")
        looks = self.query('decoder_up{decoder="victim"}[20s]')[0][1]
        late = [value for moment, value in looks if moment > killed + 2 * HEARTBEAT]
        self.assertTrue(late)
        self.assertEqual(set(late), {"0"})
        left = {labels["__name__"] for labels, _ in self.query('{decoder="victim", __name__!~"ALERTS.*|decoder:.+"}')}
        self.assertEqual(left, {"decoder_up", "decoder_last_update_timestamp_seconds"})

    # ---- Rules and dashboard ----

    def metrics_in(self, expression):
        """The names of the metrics that an expression reads."""
        without_texts = re.sub(r'"(\\.|[^"\\])*"', "", expression)
        return set(re.findall(r"\b(?:(?:decoder|job|job_stage_state|job_id)[_:][a-z0-9_:]+|up|scrape_[a-z_]+)\b(?! *[=!(])", without_texts))

    def test_rules_are_healthy_and_read_what_is_there(self):
        rules = [rule for group in self.api("rules")["groups"] for rule in group["rules"]]
        until(lambda: all(rule["health"] == "ok" for group in self.api("rules")["groups"] for rule in group["rules"]), "healthy rules")
        until(lambda: self.query("decoder:damaged_pictures:ratio_rate5m") and self.query("job:received_bytes:rate1m"), "recorded series")
        page = set(re.findall(r"^\.S[sh] (.*)$", (MAN / "decstats-findings.5").read_text(), re.M))
        alerts = [rule for rule in rules if rule["type"] == "alerting"]
        self.assertGreater(len(alerts), 0)
        for rule in rules:
            self.assertIsNotNone(self.query(rule["query"]), rule["name"])
            for metric in self.metrics_in(rule["query"]):
                self.assertTrue(self.query("count(%s)" % metric), "%s reads %s, which nothing has" % (rule["name"], metric))
        for rule in alerts:
            self.assertGreater(rule["duration"], 0, rule["name"])
            self.assertGreater(rule["keepFiringFor"], 0, rule["name"])
            self.assertIn(rule["labels"]["severity"], ("critical", "warning"))
            self.assertTrue(rule["annotations"]["summary"])
            anchor = re.fullmatch(r"decstats-findings\.5\.html#(.+)", " ".join(rule["annotations"]["runbook"].split()))[1]
            for section in [anchor] if "{{" not in anchor else re.findall(r"\{\{ else \}\}(\w+)\{\{", anchor):
                self.assertIn(section.replace("_", " "), page, rule["name"])

    def test_a_fault_raises_its_alert_and_no_other_decoder_has_one(self):
        until(lambda: self.query('ALERTS{alertname="DecoderNoPicture", decoder="broken", alertstate="firing"}'), "the alert", 75)
        findings = self.query('decoder_finding_active{decoder="broken"} == 1')
        self.assertEqual([labels["id"] for labels, _ in findings], ["link.not-decrypting"])
        alerts = [one for one in self.api("alerts")["alerts"] if one["labels"].get("decoder") == "broken" and one["state"] == "firing"]
        runbooks = {one["labels"]["alertname"]: one["annotations"]["runbook"] for one in alerts}
        self.assertEqual(runbooks["DecoderNoPicture"], "decstats-findings.5.html#link.not-decrypting")
        self.assertEqual(self.query('ALERTS{decoder=~"srt|fec"}'), [])

    def test_the_dashboard_has_data(self):
        dashboard = json.loads((RULES / "dashboard.json").read_text())
        until(lambda: self.query("decoder:link_lost_packets:ratio_rate5m"), "recorded series")
        until(lambda: self.query("decoder_finding_active == 1"), "a finding")
        for variable in dashboard["templating"]["list"]:
            if variable["type"] != "query":
                continue
            metric, label = re.fullmatch(r"label_values\((.+), (\w+)\)", variable["query"]["query"]).groups()
            self.assertTrue(self.api("label/%s/values" % label, **{"match[]": self.filled(metric)}), variable["name"])
        for annotation in dashboard["annotations"]["list"]:
            self.assertIsNotNone(self.query(self.filled(annotation["expr"])))
        identifiers = [panel["id"] for panel in dashboard["panels"]]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        queried = 0
        for panel in dashboard["panels"]:
            for target in panel.get("targets", []):
                self.assertTrue(self.query(self.filled(target["expr"])), "%s: %s" % (panel["title"], target["expr"]))
                queried += 1
        self.assertGreater(queried, 20)

    def filled(self, expression):
        """A query of the dashboard as Grafana sends it."""
        for name, value in (("$job", "decstats"), ("$instance", ".*"), ("$decoder", ".*"), ("$__rate_interval", "10s")):
            expression = expression.replace(name, value)
        self.assertNotIn("$", expression)
        return expression


if __name__ == "__main__":
    unittest.main()
