#pragma once

/// The hook for named timing marks: an application derives a class of its own and points
/// `g_pProfileTimer` at an object of it. Here nothing happens. The texts are `printf` formats
/// with their arguments; that of TimerStart() may be null, for the run of a processor.
class ClProfileTimer {
public:
    virtual void TimerStart(const char* pFormat, ...);
    virtual void TimerStop(const char* pFormat, ...);
    virtual ~ClProfileTimer();
};

/// The timer of the process, null while nobody measures. Whoever sets it owns it, and keeps it
/// alive longer than the processors created meanwhile; it is read without a lock.
extern ClProfileTimer* g_pProfileTimer;
