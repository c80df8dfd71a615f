// What a histogram tells about the shape of a distribution.

#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/HistogramCounts.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

using TestSupport::Counts;

constexpr double cdUntouched = -12345.5;

ClHistogram RandomCounts(unsigned nSeed, int nLimit) {
    std::mt19937 random(nSeed);
    ClHistogram Histogram;
    for (int& nCount : Histogram.m_anCount)
        nCount = static_cast<int>(random() % static_cast<unsigned>(nLimit));
    return Histogram;
}

/// One triangle with the given top.
ClHistogram Tent(int nTop) {
    ClHistogram Histogram;
    for (int i = 0; i < 256; ++i)
        Histogram.m_anCount[i] = std::max(0, 1000 - 7 * std::abs(i - nTop));
    return Histogram;
}

// The derivative

std::vector<double> Derivative(const ClHistogram& Histogram, int nWidth) {
    std::vector<double> aOut(256, cdUntouched);
    Histogram.CalcFirstDerivation(nWidth, aOut.data());
    return aOut;
}

TEST(HistogramDerivative, EqualsItsDefinition) {
    const ClHistogram Histogram = RandomCounts(1, 100000);
    for (int w : {1, 2, 5, 10, 64, 127}) {
        const std::vector<double> aOut = Derivative(Histogram, w);
        for (int i = 0; i < 256; ++i) {
            double dExpected = cdUntouched;
            if (i >= w && i <= 255 - w) {
                double dSum = 0.0;
                for (int j = 1; j <= w; ++j)
                    dSum += (Histogram.m_anCount[i + j] - Histogram.m_anCount[i - j]) * 0.5 / j;
                dExpected = dSum / w;
            }
            EXPECT_EQ(aOut[static_cast<std::size_t>(i)], dExpected) << w << ' ' << i;
        }
    }
}

TEST(HistogramDerivative, IsTheSlopeOfAStraightLine) {
    ClHistogram Histogram;
    for (int i = 0; i < 256; ++i)
        Histogram.m_anCount[i] = 3 * i;
    // each distance j adds (6 j) * 0.5 / j = 3; the sum of w of them is divided by w
    for (int w : {1, 4, 20})
        for (int i = w; i <= 255 - w; ++i)
            EXPECT_DOUBLE_EQ(Derivative(Histogram, w)[static_cast<std::size_t>(i)], 3.0);
}

TEST(HistogramDerivative, CanBeComputedByHand) {
    const ClHistogram Histogram = Counts({{100, 8}, {102, 30}});
    const std::vector<double> aOut = Derivative(Histogram, 2);
    EXPECT_EQ(aOut[99], (4.0 + 0.0) / 2);
    EXPECT_EQ(aOut[100], (0.0 + 7.5) / 2);
    EXPECT_EQ(aOut[101], (15.0 - 4.0) / 2);
    EXPECT_EQ(aOut[104], (0.0 - 7.5) / 2);
    EXPECT_EQ(aOut[105], 0.0);
}

TEST(HistogramDerivative, WritesNothingFromAWidthOf128On) {
    const ClHistogram Histogram = RandomCounts(2, 1000);
    for (int w : {128, 200, 255, 256, 2147483647})
        EXPECT_EQ(Derivative(Histogram, w), std::vector<double>(256, cdUntouched)) << w;
}

TEST(HistogramDerivative, WritesTheTwoMiddleEntriesForAWidthOf127) {
    const std::vector<double> aOut = Derivative(RandomCounts(3, 1000), 127);
    EXPECT_NE(aOut[127], cdUntouched);
    EXPECT_NE(aOut[128], cdUntouched);
    EXPECT_EQ(std::count(aOut.begin(), aOut.end(), cdUntouched), 254);
}

TEST(HistogramDerivative, IsZeroWithoutAWidth) {
    for (int w : {0, -1, -300})
        EXPECT_EQ(Derivative(RandomCounts(4, 1000), w), std::vector<double>(256, 0.0)) << w;
}

TEST(HistogramDerivative, HoldsDifferencesBeyond32Bits) {
    const ClHistogram Histogram = Counts({{99, -2000000000}, {101, 2000000000}});
    EXPECT_EQ(Derivative(Histogram, 1)[100], 2e9);
}

// Averages and positions

TEST(HistogramShape, AveragesBinsByIntegerDivision) {
    const ClHistogram Histogram = Counts({{10, 5}, {11, 6}, {12, 6}});
    EXPECT_EQ(Histogram.GetMid(10, 12), 5u); // 17 / 3
    EXPECT_EQ(Histogram.GetMid(11, 11), 6u);
    EXPECT_EQ(Histogram.GetMid(0, 255), 0u);
    EXPECT_EQ(Counts({{0, 2147483647}, {1, 2147483647}}).GetMid(0, 1), 2147483647u);
}

TEST(HistogramShape, FindsTheCentreOfMass) {
    const ClHistogram Histogram = Counts({{10, 1}, {20, 2}, {200, 9}});
    EXPECT_EQ(Histogram.GetCentreOfMass(0, 100), 16); // 50 / 3
    EXPECT_EQ(Histogram.GetCentreOfMass(200, 255), 200);
    EXPECT_EQ(Histogram.GetCentreOfMass(30, 101), 65); // empty: the middle
    EXPECT_EQ(Counts({{255, 2147483647}, {254, 2147483647}}).GetCentreOfMass(0, 255), 254);
}

TEST(HistogramShape, FindsTheFirstOfEqualMaximaAndMinima) {
    const ClHistogram Histogram = Counts({{10, 5}, {12, 9}, {14, 9}, {15, 1}, {16, 1}, {20, 50}});
    EXPECT_EQ(Histogram.GetLocalMax(10, 16), 12);
    EXPECT_EQ(Histogram.GetLocalMax(10, 20), 20);
    EXPECT_EQ(Histogram.GetLocalMax(13, 13), 13);
    EXPECT_EQ(Histogram.GetLocalMin(14, 16), 15);
    EXPECT_EQ(Histogram.GetLocalMin(10, 16), 11);
    EXPECT_EQ(Histogram.GetLocalMax(30, 255), 30);
    EXPECT_EQ(Histogram.GetLocalMin(0, 255), 0);
}

TEST(HistogramShape, TellsPositionsAsBinsForASignedImage) {
    ClHistogram Histogram;
    Histogram.Create(TestSupport::Img(ClImage::eInt8, {{-8, -8, 3}}));
    EXPECT_EQ(Histogram.GetLocalMax(0, 255), 120);
    EXPECT_EQ(Histogram.GetCentreOfMass(130, 255), 131);
}

template <class Question>
void ExpectRefusesAReversedRange(const std::string& Name, Question question) {
    const std::string Text =
        "ClHistogram::" + Name + "(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.";
    EXPECT_THROWS(question(9, 8), ClException, -35, Text);
    EXPECT_THROWS(question(255, 0), ClException, -35, Text);
    try {
        question(1, 0);
        FAIL();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "ImageProcessing/Histogram");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(HistogramShape, RefusesAReversedRange) {
    const ClHistogram h = Counts({{8, 1}});
    using Byte = unsigned char;
    ExpectRefusesAReversedRange("GetMid", [&](Byte a, Byte b) { h.GetMid(a, b); });
    ExpectRefusesAReversedRange("GetCentreOfMass",
                                [&](Byte a, Byte b) { h.GetCentreOfMass(a, b); });
    ExpectRefusesAReversedRange("GetLocalMax", [&](Byte a, Byte b) { h.GetLocalMax(a, b); });
    ExpectRefusesAReversedRange("GetLocalMin", [&](Byte a, Byte b) { h.GetLocalMin(a, b); });
}

// Smoothing

std::vector<int> CountsOf(const ClHistogram& Histogram) {
    return std::vector<int>(Histogram.m_anCount, Histogram.m_anCount + 256);
}

TEST(HistogramShape, SmoothsOverThreeBinsAndTwoAtTheEnds) {
    ClHistogram Histogram = RandomCounts(5, 1000);
    const std::vector<int> h = CountsOf(Histogram);
    std::vector<int> aExpected(256);
    aExpected[0] = (h[0] + h[1]) / 2;
    for (std::size_t i = 1; i < 255; ++i)
        aExpected[i] = (h[i - 1] + h[i] + h[i + 1]) / 3;
    aExpected[255] = (h[254] + h[255]) / 2;
    ClHistogram Same = Histogram;
    Histogram.LowPass();
    EXPECT_EQ(CountsOf(Histogram), aExpected);
    Same.LowPass(3);
    EXPECT_EQ(CountsOf(Same), aExpected);
}

TEST(HistogramShape, SmoothsOverTheBinsThatAWindowHas) {
    const ClHistogram Before = RandomCounts(6, 1000);
    for (int nWidth : {2, 4, 5, 11, 30, 509, 512, 2147483647}) {
        ClHistogram Histogram = Before;
        Histogram.LowPass(nWidth);
        for (int i = 0; i < 256; ++i) {
            long nSum = 0;
            long nBins = 0;
            for (long j = std::max(0, i - nWidth / 2); j < 256 && j <= long{i} + nWidth / 2; ++j) {
                nSum += Before.m_anCount[j];
                ++nBins;
            }
            EXPECT_EQ(Histogram.m_anCount[i], nSum / nBins) << nWidth << ' ' << i;
        }
    }
}

TEST(HistogramShape, SmoothsNothingBelowAWidthOfTwo) {
    const ClHistogram Before = RandomCounts(7, 1000);
    for (int nWidth : {1, 0, -1, -2147483647}) {
        ClHistogram Histogram = Before;
        Histogram.LowPass(nWidth);
        EXPECT_EQ(CountsOf(Histogram), CountsOf(Before));
    }
}

TEST(HistogramShape, SmoothingKeepsTheLargestCounts) {
    ClHistogram Histogram;
    std::fill(Histogram.m_anCount, Histogram.m_anCount + 256, 2147483647);
    Histogram.LowPass();
    EXPECT_EQ(Histogram.MinCount(), 2147483647);
}

// Walks

TEST(HistogramShape, ClimbsToThePeakFromBothSides) {
    const ClHistogram Histogram = Tent(120);
    for (int nStart : {20, 60, 119, 120, 121, 180, 240})
        for (int nWidth : {1, 3, 10})
            EXPECT_NEAR(Histogram.Climb(static_cast<unsigned char>(nStart),
                                        static_cast<unsigned char>(nWidth)),
                        120, 1)
                << nStart << ' ' << nWidth;
}

TEST(HistogramShape, DescendsToTheValley) {
    ClHistogram Histogram = Tent(120);
    for (int& nCount : Histogram.m_anCount)
        nCount = 1000 - nCount;
    for (int nStart : {20, 60, 119, 120, 121, 180, 240})
        EXPECT_NEAR(Histogram.Descend(static_cast<unsigned char>(nStart), 5), 120, 1) << nStart;
}

TEST(HistogramShape, WalksByHand) {
    // bins 10 to 16: 1 2 4 7 7 3 0
    const ClHistogram Histogram =
        Counts({{10, 1}, {11, 2}, {12, 4}, {13, 7}, {14, 7}, {15, 3}, {16, 0}});
    EXPECT_EQ(Histogram.Climb(10, 1), 14);   // 7 above against 4 below goes on; 3 against 7 not
    EXPECT_EQ(Histogram.Climb(15, 1), 13);   // down: at 13 there are 4 below and 7 above
    EXPECT_EQ(Histogram.Climb(40, 1), 40);   // equal averages
    EXPECT_EQ(Histogram.Descend(14, 1), 17); // at 16: 0 above, 3 below; at 17: both 0
    EXPECT_EQ(Histogram.Descend(12, 1), 8);  // at 9: 0 below, 1 above; at 8: both 0
}

/// Truncated average of the bins of a window as far as there are any; without one it is 0.
long Average(const ClHistogram& Histogram, int nFrom, int nTo) {
    long nSum = 0;
    long nBins = 0;
    for (int i = std::max(0, nFrom); i <= std::min(255, nTo); ++i, ++nBins)
        nSum += Histogram.m_anCount[i];
    return nBins == 0 ? 0 : nSum / nBins;
}

/// Humps of several sizes, so that walks of every length occur.
ClHistogram Humps(unsigned nSeed) {
    std::mt19937 random(nSeed);
    ClHistogram Histogram;
    for (unsigned n = 0; n < 1 + nSeed % 4; ++n) {
        const int nTop = static_cast<int>(random() % 256);
        const int nHeight = static_cast<int>(random() % 1000);
        const int nSlope = 3 + static_cast<int>(random() % 20);
        for (int i = 0; i < 256; ++i)
            Histogram.m_anCount[i] += std::max(0, nHeight - nSlope * std::abs(i - nTop)) +
                                      static_cast<int>(random() % (1 + nSeed % 9));
    }
    return Histogram;
}

int Walked(const ClHistogram& Histogram, int nPos, int nWidth, bool bClimb) {
    const auto isBetterAbove = [&](int n) {
        const long nBelow = Average(Histogram, n - nWidth, n - 1);
        const long nAbove = Average(Histogram, n + 1, n + nWidth);
        return bClimb ? nAbove > nBelow : nAbove < nBelow;
    };
    const auto isBetterBelow = [&](int n) {
        const long nBelow = Average(Histogram, n - nWidth, n - 1);
        const long nAbove = Average(Histogram, n + 1, n + nWidth);
        return bClimb ? nBelow > nAbove : nBelow < nAbove;
    };
    if (isBetterAbove(nPos))
        while (nPos < 255 && isBetterAbove(nPos))
            ++nPos;
    else
        while (nPos > 0 && isBetterBelow(nPos))
            --nPos;
    return nPos;
}

TEST(HistogramShape, WalksByItsDefinition) {
    for (unsigned nSeed = 0; nSeed < 12; ++nSeed) {
        const ClHistogram Histogram = Humps(nSeed);
        for (int nStart = 0; nStart < 256; nStart += 5)
            for (int nWidth : {1, 2, 7, 40, 255}) {
                const auto nPos = static_cast<unsigned char>(nStart);
                const auto nBins = static_cast<unsigned char>(nWidth);
                EXPECT_EQ(Histogram.Climb(nPos, nBins), Walked(Histogram, nStart, nWidth, true));
                EXPECT_EQ(Histogram.Descend(nPos, nBins), Walked(Histogram, nStart, nWidth, false));
            }
    }
}

TEST(HistogramShape, StaysWhereTheWalkHasNoDirection) {
    const ClHistogram Flat = Counts({});
    EXPECT_EQ(Flat.Climb(33, 4), 33);
    EXPECT_EQ(Flat.Descend(33, 4), 33);
    EXPECT_EQ(Tent(120).Climb(50, 0), 50);
    EXPECT_EQ(Tent(120).Descend(50, 0), 50);
}

TEST(HistogramShape, WalksToTheEndsOfTheBins) {
    ClHistogram Rising;
    for (int i = 0; i < 256; ++i)
        Rising.m_anCount[i] = i * 10;
    EXPECT_EQ(Rising.Descend(200, 3), 0);
    // above the last bin there is nothing to average
    EXPECT_EQ(Rising.Climb(10, 3), 255);
    EXPECT_EQ(Rising.Climb(255, 3), 254); // down by one: 255 alone averages more than those below
}

TEST(HistogramShape, WalksLessTheOffset) {
    ClHistogram Histogram = Tent(140);
    Histogram.m_nOffset = 128;
    EXPECT_NEAR(Histogram.Climb(100, 3), 12, 1);
    EXPECT_EQ(static_cast<signed char>(Histogram.Climb(60, 0)), 60 - 128);
}

// Peaks

TEST(HistogramShape, IsUnimodalWithOnePeak) {
    for (int nTop : {30, 120, 220})
        EXPECT_TRUE(Tent(nTop).IsUnimodal(0)) << nTop;
    EXPECT_TRUE(Counts({}).IsUnimodal(0)); // no peak
}

TEST(HistogramShape, IsNotUnimodalWithTwoPeaks) {
    ClHistogram Histogram = Tent(60);
    for (int i = 150; i < 200; ++i)
        Histogram.m_anCount[i] += 1500;
    EXPECT_FALSE(Histogram.IsUnimodal(0));
    EXPECT_FALSE(Histogram.IsUnimodal(100));
    EXPECT_TRUE(Histogram.IsUnimodal(180)); // behind the second peak
}

TEST(HistogramShape, IsUnimodalWithARippleThatTheAveragesHide) {
    ClHistogram Histogram;
    for (int i = 0; i < 256; ++i)
        Histogram.m_anCount[i] = std::max(0, 5000 - 40 * std::abs(i - 100)) + (i % 10 == 3 ? 9 : 0);
    EXPECT_TRUE(Histogram.IsUnimodal(0)); // ten neighbours hold one ripple, wherever they begin
}

/// A peak by 5 bins below and 25 above, behind which averages of 10 never rise.
bool HasOnePeak(const ClHistogram& Histogram, int nPos) {
    while (nPos < 256 &&
           Average(Histogram, nPos - 5, nPos - 1) <= Average(Histogram, nPos + 1, nPos + 25))
        ++nPos;
    for (int i = nPos + 1; i + 10 < 256; ++i)
        if (Average(Histogram, i, i + 9) < Average(Histogram, i + 1, i + 10))
            return false;
    return true;
}

TEST(HistogramShape, FindsOnePeakByItsDefinition) {
    int nUnimodal = 0;
    int nAsked = 0;
    for (unsigned nSeed = 0; nSeed < 200; ++nSeed) {
        const ClHistogram Histogram = Humps(nSeed);
        for (int n = 0; n < 256; n += 3, ++nAsked) {
            const bool bExpected = HasOnePeak(Histogram, n);
            nUnimodal += bExpected ? 1 : 0;
            EXPECT_EQ(Histogram.IsUnimodal(static_cast<unsigned char>(n)), bExpected)
                << nSeed << ' ' << n;
        }
    }
    EXPECT_GT(nUnimodal, nAsked / 10); // both answers occur
    EXPECT_LT(nUnimodal, nAsked - nAsked / 10);
}

TEST(HistogramShape, AnswersForEveryStart) {
    const ClHistogram Histogram = RandomCounts(8, 1000);
    for (int n = 0; n < 256; ++n) {
        const auto nPos = static_cast<unsigned char>(n);
        EXPECT_EQ(Histogram.IsUnimodal(nPos), HasOnePeak(Histogram, n)) << n;
        for (int nWidth : {1, 5, 254, 255}) {
            const auto nBins = static_cast<unsigned char>(nWidth);
            EXPECT_EQ(Histogram.Climb(nPos, nBins), Walked(Histogram, n, nWidth, true)) << n;
            EXPECT_EQ(Histogram.Descend(nPos, nBins), Walked(Histogram, n, nWidth, false)) << n;
        }
    }
    EXPECT_TRUE(Histogram.IsUnimodal(255)); // no ten bins follow
}

} // namespace
