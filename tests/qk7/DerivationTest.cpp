/// The advice for a doubtful calibration; what else is derived, the tests of the commands hold.

#include "apps/qk7/Derivation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using diagnosis::EReason;
using qk7::DoubtAdvice;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char* g_szPlate = "Check the pitch of the plate";

std::string AdviceFor(const std::vector<EReason>& aReasons) {
    diagnosis::Reasons reasons;
    for (const EReason eReason : aReasons)
        reasons.push_back({eReason, diagnosis::cnDots, "why"});
    return DoubtAdvice(reasons);
}

} // namespace

TEST(Qk7DoubtAdvice, IsToCleanAndCaptureAgainWhereDotsOrCapturesContradict) {
    for (const EReason eReason : {EReason::eDot, EReason::ePattern, EReason::eSecond})
        EXPECT_EQ(AdviceFor({eReason}), qk7::g_szRecapture);
    EXPECT_EQ(AdviceFor({EReason::eDot, EReason::eDot, EReason::eSecond}), qk7::g_szRecapture);
}

TEST(Qk7DoubtAdvice, IsToCheckThePlateWhichCleaningDoesNotMend) {
    for (const std::vector<EReason>& aReasons :
         {std::vector<EReason>{EReason::eScale}, std::vector<EReason>{EReason::eShear},
          std::vector<EReason>{EReason::eScale, EReason::eShear}}) {
        const std::string advice = AdviceFor(aReasons);
        EXPECT_THAT(advice, StartsWith(g_szPlate));
        EXPECT_THAT(advice, Not(HasSubstr("Clean")));
        EXPECT_THAT(advice, Not(EndsWith(".")));
    }
}

TEST(Qk7DoubtAdvice, IsBothWhereBothContradict) {
    for (const std::vector<EReason>& aReasons :
         {std::vector<EReason>{EReason::eDot, EReason::eScale},
          std::vector<EReason>{EReason::eShear, EReason::eSecond}}) {
        const std::string advice = AdviceFor(aReasons);
        EXPECT_THAT(advice, StartsWith(g_szPlate));
        EXPECT_THAT(advice, EndsWith(std::string(". ") + qk7::g_szRecapture));
    }
}
