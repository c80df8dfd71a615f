"""Bitmap blocks, worked out by hand."""
import struct

import numpy as np
import pytest
import qk7

GREYS = b"".join(bytes([grey, grey, grey, 0]) for grey in range(256))


def head(width=3, height=2, planes=1, bits=8, compression=0, used=0, size=40, x=0, y=0):
    return struct.pack("<IiiHHIIiiII", size, width, height, planes, bits, compression, 0, x, y,
                       used, 0)


#: Two lines of three pixels, each with a byte of padding.
LINES = bytes([1, 2, 3, 99, 4, 5, 6, 99])
BLOCK = head(x=2425, y=4967) + GREYS + LINES


def test_pixels_are_those_of_the_block_without_padding():
    bitmap = qk7.Bitmap(BLOCK)
    assert (bitmap.width, bitmap.height) == (3, 2)
    assert bitmap.pixels.tolist() == [[1, 2, 3], [4, 5, 6]]
    assert bitmap.picture.tolist() == [[4, 5, 6], [1, 2, 3]]
    assert repr(bitmap) == "<qk7.Bitmap of 3 x 2 pixels>"


def test_resolution_is_told_in_picture_elements_per_metre():
    assert qk7.Bitmap(BLOCK).resolution == qk7.Resolution(x=2425, y=4967)


def test_block_with_a_shorter_palette_is_taken():
    assert qk7.Bitmap(head(used=2) + GREYS[:8] + LINES).pixels.tolist() == [[1, 2, 3], [4, 5, 6]]


def test_views_copy_nothing():
    block = np.frombuffer(bytearray(BLOCK), np.uint8)
    bitmap = qk7.Bitmap(block)
    for view in bitmap.block, bitmap.pixels, bitmap.picture:
        assert np.shares_memory(view, block)
    bitmap.picture[0, 2] = 200
    assert block[-2] == 200


def test_bytes_stay_read_only():
    with pytest.raises(ValueError):
        qk7.Bitmap(BLOCK).pixels[0, 0] = 1


def test_bitmap_of_pixels_is_the_block_that_holds_them():
    pixels = np.array([[1, 2, 3], [4, 5, 6]], np.uint8)
    bitmap = qk7.Bitmap.from_pixels(pixels, (2425, 4967))
    padded = bytes([1, 2, 3, 0, 4, 5, 6, 0])
    assert bytes(bitmap.block) == head(x=2425, y=4967) + GREYS + padded


@pytest.mark.parametrize("arrange", [np.asfortranarray, lambda a: a[::-1][::-1], lambda a: a.copy(),
                                     lambda a: np.repeat(a, 2, axis=1)[:, ::2]])
def test_pixels_may_lie_in_any_order(arrange):
    pixels = np.arange(12, dtype=np.uint8).reshape(3, 4)
    assert qk7.Bitmap.from_pixels(arrange(pixels)).pixels.tolist() == pixels.tolist()


@pytest.mark.parametrize("pixels, fault", [
    (np.zeros((2, 3), np.int8), TypeError),
    (np.zeros((2, 3), np.float64), TypeError),
    ([[1, 2]], TypeError),
    (None, TypeError),
    (np.zeros(6, np.uint8), ValueError),
    (np.zeros((2, 3, 1), np.uint8), ValueError),
    (np.zeros((0, 3), np.uint8), ValueError),
    (np.zeros((2, 0), np.uint8), ValueError),
])
def test_what_is_no_grey_picture_is_refused(pixels, fault):
    with pytest.raises(fault, match="pixels"):
        qk7.Bitmap.from_pixels(pixels)


def test_blank_bitmap_is_black_and_to_be_filled():
    bitmap = qk7.Bitmap.blank(5, 4, (19685, 19685))
    assert bitmap.pixels.shape == (4, 5)
    assert not bitmap.pixels.any()
    bitmap.pixels[:] = 7
    assert bytes(bitmap.block[-8:]) == bytes([7] * 5 + [0] * 3)
    assert bitmap.resolution == (19685, 19685)


@pytest.mark.parametrize("size", [(0, 1), (1, 0), (-4, 4)])
def test_blank_bitmap_has_pixels(size):
    with pytest.raises(ValueError, match="pixels are none"):
        qk7.Bitmap.blank(*size)


def test_resolution_that_fits_into_no_header_is_refused():
    with pytest.raises(ValueError, match="do not fit into a header"):
        qk7.Bitmap.blank(1, 1, (1 << 31, 0))


@pytest.mark.parametrize("block, words", [
    (b"", "0 bytes are fewer than the header has, 40"),
    (BLOCK[:39], "39 bytes are fewer"),
    (b"BM" + BLOCK, "begin with the header of a bitmap file"),
    (head(size=124) + GREYS + LINES, "header of 40 bytes is expected, not of 124"),
    (head(planes=3) + GREYS + LINES, "not 3 of 8 bits with compression 0"),
    (head(bits=24) + GREYS + LINES, "not 1 of 24 bits"),
    (head(compression=1) + GREYS + LINES, "with compression 1"),
    (head(width=0) + GREYS + LINES, "0 x 2 pixels are none"),
    (head(height=-2) + GREYS + LINES, "3 x -2 pixels are none"),
    (BLOCK[:-1], "3 x 2 pixels are a block of 1072 bytes, not of 1071"),
    (BLOCK + b"\0", "not of 1073"),
    (head(used=0xFFFFFFFF) + GREYS + LINES, "not of 1072"),
    (head(width=0x7FFFFFFF, height=0x7FFFFFFF) + GREYS, "not of 1064"),
])
def test_what_is_no_block_is_refused_with_what_is_wrong(block, words):
    with pytest.raises(ValueError, match=words):
        qk7.Bitmap(block)


def test_file_is_written_as_it_was_read(tmp_path, data):
    name = data / "geometric/904_raw.bmp"
    qk7.Bitmap.read(name).write(tmp_path / "again.bmp")
    assert (tmp_path / "again.bmp").read_bytes() == name.read_bytes()


def test_file_is_a_header_and_the_block(tmp_path):
    qk7.Bitmap(BLOCK).write(str(tmp_path / "a.bmp"))
    assert (tmp_path / "a.bmp").read_bytes() == \
        b"BM" + struct.pack("<IHHI", 14 + len(BLOCK), 0, 0, 14 + 40 + 1024) + BLOCK


@pytest.mark.parametrize("content, words", [
    (b"", "is no bitmap file"),
    (b"BM", "is no bitmap file"),
    (b"PN" + bytes(100), "is no bitmap file"),
    (b"BM" + bytes(12), "0 bytes are fewer"),
    (b"BM" + struct.pack("<IHHI", 0, 0, 0, 1090) + BLOCK, "at byte 1090, and .* at 1078"),
])
def test_file_that_is_none_is_refused_by_its_name(tmp_path, content, words):
    (tmp_path / "a.bmp").write_bytes(content)
    with pytest.raises(ValueError, match="a.bmp: .*" + words):
        qk7.Bitmap.read(tmp_path / "a.bmp")
