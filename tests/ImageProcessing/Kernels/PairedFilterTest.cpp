#include "ImageProcessing/Kernels/PairedFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

using EvenRoom = Kernels::StEvenRoom<3, 3>;
using PaddedLines = Kernels::ClPaddedLines<EvenRoom>;

TEST(PairedFilter, AsksForEachLineOnceAndForNoneBehindTheImage) {
    constexpr long cnWidth = 5;
    for (const long nHeight : {1, 2, 7}) {
        Kernels::ClScratch scratch;
        const PaddedLines lines(scratch.Reserve(PaddedLines::Bytes(cnWidth)), cnWidth, nHeight);
        std::vector<long> aAsked;
        for (long y = 0; y < nHeight; ++y)
            lines.Moved(y, [&](long nLine, std::uint16_t* pLine) {
                aAsked.push_back(nLine);
                std::fill_n(pLine, cnWidth, std::uint16_t{0});
            });
        std::vector<long> aAll(static_cast<std::size_t>(nHeight));
        std::iota(aAll.begin(), aAll.end(), 0L);
        EXPECT_EQ(aAsked, aAll);
    }
}

TEST(PairedFilter, MovesALineByEachTapWithItsEndsRepeated) {
    constexpr long cnWidth = 5;
    constexpr long cnHeight = 4;
    const auto sample = [](long y, long x) { return static_cast<std::uint16_t>(10 * y + x); };
    Kernels::ClScratch scratch;
    const PaddedLines lines(scratch.Reserve(PaddedLines::Bytes(cnWidth)), cnWidth, cnHeight);
    for (long y = 0; y < cnHeight; ++y) {
        const auto* const* ppMoved = lines.Moved(y, [&](long nLine, std::uint16_t* pLine) {
            for (long x = 0; x < cnWidth; ++x)
                pLine[x] = sample(nLine, x);
        });
        for (long i = 0; i < EvenRoom::cnTaps; ++i)
            for (long x = 0; x < cnWidth; ++x)
                EXPECT_EQ(ppMoved[i][x],
                          sample(y, std::clamp(x + i - EvenRoom::cnHalf, 0L, cnWidth - 1)))
                    << "line " << y << ", tap " << i << ", column " << x;
    }
}

} // namespace
