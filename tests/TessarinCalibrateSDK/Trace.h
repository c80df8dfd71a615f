#pragma once

/// Expected lines of the trace.

#include "support/LogCapture.h"

#include <TessarinCalibrateSDK.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace TestSupport {

using Lines = std::vector<StLogLine>;

/// A text as `printf` makes it.
__attribute__((format(printf, 1, 2))) inline std::string Printed(const char* szFormat, ...) {
    char szText[512];
    va_list arguments;
    va_start(arguments, szFormat);
    std::vsnprintf(szText, sizeof szText, szFormat, arguments);
    va_end(arguments);
    return szText;
}

inline StLogLine Trace(const std::string& Text) {
    return {7, Text};
}

inline StLogLine Leaving(const std::string& Function, long nCode, long nLevel = 7) {
    return {nLevel, Function + "() Leaving(" + std::to_string(nCode) + "), " +
                        GetErrorDescriptionIntern(nCode)};
}

/// The lines of one call without those that the engine writes between Enter and Leaving.
inline Lines WithoutEngine(const Lines& aLines) {
    Lines aOwn;
    for (const StLogLine& Line : aLines)
        if (Line.m_Text.compare(0, 4, "ClIp") != 0)
            aOwn.push_back(Line);
    return aOwn;
}

} // namespace TestSupport
