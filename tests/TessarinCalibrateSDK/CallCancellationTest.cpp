// Threads that end within a call: by pthread_exit() or by being cancelled, as an application's log
// may do. That is no failure of the call, and no frame may stop it.

#include "TessarinCalibrateSDK/CallFrame.h"
#include "TessarinCalibrateSDK/TracedCalls.h"
#include "support/AllocationCount.h"

#include <gtest/gtest.h>

#include <pthread.h>

using TestSupport::ClLogCapture;
using TestSupport::FramedCalls;
using TestSupport::StBench;
using TestSupport::StTracedCall;

namespace {

char cEnded; // where it lies is what a thread that has ended itself answers

void ExitThread() {
    pthread_exit(&cEnded);
}

void BeCancelled() {
    pthread_cancel(pthread_self());
    pthread_testcancel();
}

/// One call on a thread of its own, which ends at a line from within the call's work.
struct StEndingCall {
    const StTracedCall* m_pCall;
    void (*m_pEnd)();
    StBench m_Bench{};
    bool m_bReached = false;        ///< the line came
    bool m_bReturned = false;       ///< the call came back
    TestSupport::Lines m_aBehind{}; ///< what was logged behind the line
    bool m_bUnwound = false;        ///< the caller's objects were destroyed
};

struct StUnwound {
    bool& m_rbUnwound;
    ~StUnwound() { m_rbUnwound = true; }
};

struct StBehind {
    const ClLogCapture& m_rLog;
    StEndingCall& m_rCall;
    ~StBehind() {
        const auto& aLines = m_rLog.Lines();
        std::size_t i = 0;
        while (i < aLines.size() && aLines[i].m_Text.find(m_rCall.m_pCall->m_szInnerLine) != 0)
            ++i;
        for (++i; i < aLines.size(); ++i)
            m_rCall.m_aBehind.push_back(aLines[i]);
    }
};

void* RunCall(void* pArgument) {
    auto& rCall = *static_cast<StEndingCall*>(pArgument);
    const StUnwound Unwound{rCall.m_bUnwound};
    ClLogCapture Log;
    const StBehind Behind{Log, rCall};
    Log.m_OnLine = [&](const TestSupport::StLogLine& Line) {
        if (rCall.m_bReached || Line.m_Text.find(rCall.m_pCall->m_szInnerLine) != 0)
            return;
        rCall.m_bReached = true;
        rCall.m_pEnd();
    };
    rCall.m_pCall->m_pCall(rCall.m_Bench, rCall.m_Bench.Handle());
    rCall.m_bReturned = true;
    return nullptr;
}

/// Runs it and gives what the thread answered.
void* Joined(StEndingCall& rCall) {
    pthread_t Thread;
    void* pAnswer = nullptr;
    EXPECT_EQ(pthread_create(&Thread, nullptr, RunCall, &rCall), 0);
    EXPECT_EQ(pthread_join(Thread, &pAnswer), 0);
    return pAnswer;
}

class CallCancellation : public testing::TestWithParam<StTracedCall> {
protected:
    void ExpectPassed(const StEndingCall& Call) {
        EXPECT_TRUE(Call.m_bReached);
        EXPECT_FALSE(Call.m_bReturned);
        EXPECT_TRUE(Call.m_bUnwound);
        EXPECT_EQ(Call.m_aBehind, TestSupport::Lines()); // no Leaving line tells of a status
    }
};

} // namespace

TEST_P(CallCancellation, LetsAThreadEndItself) {
    StEndingCall Call{&GetParam(), ExitThread};
    EXPECT_EQ(Joined(Call), &cEnded);
    ExpectPassed(Call);
}

TEST_P(CallCancellation, LetsAThreadBeCancelled) {
    StEndingCall Call{&GetParam(), BeCancelled};
    EXPECT_EQ(Joined(Call), PTHREAD_CANCELED);
    ExpectPassed(Call);
}

TEST_P(CallCancellation, LeavesAHandleThatTakesDataAgain) {
    StEndingCall Call{&GetParam(), ExitThread};
    Joined(Call);
    StBench& rBench = Call.m_Bench;
    EXPECT_EQ(CalibrateSetData(rBench.Handle(), rBench.m_aRecord.data(), rBench.m_aRecord.size()),
              0);
    StBench Fresh;
    EXPECT_EQ(CalibrateSetData(Fresh.Handle(), Fresh.m_aRecord.data(), Fresh.m_aRecord.size()), 0);
    for (StBench* pBench : {&rBench, &Fresh})
        EXPECT_EQ(Calibrate(pBench->Handle(), pBench->m_aCapture.data(), pBench->m_aCapture.size(),
                            pBench->m_aOut.data(), &pBench->m_nOut),
                  0);
    EXPECT_EQ(rBench.m_aOut, Fresh.m_aOut);
}

namespace {

/// A thread that makes a handle and ends itself at a line of that.
struct StEndingCreation {
    const char* m_szLine;
    long m_nLeft = -1; ///< allocations that nobody released
};

struct StCountLeft {
    long& m_rLeft;
    long m_nBefore = TestSupport::LiveAllocations();
    ~StCountLeft() { m_rLeft = TestSupport::LiveAllocations() - m_nBefore; }
};

void* CreateAndEnd(void* pArgument) {
    auto& rCreation = *static_cast<StEndingCreation*>(pArgument);
    const StCountLeft Count{rCreation.m_nLeft};
    ClLogCapture Log;
    Log.m_OnLine = [&](const TestSupport::StLogLine& Line) {
        if (Line.m_Text == rCreation.m_szLine)
            ExitThread();
    };
    CalibrateCreate();
    return nullptr;
}

} // namespace

TEST(CallCancellationOfCreate, LeavesNothingOfAHandleThatNobodyGets) {
    for (const char* szLine : {"CalibrateCreate() Enter", "CalibrateCreate() Leaving"}) {
        StEndingCreation Creation{szLine};
        pthread_t Thread;
        void* pAnswer = nullptr;
        ASSERT_EQ(pthread_create(&Thread, nullptr, CreateAndEnd, &Creation), 0);
        ASSERT_EQ(pthread_join(Thread, &pAnswer), 0);
        EXPECT_EQ(pAnswer, &cEnded) << szLine;
        EXPECT_EQ(Creation.m_nLeft, 0) << szLine;
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, CallCancellation, testing::ValuesIn(FramedCalls()),
                         [](const auto& Info) { return std::string(Info.param.m_szName); });
