#include "diagnosis/Zone.h"

#include <algorithm>
#include <cstddef>

namespace diagnosis {

namespace {

/// The last dots of the outer columns and of those beside them.
constexpr std::size_t cnFirstColumn = 9;
constexpr std::size_t cnSecondColumn = 20;
constexpr std::size_t cnSixthColumn = 64;
constexpr std::size_t cnSeventhColumn = 74;

bool IsWithin(double dValue, double StPoint::*pAxis, const Points& aPoints) {
    const auto [least, most] = std::minmax_element(
        aPoints.begin(), aPoints.end(),
        [&](const StPoint& a, const StPoint& b) { return a.*pAxis < b.*pAxis; });
    return dValue >= (*least).*pAxis && dValue <= (*most).*pAxis;
}

/// The two lower corners of the pattern have no dot: the hull is cut from the last dot of the outer
/// column to the last one of the next.
bool IsBelowCut(const StPoint& Place, const StPoint& Outer, const StPoint& Inner) {
    const double dAlong = (Place.m_dX - Outer.m_dX) / (Inner.m_dX - Outer.m_dX);
    return dAlong < 1.0 && Place.m_dY > Outer.m_dY + dAlong * (Inner.m_dY - Outer.m_dY);
}

} // namespace

EZone ZoneOf(const StPoint& Place, const Points& aTarget) {
    const bool bX = IsWithin(Place.m_dX, &StPoint::m_dX, aTarget);
    const bool bY = IsWithin(Place.m_dY, &StPoint::m_dY, aTarget);
    if (!bX && !bY)
        return EZone::eCorner;
    const bool bCut = IsBelowCut(Place, aTarget.at(cnFirstColumn), aTarget.at(cnSecondColumn)) ||
                      IsBelowCut(Place, aTarget.at(cnSeventhColumn), aTarget.at(cnSixthColumn));
    return bX && bY && !bCut ? EZone::eInside : EZone::eEdge;
}

} // namespace diagnosis
