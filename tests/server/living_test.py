"""Decoders that come, live, hang and end, as decstats serve shows them: their state, findings and past."""
import json
import time
import unittest
import urllib.parse

from serving import ServingTest, StillHost


class Living(ServingTest):
    def test_comes_hangs_goes_on_and_ends(self):
        server = self.serve()
        self.assertEqual(self.json(server, "/api/v1/decoders")["decoders"], [])
        self.refusal(server, "/api/v1/decoders/alpha", 404, "alpha")
        self.refusal(server, "/api/v1/decoders/alpha/findings", 404, "alpha")

        host = self.simulate("live-srt-1080i", "alpha")
        self.until(lambda: self.get(server, "/api/v1/decoders/alpha").status == 200, 5)
        self.assertEqual(self.state(server, "alpha"), "live")
        metrics = self.get(server, "/metrics").body.decode()
        self.assertIn('decoder_up{decoder="alpha"} 1\n', metrics)
        self.assertIn("decoder_tdemux_received_packets_total{", metrics)

        packets = lambda: self.json(server, "/api/v1/decoders/alpha")["components"]["tdemux"]["received_packets"]
        before = packets()
        self.until(lambda: packets() > before, 5)

        self.kill(host)
        self.until(lambda: 'decoder_up{decoder="alpha"} 0\n' in self.get(server, "/metrics").body.decode(), 2)
        metrics = self.get(server, "/metrics").body.decode()
        self.assertNotIn("received_packets", metrics)
        self.assertIn('decoder_last_update_timestamp_seconds{decoder="alpha"} ', metrics)
        self.assertEqual(self.state(server, "alpha"), "stale")
        records = self.json(server, "/api/v1/decoders/alpha")
        self.assertGreater(records["components"]["tdemux"]["received_packets"], before)

        again = self.simulate("live-srt-1080i", "alpha")
        self.until(lambda: self.state(server, "alpha") == "live", 5)
        self.assertNotEqual(self.json(server, "/api/v1/decoders/alpha")["instance"], records["instance"])
        again.terminate()
        again.wait()
        self.until(lambda: self.state(server, "alpha") == "closed", 5)
        self.assertEqual(self.json(server, "/api/v1/decoders")["decoders"], [])
        self.assertNotIn("alpha", self.get(server, "/metrics").body.decode())
        self.assertEqual(self.json(server, "/api/v1/decoders/alpha")["decoder"], "alpha")
        last = self.json(server, "/api/v1/decoders/alpha/findings")
        self.assertEqual((last["state"], last["verdict"]["doubt"], last["verdict"]["exit_status"]), ("closed", "not_live", 3))
        self.assertIn("not live", last["verdict"]["place"])

    def test_hung(self):
        host = StillHost(self, "still", heartbeat=400)
        server = self.serve()
        self.until(lambda: self.state(server, "still") == "hung", 15)
        hung = self.json(server, "/api/v1/decoders/still")
        self.assertIn("no heartbeat", hung["problem"])
        shown = json.loads(self.run_tool("show", "still", "--format", "json")[0])
        self.assertEqual(hung["taken_at"], shown["taken_at"])
        self.assertEqual(hung["components"], shown["components"])
        metrics = self.get(server, "/metrics").body.decode()
        self.assertIn('decoder_up{decoder="still"} 0\n', metrics)
        self.assertNotIn("received_packets", metrics)
        host.beat()
        self.until(lambda: self.state(server, "still") == "live", 5)

    def test_findings(self):
        self.simulate("live-srt-1080i", "alpha", "--fault", "network-silent", "--after", "1500ms")
        server = self.serve()

        def findings():
            return self.json(server, "/api/v1/decoders/alpha/findings")

        self.until(lambda: findings()["verdict"]["state"] == "working", 5)
        healthy = findings()
        self.assertEqual((healthy["schema"], healthy["state"], healthy["episodes"]), ("decstats-diagnosis/1", "live", []))
        self.assertEqual(len(healthy["stages"]), 10)
        self.until(lambda: findings()["verdict"]["exit_status"] == 2, 8)
        found = findings()
        self.assertTrue(found["findings"])
        self.assertEqual(found["verdict"]["state"], "stopped")
        active = [line for line in self.get(server, "/metrics").body.decode().splitlines()
                  if line.startswith("decoder_finding_active{") and line.endswith(" 1")]
        self.assertTrue([line for line in active if 'id="%s"' % found["findings"][0]["id"] in line], active)

    def test_history(self):
        host = self.simulate("live-srt-1080i", "alpha")
        begin = time.time()
        server = self.serve()
        fields = ("tdemux.received_packets", "tdemux.state", "vframer.frame_rate", "tdemux.sources[0].pid", "tdemux.sources[63].pid")
        query = "?" + urllib.parse.urlencode([("field", field) for field in fields if self.is_field(field)] + [("from", "%.3f" % (begin - 60))])
        path = "/api/v1/decoders/alpha/history"
        self.until(lambda: len(self.json(server, path + query)["times"]) >= 3, 10)
        past = self.json(server, path + query)
        self.assertEqual((past["schema"], past["decoder"]), ("decstats-history/1", "alpha"))
        self.assertEqual(past["gaps"], [])
        count = len(past["times"])
        self.assertEqual(past["times"], sorted(past["times"]))
        self.assertGreaterEqual(past["times"][0], begin - 1)
        self.assertEqual(set(past["fields"]["tdemux.state"]), {"active"})
        packets = past["fields"]["tdemux.received_packets"]
        self.assertEqual((len(packets), packets), (count, sorted(packets)))
        self.assertLess(packets[0], packets[-1])
        instance = self.json(server, "/api/v1/decoders/alpha")["instance"]["id"]
        self.assertEqual(past["instances"], [{"at": past["times"][0], "id": instance}])
        part = self.json(server, path + "?field=tdemux.state&from=%.3f&to=%.3f" % (past["times"][1], past["times"][2]))
        self.assertEqual(part["times"], past["times"][1:3])

        self.kill(host)
        self.until(lambda: self.json(server, path + query)["gaps"], 10)
        gap, = self.json(server, path + query)["gaps"]
        self.assertGreaterEqual(gap["to"] - gap["from"], 3)

    def is_field(self, name):
        return name in {field["name"].replace("[]", "[0]") for field in json.loads(self.run_tool("describe", "--format", "json")[0])["fields"]}

    def test_captures(self):
        self.simulate("live-srt-1080i", "alpha")
        captures = self.directory / "captures"
        captures.mkdir()
        self.run_tool("capture", "alpha", str(captures / "alpha.dcap"), "--every", "200ms", "--for", "1s")
        server = self.serve("--captures", "captures")
        older = self.json(server, "/api/v1/decoders/alpha/history?field=tdemux.received_packets&from=%d" % (time.time() - 600))
        self.assertGreaterEqual(sum(b - a < 0.5 for a, b in zip(older["times"], older["times"][1:])), 3, older["times"])
        self.assertEqual(older["times"], sorted(older["times"]))

        other = self.serve(str(captures / "alpha.dcap"))
        one, = self.json(other, "/api/v1/decoders")["decoders"]
        self.assertEqual((one["decoder"], one["state"]), ("alpha", "captured"))
        shown = json.loads(self.run_tool("show", str(captures / "alpha.dcap"), "--format", "json")[0])
        served = self.json(other, "/api/v1/decoders/alpha")
        self.assertEqual(served["components"], shown["components"])
        self.assertEqual(served["taken_at"], shown["taken_at"])
        report = self.get(other, "/api/v1/decoders/alpha/report").body.decode()
        self.assertEqual(report, self.run_tool("show", str(captures / "alpha.dcap"))[0])
        self.assertNotIn("alpha", self.get(other, "/metrics").body.decode())
        past = self.json(other, "/api/v1/decoders/alpha/history?field=tdemux.received_packets&from=%d" % (time.time() - 600))
        self.assertGreaterEqual(len(past["times"]), 4)
        self.run_tool("capture", "alpha", str(captures / "alpha.dcap"), "--every", "200ms", "--for", "200ms")
        self.until(lambda: self.json(other, "/api/v1/decoders/alpha")["taken_at"] > shown["taken_at"], 5)


if __name__ == "__main__":
    unittest.main()
