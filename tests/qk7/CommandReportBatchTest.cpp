/// `qk7 report --batch`: pages of many scanners, and their index.

#include "qk7/CommandRunner.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;
using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

class Qk7ReportBatch : public testing::Test {
protected:
    Qk7ReportBatch() {
        Add("one/target.bmp", RawTarget());
        Add("two/target_first.bmp", RawTarget());
        Add("two/empty.bmp", EmptyPlaten());
    }
    void Add(const std::string& File, const Bytes& Content) {
        fs::create_directories(fs::path(m_Folder / ("line/" + File)).parent_path());
        Put(m_Folder / ("line/" + File), Content);
    }
    StEnded Batch(const Arguments& more = {}, const std::string& Output = "pages") {
        Arguments arguments = {"report", "--batch", "line", "-o", Output};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }
    bool HasPage(const std::string& Name) { return fs::exists(m_Folder / ("pages/" + Name)); }
    std::string Page(const std::string& Name) { return ToText(Get(m_Folder / ("pages/" + Name))); }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7ReportBatch, WritesAPageForEachScannerAndAnIndex) {
    const StEnded ended = Batch();

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_EQ(ended.m_Out, "one: good\ntwo: good\n");
    EXPECT_THAT(ended.m_Err, HasSubstr("qk7 report: 2 good in "));
    EXPECT_THAT(Page("index.html"), HasSubstr("<a href=\"scanner-one.html\">one</a>"));
    EXPECT_THAT(Page("scanner-one.html"), HasSubstr("<a href=\"index.html\">All scanners</a>"));
    EXPECT_THAT(Page("scanner-two.html"), HasSubstr("<dt>Target</dt><dd>target_first.bmp</dd>"));
    EXPECT_THAT(Page("scanner-two.html"), HasSubstr("<dt>Empty platen</dt><dd>empty.bmp</dd>"));
}

TEST_F(Qk7ReportBatch, IsDoubtfulWhereOneIsAndRefusedWhereOneIs) {
    sim::ClTargetSettings wide;
    wide.m_dScale = 1.02;
    Add("three/target.bmp", RawTarget(wide));
    EXPECT_EQ(Batch().m_nExit, 3);
    EXPECT_THAT(Page("index.html"), HasSubstr("data-figure=\"count/doubtful\" data-value=\"1\""));

    Add("four/target.bmp", RawTarget(Without({3})));
    const StEnded ended = Batch();
    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, HasSubstr("qk7 report: 2 good, 1 doubtful, 1 bad in "));
    EXPECT_TRUE(HasPage("scanner-four.html"));
}

TEST_F(Qk7ReportBatch, AScannerThatFailsStopsNoOther) {
    Add("broken/target.bmp", ToBytes("no picture"));
    Add("none/loop.bmp", EmptyPlaten());
    Add("twice/target_a.bmp", RawTarget());
    Add("twice/target_b.bmp", RawTarget());
    const StEnded ended = Batch();

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "one: good\ntwo: good\n");
    EXPECT_THAT(ended.m_Err, HasSubstr("broken/target.bmp"));
    EXPECT_THAT(ended.m_Err, HasSubstr("line/none: has no capture of the target"));
    EXPECT_THAT(ended.m_Err, HasSubstr("has several pictures of one kind: target_a.bmp and "
                                       "target_b.bmp"));
    EXPECT_FALSE(HasPage("scanner-broken.html"));
    EXPECT_THAT(Page("index.html"), HasSubstr("data-figure=\"count/failed\" data-value=\"3\""));
    EXPECT_THAT(Page("index.html"), HasSubstr("<th scope=\"row\">none</th>"));
}

TEST_F(Qk7ReportBatch, FailsForAScannerWhosePlateIsGone) {
    fs::create_symlink("nowhere/plate.cal", m_Folder / "line/one/plate.cal");
    const StEnded ended = Batch({"--quiet"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "two: good\n");
    EXPECT_EQ(ended.m_Err, "qk7 report: line/one/plate.cal: No such file or directory\n");
}

TEST_F(Qk7ReportBatch, FailsAsAWholeWithoutItsIndex) {
    fs::create_directories(m_Folder / "pages/index.html");
    const StEnded ended = Batch({"--json"});

    EXPECT_EQ(ended.m_nExit, 1);
    const std::string words = "pages/index.html: cannot be written: Is a directory";
    EXPECT_EQ(ended.m_Err, "qk7 report: " + words + "\n");
    const json document = json::parse(ended.m_Out);
    EXPECT_EQ(document.at("error"), words);
    EXPECT_EQ(document.at("results"), json::array());
}

TEST_F(Qk7ReportBatch, TellsScannersInTheOrderOfTheirNames) {
    for (const char* szName : {"m", "b", "10", "z", "9", "a", "x", "k"})
        Add(std::string(szName) + "/target.bmp", ToBytes("no picture"));
    const std::vector<std::string> names = {"10", "9", "a", "b", "k", "m", "one", "two", "x", "z"};

    std::vector<std::string> told;
    for (const json& result : ResultsOf(Batch({"--json"}).m_Out, "report"))
        told.push_back(fs::path(result["file"].get<std::string>()).filename().string());
    EXPECT_EQ(told, names);

    const std::string index = Page("index-name.html");
    std::size_t nAt = 0;
    for (const std::string& name : names) {
        nAt = index.find("<tr data-scanner=\"" + name + "\">", nAt);
        ASSERT_NE(nAt, std::string::npos) << name;
    }
}

TEST_F(Qk7ReportBatch, IsTheSameWhateverTheNumberOfThreads) {
    Add("three/target.bmp", RawTarget(Without({3})));
    const StEnded one = Batch({"--jobs", "1", "--quiet"});
    const StEnded many = Batch({"--jobs", "3", "--quiet"}, "others");

    EXPECT_EQ(one.m_Out, many.m_Out);
    for (const auto& page : fs::directory_iterator(m_Folder / "pages")) {
        const std::string name = page.path().filename().string();
        EXPECT_EQ(Page(name), ToText(Get(m_Folder / ("others/" + name)))) << name;
    }
}

TEST_F(Qk7ReportBatch, TakesTheNamedPictureLeavesRuledOnesOutAndTakesOthersForFingers) {
    Add("one/target_old.bmp", ToBytes("not read"));
    Add("one/ruled.bmp", ToBytes("not read"));
    Add("one/notes.txt", ToBytes("not read"));
    Add("one/thumb.bmp", EmptyPlaten());
    EXPECT_EQ(Batch().m_nExit, 0);
    EXPECT_THAT(Page("scanner-one.html"), HasSubstr("<dt>Target</dt><dd>target.bmp</dd>\n"
                                                    "<dt>Finger</dt><dd>thumb.bmp</dd>\n</dl>"));
}

TEST_F(Qk7ReportBatch, PrintsAnObjectForEachScannerAsJson) {
    Add("broken/target.bmp", ToBytes("no picture"));
    const json results = ResultsOf(Batch({"--json"}).m_Out, "report");
    ASSERT_EQ(results.size(), 3U);
    EXPECT_TRUE(results[0].contains("error"));
    EXPECT_EQ(results[1]["file"], "line/one");
    EXPECT_EQ(results[1]["report"], "pages/scanner-one.html");
    EXPECT_EQ(results[1]["verdict"], "good");
}

TEST_F(Qk7ReportBatch, NeedsFoldersOfScanners) {
    const StEnded none = Qk7({"report", "--batch", "none", "-o", "pages"}, m_Folder.Path());
    EXPECT_EQ(none.m_nExit, 1);
    EXPECT_THAT(none.m_Err, HasSubstr("none: No such file or directory"));
    const StEnded flat = Qk7({"report", "--batch", "line/one", "-o", "pages"}, m_Folder.Path());
    EXPECT_EQ(flat.m_nExit, 1);
    EXPECT_THAT(flat.m_Err, HasSubstr("is a folder without folders of scanners"));
    EXPECT_FALSE(HasPage("index.html"));
}
