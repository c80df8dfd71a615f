#include "Math/GeometricAccuracy.h"

#include "Tools/Exception.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

/// From this distance on, in pixels, the relative tolerance counts.
constexpr double cdLongDistance = 35.0;

} // namespace

ClGeometricAccuracy::ClGeometricAccuracy() {
    setRequirements(eEFTS);
}

void ClGeometricAccuracy::setRequirements(ERequirement eRequirement) {
    switch (eRequirement) {
    case eEFTS:
        m_dAbsoluteTolerance = 0.35;
        m_dRelativeTolerance = 0.01;
        break;
    case ePIV:
        m_dAbsoluteTolerance = 0.65;
        m_dRelativeTolerance = 0.018;
        break;
    default:
        break;
    }
}

void ClGeometricAccuracy::appendPoint(const ClVector& reference, const ClVector& measured) {
    // They may lie in a list that moves. NOLINTBEGIN(performance-unnecessary-copy-initialization)
    const ClVector vMeasured = measured;
    const ClVector vReference = reference;
    // NOLINTEND(performance-unnecessary-copy-initialization)
    m_aReference.Reserve(m_aReference.Entries() + 1);
    m_aMeasured.Reserve(m_aMeasured.Entries() + 1);
    m_aReference.Append(vReference);
    m_aMeasured.Append(vMeasured);
}

void ClGeometricAccuracy::ClearPoints() {
    m_aReference.Clear();
    m_aMeasured.Clear();
}

void ClGeometricAccuracy::Calculate() {
    const unsigned long nPoints = std::min(m_aReference.Entries(), m_aMeasured.Entries());
    if (nPoints < 2)
        throw ClException("less than 2 points!", QMT_ERROR_INTERNAL, false, VEK_NOWHERE);
    std::uint32_t nPairs = 0;
    std::uint32_t nPasses = 0;
    for (unsigned long i = 1; i < nPoints; ++i)
        for (unsigned long j = 0; j < i; ++j) {
            ++nPairs;
            if (checkRequirements(calculateDistance(m_aReference[i], m_aReference[j]),
                                  calculateDistance(m_aMeasured[i], m_aMeasured[j])))
                ++nPasses;
        }
    m_dTestResult = nPasses * 100.0 / nPairs;
}

bool ClGeometricAccuracy::checkRequirements(double dReferenceDistance,
                                            double dMeasuredDistance) const {
    const double dDifference = std::fabs(dReferenceDistance - dMeasuredDistance);
    if (dReferenceDistance < cdLongDistance)
        return !(dDifference > m_dAbsoluteTolerance);
    return !(dDifference > dReferenceDistance * m_dRelativeTolerance);
}

double ClGeometricAccuracy::calculateDistance(const ClVector& first, const ClVector& second) {
    const double dx = first.x - second.x;
    const double dy = first.y - second.y;
    return std::sqrt(dx * dx + dy * dy);
}
