// The contrast mask against a second implementation by loops over whole windows.

#include "FingerCoding/IpContrastMask2.h"
#include "NaiveMaskSteps.h"

#include <random>
#include <string>

namespace {

using namespace TestSupport;

/// An image and its resolution.
struct StPicture {
    Rows m_aRows;
    int m_nPelsX;
    int m_nPelsY;

    int Width() const { return Naive::WidthOf(m_aRows); }
    int Height() const { return Naive::HeightOf(m_aRows); }
};

/// Sample i of an axis comes from sample i * step / 4096.
StPicture Nearest(const StPicture& In, int nWidth, int nHeight, int nPelsX, int nPelsY) {
    if (nWidth == In.Width() && nHeight == In.Height())
        return In;
    const long nStepX = static_cast<long>(In.m_nPelsX) * 4096 / nPelsX;
    const long nStepY = static_cast<long>(In.m_nPelsY) * 4096 / nPelsY;
    const auto at = [&](int x, int y) {
        const long u = x * nStepX / 4096;
        const long v = y * nStepY / 4096;
        const bool bInside = u < In.Width() && v < In.Height();
        return bInside ? Naive::At(In.m_aRows, static_cast<int>(u), static_cast<int>(v)) : 0;
    };
    return {Naive::Fill(nWidth, nHeight, at), nPelsX, nPelsY};
}

double ShrinkFactor(const ClIpContrastMask2& ip, const StPicture& In) {
    return In.m_nPelsX * 0.025400050800101603 / ip.m_dWorkDpi;
}

StPicture Shrunk(const ClIpContrastMask2& ip, const StPicture& In) {
    const int nPelsX = static_cast<int>(In.m_nPelsX / ShrinkFactor(ip, In));
    const int nPelsY = static_cast<int>(In.m_nPelsY / ShrinkFactor(ip, In));
    if (nPelsX == In.m_nPelsX && nPelsY == In.m_nPelsY)
        return In;
    const auto size = [](int n, int nNew, int nOld) {
        return static_cast<int>(static_cast<double>(n) * nNew / nOld + 0.9999);
    };
    return Nearest(In, size(In.Width(), nPelsX, In.m_nPelsX),
                   size(In.Height(), nPelsY, In.m_nPelsY), nPelsX, nPelsY);
}

StPicture Enlarged(const StPicture& Small, const StPicture& In) {
    StPicture result =
        Nearest(Small, In.Width(), In.Height(),
                static_cast<int>(long{In.Width()} * Small.m_nPelsX / Small.Width()),
                static_cast<int>(long{In.Height()} * Small.m_nPelsY / Small.Height()));
    result.m_nPelsX = In.m_nPelsX;
    result.m_nPelsY = In.m_nPelsY;
    return result;
}

long MeanWidth(const ClIpContrastMask2& ip, const StPicture& In) {
    const auto n =
        static_cast<long>(*ip.m_pdRidgeDist * ip.m_dMidRotWidthFactor1 / ShrinkFactor(ip, In));
    const long nHalf = n - n / 2;
    const long nOdd = nHalf % 2 == 0 ? nHalf + 1 : nHalf;
    return 2 * nOdd - 1;
}

/// The smoothed gradients at the resolution of the work.
StPicture Smoothed(const ClIpContrastMask2& ip, const StPicture& In) {
    StPicture small = Shrunk(ip, In);
    Rows a = Naive::Frame(small.m_aRows, ip.m_nBorderWidth, 0);
    a = Naive::Map(a,
                   [&](int n) { return std::min(255, static_cast<int>(n * ip.m_dScaleFactor)); });
    const Rows aMedian = Naive::MedianOf(a);
    a = Naive::Fill(small.Width(), small.Height(), [&](int x, int y) {
        return std::max(Naive::At(a, x, y), Naive::At(aMedian, x, y));
    });
    small.m_aRows = Naive::MeanOf(a, MeanWidth(ip, In));
    return small;
}

/// Runs at the input's resolution: ends and lines scaled, every line as often as it has to be.
RunList Upscaled(const RunList& aRuns, const StPicture& Small, const StPicture& In) {
    const double sx = static_cast<double>(In.m_nPelsX) / Small.m_nPelsX;
    const double sy = static_cast<double>(In.m_nPelsY) / Small.m_nPelsY;
    RunList aResult;
    for (long nLine = 0; nLine < Small.Height(); ++nLine) {
        const long nFirst = static_cast<long>(static_cast<double>(nLine) * sy);
        const long nEnd = static_cast<long>(static_cast<double>(nLine + 1) * sy);
        for (long y = nFirst; y < std::max(nFirst + 1, std::min<long>(nEnd, In.Height())); ++y)
            for (const auto& Run : aRuns)
                if (Run[2] == nLine)
                    aResult.push_back({static_cast<long>(static_cast<double>(Run[0]) * sx),
                                       static_cast<long>(static_cast<double>(Run[1]) * sx), y});
    }
    return aResult;
}

struct StExpectedContrast {
    Rows m_aProb;
    Naive::StRegion m_Region;
    long m_nResult;
};

/// The frame of the mask, there and back: that of a new mask begins as that of the small image.
std::array<double, 4> FrameStep(const StPicture& Small, const StPicture& In, bool bNewMask) {
    const auto back = [](double dSize, int nSmallPels, int nPels) {
        return dSize * (static_cast<double>(nPels) / nSmallPels);
    };
    const auto there = [](int nSize, int nSmallPels, int nPels) {
        return nSize * (static_cast<double>(nSmallPels) / nPels);
    };
    const double w = bNewMask ? Small.Width() : there(In.Width(), Small.m_nPelsX, In.m_nPelsX);
    const double h = bNewMask ? Small.Height() : there(In.Height(), Small.m_nPelsY, In.m_nPelsY);
    return {0.0, 0.0, back(w, Small.m_nPelsX, In.m_nPelsX), back(h, Small.m_nPelsY, In.m_nPelsY)};
}

/// `In` is black outside the mask.
StExpectedContrast Expected(const ClIpContrastMask2& ip, const StPicture& In, bool bProb,
                            bool bNewMask) {
    StPicture small = Smoothed(ip, In);
    const int t = static_cast<int>(ip.m_dScaleFactor * ip.m_dThresholdFactor) % 256;
    StExpectedContrast expected = {};
    int nForeground = t;
    if (bProb) {
        StPicture prob = small;
        prob.m_aRows =
            Naive::Map(small.m_aRows, [t](int n) { return std::clamp(n + 128 - t, 0, 255); });
        expected.m_aProb = Naive::Map(Enlarged(prob, In).m_aRows, [](int n) { return 255 - n; });
        nForeground = 2 * t - 128;
    }
    const double dSide = std::sqrt(ip.m_dMinFgBlobSize) * 100.0 * (small.m_nPelsX * 1e-5);
    const Picture aStrong = Naive::WithoutSmallBlobs(
        Naive::PictureWhere(small.m_aRows, [=](int n) { return n >= nForeground; }),
        static_cast<long>(dSide * dSide));
    expected.m_Region = {Upscaled(Naive::RunsIn(aStrong), small, In),
                         {FrameStep(small, In, bNewMask)}};
    expected.m_nResult = Naive::SetBoundingBox(expected.m_Region) ? 0 : -15;
    return expected;
}

/// Gradients: ridges in an ellipse, a few strong edges elsewhere.
ClTestImage Gradients(int nWidth, int nHeight, int nPels, std::mt19937& rRandom) {
    ClTestImage image;
    image.NewWithType(ClImage::eUInt8, nWidth, nHeight, 1, nPels, nPels);
    const int nStrength = RandomInt(rRandom, 5, 60);
    const double dSize = RandomInt(rRandom, 4, 10) / 20.0;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const double u = (x + 0.5) / nWidth - 0.5;
            const double v = (y + 0.5) / nHeight - 0.5;
            double d = RandomInt(rRandom, 0, 3) + (x % 37 == 5 ? 90 : 0);
            if (u * u + v * v < dSize * dSize)
                d += nStrength * std::abs(std::cos((x + 0.4 * y) * 0.5));
            SetSample(image, x, y, 0, std::floor(std::min(d, 255.0)));
        }
    return image;
}

void SetAtRandom(ClIpContrastMask2& ip, std::mt19937& rRandom) {
    ip.m_dRidgeDist = RandomInt(rRandom, 0, 130) / 10.0;
    ip.m_nBorderWidth = RandomInt(rRandom, 0, 5);
    ip.m_dScaleFactor = RandomInt(rRandom, 10, 120) / 10.0;
    ip.m_dMidRotWidthFactor1 = RandomInt(rRandom, 5, 30) / 10.0;
    ip.m_dThresholdFactor = RandomInt(rRandom, 10, 180) / 10.0;
    ip.m_dMinFgBlobSize = RandomInt(rRandom, 0, 8);
    ip.m_dWorkDpi = RandomInt(rRandom, 0, 2) == 0 ? RandomInt(rRandom, 100, 480) : 250.0;
}

struct StSeenContrast {
    int m_nFound = 0;   ///< masks with a region
    int m_nPartial = 0; ///< of these, not the whole image
};

/// Beginning with the mask given, outside which the image counts as black.
void ExpectAsExpected(ClIpContrastMask2& ip, ClTestImage& rIn, ClMask2 mask, bool bProb,
                      StSeenContrast& rSeen) {
    const ClTestImage before = rIn;
    const bool bNewMask = mask.GetOffsetsCount() == 0;
    ClTestImage region = rIn;
    mask.ApplyOnImage(region, true, 0);
    ClTestImage prob;
    ip.m_pInImage = &rIn;
    ip.m_pInOutMask = &mask;
    ip.m_pOptOutProbImage = bProb ? &prob : nullptr;
    const long nResult = ip.Apply();
    const StExpectedContrast expected =
        Expected(ip, {Pixels(region), rIn.PelsX(), rIn.PelsY()}, bProb, bNewMask);
    EXPECT_EQ(nResult, expected.m_nResult);
    EXPECT_TRUE(Pixels(prob) == expected.m_aProb);
    EXPECT_TRUE(Naive::RegionOf(mask) == expected.m_Region);
    EXPECT_EQ(mask.m_nPelsX, rIn.PelsX());
    EXPECT_EQ(mask.m_nPelsY, rIn.PelsY());
    ExpectSameImage(rIn, before);
    if (bProb) {
        EXPECT_EQ(prob.PelsX(), rIn.PelsX());
        EXPECT_EQ(prob.PelsY(), rIn.PelsY());
    }
    rSeen.m_nFound += expected.m_nResult == 0 ? 1 : 0;
    rSeen.m_nPartial += expected.m_Region.m_aSteps.size() > 1 ? 1 : 0;
}

TEST(IpContrastMask2Reference, AgreesOnFingersOfOddSizes) {
    std::mt19937 random(41);
    StSeenContrast seen;
    for (int n = 0; n < 120; ++n) {
        const int nWidth = RandomInt(random, 40, 151);
        const int nHeight = RandomInt(random, 40, 121);
        SCOPED_TRACE(std::to_string(n) + ": " + std::to_string(nWidth) + " x " +
                     std::to_string(nHeight));
        ClTestImage in = Gradients(nWidth, nHeight, cnTestPels, random);
        ClIpContrastMask2 ip;
        SetAtRandom(ip, random);
        ExpectAsExpected(ip, in, ClMask2(), n % 2 == 0, seen);
    }
    EXPECT_GT(seen.m_nFound, 30);
    EXPECT_GT(seen.m_nPartial, 20);
}

TEST(IpContrastMask2Reference, AgreesWithAMaskThatSaysWhereToLook) {
    std::mt19937 random(42);
    StSeenContrast seen;
    for (int n = 0; n < 30; ++n) {
        SCOPED_TRACE(n);
        ClTestImage in =
            Gradients(RandomInt(random, 60, 101), RandomInt(random, 50, 80), cnTestPels, random);
        Picture aWhere(static_cast<std::size_t>(in.Height()),
                       std::string(static_cast<std::size_t>(in.Width()), '.'));
        for (std::size_t y = 10; y + 8 < aWhere.size(); ++y)
            aWhere[y].replace(12, 30 + y % 9, 30 + y % 9, '#');
        ClIpContrastMask2 ip;
        SetAtRandom(ip, random);
        ExpectAsExpected(ip, in, MaskOf(aWhere), n % 2 == 0, seen);
    }
    EXPECT_GT(seen.m_nFound, 5);
}

TEST(IpContrastMask2Reference, AgreesOnTheSmallestSizes) {
    std::mt19937 random(43);
    StSeenContrast seen;
    for (int nWidth : {1, 2, 3, 5, 9, 41})
        for (int nHeight : {1, 2, 4, 7, 33})
            for (bool bProb : {false, true}) {
                SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
                ClTestImage in = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1,
                                             static_cast<unsigned>(random()));
                ClIpContrastMask2 ip;
                SetAtRandom(ip, random);
                ip.m_nBorderWidth = RandomInt(random, 0, 1);
                ExpectAsExpected(ip, in, ClMask2(), bProb, seen);
            }
    EXPECT_GT(seen.m_nFound, 5);
}

TEST(IpContrastMask2Reference, AgreesAtOtherResolutions) {
    std::mt19937 random(44);
    StSeenContrast seen;
    for (int nPels : {5000, 9842, 9843, 11811, 39370}) {
        SCOPED_TRACE(nPels);
        ClTestImage in = Gradients(97, 66, nPels, random);
        ClIpContrastMask2 ip;
        SetAtRandom(ip, random);
        ip.m_dWorkDpi = 250.0;
        ExpectAsExpected(ip, in, ClMask2(), nPels % 2 == 0, seen);
    }
    EXPECT_GE(seen.m_nFound, 2);
}

/// Every odd line of a capture alone makes one axis coarser than the other.
TEST(IpContrastMask2Reference, AgreesAtUnequalResolutions) {
    std::mt19937 random(45);
    StSeenContrast seen;
    for (const auto& [nPelsX, nPelsY] :
         {std::pair{19685, 9842}, {9842, 19685}, {19685, 39370}, {15000, 23000}, {11811, 9843}})
        for (const bool bProb : {false, true}) {
            SCOPED_TRACE(std::to_string(nPelsX) + " x " + std::to_string(nPelsY));
            ClTestImage in = Gradients(97, 86, nPelsX, random);
            in.SetPelsY(nPelsY);
            ClIpContrastMask2 ip;
            SetAtRandom(ip, random);
            ip.m_dWorkDpi = 250.0;
            ip.m_dMinFgBlobSize = RandomInt(random, 0, 2);
            ExpectAsExpected(ip, in, ClMask2(), bProb, seen);
        }
    EXPECT_GE(seen.m_nPartial, 3);
}

} // namespace
