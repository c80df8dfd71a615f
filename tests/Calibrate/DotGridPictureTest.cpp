// The grid as a picture, pixel by pixel, and as lines of the log.

#include "Calibrate/DotGrids.h"
#include "support/Images.h"
#include "support/LogCapture.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <limits>

using namespace TestSupport;

namespace {

ClTestImage Drawn(const ClTestGrid& rGrid, int nWidth, int nHeight, int nPlanes = 1) {
    ClTestImage Image;
    Image.NewWithType(ClImage::eUInt8, nWidth, nHeight, nPlanes, 0, 0);
    Image = static_cast<unsigned char>(99);
    ClQK7().GridToDebugImage(rGrid, Image);
    return Image;
}

bool IsBlank(const ClTestImage& rImage) {
    for (const auto& rRow : Pixels(rImage))
        for (const int nValue : rRow)
            if (nValue != 0)
                return false;
    return true;
}

} // namespace

TEST(GridToDebugImage, SetsThePixelOfEveryDirectionThatHasANeighbour) {
    ClTestGrid Grid({{2.9, 1.2}, {50, 1}, {2, 90}, {-40, 60}});
    for (unsigned long n = 1; n < 4; ++n)
        Grid(0).AddDot(&Grid(n), false);
    EXPECT_EQ(Pixels(Drawn(Grid, 5, 4)),
              Rows({{0, 0, 0, 0, 0}, {0, 0, 64, 128, 0}, {0, 128, 128, 0, 0}, {0, 0, 0, 0, 0}}));
}

TEST(GridToDebugImage, DrawsEachOfTheEightDirectionsAtItsPixel) {
    const int anX[] = {1, 1, 0, -1, -1, -1, 0, 1};
    const int anY[] = {0, 1, 1, 1, 0, -1, -1, -1};
    for (unsigned long k = 0; k < 8; ++k) {
        ClTestGrid Grid({{1, 1}, {1.0 + 100 * anX[k], 1.0 + 100 * anY[k]}});
        Grid(0).AddDot(&Grid(1), false);
        Rows aExpected(3, {0, 0, 0});
        aExpected[1][1] = 64;
        aExpected[static_cast<std::size_t>(1 + anY[k])][static_cast<std::size_t>(1 + anX[k])] = 128;
        EXPECT_EQ(Pixels(Drawn(Grid, 3, 3)), aExpected) << k;
    }
}

TEST(GridToDebugImage, TakesNoNeighbourExactlyBetweenTwoDirections) {
    ClTestGrid Grid({{1, 1}});
    Grid.Add(1 + 1024, 1 + 1024 * 0.41421356237309503);
    Grid(0).AddDot(&Grid(1), false);
    ASSERT_EQ(Grid(0).GetNeighbourDirection(0), 8);
    EXPECT_EQ(Pixels(Drawn(Grid, 3, 3)), Rows({{0, 0, 0}, {0, 64, 0}, {0, 0, 0}}));
}

TEST(GridToDebugImage, DrawsDotsOneOverTheOther) {
    ClTestGrid Grid({{1, 1}, {2, 1}});
    Grid(0).AddDot(&Grid(1), true);
    // The second dot takes the pixel of the first for its left direction, and leaves its own bit
    // on what the first has drawn.
    EXPECT_EQ(Pixels(Drawn(Grid, 4, 3)), Rows({{0, 0, 0, 0}, {0, 128, 192, 0}, {0, 0, 0, 0}}));
}

TEST(GridToDebugImage, DrawsDotsAtLeastAPixelInsideTheImage) {
    for (const ClVector& rPlace : {ClVector(1, 1), ClVector(2.99, 1), ClVector(1, 1.99)})
        EXPECT_FALSE(IsBlank(Drawn(ClTestGrid({rPlace}), 4, 3))) << rPlace.x << ", " << rPlace.y;
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    for (const ClVector& rPlace :
         {ClVector(0.99, 1), ClVector(3, 1), ClVector(1, 0.99), ClVector(1, 2), ClVector(-5, 1),
          ClVector(1e300, 1), ClVector(1, -1e300), ClVector(dNaN, 1), ClVector(1, dNaN)})
        EXPECT_TRUE(IsBlank(Drawn(ClTestGrid({rPlace}), 4, 3))) << rPlace.x << ", " << rPlace.y;
    EXPECT_TRUE(IsBlank(Drawn(ClTestGrid({{1, 1}}), 2, 2)));
}

TEST(GridToDebugImage, PassesInvalidDotsOver) {
    ClTestGrid Grid({{1, 1}});
    Grid(0).m_bValid = false;
    EXPECT_TRUE(IsBlank(Drawn(Grid, 3, 3)));
}

TEST(GridToDebugImage, DrawsIntoAllPlanes) {
    ClTestGrid Grid({{1, 1}, {9, 1}});
    Grid(0).AddDot(&Grid(1), false);
    EXPECT_EQ(Pixels(Drawn(Grid, 3, 3, 2)),
              Rows({{0, 0, 0, 0, 0, 0}, {0, 0, 64, 64, 128, 128}, {0, 0, 0, 0, 0, 0}}));
}

TEST(GridToDebugImage, RefusesOtherTypesThanBytes) {
    for (const auto eType : {ClImage::eUInt16, ClImage::eInt8, ClImage::eDouble64}) {
        ClTestImage Image;
        Image.NewWithType(eType, 4, 4, 1, 0, 0);
        EXPECT_THROWS(ClQK7().GridToDebugImage(ClTestGrid(), Image), ClException, -101,
                      "Image Type is not the assigned type");
    }
    ClTestImage Empty;
    EXPECT_THROWS(ClQK7().GridToDebugImage(ClTestGrid(), Empty), ClException, -101,
                  "Image Type is not the assigned type");
}

TEST(TraceGrid, LogsALineForEachDot) {
    ClTestGrid Grid({{1.5, 2}, {3, -4}});
    Grid(0).AddDot(&Grid(1), false);
    Grid(1).m_nStatus = ClDot::eTooFewNeighbours;
    const ClLogCapture Log;
    ClQK7().TraceGrid(Grid);
    EXPECT_EQ(Log.Texts(7), (std::vector<std::string>{
                                "ClIpCalibrateGeometricBuildRefPointsBase::TraceGrid() Enter",
                                "0: (1.500, 2.000) status 0, 1 neighbours",
                                "1: (3.000, -4.000) status 5, 0 neighbours",
                                "ClIpCalibrateGeometricBuildRefPointsBase::TraceGrid() Leaving"}));
}

TEST(LogGrid, LogsShapesAndNeighbours) {
    ClTestGrid Grid({{1.5, 2}, {3, 4}, {5, 6}});
    Grid(0).AddDot(&Grid(2), false);
    Grid(0).AddDot(&Grid(1), false);
    Grid(0).m_dEccentricity = 0.25;
    Grid(0).m_dArea = 300;
    const ClLogCapture Log;
    ClQK7().LogGrid(Grid);
    EXPECT_EQ(Log.Texts(7),
              (std::vector<std::string>{
                  "ClIpCalibrateGeometricBuildRefPointsBase::LogGrid() Enter",
                  "0: (1.500, 2.000) status 0, eccentricity 0.250, area 300, neighbours 2 1",
                  "1: (3.000, 4.000) status 0, eccentricity -1.000, area -1, neighbours",
                  "2: (5.000, 6.000) status 0, eccentricity -1.000, area -1, neighbours",
                  "ClIpCalibrateGeometricBuildRefPointsBase::LogGrid() Leaving"}));
}

TEST(LogGrid, CutsALongListOfNeighbours) {
    ClTestGrid Grid;
    Grid.Add(0, 0);
    for (int i = 1; i <= 300; ++i)
        Grid(0).AddDot(&Grid.Add(i, 1e308), false);
    const ClLogCapture Log;
    ClQK7().LogGrid(Grid);
    ASSERT_EQ(Log.Lines().size(), 303u);
    EXPECT_EQ(Log.Texts(7)[1].find("0: (0.000, 0.000) status 0, "), 0u);
    EXPECT_NE(Log.Texts(7)[1].find(" 1 2 3 "), std::string::npos);
    EXPECT_LT(Log.Texts(7)[1].size(), 300u);
}
