"""The journal, and the manifest that is made of it."""
import csv
import json

import pytest

from archive_correction.entry import Entry
from archive_correction.journal import Journal
from archive_correction.manifest import COLUMNS, write_manifest
from archive_correction.outcome import Outcome, refused

GOOD = Outcome("a/x.bmp", "a", "stamp", "block", "sum", "", "images/a/x.bmp", 7, "sum2", 0.0, 1 / 3)
BAD = refused(Entry("a/\udcff\u00fc,\n.bmp", "a"), "is no \"bitmap\" file")


@pytest.fixture
def path(tmp_path):
    return tmp_path / "journal.jsonl"


def known(path, options=()):
    with Journal(path, options) as journal:
        return [outcome for _, outcome in journal.known()]


def fill(path, outcomes):
    with Journal(path, ()) as journal:
        return journal.add(outcomes)


def test_outcomes_come_back_whole(path):
    fill(path, [GOOD])
    fill(path, [BAD])
    assert known(path) == [GOOD, BAD]


def test_places_lead_to_their_outcomes(path):
    with Journal(path, ()) as journal:
        places = journal.add([GOOD, BAD]) + journal.add([GOOD])
        assert [journal.at(place) for place in places] == [GOOD, BAD, GOOD]
        assert [place for place, _ in journal.known()] == places
        assert journal.add([BAD]) > places


def test_what_was_added_is_there_for_others_at_once(path):
    with Journal(path, ()) as journal:
        journal.add([GOOD])
        assert path.read_bytes().endswith(GOOD.line())


@pytest.mark.parametrize("kept", [1, 20, 100])
def test_line_that_was_cut_off_is_forgotten(path, kept):
    fill(path, [GOOD])
    with open(path, "ab") as file:
        file.write(BAD.line()[:kept])
    assert known(path) == [GOOD]
    fill(path, [BAD])
    assert known(path) == [GOOD, BAD]


def test_cut_off_line_of_any_length_is_forgotten(path):
    fill(path, [GOOD])
    with open(path, "ab") as file:
        file.write(200_000 * b"x")
    assert known(path) == [GOOD]


@pytest.mark.parametrize("line", [b"{}\n", b"no json\n", b"[1]\n", b"7\n", b"\xff\n", b"\n",
                                  b'{"capture": 1, "more": 2}\n'])
def test_damaged_line_is_left_out(path, line):
    fill(path, [GOOD])
    with open(path, "ab") as file:
        file.write(line)
    fill(path, [BAD])
    assert known(path) == [GOOD, BAD]


def test_journal_that_was_cut_off_in_its_first_line_begins_anew(path):
    path.write_bytes(b'{"journal": 1, "opt')
    assert known(path) == []
    assert known(path) == []


def test_other_options_are_refused(path):
    fill(path, [GOOD])
    with pytest.raises(ValueError, match="other options"):
        known(path, ["SensitiveMode=true"])
    assert known(path) == [GOOD]


@pytest.mark.parametrize("content", [b'{"my": "own notes"}', b"line one\nlast line without end", b"\n"])
def test_file_that_is_no_journal_stays_as_it_is(path, content):
    path.write_bytes(content)
    with pytest.raises(ValueError, match="other options"):
        known(path)
    assert path.read_bytes() == content


def test_two_jobs_in_one_folder_are_refused(path):
    with Journal(path, ()):
        with pytest.raises(ValueError, match="another job"):
            known(path)
    assert known(path) == []


def test_manifest_of_json_lines_tells_numbers_in_full_and_nothing_as_null(tmp_path):
    lines = open(write_manifest(str(tmp_path), "jsonl", [GOOD, BAD])).read().splitlines()
    good, bad = map(json.loads, lines)
    assert list(good) == list(bad) == list(COLUMNS)
    assert (good["dirt_level"], good["dry_finger_level"], good["error"]) == (0.0, 1 / 3, None)
    assert (bad["capture"], bad["output"], bad["dirt_level"], bad["error"]) == \
        (BAD.capture, None, None, BAD.error)


def test_manifest_of_csv_tells_the_same(tmp_path):
    with open(write_manifest(str(tmp_path), "csv", [GOOD, BAD]), newline="") as file:
        good, bad = csv.DictReader(file)
    assert list(good) == list(COLUMNS)
    assert float(good["dry_finger_level"]) == 1 / 3
    assert (bad["capture"], bad["output"], bad["dirt_level"], bad["error"]) == \
        ("a/\\udcff\u00fc,\n.bmp", "", "", BAD.error)


def test_manifest_that_fails_leaves_the_former_one(tmp_path):
    def failing():
        yield GOOD
        raise OSError

    path = write_manifest(str(tmp_path), "jsonl", [GOOD])
    with pytest.raises(OSError):
        write_manifest(str(tmp_path), "jsonl", failing())
    assert len(open(path).readlines()) == 1
