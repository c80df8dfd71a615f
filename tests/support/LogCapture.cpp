#include "support/LogCapture.h"

#include <TessarinCalibrateSDK.h>

#include <cstdarg>
#include <cstdio>
#include <ostream>

namespace TestSupport {

// Null in programs without injected failures.
__attribute__((weak)) long PauseFailures();
__attribute__((weak)) void ResumeFailures(long nPaused);

namespace {
thread_local ClLogCapture* g_pInnermost = nullptr;
}

void Record(long nLevel, const char* szText) {
    const long nPaused = PauseFailures != nullptr ? PauseFailures() : -1;
    for (ClLogCapture* p = g_pInnermost; p != nullptr; p = p->m_pOuter)
        p->m_aLines.push_back({nLevel, szText});
    if (ResumeFailures != nullptr)
        ResumeFailures(nPaused);
}

ClLogCapture::ClLogCapture() : m_pOuter(g_pInnermost) {
    g_pInnermost = this;
}

ClLogCapture::~ClLogCapture() {
    g_pInnermost = m_pOuter;
}

std::vector<std::string> ClLogCapture::Texts(long nLevel) const {
    std::vector<std::string> aTexts;
    for (const StLogLine& line : m_aLines)
        if (nLevel == 0 || line.m_nLevel == nLevel)
            aTexts.push_back(line.m_Text);
    return aTexts;
}

bool ClLogCapture::Contains(const std::string& Text) const {
    for (const StLogLine& line : m_aLines)
        if (line.m_Text == Text)
            return true;
    return false;
}

} // namespace TestSupport

extern "C" long VekLFLog(long level, const char* format, ...) {
    if (TestSupport::g_pInnermost == nullptr)
        return 0;
    char szText[4096];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(szText, sizeof szText, format, arguments);
    va_end(arguments);
    TestSupport::Record(level, szText);
    if (TestSupport::g_pInnermost->m_OnLine)
        TestSupport::g_pInnermost->m_OnLine({level, szText});
    return 0;
}
