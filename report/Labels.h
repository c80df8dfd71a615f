#pragma once

#include "report/Svg.h"

#include <vector>

namespace report {

/// Places names beside marks so that none lies on another one.
class ClLabels {
public:
    /// Names stay within `Room`.
    explicit ClLabels(const StBox& Room) : m_Room(Room) {}

    /// Keeps names away from there.
    void Keep(const StBox& Box) { m_aTaken.push_back(Box); }

    /// Beside, above or below a mark that reaches `dReach` units to each side of its middle; false,
    /// with nothing written, where there is no room.
    bool Put(ClSvg& rSvg, const StPoint& Mark, double dReach, const std::string& sName,
             const char* szClass);

private:
    bool IsFree(const StBox& Box) const;

    StBox m_Room;
    std::vector<StBox> m_aTaken;
};

} // namespace report
