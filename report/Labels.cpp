#include "report/Labels.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace report {

namespace {

constexpr double cdAscent = 0.8 * cdTextSize;
constexpr double cdDescent = 0.25 * cdTextSize;

bool Overlap(const StBox& a, const StBox& b) {
    return a.m_dX < b.Right() && b.m_dX < a.Right() && a.m_dY < b.Bottom() && b.m_dY < a.Bottom();
}

double CommonArea(const StBox& a, const StBox& b) {
    const double dWidth = std::min(a.Right(), b.Right()) - std::max(a.m_dX, b.m_dX);
    const double dHeight = std::min(a.Bottom(), b.Bottom()) - std::max(a.m_dY, b.m_dY);
    return std::max(0.0, dWidth) * std::max(0.0, dHeight);
}

bool OverlapsAny(const StBox& Box, const std::vector<StBox>& aBoxes) {
    return std::any_of(aBoxes.begin(), aBoxes.end(),
                       [&](const StBox& b) { return Overlap(b, Box); });
}

bool IsWithin(const StBox& Inner, const StBox& Outer) {
    return Inner.m_dX >= Outer.m_dX && Inner.Right() <= Outer.Right() && Inner.m_dY >= Outer.m_dY &&
           Inner.Bottom() <= Outer.Bottom();
}

/// The boxes that a name may take, best first: right, left, above, below, then the four corners.
std::array<StBox, 8> PlacesFor(const StPoint& Mark, double dReach, double dWidth) {
    constexpr double dHeight = cdAscent + cdDescent;
    const double dRight = Mark.m_dX + dReach;
    const double dLeft = Mark.m_dX - dReach - dWidth;
    const double dAbove = Mark.m_dY - dReach - dHeight;
    const double dBelow = Mark.m_dY + dReach;
    const double dAcross = Mark.m_dX - 0.5 * dWidth;
    const double dLevel = Mark.m_dY - 0.5 * dHeight;
    return {{{dRight, dLevel, dWidth, dHeight},
             {dLeft, dLevel, dWidth, dHeight},
             {dAcross, dAbove, dWidth, dHeight},
             {dAcross, dBelow, dWidth, dHeight},
             {dRight, dAbove, dWidth, dHeight},
             {dRight, dBelow, dWidth, dHeight},
             {dLeft, dAbove, dWidth, dHeight},
             {dLeft, dBelow, dWidth, dHeight}}};
}

} // namespace

bool ClLabels::MayTake(const StBox& Box) const {
    return IsWithin(Box, m_Room) && !OverlapsAny(Box, m_aTaken);
}

/// Area of what is to be avoided.
double ClLabels::Covered(const StBox& Box) const {
    return std::accumulate(m_aAvoided.begin(), m_aAvoided.end(), 0.0,
                           [&](double dSum, const StBox& b) { return dSum + CommonArea(b, Box); });
}

bool ClLabels::Put(ClSvg& rSvg, const StPoint& Mark, double dReach, const std::string& sName,
                   const char* szClass) {
    const auto aPlaces = PlacesFor(Mark, dReach, TextWidth(sName));
    auto place = aPlaces.end();
    for (auto next = aPlaces.begin(); next != aPlaces.end(); ++next)
        if (MayTake(*next) && (place == aPlaces.end() || Covered(*next) < Covered(*place)))
            place = next;
    if (place == aPlaces.end())
        return false;
    rSvg.Text({place->Middle().m_dX, place->m_dY + cdAscent}, sName, szClass, EAnchor::eMiddle);
    m_aTaken.push_back(*place);
    return true;
}

} // namespace report
