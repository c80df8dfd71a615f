/// `qk7 check`.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;
using testing::HasSubstr;

namespace {

/// A folder with a calibration block and a corrected image of the target; the tool runs in it.
class Qk7Check : public testing::Test {
protected:
    void SetUp() override {
        Put(m_Folder / "scanner.cal", TrueCalibration());
        Put(m_Folder / "good.bmp", CorrectedTarget());
    }

    StEnded Check(const Arguments& more) {
        Arguments arguments = {"check", "-q", "-d", "scanner.cal"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    ClTestFolder m_Folder;
};

/// A target with one dot printed 0.3 mm beside its place.
sim::ClTargetSettings WithDotAstray() {
    constexpr int cnDot = 37;
    sim::ClTargetSettings target = Without({cnDot});
    const sim::ClPoint dot = sim::DotPattern()[cnDot];
    target.m_aExtra = {{dot.x + 0.3, dot.y}};
    return target;
}

} // namespace

TEST_F(Qk7Check, PrintsThePercentage) {
    const StEnded ended = Check({"good.bmp"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    EXPECT_EQ(ended.m_Out, "good.bmp: 100.00 % of the dot distances within the EFTS limits\n");
}

TEST_F(Qk7Check, PrintsAnObjectForEachImage) {
    const Bytes astray = CorrectedTarget(WithDotAstray());
    Put(m_Folder / "astray.bmp", GreyFileHeader(320, 480) + astray);

    const StEnded ended = Check({"--json", "good.bmp", "none.bmp", "astray.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 check: none.bmp: No such file or directory\n");
    const json told = ResultsOf(ended.m_Out, "check");
    ASSERT_EQ(told.size(), 3U);
    EXPECT_EQ(told[0], json({{"file", "good.bmp"}, {"efts_percent", 100.0}}));
    EXPECT_EQ(told[1],
              json({{"file", "none.bmp"}, {"error", "none.bmp: No such file or directory"}}));
    EXPECT_EQ(told[2].at("efts_percent"), DirectPercent(TrueCalibration(), astray));
}

TEST_F(Qk7Check, CountsTheDistancesOfADotThatLiesAstray) {
    Put(m_Folder / "astray.bmp", CorrectedTarget(WithDotAstray()));

    const double dPercent =
        ResultsOf(Check({"--json", "astray.bmp"}).m_Out, "check")[0].at("efts_percent");

    // 74 of the 2775 distances have this dot at one end, and it lies 5.9 pixels beside its place;
    // a hundredth of the longest distance is 4. Those that run nearly upright hardly change.
    EXPECT_GT(dPercent, 100.0 * (2775 - 74) / 2775);
    EXPECT_LT(dPercent, 100.0 * (2775 - 37) / 2775);
}

TEST_F(Qk7Check, SaysWhatWasFoundInPlaceOfTheTarget) {
    Put(m_Folder / "bad.bmp", CorrectedTarget(Without({37})));

    const StEnded ended = Check({"bad.bmp", "good.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "good.bmp: 100.00 % of the dot distances within the EFTS limits\n");
    EXPECT_THAT(ended.m_Err,
                HasSubstr("qk7 check: bad.bmp: -600 The calibration failed to generate the "
                          "calibrations data from the given pattern. Not the expected Dot count "
                          "found.\n  74 of 75 dots found, 42 of them accepted.\n"));
    EXPECT_THAT(ended.m_Err, HasSubstr("): column 4, row 6 of the pattern.\n"));
    EXPECT_THAT(ended.m_Err, HasSubstr("  It has to be a capture of the target, corrected with -O "
                                       "DynamicFingerMask=false.\n"));
}

TEST_F(Qk7Check, TellsWhatWasFoundAsJson) {
    Put(m_Folder / "bad.bmp", CorrectedTarget(Without({37})));

    const json told = ResultsOf(Check({"--json", "bad.bmp"}).m_Out, "check");

    EXPECT_EQ(told[0].at("target").at("found"), 74);
    EXPECT_EQ(told[0].at("target").at("refused")[0].at("reason"), "outside_column");
}

TEST_F(Qk7Check, NamesFilesThatAreNotFit) {
    Put(m_Folder / "cut.bmp", {});
    const StEnded ended = Check({"cut.bmp"});
    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_EQ(ended.m_Err, "qk7 check: cut.bmp: -21 The size of the finger template is not valid. "
                           "It ends at byte 0, but the info header at byte 0 needs 4 bytes.\n");

    Put(m_Folder / "scanner.cal", ToBytes("no block"));
    EXPECT_EQ(Check({"good.bmp"}).m_Err,
              "qk7 check: scanner.cal: -40 The input signature is not expected here. It is no "
              "calibration block; \"qk7 info\" tells what it is.\n");
    EXPECT_EQ(Qk7({"check", "-d", "none.cal", "x.bmp"}, m_Folder.Path()).m_Err,
              "qk7 check: none.cal: No such file or directory\n");
}
