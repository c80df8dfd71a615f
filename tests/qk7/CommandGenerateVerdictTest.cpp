/// `qk7 generate`: whether it believes what it derived, and what it then writes.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include "diagnosis/Diagnosis.h"
#include "sim/BitmapBlock.h"
#include "sim/TargetCases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

using Names = std::set<std::string>;

/// Dirt of a dot's size in place of dot 38, column 4, row 7, and 0.4 mm below its place: 15.9
/// lines.
Bytes TargetWithStandIn() {
    const sim::ClPoint place = sim::DotPattern()[38];
    sim::ClDirtSettings dirt;
    dirt.m_aPlaced = {{{place.x, place.y + 0.4}, sim::g_dDotDiameter, 0.76}};
    return RawTarget(Without({38}), dirt);
}

/// The target at another pitch.
Bytes ScaledTarget(double dScale) {
    sim::ClTargetSettings target;
    target.m_dScale = dScale;
    return RawTarget(target);
}

/// The target laid anew.
Bytes TargetLaidAnew(double dScale = 1.0) {
    sim::ClTargetSettings target;
    target.m_dRotation = 0.4;
    target.m_dShiftX = 0.3;
    target.m_dShiftY = -0.4;
    target.m_dScale = dScale;
    return RawTarget(target);
}

class Qk7GenerateVerdict : public testing::Test {
protected:
    StEnded Generate(const Bytes& Target, const Arguments& more) {
        Put(m_Folder / "target.bmp", Target);
        Arguments arguments = {"generate", "target.bmp", "-o", "scanner.cal"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7GenerateVerdict, TellsTheFiguresOfAGoodCalibration) {
    const StEnded ended = Generate(RawTarget(), {});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_THAT(ended.m_Out, StartsWith("scanner.cal: good\n  Each dot lies within 0."));
    EXPECT_THAT(ended.m_Out,
                ContainsRegex("\n  Scale in the middle (1.00[01]|0.99[89])[0-9] in x and "
                              "(1.00[01]|0.99[89])[0-9] in y, shear "));
    EXPECT_THAT(ended.m_Out, HasSubstr("\n  Expected error of a corrected image: 0."));
}

TEST_F(Qk7GenerateVerdict, KeepsADoubtfulBlockBack) {
    Put(m_Folder / "scanner.cal", ToBytes("old"));

    const StEnded ended = Generate(TargetWithStandIn(), {"--precalculated", "scanner.pre"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_EQ(ended.m_Err, "");
    EXPECT_THAT(ended.m_Out, StartsWith("scanner.cal: doubtful\n  The dot at ("));
    EXPECT_THAT(ended.m_Out, HasSubstr("), column 4, row 7 of the pattern, is "));
    EXPECT_THAT(
        ended.m_Out,
        ContainsRegex(" and 15\\.(8[5-9]|9[0-4]) in y from where the other dots place it; "));
    EXPECT_THAT(ended.m_Out,
                HasSubstr("\n  Clean platen and target, lay the target flat and straight"));
    EXPECT_THAT(ended.m_Out,
                HasSubstr("\n  No block is written; --accept-doubtful writes it all the same.\n"));
    EXPECT_EQ(m_Folder.Names(), (Names{"scanner.cal", "target.bmp"}));
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), ToBytes("old"));
}

TEST_F(Qk7GenerateVerdict, WritesADoubtfulBlockWhereAsked) {
    const StEnded ended =
        Generate(TargetWithStandIn(), {"--accept-doubtful", "--precalculated", "scanner.pre"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Out, StartsWith("scanner.cal: doubtful\n"));
    EXPECT_THAT(ended.m_Out,
                HasSubstr("\n  It is written all the same, as --accept-doubtful asks.\n"));
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), DirectlyGenerated(TargetWithStandIn()));
    EXPECT_EQ(m_Folder.Names(), (Names{"scanner.cal", "scanner.pre", "target.bmp"}));
}

TEST_F(Qk7GenerateVerdict, WritesAGoodBlockWhereDoubtfulOnesAreAcceptedToo) {
    const StEnded ended = Generate(RawTarget(), {"--accept-doubtful"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), DirectlyGenerated(RawTarget()));
}

TEST_F(Qk7GenerateVerdict, DrawsThePictureOfADoubtfulTarget) {
    const StEnded ended = Generate(TargetWithStandIn(), {"--debug-image", "grid.bmp"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_EQ(m_Folder.Names(), (Names{"grid.bmp", "target.bmp"}));
}

TEST_F(Qk7GenerateVerdict, DoubtsATargetWhosePictureCannotBeWritten) {
    const StEnded ended = Generate(TargetWithStandIn(), {"--debug-image", "/dev/full"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Out, HasSubstr("scanner.cal: doubtful\n"));
    EXPECT_EQ(ended.m_Err, "qk7 generate: /dev/full: cannot be written: No space left on device\n");
    EXPECT_EQ(m_Folder.Names(), (Names{"target.bmp"}));
}

TEST_F(Qk7GenerateVerdict, DoubtsAPlateOfAnotherPitch) {
    const StEnded ended = Generate(ScaledTarget(1.02), {});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(
        ended.m_Out,
        ContainsRegex("\n  The pattern is (2.[0-3]|1.[7-9]) percent larger in x and (2.[0-3]"
                      "|1.[7-9]) percent larger in y than the nominal resolution has it: "));
    EXPECT_EQ(Generate(ScaledTarget(1.005), {}).m_nExit, 0);
    EXPECT_THAT(ended.m_Out,
                HasSubstr("\n  Check the pitch of the plate, which has to be 2 mm or that "
                          "of --reference, and the resolution of the scanner;"));
    EXPECT_THAT(ended.m_Out, Not(HasSubstr("Clean platen")));
}

// A barrel makes the pattern as a whole two percent smaller and leaves its middle as it is.
TEST_F(Qk7GenerateVerdict, TellsTheScaleThatTheVerdictGoesBy) {
    const sim::ClCapture capture =
        sim::CaptureTargetCase(sim::ClScanner(7), sim::ETargetCase::eBarrel, 1);

    const StEnded ended = Generate(sim::BitmapBlock(capture.m_Raw), {});

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Out;
    EXPECT_THAT(ended.m_Out, ContainsRegex("\n  Scale in the middle (1.000|0.999)[0-9] in x and "
                                           "(1.000|0.999)[0-9] in y, shear "));
}

TEST_F(Qk7GenerateVerdict, ConfirmsByASecondCapture) {
    Put(m_Folder / "second.bmp", TargetLaidAnew());

    const StEnded ended = Generate(RawTarget(), {"--second", "second.bmp"});

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Out;
    EXPECT_THAT(ended.m_Out, HasSubstr("\n  Second capture: dots within 0."));
    EXPECT_THAT(ended.m_Out, HasSubstr(" of the distances within the EFTS limits, scale 1.000"));
}

// Plate and second plate differ by 0.8 percent: less than what one capture shows, more than a
// second one lets pass.
TEST_F(Qk7GenerateVerdict, DoubtsWhatASecondCaptureContradicts) {
    Put(m_Folder / "second.bmp", TargetLaidAnew());
    EXPECT_EQ(Generate(ScaledTarget(0.992), {}).m_nExit, 0);

    const StEnded ended = Generate(ScaledTarget(0.992), {"--second", "second.bmp"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Out, HasSubstr("\n  The second capture shows the pattern 0.8 percent too "
                                       "large: one of the two plates has another pitch.\n"));
}

TEST_F(Qk7GenerateVerdict, DoubtsWhatASecondCaptureDoesNotShow) {
    Put(m_Folder / "second.bmp", EmptyPlaten());

    const StEnded ended = Generate(RawTarget(), {"--second", "second.bmp"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Out, HasSubstr("The second capture, corrected, does not show the target"));
}

TEST_F(Qk7GenerateVerdict, FailsWithASecondCaptureThatIsNone) {
    Put(m_Folder / "second.bmp", ToBytes("BM and no more"));

    const StEnded ended = Generate(RawTarget(), {"--second", "second.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, StartsWith("qk7 generate: second.bmp: "));
    EXPECT_EQ(m_Folder.Names(), (Names{"second.bmp", "target.bmp"}));
}

TEST_F(Qk7GenerateVerdict, TakesNoCaptureForItsOwnSecondOne) {
    Put(m_Folder / "copy.bmp", RawTarget());
    Bytes saved = RawTarget();
    constexpr std::size_t nPelsAt = 24;
    std::fill_n(saved.begin() + nPelsAt, 8, std::uint8_t{0}); // as by a program that tells none
    Put(m_Folder / "saved.bmp", saved);

    for (const std::string second : {"target.bmp", "copy.bmp", "saved.bmp"}) {
        const StEnded ended = Generate(RawTarget(), {"--second", second});

        EXPECT_EQ(ended.m_nExit, 1);
        EXPECT_EQ(ended.m_Err, "qk7 generate: " + second +
                                   ": is the first capture again, which confirms nothing. Lay the "
                                   "target anew and capture it.\n");
        EXPECT_EQ(m_Folder.Names(), (Names{"copy.bmp", "saved.bmp", "target.bmp"}));
    }
}

TEST_F(Qk7GenerateVerdict, OverwritesNoSecondCapture) {
    Put(m_Folder / "second.bmp", TargetLaidAnew());

    const StEnded ended =
        Generate(RawTarget(), {"--second", "second.bmp", "--precalculated", "second.bmp"});

    EXPECT_EQ(ended.m_nExit, 2);
    EXPECT_EQ(Get(m_Folder / "second.bmp"), TargetLaidAnew());
}

TEST_F(Qk7GenerateVerdict, TellsTheVerdictAsJson) {
    Put(m_Folder / "second.bmp", TargetLaidAnew());

    const StEnded ended = Generate(TargetWithStandIn(), {"--json", "--second", "second.bmp"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Err, StartsWith("qk7 generate: scanner.cal: doubtful\n"));
    const json told = ResultsOf(ended.m_Out, "generate")[0];
    EXPECT_EQ(told.at("verdict"), "doubtful");
    EXPECT_EQ(told.at("written"), false);
    ASSERT_EQ(told.at("reasons").size(), 2U);
    EXPECT_EQ(told.at("reasons")[0].at("reason"), "dot");
    EXPECT_EQ(told.at("reasons")[0].at("column"), 4);
    EXPECT_EQ(told.at("reasons")[0].at("row"), 7);
    EXPECT_EQ(told.at("reasons")[1].at("reason"), "second");
    EXPECT_THAT(told.at("reasons")[1].at("words").get<std::string>(),
                ContainsRegex("by [0-9]+\\.[0-9][0-9] pixels; [0-9]\\.[0-9][0-9] are trusted"));
    EXPECT_EQ(told.at("second").at("found"), true);
    EXPECT_EQ(told.at("second").at("dots").size(), 75U);
    EXPECT_EQ(told.at("target").at("found"), 75);
}

// Every number is the diagnosis' own.
TEST_F(Qk7GenerateVerdict, TellsTheFiguresAsJson) {
    const diagnosis::StDiagnosis expected =
        diagnosis::Diagnose(DirectlyGenerated(RawTarget()), RawTarget());

    const json told = ResultsOf(Generate(RawTarget(), {"--json"}).m_Out, "generate")[0];

    const json& dot = told.at("dots")[38];
    const diagnosis::StDotReading& reading = expected.m_aDots[38];
    EXPECT_EQ(dot.at("column"), 4);
    EXPECT_EQ(dot.at("row"), 7);
    EXPECT_EQ(dot.at("at"), (json{reading.m_Found.m_dX, reading.m_Found.m_dY}));
    EXPECT_EQ(dot.at("leave_one_out"),
              (json{reading.m_LeaveOneOut.m_dX, reading.m_LeaveOneOut.m_dY}));
    EXPECT_EQ(dot.at("off"), (json{reading.m_Off.m_dX, reading.m_Off.m_dY}));
    EXPECT_EQ(dot.at("grey_off"), (json{reading.m_GreyOff.m_dX, reading.m_GreyOff.m_dY}));
    EXPECT_EQ(dot.at("contrast"), reading.m_dContrast);
    EXPECT_EQ(dot.at("diameter_mm"), reading.m_dDiameter);
    EXPECT_EQ(dot.at("roundness"), reading.m_dRoundness);
    EXPECT_EQ(told.at("plate").at("whole").at("scale")[1], expected.m_Plate.m_Whole.m_dScaleY);
    EXPECT_EQ(told.at("plate").at("middle").at("shear"), expected.m_Plate.m_Middle.m_dShear);
    EXPECT_EQ(told.at("plate").at("distortion_mm").at("max"), expected.m_Plate.m_dDistortionMax);
    EXPECT_EQ(told.at("expected_error").at("corner"), expected.m_Errors.m_dCorner);
    EXPECT_EQ(told.at("expected_error").at("map").size(), 61U);
    EXPECT_NEAR(told.at("expected_error").at("map")[60][40], expected.m_Errors.At(40, 60), 6e-5);
}

TEST_F(Qk7GenerateVerdict, TellsARefusalAsJsonToo) {
    const json told =
        ResultsOf(Generate(RawTarget(Without({38})), {"--json"}).m_Out, "generate")[0];

    EXPECT_EQ(told.at("verdict"), "refused");
}

TEST_F(Qk7GenerateVerdict, ShowsTheVerdictInItsColour) {
    EXPECT_THAT(Generate(RawTarget(), {"--color=always"}).m_Out,
                StartsWith("scanner.cal: \033[32mgood\033[0m\n"));
    EXPECT_THAT(Generate(TargetWithStandIn(), {"--color=always"}).m_Out,
                StartsWith("scanner.cal: \033[33mdoubtful\033[0m\n"));
}

// A message has no use for it.
TEST_F(Qk7GenerateVerdict, ShowsNoColourBesideJson) {
    const StEnded ended = Generate(TargetWithStandIn(), {"--color=always", "--json"});

    EXPECT_THAT(ended.m_Err, StartsWith("\033[31mqk7 generate:\033[0m scanner.cal: doubtful\n"));
}

TEST_F(Qk7GenerateVerdict, NamesStandardStreams) {
    Put(m_Folder / "target.bmp", RawTarget(Without({38})));
    const StEnded refused =
        Qk7From(m_Folder / "target.bmp", {"generate", "-", "-o", "scanner.cal"}, m_Folder.Path());
    EXPECT_THAT(refused.m_Err, StartsWith("qk7 generate: standard input: -600 "));

    Put(m_Folder / "target.bmp", RawTarget());
    const StEnded written =
        Qk7From(m_Folder / "target.bmp", {"generate", "-", "-o", "-"}, m_Folder.Path());
    EXPECT_EQ(written.m_nExit, 0);
    EXPECT_EQ(ToBytes(written.m_Out), DirectlyGenerated(RawTarget()));
    EXPECT_THAT(written.m_Err, StartsWith("standard output: good\n"));
}
