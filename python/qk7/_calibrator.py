"""The handle of a scanner."""
from __future__ import annotations

import ctypes
import enum
import threading
import weakref
from collections.abc import Callable
from types import TracebackType
from typing import NamedTuple, NoReturn, Optional, TypeVar, Union, overload

import numpy as np

from qk7._bitmap import Bitmap, BlockLike, WritableBlock, as_bytes, as_writable_bytes
from qk7._blocks import ByteArray
from qk7._library import shared_library
from qk7._status import CalibrationError, Status, require


Result = TypeVar("Result")


class Geometry(enum.Enum):
    """How the geometry is corrected: the values of the option GeometricCalibrate."""

    #: Not at all; needs dynamic_finger_mask=False.
    OFF = "off"
    #: Every second line is kept.
    ODD_LINES = "oddLines"
    #: To the target frame of the calibration data.
    THIN_PLATE_SPLINE = "ThinPlateSpline"


class Levels(NamedTuple):
    """What the last dynamic calibration found; both 0.0 before the first one."""

    dirt: float
    dry_finger: float


class InUseError(RuntimeError):
    """A calibrator was called while a call of it was under way: in another thread, or in the same one,
    whose signal handler calls.
    """


def _delete(handle: int) -> None:
    shared_library().CalibrateDelete(ctypes.byref(ctypes.c_void_p(handle)))


def _address(array: ByteArray) -> int:
    return array.ctypes.data


class _Switch:
    """An option that is either enabled or not, as an attribute."""

    def __init__(self, key: str, text: str) -> None:
        self._key = key
        self.__doc__ = text

    @overload
    def __get__(self, owner: None, kind: type) -> _Switch: ...

    @overload
    def __get__(self, owner: Calibrator, kind: Optional[type] = None) -> bool: ...

    def __get__(self, owner: Optional[Calibrator],
                kind: Optional[type] = None) -> Union[bool, _Switch]:
        return self if owner is None else owner.get_option(self._key) == "Enabled"

    def __set__(self, owner: Calibrator, enable: bool) -> None:
        if isinstance(enable, str):  # "disable" would enable it
            raise TypeError(f"{self._key}: True or False is expected, not the text {enable!r}")
        owner.set_option(f"{self._key}={'enable' if enable else 'disable'}")


class Calibrator:
    """One scanner with its options and its calibration data.

    It is a context manager: leaving it, or close(), releases what it holds; so does its end.

    A calibrator belongs to one thread at a time and may be handed over; different ones run in
    parallel, as a call lets other threads of Python run. A call while another thread is in one
    raises InUseError and changes nothing: the levels of a capture could not be told from those of
    the other one. Do not change a block while a call reads it.

    Blocks are never copied, and read during the call only. Calls raise CalibrationError with the
    status of the library, TypeError or ValueError for what is no block, and ValueError once the
    calibrator is closed.
    """

    dynamic_finger_mask = _Switch(
        "DynamicFingerMask", "Even out the light, find the finger and whiten the rest.")
    sensitive_mode = _Switch("SensitiveMode", "Accept faint fingers.")
    mask_is_output = _Switch(
        "MaskIsOutput", "Return the finger mask, 0 on a finger and 255 elsewhere, as the image.")

    def __init__(self, data: Optional[BlockLike] = None, *,
                 precalculated: Optional[BlockLike] = None,
                 dynamic_finger_mask: bool = True,
                 sensitive_mode: bool = False,
                 geometry: Geometry = Geometry.THIN_PLATE_SPLINE,
                 mask_is_output: bool = False) -> None:
        """Makes a handle, sets its options and loads what is given.

        Args:
            data: calibration block, as for set_data().
            precalculated: precalculated block that belongs to it, for a fast start; sets the option
                PrecalculatedData.
            dynamic_finger_mask, sensitive_mode, geometry, mask_is_output: the options, as the
                attributes of these names tell.
        """
        if precalculated is not None and data is None:
            raise ValueError("a precalculated block needs the calibration block it belongs to")
        handle: Optional[int] = shared_library().CalibrateCreate()
        if handle is None:
            raise CalibrationError(Status.QMT_ERROR_OUT_OF_MEMORY, "CalibrateCreate")
        self._handle: Optional[int] = handle
        self._guard = threading.RLock()  # of the turn, and held for no longer than to look at it
        self._turn: Optional[object] = None
        self._room = 0
        self._release = weakref.finalize(self, _delete, handle)
        self._release.atexit = False  # a thread may still be in a call then
        try:
            self.dynamic_finger_mask = dynamic_finger_mask
            self.sensitive_mode = sensitive_mode
            self.geometry = geometry
            self.mask_is_output = mask_is_output
            self._load(data, precalculated)
        except BaseException:
            self.close()
            raise

    def _load(self, data: Optional[BlockLike], precalculated: Optional[BlockLike]) -> None:
        if precalculated is not None:
            self.set_option("PrecalculatedData=enable")
        if data is not None:
            self.set_data(data)
        if precalculated is not None:
            self.set_precalculated_data(precalculated)

    def close(self) -> None:
        """Releases the handle; a second time does nothing."""
        self._alone(self._close)

    def _close(self) -> None:
        self._handle = None
        self._release()

    @property
    def closed(self) -> bool:
        return self._handle is None

    def __enter__(self) -> Calibrator:
        return self

    def __exit__(self, kind: Optional[type[BaseException]], fault: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __reduce__(self) -> NoReturn:
        raise TypeError("a calibrator cannot be copied or sent; make another one from its get_data()")

    # Options.

    def set_option(self, option: str) -> None:
        """Sets one option from a text "Key=value", as CalibrateSetOption() takes it."""
        if "\0" in option:
            raise ValueError("option: a text without zeros is expected")
        text = option.encode()
        self._with_handle(lambda handle: require(
            shared_library().CalibrateSetOption(handle, text), "CalibrateSetOption"))

    def get_option(self, key: str) -> str:
        """The value of an option: "Enabled", "Disabled" or that of the geometry."""
        if "\0" in key:
            raise ValueError("key: a text without zeros is expected")
        return self._with_handle(lambda handle: self._option(handle, key.encode()))

    @staticmethod
    def _option(handle: int, key: bytes) -> str:
        get = shared_library().CalibrateGetOption
        size = ctypes.c_ulong(0)
        status: int = get(handle, key, None, ctypes.byref(size))
        if status != Status.QMT_ERROR_TEMPLATE_SIZE:
            raise CalibrationError(status, "CalibrateGetOption")
        value = ctypes.create_string_buffer(size.value)
        require(get(handle, key, value, ctypes.byref(size)), "CalibrateGetOption")
        return value.value.decode()

    @property
    def geometry(self) -> Geometry:
        """How the geometry is corrected."""
        return Geometry(self.get_option("GeometricCalibrate"))

    @geometry.setter
    def geometry(self, geometry: Geometry) -> None:
        self.set_option(f"GeometricCalibrate={Geometry(geometry).value}")

    # Calibration data.

    def set_data(self, data: BlockLike) -> None:
        """Loads the calibration block of the scanner."""
        self._set("CalibrateSetData", data)

    def set_precalculated_data(self, data: BlockLike) -> None:
        """Loads the precalculated block that belongs to the calibration block loaded before, with the
        option PrecalculatedData=true.
        """
        self._set("CalibrateSetPrecalculatedData", data)

    def set_reference_data(self, data: BlockLike) -> None:
        """Gives the measured geometry of a target plate for generate_data(), as the target points of
        a calibration block. Drops the calibration data.
        """
        self._set("CalibrateSetReferenceData", data)

    def generate_data(self, capture: BlockLike) -> None:
        """Derives the calibration data from a raw capture of the dot target."""
        self._set("CalibrateGenerateData", capture)

    def get_data(self) -> ByteArray:
        """The calibration block of shape (bytes,), a little more than 1 KiB, to keep with the scanner."""
        return self._get("CalibrateGetData")

    def get_precalculated_data(self) -> ByteArray:
        """The precalculated block of shape (bytes,), about 5.3 MiB."""
        return self._get("CalibrateGetPrecalculatedData")

    # Images.

    def correct(self, capture: BlockLike, out: Optional[WritableBlock] = None) -> Bitmap:
        """Corrects one raw capture.

        Args:
            capture: bitmap block, 8-bit grey, of the size that the calibration data are for.
            out: bytes that receive the corrected block, in place of new ones; other bytes than those
                of the capture. Bytes behind the block stay as they are.

        Returns:
            The corrected image, 320 x 480 pixels at 500 dots per inch as a rule. With `out` it is a
            view of its beginning; a Bitmap of another size given there shows nothing of use then.

        Raises:
            CalibrationError: with `needed` set where `out` is too small. Nothing is written then.
        """
        source = as_bytes(capture, "capture")
        if out is None:
            return Bitmap(self._with_handle(lambda handle: self._correct(handle, source)))
        target = as_writable_bytes(out, "out")
        if np.shares_memory(source, target):
            raise ValueError("out: other bytes than those of the capture are expected")
        status, size = self._with_handle(lambda handle: self._calibrate(handle, source, target))
        if status == Status.QMT_ERROR_TEMPLATE_SIZE and size > target.size:
            raise CalibrationError(status, "Calibrate", size)
        require(status, "Calibrate")
        return Bitmap(target[:size])

    def _correct(self, handle: int, source: ByteArray) -> ByteArray:
        """The first capture is given as much room as it has itself, all others what the last needed:
        to ask for the size costs a whole calibration.
        """
        target = np.empty(self._room or source.size, np.uint8)
        status, size = self._calibrate(handle, source, target)
        if status == Status.QMT_ERROR_TEMPLATE_SIZE and size > target.size:
            target = np.empty(size, np.uint8)
            status, size = self._calibrate(handle, source, target)
        require(status, "Calibrate")
        self._room = size
        return target if size == target.size else target[:size].copy()

    @staticmethod
    def _calibrate(handle: int, source: ByteArray, target: ByteArray) -> tuple[int, int]:
        size = ctypes.c_ulong(target.size)
        status = shared_library().Calibrate(handle, _address(source), source.size, _address(target),
                                            ctypes.byref(size))
        return status, size.value

    @property
    def levels(self) -> Levels:
        """The levels of the last capture that was corrected with dynamic_finger_mask."""
        dirt, dry_finger = ctypes.c_double(), ctypes.c_double()
        self._with_handle(lambda handle: require(
            shared_library().GetCalibrationWarningLevels(handle, ctypes.byref(dirt),
                                                         ctypes.byref(dry_finger)),
            "GetCalibrationWarningLevels"))
        return Levels(dirt.value, dry_finger.value)

    def contamination(self, capture: BlockLike) -> float:
        """How contaminated the sensor is, 0.0 to 100.0, on a raw capture of the empty platen. Needs
        no calibration data.
        """
        return self._measure("ContaminationDetection", capture)

    def check_efts(self, corrected: BlockLike) -> float:
        """The percentage, 0.0 to 100.0, of dot distances that keep the limits of the EFTS, on a
        capture of the dot target that was corrected with dynamic_finger_mask=False.
        """
        return self._measure("CalibrateCheckEfts", corrected)

    # Calls of one shape.

    def _set(self, function: str, block: BlockLike) -> None:
        source = as_bytes(block, "block")
        call = getattr(shared_library(), function)
        self._with_handle(lambda handle: require(
            call(handle, _address(source), source.size), function))

    def _get(self, function: str) -> ByteArray:
        return self._with_handle(lambda handle: self._got(handle, function))

    @staticmethod
    def _got(handle: int, function: str) -> ByteArray:
        get = getattr(shared_library(), function)
        size = ctypes.c_ulong(0)
        status: int = get(handle, None, ctypes.byref(size))
        if status != Status.QMT_ERROR_TEMPLATE_SIZE:
            raise CalibrationError(status, function)
        block = np.empty(size.value, np.uint8)
        require(get(handle, _address(block), ctypes.byref(size)), function)
        return block

    def _measure(self, function: str, block: BlockLike) -> float:
        source = as_bytes(block, "block")
        call = getattr(shared_library(), function)
        result = ctypes.c_double()
        self._with_handle(lambda handle: require(
            call(handle, _address(source), source.size, ctypes.byref(result)), function))
        return result.value

    # One thread at a time.

    def _alone(self, work: Callable[[], Result]) -> Result:
        """What an interrupt leaves half done, such as Ctrl-C, must not stay in use for good. So the
        end asks who has the turn, in statements without calls, which no interrupt comes between;
        with the lock alone one could come between taking it and the beginning of a `try`.
        """
        turn = object()
        try:
            with self._guard:
                if self._turn is None:
                    self._turn = turn
            if self._turn is not turn:
                raise InUseError("the calibrator is in use: a call of it is under way")
            return work()
        finally:
            if self._turn is turn:
                self._turn = None

    def _with_handle(self, work: Callable[[int], Result]) -> Result:
        return self._alone(lambda: work(self._opened()))

    def _opened(self) -> int:
        if self._handle is None:
            raise ValueError("the calibrator is closed")
        return self._handle
