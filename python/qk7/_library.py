"""The shared library and the types of its functions.

Through ctypes the package is the same on every processor and needs no compiler to install; other
threads of Python run while a function of the library does, but for the end of a handle.
"""
from __future__ import annotations

import ctypes
import functools
import os
from typing import Any

SONAME = "libTessarinCalibrateSDK.so.1"
VARIABLE = "QK7_LIBRARY"

_handle = ctypes.c_void_p
_bytes = ctypes.c_void_p
_size = ctypes.c_ulong
_size_pointer = ctypes.POINTER(ctypes.c_ulong)
_double_pointer = ctypes.POINTER(ctypes.c_double)

#: Of each function what it returns and what it takes.
SIGNATURES: dict[str, tuple[Any, list[Any]]] = {
    "CalibrateCreate": (_handle, []),
    "CalibrateDelete": (ctypes.c_long, [ctypes.POINTER(_handle)]),
    "CalibrateSetOption": (ctypes.c_long, [_handle, ctypes.c_char_p]),
    "CalibrateGetOption": (
        ctypes.c_long, [_handle, ctypes.c_char_p, ctypes.c_char_p, _size_pointer]),
    "GetCalibrationWarningLevels": (
        ctypes.c_long, [_handle, _double_pointer, _double_pointer]),
    "Calibrate": (ctypes.c_long, [_handle, _bytes, _size, _bytes, _size_pointer]),
    "ContaminationDetection": (ctypes.c_long, [_handle, _bytes, _size, _double_pointer]),
    "CalibrateCheckEfts": (ctypes.c_long, [_handle, _bytes, _size, _double_pointer]),
    "CalibrateSetData": (ctypes.c_long, [_handle, _bytes, _size]),
    "CalibrateGetData": (ctypes.c_long, [_handle, _bytes, _size_pointer]),
    "CalibrateSetPrecalculatedData": (ctypes.c_long, [_handle, _bytes, _size]),
    "CalibrateGetPrecalculatedData": (ctypes.c_long, [_handle, _bytes, _size_pointer]),
    "CalibrateSetReferenceData": (ctypes.c_long, [_handle, _bytes, _size]),
    "CalibrateGenerateData": (ctypes.c_long, [_handle, _bytes, _size]),
    "GetErrorDescriptionIntern": (ctypes.c_char_p, [ctypes.c_long]),
}


def _keep_turn(library: ctypes.CDLL, function: str) -> None:
    """No other thread of Python runs while the function does.

    The collector may end an object in sys._current_frames(), which profilers call again and again.
    Python 3.11 has a lock there, and a thread that runs then and asks for it, too, keeps the turn and
    waits for ever.
    """
    kept = getattr(ctypes.PyDLL(library._name, handle=library._handle), function)
    kept.restype, kept.argtypes = SIGNATURES[function]
    setattr(library, function, kept)


@functools.lru_cache(maxsize=None)
def shared_library() -> ctypes.CDLL:
    """The library, loaded when it is first asked for.

    Raises OSError where it cannot be loaded or is another one, with what to do.
    """
    name = os.environ.get(VARIABLE) or SONAME
    try:
        loaded = ctypes.CDLL(name)
        for function, (result, arguments) in SIGNATURES.items():
            getattr(loaded, function).restype = result
            getattr(loaded, function).argtypes = arguments
        _keep_turn(loaded, "CalibrateDelete")
    except (OSError, AttributeError) as fault:  # AttributeError: it has no such function
        raise OSError(f"the calibration library cannot be loaded: {fault}; install it, or name its "
                      f"file in the environment variable {VARIABLE}") from fault
    return loaded
