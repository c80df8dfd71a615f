/// Standard input and output in the place of files.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace TestSupport;
using qk7::Bytes;

namespace {

const Arguments aQuickStart = {"calibrate", "-O", "DynamicFingerMask=false", "-O",
                               "GeometricCalibrate=oddLines"};

class Qk7Streams : public testing::Test {
protected:
    void SetUp() override {
        Put(m_Folder / "in.bmp", Capture());
        Put(m_Folder / "scanner.cal", Record());
    }

    Arguments Quick(const Arguments& more) const {
        Arguments arguments = aQuickStart;
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    /// With standard input coming from a file of the folder.
    StEnded From(const std::string& Name, const Arguments& arguments) {
        return Qk7From(m_Folder / Name, arguments, m_Folder.Path());
    }

    void ExpectWrong(const Arguments& arguments, const std::string& Words) {
        const StEnded ended = From("in.bmp", arguments);
        EXPECT_EQ(ended.m_nExit, 2);
        EXPECT_EQ(ended.m_Out, "");
        EXPECT_EQ(ended.m_Err, "qk7 " + arguments[0] + ": " + Words + "\n");
    }

    std::string Result() const {
        return ToText(GreyFileHeader(384, 528) +
                      DirectlyCalibrated(Record(), Capture(), {aQuickStart[2], aQuickStart[4]}));
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7Streams, CarryACaptureAndItsResult) {
    const StEnded ended = From("in.bmp", Quick({"-d", "scanner.cal", "-", "-o", "-"}));

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    EXPECT_EQ(ended.m_Out, Result());
}

TEST_F(Qk7Streams, CarryPngWhereThatIsAskedFor) {
    const StEnded ended =
        From("in.bmp", Quick({"-d", "scanner.cal", "-", "-o", "-", "--format", "png"}));

    EXPECT_EQ(ended.m_Out.substr(0, 4), "\x89PNG");
}

TEST_F(Qk7Streams, CarryBlocks) {
    EXPECT_EQ(From("scanner.cal", Quick({"-d", "-", "in.bmp", "-o", "-"})).m_Out, Result());
    EXPECT_EQ(From("scanner.cal", {"precalculate", "-d", "-", "-o", "-"}).m_Out,
              ToText(DirectlyPrecalculated(Record())));
    Put(m_Folder / "target.bmp", RawTarget());
    EXPECT_EQ(From("target.bmp", {"generate", "-", "-o", "-"}).m_Out,
              ToText(DirectlyGenerated(RawTarget())));
    EXPECT_EQ(From("scanner.cal", {"verify", "-"}).m_Out,
              "standard input: calibration block, what this version makes\n");
    const StEnded info = From("scanner.cal", {"info", "--json", "-"});
    EXPECT_EQ(ResultsOf(info.m_Out, "info")[0].at("file"), "-");
}

TEST_F(Qk7Streams, LeaveStandardOutputToTheResult) {
    Put(m_Folder / "empty.bmp", EmptyPlaten());
    const StEnded ended = From("in.bmp", Quick({"-v", "-d", "scanner.cal", "-", "-o", "-"}));

    EXPECT_EQ(ended.m_Out, Result());
    EXPECT_EQ(ended.m_Err, "standard input: no levels, as DynamicFingerMask is off\n");
}

TEST_F(Qk7Streams, AreNamedWhereSomethingIsWrong) {
    EXPECT_EQ(
        From("scanner.cal", Quick({"-d", "scanner.cal", "-", "-o", "out.bmp"}))
            .m_Err.rfind(
                "qk7 calibrate: standard input: -32 The header size of the Bitmap is unknown.", 0),
        0U);
    EXPECT_EQ(From("in.bmp", {"info", "-"}).m_Out.rfind("standard input: bitmap", 0), 0U);
    EXPECT_EQ(
        Qk7Into("/dev/full", Quick({"-d", RecordPath(), m_Folder / "in.bmp", "-o", "-"})).m_Err,
        "qk7 calibrate: standard output: cannot be written: No space left on device\n");
    EXPECT_EQ(Qk7IntoClosedPipe(Quick({"-d", RecordPath(), m_Folder / "in.bmp", "-o", "-"})).m_Err,
              "qk7 calibrate: standard output: cannot be written: Broken pipe\n");
}

TEST_F(Qk7Streams, AreGivenOnceEach) {
    ExpectWrong(Quick({"-d", "-", "-", "-o", "out.bmp"}),
                "standard input, \"-\", is named twice; it can be read once");
    ExpectWrong({"info", "-", "-"}, "standard input, \"-\", is named twice; it can be read once");
    ExpectWrong({"generate", "in.bmp", "-o", "-", "--precalculated", "-"},
                "standard output, \"-\", is named twice; it can take one output");
    ExpectWrong(Quick({"-d", "scanner.cal", "in.bmp", "-o", "-", "--json"}),
                "standard output cannot take both JSON and an output; name a file");
    ExpectWrong(Quick({"-d", "scanner.cal", "in.bmp", "in.bmp", "-o", "-"}),
                "standard output cannot take several results; name a folder by -o");
    ExpectWrong(Quick({"-d", "scanner.cal", "-", "in.bmp", "-o", "out"}),
                "standard input has no name for a file in out; correct it by a call of its own, "
                "with -o FILE");
}

TEST_F(Qk7Streams, ThatAreClosedAreNoFilesOfTheTool) {
    const auto closeInput = [] { close(STDIN_FILENO); };
    EXPECT_EQ(Qk7Under(closeInput, {"info", "-q", "in.bmp", "-"}, m_Folder.Path()).m_Err,
              "qk7 info: standard input: Bad file descriptor\n")
        << "the first file must not become standard input";
    const auto closeOutputs = [] {
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
    };
    const StEnded ended =
        Qk7Under(closeOutputs, Quick({"-d", "scanner.cal", "-v", "in.bmp", "-o", "out.bmp"}),
                 m_Folder.Path());
    EXPECT_EQ(ended.m_nExit, 1) << "its words are not told";
    EXPECT_EQ(ToText(Get(m_Folder / "out.bmp")), Result());
}
