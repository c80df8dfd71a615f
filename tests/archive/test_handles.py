"""The pool of handles: one thread at a time, few of them, the one used longest ago goes."""
import threading
import time

import pytest

from archive_correction.handles import HandlePool


class Handle:
    """In place of a calibrator: notes what happens to it."""

    def __init__(self, block):
        self.block = block
        self.closed = False
        self.users = 0

    def close(self):
        assert self.users == 0
        self.closed = True


class Maker:
    def __init__(self):
        self.made = []

    def __call__(self, block):
        if block == b"bad":
            raise ValueError("bad block")
        self.made.append(Handle(block))
        return self.made[-1]

    def open(self):
        return [handle.block for handle in self.made if not handle.closed]


@pytest.fixture
def maker():
    return Maker()


def use(pool, *blocks):
    for block in blocks:
        with pool.lend(block):
            pass


def test_handle_is_used_again(maker):
    pool = HandlePool(maker, 2)
    use(pool, b"a", b"a", b"b", b"a")
    assert maker.open() == [b"a", b"b"] and len(maker.made) == 2


def test_handle_used_longest_ago_goes(maker):
    pool = HandlePool(maker, 2)
    use(pool, b"a", b"b", b"a", b"c")
    assert maker.open() == [b"a", b"c"]
    use(pool, b"a")
    assert len(maker.made) == 3


def test_threads_get_different_handles_of_one_scanner(maker):
    pool = HandlePool(maker, 2)
    with pool.lend(b"a") as first, pool.lend(b"a") as second:
        assert first is not second


def test_handle_in_use_is_neither_lent_nor_dropped(maker):
    pool = HandlePool(maker, 2)
    with pool.lend(b"a") as lent:
        use(pool, b"b", b"c", b"d")
        assert not lent.closed
    assert maker.open() == [b"a", b"d"]


def test_thread_waits_where_all_are_lent(maker):
    pool = HandlePool(maker, 1)
    done = []
    thread = threading.Thread(target=lambda: (use(pool, b"b"), done.append(True)))
    with pool.lend(b"a"):
        thread.start()
        thread.join(0.05)
        assert not done
    thread.join(10)
    assert done and maker.open() == [b"b"]


def test_handle_comes_back_when_its_use_fails(maker):
    pool = HandlePool(maker, 1)
    with pytest.raises(RuntimeError):
        with pool.lend(b"a"):
            raise RuntimeError
    use(pool, b"a")
    assert len(maker.made) == 1


def test_handle_that_cannot_be_made_takes_no_room(maker):
    pool = HandlePool(maker, 1)
    for _ in range(3):
        with pytest.raises(ValueError):
            use(pool, b"bad")
    use(pool, b"a")


def test_closing_releases_all(maker):
    pool = HandlePool(maker, 3)
    use(pool, b"a", b"b")
    pool.close()
    assert maker.open() == []
    use(pool, b"a", b"b", b"c")


def test_many_threads_never_share_a_handle_and_never_have_too_many(maker):
    pool = HandlePool(maker, 3)
    faults = []

    def work(seed):
        for number in range(50):
            with pool.lend(bytes([(seed + number) % 5])) as handle:
                handle.users += 1
                time.sleep(0)
                if handle.users != 1 or handle.closed or len(maker.open()) > 3:
                    faults.append(handle.block)
                handle.users -= 1

    threads = [threading.Thread(target=work, args=(seed,)) for seed in range(6)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(30)
    assert faults == []
