"""What decstats serve answers: the same as the other commands print; the page; what it refuses."""
import gzip
import json
import shutil
import subprocess
import time
import unittest

from host import TOOL
from serving import ServingTest, StillHost


def without_update(exposition):
    return [line for line in exposition.splitlines() if not line.startswith("decoder_last_update_timestamp_seconds{")]


class Answers(ServingTest):
    def test_as_the_other_commands_print_it(self):
        self.kill(self.simulate("trouble", "ended"))  # its records stand still, so the same is printed at any time
        still = StillHost(self, "still")
        self.assertTrue(still.publisher)
        server = self.serve()

        for level in ("default", "debug"):
            report = self.get(server, "/api/v1/decoders/ended/report?level=" + level)
            self.assertEqual(report.headers["Content-Type"], "text/plain; charset=us-ascii")
            self.assertEqual(report.body.decode(), self.run_tool("show", "ended", "--level", level)[0])
        self.assertEqual(self.get(server, "/api/v1/decoders/ended/report").body.decode(), self.run_tool("show", "ended")[0])
        one = self.get(server, "/api/v1/decoders/ended/report?level=debug&component=clock-recovery").body.decode()
        self.assertEqual(one, self.run_tool("show", "ended", "--level", "debug", "--component", "clock-recovery")[0])

        for query, more in (("", ()), ("?raw", ("--raw",))):
            served = self.json(server, "/api/v1/decoders/ended" + query)
            self.assertEqual(served.pop("state"), "stale")
            self.assertIn("stale: its host has ended", served.pop("problem"))
            self.assertRegex(served.pop("now"), r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{9}Z$")
            self.assertEqual(served, json.loads(self.run_tool("show", "ended", "--format", "json", *more)[0]))

        self.assertEqual(self.json(server, "/api/v1/fields"), json.loads(self.run_tool("describe", "--format", "json")[0]))
        listed = {one["decoder"]: one for one in self.json(server, "/api/v1/decoders")["decoders"]}
        for name, one in self.listed().items():
            for record in [*one["records"].values(), *listed[name]["records"].values()]:
                del record["age"]
            verdict = listed[name].pop("verdict", None)  # what only a server that looks again and again can tell, of those that live
            self.assertEqual(verdict is not None, one["state"] == "live", verdict)
            self.assertEqual(listed[name], one)

    def test_ages_of_a_live_decoder_go_on(self):
        still = StillHost(self, "still")
        self.assertTrue(still.publisher)
        server = self.serve()

        def same():
            """The tool before and after says the same in the same second; then the server has to."""
            before = self.run_tool("show", "still", "--level", "debug")[0]
            served = self.get(server, "/api/v1/decoders/still/report?level=debug").body.decode()
            after = self.run_tool("show", "still", "--level", "debug")[0]
            return before == served == after

        self.until(same)
        first = self.get(server, "/api/v1/decoders/still/report").body
        self.until(lambda: self.get(server, "/api/v1/decoders/still/report").body != first, 5)

    def test_metrics(self):
        still = StillHost(self, "still")
        self.assertTrue(still.publisher)
        server = self.serve()
        for name, headers, kind in (("prometheus", {}, "text/plain; version=0.0.4; charset=utf-8"),
                                    ("openmetrics", {"Accept": "application/openmetrics-text; version=1.0.0"},
                                     "application/openmetrics-text; version=1.0.0; charset=utf-8")):
            answer = self.get(server, "/metrics", headers=headers)
            self.assertEqual(answer.headers["Content-Type"], kind)
            shown = without_update(self.run_tool("show", "still", "--format", name)[0])
            served = without_update(answer.body.decode())
            self.assertEqual([line for line in served if line in set(shown)], shown)
            for line in set(served) - set(shown):  # what only a server that looks again and again can tell
                self.assertRegex(line, r"^(# [A-Z]+ )?decoder_(finding_active|stage_state)")

            packed = self.get(server, "/metrics", headers={**headers, "Accept-Encoding": "gzip"})
            self.assertEqual(packed.headers["Content-Encoding"], "gzip")
            self.assertEqual(packed.headers["Content-Type"], kind)

            def same():
                """What the server found between two answers is in the later one alone."""
                plain = self.get(server, "/metrics", headers=headers)
                packed = self.get(server, "/metrics", headers={**headers, "Accept-Encoding": "gzip"})
                return without_update(gzip.decompress(packed.body).decode()) == without_update(plain.body.decode())

            self.until(same)

        head = self.get(server, "/metrics", method="HEAD")
        self.assertEqual((head.status, head.body), (200, b""))
        self.assertGreater(int(head.headers["Content-Length"]), 10000)

    def test_page(self):
        server = self.serve()
        page = self.get(server, "/")
        self.assertEqual((page.status, page.headers["Content-Type"]), (200, "text/html; charset=utf-8"))
        for content in ("script-src 'self'", "default-src 'none'", "frame-ancestors 'none'"):
            self.assertIn(content, page.headers["Content-Security-Policy"])
        self.assertNotIn("unsafe", page.headers["Content-Security-Policy"])
        self.assertEqual(page.headers["X-Content-Type-Options"], "nosniff")
        self.assertFalse([name for name in page.headers if name.lower().startswith("access-control")])
        again = self.get(server, "/", headers={"If-None-Match": page.headers["ETag"]})
        self.assertEqual((again.status, again.body), (304, b""))
        packed = self.get(server, "/", headers={"Accept-Encoding": "gzip"})
        self.assertEqual(gzip.decompress(packed.body), page.body)
        for path, kind in (("/page.js", "text/javascript; charset=utf-8"), ("/page.css", "text/css; charset=utf-8"), ("/icon.svg", "image/svg+xml")):
            self.assertEqual(self.get(server, path).headers["Content-Type"], kind)
        self.refusal(server, "/index.html", 404)
        self.assertEqual(self.get(server, "/-/healthy").body, b"healthy\n")

    def test_what_is_refused(self):
        StillHost(self, "still")
        server = self.serve()
        decoder = "/api/v1/decoders/still"
        for path in ("/api", "/api/v1/", "/api/v1/decoders/", "/api/v1/decoders//", "/api/v1/decoders/none", decoder + "/", decoder + "/reports",
                     decoder + "/report/x", "/metrics/", "//metrics", "/../etc/passwd", "/%2e%2e/etc/passwd", "/api/v1/decoders/%2e%2e%2fstill"):
            self.refusal(server, path, 404)
        plain = [field["name"] for field in self.json(server, "/api/v1/fields")["fields"] if "[]" not in field["name"]]
        for path, parts in ((decoder + "?row", ("row", "raw")), (decoder + "?raw=1", ("raw=1", "no value")),
                            (decoder + "/report?level=loud", ("level=loud", "default or debug")),
                            (decoder + "/report?level=debug&level=debug", ("level", "twice")),
                            (decoder + "/report?component=video", ("component=video", "vdecoder")),
                            (decoder + "/findings?window=5", ("window", "no parameter")),
                            (decoder + "/history?from=0", ("field", "missing")),
                            (decoder + "/history?field=tdemux.state", ("from", "missing")),
                            (decoder + "/history?field=tdemux.stat&from=0", ("field=tdemux.stat", "tdemux.state")),
                            (decoder + "/history?field=tdemux.sources[].pid&from=0", ("sources[].pid", "0 to ")),
                            (decoder + "/history?field=tdemux.state&from=yesterday", ("from=yesterday", "seconds")),
                            (decoder + "/history?field=tdemux.state&from=0", ("from", "3600 seconds")),
                            (decoder + "/history?field=tdemux.state&from=20&to=10", ("to", "before from")),
                            (decoder + "/history?from=0" + "".join("&field=" + name for name in plain[:33]), ("32",)),
                            ("/api/v1/decoders?x=1", ("x",)), ("/api/v1/fields?x=1", ("x",))):
            self.refusal(server, path, 400, *parts)
        past = self.json(server, decoder + "/history?from=%d&field=tdemux.state&field=tdemux.state" % time.time())
        self.assertEqual(list(past["fields"]), ["tdemux.state"])

    def test_without_the_server(self):
        alone = shutil.copy(TOOL[-1], self.directory / "decstats")
        ran = subprocess.run([alone, "serve"], capture_output=True, text=True, check=False)
        self.assertEqual((ran.returncode, ran.stdout), (2, ""))
        self.assertIn("decstats-serve: No such file or directory; it is in a package of its own, decstats-serve", ran.stderr)

    def test_sources_that_are_named(self):
        self.simulate("idle", "alpha")
        self.simulate("idle", "beta")
        server = self.serve("beta", "gamma")
        self.assertEqual([one["decoder"] for one in self.json(server, "/api/v1/decoders")["decoders"]], ["beta"])
        self.refusal(server, "/api/v1/decoders/alpha", 404)
        self.assertEqual(self.state(server, "gamma"), "missing")
        self.simulate("idle", "gamma")
        self.until(lambda: self.state(server, "gamma") == "live", 5)
        self.refused("serve", "beta", self.path("beta"), part="two sources")
        self.refused("serve", __file__, part="neither a decoder's name nor a capture file")
        self.refused("serve", "sample:idle", part="neither")


if __name__ == "__main__":
    unittest.main()
