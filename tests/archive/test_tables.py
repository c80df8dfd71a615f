"""The cache of prepared tables."""
import os
import subprocess
import sys
import threading

import numpy as np
import pytest
import qk7

from archive_correction import tables
from archive_correction.tables import TableCache, digest_of


@pytest.fixture
def block(blocks):
    return (blocks / "loop.cal").read_bytes()


@pytest.fixture
def cache(tmp_path):
    return TableCache(str(tmp_path / "tables"))


@pytest.fixture
def made(monkeypatch):
    """How often a table was prepared."""
    calls = []
    prepare = tables._made

    def counting(block):
        calls.append(digest_of(block))
        return prepare(block)

    monkeypatch.setattr(tables, "_made", counting)
    return calls


def test_table_is_made_once_and_named_by_the_digest(cache, block, made, tmp_path):
    first, second = cache.table(block), cache.table(block)
    assert made == [digest_of(block)]
    assert np.array_equal(first, second)
    assert sorted(os.listdir(tmp_path / "tables")) == [digest_of(block) + ".pre", "lock"]


def test_digest_is_that_of_sha256sum(block, blocks):
    told = subprocess.run(["sha256sum", blocks / "loop.cal"], capture_output=True, check=True).stdout
    assert digest_of(block) == told.split()[0].decode()


def test_table_is_what_the_library_gives_and_loads(cache, block):
    table = cache.table(block)
    with qk7.Calibrator(block) as calibrator:
        assert np.array_equal(table, calibrator.get_precalculated_data())
    qk7.Calibrator(block, precalculated=table).close()


def test_table_is_mapped_and_cannot_be_written_to(cache, block):
    table = cache.table(block)
    assert isinstance(table, np.memmap) and not table.flags.writeable
    with open("/proc/self/maps") as maps:
        [mapping] = {line.split()[1] for line in maps if digest_of(block) in line}
    assert mapping.startswith("r--")
    assert os.stat(cache.path(block)).st_mode & 0o777 == 0o444


def test_each_block_has_a_table_of_its_own(cache, blocks):
    made = [cache.table((blocks / f"{scanner}.cal").read_bytes()) for scanner in ("loop", "wet")]
    assert not np.array_equal(*made)


def test_empty_file_is_made_anew(cache, block):
    os.makedirs(os.path.dirname(cache.path(block)))
    open(cache.path(block), "w").close()
    assert cache.table(block).size > 5_000_000


def test_table_that_was_refused_is_made_anew_once(cache, block, made):
    os.makedirs(os.path.dirname(cache.path(block)))
    qk7.write_block(cache.path(block), b"cut")
    refused = cache.table(block)
    first = cache.renew(block, refused)
    second = cache.renew(block, refused)
    assert len(made) == 1
    assert first.size == second.size > 5_000_000


def test_block_that_is_none_leaves_no_table(cache, tmp_path):
    with pytest.raises(qk7.CalibrationError):
        cache.table(b"no block")
    assert os.listdir(tmp_path / "tables") == ["lock"]


def test_threads_make_a_table_once(cache, block, made):
    start = threading.Barrier(4)

    def ask():
        start.wait()
        cache.table(block)

    threads = [threading.Thread(target=ask) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(made) == 1


ASK = """
import sys
from archive_correction import tables
prepare = tables._made
tables._made = lambda block: print("made") or prepare(block)
sys.stdin.readline()
tables.TableCache(sys.argv[1]).table(open(sys.argv[2], "rb").read())
"""


def test_processes_make_a_table_once(blocks, tmp_path):
    words = [sys.executable, "-c", ASK, tmp_path / "tables", blocks / "loop.cal"]
    programs = [subprocess.Popen(words, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
                for _ in range(3)]
    for program in programs:
        program.stdin.write("\n")
        program.stdin.flush()
    told = [program.communicate(timeout=60)[0] for program in programs]
    assert [program.returncode for program in programs] == [0, 0, 0]
    assert "".join(told) == "made\n"
