/// The drawings of a capture: dots, residuals, distortion.

#include "report/DistortionField.h"
#include "report/DotsOverCapture.h"
#include "report/DrawingReader.h"
#include "report/ResidualVectors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace report;
using namespace TestSupport;
using testing::Contains;
using testing::HasSubstr;

namespace {

/// 16.9 x 20 millimetres, 20 units each in a panel from (46, 14) to (384, 414): a column takes 2
/// units and a line 1.
constexpr StFrame cCapture{169, 400, {10.0, 20.0}, false};

double XOf(double dColumn) {
    return 47.0 + 2.0 * dColumn;
}

double YOf(double dLine) {
    return 14.5 + dLine;
}

StDot DotAt(int nColumn, int nRow, const StPoint& At, const StPoint& Residual = {},
            bool bDoubtful = false) {
    return {{nColumn, nRow}, At, Residual, bDoubtful};
}

StCaptureView FourDots() {
    return {cCapture,
            "",
            {DotAt(1, 1, {40.0, 100.0}), DotAt(1, 2, {40.0, 140.0}), DotAt(2, 1, {60.0, 100.0}),
             DotAt(2, 2, {60.0, 141.0}, {}, true)},
            {}};
}

/// Not numbers where the path has fewer than two ends.
std::vector<double> PathOf(const ClDrawingReader& Drawing, const std::string& sClass) {
    std::vector<double> aNumbers = Numbers(Drawing.First(sClass), "d");
    if (aNumbers.size() < 4)
        aNumbers.resize(4, std::nan(""));
    return aNumbers;
}

} // namespace

// 0.56 millimetres are 11.2 units.
TEST(ReportDotsOverCapture, RingsDotsWhereTheyLie) {
    const ClDrawingReader Drawing(DrawDotsOverCapture(FourDots(), "dots"));
    const auto aRings = Drawing.OfClass("dot", "circle");
    ASSERT_EQ(aRings.size(), 5U); // and the sample of the legend
    EXPECT_DOUBLE_EQ(Number(aRings[1], "cx"), XOf(40.0));
    EXPECT_DOUBLE_EQ(Number(aRings[1], "cy"), YOf(140.0));
    EXPECT_DOUBLE_EQ(Number(aRings[1], "r"), 11.2);
    EXPECT_EQ(Tip(aRings[1]), "column 1, row 2");
}

TEST(ReportDotsOverCapture, StandsUpsideDownWhereTheFirstLineIsTheLowest) {
    StCaptureView View = FourDots();
    View.m_Frame.m_bUpward = true;
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    EXPECT_DOUBLE_EQ(Number(Drawing.First("dot"), "cy"), 413.5 - 100.0);
}

// Four lines, two rows and two columns, 11.2 short of each end.
TEST(ReportDotsOverCapture, JoinsNeighboursOfThePattern) {
    const ClDrawingReader Drawing(DrawDotsOverCapture(FourDots(), "dots"));
    const auto aEnds = PathOf(Drawing, "net");
    ASSERT_EQ(aEnds.size(), 4U * 4U);
    // From column 1, row 1 to column 2, row 1.
    EXPECT_NEAR(aEnds[0], XOf(40.0) + 11.2, 0.01);
    EXPECT_NEAR(aEnds[1], YOf(100.0), 0.01);
    EXPECT_NEAR(aEnds[2], XOf(60.0) - 11.2, 0.01);
    EXPECT_NEAR(aEnds[3], YOf(100.0), 0.01);
}

TEST(ReportDotsOverCapture, JoinsNoDotsWithoutAPlace) {
    StCaptureView View = FourDots();
    for (StDot& rDot : View.m_aDots)
        rDot.m_Place = {0, 0};
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    EXPECT_EQ(Drawing.CountOf("net"), 0U);
    EXPECT_EQ(Drawing.CountOf("dot"), 5U);
}

TEST(ReportDotsOverCapture, SaysNothingOfDoubtAboutDotsThatNobodyJudged) {
    StCaptureView View = FourDots();
    View.m_aDots[3].m_bDoubtful = false;
    EXPECT_THAT(ClDrawingReader(DrawDotsOverCapture(View, "dots")).Description(),
                HasSubstr("with 4 dots, none of them doubtful."));
    for (StDot& rDot : View.m_aDots)
        rDot.m_Place = {0, 0};
    EXPECT_THAT(ClDrawingReader(DrawDotsOverCapture(View, "dots")).Description(),
                HasSubstr("with 4 dots."));
}

TEST(ReportDotsOverCapture, MarksAndNamesDoubtfulDots) {
    const ClDrawingReader Drawing(DrawDotsOverCapture(FourDots(), "dots"));
    const auto Square = Drawing.First("doubtful");
    EXPECT_DOUBLE_EQ(Number(Square, "x") + 0.5 * Number(Square, "width"), XOf(60.0));
    EXPECT_DOUBLE_EQ(Number(Square, "y") + 0.5 * Number(Square, "height"), YOf(141.0));
    EXPECT_EQ(Drawing.CountOf("doubtful"), 2U); // and the sample of the legend
    EXPECT_THAT(Drawing.Texts(), Contains("column 2, row 2"));
    EXPECT_THAT(Drawing.Texts(), Contains("doubtful"));
    EXPECT_EQ(Drawing.Description(),
              "A capture of 169 by 400 pixels, in the proportions of the plate, "
              "with 4 dots, one of them doubtful: column 2, row 2.");
}

TEST(ReportDotsOverCapture, HasNoLegendForWhatIsNotThere) {
    StCaptureView View = FourDots();
    View.m_aDots[3].m_bDoubtful = false;
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    for (const char* szMark : {"doubtful", "missing", "refused"})
        EXPECT_EQ(Drawing.CountOf(szMark), 0U) << szMark;
}

// 30 columns from 100 on, 20 lines from 200 on: from their outer borders, half a pixel away.
TEST(ReportDotsOverCapture, BoxesWhatIsMissingAndWhatIsRefused) {
    StCaptureView View = FourDots();
    View.m_aRegions = {{ERegion::eMissing, {100.0, 200.0, 30.0, 20.0}, ""},
                       {ERegion::eRefused, {10.0, 300.0, 20.0, 40.0}, "too <small>"},
                       {ERegion::eRefused, {500.0, 300.0, 20.0, 40.0}, "outside"}};
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    const auto Missing = Drawing.First("missing");
    EXPECT_DOUBLE_EQ(Number(Missing, "x"), 46.0 + 200.0);
    EXPECT_DOUBLE_EQ(Number(Missing, "y"), 14.0 + 200.0);
    EXPECT_DOUBLE_EQ(Number(Missing, "width"), 60.0);
    EXPECT_DOUBLE_EQ(Number(Missing, "height"), 20.0);
    const auto Refused = Drawing.First("refused");
    EXPECT_EQ(Tip(Refused), "refused: too <small>");
    EXPECT_EQ(Drawing.OfClass("refused", "path").size(), 2U); // crossed out, and in the legend
    EXPECT_THAT(Drawing.Texts(), Contains("refused: too <small>"));
    EXPECT_THAT(Drawing.Description(), HasSubstr("Missing: one dot. Refused: 2 marks."));
    ExpectSound(DrawDotsOverCapture(View, "dots"), "dots");
}

// Of 30 columns and 20 lines, 10 and 5 are outside on either side.
TEST(ReportDotsOverCapture, CutsBoxesToTheCapture) {
    StCaptureView View = FourDots();
    View.m_aRegions = {{ERegion::eMissing, {-10.0, -5.0, 30.0, 20.0}, ""},
                       {ERegion::eMissing, {149.0, 385.0, 30.0, 20.0}, ""}};
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    const auto aBoxes = Drawing.OfClass("missing");
    EXPECT_NEAR(Number(aBoxes[0], "x"), 46.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[0], "y"), 14.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[0], "width"), 40.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[0], "height"), 15.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[1], "x"), 46.0 + 298.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[1], "y"), 14.0 + 385.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[1], "width"), 40.0, 0.006);
    EXPECT_NEAR(Number(aBoxes[1], "height"), 15.0, 0.006);
}

TEST(ReportDotsOverCapture, PutsThePictureBelowTheMarks) {
    StCaptureView View = FourDots();
    View.m_sPicture = "data:image/png;base64,AA==";
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    const auto Picture = Drawing.First("picture");
    EXPECT_STREQ(Picture.attribute("href").value(), "data:image/png;base64,AA==");
    EXPECT_DOUBLE_EQ(Number(Picture, "x"), 46.0);
    EXPECT_DOUBLE_EQ(Number(Picture, "height"), 400.0);
    EXPECT_STREQ(Picture.parent().attribute("class").value(), "over-picture");
    EXPECT_STREQ(Picture.previous_sibling().attribute("class").value(), "backing");
    EXPECT_EQ(Drawing.First("dot").parent(), Picture.parent());
}

TEST(ReportDotsOverCapture, TellsOfDotsThatLieOutside) {
    StCaptureView View = FourDots();
    View.m_aDots[0].m_At.m_dX = 169.0;
    View.m_aDots[1].m_At.m_dY = std::nan("");
    const ClDrawingReader Drawing(DrawDotsOverCapture(View, "dots"));
    EXPECT_EQ(Drawing.CountOf("dot"), 3U);
    EXPECT_THAT(Drawing.Texts(), Contains("2 dots lie outside and are not drawn"));
}

TEST(ReportDotsOverCapture, SaysWhereThereIsNothing) {
    EXPECT_THAT(ClDrawingReader(DrawDotsOverCapture({cCapture, "", {}, {}}, "dots")).Texts(),
                Contains("No dots were found."));
    EXPECT_THAT(ClDrawingReader(DrawDotsOverCapture({}, "dots")).Texts(),
                Contains("The capture has no size to draw it in"));
}

// A residual of 0.3 columns and -0.8 lines is 30 and 40 micrometres, 50 together. 0.9 of a
// millimetre would be 18 times as long; ten times are drawn: 3 columns and 8 lines.
TEST(ReportResidualVectors, DrawsArrowsMagnifiedByARoundNumber) {
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}, {0.3, -0.8}), DotAt(1, 2, {40.0, 140.0})};
    const ClDrawingReader Drawing(DrawResidualVectors(cCapture, aDots, "vectors"));
    const auto aArrow = PathOf(Drawing, "vector");
    EXPECT_NEAR(aArrow[0], XOf(40.0), 0.006);
    EXPECT_NEAR(aArrow[1], YOf(100.0), 0.006);
    EXPECT_NEAR(aArrow[2], XOf(43.0), 0.006);
    EXPECT_NEAR(aArrow[3], YOf(92.0), 0.006);
    EXPECT_EQ(Tip(Drawing.First("vector")),
              "column 1, row 1: 0.30 pixels in x, -0.80 in y, 50.0 \xC2\xB5m");
    EXPECT_THAT(Drawing.Texts(), Contains("Residuals are drawn 10 times as long."));
    EXPECT_THAT(Drawing.Description(), HasSubstr("10 times as long; the longest that is believed "
                                                 "stands for 50.0 micrometres"));
}

TEST(ReportResidualVectors, PointsUpwardWhereLinesDo) {
    StFrame Capture = cCapture;
    Capture.m_bUpward = true;
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}, {0.3, -0.8})};
    const auto aArrow = PathOf(ClDrawingReader(DrawResidualVectors(Capture, aDots, "v")), "vector");
    EXPECT_NEAR(aArrow[3] - aArrow[1], 8.0, 0.011);
}

// The scale may take 1.9 millimetres, ten times as long as it is, 38 units: 100 micrometres, 20
// units, are the round number below. They are 1 column and 2 lines.
TEST(ReportResidualVectors, TellsTheScale) {
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}, {0.3, -0.8})};
    const ClDrawingReader Drawing(DrawResidualVectors(cCapture, aDots, "vectors"));
    const auto aScale = Numbers(Drawing.OfClass("vector").back(), "d");
    EXPECT_NEAR(aScale[2] - aScale[0], 20.0, 0.011);
    EXPECT_THAT(Drawing.Texts(), Contains("100 \xC2\xB5m: 1.00 columns or 2.00 lines"));
}

// 2 columns are 200 micrometres, ten times that 2 millimetres: cut at 1.9, 38 units.
TEST(ReportResidualVectors, CutsDoubtfulOnesAndNamesThem) {
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}, {0.3, -0.8}),
                     DotAt(3, 1, {80.0, 100.0}, {2.0, 0.0}, true)};
    const ClDrawingReader Drawing(DrawResidualVectors(cCapture, aDots, "vectors"));
    const auto aArrow = PathOf(Drawing, "vector-wrong");
    EXPECT_NEAR(aArrow[2] - aArrow[0], 38.0, 0.011);
    EXPECT_THAT(Drawing.Texts(), Contains("column 3, row 1"));
    EXPECT_THAT(Drawing.Texts(), Contains("thick: longer than drawn"));
    EXPECT_THAT(Drawing.Texts(), Contains("Residuals are drawn 10 times as long."));
}

// From 377 on 38 units would lead to 415; the drawing ends at 400, and 3 are left beside it.
TEST(ReportResidualVectors, CutsArrowsThatLeadOutOfTheDrawing) {
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}, {0.3, -0.8}),
                     DotAt(7, 1, {165.0, 100.0}, {2.0, 0.0}, true)};
    const ClDrawingReader Drawing(DrawResidualVectors(cCapture, aDots, "vectors"));
    const auto aArrow = PathOf(Drawing, "vector-wrong");
    EXPECT_NEAR(aArrow[0], 377.0, 0.006);
    EXPECT_NEAR(aArrow[2], 397.0, 0.006);
}

TEST(ReportResidualVectors, SaysWhatAResidualIsReckonedFrom) {
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}, {0.3, -0.8})};
    const ClDrawingReader Predicted(DrawResidualVectors(cCapture, aDots, "v"));
    EXPECT_THAT(Predicted.Title(), HasSubstr("against what all others predict"));
    EXPECT_THAT(Predicted.Description(), HasSubstr("The dots in their places of the capture:"));
    EXPECT_THAT(Predicted.Description(), HasSubstr("from where the others predict a dot to"));

    StFrame Corrected = cCapture;
    Corrected.m_szWhat = "corrected image";
    const ClDrawingReader Place(DrawResidualVectors(Corrected, aDots, "v", EResidual::ePlace));
    EXPECT_THAT(Place.Title(), HasSubstr("against where it belongs"));
    EXPECT_THAT(Place.Description(), HasSubstr("in their places of the corrected image:"));
    EXPECT_THAT(Place.Description(), HasSubstr("from where a dot belongs to"));
}

TEST(ReportResidualVectors, DrawsResidualsThatAreNone) {
    const Dots aDots{DotAt(1, 1, {40.0, 100.0}), DotAt(1, 2, {40.0, 140.0}, {std::nan(""), 0.0})};
    const std::string sDrawing = DrawResidualVectors(cCapture, aDots, "vectors");
    ExpectSound(sDrawing, "vectors");
    const ClDrawingReader Drawing(sDrawing);
    EXPECT_EQ(Drawing.CountOf("point"), 2U);
    EXPECT_EQ(Drawing.CountOf("vector"), 2U); // one of no length, and the scale
    EXPECT_THAT(Drawing.Texts(), Contains("Residuals are drawn as long as they are."));
    EXPECT_THAT(ClDrawingReader(DrawResidualVectors(cCapture, {}, "v")).Texts(),
                Contains("No residuals are known."));
}

// Three by two places, 2 millimetres apart: 20 columns and 40 lines. The last one lies 3 columns to
// the right; the mean takes half a column of that. It is 2.5 columns off, 0.25 millimetres; 0.7 of
// two millimetres would be 5.6 times that, and five times are drawn: 12.5 columns off its place.
TEST(ReportDistortionField, DrawsDisplacementsMagnified) {
    StWarpGrid Grid{cCapture, 3, 2, {2.0, 2.0}, {}};
    for (const double y : {100.0, 140.0})
        for (const double x : {40.0, 60.0, 80.0})
            Grid.m_aRaw.push_back({x, y});
    Grid.m_aRaw[5].m_dX = 83.0;
    const ClDrawingReader Drawing(DrawDistortionField(Grid, "field"));
    ASSERT_EQ(Drawing.OfClass("nominal", "polyline").size(), 5U);
    ASSERT_EQ(Drawing.OfClass("actual", "polyline").size(), 5U);
    const auto aNominal = Numbers(Drawing.OfClass("nominal")[1], "points"); // the lower row
    const auto aActual = Numbers(Drawing.OfClass("actual")[1], "points");
    EXPECT_NEAR(aNominal[4], XOf(80.5), 0.006);
    EXPECT_NEAR(aActual[4], XOf(80.5 + 12.5), 0.006);
    EXPECT_NEAR(aActual[0], XOf(40.5 - 2.5), 0.006);
    EXPECT_NEAR(aActual[5], YOf(140.0), 0.006);
    EXPECT_THAT(Drawing.Description(), HasSubstr("largest displacement 0.250 mm, 4.9 pixels at 500 "
                                                 "dpi; displacements drawn 5 times as large"));
}

TEST(ReportDistortionField, LeavesLargeDisplacementsAsTheyAre) {
    StWarpGrid Grid{cCapture, 2, 2, {2.0, 2.0}, {{40, 100}, {70, 100}, {40, 140}, {60, 140}}};
    const ClDrawingReader Drawing(DrawDistortionField(Grid, "field"));
    EXPECT_THAT(Drawing.Description(), HasSubstr("displacements drawn as they are"));
}

TEST(ReportDistortionField, LeavesGapsWhereNothingIsKnown) {
    StWarpGrid Grid{cCapture, 3, 2, {2.0, 2.0}, {}};
    for (const double y : {100.0, 140.0})
        for (const double x : {40.0, 60.0, 80.0})
            Grid.m_aRaw.push_back({x, y});
    Grid.m_aRaw[1].m_dX = std::nan("");
    const ClDrawingReader Drawing(DrawDistortionField(Grid, "field"));
    EXPECT_EQ(Drawing.OfClass("nominal", "polyline").size(), 5U);
    EXPECT_EQ(Drawing.OfClass("actual", "polyline").size(), 3U); // no upper row, no middle column
}

TEST(ReportDistortionField, SaysWhereThereIsNoGrid) {
    const StWarpGrid None{cCapture, 2, 2, {2.0, 2.0}, Points(4, {std::nan(""), 0.0})};
    for (const StWarpGrid& Grid : {None, StWarpGrid{cCapture, 2, 2, {2.0, 2.0}, Points(3)},
                                   StWarpGrid{cCapture, 1, 4, {2.0, 2.0}, Points(4)},
                                   StWarpGrid{cCapture, 2, 2, {0.0, 2.0}, Points(4)},
                                   StWarpGrid{cCapture, -2, -2, {2.0, 2.0}, Points(4)}})
        EXPECT_THAT(ClDrawingReader(DrawDistortionField(Grid, "field")).Texts(),
                    Contains("No grid of the corrected image is known"));
}
