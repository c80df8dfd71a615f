/// The drawings of figures: the histogram of residuals and the trend over scanners, and the style.

#include "report/DrawingReader.h"
#include "report/DrawingStyle.h"
#include "report/Markup.h"
#include "report/PageFigures.h"
#include "report/ResidualHistogram.h"
#include "report/Trend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

using namespace report;
using namespace TestSupport;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

StTrend TrendOf(const std::vector<double>& aValues) {
    StTrend Trend{"mean residual", "\xC2\xB5m", 1, {}, {}, {}};
    for (const double d : aValues)
        Trend.m_aPoints.push_back(
            {"scanner " + std::to_string(Trend.m_aPoints.size() + 1), d, false});
    return Trend;
}

using Colours = std::map<std::string, std::string>;

/// The colours of a scheme: what stands in the first braces behind its beginning.
Colours ColoursBehind(const std::string& sBeginning) {
    const std::string sStyle = DrawingStyle();
    Colours Found;
    std::size_t nAt = sStyle.find(sBeginning);
    EXPECT_NE(nAt, std::string::npos);
    const std::size_t nEnd = sStyle.find('}', nAt);
    while ((nAt = sStyle.find("--drawing-", nAt)) < nEnd) {
        const std::size_t nColon = sStyle.find(':', nAt);
        Found[sStyle.substr(nAt + 10, nColon - nAt - 10)] = sStyle.substr(nColon + 1, 7);
        nAt = nColon;
    }
    return Found;
}

/// Of a colour as #rrggbb, by the definition of the accessibility guidelines.
double Luminance(const std::string& sColour) {
    const auto part = [&](std::size_t nAt) {
        const double d = std::stoi(sColour.substr(nAt, 2), nullptr, 16) / 255.0;
        return d <= 0.03928 ? d / 12.92 : std::pow((d + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5);
}

double Contrast(const std::string& sOne, const std::string& sOther) {
    const double a = Luminance(sOne);
    const double b = Luminance(sOther);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

// 19 micrometres in 19 bins of 1, and one more for the maximum itself; 344 units for 20.
TEST(ReportResidualHistogram, CountsLengths) {
    const ClDrawingReader Drawing(DrawResidualHistogram({0.0, 0.5, 1.0, 4.5, 19.0}, "bins"));
    const auto aBars = Drawing.OfClass("bar");
    ASSERT_EQ(aBars.size(), 4U);
    EXPECT_EQ(Tip(aBars[0]), "2 dots from 0 to 1 \xC2\xB5m");
    EXPECT_EQ(Tip(aBars[1]), "one dot from 1 to 2 \xC2\xB5m");
    EXPECT_EQ(Tip(aBars[3]), "one dot from 19 to 20 \xC2\xB5m");
    EXPECT_NEAR(Number(aBars[2], "x"), 40.0 + 344.0 * 4.0 / 20.0, 0.006);
    EXPECT_NEAR(Number(aBars[2], "width"), 17.2, 0.006);
    EXPECT_NEAR(Number(aBars[0], "height"), 140.0, 0.006);
    EXPECT_NEAR(Number(aBars[2], "height"), 70.0, 0.006);
}

// Mean 5 and maximum 19 micrometres; a pixel has 50.8.
TEST(ReportResidualHistogram, TellsMeanAndMaximumInBothUnits) {
    const ClDrawingReader Drawing(DrawResidualHistogram({0.0, 0.5, 1.0, 4.5, 19.0}, "bins"));
    EXPECT_THAT(Drawing.Texts(), Contains("mean 5.0 \xC2\xB5m (0.10 pixels)"));
    EXPECT_THAT(Drawing.Texts(), Contains("maximum 19.0 \xC2\xB5m (0.37 pixels)"));
    EXPECT_NEAR(Number(Drawing.First("mean"), "x1"), 40.0 + 344.0 * 5.0 / 20.0, 0.006);
    EXPECT_NEAR(Number(Drawing.First("maximum"), "x1"), 40.0 + 344.0 * 19.0 / 20.0, 0.006);
    EXPECT_EQ(Drawing.Description(), "5 residuals, mean 5.0 \xC2\xB5m (0.10 pixels), maximum 19.0 "
                                     "\xC2\xB5m (0.37 pixels).");
}

// 20 micrometres are 0.394 pixels: ticks at 0.0 to 0.3, the last one where 15.24 micrometres are.
TEST(ReportResidualHistogram, HasAnAxisInPixels) {
    const ClDrawingReader Drawing(DrawResidualHistogram({0.5, 19.0}, "bins"));
    EXPECT_NEAR(Number(Drawing.Text("0.3"), "x"), 40.0 + 344.0 * 15.24 / 20.0, 0.006);
    EXPECT_NEAR(Number(Drawing.Text("15"), "x"), 40.0 + 344.0 * 15.0 / 20.0, 0.006);
}

TEST(ReportResidualHistogram, KeepsTheWordsOfMeanAndMaximumApart) {
    for (const double dMean : {1.0, 5.0, 9.0, 9.9}) {
        SCOPED_TRACE(dMean);
        ExpectSound(DrawResidualHistogram({dMean, dMean, dMean, dMean, 10.0}, "bins"), "bins");
    }
}

TEST(ReportResidualHistogram, LeavesOutWhatIsNoLength) {
    const ClDrawingReader Drawing(
        DrawResidualHistogram({3.0, std::nan(""), -1.0, INFINITY, 1.1e6}, "bins"));
    EXPECT_THAT(Drawing.Description(), HasSubstr("one residual, mean 3.0"));
    EXPECT_THAT(Drawing.Description(), HasSubstr("Left out: 4 values that are no length."));
}

TEST(ReportResidualHistogram, DrawsResidualsThatAreAllTheSame) {
    for (const double d : {0.0, 1e-9, 7.0}) {
        const std::string sDrawing = DrawResidualHistogram(std::vector<double>(75, d), "bins");
        ExpectSound(sDrawing, "bins");
        const ClDrawingReader Drawing(sDrawing);
        ASSERT_EQ(Drawing.CountOf("bar"), 1U) << d;
        EXPECT_THAT(Tip(Drawing.First("bar")), HasSubstr("75 dots"));
    }
    EXPECT_THAT(ClDrawingReader(DrawResidualHistogram({}, "bins")).Texts(),
                Contains("No residuals are known"));
}

// Values from 4 to 8 and 0.06 of their span to each side: from 3.76 to 8.24, 118 units, the
// lowest at 144. Four scanners share 240 units from 46 on.
TEST(ReportTrend, DrawsValuesInTheirOrder) {
    const ClDrawingReader Drawing(DrawTrend(TrendOf({6.0, 4.0, 8.0, 5.0}), "trend"));
    const auto aPoints = Drawing.OfClass("point");
    ASSERT_EQ(aPoints.size(), 4U);
    EXPECT_NEAR(Number(aPoints[1], "cx"), 46.0 + 240.0 * 1.5 / 4.0, 0.006);
    EXPECT_NEAR(Number(aPoints[1], "cy"), 144.0 - 118.0 * 0.24 / 4.48, 0.006);
    EXPECT_NEAR(Number(aPoints[2], "cy"), 144.0 - 118.0 * 4.24 / 4.48, 0.006);
    EXPECT_EQ(Tip(aPoints[1]), "scanner 2: 4.0");
    EXPECT_THAT(Drawing.Texts(), Contains("mean residual, \xC2\xB5m"));
    EXPECT_THAT(Drawing.Texts(), Contains("scanners in the order of their names, 1 to 4"));
}

TEST(ReportTrend, HasALineAtTheMedian) {
    const ClDrawingReader Even(DrawTrend(TrendOf({6.0, 4.0, 8.0, 5.0}), "trend"));
    EXPECT_THAT(Even.Texts(), Contains("median 5.5"));
    EXPECT_NEAR(Number(Even.First("mean"), "y1"), 144.0 - 118.0 * 1.74 / 4.48, 0.006);
    EXPECT_THAT(ClDrawingReader(DrawTrend(TrendOf({6.0, 4.0, 8.0}), "trend")).Texts(),
                Contains("median 6.0"));
}

TEST(ReportTrend, NamesWhatIsBeyondALimitOrFlagged) {
    StTrend Trend = TrendOf({6.0, 4.0, 8.0, 5.0, 6.5, 6.0});
    Trend.m_dLower = 4.5;
    Trend.m_dUpper = 8.0; // what is at a limit is not beyond it
    Trend.m_aPoints[4].m_bOutlier = true;
    const ClDrawingReader Drawing(DrawTrend(Trend, "trend"));
    EXPECT_EQ(Drawing.CountOf("outlier"), 2U);
    EXPECT_EQ(Drawing.CountOf("point"), 4U);
    EXPECT_EQ(Drawing.CountOf("limit"), 2U);
    for (const char* szText : {"scanner 2", "scanner 5", "at least 4.5", "at most 8.0"})
        EXPECT_THAT(Drawing.Texts(), Contains(szText));
    EXPECT_EQ(
        Drawing.Description(),
        "6 scanners in the order of their names; values from 4.0 to 8.0, limit: at least 4.5, "
        "limit: at most 8.0, median 6.0; outliers: scanner 2 4.0, scanner 5 6.5.");
}

TEST(ReportTrend, HasRoomForTheLimitsOfEveryFigure) {
    for (const StFigure& Figure : Figures()) {
        StTrend Trend = TrendOf({0.5, 2.0});
        Trend.m_nDecimals = Figure.m_nDecimals;
        Trend.m_dLower = Figure.m_dLower;
        Trend.m_dUpper = Figure.m_dUpper;
        const auto aTexts = ClDrawingReader(DrawTrend(Trend, "trend")).Texts();
        const auto told = [&](double dLimit) { return Decimal(dLimit, Figure.m_nDecimals); };
        if (Figure.m_dLower) {
            EXPECT_THAT(aTexts, Contains("at least " + told(*Figure.m_dLower)));
        }
        if (Figure.m_dUpper) {
            EXPECT_THAT(aTexts, Contains("at most " + told(*Figure.m_dUpper)));
        }
    }
}

TEST(ReportTrend, KeepsWordsApartWhereLinesAreClose) {
    StTrend Trend = TrendOf({5.0, 5.0, 5.0});
    Trend.m_dLower = 4.99;
    Trend.m_dUpper = 5.01;
    ExpectSound(DrawTrend(Trend, "trend"), "trend");
}

TEST(ReportTrend, CrossesOutWhatHasNoValue) {
    const ClDrawingReader Drawing(DrawTrend(TrendOf({6.0, std::nan(""), 8.0}), "trend"));
    EXPECT_EQ(Drawing.CountOf("point"), 2U);
    EXPECT_EQ(Tip(Drawing.First("absent")), "scanner 2: no value");
    EXPECT_THAT(Drawing.Description(), HasSubstr("one scanner has no value"));
}

TEST(ReportTrend, TellsTenOutliersInWordsAtMost) {
    StTrend Trend = TrendOf(std::vector<double>(12, 7.0));
    Trend.m_dUpper = 6.0;
    const std::string sWords = ClDrawingReader(DrawTrend(Trend, "trend")).Description();
    EXPECT_THAT(sWords, HasSubstr("scanner 10 7.0 and others."));
    EXPECT_THAT(sWords, Not(HasSubstr("scanner 11")));
}

TEST(ReportTrend, DrawsFewOrNoScanners) {
    EXPECT_THAT(ClDrawingReader(DrawTrend(TrendOf({}), "trend")).Texts(), Contains("No scanners."));
    const std::string sOne = DrawTrend(TrendOf({0.0}), "trend");
    ExpectSound(sOne, "trend");
    EXPECT_THAT(ClDrawingReader(sOne).Texts(), Contains("one scanner"));
}

TEST(ReportTrend, TakesNamesAsTheyCome) {
    StTrend Trend = TrendOf({6.0, 7.0, 8.0});
    Trend.m_aPoints[2] = {"<a&\"b\">", 8.0, true};
    const std::string sDrawing = DrawTrend(Trend, "trend");
    ExpectSound(sDrawing, "trend");
    EXPECT_THAT(ClDrawingReader(sDrawing).Texts(), Contains("<a&\"b\">"));
}

TEST(ReportDrawingStyle, HasContrastInEveryScheme) {
    for (const char* szScheme :
         {":root{", "(prefers-color-scheme:dark){", "@media print{", ".over-picture{"}) {
        SCOPED_TRACE(szScheme);
        Colours Of = ColoursBehind(szScheme);
        ASSERT_EQ(Of.size(), 16U);
        for (const char* szText : {"ink", "quiet", "warning"})
            EXPECT_GE(Contrast(Of[szText], Of["paper"]), 4.5) << szText;
        for (const char* szMark : {"mark", "limit"})
            EXPECT_GE(Contrast(Of[szMark], Of["paper"]), 3.0) << szMark;
        for (const char* szMark : {"mark", "warning", "quiet"}) // on what is shaded
            EXPECT_GE(Contrast(Of[szMark], Of["pale"]), 3.0) << szMark;
        // A dashed line is of ink and cased in paper: one of them stands out on each level.
        for (const char* szLevel :
             {"level0", "level1", "level2", "level3", "level4", "level5", "level6", "level7"})
            EXPECT_GE(
                std::max(Contrast(Of["ink"], Of[szLevel]), Contrast(Of["paper"], Of[szLevel])), 3.0)
                << szLevel;
    }
}

TEST(ReportDrawingStyle, OrdersTheLevelsByTheirLightness) {
    for (const char* szScheme : {":root{", "(prefers-color-scheme:dark){"}) {
        Colours Of = ColoursBehind(szScheme);
        for (char c = '1'; c <= '7'; ++c)
            EXPECT_GT(
                Contrast(Of[std::string("level") + c], Of["paper"]),
                1.15 * Contrast(Of[std::string("level") + static_cast<char>(c - 1)], Of["paper"]))
                << szScheme << c;
    }
}

TEST(ReportDrawingStyle, NamesNoColourButThroughItsProperties) {
    const std::string sStyle = DrawingStyle();
    const std::string sRules = sStyle.substr(sStyle.find("svg.drawing{"));
    std::size_t nColours = 0;
    for (std::size_t nAt = sRules.find('#'); nAt != std::string::npos;
         nAt = sRules.find('#', nAt + 1))
        ++nColours;
    EXPECT_EQ(nColours, 1U); // the backing of a picture
}
