"""Blocks of bytes: what is taken for one, and files of them."""
from __future__ import annotations

import os
from typing import TYPE_CHECKING, Union

import numpy as np
import numpy.typing as npt

if TYPE_CHECKING:
    from qk7._bitmap import Bitmap

#: A one-dimensional array of bytes.
ByteArray = npt.NDArray[np.uint8]

#: What calls take for a block: a bitmap, a one-dimensional array of uint8 that lies in one piece, or
#: bytes of any other kind. None of them is copied.
BlockLike = Union["Bitmap", ByteArray, bytes, bytearray, memoryview]

Path = Union[str, "os.PathLike[str]"]


def _checked(array: ByteArray, what: str) -> ByteArray:
    if array.dtype != np.uint8:
        raise TypeError(f"{what}: an array of uint8 is expected, not of {array.dtype}")
    if array.ndim != 1:
        raise ValueError(f"{what}: an array of one dimension is expected, not of {array.ndim}; "
                         "pixels become a block by Bitmap.from_pixels()")
    if not array.flags.c_contiguous:
        raise ValueError(f"{what}: the array does not lie in one piece, its step is "
                         f"{array.strides[0]} bytes; numpy.ascontiguousarray() copies it")
    return np.asarray(array)


def _bytes_of(block: object, what: str) -> ByteArray:
    try:
        view = memoryview(block)  # type: ignore[arg-type]
    except TypeError:
        raise TypeError(f"{what}: a Bitmap, an array of uint8 or bytes are expected, not "
                        f"{type(block).__name__}") from None
    if view.itemsize != 1 or view.ndim != 1 or not view.contiguous:
        raise ValueError(f"{what}: bytes in one piece are expected")
    return np.frombuffer(view, np.uint8)


def as_bytes(block: BlockLike, what: str) -> ByteArray:
    """The bytes of a block, in place. Raises TypeError or ValueError, with `what` in the words."""
    from qk7._bitmap import Bitmap

    if isinstance(block, Bitmap):
        return block.block
    if isinstance(block, np.ndarray):
        return _checked(block, what)
    return _bytes_of(block, what)


def as_writable_bytes(block: BlockLike, what: str) -> ByteArray:
    """The same for a block that is written to."""
    array = as_bytes(block, what)
    if not array.flags.writeable:
        raise ValueError(f"{what}: the bytes are read only")
    return array


def replace(path: Path, header: bytes, block: ByteArray) -> None:
    """Writes a file anew. The block may be a mapping of that very file, and is taken out before the
    file is emptied.
    """
    content = header + block.tobytes()
    with open(path, "wb") as file:
        file.write(content)


def read_block(path: Path) -> ByteArray:
    """Reads a calibration block or a precalculated block: all bytes of a file.

    Returns:
        An array of the caller's own, shape (bytes,).
    """
    return np.fromfile(path, np.uint8)


def write_block(path: Path, block: BlockLike) -> None:
    """Writes a block as it is; see Bitmap.write() for bitmap files."""
    replace(path, b"", as_bytes(block, "block"))
