// Every processor class, with its first, second, third ... allocation failing: it throws that
// memory is missing, or does without; it leaves its inputs and nothing behind; and run once more,
// it gives what a new one gives.

#include "Tools/Exception.h"
#include "Tools/ProcessorBase.h"
#include "processors/ProcessorRuns.h"
#include "support/AllocationCount.h"
#include "support/AllocationFailures.h"

#include <gtest/gtest.h>

using namespace Processors;
using TestSupport::ClFailAllocation;
using TestSupport::EEnd;
using TestSupport::EndOfFailing;
using TestSupport::LiveAllocations;

namespace {

struct StExpected {
    Bytes m_aInputs;
    Bytes m_aOutputs;
};

StExpected Unharmed(const StRow& Row) {
    const std::unique_ptr<ClRun> pRun = Row.m_Make();
    StExpected Expected;
    Expected.m_aInputs = pRun->Inputs();
    const Bytes aBefore = pRun->Outputs();
    EXPECT_EQ(pRun->Processor().Apply(), 0);
    Expected.m_aOutputs = pRun->Outputs();
    EXPECT_NE(Expected.m_aOutputs, aBefore) << "the run does nothing";
    EXPECT_EQ(pRun->Inputs(), Expected.m_aInputs);
    return Expected;
}

/// A run whose allocation `nAfter` fails, and the same run once more.
EEnd FailOne(const StRow& Row, const StExpected& Expected, long nAfter) {
    const std::unique_ptr<ClRun> pRun = Row.m_Make();
    long nResult = 0;
    const auto apply = [&] { nResult = pRun->Processor().Apply(); };
    const EEnd eEnd = EndOfFailing(nAfter, apply);
    EXPECT_NE(eEnd, EEnd::eOther) << "what came is no ClExBadAlloc of -102";
    EXPECT_EQ(pRun->Inputs(), Expected.m_aInputs);
    if (eEnd == EEnd::eRefused)
        nResult = pRun->Processor().Apply();
    EXPECT_EQ(nResult, 0);
    EXPECT_EQ(pRun->Outputs(), Expected.m_aOutputs);
    return eEnd;
}

class ProcessorWithoutMemory : public testing::TestWithParam<StRow> {};

} // namespace

TEST_P(ProcessorWithoutMemory, SaysSoAndRunsAgain) {
    const StExpected Expected = Unharmed(GetParam());
    EEnd eEnd = EEnd::eRefused;
    long nRefused = 0;
    for (long nAfter = 0; eEnd != EEnd::eUnharmed && !HasFailure(); ++nAfter) {
        SCOPED_TRACE("allocation " + std::to_string(nAfter));
        const long nLive = LiveAllocations();
        eEnd = FailOne(GetParam(), Expected, nAfter);
        EXPECT_EQ(LiveAllocations(), nLive) << "something is left behind";
        nRefused += eEnd == EEnd::eRefused ? 1 : 0;
    }
    EXPECT_GT(nRefused, 0) << "nothing was tested";
}

INSTANTIATE_TEST_SUITE_P(Of, ProcessorWithoutMemory, testing::ValuesIn(AllProcessors()),
                         [](const auto& Info) { return std::string(Info.param.m_szName); });
