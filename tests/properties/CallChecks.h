#pragma once

/// What a call owes when memory is missing, and when it is not.

#include "properties/CallsInMemory.h"

namespace Properties {

/// What a handle answers to one call, and what it is before and after.
struct StExpected {
    StState m_Before;
    StOutcome m_Outcome;
    StState m_After;
};

/// Of a new handle with memory enough.
StExpected Unharmed(const StCall& Call, const StOptionSet& Options);

/// The call worked.
void ExpectDone(void* pHandle, const StOutcome& Outcome, const StExpected& Expected);

/// The call answered that memory is missing.
void ExpectRefused(const StCall& Call, void* pHandle, const StOutcome& Outcome,
                   const StExpected& Expected);

/// Makes the call once more on a handle on which it was refused.
void ExpectRecovery(const StCall& Call, void* pHandle, const StExpected& Expected);

} // namespace Properties
