"""What is no block: refused with what is wrong, by every call, and nothing changes."""
import array

import numpy as np
import pytest
import qk7

SIZE = 4000

CALLS = {
    "Calibrator": lambda _, block: qk7.Calibrator(block).close(),
    "set_data": lambda calibrator, block: calibrator.set_data(block),
    "set_precalculated_data": lambda calibrator, block: calibrator.set_precalculated_data(block),
    "set_reference_data": lambda calibrator, block: calibrator.set_reference_data(block),
    "generate_data": lambda calibrator, block: calibrator.generate_data(block),
    "correct": lambda calibrator, block: calibrator.correct(block),
    "correct, out": lambda calibrator, block: calibrator.correct(bytes(SIZE), block),
    "contamination": lambda calibrator, block: calibrator.contamination(block),
    "check_efts": lambda calibrator, block: calibrator.check_efts(block),
    "Bitmap": lambda _, block: qk7.Bitmap(block),
}

OTHERS = {
    "int8": (np.zeros(SIZE, np.int8), TypeError, "array of uint8 is expected, not of int8"),
    "float": (np.zeros(SIZE), TypeError, "not of float64"),
    "objects": (np.full(SIZE, None), TypeError, "not of object"),
    "lines": (np.zeros((40, 100), np.uint8), ValueError, "one dimension is expected, not of 2"),
    "no dimension": (np.array(1, np.uint8), ValueError, "not of 0"),
    "steps": (np.zeros(SIZE, np.uint8)[::2], ValueError, "its step is 2 bytes"),
    "backwards": (np.zeros(SIZE, np.uint8)[::-1], ValueError, "its step is -1 bytes"),
    "broadcast": (np.broadcast_to(np.uint8(1), (SIZE,)), ValueError, "its step is 0 bytes"),
    "list": ([0] * SIZE, TypeError, "not list"),
    "text": ("text", TypeError, "not str"),
    "number": (SIZE, TypeError, "not int"),
    "shorts": (array.array("H", [0] * SIZE), ValueError, "bytes in one piece"),
    "steps of bytes": (memoryview(bytes(SIZE))[::2], ValueError, "bytes in one piece"),
    "lines of bytes": (memoryview(bytes(SIZE)).cast("B", (40, 100)), ValueError, "in one piece"),
}


@pytest.mark.parametrize("call", CALLS.values(), ids=CALLS)
@pytest.mark.parametrize("other, fault, words", OTHERS.values(), ids=OTHERS)
def test_what_is_no_block_is_refused(calibrator, other, call, fault, words):
    with pytest.raises(fault, match=words):
        call(calibrator, other)


@pytest.mark.parametrize("out", [bytes(SIZE), memoryview(bytes(SIZE)),
                                 np.frombuffer(bytes(SIZE), np.uint8)],
                         ids=["bytes", "memoryview", "array"])
def test_bytes_that_are_read_only_receive_nothing(calibrator, capture, out):
    with pytest.raises(ValueError, match="out: the bytes are read only"):
        calibrator.correct(capture, out)


@pytest.mark.parametrize("call", [call for name, call in CALLS.items()
                                  if name not in ("Bitmap", "correct, out")])
@pytest.mark.parametrize("size", [0, 1, 39, 40, SIZE])
def test_blocks_of_nothing_are_failures_of_the_library(calibrator, call, size):
    for block in bytes(size), np.zeros(size, np.uint8):
        with pytest.raises(qk7.CalibrationError):
            call(calibrator, block)


def test_refused_arrays_change_nothing(calibrator, capture, published):
    for block, fault, _ in OTHERS.values():
        for call in CALLS.values():
            with pytest.raises(fault):
                call(calibrator, block)
    assert np.array_equal(calibrator.correct(capture).block, published.block)


def test_random_bytes_behind_a_header_are_refused_or_corrected(calibrator, capture):
    generator = np.random.default_rng(1)
    for _ in range(200):
        block = capture.block.copy()
        at = generator.integers(0, 1100, 3)
        block[at] = generator.integers(0, 256, 3)
        try:
            assert calibrator.correct(block).pixels.shape == (480, 320)
        except qk7.CalibrationError as fault:
            assert fault.name


def test_arrays_are_handed_over_where_they_lie(calibrator, capture, monkeypatch):
    seen = []

    def calibrate(handle, source, source_size, target, size):
        seen.append((source, source_size, target, size._obj.value))
        return -2

    monkeypatch.setattr(qk7._library.shared_library(), "Calibrate", calibrate)
    out = np.empty(123, np.uint8)
    with pytest.raises(qk7.CalibrationError):
        calibrator.correct(capture.block, out)
    assert seen == [(capture.block.ctypes.data, capture.block.size, out.ctypes.data, 123)]
