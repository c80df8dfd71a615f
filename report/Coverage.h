#pragma once

#include "report/Dots.h"

namespace report {

struct StCoverage {
    StFrame m_Corrected;     ///< the corrected image
    Points m_aOutline;       ///< of the capture, in pixels of the corrected image; closed by itself
    double m_dPercent = 0.0; ///< of the pixels of the corrected image that the capture has
};

/// The frame of the corrected image, what of it the capture covers and, hatched, what not, with
/// the share in percent. `sPrefix` as for `ClSvg`.
std::string DrawCoverage(const StCoverage& Coverage, const std::string& sPrefix);

} // namespace report
