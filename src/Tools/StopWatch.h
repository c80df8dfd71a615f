#pragma once

#include <sys/time.h>

namespace Vek {

/// Measures an interval of wall time in microseconds.
class CXStopWatch {
public:
    CXStopWatch() { Start(); }
    virtual ~CXStopWatch();

    /// Begins anew.
    void Start();
    /// Seconds since the start.
    double Seconds() const;

    /// Seconds from `start` to `end`, both with microseconds of 0 to 999999.
    static double Seconds(const timeval& start, const timeval& end);

private:
    timeval m_tStart;
};

} // namespace Vek
