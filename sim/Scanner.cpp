#include "sim/Scanner.h"

#include "Tools/Exception.h"
#include "Tools/SourcePosition.h"
#include "sim/Random.h"

#include <cmath>

namespace sim {

namespace {

constexpr double g_dMmPerInch = 25.4;
constexpr double g_dFramePerMm = g_dFrameDpi / g_dMmPerInch;

/// Subjects of a scanner's seed.
enum ESubject : std::uint64_t {
    eSubjectFrame = 1,
    eSubjectGeometry,
    eSubjectLight,
    eSubjectSensor
};

void CheckSize(int nSize) {
    if (nSize < 16 || nSize > 4096)
        throw ClException("sim: a raw frame has 16 to 4096 columns and lines", -35, false,
                          VEK_HERE);
}

void CheckNotNegative(double dValue, double dMost) {
    if (!(dValue >= 0.0 && dValue <= dMost))
        throw ClException("sim: a setting of the sensor or the light is out of range", -35, false,
                          VEK_HERE);
}

const ClScannerSettings& Checked(const ClScannerSettings& Settings) {
    CheckSize(Settings.m_nRawWidth);
    CheckSize(Settings.m_nRawHeight);
    CheckNotNegative(Settings.m_Sensor.m_dBlurX, 10.0);
    CheckNotNegative(Settings.m_Sensor.m_dBlurY, 10.0);
    CheckNotNegative(Settings.m_Sensor.m_dNoise, 255.0);
    CheckNotNegative(Settings.m_Sensor.m_dLineNoise, 255.0);
    CheckNotNegative(Settings.m_Sensor.m_dColumnGain, 1.0);
    CheckNotNegative(Settings.m_Light.m_dBright, 1000.0);
    return Settings;
}

ClPoint Middle(const ClScannerSettings& Settings) {
    return {0.5 * Settings.m_nRawWidth, 0.5 * Settings.m_nRawHeight};
}

void DrawGeometry(ClRandom Random, ClDistortionSettings& Geometry) {
    Geometry.m_dRotation = Random.Around(0.0, 0.8);
    Geometry.m_dRowSlant = Random.Around(0.0, 0.4);
    Geometry.m_dColumnLean = Random.Around(0.0, 0.3);
    Geometry.m_dShiftX = Random.Around(0.0, 0.3);
    Geometry.m_dShiftY = Random.Around(0.0, 0.3);
    Geometry.m_dTrapezoidX = Random.Around(0.0, 0.0006);
    Geometry.m_dTrapezoidY = Random.Around(0.0, 0.0010);
    Geometry.m_dBow = Random.Around(0.0, 0.0006);
    Geometry.m_dBarrel = Random.Uniform(-0.00008, 0.00003);
}

void DrawLight(ClRandom Random, ClLightSettings& Light) {
    Light.m_dBright = Random.Uniform(222.0, 238.0);
    Light.m_dTiltX = Random.Around(0.0, 0.02);
    Light.m_dTiltY = Random.Around(0.0, 0.02);
    Light.m_dVignette = Random.Uniform(0.01, 0.05);
    Light.m_dTopEdge = Random.Uniform(0.0, 0.04);
    Light.m_dCorners = Random.Uniform(0.03, 0.10);
}

void DrawSensor(ClRandom Random, ClSensorSettings& Sensor) {
    Sensor.m_dBlurX = Random.Uniform(0.45, 0.65);
    Sensor.m_dBlurY = Random.Uniform(0.8, 1.2);
    Sensor.m_dNoise = Random.Uniform(0.9, 1.6);
    Sensor.m_dLineNoise = Random.Uniform(0.2, 0.5);
    Sensor.m_dColumnGain = Random.Uniform(0.002, 0.005);
}

} // namespace

ClScannerSettings ClScanner::DrawSettings(std::uint64_t nSeed) {
    ClScannerSettings Settings;
    ClRandom Frame(nSeed, eSubjectFrame);
    Settings.m_nRawWidth = Frame.Integer(384, 395);
    Settings.m_nRawHeight = Frame.Integer(1045, 1060);
    DrawGeometry(ClRandom(nSeed, eSubjectGeometry), Settings.m_Distortion);
    DrawLight(ClRandom(nSeed, eSubjectLight), Settings.m_Light);
    DrawSensor(ClRandom(nSeed, eSubjectSensor), Settings.m_Sensor);
    return Settings;
}

ClScanner::ClScanner(std::uint64_t nSeed) : ClScanner(nSeed, DrawSettings(nSeed)) {}

ClScanner::ClScanner(std::uint64_t nSeed, const ClScannerSettings& Settings)
    : m_nSeed(nSeed), m_Settings(Checked(Settings)),
      m_Distortion(Settings.m_Distortion, Middle(Settings), g_dRawDpiX / g_dMmPerInch,
                   g_dRawDpiY / g_dMmPerInch),
      m_Light(Settings.m_Light) {
    PlaceFrame();
}

void ClScanner::PlaceFrame() {
    m_FrameOrigin = {-0.5 * g_nFrameWidth / g_dFramePerMm, -0.5 * g_nFrameHeight / g_dFramePerMm};
    // The optics are nearly linear: each step leaves a few percent of the one before.
    for (int nStep = 0; nStep < 8; ++nStep) {
        const ClPoint Raw = MeanBorder();
        m_FrameOrigin.x -= (Raw.x - 0.5 * m_Settings.m_nRawWidth) / (g_dRawDpiX / g_dMmPerInch);
        m_FrameOrigin.y -= (Raw.y - 0.5 * m_Settings.m_nRawHeight) / (g_dRawDpiY / g_dMmPerInch);
    }
}

ClPoint ClScanner::MeanBorder() const {
    ClPoint Mean;
    for (int y = 0; y < g_nFrameHeight; ++y)
        for (const int x : {0, g_nFrameWidth})
            Mean.x += RawFromFrame({1.0 * x, 1.0 * y}).x / (2 * g_nFrameHeight);
    for (int x = 0; x < g_nFrameWidth; ++x)
        for (const int y : {0, g_nFrameHeight})
            Mean.y += RawFromFrame({1.0 * x, 1.0 * y}).y / (2 * g_nFrameWidth);
    return Mean;
}

ClPoint ClScanner::RawFromPlaten(const ClPoint& Platen) const {
    return m_Distortion.RawFromPlaten(Platen);
}

ClPoint ClScanner::PlatenFromRaw(const ClPoint& Raw) const {
    return m_Distortion.PlatenFromRaw(Raw);
}

ClPoint ClScanner::FrameFromPlaten(const ClPoint& Platen) const {
    return {(Platen.x - m_FrameOrigin.x) * g_dFramePerMm,
            (Platen.y - m_FrameOrigin.y) * g_dFramePerMm};
}

ClPoint ClScanner::PlatenFromFrame(const ClPoint& Frame) const {
    return {m_FrameOrigin.x + Frame.x / g_dFramePerMm, m_FrameOrigin.y + Frame.y / g_dFramePerMm};
}

ClPoint ClScanner::RawFromFrame(const ClPoint& Frame) const {
    return RawFromPlaten(PlatenFromFrame(Frame));
}

ClRaster ClScanner::RawRaster(unsigned char nValue) const {
    ClRaster Raster(m_Settings.m_nRawWidth, m_Settings.m_nRawHeight, nValue);
    Raster.m_nPelsX = g_nRawPelsX;
    Raster.m_nPelsY = g_nRawPelsY;
    return Raster;
}

ClRaster ClScanner::FrameRaster(unsigned char nValue) {
    ClRaster Raster(g_nFrameWidth, g_nFrameHeight, nValue);
    Raster.m_nPelsX = g_nFramePels;
    Raster.m_nPelsY = g_nFramePels;
    return Raster;
}

} // namespace sim
