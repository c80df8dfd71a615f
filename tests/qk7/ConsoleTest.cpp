/// Colours, and texts that could drive a terminal.

#include "apps/qk7/Console.h"

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace TestSupport;

namespace {

/// The message of a file that is missing, as a terminal shows it.
std::string ShownAt(const char* szTerminal, const char* szNoColour, const Arguments& more = {}) {
    setenv("TERM", szTerminal, 1);
    if (szNoColour != nullptr)
        setenv("NO_COLOR", szNoColour, 1);
    else
        unsetenv("NO_COLOR");
    Arguments arguments = {"info", "none"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Qk7AtTerminal(arguments).m_Err;
}

const char* const szPlain = "qk7 info: none: No such file or directory\r\n";
const char* const szRed = "\033[31mqk7 info:\033[0m none: No such file or directory\r\n";

} // namespace

TEST(Qk7Colours, AreShownAtATerminalAlone) {
    EXPECT_EQ(ShownAt("xterm", nullptr), szRed);
    EXPECT_EQ(Qk7({"info", "none"}).m_Err, "qk7 info: none: No such file or directory\n");
}

TEST(Qk7Colours, AreNotShownToThoseWhoDoNotWantThem) {
    EXPECT_EQ(ShownAt("xterm", "1"), szPlain);
    EXPECT_EQ(ShownAt("xterm", ""), szRed) << "set to nothing it says nothing";
    EXPECT_EQ(ShownAt("dumb", nullptr), szPlain);
}

TEST(Qk7Colours, AreAsTheOptionSays) {
    EXPECT_EQ(ShownAt("xterm", nullptr, {"--color=never"}), szPlain);
    EXPECT_EQ(ShownAt("dumb", "1", {"--color", "always"}), szRed);
    EXPECT_EQ(Qk7({"verify", "--color=always", RecordPath()}).m_Out,
              RecordPath() + ": calibration block, \033[32mwhat this version makes\033[0m\n");
}

TEST(Qk7Messages, DoNotDriveATerminal) {
    EXPECT_EQ(qk7::Harmless("a\033[2Jb\rc\x7F\nd"), "a?[2Jb?c?\nd");
    EXPECT_EQ(qk7::Harmless("\xC2\x80.\xC2\x9F.\xC2\xA0.\xC3\x80\xC2"), "?.?.\xC2\xA0.\xC3\x80\xC2")
        << "some terminals take U+009B for the beginning of a command";
    EXPECT_NE(Qk7AtTerminal({"info", "a\033c"}).m_Err.find(" a?c: No such file"),
              std::string::npos);
}

TEST(Qk7Messages, OfResultsDoNotDriveATerminal) {
    const ClTestFolder folder;
    Put(folder / "a\033c\033[32m.bmp", Capture());
    const Arguments shown = {"calibrate",
                             "-d",
                             RecordPath(),
                             "-O",
                             "GeometricCalibrate=off",
                             "-O",
                             "DynamicFingerMask=false",
                             "-v",
                             folder / "a\033c\033[32m.bmp",
                             "-o",
                             "-"};

    EXPECT_NE(Qk7AtTerminal(shown).m_Err.find("/a?c\033[32m.bmp: no levels"), std::string::npos)
        << "a colour does no harm";
}
