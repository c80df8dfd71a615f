#pragma once

/// Synthetic fingers: a ridge pattern grown along a flow that the singular points decide, an
/// outline, and a skin that makes more or less contact with the platen.
///
/// The distance of the ridges varies by up to 7 percent about its mean, so that it stays between
/// 0.41 and 0.56 mm: 8 to 11 pixels at 500 dots per inch.

#include "sim/Plate.h"
#include "sim/Raster.h"

#include <cstdint>

namespace sim {

enum class EPattern { eArch, eLeftLoop, eRightLoop, eWhorl };

struct ClFingerSettings {
    EPattern m_ePattern = EPattern::eRightLoop;
    ClPoint m_Centre;           ///< middle of the finger on the platen, millimetres
    double m_dHalfWidth = 6.6;  ///< millimetres, 1 to 12
    double m_dHalfHeight = 9.6; ///< millimetres, 1 to 15
    double m_dRotation = 0.0;   ///< degrees clockwise, below 45
    double m_dPeriod = 0.47;    ///< mean distance of ridges, millimetres, 0.44 to 0.52
    double m_dPressure = 1.0;   ///< 0.5 to 1.5: how wide the ridges print
    double m_dContrast = 0.82;  ///< share of the light that a ridge takes, 0 to 1
    double m_dDryness = 0.0;    ///< 0 to 1: how broken the ridges are
    double m_dWetness = 0.0;    ///< 0 to 1: how far moisture fills the valleys
};

/// Presses a finger on the plate. The seed decides all that the settings leave open: minutiae,
/// outline, pores. Throws -35 for settings out of range.
void PaintFinger(ClPlate& Plate, const ClFingerSettings& Settings, std::uint64_t nSeed);

} // namespace sim
