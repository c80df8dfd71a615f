#include "ImageProcessing/IpStretchRangeGlobalNoiseRemoving.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

struct StLimits {
    int m_nFrom, m_nTo;
};

/// The range of one plane: the sample behind the set-aside ones, counted in order of value.
StLimits SortedLimits(const Rows& aPlane, double dDark, double dBright) {
    std::vector<int> aAll;
    for (const std::vector<int>& aRow : aPlane)
        aAll.insert(aAll.end(), aRow.begin(), aRow.end());
    std::sort(aAll.begin(), aAll.end());
    const auto dCount = static_cast<double>(aAll.size());
    const auto nDark = static_cast<std::size_t>(dDark * dCount);
    const auto nBright = static_cast<std::size_t>(dCount * dBright);
    return {nDark < aAll.size() ? aAll[nDark] : 255,
            nBright < aAll.size() ? aAll[aAll.size() - 1 - nBright] : 0};
}

TEST(IpStretchRangeGlobalNoiseRemoving, BeginsWithItsDefaults) {
    ClIpStretchRangeGlobalNoiseRemoving ip;
    EXPECT_EQ(ip.m_dDarkNoisePart, 0.0);
    EXPECT_EQ(ip.m_dBrightNoisePart, 0.0);
    EXPECT_EQ(ip.m_nNewRangeFrom, 0);
    EXPECT_EQ(ip.m_nNewRangeTo, 255);
    ip.m_dDarkNoisePart = ip.m_dBrightNoisePart = 0.5;
    ip.m_nNewRangeTo = 9;
    ip.Reset();
    EXPECT_EQ(ip.m_dDarkNoisePart, 0.0);
    EXPECT_EQ(ip.m_dBrightNoisePart, 0.0);
    EXPECT_EQ(ip.m_nNewRangeTo, 255);
}

TEST(IpStretchRangeGlobalNoiseRemoving, SetsTheNoiseAside) {
    ClTestImage in = Img({{0, 50, 60, 70, 80, 90, 100, 110, 120, 255}});
    ClImage out;
    ClIpStretchRangeGlobalNoiseRemoving ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.1, 0.1), 0);
    EXPECT_EQ(ip.m_nFrom, 50);
    EXPECT_EQ(ip.m_nTo, 120);
    // step trunc(255.9 * 4096 / 70) = 14973, 36.55 for ten grey values
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 36, 73, 109, 146, 182, 219, 255, 255}}));
}

TEST(IpStretchRangeGlobalNoiseRemoving, FindsTheRangeOfSortedSamples) {
    for (unsigned nSeed = 0; nSeed < 6; ++nSeed) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 23, 11, 1, nSeed);
        ClImage out;
        ClIpStretchRangeGlobalNoiseRemoving ip;
        for (double dDark : {0.0, 0.001, 0.05, 0.3})
            for (double dBright : {0.0, 0.001, 0.05, 0.3}) {
                EXPECT_EQ(ip.ApplyParam(in, out, dDark, dBright), 0);
                const StLimits Limits = SortedLimits(Pixels(in), dDark, dBright);
                EXPECT_EQ(ip.m_nFrom, Limits.m_nFrom);
                EXPECT_EQ(ip.m_nTo, Limits.m_nTo);
            }
    }
}

TEST(IpStretchRangeGlobalNoiseRemoving, TakesTheWidestRangeOfAllPlanes) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 14, 9, 3, 8);
    for (int y = 0; y < 9; ++y) // planes of different ranges
        for (int x = 0; x < 14; ++x)
            for (int p = 0; p < 3; ++p)
                TestSupport::SetSample(
                    in, x, y, p, std::floor(TestSupport::Sample(in, x, y, p) / 4) + 50 * (p + 1));
    StLimits Widest = {255, 0};
    for (int p = 0; p < 3; ++p) {
        ClImage plane;
        in.GetPlane(p, plane);
        const StLimits Limits = SortedLimits(Pixels(plane), 0.1, 0.2);
        Widest = {std::min(Widest.m_nFrom, Limits.m_nFrom), std::max(Widest.m_nTo, Limits.m_nTo)};
    }
    ClImage out;
    ClIpStretchRangeGlobalNoiseRemoving ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.1, 0.2), 0);
    EXPECT_EQ(ip.m_nFrom, Widest.m_nFrom);
    EXPECT_EQ(ip.m_nTo, Widest.m_nTo);
    EXPECT_EQ(out.Planes(), 3);
}

TEST(IpStretchRangeGlobalNoiseRemoving, RefusesMoreThanFourPlanesBeforeTheOutputChanges) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 4, 5, 8);
    ClTestImage out = Img({{1, 2, 3}});
    ClIpStretchRangeGlobalNoiseRemoving ip;
    EXPECT_THROWS(ip.ApplyParam(in, out, 0.0, 0.0), ClException, -35,
                  "Image has more than 4 planes.");
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
}

TEST(IpStretchRangeGlobalNoiseRemoving, DoesNotUseTheOldRange) {
    ClTestImage in = Img({{50, 100}});
    ClImage out;
    ClIpStretchRangeGlobalNoiseRemoving ip;
    ip.m_nOldRangeFrom = 0;
    ip.m_nOldRangeTo = 255;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.0, 0.0), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 255}}));
}

TEST(IpStretchRangeGlobalNoiseRemoving, MapsEverythingToTheStartWhereNoRangeIsLeft) {
    ClTestImage in = Img({{50, 80, 100, 120}});
    ClImage out;
    ClIpStretchRangeGlobalNoiseRemoving ip;
    ip.m_nNewRangeFrom = 13;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.7, 0.7), 0); // 100 to 80
    EXPECT_EQ(ip.m_nFrom, 80);
    EXPECT_EQ(ip.m_nTo, 80);
    EXPECT_EQ(Pixels(out), Rows({{13, 13, 13, 13}}));
    EXPECT_EQ(ip.ApplyParam(in, out, 2.0, 2.0), 0); // 255 to 0
    EXPECT_EQ(ip.m_nFrom, 0);
    EXPECT_EQ(ip.m_nTo, 0);
    ClTestImage flat = FlatImage(ClImage::eUInt8, 3, 3, 1, 77);
    EXPECT_EQ(ip.ApplyParam(flat, out, 0.0, 0.0), 0);
    ExpectSameImage(out, FlatImage(ClImage::eUInt8, 3, 3, 1, 13));
}

TEST(IpStretchRangeGlobalNoiseRemoving, WorksInPlaceAndWithoutAnOutput) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 13, 7, 1, 4);
    ClTestImage same(in);
    ClTestImage alone(in);
    ClImage out;
    ClIpStretchRangeGlobalNoiseRemoving ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.1, 0.1), 0);
    EXPECT_EQ(ip.ApplyParam(same, same, 0.1, 0.1), 0);
    ExpectSameImage(same, out);
    ip.m_pInImage = &alone;
    ip.m_pOutImage = nullptr;
    EXPECT_EQ(ip.Apply(), 0);
    ExpectSameImage(alone, out);
    EXPECT_EQ(ip.m_pOutImage, nullptr);
}

TEST(IpStretchRangeGlobalNoiseRemoving, GivesTheOutputItsGeometryAtTheStartOfTheRun) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 13, 7, 1, 4);
    ClImage out;
    ClIpStretchRangeGlobalNoiseRemoving ip;
    ip.m_pInImage = &in;
    ip.m_pOutImage = &out;
    EXPECT_EQ(ip.Initialize(), 0);
    EXPECT_EQ(out.Width(), 13);
    EXPECT_EQ(out.Height(), 7);
}

TEST(IpStretchRangeGlobalNoiseRemoving, ReportsAMissingInput) {
    ClIpStretchRangeGlobalNoiseRemoving ip;
    EXPECT_EQ(ip.Apply(), -37);
    ClImage empty;
    ClTestImage out = Img({{1, 2}});
    EXPECT_EQ(ip.ApplyParam(empty, out, 0.0, 0.0), -37);
    EXPECT_EQ(Pixels(out), Rows({{1, 2}}));
}

TEST(IpStretchRangeGlobalNoiseRemoving, RefusesOtherPixelTypesBeforeTheOutputChanges) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = BlankImage(nType, 3, 3);
        ClTestImage out = Img({{1, 2, 3}});
        ClIpStretchRangeGlobalNoiseRemoving ip;
        EXPECT_THROWS(ip.ApplyParam(in, out, 0.0, 0.0), ClException, -101,
                      "Image Type is not the assigned type");
        EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
    }
}

TEST(IpStretchRangeGlobalNoiseRemoving, KeepsTheInputWhenMemoryIsMissing) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 6, 6, 3, 6);
    const ClTestImage before(in);
    TestSupport::FailEachAllocation([&] {
        ClIpStretchRangeGlobalNoiseRemoving ip;
        ClImage out;
        ip.ApplyParam(in, out, 0.1, 0.1);
    });
    ExpectSameImage(in, before);
}

} // namespace
