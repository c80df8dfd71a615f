#pragma once

/// The trace of the library, kept: this test program has a `VekLFLog` of its own.

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace TestSupport {

struct StLogLine {
    long m_nLevel;
    std::string m_Text;

    bool operator==(const StLogLine& other) const {
        return m_nLevel == other.m_nLevel && m_Text == other.m_Text;
    }
};

inline std::ostream& operator<<(std::ostream& rOut, const StLogLine& Line) {
    return rOut << Line.m_nLevel << ": " << Line.m_Text;
}

/// Collects the lines logged on this thread while it lives.
class ClLogCapture {
public:
    ClLogCapture();
    ClLogCapture(const ClLogCapture&) = delete;
    ClLogCapture& operator=(const ClLogCapture&) = delete;
    ~ClLogCapture();

    const std::vector<StLogLine>& Lines() const { return m_aLines; }
    /// The texts of one level, or of all levels for 0.
    std::vector<std::string> Texts(long nLevel = 0) const;
    bool Contains(const std::string& Text) const;

    /// Called behind each line, with it; what it throws comes out of the place that logged.
    std::function<void(const StLogLine&)> m_OnLine;

private:
    friend void Record(long nLevel, const char* szText);

    std::vector<StLogLine> m_aLines;
    ClLogCapture* m_pOuter;
};

} // namespace TestSupport
