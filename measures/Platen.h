#pragma once

/// What a capture of the empty platen shows: its light, and what lies on it.

#include "measures/Noise.h"

#include <optional>

namespace measures {

/// The frame is divided into 8 x 12 tiles, about 2 mm each. The light of a tile is the median of
/// its samples, which dirt on less than half of it does not move; between the middles of the tiles
/// it is interpolated, beyond the outer ones carried on in a straight line.
struct ClPlatenMeasures {
    double m_dBrightness = 0.0; ///< mean light of the tiles, grey values, 0 to 255
    /// The light of the darkest tile over that of the brightest, 0 to 1: 1 is even.
    double m_dUniformity = 0.0;
    double m_dSaturated = 0.0; ///< share of the samples that are 255, 0 to 1: light that is lost
    double m_dDark = 0.0;      ///< share of the samples that are below 85, 0 to 1
    /// Share of the samples that lack more than 7 percent of the light of their place, 0 to 1.
    double m_dSoiled = 0.0;
    std::optional<ClNoise> m_Noise;
};

/// Of a raw capture, or of one that was warped only: the dynamic calibration makes an empty platen
/// white. Nothing for a capture of less than 8 columns or 12 lines, or without any light.
std::optional<ClPlatenMeasures> MeasurePlaten(const ClGreyView& Empty);

} // namespace measures
