#include "Tools/DumpTabsToFile.h"

#include "support/AllocationFailures.h"
#include "support/DumpedFiles.h"
#include "support/Throws.h"

#include <memory>

namespace {

using TestSupport::ClDumpDirectory;
using TestSupport::TimeOf;

static_assert(std::has_virtual_destructor_v<ClDumpTabsToFile>);
static_assert(sizeof(ClDumpTabsToFile) == sizeof(void*), "it has no fields");

/// The text that DumpTab() writes.
template <class T, class... Digits>
std::string Dumped(const std::vector<T>& aTab, Digits... digits) {
    char acText[1000] = {};
    std::FILE* pFile = fmemopen(acText, sizeof acText, "w");
    ClDumpTabsToFile::DumpTab(pFile, aTab.data(), aTab.size(), digits...);
    std::fclose(pFile);
    return acText;
}

} // namespace

// Header

TEST(DumpTabsToFile, BeginsWithTheNameAndTheLocalTime) {
    ClDumpDirectory Directory;
    const std::time_t nBefore = std::time(nullptr);
    ClDumpTabsToFile::DumpClose(ClDumpTabsToFile::DumpHeader("Tabs.cpp", Directory.Path(), false));
    const std::time_t nAfter = std::time(nullptr);
    const std::string Text = Directory.Text("Tabs.cpp");
    ASSERT_EQ(Text.substr(0, 15), "// Tabs.cpp\n// ");
    const std::time_t nTold = TimeOf(Text.substr(15, 20));
    EXPECT_GE(nTold, nBefore);
    EXPECT_LE(nTold, nAfter);
    EXPECT_EQ(Text.substr(35), " Automatically created by ClDumpTabsToFile\n\n");
}

TEST(DumpTabsToFile, IncludesThePrecompiledHeaderOnRequest) {
    ClDumpDirectory Directory;
    std::FILE* pFile = ClDumpTabsToFile::DumpHeader("Tabs.cpp", Directory.Path(), true);
    std::fputs("behind", pFile);
    ClDumpTabsToFile::DumpClose(pFile);
    const std::string Text = Directory.Text("Tabs.cpp");
    EXPECT_EQ(Text.substr(35), " Automatically created by ClDumpTabsToFile\n"
                               "#include \"StdAfx.h\"\nbehind\n");
}

TEST(DumpTabsToFile, ReplacesAFormerFile) {
    ClDumpDirectory Directory;
    for (const char* szText : {"a text of some length", "short"}) {
        std::FILE* pFile = ClDumpTabsToFile::DumpHeader("Tabs.cpp", Directory.Path(), false);
        std::fputs(szText, pFile);
        ClDumpTabsToFile::DumpClose(pFile);
    }
    EXPECT_EQ(Directory.Text("Tabs.cpp").substr(35),
              " Automatically created by ClDumpTabsToFile\nshort\n");
}

TEST(DumpTabsToFile, JoinsPathAndNameByOneSlash) {
    ClDumpDirectory Directory;
    const std::string WithSlash = std::string(Directory.Path()) + "/";
    ClDumpTabsToFile::DumpClose(ClDumpTabsToFile::DumpHeader("Tabs.cpp", WithSlash.c_str(), false));
    EXPECT_EQ(Directory.Text("Tabs.cpp").substr(0, 12), "// Tabs.cpp\n");
}

TEST(DumpTabsToFile, TakesAnEmptyPathForTheCurrentDirectory) {
    ClDumpDirectory Directory;
    const std::unique_ptr<char, void (*)(void*)> pFormer(getcwd(nullptr, 0), std::free);
    ASSERT_EQ(chdir(Directory.Path()), 0);
    std::FILE* pFile = ClDumpTabsToFile::DumpHeader("Tabs.cpp", "", false);
    ASSERT_EQ(chdir(pFormer.get()), 0);
    ClDumpTabsToFile::DumpClose(pFile);
    EXPECT_EQ(Directory.Text("Tabs.cpp").substr(0, 12), "// Tabs.cpp\n");
}

TEST(DumpTabsToFile, RefusesMissingNames) {
    EXPECT_THROWS(ClDumpTabsToFile::DumpHeader(nullptr, "/", false), ClException, -44,
                  "szFile is NULL");
    EXPECT_THROWS(ClDumpTabsToFile::DumpHeader("Tabs.cpp", nullptr, false), ClException, -44,
                  "szPath is NULL");
    EXPECT_THROWS(ClDumpTabsToFile::DumpHeader(nullptr, nullptr, false), ClException, -44,
                  "szFile is NULL");
}

TEST(DumpTabsToFile, TellsWhereANameIsMissing) {
    try {
        ClDumpTabsToFile::DumpHeader("Tabs.cpp", nullptr, false);
        FAIL() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/DumpTarget");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(DumpTabsToFile, NamesAFileThatDoesNotOpen) {
    ClDumpDirectory Directory;
    const std::string Missing = std::string(Directory.Path()) + "/none";
    EXPECT_THROWS(ClDumpTabsToFile::DumpHeader("Tabs.cpp", Missing.c_str(), false), ClExFilesystem,
                  -200, "Tabs.cpp");
    EXPECT_THROWS(ClDumpTabsToFile::DumpHeader("", Directory.Path(), false), ClExFilesystem, -200,
                  "");
}

TEST(DumpTabsToFile, AnswersAMissingAllocation) {
    const TestSupport::ClFailAllocation fail(0);
    EXPECT_THROWS(ClDumpTabsToFile::DumpHeader("Tabs.cpp", "/", false), ClExBadAlloc, -102,
                  "Memory allocation failed");
}

// Tables

TEST(DumpTabsToFile, WritesEightEntriesOnALine) {
    EXPECT_EQ(Dumped<unsigned char>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}),
              "\t\t0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, \n"
              "\t\t0x09, 0x0a};\n");
}

TEST(DumpTabsToFile, BreaksOnlyBeforeAFurtherEntry) {
    EXPECT_EQ(Dumped<unsigned char>({1, 2, 3, 4, 5, 6, 7, 8}),
              "\t\t0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};\n");
    EXPECT_EQ(Dumped<unsigned char>({255}), "\t\t0xff};\n");
    EXPECT_EQ(Dumped<unsigned char>({}), "\t\t};\n");
}

TEST(DumpTabsToFile, WritesAsManyDigitsAsTheTypeHas) {
    EXPECT_EQ(Dumped<unsigned short>({0xABC}), "\t\t0x0abc};\n");
    EXPECT_EQ(Dumped<unsigned int>({0xABC}), "\t\t0x00000abc};\n");
    EXPECT_EQ(Dumped<unsigned long>({0xABC}), "\t\t0x0000000000000abc};\n");
    EXPECT_EQ(Dumped<unsigned long long>({~0ull}), "\t\t0xffffffffffffffff};\n");
}

TEST(DumpTabsToFile, WritesTheDigitsTold) {
    EXPECT_EQ(Dumped<unsigned short>({0xABC, 5}, 2), "\t\t0xabc, 0x05};\n");
    EXPECT_EQ(Dumped<unsigned char>({5}, 4), "\t\t0x0005};\n");
    EXPECT_EQ(Dumped<int>({5}, 1), "\t\t0x5};\n");
}

TEST(DumpTabsToFile, WritesTheBitsOfNegativeNumbers) {
    EXPECT_EQ(Dumped<char>({-1, 1}), "\t\t0xff, 0x01};\n");
    EXPECT_EQ(Dumped<short>({-2}), "\t\t0xfffe};\n");
    EXPECT_EQ(Dumped<int>({-3}), "\t\t0xfffffffd};\n");
    EXPECT_EQ(Dumped<long>({-4}), "\t\t0xfffffffffffffffc};\n");
    EXPECT_EQ(Dumped<long long>({-5}), "\t\t0xfffffffffffffffb};\n");
}

TEST(DumpTabsToFile, RefusesAMissingFileOrTable) {
    const int nEntry = 1;
    EXPECT_TESSARIN(ClDumpTabsToFile::DumpTab(nullptr, &nEntry, 1), -44);
    EXPECT_TESSARIN(ClDumpTabsToFile::DumpTab(stderr, static_cast<const int*>(nullptr), 1), -44);
    EXPECT_TESSARIN(ClDumpTabsToFile::DumpClose(nullptr), -44);
}

TEST(DumpTabsToFile, SaysThatATableHasNotReachedItsFile) {
    std::FILE* pFile = ClDumpTabsToFile::DumpHeader("full", "/dev", false); // stores nothing
    EXPECT_THROWS(ClDumpTabsToFile::DumpClose(pFile), ClExFilesystem, -200,
                  "ClDumpTabsToFile::DumpClose");
}
