"""The three forms of archives, and what is hostile in them."""
import hashlib
import json
import os
import zipfile

import pytest

from archive_correction import entry as entry_module
from archive_correction import tree as tree_module
from archive_correction import zipped as zipped_module
from archive_correction.entry import Entry, judged
from archive_correction.forms import open_archive
from archive_correction.listed import Listed
from archive_correction.tree import Tree
from archive_correction.zipped import Zip

DIGEST = hashlib.sha256(b"content").hexdigest()


def faults(archive):
    return {entry.name: entry.fault for entry in judged(archive.entries())}


def test_form_is_told_by_the_path(tree, zipped, tmp_path):
    (tmp_path / "list.csv").touch()
    assert isinstance(open_archive(str(tree)), Tree)
    assert isinstance(open_archive(str(zipped)), Zip)
    assert isinstance(open_archive(str(tmp_path / "list.csv")), Listed)


def test_tree_and_zip_have_the_same_captures_in_the_same_order(tree, zipped):
    kinds = [open_archive(str(path)) for path in (tree, zipped)]
    names = [[(entry.name, entry.scanner) for entry in kind.entries()] for kind in kinds]
    assert names[0] == names[1] == sorted(names[0])
    assert len(names[0]) == 60
    for entry in kinds[0].entries():
        assert kinds[0].read(entry) == kinds[1].read(entry) == (tree / entry.name).read_bytes()


# Trees

@pytest.fixture
def small(tmp_path):
    """A tree with one capture."""
    (tmp_path / "tree/a").mkdir(parents=True)
    (tmp_path / "tree/a/x.bmp").write_bytes(b"content")
    return tmp_path / "tree"


def test_tree_takes_bitmaps_alone(small):
    (small / "a/notes.txt").touch()
    (small / "a/Y.BMP").touch()
    assert sorted(faults(Tree(str(small)))) == ["a/Y.BMP", "a/x.bmp"]


def test_capture_beside_the_folders_of_scanners_is_refused(small):
    (small / "x.bmp").touch()
    assert "no scanner's folder" in faults(Tree(str(small)))["x.bmp"]


def test_stamp_of_a_tree_follows_size_and_time(small):
    [first] = Tree(str(small)).entries()
    os.utime(small / "a/x.bmp", ns=(1, 1))
    [second] = Tree(str(small)).entries()
    (small / "a/x.bmp").write_bytes(b"longer content")
    os.utime(small / "a/x.bmp", ns=(1, 1))
    [third] = Tree(str(small)).entries()
    assert len({first.stamp, second.stamp, third.stamp}) == 3


def test_links_lead_nowhere(small):
    (small / "a/link.bmp").symlink_to(small / "a/x.bmp")
    (small / "b").symlink_to(small / "a")
    archive = Tree(str(small))
    assert sorted(faults(archive)) == ["a/link.bmp", "a/x.bmp"]
    with pytest.raises(OSError):
        archive.read(Entry("a/link.bmp", "a"))


def test_pipe_is_not_waited_for(small):
    os.mkfifo(small / "a/pipe.bmp")
    with pytest.raises(ValueError, match="no regular file"):
        Tree(str(small)).read(Entry("a/pipe.bmp", "a"))


def test_file_larger_than_any_capture_is_not_read(small, monkeypatch):
    monkeypatch.setattr(tree_module, "MOST_BYTES", 6)
    with pytest.raises(ValueError, match="has 7 bytes, more than any capture"):
        Tree(str(small)).read(Entry("a/x.bmp", "a"))
    monkeypatch.setattr(tree_module, "MOST_BYTES", 7)
    assert Tree(str(small)).read(Entry("a/x.bmp", "a")) == b"content"
    assert entry_module.MOST_BYTES == 64 << 20


def test_name_that_is_no_utf8_is_read(small):
    (small / os.fsdecode(b"a/\xff.bmp")).write_bytes(b"strange")
    archive = Tree(str(small))
    [strange] = [entry for entry in archive.entries() if entry.name != "a/x.bmp"]
    assert faults(archive)[strange.name] == ""
    assert archive.read(strange) == b"strange"


def test_tree_that_is_not_there_is_an_error(tmp_path):
    with pytest.raises(OSError):
        Tree(str(tmp_path / "none")).entries()


def test_tree_holds_what_lies_in_it(small):
    archive = Tree(str(small))
    assert archive.holds(str(small / "out")) and archive.holds(str(small))
    assert archive.holds(str(small.parent)), "images could take the place of captures"
    assert not archive.holds(str(small) + "-out") and not archive.holds(str(small.parent / "out"))


# Zip archives

def write_zip(path, members, **how):
    with zipfile.ZipFile(path, "w", **how) as file:
        for name, content in members:
            file.writestr(name, content)
    return Zip(str(path))


@pytest.mark.filterwarnings("ignore:Duplicate name")
def test_hostile_names_of_a_zip_are_refused(tmp_path):
    archive = write_zip(tmp_path / "a.zip", [
        ("../x.bmp", b""), ("/etc/x.bmp", b""), ("a/../../x.bmp", b""), ("a/y.bmp", b"1"),
        ("a/y.bmp", b"2"), ("a/b\\..\\x.bmp", b""), ("x.bmp", b""), ("a/z.bmp", b""),
        ("a/z.bmp/z.bmp", b""), ("a/", b""), ("a/readme", b"")])
    told = faults(archive)
    assert [name for name, fault in told.items() if not fault] == ["a/z.bmp"]
    assert len(told) == 8


def test_member_that_is_damaged_is_told(tmp_path):
    path = tmp_path / "a.zip"
    write_zip(path, [("a/x.bmp", b"0123456789" * 100)])
    content = bytearray(path.read_bytes())
    content[content.index(b"0123456789") + 500] ^= 1
    path.write_bytes(content)
    with pytest.raises(ValueError, match="CRC"):
        Zip(str(path)).read(Entry("a/x.bmp", "a"))


@pytest.mark.parametrize("method", [zipfile.ZIP_BZIP2, zipfile.ZIP_LZMA])
def test_member_that_could_unpack_without_limit_is_refused(tmp_path, method):
    """A few bytes of these become gigabytes before any of them can be looked at."""
    archive = write_zip(tmp_path / "a.zip", [("a/x.bmp", b"content")], compression=method)
    assert "no limit" in faults(archive)["a/x.bmp"]


def test_member_whose_packed_bytes_are_damaged_is_told(tmp_path):
    path = tmp_path / "a.zip"
    write_zip(path, [("a/x.bmp", os.urandom(1000)), ("a/y.bmp", b"good")],
              compression=zipfile.ZIP_DEFLATED)
    content = path.read_bytes()
    path.write_bytes(content[:300] + 4 * b"\xff" + content[304:])
    archive = Zip(str(path))
    with pytest.raises((OSError, ValueError)):
        archive.read(Entry("a/x.bmp", "a"))
    assert archive.read(Entry("a/y.bmp", "a")) == b"good"


def test_member_larger_than_any_capture_is_refused_before_it_is_unpacked(tmp_path, monkeypatch):
    monkeypatch.setattr(zipped_module, "MOST_BYTES", 1000)
    archive = write_zip(tmp_path / "a.zip", [("a/x.bmp", bytes(1001)), ("a/y.bmp", bytes(1000))],
                        compression=zipfile.ZIP_DEFLATED)
    told = faults(archive)
    assert "has 1001 bytes" in told["a/x.bmp"]
    assert told["a/y.bmp"] == ""


def patch(path, before, after):
    content = path.read_bytes()
    assert before in content
    path.write_bytes(content.replace(before, after))
    return Zip(str(path))


def test_member_that_unpacks_to_more_than_is_told_is_refused(tmp_path):
    path = tmp_path / "a.zip"
    write_zip(path, [("a/x.bmp", bytes(5000))], compression=zipfile.ZIP_DEFLATED)
    archive = patch(path, (5000).to_bytes(4, "little"), (4000).to_bytes(4, "little"))
    with pytest.raises(ValueError):
        archive.read(Entry("a/x.bmp", "a"))


def test_encrypted_member_is_refused(tmp_path):
    path = tmp_path / "a.zip"
    write_zip(path, [("a/x.bmp", b"content")])
    archive = patch(path, b"PK\x01\x02\x14\x03\x14\x00\x00\x00", b"PK\x01\x02\x14\x03\x14\x00\x01\x00")
    assert faults(archive) == {"a/x.bmp": "the capture is encrypted"}


def test_unknown_compression_is_told(tmp_path):
    path = tmp_path / "a.zip"
    write_zip(path, [("a/x.bmp", b"content")])
    method = (b"\x14\x00\x00\x00\x00\x00", b"\x14\x00\x00\x00\x63\x00")
    with pytest.raises(ValueError):
        patch(path, *method).read(Entry("a/x.bmp", "a"))


@pytest.mark.parametrize("content", [b"", b"PK", b"no zip at all", b"PK\x05\x06" + bytes(8)])
def test_file_that_is_no_zip_is_an_error(tmp_path, content):
    path = tmp_path / "a.zip"
    path.write_bytes(content)
    with pytest.raises(ValueError):
        Zip(str(path))


def test_stamp_of_a_zip_follows_the_content(tmp_path):
    [first] = write_zip(tmp_path / "a.zip", [("a/x.bmp", b"1")]).entries()
    [second] = write_zip(tmp_path / "b.zip", [("a/x.bmp", b"2")]).entries()
    assert first.stamp != second.stamp


# Manifests

def listed(path, content):
    path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return Listed(str(path))


def line(**fields):
    return json.dumps({"scanner": "a", "capture": "a/x.bmp", "sha256": DIGEST, **fields}) + "\n"


def test_manifests_of_both_forms_tell_the_same(tmp_path):
    expected = [Entry("a/x, y.bmp", "a", DIGEST, DIGEST), Entry("z.bmp", "b", DIGEST, DIGEST)]
    rows = (f'note,capture,sha256,scanner\r\n1,"a/x, y.bmp",{DIGEST.upper()},a\r\n\r\n'
            f',z.bmp,{DIGEST},b\r\n')
    lines = (line(capture="a/x, y.bmp", sha256=DIGEST.upper()) + "\n"
             + line(capture="z.bmp", scanner="b"))
    assert listed(tmp_path / "a.csv", "\ufeff" + rows).entries() == expected
    assert listed(tmp_path / "a.jsonl", "\ufeff" + lines).entries() == expected
    assert listed(tmp_path / "b.csv", rows.rstrip()).entries() == expected
    assert listed(tmp_path / "b.jsonl", lines.rstrip()).entries() == expected


def test_captures_lie_beside_the_manifest(small):
    archive = listed(small / "list.jsonl", line())
    assert archive.read(archive.entries()[0]) == b"content"


@pytest.mark.parametrize("bad", ["no json", "[]", "7", "{", 3000 * "[", line(capture=7),
                                 line(capture=None), line(capture=""), line(scanner=["a"]),
                                 line(sha256="12"), line(sha256=64 * "g"), line(sha256=""), "{}",
                                 "NaN", line(capture=20000 * "x")])
def test_bad_line_of_json_is_told_by_its_number_and_the_others_are_read(tmp_path, bad):
    told = listed(tmp_path / "a.jsonl", line() + bad.rstrip("\n") + "\n" + line(capture="y")).entries()
    assert [entry.fault[:7] for entry in told] == ["", "line 2:", ""]


@pytest.mark.parametrize("bad", ["a", "a,b", f"a,x,{DIGEST},1", ",,", f'a,"x,{DIGEST}', "a,x,12",
                                 f",x,{DIGEST}", 20000 * "x"])
def test_bad_line_of_csv_is_told_by_its_number_and_the_others_are_read(tmp_path, bad):
    text = f"scanner,capture,sha256\na,x,{DIGEST}\n{bad}\na,y,{DIGEST}\n"
    told = listed(tmp_path / "a.csv", text).entries()
    assert [entry.fault[:7] for entry in told] == ["", "line 3:", ""]


def test_row_of_another_length_is_told_so(tmp_path):
    told = listed(tmp_path / "a.csv", "note,scanner,capture,sha256\n1,a,x\n").entries()
    assert told[0].fault == "line 2: 4 cells are expected, not 3"


def test_bytes_that_are_no_utf8_are_told(tmp_path):
    told = listed(tmp_path / "a.jsonl", b"\xff\xfe\n" + line().encode()).entries()
    assert [entry.fault[:7] for entry in told] == ["line 1:", ""]


def test_line_without_end_does_not_fill_the_memory(tmp_path):
    told = listed(tmp_path / "a.jsonl", 10_000_000 * b" " + b"\n" + line().encode()).entries()
    assert [entry.fault[:7] for entry in told] == ["line 1:", ""]


@pytest.mark.parametrize("header", ["", "\xff", "scanner,capture", "scanner,capture,sha256,capture"])
def test_csv_without_its_columns_is_an_error(tmp_path, header):
    with pytest.raises(ValueError, match="has to name scanner, capture, sha256"):
        listed(tmp_path / "a.csv", header + "\n").entries()


def test_list_holds_the_folders_that_its_captures_lie_in(tmp_path):
    (tmp_path / "list.jsonl").write_text(
        json.dumps({"scanner": "a", "capture": "images/x.bmp", "sha256": 64 * "0"}))
    archive = Listed(str(tmp_path / "list.jsonl"))
    assert archive.holds(str(tmp_path / "images")) and archive.holds(str(tmp_path))
    assert archive.holds(str(tmp_path.parent))
    assert not archive.holds(str(tmp_path / "out/images")) and not archive.holds(str(tmp_path) + "-out")


def test_names_of_a_manifest_that_lead_out_are_refused(tmp_path):
    lines = "".join(line(capture=name) for name in ("../x.bmp", "/etc/passwd", "a/\ud800", "ok"))
    assert [bool(fault) for fault in faults(listed(tmp_path / "a.jsonl", lines)).values()] == \
        [True, True, True, False]
