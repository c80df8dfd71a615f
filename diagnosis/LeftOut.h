#pragma once

/// Points against what all others predict, with some points left out of the prediction.
///
/// A wrong point bends the prediction of its neighbours, too. Of one wrong point the quotient
/// |w_i| / sqrt(C_ii) is largest at that point itself: with v = d e_k it is d |C_ik| / sqrt(C_ii),
/// which is at most d sqrt(C_kk), since C is positive semidefinite. So the largest quotient names
/// the point; with it left out, the others are judged anew.

#include "diagnosis/SplineSystem.h"

namespace diagnosis {

class ClLeftOut {
public:
    /// `aFound` has a point for each place of the system, which is borrowed.
    ClLeftOut(const ClSplineSystem& System, const Points& aFound);

    /// Point i less what all points but i and those left out predict.
    StPoint Off(std::size_t i) const;

    /// The point whose removal lowers the bending most, x and y being measured in units of
    /// `Unit`. Points left out are not asked.
    std::size_t MostSuspicious(const StPoint& Unit) const;

    void LeaveOut(std::size_t nPoint);

    const std::vector<std::size_t>& Out() const { return m_aOut; } ///< in the order of leaving
    bool IsLeftOut(std::size_t i) const;

private:
    StPoint OffLeftOut(std::size_t i) const;
    double& At(std::size_t i, std::size_t j) { return m_aBending[i * m_System.Size() + j]; }
    double At(std::size_t i, std::size_t j) const { return m_aBending[i * m_System.Size() + j]; }

    const ClSplineSystem& m_System;
    Points m_aAllWeights; ///< of the x and of the y of the points
    Points m_aWeights;    ///< without those left out, as the next
    Values m_aBending;
    std::vector<std::size_t> m_aOut;
};

} // namespace diagnosis
