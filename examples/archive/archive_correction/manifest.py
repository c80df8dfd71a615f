"""The manifest of the results: a line for each capture, in the order of the archive.

It tells nothing of when, where and in which order the work was done: two runs over the same archive
leave the same bytes.
"""
from __future__ import annotations

import csv
import json
import os
from collections.abc import Callable, Iterable
from typing import IO

from archive_correction.outcome import Outcome

COLUMNS = ("capture", "scanner", "sha256", "output", "output_sha256", "dirt_level",
           "dry_finger_level", "error")


def _fields(outcome: Outcome) -> list[object]:
    return [getattr(outcome, column) for column in COLUMNS]


def _write_json_lines(file: IO[str], outcomes: Iterable[Outcome]) -> None:
    for outcome in outcomes:
        told = {column: field if field != "" else None
                for column, field in zip(COLUMNS, _fields(outcome))}
        file.write(json.dumps(told) + "\n")


def _write_csv(file: IO[str], outcomes: Iterable[Outcome]) -> None:
    writer = csv.writer(file, lineterminator="\n")
    writer.writerow(COLUMNS)
    writer.writerows(map(_fields, outcomes))


#: By the ending of the file.
FORMS: dict[str, Callable[[IO[str], Iterable[Outcome]], None]] = {
    "jsonl": _write_json_lines,
    "csv": _write_csv,
}


def write_manifest(folder: str, form: str, outcomes: Iterable[Outcome]) -> str:
    """Writes manifest.FORM aside and renames it. Returns its path."""
    path = os.path.join(folder, "manifest." + form)
    # Bytes of a name that are no UTF-8 are told as escapes, in both forms.
    with open(path + ".aside", "w", encoding="utf-8", errors="backslashreplace", newline="") as file:
        FORMS[form](file, outcomes)
    os.replace(path + ".aside", path)
    return path
