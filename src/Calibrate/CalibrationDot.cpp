// A candidate for a dot of the pattern: what is known of it, and its links to other candidates.

#include "Calibrate/DotDirection.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

using ClDot = ClIpCalibrateGeometricBuildRefPointsBase::ClDot;

ClDot::ClDot(const ClIpConnectedComponent2::ClComponent& rComponent) {
    Initialize(rComponent.m_vCentre);
    m_vBoxCentre = {(rComponent.m_vMin.x + rComponent.m_vMax.x) / 2,
                    (rComponent.m_vMin.y + rComponent.m_vMax.y) / 2};
    m_dEccentricity = rComponent.m_dEccentricity;
    m_dArea = rComponent.m_dArea;
    m_dGrey = rComponent.m_dMeanGrey;
}

ClDot::ClDot(const ClVector& rPos) {
    Initialize(rPos);
}

ClDot::ClDot(const ClDot& Other) = default;
ClDot& ClDot::operator=(const ClDot& Other) = default;

void ClDot::Initialize(const ClVector& rPos) {
    m_vPos = rPos;
    m_vGrid = {-1.0, -1.0};
    m_vTarget = {-1.0, -1.0};
    m_vBoxCentre = rPos;
}

void ClDot::AddDot(ClDot* pDot, bool bBoth) {
    bool bLinked = false;
    for (unsigned long i = 0; i < m_aNeighbours.Entries() && !bLinked; ++i)
        bLinked = m_aNeighbours[i] == pDot;
    if (!bLinked)
        m_aNeighbours.Append(pDot);
    if (bBoth)
        pDot->AddDot(this, false);
}

void ClDot::Remove(ClDot* pDot) {
    for (unsigned long i = m_aNeighbours.Entries(); i-- > 0;)
        if (m_aNeighbours[i] == pDot)
            m_aNeighbours.Remove(i);
}

long ClDot::GetNeighbourDirection(long n) const {
    const ClDot& rNeighbour = *m_aNeighbours[static_cast<unsigned long>(n)];
    const double dAngle = DotDirection::AngleOf(rNeighbour.m_vPos - m_vPos);
    long k = 0;
    while (k < DotDirection::cnSectors &&
           !(DotDirection::Distance(dAngle, static_cast<double>(k) * DotDirection::cdSector) <
             DotDirection::cdHalfSector))
        ++k;
    return k;
}

ClDot* ClDot::GetNeighbourInDirection(long nDirection, double dTolerance) const {
    const double dWanted = static_cast<double>(nDirection) * DotDirection::cdSector;
    double dBest = dTolerance;
    ClDot* pBest = nullptr;
    for (unsigned long i = 0; i < m_aNeighbours.Entries(); ++i) {
        const double dAngle = DotDirection::AngleOf(m_aNeighbours[i]->m_vPos - m_vPos);
        const double dDistance = DotDirection::Distance(dAngle, dWanted);
        if (dDistance < dBest) {
            dBest = dDistance;
            pBest = m_aNeighbours[i];
        }
    }
    return pBest;
}
