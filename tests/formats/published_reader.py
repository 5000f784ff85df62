"""Prints the file of a published decoder as one JSON object: published_reader.py FILE

Written from docs/publisher-format.md alone, which it puts to the test: it shares no code with what writes these files.
A field that the host does not measure is null. What cannot be read as documented is refused with a line.
"""
import fcntl
import json
import os
import re
import stat
import struct
import sys
import time

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
    expect(len(data) >= 48, where, f"at least 48 bytes, not {len(data)}")
    name = text(data[:32], where + ", name")
    record_size, count, row_size, first = struct.unpack_from("<4I", data, 32)
    expect(row_size >= 32 and 48 + count * row_size <= len(data), where, f"{count} rows of {row_size} >= 32 bytes")
    rows = {}
    for at in range(48, 48 + count * row_size, row_size):
        offset, width, elements, stride, name_at, c_at, name_size, c_size, kind, _ = struct.unpack_from("<6I4H", data, at)
        row = f"{where}, field {len(rows)}"
        public = data[name_at : name_at + name_size].decode("latin-1")
        expect(len(public) == name_size and c_at + c_size <= len(data), row, "names within the section")
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
    shown = [n if abs(n) < float("inf") else str(n) for n in numbers]  # JSON has no other numbers
    return shown if kind == 7 else shown[0]


def fields(record, rows, unmeasured):
    """The fields whose type is known. Those whose row's number is among the unmeasured are None."""
    shown = {}
    for i, (name, (offset, width, elements, stride, kind)) in enumerate(rows.items()):
        if is_known(width, kind):
            values = [value(record[offset + e * stride :][:width], kind) for e in range(elements)]
            shown[name] = None if i in unmeasured else values if stride else values[0]
    return shown


def read_path(path):
    with open(path, "rb", 0, opener=lambda name, flags: os.open(name, flags | os.O_NOFOLLOW | os.O_NONBLOCK)) as file:
        return read_file(file.fileno())


def read_file(file):
    status = os.fstat(file)
    expect(stat.S_ISREG(status.st_mode) and status.st_size <= 1 << 24, "file", "a regular file of at most 16 MiB")
    header = read(file, 0, 208, "header")
    expect(header[:12] == b"DECSTATS\1\0\0\0", "header", "DECSTATS and version 1")
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
    lock = fcntl.fcntl(file, fcntl.F_OFD_GETLK, struct.pack("hhqqi0q", fcntl.F_RDLCK, 0, 0, 0, 0))
    alive = struct.unpack_from("h", lock)[0] != fcntl.F_UNLCK  # before any slot: what is dead has written its last word
    pulse, beat = read_slot(file, sections[3][0], 8, alive, "heartbeat")
    expect(pulse["slot"] != "never written", "heartbeat", "the one that opening writes")
    slots = {n: read_slot(file, sections[2][n], layouts[n][1], alive, f"record {n}") for n in layouts if n in sections[2]}
    # After the records, so that what a host says before its first record holds for every record that was read.
    size = max(((first + len(rows) + 7) // 8 for _, _, first, rows in layouts.values()), default=0)
    _, mask = read_slot(file, sections[4][0], size, alive, "not measured") if sections[4] else (None, None)
    bits, now, components = int.from_bytes(mask or b"", "little"), time.time_ns(), {}
    for number, (component, record) in slots.items():
        name, _, first, rows = layouts[number]
        components[name] = component
        if record is not None:
            component["age_s"] = (now - component["moment"]) / 1e9
            component["fields"] = fields(record, rows, [i for i in range(len(rows)) if bits >> first + i & 1])
    age = (time.monotonic_ns() - struct.unpack("<q", beat)[0]) / 1e6 if beat else 0
    starting = all(component["slot"] == "never written" for component in components.values())
    state = "stale" if not alive else "hung" if age > 5 * interval else "starting" if starting else "live"
    return {"decoder": decoder, "instance": instance.hex(), "boot": boot.hex(), "release": release, "start": start, "state": state,
            "heartbeat": pulse | {"interval_ms": interval, "age_ms": beat and age}, "components": components}


def print_objects(read_objects):
    """Prints the objects that are read of the file on the command line, one a line."""
    try:
        print(*map(json.dumps, read_objects(sys.argv[1])), sep="\n")
    except (ValueError, OSError) as error:
        sys.exit(f"{sys.argv[0]}: {sys.argv[1]}: {error}")


if __name__ == "__main__":
    print_objects(lambda path: [read_path(path)])
