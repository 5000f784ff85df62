"""Prints the snapshots of a capture file, a JSON object a line: capture_reader.py FILE

Written from docs/capture-format.md alone, which it puts to the test: it shares no code with what writes these files. Behind
the snapshots stand what was lost, and gaps. A field that is not measured is null. What is no capture file of version 1 is refused.
"""
import itertools
import pathlib
import struct
import zlib

from published_reader import expect, fields, is_known, print_objects, read_layout

class Payload:  # its items are taken one behind the other
    def __init__(self, data):
        self.data, self.at = data, 0

    def take(self, size):
        self.at += size
        expect(self.at <= len(self.data), f"byte {self.at - size}", f"{size} bytes, more than the payload has")
        return self.data[self.at - size : self.at]

    def number(self, kind):
        return struct.unpack("<" + kind, self.take(struct.calcsize("<" + kind)))[0]

    def varint(self, bits=64):
        expect(bits > 0, f"byte {self.at}", "a varint of at most 64 bits")
        byte = self.number("B")
        return byte if byte < 0x80 else byte - 0x80 + (self.varint(bits - 7) << 7)

    def signed(self):
        folded = self.varint()
        return folded >> 1 ^ -(folded & 1)

    def text(self):
        return self.take(self.varint()).decode("utf-8", "backslashreplace")

    def places(self):
        """Ascending numbers: how many, then for each how many lie between it and the one before."""
        return [place - 1 for place in itertools.accumulate(self.varint() + 1 for _ in range(self.varint()))]


class Value:
    """A value of the list: its place in a record, its bytes there, and what is remembered for it."""

    def __init__(self, record, place, size, is_number):
        self.record, self.place, self.size, self.data, self.is_number = record, place, size, bytes(size), is_number
        self.half, self.unexpected, self.last, self.change, self.cost, self.trend_cost = 1 << 8 * size - 1, False, 0, 0, 0, 0

    def read(self, payload, is_whole):
        if self.is_number:
            expected = self.last + (self.change if self.trend_cost < self.cost else 0)
            number = self.wrap(expected + (payload.signed() if self.unexpected else 0))
            d = self.wrap(number - self.last)
            dd = self.wrap(d - self.change)
            if not is_whole and (d or dd):
                self.change = d
                self.cost += price(d) - self.cost // 8
                self.trend_cost += price(dd) - self.trend_cost // 8
            self.last, self.data = number, number.to_bytes(self.size, "little", signed=True)
        elif self.unexpected:
            self.data = payload.take(payload.varint()).ljust(self.size, b"\0")
            expect(len(self.data) == self.size, "value", f"at most {self.size} bytes, not {len(self.data)}")
        self.record[self.place : self.place + self.size] = self.data
        self.unexpected = self.unexpected and not is_whole

    def wrap(self, number):
        return (number + self.half) % (2 * self.half) - self.half


def price(n):
    return 16 * (2 + max(n, ~n).bit_length() // 7) if n else 0  # 16 * (1 + the length of n as signed varint)


class Decoder:
    """Decodes a whole snapshot and the changes behind it."""

    def __init__(self, payload, layouts):
        self.moment, self.interval, known, instance = payload.number("q"), 0, payload.number("B"), payload.take(16).hex()
        self.head = {"instance": instance if known else None, "start": payload.number("q") or None}
        self.head |= {"decoder": payload.text(), "release": payload.text()}
        self.components, self.values = {}, []
        for _ in range(payload.varint()):
            name, size, _, rows = read_layout(layouts.get(payload.number("I"), b""), "layout")
            record = bytearray(size)
            self.components[name] = record, rows, payload.places()
            for offset, width, elements, stride, kind in rows.values():
                is_number = kind < 8 and is_known(width, kind)
                size = 8 if is_number and kind == 7 else width  # a time is two numbers
                places = (offset + i * stride + part for i in range(elements) for part in range(0, width, size))
                self.values += [Value(record, place, size, is_number) for place in places]

    def snapshot(self, payload, is_whole):
        self.interval += 0 if is_whole else payload.signed()
        self.moment += self.interval
        for place in payload.places():
            self.values[place].unexpected ^= True
        for value in self.values:
            value.read(payload, is_whole)
        expect(payload.at == len(payload.data), f"byte {payload.at}", "the end of the payload")
        return {"moment": self.moment} | self.head | {"components": {n: fields(*c) for n, c in self.components.items()}}


def whole_frame(data, at):
    """(place, type, CRC, payload, end), or None if no whole frame stands there."""
    word, crc = struct.unpack_from("<II", data, at) if at + 12 <= len(data) else (0, 0)
    end = at + 12 + (word & 0xFFFFFF)
    payload = data[at + 8 : end - 4]
    if word >> 24 == 0 or word & 0xFFFFFF > 1 << 20 or data[end - 4 : end] != data[at : at + 4]:
        return None
    return (at, word >> 24, crc, payload, end) if zlib.crc32(payload, zlib.crc32(data[at : at + 4])) == crc else None


def read_capture(data):
    """The snapshots of a file, and a line for everything that was lost."""
    snapshots, lost, frames, decoder, base = [], [], [], None, None
    version, order, at, crc = struct.unpack_from("<4I", data.ljust(24), 8)
    is_marked = data.startswith(b"\x89DCAP\r\n\x1a")
    if is_marked and zlib.crc32(data[:20]) == crc:
        expect((version, order) == (1, 0x01020304) and at >= 24, "header", f"version 1, not {version}")
    else:
        at, lost = 24, ["the header is damaged"]
    while at < len(data):
        found = whole_frame(data, at)
        if found:
            frames.append(found)
            at = found[-1]
        else:
            known = (place for place in range(at + 1, len(data)) if (whole_frame(data, place) or (at, 7))[1] <= 6)
            begin, at = at, next(known, len(data))
            lost.append(f"{at - begin} bytes from {begin} are no whole frame")
    expect(is_marked or frames and frames[0][0] == 24, "file", "a capture file")
    layouts = {zlib.crc32(content): content for _, kind, _, content, _ in frames if kind == 1}
    for begin, kind, crc, content, _ in frames:
        payload = Payload(content)
        try:
            if kind in (2, 3):
                expect(kind == 2 or payload.number("I") == base, "base", "the snapshot before, which is lost")
                base = None  # until all of it is decoded
                decoder = Decoder(payload, layouts) if kind == 2 else decoder
                snapshots.append(decoder.snapshot(payload, kind == 2))
                base = crc
            elif kind == 5:
                lost.append("gap of cause {} between {} and {}: {}".format(*map(payload.number, "Bqq"), payload.text()))
        except (ValueError, IndexError) as error:
            lost.append(f"the frame at {begin} of type {kind} cannot be decoded: {error}")
    return snapshots, lost


if __name__ == "__main__":
    print_objects(lambda path: sum(read_capture(pathlib.Path(path).read_bytes()), []))
