/// Zones of the corrected image, by the pattern of 7 x 11 dots, 39.37 pixels apart, whose first dot
/// lies at (41.9, 43.15).

#include "diagnosis/Zone.h"

#include "diagnosis/Patterns.h"

#include <gtest/gtest.h>

using namespace diagnosis;

namespace {

EZone At(double dX, double dY) {
    return ZoneOf({dX, dY}, TestSupport::PatternPlaces());
}

} // namespace

TEST(DiagnosisZone, IsInsideAmidTheDots) {
    EXPECT_EQ(At(160.0, 240.0), EZone::eInside);
    EXPECT_EQ(At(42.0, 43.3), EZone::eInside);
    EXPECT_EQ(At(160.0, 436.0), EZone::eInside);
}

TEST(DiagnosisZone, IsAtTheEdgeBeyondTheDotsToOneSide) {
    EXPECT_EQ(At(160.0, 20.0), EZone::eEdge);
    EXPECT_EQ(At(160.0, 470.0), EZone::eEdge);
    EXPECT_EQ(At(10.0, 240.0), EZone::eEdge);
    EXPECT_EQ(At(310.0, 240.0), EZone::eEdge);
}

TEST(DiagnosisZone, IsACornerBeyondThemInBoth) {
    EXPECT_EQ(At(10.0, 20.0), EZone::eCorner);
    EXPECT_EQ(At(310.0, 20.0), EZone::eCorner);
    EXPECT_EQ(At(10.0, 470.0), EZone::eCorner);
    EXPECT_EQ(At(310.0, 470.0), EZone::eCorner);
}

// From the last dot of the first column, (41.9, 397.5), to that of the second, (81.3, 436.9).
TEST(DiagnosisZone, IsAtTheEdgeWhereTheLowerCornersLackTheirDots) {
    EXPECT_EQ(At(50.0, 430.0), EZone::eEdge);
    EXPECT_EQ(At(270.0, 430.0), EZone::eEdge);
    EXPECT_EQ(At(60.0, 412.0), EZone::eInside);
    EXPECT_EQ(At(260.0, 412.0), EZone::eInside);
}
