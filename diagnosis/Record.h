#pragma once

/// What the diagnosis reads from a calibration block and from the capture that it came from, as
/// plain values: the only place where it meets the library's own classes.

#include "diagnosis/Points.h"

#include <cstddef>
#include <vector>

namespace diagnosis {

using Bytes = std::vector<unsigned char>;

/// Pixels per millimetre.
struct StDensity {
    double m_dX = 0.0;
    double m_dY = 0.0;
};

struct StRecord {
    Points m_aTarget; ///< where each dot belongs, pixels of the corrected image, in pattern order
    Points m_aFound;  ///< where it was found, raw pixels
    StDensity m_Target;
    StDensity m_Source;
    int m_nTargetWidth = 0; ///< of the corrected image, pixels
    int m_nTargetHeight = 0;
};

/// Throws std::invalid_argument, with words, for what is no calibration block, has not the 75 dots
/// of the pattern, or tells no resolution.
StRecord ReadRecord(const Bytes& Calibration);

/// A grey image, line 0 being the one stored first.
struct StGrey {
    int m_nWidth = 0;
    int m_nHeight = 0;
    Bytes m_aSamples; ///< without padding

    unsigned char At(int x, int y) const {
        return m_aSamples[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                          static_cast<std::size_t>(x)];
    }
};

/// The image of a bitmap block; of several planes the first. Throws std::invalid_argument for what
/// is none.
StGrey ReadGrey(const Bytes& Bitmap);

/// Column and row of a dot of the pattern, from 1.
struct StPatternPlace {
    int m_nColumn = 1;
    int m_nRow = 1;
};
StPatternPlace PatternPlace(std::size_t nDot);

constexpr std::size_t cnDots = 75;

} // namespace diagnosis
