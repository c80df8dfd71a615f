#include "Tools/InstructionLevel.h"

#include "support/InstructionLevels.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using TestSupport::AtEveryLevel;
using TestSupport::ClLevelLimit;

struct StProduct {
    static void Run(const double* pA, const double* pB, long nCount, double* pOut) {
        for (long i = 0; i < nCount; ++i)
            pOut[i] = pA[i] * pB[i] - 1.0;
    }
};

struct StSum {
    static long Run(long a, long b) { return a + b; }
};

TEST(InstructionLevel, IsTheHighestUnlessLimited) {
    EXPECT_EQ(InstructionLevel(), HighestInstructionLevel());
    const ClLevelLimit limit(EInstructionLevel::Baseline);
    EXPECT_EQ(InstructionLevel(), EInstructionLevel::Baseline);
}

TEST(InstructionLevel, IsNeverAboveThatOfTheProcessor) {
    const ClLevelLimit limit(EInstructionLevel::V4);
    EXPECT_EQ(InstructionLevel(), HighestInstructionLevel());
}

TEST(InstructionLevel, IsAsBeforeBehindALimit) {
    { const ClLevelLimit limit(EInstructionLevel::Baseline); }
    EXPECT_EQ(InstructionLevel(), HighestInstructionLevel());
}

TEST(RunAtLevel, HandsBackWhatTheKernelDoes) {
    AtEveryLevel([] { EXPECT_EQ(RunAtLevel<StSum>(3L, 4L), 7); });
}

// With a = 1 + 2^-30 the square is 1 + 2^-29 + 2^-60. Its last term is lost in the rounding of the
// product, and would be left over by an addition that rounds once.
TEST(RunAtLevel, ContractsNothing) {
    AtEveryLevel([] {
        std::array<double, 19> a{};
        a.fill(1.0 + 0x1p-30);
        std::array<double, 19> out{};
        RunAtLevel<StProduct>(a.data(), a.data(), 19L, out.data());
        for (const double dValue : out)
            EXPECT_EQ(dValue, 0x1p-29);
    });
}

} // namespace
