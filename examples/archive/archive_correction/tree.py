"""A directory tree with a folder for each scanner, named by its id."""
from __future__ import annotations

import os
import stat
from collections.abc import Iterator, Sequence

from archive_correction.entry import MOST_BYTES, Entry, in_folder_of_scanner


def read_regular(path: str) -> bytes:
    """A file that is no larger than a capture can be. What is no regular file is not waited for."""
    descriptor = os.open(path, os.O_RDONLY | os.O_CLOEXEC | os.O_NONBLOCK | os.O_NOFOLLOW)
    with open(descriptor, "rb") as file:
        status = os.fstat(descriptor)
        if not stat.S_ISREG(status.st_mode):
            raise ValueError("is no regular file")
        if status.st_size > MOST_BYTES:
            raise ValueError(f"has {status.st_size} bytes, more than any capture")
        return file.read(MOST_BYTES)


def is_below(folder: str, root: str) -> bool:
    """Whether a folder, there or not, is another one or lies in it."""
    real, root = os.path.realpath(folder), os.path.realpath(root)
    return os.path.commonpath([real, root]) == root


def _fail(fault: OSError) -> None:
    raise fault


class Tree:
    """Captures are the files whose names end in .bmp; links to folders are not entered."""

    def __init__(self, root: str) -> None:
        self._root = root

    def entries(self) -> Sequence[Entry]:
        return sorted(map(self._entry, self._paths()))

    def _paths(self) -> Iterator[str]:
        for folder, _, files in os.walk(self._root, onerror=_fail):
            for file in files:
                if file.lower().endswith(".bmp"):
                    yield os.path.join(folder, file)

    def _entry(self, path: str) -> Entry:
        status = os.lstat(path)
        name = os.path.relpath(path, self._root)
        return in_folder_of_scanner(name, f"{status.st_size} {status.st_mtime_ns}")

    def read(self, entry: Entry) -> bytes:
        return read_regular(os.path.join(self._root, entry.name))

    def holds(self, folder: str) -> bool:
        return is_below(folder, self._root) or is_below(self._root, folder)
