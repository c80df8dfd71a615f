#include "ImageProcessing/IpStretchRangeGlobal.h"

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

/// One entry in real arithmetic on the fixed-point step.
int Defined(int i, int nFrom, int nTo, int nNewFrom, int nNewTo) {
    if (nFrom == nTo)
        return nNewFrom;
    const double dStep =
        std::trunc((nNewTo + 0.9 - nNewFrom) * 4096.0 / static_cast<double>(nTo - nFrom));
    const double dValue = nNewFrom + std::floor((i - nFrom) * dStep / 4096.0);
    if (dValue < nNewFrom)
        return nNewFrom;
    return dValue > nNewTo ? nNewTo : static_cast<int>(dValue);
}

struct StGreys {
    unsigned char m_nFrom, m_nTo;
};

void SetRanges(ClIpStretchRangeGlobal& ip, StGreys Old, StGreys New) {
    ip.m_nOldRangeFrom = Old.m_nFrom;
    ip.m_nOldRangeTo = Old.m_nTo;
    ip.m_nNewRangeFrom = New.m_nFrom;
    ip.m_nNewRangeTo = New.m_nTo;
}

std::vector<int> Table(const ClIpStretchRangeGlobal& ip) {
    return std::vector<int>(ip.m_aLuT, ip.m_aLuT + 256);
}

std::vector<int> DefinedTable(StGreys Old, StGreys New) {
    std::vector<int> aTable;
    for (int i = 0; i < 256; ++i)
        aTable.push_back(Defined(i, Old.m_nFrom, Old.m_nTo, New.m_nFrom, New.m_nTo));
    return aTable;
}

TEST(IpStretchRangeGlobal, BeginsWithItsDefaults) {
    const ClIpStretchRangeGlobal ip;
    EXPECT_EQ(ip.m_nOldRangeFrom, 255);
    EXPECT_EQ(ip.m_nOldRangeTo, 0);
    EXPECT_EQ(ip.m_nNewRangeFrom, 0);
    EXPECT_EQ(ip.m_nNewRangeTo, 255);
    EXPECT_EQ(ip.m_pInImage, nullptr);
    EXPECT_EQ(ip.m_pOutImage, nullptr);
}

TEST(IpStretchRangeGlobal, ResetForgetsImagesAndRanges) {
    ClTestImage in = Img({{1}});
    ClIpStretchRangeGlobal ip;
    SetRanges(ip, {1, 2}, {3, 4});
    ip.m_pInImage = ip.m_pOutImage = &in;
    ip.SetParametersToDefault();
    EXPECT_EQ(ip.m_pInImage, &in); // the defaults are those of the ranges alone
    EXPECT_EQ(ip.m_pOutImage, &in);
    EXPECT_EQ(ip.m_nOldRangeFrom, 255);
    SetRanges(ip, {1, 2}, {3, 4});
    ip.Reset();
    EXPECT_EQ(ip.m_pInImage, nullptr);
    EXPECT_EQ(ip.m_pOutImage, nullptr);
    EXPECT_EQ(ip.m_nOldRangeFrom, 255);
    EXPECT_EQ(ip.m_nOldRangeTo, 0);
    EXPECT_EQ(ip.m_nNewRangeFrom, 0);
    EXPECT_EQ(ip.m_nNewRangeTo, 255);
}

// The table

TEST(IpStretchRangeGlobal, MapsTheEndsOfTheOldRangeToThoseOfTheNew) {
    ClTestImage in = Img({{0, 9, 10, 105, 200, 201, 255}});
    ClImage out;
    ClIpStretchRangeGlobal ip;
    SetRanges(ip, {10, 200}, {0, 255});
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    // step 5516: 95 * 5516 / 4096 is 127.9
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0, 127, 255, 255, 255}}));
}

TEST(IpStretchRangeGlobal, EqualsItsDefinitionForRangesOfEverySize) {
    const StGreys aOld[] = {{0, 255}, {0, 1}, {254, 255}, {10, 200}, {100, 103}, {64, 64}};
    const StGreys aNew[] = {{0, 255}, {0, 0}, {255, 255}, {50, 60}, {200, 100}, {255, 0}};
    for (StGreys Old : aOld)
        for (StGreys New : aNew) {
            ClIpStretchRangeGlobal ip;
            SetRanges(ip, Old, New);
            EXPECT_EQ(ip.Initialize(), 0);
            EXPECT_EQ(Table(ip), DefinedTable(Old, New))
                << int{Old.m_nFrom} << '-' << int{Old.m_nTo} << " to " << int{New.m_nFrom} << '-'
                << int{New.m_nTo};
            EXPECT_TRUE(ip.m_bLuTValid);
        }
}

TEST(IpStretchRangeGlobal, FillsTheTableWithTheStartOfTheNewRangeForASingleOldValue) {
    ClTestImage in = Img({{0, 63, 64, 65, 255}});
    ClImage out;
    ClIpStretchRangeGlobal ip;
    SetRanges(ip, {64, 64}, {31, 200});
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{31, 31, 31, 31, 31}}));
}

TEST(IpStretchRangeGlobal, CalculatesFromTheRangeInUse) {
    ClIpStretchRangeGlobal ip;
    ip.m_nFrom = 20;
    ip.m_nTo = 40;
    ip.CalculateLuT();
    EXPECT_EQ(Table(ip), DefinedTable({20, 40}, {0, 255}));
}

// The range of the image

TEST(IpStretchRangeGlobal, TakesTheOldRangeFromTheImageByDefault) {
    ClTestImage in = Img({{40, 41, 60}, {50, 60, 40}});
    ClImage out;
    ClIpStretchRangeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(ip.m_nFrom, 40);
    EXPECT_EQ(ip.m_nTo, 60);
    EXPECT_EQ(Table(ip), DefinedTable({40, 60}, {0, 255}));
    // step 52408 is 12.79 of the new range for one of the old
    EXPECT_EQ(Pixels(out), Rows({{0, 12, 255}, {127, 255, 0}}));
    EXPECT_EQ(ip.m_nOldRangeFrom, 255); // the wish is not replaced by the answer
    EXPECT_EQ(ip.m_nOldRangeTo, 0);
}

TEST(IpStretchRangeGlobal, TakesTheRangeFromTheImageWheneverItBeginsAboveItsEnd) {
    ClTestImage in = Img({{40, 60}});
    ClImage out;
    ClIpStretchRangeGlobal ip;
    SetRanges(ip, {8, 7}, {0, 255});
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(ip.m_nFrom, 40);
    EXPECT_EQ(ip.m_nTo, 60);
}

TEST(IpStretchRangeGlobal, MapsAFlatImageToTheStartOfTheNewRange) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 5, 4, 1, 200);
    ClIpStretchRangeGlobal ip;
    ip.m_nNewRangeFrom = 9;
    EXPECT_EQ(ip.ApplyParam(image), 0);
    ExpectSameImage(image, FlatImage(ClImage::eUInt8, 5, 4, 1, 9));
}

TEST(IpStretchRangeGlobal, TakesTheWidestRangeOfAllPlanes) {
    ClTestImage in = Img(ClImage::eUInt8, {{50, 99, 31, 60, 120, 80}}, 3);
    ClImage out;
    ClIpStretchRangeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(ip.m_nFrom, 31);
    EXPECT_EQ(ip.m_nTo, 120);
    std::vector<int> aExpected;
    for (int n : {50, 99, 31, 60, 120, 80})
        aExpected.push_back(Defined(n, 31, 120, 0, 255));
    EXPECT_EQ(Pixels(out), Rows({aExpected}));
    EXPECT_EQ(out.Planes(), 3);
}

TEST(IpStretchRangeGlobal, StretchesAnyImageToTheWholeRange) {
    for (int nPlanes : {1, 2, 3, 4})
        for (unsigned nSeed = 0; nSeed < 5; ++nSeed) {
            ClTestImage in = RandomImage(ClImage::eUInt8, 7, 5, nPlanes, nSeed);
            ClImage out;
            ClIpStretchRangeGlobal ip;
            EXPECT_EQ(ip.ApplyParam(in, out), 0);
            int nLowest = 255;
            int nHighest = 0;
            for (const std::vector<int>& aRow : Pixels(out)) {
                nLowest = std::min(nLowest, *std::min_element(aRow.begin(), aRow.end()));
                nHighest = std::max(nHighest, *std::max_element(aRow.begin(), aRow.end()));
            }
            EXPECT_EQ(nLowest, 0);
            EXPECT_EQ(nHighest, 255);
        }
}

TEST(IpStretchRangeGlobal, IsMonotone) {
    for (int nFrom = 0; nFrom < 250; nFrom += 7)
        for (int nTo = nFrom; nTo < 256; nTo += 11) {
            ClIpStretchRangeGlobal ip;
            SetRanges(ip, {static_cast<unsigned char>(nFrom), static_cast<unsigned char>(nTo)},
                      {20, 230});
            ip.Initialize();
            EXPECT_TRUE(std::is_sorted(ip.m_aLuT, ip.m_aLuT + 256)) << nFrom << ' ' << nTo;
            EXPECT_EQ(ip.m_aLuT[nFrom], 20);
            EXPECT_EQ(ip.m_aLuT[nTo], nTo > nFrom ? 230 : 20);
        }
}

// Failures

TEST(IpStretchRangeGlobal, ReportsAMissingInput) {
    ClIpStretchRangeGlobal ip;
    EXPECT_EQ(ip.Apply(), -37);
    EXPECT_EQ(ip.Initialize(), -37); // the range would come from the image
    SetRanges(ip, {1, 2}, {0, 255});
    EXPECT_EQ(ip.Initialize(), 0);
    EXPECT_EQ(ip.Apply(), -37);
    ClImage empty;
    EXPECT_EQ(ip.ApplyParam(empty), -37);
}

TEST(IpStretchRangeGlobal, RefusesOtherPixelTypesBeforeTheOutputChanges) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = BlankImage(nType, 3, 3);
        ClTestImage out = Img({{1, 2, 3}});
        ClIpStretchRangeGlobal ip;
        EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -101,
                      "Image Type is not the assigned type");
        SetRanges(ip, {1, 2}, {0, 255});
        EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -101,
                      "Image Type is not the assigned type");
        EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
    }
}

TEST(IpStretchRangeGlobal, KeepsTheInputWhenMemoryIsMissing) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 6, 6, 3, 6);
    const ClTestImage before(in);
    TestSupport::FailEachAllocation([&] {
        ClIpStretchRangeGlobal ip;
        ClImage out;
        ip.ApplyParam(in, out);
    });
    ExpectSameImage(in, before);
}

} // namespace
