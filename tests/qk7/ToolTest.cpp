/// The tool as a whole: usage, version, help, the command `errors`, and outputs that fail.

#include "qk7/CommandRunner.h"
#include "qk7/TestFiles.h"

#include "TessarinCalibrateSDK.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

using namespace TestSupport;

namespace {

const char* szCommands[] = {"generate", "check",  "calibrate", "contamination", "precalculate",
                            "info",     "errors", "simulate",  "verify",        "report"};

} // namespace

TEST(Qk7Tool, TellsItsVersion) {
    const StEnded ended = Qk7({"--version"});

    EXPECT_EQ(ended.m_nExit, 0);
    int nMajor = -1;
    int nMinor = -1;
    int nPatch = -1;
    EXPECT_EQ(std::sscanf(ended.m_Out.c_str(), "qk7 %d.%d.%d", &nMajor, &nMinor, &nPatch), 3)
        << ended.m_Out;
    EXPECT_EQ(ended.m_Out.back(), '\n');
}

TEST(Qk7Tool, ListsItsCommandsWhenAskedForHelp) {
    const StEnded ended = Qk7({"--help"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    for (const char* szCommand : szCommands)
        EXPECT_NE(ended.m_Out.find(szCommand), std::string::npos) << szCommand;
}

TEST(Qk7Tool, HasHelpForEachCommand) {
    for (const char* szCommand : szCommands) {
        const StEnded ended = Qk7({szCommand, "--help"});

        EXPECT_EQ(ended.m_nExit, 0) << szCommand;
        EXPECT_NE(ended.m_Out.find("Usage: qk7 " + std::string(szCommand)), std::string::npos)
            << ended.m_Out;
    }
}

TEST(Qk7Tool, AnswersWrongUsageWithTheStatus2) {
    const Arguments aWrong[] = {
        {},
        {"unknown"},
        {"errors", "many"},
        {"errors", "-2x"},
        {"errors", "--unknown"},
        {"info"},
        {"precalculate", "-d", "x.cal"},
        {"calibrate", "in.bmp", "-o", "out.bmp"},
        {"calibrate", "-d", "x.cal", "-o", "out.bmp"},
        {"calibrate", "-d", "x.cal", "in.bmp"},
        {"calibrate", "-d", "x.cal", "-d", "y.cal", "in.bmp", "-o", "out.bmp"},
        {"generate", "target.bmp"},
        {"generate", "-o", "x.cal"},
        {"generate", "a.bmp", "b.bmp", "-o", "x.cal"},
        {"check", "x.bmp"},
        {"check", "-d", "x.cal"},
        {"contamination"},
        {"simulate"},
        {"verify"},
        {"verify", "--reference", "plate.cal", "x.cal"},
        {"info", "--color", "perhaps", "x.cal"},
        {"calibrate", "-d", "x.cal", "in.bmp", "-o", "out.bmp", "--format", "gif"},
        {"calibrate", "-d", "x.cal", "in.bmp", "-o", "out.bmp", "--jobs", "65"},
        {"simulate", "-o", "out", "-c", "unknown"},
        {"simulate", "-o", "out", "-k", "unknown"},
        {"simulate", "-o", "out", "-n", "0"},
    };
    for (const Arguments& arguments : aWrong) {
        const StEnded ended = Qk7(arguments);

        EXPECT_EQ(ended.m_nExit, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(ended.m_Out, "");
        EXPECT_EQ(ended.m_Err.rfind("qk7", 0), 0U) << ended.m_Err;
        EXPECT_NE(ended.m_Err.find("--help"), std::string::npos) << ended.m_Err;
    }
}

TEST(Qk7Errors, ListsEveryNumberOfThePublicHeader) {
    // Lines such as "#define QMT_ERROR_BITMAP_DIMENSION (-14L)".
    std::istringstream header(ToText(Get(DataPath("../../include/TessarinCalibrateSDK.h"))));
    std::string expected;
    int nCount = 0;
    for (std::string line; std::getline(header, line);) {
        std::string name(80, ' ');
        long nNumber = 0;
        if (std::sscanf(line.c_str(), "#define %79s (%ldL)", name.data(), &nNumber) != 2)
            continue;
        name.resize(name.find('\0'));
        const std::string number = std::to_string(nNumber);
        expected += std::string(5 - number.size(), ' ') + number + "  " + name +
                    std::string(38 - name.size(), ' ') + "  " +
                    CalibrateGetErrorDescription(nNumber) + "\n";
        ++nCount;
    }
    ASSERT_GT(nCount, 30);

    const StEnded ended = Qk7({"errors"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Out, expected);
}

TEST(Qk7Errors, TakesANegativeNumber) {
    const StEnded ended = Qk7({"errors", "-2"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Out, "   -2  QMT_ERROR_NOT_INITIALIZED               "
                           "Prior initialization is necessary.\n");
    EXPECT_EQ(Qk7({"errors", "-701"}).m_Out.substr(0, 28), " -701  QMT_ERROR_BAD_POINTER");
    EXPECT_EQ(Qk7({"errors", "0"}).m_Out.substr(0, 18), "    0  QMT_SUCCESS");
}

TEST(Qk7Errors, TellsAFailureAsJsonWhereThatIsAskedForAlone) {
    EXPECT_EQ(Qk7({"errors", "--json=true", "5"}).m_Out.substr(0, 1), "{");
    EXPECT_EQ(Qk7({"errors", "--json=false", "5"}).m_Out, "");
}

TEST(Qk7Errors, RefusesANumberThatIsNone) {
    const StEnded ended = Qk7({"errors", "-6"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_EQ(ended.m_Err,
              "qk7 errors: -6: is no number of the library; \"qk7 errors\" lists them\n");
}

TEST(Qk7Tool, ReportsAnOutputThatIsFull) {
    for (const Arguments& arguments :
         {Arguments{"errors"}, Arguments{"--help"}, Arguments{"--version"}}) {
        const StEnded ended = Qk7Into("/dev/full", arguments);

        EXPECT_EQ(ended.m_nExit, 1);
        EXPECT_NE(ended.m_Err.find("standard output: No space left on device\n"), std::string::npos)
            << ended.m_Err;
    }
}

TEST(Qk7Tool, ReportsAPipeThatNobodyReads) {
    const StEnded ended = Qk7IntoClosedPipe({"errors"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_nSignal, 0);
    EXPECT_EQ(ended.m_Err, "qk7 errors: standard output: Broken pipe\n");
    const std::string file = DataPath("pictures/filters.png");
    EXPECT_EQ(Qk7IntoClosedPipe({"info", file, file, file}).m_Err,
              "qk7 info: standard output: Broken pipe\n")
        << "once, and no file is begun behind it";
}
