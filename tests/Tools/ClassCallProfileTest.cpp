#include "Tools/ClassCallProfile.h"

#include "Tools/ProcessorBase.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <chrono>
#include <thread>

namespace {

template <int N>
class ClIpNumbered : public ClProcessorBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpNumbered>(); }
    const char* Name() const override { return "ClIpNumbered"; }
    long Initialize() override { return m_nInit; }
    long Process() override {
        std::this_thread::sleep_for(m_Duration);
        return 0;
    }

    long m_nInit = 0;
    std::chrono::milliseconds m_Duration{0};
};

/// A table that is that of the process while it lives.
class ClassCallProfile : public testing::Test {
protected:
    ClassCallProfile() { g_pClassCallProfile = &m_Profile; }
    ~ClassCallProfile() override { g_pClassCallProfile = nullptr; }

    ClClassCallProfile m_Profile;
};

TEST_F(ClassCallProfile, CountsTheRunsOfEachClass) {
    ClIpNumbered<0> first;
    ClIpNumbered<0> alike;
    ClIpNumbered<1> other;
    first.Apply();
    other.Apply();
    alike.Apply();
    ASSERT_EQ(m_Profile.m_aEntries.Entries(), 2u);
    EXPECT_EQ(*m_Profile.m_aEntries[0].m_pType, typeid(ClIpNumbered<0>));
    EXPECT_EQ(m_Profile.m_aEntries[0].m_nCalls, 2);
    EXPECT_EQ(*m_Profile.m_aEntries[1].m_pType, typeid(ClIpNumbered<1>));
    EXPECT_EQ(m_Profile.m_aEntries[1].m_nCalls, 1);
}

TEST_F(ClassCallProfile, MeasuresTheTimeOfTheRuns) {
    ClIpNumbered<0> processor;
    processor.m_Duration = std::chrono::milliseconds(2);
    processor.Apply();
    processor.Apply();
    ASSERT_EQ(m_Profile.m_aEntries.Entries(), 1u);
    EXPECT_GE(m_Profile.m_aEntries[0].m_dSeconds, 0.004);
    EXPECT_LT(m_Profile.m_aEntries[0].m_dSeconds, 60.0);
}

TEST_F(ClassCallProfile, CountsNoRunThatEndsAtInitialize) {
    ClIpNumbered<0> processor;
    processor.m_nInit = -5;
    processor.Apply();
    EXPECT_EQ(m_Profile.m_aEntries.Entries(), 0u);
}

TEST_F(ClassCallProfile, SumsTheSecondsOfAClass) {
    m_Profile.AddCall(typeid(int), 0.25);
    m_Profile.AddCall(typeid(long), 8.0);
    m_Profile.AddCall(typeid(int), 0.5);
    ASSERT_EQ(m_Profile.m_aEntries.Entries(), 2u);
    EXPECT_EQ(m_Profile.m_aEntries[0].m_dSeconds, 0.75);
    EXPECT_EQ(m_Profile.m_aEntries[1].m_dSeconds, 8.0);
}

template <int... N>
void ApplyAll(std::integer_sequence<int, N...>) {
    (ClIpNumbered<N>().Apply(), ...);
}

TEST_F(ClassCallProfile, GrowsByTenEntries) {
    ApplyAll(std::make_integer_sequence<int, 10>());
    EXPECT_EQ(m_Profile.m_aEntries.Capacity(), 10u);
    ApplyAll(std::make_integer_sequence<int, 11>());
    EXPECT_EQ(m_Profile.m_aEntries.Entries(), 11u);
    EXPECT_EQ(m_Profile.m_aEntries.Capacity(), 20u);
    EXPECT_EQ(m_Profile.m_aEntries[9].m_nCalls, 2);
    EXPECT_EQ(m_Profile.m_aEntries[10].m_nCalls, 1);
}

TEST_F(ClassCallProfile, ReleasesItsEntriesOnClear) {
    m_Profile.AddCall(typeid(int), 0.25);
    m_Profile.Clear();
    EXPECT_EQ(m_Profile.m_aEntries.Entries(), 0u);
    EXPECT_EQ(m_Profile.m_aEntries.Data(), nullptr);
    m_Profile.TraceTimes();
}

TEST_F(ClassCallProfile, AnswersAMissingAllocation) {
    ClIpNumbered<0> processor;
    TestSupport::ClFailAllocation fail(0);
    EXPECT_THROWS(processor.Apply(), ClExBadAlloc, -102, "Memory allocation failed");
    EXPECT_EQ(m_Profile.m_aEntries.Entries(), 0u);
}

} // namespace
