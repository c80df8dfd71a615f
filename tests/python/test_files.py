"""Files: read whole, written whole or not at all."""
import contextlib
import os
import resource
import shutil
import stat

import numpy as np
import pytest
import qk7


@contextlib.contextmanager
def files_of_at_most(size):
    """As a full disk has it, or a quota."""
    former = resource.getrlimit(resource.RLIMIT_FSIZE)
    resource.setrlimit(resource.RLIMIT_FSIZE, (size, former[1]))
    try:
        yield
    finally:
        resource.setrlimit(resource.RLIMIT_FSIZE, former)


def test_files_that_are_not_there_are_told_by_the_system(tmp_path):
    with pytest.raises(FileNotFoundError):
        qk7.Bitmap.read(tmp_path / "none.bmp")
    with pytest.raises(FileNotFoundError):
        qk7.read_block(tmp_path / "none.cal")


def test_blocks_are_written_as_they_were_read(tmp_path, block):
    qk7.write_block(tmp_path / "a.cal", block)
    assert np.array_equal(qk7.read_block(tmp_path / "a.cal"), block)
    qk7.write_block(tmp_path / "a.cal", b"abc")
    assert (tmp_path / "a.cal").read_bytes() == b"abc"


def test_block_that_is_mapped_is_written_over_its_own_file(tmp_path, data, block):
    bitmap = shutil.copyfile(data / "geometric/904_raw.bmp", tmp_path / "a.bmp")
    before = bitmap.read_bytes()
    qk7.Bitmap(np.memmap(bitmap, np.uint8, "r+", offset=14)).write(bitmap)
    assert bitmap.read_bytes() == before

    qk7.write_block(tmp_path / "a.cal", block)
    qk7.write_block(tmp_path / "a.cal", np.memmap(tmp_path / "a.cal", np.uint8, "r"))
    assert np.array_equal(qk7.read_block(tmp_path / "a.cal"), block)


def test_failure_leaves_the_file_that_was_there(tmp_path, block, capture):
    for name, write in [("a.cal", lambda path: qk7.write_block(path, block)),
                        ("a.bmp", capture.write)]:
        write(tmp_path / name)
        before = (tmp_path / name).read_bytes()
        with files_of_at_most(512):
            with pytest.raises(OSError, match=f"File too large.*{name}"):
                write(tmp_path / name)
        assert (tmp_path / name).read_bytes() == before
    assert sorted(os.listdir(tmp_path)) == ["a.bmp", "a.cal"]


def refuse(*_):
    raise KeyboardInterrupt


def test_file_that_cannot_be_renamed_is_removed(tmp_path, monkeypatch):
    monkeypatch.setattr(os, "replace", refuse)
    with pytest.raises(KeyboardInterrupt):
        qk7.write_block(tmp_path / "a.cal", b"abc")
    assert os.listdir(tmp_path) == []


def test_mapped_file_that_becomes_shorter_can_still_be_read(tmp_path, capture):
    capture.write(tmp_path / "a.bmp")
    mapped = qk7.Bitmap(np.memmap(tmp_path / "a.bmp", np.uint8, "r")[14:])
    qk7.Bitmap.blank(1, 1).write(tmp_path / "a.bmp")
    assert np.array_equal(mapped.pixels, capture.pixels)
    assert qk7.Bitmap.read(tmp_path / "a.bmp").width == 1


def test_permissions_are_handed_on_and_new_files_have_the_usual_ones(tmp_path):
    path = tmp_path / "a.cal"
    former = os.umask(0o027)
    try:
        qk7.write_block(path, b"abc")
        assert stat.S_IMODE(os.stat(path).st_mode) == 0o640
        os.chmod(path, 0o604)
        qk7.write_block(path, b"abc")
        assert stat.S_IMODE(os.stat(path).st_mode) == 0o604
    finally:
        os.umask(former)


def test_file_that_may_not_be_written_to_is_not_replaced(tmp_path, monkeypatch):
    path = tmp_path / "a.cal"
    path.write_bytes(b"abc")
    monkeypatch.setattr(os, "access", lambda *_: False)  # nothing is denied to root
    with pytest.raises(PermissionError, match="a.cal"):
        qk7.write_block(path, b"other")
    assert path.read_bytes() == b"abc"


def test_link_is_followed(tmp_path):
    (tmp_path / "folder").mkdir()
    os.symlink("folder/a.cal", tmp_path / "link")
    for content in b"abc", b"other":
        qk7.write_block(tmp_path / "link", content)
        assert (tmp_path / "folder/a.cal").read_bytes() == content
    assert os.path.islink(tmp_path / "link")


def test_failures_are_told_with_the_path_that_was_given(tmp_path):
    with pytest.raises(FileNotFoundError, match="none/a.cal"):
        qk7.write_block(tmp_path / "none/a.cal", b"abc")
    with pytest.raises(IsADirectoryError, match=tmp_path.name):
        qk7.write_block(tmp_path, b"abc")


def test_device_is_written_to(monkeypatch):
    monkeypatch.setattr(os, "replace", lambda *_: pytest.fail("the device is replaced"))
    with pytest.raises(OSError, match="No space left on device: '/dev/full'"):
        qk7.write_block("/dev/full", b"abc")


def test_pipe_is_written_to_and_read_to_its_end(block):
    source, sink = os.pipe()
    qk7.write_block(f"/dev/fd/{sink}", block)  # less than a pipe holds
    os.close(sink)
    assert np.array_equal(qk7.read_block(f"/dev/fd/{source}"), block)
    os.close(source)


def test_file_whose_size_nobody_tells_is_read_to_its_end():
    assert qk7.read_block("/proc/self/status").size > 0


def test_array_that_was_read_can_be_written_to(tmp_path):
    qk7.write_block(tmp_path / "a.cal", b"abc")
    read = qk7.read_block(tmp_path / "a.cal")
    read[0] = 0
    assert read.tobytes() == b"\0bc"
