// Every call under every set of options, with its first, second, third ... allocation failing: it
// answers that memory is missing and leaves its outputs and what it has to leave, or gives what it
// always gives, where work can do without what it asked for. The same handle then gives what a new
// one gives, and nothing is left behind when it is gone.

#include "properties/CallChecks.h"
#include "support/AllocationCount.h"
#include "support/AllocationFailures.h"

#include <algorithm>

using namespace Properties;
using TestSupport::ClFailAllocation;
using TestSupport::LiveAllocations;

namespace {

/// One call whose allocation `nAfter` fails, and the same call once more. Returns whether one did.
bool FailOne(const StCall& Call, const StOptionSet& Options, const StExpected& Expected,
             long nAfter, long& rnRefused) {
    ClHandle Handle(Options);
    Call.m_pPrepare(Handle);
    StOutcome Outcome = Call.m_Left;
    bool bHappened = false;
    {
        const ClFailAllocation Fail(nAfter);
        Outcome.m_nStatus = Call.m_pRun(Handle, Outcome);
        bHappened = ClFailAllocation::Happened();
    }
    if (bHappened && Outcome.m_nStatus != Expected.m_Outcome.m_nStatus) {
        ++rnRefused;
        ExpectRefused(Call, Handle, Outcome, Expected);
        ExpectRecovery(Call, Handle, Expected);
    } else {
        ExpectDone(Handle, Outcome, Expected);
    }
    return bHappened;
}

/// Fails every `nStride`-th allocation of a call in turn, from `nFirst` on. Returns how many runs
/// answered that memory is missing.
long FailEach(const StCall& Call, const StOptionSet& Options, long nFirst, long nStride) {
    const StExpected Expected = Unharmed(Call, Options);
    long nRefused = 0;
    bool bHappened = true;
    for (long nAfter = nFirst; bHappened && !testing::Test::HasFailure(); nAfter += nStride) {
        SCOPED_TRACE("allocation " + std::to_string(nAfter));
        const long nLive = LiveAllocations();
        bHappened = FailOne(Call, Options, Expected, nAfter, nRefused);
        EXPECT_EQ(LiveAllocations(), nLive) << "something is left behind";
    }
    return nRefused;
}

long NumberOf(const StOptionSet& Options) {
    const std::vector<StOptionSet>& aSets = AllOptions();
    const auto Found = std::find_if(aSets.begin(), aSets.end(), [&](const StOptionSet& Set) {
        return Set.Name() == Options.Name();
    });
    return Found - aSets.begin();
}

class CallWithoutMemory : public testing::TestWithParam<StOptionSet> {};

} // namespace

// Each set of options takes its share of the allocations of a call, and what looks at no option is
// tried with some sets; at night each takes all.
TEST_P(CallWithoutMemory, SaysSoAndLeavesWhatItHasToLeave) {
    for (const StCall& Call : CallsThatAllocate()) {
        if (!IsNight() && NumberOf(GetParam()) % Call.m_nShare != 0)
            continue;
        SCOPED_TRACE(Call.m_szName);
        const long nStride = IsNight() ? 1 : Call.m_nStride;
        const long nFirst = NumberOf(GetParam()) % nStride;
        const long nRefused = FailEach(Call, GetParam(), nFirst, nStride);
        RecordProperty(Call.m_szName, std::to_string(nRefused));
        EXPECT_TRUE(nRefused > 0 || nFirst > 0 || !Call.m_pAsks(GetParam()))
            << "nothing was tested";
    }
}

TEST_P(CallWithoutMemory, IsMadeWhereNoneIsAskedFor) {
    for (const StCall& Call : CallsThatDoNot()) {
        SCOPED_TRACE(Call.m_szName);
        ClHandle Handle(GetParam());
        Call.m_pPrepare(Handle);
        StOutcome Outcome = Call.m_Left;
        const ClFailAllocation Fail(0);
        Outcome.m_nStatus = Call.m_pRun(Handle, Outcome);
        EXPECT_EQ(Outcome.m_nStatus, QMT_SUCCESS);
        EXPECT_FALSE(ClFailAllocation::Happened());
    }
}

TEST_P(CallWithoutMemory, LetsTheHandleGo) {
    const long nLive = LiveAllocations();
    ClHandle Handle(GetParam());
    CallsThatAllocate().front().m_pPrepare(Handle);
    void* pHandle = Handle.Release();
    {
        const ClFailAllocation Fail(0);
        EXPECT_EQ(CalibrateDelete(&pHandle), QMT_SUCCESS);
        EXPECT_FALSE(ClFailAllocation::Happened());
    }
    EXPECT_EQ(LiveAllocations(), nLive);
}

INSTANTIATE_TEST_SUITE_P(With, CallWithoutMemory, testing::ValuesIn(AllOptions()),
                         [](const auto& Info) { return Info.param.Name(); });
