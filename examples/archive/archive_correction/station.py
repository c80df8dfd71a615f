"""What a worker process has, and what it does with a batch.

One station serves all threads of a worker; whatever belongs to one thread at a time is lent by the
pool of handles.
"""
from __future__ import annotations

import contextlib
import glob
import hashlib
import os
import shutil
import struct
import threading
import uuid
from collections.abc import Sequence
from typing import NamedTuple

import qk7

from archive_correction.entry import Entry
from archive_correction.forms import open_archive
from archive_correction.handles import HandlePool
from archive_correction.outcome import Outcome, refused
from archive_correction.tables import TableCache, digest_of

IMAGES = "images"
_ASIDE = ".aside-"

_FILE_HEADER = struct.Struct("<2s8xI")

#: Not the capture's fault.
_MACHINE = (qk7.Status.QMT_ERROR_OUT_OF_MEMORY, qk7.Status.QMT_FATAL_ERROR_TERMINATION_NECESSARY)


class Order(NamedTuple):
    """What all batches of a job have in common. The paths are the same on all machines."""

    archive: str
    output: str
    cache: str
    options: tuple[str, ...] = ()
    handles: int = 8
    #: Another one for each run: what a worker knows of an archive is not believed later.
    run: str = ""


def aside_of(order: Order) -> str:
    """Where a run writes images that are not whole yet."""
    return os.path.join(order.output, _ASIDE + order.run)


def remove_asides(output: str) -> None:
    """Those of all runs that there were: what still writes to one of them fails."""
    for folder in glob.glob(os.path.join(glob.escape(output), _ASIDE + "*")):
        shutil.rmtree(folder, ignore_errors=True)


class Task(NamedTuple):
    """A capture with the calibration block of its scanner, and where it stands in the archive."""

    position: int
    entry: Entry
    block: bytes


class JobFault(Exception):
    """The job cannot go on as it is: no room for results, no memory, no library."""


def bitmap_of(content: bytes) -> qk7.Bitmap:
    """The bitmap in the bytes of a bitmap file. ValueError where they are none."""
    if len(content) < _FILE_HEADER.size or content[:2] != b"BM":
        raise ValueError("is no bitmap file")
    bitmap = qk7.Bitmap(memoryview(content)[_FILE_HEADER.size:])
    told = _FILE_HEADER.unpack_from(content)[1]
    found = len(content) - bitmap.height * bitmap.pixels.strides[0]
    if told != found:
        raise ValueError(f"the pixels stand at byte {told}, and are expected at {found}")
    return bitmap


def _checked(content: bytes, expected: str) -> str:
    """The checksum. ValueError where another one is expected."""
    found = hashlib.sha256(content).hexdigest()
    if expected not in ("", found):
        raise ValueError(f"the checksum differs: {expected} is told, {found} was read")
    return found


def _require_capture_fault(fault: qk7.CalibrationError) -> None:
    if fault.number in _MACHINE:
        raise JobFault(str(fault)) from fault


class _Starter:
    """Makes the handles of a job. It knows nothing of the pool, so that the end of a station releases
    all handles at once and leaves none to the collector, which runs at times of its own.
    """

    def __init__(self, options: tuple[str, ...], tables: TableCache) -> None:
        self._options = options
        self._tables = tables

    def start(self, block: bytes) -> qk7.Calibrator:
        table = self._tables.table(block)
        try:
            return self._loaded(block, table)
        except qk7.CalibrationError as fault:
            _require_capture_fault(fault)
        return self._loaded(block, self._tables.renew(block, table))

    def with_options(self) -> qk7.Calibrator:
        with contextlib.ExitStack() as undone:
            calibrator = undone.enter_context(qk7.Calibrator())
            for option in (*self._options, "PrecalculatedData=true"):
                calibrator.set_option(option)
            undone.pop_all()
        return calibrator

    def _loaded(self, block: bytes, table: qk7.ByteArray) -> qk7.Calibrator:
        with contextlib.ExitStack() as undone:
            calibrator = undone.enter_context(self.with_options())
            calibrator.set_data(block)
            calibrator.set_precalculated_data(table)
            undone.pop_all()
        return calibrator


class Station:
    """Corrects the captures of one job."""

    def __init__(self, order: Order) -> None:
        """JobFault where the worker lacks what it needs."""
        self._order = order
        try:
            starter = _Starter(order.options, TableCache(order.cache))
            starter.with_options().close()
            self._archive = open_archive(order.archive)
        except (OSError, ValueError, qk7.CalibrationError) as fault:
            raise JobFault(str(fault)) from fault
        self._pool = HandlePool(starter.start, order.handles)

    def correct(self, tasks: Sequence[Task]) -> list[Outcome]:
        """An outcome for each task, in their order; all are of one scanner. JobFault where it is not
        for the captures that they cannot be corrected.
        """
        block = tasks[0].block
        try:
            with self._pool.lend(block) as calibrator:
                return [self._outcome(calibrator, block, task.entry) for task in tasks]
        except qk7.CalibrationError as fault:
            _require_capture_fault(fault)
            error = f"the calibration block of the scanner: {fault}"
            return [refused(task.entry, error, digest_of(block)) for task in tasks]
        except (OSError, ValueError) as fault:
            raise JobFault(str(fault)) from fault

    def _outcome(self, calibrator: qk7.Calibrator, block: bytes, entry: Entry) -> Outcome:
        sha256 = ""
        try:
            content = self._archive.read(entry)
            sha256 = _checked(content, entry.sha256)
            corrected = calibrator.correct(bitmap_of(content))
        except qk7.CalibrationError as fault:
            _require_capture_fault(fault)
            return refused(entry, str(fault), digest_of(block), sha256)
        except (OSError, ValueError) as fault:
            return refused(entry, _words(fault), digest_of(block), sha256)
        levels = calibrator.levels if calibrator.dynamic_finger_mask else (None, None)
        return Outcome(entry.name, entry.scanner, entry.stamp, digest_of(block), sha256, "",
                       *self._kept(entry.name, corrected), *levels)

    def _kept(self, name: str, corrected: qk7.Bitmap) -> tuple[str, int, str]:
        """Writes an image aside and renames it. Returns its name, size and checksum."""
        output = os.path.join(IMAGES, name)
        path = os.path.join(self._order.output, output)
        aside = os.path.join(aside_of(self._order), uuid.uuid4().hex)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        corrected.write(aside)
        with open(aside, "rb") as file:
            content = file.read()
        os.replace(aside, path)
        return output, len(content), hashlib.sha256(content).hexdigest()


def _words(fault: Exception) -> str:
    """Without the path, which is not the same on all machines."""
    return fault.strerror or str(fault) if isinstance(fault, OSError) else str(fault)


_MOST_STATIONS = 4

_stations: dict[Order, Station] = {}
_stations_lock = threading.Lock()


def _station_of(order: Order) -> Station:
    """That of the job; those of the jobs begun longest ago are left behind."""
    with _stations_lock:
        if order not in _stations:
            _stations[order] = Station(order)
            if len(_stations) > _MOST_STATIONS:
                del _stations[next(iter(_stations))]
        return _stations[order]


def correct_batch(order: Order, tasks: Sequence[Task]) -> list[Outcome]:
    """What the cluster calls."""
    return _station_of(order).correct(tasks)
