#pragma once

/// The dynamic calibration as it is defined, from the capture to the levels: plain loops over plain
/// arrays, one after the other, with nothing of the library in it. Where the library differs, the
/// first stage, place and value that do can be told.

#include "FingerCoding/NaiveGrid.h"

#include <string>
#include <utility>
#include <vector>

namespace TestSupport::Naive {

/// What the calibration is set to. Widths are factors of the ridge distance.
struct StSettings {
    bool m_bSensitive = false;
    double m_dRidgeDist = 11.7; ///< pixels

    // Dark area
    double m_dImageBorderWidth = 4;
    double m_dIlFixMaxWidthFactor = 1.88444;
    double m_dIlFixLowPassWidthFactor = 0.45396;
    double m_dDarkNoisePart = 0.11;
    double m_dBrightNoisePart = 0.1;
    double m_dDilatWidthFactor = 0.63;
    double m_dLowPassWidthFactor = 1.20342;
    double m_dDerivationWidth = 10;
    double m_dDerivativeThresh = 15.0;
    double m_dMinAreaMM2 = 0.0;
    double m_dMinBinarizeThreshold = 100;
    double m_dMaxBinarizeThreshold = 198;

    // Ridges
    double m_dWorkDpi = 250.0;
    double m_dBorderWidth = 3;
    double m_dScaleFactor = 7.8;
    double m_dMidRotWidthFactor1 = 2.1;
    double m_dThresholdFactor = 10.0;
    double m_dMinFgBlobSize = 16.0;
};

struct StCalibrated {
    /// The images of a run in the order in which they arise, by the names of their files.
    std::vector<std::pair<std::string, Grid>> m_aStages;
    Grid m_Out;
    Grid m_Mask; ///< of the finger
    double m_dDirt = 0.0;
    double m_dDry = 0.0;
};

/// `nPelsX` and `nPelsY` are above 0.
StCalibrated Calibrated(const Grid& Capture, int nPelsX, int nPelsY, const StSettings& Settings);

} // namespace TestSupport::Naive
