/// The examples of the help, run one after the other by a shell.

#include "apps/qk7/Examples.h"

#include "qk7/CommandRunner.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

using namespace TestSupport;

namespace {

/// Runs a line in the folder, where `bin` has the tool.
int Shell(const ClTestFolder& Folder, const std::string& Line) {
    const std::string command =
        "cd '" + Folder.Path() + "' && PATH=\"$PWD/bin:$PATH\" && { " + Line + "; } 2>err >>out";
    return std::system(command.c_str());
}

} // namespace

TEST(Qk7Examples, RunAsTheyStand) {
    const ClTestFolder folder;
    std::filesystem::create_directory(folder / "bin");
    std::filesystem::create_symlink(ToolPath(), folder / "bin/qk7");
    for (const std::string& command : qk7::ExampleCommands()) {
        for (const qk7::StExample& example : qk7::ExamplesOf(command))
            EXPECT_EQ(Shell(folder, example.m_szLine), 0) << example.m_szLine << "\n"
                                                          << ToText(Get(folder / "err"));
    }
    for (const char* szName : {"scanner.cal", "grid.png", "finger.png", "finger.bmp", "target.bmp",
                               "levels.json", "corrected/loop_4.png"})
        EXPECT_TRUE(std::filesystem::exists(folder / szName)) << szName;
}

TEST(Qk7Examples, StandInTheHelpOfEveryCommand) {
    const std::string help = Qk7({"--help"}).m_Out;
    for (const std::string& command : qk7::ExampleCommands()) {
        EXPECT_NE(help.find("\n  " + command + " "), std::string::npos) << command;
        ASSERT_FALSE(qk7::ExamplesOf(command).empty());
        const std::string own = Qk7({command, "--help"}).m_Out;
        for (const qk7::StExample& example : qk7::ExamplesOf(command))
            EXPECT_NE(own.find(std::string("\n  ") + example.m_szLine + "\n"), std::string::npos)
                << own;
    }
    const std::size_t nCommands = qk7::ExampleCommands().size();
    const std::size_t nFrom = help.find("Subcommands:\n");
    const std::size_t nListed = static_cast<std::size_t>(
        std::count(help.begin() + static_cast<std::ptrdiff_t>(nFrom),
                   help.begin() + static_cast<std::ptrdiff_t>(help.find("\n\n", nFrom)), '\n'));
    EXPECT_EQ(nListed, nCommands) << help;
}
