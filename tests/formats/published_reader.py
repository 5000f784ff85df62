#!/usr/bin/env python3
"""Prints the file of a published decoder as one JSON object: published_reader.py FILE

Written from docs/publisher-format.md alone, which it puts to the test: it shares no code with what writes these files.
A field that the host does not measure is null. Exit status 2, with a line on stderr, if the file cannot be read as documented.
"""
import fcntl
import json
import math
import os
import re
import stat
import struct
import sys
import time

max_file = 1 << 24  # what an honest file stays far below, so that a false size does not cost memory
value_formats = {1: "<i", 2: "<I", 3: "<q", 4: "<Q", 5: "<B", 6: "<f", 7: "<qq"}


def expect(condition, where, expected):
    if not condition:
        raise ValueError(f"{where}: expected {expected}")


def read(file, offset, size, where):
    data = os.pread(file, size, offset)
    expect(len(data) == size, where, f"{size} bytes at offset {offset}, but the file ends")
    return data


def text(data, where):
    decoded = data.split(b"\0")[0].decode("utf-8", "surrogateescape")
    expect(not re.search("[\0-\x1f\x7f-\x9f\ud800-\udfff]", decoded), where, "UTF-8 without control characters")
    return decoded


def is_alive(file):
    query = struct.pack("hhqqi0q", fcntl.F_RDLCK, 0, 0, 0, 0)
    return struct.unpack_from("h", fcntl.fcntl(file, fcntl.F_OFD_GETLK, query))[0] != fcntl.F_UNLCK


def read_slot(file, section, content_size, alive, where):
    """Returns what became of it, with the number and the moment of the writing that was read, and its content or None."""
    offset, size = section
    expect(size >= 16 + (content_size + 7) // 8 * 8, where, f"a slot for {content_size} bytes, not a section of {size}")
    for _ in range(500):
        (before,) = struct.unpack("<Q", read(file, offset, 8, where))
        if before == 0 or before % 2 and not alive:
            return {"slot": "lost" if before else "never written"}, None
        data = read(file, offset + 8, 8 + content_size, where)
        if before % 2 == 0 and struct.unpack("<Q", read(file, offset, 8, where))[0] == before:
            return {"slot": "read", "writings": before // 2, "moment": struct.unpack_from("<q", data)[0]}, data[8:]
        time.sleep(0.0001)
    return {"slot": "busy"}, None


def is_known(width, kind):
    return kind in (8, 9) or kind in value_formats and width == struct.calcsize(value_formats[kind])


def read_layout(data, where):
    size = len(data)
    expect(size >= 48, where, f"at least 48 bytes, not {size}")
    name = text(data[:32], where + ", name")
    record_size, count, row_size, first = struct.unpack_from("<4I", data, 32)
    expect(row_size >= 32 and 48 + count * row_size <= size, where, f"{count} rows of {row_size} >= 32 bytes in {size} bytes")
    rows = {}
    for at in range(48, 48 + count * row_size, row_size):
        offset, width, elements, stride, name_at, c_at, name_size, c_size, kind, _ = struct.unpack_from("<6I4H", data, at)
        row = f"{where}, field {len(rows)}"
        public = data[name_at : name_at + name_size].decode("latin-1")
        expect(len(public) == name_size and c_at + c_size <= size, row, "names within the section")
        expect(re.fullmatch("[!-~]+", public) and public not in rows, row, f"a name of its own in printable ASCII, not {public!r}")
        expect(width >= 1, row, "a value of a byte or more")
        expect(elements >= 1 and (stride >= width or stride == 0 and elements == 1), row, "an array's elements with their size")
        expect(offset + (elements - 1) * stride + width <= record_size, row, f"a place in the record of {record_size} bytes")
        rows[public] = offset, width, elements, stride, kind
    return name, record_size, first, rows


def value(data, kind):
    if kind > 7:
        return data.hex() if kind == 9 else data.split(b"\0")[0].decode("utf-8", "backslashreplace")
    numbers = struct.unpack(value_formats[kind], data)
    shown = [n if math.isfinite(n) else str(n) for n in numbers]  # JSON has no other numbers
    return shown if kind == 7 else shown[0]


def field(record, offset, width, elements, stride, kind):
    values = [value(record[offset + i * stride :][:width], kind) for i in range(elements)]
    return values if stride else values[0]


def read_path(path):
    with open(path, "rb", 0, opener=lambda name, flags: os.open(name, flags | os.O_NOFOLLOW | os.O_NONBLOCK)) as file:
        return read_file(file.fileno())


def read_file(file):
    status = os.fstat(file)
    expect(stat.S_ISREG(status.st_mode) and status.st_size <= max_file, "file", f"a regular file of at most {max_file} bytes")
    expect(read(file, 0, 12, "header") == b"DECSTATS\1\0\0\0", "header", "DECSTATS and version 1")
    header = read(file, 0, 208, "header")
    table_at, size, instance, boot, start, interval, count, entry_size = struct.unpack_from("<IQ16s16sqIII", header, 12)
    expect(size == status.st_size, "header, size of the file", f"{status.st_size}, as it is, not {size}")
    expect(interval > 0, "header, interval of heartbeats", "not 0")
    whole = table_at >= 208 and entry_size >= 24 and table_at + count * entry_size <= size
    expect(whole, "table of sections", f"{count} entries of {entry_size} >= 24 bytes from {table_at} >= 208 in {size} bytes")
    decoder, release = text(header[80:144], "header, name of the decoder"), text(header[144:208], "header, release")
    expect(re.fullmatch("[A-Za-z0-9_-][A-Za-z0-9._-]*", decoder), "header, name of the decoder", f"a name, not {decoder!r}")
    table = read(file, table_at, count * entry_size, "table of sections")
    sections = {1: {}, 2: {}, 3: {}, 4: {}}
    for at in range(0, len(table), entry_size):
        kind, number, offset, length = struct.unpack_from("<IIQQ", table, at)
        where = f"table of sections, entry {at // entry_size}"
        if kind in sections:
            expect(offset % 8 == 0 and offset + length <= size, where, f"a place in the file, not {length} bytes at {offset}")
            expect(number < (64 if kind < 3 else 1) and number not in sections[kind], where, f"another component than {number}")
            sections[kind][number] = offset, length
    expect(sections[3], "table of sections", "a heartbeat")
    layouts = {n: read_layout(read(file, *section, f"layout {n}"), f"layout {n}") for n, section in sections[1].items()}
    expect(len({layout[0] for layout in layouts.values()}) == len(layouts), "layouts", "one for each component")
    alive = is_alive(file)  # before any slot: what is dead has written its last word
    pulse, beat = read_slot(file, sections[3][0], 8, alive, "heartbeat")
    expect(pulse["slot"] != "never written", "heartbeat", "the one that opening writes")
    slots = {n: read_slot(file, sections[2][n], layouts[n][1], alive, f"record {n}") for n in layouts if n in sections[2]}
    # After the records, so that what a host says before its first record holds for every record that was read.
    size = max(((first + len(rows) + 7) // 8 for _, _, first, rows in layouts.values()), default=0)
    unmeasured, mask = read_slot(file, sections[4][0], size, alive, "not measured") if sections[4] else (None, None)
    bits, now, components = int.from_bytes(mask or b"", "little"), time.time_ns(), {}
    for number, (component, record) in slots.items():
        name, _, first, rows = layouts[number]
        components[name] = component
        if record is not None:
            component["age_s"] = (now - component["moment"]) / 1e9
            known = [(i, n, row) for i, (n, row) in enumerate(rows.items()) if is_known(row[1], row[4])]
            component["fields"] = {n: None if bits >> first + i & 1 else field(record, *row) for i, n, row in known}
    age = (time.monotonic_ns() - struct.unpack("<q", beat)[0]) / 1e6 if beat else 0
    starting = all(component["slot"] == "never written" for component in components.values())
    state = "stale" if not alive else "hung" if age > 5 * interval else "starting" if starting else "live"
    return {"decoder": decoder, "instance": instance.hex(), "boot": boot.hex(), "release": release, "start": start, "state": state,
            "heartbeat": pulse | {"interval_ms": interval, "age_ms": beat and age},
            "not_measured": unmeasured, "components": components}


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("Usage: published_reader.py FILE")
    try:
        print(json.dumps(read_path(sys.argv[1]), indent=1))
    except (ValueError, OSError) as error:
        sys.stderr.write(f"published_reader: {sys.argv[1]}: {getattr(error, 'strerror', None) or error}\n")
        sys.exit(2)
