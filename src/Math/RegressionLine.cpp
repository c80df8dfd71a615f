#include "Math/RegressionLine.h"

#include "Tools/MathConst.h"

#include <algorithm>
#include <cmath>

namespace {

using MathConst::cdPi;

/// Angle between two vectors; a right angle where one has no length.
double AngleBetween(const ClVector& u, const ClVector& v) {
    const double dLengths = u.Length() * v.Length();
    if (dLengths == 0.0)
        return cdPi / 2;
    const double dCos = (u.x * v.x + u.y * v.y) / dLengths;
    if (dCos >= 1.0)
        return 0.0;
    if (!(dCos > -1.0))
        return cdPi;
    return std::acos(dCos);
}

} // namespace

long ClRegressionLine::Clear() {
    *this = ClRegressionLine();
    return 0;
}

void ClRegressionLine::AddToLine(const ClVector& rPoint) {
    if (m_nPoints == 0) {
        m_dMinX = m_dMaxX = rPoint.x;
        m_dMinY = m_dMaxY = rPoint.y;
    } else {
        m_dMinX = std::min(m_dMinX, rPoint.x);
        m_dMinY = std::min(m_dMinY, rPoint.y);
        m_dMaxX = std::max(m_dMaxX, rPoint.x);
        m_dMaxY = std::max(m_dMaxY, rPoint.y);
    }
    ++m_nPoints;
    m_dSumXY += rPoint.x * rPoint.y;
    m_dSumX += rPoint.x;
    m_dSumY += rPoint.y;
    m_dSumXX += rPoint.x * rPoint.x;
    m_dSumYY += rPoint.y * rPoint.y;
}

void ClRegressionLine::JoinLine(const ClRegressionLine& rOther) {
    if (m_nPoints == 0) {
        m_dMinX = rOther.m_dMinX;
        m_dMinY = rOther.m_dMinY;
        m_dMaxX = rOther.m_dMaxX;
        m_dMaxY = rOther.m_dMaxY;
    } else if (rOther.m_nPoints > 0) {
        m_dMinX = std::min(m_dMinX, rOther.m_dMinX);
        m_dMinY = std::min(m_dMinY, rOther.m_dMinY);
        m_dMaxX = std::max(m_dMaxX, rOther.m_dMaxX);
        m_dMaxY = std::max(m_dMaxY, rOther.m_dMaxY);
    }
    m_nPoints += rOther.m_nPoints;
    m_dSumXY += rOther.m_dSumXY;
    m_dSumX += rOther.m_dSumX;
    m_dSumY += rOther.m_dSumY;
    m_dSumXX += rOther.m_dSumXX;
    m_dSumYY += rOther.m_dSumYY;
}

bool ClRegressionLine::GetLineCoeffizienten(double& rM, double& rB) const {
    rM = 0.0;
    rB = 0.0;
    if (m_nPoints < 2)
        return false;

    const double n = static_cast<double>(m_nPoints);
    const double dX = n * m_dSumXX - m_dSumX * m_dSumX;
    const double dY = n * m_dSumYY - m_dSumY * m_dSumY;
    const double dC = n * m_dSumXY - m_dSumX * m_dSumY;
    const bool bYOverX = dX != 0.0;
    const bool bXOverY = dY != 0.0;
    if (!bYOverX && !bXOverY)
        return false;

    const double dM1 = bYOverX ? dC / dX : 0.0;
    const double dB1 = bYOverX ? (m_dSumXX * m_dSumY - m_dSumX * m_dSumXY) / dX : 0.0;
    const double dM2 = bXOverY ? dC / dY : 0.0;
    const double dB2 = bXOverY ? (m_dSumX * m_dSumYY - m_dSumY * m_dSumXY) / dY : 0.0;

    bool bTakeYOverX = false;
    if (dM1 != 0.0 || dM2 != 0.0)
        bTakeYOverX = bYOverX && (!bXOverY || !(std::fabs(dM1) > std::fabs(dM2)));
    else if (dB1 == 0.0 && dB2 == 0.0)
        return std::fabs(dX) > std::fabs(dY);
    else
        bTakeYOverX = std::fabs(dX) >= std::fabs(dY);

    rM = bTakeYOverX ? dM1 : dM2;
    rB = bTakeYOverX ? dB1 : dB2;
    return bTakeYOverX;
}

void ClRegressionLine::GetLine(ClVector& rStart, ClVector& rEnd) const {
    rStart = {m_dMinX, m_dMinY};
    rEnd = {m_dMaxX, m_dMaxY};
    if (m_nPoints < 2)
        return;
    double dM = 0.0;
    double dB = 0.0;
    if (GetLineCoeffizienten(dM, dB)) {
        rStart.y = dM * m_dMinX + dB;
        rEnd.y = dM * m_dMaxX + dB;
    } else {
        rStart.x = dM * m_dMinY + dB;
        rEnd.x = dM * m_dMaxY + dB;
    }
}

double ClRegressionLine::DistFromLine(const ClVector& rPoint) const {
    if (m_nPoints < 2)
        return (rPoint - ClVector(m_dMinX, m_dMinY)).Length();
    ClVector vStart;
    ClVector vEnd;
    GetLine(vStart, vEnd);
    const ClVector vOffset = rPoint - vStart;
    return vOffset.Length() * std::sin(AngleBetween(vStart - vEnd, vOffset));
}

bool ClRegressionLine::Horizontal() const {
    ClVector vStart;
    ClVector vEnd;
    GetLine(vStart, vEnd);
    return m_nPoints >= 2 && std::fabs(vStart.y - vEnd.y) < std::fabs(vStart.x - vEnd.x);
}

bool ClRegressionLine::Vertical() const {
    ClVector vStart;
    ClVector vEnd;
    GetLine(vStart, vEnd);
    return m_nPoints >= 2 && std::fabs(vStart.y - vEnd.y) > std::fabs(vStart.x - vEnd.x);
}

ClVector ClRegressionLine::Intersection(const ClRegressionLine& rOther, double& rT1,
                                        double& rT2) const {
    ClVector vStart;
    ClVector vEnd;
    ClVector vOtherStart;
    ClVector vOtherEnd;
    GetLine(vStart, vEnd);
    rOther.GetLine(vOtherStart, vOtherEnd);
    return ClVector::Intersection(vStart, vStart - vEnd, vOtherStart, vOtherStart - vOtherEnd, rT1,
                                  rT2);
}

ClVector ClRegressionLine::CrossPoint(const ClRegressionLine& rOther, double& rT1,
                                      double& rT2) const {
    return Intersection(rOther, rT1, rT2);
}

double ClRegressionLine::CrossPhi(const ClRegressionLine& rOther) const {
    ClVector vStart;
    ClVector vEnd;
    ClVector vOtherStart;
    ClVector vOtherEnd;
    GetLine(vStart, vEnd);
    rOther.GetLine(vOtherStart, vOtherEnd);
    return AngleBetween(vStart - vEnd, vOtherStart - vOtherEnd);
}

double ClRegressionLine::Len() const {
    ClVector vStart;
    ClVector vEnd;
    GetLine(vStart, vEnd);
    return (vStart - vEnd).Length();
}
