#include "apps/qk7/Progress.h"

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace qk7 {

namespace {

constexpr std::size_t cnBar = 20;

std::size_t TerminalColumns() {
    struct winsize size {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 80;
    return size.ws_col;
}

void Draw(const std::string& Text) {
    std::fwrite(Text.data(), 1, Text.size(), stderr);
    std::fflush(stderr);
}

/// A name with its control characters replaced, which would move the cursor.
std::string Printable(std::string Name) {
    for (char& c : Name)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = '?';
    return Name;
}

} // namespace

std::string ProgressLine(std::size_t nDone, std::size_t nTotal, const std::string& Name,
                         std::size_t nColumns) {
    const std::size_t nFilled = nTotal == 0 ? cnBar : cnBar * nDone / nTotal;
    const std::string bar =
        "[" + std::string(nFilled, '#') + std::string(cnBar - nFilled, '.') + "] ";
    const std::string counter = std::to_string(nDone) + "/" + std::to_string(nTotal);
    if (nColumns < bar.size() + counter.size())
        return counter.substr(0, nColumns);
    return (bar + counter + " " + Printable(Name)).substr(0, nColumns);
}

ClProgress::ClProgress(std::size_t nTotal)
    : m_nTotal(nTotal), m_bShown(nTotal > 1 && isatty(STDERR_FILENO) != 0) {}

void ClProgress::Begin(const std::string& Name) {
    // One column stays free: a full line makes some terminals wrap.
    if (m_bShown)
        Draw("\r" + ProgressLine(m_nDone, m_nTotal, Name, TerminalColumns() - 1) + "\033[K");
}

void ClProgress::Clear() {
    if (m_bShown)
        Draw("\r\033[K");
}

} // namespace qk7
