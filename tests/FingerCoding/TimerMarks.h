#pragma once

/// The runs of processors, in the order in which they end, as the timer of the process sees them.

#include "Tools/ProfileTimer.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace TestSupport {

/// The timer of the process while it lives.
class ClTimerMarks : public ClProfileTimer {
public:
    ClTimerMarks() { g_pProfileTimer = this; }
    ClTimerMarks(const ClTimerMarks&) = delete;
    ClTimerMarks& operator=(const ClTimerMarks&) = delete;
    ~ClTimerMarks() override { g_pProfileTimer = nullptr; }

    void TimerStop(const char* pFormat, ...) override {
        char szText[600];
        va_list arguments;
        va_start(arguments, pFormat);
        std::vsnprintf(szText, sizeof szText, pFormat, arguments);
        va_end(arguments);
        const std::string Text = szText;
        m_aNames.push_back(Text.substr(0, Text.find(' ')));
        if (std::strcmp(pFormat, "%s %s") == 0) // a processor and its settings
            m_aRuns.push_back(m_aNames.back());
    }

    std::vector<std::string> m_aNames; ///< of all marks
    std::vector<std::string> m_aRuns;  ///< of the processors whose runs have ended
};

} // namespace TestSupport
