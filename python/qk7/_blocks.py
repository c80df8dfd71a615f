"""Blocks of bytes."""
from __future__ import annotations

import numpy as np
import numpy.typing as npt

#: A one-dimensional array of bytes.
ByteArray = npt.NDArray[np.uint8]


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


def bytes_of(block: object, what: str) -> ByteArray:
    """The bytes of an array or of what has a buffer, in place. Raises TypeError or ValueError, with
    `what` in the words.
    """
    if isinstance(block, np.ndarray):
        return _checked(block, what)
    try:
        view = memoryview(block)  # type: ignore[arg-type]
    except TypeError:
        raise TypeError(f"{what}: a Bitmap, an array of uint8 or bytes are expected, not "
                        f"{type(block).__name__}") from None
    if view.itemsize != 1 or view.ndim != 1 or not view.contiguous:
        raise ValueError(f"{what}: bytes in one piece are expected")
    return np.frombuffer(view, np.uint8)
