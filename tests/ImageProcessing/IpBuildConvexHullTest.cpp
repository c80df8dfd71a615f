#include "ImageProcessing/IpBuildConvexHull.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/NaivePolygon.h"
#include "RegionShapes.h"
#include "support/Throws.h"

namespace {

using namespace TestSupport;

long Hull(ClImage& In, ClImage& Out, double dValue = -1.0) {
    ClIpBuildConvexHull hull;
    hull.m_pInImage = &In;
    hull.m_pOutImage = &Out;
    hull.m_dValue = dValue;
    return hull.Apply();
}

/// Pixels of the value with a horizontal neighbour of another one, in the order of a scan.
Polygon_t NaiveCandidates(const ClImage& Image, int nValue) {
    Polygon_t points;
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x) {
            const unsigned char* pLine = Image.LineData(y);
            const bool bLeft = x > 0 && pLine[x - 1] != nValue;
            const bool bRight = x + 1 < Image.Width() && pLine[x + 1] != nValue;
            if (pLine[x] == nValue && (bLeft || bRight))
                points.Append(ClVector(x, y));
        }
    return points;
}

/// An oval, a few pixels of noise and a margin of ground.
ClTestImage Blob(int nWidth, int nHeight, unsigned nSeed) {
    std::mt19937 random(nSeed);
    return Shape(nWidth, nHeight, [&](int x, int y) {
        const double u = (x - nWidth / 2) / (0.3 * nWidth);
        const double v = (y - nHeight / 2) / (0.4 * nHeight);
        const bool bMargin = x == 0 || y == 0 || x == nWidth - 1 || y == nHeight - 1;
        return !bMargin && (u * u + v * v < 1.0 || random() % 97 == 0);
    });
}

TEST(IpBuildConvexHull, FillsTheHullOfARegion) {
    ClTestImage in = Drawn({
        ".........", //
        ".#.....#.", //
        ".#.......", //
        ".##......", //
        ".........",
    });
    ClImage out;
    EXPECT_EQ(Hull(in, out), 0);
    // from (7, 1) to (2, 3): column 4.5 on line 2
    EXPECT_EQ(Pixels(out), Pixels(Drawn({
                               ".........", //
                               ".#######.", //
                               ".####....", //
                               ".##......", //
                               ".........",
                           })));
}

TEST(IpBuildConvexHull, PaintsTheHullThatWrappingFinds) {
    unsigned nSeed = 0;
    for (int w : {3, 8, 17, 41})
        for (int h : {3, 9, 30})
            for (int n = 0; n < 6; ++n) {
                ClTestImage in = Blob(w, h, ++nSeed);
                const Polygon_t expected = WrappedHull(NaiveCandidates(in, 0));
                ClTestImage out = Img({{7}});
                EXPECT_EQ(Hull(in, out), 0);
                if (expected.Entries() < 2) {
                    EXPECT_EQ(Pixels(out), Rows({{7}}));
                    continue;
                }
                EXPECT_EQ(Pixels(out), PaintedRows(w, h, 0, 255,
                                                   [&](int x, int y) {
                                                       return NaiveConvexPainted(expected, x, y);
                                                   }))
                    << nSeed;
            }
}

TEST(IpBuildConvexHull, CoversTheRegion) {
    for (unsigned nSeed = 1; nSeed < 20; ++nSeed) {
        ClTestImage in = Blob(33, 29, nSeed);
        ClImage out;
        EXPECT_EQ(Hull(in, out), 0);
        for (int y = 0; y < 29; ++y)
            for (int x = 0; x < 33; ++x)
                EXPECT_LE(out.LineData(y)[x], in.LineData(y)[x]) << nSeed << ' ' << x << ' ' << y;
    }
}

TEST(IpBuildConvexHull, KeepsTheCornersOfTheHull) {
    ClTestImage in = Blob(41, 37, 3);
    ClImage out;
    ClIpBuildConvexHull hull;
    hull.m_pInImage = &in;
    hull.m_pOutImage = &out;
    EXPECT_EQ(hull.Apply(), 0);
    EXPECT_EQ(Corners(hull.m_aPolygon), Corners(WrappedHull(NaiveCandidates(in, 0))));
}

TEST(IpBuildConvexHull, TakesTheGreyValueTold) {
    ClTestImage in = Img({{0, 9, 9, 9, 0}, //
                          {9, 9, 44, 9, 44},
                          {9, 44, 9, 9, 0}});
    const Rows aExpected = Rows({{255, 255, 255, 255, 255}, //
                                 {255, 255, 0, 255, 255},
                                 {255, 0, 255, 255, 255}});
    in.LineData(1)[4] = 9;
    for (double dValue : {44.0, 44.9, 300.0, -212.0}) { // the low byte of what is truncated
        ClImage out;
        EXPECT_EQ(Hull(in, out, dValue), 0);
        EXPECT_EQ(Pixels(out), aExpected) << dValue;
    }
}

TEST(IpBuildConvexHull, TakesTheBlackOfTheInputOtherwise) {
    ClTestImage in = Img({{9, 9, 9, 9}, {9, 3, 3, 9}, {9, 0, 0, 9}});
    in.SetBlack(3.0);
    ClIpBuildConvexHull hull;
    ClImage out;
    hull.m_pInImage = &in;
    hull.m_pOutImage = &out;
    EXPECT_EQ(hull.Apply(), 0);
    EXPECT_EQ(Pixels(out)[1], std::vector<int>({255, 0, 0, 255}));
    EXPECT_EQ(Pixels(out)[2], std::vector<int>({255, 255, 255, 255}));
    EXPECT_EQ(hull.m_dValue, -1.0); // asks the next image again
    EXPECT_EQ(hull.m_nOutWidth, 0);
}

// Candidates

TEST(IpBuildConvexHull, TakesTheOutermostPixelsOfEachRun) {
    ClTestImage in = Drawn({"....", ".##.", ".#..", "#..#", "####"});
    ClIpBuildConvexHull hull;
    hull.m_pInImage = &in;
    hull.RetrieveCorners();
    // a pixel that is both ends stands once, and the image's border is no end
    EXPECT_EQ(Corners(hull.m_aPolygon), XY({{1, 1}, {2, 1}, {1, 2}, {0, 3}, {3, 3}}));
    hull.BuildCornerImage<unsigned char>(255);
    EXPECT_EQ(Corners(hull.m_aPolygon), XY({{0, 1}, {3, 1}, {0, 2}, {2, 2}, {1, 3}, {2, 3}}));
}

TEST(IpBuildConvexHull, TakesTheCandidatesOfRandomImages) {
    for (int w : {1, 2, 3, 9, 20})
        for (double dShare : {0.2, 0.5, 0.8}) {
            ClTestImage in = RandomShape(w, 11, dShare, 5);
            ClIpBuildConvexHull hull;
            hull.m_pInImage = &in;
            hull.RetrieveCorners();
            EXPECT_EQ(Corners(hull.m_aPolygon), Corners(NaiveCandidates(in, 0)));
        }
}

TEST(IpBuildConvexHull, RetrievesCandidatesFromImagesOfItsTypeAlone) {
    ClIpBuildConvexHull hull;
    EXPECT_THROWS(hull.RetrieveCorners(), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    ClImage empty;
    hull.m_pInImage = &empty;
    EXPECT_THROWS(hull.RetrieveCorners(), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    EXPECT_THROWS(hull.BuildCornerImage<unsigned char>(0), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    ClTestImage wide = FlatImage(ClImage::eInt32, 3, 3, 1, 0.0);
    hull.m_pInImage = &wide;
    EXPECT_THROWS(hull.RetrieveCorners(), ClException, -101, "Image Type is not the assigned type");
    EXPECT_THROWS(hull.BuildEdgeImage(), ClException, -101, "Image Type is not the assigned type");
}

// What cannot be painted

TEST(IpBuildConvexHull, LeavesTheOutputWithoutARegion) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 5, 5, 1, 200.0);
    for (double dValue : {-1.0, 200.0, 7.0}) { // none, all over without an end, none
        ClTestImage out = Img({{1, 2, 3}});
        const ClTestImage before = out;
        EXPECT_EQ(Hull(in, out, dValue), 0);
        ExpectSameImage(out, before);
    }
}

TEST(IpBuildConvexHull, LeavesTheOutputForARegionOfOnePixel) {
    ClTestImage in = Drawn({"...", ".#.", "..."});
    ClTestImage out = Img({{1, 2, 3}});
    const ClTestImage before = out;
    ClIpBuildConvexHull hull;
    hull.m_pInImage = &in;
    hull.m_pOutImage = &out;
    EXPECT_EQ(hull.Apply(), 0);
    ExpectSameImage(out, before);
    EXPECT_EQ(Corners(hull.m_aPolygon), XY({{1, 1}}));
    hull.m_pOutImage = &in;
    EXPECT_EQ(hull.Apply(), 0);
    EXPECT_EQ(Pixels(in), Pixels(Drawn({"...", ".#.", "..."})));
}

TEST(IpBuildConvexHull, LeavesTheOutputWhereTheHullDoesNotFit) {
    ClTestImage in = Drawn({".....", ".###.", "....."});
    ClTestImage out = Img({{1, 2, 3}});
    ClIpBuildConvexHull hull;
    hull.m_pInImage = &in;
    hull.m_pOutImage = &out;
    hull.m_nOutWidth = 3;
    hull.m_nOutHeight = 3;
    hull.m_nOutPelsX = hull.m_nOutPelsY = 1;
    EXPECT_EQ(hull.Apply(), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
}

TEST(IpBuildConvexHull, PaintsLinesAsLines) {
    ClTestImage flat = Drawn({".....", ".###.", "....."});
    ClImage out;
    EXPECT_EQ(Hull(flat, out), 0);
    EXPECT_EQ(Pixels(out), Pixels(flat));
    ClTestImage slanted = Drawn({"......", ".#....", "..#...", "...#..", "......"});
    EXPECT_EQ(Hull(slanted, out), 0);
    EXPECT_EQ(Pixels(out), Pixels(slanted));
}

// Images

TEST(IpBuildConvexHull, TakesTheFormatToldWhenAllOfItIsTold) {
    ClTestImage in = Drawn({".....", ".###.", "....."});
    in.SetPelsX(10);
    in.SetPelsY(20);
    int ClIpBuildConvexHull::*const apFormat[] = {
        &ClIpBuildConvexHull::m_nOutWidth, &ClIpBuildConvexHull::m_nOutHeight,
        &ClIpBuildConvexHull::m_nOutPelsX, &ClIpBuildConvexHull::m_nOutPelsY};
    for (int nMissing = 0; nMissing <= 4; ++nMissing)
        for (int nWrong : {0, -6}) {
            ClImage out;
            ClIpBuildConvexHull hull;
            hull.m_pInImage = &in;
            hull.m_pOutImage = &out;
            for (int i = 0; i < 4; ++i)
                hull.*apFormat[i] = i == nMissing ? nWrong : 6 + i;
            EXPECT_EQ(hull.Apply(), 0);
            EXPECT_EQ(out.Width(), nMissing == 4 ? 6 : 5);
            EXPECT_EQ(out.Height(), nMissing == 4 ? 7 : 3);
            EXPECT_EQ(out.PelsX(), nMissing == 4 ? 8 : 10);
            EXPECT_EQ(out.PelsY(), nMissing == 4 ? 9 : 20);
            EXPECT_EQ(out.LineData(1)[3], 0);
            EXPECT_EQ(out.LineData(1)[4], 255);
        }
}

TEST(IpBuildConvexHull, MayReplaceItsInput) {
    ClTestImage image = Blob(31, 23, 4);
    image.SetAttribute(6);
    ClTestImage in = image;
    ClImage expected;
    EXPECT_EQ(Hull(in, expected), 0);
    expected.SetAttribute(6);
    EXPECT_EQ(Hull(image, image), 0);
    ExpectSameImage(image, expected);
}

TEST(IpBuildConvexHull, ChecksItsImagesInOrder) {
    ClIpBuildConvexHull hull;
    EXPECT_EQ(hull.Apply(), -10);
    ClTestImage colour = FlatImage(ClImage::eInt32, 3, 3, 3, 0.0);
    hull.m_pInImage = &colour;
    EXPECT_EQ(hull.Apply(), -11);
    ClTestImage wide = FlatImage(ClImage::eInt32, 3, 3, 1, 0.0);
    hull.m_pInImage = &wide;
    EXPECT_EQ(hull.Apply(), -37);
    ClTestImage out = Img({{5}});
    hull.m_pOutImage = &out;
    ClImage empty;
    hull.m_pInImage = &empty;
    EXPECT_EQ(hull.Apply(), -37);
    for (unsigned char nType : caPixelTypes) {
        ClTestImage in = FlatImage(nType, 3, 3, 1, 0.0);
        hull.m_pInImage = &in;
        if (nType != ClImage::eUInt8)
            EXPECT_THROWS(hull.Apply(), ClException, -101, "Image Type is not the assigned type");
    }
    EXPECT_EQ(Pixels(out), Rows({{5}}));
}

TEST(IpBuildConvexHull, StartsWithItsDefaults) {
    const ClIpBuildConvexHull hull;
    EXPECT_EQ(hull.m_pInImage, nullptr);
    EXPECT_EQ(hull.m_pOutImage, nullptr);
    EXPECT_EQ(hull.m_aPolygon.Entries(), 0u);
    EXPECT_EQ(hull.m_nOutWidth, 0);
    EXPECT_EQ(hull.m_nOutHeight, 0);
    EXPECT_EQ(hull.m_nOutPelsX, 0);
    EXPECT_EQ(hull.m_nOutPelsY, 0);
    EXPECT_EQ(hull.m_dValue, -1.0);
    ASSERT_NE(hull.m_pEdgeImage, nullptr);
    ExpectEmptyImage(*hull.m_pEdgeImage);
}

TEST(IpBuildConvexHull, PaintsOrLeavesItsImagesWhereMemoryIsMissing) {
    TestSupport::ExpectImagesOrNothing(Blob(31, 23, 4),
                                       [](ClImage& In, ClImage& Out) { return Hull(In, Out); });
}

} // namespace
