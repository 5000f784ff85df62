"""decstats show and decstats describe, as people and scripts call them."""
import json
import os
import pathlib
import re
import shutil
import socket
import subprocess
import tempfile
import threading
import unittest

import exposition
import prometheus_client.openmetrics.parser
import prometheus_client.parser

DECSTATS = os.environ["DECSTATS"]
FORMATS = ("text", "json", "ndjson", "openmetrics", "prometheus")


def run(*arguments, status=0):
    """Standard output and standard error of a call that ends with this status."""
    finished = subprocess.run([DECSTATS, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    if finished.returncode != status:
        raise AssertionError("status %d: %s" % (finished.returncode, finished.stderr))
    return finished.stdout, finished.stderr


class Show(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def records(self):
        folder = self.directory / "records"
        folder.mkdir()
        run("sample", "live-srt-1080i", str(folder))
        return folder

    def refused(self, *arguments, part):
        out, err = run("show", *arguments, status=2)
        self.assertEqual(out, "")
        self.assertEqual(err.count("\n"), 1)
        self.assertIn(part, err)

    def test_every_sample_in_every_format(self):
        for line in run("demo", "--list")[0].splitlines():
            for format in FORMATS:
                out, err = run("show", "sample:" + line.split()[0], "--format", format, "--at", "2022-06-14T12:14:00Z")
                self.assertEqual(err, "")
                self.assertTrue(out.endswith("\n"))
                if "json" in format:
                    self.assertEqual(json.loads(out)["taken_at"], "2022-06-14T12:14:00.000000000Z")
                    self.assertEqual(format == "ndjson", out.count("\n") == 1)
                elif format != "text":
                    exposition.read(out, format == "openmetrics")

    def test_demo_and_print_are_views_of_the_same(self):
        moment = "1655208840"
        folder = self.records()
        demo = run("demo", "--level", "debug")[0].replace("\n", "")
        self.assertTrue(demo)
        file = str(folder / "tdemux.rec")
        self.assertEqual(run("print", "tdemux", file, "--at", moment), run("show", file, "--at", moment))
        whole = run("show", str(folder), "--at", moment)[0]
        self.assertIn(run("show", file, "--at", moment)[0], whole)

    def test_a_directory_tells_what_is_missing(self):
        folder = self.records()
        for name in ("audio", "clock-recovery"):
            (folder / (name + ".rec")).unlink()
        for format in FORMATS:
            out, err = run("show", str(folder), "--format", format)
            self.assertTrue(out)
            self.assertEqual(err, "decstats: %s: no record of audio, clock-recovery\n" % folder)
        self.assertEqual(run("show", str(folder), "--format", "json", "--component", "tdemux")[1], "")
        self.refused(str(folder), "--format", "json", "--component", "audio", part="no audio record")
        self.refused(str(folder), "--field", "audio.state", part="no audio record")

    def test_two_records_of_a_component_are_refused(self):
        folder = self.records()
        (folder / "other.rec").write_bytes((folder / "audio.rec").read_bytes())
        self.refused(str(folder), part="audio record")

    def test_components(self):
        out = run("show", "sample:idle", "--format", "json", "--component", "usage", "--component", "audio")[0]
        self.assertEqual(list(json.loads(out)["components"]), ["audio", "usage"])
        out = run("show", "sample:idle", "--format", "openmetrics", "--component", "usage")[0]
        families = [family for family in exposition.read(out, openmetrics=True) if not family.startswith("decoder_usage_")]
        self.assertEqual(families, ["decoder_last_update_timestamp_seconds"])

    def test_components_by_their_keys(self):
        call = ("show", "sample:idle", "--format", "json", "--at", "1655208840", "--component")
        self.assertEqual(run(*call, "clock_recovery"), run(*call, "clock-recovery"))

    def test_fields(self):
        source = "sample:live-srt-1080i"
        out = run("show", source, "--field", "tdemux.srt.rtt", "tdemux.sources[1].pid", "tdemux.state", "tdemux.fec.rows")[0]
        self.assertEqual(out, "tdemux.srt.rtt 24137 us\ntdemux.sources[1].pid 36 PID\ntdemux.state active\ntdemux.fec.rows - rows\n")
        out = run("show", source, "--field", "tdemux.sources[].pid", "--field", "tdemux.srt.rtt", "--format", "ndjson")[0]
        tdemux = json.loads(out)["components"].pop("tdemux")
        self.assertEqual(tdemux["srt"], {"rtt": 24137})
        self.assertEqual([set(element) for element in tdemux["sources"]], [{"index", "pid"}] * 4)

    def test_fields_of_components(self):
        out = run("show", "sample:idle", "--format", "ndjson", "--component", "tdemux", "--component", "audio", "--field", "audio.state")[0]
        self.assertEqual({name: list(fields) for name, fields in json.loads(out)["components"].items()}, {"audio": ["state"]})

    def test_raw_alone_is_json(self):
        call = ("show", "sample:idle", "--raw", "--at", "1655208840")
        self.assertEqual(run(*call), run(*call, "--format", "json"))
        self.assertEqual(json.loads(run(*call)[0])["schema"], "decstats-raw/1")

    def test_the_moment_of_files_is_when_they_were_written(self):
        folder = self.records()
        for path in folder.iterdir():
            os.utime(path, ns=(0, 1655208000 * 10**9))
        os.utime(folder / "audio.rec", ns=(0, 1655208840250000000))
        for source in (folder, folder / "audio.rec"):
            for format in ("json", "ndjson"):
                shown = json.loads(run("show", str(source), "--format", format)[0])
                self.assertEqual(shown["taken_at"], "2022-06-14T12:14:00.250000000Z")
            for format in ("openmetrics", "prometheus"):
                out = run("show", str(source), "--format", format)[0]
                self.assertIn('decoder_last_update_timestamp_seconds{decoder=""} 1655208840.250000000\n', out)
                self.assertNotIn("decoder_up", out)
        shown = json.loads(run("show", str(folder), "--format", "json", "--at", "1655208900")[0])
        self.assertEqual(shown["taken_at"], "2022-06-14T12:15:00.000000000Z")
        # The reports count to now.
        ages = [run("show", str(folder), *at)[0] for at in ((), ("--at", "mtime"))]
        self.assertNotEqual(ages[0], ages[1])

    def test_a_name_for_a_source_without_one(self):
        folder = self.records()
        self.assertEqual(json.loads(run("show", str(folder), "--format", "json", "--decoder", "studio-1")[0])["decoder"], "studio-1")
        for format in ("openmetrics", "prometheus"):
            for line in run("show", str(folder), "--format", format, "--decoder", "studio-1")[0].splitlines():
                self.assertTrue(line.startswith("#") or '{decoder="studio-1"' in line, line)
        for name in ("", "a b", ".x"):
            self.refused(str(folder), "--format", "json", "--decoder", name, part="--decoder: '%s' is no name of a decoder" % name)

    def test_files_that_are_not_needed_are_not_read(self):
        folder = self.records()
        for damaged in ("audio.rec", "other.rec"):
            (folder / damaged).write_bytes(b"xyz")
        (folder / "usage.rec").unlink()
        os.mkfifo(folder / "usage.rec")
        (folder / "vframer.rec").unlink()
        (folder / "vframer.rec").mkdir()
        whole = run("show", "sample:live-srt-1080i", "--field", "tdemux.state")
        self.assertEqual(run("show", str(folder), "--field", "tdemux.state"), whole)
        out, err = run("show", str(folder), "--component", "tdemux", "--format", "json")
        self.assertEqual((list(json.loads(out)["components"]), err), (["tdemux"], ""))
        (folder / "tdemux.rec").rename(folder / "by-size.rec")
        self.assertEqual(run("show", str(folder), "--field", "tdemux.state"), whole)
        self.refused(str(folder), "--component", "audio", part="audio.rec: 3 bytes")
        for name in ("usage", "vframer"):
            self.refused(str(folder), "--component", name, part="%s.rec: is not a regular file, so it is no record" % name)
        for damaged in ("audio.rec", "other.rec"):
            (folder / damaged).unlink()
        self.refused(str(folder), part="usage.rec: is not a regular file, so it is no record")

    def test_wrong_names_offer_the_nearest(self):
        self.refused("sample:idle", "--field", "tdemux.recieved_packets", part="tdemux.received_packets")
        self.refused("sample:idle", "--field", "rtt", part="'rtt' is no field; near it is tdemux.srt.rtt\n")
        self.refused("sample:idle", "--field", "tdemux.sources[10].pid", part="the elements of sources go from 0 to 9\n")

    def test_options_that_have_no_meaning_together(self):
        self.refused("sample:idle", "--raw", "--format", "text", part="--raw")
        self.refused("sample:idle", "--raw", "--format", "json", "--field", "tdemux.state", part="--raw")
        self.refused("sample:idle", "--format", "openmetrics", "--field", "tdemux.state", part="--field")
        self.refused("sample:idle", "--output", str(self.directory / "x"), part="--output")
        self.refused("sample:idle", "--format", "json", "--output", "", part="--output: '' is no file")
        self.refused("sample:idle", "--decoder", "studio-1", part="--decoder")
        self.refused("sample:idle", "--field", "tdemux.state", "--component", "audio", part="--field tdemux.state")
        self.assertEqual(os.listdir(self.directory), [])

    def test_an_output_file_is_replaced_whole(self):
        path = self.directory / "decoder.prom"
        call = ("show", "sample:live-srt-1080i", "--format", "prometheus", "--output", str(path))
        self.assertEqual(run(*call), ("", ""))
        whole = exposition.read(path.read_text(), openmetrics=False).keys()
        seen = []
        done = threading.Event()

        def read():
            while not done.is_set():
                seen.append(path.read_text() if path.exists() else "none")

        reader = threading.Thread(target=read)
        reader.start()
        for _ in range(30):
            run(*call)
        done.set()
        reader.join()
        for text in set(seen):
            self.assertEqual(exposition.read(text, openmetrics=False).keys(), whole)
        self.assertEqual(os.listdir(self.directory), ["decoder.prom"])

    def test_an_output_file_that_cannot_be_written(self):
        _, err = run("show", "sample:idle", "--format", "json", "--output", str(self.directory / "none" / "x"), status=1)
        self.assertIn("none", err)
        (self.directory / "folder").mkdir()
        run("show", "sample:idle", "--format", "json", "--output", str(self.directory / "folder"), status=1)
        self.assertEqual(os.listdir(self.directory), ["folder"])

    def test_an_output_that_is_not_a_regular_file_is_left_alone(self):
        path = self.directory / "x.prom"
        target = self.directory / "target"
        target.write_text("keep")
        node = socket.socket(socket.AF_UNIX)
        self.addCleanup(node.close)
        for make in (lambda: os.mkfifo(path), lambda: path.symlink_to(target), lambda: path.symlink_to("missing"),
                     lambda: node.bind(str(path))):
            make()
            before = path.lstat()
            self.refused("sample:idle", "--format", "prometheus", "--output", str(path), part=str(path))
            self.assertEqual((path.lstat().st_ino, path.lstat().st_mode), (before.st_ino, before.st_mode))
            self.assertEqual(sorted(os.listdir(self.directory)), ["target", "x.prom"])
            path.unlink()
        self.assertEqual(target.read_text(), "keep")

    def test_any_bytes_are_shown(self):
        for fill in (b"\xff", b"\x80", b"\x01"):
            for path in self.records().iterdir():
                path.write_bytes(fill * path.stat().st_size)
                for format in FORMATS[1:]:
                    self.assertTrue(run("show", str(path), "--format", format)[0])
                json.loads(run("show", str(path), "--format", "json", "--raw")[0])
                path.unlink()
            path.parent.rmdir()


class DiagnoseMetrics(unittest.TestCase):
    """decstats diagnose as metrics."""

    def samples(self):
        """The samples of the tool, with the exit status of each."""
        for line in run("demo", "--list")[0].splitlines():
            source = "sample:" + line.split()[0]
            finished = subprocess.run([DECSTATS, "diagnose", source, "--format", "json"], stdout=subprocess.PIPE, check=False)
            yield source, json.loads(finished.stdout), finished.returncode

    def test_they_are_what_the_json_says(self):
        for source, wanted, status in self.samples():
            for format in ("openmetrics", "prometheus"):
                families = exposition.read(run("diagnose", source, "--format", format, status=status)[0], format == "openmetrics")
                findings, states = families["decoder_finding_active"], families["decoder_stage_state"]
                self.assertEqual((findings["type"], states["type"]), ("gauge", "stateset" if format == "openmetrics" else "gauge"))
                active = [labels for _, labels, value in findings["samples"] if value == "1"]
                self.assertEqual(sorted((one["id"], one["severity"], one["stage"]) for one in active),
                                 sorted((one["id"], one["severity"], one["stage"]) for one in wanted["findings"]))
                could_be_seen = {labels["id"] for _, labels, _ in findings["samples"]}
                self.assertEqual(could_be_seen & {one["id"] for one in wanted["unseen"]}, set())
                self.assertEqual({labels["stage"]: labels["decoder_stage_state"] for _, labels, value in states["samples"] if value == "1"},
                                 {one["id"]: one["state"] for one in wanted["stages"]})
                self.assertEqual(list(exposition.stateset_problems({"decoder_stage_state": {**states, "type": "stateset"}})), [])

    def test_they_stand_beside_those_of_the_fields(self):
        for source, _, status in self.samples():
            for format, parser in (("openmetrics", prometheus_client.openmetrics.parser), ("prometheus", prometheus_client.parser)):
                text = run("show", source, "--format", format)[0].removesuffix("# EOF\n")
                text += run("diagnose", source, "--format", format, status=status)[0]
                exposition.read(text, format == "openmetrics")
                families = [family.name for family in parser.text_string_to_metric_families(text)]
                self.assertEqual(families[-2:], ["decoder_finding_active", "decoder_stage_state"])
                if format == "prometheus" and shutil.which("promtool"):
                    lint = subprocess.run(["promtool", "check", "metrics"], input=text, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                          text=True, check=False)
                    self.assertEqual((lint.returncode, lint.stdout), (0, ""))


class Describe(unittest.TestCase):
    def test_a_label_answers_what_it_means_and_what_to_do(self):
        out = run("describe", "Received Packets")[0]
        self.assertIn("Received Packets, a line of the transport demux report, Full form:\n  [Always, packets, last one]\n", out)
        self.assertIn("Action: if the last one is more than some seconds ago, nothing arrives", out)
        self.assertIn("tdemux.received_packets: ", out)

    def test_part_of_a_label(self):
        out = run("describe", "PCR Jitter")[0]
        self.assertIn("PCR Jitter Err Count, a line of the clock recovery report", out)
        for name in ("pcr_jitter_errors", "last_pcr_jitter", "max_pcr_jitter"):
            self.assertIn("clock_recovery.%s: " % name, out)

    def test_a_line_copied_from_a_report(self):
        wanted = run("describe", "Lost Packets")[0]
        self.assertIn("Lost Packets, a line of the ", wanted)
        for line in ("  Lost Packets          : 61932", "lost packets:", "Lost Packets : 3 (last one: 3s ago)", " Lost Packets\n"):
            self.assertEqual(run("describe", line)[0], wanted, line)
        wanted = run("describe", "4:2:0 8bit ColorType")[0]
        self.assertIn("4:2:0 8bit ColorType, a line of the ", wanted)
        self.assertEqual(run("describe", "    4:2:0 8bit ColorType: 5")[0], wanted)

    def test_advice(self):
        source = pathlib.Path(os.environ["MAN"], "decstats-reports.5").read_text()
        advice = source[source.index(".Sh ADVICE") : source.index(".Sh TRANSPORT DEMUX")]
        titles = re.findall(r"^\.Ss (.*)$", advice, re.M)
        self.assertIn("Clock and PCR", titles)
        for title in titles:
            out = run("describe", title)[0]
            self.assertTrue(out.startswith(title + ", advice of decstats-reports(5):\n"), out)
            self.assertGreater(len(out.splitlines()), 1)
        out = " ".join(run("describe", "network loss")[0].split())
        self.assertIn('see "Network loss" in decstats-reports(5).', " ".join(run("describe", "Lost Packets")[0].split()))
        self.assertIn("Unknown NALs (debug)", out)
        self.assertIn("(nNumLostSegmentsRTP)", out)
        self.assertIn("--format json has fields only", run("describe", "Network loss", "--format", "json", status=2)[1])

    def test_metrics_of_findings_and_stages(self):
        self.assertIn("decoder_finding_active: 1 = ", run("describe", "decoder_finding_active")[0])
        self.assertIn("\n  Kind          stateset\n", run("describe", "decoder_stage_state")[0])

    def test_metrics_of_the_decoder_itself(self):
        self.assertIn("decoder_up: 1 = ", run("describe", "decoder_up")[0])
        out = run("describe", "decoder_last_update_timestamp_seconds", "rtt")[0]
        self.assertIn("\n  Unit          seconds\n", out)
        self.assertIn("\ntdemux.srt.rtt: ", out)

    def test_elements_that_are_not_there(self):
        for name in ("tdemux.sources[99].pid", "sources[10].pid", "tSources[99999999999999999999].tsPid"):
            out, err = run("describe", name, status=2)
            self.assertEqual((out, err), ("", "decstats: '%s': the elements of sources go from 0 to 9\n" % name))

    def test_a_name(self):
        out = run("describe", "rtt")[0]
        self.assertIn("tdemux.srt.rtt: ", out)
        for line in ("Kind          gauge", "Unit          us", "Applies       if tdemux.encapsulation is ts_srt",
                     "Metric        decoder_tdemux_srt_rtt_seconds = value x 1/1000000", "C member      Xport.SRT.iRTT"):
            self.assertIn("\n  %s\n" % line, out)

    def test_a_c_member(self):
        out = run("describe", "nNumBDInFreeList")[0]
        self.assertIn("\n  C member      tChannel[].tCounters.nNumBDInFreeList\n", out)
        self.assertIn("\n  Report line   BD Free List Occ., debug level\n", out)

    def test_other_ways_to_name_a_field(self):
        wanted = run("describe", "tdemux.sources[].received_packets")[0]
        for name in ("tdemux.sources[3].received_packets", "decoder_tdemux_source_received_packets_total",
                     "decoder_tdemux_source_received_packets", "tSources[].tCounters.nNumReceivedPackets"):
            self.assertEqual(run("describe", name)[0], wanted, name)

    def test_relations(self):
        self.assertIn("Related       last happened: tdemux.last_received_packet_time\n", run("describe", "tdemux.received_packets")[0])
        self.assertIn("Related       when this last happened: tdemux.received_packets\n", run("describe", "tdemux.last_received_packet_time")[0])

    def test_components_and_everything(self):
        whole = json.loads(run("describe", "--format", "json")[0])["fields"]
        self.assertEqual(len(whole), 745)
        self.assertEqual(run("describe")[0].count("\n  C member "), 745)
        for name in ("clock-recovery", "clock_recovery"):
            part = json.loads(run("describe", name, "--format", "json")[0])["fields"]
            self.assertEqual(part, [field for field in whole if field["component"] == "clock_recovery"])

    def test_wrong_names_offer_the_nearest(self):
        for wrong, right in (("recieved_packets", "received_packets"), ("Recieved Packets", "Received Packets"),
                             ("clock-recovry", "clock-recovery"), ("nNumReceivedPacket", "nNumReceivedPackets")):
            out, err = run("describe", wrong, status=2)
            self.assertEqual(out, "")
            self.assertIn(right, err.split("near it ")[1])
        self.assertIn("'decstats describe' lists all", run("describe", "qqqqqqqq", status=2)[1])


if __name__ == "__main__":
    unittest.main()
