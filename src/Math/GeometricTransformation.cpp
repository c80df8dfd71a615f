#include "Math/GeometricTransformation.h"

#include "Tools/Exception.h"
#include "Tools/MathConst.h"

#include <algorithm>
#include <cmath>

namespace {

using MathConst::cdPi;

/// Direction from point `i` to the first point.
double Direction(const ClGeometricTransformation::PointList& rPoints, unsigned long i) {
    return std::atan2(rPoints[0].y - rPoints[i].y, rPoints[0].x - rPoints[i].x);
}

/// The angle of (c, s), 0 to below 2 pi. On the axes it is exact.
double FullAngle(double s, double c) {
    if (c == 0.0)
        return s < 0.0 ? 1.5 * cdPi : 0.5 * cdPi;
    if (s == 0.0)
        return c < 0.0 ? cdPi : 0.0;
    double dAngle = std::atan2(s, c);
    if (dAngle < 0.0)
        dAngle += 2.0 * cdPi;
    if (dAngle >= 2.0 * cdPi) // a tiny negative angle rounds up to the full turn
        dAngle -= 2.0 * cdPi;
    return dAngle;
}

} // namespace

void ClGeometricTransformation::CheckLists() const {
    if (m_pFixed == nullptr || m_pMoved == nullptr)
        throw ClException(QMT_ERROR_PARAM_IS_MISSING, false, VEK_NOWHERE);
    if (m_pFixed->Entries() == 0 || m_pFixed->Entries() != m_pMoved->Entries())
        throw ClException(QMT_ERROR_INVALID_PARAMETER, false, VEK_NOWHERE);
}

void ClGeometricTransformation::Transform() {
    CheckLists();
    const ClVector vFixed = GetCenterOfMass(*m_pFixed);
    const ClVector vMoved = GetCenterOfMass(*m_pMoved);
    Translate({-vMoved.x, -vMoved.y}, *m_pMoved);
    m_dAngle = RotAngle(*m_pFixed, *m_pMoved);
    Rotate({0.0, 0.0}, -m_dAngle, *m_pMoved);
    Translate(vFixed, *m_pMoved);
    m_Translation = vFixed - vMoved;
}

void ClGeometricTransformation::Transform(double dAngle, const ClVector& shift) {
    CheckLists();
    Rotate({0.0, 0.0}, dAngle, *m_pMoved);
    Translate(shift, *m_pMoved);
}

ClVector ClGeometricTransformation::GetCenterOfMass(const PointList& rPoints) {
    ClVector vSum;
    for (unsigned long i = 0; i < rPoints.Entries(); ++i)
        vSum = vSum + rPoints[i];
    const double dCount = static_cast<double>(rPoints.Entries());
    return {vSum.x / dCount, vSum.y / dCount};
}

void ClGeometricTransformation::Translate(const ClVector& shift, PointList& rPoints) {
    // It may be one of the points. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const ClVector vShift = shift;
    for (unsigned long i = 0; i < rPoints.Entries(); ++i)
        rPoints[i] = rPoints[i] + vShift;
}

void ClGeometricTransformation::Rotate(const ClVector& centre, double dAngle, PointList& rPoints) {
    // It may be one of the points. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const ClVector vCentre = centre;
    const double dCos = std::cos(dAngle);
    const double dSin = std::sin(dAngle);
    for (unsigned long i = 0; i < rPoints.Entries(); ++i) {
        const ClVector v = rPoints[i] - vCentre;
        rPoints[i] = ClVector(v.x * dCos - v.y * dSin, v.y * dCos + v.x * dSin) + vCentre;
    }
}

double ClGeometricTransformation::RotAngle(const PointList& rA, const PointList& rB) {
    const unsigned long nPoints = std::min(rA.Entries(), rB.Entries());
    double s = 0.0;
    double c = 0.0;
    for (unsigned long i = 1; i < nPoints; ++i) {
        const double a = Direction(rB, i) - Direction(rA, i);
        c += std::cos(a);
        s += std::sin(a);
    }
    return FullAngle(s, c);
}
