"""The prepared warp tables: files that all workers of a machine share, each made once.

A table is a function of its calibration block, and so its file is named by the digest of that. Workers
map it read-only: the pages are in memory once, however many processes read them. The library checks
header, sizes and every offset of a table, and that it was made from the block that is loaded; what it
cannot see is a changed weight. Let nobody write to the cache who may not change results.
"""
from __future__ import annotations

import contextlib
import fcntl
import hashlib
import os
import tempfile
import threading
from collections.abc import Iterator

import numpy as np
import qk7

_mine = threading.Lock()  # locks of files are the process's, not the thread's


def digest_of(block: bytes) -> str:
    """The name of a calibration block: its SHA-256."""
    return hashlib.sha256(block).hexdigest()


def _made(block: bytes) -> qk7.ByteArray:
    with qk7.Calibrator(block) as calibrator:
        return calibrator.get_precalculated_data()


def _mapped(path: str) -> qk7.ByteArray:
    """Read-only. OSError or ValueError where there is no file with bytes in it."""
    return np.memmap(path, np.uint8, mode="r")


class TableCache:
    """A folder of tables, made when missing."""

    def __init__(self, folder: str) -> None:
        self._folder = folder

    def path(self, block: bytes) -> str:
        return os.path.join(self._folder, digest_of(block) + ".pre")

    def table(self, block: bytes) -> qk7.ByteArray:
        """The table of a calibration block, made where it is missing.

        Raises qk7.CalibrationError where the block is none.
        """
        path = self.path(block)
        with contextlib.suppress(OSError, ValueError):
            return _mapped(path)
        with self._lock(block):
            if not os.path.exists(path) or os.path.getsize(path) == 0:
                self._write(path, _made(block))
        return _mapped(path)

    def renew(self, block: bytes, refused: qk7.ByteArray) -> qk7.ByteArray:
        """The table in place of one that the library refused: made anew, unless another worker did."""
        path = self.path(block)
        with self._lock(block):
            if np.array_equal(_mapped(path), refused):
                self._write(path, _made(block))
        return _mapped(path)

    @contextlib.contextmanager
    def _lock(self, block: bytes) -> Iterator[None]:
        """One process at a time makes a table; one that is killed lets go."""
        place = int(digest_of(block)[:7], 16)
        os.makedirs(self._folder, exist_ok=True)
        with _mine, open(os.path.join(self._folder, "lock"), "ab") as file:
            fcntl.lockf(file, fcntl.LOCK_EX, 1, place)
            yield

    def _write(self, path: str, table: qk7.ByteArray) -> None:
        """Aside and renamed, so that nobody maps a part of it."""
        with tempfile.TemporaryDirectory(prefix=".aside-", dir=self._folder) as folder:
            aside = os.path.join(folder, "table")
            qk7.write_block(aside, table)
            os.chmod(aside, 0o444)
            os.replace(aside, path)
