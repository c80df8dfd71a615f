#pragma once

/// How far the rules of a ruled plate lie from where they ought to in an image of 320 x 480 pixels.

#include "sim/Capture.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace TestSupport {

/// How far the dark middle near a point of a vertical rule lies from that point, pixels.
inline double OffsetAcross(const sim::ClRaster& Image, double x, int y) {
    double dWeight = 0.0;
    double dSum = 0.0;
    for (int i = static_cast<int>(x) - 6; i <= static_cast<int>(x) + 7; ++i) {
        const double dDark = std::max(0, 225 - Image.At(i, y));
        dWeight += dDark;
        dSum += dDark * i;
    }
    return dSum / dWeight - x;
}

inline double OffsetDown(const sim::ClRaster& Image, int x, double y) {
    double dWeight = 0.0;
    double dSum = 0.0;
    for (int j = static_cast<int>(y) - 6; j <= static_cast<int>(y) + 7; ++j) {
        const double dDark = std::max(0, 225 - Image.At(x, j));
        dWeight += dDark;
        dSum += dDark * j;
    }
    return dSum / dWeight - y;
}

/// The largest offset of the rules inside a rectangle about the middle of the frame, half sizes in
/// pixels, looked at midway between their crossings.
inline double WorstOffset(const sim::ClRaster& Image, const std::vector<sim::ClLine>& aLines,
                          double dHalfWidth, double dHalfHeight) {
    constexpr std::size_t nVertical = 9;
    const auto IsInside = [&](double x, double y) {
        return std::fabs(x - 160.0) < dHalfWidth && std::fabs(y - 240.0) < dHalfHeight;
    };
    double dWorst = 0.0;
    for (std::size_t v = 0; v < nVertical; ++v) {
        for (std::size_t h = nVertical; h + 1 < aLines.size(); ++h) {
            const double x = aLines[v].m_From.x;
            const double y = 0.5 * (aLines[h].m_From.y + aLines[h + 1].m_From.y);
            if (IsInside(x, y))
                dWorst = std::max(dWorst, std::fabs(OffsetAcross(Image, x, static_cast<int>(y))));
        }
    }
    for (std::size_t h = nVertical; h < aLines.size(); ++h) {
        for (std::size_t v = 0; v + 1 < nVertical; ++v) {
            const double x = 0.5 * (aLines[v].m_From.x + aLines[v + 1].m_From.x);
            const double y = aLines[h].m_From.y;
            if (IsInside(x, y))
                dWorst = std::max(dWorst, std::fabs(OffsetDown(Image, static_cast<int>(x), y)));
        }
    }
    return dWorst;
}

/// Inside the dots of the pattern, and in all of the frame but its border.
inline double WorstInside(const sim::ClRaster& Image, const std::vector<sim::ClLine>& aLines) {
    return WorstOffset(Image, aLines, 6.2 * 500.0 / 25.4, 10.2 * 500.0 / 25.4);
}

inline double WorstAnywhere(const sim::ClRaster& Image, const std::vector<sim::ClLine>& aLines) {
    return WorstOffset(Image, aLines, 152.0, 232.0);
}

} // namespace TestSupport
