#pragma once

/// A simulated QK7 scanner: its raw frame, its geometry, its light and its sensor.
///
/// Three coordinate systems meet here. The platen is measured in millimetres from its middle. The
/// raw capture is what the sensor delivers, 492.706 x 1009.287 dots per inch, distorted. The
/// target frame is the corrected image, 320 x 480 pixels at 500 dots per inch, without distortion.
///
/// Size of the raw frame. The target frame is 16.256 mm x 24.384 mm, that is 315.3 columns and
/// 968.9 lines of the raw resolution. A scanner adds a margin of 34 to 40 columns and 38 to 46
/// lines on each side, at least 1.7 mm and 0.95 mm. Rotation, slant, perspective, bow and barrel
/// of the scanners that are drawn take up to 0.4 mm of it at the corners of the frame, and the
/// interpolation needs one pixel before and two behind each position; the rest is room for
/// settings that are worse than those of a good scanner. Frames differ from scanner to scanner as
/// sensors are cut to their own optics: 384 to 395 columns, 1045 to 1060 lines.
///
/// The target frame is placed as a calibration places it: its left and right border lie, on
/// average, at equal distances from the middle of the capture, and so do its upper and lower one.

#include "sim/Distortion.h"
#include "sim/Light.h"
#include "sim/Raster.h"

#include <cstdint>

namespace sim {

constexpr double g_dRawDpiX = 492.706;
constexpr double g_dRawDpiY = 1009.287;
constexpr int g_nRawPelsX = 19397; ///< pixels per metre, truncated
constexpr int g_nRawPelsY = 39735;
constexpr int g_nFrameWidth = 320;
constexpr int g_nFrameHeight = 480;
constexpr double g_dFrameDpi = 500.0;
constexpr int g_nFramePels = 19685;

/// The optics behind the light and the sensor. All zero is a perfect sensor.
struct ClSensorSettings {
    double m_dBlurX = 0.0;      ///< sigma of the point spread along the lines, raw pixels
    double m_dBlurY = 0.0;      ///< the same along the columns
    double m_dNoise = 0.0;      ///< sigma per pixel, grey values, new in every capture
    double m_dLineNoise = 0.0;  ///< sigma per line, grey values, new in every capture
    double m_dColumnGain = 0.0; ///< relative sigma of the columns' gain, fixed per scanner
};

/// The defaults are the ideal scanner: no distortion, even light, no blur, no noise.
struct ClScannerSettings {
    int m_nRawWidth = 390;   ///< columns of a capture, 16 to 4096
    int m_nRawHeight = 1052; ///< lines of a capture, 16 to 4096
    ClDistortionSettings m_Distortion;
    ClLightSettings m_Light;
    ClSensorSettings m_Sensor;
};

class ClScanner {
public:
    /// The scanner of a seed: DrawSettings() of it.
    explicit ClScanner(std::uint64_t nSeed);
    /// A scanner of given settings; the seed decides its columns' gain only. Throws -35 for
    /// settings out of range.
    ClScanner(std::uint64_t nSeed, const ClScannerSettings& Settings);

    /// The settings of a plausible scanner, to be changed one by one.
    static ClScannerSettings DrawSettings(std::uint64_t nSeed);

    std::uint64_t Seed() const { return m_nSeed; }
    const ClScannerSettings& Settings() const { return m_Settings; }
    const ClLight& Light() const { return m_Light; }

    /// The true geometry, both ways.
    ClPoint RawFromPlaten(const ClPoint& Platen) const;
    ClPoint PlatenFromRaw(const ClPoint& Raw) const;
    ClPoint FrameFromPlaten(const ClPoint& Platen) const;
    ClPoint PlatenFromFrame(const ClPoint& Frame) const;
    ClPoint RawFromFrame(const ClPoint& Frame) const;

    /// An image of the raw frame's, or of the target frame's size and resolution.
    ClRaster RawRaster(unsigned char nValue) const;
    static ClRaster FrameRaster(unsigned char nValue);

private:
    void PlaceFrame();
    /// Mean raw column of the frame's left and right border, mean raw line of its upper and lower.
    ClPoint MeanBorder() const;

    std::uint64_t m_nSeed;
    ClScannerSettings m_Settings;
    ClDistortion m_Distortion;
    ClLight m_Light;
    ClPoint m_FrameOrigin; ///< of frame pixel (0, 0), millimetres on the platen
};

} // namespace sim
