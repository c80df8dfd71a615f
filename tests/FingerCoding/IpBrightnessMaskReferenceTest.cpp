// The brightness mask against a second implementation by loops over whole windows.

#include "FingerCoding/IpBrightnessMask.h"
#include "NaiveMaskSteps.h"

#include <random>
#include <string>

namespace {

using namespace TestSupport;

long WidthFor(const ClIpBrightnessMask& ip, double dFactor) {
    return static_cast<long>(*ip.m_pdRidgeDist * dFactor) | 1;
}

/// Without loops that carry anything: the sums anew for every value.
int ThresholdOf(const ClIpBrightnessMask& ip, const Rows& aImage, int nPels) {
    const std::array<long, 256> h = Naive::HistogramOf(aImage);
    const int w = ip.m_nDerivationWidth;
    const int nLow = std::max<int>(ip.m_nMinBinarizeThreshold, w);
    const int nHigh = std::min<int>(255 - w, ip.m_nMaxBinarizeThreshold);
    const double dSide = std::sqrt(ip.m_dMinAreaMM2) * 100.0 * (nPels * 1e-5);
    const auto at = [&h](int v) { return h[static_cast<std::size_t>(v)]; };
    for (int v = nLow; v < nHigh; ++v) {
        long nDarker = 0;
        for (int i = 0; i <= v; ++i)
            nDarker += at(i);
        double dRise = 0.0;
        for (int j = 1; j <= w; ++j)
            dRise += static_cast<double>(at(v + j) - at(v - j)) * 0.5 / j;
        dRise /= std::max(w, 1);
        if (nDarker > static_cast<long>(dSide * dSide) && dRise > ip.m_dDerivativeThresh)
            return v;
    }
    return std::max(nLow, nHigh);
}

struct StExpectedBrightness {
    int m_nThreshold;
    Rows m_aProb;
    Naive::StRegion m_Region;
};

StExpectedBrightness Expected(const ClIpBrightnessMask& ip, const Rows& aIn, int nPels) {
    Rows a = aIn;
    if (ip.m_bIlFix) {
        a = Naive::Frame(aIn, ip.m_nImageBorderWidth, 0);
        a = Naive::MaxOf(a, WidthFor(ip, ip.m_dIlFixMaxWidthFactor));
        a = Naive::Map(a, [](int n) { return 255 - n; });
        a = Naive::MeanOf(a, WidthFor(ip, ip.m_dIlFixLowPassWidthFactor));
        a = Naive::Fill(Naive::WidthOf(a), Naive::HeightOf(a), [&](int x, int y) {
            return std::min(255, Naive::At(aIn, x, y) + Naive::At(a, x, y));
        });
    }
    a = Naive::Stretched(a, ip.m_dDarkNoisePart, ip.m_dBrightNoisePart);
    a = Naive::MinOf(a, WidthFor(ip, ip.m_dDilatWidthFactor));
    a = Naive::MeanOf(a, WidthFor(ip, ip.m_dLowPassWidthFactor));
    const int t = ThresholdOf(ip, a, nPels);
    Picture aDark = Naive::PictureWhere(a, [t](int n) { return n < t; });
    aDark = Naive::WithoutHoles(Naive::WithoutSmallBlobs(aDark, 1000));
    const double w = Naive::WidthOf(a);
    const double h = Naive::HeightOf(a);
    StExpectedBrightness expected = {
        t,
        Naive::Map(a, [t](int n) { return std::clamp(n + 128 - t, 0, 255); }),
        {Naive::RunsIn(aDark), {{0.0, 0.0, w, h}}}};
    Naive::SetBoundingBox(expected.m_Region);
    return expected;
}

/// Ridges in an ellipse, on a platen with a slope of light and noise.
ClTestImage FingerLike(int nWidth, int nHeight, std::mt19937& rRandom) {
    ClTestImage image = BlankImage(ClImage::eUInt8, nWidth, nHeight);
    const double dLight = RandomInt(rRandom, 150, 250);
    const double dDepth = RandomInt(rRandom, 20, 140);
    const double dSlope = RandomInt(rRandom, -60, 60);
    const double dSize = RandomInt(rRandom, 5, 12) / 20.0;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const double u = (x + 0.5) / nWidth - 0.5;
            const double v = (y + 0.5) / nHeight - 0.5;
            double d = dLight + u * dSlope + RandomInt(rRandom, -6, 6);
            if (u * u + v * v < dSize * dSize)
                d -= dDepth * (0.5 + 0.5 * std::sin((x + 0.4 * y) * 0.9));
            SetSample(image, x, y, 0, std::floor(std::clamp(d, 0.0, 255.0)));
        }
    return image;
}

/// Settings around those in use, now and then far from them.
void SetAtRandom(ClIpBrightnessMask& ip, std::mt19937& rRandom) {
    ip.m_dRidgeDist = RandomInt(rRandom, 1, 130) / 10.0;
    ip.m_bIlFix = RandomInt(rRandom, 0, 3) != 0;
    ip.m_nImageBorderWidth = RandomInt(rRandom, 0, 10);
    ip.m_dIlFixMaxWidthFactor = RandomInt(rRandom, 0, 30) / 10.0;
    ip.m_dIlFixLowPassWidthFactor = RandomInt(rRandom, 0, 15) / 10.0;
    ip.m_dDarkNoisePart = RandomInt(rRandom, 0, 30) / 100.0;
    ip.m_dBrightNoisePart = RandomInt(rRandom, 0, 30) / 100.0;
    ip.m_dDilatWidthFactor = RandomInt(rRandom, 0, 15) / 10.0;
    ip.m_dLowPassWidthFactor = RandomInt(rRandom, 0, 20) / 10.0;
    ip.m_nDerivationWidth = static_cast<unsigned char>(RandomInt(rRandom, 0, 40));
    ip.m_dDerivativeThresh = RandomInt(rRandom, -3, 6);
    ip.m_dMinAreaMM2 = RandomInt(rRandom, 0, 1) * RandomInt(rRandom, 0, 10);
    ip.m_nMinBinarizeThreshold = static_cast<unsigned char>(RandomInt(rRandom, 0, 150));
    ip.m_nMaxBinarizeThreshold = static_cast<unsigned char>(RandomInt(rRandom, 100, 255));
}

/// How many of the runs found a dark area, and thresholds between the limits: a test of nothing but
/// empty masks would show little.
struct StSeenBrightness {
    int m_nRegions = 0;
    int m_nFound = 0;
};

void ExpectAsExpected(ClIpBrightnessMask& ip, ClTestImage& rIn, StSeenBrightness& rSeen) {
    const ClTestImage before = rIn;
    ClMask2 mask;
    ClTestImage prob;
    ip.m_pInImage = &rIn;
    ip.m_pInOutMask = &mask;
    ip.m_pOptOutProbImage = &prob;
    ASSERT_EQ(ip.Apply(), 0);
    const StExpectedBrightness expected = Expected(ip, Pixels(rIn), cnTestPels);
    EXPECT_TRUE(Pixels(prob) == expected.m_aProb);
    EXPECT_TRUE(Naive::RegionOf(mask) == expected.m_Region);
    ExpectSameImage(rIn, before);
    const int t = expected.m_nThreshold;
    rSeen.m_nRegions += expected.m_Region.m_aRuns.empty() ? 0 : 1;
    rSeen.m_nFound += t > ip.m_nMinBinarizeThreshold && t < ip.m_nMaxBinarizeThreshold ? 1 : 0;
}

TEST(IpBrightnessMaskReference, AgreesOnFingersOfOddSizes) {
    std::mt19937 random(31);
    StSeenBrightness seen;
    for (int n = 0; n < 80; ++n) {
        const int nWidth = RandomInt(random, 30, 101);
        const int nHeight = RandomInt(random, 30, 101);
        SCOPED_TRACE(std::to_string(n) + ": " + std::to_string(nWidth) + " x " +
                     std::to_string(nHeight));
        ClTestImage in = FingerLike(nWidth, nHeight, random);
        ClIpBrightnessMask ip;
        SetAtRandom(ip, random);
        ExpectAsExpected(ip, in, seen);
    }
    EXPECT_GT(seen.m_nRegions, 20);
    EXPECT_GT(seen.m_nFound, 20);
}

TEST(IpBrightnessMaskReference, AgreesOnNoiseOfTheSmallestSizes) {
    std::mt19937 random(32);
    StSeenBrightness seen;
    for (int nWidth : {1, 2, 3, 5, 9, 40})
        for (int nHeight : {1, 2, 4, 7, 33}) {
            SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
            ClTestImage in =
                RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, static_cast<unsigned>(random()));
            ClIpBrightnessMask ip;
            SetAtRandom(ip, random);
            ExpectAsExpected(ip, in, seen);
        }
    EXPECT_GE(seen.m_nFound, 5);
}

} // namespace
