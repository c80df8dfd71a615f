#pragma once

/// A progress bar in the last line of a terminal.

#include <cstddef>
#include <string>

namespace qk7 {

/// The bar as text of at most `nColumns` characters, or the counter alone where it has no room:
/// "[######..............] 3/10 capture.bmp".
std::string ProgressLine(std::size_t nDone, std::size_t nTotal, const std::string& Name,
                         std::size_t nColumns);

/// Draws on standard error, when that is a terminal and there is more than one step; otherwise
/// every member does nothing.
class ClProgress {
public:
    explicit ClProgress(std::size_t nTotal);
    ClProgress(const ClProgress&) = delete;
    ClProgress& operator=(const ClProgress&) = delete;
    ~ClProgress() { Clear(); }

    /// Shows the steps done so far and the name of the one that begins.
    void Begin(const std::string& Name);
    /// Counts the step that began last.
    void Done() { ++m_nDone; }
    /// Empties the line, so that a message can be printed; the next step draws it again.
    void Clear();

private:
    std::size_t m_nTotal;
    std::size_t m_nDone = 0;
    bool m_bShown;
};

} // namespace qk7
