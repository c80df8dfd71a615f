#pragma once

#include "report/Dots.h"

namespace report {

/// A regular grid of the corrected image as the calibration takes it from the capture.
struct StWarpGrid {
    StFrame m_Capture;
    int m_nColumns = 0;
    int m_nRows = 0;
    StPoint m_Step; ///< from place to place, millimetres on the plate
    Points m_aRaw;  ///< raw pixels, row by row
};

/// The grid as it lies in the capture against a straight one of the nominal resolution, laid so
/// that the middles of both agree. Displacements are magnified by a round number where they would
/// hardly be seen, and the largest is told. Places that are not finite leave gaps. `sPrefix` as for
/// `ClSvg`.
std::string DrawDistortionField(const StWarpGrid& Grid, const std::string& sPrefix);

} // namespace report
