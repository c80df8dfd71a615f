"""Statuses, and that what is restated here is what stands in the header."""
import ctypes
import pickle
import re

import pytest
import qk7
from qk7 import _library


def header(source):
    return (source / "include/TessarinCalibrateSDK.h").read_text()


def test_numbers_and_names_are_those_of_the_header(source):
    defined = re.findall(r"^#define (QMT_\w+) \((-?\d+)L\)$", header(source), re.MULTILINE)
    assert len(defined) == len(re.findall(r"#define QMT_", header(source)))
    assert {name: int(number) for name, number in defined} == \
        {status.name: status.value for status in qk7.Status}


POINTERS = {"unsigned char": ctypes.c_void_p, "const char": ctypes.c_char_p, "char": ctypes.c_char_p,
            "void": ctypes.c_void_p, "unsigned long": ctypes.POINTER(ctypes.c_ulong),
            "double": ctypes.POINTER(ctypes.c_double), "void*": ctypes.POINTER(ctypes.c_void_p)}
VALUES = {"long": ctypes.c_long, "unsigned long": ctypes.c_ulong, "void": None}


def type_of(text):
    text = re.sub(r"\s+", " ", text).strip()
    return POINTERS[text[:-1].strip()] if text.endswith("*") else VALUES[text]


def argument_types(text):
    """Of a list of arguments with their names."""
    if text.strip() == "void":
        return []
    return [type_of(re.sub(r"\w+\s*$", "", argument)) for argument in text.split(",")]


def test_functions_are_declared_as_in_the_header(source):
    declared = {name: (type_of(result), argument_types(arguments)) for result, name, arguments in
                re.findall(r"TESSARIN_CALIBRATE_API ([\w *]+?)(\w+)\(([^)]*)\);", header(source))
                if name in _library.SIGNATURES}
    assert declared == _library.SIGNATURES


def test_version_and_soname_are_those_of_the_project(source):
    version = re.search(r"VERSION (\d+)\.(\d+)\.(\d+)", (source / "CMakeLists.txt").read_text()[50:])
    assert qk7.__version__ == ".".join(version.groups())
    assert _library.SONAME == f"libTessarinCalibrateSDK.so.{version.group(1)}"


def test_failures_tell_number_name_and_words(calibrator):
    with pytest.raises(qk7.CalibrationError) as caught:
        calibrator.set_data(bytes(12))
    fault = caught.value
    assert fault.number == -40
    assert fault.name == "QMT_ERROR_UNEXPECTED_SIGNATURE"
    assert fault.words == "The input signature is not expected here."
    assert fault.call == "CalibrateSetData"
    assert str(fault) == "CalibrateSetData: -40 The input signature is not expected here."


def test_failures_can_be_sent_to_another_process():
    sent = pickle.loads(pickle.dumps(qk7.CalibrationError(-21, "Calibrate", 1234)))
    assert (sent.number, sent.call, sent.needed) == (-21, "Calibrate", 1234)
    assert sent.name == "QMT_ERROR_TEMPLATE_SIZE"


def test_numbers_that_are_none_have_no_name():
    assert qk7.CalibrationError(-9999, "Calibrate").name == ""
    for number in -9999, 1, 2 ** 64, 2 ** 64 - 14, -2 ** 64:
        assert qk7.words(number) == "Unknown error code."


def test_library_that_is_not_there_is_told_with_what_to_do(monkeypatch):
    monkeypatch.setenv("QK7_LIBRARY", "/nowhere/lib.so")
    with pytest.raises(OSError, match="/nowhere/lib.so.*QK7_LIBRARY"):
        _library.shared_library.__wrapped__()


def test_library_that_is_another_one_is_told_with_what_to_do(monkeypatch):
    monkeypatch.setenv("QK7_LIBRARY", "libm.so.6")
    with pytest.raises(OSError, match="CalibrateCreate.*QK7_LIBRARY"):
        _library.shared_library.__wrapped__()
