// The outline of polygons, and the flood inside it.

#include "ImageProcessing/IpRenderPolygon.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/NaivePolygon.h"
#include "RegionShapes.h"
#include "Tools/ProfileTimer.h"
#include "support/Throws.h"

#include <climits>

namespace {

using namespace TestSupport;

// Lines

Rows DrawnLine(int nWidth, int nHeight, long nX1, long nY1, long nX2, long nY2) {
    ClTestImage image = BlankImage(ClImage::eUInt8, nWidth, nHeight);
    ClIpRenderPolygon::DrawLine(image, nX1, nY1, nX2, nY2, 1);
    return Pixels(image);
}

/// Step by step with the error sum: the other axis follows when the sum has reached a half.
Rows BresenhamLine(int nWidth, int nHeight, long nX1, long nY1, long nX2, long nY2) {
    Rows aRows(static_cast<std::size_t>(nHeight),
               std::vector<int>(static_cast<std::size_t>(nWidth)));
    const long dx = std::abs(nX2 - nX1);
    const long dy = std::abs(nY2 - nY1);
    const long nLong = std::max(dx, dy);
    const long nShort = std::min(dx, dy);
    long x = nX1;
    long y = nY1;
    long nError = 0;
    for (long i = 0; i <= nLong; ++i) {
        if (x >= 0 && x < nWidth && y >= 0 && y < nHeight)
            aRows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = 1;
        nError += 2 * nShort;
        const bool bAside = nError >= nLong && nLong > 0;
        nError -= bAside ? 2 * nLong : 0;
        x += dx >= dy || bAside ? (nX2 > nX1) - (nX2 < nX1) : 0;
        y += dx < dy || bAside ? (nY2 > nY1) - (nY2 < nY1) : 0;
    }
    return aRows;
}

TEST(DrawLine, TakesTheNearestPixels) {
    EXPECT_EQ(DrawnLine(7, 3, 0, 0, 6, 2), Rows({{1, 1, 0, 0, 0, 0, 0}, //
                                                 {0, 0, 1, 1, 1, 0, 0},
                                                 {0, 0, 0, 0, 0, 1, 1}}));
    EXPECT_EQ(DrawnLine(2, 4, 1, 3, 0, 0), Rows({{1, 0}, {1, 0}, {0, 1}, {0, 1}}));
    EXPECT_EQ(DrawnLine(3, 1, 1, 0, 1, 0), Rows({{0, 1, 0}}));
}

TEST(DrawLine, StepsByBresenhamInEveryDirection) {
    for (int x1 : {0, 3, 8})
        for (int y1 : {0, 4, 6})
            for (int x2 = 0; x2 < 9; ++x2)
                for (int y2 = 0; y2 < 7; ++y2)
                    EXPECT_EQ(DrawnLine(9, 7, x1, y1, x2, y2), BresenhamLine(9, 7, x1, y1, x2, y2))
                        << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2;
}

TEST(DrawLine, SkipsPixelsOutside) {
    for (int x1 : {-20, -1, 5, 30})
        for (int y1 : {-13, 2, 7, 25})
            for (int x2 : {-31, 4, 9, 17})
                for (int y2 : {-2, 0, 8, 40})
                    EXPECT_EQ(DrawnLine(9, 8, x1, y1, x2, y2), BresenhamLine(9, 8, x1, y1, x2, y2))
                        << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2;
}

TEST(DrawLine, TakesTheLongestLinesThereAre) {
    const Rows aDiagonal = Rows({{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}});
    EXPECT_EQ(DrawnLine(4, 4, LONG_MIN, LONG_MIN, LONG_MAX, LONG_MAX), aDiagonal);
    EXPECT_EQ(DrawnLine(4, 4, LONG_MAX, LONG_MAX, LONG_MIN, LONG_MIN), aDiagonal);
    EXPECT_EQ(DrawnLine(3, 2, LONG_MIN, 1, LONG_MAX, 1), Rows({{0, 0, 0}, {1, 1, 1}}));
    EXPECT_EQ(DrawnLine(2, 2, 1, LONG_MAX, 1, LONG_MIN), Rows({{0, 1}, {0, 1}}));
    EXPECT_EQ(DrawnLine(2, 2, LONG_MAX, 0, LONG_MAX, 0), Rows({{0, 0}, {0, 0}}));
    EXPECT_EQ(DrawnLine(2, 2, LONG_MIN, 0, LONG_MIN, LONG_MAX), Rows({{0, 0}, {0, 0}}));
}

TEST(DrawLine, RefusesOtherImages) {
    for (unsigned char nType : caPixelTypes) {
        ClTestImage image = FlatImage(nType, 3, 3, 1, 0.0);
        if (nType != ClImage::eUInt8)
            EXPECT_THROWS(ClIpRenderPolygon::DrawLine(image, 0, 0, 2, 2, 1), ClException, -101,
                          "Image Type is not the assigned type");
    }
    ClTestImage colour = FlatImage(ClImage::eUInt8, 3, 3, 3, 0.0);
    EXPECT_THROWS(ClIpRenderPolygon::DrawLine(colour, 0, 0, 2, 2, 1), ClException, -101,
                  "Image Type is not the assigned type");
}

// Outlines

Rows Drawn(Polygon_t& rPolygon, int nWidth, int nHeight, bool bFill) {
    ClImage out;
    ClIpRenderPolygon render(nWidth, nHeight, 1, 1);
    render.m_pPolygon = &rPolygon;
    render.m_pOutImage = &out;
    render.m_nForeground = 1;
    render.m_nBackground = 0;
    render.m_bRender = false;
    render.m_bFill = bFill;
    EXPECT_EQ(render.Apply(), 0);
    return Pixels(out);
}

TEST(IpRenderPolygonOutline, DrawsEveryEdgeAndTheClosingOne) {
    for (unsigned nSeed = 1; nSeed < 30; ++nSeed) {
        Polygon_t polygon = RandomPolygon(2 + nSeed % 5, 17, 13, nSeed % 2 == 0, nSeed);
        ClTestImage expected = BlankImage(ClImage::eUInt8, 17, 13);
        ForEachEdge(polygon, [&](const ClVector& a, const ClVector& b) {
            ClIpRenderPolygon::DrawLine(expected, static_cast<long>(a.x), static_cast<long>(a.y),
                                        static_cast<long>(b.x), static_cast<long>(b.y), 1);
        });
        EXPECT_EQ(Drawn(polygon, 17, 13, false), Pixels(expected));
    }
}

TEST(IpRenderPolygonOutline, DrawsNoMoreThanTheOutlineWithoutFilling) {
    Polygon_t polygon = PolygonOf({{1, 1}, {4, 1}, {4, 4}, {1, 4}});
    for (bool bRender : {false, true}) {
        ClImage out;
        ClIpRenderPolygon render(6, 6, 1, 1);
        render.m_pPolygon = &polygon;
        render.m_pOutImage = &out;
        render.m_bFill = false;
        render.m_bRender = bRender;
        EXPECT_EQ(render.Apply(), 0);
        EXPECT_EQ(Pixels(out)[2], std::vector<int>({255, 0, 255, 255, 0, 255}));
    }
}

/// The outline and all that a walk from outside, step by step beside the pixels, does not reach.
Rows Enclosed(const Rows& aOutline) {
    const std::size_t nWidth = aOutline[0].size();
    Rows aFrame(aOutline.size() + 2, std::vector<int>(nWidth + 2, 0));
    for (std::size_t y = 0; y < aOutline.size(); ++y)
        std::copy(aOutline[y].begin(), aOutline[y].end(), aFrame[y + 1].begin() + 1);
    NaiveFill(aFrame, 0, 0, 2);
    Rows aEnclosed = aOutline;
    for (std::size_t y = 0; y < aOutline.size(); ++y)
        for (std::size_t x = 0; x < nWidth; ++x)
            aEnclosed[y][x] = aFrame[y + 1][x + 1] == 2 ? 0 : 1;
    return aEnclosed;
}

TEST(IpRenderPolygonOutline, FloodsTheInsideOfAConvexPolygon) {
    for (unsigned nSeed = 1; nSeed < 60; ++nSeed) {
        const Polygon_t points = RandomPolygon(25, 31, 27, nSeed % 2 == 0, nSeed);
        Polygon_t hull = WrappedHull(points);
        EXPECT_EQ(Drawn(hull, 31, 27, true), Enclosed(Drawn(hull, 31, 27, false))) << nSeed;
    }
}

TEST(IpRenderPolygonOutline, FloodsTheCellOfTheFirstPixelInsideAlone) {
    // an hourglass: two triangles that meet at their points
    Polygon_t polygon = PolygonOf({{0, 0}, {8, 0}, {0, 8}, {8, 8}});
    const Rows aRows = Drawn(polygon, 9, 9, true);
    EXPECT_EQ(aRows[0], std::vector<int>({1, 1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(aRows[2], std::vector<int>({0, 0, 1, 1, 1, 1, 1, 0, 0}));
    EXPECT_EQ(aRows[6], std::vector<int>({0, 0, 1, 0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(aRows[8], std::vector<int>({1, 1, 1, 1, 1, 1, 1, 1, 1}));
}

TEST(IpRenderPolygonOutline, FloodsNothingWhereNothingIsInside) {
    for (const auto& aXY : {std::vector<std::pair<double, double>>{{1, 1}, {7, 4}},
                            {{2, 2}, {3, 2}, {3, 3}, {2, 3}}}) {
        Polygon_t polygon = PolygonOf(aXY);
        EXPECT_EQ(Drawn(polygon, 9, 9, true), Drawn(polygon, 9, 9, false));
    }
}

TEST(IpRenderPolygonOutline, NeverFloodsTheGround) {
    // Corners between pixels: the outline is drawn above and left of the true one.
    for (unsigned nSeed = 1; nSeed < 400; ++nSeed) {
        Polygon_t polygon = RandomPolygon(3 + nSeed % 6, 12, 10, false, nSeed);
        const Rows aEnclosed = Enclosed(Drawn(polygon, 12, 10, false));
        const Rows aFilled = Drawn(polygon, 12, 10, true);
        for (std::size_t y = 0; y < aFilled.size(); ++y)
            for (std::size_t x = 0; x < aFilled[y].size(); ++x)
                EXPECT_LE(aFilled[y][x], aEnclosed[y][x]) << nSeed;
    }
}

TEST(IpRenderPolygonOutline, KnowsWhichPointsLieInside) {
    Polygon_t polygon = PolygonOf({{0, 0}, {8, 0}, {8, 8}, {4, 4}, {0, 8}}); // a swallow's tail
    const auto isInside = [&](double x, double y) {
        ClVector point(x, y);
        return ClIpRenderPolygon::IsPointInsidePolygon(polygon, point);
    };
    EXPECT_TRUE(isInside(4, 2));
    EXPECT_TRUE(isInside(1, 6.5));
    EXPECT_TRUE(isInside(7, 6.5));
    EXPECT_FALSE(isInside(4, 5));
    EXPECT_FALSE(isInside(4, 8));
    EXPECT_FALSE(isInside(-1, 0));
    EXPECT_FALSE(isInside(9, 0));
    EXPECT_FALSE(isInside(3, -1));
    for (const auto& [x, y] : {std::pair{0.0, 0.0},
                               {8.0, 8.0},
                               {4.0, 4.0},
                               {5.0, 0.0},
                               {8.0, 3.0},
                               {6.0, 6.0},
                               {2.0, 6.0},
                               {0.0, 7.0}}) // corners and edges
        EXPECT_TRUE(isInside(x, y)) << x << ' ' << y;
    Polygon_t none;
    ClVector point(0.0, 0.0);
    EXPECT_FALSE(ClIpRenderPolygon::IsPointInsidePolygon(none, point));
}

TEST(IpRenderPolygonOutline, KnowsThePixelsInsideRandomPolygons) {
    for (unsigned nSeed = 1; nSeed < 30; ++nSeed) {
        Polygon_t polygon = RandomPolygon(3 + nSeed % 7, 12, 10, true, nSeed);
        for (int y = -1; y < 11; ++y)
            for (int x = -1; x < 13; ++x) {
                bool bOdd = false; // edges that a ray to the right meets, a hair above the line
                bool bOnEdge = false;
                ForEachEdge(polygon, [&](const ClVector& a, const ClVector& b) {
                    const ClVector p(x, y);
                    bOnEdge |= CrossOf(a, b, p) == 0.0 && x >= std::min(a.x, b.x) &&
                               x <= std::max(a.x, b.x) && y >= std::min(a.y, b.y) &&
                               y <= std::max(a.y, b.y);
                    const double dAbove = y - 1e-6;
                    if ((a.y > dAbove) != (b.y > dAbove))
                        bOdd ^= a.x + (dAbove - a.y) * (b.x - a.x) / (b.y - a.y) > x;
                });
                ClVector point(x, y);
                EXPECT_EQ(ClIpRenderPolygon::IsPointInsidePolygon(polygon, point), bOnEdge || bOdd)
                    << nSeed << ' ' << x << ' ' << y;
            }
    }
}

// The timer

class ClCountingTimer : public ClProfileTimer {
public:
    void TimerStart(const char*, ...) override { ++m_nStarts; }
    int m_nStarts = 0;
};

TEST(IpRenderPolygonOutline, PassesItsTimerStateOnToTheFlood) {
    ClCountingTimer timer;
    Polygon_t polygon = PolygonOf({{0, 0}, {5, 0}, {5, 5}, {0, 5}});
    ClImage out;
    g_pProfileTimer = &timer;
    ClIpRenderPolygon render(6, 6, 1, 1);
    render.m_pPolygon = &polygon;
    render.m_pOutImage = &out;
    render.m_bRender = false;
    EXPECT_EQ(render.Apply(), 0);
    EXPECT_EQ(timer.m_nStarts, 2); // the outline and the flood
    render.Timer(false);
    EXPECT_EQ(render.Apply(), 0);
    g_pProfileTimer = nullptr;
    EXPECT_EQ(timer.m_nStarts, 2);
}

TEST(IpRenderPolygonOutline, PaintsOrReportsMissingMemory) {
    Polygon_t polygon = PolygonOf({{0, 0}, {6, 2}, {3, 8}});
    const Rows aExpected = Drawn(polygon, 9, 9, true);
    ClImage out;
    ClIpRenderPolygon render(9, 9, 0, 0); // kept: a run that failed must not disturb the next
    render.m_pPolygon = &polygon;
    render.m_pOutImage = &out;
    render.m_bRender = false;
    render.m_nForeground = 1;
    render.m_nBackground = 0;
    TestSupport::ExpectAllOrNothing(
        [&] {
            out.Delete();
            EXPECT_EQ(render.Apply(), 0);
        },
        [&] { EXPECT_EQ(polygon.Entries(), 3u); }, [&] { EXPECT_EQ(Pixels(out), aExpected); });
}

} // namespace
