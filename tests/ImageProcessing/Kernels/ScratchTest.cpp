#include "ImageProcessing/Kernels/Scratch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

using Kernels::ClScratch;

TEST(Scratch, HandsOutAlignedMemory) {
    ClScratch Scratch;
    for (const std::size_t nBytes : {1U, 63U, 64U, 65U, 1000U}) {
        unsigned char* pMemory = Scratch.Reserve(nBytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pMemory) % ClScratch::cnAlignment, 0U);
        std::memset(pMemory, 0xA5, nBytes);
    }
}

TEST(Scratch, KeepsWhatIsLargeEnough) {
    ClScratch Scratch;
    const unsigned char* pFirst = Scratch.Reserve(1000);
    EXPECT_EQ(Scratch.Reserve(10), pFirst);
    EXPECT_EQ(Scratch.Reserve(1000), pFirst);
    EXPECT_EQ(Scratch.Bytes(), 1000U);
}

TEST(Scratch, RoundsUpToWholeLines) {
    EXPECT_EQ(ClScratch::Aligned(0), 0U);
    EXPECT_EQ(ClScratch::Aligned(1), 64U);
    EXPECT_EQ(ClScratch::Aligned(64), 64U);
    EXPECT_EQ(ClScratch::Aligned(65), 128U);
}

} // namespace
