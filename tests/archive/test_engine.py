"""What the cluster does with work that fails."""
import contextlib
import types

import dask
import distributed
import pytest
from distributed.scheduler import KilledWorker

from archive_correction.engine import Run, cluster


def doubled(items):
    """Deadly where a 7 is in it: as the scheduler tells of a batch at which workers died."""
    if 7 in items:
        raise KilledWorker("doubled", types.SimpleNamespace(address="tcp://x"), 3)
    if "bad" in items:
        raise ValueError("bad")
    return [2 * item for item in items]


def results(client, batches, ahead=2):
    return list(Run(client, doubled, ahead).results(batches))


def test_own_workers_that_die_are_never_given_up(monkeypatch):
    """However long one takes to start again: with none left the job would wait for good."""
    patience = []

    @contextlib.contextmanager
    def seen(*_, **__):
        patience.append(dask.config.get("distributed.deploy.lost-worker-timeout"))
        yield
        patience.append(dask.config.get("distributed.deploy.lost-worker-timeout"))

    monkeypatch.setattr(distributed, "LocalCluster", seen)
    monkeypatch.setattr(distributed, "Client", lambda **_: contextlib.nullcontext())
    with cluster(None, 1, 1):
        pass
    assert patience == 2 * ["365 days"]


def test_each_list_comes_back_with_its_result(client):
    told = results(client, [[number, number + 100] for number in range(20, 40)])
    assert sorted(told) == [([n, n + 100], [2 * n, 2 * n + 200]) for n in range(20, 40)]


def test_no_lists_are_no_results(client):
    assert results(client, []) == []


def test_equal_lists_are_done_each(client):
    assert results(client, 3 * [[1]]) == 3 * [([1], [2])]


def test_item_at_which_workers_die_is_found_and_the_others_are_done(client):
    told = results(client, [[1, 2], [3, 7, 8, 9, 10], [11]])
    done = [item for items, result in told if result for item in items]
    assert sorted(done) == [1, 2, 3, 8, 9, 10, 11]
    assert [items for items, result in told if result is None] == [[7]]


def test_failure_of_the_work_is_passed_on(client):
    with pytest.raises(ValueError, match="bad"):
        results(client, [[1], ["bad"], [2]])


def test_cluster_has_a_part_of_the_lists_at_a_time(client):
    taken = []

    def batches():
        for number in range(30):
            taken.append(number)
            yield [number]

    for _ in Run(client, doubled, 4).results(batches()):
        break
    assert len(taken) == 4
