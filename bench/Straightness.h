#pragma once

/// How straight the lines of a ruled plate come out of a correction.

#include "sim/Capture.h"

namespace bench {

struct ClStraightness {
    double m_dBefore = 0.0; ///< largest distance from a straight line in the capture
    double m_dAfter = 0.0;  ///< the same in the corrected image
    int m_nLines = 0;       ///< lines measured
};

/// Measures a corrected image of a ruled plate, 320 x 480 grey pixels. Lines are followed by the
/// centroid of their darkness across a window; distances are in pixels of the corrected image.
/// "Before" comes from the scanner's true geometry, brought to the scale of the corrected image.
ClStraightness MeasureStraightness(const sim::ClScanner& Scanner, const sim::ClCapture& Capture,
                                   const unsigned char* pCorrected);

} // namespace bench
