/// `qk7 simulate`.

#include "apps/qk7/Png.h"
#include "qk7/CommandRunner.h"
#include "qk7/Documents.h"
#include "qk7/TestFiles.h"
#include "sim/TargetCases.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;

namespace {

using Names = std::set<std::string>;

constexpr std::size_t cnPixelsAt = 14 + 40 + 1024;

void Simulate(const std::string& Folder, const Arguments& more) {
    Arguments arguments = {"simulate", "-o", Folder};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const StEnded ended = Qk7(arguments);
    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_EQ(ended.m_Err, "");
}

json InfoOf(const std::string& Path) {
    return ResultsOf(Qk7({"info", "--json", Path}).m_Out, "info")[0];
}

/// A pixel of a bitmap file, line 0 being the one that is stored first.
int PixelAt(const Bytes& File, int nWidth, double x, double y) {
    const auto nLine = static_cast<std::size_t>((nWidth + 3) / 4 * 4);
    const auto nColumn = static_cast<std::size_t>(std::lround(x));
    const auto nRow = static_cast<std::size_t>(std::lround(y));
    return File.at(cnPixelsAt + nRow * nLine + nColumn);
}

} // namespace

TEST(Qk7Simulate, WritesTheSameCapturesAsPng) {
    const ClTestFolder folder;

    Simulate(folder / "bmp", {"-k", "empty"});
    Simulate(folder / "png", {"-k", "empty", "--format", "png"});

    for (const char* szName : {"target", "ruled", "empty"}) {
        const Bytes bitmap = Get(folder / "bmp/" + szName + ".bmp");
        EXPECT_EQ(qk7::BlockOfPng(Get(folder / "png/" + szName + ".png")),
                  Bytes(bitmap.begin() + 14, bitmap.end()))
            << szName;
    }
}

TEST(Qk7Simulate, WritesTheFilesOfAScanner) {
    const ClTestFolder folder;

    Simulate(folder / "new", {});

    const json record = InfoOf(folder / "new/scanner.cal");
    EXPECT_EQ(record.at("kind"), "calibration block");
    EXPECT_EQ(record.at("checksum").at("ok"), true);
    for (const char* szName : {"new/target.bmp", "new/ruled.bmp", "new/loop.bmp"}) {
        const json capture = InfoOf(folder / szName);
        EXPECT_EQ(capture.at("kind"), "bitmap");
        EXPECT_EQ(capture.at("block_bytes"), capture.at("implied_bytes"));
        EXPECT_EQ(capture.at("width"), record.at("source").at("width"));
        EXPECT_EQ(capture.at("height"), record.at("source").at("height"));
        EXPECT_EQ(capture.at("pixels_per_metre"), record.at("source").at("pixels_per_metre"));
    }
}

TEST(Qk7Simulate, WritesEachKindOnceUnderItsName) {
    const ClTestFolder folder;

    Simulate(folder.Path(), {"-k", "dirty", "-k", "target", "-k", "empty", "-k", "dirty"});

    EXPECT_EQ(folder.Names(),
              (Names{"dirty.bmp", "empty.bmp", "ruled.bmp", "scanner.cal", "target.bmp"}));
}

TEST(Qk7Simulate, NumbersSeveralCapturesOfAKind) {
    const ClTestFolder one;
    const ClTestFolder two;

    Simulate(one.Path(), {"-k", "empty"});
    Simulate(two.Path(), {"-k", "empty", "-n", "2"});

    EXPECT_EQ(two.Names(),
              (Names{"empty_1.bmp", "empty_2.bmp", "ruled.bmp", "scanner.cal", "target.bmp"}));
    EXPECT_EQ(Get(two / "empty_1.bmp"), Get(one / "empty.bmp"));
    EXPECT_NE(Get(two / "empty_2.bmp"), Get(two / "empty_1.bmp"));
}

TEST(Qk7Simulate, WritesEachCaseOfTheTargetOnceUnderItsName) {
    const ClTestFolder folder;

    Simulate(folder.Path(),
             {"-k", "target", "-c", "missing_dot", "-c", "plain", "-c", "missing_dot", "--truth"});

    EXPECT_EQ(folder.Names(), (Names{"ruled.bmp", "scanner.cal", "target.bmp",
                                     "target_missing_dot.bmp", "target_plain.bmp", "truth.json"}));
    const json truth = json::parse(ToText(Get(folder / "truth.json")));
    const json& capture = truth.at("captures").at(2);
    EXPECT_EQ(capture.at("file"), "target_missing_dot.bmp");
    EXPECT_EQ(capture.at("kind"), "target");
    EXPECT_EQ(capture.at("case"), "missing_dot");
    EXPECT_EQ(capture.at("dots_in_capture").size(), 75U);
    EXPECT_FALSE(truth.at("captures").at(0).contains("case"));
}

TEST(Qk7Simulate, NumbersSeveralCapturesOfACase) {
    const ClTestFolder one;
    const ClTestFolder two;

    Simulate(one.Path(), {"-k", "target", "-c", "noisy"});
    Simulate(two.Path(), {"-k", "target", "-c", "noisy", "-n", "2"});

    EXPECT_EQ(two.Names(), (Names{"ruled.bmp", "scanner.cal", "target.bmp", "target_noisy_1.bmp",
                                  "target_noisy_2.bmp"}));
    EXPECT_EQ(Get(two / "target_noisy_1.bmp"), Get(one / "target_noisy.bmp"));
    EXPECT_NE(Get(two / "target_noisy_2.bmp"), Get(two / "target_noisy_1.bmp"));
}

TEST(Qk7Simulate, ListsEveryCaseInItsHelp) {
    const std::string help = Qk7({"simulate", "--help"}).m_Out;

    for (const sim::ClTargetCaseEntry& entry : sim::g_aTargetCases)
        EXPECT_NE(help.find(std::string(entry.m_szName) + ": "), std::string::npos)
            << entry.m_szName;
}

TEST(Qk7Simulate, GivesTheSameBytesForTheSameSeed) {
    const ClTestFolder first;
    const ClTestFolder second;
    const ClTestFolder other;

    Simulate(first.Path(), {"-s", "7", "--truth"});
    Simulate(second.Path(), {"--seed", "7", "--truth"});
    Simulate(other.Path(), {"-s", "8", "--truth"});

    ASSERT_EQ(first.Names().size(), 5U);
    for (const std::string& name : first.Names()) {
        EXPECT_EQ(Get(first / name), Get(second / name)) << name;
        EXPECT_NE(Get(first / name), Get(other / name)) << name;
    }
}

TEST(Qk7Simulate, TellsTheTrueDotsWhereTheCaptureIsDark) {
    const ClTestFolder folder;
    Simulate(folder.Path(), {"-s", "3", "--truth"});
    const Bytes target = Get(folder / "target.bmp");

    const json truth = json::parse(ToText(Get(folder / "truth.json")));

    const int nWidth = truth.at("scanner").at("raw_width");
    EXPECT_EQ(truth.at("scanner").at("seed"), 3);
    EXPECT_EQ(InfoOf(folder / "target.bmp").at("width"), nWidth);
    EXPECT_EQ(InfoOf(folder / "target.bmp").at("height"), truth.at("scanner").at("raw_height"));
    const json& capture = truth.at("captures").at(0);
    EXPECT_EQ(capture.at("file"), "target.bmp");
    ASSERT_EQ(capture.at("dots_in_capture").size(), 75U);
    for (const json& dot : capture.at("dots_in_capture")) {
        // Half a pitch of 2 mm lower, between two dots, is the bright plate.
        const int nBetween = PixelAt(target, nWidth, dot[0], dot[1].get<double>() + 39.7);
        EXPECT_LT(PixelAt(target, nWidth, dot[0], dot[1]), nBetween - 60) << dot;
    }
}

TEST(Qk7Simulate, TellsTheTrueLinesOfTheRuledPlate) {
    const ClTestFolder folder;
    Simulate(folder.Path(), {"--truth"});

    const json truth = json::parse(ToText(Get(folder / "truth.json")));

    const json& capture = truth.at("captures").at(1);
    EXPECT_EQ(capture.at("file"), "ruled.bmp");
    ASSERT_GT(capture.at("lines_in_frame").size(), 10U);
    for (const json& line : capture.at("lines_in_frame")) {
        ASSERT_EQ(line.size(), 2U);
        EXPECT_EQ(line[0].size(), 2U);
    }
    EXPECT_FALSE(truth.at("captures").at(2).contains("dots_in_capture")) << "a finger has none";
}

TEST(Qk7Simulate, WritesACalibrationBlockThatCorrectsItsCaptures) {
    const ClTestFolder folder;
    Simulate(folder.Path(), {"-s", "5"});

    const StEnded ended =
        Qk7({"calibrate", "-d", folder / "scanner.cal", "-O", "DynamicFingerMask=false",
             folder / "loop.bmp", folder / "ruled.bmp", "-o", folder / "out"});

    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_EQ(InfoOf(folder / "out/loop.bmp").at("width"), 320);
    EXPECT_EQ(InfoOf(folder / "out/ruled.bmp").at("height"), 480);
}

TEST(Qk7Simulate, WritesTargetsThatCanBeCalibratedWithAndOthers) {
    const ClTestFolder folder;
    Simulate(folder.Path(), {"-s", "5", "-k", "target", "-c", "plain", "-c", "missing_dot"});

    EXPECT_EQ(Qk7({"generate", folder / "target.bmp", "-o", folder / "a.cal"}).m_nExit, 0);
    EXPECT_EQ(Qk7({"generate", folder / "target_plain.bmp", "-o", folder / "b.cal"}).m_nExit, 0);
    EXPECT_EQ(Qk7({"generate", folder / "target_missing_dot.bmp", "-o", folder / "c.cal"}).m_nExit,
              1);
}

TEST(Qk7Simulate, NamesADirectoryThatCannotBeMade) {
    const ClTestFolder folder;
    Put(folder / "file", {});

    const StEnded ended = Qk7({"simulate", "-o", "file"}, folder.Path());

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 simulate: file: cannot be made a directory: Not a directory\n");
}
