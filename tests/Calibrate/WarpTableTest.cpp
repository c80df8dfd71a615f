#include "Calibrate/WarpTable.h"

#include <gtest/gtest.h>

TEST(WarpTable, CountsItsBytesIn64Bits) {
    EXPECT_EQ(Warp::TableBytes(320, 480, 1, Warp::cnEntrySize), 5529600u);
    EXPECT_EQ(Warp::TableBytes(16384, 16384, 3, 36), 28991029248u);
    EXPECT_EQ(Warp::TableBytes(0, 480, 1, 36), 0u);
}

TEST(WarpTable, LinesArePaddedToFourBytes) {
    EXPECT_EQ(Warp::LineStride(0), 0u);
    EXPECT_EQ(Warp::LineStride(1), 4u);
    EXPECT_EQ(Warp::LineStride(4), 4u);
    EXPECT_EQ(Warp::LineStride(5), 8u);
    EXPECT_EQ(Warp::LineStride(0xFFFFFFFF), 0x100000000u);
}

TEST(WarpTable, HasSizesUpToItsLimits) {
    EXPECT_TRUE(Warp::IsSizeAllowed(320, 480, 1));
    EXPECT_TRUE(Warp::IsSizeAllowed(0, 0, 0));
    EXPECT_TRUE(Warp::IsSizeAllowed(16384, 910, 1));
    EXPECT_FALSE(Warp::IsSizeAllowed(16384, 911, 1));
    EXPECT_FALSE(Warp::IsSizeAllowed(16385, 1, 1));
    EXPECT_FALSE(Warp::IsSizeAllowed(1, 16385, 1));
    EXPECT_TRUE(Warp::IsSizeAllowed(1, 1, 3));
    EXPECT_FALSE(Warp::IsSizeAllowed(1, 1, 4));
    EXPECT_FALSE(Warp::IsSizeAllowed(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF));
}

// An offset is inside when its 4 columns and 4 rows are pixels: the line padding is not.
TEST(WarpTable, OffsetsInsideAreThoseOf16Pixels) {
    for (std::uint32_t nWidth = 0; nWidth < 14; ++nWidth)
        for (std::uint32_t nHeight = 0; nHeight < 9; ++nHeight) {
            const int nStride = static_cast<int>(Warp::LineStride(nWidth));
            for (int nOffset = -40; nOffset < nStride * static_cast<int>(nHeight) + 40; ++nOffset) {
                bool bExpected = false;
                for (int y = 0; y + 4 <= static_cast<int>(nHeight); ++y)
                    for (int x = 0; x + 4 <= static_cast<int>(nWidth); ++x)
                        bExpected |= nOffset == y * nStride + x;
                EXPECT_EQ(Warp::IsOffsetInside(nOffset, nWidth, nHeight), bExpected)
                    << nWidth << " x " << nHeight << " offset " << nOffset;
            }
        }
}

TEST(WarpTable, OffsetsInsideHoldForTheLargestCaptures) {
    EXPECT_TRUE(Warp::IsOffsetInside(0x7FFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_FALSE(Warp::IsOffsetInside(-1, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_FALSE(Warp::IsOffsetInside(-2147483647 - 1, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_FALSE(Warp::IsOffsetInside(0x7FFFFFFF, 4, 4));
}

// Offsets count lines of one plane; applied to a capture of several planes, whose columns lie as
// many bytes apart, no sample of an offset inside lies behind the capture.
TEST(WarpTable, OffsetsInsideStayInsideCapturesOfSeveralPlanes) {
    for (std::uint32_t nPlanes = 1; nPlanes <= 3; ++nPlanes)
        for (std::uint32_t nWidth = 4; nWidth < 40; ++nWidth)
            for (std::uint32_t nHeight = 4; nHeight < 12; ++nHeight) {
                const std::uint64_t nLast =
                    (nHeight - 4) * Warp::LineStride(nWidth) + nWidth - 4; // the largest inside
                ASSERT_TRUE(
                    Warp::IsOffsetInside(static_cast<std::int32_t>(nLast), nWidth, nHeight));
                const std::uint64_t nLine = Warp::LineStride(nWidth * nPlanes);
                EXPECT_LT(nLast + 3 * nLine + 3 * nPlanes, nLine * nHeight);
            }
}
