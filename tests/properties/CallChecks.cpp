#include "properties/CallChecks.h"

#include <gtest/gtest.h>

namespace Properties {

namespace {

/// Whether a part of the state is as it was, or as the finished call leaves it.
bool IsEither(const Bytes& aPart, const Bytes& aBefore, const Bytes& aAfter) {
    return aPart == aBefore || aPart == aAfter;
}

} // namespace

StExpected Unharmed(const StCall& Call, const StOptionSet& Options) {
    StExpected Expected;
    ClHandle Handle(Options);
    Call.m_pPrepare(Handle);
    Expected.m_Before = StateOf(Handle);
    Expected.m_Outcome = Call.Run(Handle);
    Expected.m_After = StateOf(Handle);
    return Expected;
}

void ExpectDone(void* pHandle, const StOutcome& Outcome, const StExpected& Expected) {
    EXPECT_EQ(Outcome.m_nStatus, Expected.m_Outcome.m_nStatus);
    EXPECT_TRUE(Outcome == Expected.m_Outcome);
    EXPECT_TRUE(StateOf(pHandle) == Expected.m_After);
}

void ExpectRefused(const StCall& Call, void* pHandle, const StOutcome& Outcome,
                   const StExpected& Expected) {
    EXPECT_EQ(Outcome.m_nStatus, QMT_ERROR_OUT_OF_MEMORY);
    StOutcome Left = Call.m_Left;
    Left.m_nStatus = QMT_ERROR_OUT_OF_MEMORY;
    EXPECT_TRUE(Outcome == Left) << "an output was written";
    const StState State = StateOf(pHandle);
    EXPECT_EQ(State.m_aOptions, Expected.m_Before.m_aOptions);
    EXPECT_TRUE(IsEither(State.m_aLevels, Expected.m_Before.m_aLevels, Expected.m_After.m_aLevels));
    if (Call.m_bDropsData) {
        EXPECT_EQ(State.m_aData, NoBlock());
        EXPECT_EQ(State.m_aTable, NoBlock());
    } else {
        EXPECT_EQ(State.m_aData, Expected.m_Before.m_aData);
        EXPECT_TRUE(
            IsEither(State.m_aTable, Expected.m_Before.m_aTable, Expected.m_After.m_aTable));
    }
}

void ExpectRecovery(const StCall& Call, void* pHandle, const StExpected& Expected) {
    if (Call.m_bDropsData)
        Call.m_pPrepare(pHandle);
    const StOutcome Outcome = Call.Run(pHandle);
    ExpectDone(pHandle, Outcome, Expected);
}

} // namespace Properties
