/// The drawings of the corrected image: expected error, coverage, pairs that fail.

#include "report/Coverage.h"
#include "report/DrawingReader.h"
#include "report/EftsPairs.h"
#include "report/ErrorMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace report;
using namespace TestSupport;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int cnColumns = diagnosis::StErrorMap::cnColumns;
constexpr int cnRows = diagnosis::StErrorMap::cnRows;

/// A map of 248 x 368 pixels, which the drawing shows a unit for each, from (8, 8) on.
StErrorView EvenErrors(double dError) {
    StErrorView View;
    View.m_Errors.m_nWidth = 248;
    View.m_Errors.m_nHeight = 368;
    View.m_Errors.m_aErrors.assign(static_cast<std::size_t>(cnColumns) * cnRows, dError);
    return View;
}

double& ErrorAt(StErrorView& rView, int nColumn, int nRow) {
    return rView.m_Errors.m_aErrors.at(static_cast<std::size_t>(nRow * cnColumns + nColumn));
}

/// Rectangles of a class but for the one of the legend.
std::size_t CellsOf(const ClDrawingReader& Drawing, const char* szLevel) {
    return Drawing.CountOf(szLevel) - 1;
}

/// 20 x 30 millimetres at 10 pixels each. The room for pairs is 340 x 420 from (30, 14): 1.4
/// units a pixel, 30 units left on either side.
constexpr StFrame cImage{200, 300, {10.0, 10.0}, false};

StEftsPairs ThreeDots() {
    StEftsPairs Pairs;
    Pairs.m_Corrected = cImage;
    Pairs.m_aDots = {{{1, 1}, {50.0, 50.0}, {}, false},
                     {{2, 1}, {90.0, 50.0}, {}, false},
                     {{1, 2}, {50.0, 90.0}, {}, false}};
    Pairs.m_nAll = 3;
    Pairs.m_dPercent = 100.0;
    return Pairs;
}

} // namespace

TEST(ReportErrorMap, PutsErrorsIntoClasses) {
    const std::vector<std::pair<double, const char*>> aClasses{
        {0.0, "level0"},  {0.049, "level0"}, {0.05, "level1"}, {0.1, "level2"},
        {0.2, "level3"},  {0.35, "level4"},  {0.5, "level5"},  {1.0, "level6"},
        {1.99, "level6"}, {2.0, "level7"},   {77.0, "level7"}};
    for (const auto& [dError, szLevel] : aClasses) {
        const ClDrawingReader Drawing(DrawErrorMap(EvenErrors(dError), "map"));
        EXPECT_EQ(CellsOf(Drawing, szLevel), static_cast<std::size_t>(cnRows)) << dError;
    }
}

// The cell of column 2, row 3: columns are 6.2 units apart, rows 368 / 60.
TEST(ReportErrorMap, DrawsACellHalfTheWayToItsNeighbours) {
    StErrorView View = EvenErrors(0.12);
    ErrorAt(View, 2, 3) = 0.7;
    const ClDrawingReader Drawing(DrawErrorMap(View, "map"));
    const auto Cell = Drawing.First("level5");
    EXPECT_NEAR(Number(Cell, "x"), 8.0 + 1.5 * 6.2, 0.006);
    EXPECT_NEAR(Number(Cell, "width"), 6.2, 0.006);
    EXPECT_NEAR(Number(Cell, "y"), 8.0 + 2.5 * 368.0 / 60.0, 0.006);
    EXPECT_NEAR(Number(Cell, "height"), 368.0 / 60.0, 0.006);
    // Its row is in three parts; its four sides are the contour.
    EXPECT_EQ(CellsOf(Drawing, "level2"), static_cast<std::size_t>(cnRows) + 1);
    EXPECT_EQ(Numbers(Drawing.First("contour"), "d").size(), 4U * 4U);
}

TEST(ReportErrorMap, StandsUpsideDownWhereTheFirstLineIsTheLowest) {
    StErrorView View = EvenErrors(0.12);
    View.m_bUpward = true;
    ErrorAt(View, 0, 0) = 0.7;
    const ClDrawingReader Drawing(DrawErrorMap(View, "map"));
    const auto Cell = Drawing.First("level5");
    EXPECT_NEAR(Number(Cell, "x"), 8.0, 0.006);
    EXPECT_NEAR(Number(Cell, "y") + Number(Cell, "height"), 376.0, 0.006);
    EXPECT_GT(Number(Drawing.Text("0.70"), "y"), 300.0);
}

TEST(ReportErrorMap, TellsNumbersAtCornersSidesAndMiddle) {
    StErrorView View = EvenErrors(0.12);
    double dError = 1.01;
    for (const int nRow : {0, 30, 60})
        for (const int nColumn : {0, 20, 40}) {
            ErrorAt(View, nColumn, nRow) = dError;
            dError += 0.01;
        }
    const ClDrawingReader Drawing(DrawErrorMap(View, "map"));
    EXPECT_EQ(Drawing.CountOf("plate"), 9U);
    for (const char* szNumber : {"1.01", "1.02", "1.03", "1.04", "1.05", "1.06", "1.07", "1.08"})
        EXPECT_THAT(Drawing.Texts(), Contains(szNumber));
    EXPECT_NEAR(Number(Drawing.Text("1.05"), "x"), 132.0, 0.006);
    EXPECT_NEAR(Number(Drawing.Text("1.05"), "y"), 196.0, 0.006);
    EXPECT_LT(Number(Drawing.Text("1.01"), "x"), 40.0);
    EXPECT_GT(Number(Drawing.Text("1.09"), "x"), 220.0);
}

// A pixel is a unit, its middle half of one from its border.
TEST(ReportErrorMap, DrawsTheHullOfTheDots) {
    StErrorView View = EvenErrors(0.12);
    View.m_aDots = {{10.0, 10.0}, {200.0, 10.0}, {100.0, 50.0}, {200.0, 300.0}, {10.0, 300.0}};
    const ClDrawingReader Drawing(DrawErrorMap(View, "map"));
    const auto aHull = Numbers(Drawing.OfClass("hull", "polygon").at(0), "points");
    EXPECT_THAT(aHull, testing::ElementsAre(18.5, 18.5, 208.5, 18.5, 208.5, 308.5, 18.5, 308.5));
    EXPECT_EQ(Numbers(Drawing.First("casing"), "points"), aHull); // below it, wider
    View.m_aDots.resize(2);
    EXPECT_TRUE(ClDrawingReader(DrawErrorMap(View, "map")).OfClass("hull", "polygon").empty());
}

TEST(ReportErrorMap, TellsTheMeansOfItsZones) {
    StErrorView View = EvenErrors(0.12);
    View.m_Errors.m_dInside = 0.04;
    View.m_Errors.m_dEdge = 0.13;
    View.m_Errors.m_dCorner = 123.0;
    const ClDrawingReader Drawing(DrawErrorMap(View, "map"));
    EXPECT_THAT(Drawing.Description(),
                HasSubstr("amid the dots 0.04, beyond them to one side 0.13, in the corners beyond "
                          "them > 99"));
    for (const char* szNumber : {"0.04", "0.13", "> 99"})
        EXPECT_THAT(Drawing.Texts(), Contains(szNumber));
}

TEST(ReportErrorMap, SaysWhereNothingIsKnown) {
    StErrorView View = EvenErrors(0.12);
    View.m_Errors.m_aErrors.pop_back();
    for (const StErrorView& Map : {StErrorView{}, View})
        EXPECT_THAT(ClDrawingReader(DrawErrorMap(Map, "map")).Texts(),
                    Contains("No expected error is known"));
    const ClDrawingReader Drawing(DrawErrorMap(EvenErrors(std::nan("")), "map"));
    EXPECT_THAT(Drawing.Texts(), Contains("none"));
    EXPECT_EQ(Drawing.CountOf("unknown"), static_cast<std::size_t>(cnRows));
}

TEST(ReportCoverage, TellsTheShareRoundedDown) {
    const Points aHalf{{-10.0, -10.0}, {99.5, -10.0}, {99.5, 400.0}, {-10.0, 400.0}};
    const ClDrawingReader Drawing(DrawCoverage({cImage, aHalf, 99.97}, "share"));
    EXPECT_THAT(Drawing.Texts(), Contains("99.9 %"));
    EXPECT_THAT(Drawing.Description(),
                HasSubstr("covers 99.9 percent of the corrected image. What lies beyond it"));
    EXPECT_THAT(Drawing.Texts(), Contains("beyond the capture"));
}

// The capture has the left half of the image.
TEST(ReportCoverage, ShadesWhatIsCoveredAndHatchesTheRest) {
    const Points aHalf{{-10.0, -10.0}, {99.5, -10.0}, {99.5, 310.0}, {-10.0, 310.0}};
    const ClDrawingReader Drawing(DrawCoverage({cImage, aHalf, 50.0}, "share"));
    const auto Frame = Drawing.First("frame");
    const auto aCovered = Numbers(Drawing.First("covered"), "points");
    double dLeft = 1e9;
    double dRight = 0.0;
    for (std::size_t i = 0; i < aCovered.size(); i += 2) {
        dLeft = std::min(dLeft, aCovered[i]);
        dRight = std::max(dRight, aCovered[i]);
    }
    EXPECT_NEAR(dLeft, Number(Frame, "x"), 0.011);
    EXPECT_NEAR(dRight, Number(Frame, "x") + 0.5 * Number(Frame, "width"), 0.011);
    // Below the shade, so that it shows beside it alone.
    const auto aAll = Drawing.All();
    const auto place = [&](const char* szClass) {
        return std::find(aAll.begin(), aAll.end(), Drawing.First(szClass)) - aAll.begin();
    };
    EXPECT_LT(place("uncovered"), place("covered"));
}

TEST(ReportCoverage, TellsThatAllIsCovered) {
    const Points aAll{{-10.0, -10.0}, {250.0, -10.0}, {250.0, 400.0}, {-10.0, 400.0}};
    const ClDrawingReader Drawing(DrawCoverage({cImage, aAll, 100.0}, "share"));
    EXPECT_THAT(Drawing.Texts(), Contains("100.0 %"));
    EXPECT_THAT(Drawing.Texts(), Not(Contains("beyond the capture")));
    EXPECT_EQ(Drawing.Description(), "The capture covers the whole of the corrected image.");
}

TEST(ReportCoverage, SaysWhatIsNotKnown) {
    EXPECT_THAT(ClDrawingReader(DrawCoverage({cImage, {}, std::nan("")}, "share")).Texts(),
                Contains("not known"));
    EXPECT_THAT(ClDrawingReader(DrawCoverage({}, "share")).Texts(),
                Contains("The corrected image has no size to draw it in"));
}

TEST(ReportEftsPairs, HaveALimitByTheirDistance) {
    EXPECT_DOUBLE_EQ(EftsLimit(0.0), 0.35);
    EXPECT_DOUBLE_EQ(EftsLimit(34.99), 0.35);
    EXPECT_DOUBLE_EQ(EftsLimit(35.0), 0.35);
    EXPECT_DOUBLE_EQ(EftsLimit(200.0), 2.0);
}

TEST(ReportEftsPairs, AreJoinedAndTold) {
    StEftsPairs Pairs = ThreeDots();
    Pairs.m_aFailing = {{0, 1, 40.0, 40.55, 0.4}};
    Pairs.m_dPercent = 200.0 / 3.0;
    const ClDrawingReader Drawing(DrawEftsPairs(Pairs, "pairs"));
    const auto Line = Drawing.First("pair");
    EXPECT_NEAR(Number(Line, "x1"), 60.0 + 1.4 * 50.5, 0.006);
    EXPECT_NEAR(Number(Line, "y1"), 14.0 + 1.4 * 50.5, 0.006);
    EXPECT_NEAR(Number(Line, "x2"), 60.0 + 1.4 * 90.5, 0.006);
    EXPECT_EQ(Tip(Line), "column 1, row 1 to column 2, row 1: 40.55 pixels apart, 40.00 expected, "
                         "error 0.55, limit 0.40");
    EXPECT_EQ(Drawing.Description(),
              "One distance of 3 is beyond the limits; 66.67 percent are within.");
}

TEST(ReportEftsPairs, AreAllWithinWhereNoneFails) {
    const ClDrawingReader Drawing(DrawEftsPairs(ThreeDots(), "pairs"));
    EXPECT_EQ(Drawing.CountOf("pair"), 0U);
    EXPECT_EQ(Drawing.CountOf("dot"), 4U); // and the sample of the legend
    EXPECT_EQ(Drawing.Description(),
              "All 3 distances between the dots are within the limits: 100.00 percent.");
}

// 60 pairs, the n-th off by 1 + n / 100 of its limit: the first ten are not drawn.
TEST(ReportEftsPairs, AreDrawnUpToFiftyTheWorstOnTop) {
    StEftsPairs Pairs = ThreeDots();
    for (int n = 0; n < 60; ++n)
        Pairs.m_aFailing.push_back({0, 1, 40.0, 40.0 - 0.4 * (1.0 + n / 100.0), 0.4});
    const ClDrawingReader Drawing(DrawEftsPairs(Pairs, "pairs"));
    const auto aLines = Drawing.OfClass("pair");
    ASSERT_EQ(aLines.size(), 51U); // and the sample of the legend
    EXPECT_THAT(Tip(aLines[0]), HasSubstr("error -0.44,"));
    EXPECT_THAT(Tip(aLines[49]), HasSubstr("error -0.64,")); // 0.4 x 1.59
    EXPECT_THAT(Drawing.Description(), HasSubstr("60 distances of 3 are beyond the limits"));
    EXPECT_THAT(Drawing.Description(), HasSubstr("Drawn are the worst 50."));
    EXPECT_THAT(Drawing.Texts(), Contains("column 1, row 1: 60 pairs fail"));
}

TEST(ReportEftsPairs, AreNotDrawnToDotsThatAreNone) {
    StEftsPairs Pairs = ThreeDots();
    Pairs.m_aDots[2].m_At.m_dX = std::nan("");
    Pairs.m_aFailing = {{0, 2, 40.0, 41.0, 0.4}, {0, 7, 40.0, 41.0, 0.4}, {0, 1, 40.0, 41.0, 0.4}};
    const ClDrawingReader Drawing(DrawEftsPairs(Pairs, "pairs"));
    EXPECT_EQ(Drawing.CountOf("pair"), 2U);
    EXPECT_THAT(Drawing.Description(), HasSubstr("3 distances of 3 are beyond the limits"));
    EXPECT_THAT(Drawing.Description(), HasSubstr("Drawn is the worst one."));
}

TEST(ReportEftsPairs, SayWhereThereAreNone) {
    StEftsPairs Pairs;
    EXPECT_THAT(ClDrawingReader(DrawEftsPairs(Pairs, "pairs")).Texts(),
                Contains("The corrected image has no size to draw it in"));
    Pairs.m_Corrected = cImage;
    const ClDrawingReader Drawing(DrawEftsPairs(Pairs, "pairs"));
    EXPECT_THAT(Drawing.Texts(), Contains("No dots were found."));
    EXPECT_EQ(Drawing.Description(), "No distances were judged.");
}
