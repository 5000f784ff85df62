"""The layout of the records as the compiler laid it out, read from the description of the binary interface.

Nothing here comes from the dictionary: the tests hold its outputs against this reading.
"""
import math
import struct
import xml.etree.ElementTree

# Components in the order of their reports, with their records.
RECORDS = {
    "tdemux": "SMGR_TDEMUX_STATS",
    "vframer": "SMGR_VFRAMER_STATS",
    "vdecoder": "SMGR_VCUDEC_STATS",
    "audio": "SMGR_DECODER_AUDIO_STATS",
    "metadata": "SMGR_METADATADEC_STATS",
    "buffering": "SMGR_CBUFFERING_STATS",
    "clock_recovery": "SMGR_DECODER_CLOCK_RECOVERY_STATS",
    "usage": "SMGR_DECODER_SDI_USAGE_STATS",
}

SCALARS = {"int": "<i", "unsigned int": "<I", "long int": "<q", "unsigned long int": "<Q", "unsigned char": "<B", "float": "<f"}


class Leaf:
    """A value in a record."""

    def __init__(self, path, offset, size, format):
        self.path = path  # names of members and numbers of elements, outermost first
        self.offset = offset  # [bytes]
        self.size = size  # [bytes]
        self.format = format  # as struct has it; "s" for arrays of bytes


class Layout:
    """The leaves of every record."""

    def __init__(self, path):
        tree = xml.etree.ElementTree.parse(path)
        self._types = {e.get("id"): e for e in tree.iter() if e.get("id")}
        typedefs = {e.get("name"): e.get("type-id") for e in tree.iter("typedef-decl")}
        self.leaves = {}
        self.sizes = {}
        for component, record in RECORDS.items():
            structure = self._resolve(typedefs[record])
            self.sizes[component] = int(structure.get("size-in-bits")) // 8
            self.leaves[component] = list(self._walk(structure, (), 0))

    def _resolve(self, type_id):
        element = self._types[type_id]
        while element.tag in ("typedef-decl", "qualified-type-def"):
            element = self._types[element.get("type-id")]
        return element

    def _walk(self, element, path, offset):
        if element.tag in ("class-decl", "union-decl"):
            for member in element.findall("data-member"):
                variable = member.find("var-decl")
                place = offset + int(member.get("layout-offset-in-bits") or 0) // 8
                yield from self._walk(self._resolve(variable.get("type-id")), path + (variable.get("name"),), place)
        elif element.tag == "array-type-def":
            inner = self._resolve(element.get("type-id"))
            size = int(element.get("size-in-bits")) // 8
            if inner.get("size-in-bits") == "8":
                yield Leaf(path, offset, size, "s")
                return
            count = int(element.find("subrange").get("length"))
            for i in range(count):
                yield from self._walk(inner, path + (i,), offset + i * (size // count))
        elif element.tag == "enum-decl":
            yield Leaf(path, offset, 4, "<i")  # enumerations are kept in an int everywhere, whatever their enumerators need
        else:
            format = SCALARS[element.get("name")]
            yield Leaf(path, offset, struct.calcsize(format), format)

    def split(self, snapshot):
        """The records of a snapshot, the bytes of all eight one after the other."""
        at = 0
        for component, size in self.sizes.items():
            yield component, snapshot[at : at + size]
            at += size

    def raw(self, component, record):
        """What the raw JSON of a record has to be, once a parser has read it."""
        root = {}
        for leaf in self.leaves[component]:
            value = raw_value(leaf, record)
            block = root
            for i, name in enumerate(leaf.path[:-1]):
                block = _enter(block, name, [] if isinstance(leaf.path[i + 1], int) else {})
            block[leaf.path[-1]] = value
            if isinstance(value, int) and abs(value) > 2**53 - 1:
                block[leaf.path[-1] + "_s"] = str(value)
        return root


class Float32:
    """A finite float of a record: equal to a number that reads back as the same bits."""

    def __init__(self, bits):
        self._bits = bits

    def __eq__(self, other):
        return isinstance(other, (int, float)) and struct.pack("<f", other) == self._bits

    def __repr__(self):
        return "Float32(%r)" % self._bits.hex()


def _enter(block, name, fresh):
    if isinstance(block, list):
        if name == len(block):
            block.append(fresh)
        return block[name]
    return block.setdefault(name, fresh)


def value(leaf, record):
    """The value of a leaf: a number, or bytes."""
    piece = record[leaf.offset : leaf.offset + leaf.size]
    return piece if leaf.format == "s" else struct.unpack(leaf.format, piece)[0]


def raw_value(leaf, record):
    found = value(leaf, record)
    if isinstance(found, bytes):
        return found.hex()
    if isinstance(found, float):
        bits = record[leaf.offset : leaf.offset + 4]
        return Float32(bits) if math.isfinite(found) else bits[::-1].hex()
    return found
