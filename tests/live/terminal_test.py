"""decstats watch on a terminal: what it paints, and that it leaves everything as it was."""
import fcntl
import os
import pty
import re
import select
import signal
import struct
import termios
import time
import unittest

from host import TOOL, LiveTest, environment

OWN_SCREEN = "\x1b[?1049h"
SHELL_SCREEN = "\x1b[?1049l"
ESCAPES = re.compile(r"\x1b\[[?0-9;]*[A-Za-z]")


class Session:
    """A call of decstats on a terminal of its own."""

    def __init__(self, directory, arguments, rows=24, **variables):
        self.output = ""
        self.status = None
        is_seen, see = os.pipe()
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            os.read(is_seen, 1)
            # The size is there before it is looked at.
            fcntl.ioctl(1, termios.TIOCSWINSZ, struct.pack("HHHH", rows, 80, 0, 0))
            os.execve(TOOL[0], [*TOOL, *arguments], environment(directory, **{"TERM": "xterm", **variables}))

        self.first_settings = self.settings()
        os.write(see, b".")
        os.close(is_seen)
        os.close(see)

    def resize(self, rows):
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", rows, 80, 0, 0))

    def read(self, seconds):
        """Reads what comes within a time. @return whether it goes on"""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if not select.select([self.terminal], [], [], 0.02)[0]:
                continue
            try:
                data = os.read(self.terminal, 65536)
            except OSError:
                return False
            if not data:
                return False
            self.output += data.decode()
        return True

    def until(self, condition):
        end = time.monotonic() + 20
        while not condition():
            if time.monotonic() > end:
                raise AssertionError("it did not come: %r" % self.output[-2000:])
            self.read(0.05)

    def frames(self):
        """The screens painted so far, each a list of lines without colours."""
        painted = self.output.split(OWN_SCREEN)[-1].split(SHELL_SCREEN)[0].split("\x1b[H")[2:]
        return [ESCAPES.sub("", frame).replace("\r", "").split("\n") for frame in painted if frame.endswith("\x1b[J") or "\x1b[J" in frame]

    def settings(self):
        return termios.tcgetattr(self.terminal)

    def end(self):
        while self.read(1):
            pass
        _, status = os.waitpid(self.pid, 0)
        os.close(self.terminal)
        return os.waitstatus_to_exitcode(status)


class Terminal(LiveTest):
    def watch(self, *arguments, **options):
        session = Session(self.live, ("watch", *arguments), **options)

        def kill():
            try:
                os.kill(session.pid, signal.SIGKILL)
                os.waitpid(session.pid, 0)
            except (ProcessLookupError, ChildProcessError):
                pass

        self.addCleanup(kill)
        return session

    def test_fields_with_rates(self):
        self.simulate()
        session = self.watch("alpha", "--every", "300ms", "--field", "tdemux.received_packets", "tdemux.state")
        session.until(lambda: len(session.frames()) >= 4)
        first, *others = session.frames()[:4]
        self.assertRegex(first[0], r"^  alpha  live  \d{4}-\d\d-\d\dT")
        self.assertRegex(first[1], r"^  Healthy\. ")
        self.assertRegex(first[2], r"^  tdemux\.received_packets  \d+ packets$")
        self.assertRegex(first[3], r"^  tdemux\.state +active$")
        for frame in others:
            rate = re.match(r"^\* tdemux\.received_packets  \d+ packets  \+(\d+)/s$", frame[2])
            self.assertTrue(rate, frame)
            self.assertRegex(frame[3], r"^  tdemux\.state +active$")
        self.assertIn("\x1b[1;33mtdemux.received_packets", session.output)
        self.assertEqual(session.output.count(OWN_SCREEN), 1)

    def test_ctrl_c_gives_the_terminal_back(self):
        self.simulate()
        session = self.watch("alpha", "--every", "100ms", "--field", "tdemux.state")
        before = session.first_settings
        session.until(lambda: len(session.frames()) >= 2)
        self.assertFalse(session.settings()[3] & termios.ECHO)
        os.write(session.terminal, b"\x03")
        session.until(lambda: SHELL_SCREEN in session.output)
        self.assertEqual(session.settings(), before)
        self.assertEqual(session.end(), 0)
        self.assertTrue(session.output.endswith("\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l"))

    def test_signals_give_it_back_too(self):
        self.simulate()
        for number in (signal.SIGTERM, signal.SIGHUP):
            session = self.watch("alpha", "--field", "tdemux.state")
            session.until(session.frames)
            os.kill(session.pid, number)
            self.assertEqual(session.end(), 0)
            self.assertTrue(session.output.endswith(SHELL_SCREEN))

    def test_resize(self):
        self.simulate()
        session = self.watch("alpha", "--every", "1h", "--component", "tdemux", rows=10)
        session.until(session.frames)
        frame = session.frames()[-1]
        self.assertEqual(len(frame), 10)
        whole = 9 + int(re.fullmatch(r"  \.\.\. and (\d+) lines more", frame[-1])[1])
        session.resize(20)
        session.until(lambda: len(session.frames()[-1]) == 20)
        self.assertEqual(session.frames()[-1][:9], frame[:9])
        session.resize(whole)
        session.until(lambda: len(session.frames()[-1]) == whole)
        self.assertNotIn("lines more", session.frames()[-1][-1])
        session.resize(1)
        session.until(lambda: session.frames()[-1] == ["  ... and %d lines more" % whole])

    def test_without_colour(self):
        self.simulate()
        session = self.watch("alpha", "--every", "100ms", "--count", "4", "--field", "tdemux.received_packets", NO_COLOR="1")
        self.assertEqual(session.end(), 0)
        self.assertNotIn("\x1b[1", session.output)
        self.assertTrue(any(line.startswith("* ") for frame in session.frames() for line in frame))
        self.assertEqual(len(session.frames()), 4)

    def test_a_terminal_that_cannot_paint_gets_lines(self):
        self.simulate()
        session = self.watch("alpha", "--count", "1", TERM="dumb")
        self.assertEqual(session.end(), 0)
        self.assertTrue(session.output.startswith('{"schema"'))
        self.assertNotIn("\x1b", session.output)

    def test_ctrl_z(self):
        self.simulate()
        session = self.watch("alpha", "--every", "100ms", "--field", "tdemux.state")
        before = session.first_settings
        session.until(session.frames)
        os.write(session.terminal, b"\x1a")
        session.until(lambda: SHELL_SCREEN in session.output)
        self.assertTrue(os.WIFSTOPPED(os.waitpid(session.pid, os.WUNTRACED)[1]))
        self.assertEqual(session.settings(), before)
        os.kill(session.pid, signal.SIGCONT)
        session.until(lambda: session.output.count(OWN_SCREEN) == 2 and session.frames())
        os.write(session.terminal, b"\x03")
        self.assertEqual(session.end(), 0)

    def test_reports_with_rates(self):
        self.simulate()
        session = self.watch("alpha", "--every", "400ms", "--component", "tdemux", rows=80)
        session.until(lambda: len(session.frames()) >= 3)
        frame = session.frames()[2]
        report = self.run_tool("show", "alpha", "--component", "tdemux")[0].splitlines()
        labels = [line.split(":")[0].rstrip() for line in report]
        self.assertEqual([line[2:].split(":")[0].rstrip() for line in frame[2:2 + len(labels)]], labels)
        packets = next(line for line in frame if "Received Packets" in line)
        self.assertRegex(packets, r"^\*   Received Packets      : \d+ \(Last One: [01]s ago\)  \+\d+/s$")
        self.assertRegex(next(line for line in frame if "Timestamp Rollovers" in line), r"^    Timestamp.* ago\)$")

    STAGES = ["Network", "Link", "Transport stream", "Clock", "Framer", "Video decoder", "Output", "Audio", "Metadata", "Buffering"]

    def chain(self, frame):
        """The signs of the chain, stage by stage, of a screen that has it below the verdict."""
        found = [re.fullmatch(r"[ *]   (%s) +(Working|Degraded|Stopped|No input|Idle|Unknown)(|  .*)" % "|".join(self.STAGES), line)
                 for line in frame[2:12]]
        self.assertTrue(all(found), frame)
        self.assertEqual([match[1] for match in found], self.STAGES)
        self.assertEqual(frame[12].strip(), "")
        return {match[1]: match[2] for match in found}

    def test_verdict_and_chain(self):
        self.simulate("live-srt-1080i", "alpha", "--fault", "decoder-stalled", "--after", "3s")
        session = self.watch("alpha", "--every", "500ms", rows=200)
        session.until(session.frames)
        first = session.frames()[0]
        self.assertRegex(first[1], r"^  Healthy\. ")
        self.assertEqual(set(self.chain(first).values()), {"Working"})
        self.assertRegex(first[13], r"^  Statistics")
        session.until(lambda: any("No picture" in frame[1] for frame in session.frames()))
        # Whatever has just changed stands behind a star, and with the next look no longer does.
        broken = next(i for i, frame in enumerate(session.frames()) if "No picture" in frame[1])
        session.until(lambda: len(session.frames()) > broken + 1)
        frame, after = session.frames()[broken:broken + 2]
        self.assertRegex(frame[1], r"^\* No picture.*Video decoder")
        signs = self.chain(frame)
        self.assertEqual(signs["Video decoder"], "Stopped")
        self.assertEqual(signs["Output"], "No input")
        self.assertEqual(signs["Network"], "Working")
        self.assertTrue(frame[2 + self.STAGES.index("Video decoder")].startswith("* "), frame)
        self.assertTrue(after[1].startswith("  No picture"), after)
        self.assertEqual(self.chain(after), signs)
        self.assertFalse(any(line.startswith("* ") for line in after[2:12]), after)

    def test_death_and_restart_are_seen(self):
        host = self.simulate()
        session = self.watch("alpha", "--every", "100ms", "--field", "tdemux.received_packets")
        session.until(session.frames)
        host.kill()
        host.wait()
        session.until(lambda: session.frames()[-1][1].startswith("  ! ") and "stale" in session.frames()[-1][1])
        self.assertIn("alpha  stale", session.frames()[-1][0])
        self.simulate()
        session.until(lambda: any("restarted" in frame[0] for frame in session.frames()))
        restarted = next(frame for frame in session.frames() if "restarted" in frame[0])
        self.assertNotIn("/s", restarted[2])
        self.assertRegex(restarted[1], r"^\* Cannot tell yet\. The decoder was started again within the window\.$")

    def test_what_fails_at_once_leaves_the_screen_alone(self):
        session = self.watch("nonsense")
        self.assertEqual(session.end(), 2)
        self.assertNotIn("\x1b", session.output)
        self.assertIn("nonsense: neither a decoder", session.output)


if __name__ == "__main__":
    unittest.main()
