#pragma once

// Every instruction level that this processor has, for tests that compare them.

#include "Tools/InstructionLevel.h"

#include <gtest/gtest.h>

#include <vector>

namespace TestSupport {

inline std::vector<EInstructionLevel> Levels() {
    std::vector<EInstructionLevel> aLevels;
    for (const EInstructionLevel eLevel :
         {EInstructionLevel::Baseline, EInstructionLevel::V3, EInstructionLevel::V4})
        if (eLevel <= HighestInstructionLevel())
            aLevels.push_back(eLevel);
    return aLevels;
}

/// Limits the level for as long as it lives.
class ClLevelLimit {
public:
    explicit ClLevelLimit(EInstructionLevel eLevel) : m_eBefore(InstructionLevel()) {
        LimitInstructionLevel(eLevel);
    }
    ClLevelLimit(const ClLevelLimit&) = delete;
    ClLevelLimit& operator=(const ClLevelLimit&) = delete;
    ~ClLevelLimit() { LimitInstructionLevel(m_eBefore); }

private:
    EInstructionLevel m_eBefore;
};

/// Calls `work()` at every level.
template <class Work>
void AtEveryLevel(Work work) {
    for (const EInstructionLevel eLevel : Levels()) {
        SCOPED_TRACE(static_cast<int>(eLevel));
        const ClLevelLimit limit(eLevel);
        work();
    }
}

} // namespace TestSupport
