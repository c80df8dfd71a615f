#include "Math/Vector.h"

#include <cmath>

double ClVector::Length() const {
    return std::sqrt(x * x + y * y);
}

ClVector ClVector::Intersection(const ClVector& rP1, const ClVector& rD1, const ClVector& rP2,
                                const ClVector& rD2, double& rT1, double& rT2) {
    const double dDen = rD2.y * rD1.x - rD2.x * rD1.y;
    if (!(std::fabs(dDen) > m_cdEpsilon)) {
        rT1 = 0.0;
        rT2 = 0.0;
        return {};
    }
    rT1 = (rD2.x * rP1.y - rD2.y * rP1.x - rD2.x * rP2.y + rD2.y * rP2.x) / dDen;
    rT2 = (rD1.x * rP1.y - rD1.y * rP1.x - rD1.x * rP2.y + rD1.y * rP2.x) / dDen;
    return {rP2.x + rT2 * rD2.x, rP2.y + rT2 * rD2.y};
}

ClVector ClVector::CrossPoint(const ClVector& rP1, const ClVector& rD1, const ClVector& rP2,
                              const ClVector& rD2, double& rT1, double& rT2) {
    return Intersection(rP1, rD1, rP2, rD2, rT1, rT2);
}
