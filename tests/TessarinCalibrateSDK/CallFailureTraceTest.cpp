// What every exported call logs, line by line, where its work throws and where its handle is none.

#include "TessarinCalibrateSDK/TracedCalls.h"
#include "Tools/Exception.h"

#include <gtest/gtest.h>

#include <stdexcept>

using TestSupport::AllCalls;
using TestSupport::ClLogCapture;
using TestSupport::FramedCalls;
using TestSupport::Leaving;
using TestSupport::Lines;
using TestSupport::StBench;
using TestSupport::StLogLine;
using TestSupport::StTracedCall;
using TestSupport::Trace;

namespace {

struct StThrownCall {
    long m_nCode = 0;
    StLogLine m_First{}; ///< the Enter line
    Lines m_aBehind;     ///< what came behind the line at which it threw
    bool m_bHasData = false;
};

/// Runs a call whose work throws at its inner line.
template <class Throw>
StThrownCall OutcomeOf(const StTracedCall& Call, StBench& rBench, Throw throwIt) {
    StThrownCall Outcome;
    {
        ClLogCapture Log;
        std::size_t nThrown = 0;
        Log.m_OnLine = [&](const StLogLine& Line) {
            if (nThrown != 0 || Line.m_Text.find(Call.m_szInnerLine) != 0)
                return;
            nThrown = Log.Lines().size();
            throwIt();
        };
        Outcome.m_nCode = Call.m_pCall(rBench, rBench.Handle());
        EXPECT_NE(nThrown, 0u) << Call.m_szInnerLine;
        Outcome.m_First = Log.Lines().front();
        Outcome.m_aBehind.assign(Log.Lines().begin() + static_cast<long>(nThrown),
                                 Log.Lines().end());
    }
    Outcome.m_bHasData = rBench.m_Processor.IsInitialized();
    return Outcome;
}

/// Expects the lines of the data being dropped, where the call does so, and these.
void ExpectBehind(const StTracedCall& Call, const StThrownCall& Outcome, const Lines& aLines) {
    Lines aExpected;
    if (Call.m_bDropsData)
        aExpected = {Trace("ClIpCalibrateQK7::Clear() Enter"),
                     Trace("ClIpCalibrateQK7::Clear() Leaving")};
    aExpected.insert(aExpected.end(), aLines.begin(), aLines.end());
    EXPECT_EQ(Outcome.m_aBehind, aExpected);
    EXPECT_EQ(Outcome.m_bHasData, !Call.m_bDropsData);
}

class CallFailureTrace : public testing::TestWithParam<StTracedCall> {
protected:
    const StTracedCall& Call() const { return GetParam(); }
    std::string Name() const { return GetParam().m_szName; }

    StBench m_Bench;
};

class CallRefusalTrace : public CallFailureTrace {};

std::string NameOf(const testing::TestParamInfo<StTracedCall>& Info) {
    return Info.param.m_szName;
}

} // namespace

TEST_P(CallFailureTrace, ShowsAnExceptionOfTheLibraryAtLevel3) {
    const StThrownCall Outcome = OutcomeOf(Call(), m_Bench, [] {
        throw ClException("the words", QMT_ERROR_BITMAP_DIMENSION, true, "Folder/File", 12);
    });
    EXPECT_EQ(Outcome.m_nCode, -14);
    EXPECT_EQ(Outcome.m_First, Trace(Call().m_pEnter(m_Bench, m_Bench.Handle())));
    const std::string Description = GetErrorDescriptionIntern(-14);
    ExpectBehind(Call(), Outcome,
                 {{3, Name() + "() Error: " + Description + "\nthe words"},
                  {3, Name() + "() File: Folder/File(12)"},
                  {3, Name() + "() Leaving(-14), " + Description}});
}

TEST_P(CallFailureTrace, ShowsATargetThatCannotBeEvaluatedAtLevel7) {
    const StThrownCall Outcome = OutcomeOf(Call(), m_Bench, [] {
        throw ClException("crooked", QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, false, "Unknown", -1);
    });
    EXPECT_EQ(Outcome.m_nCode, -600);
    const std::string Description = "The calibration failed to generate the calibrations data from "
                                    "the given pattern.";
    ExpectBehind(Call(), Outcome,
                 {{7, Name() + "() Error: " + Description + "\ncrooked"},
                  {7, Name() + "() File: Unknown(-1)"},
                  {7, Name() + "() Leaving(-600), " + Description}});
}

TEST_P(CallFailureTrace, ShowsAForeignExceptionWithoutItsPlace) {
    const StThrownCall Outcome =
        OutcomeOf(Call(), m_Bench, [] { throw std::out_of_range("far out"); });
    EXPECT_EQ(Outcome.m_nCode, -101);
    ExpectBehind(
        Call(), Outcome,
        {{3, Name() + "() Error: far out"}, {3, Name() + "() Leaving(-101), Internal error."}});
}

TEST_P(CallFailureTrace, ShowsAnythingElseByTheFatalErrorAlone) {
    const StThrownCall Outcome = OutcomeOf(Call(), m_Bench, [] { throw -14L; });
    EXPECT_EQ(Outcome.m_nCode, -104);
    EXPECT_EQ(Outcome.m_aBehind,
              (Lines{{3, Name() + "() Leaving(-104), A fatal error has occurred. Process integrity "
                                  "may be corrupted. Terminate application."}}));
    // Nothing is dropped then; three calls have done so before their work.
    const bool bDroppedBefore = Call().m_bDropsData && Name() != "CalibrateSetPrecalculatedData";
    EXPECT_EQ(Outcome.m_bHasData, !bDroppedBefore);
}

INSTANTIATE_TEST_SUITE_P(Calls, CallFailureTrace, testing::ValuesIn(FramedCalls()), NameOf);

TEST_P(CallRefusalTrace, LeavesTwoLinesForNoHandle) {
    const ClLogCapture Log;
    EXPECT_EQ(Call().m_pCall(m_Bench, nullptr), -42);
    EXPECT_EQ(Log.Lines(), (Lines{Trace(Call().m_pEnter(m_Bench, nullptr)), Leaving(Name(), -42)}));
}

TEST_P(CallRefusalTrace, LeavesTwoLinesForAHandleThatIsNone) {
    m_Bench.m_Record.m_acTail[3] = 'x';
    const ClLogCapture Log;
    EXPECT_EQ(Call().m_pCall(m_Bench, m_Bench.Handle()), -43);
    EXPECT_EQ(Log.Lines(),
              (Lines{Trace(Call().m_pEnter(m_Bench, m_Bench.Handle())), Leaving(Name(), -43)}));
}

INSTANTIATE_TEST_SUITE_P(Calls, CallRefusalTrace, testing::ValuesIn(AllCalls()), NameOf);

TEST(CallRefusalTrace, DeleteLeavesTwoLinesForAHandleThatIsNone) {
    StBench Bench;
    Bench.m_Record.m_acTail[3] = 'x';
    void* pHandle = Bench.Handle();
    const ClLogCapture Log;
    EXPECT_EQ(CalibrateDelete(&pHandle), -43);
    EXPECT_EQ(Log.Lines(), (Lines{Trace(TestSupport::Printed("CalibrateDelete(0x%p) Enter",
                                                             static_cast<void*>(&pHandle))),
                                  Leaving("CalibrateDelete", -43)}));
}
