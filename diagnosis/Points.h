#pragma once

/// The one value type that all of the diagnosis hands around.

#include <vector>

namespace diagnosis {

/// A position, or the difference of two: pixels of a capture or of a corrected image, as told
/// where it is used. x runs to the right, y downward.
struct StPoint {
    double m_dX = 0.0;
    double m_dY = 0.0;
};

using Points = std::vector<StPoint>;

inline StPoint operator-(const StPoint& a, const StPoint& b) {
    return {a.m_dX - b.m_dX, a.m_dY - b.m_dY};
}

inline double SquaredLength(const StPoint& p) {
    return p.m_dX * p.m_dX + p.m_dY * p.m_dY;
}

inline StPoint operator+(const StPoint& a, const StPoint& b) {
    return {a.m_dX + b.m_dX, a.m_dY + b.m_dY};
}

} // namespace diagnosis
