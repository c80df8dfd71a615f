/// `qk7 calibrate`: what it writes.

#include "apps/qk7/Png.h"
#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/PngFiles.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

using namespace TestSupport;
using qk7::Bytes;

namespace {

using Names = std::set<std::string>;
using Options = std::vector<std::string>;

const Arguments aQuick = {"-O", "DynamicFingerMask=false", "-O", "GeometricCalibrate=oddLines"};
const Options aQuickOptions = {"DynamicFingerMask=false", "GeometricCalibrate=oddLines"};

Arguments Calibrate(const Arguments& more) {
    Arguments arguments = {"calibrate", "-q", "-d", RecordPath()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

Arguments QuickCalibrate(const Arguments& more) {
    Arguments arguments = Calibrate(aQuick);
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

void ExpectDone(const StEnded& Ended) {
    EXPECT_EQ(Ended.m_nExit, 0);
    EXPECT_EQ(Ended.m_Out, "");
    EXPECT_EQ(Ended.m_Err, "");
}

Bytes QuickResult() {
    return GreyFileHeader(384, 528) + DirectlyCalibrated(Record(), Capture(), aQuickOptions);
}

} // namespace

TEST(Qk7Calibrate, GivesTheResultOrTheStatusOfTheLibraryInEveryMode) {
    const ClTestFolder folder;
    ExpectDone(Qk7({"simulate", "-s", "5", "-k", "whorl", "-o", folder.Path()}));
    const Bytes record = Get(folder / "scanner.cal");
    const Bytes file = Get(folder / "whorl.bmp");
    const Bytes capture(file.begin() + 14, file.end());
    const int nWidth = file[18] + 256 * file[19];
    const int nHeight = file[22] + 256 * file[23];
    const struct {
        Options m_aOptions;
        int m_nWidth;
        int m_nHeight;
    } aModes[] = {
        {{}, 320, 480},
        {{"SensitiveMode=true", "MaskIsOutput=true"}, 320, 480},
        {{"DynamicFingerMask=false"}, 320, 480},
        {{"DynamicFingerMask=false", "GeometricCalibrate=oddLines"}, nWidth, nHeight / 2},
        {{"DynamicFingerMask=false", "GeometricCalibrate=off"}, nWidth, nHeight},
    };
    for (const auto& mode : aModes) {
        Arguments arguments = {"calibrate",          "-d", folder / "scanner.cal",
                               folder / "whorl.bmp", "-o", folder / "out.bmp"};
        for (const std::string& option : mode.m_aOptions)
            arguments.insert(arguments.end(), {"-O", option});

        const StEnded ended = Qk7(arguments);

        const long nStatus = DirectStatus(record, capture, mode.m_aOptions);
        if (nStatus != 0) {
            EXPECT_EQ(ended.m_nExit, 1);
            EXPECT_NE(ended.m_Err.find("bmp: " + std::to_string(nStatus) + " "), std::string::npos)
                << ended.m_Err;
            continue;
        }
        ExpectDone(ended);
        EXPECT_EQ(Get(folder / "out.bmp"), GreyFileHeader(mode.m_nWidth, mode.m_nHeight) +
                                               DirectlyCalibrated(record, capture, mode.m_aOptions))
            << testing::PrintToString(mode.m_aOptions);
    }
}

TEST(Qk7Calibrate, TakesACaptureWithoutAFileHeader) {
    const ClTestFolder folder;
    Put(folder / "in.dib", Capture());

    ExpectDone(Qk7(QuickCalibrate({folder / "in.dib", "-o", folder / "out.bmp"})));

    EXPECT_EQ(Get(folder / "out.bmp"), QuickResult());
}

TEST(Qk7Calibrate, TakesAndMakesPngAsItDoesBitmaps) {
    const ClTestFolder folder;
    Put(folder / "in.png", qk7::PngOfBlock(Capture()));

    ExpectDone(Qk7(QuickCalibrate({folder / "in.png", "-o", folder / "out.bmp"})));
    ExpectDone(Qk7(QuickCalibrate({folder / "in.png", "-o", folder / "out.PNG"})));

    EXPECT_EQ(Get(folder / "out.bmp"), QuickResult());
    const Bytes file = QuickResult();
    const Bytes block(file.begin() + 14, file.end());
    EXPECT_EQ(qk7::BlockOfPng(Get(folder / "out.PNG")), block);
}

TEST(Qk7Calibrate, NamesAPngThatCannotBeTaken) {
    const ClTestFolder folder;
    Put(folder / "in.png", PngFile({1, 1, 8, 2}, {{1, 2, 3}}));

    const StEnded ended = Qk7(QuickCalibrate({"in.png", "-o", "out.bmp"}), folder.Path());

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 calibrate: in.png: is a colour picture, a grey one is expected. "
                           "Save it as 8-bit grey.\n");
}

TEST(Qk7Calibrate, UsesThePrecalculatedBlock) {
    const ClTestFolder folder;
    const Options options = {"DynamicFingerMask=false"};
    Put(folder / "in.bmp", Capture());
    Bytes table = DirectlyPrecalculated(Record());
    const std::size_t nEnd = table.size() - 4;
    for (std::size_t nEntry = 28 + 94; nEntry < nEnd; nEntry += 36)
        std::fill_n(table.begin() + static_cast<std::ptrdiff_t>(nEntry), 4, 0xFF); // no source
    Put(folder / "scanner.pre", table);

    ExpectDone(Qk7(Calibrate({folder / "in.bmp", "-o", folder / "out.bmp", "--precalculated",
                              folder / "scanner.pre", "-O", options[0]})));

    // The background everywhere: the pixels come from the table that was loaded.
    const Bytes result = Get(folder / "out.bmp");
    ASSERT_EQ(result.size(), 14U + 40U + 1024U + 320U * 480U);
    EXPECT_EQ(std::count(result.begin() + 14 + 40 + 1024, result.end(), 255), 320 * 480);
}

TEST(Qk7Calibrate, GivesTheSameWithItsPrecalculatedBlock) {
    const ClTestFolder folder;
    const Options options = {"DynamicFingerMask=false"};
    Put(folder / "in.bmp", Capture());
    Put(folder / "scanner.pre", DirectlyPrecalculated(Record()));

    ExpectDone(Qk7(Calibrate({folder / "in.bmp", "-o", folder / "out.bmp", "--precalculated",
                              folder / "scanner.pre", "-O", options[0]})));

    EXPECT_EQ(Get(folder / "out.bmp"),
              GreyFileHeader(320, 480) + DirectlyCalibrated(Record(), Capture(), options));
}

TEST(Qk7Calibrate, WritesSeveralCapturesIntoADirectoryThatItMakes) {
    const ClTestFolder folder;
    std::filesystem::create_directory(folder / "in");
    Put(folder / "in/a.bmp", Capture());
    Put(folder / "b", Capture());

    ExpectDone(Qk7(QuickCalibrate({folder / "in/a.bmp", folder / "b", "-o", folder / "x/y"})));

    EXPECT_EQ(Get(folder / "x/y/a.bmp"), QuickResult());
    EXPECT_EQ(Get(folder / "x/y/b"), QuickResult());
}

TEST(Qk7Calibrate, WritesOneCaptureIntoADirectoryThatIsMeant) {
    const ClTestFolder folder;
    Put(folder / "a.bmp", Capture());
    std::filesystem::create_directory(folder / "there");

    ExpectDone(Qk7(QuickCalibrate({folder / "a.bmp", "-o", folder / "there"})));
    ExpectDone(Qk7(QuickCalibrate({folder / "a.bmp", "-o", folder / "new/"})));

    EXPECT_EQ(Get(folder / "there/a.bmp"), QuickResult());
    EXPECT_EQ(Get(folder / "new/a.bmp"), QuickResult());
}

TEST(Qk7Calibrate, TakesEachOptionAloneSoThatCapturesMayFollow) {
    const ClTestFolder folder;
    Put(folder / "a.bmp", Capture());

    ExpectDone(Qk7({"calibrate", "-o", folder / "out.bmp", "-O", aQuickOptions[0], "-O",
                    aQuickOptions[1], folder / "a.bmp", "-d", RecordPath()}));

    EXPECT_EQ(Get(folder / "out.bmp"), QuickResult());
}

TEST(Qk7Calibrate, DoesTheOtherCapturesWhenSomeFail) {
    const ClTestFolder folder;
    Put(folder / "a.bmp", Capture());
    Put(folder / "empty.bmp", {});
    Put(folder / "z.bmp", Capture());
    Put(folder / "kept.bmp", ToBytes("old"));

    const StEnded ended =
        Qk7(QuickCalibrate({folder / "a.bmp", folder / "none.bmp", folder / "empty.bmp",
                            folder / "z.bmp", "-o", folder / "out"}));

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err,
              "qk7 calibrate: " + (folder / "none.bmp") + ": No such file or directory\n" +
                  "qk7 calibrate: " + (folder / "empty.bmp") +
                  ": -21 The size of the finger template is not valid. It ends at byte 0, but the "
                  "info header at byte 0 needs 4 bytes.\n");
    EXPECT_EQ(Get(folder / "out/a.bmp"), QuickResult());
    EXPECT_EQ(Get(folder / "out/z.bmp"), QuickResult());
    EXPECT_FALSE(std::filesystem::exists(folder / "out/none.bmp"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out/empty.bmp"));
}

TEST(Qk7Calibrate, KeepsAnOldResultWhenTheCaptureFails) {
    const ClTestFolder folder;
    Put(folder / "in.bmp", ToBytes("no bitmap at all, yet longer than its header of 40 bytes"));
    Put(folder / "out.bmp", ToBytes("old"));

    EXPECT_EQ(Qk7(QuickCalibrate({folder / "in.bmp", "-o", folder / "out.bmp"})).m_nExit, 1);

    EXPECT_EQ(Get(folder / "out.bmp"), ToBytes("old"));
    EXPECT_EQ(folder.Names(), (Names{"in.bmp", "out.bmp"}));
}

TEST(Qk7Calibrate, LeavesNothingHalfWrittenWhenItIsInterrupted) {
    const ClTestFolder folder;
    const ClTestFolder results;
    Put(folder / "0.bmp", Capture());
    Arguments arguments = QuickCalibrate({"-o", results.Path(), folder / "0.bmp"});
    for (int i = 1; i < 2000; ++i) {
        arguments.push_back(folder / (std::to_string(i) + ".bmp"));
        std::filesystem::create_hard_link(folder / "0.bmp", arguments.back());
    }

    const StEnded ended =
        Qk7Interrupted(arguments, SIGINT, [&] { return results.Names().size() > 8; });

    EXPECT_EQ(ended.m_nSignal, SIGINT);
    ASSERT_GT(results.Names().size(), 4U);
    ASSERT_LT(results.Names().size(), 2000U);
    const Bytes expected = QuickResult();
    for (const std::string& name : results.Names())
        EXPECT_EQ(Get(results / name), expected) << name;
}
