#pragma once

/// How straight the lines of a ruled plate come out of a correction.

#include "sim/Capture.h"

#include <vector>

namespace bench {

struct ClStraightness {
    double m_dBefore = 0.0; ///< largest distance from a straight line in the capture
    double m_dAfter = 0.0;  ///< the same in the corrected image
    int m_nLines = 0;       ///< lines measured
};

/// Measures a corrected image of a ruled plate, 320 x 480 grey pixels. `aLines` tells where its
/// lines ought to lie in that image, nearly upright or nearly level; each is followed by the
/// centroid of its darkness across a window, and its distance from a straight line is taken in
/// pixels of the corrected image. "Before" comes from the true geometry of the scanner that saw
/// `aPlatenLines`, the same lines on the platen, brought to the scale of the corrected image.
ClStraightness MeasureStraightness(const sim::ClScanner& Scanner,
                                   const std::vector<sim::ClLine>& aPlatenLines,
                                   const std::vector<sim::ClLine>& aLines,
                                   const unsigned char* pCorrected);

} // namespace bench
