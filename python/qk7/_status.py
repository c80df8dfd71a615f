"""Statuses of the library and the exception that tells them."""
from __future__ import annotations

import ctypes
import enum
from typing import Optional

from qk7._library import shared_library


class Status(enum.IntEnum):
    """The numbers of the library, under the names of its header."""

    #: No errors occurred.
    QMT_SUCCESS = 0
    #: A spline was asked to transform before its setup.
    QMT_ERROR_INITIALIZED = -1
    #: The handle holds no calibration data.
    QMT_ERROR_NOT_INITIALIZED = -2
    #: A bitmap pointer is null, or the bitmap has no header or pixels.
    QMT_ERROR_BITMAP_PTR = -10
    #: Not one plane of grey values.
    QMT_ERROR_BITMAP_PLANE = -11
    #: A bit depth that is not supported.
    QMT_ERROR_BITMAP_BITCOUNT = -12
    #: A resolution out of range.
    QMT_ERROR_BITMAP_PELS = -13
    #: An image of the wrong size.
    QMT_ERROR_BITMAP_DIMENSION = -14
    #: No finger found.
    QMT_ERROR_BITMAP_NO_FINGER = -15
    #: A compression that is not supported.
    QMT_ERROR_BITMAP_COMPRESSION = -31
    #: A bitmap header of unknown size.
    QMT_ERROR_BITMAP_HEADERSIZE = -32
    #: A data block pointer is null.
    QMT_ERROR_TEMPLATE_PTR = -20
    #: A block differs from its size rule, or is too small for the result.
    QMT_ERROR_TEMPLATE_SIZE = -21
    #: The pointer to the handle is null.
    QMT_ERROR_TEMPLATE_PTRPTR = -22
    #: The result pointer is null.
    QMT_ERROR_TEMPLATE_PTR_NULL = -23
    #: The pointer to a size or to a result is null.
    QMT_ERROR_TEMPLATE_SIZE_PTR = -24
    #: A pixel format that is not handled.
    QMT_ERROR_FORMAT_NOTSUPPORTED = -33
    #: A parameter out of range.
    QMT_ERROR_PARAM_OUT_OF_RANGE = -35
    #: A file header stands where the info header is expected.
    QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER = -36
    #: A required parameter is missing, or an option string is not understood.
    QMT_ERROR_PARAM_IS_MISSING = -37
    #: A bitmap file is corrupt.
    QMT_ERROR_CURRUPT_BYTECODE = -38
    #: The content of a data block is corrupt or inconsistent.
    QMT_ERROR_CURRUPT_DATA = -39
    #: A tag, version or hash of a data block is not the expected one.
    QMT_ERROR_UNEXPECTED_SIGNATURE = -40
    #: The handle is null.
    QMT_ERROR_NO_HANDLE = -42
    #: The handle is not one of CalibrateCreate().
    QMT_ERROR_INVALID_HANDLE = -43
    #: A bad named parameter or argument.
    QMT_ERROR_INVALID_PARAMETER = -44
    #: The options exclude each other.
    QMT_ERROR_INVALID_OPTIONS_SETTING = -45
    #: A parameter name was published twice.
    QMT_ERROR_PARAM_VALUE_DUPLICATE = -46
    #: An internal error.
    QMT_ERROR_INTERNAL = -101
    #: Out of memory.
    QMT_ERROR_OUT_OF_MEMORY = -102
    #: An unknown failure; the process may be damaged.
    QMT_FATAL_ERROR_TERMINATION_NECESSARY = -104
    #: A system call failed.
    QMT_ERROR_FROM_SYSTEM_FUNCTION = -105
    #: A file could not be opened.
    QMT_ERROR_FILE_OPEN_FAIL = -200
    #: A block or file ended early.
    QMT_ERROR_UNEXPECTED_EOF = -201
    #: Writing failed.
    QMT_ERROR_WRITE_FAIL = -202
    #: Another stream failure.
    QMT_ERROR_IO = -204
    #: A file is no bitmap file.
    QMT_ERROR_BMP_NO_SIGNATURE = -210
    #: No calibration can be derived from the capture, or solved from the data.
    QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE = -600
    #: An image operator was handed a null or empty image.
    QMT_ERROR_BAD_POINTER = -701


_NO_STATUS = 1


def words(number: int) -> str:
    """The library's own words for a status; "Unknown error code." for a number that is none."""
    told = number if ctypes.c_long(number).value == number else _NO_STATUS
    text: bytes = shared_library().GetErrorDescriptionIntern(told)
    return text.decode()


def _name(number: int) -> str:
    try:
        return Status(number).name
    except ValueError:
        return ""


class CalibrationError(Exception):
    """A call of the library that failed.

    Attributes:
        number: the status, one of `Status` as a rule.
        name: its name, as in "QMT_ERROR_BITMAP_DIMENSION"; empty for a number that has none.
        words: the library's own words for it.
        call: the function of the library that answered it.
        needed: bytes that the result needs, where the bytes given for it were too few.
    """

    def __init__(self, number: int, call: str, needed: Optional[int] = None) -> None:
        super().__init__(number, call, needed)
        self.number = number
        self.call = call
        self.needed = needed
        self.name = _name(number)
        self.words = words(number)

    def __str__(self) -> str:
        needed = "" if self.needed is None else f" {self.needed} bytes are needed."
        return f"{self.call}: {self.number} {self.words}{needed}"


def require(number: int, call: str) -> None:
    """Raises CalibrationError unless the status is a success."""
    if number != Status.QMT_SUCCESS:
        raise CalibrationError(number, call)
