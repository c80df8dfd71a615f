"""A scanner of the published data, its capture and what that becomes."""
import os
import pathlib

import pytest
import qk7

DATA = pathlib.Path(__file__).parent.parent / "data"
SOURCE = DATA.parent.parent


@pytest.fixture
def data():
    """Where the published data lie."""
    return DATA


@pytest.fixture
def source():
    """Where the project lies."""
    return SOURCE


@pytest.fixture
def block():
    return qk7.read_block(DATA / "geometric/scanner904.cal")


@pytest.fixture
def capture():
    return qk7.Bitmap.read(DATA / "geometric/904_raw.bmp")


@pytest.fixture
def published():
    """What the capture becomes without the dynamic calibration."""
    return qk7.Bitmap.read(DATA / "geometric/904_ThinPlateSpline.bmp")


@pytest.fixture
def calibrator(block):
    with qk7.Calibrator(block, dynamic_finger_mask=False) as made:
        yield made


def pytest_configure():
    assert os.environ.get("QK7_LIBRARY"), "QK7_LIBRARY has to name the library under test"
