#pragma once

/// Tells whether a calibration can be believed, which the status of its generation does not.
///
/// Deriving a calibration judges each mark by its size, its shape and its neighbours, generously:
/// dirt that passes for a dot is taken for one, and a whole plate of another pitch is taken for the
/// target. Here the record that came out is looked at as a whole. A dot is compared with what all
/// others predict of it, the plate with the nominal resolution of the scanner, and for every place
/// of the corrected image it is told how far its content is expected to lie from where it belongs.
///
/// Nothing of the library's own types is named here: a program that has the library as a shared one
/// can use this part, which has it in itself.

#include "diagnosis/ErrorMap.h"
#include "diagnosis/PlateFit.h"
#include "diagnosis/Record.h"
#include "diagnosis/Verdict.h"

namespace diagnosis {

struct StDotReading {
    StPatternPlace m_Place;
    StPoint m_Found; ///< raw pixels: the column and the line, line 0 being the one stored first
    /// Found less what the calibration's spline through the other 74 dots predicts.
    StPoint m_LeaveOneOut;
    /// Found less what the dots that are not doubtful predict, about a cubic trend.
    StPoint m_Off;
    StPoint m_GreyOff;        ///< the centre by grey values less the one found
    double m_dContrast = 0.0; ///< as `StDotShape`, not a number where nothing dark is
    double m_dDiameter = 0.0;
    double m_dRoundness = 0.0;
};

struct StDiagnosis {
    std::vector<StDotReading> m_aDots; ///< in pattern order
    StPlateFit m_Plate;
    StErrorMap m_Errors;
    Reasons m_aReasons; ///< why it is doubtful; empty where it is good

    bool IsGood() const { return m_aReasons.empty(); }
};

/// `Calibration` is a calibration block, `Capture` the bitmap block that it was derived from.
/// Throws std::invalid_argument, with words, for blocks that are none or points that are no
/// pattern.
StDiagnosis Diagnose(const Bytes& Calibration, const Bytes& Capture);

} // namespace diagnosis
