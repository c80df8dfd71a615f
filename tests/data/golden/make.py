#!/usr/bin/env python3
"""Writes the golden blocks beside it, byte by byte from docs/file-formats.md.

    make.py            writes them
    make.py --check    compares them with what stands here; status 1 where one differs

It shares nothing with the library: the checksum is that of zlib turned to the format's order of
bits, the digest that of hashlib. All coordinates are sums of halves and quarters, so that they are
exact as 32-bit floats; tests/Calibrate/GoldenBlocksTest.cpp states them by the same formulas.
"""

import hashlib
import pathlib
import struct
import sys
import zlib

FOLDER = pathlib.Path(__file__).resolve().parent
COLUMNS = [10, 11, 11, 11, 11, 11, 10]


def reversed_bits(number, bits):
    return int(format(number, f"0{bits}b")[::-1], 2)


def crc32(data):
    """Most significant bit first; zlib takes the least significant one first."""
    turned = bytes(reversed_bits(byte, 8) for byte in data)
    return reversed_bits(zlib.crc32(turned), 32)


assert crc32(b"123456789") == 0xFC891918


def tags(*texts):
    return b"".join(text.encode().ljust(4, b"\0") for text in texts)


def numbers(*values):
    return struct.pack(f">{len(values)}I", *values)


def points(pairs):
    return numbers(len(pairs)) + b"".join(struct.pack(">2f", x, y) for x, y in pairs)


def dots(place):
    """Column by column from the left, each from the top."""
    return [place(c, r) for c, length in enumerate(COLUMNS) for r in range(length)]


class Record:
    """A small corrected image, 3 pixels from dot to dot, told by its resolution."""

    source = (30, 80)
    source_pels = (2425, 4967)
    target = (24, 36)
    target_pels = (1500, 1500)
    background = 17
    planes = 1

    def target_points(self):
        return dots(lambda c, r: (3.0 + 3 * c, 3.0 + 3 * r))

    def actual_points(self, plane):
        return dots(lambda c, r: (2.0 + 4 * c + 0.25 * r, 6.0 + 6.5 * r + 0.25 * c + 0.5 * plane))


class Record500(Record):
    """The layouts without a resolution are for 500 dots per inch: about 39 pixels."""

    source = (390, 1052)
    target = (320, 480)
    target_pels = (19685, 19685)

    def target_points(self):
        return dots(lambda c, r: (43.0 + 39 * c, 45.0 + 39 * r))

    def actual_points(self, plane):
        return dots(lambda c, r: (30.0 + 50 * c + 0.5 * r, 40.0 + 95 * r + 0.25 * c))


def block(record, layout, head=None):
    data = head or tags("CAL", "GEO", f"00{layout}")
    data += numbers(*record.source)
    if layout >= 5:
        data += numbers(*record.source_pels)
    data += numbers(*record.target)
    if layout >= 2:
        data += numbers(*record.target_pels)
    if layout >= 3:
        data += numbers(record.planes)
    if layout >= 4:
        data += bytes([record.background])
    actual = b"".join(points(record.actual_points(plane)) for plane in range(record.planes))
    target = points(record.target_points())
    data += actual + target if layout < 3 else target + actual
    if layout >= 6:
        data += numbers(crc32(data))
    return data


def stored(layout):
    """What the block of a layout holds."""
    record = Record500() if layout < 2 else Record()
    record.planes = {3: 2, 6: 3}.get(layout, 1)
    return record


def as_newest(layout):
    """The same in the newest layout: what the older one lacks is 0, but for what file-formats.md
    tells."""
    record = stored(layout)
    if layout < 5:
        record.source_pels = (0, 0)
    if layout < 4:
        record.background = 0
    return block(record, 6)


def digest(record):
    data = struct.pack("<4I", *record.source, *record.source_pels)
    data += struct.pack("<4I", *record.target, *record.target_pels)
    data += struct.pack("<IB", record.planes, record.background)
    for target, actual in zip(record.target_points(), record.actual_points(0)):
        data += struct.pack("<4f", *target, *actual)
    return hashlib.md5(data).digest()


def entry(x, y, index):
    """A window of 16 samples that wanders, with one weight that differs from entry to entry."""
    if index % 5 == 4:
        return struct.pack("<i16h", -1, *[0] * 16)
    weights = [64] * 16
    weights[index % 16] += 512 * (index % 7 - 3)
    return struct.pack("<i16h", 2 * y * 32 + x, *weights)  # lines of 30 bytes, padded to 32


def precalculated(record):
    width, height = record.target
    data = tags("CAL", "PRE", "001") + digest(record) + tags("PRE", "GEO", "001")
    data += numbers(*record.source, *record.target, *record.target_pels, record.planes)
    data += bytes([record.background])
    data += numbers(0x4B504600, 1) + bytes([1])
    data += numbers(*record.target, 36 * record.planes, *record.target_pels, 0)
    data += struct.pack(">2d", 0.0, 255.0) + numbers(0)
    assert len(data) == 122
    for y in range(height):
        for x in range(width):
            data += entry(x, y, y * width + x)
    return data + numbers(0x4B504600)


def all_blocks():
    blocks = {f"layout{layout}.cal": block(stored(layout), layout) for layout in range(7)}
    blocks["old_tags.cal"] = block(stored(0), 0, tags("Cal", "Lmv", "002"))
    for layout in range(6):
        blocks[f"layout{layout}_as_newest.cal"] = as_newest(layout)
    blocks["table.cal"] = block(Record(), 6)
    blocks["table.pre"] = precalculated(Record())
    return blocks


def differs(name, data):
    path = FOLDER / name
    return not path.is_file() or path.read_bytes() != data


def main():
    blocks = all_blocks()
    if sys.argv[1:] == ["--check"]:
        wrong = [name for name, data in blocks.items() if differs(name, data)]
        for name in wrong:
            print(f"{name} is not what make.py writes")
        return 1 if wrong else 0
    for name, data in blocks.items():
        (FOLDER / name).write_bytes(data)
    return 0


if __name__ == "__main__":
    sys.exit(main())
