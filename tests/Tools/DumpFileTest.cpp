#include "Tools/DumpFile.h"

#include "support/AllocationFailures.h"
#include "support/DumpedFiles.h"
#include "support/Throws.h"

#include <type_traits>
#include <utility>

namespace {

using TestSupport::ClDumpDirectory;
using TestSupport::TimeOf;

static_assert(std::has_virtual_destructor_v<ClDumpFile>);
static_assert(!std::is_copy_constructible_v<ClDumpFile_C_Header>);

/// The text of a file written by `work`.
template <class File, class Work>
std::string Written(Work work) {
    ClDumpDirectory Directory;
    {
        File file("tabs.h", Directory.Path());
        work(file);
    }
    return Directory.Text("tabs.h");
}

/// One of each operation.
void WriteAll(ClDumpFile& rFile) {
    rFile.CommentLine("a comment");
    rFile.Include("Tools/Array.h");
    rFile.Define("SIZE", 256, "int");
    rFile.Define("SCALE", 0.707, "double");
    rFile.Const("LIMIT", -5, "short");
}

} // namespace

// What the members of the family write

TEST(DumpFile, WritesCSources) {
    EXPECT_EQ(Written<ClDumpFile_C_File>(WriteAll), "// a comment\n"
                                                    "#include \"Tools/Array.h\"\n"
                                                    "#define SIZE ((int)256)\n"
                                                    "#define SCALE ((double)0.707000)\n"
                                                    "const LIMIT = ((short)-5)\n");
}

TEST(DumpFile, WritesGuardedCHeaders) {
    EXPECT_EQ(Written<ClDumpFile_C_Header>(WriteAll), "#ifndef _TABS_H_\n"
                                                      "#define _TABS_H_\n"
                                                      "\n"
                                                      "// a comment\n"
                                                      "#include \"Tools/Array.h\"\n"
                                                      "#define SIZE ((int)256)\n"
                                                      "#define SCALE ((double)0.707000)\n"
                                                      "extern const short LIMIT;\n"
                                                      "#endif //_TABS_H_\n");
}

TEST(DumpFile, WritesAssemblerWithoutRealNumbers) {
    EXPECT_EQ(Written<ClDumpFile_ASM>(WriteAll), "; a comment\n"
                                                 "\tinclude \"Tools/Array.h\"\n"
                                                 "SIZE EQU 256\n"
                                                 "LIMIT EQU -5\n");
}

TEST(DumpFile, AlignsNamesInTheirColumn) {
    EXPECT_EQ(Written<ClDumpFile_C_File>([](ClDumpFile& rFile) {
                  rFile.m_nNameWidth = 6;
                  rFile.Define("SIZE", 1, "int");
                  rFile.Define("SCALE", 1.5, "float");
                  rFile.Const("A_LONG_NAME", 2, "int");
                  rFile.m_nNameWidth = -6;
                  rFile.Const("LEFT", 3, "int");
              }),
              "#define   SIZE ((int)1)\n"
              "#define  SCALE ((float)1.500000)\n"
              "const A_LONG_NAME = ((int)2)\n"
              "const LEFT   = ((int)3)\n");
    EXPECT_EQ(Written<ClDumpFile_ASM>([](ClDumpFile& rFile) {
                  rFile.m_nNameWidth = 6;
                  rFile.Define("SIZE", 1, "int");
              }),
              "SIZE EQU 1\n");
}

TEST(DumpFile, BeginsWithoutANameColumn) {
    ClDumpDirectory Directory;
    {
        const ClDumpFile_ASM file("tabs.asm", Directory.Path());
        EXPECT_EQ(file.m_nNameWidth, 0);
        EXPECT_STREQ(file.Name(), "tabs.asm");
    }
    EXPECT_EQ(Directory.Text("tabs.asm"), "");
}

TEST(DumpFile, WritesTextAndLineFeedsAsTheyAre) {
    EXPECT_EQ(Written<ClDumpFile_C_File>([](ClDumpFile& rFile) {
                  rFile.Out("%d%%, %s", 50, "half");
                  rFile.NewLines(3);
                  rFile.NewLines(0);
                  rFile.NewLines(-2);
                  rFile.Out("end");
              }),
              "50%, half\n\n\nend");
}

TEST(DumpFile, TakesMissingTextsForEmptyOnes) {
    const char* const szNull = nullptr;
    EXPECT_EQ(Written<ClDumpFile_C_File>([&](ClDumpFile& rFile) {
                  rFile.CommentLine(szNull);
                  rFile.Include(szNull);
                  rFile.Define(szNull, 1, szNull);
                  rFile.Const(szNull, 1, szNull);
              }),
              "// \n#include \"\"\n#define  (()1)\nconst  = (()1)\n");
    EXPECT_EQ(Written<ClDumpFile_ASM>([&](ClDumpFile& rFile) {
                  rFile.CommentLine(szNull);
                  rFile.Include(szNull);
                  rFile.Const(szNull, 1, szNull);
              }),
              "; \n\tinclude \"\"\n EQU 1\n");
}

// Comments

TEST(DumpFile, FormatsCommentsInTheLanguageOfTheFile) {
    const auto Work = [](ClDumpFile& rFile) { rFile.Comment("%s has %d", "it", 7); };
    EXPECT_EQ(Written<ClDumpFile_C_File>(Work), "// it has 7\n");
    EXPECT_EQ(Written<ClDumpFile_ASM>(Work), "; it has 7\n");
}

TEST(DumpFile, HoldsCommentsOf1023Characters) {
    const std::string Longest(1023, 'x');
    const std::string TooLong(1024, 'x');
    EXPECT_EQ(Written<ClDumpFile_C_File>([&](ClDumpFile& rFile) {
                  rFile.Comment("%s", Longest.c_str());
                  EXPECT_THROWS(rFile.Comment("%s", TooLong.c_str()), ClException, -101,
                                "Comment to long");
                  rFile.CommentLine(TooLong.c_str());
              }),
              "// " + Longest + "\n// " + TooLong + "\n");
}

TEST(DumpFile, TellsWhereACommentIsTooLong) {
    ClDumpDirectory Directory;
    try {
        ClDumpFile_C_File file("tabs.c", Directory.Path());
        file.Comment("%2000d", 1);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/DumpFile");
        EXPECT_GT(e.Line(), 0);
    }
    EXPECT_EQ(Directory.Text("tabs.c"), "");
}

TEST(DumpFile, CommentsOnItsNameAndTheLocalTime) {
    const std::time_t nBefore = std::time(nullptr);
    const std::string Text =
        Written<ClDumpFile_ASM>([](ClDumpFile& rFile) { rFile.GeneratedComment(); });
    const std::time_t nAfter = std::time(nullptr);
    ASSERT_EQ(Text.substr(0, 11), "; tabs.h\n; ");
    const std::time_t nTold = TimeOf(Text.substr(11, 20));
    EXPECT_GE(nTold, nBefore);
    EXPECT_LE(nTold, nAfter);
    EXPECT_EQ(Text.substr(31), " Automatically created.\n");
}

// Guards

TEST(DumpFile, NamesTheGuardByTheFile) {
    const std::pair<std::string, std::string> aNames[] = {{"tabs.h", "_TABS_H_"},
                                                          {"a", "_A_"},
                                                          {"My.Tabs.hpp", "_MY_TABS_HPP_"},
                                                          {"x-1.h", "_X-1_H_"}};
    ClDumpDirectory Directory;
    for (const auto& [Name, Guard] : aNames) {
        {
            const ClDumpFile_C_Header file(Name.c_str(), Directory.Path());
            std::vector<char> aBuffer(Name.size() + 4, '#'); // one more than is needed
            file.GetProtectorName(aBuffer.data());
            EXPECT_EQ(aBuffer.data(), Guard);
            EXPECT_EQ(aBuffer.back(), '#');
        }
        EXPECT_EQ(Directory.Text(Name),
                  "#ifndef " + Guard + "\n#define " + Guard + "\n\n#endif //" + Guard + "\n");
    }
}

// Failures

TEST(DumpFile, RefusesMissingNames) {
    EXPECT_THROWS(ClDumpFile_ASM(nullptr, "/"), ClException, -44, "szFile is NULL");
    EXPECT_THROWS(ClDumpFile_C_File("tabs.c", nullptr), ClException, -44, "szPath is NULL");
    EXPECT_THROWS(ClDumpFile_C_Header(nullptr, nullptr), ClException, -44, "szFile is NULL");
}

TEST(DumpFile, NamesAFileThatDoesNotOpen) {
    ClDumpDirectory Directory;
    const std::string Missing = std::string(Directory.Path()) + "/none";
    EXPECT_THROWS(ClDumpFile_C_Header("tabs.h", Missing.c_str()), ClExFilesystem, -200, "tabs.h");
}

TEST(DumpFile, SurvivesEachMissingAllocation) {
    ClDumpDirectory Directory;
    TestSupport::FailEachAllocation([&] {
        ClDumpFile_C_Header file("tabs.h", Directory.Path());
        file.GeneratedComment();
        file.Comment("%d", 1);
    });
    EXPECT_EQ(Directory.Text("tabs.h").substr(0, 17), "#ifndef _TABS_H_\n");
}
