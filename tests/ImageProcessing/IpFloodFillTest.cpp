#include "ImageProcessing/IpFloodFill.h"

#include "ImageProcessing/MissingMemory.h"

#include "RegionShapes.h"
#include "support/Throws.h"

#include <climits>

namespace {

using namespace TestSupport;

long Fill(ClImage& In, ClImage* pOut, long nX, long nY, int nColor, long* pBox = nullptr) {
    ClIpFloodFill fill;
    fill.m_pInImage = &In;
    fill.m_pOutImage = pOut;
    fill.m_nStartX = nX;
    fill.m_nStartY = nY;
    fill.m_nFillColor = static_cast<unsigned char>(nColor);
    fill.m_pBox = pBox;
    return fill.Apply();
}

/// Few values, so that regions have some size.
ClTestImage RandomPatches(int nWidth, int nHeight, int nPlanes, unsigned nSeed) {
    ClTestImage image = RandomImage(ClImage::eUInt8, nWidth, nHeight, nPlanes, nSeed);
    for (int y = 0; y < nHeight; ++y)
        for (int i = 0; i < nWidth * nPlanes; ++i)
            image.LineData(y)[i] = image.LineData(y)[i] < 160 ? 10 : 20;
    return image;
}

/// The rows that a fill of every plane gives, and its box.
Rows Filled(const ClImage& Image, int nX, int nY, int nColor, long (&ranBox)[4]) {
    Rows aRows = Pixels(Image);
    ranBox[0] = ranBox[2] = nX;
    ranBox[1] = ranBox[3] = nY;
    for (int p = 0; p < Image.Planes(); ++p) {
        const StNaiveRegion Region = NaiveFill(aRows, nX, nY, nColor, Image.Planes(), p);
        for (int i : {0, 1})
            ranBox[i] = std::min(ranBox[i], Region.m_anBox[i]);
        for (int i : {2, 3})
            ranBox[i] = std::max(ranBox[i], Region.m_anBox[i]);
    }
    return aRows;
}

void ExpectFill(const ClTestImage& Image, int nX, int nY, int nColor) {
    long anExpected[4] = {};
    const Rows aExpected = Filled(Image, nX, nY, nColor, anExpected);
    ClTestImage in = Image;
    ClImage out;
    EXPECT_EQ(Fill(in, &out, nX, nY, nColor), 0);
    EXPECT_TRUE(Pixels(out) == aExpected) << nX << ' ' << nY;
    ExpectSameImage(in, Image);

    long anBox[4] = {-1, -1, -1, -1};
    ClImage boxed;
    EXPECT_EQ(Fill(in, &boxed, nX, nY, nColor, anBox), 0);
    EXPECT_TRUE(Pixels(boxed) == aExpected);
    EXPECT_EQ(std::vector<long>(anBox, anBox + 4), std::vector<long>(anExpected, anExpected + 4));
}

TEST(IpFloodFill, FillsTheRegionOfTheStartPixelAlone) {
    ClTestImage in = Img({{5, 5, 1, 5}, //
                          {1, 5, 1, 5},
                          {5, 1, 5, 5}});
    ClImage out;
    EXPECT_EQ(Fill(in, &out, 1, 1, 9), 0);
    EXPECT_EQ(Pixels(out), Rows({{9, 9, 1, 5}, {1, 9, 1, 5}, {5, 1, 5, 5}}));
    EXPECT_EQ(Pixels(in), Rows({{5, 5, 1, 5}, {1, 5, 1, 5}, {5, 1, 5, 5}}));
}

TEST(IpFloodFill, AgreesWithAWalkInBreadthFromEveryPixel) {
    for (int w : {1, 2, 5, 9})
        for (int h : {1, 3, 8})
            for (unsigned nSeed : {1U, 2U, 3U}) {
                const ClTestImage image = RandomPatches(w, h, 1, nSeed);
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x)
                        for (int nColor : {10, 20, 30})
                            ExpectFill(image, x, y, nColor);
            }
}

TEST(IpFloodFill, AgreesWithAWalkInBreadthOnLargerImages) {
    for (double dShare : {0.5, 0.593, 0.7}) {
        const ClTestImage image = RandomShape(161, 97, dShare, 8);
        for (int x : {0, 40, 80, 160})
            for (int y : {0, 48, 96})
                ExpectFill(image, x, y, 100);
    }
}

TEST(IpFloodFill, AgreesWithAWalkInBreadthOnPathsAndCombs) {
    for (const ClTestImage& image :
         {Spiral(37), Comb(40, 11, true), Comb(41, 11, false), Lattice(33)}) {
        ExpectFill(image, 0, 0, 7);
        ExpectFill(image, image.Width() - 1, image.Height() - 1, 7);
        ExpectFill(image, image.Width() / 2, image.Height() / 2, 7);
    }
}

TEST(IpFloodFill, FillsEachPlaneFromItsOwnStart) {
    for (int nPlanes : {2, 3, 4})
        for (unsigned nSeed : {1U, 2U}) {
            const ClTestImage image = RandomPatches(7, 6, nPlanes, nSeed);
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 7; ++x)
                    for (int nColor : {10, 30})
                        ExpectFill(image, x, y, nColor);
        }
}

TEST(IpFloodFill, LeavesTheImageWhereTheStartHasTheFillColour) {
    ClTestImage image = Img({{5, 5}, {5, 1}});
    const ClTestImage before = image;
    long anBox[4] = {-7, -7, -7, -7};
    EXPECT_EQ(Fill(image, &image, 1, 0, 5), 0);
    EXPECT_EQ(Fill(image, &image, 1, 0, 5, anBox), 0);
    ExpectSameImage(image, before);
    EXPECT_EQ(std::vector<long>(anBox, anBox + 4), std::vector<long>({1, 0, 1, 0}));
}

TEST(IpFloodFill, FillsOneImageRegionByRegion) {
    ClTestImage image = RandomShape(31, 23, 0.6, 5);
    const int nRegions = ClNaiveLabels(image).Regions();
    ClIpFloodFill fill;
    fill.m_pInImage = fill.m_pOutImage = &image;
    fill.m_nFillColor = 255;
    int nCount = 0;
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x)
            if (image.LineData(y)[x] == 0) {
                ++nCount;
                fill.m_nStartX = x;
                fill.m_nStartY = y;
                EXPECT_EQ(fill.Apply(), 0);
            }
    EXPECT_EQ(nCount, nRegions);
    EXPECT_EQ(Pixels(image), Rows(23, std::vector<int>(31, 255)));
}

TEST(IpFloodFill, WorksInTheInputWithoutAnOutput) {
    ClTestImage image = Img({{5, 5, 1}});
    EXPECT_EQ(Fill(image, nullptr, 0, 0, 8), 0);
    EXPECT_EQ(Pixels(image), Rows({{8, 8, 1}}));
}

TEST(IpFloodFill, GivesTheOutputWhatTheInputSaysOfItself) {
    ClTestImage in = Img({{5, 5, 1}});
    in.SetPelsX(1);
    in.SetPelsY(2);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(3);
    ClTestImage expected = in;
    expected.LineData(0)[2] = 200;
    ClImage out;
    EXPECT_EQ(Fill(in, &out, 2, 0, 200), 0);
    ExpectSameImage(out, expected);
}

// The edge of the image

/// An image inside a buffer whose every other byte, padding too, has the value of the region.
TEST(IpFloodFill, TouchesNothingOutsideTheImage) {
    for (int nWidth : {4, 5, 8, 11}) {
        constexpr int nHeight = 6;
        const std::size_t nStride = static_cast<std::size_t>((nWidth + 3) / 4 * 4);
        std::vector<unsigned char> aBuffer(nStride * (nHeight + 4), 50);
        std::vector<unsigned char> aExpected = aBuffer;
        for (std::size_t y = 0; y < nHeight; ++y)
            std::fill_n(aExpected.begin() + static_cast<long>(nStride * (y + 2)), nWidth,
                        static_cast<unsigned char>(60));
        ClImage image;
        image.Attach(&aBuffer[2 * nStride], ClImage::eUInt8, nWidth, nHeight, 1, 0, 0);
        long anBox[4] = {};
        EXPECT_EQ(Fill(image, nullptr, nWidth / 2, 3, 60, anBox), 0);
        EXPECT_EQ(aBuffer, aExpected);
        EXPECT_EQ(std::vector<long>(anBox, anBox + 4),
                  std::vector<long>({0, 0, nWidth - 1, nHeight - 1}));
    }
}

TEST(IpFloodFill, FillsLargeRegionsOfAnyShapeOnASmallCallStack) {
    RunOnSmallStack([] {
        constexpr int n = 1024;
        ClTestImage aImages[] = {FlatImage(ClImage::eUInt8, n, n, 1, 0.0), Spiral(n),
                                 Comb(n, n, true), Comb(n, n, false)};
        for (ClTestImage& rImage : aImages) {
            EXPECT_EQ(Fill(rImage, &rImage, 0, n - 1, 255), 0);
            EXPECT_EQ(Fill(rImage, &rImage, 0, 0, 255), 0);
            EXPECT_EQ(std::count(rImage.Data(), rImage.Data() + n * n, 255), n * n);
        }
    });
}

TEST(IpFloodFill, RefusesAStartOutside) {
    const ClTestImage before = Img({{1, 2, 3}, {4, 5, 6}});
    ClTestImage in = before;
    ClTestImage out = Img({{9}});
    for (const auto& [x, y] : {std::pair{-1L, 0L},
                               {0L, -1L},
                               {3L, 0L},
                               {0L, 2L},
                               {LONG_MIN, 0L},
                               {0L, LONG_MAX},
                               {1L << 32, 0L},
                               {0L, 1L << 32}}) {
        EXPECT_EQ(Fill(in, &out, x, y, 7), -35) << x << ' ' << y;
        EXPECT_EQ(Fill(in, &in, x, y, 7), -35);
    }
    ExpectSameImage(in, before);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
    EXPECT_EQ(Fill(in, &out, 2, 1, 7), 0);
}

TEST(IpFloodFill, NeedsAnInputWithPixels) {
    ClIpFloodFill fill;
    EXPECT_EQ(fill.Initialize(), -10);
    EXPECT_EQ(fill.Apply(), -10);
    EXPECT_EQ(fill.Process(), -10);
    ClImage empty;
    fill.m_pInImage = &empty;
    EXPECT_EQ(fill.Initialize(), 0);
    EXPECT_EQ(fill.Apply(), -37);
}

TEST(IpFloodFill, RefusesOtherTypesBeforeTheOutputChanges) {
    ClTestImage out = Img({{9}});
    for (unsigned char nType : caPixelTypes) {
        ClTestImage in = FlatImage(nType, 3, 3, 1, 0.0);
        if (nType != ClImage::eUInt8)
            EXPECT_THROWS(Fill(in, &out, 0, 0, 7), ClException, -101,
                          "Image Type is not the assigned type");
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

// The condition of the count

TEST(IpFloodFill, LeavesRegionsOfFewerPixelsThanTheThreshold) {
    for (long nThresh : {-3L, 1L, 2L, 5L, 40L, 252L, 253L, 254L, 1000L, LONG_MAX})
        for (unsigned nSeed : {1U, 2U})
            for (int x = 0; x < 23; x += 3)
                for (int y = 0; y < 17; y += 4) {
                    ClTestImage image = RandomPatches(23, 17, 1, nSeed);
                    Rows aExpected = Pixels(image);
                    const long nPixels = NaiveFill(aExpected, x, y, 30).m_nPixels;
                    if (nPixels < std::min(nThresh, 253L))
                        aExpected = Pixels(image);
                    ClIpFloodFill fill;
                    fill.m_pInImage = &image;
                    fill.m_nStartX = x;
                    fill.m_nStartY = y;
                    fill.m_nFillColor = 30;
                    fill.m_nCountThresh = nThresh;
                    EXPECT_EQ(fill.Apply(), 0);
                    EXPECT_TRUE(Pixels(image) == aExpected) << nThresh << ' ' << nPixels;
                }
}

TEST(IpFloodFill, TakesRegionsOf253PixelsForLargeOnes) {
    for (int nPixels : {252, 253, 254}) {
        ClTestImage image = FlatImage(ClImage::eUInt8, nPixels, 1, 1, 5.0);
        ClIpFloodFill fill;
        fill.m_pInImage = &image;
        fill.m_nFillColor = 6;
        fill.m_nCountThresh = 100000;
        EXPECT_EQ(fill.Apply(), 0);
        EXPECT_EQ(Pixels(image), Rows({std::vector<int>(static_cast<std::size_t>(nPixels),
                                                        nPixels < 253 ? 5 : 6)}));
    }
}

TEST(IpFloodFill, GivesSmallRegionsOfManyRunsBack) {
    ClTestImage image = Comb(167, 2, true); // 251 pixels: a back of 167, 84 teeth
    const ClTestImage before = image;
    ClIpFloodFill fill;
    fill.m_pInImage = &image;
    fill.m_nFillColor = 9;
    fill.m_nCountThresh = 252;
    EXPECT_EQ(fill.Apply(), 0);
    ExpectSameImage(image, before);
    fill.m_nCountThresh = 251;
    EXPECT_EQ(fill.Apply(), 0);
    Rows aExpected = Pixels(before);
    NaiveFill(aExpected, 0, 0, 9);
    EXPECT_EQ(Pixels(image), aExpected);
}

TEST(IpFloodFill, CountsEachPlaneByItself) {
    ClTestImage image = Img(ClImage::eUInt8, {{1, 1, 1, 2, 3, 2, 1, 2, 1}}, 3);
    ClIpFloodFill fill;
    fill.m_pInImage = &image;
    fill.m_nFillColor = 9;
    fill.m_nCountThresh = 2;
    fill.m_nStartX = 0;
    EXPECT_EQ(fill.Apply(), 0);
    EXPECT_EQ(Pixels(image), Rows({{1, 1, 1, 2, 3, 2, 1, 2, 1}}));
    ClTestImage two = Img(ClImage::eUInt8, {{1, 1, 1, 1, 3, 2, 1, 2, 1}}, 3);
    fill.m_pInImage = &two;
    EXPECT_EQ(fill.Apply(), 0);
    EXPECT_EQ(Pixels(two), Rows({{9, 1, 1, 9, 3, 2, 9, 2, 1}}));
}

TEST(IpFloodFill, LooksAtTheBoxBeforeTheCount) {
    ClTestImage image = Img({{5, 1}});
    long anBox[4] = {};
    ClIpFloodFill fill;
    fill.m_pInImage = &image;
    fill.m_nFillColor = 9;
    fill.m_nCountThresh = 2;
    fill.m_pBox = anBox;
    EXPECT_EQ(fill.Apply(), 0);
    EXPECT_EQ(Pixels(image), Rows({{9, 1}}));
}

TEST(IpFloodFill, FillsOrLeavesItsInputWhereMemoryIsMissing) {
    ClTestImage comb = Comb(601, 3, true); // more seeds than there is room for at first
    ClTestImage colour = RandomPatches(9, 7, 3, 1);
    for (ClTestImage* pIn : {&comb, &colour}) {
        const ClTestImage before = *pIn;
        long anBox[4] = {};
        const Rows aExpected = Filled(before, 0, 0, 77, anBox);
        ClImage out;
        ExpectAllOrNothing([&] { EXPECT_EQ(Fill(*pIn, &out, 0, 0, 77), 0); },
                           [&] { ExpectSameImage(*pIn, before); },
                           [&] {
                               ExpectSameImage(*pIn, before);
                               EXPECT_TRUE(Pixels(out) == aExpected);
                           });
    }
}

} // namespace
