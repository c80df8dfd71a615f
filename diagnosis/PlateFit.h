#pragma once

/// The capture as a whole against the plate: size, rotation, skew, and what is left behind them.
///
/// All of it is the scanner's and the plate's together. A plate that is one percent too large and
/// a scanner that resolves one percent more look the same.

#include "diagnosis/Record.h"

namespace diagnosis {

/// The part of a mapping that is straight: lengths against the nominal resolutions, angles in
/// degrees.
struct StAffine {
    double m_dScaleX = 1.0;   ///< of lengths along the rows; 1 is nominal
    double m_dScaleY = 1.0;   ///< of lengths along the columns
    double m_dRotation = 0.0; ///< of the rows, clockwise
    double m_dShear = 0.0;    ///< of the columns against the rows, clockwise; 0 is a right angle
};

struct StPlateFit {
    StAffine m_Whole;  ///< of the affine mapping nearest to all dots
    StAffine m_Middle; ///< in the middle of the pattern, where barrel and bow have no part in it
    double m_dDistortionRms = 0.0; ///< of dots behind the affine mapping, millimetres on the plate
    double m_dDistortionMax = 0.0;
};

/// Throws std::invalid_argument where the target points are no pattern.
StPlateFit FitPlate(const StRecord& Record);

} // namespace diagnosis
