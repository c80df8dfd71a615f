// The simulator against the library: a capture corrected by the record that the simulator writes
// from its own geometry must look as an ideal scanner would have seen the scene.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "Tools/FpImage.h"
#include "sim/Capture.h"
#include "sim/Record.h"

#include "support/RuledPlate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using sim::ClCapture;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClScannerSettings;
using TestSupport::WorstAnywhere;
using TestSupport::WorstInside;

namespace {

/// The warp of the library, with the scanner's record.
ClRaster Corrected(const ClScanner& Scanner, const ClRaster& Raw) {
    ClCalibrateGeometricData Data;
    sim::FillRecord(Scanner, Data);
    ClImage In(Raw.m_nWidth, Raw.m_nHeight, 1, Raw.m_nPelsX, Raw.m_nPelsY);
    for (int y = 0; y < Raw.m_nHeight; ++y)
        std::memcpy(In.LineData(y), Raw.Line(y), static_cast<std::size_t>(Raw.m_nWidth));
    ClImage Out;
    ClIpCalibrateGeometricBicubic Warp;
    Warp.m_pData = &Data;
    Warp.m_pInImage = &In;
    Warp.m_pOutImage = &Out;
    Warp.Apply();
    ClRaster Result = ClScanner::FrameRaster(0);
    for (int y = 0; y < Result.m_nHeight; ++y)
        std::memcpy(&Result.At(0, y), Out.LineData(y), static_cast<std::size_t>(Result.m_nWidth));
    return Result;
}

/// Geometry of a seed, without noise, under even light.
ClScannerSettings Quiet(std::uint64_t nSeed) {
    ClScannerSettings Settings = ClScanner::DrawSettings(nSeed);
    Settings.m_Light = sim::ClLightSettings();
    Settings.m_Sensor.m_dNoise = 0.0;
    Settings.m_Sensor.m_dLineNoise = 0.0;
    Settings.m_Sensor.m_dColumnGain = 0.0;
    return Settings;
}

} // namespace

TEST(SimCorrection, RulesAreStraightAndInPlaceAfterTheWarp) {
    for (std::uint64_t nSeed = 1; nSeed <= 4; ++nSeed) {
        const ClScanner Scanner(nSeed, Quiet(nSeed));
        const ClCapture Capture = sim::CaptureRuledPlate(Scanner, sim::ClTargetSettings(), 1);
        const ClRaster Image = Corrected(Scanner, Capture.m_Raw);

        EXPECT_LT(WorstAnywhere(Capture.m_Ideal, Capture.m_aLines), 0.05) << nSeed;
        EXPECT_LT(WorstInside(Image, Capture.m_aLines), 0.15) << nSeed;
        // Beyond the dots the splines extrapolate.
        EXPECT_LT(WorstAnywhere(Image, Capture.m_aLines), 1.0) << nSeed;
    }
}

// The same measurement with the record of another scanner, so that it is known to see errors.
TEST(SimCorrection, RulesAreNotInPlaceWithTheRecordOfAnotherScanner) {
    const ClScanner Scanner(1, Quiet(1));
    ClScannerSettings Settings = Quiet(2);
    Settings.m_nRawWidth = Scanner.Settings().m_nRawWidth;
    Settings.m_nRawHeight = Scanner.Settings().m_nRawHeight;
    const ClScanner Other(2, Settings);
    const ClCapture Capture = sim::CaptureRuledPlate(Scanner, sim::ClTargetSettings(), 1);

    EXPECT_GT(WorstInside(Corrected(Other, Capture.m_Raw), Capture.m_aLines), 1.0);
}

// A finger comes out as the ideal scanner sees it, but for the blur.
TEST(SimCorrection, FingerMatchesTheIdealImage) {
    const ClScanner Scanner(3, Quiet(3));
    const ClCapture Capture = sim::CaptureKind(Scanner, sim::EKind::eWhorl, 1);
    const ClRaster Image = Corrected(Scanner, Capture.m_Raw);

    double dSumA = 0.0, dSumB = 0.0, dAA = 0.0, dBB = 0.0, dAB = 0.0, dCount = 0.0;
    for (std::size_t n = 0; n < Image.m_aPixels.size(); ++n) {
        if (Capture.m_FingerArea.m_aPixels[n] != 0)
            continue;
        const double a = Image.m_aPixels[n];
        const double b = Capture.m_Ideal.m_aPixels[n];
        dSumA += a;
        dSumB += b;
        dAA += a * a;
        dBB += b * b;
        dAB += a * b;
        dCount += 1.0;
    }
    const double dCorrelation =
        (dAB - dSumA * dSumB / dCount) /
        std::sqrt((dAA - dSumA * dSumA / dCount) * (dBB - dSumB * dSumB / dCount));

    EXPECT_GT(dCorrelation, 0.97);
}
