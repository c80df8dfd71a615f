/// Hulls, polygons cut to a box, hatching.

#include "report/Clip.h"
#include "report/Hull.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace report;

namespace {

void ExpectPoints(const Points& aPoints, const Points& aExpected) {
    ASSERT_EQ(aPoints.size(), aExpected.size());
    for (std::size_t i = 0; i < aPoints.size(); ++i) {
        EXPECT_DOUBLE_EQ(aPoints[i].m_dX, aExpected[i].m_dX) << i;
        EXPECT_DOUBLE_EQ(aPoints[i].m_dY, aExpected[i].m_dY) << i;
    }
}

} // namespace

TEST(ReportHull, HasTheCornersAlone) {
    ExpectPoints(ConvexHull({{1.0, 1.0},
                             {0.0, 0.0},
                             {2.0, 0.0},
                             {1.0, 0.0},
                             {2.0, 2.0},
                             {0.0, 2.0},
                             {0.0, 0.0},
                             {std::nan(""), 9.0}}),
                 {{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}});
}

TEST(ReportHull, HasNoAreaWhereThePointsHaveNone) {
    EXPECT_TRUE(ConvexHull({}).empty());
    EXPECT_LT(ConvexHull({{1.0, 1.0}}).size(), 3U);
    EXPECT_LT(ConvexHull({{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}}).size(), 3U);
    EXPECT_LT(ConvexHull({{5.0, 5.0}, {5.0, 5.0}, {5.0, 5.0}}).size(), 3U);
}

// The triangle (0, 0), (4, 0), (0, 4) and the box from (1, 1) to (2, 3): its side x + y = 4 crosses
// the box at (1, 3) and (2, 2).
TEST(ReportClip, CutsAPolygonToABox) {
    const Points aCut = Clipped({{0.0, 0.0}, {4.0, 0.0}, {0.0, 4.0}}, {1.0, 1.0, 1.0, 2.0});
    double dArea = 0.0;
    for (std::size_t i = 0; i < aCut.size(); ++i) {
        const StPoint& a = aCut[i];
        const StPoint& b = aCut[(i + 1) % aCut.size()];
        dArea += 0.5 * (a.m_dX * b.m_dY - a.m_dY * b.m_dX);
        EXPECT_GE(a.m_dX, 1.0);
        EXPECT_LE(a.m_dX, 2.0);
        EXPECT_GE(a.m_dY, 1.0);
        EXPECT_LE(a.m_dY, 3.0);
    }
    EXPECT_DOUBLE_EQ(dArea, 1.5);
}

TEST(ReportClip, CutsAtEverySide) {
    ExpectPoints(
        Clipped({{-9.0, -9.0}, {9.0, -9.0}, {9.0, 9.0}, {-9.0, 9.0}}, {1.0, 2.0, 3.0, 4.0}),
        {{4.0, 2.0}, {4.0, 6.0}, {1.0, 6.0}, {1.0, 2.0}});
}

TEST(ReportClip, KeepsWhatIsInsideAndNothingOfWhatIsNot) {
    const Points aInside{{1.0, 1.0}, {2.0, 1.0}, {1.0, 2.0}};
    ExpectPoints(Clipped(aInside, {0.0, 0.0, 3.0, 3.0}), aInside);
    EXPECT_TRUE(Clipped(aInside, {5.0, 5.0, 1.0, 1.0}).empty());
    EXPECT_TRUE(Clipped({{std::nan(""), 0.0}}, {0.0, 0.0, 1.0, 1.0}).empty());
}

// On a box of 2 x 1 at (10, 20) with lines one apart: x - 10 + y - 20 = 1 and 2.
TEST(ReportClip, HatchesABox) {
    ExpectPoints(Hatching({10.0, 20.0, 2.0, 1.0}, 1.0),
                 {{10.0, 21.0}, {11.0, 20.0}, {11.0, 21.0}, {12.0, 20.0}});
}
