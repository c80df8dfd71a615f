"""The cluster: hands out batches, and takes them back from workers that die.

The scheduler gives the batches of a worker that died to others. A batch at which worker after worker
dies is cut in halves, until the capture stands alone that is to blame.
"""
from __future__ import annotations

import contextlib
from collections.abc import Callable, Iterable, Iterator
from typing import Any, Generic, Optional, TypeVar

import dask
import distributed
from distributed.client import CancelledError
from distributed.scheduler import KilledWorker

Result = TypeVar("Result")
Item = TypeVar("Item")


@contextlib.contextmanager
def cluster(scheduler: Optional[str], workers: int, threads: int) -> Iterator[Any]:
    """A client of a scheduler that runs, told by its address or by its scheduler file; without one, of
    worker processes on this machine that end with the context.
    """
    with contextlib.ExitStack() as ends:
        if scheduler is None:
            # A worker that a capture killed, or that is slow to start, would be given up for good.
            ends.enter_context(dask.config.set({"distributed.deploy.lost-worker-timeout": "365 days"}))
            local = distributed.LocalCluster(
                n_workers=workers, threads_per_worker=threads, processes=True,
                dashboard_address=":0", silence_logs=50)
            address = {"address": ends.enter_context(local)}
        elif "://" in scheduler:
            address = {"address": scheduler}
        else:
            address = {"scheduler_file": scheduler}
        yield ends.enter_context(distributed.Client(**address))


def _halves(items: list[Item]) -> list[list[Item]]:
    middle = len(items) // 2
    return [items[:middle], items[middle:]]


class Run(Generic[Item, Result]):
    """Calls `work` with lists of items on the cluster, some of them at a time."""

    def __init__(self, client: Any, work: Callable[[list[Item]], Result], ahead: int) -> None:
        """
        Args:
            work: what a worker does; it may be done more than once.
            ahead: lists that the cluster has at a time. The scheduler keeps some kilobytes for
                each, and so knows of a part of a large archive only.
        """
        self._client = client
        self._work = work
        self._ahead = ahead
        self._given: dict[str, tuple[Any, list[Item]]] = {}
        self._ready = distributed.as_completed()

    def results(self, batches: Iterable[list[Item]]) -> Iterator[tuple[list[Item], Optional[Result]]]:
        """Each list with its result as it comes; None for a single item at which workers died."""
        waiting = iter(batches)
        self._give(waiting)
        try:
            while self._given:
                future = next(self._ready)
                items = self._given.pop(future.key)[1]
                yield from self._taken(future, items)
                self._give(waiting)
        finally:
            self._client.cancel([future for future, _ in self._given.values()])

    def _give(self, waiting: Iterator[list[Item]]) -> None:
        while len(self._given) < self._ahead:
            items = next(waiting, None)
            if items is None:
                return
            self._submit(items)

    def _submit(self, items: list[Item]) -> None:
        future = self._client.submit(self._work, items, pure=False)
        self._given[future.key] = future, items
        self._ready.add(future)

    def _taken(self, future: Any, items: list[Item]
               ) -> Iterator[tuple[list[Item], Optional[Result]]]:
        try:
            yield items, future.result()
        except CancelledError:
            raise ConnectionError("the scheduler has lost the job") from None
        except KilledWorker:
            if len(items) == 1:
                yield items, None
            else:
                for half in _halves(items):
                    self._submit(half)
