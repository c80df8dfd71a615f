// Numbers and names in programs that have chosen a locale with a decimal comma, digits in groups
// and letters that change case in their own way.

#include "Tools/DumpFile.h"
#include "Tools/ParameterContainer.h"
#include "Tools/ParameterInterface.h"
#include "Tools/Text.h"
#include "support/DumpedFiles.h"
#include "support/Locales.h"
#include "support/ParameterText.h"

#include <cctype>

using TestSupport::ClApplicationLocale;
using TestSupport::ValueText;

namespace {

struct StLocale {
    const char* m_szSource;
    const char* m_szCharset;
};

void PrintTo(const StLocale& locale, std::ostream* pOut) {
    *pOut << locale.m_szSource << "." << locale.m_szCharset;
}

std::string NameOf(const testing::TestParamInfo<StLocale>& info) {
    return std::string(info.param.m_szSource) + (info.param.m_szCharset[0] == 'U' ? "" : "Narrow");
}

class Locale : public testing::TestWithParam<StLocale> {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_Chosen.IsSet()) << "the system neither has this locale nor can make it";
    }

    ClApplicationLocale m_Chosen{GetParam().m_szSource, GetParam().m_szCharset};
};

INSTANTIATE_TEST_SUITE_P(, Locale,
                         testing::Values(StLocale{"de_DE", "UTF-8"}, StLocale{"tr_TR", "UTF-8"},
                                         StLocale{"tr_TR", "ISO-8859-9"}),
                         NameOf);

std::string PrintedByTheProgram(const char* szFormat, double dValue) {
    char szText[64];
    std::snprintf(szText, sizeof szText, szFormat, dValue);
    return szText;
}

TEST_P(Locale, IsThatOfTheProgramBeforeAndAfter) {
    EXPECT_EQ(PrintedByTheProgram("%.2f", 1.5), "1,50");
    double dValue = 0.0;
    TpParameterNumeric<double> parameter;
    parameter.Bind(&dValue);
    parameter.SetValue("2.5");
    EXPECT_EQ(ValueText(parameter), "2.500000");
    EXPECT_EQ(PrintedByTheProgram("%.2f", 1.5), "1,50");
}

TEST_P(Locale, DoesNotReachTheNumbersOfParameters) {
    double dValue = 0.0;
    TpParameterNumeric<double> parameter;
    parameter.Bind(&dValue);
    parameter.SetValue("-1.5e2");
    EXPECT_EQ(dValue, -150.0);
    EXPECT_ANY_THROW(parameter.SetValue("1,5"));
    parameter.SetFormat("%.2f");
    EXPECT_EQ(ValueText(parameter), "-150.00");
}

TEST_P(Locale, DoesNotGroupTheirDigits) {
    long nValue = 1234567;
    TpParameterNumeric<long> parameter;
    parameter.Bind(&nValue);
    parameter.SetFormat("%'ld");
    EXPECT_EQ(ValueText(parameter), "1234567");
}

TEST_P(Locale, DoesNotReachTheFlatChannel) {
    double dValue = 1.5;
    unsigned short nAngle = 65535;
    ClParameterInterface List;
    EXPECT_STREQ(
        List.AddParameter(&dValue, "d", "", ClParameterInterface::eIn, 0.0, 1.0)->szValue(),
        "1.50000");
    auto* pAngle = List.AddParameter();
    pAngle->m_eType = ClParameterInterface::eAngle;
    pAngle->m_pValue = &nAngle;
    EXPECT_STREQ(pAngle->szValue(), "65535=360.000\xB0");
}

TEST_P(Locale, DoesNotReachGeneratedSources) {
    TestSupport::ClDumpDirectory Directory;
    {
        ClDumpFile_C_Header Header("tiles.h", Directory.Path());
        Header.Define("STEP", 1.5, "double");
        Header.Comment("%.1f", 2.5);
    }
    EXPECT_EQ(Directory.Text("tiles.h"), "#ifndef _TILES_H_\n#define _TILES_H_\n\n"
                                         "#define STEP ((double)1.500000)\n// 2.5\n"
                                         "#endif //_TILES_H_\n");
}

TEST_P(Locale, DoesNotTellNamesApart) {
    enum EMode { eWide, eTight };
    EMode eMode = eWide;
    long nTilt = 0;
    ClParameterContainer container;
    container.AddNumeric("TILT", &nTilt);
    auto* pMode = container.AddEnum("Mode", &eMode, {{eWide, "WIDE"}, {eTight, "TIGHT"}});
    EXPECT_NE(container.Find("tilt"), nullptr);
    pMode->SetValue("tight");
    EXPECT_EQ(eMode, eTight);
    EXPECT_ANY_THROW(container.AddNumeric("Tilt", &nTilt));
}

TEST(TurkishLocale, TellsApartWhatTheProgramComparesItself) {
    const ClApplicationLocale chosen("tr_TR", "UTF-8");
    ASSERT_TRUE(chosen.IsSet()) << "the system neither has this locale nor can make it";
    EXPECT_NE(std::tolower('I'), 'i'); // so that the tests above can fail
}

// The comparison itself

TEST(Text, NamesAreTheSameInUpperAndLowerCase) {
    EXPECT_TRUE(Vek::IsSameName("", ""));
    EXPECT_TRUE(Vek::IsSameName("aZ_9", "Az_9"));
    EXPECT_FALSE(Vek::IsSameName("a", "ab"));
    EXPECT_FALSE(Vek::IsSameName("ab", "a"));
    EXPECT_FALSE(Vek::IsSameName("a", "b"));
}

TEST(Text, BeginsWithANameInUpperAndLowerCase) {
    EXPECT_TRUE(Vek::BeginsWithName("TILT=2", "tilt"));
    EXPECT_TRUE(Vek::BeginsWithName("tilt", "TILT"));
    EXPECT_TRUE(Vek::BeginsWithName("tilt", ""));
    EXPECT_FALSE(Vek::BeginsWithName("til", "tilt"));
    EXPECT_FALSE(Vek::BeginsWithName("a tilt", "tilt"));
}

TEST(Text, OnlyTheLettersOfAsciiHaveTwoCases) {
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        const bool bUpper = i >= 'A' && i <= 'Z';
        const bool bLower = i >= 'a' && i <= 'z';
        EXPECT_EQ(Vek::LowerLetter(c), bUpper ? static_cast<char>(i + 32) : c) << i;
        EXPECT_EQ(Vek::UpperLetter(c), bLower ? static_cast<char>(i - 32) : c) << i;
    }
}

TEST(Text, CopiesHaveTheirOwnMemory) {
    const char szText[] = "words";
    const auto pCopy = Vek::CopyOf(szText);
    EXPECT_STREQ(pCopy.get(), szText);
    EXPECT_NE(pCopy.get(), szText);
    EXPECT_EQ(Vek::CopyOf(nullptr), nullptr);
    EXPECT_STREQ(Vek::TextOrEmpty(nullptr), "");
    EXPECT_EQ(Vek::TextOrEmpty(szText), szText);
}

} // namespace
