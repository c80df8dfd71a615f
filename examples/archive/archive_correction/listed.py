"""A manifest that tells of each capture its scanner, its file and its checksum.

CSV with the columns scanner, capture and sha256, or JSON lines with these keys; further ones are left
alone. Captures are named from the folder of the manifest on.
"""
from __future__ import annotations

import csv
import json
import os
import re
from collections.abc import Iterator, Sequence
from typing import IO, Optional

from archive_correction.entry import Entry
from archive_correction.tree import is_below, read_regular

COLUMNS = ("scanner", "capture", "sha256")

_MOST_OF_A_LINE = 10_000
_SHA256 = re.compile(r"[0-9a-f]{64}")


def _bad(line: int, fault: str, name: str = "", scanner: str = "") -> Entry:
    return Entry(name, scanner, fault=f"line {line}: {fault}")


def _entry(line: int, fields: dict[str, object]) -> Entry:
    texts = [fields.get(column) for column in COLUMNS]
    for column, text in zip(COLUMNS, texts):
        if not isinstance(text, str) or not text:
            return _bad(line, f"{column} is missing or no text")
    scanner, name, sha256 = map(str, texts)
    sha256 = sha256.lower()
    if not _SHA256.fullmatch(sha256):
        return _bad(line, "sha256 is no checksum of 64 hexadecimal digits", name, scanner)
    return Entry(name, scanner, sha256, sha256)


def _lines(file: IO[bytes]) -> Iterator[tuple[int, Optional[str]]]:
    """Each line with its number; None for one that is too long or no UTF-8."""
    number = 0
    while raw := file.readline(_MOST_OF_A_LINE):
        number += 1
        whole = raw.endswith(b"\n") or len(raw) < _MOST_OF_A_LINE
        while not whole:
            rest = file.readline(_MOST_OF_A_LINE)
            whole = rest.endswith(b"\n") or not rest
            raw = b"\xff"
        try:
            yield number, raw.decode("utf-8-sig" if number == 1 else "utf-8").rstrip("\r\n")
        except UnicodeDecodeError:
            yield number, None


_UNREADABLE = f"is longer than {_MOST_OF_A_LINE} bytes or no UTF-8"


def _json_entry(number: int, text: str) -> Entry:
    try:
        fields = json.loads(text)
    except (ValueError, RecursionError):
        return _bad(number, "is no JSON")
    return _entry(number, fields) if isinstance(fields, dict) else _bad(number, "is no object")


def _json_entries(file: IO[bytes]) -> Iterator[Entry]:
    for number, text in _lines(file):
        if text is None:
            yield _bad(number, _UNREADABLE)
        elif text.strip():
            yield _json_entry(number, text)


def _cells(text: str) -> list[str]:
    """Of one line: a name with a line break in it is better told as JSON."""
    try:
        return next(csv.reader([text], strict=True), [])
    except csv.Error:
        return []


def _header(text: Optional[str]) -> list[str]:
    header = _cells(text or "")
    if set(COLUMNS) - set(header) or len(set(header)) != len(header):
        raise ValueError(f"the first line of the manifest has to name {', '.join(COLUMNS)}, each once")
    return header


def _csv_entry(number: int, header: list[str], text: str) -> Entry:
    cells = _cells(text)
    if len(cells) != len(header):
        return _bad(number, f"{len(header)} cells are expected, not {len(cells)}")
    return _entry(number, dict(zip(header, cells)))


def _csv_entries(file: IO[bytes]) -> Iterator[Entry]:
    lines = _lines(file)
    header = _header(next(lines, (1, None))[1])
    for number, text in lines:
        if text is None:
            yield _bad(number, _UNREADABLE)
        elif text:
            yield _csv_entry(number, header, text)


class Listed:
    """The archive of a manifest: .csv, or JSON lines whatever else the name ends in."""

    def __init__(self, path: str) -> None:
        self._path = path
        self._root = os.path.dirname(path)

    def entries(self) -> Sequence[Entry]:
        form = _csv_entries if self._path.lower().endswith(".csv") else _json_entries
        with open(self._path, "rb") as file:
            return list(form(file))

    def read(self, entry: Entry) -> bytes:
        return read_regular(os.path.join(self._root, entry.name))

    def holds(self, folder: str) -> bool:
        """A folder may lie beside the captures: the list names those that count."""
        if is_below(self._root, folder):
            return True
        if not is_below(folder, self._root):
            return False
        start = os.path.relpath(os.path.realpath(folder), os.path.realpath(self._root)) + "/"
        return any(entry.name.startswith(start) for entry in self.entries())
