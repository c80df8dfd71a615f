#pragma once

#include "measures/GreyView.h"

#include <optional>

namespace measures {

/// What differs from capture to capture of the same platen, as standard deviations in grey values.
///
/// The frame is divided into 8 x 12 tiles. In each the noise of pixels is read from
///
///     d = p(x, y) - p(x + 1, y) - p(x, y + 1) + p(x + 1, y + 1),
///
/// in which light that rises evenly, the gain of columns and the noise of lines drop out and four
/// times the square of the noise is left; a twelfth, which rounding to whole grey values adds, is
/// taken off. The noise of lines is what the left and the right half of a tile have in common from
/// one line to the next: half of the covariance of the halves' mean steps. Of the tiles the median
/// counts, so that dirt on less than half of them changes little. Saturated samples have no noise.
struct ClNoise {
    double m_dPixel = 0.0;
    double m_dLine = 0.0;
};

/// Of a raw capture of the empty platen: warping mixes neighbours. Nothing for a capture of less
/// than 32 columns or 48 lines.
std::optional<ClNoise> MeasureNoise(const ClGreyView& Empty);

} // namespace measures
