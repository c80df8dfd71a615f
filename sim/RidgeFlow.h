#pragma once

/// The flow of a finger's ridges: their direction and distance at each place.
///
/// Directions of lines have no sign, so they are handled as doubled angles: a unit vector whose
/// angle is twice that of the ridge. In that form a core is a point around which the vector turns
/// once forward and a delta one around which it turns once backward, and the flow of several of
/// them is the product of their complex factors. A slow bend is added that lets the ridges above
/// follow the finger's tip, and a slow random turn that makes fingers differ. An arch has no
/// singular point: its ridges are lifted lines.

#include "sim/Finger.h"
#include "sim/Random.h"
#include "sim/Raster.h"

#include <cstdint>
#include <vector>

namespace sim {

class ClRidgeFlow {
public:
    ClRidgeFlow(const ClFingerSettings& Settings, std::uint64_t nSeed);

    /// The doubled direction of the ridges, a unit vector, at a position in millimetres from the
    /// finger's middle, the finger upright.
    ClPoint DoubledDirection(const ClPoint& Position) const;
    /// The distance of the ridges there, millimetres: the mean of the settings to within 7 percent.
    double Period(const ClPoint& Position) const;

private:
    void PlaceLoop(double dSide, ClRandom& Random);
    void PlaceWhorl(ClRandom& Random);
    ClPoint Singular(const ClPoint& Position) const;
    ClPoint Arch(const ClPoint& Position) const;

    EPattern m_ePattern;
    double m_dHalfWidth;
    double m_dHalfHeight;
    double m_dPeriod;
    double m_dArchSlope = 0.0; ///< tangent of the steepest ridges' angle
    std::vector<ClPoint> m_aCores;
    std::vector<ClPoint> m_aDeltas;
    ClNoiseField m_Turn;
    ClNoiseField m_Stretch;
};

} // namespace sim
