#pragma once

/// The frame of every exported function: an Enter line, the handle, the arguments, the work in one
/// `try`, a Leaving line. No exception gets out: the catch chain turns it into its number.
///
/// A real logging facility sees the formats of the lines, so each function has its own.

#include "TessarinCalibrateSDK/Handle.h"

#include "Tools/Exception.h"
#include "Tools/LoggingFacility.h"

#include <exception>

namespace CallFrame {

/// The formats of one function's lines.
struct StTexts {
    const char* m_szLeaving;
    const char* m_szError;
    const char* m_szFile;
};

#define TESSARIN_CALL_TEXTS(name)                                                                  \
    CallFrame::StTexts {                                                                           \
        name "() Leaving(%d), %s", name "() Error: %s", name "() File: %s(%d)"                     \
    }

/// Logs the Leaving line and returns the code.
long Leave(const StTexts& Texts, long nCode, long nLevel = Vek::eLogTrace);

/// The same for what was caught; logs what it carries first.
long LeaveWith(const StTexts& Texts, const ClException& e);
long LeaveWith(const StTexts& Texts, const std::exception& e);

/// Runs `work`, which returns the code to leave with. `onFailure` runs before a known exception
/// is translated; an unknown one leaves no ground to stand on.
template <class Work, class OnFailure>
long Run(const StTexts& Texts, Work work, OnFailure onFailure) {
    try {
        return Leave(Texts, work());
    } catch (const ClException& e) {
        onFailure();
        return LeaveWith(Texts, e);
    } catch (const std::exception& e) {
        onFailure();
        return LeaveWith(Texts, e);
    } catch (...) {
        return Leave(Texts, QMT_FATAL_ERROR_TERMINATION_NECESSARY, Vek::eLogError);
    }
}

template <class Work>
long Run(const StTexts& Texts, Work work) {
    return Run(Texts, work, [] {});
}

} // namespace CallFrame
