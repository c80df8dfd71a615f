// Numeric parameters as texts: formats, sizes, and formats that do not fit.

#include "Tools/NumericFormat.h"
#include "Tools/ParameterNumeric.h"
#include "support/ParameterText.h"

#include <limits>

namespace {

using TestSupport::DefaultText;
using TestSupport::ValueText;

/// The text of a value of type `T`, with a format of its own if one is given.
template <class T>
std::string Printed(T value, const char* pFormat = Vek::ClNumericFormat<T>::Format,
                    int nPrecision = 6) {
    TpParameterNumeric<T> parameter;
    parameter.Bind(&value);
    parameter.SetFormat(pFormat);
    parameter.SetPrecision(nPrecision);
    return ValueText(parameter);
}

/// Whether a value of type `T` can be printed with the format.
template <class T>
bool CanPrint(const char* pFormat) {
    T value = T();
    TpParameterNumeric<T> parameter;
    parameter.Bind(&value);
    parameter.SetFormat(pFormat);
    char szText[64];
    unsigned long nSize = sizeof szText;
    return parameter.GetValue(szText, nSize);
}

TEST(ParameterFormat, HasAFormatAndAPrefixPerType) {
    EXPECT_STREQ(Vek::ClNumericFormat<char>::Format, "%d");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned char>::Format, "%u");
    EXPECT_STREQ(Vek::ClNumericFormat<short>::Format, "%hd");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned short>::Format, "%hu");
    EXPECT_STREQ(Vek::ClNumericFormat<int>::Format, "%d");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned int>::Format, "%u");
    EXPECT_STREQ(Vek::ClNumericFormat<long>::Format, "%ld");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned long>::Format, "%lu");
    EXPECT_STREQ(Vek::ClNumericFormat<long long>::Format, "%lld");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned long long>::Format, "%llu");
    EXPECT_STREQ(Vek::ClNumericFormat<float>::Format, "%f");
    EXPECT_STREQ(Vek::ClNumericFormat<double>::Format, "%f");
    EXPECT_STREQ(Vek::ClNumericFormat<char>::Prefix, "");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned char>::Prefix, "");
    EXPECT_STREQ(Vek::ClNumericFormat<short>::Prefix, "h");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned short>::Prefix, "h");
    EXPECT_STREQ(Vek::ClNumericFormat<int>::Prefix, "");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned int>::Prefix, "");
    EXPECT_STREQ(Vek::ClNumericFormat<long>::Prefix, "l");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned long>::Prefix, "l");
    EXPECT_STREQ(Vek::ClNumericFormat<long long>::Prefix, "ll");
    EXPECT_STREQ(Vek::ClNumericFormat<unsigned long long>::Prefix, "ll");
    EXPECT_STREQ(Vek::ClNumericFormat<float>::Prefix, "");
    EXPECT_STREQ(Vek::ClNumericFormat<double>::Prefix, "");
}

TEST(ParameterFormat, PrintsTheEndsOfEachType) {
    EXPECT_EQ(Printed<char>(-128), "-128");
    EXPECT_EQ(Printed<unsigned char>(255), "255");
    EXPECT_EQ(Printed<short>(-32768), "-32768");
    EXPECT_EQ(Printed<unsigned short>(65535), "65535");
    EXPECT_EQ(Printed<int>(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(Printed<unsigned int>(4294967295u), "4294967295");
    EXPECT_EQ(Printed<long>(std::numeric_limits<long>::min()), "-9223372036854775808");
    EXPECT_EQ(Printed<unsigned long>(18446744073709551615u), "18446744073709551615");
    EXPECT_EQ(Printed<long long>(9223372036854775807), "9223372036854775807");
    EXPECT_EQ(Printed<unsigned long long>(18446744073709551615u), "18446744073709551615");
    EXPECT_EQ(Printed<float>(0.5f), "0.500000");
    EXPECT_EQ(Printed<double>(-1.25), "-1.250000");
}

TEST(ParameterFormat, PrintsWithThePrecisionForAStar) {
    EXPECT_EQ(Printed<double>(1.23456, "%.*f", 2), "1.23");
    EXPECT_EQ(Printed<double>(1.23456, "%.*f"), "1.234560");
    EXPECT_EQ(Printed<double>(1.23456, "%.1f", 4), "1.2");
    EXPECT_EQ(Printed<int>(7, "%.*d", 3), "007");
}

TEST(ParameterFormat, PrintsTextAroundTheNumber) {
    EXPECT_EQ(Printed<double>(50.0, "%.0f %% of %%"), "50 % of %");
    EXPECT_EQ(Printed<int>(65, "<%c>"), "<A>");
}

TEST(ParameterFormat, PrintsAFormatThatTakesNoValueAsItIs) {
    EXPECT_EQ(Printed<int>(7, "text"), "text");
    EXPECT_EQ(Printed<int>(7, ""), "");
    EXPECT_EQ(Printed<long>(7, "100 %%"), "100 %");
    EXPECT_EQ(Printed<double>(7.0, "a * b"), "a * b");
}

TEST(ParameterFormat, UsesTheFormatOfTheTypeWhenItsOwnIsCleared) {
    TpParameterNumeric<long> parameter;
    parameter.SetFormat(nullptr);
    EXPECT_EQ(parameter.GetFormat(), nullptr);
    EXPECT_EQ(Printed<long>(3, nullptr), "3");
}

TEST(ParameterFormat, TakesItsOwnFormatAsFormat) {
    TpParameterNumeric<double> parameter;
    parameter.SetFormat("%.3f");
    parameter.SetFormat(parameter.GetFormat());
    EXPECT_STREQ(parameter.GetFormat(), "%.3f");
}

TEST(ParameterFormat, PrintsTheDefault) {
    double dValue = 1.0;
    TpParameterNumeric<double> parameter;
    parameter.Bind(&dValue);
    parameter.SetDefault(2.0);
    EXPECT_EQ(DefaultText(parameter), "2.000000");
}

TEST(ParameterFormat, ReportsTheSizeForANullBuffer) {
    long nValue = 123;
    TpParameterNumeric<long> parameter;
    parameter.Bind(&nValue);
    unsigned long nSize = 3;
    EXPECT_FALSE(parameter.GetValue(nullptr, nSize));
    EXPECT_EQ(nSize, 4u);
    EXPECT_TRUE(parameter.GetValue(nullptr, nSize));
    EXPECT_EQ(nSize, 4u);
}

TEST(ParameterFormat, WritesNothingIntoABufferThatIsTooSmall) {
    long nValue = 123;
    TpParameterNumeric<long> parameter;
    parameter.Bind(&nValue);
    char szText[8] = "???????";
    unsigned long nSize = 3;
    EXPECT_FALSE(parameter.GetValue(szText, nSize));
    EXPECT_EQ(nSize, 4u);
    EXPECT_STREQ(szText, "???????");
}

TEST(ParameterFormat, ReportsTheSizeNeededForALargerBuffer) {
    long nValue = 123;
    TpParameterNumeric<long> parameter;
    parameter.Bind(&nValue);
    char szText[8] = "???????";
    unsigned long nSize = 8;
    EXPECT_TRUE(parameter.GetValue(szText, nSize));
    EXPECT_EQ(nSize, 4u);
    EXPECT_STREQ(szText, "123");
    EXPECT_EQ(szText[4], '?');
}

TEST(ParameterFormat, AnswersFalseWherePrintfFails) {
    EXPECT_FALSE(CanPrint<int>("%2147483648d")); // longer than an int can tell
}

TEST(ParameterFormat, AnswersFalseWhereACharacterCannotBeEncoded) {
    EXPECT_EQ(Printed<int>('A', "%lc"), "A");
    int nValue = 0x7FFFFFFF; // no character
    TpParameterNumeric<int> parameter;
    parameter.Bind(&nValue);
    parameter.SetFormat("%lc");
    unsigned long nSize = 64;
    EXPECT_FALSE(parameter.GetValue(nullptr, nSize));
    EXPECT_EQ(nSize, 64u);
}

TEST(ParameterFormat, AnswersFalseForAFormatThatTakesNoNumberOrMoreThanOne) {
    for (const char* pFormat : {"%s", "%n", "%p", "%m", "%d%d", "%*.*d", "%", "%l", "100 %", "%hhf",
                                "%Ld", "%lln", "%hhhd", "%jc", "%.*"}) {
        EXPECT_FALSE(CanPrint<int>(pFormat)) << pFormat;
        EXPECT_FALSE(CanPrint<long>(pFormat)) << pFormat;
        EXPECT_FALSE(CanPrint<double>(pFormat)) << pFormat;
    }
}

TEST(ParameterFormat, PrintsAnIntegerInEveryStandardLength) {
    for (const char* pFormat : {"%d", "%i", "%ld", "%lld", "%jd", "%zd", "%td", "%qd", "%'ld"}) {
        EXPECT_EQ(Printed<int>(-7, pFormat), "-7") << pFormat;
        EXPECT_EQ(Printed<long>(-7, pFormat), "-7") << pFormat;
        EXPECT_EQ(Printed<short>(-7, pFormat), "-7") << pFormat;
    }
    EXPECT_EQ(Printed<long>(9223372036854775807, "%jd"), "9223372036854775807");
    EXPECT_EQ(Printed<unsigned int>(4294967295u, "%ju"), "4294967295");
    EXPECT_EQ(Printed<unsigned long>(18446744073709551615u, "%zu"), "18446744073709551615");
    EXPECT_EQ(Printed<int>(-1, "%x"), "ffffffff");
    EXPECT_EQ(Printed<int>(0x123, "%hhx"), "23");
    EXPECT_EQ(Printed<long>((1L << 32) + 5, "%d"), "5"); // the length is what the format says
}

TEST(ParameterFormat, PrintsARealNumberInEveryStandardLength) {
    for (const char* pFormat : {"%.2f", "%.2lf", "%.2Lf", "%'.2f"}) {
        EXPECT_EQ(Printed<double>(-1234.5, pFormat), "-1234.50") << pFormat;
        EXPECT_EQ(Printed<float>(-1234.5f, pFormat), "-1234.50") << pFormat;
    }
    EXPECT_EQ(Printed<double>(1.5, "%.*Lf", 3), "1.500");
    EXPECT_EQ(Printed<double>(0.5, "%a"), "0x1p-1");
}

TEST(ParameterFormat, PassesANumberAsTheConversionWantsIt) {
    EXPECT_EQ(Printed<double>(-2.75, "%d"), "-2");
    EXPECT_EQ(Printed<double>(1e300, "%ld"), "0");
    EXPECT_EQ(Printed<double>(9223372036854775808.0, "%ld"), "0");
    EXPECT_EQ(Printed<double>(-9223372036854775808.0, "%ld"), "-9223372036854775808");
    EXPECT_EQ(Printed<double>(std::numeric_limits<double>::quiet_NaN(), "%d"), "0");
    EXPECT_EQ(Printed<int>(3, "%.1f"), "3.0");
    EXPECT_EQ(Printed<long>(-3, "%.1Lf"), "-3.0");
}

TEST(ParameterFormat, TakesAStarForAWidthToo) {
    EXPECT_EQ(Printed<int>(7, "<%*d>", 3), "<  7>");
    EXPECT_EQ(Printed<int>(7, "a * %d", 3), "a * 7"); // this one is text
}

TEST(ParameterFormat, AcceptsAllFlags) {
    for (const char* pFormat : {"%5i", "%-5u|", "0x%02X", "%+d", "%o", "% d", "%#lx"})
        EXPECT_TRUE(CanPrint<int>(pFormat)) << pFormat;
    for (const char* pFormat : {"%e", "%G", "%10.3f", "%#g", "%F", "%A", "% E"})
        EXPECT_TRUE(CanPrint<double>(pFormat)) << pFormat;
}

} // namespace
