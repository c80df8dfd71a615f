"""A job: plans the work, keeps what is done, and writes the manifest at the end.

The folder of results has

    images/         the corrected images, under the names of their captures
    manifest.jsonl  a line for each capture, or manifest.csv; there when the job is done
    journal.jsonl   what is done so far
    .aside-RUN/     images that are being written; there while the job runs

All of it follows from what the journal has: a job that is stopped anywhere goes on when it is started
again.
"""
from __future__ import annotations

import contextlib
import functools
import hashlib
import os
import uuid
from array import array
from collections.abc import Callable, Iterator, Sequence
from typing import Any, NamedTuple, Optional

from archive_correction.engine import Run
from archive_correction.entry import Entry, fault_of_name, judged
from archive_correction.forms import open_archive
from archive_correction.journal import Journal
from archive_correction.manifest import FORMS, write_manifest
from archive_correction.outcome import Outcome, refused
from archive_correction.station import (
    IMAGES, Order, Task, aside_of, correct_batch, remove_asides)
from archive_correction.tables import digest_of

JOURNAL = "journal.jsonl"

_MOST_BYTES_OF_A_BLOCK = 1 << 20
_NOT_DONE = -1


class Plan(NamedTuple):
    """What is to be done."""

    order: Order
    #: Folder of the calibration blocks, named ID.cal.
    scanners: str
    #: Captures that a worker gets at a time: each batch costs the scheduler about a millisecond.
    batch: int = 64
    #: Batches that the cluster has at a time.
    ahead: int = 256
    #: Form of the manifest: "jsonl" or "csv".
    form: str = "jsonl"
    #: Read the results of an earlier run again before they are believed.
    verify: bool = False


class Summary(NamedTuple):
    corrected: int
    #: Corrected by an earlier run.
    kept: int
    refused: int
    manifest: str


def read_blocks(folder: str, scanners: set[str]) -> dict[str, bytes]:
    """The calibration blocks of those scanners that have one. OSError where there is no folder."""
    os.stat(folder)
    blocks = {}
    for scanner in scanners:
        try:
            with open(os.path.join(folder, scanner + ".cal"), "rb") as file:
                blocks[scanner] = file.read(_MOST_BYTES_OF_A_BLOCK)
        except FileNotFoundError:
            pass
    return blocks


def with_known_scanner(entry: Entry, blocks: dict[str, bytes]) -> Entry:
    if entry.fault or entry.scanner in blocks:
        return entry
    return entry._replace(fault=f"the scanner is unknown: {entry.scanner}.cal is not among the "
                                "calibration blocks")


def _still_there(outcome: Outcome, folder: str, verify: bool) -> bool:
    """Whether the result of an earlier run is what it was: its size tells as a rule."""
    try:
        path = os.path.join(folder, outcome.output)
        if os.path.getsize(path) != outcome.output_bytes:
            return False
        if not verify:
            return True
        with open(path, "rb") as file:
            return hashlib.sha256(file.read()).hexdigest() == outcome.output_sha256
    except OSError:
        return False


class Job:
    """One run of a plan."""

    def __init__(self, plan: Plan, journal: Journal,
                 told: Callable[[Outcome], None] = lambda outcome: None) -> None:
        """
        Args:
            told: is called with each outcome of this run once it is in the journal, and with each
                capture whose fault was found in the archive.
        """
        self._plan = plan
        self._journal = journal
        self._told = told
        entries = judged(open_archive(plan.order.archive).entries())
        scanners = {entry.scanner for entry in entries if not entry.fault}
        self._blocks = read_blocks(plan.scanners, scanners)
        self._entries = [with_known_scanner(entry, self._blocks) for entry in entries]
        self._places = array("q", [_NOT_DONE]) * len(self._entries)
        self._kept = 0

    def run(self, client: Any) -> Summary:
        """JobFault where it cannot go on. What was done until then is kept."""
        self._find_kept()
        self._tell_faults()
        order = self._plan.order._replace(run=uuid.uuid4().hex)
        remove_asides(order.output)
        os.makedirs(aside_of(order))
        work = functools.partial(correct_batch, order)
        run: Run[Task, list[Outcome]] = Run(client, work, self._plan.ahead)
        for tasks, outcomes in run.results(self._batches()):
            self._keep(tasks, outcomes or self._died(tasks))
        remove_asides(order.output)
        return self._ended()

    def _tell_faults(self) -> None:
        for entry in self._entries:
            if entry.fault:
                self._told(refused(entry, entry.fault))

    def _find_kept(self) -> None:
        """What failed is tried again: a block may have been missing, a disk may have been away. An
        image whose capture or block is no longer the same, or no longer there, goes.
        """
        positions = {entry.name: position for position, entry in enumerate(self._entries)
                     if not entry.fault}
        if not positions and any(not outcome.error for _, outcome in self._journal.known()):
            raise ValueError(f"{self._plan.order.archive}, {self._plan.scanners}: no capture can be "
                             "corrected any more, and all images would go; are both folders what "
                             "they were?")
        stale: set[str] = set()
        good: set[str] = set()  # by the last that was heard of them
        for place, outcome in self._journal.known():
            position = positions.get(outcome.capture)
            holds = position is not None and self._holds(position, outcome)
            if position is not None:
                self._places[position] = place if holds else _NOT_DONE
            (stale.discard if holds else stale.add)(outcome.capture)
            (good.discard if outcome.error else good.add)(outcome.capture)
        self._kept = len(self._entries) - self._places.count(_NOT_DONE)
        # Else the line would hold again once the former capture or block is back.
        self._journal.add([refused(Entry(capture, ""), "its image was of another capture or block")
                           for capture in sorted(stale & good)])
        self._remove(stale)

    def _remove(self, captures: set[str]) -> None:
        for capture in captures:
            if not fault_of_name(capture):
                with contextlib.suppress(FileNotFoundError, NotADirectoryError):
                    os.remove(os.path.join(self._plan.order.output, IMAGES, capture))

    def _holds(self, position: int, outcome: Outcome) -> bool:
        entry = self._entries[position]
        same = (outcome.scanner, outcome.stamp, outcome.block) == (
            entry.scanner, entry.stamp, digest_of(self._blocks[entry.scanner]))
        return same and not outcome.error and _still_there(
            outcome, self._plan.order.output, self._plan.verify)

    def _batches(self) -> Iterator[list[Task]]:
        """Scanner by scanner, so that a worker needs few handles."""
        waiting = sorted((entry.scanner, position) for position, entry in enumerate(self._entries)
                         if not entry.fault and self._places[position] == _NOT_DONE)
        batch: list[Task] = []
        for scanner, position in waiting:
            block = self._blocks[scanner]
            if batch and (len(batch) == self._plan.batch or batch[0].block != block):
                yield batch
                batch = []
            batch.append(Task(position, self._entries[position], block))
        if batch:
            yield batch

    def _died(self, tasks: Sequence[Task]) -> list[Outcome]:
        return [refused(task.entry, "worker after worker died at the capture",
                        digest_of(task.block)) for task in tasks]

    def _keep(self, tasks: Sequence[Task], outcomes: Sequence[Outcome]) -> None:
        for task, place, outcome in zip(tasks, self._journal.add(outcomes), outcomes):
            self._places[task.position] = place
            self._told(outcome)

    def _outcomes(self) -> Iterator[Outcome]:
        for entry, place in zip(self._entries, self._places):
            yield self._journal.at(place) if place != _NOT_DONE else refused(entry, entry.fault)

    def _ended(self) -> Summary:
        failed = 0

        def counted() -> Iterator[Outcome]:
            nonlocal failed
            for outcome in self._outcomes():
                failed += bool(outcome.error)
                yield outcome

        path = write_manifest(self._plan.order.output, self._plan.form, counted())
        return Summary(len(self._entries) - self._kept - failed, self._kept, failed, path)


def _require_apart(archive: str, output: str) -> None:
    """ValueError where results would take the place of what they are made of."""
    images = os.path.join(output, IMAGES)
    if open_archive(archive).holds(images):
        raise ValueError(f"{images}: lies in the archive, or the archive in it, and images would be "
                         "taken for captures or take their place")
    lists = [JOURNAL, *("manifest." + form for form in FORMS)]
    if os.path.realpath(archive) in [os.path.realpath(os.path.join(output, name)) for name in lists]:
        raise ValueError(f"{archive}: the results would take its place")


def run_job(plan: Plan, client: Any,
            told: Optional[Callable[[Outcome], None]] = None) -> Summary:
    """Corrects an archive, or what is left of it.

    Raises OSError or ValueError where archive, blocks or results are not what they should be, and
    JobFault where it cannot go on.
    """
    output = plan.order.output
    _require_apart(plan.order.archive, output)
    os.makedirs(output, exist_ok=True)
    with Journal(os.path.join(output, JOURNAL), plan.order.options) as journal:
        return Job(plan, journal, told or (lambda outcome: None)).run(client)
