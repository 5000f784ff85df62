#!/usr/bin/env python3
"""capture_test.py DECSTATS RELEASED: what docs/capture-format.md says is enough to read a capture file. capture_reader.py, which was
written from the document, reads what `decstats capture` writes and RELEASED, the file of an earlier release; `decstats show` tells
what it has to find there. The same files, damaged, give what the document says that damage leaves, and never another value."""
import json
import pathlib
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zlib

import capture_reader

decstats, released = sys.argv.pop(1), pathlib.Path(sys.argv.pop(1)).read_bytes()
reader_program = pathlib.Path(capture_reader.__file__).absolute()


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def read(data):
    """The snapshots of `data`, and the lines about what was lost."""
    return capture_reader.read_capture(bytes(data))


def flipped(byte):
    return bytes([byte ^ 0xFF])


def frame(kind, payload):
    word = struct.pack("<I", kind << 24 | len(payload))
    return word + struct.pack("<I", zlib.crc32(word + payload)) + payload + word


def frames_of(data):
    """(begin, end, type) of each frame of a file that is whole."""
    frames, at = [], 24
    while at < len(data):
        (word,) = struct.unpack_from("<I", data, at)
        frames.append((at, at + 12 + (word & 0xFFFFFF), word >> 24))
        at = frames[-1][1]
    assert at == len(data)
    return frames


def left(data, snapshots, begin, end):
    """What can be read of a file whose bytes from `begin` to before `end` are lost. None of them is a layout's."""
    kept, decoded, number = [], False, 0
    for first, behind, kind in frames_of(data):
        hit = first < end and begin < behind
        assert kind != 1 or not hit
        if kind in (2, 3):
            decoded = not hit and (kind == 2 or decoded)
            kept += [snapshots[number]] if decoded else []
            number += 1
    return kept


def names_of(data):
    """{component: {C name: (public name, type)}} by the layouts of a file."""
    names = {}
    for first, end, kind in frames_of(data):
        layout = data[first + 8 : end - 4]
        count, size = struct.unpack_from("<II", layout, 36) if kind == 1 else (0, 1)
        for at in range(48, 48 + count * size, size):
            public, c_name, public_size, c_size, value = struct.unpack_from("<IIHHH", layout, at + 16)
            component = names.setdefault(layout[:32].rstrip(b"\0").decode(), {})
            component[layout[c_name : c_name + c_size].decode()] = layout[public : public + public_size].decode(), value
    return names


def leaves(shown, path, types):
    """(C name, value) of each value of `decstats show --format json --raw`."""
    if isinstance(shown, list):
        for element in shown:
            yield from leaves(element, path + "[]", types)
    elif isinstance(shown, dict) and "tv_sec" not in shown:
        for name, inner in shown.items():
            if not (name.endswith("_s") and name[:-2] in shown):  # a large number once more, as text
                yield from leaves(inner, path + "." + name if path else name, types)
    else:
        kind = types[path][1]
        if kind == 6:
            shown = struct.unpack("<f", struct.pack("<f", shown))[0]
        elif kind == 7:
            shown = [shown["tv_sec"], shown["tv_nsec"]]
        elif kind == 8:
            shown = bytes.fromhex(shown).split(b"\0")[0].decode("utf-8", "backslashreplace")
        yield path, shown


def rfc3339(moment):
    return time.strftime("%Y-%m-%dT%H:%M:%S", time.gmtime(moment // 10**9)) + f".{moment % 10**9:09d}Z"


class Case(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """A file that a live decoder was captured to, and behind a gap another run of its host."""
        scratch = tempfile.TemporaryDirectory(dir="/dev/shm")
        cls.addClassCleanup(scratch.cleanup)
        cls.directory, cls.path = scratch.name, pathlib.Path(scratch.name, "values.dcap")
        for scenario, duration in ("live-srt-1080i", "1s"), ("trouble", "300ms"):
            host = subprocess.Popen(
                [decstats, "simulate", scenario, "--name", "d1", "--directory", cls.directory, "--for", "30s"],
                stdout=subprocess.PIPE,
            )
            try:
                assert host.stdout.readline()  # it is there
                live = run(decstats, "capture", "d1", cls.path, "--directory", cls.directory, "--every", "100ms", "--for", duration)
                assert live.returncode == 0, live.stderr
            finally:
                host.terminate()
                host.communicate()
        cls.data = cls.path.read_bytes()
        cls.snapshots, cls.lost = read(cls.data)


class Capture(Case):
    def check_as_shown(self, data, snapshot):
        path = pathlib.Path(self.directory, "shown.dcap")
        path.write_bytes(data)
        shown = run(decstats, "show", path, "--at", rfc3339(snapshot["moment"]), "--format", "json", "--raw")
        self.assertEqual((shown.returncode, shown.stderr), (0, ""))
        shown, names = json.loads(shown.stdout), names_of(data)
        self.assertEqual(shown["taken_at"], rfc3339(snapshot["moment"]))
        self.assertEqual(shown["decoder"] or "", snapshot["decoder"])
        instance = shown["instance"] or {"id": None, "started_at": None}
        self.assertEqual(instance["id"], snapshot["instance"])
        self.assertEqual(instance["started_at"], snapshot["start"] and rfc3339(snapshot["start"]))
        self.assertEqual(set(shown["components"]), set(snapshot["components"]))
        for component, record in shown["components"].items():
            types, values = names[component], {}
            for c_name, value in leaves(record, "", types):
                values.setdefault(types[c_name][0], []).append(value)
            fields = snapshot["components"][component]
            self.assertEqual(set(values), set(fields))
            for name, value in fields.items():
                if value is not None:  # not measured: --raw shows the bytes all the same
                    self.assertEqual(values[name], value if "[]" in name else [value], f"{component}.{name}")

    def test_as_shown(self):
        kinds = [kind for _, _, kind in frames_of(self.data)]
        self.assertGreaterEqual(len(self.snapshots), 8)
        self.assertEqual(len(self.snapshots), kinds.count(2) + kinds.count(3))
        self.assertEqual((kinds.count(2), kinds.count(6), len(self.lost)), (2, 2, 1), self.lost)
        self.assertRegex(self.lost[0], "^gap of cause 1 between ")
        for number in (0, 1, 2, 5, -4, -3, -1):
            self.check_as_shown(self.data, self.snapshots[number])
        moving = {s["components"]["tdemux"]["pcr"] for s in self.snapshots[:8]}
        self.assertGreater(len(moving), 4)

    def test_extreme_values(self):
        path = pathlib.Path(self.directory, "extreme.dcap")
        written = run(decstats, "capture", "sample:extreme", path, "--every", "100ms", "--for", "200ms")
        self.assertEqual(written.returncode, 0, written.stderr)
        snapshots, lost = read(path.read_bytes())
        self.assertEqual(lost, [])
        self.check_as_shown(path.read_bytes(), snapshots[0])
        self.check_as_shown(path.read_bytes(), snapshots[-1])

    def test_released(self):
        snapshots, lost = read(released)
        self.assertEqual((len(snapshots), lost), (5, []))
        for snapshot in snapshots:
            self.check_as_shown(released, snapshot)
            unmeasured = {name for name, value in snapshot["components"]["usage"].items() if value is None}
            self.assertIn("clear_requests", unmeasured)

    def test_program(self):
        path = pathlib.Path(self.directory, "program.dcap")
        path.write_bytes(self.data[:-1])
        found = run(sys.executable, "-B", reader_program, path)
        self.assertEqual((found.returncode, found.stderr), (0, ""))
        *shown, tail, gap = [json.loads(line) for line in found.stdout.splitlines()]
        self.assertEqual(shown, self.snapshots)
        self.assertRegex(tail, "^19 bytes from [0-9]+ are no whole frame$")
        self.assertRegex(gap, "^gap ")
        header = released[:8] + struct.pack("<III", 2, 0x01020304, 24)
        refused = {
            b"": "a capture file",
            b"A text that is long enough for a header, and none.\n" * 9: "a capture file",
            header + struct.pack("<I", zlib.crc32(header)) + released[24:]: "version 1, not 2",
        }
        for data, expected in refused.items():
            path.write_bytes(data)
            found = run(sys.executable, "-B", reader_program, path)
            self.assertEqual((found.returncode, found.stdout, found.stderr.count("\n")), (1, "", 1), found.stderr)
            self.assertIn(f"{path}: ", found.stderr)
            self.assertIn(expected, found.stderr)

    def test_elsewhere(self):
        """Layouts that stand behind what names them, frames of types to come, a header of another size."""
        frames = frames_of(released)
        (layout,) = [released[begin:end] for begin, end, kind in frames if kind == 1]
        others = [released[begin:end] for begin, end, kind in frames if kind != 1]
        header = released[:16] + struct.pack("<I", 32)
        header += struct.pack("<I", zlib.crc32(header)) + bytes(8)
        data = header + frame(200, b"to come").join(others) + frame(255, b"") + layout
        self.assertEqual(read(data), read(released))


class Damaged(Case):
    def test_damage(self):
        """A live capture with bytes flipped, cut out, or cut off: before, in and behind whole snapshots."""
        frames = frames_of(self.data)
        second = [i for i, frame in enumerate(frames) if frame[2] == 2][1]
        first = next(i for i, frame in enumerate(frames) if frame[2] == 2)
        for begin, end, kind in (frames[i] for i in (first, first + 1, first + 3, second - 1, second, second + 1)):
            for at in (begin, begin + 5, (begin + end) // 2, end - 1):
                with self.subTest(type=kind, at=at):
                    self.check_damaged(self.data, self.snapshots, at, at + 1, flipped(self.data[at]))
        begin, end, _ = frames[first + 2]
        self.check_damaged(self.data, self.snapshots, begin + 3, end + 7, b"")
        self.check_damaged(self.data, self.snapshots, begin + 3, end + 7, bytes(50))

    def check_damaged(self, data, snapshots, begin, end, filling):
        damaged = data[:begin] + filling + data[end:]
        while damaged[begin] == data[begin]:
            begin += 1  # a byte is not lost if one like it takes its place
        expected = left(data, snapshots, begin, end)
        found, lost = read(damaged)
        self.assertEqual([s["moment"] for s in found], [s["moment"] for s in expected], (begin, end, lost))
        self.assertEqual(found, expected)
        self.assertTrue(lost)

    def test_any_byte_damaged(self):
        snapshots, _ = read(released)
        (layout,) = [frame for frame in frames_of(released) if frame[2] == 1]
        for at in range(len(released)):
            if layout[0] <= at < layout[1]:
                found, lost = read(released[:at] + flipped(released[at]) + released[at + 1 :])
                self.assertEqual((found, len(lost)), ([], 6))  # the layout, and five snapshots that need it
            else:
                self.check_damaged(released, snapshots, at, at + 1, flipped(released[at]))

    def test_any_cut(self):
        snapshots, _ = read(released)
        ends = [end for _, end, _ in frames_of(released)]
        for at in range(ends[0], len(released)):
            found, lost = read(released[:at])
            self.assertEqual(found, left(released, snapshots, at, len(released)))
            self.assertEqual(len(lost), at not in ends)
            for size in (1, 12, 13, 60):
                if at + size < len(released):
                    self.check_damaged(released, snapshots, at, at + size, b"")

    def test_lies(self):
        """Frames that are whole, whatever they say, are decoded or refused, without another exception."""
        for begin, end, kind in frames_of(released):
            for at in range(begin + 8, end - 4):
                payload = bytearray(released[begin + 8 : end - 4])
                payload[at - begin - 8] ^= 0xFF
                read(released[:begin] + frame(kind, payload) + released[end:])


if __name__ == "__main__":
    unittest.main()
