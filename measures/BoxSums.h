#pragma once

/// Sums of whole numbers over boxes of an image, each from four entries of a table that holds the
/// sums of all boxes that begin in the upper left corner.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace measures {

class ClBoxSums {
public:
    /// `Value(x, y)` is a whole number, at most 2^40 in size.
    template <class TpValue>
    ClBoxSums(int nWidth, int nHeight, TpValue Value)
        : m_nWidth(nWidth), m_nHeight(nHeight), m_aSums(Index(0, nHeight + 1)) {
        for (int y = 0; y < nHeight; ++y) {
            std::int64_t nLine = 0;
            for (int x = 0; x < nWidth; ++x) {
                nLine += Value(x, y);
                m_aSums[Index(x + 1, y + 1)] = m_aSums[Index(x + 1, y)] + nLine;
            }
        }
    }

    /// Over the samples at most `nReach` columns and lines away, cut off at the borders.
    std::int64_t Around(int x, int y, int nReach) const {
        const int nLeft = std::max(x - nReach, 0);
        const int nTop = std::max(y - nReach, 0);
        const int nRight = std::min(x + nReach + 1, m_nWidth);
        const int nBottom = std::min(y + nReach + 1, m_nHeight);
        return m_aSums[Index(nRight, nBottom)] - m_aSums[Index(nLeft, nBottom)] -
               m_aSums[Index(nRight, nTop)] + m_aSums[Index(nLeft, nTop)];
    }

private:
    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y) * (static_cast<std::size_t>(m_nWidth) + 1) +
               static_cast<std::size_t>(x);
    }

    int m_nWidth;
    int m_nHeight;
    std::vector<std::int64_t> m_aSums;
};

} // namespace measures
