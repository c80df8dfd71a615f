#include "sim/Light.h"

#include "sim/Elementary.h"

namespace sim {

double ClLight::At(double u, double v) const {
    const double dSide = u * u;
    const double dTop = 1.0 - SmoothStep(-1.0, -0.8, v);
    // Only where a side and the lower edge are both near.
    const double dCorner = SmoothStep(0.5, 1.0, u < 0.0 ? -u : u) * SmoothStep(0.75, 1.0, v);
    const double dTilt = 1.0 + m_Settings.m_dTiltX * u + m_Settings.m_dTiltY * v;
    const double dLoss = m_Settings.m_dVignette * dSide * dSide + m_Settings.m_dTopEdge * dTop +
                         m_Settings.m_dCorners * dCorner;
    return m_Settings.m_dBright * dTilt * (1.0 - Limit(dLoss, 0.0, 1.0));
}

} // namespace sim
