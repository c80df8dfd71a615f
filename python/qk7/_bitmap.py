"""Bitmap blocks and their pixels, and all that is taken for a block."""
from __future__ import annotations

import struct
from typing import NamedTuple, Union

import numpy as np

from qk7._blocks import ByteArray, bytes_of
from qk7._files import Path, read_block, replace

_FILE_HEADER = struct.Struct("<2sIHHI")
_INFO_HEADER = struct.Struct("<IiiHHIIiiII")
_GREYS = 256


class Resolution(NamedTuple):
    """Picture elements per metre; 19685 are 500 dots per inch."""

    x: int
    y: int


def _stride(width: int) -> int:
    """Bytes of a line: lines are padded to a multiple of 4."""
    return (width + 3) & ~3


def _palette() -> ByteArray:
    greys = np.arange(_GREYS, dtype=np.uint8)
    entries: ByteArray = np.stack([greys, greys, greys, np.zeros_like(greys)], axis=1)
    return entries.reshape(-1)


class Bitmap:
    """An 8-bit grey bitmap block, and a view of its pixels.

    A block is a header of 40 bytes, a palette, and the lines one after the other, each padded to a
    multiple of 4 bytes, without the header that bitmap files have. The object refers to the block
    that it was made of: what is written to one shows in the other.
    """

    __slots__ = ("_block", "_width", "_height", "_offset")

    def __init__(self, block: BlockLike) -> None:
        """Takes a block without copying it.

        Raises:
            TypeError, ValueError: it is no block of 8-bit grey values, or has another size than its
                header says.
        """
        self._block = as_bytes(block, "bitmap")
        self._width, self._height, self._offset = _layout(self._block)

    @classmethod
    def blank(cls, width: int, height: int, resolution: tuple[int, int] = (0, 0)) -> Bitmap:
        """A new black bitmap, whose `pixels` can be written to.

        Args:
            width, height: in pixels, 1 or more.
            resolution: picture elements per metre in x and y; 0 where it is not known.
        """
        if width < 1 or height < 1:
            raise ValueError(f"bitmap: {width} x {height} pixels are none")
        offset = _INFO_HEADER.size + 4 * _GREYS
        block = np.zeros(offset + _stride(width) * height, np.uint8)
        try:
            _INFO_HEADER.pack_into(block.data, 0, _INFO_HEADER.size, width, height, 1, 8, 0, 0,
                                   *resolution, 0, 0)
        except struct.error as fault:
            raise ValueError(f"bitmap: {width} x {height} pixels with a resolution of {resolution} "
                             f"do not fit into a header: {fault}") from None
        block[_INFO_HEADER.size:offset] = _palette()
        return cls(block)

    @classmethod
    def from_pixels(cls, pixels: ByteArray, resolution: tuple[int, int] = (0, 0)) -> Bitmap:
        """A new bitmap with a copy of pixels.

        Args:
            pixels: uint8, shape (height, width), in any order of memory; row 0 is stored first.
            resolution: picture elements per metre in x and y.
        """
        if not isinstance(pixels, np.ndarray) or pixels.dtype != np.uint8:
            raise TypeError("pixels: an array of uint8 is expected, not "
                            f"{getattr(pixels, 'dtype', type(pixels).__name__)}")
        if pixels.ndim != 2:
            raise ValueError("pixels: an array of two dimensions, lines and columns, is expected, "
                             f"not of {pixels.ndim}")
        bitmap = cls.blank(pixels.shape[1], pixels.shape[0], resolution)
        bitmap.pixels[:] = pixels
        return bitmap

    @classmethod
    def read(cls, path: Path) -> Bitmap:
        """Reads a bitmap file.

        Raises:
            OSError: it cannot be read.
            ValueError: it is no bitmap file of 8-bit grey values.
        """
        content = read_block(path)
        if content.size < _FILE_HEADER.size or bytes(content[:2]) != b"BM":
            raise ValueError(f"{path}: is no bitmap file")
        pixels = _FILE_HEADER.unpack_from(content.data)[-1]
        try:
            bitmap = cls(content[_FILE_HEADER.size:])
        except ValueError as fault:
            raise ValueError(f"{path}: {fault}") from None
        if pixels != _FILE_HEADER.size + bitmap._offset:
            raise ValueError(f"{path}: the pixels stand at byte {pixels}, and are expected behind "
                             f"the palette, at {_FILE_HEADER.size + bitmap._offset}")
        return bitmap

    def write(self, path: Path) -> None:
        """Writes the block as a bitmap file, behind the header that those have.

        The file is renamed when it is whole: where that fails (OSError) the former one stays.
        """
        header = _FILE_HEADER.pack(b"BM", _FILE_HEADER.size + self._block.size, 0, 0,
                                   _FILE_HEADER.size + self._offset)
        replace(path, header, self._block)

    @property
    def block(self) -> ByteArray:
        """The bytes of the block, shape (bytes,)."""
        return self._block

    @property
    def width(self) -> int:
        """Pixels of a line."""
        return self._width

    @property
    def height(self) -> int:
        """Lines."""
        return self._height

    @property
    def resolution(self) -> Resolution:
        """Picture elements per metre, as the header tells."""
        return Resolution(*_INFO_HEADER.unpack_from(self._block.data)[7:9])

    @property
    def pixels(self) -> ByteArray:
        """The values in the block, shape (height, width), row 0 being the line stored first.

        A view without the padding of the lines: to be written to where the block is. The palette
        plays no part.
        """
        stride = _stride(self._width)
        lines = self._block[self._offset:].reshape(self._height, stride)
        return lines[:, :self._width]

    @property
    def picture(self) -> ByteArray:
        """The same as viewers of bitmap files show it, with the line stored first as the lowest."""
        return self.pixels[::-1]

    def __repr__(self) -> str:
        return f"<qk7.Bitmap of {self._width} x {self._height} pixels>"


def _layout(block: ByteArray) -> tuple[int, int, int]:
    """Width, height and offset of the pixels; ValueError where the block is not what it should be."""
    if bytes(block[:2]) == b"BM":
        raise ValueError("bitmap: a block is expected, and the bytes begin with the header of a "
                         "bitmap file; Bitmap.read() takes files")
    if block.size < _INFO_HEADER.size:
        raise ValueError(f"bitmap: {block.size} bytes are fewer than the header has, "
                         f"{_INFO_HEADER.size}")
    size, width, height, planes, bits, compression, _, _, _, used, _ = _INFO_HEADER.unpack_from(
        block.data)
    if size != _INFO_HEADER.size:
        raise ValueError(f"bitmap: a header of {_INFO_HEADER.size} bytes is expected, not of {size}")
    if (planes, bits, compression) != (1, 8, 0):
        raise ValueError("bitmap: one plane of 8 bits, not compressed, is expected, not "
                         f"{planes} of {bits} bits with compression {compression}")
    if width < 1 or height < 1:
        raise ValueError(f"bitmap: {width} x {height} pixels are none")
    offset = _INFO_HEADER.size + 4 * (used or _GREYS)
    expected = offset + _stride(width) * height
    if block.size != expected:
        raise ValueError(f"bitmap: {width} x {height} pixels are a block of {expected} bytes, not "
                         f"of {block.size}")
    return width, height, offset


#: What calls take for a block: a bitmap, a one-dimensional array of uint8 that lies in one piece, or
#: bytes of any other kind. None of them is copied.
BlockLike = Union[Bitmap, ByteArray, bytes, bytearray, memoryview]

#: What calls write a block to.
WritableBlock = Union[Bitmap, ByteArray, bytearray, memoryview]


def as_bytes(block: BlockLike, what: str) -> ByteArray:
    """The bytes of a block, in place. Raises TypeError or ValueError, with `what` in the words."""
    return block.block if isinstance(block, Bitmap) else bytes_of(block, what)


def as_writable_bytes(block: WritableBlock, what: str) -> ByteArray:
    """The same for a block that is written to."""
    array = as_bytes(block, what)
    if not array.flags.writeable:
        raise ValueError(f"{what}: the bytes are read only")
    return array


def write_block(path: Path, block: BlockLike) -> None:
    """Writes a block as it is, as Bitmap.write() does with bitmap files."""
    replace(path, b"", as_bytes(block, "block"))
