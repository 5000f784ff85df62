"""Snapshots to look at, and their renderings."""
import os
import pathlib
import random
import struct
import subprocess
import tempfile

import layout

NASTY_TEXTS = [
    b"", b"plain", b"\xff\xfe", b'quote" back\\slash', b"line\nfeed\r\ttab", b"\x01\x1b[31m", "größe".encode(), b"\xe2\x82", b"\xed\xa0\x80",
    b"\xf4\x90\x80\x80", b"\xc0\xaf", "\u2028\ufeff".encode(), b"</script>", b"{}=,# EOF",
]
NASTY_FLOATS = [0x00000000, 0x80000000, 0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC12345, 0x00000001, 0x7F7FFFFF, 0x41EFC28F, 0x3F800000]


def random_value(source, leaf):
    """Bytes for a leaf: anything, an edge, or something that decoders have."""
    kind = source.randrange(4)
    if leaf.format == "s":
        if kind == 0:
            return source.randbytes(leaf.size)
        if kind == 1:
            return bytes(leaf.size)
        return source.choice(NASTY_TEXTS)[: leaf.size].ljust(leaf.size, b"\0" if kind == 2 else b"x")
    if leaf.format == "<f" and kind > 1:
        return struct.pack("<I", source.choice(NASTY_FLOATS))
    if kind == 0:
        return source.randbytes(leaf.size)
    if kind == 1:
        return source.choice([bytes(leaf.size), b"\xff" * leaf.size, b"\xff" * (leaf.size - 1) + b"\x7f", b"\0" * (leaf.size - 1) + b"\x80"])
    small = source.choice([0, 1, 2, 3, 4, 7, 34, 90000, 2**31 - 1, 1655208840]) if leaf.size > 1 else source.choice([0, 1, 2, 9])
    return small.to_bytes(leaf.size, "little")


def random_snapshots(records, seed, count):
    """Snapshots of any bytes, and of bytes that reach every branch more often."""
    source = random.Random(seed)
    for number in range(count):
        snapshot = b""
        for component, size in records.sizes.items():
            if number % 4 == 0:
                snapshot += source.randbytes(size)
                continue
            record = bytearray(size)
            for leaf in records.leaves[component]:
                record[leaf.offset : leaf.offset + leaf.size] = random_value(source, leaf)
            snapshot += bytes(record)
        yield snapshot


def renderings(program, view, snapshots, environment=None):
    """What render_snapshots makes of each snapshot."""
    data = b"".join(snapshots)
    run = subprocess.run([program, view], input=data, stdout=subprocess.PIPE, env=environment, check=True)
    at = 0
    while at < len(run.stdout):
        size = int.from_bytes(run.stdout[at : at + 8], "little")
        yield run.stdout[at + 8 : at + 8 + size].decode("utf-8")
        at += 8 + size




def directed_snapshots(records):
    """Snapshots in which everything is in use, with an SRT link and with FEC, and one of zeros."""
    for encapsulation in (34, 3):
        special = {"enEncapsulation": encapsulation, "enFECType": 2, "enType": 2, "enBufferingMode": 4, "trackingMode": 1}
        snapshot = b""
        for component, size in records.sizes.items():
            record = bytearray(size)
            for leaf in records.leaves[component]:
                value = special.get(leaf.path[-1], 1)
                packed = b"t".ljust(leaf.size, b"\0") if leaf.format == "s" else struct.pack(leaf.format, value)
                record[leaf.offset : leaf.offset + leaf.size] = packed
            snapshot += bytes(record)
        yield snapshot
    yield bytes(sum(records.sizes.values()))


def samples(decstats, records):
    """The made-up decoders of the tool."""
    listing = subprocess.run([decstats, "demo", "--list"], stdout=subprocess.PIPE, check=True, text=True).stdout
    for line in listing.splitlines():
        with tempfile.TemporaryDirectory() as directory:
            subprocess.run([decstats, "sample", line.split()[0], directory], check=True)
            paths = [os.path.join(directory, component.replace("_", "-") + ".rec") for component in records.sizes]
            yield b"".join(pathlib.Path(path).read_bytes() for path in paths)
