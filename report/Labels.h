#pragma once

#include "report/Svg.h"

#include <vector>

namespace report {

/// A square about a place.
inline StBox Around(const StPoint& Middle, double dReach) {
    return {Middle.m_dX - dReach, Middle.m_dY - dReach, 2.0 * dReach, 2.0 * dReach};
}

/// Places names beside marks so that none lies on another one.
class ClLabels {
public:
    /// Names stay within `Room`.
    explicit ClLabels(const StBox& Room) : m_Room(Room) {}

    /// Keeps names away from there, as far as there is room elsewhere.
    void Avoid(const StBox& Box) { m_aAvoided.push_back(Box); }

    /// Beside, above or below a mark that reaches `dReach` units to each side of its middle; false,
    /// with nothing written, where another name leaves no room.
    bool Put(ClSvg& rSvg, const StPoint& Mark, double dReach, const std::string& sName,
             const char* szClass);

private:
    bool MayTake(const StBox& Box) const;
    double Covered(const StBox& Box) const;

    StBox m_Room;
    std::vector<StBox> m_aTaken;
    std::vector<StBox> m_aAvoided;
};

} // namespace report
