#include "ImageProcessing/Histogram.h"

#include "ImageProcessing/HistogramCounts.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::Counts;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::RandomImage;

using Bins = std::array<int, 256>;

Bins BinsOf(const ClHistogram& Histogram) {
    Bins aBins{};
    std::copy(Histogram.m_anCount, Histogram.m_anCount + 256, aBins.begin());
    return aBins;
}

/// Counts by the definition, sample by sample.
Bins NaiveBins(const ClImage& Image, int nLeft, int nTop, int nRight, int nBottom) {
    Bins aBins{};
    const int nOffset = Image.DataType() == ClImage::eInt8 ? 128 : 0;
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x)
            if (x >= nLeft && x < nRight && y >= nTop && y < nBottom)
                ++aBins[static_cast<std::size_t>(TestSupport::Sample(Image, x, y) + nOffset)];
    return aBins;
}

ClHistogram HistogramOf(const ClImage& Image) {
    ClHistogram Histogram;
    Histogram.Create(Image);
    return Histogram;
}

// Counting

TEST(Histogram, BeginsEmpty) {
    const ClHistogram Histogram;
    EXPECT_EQ(BinsOf(Histogram), Bins{});
    EXPECT_EQ(Histogram.m_nOffset, 0);
}

TEST(Histogram, ResetEmptiesBinsAndOffset) {
    ClHistogram Histogram = HistogramOf(FlatImage(ClImage::eInt8, 3, 3, 1, -5));
    EXPECT_EQ(Histogram.m_nOffset, 128);
    Histogram.Reset();
    EXPECT_EQ(BinsOf(Histogram), Bins{});
    EXPECT_EQ(Histogram.m_nOffset, 0);
}

TEST(Histogram, CountsEveryPixelOnceAndNoPadding) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (int nWidth = 1; nWidth < 36; ++nWidth) {
            const ClTestImage image = RandomImage(nType, nWidth, 7, 1, 3);
            const ClHistogram Histogram = HistogramOf(image);
            EXPECT_EQ(BinsOf(Histogram), NaiveBins(image, 0, 0, nWidth, 7)) << nWidth;
            EXPECT_EQ(Histogram.m_nOffset, nType == ClImage::eInt8 ? 128 : 0);
        }
}

TEST(Histogram, CountsLongRunsOfOneValue) {
    const ClHistogram Histogram = HistogramOf(FlatImage(ClImage::eUInt8, 401, 300, 1, 255));
    EXPECT_EQ(BinsOf(Histogram), BinsOf(Counts({{255, 401 * 300}})));
}

TEST(Histogram, CountsAWindowWithoutItsRightAndBottomEnd) {
    const ClTestImage image = Img({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    ClHistogram Histogram;
    Histogram.Create(image, 1, 0, 3, 2);
    EXPECT_EQ(BinsOf(Histogram), BinsOf(Counts({{2, 1}, {3, 1}, {5, 1}, {6, 1}})));
}

TEST(Histogram, ClipsAWindowToTheImage) {
    const ClTestImage image = RandomImage(ClImage::eUInt8, 13, 9, 1, 4);
    constexpr int nMin = std::numeric_limits<int>::min();
    constexpr int nMax = std::numeric_limits<int>::max();
    const int aWindows[][4] = {{-3, -2, 5, 4},        {7, 3, 99, 99},  {nMin, nMin, nMax, nMax},
                               {2, 8, 3, 9},          {12, 0, 13, 20}, {13, 0, 14, 9},
                               {-9, 0, 0, 9},         {0, 9, 13, 10},  {nMin, 0, nMin + 1, 5},
                               {nMax - 1, 0, nMax, 9}};
    ClHistogram Histogram;
    for (const auto& w : aWindows) {
        Histogram.Create(image, w[0], w[1], w[2], w[3]);
        EXPECT_EQ(BinsOf(Histogram), NaiveBins(image, w[0], w[1], w[2], w[3])) << w[0];
    }
}

TEST(Histogram, DropsTheFormerCounts) {
    ClHistogram Histogram = HistogramOf(FlatImage(ClImage::eInt8, 4, 4, 1, 3));
    Histogram.Create(FlatImage(ClImage::eUInt8, 2, 2, 1, 9));
    EXPECT_EQ(BinsOf(Histogram), BinsOf(Counts({{9, 4}})));
    EXPECT_EQ(Histogram.m_nOffset, 0);
}

TEST(Histogram, RefusesSeveralPlanes) {
    ClHistogram Histogram = HistogramOf(FlatImage(ClImage::eUInt8, 4, 4, 1, 3));
    for (int nPlanes : {2, 3, 4})
        EXPECT_THROWS(Histogram.Create(BlankImage(ClImage::eUInt8, 4, 4, nPlanes)), ClException,
                      -101, "Color-image not supported in ClHistogram::Create.");
    EXPECT_THROWS(Histogram.Create(ClImage()), ClException, -101,
                  "Color-image not supported in ClHistogram::Create.");
    EXPECT_EQ(BinsOf(Histogram), Bins{});
    try {
        Histogram.Create(BlankImage(ClImage::eUInt8, 4, 4, 3));
        FAIL();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}

TEST(Histogram, RefusesAWindowWithoutArea) {
    const ClTestImage image = BlankImage(ClImage::eUInt8, 5, 5);
    ClHistogram Histogram = HistogramOf(image);
    const int aWindows[][4] = {{2, 0, 2, 5}, {3, 0, 2, 5}, {0, 2, 5, 2}, {0, 3, 5, 2}};
    for (const auto& w : aWindows)
        EXPECT_THROWS(Histogram.Create(image, w[0], w[1], w[2], w[3]), ClException, -101,
                      "invalid Range in ClHistogram::Create.");
    EXPECT_EQ(BinsOf(Histogram), Bins{});
}

TEST(Histogram, RefusesOtherPixelTypes) {
    ClHistogram Histogram;
    for (unsigned char nType : TestSupport::caPixelTypes)
        if (ClImage::BytesPerSample(nType) != 1)
            EXPECT_THROWS(Histogram.Create(BlankImage(nType, 4, 4)), ClException, -101,
                          "Image Type is not the assigned type");
}

TEST(Histogram, RefusesMissingPixels) {
    ClImage image;
    image.Attach(nullptr, ClImage::eUInt8, 4, 4, 1, 0, 0);
    ClHistogram Histogram;
    EXPECT_THROWS(Histogram.Create(image), ClExTessarin, -37,
                  "One of the required parameter is missing.");
}

// Values

TEST(Histogram, TellsTheFirstAndLastValue) {
    const ClHistogram Histogram = HistogramOf(Img({{7, 200, 7, 31}}));
    EXPECT_EQ(Histogram.FirstValue(), 7);
    EXPECT_EQ(Histogram.LastValue(), 200);
    EXPECT_EQ(HistogramOf(Img({{0, 255}})).FirstValue(), 0);
    EXPECT_EQ(HistogramOf(Img({{0, 255}})).LastValue(), 255);
}

TEST(Histogram, TellsTheFirstAndLastValueLessTheOffset) {
    const ClHistogram Histogram = HistogramOf(Img(ClImage::eInt8, {{-3, 5, 100}}));
    EXPECT_EQ(static_cast<signed char>(Histogram.FirstValue()), -3);
    EXPECT_EQ(static_cast<signed char>(Histogram.LastValue()), 100);
}

TEST(Histogram, TellsAnUpsideDownRangeWhenEmpty) {
    EXPECT_EQ(ClHistogram().FirstValue(), 255);
    EXPECT_EQ(ClHistogram().LastValue(), 0);
    ClHistogram Outside;
    Outside.Create(BlankImage(ClImage::eInt8, 3, 3), 5, 5, 6, 6);
    EXPECT_EQ(Outside.FirstValue(), 255);
    EXPECT_EQ(Outside.LastValue(), 0);
}

TEST(Histogram, CountsTheValuesThatOccur) {
    EXPECT_EQ(HistogramOf(Img({{7, 200, 7, 31}})).GetColorCount(), 3);
    EXPECT_EQ(HistogramOf(FlatImage(ClImage::eUInt8, 9, 9, 1, 0)).GetColorCount(), 1);
    EXPECT_EQ(ClHistogram().GetColorCount(), 0);
}

TEST(Histogram, TellsTheHighestAndLowestCount) {
    ClHistogram Histogram = Counts({{0, 5}, {9, 70}, {255, 3}});
    EXPECT_EQ(Histogram.MaxCount(), 70);
    EXPECT_EQ(Histogram.MinCount(), 0);
    for (int& nCount : Histogram.m_anCount)
        nCount += 2;
    EXPECT_EQ(Histogram.MinCount(), 2);
}

// Moments

TEST(Histogram, TellsTheMeanOfARange) {
    const ClHistogram Histogram = Counts({{10, 1}, {20, 3}, {200, 5}});
    EXPECT_EQ(Histogram.GetGreyMid(0, 255), (10 + 60 + 1000) / 9.0);
    EXPECT_EQ(Histogram.GetGreyMid(10, 20), 17.5);
    EXPECT_EQ(Histogram.GetGreyMid(20, 20), 20.0);
}

TEST(Histogram, TellsASignedMeanOfASignedImage) {
    EXPECT_EQ(HistogramOf(Img(ClImage::eInt8, {{-100, -50, 3}})).GetGreyMid(0, 255), -49.0);
    EXPECT_EQ(HistogramOf(Img(ClImage::eInt8, {{-128, 127}})).GetGreyMid(0, 255), -0.5);
}

TEST(Histogram, TellsTheMiddleOfARangeThatIsEmptyOrReversed) {
    const ClHistogram Histogram = Counts({{10, 1}});
    EXPECT_EQ(Histogram.GetGreyMid(11, 16), 13.0);
    EXPECT_EQ(Histogram.GetGreyMid(20, 5), 12.0);
    ClHistogram Signed = HistogramOf(Img(ClImage::eInt8, {{-100}}));
    EXPECT_EQ(Signed.GetGreyMid(100, 201), 150.0); // not less the offset
    EXPECT_EQ(Signed.GetGreyMid(255, 0), 127.0);
}

TEST(Histogram, KeepsTheSumOfAMeanIn32Bits) {
    // 2^25 * 255 = 8556380160 = 2^32 + 4261412864
    const ClHistogram Histogram = Counts({{255, 1 << 25}});
    EXPECT_EQ(Histogram.GetGreyMid(0, 255), 4261412864.0 / 33554432.0);
    // above 2^31, where a signed sum would end
    EXPECT_EQ(Counts({{200, 20000000}}).GetGreyMid(0, 255), 200.0);
}

TEST(Histogram, TellsTheStandardDeviationOfARange) {
    // 2, 4, 4, 4, 5, 5, 7, 9 has the mean 5 and the deviation 2
    const ClHistogram Histogram = Counts({{2, 1}, {4, 3}, {5, 2}, {7, 1}, {9, 1}, {100, 4}});
    EXPECT_DOUBLE_EQ(Histogram.GetStdDeviation(0, 9), 2.0);
    EXPECT_EQ(Histogram.GetStdDeviation(100, 200), 0.0);
    EXPECT_EQ(Histogram.GetStdDeviation(10, 99), 0.0);
    EXPECT_EQ(Histogram.GetStdDeviation(9, 0), 0.0);
    EXPECT_EQ(ClHistogram().GetStdDeviation(0, 255), 0.0);
}

TEST(Histogram, TellsTheStandardDeviationLessTheOffset) {
    const ClHistogram Histogram = HistogramOf(Img(ClImage::eInt8, {{-3, 3}}));
    EXPECT_DOUBLE_EQ(Histogram.GetStdDeviation(0, 255), 3.0 - 128.0);
}

TEST(Histogram, TellsTheMeanAbsoluteDeviation) {
    EXPECT_DOUBLE_EQ(Counts({{2, 1}, {4, 1}, {9, 1}}).GetAverageDeviation(), (3 + 1 + 4) / 3.0);
    EXPECT_EQ(Counts({{77, 12}}).GetAverageDeviation(), 0.0);
    EXPECT_EQ(ClHistogram().GetAverageDeviation(), 0.0);
    EXPECT_DOUBLE_EQ(HistogramOf(Img(ClImage::eInt8, {{-3, 3}})).GetAverageDeviation(), 3.0);
}

// The noise-free range

using Range = std::pair<int, int>;

Range NoiseFreeRange(const ClHistogram& Histogram, double dDark, double dBright) {
    unsigned char nLow = 77;
    unsigned char nHigh = 77;
    Histogram.GetNoiseFreeRange(dDark, dBright, nLow, nHigh);
    return {nLow, nHigh};
}

/// The two scans, step by step, with counters of 8 bits.
Range NaiveRange(const ClHistogram& Histogram, double dDark, double dBright) {
    long nTotal = 0;
    for (int nCount : Histogram.m_anCount)
        nTotal += nCount;
    const long nDark = static_cast<long>(dDark * static_cast<double>(nTotal));
    const long nBright = static_cast<long>(static_cast<double>(nTotal) * dBright);
    unsigned char nLow = 0;
    long nSum = 0;
    do
        nSum += Histogram.m_anCount[nLow++];
    while (!(nSum > nDark) && nLow != 0);
    --nLow;
    unsigned char nHigh = 255;
    nSum = 0;
    do
        nSum += Histogram.m_anCount[nHigh--];
    while (!(nSum > nBright) && nHigh != 255);
    ++nHigh;
    return {nLow, nHigh};
}

TEST(HistogramRange, EqualsTheTwoScansStepByStep) {
    for (unsigned nSeed = 0; nSeed < 12; ++nSeed) {
        ClTestImage image = RandomImage(ClImage::eUInt8, 31, 17, 1, nSeed);
        if (nSeed % 2 == 1) // few values, with gaps
            for (int y = 0; y < 17; ++y)
                for (int x = 0; x < 31; ++x)
                    TestSupport::SetSample(image, x, y, 0,
                                           std::floor(TestSupport::Sample(image, x, y) / 30) * 30);
        const ClHistogram Histogram = HistogramOf(image);
        for (double dDark : {0.0, 0.001, 0.1, 0.5, 0.999, 1.0, 1.5, -0.2, -2.0})
            for (double dBright : {0.0, 0.001, 0.1, 0.5, 0.999, 1.0, 1.5, -0.2, -2.0})
                EXPECT_EQ(NoiseFreeRange(Histogram, dDark, dBright),
                          NaiveRange(Histogram, dDark, dBright))
                    << dDark << ' ' << dBright << ' ' << nSeed;
    }
}

TEST(HistogramRange, EndsUpsideDownOfAnEmptyHistogram) {
    EXPECT_EQ(NoiseFreeRange(ClHistogram(), 0.0, 0.0), Range(255, 0));
    EXPECT_EQ(NoiseFreeRange(ClHistogram(), 0.3, 0.3), Range(255, 0));
}

TEST(HistogramRange, EndsAtZeroForABrightShareAboveOne) {
    const ClHistogram Histogram = Counts({{100, 10}, {200, 10}});
    EXPECT_EQ(NoiseFreeRange(Histogram, 0.0, 1.1), Range(100, 0));
    EXPECT_EQ(NoiseFreeRange(Histogram, 1.1, 0.0), Range(255, 200));
}

TEST(HistogramRange, IsThatOfTheOccupiedValuesWithoutNoise) {
    EXPECT_EQ(NoiseFreeRange(Counts({{31, 1}, {64, 5}, {90, 1}}), 0.0, 0.0), Range(31, 90));
    EXPECT_EQ(NoiseFreeRange(Counts({{0, 1}}), 0.0, 0.0), Range(0, 0));
    EXPECT_EQ(NoiseFreeRange(Counts({{255, 1}}), 0.0, 0.0), Range(255, 255));
}

TEST(HistogramRange, GoesOnWhereAShareIsExactlyAtTheLimit) {
    const ClHistogram Histogram = Counts({{10, 25}, {20, 50}, {30, 25}});
    EXPECT_EQ(NoiseFreeRange(Histogram, 0.25, 0.25), Range(20, 20));
    EXPECT_EQ(NoiseFreeRange(Histogram, 0.24, 0.24), Range(10, 30));
    EXPECT_EQ(NoiseFreeRange(Histogram, 0.2599, 0.75), Range(20, 10)); // 25.99 counts as 25
}

TEST(HistogramRange, IsThatOfTheBinsForASignedImage) {
    const ClHistogram Histogram = HistogramOf(Img(ClImage::eInt8, {{-100, 5}}));
    EXPECT_EQ(NoiseFreeRange(Histogram, 0.0, 0.0), Range(28, 133));
}

TEST(HistogramRange, TakesEveryNumberAsAShare) {
    const ClHistogram Histogram = Counts({{100, 10}, {200, 10}});
    const double dInf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(NoiseFreeRange(Histogram, dInf, dInf), Range(255, 0));
    EXPECT_EQ(NoiseFreeRange(Histogram, 1e300, 1e300), Range(255, 0));
    EXPECT_EQ(NoiseFreeRange(Histogram, -dInf, -dInf), Range(0, 255));
    EXPECT_EQ(NoiseFreeRange(Histogram, -1e300, -1e300), Range(0, 255));
    EXPECT_EQ(NoiseFreeRange(Histogram, std::nan(""), std::nan("")), Range(100, 200));
    EXPECT_EQ(NoiseFreeRange(Histogram, std::ldexp(1.0, 63) / 20, std::ldexp(1.0, 63) / 20),
              Range(255, 0));
}

TEST(HistogramRange, OfAnImageIsThatOfItsHistogram) {
    unsigned char nLow = 0;
    unsigned char nHigh = 0;
    ClHistogram::GetRange(Img({{5, 9, 9, 9, 9, 9, 9, 9, 9, 50}}), 0.0, 0.1, nLow, nHigh);
    EXPECT_EQ(nLow, 5);
    EXPECT_EQ(nHigh, 9);
    EXPECT_THROWS(ClHistogram::GetRange(BlankImage(ClImage::eUInt8, 2, 2, 3), 0, 0, nLow, nHigh),
                  ClException, -101, "Color-image not supported in ClHistogram::Create.");
}

} // namespace
