#pragma once

/// The settings of the dynamic calibration, which its plain and its quick form share.

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"

#include <algorithm>
#include <cstdint>

namespace FingerSettings {

constexpr double cdRidgeDist = 11.7; ///< pixels, at 500 dots per inch

/// Shares of the samples that the global stretch sets aside.
constexpr double cdDarkPart = 0.001;
constexpr double cdDarkPartSensitive = 0.05;
constexpr double cdBrightPart = 0.005;

/// A capture of no greater range shows no finger.
constexpr int cnLargestRangeWithoutFinger = 96;

constexpr double cdSumThreshold = 72.0; ///< of the added probabilities: below is finger

constexpr long cnLocalWidth = 23;      ///< surroundings of the local stretch, pixels
constexpr double cdLocalNoise = 0.001; ///< share at either end of the range where all is flat
constexpr long cnLocalMinContrast = 5; ///< what is flat

constexpr double cdDirtPerSum = 0.000392156862745098; ///< 1 / 2550
constexpr double cdUnusableDirt = 2000.0;
constexpr double cdRejectedDirt = 100.0; ///< reported for a capture that is of no use

inline void Set(ClIpBrightnessMask& rDetector) {
    rDetector.m_bIlFix = true;
    rDetector.m_nImageBorderWidth = 4;
    rDetector.m_dIlFixMaxWidthFactor = 1.88444;
    rDetector.m_dIlFixLowPassWidthFactor = 0.45396;
    rDetector.m_dDarkNoisePart = 0.11;
    rDetector.m_dBrightNoisePart = 0.1;
    rDetector.m_dDilatWidthFactor = 0.63;
    rDetector.m_dLowPassWidthFactor = 1.20342;
    rDetector.m_nDerivationWidth = 10;
    rDetector.m_dDerivativeThresh = 15.0;
    rDetector.m_dMinAreaMM2 = 0.0;
    rDetector.m_nMinBinarizeThreshold = 100;
    rDetector.m_nMaxBinarizeThreshold = 198;
}

inline void Set(ClIpContrastMask2& rDetector) {
    rDetector.m_nBorderWidth = 3;
    rDetector.m_dScaleFactor = 7.8;
    rDetector.m_dMidRotWidthFactor1 = 2.1;
    rDetector.m_dMidRotWidthFactor2 = 2.0;
    rDetector.m_dMidRotWidthFactor3 = 2.0;
    rDetector.m_dThresholdFactor = 10.0;
    rDetector.m_dMinFgBlobSize = 16.0;
}

/// The level of a finger by the sums of its pixels' weights and of their weighted excess above the
/// decision value.
inline double DryFingerLevel(std::uint64_t nExcess, std::uint64_t nWeights) {
    constexpr double cdHealthyExcess = 5.0; // grey values
    constexpr double cdDryPerExcess = 2.0;
    constexpr double cdDriest = 100.0;
    if (nWeights == 0)
        return 0.0;
    const double dRatio = static_cast<double>(nExcess) / static_cast<double>(nWeights);
    return std::clamp(cdDryPerExcess * (dRatio - cdHealthyExcess), 0.0, cdDriest);
}

/// What a grey value of the background counts as dirt. Quadratic in the darkness: a faint shade
/// counts for nothing, a black speck for much. min(255, max(205 - v, 0)^2 / 255), truncated.
inline unsigned char DirtWeight(int nValue) {
    constexpr int cnPale = 205; // grey values from here on are no dirt
    const int nDark = std::max(cnPale - nValue, 0);
    return static_cast<unsigned char>(std::min(255, nDark * nDark / 255));
}

} // namespace FingerSettings
