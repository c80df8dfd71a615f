#pragma once

/// The dots of the target as the drawings of a capture take them, and the frames that they lie in.

#include "diagnosis/Diagnosis.h"
#include "report/Svg.h"

#include <string>
#include <vector>

namespace report {

using diagnosis::StDensity;
using diagnosis::StPatternPlace;

/// A capture, or a corrected image: what its pixels are on the plate.
struct StFrame {
    int m_nWidth = 0; ///< pixels
    int m_nHeight = 0;
    StDensity m_Density;    ///< pixels per millimetre
    bool m_bUpward = false; ///< line 0 is the lowest: as bitmaps whose last line is the highest
    const char* m_szWhat = "capture"; ///< for the words at its axes
};

struct StDot {
    StPatternPlace m_Place; ///< column and row from 1; 0 and 0 for a dot without a place
    StPoint m_At;           ///< raw pixels
    StPoint m_Residual;     ///< found less predicted, raw pixels
    bool m_bDoubtful = false;
};

using Dots = std::vector<StDot>;

/// The dots of a diagnosis with their leave-one-out residuals, in pattern order; doubtful are those
/// that its reasons name.
Dots DotsOf(const diagnosis::StDiagnosis& Diagnosis);

/// "column 3, row 7", or "dot" for one without a place.
std::string NameOf(const StPatternPlace& Place);

/// Raw pixels as a length on the plate.
double Micrometres(const StPoint& Pixels, const StDensity& Density);

/// The lengths of the residuals on the plate, micrometres, in the order of the dots.
std::vector<double> ResidualLengths(const Dots& aDots, const StDensity& Density);

} // namespace report
