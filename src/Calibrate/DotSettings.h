#pragma once

/// What a dot builder works on and what it is told. The steps are functions of their own that take
/// the settings and know nothing of the processor.

#include <cstdint>

class ClCalibrateGeometricData;
class ClImage;

/// The images and records of one run, all of them borrowed.
struct StDotRun {
    ClImage* m_pInImage = nullptr;                  ///< the capture
    ClCalibrateGeometricData* m_pRefData = nullptr; ///< optional: its target replaces the pattern
    ClImage* m_pOutDebugImage = nullptr;            ///< optional: receives the picture of the grid
    ClImage* m_pOutLabelImage = nullptr;            ///< optional: receives the labels
    ClCalibrateGeometricData* m_pOutData = nullptr; ///< receives the calibration data
};

/// Lengths are millimetres and resolutions dots per inch where nothing else is said. The values are
/// those of the raw capture.
struct StDotSettings {
    double m_dBinarizeOffset = 10.0; ///< grey values
    bool m_bCenterByBorders = true;
    double m_dBottomMargin = 0.0; ///< below the pattern, where it is not centred by borders
    double m_dDotDiameter = 0.8;
    double m_dDotTolerance = 0.1; ///< kept, and not read
    double m_dPitch = 2.0;
    double m_dPitchTolerance = 0.31; ///< as a fraction of the pitch
    double m_dAngleTolerance = 0.08726646259971647;
    long m_nReserved = 0; ///< without effect
    double m_dMinEccentricity = 0.25;
    double m_dMaxEccentricity = 0.5;
    double m_dMinArea = 200.0; ///< pixels
    double m_dMaxArea = 700.0; ///< pixels
    bool m_bBrightDots = true; ///< bright dots on dark, or dark ones on bright
    double m_dSourceDpiX = 492.706;
    double m_dSourceDpiY = 1009.287;
    double m_dTargetDpiX = 500.0;
    double m_dTargetDpiY = 500.0;
    std::int32_t m_nTargetWidth = 320;
    std::int32_t m_nTargetHeight = 480;
    double m_dMaxAngleY = 15.0; ///< of a column against the y axis, degrees
    double m_dMaxDistY = 50.0;  ///< of a dot from its column's line, pixels
    double m_dMaxAngleX = 15.0; ///< of a row against the x axis, degrees
    double m_dMaxDistX = 50.0;  ///< of a dot from its row's line, pixels

    /// Half a pitch in pixels, per millimetre and dot per inch: 0.5 / 25.4.
    static constexpr double m_cdHalfPitchFactor = 0.01968503937007874;
};
