// The nearest neighbour and the whole factors: the modes that only move samples.

#include "ImageProcessing/NaiveRescale.h"

#include <climits>

namespace {

using TestSupport::At;
using TestSupport::caByteTypes;
using TestSupport::caRescaleSizes;
using TestSupport::ClTestImage;
using TestSupport::Height;
using TestSupport::Img;
using TestSupport::NaiveNearest;
using TestSupport::NaiveWhole;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RescaledToPels;
using TestSupport::RescaledToSize;
using TestSupport::Rows;
using TestSupport::StSizes;
using TestSupport::Transposed;
using TestSupport::WholeFactor;
using TestSupport::Width;

constexpr auto ceNearest = ClIpRescale::ModeNearestNeighbour;
constexpr auto ceWhole = ClIpRescale::ModeWholeNumbered;

TEST(IpRescaleNearest, StepsBySizesWithoutResolutions) {
    for (unsigned char nType : caByteTypes)
        for (const StSizes& s : caRescaleSizes) {
            ClTestImage in = RandomImage(nType, s.m_nInWidth, s.m_nInHeight, 1, 1);
            in.SetPelsX(0);
            in.SetPelsY(0);
            EXPECT_EQ(RescaledToSize(in, s.m_nOutWidth, s.m_nOutHeight, ceNearest),
                      NaiveNearest(Pixels(in), s.m_nOutWidth, s.m_nOutHeight,
                                   (s.m_nInWidth << 12) / s.m_nOutWidth,
                                   (s.m_nInHeight << 12) / s.m_nOutHeight));
        }
}

TEST(IpRescaleNearest, StepsByResolutionsAlsoForANewSize) {
    for (unsigned char nType : caByteTypes)
        for (const StSizes& s : caRescaleSizes) {
            ClTestImage in = RandomImage(nType, s.m_nInWidth, s.m_nInHeight, 1, 2);
            in.SetPelsX(19);
            in.SetPelsY(31);
            const int nPelsX = s.m_nOutWidth * 19 / s.m_nInWidth;
            const int nPelsY = s.m_nOutHeight * 31 / s.m_nInHeight;
            const long long nStepX =
                nPelsX != 0 ? (19 << 12) / nPelsX : (s.m_nInWidth << 12) / s.m_nOutWidth;
            const long long nStepY =
                nPelsY != 0 ? (31 << 12) / nPelsY : (s.m_nInHeight << 12) / s.m_nOutHeight;
            EXPECT_EQ(RescaledToSize(in, s.m_nOutWidth, s.m_nOutHeight, ceNearest),
                      NaiveNearest(Pixels(in), s.m_nOutWidth, s.m_nOutHeight, nStepX, nStepY));
        }
}

TEST(IpRescaleNearest, StepsByNewResolutions) {
    for (int nPelsX : {50, 99, 130, 301})
        for (int nPelsY : {33, 80, 220}) {
            ClTestImage in = RandomImage(ClImage::eUInt8, 11, 13, 1, 3);
            in.SetPelsX(100);
            in.SetPelsY(110);
            const int nWidth = static_cast<int>(11.0 * nPelsX / 100 + 0.9999);
            const int nHeight = static_cast<int>(13.0 * nPelsY / 110 + 0.9999);
            EXPECT_EQ(RescaledToPels(in, nPelsX, nPelsY, ceNearest),
                      NaiveNearest(Pixels(in), nWidth, nHeight, (100 << 12) / nPelsX,
                                   (110 << 12) / nPelsY));
        }
}

TEST(IpRescaleNearest, LeavesSamplesBehindTheInputAtZeroInAUsedBuffer) {
    ClTestImage in = Img({{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}});
    in.SetPelsX(5);
    in.SetPelsY(5);
    ClTestImage out = TestSupport::FlatImage(ClImage::eUInt8, 3, 3, 1, 99);
    ClIpRescale rescale;
    // The new resolution is 3 * 5 / 4 = 3, the step 5 / 3: columns 0, 1, 3.
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 3, 3, ceNearest), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 4}, {5, 6, 8}, {13, 14, 16}}));
    // Resolution 2 becomes 5 * 2 / 8 = 1, the step 2: the fifth sample would be column 8 of 8.
    ClTestImage line = Img({{1, 2, 3, 4, 5, 6, 7, 8}});
    line.SetPelsX(2);
    out = TestSupport::FlatImage(ClImage::eUInt8, 5, 1, 1, 99);
    EXPECT_EQ(rescale.ApplyParamSize(line, out, 5, 1, ceNearest), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 3, 5, 7, 0}}));
    ClTestImage column = Img({{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}});
    column.SetPelsY(2);
    out = TestSupport::FlatImage(ClImage::eUInt8, 1, 5, 1, 99);
    EXPECT_EQ(rescale.ApplyParamSize(column, out, 1, 5, ceNearest), 0);
    EXPECT_EQ(Pixels(out), Rows({{1}, {3}, {5}, {7}, {0}}));
}

TEST(IpRescaleNearest, StandsExtremeResolutions) {
    for (int nPels : {INT_MIN, -1, 1, INT_MAX}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 5, 4, 1, 4);
        in.SetPelsX(nPels);
        in.SetPelsY(nPels);
        ClImage out;
        ClIpRescale rescale;
        for (int nSize : {1, 3, 9, 16384}) {
            EXPECT_EQ(rescale.ApplyParamSize(in, out, nSize, 2, ceNearest), 0);
            EXPECT_EQ(At(Pixels(out), 0, 0), At(Pixels(in), 0, 0));
            EXPECT_EQ(rescale.ApplyParamSize(in, out, 2, nSize, ceNearest), 0);
        }
    }
}

// Whole factors

/// One line at resolution `nPels` brought to `nNewPels`.
std::vector<int> WholeLine(int nSamples, int nPels, int nNewPels) {
    Rows aLine(1);
    for (int i = 1; i <= nSamples; ++i)
        aLine[0].push_back(i);
    ClTestImage in = Img(aLine);
    in.SetPelsX(nPels);
    in.SetPelsY(77);
    const std::vector<int> aAcross = RescaledToPels(in, nNewPels, 77, ceWhole).at(0);
    ClTestImage down = Img(Transposed(aLine));
    down.SetPelsX(77);
    down.SetPelsY(nPels);
    EXPECT_EQ(Transposed(RescaledToPels(down, 77, nNewPels, ceWhole)).at(0), aAcross);
    return aAcross;
}

TEST(IpRescaleWholeNumbered, RepeatsSamplesByTheRoundedFactor) {
    using Line = std::vector<int>;
    EXPECT_EQ(WholeLine(2, 100, 200), Line({1, 1, 2, 2}));
    EXPECT_EQ(WholeLine(2, 100, 300), Line({1, 1, 1, 2, 2, 2}));
    // 2.5 is not above a half: factor 2 for 10 columns, of which 8 have a source
    EXPECT_EQ(WholeLine(4, 100, 250), Line({1, 1, 2, 2, 3, 3, 4, 4, 0, 0}));
    // 2.6 rounds up: factor 3 for 11 columns
    EXPECT_EQ(WholeLine(4, 100, 260), Line({1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4}));
    EXPECT_EQ(WholeLine(3, 100, 149), Line({1, 2, 3, 0, 0})); // factor 1, trunc(4.47 + 0.9999)
    // an odd resolution: 101 / 2 is 50, a remainder of 51 is above it
    EXPECT_EQ(WholeLine(2, 101, 152), Line({1, 1, 2, 2}));
}

TEST(IpRescaleWholeNumbered, PicksSamplesByTheRoundedFactor) {
    using Line = std::vector<int>;
    EXPECT_EQ(WholeLine(6, 200, 100), Line({1, 3, 5}));
    EXPECT_EQ(WholeLine(10, 250, 100), Line({1, 3, 5, 7}));   // 2.5: factor 2
    EXPECT_EQ(WholeLine(10, 260, 100), Line({1, 4, 7, 10}));  // 2.6: factor 3
    EXPECT_EQ(WholeLine(8, 251, 100), Line({1, 4, 7, 0}));    // the fourth would be sample 10
    EXPECT_EQ(WholeLine(5, 120, 100), Line({1, 2, 3, 4, 5})); // a copy: trunc(4.17 + 0.9999)
    EXPECT_EQ(WholeLine(12, 120, 100), Line({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(IpRescaleWholeNumbered, EqualsTheDefinitionAtManyResolutions) {
    for (int nPelsX : {20, 41, 99, 100, 130, 301})
        for (int nPelsY : {30, 110, 165, 276}) {
            ClTestImage in = RandomImage(ClImage::eInt8, 11, 13, 1, 5);
            in.SetPelsX(100);
            in.SetPelsY(110);
            const Rows aOut = RescaledToPels(in, nPelsX, nPelsY, ceWhole);
            EXPECT_EQ(aOut, NaiveWhole(Pixels(in), Width(aOut), Height(aOut),
                                       WholeFactor(100, nPelsX), WholeFactor(110, nPelsY)));
        }
}

TEST(IpRescaleWholeNumbered, ScalesTheAxesApart) {
    ClTestImage in = Img({{1, 2}, {3, 4}, {5, 6}, {7, 8}});
    in.SetPelsX(100);
    in.SetPelsY(100);
    EXPECT_EQ(RescaledToPels(in, 200, 50, ceWhole), Rows({{1, 1, 2, 2}, {5, 5, 6, 6}}));
    EXPECT_EQ(RescaledToPels(in, 100, 50, ceWhole), Rows({{1, 2}, {5, 6}}));
}

TEST(IpRescaleWholeNumbered, LeavesAnAxisWithoutResolutionUnchanged) {
    ClTestImage in = Img({{1, 2}, {3, 4}});
    in.SetPelsX(0);
    in.SetPelsY(100);
    ClImage out;
    ClIpRescale rescale;
    rescale.m_nNewWidth = 3;
    rescale.m_nNewHeight = 4;
    EXPECT_EQ(rescale.ApplyParam(in, out, ceWhole), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 0}, {1, 2, 0}, {3, 4, 0}, {3, 4, 0}}));
    // 3 * -5 / 2 and 1 * 1 / 2 are no resolutions
    in.SetPelsX(-5);
    in.SetPelsY(1);
    rescale.m_nNewHeight = 1;
    EXPECT_EQ(rescale.ApplyParam(in, out, ceWhole), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 0}}));
}

TEST(IpRescaleWholeNumbered, KeepsSignedSamples) {
    ClTestImage in = Img(ClImage::eInt8, {{-128, 127}});
    in.SetPelsX(100);
    EXPECT_EQ(RescaledToPels(in, 200, in.PelsY(), ceWhole), Rows({{-128, -128, 127, 127}}));
}

TEST(IpRescaleWholeNumbered, KeepsAnAxisWithoutResolution) {
    const struct {
        int m_nPelsX, m_nPelsY;
        Rows m_aExpected;
    } aCases[] = {{0, 100, {{1, 2, 0, 0}, {1, 2, 0, 0}, {3, 4, 0, 0}, {3, 4, 0, 0}}},
                  {100, 0, {{1, 1, 2, 2}, {3, 3, 4, 4}, {0, 0, 0, 0}, {0, 0, 0, 0}}}};
    for (const auto& Case : aCases) {
        ClTestImage in = Img({{1, 2}, {3, 4}});
        in.SetPelsX(Case.m_nPelsX);
        in.SetPelsY(Case.m_nPelsY);
        ClImage out;
        ClIpRescale rescale;
        rescale.m_nNewWidth = rescale.m_nNewHeight = 4;
        EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeWholeNumbered), 0);
        EXPECT_EQ(Pixels(out), Case.m_aExpected);
    }
}

} // namespace
