#include "ImageProcessing/IpStretchRangeLocal.h"

#include "ImageProcessing/IpSubsample.h"
#include "ImageProcessing/NaiveLocalStretch.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <limits>
#include <vector>

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::NaiveLimits;
using TestSupport::NaiveStretched;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using TestSupport::StLocalStretch;
using TestSupport::StNaiveLimits;

/// Random samples of low contrast on a slope of light, with flat corners.
ClTestImage Finger(int nWidth, int nHeight, unsigned nSeed) {
    ClTestImage image = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, nSeed);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const bool bFlat = x + y < (nWidth + nHeight) / 4;
            const double dNoise = TestSupport::Sample(image, x, y) / (bFlat ? 100 : 4);
            TestSupport::SetSample(image, x, y, 0, std::floor(dNoise) + x % 190);
        }
    return image;
}

void Set(ClIpStretchRangeLocal& ip, const StLocalStretch& Settings) {
    ip.m_nFilterWidth = Settings.m_nWidth;
    ip.m_nMinContrast = Settings.m_nMinContrast;
    ip.m_bUseMinSmoothing = Settings.m_bMinSmoothing;
    ip.m_bUseMaxSmoothing = Settings.m_bMaxSmoothing;
    ip.m_nSubSampleRate = 1;
}

Rows Stretched(const ClTestImage& In, const StLocalStretch& Settings) {
    ClTestImage in(In);
    ClImage out;
    ClIpStretchRangeLocal ip;
    Set(ip, Settings);
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(in, In);
    return Pixels(out);
}

Rows Defined(const ClTestImage& In, StLocalStretch Settings) {
    Settings.m_nSmoothWidth = Settings.m_nWidth;
    const Rows aIn = Pixels(In);
    return NaiveStretched(aIn, NaiveLimits(aIn, Settings), Settings.m_nMinContrast);
}

TEST(IpStretchRangeLocal, BeginsWithItsDefaults) {
    const ClIpStretchRangeLocal ip;
    EXPECT_EQ(ip.m_pInImage, nullptr);
    EXPECT_EQ(ip.m_pOutImage, nullptr);
    EXPECT_EQ(ip.m_nNewRangeFrom, 0);
    EXPECT_EQ(ip.m_nNewRangeTo, 255);
    EXPECT_EQ(ip.m_nFilterWidth, 3);
    EXPECT_EQ(ip.m_nMinContrast, 5);
    EXPECT_EQ(ip.m_nSubSampleRate, 4);
    EXPECT_TRUE(ip.m_bUseMinSmoothing);
    EXPECT_FALSE(ip.m_bUseMaxSmoothing);
    EXPECT_EQ(ip.m_pOptOutMinImage, nullptr);
    EXPECT_EQ(ip.m_pOptOutMaxImage, nullptr);
}

// Without subsampling

TEST(IpStretchRangeLocal, EqualsItsDefinitionForImagesOfEverySize) {
    const int aSizes[][2] = {{1, 1}, {1, 13}, {13, 1}, {3, 7}, {16, 5}, {23, 17}, {31, 33}};
    for (const auto& s : aSizes)
        for (long nWidth : {3L, 5L, 23L}) {
            const ClTestImage image = Finger(s[0], s[1], 1);
            StLocalStretch Settings;
            Settings.m_nWidth = nWidth;
            EXPECT_EQ(Stretched(image, Settings), Defined(image, Settings))
                << s[0] << " x " << s[1] << ", width " << nWidth;
        }
}

TEST(IpStretchRangeLocal, EqualsItsDefinitionForAllSmoothingAndContrast) {
    const ClTestImage image = Finger(29, 21, 2);
    for (bool bMin : {false, true})
        for (bool bMax : {false, true})
            for (long nMinContrast : {5L, 0L, 40L, 255L, -1L, -300L}) {
                const StLocalStretch Settings = {5, 5, nMinContrast, bMin, bMax};
                EXPECT_EQ(Stretched(image, Settings), Defined(image, Settings))
                    << bMin << bMax << ' ' << nMinContrast;
            }
}

TEST(IpStretchRangeLocal, StretchesAFlatRegionByTheGlobalRange) {
    Rows aRows(20, std::vector<int>(40, 150));
    for (std::size_t y = 0; y < 20; ++y)
        for (std::size_t x = 0; x < 10; ++x)
            aRows[y][x] = (x + y) % 2 == 0 ? 50 : 250;
    const Rows aOut = Stretched(Img(aRows), StLocalStretch());
    // 16711680 / 201 = 83142, and 100 of it are 126.8
    for (std::size_t y = 0; y < 20; ++y)
        for (std::size_t x = 16; x < 40; ++x)
            EXPECT_EQ(aOut[y][x], 126) << x << ' ' << y;
    EXPECT_EQ(aOut[10][4], 0);
    EXPECT_EQ(aOut[10][5], 253); // 250 between 50 and 250: 83142 * 200 / 65536 = 253.7
}

TEST(IpStretchRangeLocal, FindsTheGlobalRangeForOneFlatPlaceAtTheEnd) {
    Rows aRows(20, std::vector<int>(40));
    for (std::size_t y = 0; y < 20; ++y)
        for (std::size_t x = 0; x < 40; ++x)
            aRows[y][x] = x + y >= 48 ? 150 : (x + y) % 2 == 0 ? 50 : 250;
    const Rows aOut = Stretched(Img(aRows), StLocalStretch());
    EXPECT_EQ(aOut[19][39], 126); // 150 between 50 and 250, as above
    EXPECT_EQ(aOut, Defined(Img(aRows), StLocalStretch()));
}

TEST(IpStretchRangeLocal, SaturatesAboveAGlobalRangeOfOneValue) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 40, 30, 1, 100);
    TestSupport::SetSample(image, 10, 10, 0, 101); // one of 1200 is noise
    TestSupport::SetSample(image, 30, 20, 0, 99);
    const Rows aOut = Stretched(image, StLocalStretch());
    Rows aExpected(30, std::vector<int>(40, 0));
    aExpected[10][10] = 255;
    EXPECT_EQ(aOut, aExpected);
}

TEST(IpStretchRangeLocal, IgnoresItsNewRange) {
    ClTestImage in = Finger(20, 20, 3);
    ClImage out;
    ClIpStretchRangeLocal ip;
    Set(ip, StLocalStretch());
    ip.m_nNewRangeFrom = 100;
    ip.m_nNewRangeTo = 120;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(out), Defined(in, StLocalStretch()));
}

TEST(IpStretchRangeLocal, CopiesForAWidthOfOne) {
    for (int nPlanes : {1, 3}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 9, 7, nPlanes, 3);
        in.SetAttribute(3);
        ClTestImage same(in);
        ClImage out;
        ClIpStretchRangeLocal ip;
        ip.m_nFilterWidth = 1;
        EXPECT_EQ(ip.ApplyParam(in, out), 0);
        ExpectSameImage(out, in);
        EXPECT_NE(out.Data(), in.Data());
        EXPECT_EQ(ip.ApplyParam(same, same), 0);
        ExpectSameImage(same, in);
    }
}

TEST(IpStretchRangeLocal, RefusesAnEvenWidth) {
    ClTestImage image = Finger(20, 20, 3);
    const ClTestImage before(image);
    ClIpStretchRangeLocal ip;
    ip.m_nSubSampleRate = 1;
    for (long nWidth : {2L, 4L, 22L}) {
        ip.m_nFilterWidth = nWidth;
        EXPECT_THROWS(ip.ApplyParam(image, image), ClException, -44, "Filter width has to be odd.");
    }
    ExpectSameImage(image, before);
}

TEST(IpStretchRangeLocal, TakesWindowsFarBeyondTheImage) {
    const ClTestImage image = Finger(20, 20, 3);
    constexpr long nMax = std::numeric_limits<long>::max();
    for (long nWidth : {41L, 2147483647L, nMax}) {
        StLocalStretch Settings;
        Settings.m_nWidth = nWidth;
        StLocalStretch Whole;
        Whole.m_nWidth = 41; // sees all pixels from everywhere
        EXPECT_EQ(Stretched(image, Settings), Defined(image, Whole)) << nWidth;
    }
}

// With subsampling

/// Each pixel takes the limits of its block.
Rows Replicated(const Rows& aSmall, long nRate, int nWidth, int nHeight) {
    Rows aOut(static_cast<std::size_t>(nHeight));
    for (std::size_t y = 0; y < aOut.size(); ++y)
        for (std::size_t x = 0; x < static_cast<std::size_t>(nWidth); ++x)
            aOut[y].push_back(
                aSmall[y / static_cast<std::size_t>(nRate)][x / static_cast<std::size_t>(nRate)]);
    return aOut;
}

/// The limits of the subsampled image, with a width told for the rank filters.
StNaiveLimits SubsampledLimits(const ClTestImage& In, long nRate, const StLocalStretch& Settings) {
    ClTestImage in(In);
    ClImage small;
    ClIpSubsample subsample;
    EXPECT_EQ(subsample.ApplyParam(in, nRate, small, true), 0);
    const StNaiveLimits Small = NaiveLimits(Pixels(small), Settings);
    return {Replicated(Small.m_aMin, nRate, In.Width(), In.Height()),
            Replicated(Small.m_aMax, nRate, In.Width(), In.Height())};
}

TEST(IpStretchRangeLocal, EqualsItsDefinitionWithSubsampling) {
    struct StCase {
        long m_nWidth, m_nRate, m_nSmallWidth;
    };
    // widths by hand: 23 / 4 = 5; 9 / 4 = 2, made 3; 3 / 4 = 0, made 1, at least 3; 16 / 2 = 8, 9
    const StCase aCases[] = {{23, 4, 5}, {9, 4, 3}, {3, 4, 3}, {16, 2, 9}, {24, 4, 7}, {5, 99, 3}};
    const int aSizes[][2] = {{1, 1}, {7, 41}, {40, 30}, {41, 31}, {99, 67}};
    for (const StCase& c : aCases)
        for (const auto& s : aSizes)
            for (bool bMax : {false, true}) {
                ClTestImage in = Finger(s[0], s[1], 5);
                const StLocalStretch Settings = {c.m_nSmallWidth, c.m_nWidth, 5, true, bMax};
                const Rows aExpected = NaiveStretched(
                    Pixels(in), SubsampledLimits(in, c.m_nRate, Settings), Settings.m_nMinContrast);
                ClImage out;
                ClIpStretchRangeLocal ip;
                Set(ip, Settings);
                ip.m_nFilterWidth = c.m_nWidth;
                ip.m_nSubSampleRate = c.m_nRate;
                EXPECT_EQ(ip.ApplyParam(in, out), 0);
                EXPECT_EQ(Pixels(out), aExpected)
                    << s[0] << " x " << s[1] << ", rate " << c.m_nRate << ", width " << c.m_nWidth;
            }
}

TEST(IpStretchRangeLocal, TakesTheGlobalRangeWhereTheLimitsCrossByOne) {
    // A square of 5 by 5 blocks of 100 in 102. In its middle the maximum of 5 by 5 blocks is 100,
    // and the mean of 23 by 23 minima, 81 of which are 100, is 101.
    ClTestImage in = FlatImage(ClImage::eUInt8, 108, 108, 1, 102);
    for (int y = 44; y < 64; ++y)
        for (int x = 44; x < 64; ++x)
            TestSupport::SetSample(in, x, y, 0, 100);
    const StLocalStretch Settings = {5, 23, -300, true, false};
    const StNaiveLimits Limits = SubsampledLimits(in, 4, Settings);
    ASSERT_EQ(Limits.m_aMin[54][54], 101);
    ASSERT_EQ(Limits.m_aMax[54][54], 100);
    ClImage out;
    ClIpStretchRangeLocal ip;
    Set(ip, Settings);
    ip.m_nFilterWidth = 23;
    ip.m_nSubSampleRate = 4;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(out), NaiveStretched(Pixels(in), Limits, -300));
    EXPECT_EQ(Pixels(out)[54][54], 0); // the bottom of 100 to 102
}

TEST(IpStretchRangeLocal, SubsamplesFromARateOfTwoOn) {
    const ClTestImage image = Finger(20, 20, 3);
    for (long nRate : {1L, 0L, -1L, std::numeric_limits<long>::min()}) {
        ClTestImage in(image);
        ClImage out;
        ClIpStretchRangeLocal ip;
        Set(ip, StLocalStretch());
        ip.m_nSubSampleRate = nRate;
        EXPECT_EQ(ip.ApplyParam(in, out), 0);
        EXPECT_EQ(Pixels(out), Defined(image, StLocalStretch())) << nRate;
    }
}

TEST(IpStretchRangeLocal, TakesRatesFarBeyondTheImage) {
    const ClTestImage image = Finger(20, 20, 3);
    // one block: limits are equal, so that the global range holds everywhere
    const Rows aFlat(20, std::vector<int>(20, 0));
    const Rows aExpected = NaiveStretched(Pixels(image), {aFlat, aFlat}, 5);
    for (long nRate : {20L, 1000000L, 2147483647L, 4294967296L, std::numeric_limits<long>::max()}) {
        ClTestImage in(image);
        ClImage out;
        ClIpStretchRangeLocal ip;
        ip.m_nSubSampleRate = nRate;
        EXPECT_EQ(ip.ApplyParam(in, out), 0);
        EXPECT_EQ(Pixels(out), aExpected) << nRate;
    }
}

} // namespace
