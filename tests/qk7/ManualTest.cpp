/// The manual and the completion, of a small tool.

#include "apps/qk7/documents/Manual.h"
#include "apps/qk7/documents/Completion.h"

#include "apps/qk7/Choices.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using namespace qk7;
using testing::HasSubstr;

namespace {

/// One command with an option of every form.
class Qk7Documents : public testing::Test {
protected:
    Qk7Documents() : m_App("Does things.", "qk7") {
        CLI::App* pCommand = m_App.add_subcommand("make", "Makes it. And tells.");
        pCommand->add_option("-o,--output", m_Text, "File - or 'none'; its\n  name")
            ->required()
            ->type_name("OUT");
        pCommand->add_option("--size", m_Text, "How large: it is")
            ->check(OneOf({"small", "big"}))
            ->type_name("SIZE");
        pCommand->add_option("-n,--count", m_nCount, "How many")
            ->type_name("N")
            ->capture_default_str();
        pCommand->add_flag("--dry", m_bFlag, "Only [say] so");
        pCommand->add_option("FILE", m_aTexts, ".Files")->required()->type_name("");
        m_aCommands = Describe(m_App);
    }

    CLI::App m_App;
    std::string m_Text;
    int m_nCount = 3;
    bool m_bFlag = false;
    std::vector<std::string> m_aTexts;
    std::vector<StDescribedCommand> m_aCommands;
};

} // namespace

TEST_F(Qk7Documents, DescribeWhatTheParserKnows) {
    ASSERT_EQ(m_aCommands.size(), 2U);
    const StDescribedCommand& command = m_aCommands[1];
    ASSERT_EQ(command.m_aOptions.size(), 5U) << "the help is an option too";
    EXPECT_EQ(command.m_aOptions[1].m_aNames, (std::vector<std::string>{"-o", "--output"}));
    EXPECT_EQ(command.m_aOptions[1].m_Value, "OUT");
    EXPECT_TRUE(command.m_aOptions[1].m_bRequired);
    EXPECT_EQ(command.m_aOptions[2].m_aChoices, (std::vector<std::string>{"small", "big"}));
    EXPECT_EQ(command.m_aOptions[3].m_Default, "3");
    EXPECT_TRUE(command.m_aOptions[4].IsFlag());
    ASSERT_EQ(command.m_aArguments.size(), 1U);
    EXPECT_EQ(command.m_aArguments[0].m_Name, "FILE");
    EXPECT_TRUE(command.m_aArguments[0].m_bRepeatable);
}

TEST_F(Qk7Documents, HaveAPageForACommand) {
    const std::string page = PageOf(m_aCommands[1], m_aCommands, {"1.2.3", "2026-01-31"});

    EXPECT_THAT(page, HasSubstr(".TH QK7\\-MAKE 1 2026-01-31 \"qk7 1.2.3\" "));
    EXPECT_THAT(page, HasSubstr(".SH NAME\nqk7\\-make \\- makes it\n"));
    EXPECT_THAT(page, HasSubstr(".SH DESCRIPTION\nMakes it. And tells.\n"));
    EXPECT_THAT(page, HasSubstr("\\fBqk7 make\\fR \\fB\\-o\\fR \\fIOUT\\fR [\\fIOPTION\\fR]... "
                                "\\fIFILE\\fR...\n"));
    EXPECT_THAT(page, HasSubstr(".TP\n\\fIFILE\\fR\n\\&.Files\n"));
    EXPECT_THAT(page, HasSubstr(".TP\n\\fB\\-o\\fR, \\fB\\-\\-output\\fR \\fIOUT\\fR\n"
                                "File \\- or 'none'; its\n.br\nname (required)\n"));
    EXPECT_THAT(page, HasSubstr("How many (default 3)\n"));
    EXPECT_THAT(page, HasSubstr(".SH SEE ALSO\n.BR qk7 (1)\n"));
}

TEST_F(Qk7Documents, HaveAPageForTheTool) {
    const std::string page = PageOf(m_aCommands[0], m_aCommands, {"1.2.3", "2026-01-31"});

    EXPECT_THAT(page, HasSubstr(".SH NAME\nqk7 \\- does things\n"));
    EXPECT_THAT(page, HasSubstr(".SH COMMANDS\n.TP\n\\fBmake\\fR\nMakes it\n"));
    EXPECT_THAT(page, HasSubstr(".SH EXIT STATUS\n.TP\n\\fB0\\fR\n"));
    EXPECT_THAT(page, HasSubstr(".BR qk7\\-make (1)\n"));
}

TEST_F(Qk7Documents, CompleteForThreeShells) {
    const std::string bash = BashCompletion(m_aCommands);
    EXPECT_THAT(bash, HasSubstr("'make --size')\n            words='small big' ;;\n"));
    EXPECT_THAT(bash, HasSubstr("'make -o' | 'make --output')\n            action=file ;;\n"));
    const std::string zsh = ZshCompletion(m_aCommands);
    EXPECT_THAT(zsh, HasSubstr("'(--size)--size[How large]:SIZE:(small big)'"));
    EXPECT_THAT(zsh, HasSubstr("'(-o --output)-o[File - or '\\''none'\\'']:OUT:_files'"));
    EXPECT_THAT(zsh, HasSubstr("'(--dry)--dry[Only \\[say\\] so]'"));
    EXPECT_THAT(zsh, HasSubstr("'*:FILE:_files'"));
    const std::string fish = FishCompletion(m_aCommands);
    EXPECT_THAT(fish, HasSubstr("complete -c qk7 -n '__fish_seen_subcommand_from make' -s n -l "
                                "count -x -d 'How many'\n"));
    EXPECT_THAT(fish, HasSubstr(" -l size -x -a 'small big' -d 'How large'\n"));
}

TEST(Qk7FirstClause, EndsWhereTheSentenceTurns) {
    EXPECT_EQ(FirstClause("Captures, bitmaps; a folder"), "Captures, bitmaps");
    EXPECT_EQ(FirstClause("Kinds, each once:\n  loop: a loop"), "Kinds, each once");
    EXPECT_EQ(FirstClause("Use it. Then more"), "Use it");
    EXPECT_EQ(FirstClause("Of .png files"), "Of .png files");
}
