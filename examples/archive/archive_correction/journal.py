"""What is done, so that a job that was stopped goes on.

A line for each capture, behind a line that tells what the job is. Only the process that plans the job
writes to it, and holds a lock on it. A line that was being written when it was killed is cut off and
its capture done anew: the same bytes under the same name.
"""
from __future__ import annotations

import fcntl
import json
import os
from collections.abc import Iterator, Sequence

from archive_correction.outcome import Outcome

_VERSION = 1


class Journal:
    """The journal of a folder of results, locked while it is open."""

    def __init__(self, path: str, options: Sequence[str]) -> None:
        """Raises ValueError where another job is at work in the folder, or one with other options
        was begun in it.
        """
        self._file = open(path, "a+b")
        try:
            self._lock()
            self._begin({"journal": _VERSION, "options": list(options)})
            self._cut_unfinished_line()
        except BaseException:
            self._file.close()
            raise

    def close(self) -> None:
        self._file.close()

    def __enter__(self) -> Journal:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def known(self) -> Iterator[tuple[int, Outcome]]:
        """All that was ever done, with its place, in the order in which it was. A later outcome of a
        capture is the one that holds.
        """
        self._file.seek(self._first)
        place = self._first
        for line in self._file:
            try:
                yield place, Outcome.of_line(line)
            except (ValueError, TypeError):
                pass  # damaged: its capture is done anew
            place += len(line)

    def add(self, outcomes: Sequence[Outcome]) -> list[int]:
        """Keeps outcomes and returns their places."""
        place = self._file.seek(0, os.SEEK_END)
        places = []
        for outcome in outcomes:
            places.append(place)
            place += self._file.write(outcome.line())
        self._file.flush()
        return places

    def at(self, place: int) -> Outcome:
        self._file.seek(place)
        return Outcome.of_line(self._file.readline())

    def _lock(self) -> None:
        try:
            fcntl.flock(self._file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise ValueError("another job is at work in the folder of results") from None

    def _cut_unfinished_line(self) -> None:
        end = self._file.seek(0, os.SEEK_END)
        while end > 0:
            start = max(0, end - 65536)
            self._file.seek(start)
            newline = self._file.read(end - start).rfind(b"\n")
            if newline >= 0:
                end = start + newline + 1
                break
            end = start
        self._file.truncate(end)

    def _begin(self, header: dict[str, object]) -> None:
        told = json.dumps(header).encode() + b"\n"
        self._first = len(told)
        self._file.seek(0)
        first = self._file.readline(len(told))
        if first == told:
            return
        if not told.startswith(first):
            raise ValueError("a job with other options was begun in the folder of results; give "
                             "another folder, or empty this one")
        self._file.truncate(0)
        self._file.write(told)
        self._file.flush()
