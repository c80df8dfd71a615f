// What becomes of an exception on its way out: its lines, their level and the status.

#include "TessarinCalibrateSDK/CallFrame.h"

#include "TessarinCalibrateSDK/OwnHandle.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

using TestSupport::ClLogCapture;
using TestSupport::StLogLine;

namespace {

constexpr CallFrame::StTexts cTexts = TESSARIN_CALL_TEXTS("Function", "0x%p, 0x%p, %d");

struct StFrameRun {
    long m_nCode;
    std::vector<StLogLine> m_aLines;
    int m_nCleanups;
};

template <class Work>
StFrameRun OutcomeOf(Work work) {
    StFrameRun Outcome{};
    const ClLogCapture Log;
    Outcome.m_nCode = CallFrame::Run(cTexts, work, [&] {
        ++Outcome.m_nCleanups;
        VekLFLog(7, "cleanup");
    });
    Outcome.m_aLines = Log.Lines();
    return Outcome;
}

/// An exception whose text is null.
class ClMute : public std::exception {
public:
    const char* what() const noexcept override { return nullptr; }
};

} // namespace

TEST(CallFrame, LeavesWithTheCodeOfTheWork) {
    const StFrameRun Success = OutcomeOf([] { return 0L; });
    EXPECT_EQ(Success.m_nCode, 0);
    EXPECT_EQ(Success.m_nCleanups, 0);
    EXPECT_EQ(Success.m_aLines,
              (std::vector<StLogLine>{{7, "Function() Leaving(0), No errors occurred."}}));

    const StFrameRun Failure = OutcomeOf([] { return -21L; });
    EXPECT_EQ(Failure.m_nCode, -21);
    EXPECT_EQ(Failure.m_nCleanups, 0);
    EXPECT_EQ(Failure.m_aLines,
              (std::vector<StLogLine>{
                  {7, "Function() Leaving(-21), The size of the finger template is not valid."}}));
}

TEST(CallFrame, LogsErrorFileAndLeavingOfAnException) {
    const StFrameRun Outcome = OutcomeOf(
        []() -> long { throw ClException("the words", -39, true, "Tools/Somewhere", 123); });
    EXPECT_EQ(Outcome.m_nCode, -39);
    EXPECT_EQ(Outcome.m_aLines,
              (std::vector<StLogLine>{
                  {7, "cleanup"},
                  {3, "Function() Error: The input is corrupt; it can be a memoryblock or a "
                      "file.\nthe words"},
                  {3, "Function() File: Tools/Somewhere(123)"},
                  {3, "Function() Leaving(-39), The input is corrupt; it can be a memoryblock or "
                      "a file."}}));
}

TEST(CallFrame, TracesATargetThatCannotBeEvaluatedAtLevel7) {
    const StFrameRun Outcome =
        OutcomeOf([]() -> long { throw ClException("crooked", -600, false, "Unknown", -1); });
    const std::string Description = "The calibration failed to generate the calibrations data "
                                    "from the given pattern.";
    EXPECT_EQ(Outcome.m_nCode, -600);
    EXPECT_EQ(Outcome.m_aLines,
              (std::vector<StLogLine>{{7, "cleanup"},
                                      {7, "Function() Error: " + Description + "\ncrooked"},
                                      {7, "Function() File: Unknown(-1)"},
                                      {7, "Function() Leaving(-600), " + Description}}));
}

TEST(CallFrame, LogsEveryOtherNumberAtLevel3) {
    for (const long nNumber : {-1L, -2L, -101L, -599L, -601L, -701L, 0L, 600L, 5L}) {
        const StFrameRun Outcome =
            OutcomeOf([=]() -> long { throw ClExTessarin(nNumber, "File", 1); });
        EXPECT_EQ(Outcome.m_nCode, nNumber);
        ASSERT_EQ(Outcome.m_aLines.size(), 4u);
        for (std::size_t i = 1; i < 4; ++i)
            EXPECT_EQ(Outcome.m_aLines[i].m_nLevel, 3) << nNumber;
    }
}

TEST(CallFrame, TakesTheDescriptionOfTheNumberAnew) {
    const StFrameRun Outcome = OutcomeOf([]() -> long { throw ClExTessarin(-6, "File", 1); });
    EXPECT_EQ(Outcome.m_nCode, -6);
    EXPECT_EQ(Outcome.m_aLines.back().m_Text, "Function() Leaving(-6), Unknown error code.");
}

TEST(CallFrame, CatchesTheWholeFamilyByItsNumber) {
    EXPECT_EQ(OutcomeOf([]() -> long { throw ClExBadAlloc("m", -102, false, "F", 1); }).m_nCode,
              -102);
    EXPECT_EQ(OutcomeOf([]() -> long { throw ClExStream("m", -204, false, "F", 1); }).m_nCode,
              -204);
    EXPECT_EQ(OutcomeOf([]() -> long { throw ClExSystem("m", "F", 1); }).m_nCode, -105);
}

TEST(CallFrame, AnswersOtherExceptionsWithInternalError) {
    const StFrameRun Outcome = OutcomeOf([]() -> long { throw std::runtime_error("strange"); });
    EXPECT_EQ(Outcome.m_nCode, -101);
    EXPECT_EQ(Outcome.m_nCleanups, 1);
    EXPECT_EQ(Outcome.m_aLines,
              (std::vector<StLogLine>{{7, "cleanup"},
                                      {3, "Function() Error: strange"},
                                      {3, "Function() Leaving(-101), Internal error."}}));
    EXPECT_EQ(OutcomeOf([]() -> long { throw std::bad_alloc(); }).m_nCode, -101);
}

TEST(CallFrame, AnswersAnythingElseWithAFatalErrorAndCleansNothingUp) {
    const StFrameRun Outcome = OutcomeOf([]() -> long { throw 5; });
    EXPECT_EQ(Outcome.m_nCode, -104);
    EXPECT_EQ(Outcome.m_nCleanups, 0);
    EXPECT_EQ(Outcome.m_aLines,
              (std::vector<StLogLine>{
                  {3, "Function() Leaving(-104), A fatal error has occurred. Process integrity "
                      "may be corrupted. Terminate application."}}));
    EXPECT_EQ(OutcomeOf([]() -> long { throw -37L; }).m_nCode, -104);
}

TEST(CallFrame, LogsExceptionsWithoutText) {
    const StFrameRun Standard = OutcomeOf([]() -> long { throw ClMute(); });
    EXPECT_EQ(Standard.m_aLines[1].m_Text, "Function() Error: ");
    const StFrameRun Own = OutcomeOf([]() -> long {
        ClException e(-39, false, nullptr, 4);
        e.SetComment(nullptr);
        throw e;
    });
    EXPECT_EQ(Own.m_nCode, -39);
    EXPECT_EQ(Own.m_aLines[1].m_Text, "Function() Error: ");
    EXPECT_EQ(Own.m_aLines[2].m_Text, "Function() File: Unknown(4)");
}

TEST(CallFrame, UnwindsTheWorkBeforeItCleansUp) {
    std::string Order;
    struct StLocal {
        std::string& m_rOrder;
        ~StLocal() { m_rOrder += "local "; }
    };
    CallFrame::Run(
        cTexts,
        [&]() -> long {
            const StLocal Local{Order};
            throw ClExTessarin(-39, "F", 1);
        },
        [&] { Order += "cleanup"; });
    EXPECT_EQ(Order, "local cleanup");
}

// The steps in front of the work

namespace {

/// What a call with a handle did, in order.
struct StCourse {
    std::string m_Steps;
    long m_nCode = 0;
    std::vector<StLogLine> m_aLines;
};

template <class Work>
StCourse CourseOf(void* pHandle, long nChecked, Work work) {
    StCourse Course;
    const ClLogCapture Log;
    Course.m_nCode = CallFrame::WithHandle(
        cTexts, std::tuple(pHandle, static_cast<unsigned char*>(nullptr), 0x100000005ul),
        [&](ClIpCalibrateLumivane2&) {
            Course.m_Steps += "check ";
            return nChecked;
        },
        [&](ClIpCalibrateLumivane2&) -> long {
            Course.m_Steps += "work ";
            return work();
        },
        [&](ClIpCalibrateLumivane2&) { Course.m_Steps += "cleanup "; });
    Course.m_aLines = Log.Lines();
    return Course;
}

StLogLine EnterLine(const void* pHandle) {
    char szText[100];
    std::snprintf(szText, sizeof szText, "Function(0x%p, 0x%p, %d) Enter", pHandle, nullptr, 5);
    return {7, szText};
}

} // namespace

TEST(CallFrame, EntersChecksAndWorksInThisOrder) {
    TestSupport::StOwnHandle<> Own;
    const StCourse Course = CourseOf(Own.Handle(), 0, [] { return -21L; });
    EXPECT_EQ(Course.m_Steps, "check work ");
    EXPECT_EQ(Course.m_nCode, -21);
    ASSERT_EQ(Course.m_aLines.size(), 2u);
    EXPECT_EQ(Course.m_aLines.front(), EnterLine(Own.Handle()));
}

TEST(CallFrame, EndsAtAHandleThatIsNone) {
    const StCourse Course = CourseOf(nullptr, -10, [] { return 0L; });
    EXPECT_EQ(Course.m_Steps, "");
    EXPECT_EQ(Course.m_nCode, -42);
    ASSERT_EQ(Course.m_aLines.size(), 2u);
    EXPECT_EQ(Course.m_aLines.front(), EnterLine(nullptr));
}

TEST(CallFrame, EndsAtArgumentsThatAreRefused) {
    TestSupport::StOwnHandle<> Own;
    const StCourse Course = CourseOf(Own.Handle(), -10, [] { return 0L; });
    EXPECT_EQ(Course.m_Steps, "check ");
    EXPECT_EQ(Course.m_nCode, -10);
    EXPECT_EQ(Course.m_aLines.size(), 2u);
}

TEST(CallFrame, CleansUpBehindWorkThatThrows) {
    TestSupport::StOwnHandle<> Own;
    const StCourse Course =
        CourseOf(Own.Handle(), 0, []() -> long { throw ClExTessarin(-39, "F", 1); });
    EXPECT_EQ(Course.m_Steps, "check work cleanup ");
    EXPECT_EQ(Course.m_nCode, -39);
}
