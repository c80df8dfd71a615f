/// Text and numbers as HTML and SVG take them.

#include "report/Markup.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <stdexcept>

using namespace report;

TEST(ReportMarkup, EscapesWhatMarkupReads) {
    EXPECT_EQ(Escaped("<&\">'"), "&lt;&amp;&quot;&gt;&#39;");
    EXPECT_EQ(Escaped("&amp;"), "&amp;amp;");
    EXPECT_EQ(Escaped("plain text"), "plain text");
    EXPECT_EQ(Escaped(""), "");
}

TEST(ReportMarkup, KeepsCharactersOfEveryLength) {
    const std::string sText = "\x7E \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBD\t\n";
    EXPECT_EQ(Escaped(sText), sText);
}

// Overlong, cut off, beyond the last one, a surrogate, lone bytes, controls: each byte by itself.
TEST(ReportMarkup, ReplacesWhatIsNoCharacter) {
    const std::string sReplaced = "\xEF\xBF\xBD";
    for (const char* szByte :
         {"\x01", "\x0B", "\x1F", "\x7F", "\x80", "\xBF", "\xC0", "\xF5", "\xFF", "\xC3", "\xE2"})
        EXPECT_EQ(Escaped(szByte), sReplaced) << szByte;
    EXPECT_EQ(Escaped(std::string("a\0b", 3)), "a" + sReplaced + "b");
    EXPECT_EQ(Escaped("\xC3<"), sReplaced + "&lt;");
    EXPECT_EQ(Escaped("\xE2\x82"), sReplaced + sReplaced);
    EXPECT_EQ(Escaped("\xC1\xBF"), sReplaced + sReplaced);
    EXPECT_EQ(Escaped("\xE0\x9F\xBF"), sReplaced + sReplaced + sReplaced);
    EXPECT_EQ(Escaped("\xED\xA0\x80"), sReplaced + sReplaced + sReplaced);
    EXPECT_EQ(Escaped("\xEF\xBF\xBE"), sReplaced + sReplaced + sReplaced);
    EXPECT_EQ(Escaped("\xF0\x8F\xBF\xBF"), sReplaced + sReplaced + sReplaced + sReplaced);
    EXPECT_EQ(Escaped("\xF4\x90\x80\x80"), sReplaced + sReplaced + sReplaced + sReplaced);
}

TEST(ReportMarkup, ShortensByCharactersAndNotByBytes) {
    EXPECT_EQ(Shortened("scanner", 7), "scanner");
    EXPECT_EQ(Shortened("scanners", 7), "scanne\xE2\x80\xA6");
    EXPECT_EQ(Shortened("\xC3\xA9\xC3\xA9\xC3\xA9", 2), "\xC3\xA9\xE2\x80\xA6");
    EXPECT_EQ(Shortened("\xC3\xA9\xC3\xA9", 2), "\xC3\xA9\xC3\xA9");
}

TEST(ReportMarkup, WritesNumbersWithFixedDecimals) {
    EXPECT_EQ(Decimal(1.0, 2), "1.00");
    EXPECT_EQ(Decimal(-12.345, 1), "-12.3");
    EXPECT_EQ(Decimal(2.0 / 3.0, 3), "0.667");
    EXPECT_EQ(Decimal(99.5, 0), "100"); // to even
    EXPECT_EQ(Decimal(1e21, 0), "1000000000000000000000");
    EXPECT_EQ(Decimal(-std::numeric_limits<double>::max(), 9).size(), 320U);
}

TEST(ReportMarkup, GivesZeroNoSign) {
    EXPECT_EQ(Decimal(-0.0, 0), "0");
    EXPECT_EQ(Decimal(-0.004, 2), "0.00");
    EXPECT_EQ(Decimal(-0.006, 2), "-0.01");
}

TEST(ReportMarkup, TellsInWordsWhatIsNoNumber) {
    EXPECT_EQ(Decimal(std::nan(""), 2), "not a number");
    EXPECT_EQ(Decimal(-std::nan(""), 2), "not a number");
    EXPECT_EQ(Decimal(INFINITY, 2), "infinite");
    EXPECT_EQ(Decimal(-INFINITY, 2), "minus infinite");
}

TEST(ReportMarkup, RefusesDecimalsThatAreTooMany) {
    EXPECT_EQ(Decimal(0.5, 9), "0.500000000");
    EXPECT_THROW(Decimal(0.5, 10), std::invalid_argument);
    EXPECT_THROW(Decimal(0.5, -1), std::invalid_argument);
}

TEST(ReportMarkup, CountsInWords) {
    EXPECT_EQ(Count(0, "dot", "dots"), "no dots");
    EXPECT_EQ(Count(1, "dot", "dots"), "one dot");
    EXPECT_EQ(Count(2, "dot", "dots"), "2 dots");
}
