#include "apps/qk7/SpoiltTargets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using qk7::SpoiltCase;
using qk7::StLine;
using testing::Each;
using testing::ElementsAre;

namespace {

std::vector<std::string> CasesOf(const StLine& Line) {
    std::vector<std::string> cases;
    for (std::uint64_t n = 0; n < Line.m_nScanners; ++n)
        cases.push_back(SpoiltCase(Line, n));
    return cases;
}

} // namespace

TEST(Qk7SpoiltTargets, TakeTheCasesInTurn) {
    EXPECT_THAT(CasesOf({7, 7}),
                ElementsAre("hidden_dot", "missing_dot", "wide_pitch", "stand_in_far", "glare_spot",
                            "hidden_dot", "missing_dot"));
}

// Parts of 10/3 scanners, whose middles are 1 2/3, 5 and 8 1/3.
TEST(Qk7SpoiltTargets, LieInTheMiddlesOfEqualParts) {
    EXPECT_THAT(CasesOf({10, 3}),
                ElementsAre("", "hidden_dot", "", "", "", "missing_dot", "", "", "wide_pitch", ""));
}

TEST(Qk7SpoiltTargets, AreNoneWhereNobodyAsksForThem) {
    EXPECT_THAT(CasesOf({3, 0}), Each(""));
}
