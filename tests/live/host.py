"""Calls of decstats, and host processes: simulated ones, and this process itself by libstatspublish."""
import ctypes
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import unittest

# The tool, and in front of it the emulator of another processor where there is one.
TOOL = [*filter(None, os.environ.get("EMULATOR", "").split(" ")), os.environ["DECSTATS"]]


def environment(directory, **more):
    kept = {name: value for name, value in os.environ.items() if name not in ("TERM", "NO_COLOR", "DECSTATS_DIRECTORY")}
    return {**kept, "DECSTATS_DIRECTORY": str(directory), **more}


class LiveTest(unittest.TestCase):
    """A test with a directory of its own for live decoders, and for files beside it."""

    def setUp(self):
        self.directory = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.directory, ignore_errors=True)
        self.live = self.directory / "live"
        self.live.mkdir()

    def run_tool(self, *arguments, status=0, **options):
        """Standard output and standard error of a call that ends with this status."""
        finished = subprocess.run([*TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  text=True, check=False, timeout=60, env=environment(self.live), cwd=self.directory, **options)
        self.assertEqual(finished.returncode, status, finished.stderr)
        return finished.stdout, finished.stderr

    def refused(self, *arguments, part, status=2, **options):
        """A call that fails with one line that has this part."""
        out, err = self.run_tool(*arguments, status=status, **options)
        self.assertEqual(out, "")
        self.assertEqual(err.count("\n"), 1, err)
        self.assertIn(part, err)
        return err

    def start(self, *arguments, **options):
        """Starts a call; it is killed at the end of the test if it is still there."""
        process = subprocess.Popen([*TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
                                   env=environment(self.live), cwd=self.directory, **options)

        def end():
            if process.poll() is None:
                process.kill()
            process.wait()
            for stream in (process.stdout, process.stderr):
                if stream is not None:
                    stream.close()

        self.addCleanup(end)
        return process

    def simulate(self, scenario="live-srt-1080i", name="alpha", *more):
        """A simulated decoder that has published its records."""
        process = self.start("simulate", scenario, "--name", name, *more)
        self.assertEqual(process.stdout.readline(), "%s/%s.decstats\n" % (self.live, name))
        return process

    def path(self, name):
        return str(self.live / (name + ".decstats"))

    def listed(self):
        return {one["decoder"]: one for one in json.loads(self.run_tool("list", "--format", "json")[0])["decoders"]}

    def until(self, condition, seconds=20):
        """Waits for something that has to come."""
        end = time.monotonic() + seconds
        while not condition():
            self.assertLess(time.monotonic(), end, "it did not come")
            time.sleep(0.02)


class OwnHost:
    """This process as a host that publishes nothing. Where it cannot load the library, the test is skipped."""

    def __init__(self, name, directory, host=b"a test", heartbeat=0):
        if "STATSPUBLISH" not in os.environ:
            raise unittest.SkipTest("this process is of another build than the library")
        self.library = ctypes.CDLL(os.environ["STATSPUBLISH"])
        self.library.STATS_PublishOpen.restype = ctypes.c_void_p
        self.publisher = ctypes.c_void_p(self.library.STATS_PublishOpen(name.encode(), str(directory).encode(), host, heartbeat, None))
        if not self.publisher:
            raise RuntimeError("cannot publish " + name)

    def close(self):
        self.library.STATS_PublishClose(self.publisher)
