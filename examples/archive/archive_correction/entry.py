"""What stands in an archive, and what a name must be to become the name of a file."""
from __future__ import annotations

import os
import re
from collections import Counter
from collections.abc import Iterable, Iterator, Sequence
from typing import NamedTuple, Protocol

#: Bytes of the largest capture that is read; a larger one is refused before it fills the memory.
MOST_BYTES = 64 << 20

_MOST_BYTES_OF_A_NAME = 1000
_MOST_BYTES_OF_A_PART = 200
_STRANGE = re.compile(r"[\x00-\x1f\x7f\\]")
_SCANNER = re.compile(r"\w[\w.-]{0,99}", re.ASCII)


class Entry(NamedTuple):
    """One capture of an archive."""

    #: Below the archive, with slashes: "QK7-0001/left/thumb.bmp".
    name: str
    scanner: str
    #: Another one when the capture is another one; says whether an earlier result still holds.
    stamp: str = ""
    #: Of the bytes of the capture, hexadecimal; empty where the archive tells none.
    sha256: str = ""
    #: Why the capture cannot be corrected; empty as a rule.
    fault: str = ""


class Archive(Protocol):
    """A form of archive. Its reading of captures may be called by several threads."""

    def entries(self) -> Sequence[Entry]:
        """All captures, in the order of the manifest that is made. OSError or ValueError where the
        archive as a whole cannot be read.
        """

    def read(self, entry: Entry) -> bytes:
        """The bytes of a capture. OSError or ValueError where it cannot be read."""

    def holds(self, folder: str) -> bool:
        """Whether images in a folder would be taken for captures, or take the place of some."""


def _fault_of_part(part: str) -> str:
    if part in ("", ".", ".."):
        return f"a name with {part!r} between slashes could leave the folder of results"
    if len(os.fsencode(part)) > _MOST_BYTES_OF_A_PART:
        return f"a part of the name has more than {_MOST_BYTES_OF_A_PART} bytes"
    return ""


def fault_of_name(name: str) -> str:
    """Why a name is none for a result; empty where it is one."""
    try:
        size = len(os.fsencode(name))
    except UnicodeEncodeError:
        return "the name cannot be that of a file"
    if size > _MOST_BYTES_OF_A_NAME:
        return f"the name has more than {_MOST_BYTES_OF_A_NAME} bytes"
    if _STRANGE.search(name):
        return "the name has a control character or a backslash"
    return next(filter(None, map(_fault_of_part, name.split("/"))), "")


def fault_of_scanner(scanner: str) -> str:
    """Why a scanner's id cannot name its calibration block."""
    if _SCANNER.fullmatch(scanner):
        return ""
    return "the scanner's id is no word of letters, digits, dots and dashes"


def in_folder_of_scanner(name: str, stamp: str) -> Entry:
    """The entry of a form that keeps the captures of each scanner in a folder named after it."""
    scanner, slash, _ = name.partition("/")
    fault = "" if slash else "the capture lies in no scanner's folder"
    return Entry(name, scanner if slash else "", stamp, fault=fault)


def _folders(name: str) -> Iterator[str]:
    place = name.find("/")
    while place >= 0:
        yield name[:place]
        place = name.find("/", place + 1)


def _judged(entry: Entry, count: int, names: Counter[str]) -> Entry:
    fault = fault_of_name(entry.name) or fault_of_scanner(entry.scanner)
    if not fault and count > 1:
        fault = f"the name stands {count} times in the archive, and which is meant is not known"
    if not fault and any(folder in names for folder in _folders(entry.name)):
        fault = "the name of another capture is that of its folder"
    return entry._replace(fault=fault)


def judged(entries: Iterable[Entry]) -> list[Entry]:
    """The entries, each name once, with the faults that can be told without reading captures."""
    entries = list(entries)
    names = Counter(entry.name for entry in entries if not entry.fault)
    seen: set[str] = set()
    kept = []
    for entry in entries:
        if entry.fault:
            kept.append(entry)
        elif entry.name not in seen:
            seen.add(entry.name)
            kept.append(_judged(entry, names[entry.name], names))
    return kept
