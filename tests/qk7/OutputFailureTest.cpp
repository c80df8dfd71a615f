// Outputs that cannot be written: for every output of every command the exit status, the words, and
// what stays of the old file.

#include "qk7/Children.h"
#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace TestSupport;
using qk7::Bytes;

namespace {

using Names = std::set<std::string>;

/// A command that writes one file, whose name stands last.
struct StWriter {
    const char* m_szCommand;
    Arguments m_aArguments;
};

/// A folder with all that the commands read.
class ClInputs : public ClTestFolder {
public:
    ClInputs() {
        Put("capture.bmp", GreyFileHeader(384, 1057) + Capture());
        Put("target.bmp", RawTarget());
    }

    /// Each with the output that is told.
    std::vector<StWriter> Writing(const std::string& Output) const {
        const std::string capture = *this / "capture.bmp";
        const std::string target = *this / "target.bmp";
        const std::string block = *this / "made.cal";
        return {
            {"precalculate", {"precalculate", "-d", RecordPath(), "-o", Output}},
            {"calibrate", {"calibrate", "-d", RecordPath(), capture, "-o", Output}},
            {"generate", {"generate", target, "-o", Output}},
            {"generate", {"generate", target, "-o", block, "--precalculated", Output}},
            {"generate", {"generate", target, "-o", block, "--debug-image", Output}},
        };
    }
};

void ExpectRefused(const StEnded& Ended, const StWriter& Writer, const std::string& Output,
                   const std::string& Words) {
    EXPECT_EQ(Ended.m_nExit, 1);
    EXPECT_EQ(Ended.m_Out, "");
    EXPECT_EQ(Ended.m_Err, "qk7 " + std::string(Writer.m_szCommand) + ": " + Output +
                               ": cannot be written: " + Words + "\n");
}

void LimitFiles() {
    const rlimit limit = {1000, 1000}; // bytes; the smallest output has 1261
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

TEST(Qk7Outputs, ThatCannotBeMadeAreNamed) {
    const ClInputs inputs;
    Put(inputs / "file", {});
    const std::pair<std::string, const char*> aPlaces[] = {
        {"/dev/full", "No space left on device"},
        {inputs / "none/out", "No such file or directory"},
        {inputs / "file/out", "Not a directory"},
    };
    const Names before = inputs.Names();
    for (const auto& [output, szWords] : aPlaces)
        for (const StWriter& writer : inputs.Writing(output)) {
            ExpectRefused(Qk7(writer.m_aArguments), writer, output, szWords);
            EXPECT_EQ(inputs.Names(), before) << testing::PrintToString(writer.m_aArguments);
        }
}

TEST(Qk7Outputs, DoNotTakeTheNameOfAFolder) {
    const ClInputs inputs;
    std::filesystem::create_directories(inputs / "folder/capture.bmp");
    for (const StWriter& writer : inputs.Writing(inputs / "folder")) {
        // What is calibrated goes into the folder, under the name of the capture.
        const bool bInto = writer.m_szCommand == std::string("calibrate");
        ExpectRefused(Qk7(writer.m_aArguments), writer,
                      inputs / (bInto ? "folder/capture.bmp" : "folder"), "Is a directory");
    }
    EXPECT_TRUE(std::filesystem::is_empty(inputs / "folder/capture.bmp"));
}

TEST(Qk7Outputs, OfASimulationDoNotTakeTheNameOfAFolder) {
    const ClTestFolder folder;
    std::filesystem::create_directories(folder / "scanner/scanner.cal");

    const StEnded ended = Qk7({"simulate", "-o", folder / "scanner"});

    ExpectRefused(ended, {"simulate", {}}, folder / "scanner/scanner.cal", "Is a directory");
}

TEST(Qk7Outputs, KeepTheOldFileWhereTheNewOneHasNoRoom) {
    const ClInputs inputs;
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));
    for (const StWriter& writer : inputs.Writing(folder / "out")) {
        const StEnded ended = Qk7Under(LimitFiles, writer.m_aArguments);

        ExpectRefused(ended, writer, folder / "out", "File too large");
        EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
        EXPECT_EQ(folder.Names(), Names{"out"});
    }
}

TEST(Qk7Outputs, KeepTheOldFileOnADiskThatIsFull) {
    const ClInputs inputs;
    const ClTestFolder folder;
    const StWriter writer = inputs.Writing(folder / "out").front();
    ExpectInChild([&] {
        const bool bDisk = LimitRoom(folder.Path().c_str(), 1UL << 20); // the table has 5.3 MiB
        Put(folder / "out", ToBytes("old"));

        const StEnded ended = Qk7(writer.m_aArguments);

        ExpectRefused(ended, writer, folder / "out",
                      bDisk ? "No space left on device" : "File too large");
        EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
        EXPECT_EQ(folder.Names(), Names{"out"});
    });
}

TEST(Qk7Outputs, KeepTheOldFileInAFolderThatMayOnlyBeRead) {
    const ClInputs inputs;
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));
    chmod(folder.Path().c_str(), 0555);
    for (const StWriter& writer : inputs.Writing(folder / "out")) {
        const StEnded ended = Qk7Under(HeedPermissions, writer.m_aArguments);

        ExpectRefused(ended, writer, folder / "out", "Permission denied");
        EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
        EXPECT_EQ(folder.Names(), Names{"out"});
    }
    chmod(folder.Path().c_str(), 0755);
}
