#pragma once

/// Allocations that fail by the functions which the program replaces.

#include "calls/CallSequence.h"
#include "support/AllocationFailures.h"

#include <optional>

namespace Calls {

class ClInjectedFaults : public ClFaults {
public:
    void Arm(long nAfter) override {
        if (nAfter >= 0)
            m_Fail.emplace(nAfter);
    }
    bool Disarm() override {
        const bool bHappened = m_Fail.has_value() && TestSupport::ClFailAllocation::Happened();
        m_Fail.reset();
        return bHappened;
    }

private:
    std::optional<TestSupport::ClFailAllocation> m_Fail;
};

} // namespace Calls
