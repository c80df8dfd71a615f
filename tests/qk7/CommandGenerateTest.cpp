/// `qk7 generate`: what it writes.

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
using testing::StartsWith;

namespace {

using Names = std::set<std::string>;

/// A folder with a target's capture, target.bmp; the tool runs in it.
class Qk7Generate : public testing::Test {
protected:
    void SetUp() override { Put(m_Folder / "target.bmp", RawTarget()); }

    StEnded Generate(const Arguments& more) {
        Arguments arguments = {"generate", "target.bmp", "-o", "scanner.cal"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    void ExpectDone(const Arguments& more) {
        const StEnded ended = Generate(more);
        EXPECT_EQ(ended.m_nExit, 0);
        EXPECT_THAT(ended.m_Out, StartsWith("scanner.cal: good\n"));
        EXPECT_EQ(ended.m_Err, "");
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7Generate, WritesTheBlockOfTheLibrary) {
    ExpectDone({});

    EXPECT_EQ(Get(m_Folder / "scanner.cal"), DirectlyGenerated(RawTarget()));
    EXPECT_EQ(m_Folder.Names(), (Names{"scanner.cal", "target.bmp"}));
}

TEST_F(Qk7Generate, TakesACaptureWithAFileHeader) {
    const int nWidth = TargetCapture().m_Raw.m_nWidth;
    const int nHeight = TargetCapture().m_Raw.m_nHeight;
    Put(m_Folder / "target.bmp", GreyFileHeader(nWidth, nHeight) + RawTarget());

    ExpectDone({});

    EXPECT_EQ(Get(m_Folder / "scanner.cal"), DirectlyGenerated(RawTarget()));
}

TEST_F(Qk7Generate, WritesThePrecalculatedBlockToo) {
    ExpectDone({"--precalculated", "scanner.pre"});

    const Bytes calibration = DirectlyGenerated(RawTarget());
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), calibration);
    EXPECT_EQ(Get(m_Folder / "scanner.pre"), DirectlyPrecalculated(calibration));
}

TEST_F(Qk7Generate, WritesBlocksThatCorrectTheTarget) {
    ExpectDone({"--precalculated", "scanner.pre"});

    const StEnded ended =
        Qk7({"calibrate", "-d", "scanner.cal", "--precalculated", "scanner.pre", "-O",
             "DynamicFingerMask=false", "target.bmp", "-o", "corrected.bmp"},
            m_Folder.Path());

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_EQ(Get(m_Folder / "corrected.bmp"),
              GreyFileHeader(320, 480) + DirectlyCalibrated(DirectlyGenerated(RawTarget()),
                                                            RawTarget(),
                                                            {"DynamicFingerMask=false"}));
}

TEST_F(Qk7Generate, UsesTheReferencePlate) {
    // The same plate half a hundredth larger: its dots come to lie further apart.
    const Bytes reference = StretchedCalibration(1.005F, 1.005F);
    Put(m_Folder / "plate.cal", reference);

    ExpectDone({"--reference", "plate.cal"});

    const Bytes expected = DirectlyGenerated(RawTarget(), reference);
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), expected);
    EXPECT_NE(expected, DirectlyGenerated(RawTarget()));
}

TEST_F(Qk7Generate, DrawsThePictureOnRequest) {
    ExpectDone({"--debug-image", "grid.bmp"});

    const Bytes picture = Get(m_Folder / "grid.bmp");
    const int nWidth = TargetCapture().m_Raw.m_nWidth;
    const int nHeight = TargetCapture().m_Raw.m_nHeight;
    ASSERT_EQ(picture.size(), 14U + RawTarget().size());
    const Bytes header = GreyFileHeader(nWidth, nHeight);
    EXPECT_EQ(Bytes(picture.begin(), picture.begin() + 14), header);
}

TEST_F(Qk7Generate, TellsAboutTheDotsAsJson) {
    const StEnded ended = Generate({"--json"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    json told = ResultsOf(ended.m_Out, "generate")[0];
    EXPECT_EQ(told.at("dots").size(), 75U);
    for (const char* szFigures : {"dots", "plate", "expected_error"})
        EXPECT_EQ(told.erase(szFigures), 1U); // which have tests of their own
    EXPECT_EQ(told, json::parse(R"({
        "file": "target.bmp",
        "calibration": "scanner.cal",
        "written": true,
        "target": {"dots": 75, "found": 75, "accepted": 75, "missing": [], "refused": []},
        "verdict": "good",
        "reasons": []
    })"));
}

TEST_F(Qk7Generate, ReplacesOldResults) {
    for (const char* szName : {"scanner.cal", "scanner.pre", "grid.bmp"})
        Put(m_Folder / szName, ToBytes("old"));

    ExpectDone({"--precalculated", "scanner.pre", "--debug-image", "grid.bmp"});

    for (const char* szName : {"scanner.cal", "scanner.pre", "grid.bmp"})
        EXPECT_GT(Get(m_Folder / szName).size(), 1000U) << szName;
    EXPECT_EQ(m_Folder.Names(), (Names{"grid.bmp", "scanner.cal", "scanner.pre", "target.bmp"}));
}
