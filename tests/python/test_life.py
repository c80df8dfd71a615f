"""The life of a handle, and its threads."""
import copy
import gc
import os
import pickle
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest
import qk7
from qk7 import _library

CALLS = [
    lambda c: c.correct(bytes(40)), lambda c: c.correct(bytes(40), bytearray(40)),
    lambda c: c.set_data(b""), lambda c: c.set_precalculated_data(b""),
    lambda c: c.set_reference_data(b""), lambda c: c.generate_data(b""),
    lambda c: c.get_data(), lambda c: c.get_precalculated_data(),
    lambda c: c.contamination(b""), lambda c: c.check_efts(b""), lambda c: c.levels,
    lambda c: c.set_option("MaskIsOutput=true"), lambda c: c.get_option("MaskIsOutput"),
    lambda c: c.sensitive_mode, lambda c: c.geometry,
]


@pytest.fixture
def deleted(monkeypatch):
    """The handles that were released, while they are."""
    library = _library.shared_library()
    release, handles = library.CalibrateDelete, []

    def delete(pointer):
        handles.append(pointer._obj.value)
        return release(pointer)

    monkeypatch.setattr(library, "CalibrateDelete", delete)
    return handles


def test_leaving_the_context_releases_the_handle(deleted):
    with qk7.Calibrator() as calibrator:
        assert not calibrator.closed
        assert deleted == []
    assert calibrator.closed
    assert len(deleted) == 1


def test_closing_twice_releases_once(deleted):
    calibrator = qk7.Calibrator()
    calibrator.close()
    calibrator.close()
    del calibrator
    gc.collect()
    assert len(deleted) == 1


def test_forgotten_calibrator_releases_its_handle(deleted):
    calibrator = qk7.Calibrator()
    del calibrator
    gc.collect()
    assert len(deleted) == 1


def test_end_of_calibrators_lets_no_other_thread_run():
    calibrators = [qk7.Calibrator() for _ in range(2000)]
    gate, ran = threading.Lock(), []
    gate.acquire()
    other = threading.Thread(target=lambda: (gate.acquire(), ran.append("other")))
    other.start()
    time.sleep(0.1)  # until it waits
    interval = sys.getswitchinterval()
    sys.setswitchinterval(60)
    gate.release()
    calibrators.clear()
    ran.append("this")
    sys.setswitchinterval(interval)
    other.join()
    assert ran == ["this", "other"]


def test_calibrator_that_cannot_be_made_releases_its_handle(deleted):
    for number, arguments in enumerate([{"data": b"none"}, {"data": 7}, {"geometry": "round"}]):
        with pytest.raises((qk7.CalibrationError, TypeError, ValueError)) as caught:
            qk7.Calibrator(**arguments)
        assert len(deleted) == number + 1
        assert caught.value.__traceback__  # which refers to it still


def test_missing_memory_is_told(monkeypatch):
    monkeypatch.setattr(_library.shared_library(), "CalibrateCreate", lambda: None)
    with pytest.raises(qk7.CalibrationError) as caught:
        qk7.Calibrator()
    assert caught.value.number == qk7.Status.QMT_ERROR_OUT_OF_MEMORY


@pytest.mark.parametrize("call", CALLS)
def test_closed_calibrator_says_so(call):
    calibrator = qk7.Calibrator()
    calibrator.close()
    with pytest.raises(ValueError, match="the calibrator is closed"):
        call(calibrator)


def test_handle_is_not_copied():
    with qk7.Calibrator() as calibrator:
        for way in copy.copy, copy.deepcopy, pickle.dumps:
            with pytest.raises(TypeError):
                way(calibrator)


PROGRAM = """
import threading, qk7, qk7._library

qk7._library.shared_library().CalibrateDelete = lambda pointer: print("released", flush=True)
calibrator = qk7.Calibrator()
large = qk7.Bitmap.blank(3000, 3000)
begun = threading.Event()

def work():
    while True:
        begun.set()
        calibrator.contamination(large)

threading.Thread(target=work, daemon=True).start()
begun.wait()
"""


def test_end_of_the_interpreter_leaves_calls_in_peace():
    """A thread may be in a call then, whose handle is not released under it."""
    result = subprocess.run([sys.executable, "-c", PROGRAM], env=os.environ, timeout=120,
                            capture_output=True, check=False)
    assert (result.returncode, result.stdout, result.stderr) == (0, b"", b"")


@pytest.mark.parametrize("call", [*CALLS, lambda c: c.close()])
def test_call_within_a_call_is_refused(monkeypatch, call):
    """As that of a signal handler."""
    with qk7.Calibrator() as calibrator:
        def interrupted(*_):
            with pytest.raises(qk7.InUseError, match="under way"):
                call(calibrator)
            return 0

        monkeypatch.setattr(_library.shared_library(), "ContaminationDetection", interrupted)
        calibrator.contamination(bytes(40))


@pytest.mark.parametrize("call", [*CALLS, lambda c: c.close()])
def test_second_thread_is_refused(monkeypatch, call):
    """One thread is held within a call; what the other one calls does not reach the library."""
    within, leave = threading.Event(), threading.Event()

    def held(*_):
        within.set()
        assert leave.wait(60)
        return 0

    with qk7.Calibrator() as calibrator:
        monkeypatch.setattr(_library.shared_library(), "ContaminationDetection", held)
        thread = threading.Thread(target=calibrator.contamination, args=(bytes(40),))
        thread.start()
        try:
            assert within.wait(60)
            with pytest.raises(qk7.InUseError, match="under way"):
                call(calibrator)
        finally:
            leave.set()
            thread.join()
        assert not calibrator.closed
        assert calibrator.levels == (0.0, 0.0)


class Interrupt(Exception):
    """What Ctrl-C is, by a clock."""


@pytest.fixture
def interrupted():
    """Calls a function again and again until an interrupt comes, some microseconds later."""
    def interrupt(*_):
        raise Interrupt

    def calling(call, microseconds):
        try:
            # Once more, a second later: one that comes within a finalizer is swallowed.
            signal.setitimer(signal.ITIMER_REAL, microseconds * 1e-6, 1)
            while True:
                call()
        except Interrupt as fault:
            signal.setitimer(signal.ITIMER_REAL, 0)
            return fault

    former = signal.signal(signal.SIGALRM, interrupt)
    yield calling
    signal.signal(signal.SIGALRM, former)


@pytest.mark.parametrize("call", [lambda c: c.levels, lambda c: c.set_option("MaskIsOutput=true"),
                                  lambda c: c.sensitive_mode])
def test_interrupt_at_any_moment_leaves_no_calibrator_in_use(interrupted, call):
    """The interrupts are kept, as shells keep the last one: what they refer to lives on."""
    kept = []
    with qk7.Calibrator() as calibrator:
        for number in range(1000):
            kept.append(interrupted(lambda: call(calibrator), 30 + number % 97))
            assert calibrator.levels == (0.0, 0.0)


def test_calibrator_may_be_handed_over(calibrator, capture, published):
    images = []
    for _ in range(2):
        thread = threading.Thread(target=lambda: images.append(calibrator.correct(capture)))
        thread.start()
        thread.join()
    assert all(np.array_equal(image.block, published.block) for image in images)
    assert len(images) == 2


def test_calibrators_run_in_parallel(block, capture, published):
    def work():
        with qk7.Calibrator(block, dynamic_finger_mask=False) as calibrator:
            for _ in range(20):
                image = calibrator.correct(capture)
                good.append(np.array_equal(image.block, published.block))

    good = []
    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert good == [True] * 80


def test_other_threads_run_during_a_call():
    """A call of some tenths of a second; another thread looks at the clock in its midst."""
    span = []

    def call():
        span.append(time.monotonic())
        calibrator.contamination(noise)
        span.append(time.monotonic())

    noise = qk7.Bitmap.blank(4000, 4000)
    noise.pixels[:] = np.random.default_rng(1).integers(0, 256, noise.pixels.shape, np.uint8)
    with qk7.Calibrator() as calibrator:
        thread = threading.Thread(target=call)
        ticks = []
        thread.start()
        while thread.is_alive():
            ticks.append(time.monotonic())
            time.sleep(0.001)
        thread.join()
    third = (span[1] - span[0]) / 3
    assert third > 0.01, "the call is too short to tell"
    assert any(span[0] + third < tick < span[1] - third for tick in ticks)
