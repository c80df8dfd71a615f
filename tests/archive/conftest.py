"""A small archive of three scanners, in all forms, and a cluster of two worker processes."""
import os
import pathlib
import shutil
import subprocess
import sys
import zipfile

import distributed
import numpy as np
import pytest
import qk7

from archive_correction.entry import Entry
from archive_correction.job import Plan, run_job
from archive_correction.station import Order

DATA = pathlib.Path(__file__).parent.parent / "data"
SCANNERS = ("light", "loop", "wet")
CAPTURES = 20  # of each

SCHEDULER = ["distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0",
             "--dashboard-address", "127.0.0.1:0"]
WORKERS = ["distributed.cli.dask_worker", "--host", "127.0.0.1", "--nworkers", "2", "--nthreads", "2",
           "--local-directory", "."]


def pytest_configure(config):
    assert os.environ.get("QK7_LIBRARY"), "QK7_LIBRARY has to name the library under test"
    config.addinivalue_line("filterwarnings", "ignore:make_current is deprecated")


def write_moved(path, raw, columns):
    """A capture that is another one: moved by columns."""
    qk7.Bitmap.from_pixels(np.roll(raw.pixels, columns, axis=1), raw.resolution).write(path)


@pytest.fixture(scope="session")
def blocks(tmp_path_factory):
    """The folder of the calibration blocks."""
    folder = tmp_path_factory.mktemp("blocks")
    for scanner in SCANNERS:
        shutil.copy(DATA / f"dynamic/{scanner}.cal", folder)
    return folder


@pytest.fixture(scope="session")
def tree(tmp_path_factory):
    """The archive as a directory tree."""
    root = tmp_path_factory.mktemp("tree")
    for scanner in SCANNERS:
        raw = qk7.Bitmap.read(DATA / f"dynamic/{scanner}_raw.bmp")
        (root / scanner / "left").mkdir(parents=True)
        for number in range(CAPTURES):
            folder = root / scanner / ("left" if number % 2 else "")
            write_moved(folder / f"{number:02}.bmp", raw, number)
    return root


@pytest.fixture(scope="session")
def zipped(tree, tmp_path_factory):
    """The same as a zip archive."""
    path = tmp_path_factory.mktemp("zip") / "captures.zip"
    with zipfile.ZipFile(path, "w") as file:
        for capture in tree.rglob("*.bmp"):
            file.write(capture, capture.relative_to(tree))
    return path


@pytest.fixture(scope="session")
def expected(blocks, tree):
    """What each capture becomes by one handle, without any of the job: name to bytes."""
    images = {}
    for scanner in SCANNERS:
        with qk7.Calibrator(qk7.read_block(blocks / f"{scanner}.cal")) as calibrator:
            for capture in (tree / scanner).rglob("*.bmp"):
                image = calibrator.correct(qk7.Bitmap.read(capture))
                images[str(capture.relative_to(tree))] = bytes(image.block), calibrator.levels
    return images


@pytest.fixture(scope="session")
def cluster(tmp_path_factory):
    """A scheduler and a nanny with two worker processes, as a cluster has them: programs of their
    own. A worker that is killed comes back.
    """
    folder = tmp_path_factory.mktemp("cluster")
    file = folder / "scheduler.json"
    path = os.environ["PYTHONPATH"] + os.pathsep + os.path.dirname(__file__)
    programs = []
    with open(folder / "log", "w") as log:
        for words in SCHEDULER, WORKERS:
            programs.append(subprocess.Popen(
                [sys.executable, "-m", *words, "--no-dashboard", "--scheduler-file", file], cwd=folder,
                stdout=log, stderr=log, env={**os.environ, "PYTHONPATH": path}))
        try:
            yield file
        finally:
            for program in reversed(programs):
                program.terminate()
                program.wait(30)


@pytest.fixture
def client(cluster):
    with distributed.Client(scheduler_file=str(cluster), timeout=60) as made:
        made.wait_for_workers(2, 60)
        yield made


@pytest.fixture
def plan(tree, blocks, tmp_path):
    order = Order(str(tree), str(tmp_path / "out"), str(tmp_path / "tables"))
    return Plan(order, str(blocks), batch=4)


@pytest.fixture
def run(client, plan):
    """Runs the plan with changes."""
    def running(told=None, archive=None, **changes):
        order = plan.order._replace(archive=str(archive or plan.order.archive))
        return run_job(plan._replace(order=order, **changes), client, told)
    return running


@pytest.fixture
def entry():
    return Entry("loop/00.bmp", "loop")
