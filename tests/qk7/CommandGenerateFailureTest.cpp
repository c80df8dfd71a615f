/// `qk7 generate`: what it says when no calibration can be derived, and that it then keeps what
/// there was.

#include "apps/qk7/RecordFault.h"
#include "qk7/ChangedBytes.h"
#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <limits>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;
using testing::HasSubstr;

namespace {

using Names = std::set<std::string>;

const std::string refusedWords =
    "-600 The calibration failed to generate the calibrations data from the given pattern. Not the "
    "expected dot count found.";

const std::string unloadableWords =
    ": -39 The input is corrupt; it can be a memoryblock or a file. The calibration block derived "
    "from it does not load.\n";
const std::string recaptureAdvice =
    "Clean platen and target, lay the target flat and straight, and capture it again; "
    "--debug-image FILE shows what was found.";
const std::string plateAdvice =
    "Measure the plate again, or leave --reference away; its block has to tell the resolution of "
    "its target points.";

/// Whose fault it is that a block does not load.
struct StBlame {
    std::string m_File;
    std::string m_Place;
    std::string m_Advice;
};

/// A folder with a target's capture, target.bmp, and an older result; the tool runs in it.
class Qk7GenerateFailure : public testing::Test {
protected:
    void SetUp() override {
        Put(m_Folder / "target.bmp", RawTarget());
        Put(m_Folder / "scanner.cal", ToBytes("old"));
    }

    StEnded Generate(const Arguments& more) {
        Arguments arguments = {"generate", "target.bmp", "-o", "scanner.cal"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    /// Expects the status, this message, and nothing written.
    void ExpectFailure(const Arguments& more, int nExit, const std::string& Message) {
        const Names before = m_Folder.Names();

        const StEnded ended = Generate(more);

        EXPECT_EQ(ended.m_nExit, nExit);
        EXPECT_EQ(ended.m_Out, "");
        EXPECT_EQ(ended.m_Err, "qk7 generate: " + Message + "\n");
        EXPECT_EQ(m_Folder.Names(), before);
        EXPECT_EQ(Get(m_Folder / "scanner.cal"), ToBytes("old"));
    }

    void ExpectFailureOf(const Bytes& Target, const std::string& Words) {
        Put(m_Folder / "target.bmp", Target);
        ExpectFailure({}, 1, "target.bmp: " + Words);
    }

    void ExpectFailureWith(const Bytes& Reference, const std::string& Words) {
        Put(m_Folder / "plate.cal", Reference);
        ExpectFailure({"--reference", "plate.cal"}, 1, "plate.cal: " + Words);
    }

    /// Expects that a block is generated of these and does not load, that the tool says so of a
    /// file and of a dot, and that it writes nothing.
    void ExpectUnloadable(const Bytes& Target, const Bytes& Reference, const StBlame& Blame) {
        const Bytes block = DirectlyGenerated(Target, Reference);
        ASSERT_EQ(DirectLoadStatus(block), -39);
        const auto fault = qk7::FindRecordFault(block); // which has tests of its own
        ASSERT_TRUE(fault.has_value());
        Put(m_Folder / "target.bmp", Target);
        Arguments more = {"--precalculated", "scanner.pre"};
        if (!Reference.empty()) {
            Put(m_Folder / "plate.cal", Reference);
            more.insert(more.end(), {"--reference", "plate.cal"});
        }
        ExpectFailure(more, 1,
                      Blame.m_File + unloadableWords + "  The dot at (" +
                          std::to_string(std::lround(fault->m_At.m_dX)) + ", " +
                          std::to_string(std::lround(fault->m_At.m_dY)) + "), " + Blame.m_Place +
                          " of the pattern: " + fault->m_Words + ".\n  " + Blame.m_Advice);
    }

    ClTestFolder m_Folder;
};

/// A target whose dot 38, column 4, row 7 of the pattern, is not printed; dirt of a dot's size lies
/// beside its place, millimetres to the right and down.
Bytes TargetWithStandIn(double dRight, double dDown) {
    const sim::ClPoint place = sim::DotPattern()[38];
    sim::ClPlacedSpeck speck;
    speck.m_Centre = {place.x + dRight, place.y + dDown};
    speck.m_dDiameter = sim::g_dDotDiameter;
    sim::ClDirtSettings dirt;
    dirt.m_aPlaced = {speck};
    return RawTarget(Without({38}), dirt);
}

} // namespace

TEST_F(Qk7GenerateFailure, SaysWhichDotIsMissing) {
    Put(m_Folder / "target.bmp", RawTarget(Without({38})));

    const StEnded ended = Generate({});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_THAT(ended.m_Err, HasSubstr("qk7 generate: target.bmp: " + refusedWords +
                                       "\n  74 of 75 dots found, 42 of them accepted.\n"));
    EXPECT_THAT(ended.m_Err, HasSubstr("): column 4, row 7 of the pattern.\n"));
    EXPECT_THAT(ended.m_Err, HasSubstr("\n  32 regions refused; places are columns and lines:\n"
                                       "    32 outside the column expected next: at ("));
    EXPECT_THAT(ended.m_Err, HasSubstr(" and 28 more\n"));
    EXPECT_THAT(ended.m_Err, HasSubstr("\n  Clean platen and target, lay the target flat and "
                                       "straight, and capture it again; --debug-image FILE shows "
                                       "what was found.\n"));
}

TEST_F(Qk7GenerateFailure, SaysWhyARegionIsNoDot) {
    sim::ClDirtSettings dirt;
    sim::ClPlacedSpeck blot;
    blot.m_Centre = {-6.0, -10.0}; // on the first dot
    blot.m_dDiameter = 1.2;
    dirt.m_aPlaced = {blot};
    Put(m_Folder / "target.bmp", RawTarget({}, dirt));

    const StEnded ended = Generate({});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, HasSubstr("  74 of 75 dots found"));
    EXPECT_THAT(ended.m_Err, HasSubstr("): column 1, row 1 of the pattern.\n"));
    EXPECT_THAT(ended.m_Err, HasSubstr("    1 with an area above 700 pixels: "));
}

TEST_F(Qk7GenerateFailure, SaysWhenThereIsNoTarget) {
    ExpectFailureOf(EmptyPlaten(),
                    refusedWords +
                        "\n  0 of 75 dots found.\n  No region refused.\n"
                        "  Clean platen and target, lay the target flat and straight, "
                        "and capture it again; --debug-image FILE shows what was found.");
}

TEST_F(Qk7GenerateFailure, DrawsThePictureOfARefusedTarget) {
    Put(m_Folder / "target.bmp", RawTarget(Without({38})));

    const StEnded ended = Generate({"--debug-image", "grid.bmp", "--precalculated", "scanner.pre"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, HasSubstr("and capture it again.\n"));
    EXPECT_EQ(m_Folder.Names(), (Names{"grid.bmp", "scanner.cal", "target.bmp"}));
    EXPECT_EQ(Get(m_Folder / "grid.bmp").size(), 14U + RawTarget().size());
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), ToBytes("old"));
}

TEST_F(Qk7GenerateFailure, SaysWhyTheTargetWasRefusedWhenThePictureCannotBeWritten) {
    Put(m_Folder / "target.bmp", RawTarget(Without({38})));

    const StEnded ended = Generate({"--debug-image", "none/grid.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, HasSubstr("qk7 generate: none/grid.bmp: cannot be written: No such "
                                       "file or directory\nqk7 generate: target.bmp: -600 "));
}

TEST_F(Qk7GenerateFailure, TellsTheReasonsAsJson) {
    Put(m_Folder / "target.bmp", RawTarget(Without({38})));

    const StEnded ended = Generate({"--json"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, HasSubstr("74 of 75 dots found"));
    const json told = ResultsOf(ended.m_Out, "generate")[0];
    EXPECT_EQ(told.at("file"), "target.bmp");
    EXPECT_EQ(told.at("error"), "target.bmp: " + refusedWords);
    const json& target = told.at("target");
    EXPECT_EQ(target.at("dots"), 75);
    EXPECT_EQ(target.at("found"), 74);
    EXPECT_EQ(target.at("accepted"), 42);
    ASSERT_EQ(target.at("missing").size(), 1U);
    EXPECT_EQ(target.at("missing")[0].at("column"), 4);
    EXPECT_EQ(target.at("missing")[0].at("row"), 7);
    const sim::ClPoint dot = TargetCapture().m_aDots[38];
    EXPECT_NEAR(target.at("missing")[0].at("near")[0], dot.x, 1.0);
    EXPECT_NEAR(target.at("missing")[0].at("near")[1], dot.y, 1.0);
    ASSERT_EQ(target.at("refused").size(), 1U);
    EXPECT_EQ(target.at("refused")[0].at("reason"), "outside_column");
    EXPECT_EQ(target.at("refused")[0].at("count"), 32);
    EXPECT_EQ(target.at("refused")[0].at("regions").size(), 32U);
}

TEST_F(Qk7GenerateFailure, TellsOtherFailuresAsJsonToo) {
    Put(m_Folder / "target.bmp", {});

    const StEnded ended = Generate({"--json"});

    EXPECT_EQ(ended.m_nExit, 1);
    const json told = ResultsOf(ended.m_Out, "generate")[0];
    EXPECT_EQ(told.size(), 2U);
    EXPECT_EQ(told.at("file"), "target.bmp");
    EXPECT_EQ("qk7 generate: " + told.at("error").get<std::string>() + "\n", ended.m_Err);
}

// The dots are located within 0.31 of the pitch, 0.62 mm, and a record loads within 0.3 of the mean
// step, 0.6 mm: 79.47 lines, 23.84 more or less. 0.61 mm are 24.24 lines.
TEST_F(Qk7GenerateFailure, NamesTheDotWithWhichTheBlockWouldNotLoad) {
    ExpectUnloadable(TargetWithStandIn(0.0, 0.61), {},
                     {"target.bmp", "column 4, row 7", recaptureAdvice});
}

TEST_F(Qk7GenerateFailure, NamesTheReferenceWithWhichTheBlockWouldNotLoad) {
    ExpectUnloadable(RawTarget(), StretchedCalibration(1.0F, 1.027F),
                     {"plate.cal", "column 2, row 11", plateAdvice});
    ExpectUnloadable(RawTarget(), StretchedCalibration(1.05F, 1.0F),
                     {"plate.cal", "column 7, row 1", plateAdvice});
}

TEST_F(Qk7GenerateFailure, DrawsThePictureOfATargetWhoseBlockWouldNotLoad) {
    Put(m_Folder / "target.bmp", TargetWithStandIn(0.0, 0.61));

    const StEnded ended = Generate({"--debug-image", "grid.bmp", "--precalculated", "scanner.pre"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(m_Folder.Names(), (Names{"grid.bmp", "scanner.cal", "target.bmp"}));
    EXPECT_EQ(Get(m_Folder / "grid.bmp").size(), 14U + RawTarget().size());
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), ToBytes("old"));
}

TEST_F(Qk7GenerateFailure, TellsTheDotWithWhichTheBlockWouldNotLoadAsJson) {
    Put(m_Folder / "target.bmp", TargetWithStandIn(0.0, -0.61));

    const StEnded ended = Generate({"--json"});

    EXPECT_EQ(ended.m_nExit, 1);
    const json told = ResultsOf(ended.m_Out, "generate")[0];
    EXPECT_EQ(told.at("file"), "target.bmp");
    EXPECT_EQ(told.at("error").get<std::string>() + "\n", "target.bmp" + unloadableWords);
    const json& dot = told.at("dot");
    EXPECT_EQ(dot.at("column"), 4);
    EXPECT_EQ(dot.at("row"), 7);
    const sim::ClPoint place = TargetCapture().m_aDots[38];
    EXPECT_NEAR(dot.at("at")[0], place.x, 1.0);
    EXPECT_NEAR(dot.at("at")[1], place.y - 24.24, 1.0);
}

// What lies a little nearer loads. It is wrong all the same, which is no failure but a doubt.
TEST_F(Qk7GenerateFailure, IsADoubtWhereTheBlockLoads) {
    Put(m_Folder / "target.bmp", TargetWithStandIn(0.0, 0.58));
    EXPECT_EQ(Generate({}).m_nExit, 3);
    Put(m_Folder / "target.bmp", RawTarget());
    Put(m_Folder / "plate.cal", StretchedCalibration(1.04F, 1.025F));
    EXPECT_EQ(Generate({"--reference", "plate.cal"}).m_nExit, 3);
}

TEST_F(Qk7GenerateFailure, SaysHowABitmapHasToBeSaved) {
    constexpr std::size_t cnPlanesAt = 12;
    constexpr std::size_t cnBitsAt = 14;
    constexpr std::size_t cnCompressionAt = 16;
    ExpectFailureOf(
        With(RawTarget(), cnPlanesAt, 2),
        "-11 Only grey-scale images with 8-bit color-depth are supported. It has 8 bits "
        "in 2 plane(s). Save it as an 8-bit grey bitmap.");
    ExpectFailureOf(
        With(RawTarget(), cnBitsAt, 7),
        "-12 BitCount has to be 8. It has 7 bits in 1 plane(s). Save it as an 8-bit grey bitmap.");
    ExpectFailureOf(With(RawTarget(), cnCompressionAt, 9),
                    "-31 The compression FOCC is not supported. Save it without compression.");
}

TEST_F(Qk7GenerateFailure, NamesACaptureThatIsCutOrNoBitmap) {
    Bytes cut = GreyBlock(7, 3);
    cut.pop_back();
    ExpectFailureOf(cut, "-21 The size of the finger template is not valid. Its header asks for "
                         "1088 bytes of header, palette and pixels; it has 1087.");
    ExpectFailureOf({}, "-21 The size of the finger template is not valid. It ends at byte 0, but "
                        "the info header at byte 0 needs 4 bytes.");
    ExpectFailureOf(ToBytes("no bitmap at all, yet longer than its header of 40 bytes"),
                    "-32 The header size of the Bitmap is unknown. It is no bitmap, or has another "
                    "header than the one of 40 bytes; save it as a Windows 3 bitmap.");
}

TEST_F(Qk7GenerateFailure, NamesAReferenceThatIsNone) {
    ExpectFailureWith(RawTarget(), "-40 The input signature is not expected here. It is no "
                                   "calibration block; \"qk7 info\" tells what it is.");
    Bytes cut = TrueCalibration();
    cut.resize(100);
    ExpectFailureWith(cut, "-201 Unexpected end of file. It is cut off; restore it, or generate "
                           "the calibration anew.");
    ExpectFailureWith(With(TrueCalibration(), 100, 0x55),
                      "-39 The input is corrupt; it can be a memoryblock or a file. It is damaged; "
                      "restore it, or generate the calibration anew.");
}

TEST_F(Qk7GenerateFailure, NamesAReferenceWhosePointsAreNone) {
    const float fNotANumber = std::numeric_limits<float>::quiet_NaN();
    ExpectFailureWith(StretchedCalibration(fNotANumber, fNotANumber),
                      "-39 The input is corrupt; it can be a memoryblock or a file. Its target "
                      "points are not those of a plate.");
}

TEST_F(Qk7GenerateFailure, NamesFilesThatCannotBeReadOrWritten) {
    ExpectFailure({"--reference", "none.cal"}, 1, "none.cal: No such file or directory");
    ExpectFailure({"--precalculated", "none/x.pre"}, 1,
                  "none/x.pre: cannot be written: No such file or directory");
    ExpectFailure({"--debug-image", "/dev/full"}, 1,
                  "/dev/full: cannot be written: No space left on device");
    EXPECT_EQ(Qk7({"generate", "none.bmp", "-o", "x.cal"}, m_Folder.Path()).m_Err,
              "qk7 generate: none.bmp: No such file or directory\n");
    EXPECT_EQ(Qk7({"generate", "target.bmp", "-o", "/dev/full"}, m_Folder.Path()).m_Err,
              "qk7 generate: /dev/full: cannot be written: No space left on device\n");
}

TEST_F(Qk7GenerateFailure, RefusesAFileThatIsNamedTwice) {
    Put(m_Folder / "plate.cal", TrueCalibration());
    ExpectFailure({"--debug-image", "./target.bmp"}, 2,
                  "./target.bmp is named twice; give another output");
    ExpectFailure({"--precalculated", "x/../scanner.cal"}, 2,
                  "x/../scanner.cal is named twice; give another output");
    const std::string absolute = m_Folder / "new"; // which is not there yet
    ExpectFailure({"--precalculated", "new", "--debug-image", absolute}, 2,
                  absolute + " is named twice; give another output");
    std::filesystem::create_directory_symlink(".", m_Folder / "here");
    ExpectFailure({"--precalculated", "new", "--debug-image", "here/new"}, 2,
                  "here/new is named twice; give another output");
    std::filesystem::remove(m_Folder / "here");
    ExpectFailure({"--reference", "plate.cal", "--debug-image", "plate.cal"}, 2,
                  "plate.cal is named twice; give another output");
    EXPECT_EQ(Get(m_Folder / "target.bmp"), RawTarget());
}
