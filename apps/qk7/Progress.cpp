#include "apps/qk7/Progress.h"

#include <cmath>
#include <cstdio>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

namespace qk7 {

namespace {

constexpr std::size_t cnBar = 20;
constexpr auto cnPause = std::chrono::milliseconds(50);

std::size_t TerminalColumns() {
    struct winsize size {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 80;
    return size.ws_col;
}

/// A full line makes some terminals wrap, and they write "^C" behind it.
std::size_t Room(std::size_t nColumns) {
    constexpr std::size_t cnFree = 3;
    return nColumns > cnFree ? nColumns - cnFree : 0;
}

void Draw(const std::string& Text) {
    std::fwrite(Text.data(), 1, Text.size(), stderr);
    std::fflush(stderr);
}

/// The bytes of the UTF-8 character that begins here; 1 for what is none.
std::size_t CharacterBytes(const std::string& Text, std::size_t nAt) {
    const auto isFurther = [&](std::size_t n) {
        return n < Text.size() && (static_cast<unsigned char>(Text[n]) & 0xC0) == 0x80;
    };
    const unsigned char nFirst = static_cast<unsigned char>(Text[nAt]);
    const std::size_t nBytes = nFirst >= 0xF0 ? 4 : nFirst >= 0xE0 ? 3 : nFirst >= 0xC2 ? 2 : 1;
    for (std::size_t i = 1; i < nBytes; ++i)
        if (!isFurther(nAt + i))
            return 1;
    return nBytes;
}

/// A character as it is shown: what would move the cursor, and what is no character, is replaced.
std::string Shown(const std::string& Character) {
    const unsigned char n = static_cast<unsigned char>(Character[0]);
    const bool bControl = n < 0x20 || n == 0x7F || n == 0xC2;
    return bControl || (Character.size() == 1 && n >= 0x80) ? "?" : Character;
}

/// The front of a text that takes no more columns. Characters of three and four bytes count as two:
/// some of them are that wide, and a line must not wrap.
std::string Fitting(const std::string& Text, std::size_t nColumns) {
    std::string fitting;
    for (std::size_t i = 0; i < Text.size();) {
        const std::size_t nBytes = CharacterBytes(Text, i);
        const std::size_t nWide = nBytes > 2 ? 2 : 1;
        if (nWide > nColumns)
            break;
        fitting += Shown(Text.substr(i, nBytes));
        nColumns -= nWide;
        i += nBytes;
    }
    return fitting;
}

std::string RateText(double dRate) {
    char szText[64];
    std::snprintf(szText, sizeof szText, dRate < 10.0 ? "%.2f/s" : "%.0f/s", dRate);
    return szText;
}

/// "1:02:03 left" or "2:03 left".
std::string LeftText(double dSeconds) {
    constexpr double cdMost = 359999.0; // 99:59:59
    const int nSeconds = static_cast<int>(std::ceil(std::fmin(dSeconds, cdMost)));
    const int nHours = nSeconds / 3600;
    const int nMinutes = nSeconds / 60 % 60;
    char szText[64];
    if (nHours > 0)
        std::snprintf(szText, sizeof szText, "%d:%02d:%02d left", nHours, nMinutes, nSeconds % 60);
    else
        std::snprintf(szText, sizeof szText, "%d:%02d left", nMinutes, nSeconds % 60);
    return szText;
}

std::vector<std::string> Details(const StPace& Pace) {
    const double dRate = Pace.Rate();
    if (dRate <= 0.0)
        return {};
    return {RateText(dRate), LeftText(static_cast<double>(Pace.m_nTotal - Pace.m_nDone) / dRate)};
}

} // namespace

double StPace::Rate() const {
    return m_dSeconds > 0.0 ? static_cast<double>(m_nDone - m_nLeftOut) / m_dSeconds : 0.0;
}

std::string ProgressLine(const StPace& Pace, const std::string& Name, std::size_t nColumns) {
    const std::size_t nFilled = Pace.m_nTotal == 0 ? cnBar : cnBar * Pace.m_nDone / Pace.m_nTotal;
    const std::string counter = std::to_string(Pace.m_nDone) + "/" + std::to_string(Pace.m_nTotal);
    std::string line =
        "[" + std::string(nFilled, '#') + std::string(cnBar - nFilled, '.') + "] " + counter;
    if (nColumns < line.size())
        return counter.substr(0, nColumns);
    for (const std::string& detail : Details(Pace)) {
        if (line.size() + 2 + detail.size() > nColumns)
            return line;
        line += ", " + detail;
    }
    return line + Fitting(Name.empty() ? "" : ", " + Name, nColumns - line.size());
}

ClProgress::ClProgress(std::size_t nTotal, bool bQuiet)
    : m_bShown(nTotal > 1 && !bQuiet && isatty(STDERR_FILENO) != 0) {
    m_Pace.m_nTotal = nTotal;
}

void ClProgress::Begin(const std::string& Name) {
    if (!m_bShown || (m_bDrawn && Clock::now() < m_LastDrawn + cnPause))
        return;
    Draw("\r" + ProgressLine(Pace(), Name, Room(TerminalColumns())) + "\033[K");
    m_bDrawn = true;
    m_LastDrawn = Clock::now();
}

void ClProgress::Done(bool bLeftOut) {
    ++m_Pace.m_nDone;
    m_Pace.m_nLeftOut += bLeftOut ? 1 : 0;
}

void ClProgress::Clear() {
    if (m_bDrawn)
        Draw("\r\033[K");
    m_bDrawn = false;
}

StPace ClProgress::Pace() const {
    StPace pace = m_Pace;
    pace.m_dSeconds = std::chrono::duration<double>(Clock::now() - m_Start).count();
    return pace;
}

} // namespace qk7
