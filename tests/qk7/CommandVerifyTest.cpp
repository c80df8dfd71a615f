/// `qk7 verify`.

#include "qk7/ChangedBytes.h"
#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;
using testing::HasSubstr;

namespace {

/// A folder with a target, its block, and the block's table; the tool runs in it.
class Qk7Verify : public testing::Test {
protected:
    void SetUp() override {
        Put(m_Folder / "target.bmp", RawTarget());
        Put(m_Folder / "scanner.cal", DirectlyGenerated(RawTarget()));
        Put(m_Folder / "scanner.pre", DirectlyPrecalculated(Get(m_Folder / "scanner.cal")));
    }

    StEnded Verify(const Arguments& more) {
        Arguments arguments = {"verify", "-q"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    void ExpectGood(const Arguments& arguments, const std::string& Out) {
        const StEnded ended = Verify(arguments);
        EXPECT_EQ(ended.m_nExit, 0);
        EXPECT_EQ(ended.m_Err, "");
        EXPECT_EQ(ended.m_Out, Out);
    }

    void ExpectBad(const Arguments& arguments, const std::string& Words) {
        const StEnded ended = Verify(arguments);
        EXPECT_EQ(ended.m_nExit, 1);
        EXPECT_EQ(ended.m_Err, "");
        EXPECT_THAT(ended.m_Out, HasSubstr(", NOT what this version makes\n  " + Words + "\n"));
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7Verify, FindsNothingInBlocksOfThisVersion) {
    ExpectGood({"scanner.cal"}, "scanner.cal: calibration block, what this version makes\n");
    ExpectGood({"scanner.cal", "--target", "target.bmp"},
               "scanner.cal: calibration block, what this version makes\n");
    ExpectGood({"scanner.pre", "-d", "scanner.cal"},
               "scanner.pre: precalculated block, what this version makes\n");
}

TEST_F(Qk7Verify, TakesAnOlderLayoutForWhatItIs) {
    ExpectGood({DataPath("golden/layout3.cal")},
               DataPath("golden/layout3.cal") +
                   ": calibration block, what this version makes\n"
                   "  Its layout is 3, this version writes 6 and reads both.\n");
}

TEST_F(Qk7Verify, NotesWhatStandsBehindABlock) {
    Put(m_Folder / "longer.cal", Get(m_Folder / "scanner.cal") + ToBytes("x"));

    ExpectGood({"longer.cal"}, "longer.cal: calibration block, what this version makes\n"
                               "  1 byte stands behind it, without meaning.\n");
}

TEST_F(Qk7Verify, FindsABlockOfAnotherCapture) {
    Put(m_Folder / "moved.cal", CalibrationWithDotMoved(37, 0.5F, 0.0F));

    const StEnded ended = Verify({"moved.cal", "--target", "target.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Out,
                HasSubstr("moved.cal: calibration block, NOT what this version makes"));
    EXPECT_THAT(ended.m_Out,
                HasSubstr("of 75 actual points lie elsewhere, number 38 furthest: at ("));
}

TEST_F(Qk7Verify, FindsATableOfAnotherBlock) {
    Put(m_Folder / "other.pre", DirectlyPrecalculated(OtherRecord()));

    const StEnded ended = Verify({"other.pre", "-d", "scanner.cal"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Out, HasSubstr("  It belongs to another calibration block: its hash is "));
    EXPECT_THAT(ended.m_Out, HasSubstr("entries of the table are others, the first at (0, 0) of"));
}

TEST_F(Qk7Verify, FindsTheEntryThatIsDamaged) {
    constexpr std::size_t cnEntry = 320 * 7 + 5; // line 7, column 5
    const Bytes table = Get(m_Folder / "scanner.pre");
    const std::size_t nAt = 28 + 94 + 36 * cnEntry + 35;
    Put(m_Folder / "bad.pre", With(table, nAt, static_cast<unsigned char>(table[nAt] ^ 1U)));

    ExpectBad({"bad.pre", "-d", "scanner.cal"},
              "1 of 153600 entries of the table are others, the first at (5, 7) of the corrected "
              "image.");
}

TEST_F(Qk7Verify, FindsAChangeThatNoReaderNotices) {
    const std::size_t nBackgroundAt = 40 + 28;
    Put(m_Folder / "bad.pre", With(Get(m_Folder / "scanner.pre"), nBackgroundAt, 17));

    ExpectBad({"bad.pre", "-d", "scanner.cal"}, "The background is 17, this version makes 255.");
}

TEST_F(Qk7Verify, NamesWhatItCannotJudge) {
    Put(m_Folder / "damaged.cal", With(Get(m_Folder / "scanner.cal"), 100, 77));
    const StEnded ended =
        Verify({"none.cal", "damaged.cal", "target.bmp", "scanner.pre", "scanner.cal"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "scanner.cal: calibration block, what this version makes\n");
    EXPECT_EQ(
        ended.m_Err,
        "qk7 verify: none.cal: No such file or directory\n"
        "qk7 verify: damaged.cal: -39 The input is corrupt; it can be a memoryblock or a "
        "file. It is damaged; restore it, or generate the calibration anew.\n"
        "qk7 verify: target.bmp: is no calibration block or precalculated block; \"qk7 info\" "
        "tells what it is.\n"
        "qk7 verify: scanner.pre: is a precalculated block; name by -d the calibration block "
        "that it was made from.\n");
}

TEST_F(Qk7Verify, ReadsWhatIsNamedForBlocksOfTheOtherKind) {
    for (const Arguments& arguments :
         {Arguments{"scanner.cal", "-d", "none"},
          Arguments{"scanner.pre", "-d", "scanner.cal", "--target", "none"}}) {
        const StEnded ended = Verify(arguments);
        EXPECT_EQ(ended.m_nExit, 1);
        EXPECT_EQ(ended.m_Out, "");
        EXPECT_EQ(ended.m_Err, "qk7 verify: none: No such file or directory\n");
    }
}

TEST_F(Qk7Verify, NamesATableThatIsCutOff) {
    const Bytes table = Get(m_Folder / "scanner.pre");
    Put(m_Folder / "cut.pre", Bytes(table.begin(), table.begin() + 1000));

    const StEnded ended = Verify({"cut.pre", "-d", "scanner.cal"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err,
              "qk7 verify: cut.pre: ends at byte 1000, but the table at byte 122 needs "
              "5529600 bytes. It is damaged; make it anew with \"qk7 precalculate\".\n");
}

TEST_F(Qk7Verify, CountsTheGoodAndTheBad) {
    Put(m_Folder / "other.pre", DirectlyPrecalculated(OtherRecord()));

    const StEnded ended = Qk7(
        {"verify", "scanner.pre", "other.pre", "none.pre", "-d", "scanner.cal"}, m_Folder.Path());

    EXPECT_THAT(ended.m_Err, HasSubstr("qk7 verify: 1 good, 1 bad, 1 failed in "));
}

TEST_F(Qk7Verify, TellsAsJson) {
    Put(m_Folder / "other.pre", DirectlyPrecalculated(OtherRecord()));

    const StEnded ended = Verify({"--json", "scanner.cal", "other.pre", "-d", "scanner.cal"});

    EXPECT_EQ(ended.m_nExit, 1);
    const json told = ResultsOf(ended.m_Out, "verify");
    EXPECT_EQ(told[0], json({{"file", "scanner.cal"},
                             {"kind", "calibration block"},
                             {"same", true},
                             {"differences", json::array()},
                             {"notes", json::array()}}));
    EXPECT_EQ(told[1].at("same"), false);
    EXPECT_GE(told[1].at("differences").size(), 2U);
}
