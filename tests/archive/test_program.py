"""The program: what it takes, what it tells, and its exit status."""
import csv
import os
import shutil
import subprocess
import sys

import pytest
import qk7

from archive_correction import __main__ as program


@pytest.fixture
def call(tree, blocks, cluster, tmp_path, client, capfd):
    """Runs the program on the cluster, in this process; status and what it said."""
    del client  # there are workers

    def calling(*words, archive=tree):
        status = program.main([str(archive), "-s", str(blocks), "-o", str(tmp_path / "out"),
                               "--scheduler", str(cluster), *map(str, words)])
        return status, capfd.readouterr().err
    return calling


def test_program_starts_workers_of_its_own(tree, blocks, tmp_path, expected):
    words = ["-m", "archive_correction", tree, "--scanners", blocks, "-o", tmp_path / "out",
             "--workers", "2", "--manifest", "csv", "--cache", tmp_path / "cache"]
    done = subprocess.run([sys.executable, *words], capture_output=True, timeout=120)
    assert done.returncode == 0, done.stderr
    assert done.stderr.startswith(b"60 corrected, 0 kept, 0 refused in ")
    with open(tmp_path / "out/manifest.csv", newline="") as file:
        told = {line["capture"]: float(line["dry_finger_level"]) for line in csv.DictReader(file)}
    assert told == {name: levels.dry_finger for name, (_, levels) in expected.items()}
    assert len(os.listdir(tmp_path / "cache")) == 4
    assert sorted(os.listdir(tmp_path / "out")) == ["images", "journal.jsonl", "manifest.csv"]


def test_program_goes_on_and_tells_it(call, tmp_path):
    assert call()[0] == 0
    assert os.path.isdir(tmp_path / "out/tables")
    status, told = call("--verify", "--batch", 1)
    assert status == 0
    assert told.startswith("0 corrected, 60 kept, 0 refused")


def test_refused_captures_are_told_and_make_the_status(call, tree, tmp_path):
    archive = shutil.copytree(tree / "wet", tmp_path / "tree/wet").parent
    (archive / "wet/bad.bmp").write_bytes(b"bad")
    (archive / "nobody").mkdir()
    (archive / os.fsdecode(b"nobody/\xff.bmp")).touch()
    status, told = call(archive=archive)
    assert status == 1
    assert told.splitlines()[0] == "nobody/\\udcff.bmp: the scanner is unknown: nobody.cal is not " \
        "among the calibration blocks"
    assert told.splitlines()[1] == "wet/bad.bmp: is no bitmap file"
    assert "20 corrected, 0 kept, 2 refused" in told.splitlines()[2]
    status, told = call("--quiet", archive=archive)
    assert status == 1
    assert len(told.splitlines()) == 1


@pytest.mark.parametrize("name", ["none.zip", "none.csv"])
def test_archive_that_is_not_there_stops_the_job(call, name, tmp_path):
    status, told = call(archive=tmp_path / name)
    assert status == program.STOPPED
    assert "No such file" in told


@pytest.mark.parametrize("fault, words", [(ModuleNotFoundError("No module named 'a'"), "named 'a'\n"),
                                          (MemoryError(), "MemoryError\n"),
                                          (AssertionError("strange"), "AssertionError: strange\n")])
def test_whatever_stops_the_job_is_no_refused_capture(call, monkeypatch, fault, words):
    def run_job(*_):
        raise fault

    monkeypatch.setattr(program, "run_job", run_job)
    status, told = call()
    assert status == program.STOPPED
    assert told.endswith(words)


def test_option_that_is_none_stops_the_job_before_captures_are_refused(call, tmp_path):
    status, told = call("--option", "None=true")
    assert status == program.STOPPED
    assert told == f"archive_correction: CalibrateSetOption: -37 {qk7.words(-37)}\n"
    assert len((tmp_path / "out/journal.jsonl").read_text().splitlines()) == 1


def test_other_options_in_the_same_folder_stop_the_job(call):
    call()
    status, told = call("-O", "SensitiveMode=true")
    assert status == program.STOPPED
    assert "other options" in told


WHOLE = ["a", "-s", "b", "-o", "c"]


@pytest.mark.parametrize("words", [[], ["a"], ["a", "-s", "b"], [*WHOLE, "--batch", "0"],
                                   [*WHOLE, "--workers", "x"], [*WHOLE, "--manifest", "xml"]])
def test_wrong_usage_is_told(words):
    with pytest.raises(SystemExit) as ended:
        program.main(words)
    assert ended.value.code == 2
