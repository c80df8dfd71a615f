#include "Tools/ProcessorBase.h"

#include "Tools/Allocate.h"
#include "Tools/ClassCallProfile.h"
#include "Tools/ProfileTimer.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

/// A processor that writes down what happens to it, with results to choose.
class ClIpScripted : public ClProcessorBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpScripted>(); }
    const char* Name() const override {
        m_aCalls.push_back("Name");
        return "ClIpScripted";
    }
    long ParameterString(char* pBuffer, unsigned long nSize) override {
        m_aCalls.push_back("ParameterString");
        return std::snprintf(pBuffer, nSize, "W%d of %lu", 3, nSize);
    }
    long Initialize() override {
        m_aCalls.push_back("Initialize");
        return m_nInit;
    }
    long Process() override {
        m_aCalls.push_back("Process");
        if (m_bThrowing)
            throw ClExTessarin(-37, "here", 12);
        return m_nResult;
    }
    long Finalize(long nResult) override {
        m_aCalls.push_back("Finalize " + std::to_string(nResult));
        return m_nFinal;
    }

    long m_nInit = 0;
    long m_nResult = 0;
    long m_nFinal = 0;
    bool m_bThrowing = false;
    mutable std::vector<std::string> m_aCalls;
};

using Calls = std::vector<std::string>;

/// The frame's own bodies, the pure ones included.
class ClIpPlain : public ClProcessorBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpPlain>(); }
    const char* Name() const override { return ClProcessorBase::Name(); }
    long Process() override { return 0; }
};

/// A timer that writes down its marks, and is that of the process while it lives.
class ClRecordingTimer : public ClProfileTimer {
public:
    ClRecordingTimer() { g_pProfileTimer = this; }
    ~ClRecordingTimer() override { g_pProfileTimer = nullptr; }

    void TimerStart(const char* pFormat, ...) override {
        m_aMarks.push_back(std::string("start ") + (pFormat != nullptr ? pFormat : "(null)"));
    }
    void TimerStop(const char* pFormat, ...) override {
        char szText[600];
        va_list arguments;
        va_start(arguments, pFormat);
        std::vsnprintf(szText, sizeof szText, pFormat, arguments);
        va_end(arguments);
        m_aMarks.push_back(std::string("stop ") + szText);
    }

    std::vector<std::string> m_aMarks;
};

TEST(ProcessorBase, StartsWithNeitherProfileNorTimer) {
    EXPECT_EQ(g_pClassCallProfile, nullptr);
    EXPECT_EQ(g_pProfileTimer, nullptr);
    EXPECT_FALSE(ClIpPlain().IsTimerEnabled());
}

TEST(ProcessorBase, HasPlainAnswersOfItsOwn) {
    ClIpPlain processor;
    EXPECT_STREQ(processor.Name(), "ProcessorBase");
    EXPECT_FALSE(processor.CanApply());
    EXPECT_EQ(processor.Initialize(), 0);
    EXPECT_EQ(processor.Finalize(-5), 0);
    EXPECT_EQ(processor.Apply(), 0);
}

TEST(ProcessorBase, WritesAnEmptyParameterString) {
    ClIpPlain processor;
    char szText[2] = "?";
    EXPECT_EQ(processor.ParameterString(szText, 1), 0);
    EXPECT_STREQ(szText, "");
}

TEST(ProcessorBase, RefusesAParameterStringOfNoLength) {
    ClIpPlain processor;
    char cText = '?';
    EXPECT_THROWS(processor.ParameterString(&cText, 0), ClException, -101,
                  "Unexpected zero-length string");
    EXPECT_THROWS(processor.ParameterString(nullptr, 8), ClException, -101,
                  "Unexpected zero-length string");
    EXPECT_EQ(cText, '?');
}

TEST(ProcessorBase, CreatesAnotherOfItsClass) {
    ClIpScripted processor;
    processor.m_nResult = 7;
    const std::unique_ptr<ClProcessorBase> pOther(processor.Create());
    EXPECT_STREQ(pOther->Name(), "ClIpScripted");
    EXPECT_EQ(pOther->Apply(), 0);
}

TEST(ProcessorBase, AnswersAMissingAllocationOfCreate) {
    ClIpPlain processor;
    TestSupport::ClFailAllocation fail(0);
    EXPECT_THROWS(processor.Create(), ClExBadAlloc, -102, "Memory allocation failed");
}

TEST(ProcessorBase, RunsInitializeProcessAndFinalize) {
    ClIpScripted processor;
    EXPECT_EQ(processor.Apply(), 0);
    EXPECT_EQ(processor.m_aCalls, (Calls{"Initialize", "Process", "Finalize 0"}));
}

TEST(ProcessorBase, EndsAtAResultOfInitialize) {
    for (long nResult : {-5L, 1L, 5L}) {
        ClIpScripted processor;
        processor.m_nInit = nResult;
        EXPECT_EQ(processor.Apply(), nResult);
        EXPECT_EQ(processor.m_aCalls, (Calls{"Initialize"}));
    }
}

TEST(ProcessorBase, PassesTheResultOfProcessToFinalizeAndUp) {
    ClIpScripted processor;
    processor.m_nResult = 7;
    EXPECT_EQ(processor.Apply(), 7);
    EXPECT_EQ(processor.m_aCalls, (Calls{"Initialize", "Process", "Finalize 7"}));
}

TEST(ProcessorBase, ThrowsAResultOfFinalize) {
    ClIpScripted processor;
    processor.m_nFinal = -35;
    EXPECT_THROWS(processor.Apply(), ClException, -35, "Finalization failed");
    try {
        processor.Apply();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/ProcessorBase");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(ProcessorBase, LetsExceptionsPassAndDoesNotFinalize) {
    ClIpScripted processor;
    processor.m_bThrowing = true;
    try {
        processor.Apply();
        FAIL();
    } catch (const ClExTessarin& e) {
        EXPECT_EQ(e.Number(), -37);
        EXPECT_STREQ(e.File(), "here");
        EXPECT_EQ(e.Line(), 12);
    }
    EXPECT_EQ(processor.m_aCalls, (Calls{"Initialize", "Process"}));
}

TEST(ProcessorBase, RunsAgainAfterAFailure) {
    ClIpScripted processor;
    processor.m_bThrowing = true;
    EXPECT_TESSARIN(processor.Apply(), -37);
    processor.m_bThrowing = false;
    EXPECT_EQ(processor.Apply(), 0);
}

TEST(ProcessorBase, MarksARunWithNameAndSettings) {
    ClRecordingTimer timer;
    ClIpScripted processor;
    EXPECT_TRUE(processor.IsTimerEnabled());
    processor.Apply();
    EXPECT_EQ(timer.m_aMarks, (Calls{"start (null)", "stop ClIpScripted W3 of 512"}));
}

TEST(ProcessorBase, MarksNamedSteps) {
    ClRecordingTimer timer;
    ClIpScripted processor;
    processor.TimerStart("step");
    processor.TimerStop("step");
    EXPECT_EQ(timer.m_aMarks, (Calls{"start step", "stop step"}));
    EXPECT_TRUE(processor.m_aCalls.empty());
}

TEST(ProcessorBase, StopsNoTimerForARunThatFails) {
    ClRecordingTimer timer;
    ClIpScripted processor;
    processor.m_nInit = -5;
    processor.Apply();
    processor.m_nInit = 0;
    processor.m_nFinal = -1;
    EXPECT_THROWS(processor.Apply(), ClException, -1, "Finalization failed");
    EXPECT_EQ(timer.m_aMarks, (Calls{"start (null)", "start (null)"}));
}

TEST(ProcessorBase, AsksNothingWithTheTimerOff) {
    ClRecordingTimer timer;
    ClIpScripted processor;
    processor.Timer(false);
    EXPECT_FALSE(processor.IsTimerEnabled());
    processor.TimerStart(nullptr);
    processor.TimerStop(nullptr);
    processor.TimerStop("step");
    EXPECT_TRUE(timer.m_aMarks.empty());
    EXPECT_TRUE(processor.m_aCalls.empty());
    processor.Timer(true);
    EXPECT_TRUE(processor.IsTimerEnabled());
}

TEST(ProcessorBase, CannotSwitchOnATimerThatIsNotThere) {
    ClIpScripted processor;
    processor.Timer(true);
    EXPECT_FALSE(processor.IsTimerEnabled());
}

/// A table that is that of the process while it lives.
struct StProfile {
    StProfile() { g_pClassCallProfile = &m_Profile; }
    ~StProfile() { g_pClassCallProfile = nullptr; }

    long Calls() const {
        return m_Profile.m_aEntries.Entries() == 0 ? 0 : m_Profile.m_aEntries[0].m_nCalls;
    }

    ClClassCallProfile m_Profile;
};

TEST(ProcessorBase, MarksItsStartFirstAndItsEndBehindTheCount) {
    struct ClOrderTimer : ClProfileTimer {
        void TimerStart(const char*, ...) override { m_pCalls->push_back("start"); }
        void TimerStop(const char*, ...) override {
            m_pCalls->push_back("stop after " + std::to_string(m_Table.Calls()));
        }
        StProfile m_Table;
        Calls* m_pCalls = nullptr;
    } timer;
    g_pProfileTimer = &timer;
    ClIpScripted processor;
    g_pProfileTimer = nullptr;
    timer.m_pCalls = &processor.m_aCalls;
    processor.Apply();
    EXPECT_EQ(processor.m_aCalls, (Calls{"start", "Initialize", "Process", "Finalize 0",
                                         "ParameterString", "Name", "stop after 1"}));
}

TEST(ProcessorBase, CountsARunWithAnyResultButNoneThatFails) {
    StProfile table;
    ClIpScripted processor;
    processor.m_nResult = 7;
    processor.Apply();
    EXPECT_EQ(table.Calls(), 1);
    processor.m_nFinal = -1;
    EXPECT_THROWS(processor.Apply(), ClException, -1, "Finalization failed");
    processor.m_bThrowing = true;
    EXPECT_TESSARIN(processor.Apply(), -37);
    EXPECT_EQ(table.Calls(), 1);
}

TEST(ProcessorBase, CountsTheSecondsOfARun) {
    struct ClIpSlow : ClIpPlain {
        long Process() override {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            return 0;
        }
    } processor;
    bool bMeasured = false;
    for (int i = 0; i < 3 && !bMeasured; ++i) { // wall time can be set back meanwhile
        StProfile table;
        processor.Apply();
        const double dSeconds = table.m_Profile.m_aEntries[0].m_dSeconds;
        bMeasured = dSeconds >= 0.002 && dSeconds < 60.0;
    }
    EXPECT_TRUE(bMeasured);
}

TEST(ProcessorBase, BuildsItsTextForATimerThatDoesNothing) {
    ClProfileTimer timer;
    g_pProfileTimer = &timer;
    ClIpScripted processor;
    g_pProfileTimer = nullptr;
    processor.TimerStart(nullptr);
    processor.TimerStop(nullptr);
    EXPECT_EQ(processor.m_aCalls, (Calls{"ParameterString", "Name"}));
}

} // namespace
