// Random sequences of calls, the same on every machine. One that fails is made short and told call
// by call. A seed is run alone, and longer, by --gtest_random_seed=SEED (1 to 99999); with
// TESSARIN_NIGHTLY in the environment all are longer.

#include "properties/CallsInMemory.h"
#include "properties/SequenceRuns.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace Properties;

namespace {

constexpr int cnSeeds = 8;
#ifdef __SANITIZE_THREAD__ // it sees nothing in the calls of one thread, and makes them very slow
constexpr long cnSteps = 2500;
#else
constexpr long cnSteps = 25000; // 200,000 in all
#endif
constexpr long cnStepsAtNight = 125000;
constexpr long cnStepsToAFinger = 25000; // that the quick way finds: one in some 2000 steps

std::string ListOf(const std::vector<long>& anSteps) {
    std::string Text;
    for (const long nStep : anSteps)
        Text += " " + std::to_string(nStep);
    return Text;
}

void TellShort(int nSeed, const StRunEnd& End) {
    const std::vector<long> anSteps = ShrunkSteps(nSeed, End);
    std::fprintf(stderr, "seed %d, %zu steps are enough:\n", nSeed, anSteps.size());
    const StRunEnd Again = RunSteps(nSeed, anSteps, ETold::eCalls);
    ADD_FAILURE() << "seed " << nSeed << ", step " << End.m_nStep << ": " << End.m_What
                  << "\nthe steps" << ListOf(anSteps) << " are enough for: " << Again.m_What;
}

void RunSeed(int nSeed, long nSteps) {
    std::vector<long> anSteps(static_cast<std::size_t>(nSteps));
    std::iota(anSteps.begin(), anSteps.end(), 0L);
    const StRunEnd End = RunSteps(nSeed, anSteps, ETold::eFailures);
    if (End.m_bFailed)
        TellShort(nSeed, End);
    EXPECT_TRUE(End.m_bFailed || nSteps < cnStepsToAFinger || End.m_nQuickFingers > 0)
        << "no step of seed " << nSeed << " found a finger the quick way";
}

class CallSequence : public testing::TestWithParam<int> {};

} // namespace

TEST_P(CallSequence, KeepsEveryPromise) {
    const int nTold = GTEST_FLAG_GET(random_seed);
    if (nTold != 0 && GetParam() != 1)
        GTEST_SKIP() << "one seed was asked for";
    const long nSteps = IsNight() ? cnStepsAtNight : cnSteps;
    RunSeed(nTold != 0 ? nTold : GetParam(), nTold != 0 ? 10 * nSteps : nSteps);
}

INSTANTIATE_TEST_SUITE_P(OfSeed, CallSequence, testing::Range(1, 1 + cnSeeds),
                         testing::PrintToStringParamName());
