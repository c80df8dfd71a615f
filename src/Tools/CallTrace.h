#pragma once

/// The two lines that a call leaves in the trace.

#include "Tools/LoggingFacility.h"

#include <exception>

namespace Vek {

/// Writes "NAME Enter" when it is made and "NAME Leaving" when its scope is left, unless an
/// exception passes: a trace without the second line shows how far a failure went. It stands first
/// in its scope, so that what the call holds is released before the second line.
class ClCallTrace {
public:
    /// `szName` is a literal, such as "ClImage::Load()".
    explicit ClCallTrace(const char* szName)
        : m_szName(szName), m_nExceptions(std::uncaught_exceptions()) {
        VekLFLog(eLogTrace, "%s Enter", m_szName);
    }
    ClCallTrace(const ClCallTrace&) = delete;
    ClCallTrace& operator=(const ClCallTrace&) = delete;
    /// The log is the application's where it puts its own in front, and may be where a thread is
    /// cancelled: what unwinds from there passes.
    ~ClCallTrace() noexcept(false) {
        if (std::uncaught_exceptions() == m_nExceptions)
            VekLFLog(eLogTrace, "%s Leaving", m_szName);
    }

private:
    const char* m_szName;
    int m_nExceptions;
};

} // namespace Vek
