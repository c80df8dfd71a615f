"""A zip archive that has a folder for each scanner, named by its id."""
from __future__ import annotations

import zipfile
import zlib
from collections.abc import Sequence

from archive_correction.entry import MOST_BYTES, Entry, in_folder_of_scanner

_ENCRYPTED = 1
_FAULTS = (zipfile.BadZipFile, zlib.error, RuntimeError, EOFError)


def _entry(info: zipfile.ZipInfo) -> Entry:
    entry = in_folder_of_scanner(info.filename, f"{info.file_size} {info.CRC:08x}")
    if info.flag_bits & _ENCRYPTED:
        return entry._replace(fault="the capture is encrypted")
    if info.compress_type not in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED):
        return entry._replace(fault="the capture is packed in a way that has no limit")
    if info.file_size > MOST_BYTES:
        return entry._replace(fault=f"has {info.file_size} bytes, more than any capture")
    return entry


class Zip:
    """Captures are the members whose names end in .bmp. The list of members is read once, and kept.

    A member is read no further than the list says: one that unpacks to more is cut off there, and
    its checksum tells.
    """

    def __init__(self, path: str) -> None:
        try:
            self._file = zipfile.ZipFile(path)
        except _FAULTS as fault:
            raise ValueError(f"{path}: {fault}") from None

    def entries(self) -> Sequence[Entry]:
        return sorted(_entry(info) for info in self._file.infolist()
                      if info.filename.lower().endswith(".bmp"))

    def read(self, entry: Entry) -> bytes:
        try:
            with self._file.open(entry.name) as member:
                return member.read(MOST_BYTES)
        except (KeyError, *_FAULTS) as fault:
            raise ValueError(str(fault)) from None

    def holds(self, folder: str) -> bool:
        del folder
        return False
