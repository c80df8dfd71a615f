"""Calibration of the images of the QK7 optical fingerprint scanner.

    import qk7

    with qk7.Calibrator(qk7.read_block("scanner.cal")) as calibrator:
        corrected = calibrator.correct(qk7.Bitmap.read("capture.bmp"))
        print(calibrator.levels)
    corrected.write("corrected.bmp")

Images are bitmap blocks: arrays of bytes with a header, as a scanner delivers them. `Bitmap` shows
the pixels of one as a two-dimensional array without copying them. The package loads the shared
library libTessarinCalibrateSDK.so.1 from where the system finds it, or the file that the environment
variable QK7_LIBRARY names, when it is first needed.
"""
from qk7._bitmap import Bitmap, BlockLike, Resolution, WritableBlock, write_block
from qk7._blocks import ByteArray
from qk7._calibrator import Calibrator, Geometry, InUseError, Levels
from qk7._files import read_block
from qk7._status import CalibrationError, Status, words

__version__ = "1.0.0"

__all__ = [
    "Bitmap",
    "BlockLike",
    "ByteArray",
    "CalibrationError",
    "Calibrator",
    "Geometry",
    "InUseError",
    "Levels",
    "Resolution",
    "Status",
    "WritableBlock",
    "read_block",
    "words",
    "write_block",
]
