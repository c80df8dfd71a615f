#pragma once

#include "report/Dots.h"

namespace report {

struct StErrorView {
    diagnosis::StErrorMap m_Errors;
    Points m_aDots;         ///< where the dots belong, pixels of the corrected image
    bool m_bUpward = false; ///< as `StFrame`
};

/// The expected error of the corrected image in eight classes, always the same ones, so that maps
/// of scanners can be laid side by side; numbers in pixels at its corners, at the middles of its
/// sides and in its middle; the convex hull of the dots, beyond which the correction extrapolates.
/// `sPrefix` as for `ClSvg`.
std::string DrawErrorMap(const StErrorView& View, const std::string& sPrefix);

} // namespace report
