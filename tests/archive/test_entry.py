"""What comes from an archive and becomes the name of a file."""
import pytest

from archive_correction.entry import Entry, fault_of_name, fault_of_scanner, judged


@pytest.mark.parametrize("name", ["QK7-1/a.bmp", "a/b/c.d/e.bmp", "a/..b/c..bmp", "a/\u00fc \u4e2d.bmp",
                                  "a/" + 200 * "b"])
def test_ordinary_names_are_taken(name):
    assert fault_of_name(name) == ""


@pytest.mark.parametrize("name", ["", "/", "../x.bmp", "a/../../x.bmp", "/etc/x.bmp", "a//x.bmp",
                                  "a/./x.bmp", "a/", ".", "..", "a/..", "a\\..\\x.bmp", "C:\\x.bmp",
                                  "a/x\0.bmp", "a/x\n.bmp", "a/\ud800.bmp", "a/" + 201 * "b",
                                  "a/" + 101 * "\u00fc", 500 * "a/" + "x"])
def test_names_that_could_leave_the_results_or_be_no_file_are_refused(name):
    assert fault_of_name(name) != ""


@pytest.mark.parametrize("scanner", ["", ".", "..", "../x", "a/b", ".a", "a b", "a\n", "\u00fc",
                                     101 * "a", "*"])
def test_scanners_that_are_no_words_are_refused(scanner):
    assert fault_of_scanner(scanner) != ""
    assert judged([Entry("a.bmp", scanner)])[0].fault == fault_of_scanner(scanner)


def test_scanners_that_are_words_are_taken():
    assert [fault_of_scanner(scanner) for scanner in ("QK7-0001", "7", "a.b_c")] == ["", "", ""]


def test_good_entries_stay_as_they_are():
    entries = [Entry("b/x.bmp", "b", "1"), Entry("a/x.bmp", "a", "2")]
    assert judged(entries) == entries


def test_name_that_stands_twice_is_told_once_and_refused():
    told = judged([Entry("a/x.bmp", "a", "1"), Entry("a/y.bmp", "a"), Entry("a/x.bmp", "a", "2")])
    assert [entry.name for entry in told] == ["a/x.bmp", "a/y.bmp"]
    assert "stands 2 times" in told[0].fault
    assert told[1].fault == ""


def test_capture_whose_folder_would_be_a_capture_is_refused():
    told = judged([Entry("a/x.bmp/y/z.bmp", "a"), Entry("a/x.bmp", "a"), Entry("a/xx.bmp/y.bmp", "a")])
    assert [bool(entry.fault) for entry in told] == [True, False, False]


def test_entries_with_faults_keep_them_and_stand_in_no_ones_way():
    told = judged([Entry("", "", fault="line 3"), Entry("", "", fault="line 4"),
                   Entry("a/x.bmp", "a", fault="is encrypted"), Entry("a/x.bmp", "a")])
    assert [entry.fault for entry in told] == ["line 3", "line 4", "is encrypted", ""]
