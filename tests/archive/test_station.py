"""What a worker does with captures, good and bad."""
import gc
import hashlib
import json
import os
import weakref

import numpy as np
import pytest
import qk7

from archive_correction import station as station_module
from archive_correction.entry import Entry
from archive_correction.station import JobFault, Order, Station, Task, aside_of, bitmap_of
from archive_correction.tables import TableCache, digest_of


@pytest.fixture
def order(tree, tmp_path):
    made = Order(str(tree), str(tmp_path / "out"), str(tmp_path / "tables"), run="one")
    os.makedirs(aside_of(made))
    return made


@pytest.fixture
def block(blocks):
    return (blocks / "loop.cal").read_bytes()


@pytest.fixture
def correct(order, block):
    """The outcome of one capture."""
    def correcting(entry, block=block, order=order):
        [outcome] = Station(order).correct([Task(0, entry, block)])
        return outcome
    return correcting


@pytest.fixture
def own(tmp_path, order):
    """An order for an archive of its own, with one capture of the content given."""
    def making(content):
        (tmp_path / "own/loop").mkdir(parents=True, exist_ok=True)
        (tmp_path / "own/loop/x.bmp").write_bytes(content)
        return order._replace(archive=str(tmp_path / "own"))
    return making


def test_good_capture_is_corrected_and_told(correct, entry, order, expected, block, tree):
    outcome = correct(entry._replace(stamp="7"))
    image, levels = expected[entry.name]
    written = open(os.path.join(order.output, outcome.output), "rb").read()
    assert written[14:] == image
    assert outcome[:6] == (entry.name, "loop", "7", digest_of(block),
                           hashlib.sha256((tree / entry.name).read_bytes()).hexdigest(), "")
    assert outcome[6:9] == ("images/loop/00.bmp", len(written), hashlib.sha256(written).hexdigest())
    assert outcome[9:] == tuple(levels)
    assert os.listdir(aside_of(order)) == []


def test_result_is_renamed_into_place_and_never_written_there(correct, entry, order, monkeypatch):
    seen = []

    def replace(aside, path, rename=os.replace):
        seen.append((os.path.dirname(aside), os.path.exists(path), os.path.getsize(aside)))
        rename(aside, path)

    monkeypatch.setattr(os, "replace", replace)
    outcome = correct(entry)
    assert (aside_of(order), False, outcome.output_bytes) in seen


def test_checksum_that_is_told_is_compared(correct, entry, tree):
    sha256 = hashlib.sha256((tree / entry.name).read_bytes()).hexdigest()
    assert correct(entry._replace(sha256=sha256)).error == ""
    outcome = correct(entry._replace(sha256=64 * "0"))
    assert outcome.error == f"the checksum differs: {64 * '0'} is told, {sha256} was read"
    assert outcome.output == ""


X = Entry("loop/x.bmp", "loop")


def raw(tree):
    return (tree / "loop/00.bmp").read_bytes()


@pytest.mark.parametrize("cut, words", [
    (0, "is no bitmap file"), (13, "is no bitmap file"), (14, "fewer than the header"),
    (53, "fewer than the header"), (54, "are a block of"), (200_000, "are a block of"),
    (-1, "are a block of")])
def test_capture_that_is_cut_off_is_refused(correct, own, tree, cut, words):
    outcome = correct(X, order=own(raw(tree)[:cut]))
    assert words in outcome.error and outcome.output == ""


@pytest.mark.parametrize("content, words", [
    (b"\x89PNG\r\n\x1a\n" + bytes(1000), "is no bitmap file"), (b"BM" + bytes(1000), "header of 40"),
    (b"BM" + 1000 * b"\xff", "header of 40")])
def test_foreign_file_is_refused(correct, own, content, words):
    assert words in correct(X, order=own(content)).error


def test_capture_longer_than_it_says_is_refused(correct, own, tree):
    assert "are a block of" in correct(X, order=own(raw(tree) + b"\0")).error


def test_pixels_at_another_place_are_refused(tree):
    content = bytearray(raw(tree))
    bitmap_of(bytes(content))
    content[10] += 4
    with pytest.raises(ValueError, match="the pixels stand at byte 1082, and are expected at 1078"):
        bitmap_of(bytes(content))


def test_capture_of_another_size_is_refused_in_the_librarys_words(correct, own, tmp_path):
    qk7.Bitmap.from_pixels(np.full((100, 100), 200, np.uint8)).write(tmp_path / "small.bmp")
    outcome = correct(X, order=own((tmp_path / "small.bmp").read_bytes()))
    assert outcome.error == f"Calibrate: -14 {qk7.words(-14)}"


def test_capture_that_is_not_there_is_refused_without_the_path(correct):
    assert correct(Entry("loop/none.bmp", "loop")).error == "No such file or directory"


def test_bad_block_refuses_the_captures_of_its_scanner(correct, entry):
    outcome = correct(entry, block=b"no block")
    assert outcome.error == \
        f"the calibration block of the scanner: CalibrateSetData: -40 {qk7.words(-40)}"


def test_bad_captures_leave_good_ones_of_the_batch_alone(order, block, tree):
    names = ["loop/00.bmp", "loop/none.bmp", "loop/02.bmp"]
    outcomes = Station(order).correct([Task(0, Entry(name, "loop"), block) for name in names])
    assert [outcome.capture for outcome in outcomes] == names
    assert [bool(outcome.error) for outcome in outcomes] == [False, True, False]


def test_options_are_those_of_the_order(correct, entry, order, block, tree):
    outcome = correct(entry, order=order._replace(options=("DynamicFingerMask=false",)))
    with qk7.Calibrator(block, dynamic_finger_mask=False) as calibrator:
        image = calibrator.correct(qk7.Bitmap.read(tree / entry.name))
    assert open(os.path.join(order.output, outcome.output), "rb").read()[14:] == bytes(image.block)
    assert (outcome.dirt_level, outcome.dry_finger_level) == (None, None)


@pytest.mark.parametrize("table", ["cut", "other"])
def test_table_that_the_library_refuses_is_made_anew(correct, entry, order, block, blocks, table):
    cache = TableCache(order.cache)
    content = bytes(cache.table((blocks / "wet.cal").read_bytes()))
    qk7.write_block(cache.path(block), content if table == "other" else content[:1000])
    assert correct(entry).error == ""
    qk7.Calibrator(block, precalculated=qk7.read_block(cache.path(block))).close()


def test_folder_that_cannot_be_written_to_stops_the_job(correct, entry, order):
    os.rmdir(aside_of(order))
    with pytest.raises(JobFault):
        correct(entry)


def test_archive_that_cannot_be_opened_stops_the_job(order, tmp_path):
    (tmp_path / "a.zip").write_bytes(b"no zip")
    with pytest.raises(JobFault):
        Station(order._replace(archive=str(tmp_path / "a.zip")))


@pytest.mark.parametrize("number", [-102, -104])
def test_what_is_not_the_captures_fault_stops_the_job(correct, entry, monkeypatch, number):
    def fail(self, capture):
        raise qk7.CalibrationError(number, "Calibrate")

    monkeypatch.setattr(qk7.Calibrator, "correct", fail)
    with pytest.raises(JobFault):
        correct(entry)


def test_worker_keeps_the_stations_of_few_jobs(order, monkeypatch):
    monkeypatch.setattr(station_module, "_stations", {})
    first = station_module._station_of(order)
    assert station_module._station_of(order) is first
    for run in "1234":
        station_module._station_of(order._replace(run=run))
    assert len(station_module._stations) == 4
    assert station_module._station_of(order) is not first


def test_station_that_is_left_behind_ends_at_once(order, entry, block, monkeypatch):
    """The collector would release its handles and its archive wherever it happens to be run."""
    monkeypatch.setattr(station_module, "_stations", {})
    first = weakref.ref(station_module._station_of(order))
    assert first().correct([Task(0, entry, block)])[0].error == ""
    gc.disable()
    try:
        for run in "1234":
            station_module._station_of(order._replace(run=run))
        assert first() is None
    finally:
        gc.enable()


def test_outcome_is_json(correct, entry):
    assert json.loads(correct(entry).line())["capture"] == entry.name
