#include "report/Hull.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace report {

using diagnosis::Points;
using diagnosis::StPoint;

namespace {

/// Twice the area of a triangle; above 0 where it turns from x to y.
double Turn(const StPoint& a, const StPoint& b, const StPoint& c) {
    const StPoint u = b - a;
    const StPoint v = c - a;
    return u.m_dX * v.m_dY - u.m_dY * v.m_dX;
}

bool IsBefore(const StPoint& a, const StPoint& b) {
    return std::tie(a.m_dX, a.m_dY) < std::tie(b.m_dX, b.m_dY);
}

bool IsNone(const StPoint& p) {
    return !std::isfinite(p.m_dX) || !std::isfinite(p.m_dY);
}

/// One side of the hull of sorted points, its last point left to the other side.
template <class Iterator>
void AddSide(Iterator first, Iterator last, Points& rHull) {
    const std::size_t nBegin = rHull.size();
    for (; first != last; ++first) {
        while (rHull.size() >= nBegin + 2 &&
               !(Turn(rHull[rHull.size() - 2], rHull.back(), *first) > 0.0))
            rHull.pop_back();
        rHull.push_back(*first);
    }
    rHull.pop_back();
}

} // namespace

Points ConvexHull(Points aPoints) {
    aPoints.erase(std::remove_if(aPoints.begin(), aPoints.end(), IsNone), aPoints.end());
    std::sort(aPoints.begin(), aPoints.end(), IsBefore);
    Points aHull;
    if (aPoints.empty())
        return aHull;
    AddSide(aPoints.begin(), aPoints.end(), aHull);
    AddSide(aPoints.rbegin(), aPoints.rend(), aHull);
    return aHull;
}

} // namespace report
