#include "ImageProcessing/Kernels/Histogram.h"

#include "ImageProcessing/Kernels/RandomBytes.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using TestSupport::Bytes;
using TestSupport::RandomBytes;

using BinList = std::vector<std::int32_t>;

TEST(HistogramKernel, EqualsPlainCountingForEveryWidthAndStride) {
    for (long nWidth = 0; nWidth < 40; ++nWidth)
        for (long nGap : {0L, 1L, 5L}) {
            constexpr long nLines = 6;
            const long nStride = nWidth + nGap;
            // exactly as many bytes as are read, so that a sanitizer sees one more
            const Bytes aData =
                RandomBytes(static_cast<std::size_t>(nStride * (nLines - 1) + nWidth), 1);
            BinList aBins(256, 1000);
            BinList aExpected = aBins;
            for (long y = 0; y < nLines; ++y)
                for (long x = 0; x < nWidth; ++x)
                    ++aExpected[aData[static_cast<std::size_t>(y * nStride + x)]];
            Kernels::CountValues(aData.data(), nStride, nWidth, nLines, aBins.data());
            EXPECT_EQ(aBins, aExpected) << nWidth << ' ' << nGap;
        }
}

TEST(HistogramKernel, CountsLinesStoredUpsideDown) {
    const Bytes aData = {1, 2, 3, 4, 5, 6};
    BinList aBins(256, 0);
    Kernels::CountValues(aData.data() + 4, -2, 2, 3, aBins.data());
    for (std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(aBins[i], i >= 1 && i <= 6 ? 1 : 0);
}

TEST(HistogramKernel, CountsNothingWithoutLines) {
    BinList aBins(256, 3);
    Kernels::CountValues(nullptr, 0, 0, 0, aBins.data());
    EXPECT_EQ(aBins, BinList(256, 3));
}

} // namespace
