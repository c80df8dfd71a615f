"""Files that are read whole, and written whole or not at all."""
from __future__ import annotations

import contextlib
import errno
import os
import stat
import uuid
from typing import Union

import numpy as np

from qk7._blocks import ByteArray

Path = Union[str, "os.PathLike[str]"]


def read_block(path: Path) -> ByteArray:
    """Reads a calibration block or a precalculated block: all bytes of a file.

    Returns:
        An array of the caller's own, shape (bytes,).
    """
    with open(path, "rb") as file:
        return np.frombuffer(bytearray(file.read()), np.uint8)


def _permissions(path: str) -> int:
    """Those of a file that may be written to; PermissionError for any other one."""
    if not os.access(path, os.W_OK):
        raise PermissionError(errno.EACCES, os.strerror(errno.EACCES))
    return stat.S_IMODE(os.stat(path).st_mode) & 0o777


def _hand_on(permissions: int, path: str) -> None:
    with contextlib.suppress(PermissionError):  # a file system without permissions refuses
        os.chmod(path, permissions)


def _rename_over(path: str, header: bytes, block: ByteArray) -> None:
    permissions = _permissions(path) if os.path.exists(path) else None
    aside = os.path.join(os.path.dirname(path), f".qk7-{uuid.uuid4().hex}.tmp")
    file = open(aside, "xb")
    try:
        with file:
            if permissions is not None:
                _hand_on(permissions, aside)
            file.write(header)
            file.write(block.data)
        os.replace(aside, path)
    except BaseException:
        with contextlib.suppress(FileNotFoundError):
            os.unlink(aside)
        raise


def replace(path: Path, header: bytes, block: ByteArray) -> None:
    """Writes a file aside and renames it: where that fails the one that was there stays, and whoever
    has mapped that one, the block included, goes on seeing it. A device or a pipe is written to.

    Raises OSError with the path.
    """
    try:
        if os.path.exists(path) and not os.path.isfile(path):
            with open(path, "wb") as file:
                file.write(header + block.tobytes())
        else:
            _rename_over(os.path.realpath(path), header, block)
    except OSError as fault:
        raise OSError(fault.errno, fault.strerror, os.fspath(path)) from None
