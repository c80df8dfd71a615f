#include "Tools/StopWatch.h"

namespace Vek {

CXStopWatch::~CXStopWatch() = default;

void CXStopWatch::Start() {
    gettimeofday(&m_tStart, nullptr);
}

double CXStopWatch::Seconds() const {
    timeval now;
    gettimeofday(&now, nullptr);
    return Seconds(m_tStart, now);
}

double CXStopWatch::Seconds(const timeval& start, const timeval& end) {
    long nSeconds = end.tv_sec - start.tv_sec;
    long nMicroseconds = end.tv_usec - start.tv_usec;
    if (nMicroseconds < 0) {
        --nSeconds;
        nMicroseconds += 1000000;
    }
    return static_cast<double>(nSeconds) + static_cast<double>(nMicroseconds) * 1e-6;
}

} // namespace Vek
