"""What a SOURCE may be while decoders live, and what decstats list tells of them."""
import json
import os
import pathlib
import shutil
import signal
import struct
import time
import unittest

from host import LiveTest, OwnHost


def slot_of(path, component):
    """Where the record of a component stands in a published file, and the file's bytes."""
    data = pathlib.Path(path).read_bytes()
    table, = struct.unpack_from("<I", data, 12)
    count, size = struct.unpack_from("<II", data, 68)
    sections = [struct.unpack_from("<IIQQ", data, table + i * size) for i in range(count)]
    for kind, number, offset, _ in sections:
        if kind == 1 and data[offset:offset + 32].rstrip(b"\0") == component.encode():
            return next(at for other, same, at, _ in sections if other == 2 and same == number), data
    raise AssertionError("no " + component)


class Sources(LiveTest):
    def leave_stale(self):
        """A decoder whose host has been killed."""
        host = self.simulate("idle", "alpha")
        host.kill()
        host.wait()

    def test_by_name_by_path_and_the_only_one(self):
        self.simulate("idle", "alpha")
        field = ("--field", "tdemux.state")
        for source in ((), ("alpha",), (self.path("alpha"),), ("live/alpha.decstats",)):
            self.assertEqual(self.run_tool("show", *source, *field), ("tdemux.state stopped\n", ""))
        self.assertEqual(self.run_tool("show", "alpha", *field, "--directory", "live"), ("tdemux.state stopped\n", ""))
        shown = json.loads(self.run_tool("show", "--format", "json")[0])
        self.assertEqual(shown["decoder"], "alpha")
        self.assertEqual(shown["instance"], self.listed()["alpha"]["instance"])
        self.assertLess(abs(time.time() - time.mktime(time.strptime(shown["taken_at"][:19], "%Y-%m-%dT%H:%M:%S")) + time.timezone), 10)

    def test_without_exactly_one_all_are_told(self):
        self.refused("show", part="no decoder is published in %s" % self.live)
        first = self.simulate("idle", "alpha")
        self.simulate("idle", "beta")
        self.refused("show", part="alpha (live), beta (live)")
        first.kill()
        first.wait()
        self.assertEqual(self.run_tool("show", "--field", "tdemux.state")[0], "tdemux.state stopped\n")
        shutil.rmtree(self.live)
        self.refused("show", part="%s: No such file or directory" % self.live)

    def test_no_decoder_is_only_stale(self):
        self.leave_stale()
        self.refused("show", part="none is live: alpha (stale)")

    def test_a_name_comes_before_a_file(self):
        self.run_tool("sample", "trouble", str(self.directory))
        os.rename(self.directory / "tdemux.rec", self.directory / "alpha")
        self.assertEqual(self.run_tool("show", "alpha", "--field", "tdemux.state")[0], "tdemux.state scrambled\n")
        self.simulate("idle", "alpha")
        self.assertEqual(self.run_tool("show", "alpha", "--field", "tdemux.state")[0], "tdemux.state stopped\n")
        self.assertEqual(self.run_tool("show", "./alpha", "--field", "tdemux.state")[0], "tdemux.state scrambled\n")

    def test_names_that_are_none(self):
        self.refused("show", "gamma", part="gamma: neither a decoder in %s nor a file" % self.live)
        self.refused("show", "./gamma", part="./gamma: No such file or directory")
        self.refused("show", "live/gamma.decstats", part="gamma.decstats: No such file or directory")
        for name in ("../alpha", ".", "a b", "x" * 65, "\x1b[31m", "", "-x"):
            arguments = ("show", "--", name) if name.startswith("-") else ("show", name)
            error = self.run_tool(*arguments, status=2)[1]
            self.assertEqual(error.count("\n"), 1, name)
            self.assertTrue(error.isascii() and error[:-1].isprintable(), name)

    def test_a_moment_is_for_what_is_saved(self):
        self.simulate("idle", "alpha")
        self.refused("show", "alpha", "--at", "2022-06-14T12:14:00Z", part="--at")

    def test_stale(self):
        self.leave_stale()
        out, err = self.run_tool("show", "alpha", "--field", "tdemux.state")
        self.assertEqual(out, "tdemux.state stopped\n")
        self.assertIn("stale", err)
        shown = json.loads(self.run_tool("show", "alpha", "--format", "json")[0])
        self.assertEqual(shown["taken_at"], max(one["published_at"] for one in self.listed()["alpha"]["records"].values()))

    def test_cut_off(self):
        self.leave_stale()
        slot, data = slot_of(self.path("alpha"), "audio")
        with open(self.path("alpha"), "r+b") as file:
            file.seek(slot)
            file.write(struct.pack("<Q", struct.unpack_from("<Q", data, slot)[0] | 1))
        self.assertEqual(self.listed()["alpha"]["records"]["audio"], {"state": "cut_off", "published_at": None, "age": None})
        self.assertIn("audio cut off", self.run_tool("list")[0])
        out, err = self.run_tool("show", "alpha", "--format", "json")
        self.assertEqual(len(json.loads(out)["components"]), 7)
        self.assertNotIn("audio", json.loads(out)["components"])
        self.assertIn("cut off in the middle of writing: audio", err)
        self.refused_after_problem("show", "alpha", "--component", "audio")

    def refused_after_problem(self, *arguments):
        out, err = self.run_tool(*arguments, status=2)
        self.assertEqual((out, err.count("\n")), ("", 2))
        self.assertIn("no audio record", err.splitlines()[1])

    def presence(self, name):
        """What the metrics say of the decoder itself, and how many other samples there are."""
        lines = self.run_tool("show", name, "--format", "prometheus")[0].splitlines()
        samples = dict(line.rsplit(" ", 1) for line in lines if not line.startswith("#"))
        up = samples.pop('decoder_up{decoder="%s"}' % name)
        return up, float(samples.pop('decoder_last_update_timestamp_seconds{decoder="%s"}' % name)), len(samples)

    def test_metrics_tell_who_is_up(self):
        host = self.simulate("idle", "alpha")
        up, moment, others = self.presence("alpha")
        self.assertEqual(up, "1")
        self.assertLess(abs(time.time() - moment), 10)
        self.assertGreater(others, 100)
        host.send_signal(signal.SIGSTOP)
        self.until(lambda: self.listed()["alpha"]["state"] == "hung")
        hung = self.presence("alpha")
        self.assertEqual((hung[0], hung[2]), ("0", 0))
        time.sleep(0.1)
        self.assertEqual(self.presence("alpha"), hung)
        host.send_signal(signal.SIGCONT)
        self.until(lambda: self.listed()["alpha"]["state"] == "live")
        self.refused("show", "alpha", "--format", "json", "--decoder", "beta", part="its decoder has the name alpha")
        host.kill()
        host.wait()
        self.assertEqual(self.presence("alpha")[0], "0")

    def test_hung(self):
        host = self.simulate("idle", "alpha")
        host.send_signal(signal.SIGSTOP)
        self.until(lambda: self.listed()["alpha"]["state"] == "hung")
        self.assertIn("no heartbeat for", self.listed()["alpha"]["problem"])
        out, err = self.run_tool("show", "--field", "tdemux.state")
        self.assertEqual(out, "tdemux.state stopped\n")
        self.assertIn("hung: no heartbeat for", err)
        host.send_signal(signal.SIGCONT)
        self.until(lambda: self.listed()["alpha"]["state"] == "live")

    def test_starting(self):
        host = OwnHost("alpha", self.live)
        self.addCleanup(host.close)
        listed = self.listed()["alpha"]
        self.assertEqual((listed["state"], listed["host"]), ("starting", "a test"))
        self.assertEqual({record["state"] for record in listed["records"].values()}, {"never"})
        self.refused("show", "alpha", part="still starting: nothing has been published yet")
        self.refused("show", part="still starting")

    def test_other_version_and_damaged(self):
        self.leave_stale()
        whole = pathlib.Path(self.path("alpha")).read_bytes()
        with open(self.path("beta"), "wb") as file:
            file.write(whole[:8] + struct.pack("<I", 77) + whole[12:])
        with open(self.path("gamma"), "wb") as file:
            file.write(whole[:100])
        listed = self.listed()
        self.assertEqual((listed["beta"]["state"], listed["gamma"]["state"]), ("other version", "damaged"))
        self.assertIn("77", self.refused("show", "beta", part=self.path("beta")))
        self.refused("show", "gamma", part="damaged")

    def test_no_permission(self):
        if os.geteuid() != 0:
            self.skipTest("only the superuser can become somebody else")
        self.simulate("idle", "alpha")
        os.chmod(self.directory, 0o755)
        nobody = {"user": 65534, "group": 65534, "extra_groups": []}
        text = "owner 0, group 0, mode 0640; this process is user 65534"
        self.assertIn(text, self.run_tool("list", **nobody)[0])
        self.assertIn("no permission", self.run_tool("list", **nobody)[0])
        self.refused("show", "alpha", part=text, **nobody)
        os.chmod(self.live, 0o700)
        self.refused("list", part="mode 0700; this process is user 65534", **nobody)
        self.refused("show", "alpha", part="cannot be searched; this process is user 65534", **nobody)

    def test_an_empty_list(self):
        self.assertEqual(self.run_tool("list"), ("", "decstats: no decoder is published in %s\n" % self.live))
        self.assertEqual(json.loads(self.run_tool("list", "--format", "json")[0])["decoders"], [])
        self.refused("list", "--directory", "missing", part="missing: No such file or directory")
        for name in ("alpha", ".alpha.decstats", "a b.decstats", "x" * 65 + ".decstats"):
            (self.live / name).write_text("")
        self.assertEqual(self.listed(), {})

    def test_the_list_for_people(self):
        self.simulate("idle", "alpha")
        first, second = self.run_tool("list")[0].splitlines()
        instance = self.listed()["alpha"]["instance"]
        self.assertEqual(first.split(", host ")[0], "alpha  live since %sZ, instance %s" % (instance["started_at"][:19], instance["id"]))
        self.assertRegex(second, r"^ {7}tdemux \d\.\ds, vframer \d\.\ds, .*, clock-recovery \d\.\ds, usage \d\.\ds$")


if __name__ == "__main__":
    unittest.main()
