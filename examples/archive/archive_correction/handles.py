"""Handles, lent to one thread at a time, and no more of them than are worth their memory.

A handle is expensive to hold (some 14 MB) and cheap to use again, and a worker meets the scanners of
an archive in turns. So idle ones stay, and where there is no room the one that was used longest ago
goes. Threads that correct captures of one scanner at the same time get a handle each.
"""
from __future__ import annotations

import contextlib
import threading
from collections.abc import Callable, Iterator
from typing import Optional

import qk7


class HandlePool:
    """Handles by the calibration block that they are made of."""

    def __init__(self, make: Callable[[bytes], qk7.Calibrator], most: int) -> None:
        """
        Args:
            make: gives a calibrator that nobody else has.
            most: handles that are there at the same time, 1 or more; threads wait beyond.
        """
        self._make = make
        self._room = most
        self._idle: list[tuple[bytes, qk7.Calibrator]] = []  # used longest ago first
        self._changed = threading.Condition()

    @contextlib.contextmanager
    def lend(self, block: bytes) -> Iterator[qk7.Calibrator]:
        """A calibrator for the time of the context. What making one raises is passed on."""
        calibrator = self._take(block) or self._new(block)
        try:
            yield calibrator
        finally:
            with self._changed:
                self._idle.append((block, calibrator))
                self._changed.notify()

    def close(self) -> None:
        """Releases what is idle."""
        with self._changed:
            while self._idle:
                self._drop_oldest()

    def _take(self, block: bytes) -> Optional[qk7.Calibrator]:
        """An idle one; None, with room for a new one set apart, where there is none."""
        with self._changed:
            while True:
                found = self._idle_of(block)
                if found is not None:
                    return found
                if self._room == 0 and self._idle:
                    self._drop_oldest()
                if self._room > 0:
                    self._room -= 1
                    return None
                self._changed.wait()

    def _idle_of(self, block: bytes) -> Optional[qk7.Calibrator]:
        for place in reversed(range(len(self._idle))):
            if self._idle[place][0] == block:
                return self._idle.pop(place)[1]
        return None

    def _drop_oldest(self) -> None:
        self._idle.pop(0)[1].close()
        self._room += 1

    def _new(self, block: bytes) -> qk7.Calibrator:
        try:
            return self._make(block)
        except BaseException:
            with self._changed:
                self._room += 1
                self._changed.notify()
            raise
