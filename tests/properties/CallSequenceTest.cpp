// Random sequences of calls, the same on every machine. A seed that fails is run alone, and longer,
// by --gtest_random_seed=SEED (1 to 99999).

#include "calls/InjectedFaults.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

using Calls::ClCallSequence;
using Calls::ClInjectedFaults;
using Calls::ClSeededChoices;

namespace {

constexpr long cnSteps = 25000;
constexpr int cnSeeds = 8; // 200,000 steps in all

/// Tells the first broken promises of a sequence; what follows them follows from them.
class ClTeller : public Calls::ClObserver {
public:
    void OnStep(long nStep) override { g_nStep = nStep; }
    void OnBroken(const std::string& Promise) override {
        if (++m_nBroken <= cnTold)
            ADD_FAILURE() << Promise;
    }

    static volatile std::sig_atomic_t g_nSeed;
    static volatile long g_nStep;

private:
    static constexpr int cnTold = 5;
    int m_nBroken = 0;
};

volatile std::sig_atomic_t ClTeller::g_nSeed = 0;
volatile long ClTeller::g_nStep = 0;

void RunSeed(int nSeed, long nSteps) {
    SCOPED_TRACE("seed " + std::to_string(nSeed));
    ClTeller::g_nSeed = nSeed;
    ClSeededChoices Choices(static_cast<std::uint64_t>(nSeed));
    ClInjectedFaults Faults;
    ClTeller Teller;
    ClCallSequence(Choices, Faults, Teller).Run(nSteps);
}

/// A step that ends the process tells its place before.
void TellCrash(int nSignal) {
    char szText[100];
    const int nLength =
        std::snprintf(szText, sizeof szText, "\nsignal %d in seed %d, step %ld\n", nSignal,
                      static_cast<int>(ClTeller::g_nSeed), ClTeller::g_nStep);
    if (nLength > 0 && write(STDERR_FILENO, szText, static_cast<std::size_t>(nLength)) < 0)
        std::_Exit(2);
    std::signal(nSignal, SIG_DFL);
    std::raise(nSignal);
}

class CallSequence : public testing::TestWithParam<int> {
protected:
    static void SetUpTestSuite() {
        for (const int nSignal : {SIGSEGV, SIGBUS, SIGABRT})
            std::signal(nSignal, TellCrash);
    }
    static void TearDownTestSuite() {
        for (const int nSignal : {SIGSEGV, SIGBUS, SIGABRT})
            std::signal(nSignal, SIG_DFL);
    }
};

} // namespace

TEST_P(CallSequence, KeepsEveryPromise) {
    const int nTold = GTEST_FLAG_GET(random_seed);
    if (nTold != 0 && GetParam() != 1)
        GTEST_SKIP() << "one seed was asked for";
    RunSeed(nTold != 0 ? nTold : GetParam(), nTold != 0 ? 10 * cnSteps : cnSteps);
}

INSTANTIATE_TEST_SUITE_P(OfSeed, CallSequence, testing::Range(1, 1 + cnSeeds),
                         testing::PrintToStringParamName());
