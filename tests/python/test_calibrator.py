"""What a calibrator does, against the published results."""
import json

import numpy as np
import pytest
import qk7


def same(one, other):
    return np.array_equal(one.block, other.block)


def test_correct_gives_what_was_published(calibrator, capture, published):
    assert same(calibrator.correct(capture), published)
    assert same(calibrator.correct(capture), published)


def test_correct_takes_every_kind_of_bytes(calibrator, capture, published):
    content = capture.block.tobytes()
    for kind in bytes, bytearray, memoryview, lambda b: np.frombuffer(b, np.uint8):
        assert same(calibrator.correct(kind(content)), published)


def test_correct_takes_pixels_that_became_a_block(calibrator, capture, published):
    again = qk7.Bitmap.from_pixels(capture.pixels, capture.resolution)
    assert same(calibrator.correct(again), published)


def test_corrected_image_owns_no_more_than_it_needs(calibrator, capture, published):
    for _ in range(2):
        block = calibrator.correct(capture).block
        assert block.base is None and block.size == published.block.size


def test_size_is_learned_from_the_first_capture(calibrator, capture, published, monkeypatch):
    library = qk7._library.shared_library()
    calibrate, rooms = library.Calibrate, []

    def told(handle, source, source_size, target, size):
        rooms.append(size._obj.value)
        return calibrate(handle, source, source_size, target, size)

    monkeypatch.setattr(library, "Calibrate", told)
    for _ in range(3):
        assert same(calibrator.correct(capture), published)
    assert rooms == [capture.block.size, published.block.size, published.block.size]


def test_correct_writes_into_the_bytes_given(calibrator, capture, published):
    size = published.block.size
    for out in np.full(size + 1, 77, np.uint8), bytearray(b"M" * (size + 1)), \
            memoryview(bytearray(b"M" * (size + 1))):
        corrected = calibrator.correct(capture, out)
        assert same(corrected, published)
        assert np.shares_memory(corrected.block, np.frombuffer(out, np.uint8))
        assert out[-1] == 77


def test_correct_writes_into_a_bitmap(calibrator, capture, published):
    out = qk7.Bitmap.blank(320, 480)
    assert np.shares_memory(calibrator.correct(capture, out).pixels, out.pixels)
    assert same(out, published)


def test_correct_tells_the_bytes_needed(calibrator, capture, published):
    out = np.full(100, 77, np.uint8)
    with pytest.raises(qk7.CalibrationError) as caught:
        calibrator.correct(capture, out)
    assert caught.value.number == qk7.Status.QMT_ERROR_TEMPLATE_SIZE
    assert caught.value.needed == published.block.size
    assert str(caught.value).endswith(f" {published.block.size} bytes are needed.")
    assert (out == 77).all()


def test_capture_of_a_wrong_size_needs_no_bytes(calibrator, capture, published):
    for out in None, np.empty_like(published.block):
        with pytest.raises(qk7.CalibrationError) as caught:
            calibrator.correct(capture.block[:-1], out)
        assert caught.value.number == qk7.Status.QMT_ERROR_TEMPLATE_SIZE
        assert caught.value.needed is None


def test_correct_refuses_to_write_into_its_capture(calibrator, capture):
    content = capture.block.copy()
    for out in content, content[1:], content[:-1]:
        with pytest.raises(ValueError, match="other bytes than those of the capture"):
            calibrator.correct(content, out)
    assert np.array_equal(content, capture.block)


def test_images_may_grow_with_the_options(calibrator, capture, published, data):
    calibrator.geometry = qk7.Geometry.OFF
    assert calibrator.correct(capture).block.size == capture.block.size
    calibrator.geometry = qk7.Geometry.THIN_PLATE_SPLINE
    assert same(calibrator.correct(capture), published)
    calibrator.geometry = qk7.Geometry.ODD_LINES
    odd = qk7.Bitmap.read(data / "geometric/904_oddLines.bmp")
    assert np.array_equal(calibrator.correct(capture).pixels, odd.pixels)


def test_blocks_come_back_as_they_were_given(calibrator, block):
    assert np.array_equal(calibrator.get_data(), block)


def test_precalculated_block_starts_fast(calibrator, block, capture, published):
    table = calibrator.get_precalculated_data()
    with qk7.Calibrator(block, precalculated=table, dynamic_finger_mask=False) as other:
        assert other.get_option("PrecalculatedData") == "Enabled"
        assert np.array_equal(other.get_precalculated_data(), table)
        assert same(other.correct(capture), published)


def test_precalculated_block_alone_is_refused(calibrator):
    with pytest.raises(ValueError, match="needs the calibration block"):
        qk7.Calibrator(precalculated=calibrator.get_precalculated_data())


def test_generate_gives_what_was_published(data):
    with qk7.Calibrator() as calibrator:
        calibrator.generate_data(qk7.Bitmap.read(data / "generate/912_target.bmp"))
        assert calibrator.get_data().tobytes() == (data / "generate/912.cal").read_bytes()


def test_reference_drops_the_calibration_data(calibrator, block):
    calibrator.set_reference_data(block)
    with pytest.raises(qk7.CalibrationError) as caught:
        calibrator.get_data()
    assert caught.value.number == qk7.Status.QMT_ERROR_NOT_INITIALIZED


def test_efts_is_as_published(data):
    for row in json.loads((data / "efts/efts.json").read_text()):
        with qk7.Calibrator(qk7.read_block(data / row["record"])) as calibrator:
            corrected = qk7.Bitmap.read(data / row["corrected"])
            assert calibrator.check_efts(corrected) == pytest.approx(row["percent"], abs=1e-9)


def test_levels_and_contamination_are_as_published(data):
    for row in json.loads((data / "dynamic/dynamic.json").read_text())[:3]:
        raw = qk7.Bitmap.read(data / row["capture"])
        with qk7.Calibrator(qk7.read_block(data / row["record"])) as calibrator:
            assert calibrator.levels == (0.0, 0.0)
            assert calibrator.contamination(raw) == pytest.approx(row["contamination"], abs=1e-9)
            calibrator.correct(raw)
            levels = calibrator.levels
            assert levels.dirt == pytest.approx(row["normal"]["dirt"], abs=1e-9)
            assert levels.dry_finger == pytest.approx(row["normal"]["dry"], abs=1e-9)


def test_options_are_those_of_the_library_at_first():
    with qk7.Calibrator() as calibrator:
        assert calibrator.dynamic_finger_mask is True
        assert calibrator.sensitive_mode is False
        assert calibrator.mask_is_output is False
        assert calibrator.geometry is qk7.Geometry.THIN_PLATE_SPLINE
        assert calibrator.get_option("PrecalculatedData") == "Disabled"


@pytest.mark.parametrize("name, key", [("dynamic_finger_mask", "DynamicFingerMask"),
                                       ("sensitive_mode", "SensitiveMode"),
                                       ("mask_is_output", "MaskIsOutput")])
def test_switches_are_the_options_that_they_name(name, key):
    for enable in True, False:
        with qk7.Calibrator(**{name: enable}) as calibrator:
            assert calibrator.get_option(key) == ("Enabled" if enable else "Disabled")
            setattr(calibrator, name, not enable)
            assert calibrator.get_option(key) == ("Disabled" if enable else "Enabled")
            assert getattr(calibrator, name) is (not enable)


def test_geometry_is_the_option_of_that_name():
    for geometry in qk7.Geometry:
        with qk7.Calibrator(geometry=geometry) as calibrator:
            assert calibrator.get_option("GeometricCalibrate") == geometry.value
            assert calibrator.geometry is geometry


def test_options_are_taken_as_texts():
    with qk7.Calibrator() as calibrator:
        calibrator.set_option("geometriccalibrate=disable")
        assert calibrator.geometry is qk7.Geometry.ODD_LINES
        for call in lambda: calibrator.set_option("Colour=true"), \
                lambda: calibrator.get_option("Colour"):
            with pytest.raises(qk7.CalibrationError) as caught:
                call()
            assert caught.value.number == qk7.Status.QMT_ERROR_PARAM_IS_MISSING


def test_texts_are_no_switches():
    with qk7.Calibrator() as calibrator:
        for text in "disable", "false", "":
            with pytest.raises(TypeError, match="SensitiveMode: True or False"):
                calibrator.sensitive_mode = text
        with pytest.raises(TypeError, match="not the text 'Disabled'"):
            qk7.Calibrator(mask_is_output=calibrator.get_option("MaskIsOutput"))
        assert calibrator.sensitive_mode is False
        calibrator.sensitive_mode = np.bool_(True)
        assert calibrator.sensitive_mode is True


def test_texts_with_zeros_are_not_cut_off():
    with qk7.Calibrator() as calibrator:
        with pytest.raises(ValueError, match="without zeros"):
            calibrator.set_option("MaskIsOutput=true\0")
        with pytest.raises(ValueError, match="without zeros"):
            calibrator.get_option("MaskIsOutput\0")
        assert calibrator.mask_is_output is False


def test_help_can_be_read_without_a_calibrator():
    assert qk7.Calibrator.sensitive_mode.__doc__ == "Accept faint fingers."
