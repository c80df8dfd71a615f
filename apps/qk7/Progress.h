#pragma once

/// A progress bar in the last line of a terminal.

#include <chrono>
#include <cstddef>
#include <string>

namespace qk7 {

/// How far a work has come. Steps that were left out took no time, and tell nothing about the rate.
struct StPace {
    std::size_t m_nTotal = 0;
    std::size_t m_nDone = 0;
    std::size_t m_nLeftOut = 0; ///< of those done
    double m_dSeconds = 0.0;

    /// Steps in a second; 0 before anything is known.
    double Rate() const;
};

/// The bar as text of at most `nColumns` columns, or the counter alone where it has no room:
/// "[######..............] 3/10, 12.5/s, 0:01 left, capture.bmp". What does not fit is left out
/// from the end, and the name is cut.
std::string ProgressLine(const StPace& Pace, const std::string& Name, std::size_t nColumns);

/// Draws on standard error, when that is a terminal and there is more than one step; otherwise
/// every member but the counting does nothing.
class ClProgress {
public:
    explicit ClProgress(std::size_t nTotal, bool bQuiet = false);
    ClProgress(const ClProgress&) = delete;
    ClProgress& operator=(const ClProgress&) = delete;
    ~ClProgress() { Clear(); }

    /// Shows the steps done so far and the name of one that begins; not more often than a reader
    /// can follow.
    void Begin(const std::string& Name);
    /// Counts a step.
    void Done(bool bLeftOut = false);
    /// Empties the line, so that a message can be printed; the next step draws it again.
    void Clear();

    /// With the time that has passed since the object was made.
    StPace Pace() const;
    bool IsShown() const { return m_bShown; }

private:
    using Clock = std::chrono::steady_clock;

    StPace m_Pace;
    bool m_bShown;
    bool m_bDrawn = false;
    Clock::time_point m_Start = Clock::now();
    Clock::time_point m_LastDrawn;
};

} // namespace qk7
