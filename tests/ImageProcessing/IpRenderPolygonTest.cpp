#include "ImageProcessing/IpRenderPolygon.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/NaivePolygon.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>

namespace {

using TestSupport::cdInfinity;
using TestSupport::cdNaN;

using namespace TestSupport;

Rows Rendered(Polygon_t& rPolygon, int nWidth, int nHeight) {
    ClImage out;
    ClIpRenderPolygon render(nWidth, nHeight, 100, 200);
    render.m_pPolygon = &rPolygon;
    render.m_pOutImage = &out;
    render.m_nForeground = 1;
    render.m_nBackground = 0;
    EXPECT_EQ(render.Apply(), 0);
    return Pixels(out);
}

Rows Rendered(const std::vector<std::pair<double, double>>& aXY, int nWidth, int nHeight) {
    Polygon_t polygon = PolygonOf(aXY);
    return Rendered(polygon, nWidth, nHeight);
}

// Filling by scanlines

TEST(IpRenderPolygon, FillsARectangleWithItsBorder) {
    EXPECT_EQ(Rendered({{1, 1}, {4, 1}, {4, 3}, {1, 3}}, 6, 5), Rows({{0, 0, 0, 0, 0, 0}, //
                                                                      {0, 1, 1, 1, 1, 0},
                                                                      {0, 1, 1, 1, 1, 0},
                                                                      {0, 1, 1, 1, 1, 0},
                                                                      {0, 0, 0, 0, 0, 0}}));
}

TEST(IpRenderPolygon, CountsACornerThatIsPassedThroughOnce) {
    EXPECT_EQ(Rendered({{3, 0}, {6, 2}, {4, 4}, {0, 2}}, 7, 5), Rows({{0, 0, 0, 1, 0, 0, 0}, //
                                                                      {0, 1, 1, 1, 1, 0, 0},
                                                                      {1, 1, 1, 1, 1, 1, 1},
                                                                      {0, 0, 1, 1, 1, 1, 0},
                                                                      {0, 0, 0, 0, 1, 0, 0}}));
}

TEST(IpRenderPolygon, CountsACornerThatTurnsBackTwice) {
    // a crown: its inner corners turn on line 2, its points on line 0
    EXPECT_EQ(Rendered({{0, 0}, {2, 2}, {4, 0}, {6, 2}, {8, 0}, {8, 3}, {0, 3}}, 9, 4),
              Rows({{1, 0, 0, 0, 1, 0, 0, 0, 1}, //
                    {1, 1, 0, 1, 1, 1, 0, 1, 1},
                    {1, 1, 1, 1, 1, 1, 1, 1, 1},
                    {1, 1, 1, 1, 1, 1, 1, 1, 1}}));
}

TEST(IpRenderPolygon, PaintsTheHorizontalEdgesOfAStair) {
    EXPECT_EQ(Rendered({{0, 0}, {2, 0}, {2, 2}, {5, 2}, {5, 4}, {0, 4}}, 7, 5),
              Rows({{1, 1, 1, 0, 0, 0, 0}, //
                    {1, 1, 1, 0, 0, 0, 0},
                    {1, 1, 1, 1, 1, 1, 0},
                    {1, 1, 1, 1, 1, 1, 0},
                    {1, 1, 1, 1, 1, 1, 0}}));
}

TEST(IpRenderPolygon, TruncatesCrossings) {
    // the left edge runs from 1 to 3, the right one from 4 to 6
    EXPECT_EQ(Rendered({{1, 0}, {4, 0}, {6, 4}, {3, 4}}, 8, 5), Rows({{0, 1, 1, 1, 1, 0, 0, 0}, //
                                                                      {0, 1, 1, 1, 1, 0, 0, 0},
                                                                      {0, 0, 1, 1, 1, 1, 0, 0},
                                                                      {0, 0, 1, 1, 1, 1, 0, 0},
                                                                      {0, 0, 0, 1, 1, 1, 1, 0}}));
}

TEST(IpRenderPolygon, LeavesWhatIsCoveredTwiceOutside) {
    // a square and a second, inner turn of the same outline
    const Rows aRows = Rendered(
        {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}, {2, 2}, {6, 2}, {6, 6}, {2, 6}, {2, 2}}, 9, 9);
    EXPECT_EQ(aRows[4], std::vector<int>({1, 1, 1, 0, 0, 0, 1, 1, 1}));
}

TEST(IpRenderPolygon, PaintsTwoCornersAsALine) {
    EXPECT_EQ(Rendered({{1, 1}, {3, 3}}, 5, 5), Rows({{0, 0, 0, 0, 0}, //
                                                      {0, 1, 0, 0, 0},
                                                      {0, 0, 1, 0, 0},
                                                      {0, 0, 0, 1, 0},
                                                      {0, 0, 0, 0, 0}}));
    EXPECT_EQ(Rendered({{3, 1}, {1, 1}}, 5, 2), Rows({{0, 0, 0, 0, 0}, {0, 1, 1, 1, 0}}));
    EXPECT_EQ(Rendered({{2, 1}, {2, 1}}, 4, 2), Rows({{0, 0, 0, 0}, {0, 0, 1, 0}}));
}

TEST(IpRenderPolygon, PaintsNoLineThatAnEdgeBetweenLinesDoesNotReach) {
    EXPECT_EQ(Rendered({{0, 0.5}, {3, 0.5}}, 4, 2), Rows({{0, 0, 0, 0}, {0, 0, 0, 0}}));
    EXPECT_EQ(Rendered({{0, 0.5}, {3, 0.5}, {3, 1.5}, {0, 1.5}}, 4, 3),
              Rows({{0, 0, 0, 0}, {1, 1, 1, 1}, {0, 0, 0, 0}}));
}

TEST(IpRenderPolygon, PaintsByTheEvenOddRuleWithTheOutline) {
    unsigned nSeed = 0;
    for (bool bWhole : {true, false})
        for (int w : {1, 2, 7, 13})
            for (int h : {1, 2, 5, 12})
                for (unsigned long nCorners : {2UL, 3UL, 4UL, 5UL, 8UL, 20UL})
                    for (int n = 0; n < 8; ++n) {
                        Polygon_t polygon = RandomPolygon(nCorners, w, h, bWhole, ++nSeed);
                        const Rows aExpected = PaintedRows(
                            w, h, 1, 0, [&](int x, int y) { return NaivePainted(polygon, x, y); });
                        EXPECT_EQ(Rendered(polygon, w, h), aExpected) << nSeed;
                    }
}

TEST(IpRenderPolygon, PaintsAConvexPolygonBetweenItsOutermostCrossings) {
    unsigned nSeed = 0;
    for (bool bWhole : {true, false})
        for (int w : {1, 3, 11, 40})
            for (int h : {1, 2, 9, 31})
                for (unsigned long nPoints : {3UL, 6UL, 30UL}) {
                    const Polygon_t points = RandomPolygon(nPoints, w, h, bWhole, ++nSeed);
                    Polygon_t hull = WrappedHull(points);
                    if (hull.Entries() < 2)
                        continue;
                    const Rows aExpected = PaintedRows(
                        w, h, 1, 0, [&](int x, int y) { return NaiveConvexPainted(hull, x, y); });
                    EXPECT_EQ(Rendered(hull, w, h), aExpected) << nSeed;
                }
}

TEST(IpRenderPolygon, PaintsTheSameFromEveryCornerAndInBothDirections) {
    for (unsigned nSeed = 1; nSeed < 40; ++nSeed) {
        Polygon_t polygon = RandomPolygon(7, 15, 11, true, nSeed);
        const Rows aExpected = Rendered(polygon, 15, 11);
        std::rotate(polygon.Data(), polygon.Data() + nSeed % 7, polygon.Data() + 7);
        EXPECT_EQ(Rendered(polygon, 15, 11), aExpected);
        std::reverse(polygon.Data(), polygon.Data() + 7);
        EXPECT_EQ(Rendered(polygon, 15, 11), aExpected);
    }
}

TEST(IpRenderPolygon, StaysInsideWhereACrossingRoundsPastTheLastColumn) {
    std::mt19937 random(1);
    const double dLast = std::nextafter(10.0, 0.0);
    for (int n = 0; n < 2000; ++n) {
        const auto draw = [&] { return static_cast<double>(random()) / 4294967296.0 * 10.0; };
        Polygon_t polygon = PolygonOf({{dLast, draw()}, {dLast, draw()}, {draw(), draw()}});
        polygon[0].x -= n % 2 == 0 ? 0.0 : draw();
        EXPECT_EQ(Rendered(polygon, 10, 10).size(), 10u); // a sanitizer sees a pixel too far
    }
}

TEST(IpRenderPolygon, ReplacesTheOutput) {
    ClTestImage out = RandomImage(ClImage::eInt16, 3, 3, 3, 1);
    Polygon_t polygon = PolygonOf({{0, 0}, {1, 0}});
    ClIpRenderPolygon render(3, 2, 100, 200);
    render.m_pPolygon = &polygon;
    render.m_pOutImage = &out;
    EXPECT_EQ(render.Apply(), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt8);
    EXPECT_EQ(out.Planes(), 1);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.White(), 255.0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 255}, {255, 255, 255}})); // foreground 0, background 255
}

// Checks

TEST(IpRenderPolygon, StartsWithItsDefaults) {
    const ClIpRenderPolygon render;
    EXPECT_EQ(render.m_pPolygon, nullptr);
    EXPECT_EQ(render.m_pOutImage, nullptr);
    EXPECT_EQ(render.m_nWidth, 0);
    EXPECT_EQ(render.m_nHeight, 0);
    EXPECT_EQ(render.m_nPelsX, 0);
    EXPECT_EQ(render.m_nPelsY, 0);
    EXPECT_EQ(render.m_nBackground, 255);
    EXPECT_EQ(render.m_nForeground, 0);
    EXPECT_TRUE(render.m_bFill);
    EXPECT_TRUE(render.m_bRender);
    const ClIpRenderPolygon sized(1, 2, 3, 4);
    EXPECT_EQ(sized.m_nWidth, 1);
    EXPECT_EQ(sized.m_nHeight, 2);
    EXPECT_EQ(sized.m_nPelsX, 3);
    EXPECT_EQ(sized.m_nPelsY, 4);
    EXPECT_TRUE(sized.m_bFill);
}

TEST(IpRenderPolygon, RefusesWhatItCannotPaintBeforeTheOutputChanges) {
    ClTestImage out = Img({{9}});
    Polygon_t good = PolygonOf({{0, 0}, {2, 1}});
    ClIpRenderPolygon render(3, 2, 0, 0);
    render.m_pPolygon = &good;
    EXPECT_EQ(render.Apply(), -10);
    render.m_pOutImage = &out;
    for (const auto& [w, h] : {std::pair{0, 2}, {3, 0}, {-3, 2}, {3, -2}, {2, 2}, {3, 1}}) {
        render.m_nWidth = w;
        render.m_nHeight = h;
        EXPECT_EQ(render.Apply(), -44) << w << ' ' << h;
    }
    render.m_nWidth = 3;
    render.m_nHeight = 2;
    for (const auto& aXY : {std::vector<std::pair<double, double>>{}, {{1, 1}}}) {
        Polygon_t few = PolygonOf(aXY);
        render.m_pPolygon = &few;
        EXPECT_EQ(render.Apply(), -44);
    }
    render.m_pPolygon = nullptr;
    EXPECT_EQ(render.Apply(), -44);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpRenderPolygon, ChecksThatEveryCornerLiesInTheImage) {
    ClIpRenderPolygon render(10, 20, 0, 0);
    EXPECT_FALSE(render.CheckPolygon());
    const auto isGood = [&](double x, double y) {
        Polygon_t polygon = PolygonOf({{1, 1}, {x, y}, {2, 2}});
        render.m_pPolygon = &polygon;
        return render.CheckPolygon();
    };
    EXPECT_TRUE(isGood(0.0, 0.0));
    EXPECT_TRUE(isGood(std::nextafter(10.0, 0.0), std::nextafter(20.0, 0.0)));
    EXPECT_FALSE(isGood(10.0, 5.0)); // exactly at the width
    EXPECT_FALSE(isGood(5.0, 20.0));
    EXPECT_FALSE(isGood(-1e-300, 5.0));
    EXPECT_FALSE(isGood(5.0, -1e-300));
    for (double d : {cdNaN, cdInfinity, -cdInfinity}) {
        EXPECT_FALSE(isGood(d, 5.0));
        EXPECT_FALSE(isGood(5.0, d));
    }
}

TEST(IpRenderPolygon, AnswersWithMinus44ForACornerAtTheWidth) {
    ClTestImage out = Img({{9}});
    Polygon_t polygon = PolygonOf({{0, 0}, {10, 5}, {0, 9}});
    ClIpRenderPolygon render(10, 20, 0, 0);
    render.m_pPolygon = &polygon;
    render.m_pOutImage = &out;
    EXPECT_EQ(render.Apply(), -44);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpRenderPolygon, CrossesLinesBetweenTheEndsOfAnEdge) {
    ClVector a(1.0, 2.0);
    ClVector b(8.0, 6.0);
    int nX = -1;
    for (const auto& [y, x] : {std::pair{2, 1}, {3, 2}, {4, 4}, {5, 6}, {6, 8}}) {
        EXPECT_TRUE(ClIpRenderPolygon::GetIntersection(a, b, y, nX));
        EXPECT_EQ(nX, x);
        EXPECT_TRUE(ClIpRenderPolygon::GetIntersection(b, a, y, nX));
        EXPECT_EQ(nX, x);
    }
    nX = -1;
    EXPECT_FALSE(ClIpRenderPolygon::GetIntersection(a, b, 1, nX));
    EXPECT_FALSE(ClIpRenderPolygon::GetIntersection(a, b, 7, nX));
    ClVector c(5.0, 2.0);
    EXPECT_FALSE(ClIpRenderPolygon::GetIntersection(a, c, 2, nX));
    ClVector nowhere(cdNaN, cdNaN);
    EXPECT_FALSE(ClIpRenderPolygon::GetIntersection(a, nowhere, 2, nX));
    EXPECT_EQ(nX, -1);
    ClVector sideless(cdNaN, 6.0);
    EXPECT_TRUE(ClIpRenderPolygon::GetIntersection(a, sideless, 4, nX));
    EXPECT_EQ(nX, 0);
}

TEST(IpRenderPolygon, PaintsOrReportsMissingMemory) {
    Polygon_t polygon = PolygonOf({{0, 0}, {6, 2}, {3, 8}});
    const Rows aExpected = Rendered(polygon, 9, 9);
    ClImage out;
    ClIpRenderPolygon render(9, 9, 0, 0); // kept: a run that failed must not disturb the next
    render.m_pPolygon = &polygon;
    render.m_pOutImage = &out;
    render.m_nForeground = 1;
    render.m_nBackground = 0;
    TestSupport::ExpectAllOrNothing(
        [&] {
            out.Delete();
            EXPECT_EQ(render.Apply(), 0);
        },
        [&] { EXPECT_EQ(polygon.Entries(), 3u); }, [&] { EXPECT_EQ(Pixels(out), aExpected); });
}

TEST(IpRenderPolygon, TakesRoomForTheImageBeforeItListsCrossings) {
    Polygon_t polygon = PolygonOf({{0, 0}, {6, 2}, {3, 8}});
    int nWidthAtLastFailure = 0;
    FailEachAllocation([&] {
        ClImage out;
        ClIpRenderPolygon render(9, 9, 0, 0);
        render.m_pPolygon = &polygon;
        render.m_pOutImage = &out;
        try {
            EXPECT_EQ(render.Apply(), 0);
        } catch (const ClExBadAlloc&) {
            nWidthAtLastFailure = out.Width();
            throw;
        }
    });
    EXPECT_EQ(nWidthAtLastFailure, 9); // that of a crossing
}

} // namespace
