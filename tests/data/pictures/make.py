#!/usr/bin/env python3
"""Makes the PNG pictures of this folder from the description of the format, by zlib alone.

    make.py           writes them
    make.py --check   fails where one is missing or differs

Each is 37 x 23 pixels of 8-bit grey, (7 x + 13 y) mod 256, at 19685 x 39370 pixels per metre;
filters.png has another filter in every line, interlaced.png is in seven passes.
"""
import os
import struct
import sys
import zlib

WIDTH, HEIGHT = 37, 23


def sample(x, y):
    return (7 * x + 13 * y) % 256


def chunk(name, content):
    return (struct.pack(">I", len(content)) + name + content +
            struct.pack(">I", zlib.crc32(name + content)))


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    return a if pa <= pb and pa <= pc else b if pb <= pc else c


def filtered(kind, line, above):
    out = bytearray([kind])
    for x, value in enumerate(line):
        a = line[x - 1] if x else 0
        b = above[x]
        c = above[x - 1] if x else 0
        guess = [0, a, b, (a + b) // 2, paeth(a, b, c)][kind]
        out.append((value - guess) % 256)
    return bytes(out)


def lines(xs, ys, kind):
    """The filtered lines of a pass."""
    above = [0] * len(xs)
    out = b""
    for number, y in enumerate(ys):
        line = [sample(x, y) for x in xs]
        out += filtered((number + kind) % 5, line, above)
        above = line
    return out


def picture(passes):
    interlaced = len(passes) > 1
    header = struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 0, 0, 0, interlaced)
    pixels = b"".join(lines(xs, ys, n) for n, (xs, ys) in enumerate(passes) if xs and ys)
    stream = zlib.compress(pixels, 9)
    middle = len(stream) // 2
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"pHYs", struct.pack(">IIB", 19685, 39370, 1)) +
            chunk(b"tEXt", b"Title\0a slope") +
            chunk(b"IDAT", stream[:middle]) + chunk(b"IDAT", stream[middle:]) + chunk(b"IEND", b""))


ADAM7 = [(0, 8, 0, 8), (4, 8, 0, 8), (0, 4, 4, 8), (2, 4, 0, 4), (0, 2, 2, 4), (1, 2, 0, 2),
         (0, 1, 1, 2)]
FILES = {
    "filters.png": picture([(list(range(WIDTH)), list(range(HEIGHT)))]),
    "interlaced.png": picture([(list(range(x, WIDTH, dx)), list(range(y, HEIGHT, dy)))
                               for x, dx, y, dy in ADAM7]),
}

folder = os.path.dirname(os.path.abspath(__file__))
for name, content in FILES.items():
    path = os.path.join(folder, name)
    if sys.argv[1:] == ["--check"]:
        with open(path, "rb") as file:
            if file.read() != content:
                sys.exit(f"{path} is not what this script makes")
    else:
        with open(path, "wb") as file:
            file.write(content)
