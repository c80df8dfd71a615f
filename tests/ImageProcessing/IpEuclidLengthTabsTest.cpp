// The tables of lengths as source text.

#include "ImageProcessing/IpEuclidLength.h"

#include "ImageProcessing/NaiveLength.h"
#include "support/DumpedFiles.h"
#include "support/Throws.h"

#include <cstdlib>
#include <sstream>

namespace {

using TestSupport::ClDumpDirectory;
using TestSupport::NaiveLength;

std::vector<std::string> LinesOf(const std::string& Text) {
    std::istringstream Stream(Text);
    std::vector<std::string> aLines;
    for (std::string Line; std::getline(Stream, Line);)
        aLines.push_back(Line);
    return aLines;
}

/// The numbers of a table's lines.
std::vector<int> Numbers(const std::vector<std::string>& aLines, std::size_t nFirst) {
    std::vector<int> aNumbers;
    for (std::size_t i = nFirst; i < nFirst + 256 * 256 / 8; ++i)
        for (std::size_t n = aLines.at(i).find("0x"); n != std::string::npos;
             n = aLines[i].find("0x", n + 1))
            aNumbers.push_back(static_cast<int>(std::strtol(&aLines[i][n], nullptr, 16)));
    return aNumbers;
}

} // namespace

TEST(IpEuclidLengthTabs, AreWrittenAsDefinitionsOfTheClassData) {
    constexpr std::size_t cnTableLines = 256 * 256 / 8;
    ClDumpDirectory Directory;
    ClIpEuclidLength::MakeCppFilesFromTabs(Directory.Path());
    const std::vector<std::string> aLines = LinesOf(Directory.Text("IpEuclidLengthTabs.cpp"));
    ASSERT_EQ(aLines.size(), 7 + 2 * cnTableLines + 3);
    EXPECT_EQ(aLines[0], "// IpEuclidLengthTabs.cpp");
    EXPECT_EQ(aLines[1].substr(23), " Automatically created by ClDumpTabsToFile");
    EXPECT_EQ(aLines[2], "#include \"ImageProcessing/IpEuclidLength.h\"");
    EXPECT_EQ(aLines[3], "");
    EXPECT_EQ(aLines[4], "bool ClIpEuclidLength::m_bIsInitialized = true;");
    EXPECT_EQ(aLines[5], "");
    EXPECT_EQ(aLines[6], "unsigned char ClIpEuclidLength::m_tabSigned[256][256] = {");
    // 1.414 times 0, 1, ... 7 and 8 to 15
    EXPECT_EQ(aLines[7], "\t\t0x00, 0x01, 0x02, 0x04, 0x05, 0x07, 0x08, 0x09, ");
    EXPECT_EQ(aLines[8], "\t\t0x0b, 0x0c, 0x0e, 0x0f, 0x10, 0x12, 0x13, 0x15, ");
    EXPECT_EQ(aLines[6 + cnTableLines].substr(aLines[6 + cnTableLines].size() - 8), ", 0x01};");
}

TEST(IpEuclidLengthTabs, HoldEveryLength) {
    ClDumpDirectory Directory;
    ClIpEuclidLength::MakeCppFilesFromTabs(Directory.Path());
    const std::vector<std::string> aLines = LinesOf(Directory.Text("IpEuclidLengthTabs.cpp"));
    const std::vector<int> aSigned = Numbers(aLines, 7);
    const std::vector<int> aUnsigned = Numbers(aLines, 9 + 256 * 256 / 8);
    ASSERT_EQ(aSigned.size(), 65536u);
    ASSERT_EQ(aUnsigned.size(), 65536u);
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            const auto n = static_cast<std::size_t>(256 * a + b);
            ASSERT_EQ(aUnsigned[n], NaiveLength(a, b, 707)) << a << ' ' << b;
            ASSERT_EQ(aSigned[n],
                      NaiveLength(static_cast<signed char>(a), static_cast<signed char>(b), 1414))
                << a << ' ' << b;
        }
}

TEST(IpEuclidLengthTabs, AreNotWrittenWithoutADirectory) {
    EXPECT_THROWS(ClIpEuclidLength::MakeCppFilesFromTabs(nullptr), ClException, -44,
                  "szPath is NULL");
    EXPECT_THROWS(ClIpEuclidLength::MakeCppFilesFromTabs("/dev/null"), ClExFilesystem, -200,
                  "IpEuclidLengthTabs.cpp");
}
