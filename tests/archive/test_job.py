"""The job on a cluster of two worker processes: whole, disturbed, stopped, with bad captures."""
import collections
import hashlib
import json
import os
import shutil
import signal
import subprocess
import sys
import threading
import zipfile

import pytest
import qk7

from archive_correction.job import Job, Summary, run_job
from archive_correction.journal import Journal
from archive_correction.station import JobFault


def manifest(plan):
    with open(os.path.join(plan.order.output, "manifest.jsonl"), "rb") as file:
        return file.read()


def lines(plan):
    return [json.loads(line) for line in manifest(plan).splitlines()]


def images(plan):
    """What is in the folder of images: name to bytes."""
    root = os.path.join(plan.order.output, "images")
    paths = [os.path.join(folder, file) for folder, _, files in os.walk(root) for file in files]
    return {os.path.relpath(path, root): open(path, "rb").read() for path in paths}


def worked(plan):
    """How often each capture was noted in the journal."""
    with open(os.path.join(plan.order.output, "journal.jsonl")) as file:
        return collections.Counter(json.loads(line)["capture"] for line in list(file)[1:])


def require_whole(plan, expected):
    """Nothing is lost and nothing is twice, neither as image nor as line; nothing else is left."""
    assert {name: content[14:] for name, content in images(plan).items()} == \
        {name: image for name, (image, _) in expected.items()}
    assert [line["capture"] for line in lines(plan)] == sorted(expected)
    for line in lines(plan):
        levels = expected[line["capture"]][1]
        assert (line["dirt_level"], line["dry_finger_level"], line["error"]) == (*levels, None)
        content = images(plan)[line["capture"]] if line["capture"].endswith("0.bmp") else None
        assert content is None or line["output_sha256"] == hashlib.sha256(content).hexdigest()
    assert sorted(os.listdir(plan.order.output)) == ["images", "journal.jsonl", "manifest.jsonl"]


@pytest.fixture
def whole(plan, expected):
    return lambda: require_whole(plan, expected)


def test_tree_is_corrected(run, plan, whole):
    path = os.path.join(plan.order.output, "manifest.jsonl")
    assert run() == Summary(60, 0, 0, path)
    whole()
    tables = [name for name in os.listdir(plan.order.cache) if name != "lock"]
    assert len(tables) == 3


def test_zip_is_corrected_to_the_same(run, whole, zipped):
    assert run(archive=zipped, batch=7).corrected == 60
    whole()


def write_zip(path, captures):
    """Captures under numbers in their order."""
    with zipfile.ZipFile(path, "w") as file:
        for number, capture in enumerate(captures):
            file.write(capture, f"loop/{number:02}.bmp")


def test_zip_that_was_replaced_is_read_anew_by_workers_that_knew_it(run, plan, tree, tmp_path):
    captures = sorted((tree / "loop").rglob("*.bmp"))
    for order in captures, captures[::-1]:
        write_zip(tmp_path / "captures.zip", order)
        assert run(archive=tmp_path / "captures.zip", batch=1)[:3] == (20, 0, 0)
        assert [line["sha256"] for line in lines(plan)] == \
            [hashlib.sha256(capture.read_bytes()).hexdigest() for capture in order]


def write_list(path, tree, change=lambda number, fields: fields):
    """A manifest of the tree, in it."""
    with open(path, "w") as file:
        for number, capture in enumerate(sorted(tree.rglob("*.bmp"))):
            name = str(capture.relative_to(tree))
            fields = {"scanner": name.split("/")[0], "capture": name,
                      "sha256": hashlib.sha256(capture.read_bytes()).hexdigest()}
            file.write(json.dumps(change(number, fields)) + "\n")


@pytest.fixture
def copied(tree, tmp_path):
    return shutil.copytree(tree, tmp_path / "copied")


def test_list_is_corrected_to_the_same(run, whole, copied):
    write_list(copied / "list.jsonl", copied)
    assert run(archive=copied / "list.jsonl").corrected == 60
    whole()


def test_manifest_has_the_order_of_the_list(run, plan, copied):
    write_list(copied / "list.jsonl", copied)
    reverse = (copied / "list.jsonl").read_text().splitlines()[::-1]
    (copied / "list.jsonl").write_text("\n".join(reverse))
    run(archive=copied / "list.jsonl", batch=7)
    assert [line["capture"] for line in lines(plan)] == \
        [json.loads(line)["capture"] for line in reverse]


# Workers that die

def worker_pids(client):
    return sorted(client.run(os.getpid).values())


class Killer:
    """Stops a worker in the middle of the job, and kills it a little later: what was given to it in
    between is lost for certain.
    """

    def __init__(self, pid):
        self._pid = pid
        self._count = 0
        self.killed = threading.Event()

    def __call__(self, outcome):
        self._count += 1
        if self._count == 12:
            os.kill(self._pid, signal.SIGSTOP)
            threading.Timer(0.3, self._kill).start()

    def _kill(self):
        os.kill(self._pid, signal.SIGKILL)
        self.killed.set()


def test_nothing_is_lost_and_nothing_is_twice_where_a_worker_is_killed(client, run, plan, whole):
    pids = worker_pids(client)
    killer = Killer(pids[0])
    assert run(told=killer, batch=2, ahead=10).corrected == 60
    assert killer.killed.is_set()
    whole()
    assert set(worked(plan).values()) == {1}
    client.wait_for_workers(2, 60)
    assert pids[0] not in worker_pids(client)


STOPPED = """
import os, signal, sys
from distributed import Client
from archive_correction.job import Plan, run_job
from archive_correction.station import Order

scheduler, scanners, *order = sys.argv[1:]
count = 0

def told(outcome):
    global count
    count += 1
    if count == 20:
        os.kill(os.getpid(), signal.SIGKILL)

run_job(Plan(Order(*order), scanners, batch=2, ahead=4), Client(scheduler_file=scheduler), told)
"""


def test_job_that_was_killed_goes_on_where_it_was(cluster, run, plan, whole):
    words = [sys.executable, "-c", STOPPED, cluster, plan.scanners, *plan.order[:3]]
    assert subprocess.run(words, timeout=60).returncode == -signal.SIGKILL
    assert "manifest.jsonl" not in os.listdir(plan.order.output)
    assert len(worked(plan)) == 20
    assert run()[:3] == (40, 20, 0)
    whole()
    assert set(worked(plan).values()) == {1}


def test_job_that_is_done_does_nothing_and_leaves_the_same_manifest(run, plan, whole):
    run()
    first = manifest(plan)
    assert run(batch=9)[:3] == (0, 60, 0)
    assert manifest(plan) == first
    whole()


# What makes a result invalid

def test_result_that_is_missing_or_cut_is_made_anew(run, plan, whole):
    run()
    images = os.path.join(plan.order.output, "images/loop")
    os.remove(os.path.join(images, "00.bmp"))
    os.truncate(os.path.join(images, "02.bmp"), 1000)
    assert run()[:3] == (2, 58, 0)
    whole()


def test_result_that_was_changed_is_found_by_verifying(run, plan, whole):
    run()
    path = os.path.join(plan.order.output, "images/loop/00.bmp")
    with open(path, "r+b") as file:
        file.seek(2000)
        file.write(b"changed")
    assert run()[:3] == (0, 60, 0)
    assert run(verify=True)[:3] == (1, 59, 0)
    whole()


def test_capture_that_changed_is_corrected_anew(run, plan, copied):
    run(archive=copied)
    shutil.copyfile(copied / "loop/02.bmp", copied / "loop/00.bmp")
    assert run(archive=copied)[:3] == (1, 59, 0)
    made = images(plan)
    assert made["loop/00.bmp"] == made["loop/02.bmp"]


def crc(content):
    """CRC-32, most significant bit first."""
    value = 0xFFFFFFFF
    for byte in content:
        value ^= byte << 24
        for _ in range(8):
            value = (value << 1 ^ (0x04C11DB7 if value >> 31 else 0)) & 0xFFFFFFFF
    return (value ^ 0xFFFFFFFF).to_bytes(4, "big")


def with_other_background(block):
    content = block[:48] + bytes([block[48] ^ 1]) + block[49:-4]
    return content + crc(content)


def test_scanner_with_a_new_block_is_corrected_anew(run, plan, blocks, tmp_path):
    scanners = shutil.copytree(blocks, tmp_path / "blocks")
    run()
    (scanners / "loop.cal").write_bytes(with_other_background((blocks / "loop.cal").read_bytes()))
    assert run(scanners=str(scanners))[:3] == (20, 40, 0)
    assert run(scanners=str(scanners))[:3] == (0, 60, 0)


def test_image_that_was_made_and_not_noted_is_not_taken_for_the_former_one(
        run, plan, blocks, tmp_path, whole):
    """Another block is tried, the job is killed with its first image written, and the former block is
    put back.
    """
    run()
    scanners = shutil.copytree(blocks, tmp_path / "blocks")
    (scanners / "loop.cal").write_bytes(with_other_background((blocks / "loop.cal").read_bytes()))
    tried = plan._replace(scanners=str(scanners))
    image = os.path.join(plan.order.output, "images/loop/00.bmp")
    size = os.path.getsize(image)
    with Journal(os.path.join(plan.order.output, "journal.jsonl"), plan.order.options) as journal:
        Job(tried, journal)._find_kept()
    assert not os.path.exists(image)
    with open(image, "wb") as file:
        file.write(bytes(size))
    assert run()[:3] == (20, 40, 0)
    whole()


def test_results_that_hold_no_longer_do_not_stay(run, plan, blocks, expected, tmp_path):
    scanners = shutil.copytree(blocks, tmp_path / "blocks")
    run()
    (scanners / "wet.cal").unlink()
    shutil.copyfile(blocks / "wet.cal", scanners / "loop.cal")  # for captures of another size
    assert run(scanners=str(scanners))[:3] == (0, 20, 40)
    assert sorted(images(plan)) == [name for name in sorted(expected) if name.startswith("light/")]


def test_unknown_scanner_is_told_and_corrected_once_it_is_known(run, plan, blocks, tmp_path, whole):
    scanners = shutil.copytree(blocks, tmp_path / "blocks")
    (scanners / "loop.cal").unlink()
    told = []
    assert run(told=told.append, scanners=str(scanners))[:3] == (40, 0, 20)
    errors = {line["error"] for line in lines(plan) if line["scanner"] == "loop"}
    assert errors == {"the scanner is unknown: loop.cal is not among the calibration blocks"}
    assert {outcome.error for outcome in told} == errors | {""} and len(told) == 60
    assert run()[:3] == (20, 40, 0)
    whole()


# Bad captures

HOSTILE = f'''{{"scanner": "loop", "capture": "../escaped.bmp", "sha256": "{64 * "0"}"}}
no json
'''


def spoilt_fields(number, fields):
    if fields["capture"] == "wet/02.bmp":
        return {**fields, "sha256": 64 * "0"}
    return {**fields, "scanner": "nobody"} if fields["capture"] == "light/00.bmp" else fields


def spoilt(root):
    """A list with eight bad lines. Returns their captures and the words they are refused with."""
    raw = (root / "loop/00.bmp").read_bytes()
    (root / "loop/00.bmp").write_bytes(raw[:100_000])
    (root / "loop/02.bmp").write_bytes(b"GIF89a, or so")
    qk7.Bitmap.blank(320, 480).write(root / "wet/00.bmp")
    write_list(root / "list.jsonl", root, spoilt_fields)
    (root / "loop/04.bmp").unlink()
    with open(root / "list.jsonl", "a") as file:
        file.write(HOSTILE)
    return {"loop/00.bmp": "are a block of", "loop/02.bmp": "no bitmap file",
            "loop/04.bmp": "No such file", "wet/00.bmp": "Calibrate: -14",
            "wet/02.bmp": "checksum differs", "light/00.bmp": "scanner is unknown",
            "../escaped.bmp": "could leave the folder", "": "line 62: is no JSON"}


def test_bad_captures_are_told_and_skipped(run, plan, copied, expected):
    bad = spoilt(copied)
    assert run(archive=copied / "list.jsonl")[:3] == (54, 0, 8)
    told = {line["capture"] or "": line["error"] for line in lines(plan) if line["error"]}
    assert sorted(told) == sorted(bad)
    assert [words for name, words in bad.items() if words not in told[name]] == []
    assert {name: content[14:] for name, content in images(plan).items()} == \
        {name: image for name, (image, _) in expected.items() if name not in bad}


# What stops a job

def test_results_in_the_archive_are_refused(run, plan, copied):
    order = plan.order._replace(archive=str(copied), output=str(copied / "out"))
    with pytest.raises(ValueError, match="lies in the archive"):
        run_job(plan._replace(order=order), None)


def test_captures_never_become_their_own_results(plan, copied):
    """Results are images/NAME in their folder, and the archive is that folder's images."""
    archive = copied.rename(copied.parent / "images")
    write_list(archive / "list.jsonl", archive)
    before = (archive / "loop/00.bmp").read_bytes()
    for path in archive, archive / "list.jsonl":
        order = plan.order._replace(archive=str(path), output=str(archive.parent))
        with pytest.raises(ValueError, match="take their place"):
            run_job(plan._replace(order=order), None)
    assert (archive / "loop/00.bmp").read_bytes() == before


def test_folder_of_captures_beside_the_results_stays(client, plan, copied, expected):
    """Whatever its name: what a run removes is its own."""
    archive = copied.rename(copied.parent / "aside")
    order = plan.order._replace(archive=str(archive), output=str(archive.parent))
    assert run_job(plan._replace(order=order), client)[:3] == (len(expected), 0, 0)
    assert (archive / "loop/00.bmp").exists()


@pytest.mark.parametrize("name", ["manifest.jsonl", "manifest.csv", "journal.jsonl"])
def test_list_never_becomes_a_list_of_results(plan, copied, name):
    (copied / name).write_bytes(b"scanner,capture,sha256")
    order = plan.order._replace(archive=str(copied / name), output=str(copied))
    with pytest.raises(ValueError, match="the results would take its place"):
        run_job(plan._replace(order=order), None)
    assert (copied / name).read_bytes() == b"scanner,capture,sha256"


@pytest.mark.parametrize("missing", ["archive", "scanners"])
def test_folder_that_is_empty_all_at_once_leaves_the_results_alone(run, tmp_path, whole, missing):
    """As the folder is that a file system was mounted at."""
    (tmp_path / "empty").mkdir()
    assert run(**{missing: str(tmp_path / "empty")}).corrected == 0
    run()
    with pytest.raises(ValueError, match="no capture can be corrected"):
        run(**{missing: str(tmp_path / "empty")})
    assert run()[:3] == (0, 60, 0)
    whole()


def test_folder_of_blocks_that_is_not_there_stops_the_job(run, tmp_path):
    with pytest.raises(FileNotFoundError):
        run(scanners=str(tmp_path / "none"))


def test_folder_that_workers_cannot_write_to_stops_the_job(run, plan):
    os.makedirs(plan.order.output)
    with open(os.path.join(plan.order.output, "images"), "w"):
        pass
    with pytest.raises(JobFault):
        run()
    os.remove(os.path.join(plan.order.output, "images"))
    assert run().refused == 0
