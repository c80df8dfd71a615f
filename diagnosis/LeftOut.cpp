#include "diagnosis/LeftOut.h"

#include <algorithm>

namespace diagnosis {

ClLeftOut::ClLeftOut(const ClSplineSystem& System, const Points& aFound) : m_System(System) {
    const Values aX = System.Weights(Along(&StPoint::m_dX, aFound));
    const Values aY = System.Weights(Along(&StPoint::m_dY, aFound));
    for (std::size_t i = 0; i < System.Size(); ++i) {
        m_aAllWeights.push_back({aX[i], aY[i]});
        for (std::size_t j = 0; j < System.Size(); ++j)
            m_aBending.push_back(System.Bending(i, j));
    }
    m_aWeights = m_aAllWeights;
}

bool ClLeftOut::IsLeftOut(std::size_t i) const {
    return std::find(m_aOut.begin(), m_aOut.end(), i) != m_aOut.end();
}

StPoint ClLeftOut::Off(std::size_t i) const {
    return IsLeftOut(i) ? OffLeftOut(i)
                        : StPoint{m_aWeights[i].m_dX / At(i, i), m_aWeights[i].m_dY / At(i, i)};
}

// Lowering all points left out by what they are off makes all their weights 0: the rows of C that
// are theirs, solved for that.
StPoint ClLeftOut::OffLeftOut(std::size_t i) const {
    const std::size_t n = m_aOut.size();
    Values aRows;
    for (const std::size_t a : m_aOut)
        for (const std::size_t b : m_aOut)
            aRows.push_back(m_System.Bending(a, b));
    const Values aInverse = Inverse(aRows, n);
    const auto at =
        static_cast<std::size_t>(std::find(m_aOut.begin(), m_aOut.end(), i) - m_aOut.begin());
    StPoint Off;
    for (std::size_t j = 0; j < n; ++j) {
        const StPoint& Weight = m_aAllWeights[m_aOut[j]];
        const double d = aInverse[at * n + j];
        Off = Off + StPoint{d * Weight.m_dX, d * Weight.m_dY};
    }
    return Off;
}

std::size_t ClLeftOut::MostSuspicious(const StPoint& Unit) const {
    std::size_t nMost = 0;
    double dMost = -1.0;
    for (std::size_t i = 0; i < m_System.Size(); ++i) {
        const StPoint InUnits{m_aWeights[i].m_dX / Unit.m_dX, m_aWeights[i].m_dY / Unit.m_dY};
        const double d = SquaredLength(InUnits) / At(i, i);
        if (!IsLeftOut(i) && d > dMost) {
            nMost = i;
            dMost = d;
        }
    }
    return nMost;
}

// One step of an elimination.
void ClLeftOut::LeaveOut(std::size_t nPoint) {
    const StPoint Miss = Off(nPoint);
    m_aOut.push_back(nPoint);
    for (std::size_t i = 0; i < m_System.Size(); ++i) {
        if (IsLeftOut(i))
            continue;
        const double dShare = At(i, nPoint);
        m_aWeights[i] = m_aWeights[i] - StPoint{dShare * Miss.m_dX, dShare * Miss.m_dY};
        for (std::size_t j = 0; j < m_System.Size(); ++j)
            At(i, j) -= dShare * At(nPoint, j) / At(nPoint, nPoint);
    }
}

} // namespace diagnosis
