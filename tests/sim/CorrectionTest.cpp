// The simulator against the library: a capture corrected by the record that the simulator writes
// from its own geometry must look as an ideal scanner would have seen the scene.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "Tools/FpImage.h"
#include "sim/Capture.h"
#include "sim/Record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using sim::ClCapture;
using sim::ClLine;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClScannerSettings;

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

/// How far the dark middle near a point of a vertical rule lies from that point, pixels.
double OffsetAcross(const ClRaster& Image, double x, int y) {
    double dWeight = 0.0;
    double dSum = 0.0;
    for (int i = static_cast<int>(x) - 6; i <= static_cast<int>(x) + 7; ++i) {
        const double dDark = std::max(0, 225 - Image.At(i, y));
        dWeight += dDark;
        dSum += dDark * i;
    }
    return dSum / dWeight - x;
}

double OffsetDown(const ClRaster& Image, int x, double y) {
    double dWeight = 0.0;
    double dSum = 0.0;
    for (int j = static_cast<int>(y) - 6; j <= static_cast<int>(y) + 7; ++j) {
        const double dDark = std::max(0, 225 - Image.At(x, j));
        dWeight += dDark;
        dSum += dDark * j;
    }
    return dSum / dWeight - y;
}

/// The largest offset of the rules inside a rectangle about the middle of the frame, half sizes in
/// pixels, looked at midway between their crossings.
double WorstOffset(const ClRaster& Image, const std::vector<ClLine>& aLines, double dHalfWidth,
                   double dHalfHeight) {
    constexpr std::size_t nVertical = 9;
    const auto IsInside = [&](double x, double y) {
        return std::fabs(x - 160.0) < dHalfWidth && std::fabs(y - 240.0) < dHalfHeight;
    };
    double dWorst = 0.0;
    for (std::size_t v = 0; v < nVertical; ++v) {
        for (std::size_t h = nVertical; h + 1 < aLines.size(); ++h) {
            const double x = aLines[v].m_From.x;
            const double y = 0.5 * (aLines[h].m_From.y + aLines[h + 1].m_From.y);
            if (IsInside(x, y))
                dWorst = std::max(dWorst, std::fabs(OffsetAcross(Image, x, static_cast<int>(y))));
        }
    }
    for (std::size_t h = nVertical; h < aLines.size(); ++h) {
        for (std::size_t v = 0; v + 1 < nVertical; ++v) {
            const double x = 0.5 * (aLines[v].m_From.x + aLines[v + 1].m_From.x);
            const double y = aLines[h].m_From.y;
            if (IsInside(x, y))
                dWorst = std::max(dWorst, std::fabs(OffsetDown(Image, static_cast<int>(x), y)));
        }
    }
    return dWorst;
}

/// Inside the dots of the pattern, and in all of the frame but its border.
double WorstInside(const ClRaster& Image, const std::vector<ClLine>& aLines) {
    return WorstOffset(Image, aLines, 6.2 * 500.0 / 25.4, 10.2 * 500.0 / 25.4);
}

double WorstAnywhere(const ClRaster& Image, const std::vector<ClLine>& aLines) {
    return WorstOffset(Image, aLines, 152.0, 232.0);
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
