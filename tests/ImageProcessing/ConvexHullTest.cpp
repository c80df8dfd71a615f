#include "ImageProcessing/ConvexHull.h"

#include "ImageProcessing/NaivePolygon.h"

namespace {

using namespace TestSupport;

XY WithoutPointsOnLines(const XY& aXY) {
    Polygon_t polygon = PolygonOf(aXY);
    ConvexHull::DropPointsOnLines(polygon);
    return Corners(polygon);
}

TEST(ConvexHull, TellsTheTurnOfAWalk) {
    EXPECT_EQ(ConvexHull::Cross({0, 0}, {2, 0}, {2, 3}), 6.0);
    EXPECT_EQ(ConvexHull::Cross({0, 0}, {0, 2}, {3, 2}), -6.0);
    EXPECT_EQ(ConvexHull::Cross({1, 1}, {2, 2}, {5, 5}), 0.0);
}

/// Of points in the order of a scan.
XY ChainsOver(const XY& aXY) {
    Polygon_t hull;
    ConvexHull::BuildChains(PolygonOf(aXY), hull,
                            [](const ClVector& a, const ClVector& b, const ClVector& c) {
                                return ConvexHull::Cross(a, b, c) > 0.0;
                            });
    return Corners(hull);
}

TEST(ConvexHull, ChainsGoRoundAndCloseOnce) {
    EXPECT_EQ(ChainsOver({{0, 0}, {4, 0}, {2, 2}, {0, 4}, {4, 4}}),
              XY({{0, 0}, {4, 0}, {4, 4}, {0, 4}}));
    EXPECT_EQ(ChainsOver({{0, 0}, {1, 1}, {2, 2}}), XY({{0, 0}, {2, 2}}));
    EXPECT_EQ(ChainsOver({{3, 5}}), XY({{3, 5}}));
    EXPECT_EQ(ChainsOver({}), XY());
}

TEST(ConvexHull, DropsTheCornersOnStraightLines) {
    EXPECT_EQ(
        WithoutPointsOnLines({{0, 0}, {2, 0}, {4, 0}, {4, 4}, {2, 4}, {1, 4}, {0, 4}, {0, 1}}),
        XY({{0, 0}, {4, 0}, {4, 4}, {0, 4}}));
    // the first and the last corner too
    EXPECT_EQ(WithoutPointsOnLines({{2, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}, {1, 0}}),
              XY({{4, 0}, {4, 4}, {0, 4}, {0, 0}}));
}

TEST(ConvexHull, KeepsCornersThatTurn) {
    const XY aTriangle = {{0, 0}, {4, 1}, {1, 5}};
    EXPECT_EQ(WithoutPointsOnLines(aTriangle), aTriangle);
}

TEST(ConvexHull, DropsPointsThatStandTwice) {
    EXPECT_EQ(WithoutPointsOnLines({{0, 0}, {0, 0}, {4, 1}, {4, 1}, {1, 5}, {0, 0}}),
              XY({{0, 0}, {4, 1}, {1, 5}}));
}

TEST(ConvexHull, KeepsTheEndsOfALine) {
    EXPECT_EQ(WithoutPointsOnLines({{0, 0}, {1, 1}, {2, 2}, {3, 3}}), XY({{0, 0}, {3, 3}}));
    EXPECT_EQ(WithoutPointsOnLines({{0, 0}, {3, 0}, {1, 0}}), XY({{0, 0}, {3, 0}}));
}

TEST(ConvexHull, LeavesFewerThanThreeCornersAsTheyAre) {
    for (const XY& aXY : {XY{}, XY{{1, 1}}, XY{{1, 1}, {1, 1}}, XY{{0, 0}, {1, 2}}})
        EXPECT_EQ(WithoutPointsOnLines(aXY), aXY);
}

} // namespace
