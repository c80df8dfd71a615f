#pragma once

/// The frame of every exported function: an Enter line, the handle, the arguments, the work in one
/// `try`, a Leaving line. No exception gets out: the catch chain turns it into its number. What is
/// no exception, the unwinding of a thread that is cancelled or ends itself, passes through.
///
/// WithHandle() is the whole frame. Its parts are there for the functions that lack one of them:
/// those that test something before the handle, and those whose work cannot throw.
///
/// A real logging facility sees the formats of the lines, so each function has its own.

#include "TessarinCalibrateSDK/Handle.h"

#include "Tools/Exception.h"
#include "Tools/LoggingFacility.h"
#include "Tools/PlainArithmetic.h"

#include <exception>
#include <tuple>

namespace CallFrame {

/// The formats of one function's lines.
struct StTexts {
    const char* m_szEnter;
    const char* m_szLeaving;
    const char* m_szError;
    const char* m_szFile;
};

/// `arguments` has one "0x%p" per pointer and one "%d" per size.
#define TESSARIN_CALL_TEXTS(name, arguments)                                                       \
    CallFrame::StTexts {                                                                           \
        name "(" arguments ") Enter", name "() Leaving(%d), %s", name "() Error: %s",              \
            name "() File: %s(%d)"                                                                 \
    }

/// An argument as the Enter line shows it. Sizes show their low 32 bits.
inline const void* Shown(const void* pArgument) {
    return pArgument;
}
inline int Shown(unsigned long nArgument) {
    return static_cast<int>(nArgument);
}

/// Logs the Enter line with the arguments of the call.
template <class... Arguments>
void Enter(const StTexts& Texts, Arguments... arguments) {
    VekLFLog(Vek::eLogTrace, Texts.m_szEnter, Shown(arguments)...);
}

template <class... Arguments>
void EnterWith(const StTexts& Texts, const std::tuple<Arguments...>& CallArguments) {
    std::apply([&](auto... arguments) { Enter(Texts, arguments...); }, CallArguments);
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
        const Vek::ClPlainArithmetic plain;
        return Leave(Texts, work());
    } catch (const ClException& e) {
        onFailure();
        return LeaveWith(Texts, e);
    } catch (const std::exception& e) {
        onFailure();
        return LeaveWith(Texts, e);
    } catch (...) {
        if (std::current_exception() == nullptr) // not C++: whoever stops it ends the process
            throw;
        return Leave(Texts, QMT_FATAL_ERROR_TERMINATION_NECESSARY, Vek::eLogError);
    }
}

/// The code of CheckHandle(), or of `answer(processor)` for a handle that is one.
template <class Answer>
long Answered(void* handle, Answer answer) {
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    const long nCode = CheckHandle(handle, &pProcessor);
    return nCode != QMT_SUCCESS ? nCode : answer(*pProcessor);
}

/// Does nothing with the processor.
inline void KeepData(ClIpCalibrateLumivane2&) {}

/// The frame from the handle on. `check(processor)` tests the arguments: a code other than 0 is
/// the outcome. `work(processor)` and `onFailure(processor)` are those of Run().
template <class Check, class Work, class OnFailure = void (*)(ClIpCalibrateLumivane2&)>
long OnHandle(const StTexts& Texts, void* handle, Check check, Work work,
              OnFailure onFailure = KeepData) {
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    const long nCode = Answered(handle, [&](ClIpCalibrateLumivane2& rProcessor) {
        pProcessor = &rProcessor;
        return check(rProcessor);
    });
    if (nCode != QMT_SUCCESS)
        return Leave(Texts, nCode);
    return Run(
        Texts, [&] { return work(*pProcessor); }, [&] { onFailure(*pProcessor); });
}

/// The whole frame of a call with these arguments, of which the first is the handle.
template <class... Arguments, class... Steps>
long WithHandle(const StTexts& Texts, const std::tuple<void*, Arguments...>& CallArguments,
                Steps... steps) {
    EnterWith(Texts, CallArguments);
    return OnHandle(Texts, std::get<0>(CallArguments), steps...);
}

/// The same for a call that only looks at the processor or sets it: `answer(processor)` tests its
/// arguments itself, and throws nothing.
template <class... Arguments, class Answer>
long AnswerWithHandle(const StTexts& Texts, const std::tuple<void*, Arguments...>& CallArguments,
                      Answer answer) {
    EnterWith(Texts, CallArguments);
    return Leave(Texts, Answered(std::get<0>(CallArguments), answer));
}

} // namespace CallFrame
