#pragma once

/// `ClProcessorBase`: the frame of every image processor, from the pixel operators to the
/// calibration of a scanner. It fixes one protocol of a run, Apply(), one way of naming a
/// processor and its settings, and one place for timing.
///
/// A concrete processor names its images and settings in public members, which keep their values
/// between runs:
///
///     class ClIpInvert : public ClProcessorBase {
///     public:
///         ClProcessorBase* Create() override { return Vek::NewObject<ClIpInvert>(); }
///         const char* Name() const override { return "ClIpInvert"; }
///         long Process() override;
///     };
///
/// A class that overrides one form of QueryParameters hides the other; it brings it back with
/// `using ClProcessorBase::QueryParameters;`.

#include "Tools/ParameterProvider.h"

class ClProfileTimer;

class ClProcessorBase : public ClParameterProvider {
public:
    /// Timing is on where `g_pProfileTimer` is set.
    ClProcessorBase();
    ~ClProcessorBase() override;

    using ClParameterProvider::QueryParameters;

    /// A new instance of the concrete class, with its defaults, for the caller to delete. Throws
    /// `ClExBadAlloc` (-102).
    virtual ClProcessorBase* Create() = 0;
    /// The class name. The body here answers "ProcessorBase".
    virtual const char* Name() const = 0;
    /// Whether the settings admit a run, where a class overrides it; here false. Apply() does not
    /// ask.
    virtual bool CanApply();
    /// Writes a short text of the settings, terminated, into `nSize` bytes; here an empty one.
    /// Returns its length without terminator. Throws "Unexpected zero-length string" (-101) for a
    /// size of 0.
    virtual long ParameterString(char* pBuffer, unsigned long nSize);
    /// Tree channel with defaults, see `ClParameterProvider`.
    virtual void QueryParameters(ClParameterContainer& Container);
    /// Switches timing on, if `g_pProfileTimer` is set, or off.
    virtual void Timer(bool bEnable);
    /// Before a run: a result other than 0 ends it.
    virtual long Initialize();
    /// After a run; gets the result of Process(). A result other than 0 becomes an exception.
    virtual long Finalize(long nResult);
    /// The work: 0 for success. Failures are exceptions by convention.
    virtual long Process() = 0;

    /// Runs Initialize(), Process() and Finalize(), and returns the result of Process(), or at
    /// once that of Initialize() if it is not 0. Throws "Finalization failed" with the result of
    /// Finalize() if that is not 0. Other exceptions pass; Finalize() is then not called.
    long Apply();

    /// Marks for the timer, without effect where timing is off. The text is a `printf` format
    /// without arguments; a null text marks the run itself, with name and settings at its end.
    void TimerStart(const char* pText);
    void TimerStop(const char* pText);
    bool IsTimerEnabled() const { return m_pTimer != nullptr; }

private:
    ClProfileTimer* m_pTimer;
};
