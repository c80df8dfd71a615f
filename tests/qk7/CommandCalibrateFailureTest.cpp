/// `qk7 calibrate`: what it says when something is wrong, and that it then writes nothing.

#include "qk7/ChangedBytes.h"
#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace TestSupport;
using qk7::Bytes;

namespace {

using Names = std::set<std::string>;

/// A folder with a capture, a.bmp; the tool runs in it, so that messages name short paths.
class Qk7CalibrateFailure : public testing::Test {
protected:
    void SetUp() override {
        Put(m_Folder / "a.bmp", Capture());
        Put(m_Folder / "scanner.cal", Record());
    }

    /// Expects the status, this one line, and no file but those that were there.
    void ExpectFailure(const Arguments& arguments, int nExit, const std::string& Message) {
        const Names before = m_Folder.Names();

        const StEnded ended = Qk7(arguments, m_Folder.Path());

        EXPECT_EQ(ended.m_nExit, nExit);
        EXPECT_EQ(ended.m_Out, "");
        EXPECT_EQ(ended.m_Err, "qk7 calibrate: " + Message + "\n");
        EXPECT_EQ(m_Folder.Names(), before);
    }

    void ExpectFailureOf(const Bytes& Bitmap, const std::string& Words) {
        Put(m_Folder / "b.bmp", Bitmap);
        ExpectFailure({"calibrate", "-d", "scanner.cal", "b.bmp", "-o", "out.bmp"}, 1,
                      "b.bmp: " + Words);
    }

    void ExpectFailureWith(const Bytes& Calibration, const std::string& Words) {
        Put(m_Folder / "bad.cal", Calibration);
        ExpectFailure({"calibrate", "-d", "bad.cal", "a.bmp", "a.bmp", "-o", "out/"}, 2,
                      "out/a.bmp would be written twice; rename one of the inputs");
        ExpectFailure({"calibrate", "-d", "bad.cal", "a.bmp", "-o", "out/"}, 1,
                      "bad.cal: " + Words);
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7CalibrateFailure, NamesACaptureOfTheWrongSize) {
    ExpectFailureOf(GreyFileHeader(100, 50) + GreyBlock(100, 50),
                    "-14 The image is too small or too big. It has 100 x 50 pixels; this "
                    "calibration is for captures of 384 x 1057.");
}

TEST_F(Qk7CalibrateFailure, NamesACaptureThatIsCutOrTooLong) {
    Bytes cut = GreyFileHeader(7, 3) + GreyBlock(7, 3);
    cut.pop_back();
    ExpectFailureOf(cut, "-21 The size of the finger template is not valid. Its header asks for "
                         "1088 bytes of header, palette and pixels; it has 1087.");
    ExpectFailureOf(GreyBlock(7, 3) + ToBytes("x"),
                    "-21 The size of the finger template is not valid. Its header asks for "
                    "1088 bytes of header, palette and pixels; it has 1089.");
    cut.resize(20);
    ExpectFailureOf(cut, "-21 The size of the finger template is not valid. It ends at byte 6, "
                         "but the info header at byte 4 needs 4 bytes.");
}

TEST_F(Qk7CalibrateFailure, SaysHowABitmapHasToBeSaved) {
    constexpr std::size_t cnPlanesAt = 12;
    constexpr std::size_t cnBitsAt = 14;
    constexpr std::size_t cnCompressionAt = 16;
    ExpectFailureOf(
        With(Capture(), cnPlanesAt, 2),
        "-11 Only grey-scale images with 8-bit color-depth are supported. It has 8 bits "
        "in 2 plane(s). Save it as an 8-bit grey bitmap.");
    ExpectFailureOf(
        With(Capture(), cnBitsAt, 7),
        "-12 BitCount has to be 8. It has 7 bits in 1 plane(s). Save it as an 8-bit grey bitmap.");
    ExpectFailureOf(With(Capture(), cnCompressionAt, 9),
                    "-31 The compression FOCC is not supported. Save it without compression.");
    ExpectFailureOf(With(Capture(), 0, 124),
                    "-32 The header size of the Bitmap is unknown. It is no bitmap, or has another "
                    "header than the one of 40 bytes; save it as a Windows 3 bitmap.");
}

TEST_F(Qk7CalibrateFailure, SaysThatABitmapStandsOnItsHead) {
    Bytes upsideDown = GreyBlock(7, 3);
    upsideDown[8] = 0xFD; // -3
    std::fill_n(upsideDown.begin() + 9, 3, 0xFF);
    ExpectFailureOf(upsideDown,
                    "-21 The size of the finger template is not valid. Its header tells "
                    "7 x -3 pixels, where both have to be positive. Save it with its "
                    "lowest line first.");
}

TEST_F(Qk7CalibrateFailure, NamesACaptureThatIsMissing) {
    ExpectFailure({"calibrate", "-d", "scanner.cal", "none.bmp", "-o", "out.bmp"}, 1,
                  "none.bmp: No such file or directory");
}

TEST_F(Qk7CalibrateFailure, SaysWhatIsWrongWithTheCalibrationBlock) {
    Bytes cut = Record();
    cut.pop_back();
    ExpectFailureWith(cut, "-201 Unexpected end of file. It is cut off; restore it, or generate "
                           "the calibration anew.");
    ExpectFailureWith(With(Record(), 100, 77),
                      "-39 The input is corrupt; it can be a memoryblock or a file. It is damaged; "
                      "restore it, or generate the calibration anew.");
    ExpectFailureWith(Capture(), "-40 The input signature is not expected here. It is no "
                                 "calibration block; \"qk7 info\" tells what it is.");
    ExpectFailureWith({}, "-201 Unexpected end of file. It is cut off; restore it, or generate "
                          "the calibration anew.");
    ExpectFailure({"calibrate", "-d", "none.cal", "a.bmp", "-o", "out/"}, 1,
                  "none.cal: No such file or directory");
}

TEST_F(Qk7CalibrateFailure, SaysWhatIsWrongWithThePrecalculatedBlock) {
    const Arguments arguments = {"calibrate",   "-d", "scanner.cal", "--precalculated",
                                 "scanner.pre", "-o", "out.bmp",     "a.bmp"};
    const std::string strange = "scanner.pre: -40 The input signature is not expected here. It "
                                "does not belong to this calibration block, or is cut off; make "
                                "it with \"qk7 precalculate\".";
    Put(m_Folder / "scanner.pre", DirectlyPrecalculated(OtherRecord()));
    ExpectFailure(arguments, 1, strange);
    Put(m_Folder / "scanner.pre", Record());
    ExpectFailure(arguments, 1, strange);
    constexpr std::size_t cnTableWidthAt = 28 + 53;
    Put(m_Folder / "scanner.pre", With(DirectlyPrecalculated(Record()), cnTableWidthAt, 0));
    ExpectFailure(arguments, 1,
                  "scanner.pre: -39 The input is corrupt; it can be a memoryblock or a file. It is "
                  "damaged; make it anew with \"qk7 precalculate\".");
}

TEST_F(Qk7CalibrateFailure, ListsTheOptionsWhenOneIsNotUnderstood) {
    for (const char* szOption : {"NoSuchKey=1", "SensitiveMode", "SensitiveMode=perhaps"})
        ExpectFailure({"calibrate", "-d", "scanner.cal", "-O", szOption, "a.bmp", "-o", "out.bmp"},
                      1,
                      "-O " + std::string(szOption) +
                          ": -37 One of the required parameter is missing. Use "
                          "DynamicFingerMask=true|false, SensitiveMode=true|false, "
                          "MaskIsOutput=true|false, PrecalculatedData=true|false or "
                          "GeometricCalibrate=ThinPlateSpline|oddLines|off.");
}

TEST_F(Qk7CalibrateFailure, SaysWhichOptionIsMissing) {
    ExpectFailure({"calibrate", "-d", "scanner.cal", "-O", "GeometricCalibrate=off", "a.bmp", "-o",
                   "out.bmp"},
                  1,
                  "a.bmp: -45 The options are set in a combination which will not work. Add "
                  "-O DynamicFingerMask=false.");
}

TEST_F(Qk7CalibrateFailure, NamesAnOutputThatCannotBeWritten) {
    const Arguments front = {"calibrate", "-d", "scanner.cal", "-O", "DynamicFingerMask=false",
                             "a.bmp",     "-o"};
    const auto to = [&](const std::string& Output) {
        Arguments arguments = front;
        arguments.push_back(Output);
        return arguments;
    };
    ExpectFailure(to("none/out.bmp"), 1,
                  "none/out.bmp: cannot be written: No such file or "
                  "directory");
    ExpectFailure(to("/dev/full"), 1, "/dev/full: cannot be written: No space left on device");
    ExpectFailure(to("scanner.cal/"), 1,
                  "scanner.cal/: cannot be made a directory: Not a "
                  "directory");
}

TEST_F(Qk7CalibrateFailure, RefusesToWriteTwoResultsUnderOneName) {
    std::filesystem::create_directory(m_Folder / "other");
    Put(m_Folder / "other/a.bmp", Capture());

    ExpectFailure({"calibrate", "-d", "scanner.cal", "a.bmp", "other/a.bmp", "-o", "out"}, 2,
                  "out/a.bmp would be written twice; rename one of the inputs");
}

TEST_F(Qk7CalibrateFailure, RefusesToReplaceACapture) {
    ExpectFailure({"calibrate", "-d", "scanner.cal", "a.bmp", "-o", "./a.bmp"}, 2,
                  "./a.bmp is an input; give another output");
    ExpectFailure({"calibrate", "-d", "scanner.cal", "a.bmp", "-o", "."}, 2,
                  "./a.bmp is an input; give another output");
    EXPECT_EQ(Get(m_Folder / "a.bmp"), Capture());
}

TEST_F(Qk7CalibrateFailure, RefusesToReplaceItsBlocks) {
    std::filesystem::create_symlink("scanner.cal", m_Folder / "link.cal");
    ExpectFailure({"calibrate", "-d", "scanner.cal", "a.bmp", "-o", "scanner.cal"}, 2,
                  "scanner.cal is an input; give another output");
    ExpectFailure({"calibrate", "-d", "scanner.cal", "a.bmp", "-o", "link.cal"}, 2,
                  "link.cal is an input; give another output");
    Put(m_Folder / "scanner.pre", DirectlyPrecalculated(Record()));
    ExpectFailure({"calibrate", "-d", "scanner.cal", "--precalculated", "scanner.pre", "a.bmp",
                   "-o", "./scanner.pre"},
                  2, "./scanner.pre is an input; give another output");
    EXPECT_EQ(Get(m_Folder / "scanner.cal"), Record());
}

TEST_F(Qk7CalibrateFailure, RefusesToReplaceACaptureByTheResultOfAnother) {
    std::filesystem::create_directories(m_Folder / "in/sub");
    std::filesystem::create_directories(m_Folder / "out/sub");
    for (const char* szName : {"in/sub/a.bmp", "out/sub/a.bmp"})
        Put(m_Folder / szName, Capture());

    ExpectFailure({"calibrate", "-d", "scanner.cal", "-r", "in", "out/sub", "-o", "out"}, 2,
                  "out/sub/a.bmp is an input; give another output");
    EXPECT_EQ(Get(m_Folder / "out/sub/a.bmp"), Capture());
}
