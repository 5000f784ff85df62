#!/usr/bin/env python3
"""Prints the snapshots of a capture file, a JSON object a line: capture_reader.py FILE

Written from docs/capture-format.md alone, which it puts to the test: it shares no code with what writes these files. What was
lost, and the gaps that the file tells of, are lines on stderr. A field that the host does not measure is null. Exit status 2, with
a line on stderr, if the file is no capture file of version 1.
"""
import json
import struct
import sys
import zlib

import published_reader
from published_reader import expect

magic = b"\x89DCAP\r\n\x1a"
number_bits = {(1, 4): 32, (2, 4): 32, (6, 4): 32, (3, 8): 64, (4, 8): 64, (5, 1): 8, (7, 16): 64}  # by type and size


class Payload:
    """Takes the items of a payload, one behind the other."""

    def __init__(self, data):
        self.data, self.at = data, 0

    def take(self, size):
        expect(size <= len(self.data) - self.at, f"byte {self.at}", f"{size} bytes, more than the payload has")
        self.at += size
        return self.data[self.at - size : self.at]

    def number(self, kind):
        return struct.unpack("<" + kind, self.take(struct.calcsize("<" + kind)))[0]

    def varint(self):
        result, shift, byte = 0, 0, 0x80
        while byte >= 0x80:
            byte = self.number("B")
            result |= (byte & 0x7F) << shift
            shift += 7
            expect(shift <= 70 and result < 1 << 64, f"byte {self.at}", "a varint of at most 64 bits")
        return result

    def signed(self):
        folded = self.varint()
        return folded >> 1 ^ -(folded & 1)

    def text(self):
        return self.take(self.varint()).decode("utf-8", "backslashreplace")

    def places(self, end):
        """Ascending numbers below `end`: how many, then for each how many lie between it and the one before."""
        places = [-1]
        for _ in range(self.varint()):
            places.append(places[-1] + 1 + self.varint())
            expect(places[-1] < end, f"byte {self.at}", f"a place below {end}")
        return places[1:]


class Value:
    """What is remembered for a value of the list. `bits` is None for bytes."""

    def __init__(self, record, place, size, bits):
        self.record, self.place, self.size, self.bits, self.last = record, place, size, bits, 0
        self.begin()

    def begin(self):
        self.unexpected, self.change, self.cost, self.trend_cost = False, 0, 0, 0

    def read(self, payload):
        data = None
        if self.bits:
            surprise = payload.signed() if self.unexpected else 0
            number = self.wrap(self.last + (self.change if self.trend_cost < self.cost else 0) + surprise)
            d = self.wrap(number - self.last)
            dd = self.wrap(d - self.change)
            if d or dd:
                self.cost += price(d) - self.cost // 8
                self.trend_cost += price(dd) - self.trend_cost // 8
            self.change, self.last = d, number
            data = number.to_bytes(self.size, "little", signed=True)
        elif self.unexpected:
            size = payload.varint()
            expect(size <= self.size, f"byte {payload.at}", f"at most {self.size} bytes, not {size}")
            data = payload.take(size).ljust(self.size, b"\0")
        if data is not None:
            self.record[self.place : self.place + self.size] = data

    def wrap(self, number):
        half = 1 << self.bits - 1
        return (number + half) % (2 * half) - half


def price(n):
    folded = 2 * n if n >= 0 else -2 * n - 1
    return 16 * (1 + (folded.bit_length() + 6) // 7) if n else 0


class Decoder:
    """Decodes the snapshots of a file in their order. `crc` is that of the one decoded last."""

    def __init__(self, layouts):
        self.layouts, self.crc = layouts, None

    def snapshot(self, kind, crc, payload):
        expect(kind == 2 or payload.number("I") == self.crc, "base", "the snapshot before, which is lost")
        self.crc = None  # until all of it is decoded
        if kind == 2:
            self.begin(payload)
        else:
            self.interval += payload.signed()
            self.moment += self.interval
        for place in payload.places(len(self.values)):
            self.values[place].unexpected ^= True
        for value in self.values:
            value.read(payload)
            if kind == 2:
                value.begin()
        expect(payload.at == len(payload.data), f"byte {payload.at}", "the end of the payload")
        self.crc = crc
        return {"moment": self.moment} | self.head | {"components": {n: self.fields(*c) for n, c in self.components.items()}}

    def begin(self, payload):
        self.moment, self.interval, known = payload.number("q"), 0, payload.number("B")
        instance, start = payload.take(16).hex(), payload.number("q")
        self.head = {"instance": instance if known else None, "start": start or None}
        self.head |= {"decoder": payload.text(), "release": payload.text()}
        self.components, self.values, total = {}, [], 0
        for _ in range(payload.varint()):
            layout = payload.number("I")
            expect(layout in self.layouts, "entry", f"the layout {layout:08x}, which is lost")
            name, size, _, rows = published_reader.read_layout(self.layouts[layout], "layout")
            unmeasured, total = payload.places(len(rows)), total + size
            expect(name not in self.components and len(self.components) < 64, "entry", "at most 64 components, each once")
            count = len(self.values) + sum(elements for _, _, elements, _, _ in rows.values())
            expect(count <= 65536 and total <= 1 << 22, "entry", "at most 65,536 values and 4 MiB")
            record = bytearray(size)
            self.components[name] = record, rows, unmeasured
            for offset, width, elements, stride, kind in rows.values():
                bits = number_bits.get((kind, width))
                width //= 2 if bits and kind == 7 else 1
                for at in (offset + i * stride for i in range(elements)):
                    self.values += [Value(record, at + half, width, bits) for half in ((0, 8) if bits and kind == 7 else (0,))]

    def fields(self, record, rows, unmeasured):
        shown = {}
        for i, (name, (*place, kind)) in enumerate(rows.items()):
            known = kind if kind == 8 or (kind, place[1]) in number_bits else 9  # shown as bytes
            shown[name] = None if i in unmeasured else published_reader.field(record, *place, known)
        return shown


def frame(data, at):
    """(type, CRC, payload or None if the CRC is wrong, end), or None if no frame stands there."""
    word, crc = struct.unpack_from("<II", data, at) if at + 12 <= len(data) else (0xFFFFFF, 0)
    end = at + 12 + (word & 0xFFFFFF)
    if word >> 24 == 0 or word & 0xFFFFFF > 1 << 20 or data[end - 4 : end] != data[at : at + 4]:
        return None
    payload = data[at + 8 : end - 4]
    return word >> 24, crc, payload if zlib.crc32(payload, zlib.crc32(data[at : at + 4])) == crc else None, end


def frames(data, at, lost):
    """(place, type, CRC, payload) of all whole frames. Calls `lost` with a line for what lies between."""
    while at < len(data):
        begin, found = at, frame(data, at)
        if found is None:
            ahead = ((place, frame(data, place)) for place in range(at + 1, len(data)))
            at = next((place for place, other in ahead if other and other[2] is not None and 1 <= other[0] <= 6), len(data))
            lost(f"{at - begin} bytes from {begin} are no whole frame" + (", to the end" if at == len(data) else ""))
            continue
        kind, crc, payload, at = found
        if payload is None:
            within = ((place, frame(data, place)) for place in range(begin + 1, at))
            at = next((place for place, other in within if other and other[2] is not None and 1 <= other[0] <= 6), at)
            lost(f"the frame at {begin} of type {kind} is damaged")
        else:
            yield begin, kind, crc, payload


def read_capture(data, lost=lambda line: None):
    """The snapshots of a file. Calls `lost` with a line for what was lost."""
    first, damage = 24, []
    if data[:8] == magic and len(data) >= 24 and zlib.crc32(data[:20]) == struct.unpack_from("<I", data, 20)[0]:
        version, order, first = struct.unpack_from("<III", data, 8)
        expect((version, order) == (1, 0x01020304) and first >= 24, "header", f"version 1, not {version}")
    else:
        damage.append("the header is damaged")
    whole = list(frames(data, first, damage.append))
    expect(data[:8] == magic or whole and whole[0][0] == 24, "file", "a capture file")
    for line in damage:
        lost(line)
    decoder = Decoder({zlib.crc32(payload): payload for _, kind, _, payload in whole if kind == 1})
    for at, kind, crc, data in whole:
        payload = Payload(data)
        try:
            if kind in (2, 3):
                yield decoder.snapshot(kind, crc, payload)
            elif kind == 5:
                cause, before, behind = (payload.number(item) for item in "Bqq")
                lost(f"gap between {before} and {behind}, cause {cause}: {payload.text()}")
        except ValueError as error:
            lost(f"the frame at {at} of type {kind} cannot be decoded: {error}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("Usage: capture_reader.py FILE")
    try:
        with open(sys.argv[1], "rb") as file:
            for snapshot in read_capture(file.read(), lambda line: sys.stderr.write(f"{sys.argv[1]}: {line}\n")):
                print(json.dumps(snapshot))
    except (ValueError, OSError) as error:
        sys.stderr.write(f"capture_reader: {sys.argv[1]}: {getattr(error, 'strerror', None) or error}\n")
        sys.exit(2)
