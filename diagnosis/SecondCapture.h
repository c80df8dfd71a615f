#pragma once

/// A calibration on a second capture of the target, laid anew: the test that a wrong point does not
/// pass, since what lies where the first target had a wrong mark is now something else. With
/// another plate it is also the test that a wrong plate does not pass.

#include "diagnosis/Verdict.h"

#include <optional>
#include <string>

namespace diagnosis {

/// A dot of the second capture is off where it lies further from its place in the pattern than the
/// root of the squares of this, pixels of the corrected image, and of three times the error that is
/// expected there: a dot that was laid beyond those of the first capture is where the calibration
/// extrapolates, and that is no fault of a point.
constexpr double cdSecondOff = 0.5;
constexpr double cdSecondSpread = 3.0;

/// The pattern may come out larger or smaller than it is by this share.
constexpr double cdSecondScale = 0.005;

struct StSecondDot {
    StPatternPlace m_Place;
    StPoint m_Found;         ///< in the corrected image, by grey values, pixels
    StPoint m_Off;           ///< from its place, when the pattern is laid onto all dots
    double m_dTrusted = 0.0; ///< how far it may be
    int m_nFailedPairs = 0;  ///< of its 74 distances those beyond the EFTS limits
};

struct StSecond {
    bool m_bFound = false; ///< whether the target was found at all; without it nothing else is told
    double m_dPercent = 0.0; ///< of all 2775 distances within the EFTS limits, as the library tells
    double m_dScale = 1.0;   ///< of the pattern
    double m_dRms = 0.0;     ///< of the dots from their places, pixels
    double m_dMax = 0.0;
    std::vector<StSecondDot> m_aDots;
    Reasons m_aReasons; ///< why the calibration is doubtful
};

/// `Corrected` is the second capture as a bitmap block, corrected with the calibration, without
/// finger mask; the words call it `sCapture`. Throws std::invalid_argument for blocks that are
/// none.
StSecond CheckSecond(const Bytes& Calibration, const Bytes& Corrected,
                     const std::string& sCapture = "the second capture");

} // namespace diagnosis
