#pragma once

/// Work that may be refused, for harnesses of what lies inside the library.

#include "Harness.h"

#include "Tools/Exception.h"

namespace Fuzz {

/// Whether `work()` came to its end; what it throws otherwise has a known number.
template <class Work>
bool Try(Work work) {
    try {
        work();
        return true;
    } catch (const ClException& e) {
        RequireStatus(e.Number());
        return false;
    }
}

} // namespace Fuzz
