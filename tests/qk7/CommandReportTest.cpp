/// `qk7 report`: the page of one scanner. That its numbers are those of the other commands, and
/// that it is sound HTML, check_pages holds.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <filesystem>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

using Names = std::set<std::string>;

/// The target at another pitch.
Bytes TargetOfPitch(double dScale) {
    sim::ClTargetSettings target;
    target.m_dScale = dScale;
    return RawTarget(target);
}

class Qk7Report : public testing::Test {
protected:
    StEnded Report(const Bytes& Target, const Arguments& more = {}) {
        Put(m_Folder / "target.bmp", Target);
        Arguments arguments = {"report", "target.bmp", "-o", "page.html"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }
    std::string Page() { return ToText(Get(m_Folder / "page.html")); }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7Report, TellsThatACalibrationIsGood) {
    const StEnded ended = Report(RawTarget());

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_EQ(ended.m_Out, "page.html: good\n");
    EXPECT_THAT(Page(), HasSubstr("<title>target.bmp: good</title>"));
    EXPECT_THAT(Page(), HasSubstr("A second one, laid anew, tells more."));
    EXPECT_THAT(Page(), Not(HasSubstr("What to do")));
    EXPECT_EQ(m_Folder.Names(), (Names{"page.html", "target.bmp"}));
}

TEST_F(Qk7Report, TellsWhyACalibrationIsDoubtfulAndWhatToDo) {
    const StEnded ended = Report(TargetOfPitch(1.02));

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Out, StartsWith("page.html: doubtful\n  The pattern is "));
    EXPECT_THAT(Page(), HasSubstr("<title>target.bmp: doubtful</title>"));
    EXPECT_THAT(Page(), HasSubstr("<li>The pattern is "));
    EXPECT_THAT(Page(), HasSubstr("<strong>What to do:</strong> Check the pitch of the plate"));
    EXPECT_THAT(Page(), HasSubstr("beyond the limit"));
}

TEST_F(Qk7Report, TellsWhatWasFoundOfATargetThatIsRefused) {
    Put(m_Folder / "empty.bmp", EmptyPlaten());
    const StEnded ended =
        Report(RawTarget(Without({30})), {"--empty", "empty.bmp", "--finger", "empty.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Out, StartsWith("page.html: refused\n  -600 The calibration failed"));
    EXPECT_EQ(ended.m_Err, "");
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr("data-figure=\"generate/target/found\" data-value=\"74\""));
    EXPECT_THAT(page, HasSubstr("column 3, row 10"));
    EXPECT_THAT(page, HasSubstr("data-figure=\"contamination/platen/noise\""));
    EXPECT_THAT(page, HasSubstr("It is not corrected: there is no calibration."));
    EXPECT_THAT(page, Not(HasSubstr("Main figures")));
}

TEST_F(Qk7Report, TellsOfABlockThatDoesNotLoad) {
    const StEnded ended = Report(RawTarget(), {"--calibration", "wrong.cal"});
    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, HasSubstr("wrong.cal: No such file"));

    Put(m_Folder / "wrong.cal", CalibrationWithDotMoved(38, 0.0F, 40.0F));
    const StEnded refused = Report(RawTarget(), {"--calibration", "wrong.cal"});
    EXPECT_EQ(refused.m_nExit, 1);
    EXPECT_THAT(refused.m_Out, StartsWith("page.html: refused\n  -39 The input is corrupt"));
    EXPECT_THAT(Page(), HasSubstr("column 4, row 7 of the pattern"));
    EXPECT_THAT(Page(), HasSubstr("Derive the calibration anew."));
}

TEST_F(Qk7Report, JudgesAStoredBlockInPlaceOfADerivedOne) {
    Put(m_Folder / "moved.cal", CalibrationWithDotMoved(38, 0.0F, 9.0F));
    const StEnded ended = Report(RawTarget(), {"--calibration", "moved.cal"});

    EXPECT_EQ(ended.m_nExit, 3);
    EXPECT_THAT(ended.m_Out, HasSubstr("column 4, row 7 of the pattern"));
    EXPECT_THAT(Page(), HasSubstr("<dt>Calibration</dt><dd>moved.cal</dd>"));
}

TEST_F(Qk7Report, JudgesAStoredBlockByWhereItPutsTheTarget) {
    Put(m_Folder / "scanner.cal", TrueCalibration());
    const auto told = [&](const Bytes& Target, int nExit) {
        const StEnded ended = Report(Target, {"--calibration", "scanner.cal"});
        EXPECT_EQ(ended.m_nExit, nExit) << ended.m_Err;
        return ended.m_Out;
    };
    EXPECT_EQ(told(RawTarget(), 0), "page.html: good\n");
    EXPECT_THAT(told(TargetOfPitch(1.02), 3),
                HasSubstr("\n  The capture shows the pattern 2.0 percent too large"));
    EXPECT_THAT(told(EmptyPlaten(), 3),
                HasSubstr("\n  The capture, corrected, does not show the target"));
}

// A dot of a stored block stands where another capture had it: neither the rings around the dots of
// this one nor the measures of their grey values can be taken from there.
TEST_F(Qk7Report, ShowsTheDotsOfTheCaptureBesideAStoredBlock) {
    Put(m_Folder / "scanner.cal", TrueCalibration());
    Report(EmptyPlaten(), {"--calibration", "scanner.cal"});
    EXPECT_THAT(Page(), HasSubstr("No dots were found"));
    EXPECT_THAT(Page(), HasSubstr("as the stored calibration has them"));
    EXPECT_THAT(Page(), Not(HasSubstr("generate/dots/0/roundness")));

    Report(RawTarget());
    EXPECT_THAT(Page(), HasSubstr("generate/dots/0/roundness"));
}

TEST_F(Qk7Report, NamesACaptureThatTheStoredBlockIsNotFor) {
    Put(m_Folder / "scanner.cal", TrueCalibration());
    const StEnded ended = Report(GreyBlock(300, 300), {"--calibration", "scanner.cal"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_THAT(ended.m_Err, StartsWith("qk7 report: target.bmp: -14 "));
}

TEST_F(Qk7Report, NamesAStoredBlockThatTellsNoResolution) {
    const std::string old =
        DataPath("golden/layout4.cal"); // the next layout is the first that does
    const StEnded ended = Report(RawTarget(), {"--calibration", old});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 report: " + old + ": tells no resolution\n");
}

TEST_F(Qk7Report, DrawsARefusedCaptureWhateverResolutionItTells) {
    Bytes target = RawTarget(Without({30}));
    constexpr std::size_t nPelsAt = 24;
    std::fill_n(target.begin() + nPelsAt, 8, std::uint8_t{0});
    EXPECT_EQ(Report(target).m_nExit, 1);
    EXPECT_THAT(Page(), HasSubstr("<image class=\"picture\""));
    EXPECT_THAT(Page(), Not(HasSubstr("has no size")));
}

TEST_F(Qk7Report, LeavesNoHalfPageWhereAnInputFails) {
    Put(m_Folder / "page.html", ToBytes("old"));
    Put(m_Folder / "text.bmp", ToBytes("no picture"));
    for (const Arguments& more :
         {Arguments{"--finger", "none.bmp"}, Arguments{"--empty", "text.bmp"},
          Arguments{"--second", "text.bmp"}, Arguments{"--finger", "*.png"}}) {
        const StEnded ended = Report(RawTarget(), more);
        EXPECT_EQ(ended.m_nExit, 1) << more[1];
        EXPECT_THAT(ended.m_Err, HasSubstr(more[1]));
        EXPECT_EQ(Page(), "old") << more[1];
    }
    EXPECT_EQ(m_Folder.Names(), (Names{"page.html", "target.bmp", "text.bmp"}));
}

TEST_F(Qk7Report, ToldFingersThatTheLibraryRefusesDoNotChangeTheVerdict) {
    Put(m_Folder / "small.bmp", GreyBlock(300, 300));
    const StEnded ended = Report(RawTarget(), {"--finger", "small.bmp"});

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_THAT(Page(), HasSubstr("The library does not correct it: -14 "));
}

TEST_F(Qk7Report, TellsFingersByTheirPathsAndWhyOneIsNotCorrected) {
    for (const char* szFolder : {"a", "b"})
        std::filesystem::create_directory(m_Folder / szFolder);
    Put(m_Folder / "a/f.bmp", GreyBlock(300, 300));
    Put(m_Folder / "b/f.bmp", EmptyPlaten());
    const StEnded ended =
        Report(RawTarget(), {"--json", "--empty", "b/f.bmp", "--finger", "a/f.bmp", "b/f.bmp"});

    const json told = ResultsOf(ended.m_Out, "report").at(0);
    EXPECT_EQ(told.at("platen").at("file"), "b/f.bmp");
    EXPECT_EQ(told.at("fingers").at(0).at("file"), "a/f.bmp");
    EXPECT_THAT(told.at("fingers").at(0).at("error").get<std::string>(),
                StartsWith("The library does not correct it: -14 "));
    EXPECT_EQ(told.at("fingers").at(1).at("file"), "b/f.bmp");
    EXPECT_FALSE(told.at("fingers").at(1).contains("error"));
}

TEST_F(Qk7Report, WritesThePageToStandardOutput) {
    Put(m_Folder / "target.bmp", RawTarget());
    const StEnded ended = Qk7({"report", "target.bmp", "-o", "-"}, m_Folder.Path());

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_THAT(ended.m_Out, StartsWith("<!DOCTYPE html>"));
    EXPECT_EQ(ended.m_Err, "standard output: good\n");
}

TEST_F(Qk7Report, EscapesNames) {
    const std::string name = "<b>&\".bmp";
    Put(m_Folder / name, RawTarget());
    const StEnded ended =
        Qk7({"report", name, "--title", "<i>&\"", "-o", "page.html"}, m_Folder.Path());

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_THAT(Page(), HasSubstr("<h1>&lt;i&gt;&amp;&quot;</h1>"));
    EXPECT_THAT(Page(), HasSubstr("<dd>&lt;b&gt;&amp;&quot;.bmp</dd>"));
    EXPECT_THAT(Page(), Not(HasSubstr("<i>")));
    EXPECT_THAT(Page(), Not(HasSubstr("<b>")));
}

TEST_F(Qk7Report, IsTheSameEachTime) {
    Report(RawTarget());
    const std::string first = Page();
    Report(RawTarget());
    EXPECT_EQ(Page(), first);
}

TEST_F(Qk7Report, RefusesCallsThatMakeNoSense) {
    Put(m_Folder / "target.bmp", RawTarget());
    const auto words = [&](const Arguments& arguments) {
        const StEnded ended = Qk7(arguments, m_Folder.Path());
        EXPECT_EQ(ended.m_nExit, 2);
        return ended.m_Err;
    };
    EXPECT_THAT(words({"report", "-o", "x.html"}), HasSubstr("name a capture of the target"));
    EXPECT_THAT(words({"report", "target.bmp", "--batch", ".", "-o", "x"}),
                HasSubstr("--batch takes all files from its folders"));
    EXPECT_THAT(words({"report", "--finger", "a.bmp", "target.bmp", "-o", "x"}),
                HasSubstr("in front of --finger"));
    EXPECT_THAT(words({"report", "target.bmp", "-o", "target.bmp"}), HasSubstr("is an input"));
    Put(m_Folder / "finger.bmp", Capture());
    EXPECT_THAT(words({"report", "target.bmp", "--finger", "f*.bmp", "-o", "finger.bmp"}),
                HasSubstr("finger.bmp is an input"));
    EXPECT_EQ(Get(m_Folder / "finger.bmp"), Capture());
    EXPECT_THAT(
        words({"report", "target.bmp", "--reference", "a", "--calibration", "b", "-o", "x"}),
        HasSubstr("--reference is for a calibration that is derived"));
    EXPECT_THAT(words({"report", "--batch", ".", "-o", "-"}), HasSubstr("name a folder"));
    EXPECT_THAT(words({"report", "target.bmp", "-o", "-", "--json"}), HasSubstr("JSON"));
}

TEST_F(Qk7Report, PrintsVerdictAndFiguresAsJson) {
    Put(m_Folder / "empty.bmp", EmptyPlaten());
    const StEnded ended = Report(TargetOfPitch(1.02), {"--json", "--empty", "empty.bmp"});

    EXPECT_EQ(ended.m_nExit, 3);
    const json result = ResultsOf(ended.m_Out, "report").at(0);
    EXPECT_EQ(result["verdict"], "doubtful");
    EXPECT_EQ(result["reasons"].size(), 1U);
    EXPECT_NEAR(result["figures"]["generate/plate/middle/scale/0"].get<double>(), 1.02, 0.002);
    EXPECT_EQ(result["platen"]["file"], "empty.bmp");
    EXPECT_EQ(result["platen"]["figures"]["contamination/contamination_level"],
              DirectContamination(EmptyPlaten()));
}
