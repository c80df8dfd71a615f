#include "sim/Imaging.h"

#include "sim/Target.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using sim::ClPlate;
using sim::ClPoint;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClScannerSettings;

namespace {

double Mean(const ClRaster& Raster) {
    double dSum = 0.0;
    for (const unsigned char nGrey : Raster.m_aPixels)
        dSum += nGrey;
    return dSum / static_cast<double>(Raster.m_aPixels.size());
}

double Sigma(const ClRaster& Raster) {
    const double dMean = Mean(Raster);
    double dSum = 0.0;
    for (const unsigned char nGrey : Raster.m_aPixels)
        dSum += (nGrey - dMean) * (nGrey - dMean);
    return std::sqrt(dSum / static_cast<double>(Raster.m_aPixels.size()));
}

/// A plate that is black right of the middle.
ClPlate HalfBlack() {
    ClPlate Plate;
    for (int y = 0; y < ClPlate::ms_nHeight; ++y)
        for (int x = ClPlate::ms_nWidth / 2; x < ClPlate::ms_nWidth; ++x)
            Plate.DarkenTo(x, y, 0.0);
    return Plate;
}

/// Mean of a column away from the upper and lower ends.
double ColumnMean(const ClRaster& Raster, int x) {
    double dSum = 0.0;
    for (int y = 100; y < 900; ++y)
        dSum += Raster.At(x, y);
    return dSum / 800.0;
}

} // namespace

TEST(SimImaging, IdealScannerSeesACleanPlatenEvenly) {
    const ClRaster Raw = sim::ImageRaw(ClScanner(1, ClScannerSettings()), ClPlate(), 1);

    for (const unsigned char nGrey : Raw.m_aPixels)
        ASSERT_EQ(nGrey, 230);
}

TEST(SimImaging, FollowsTheLight) {
    ClScannerSettings Settings;
    Settings.m_Light.m_dBright = 200.0;
    Settings.m_Light.m_dTiltX = 0.1;
    const ClRaster Raw = sim::ImageRaw(ClScanner(1, Settings), ClPlate(), 1);

    EXPECT_EQ(Raw.At(0, 500), 180);   // 200 (1 - 0.1 * 389 / 390), rounded
    EXPECT_EQ(Raw.At(389, 500), 220); // 200 (1 + 0.1 * 389 / 390)
    EXPECT_EQ(Raw.At(195, 500), 200);
}

TEST(SimImaging, LightBeyondTheSensorsRangeSaturates) {
    ClScannerSettings Settings;
    Settings.m_Light.m_dBright = 300.0;

    EXPECT_EQ(sim::ImageRaw(ClScanner(1, Settings), ClPlate(), 1).At(10, 10), 255);
}

TEST(SimImaging, NoiseHasItsSigma) {
    ClScannerSettings Settings;
    Settings.m_Light.m_dBright = 128.0;
    Settings.m_Sensor.m_dNoise = 5.0;
    const ClRaster Raw = sim::ImageRaw(ClScanner(1, Settings), ClPlate(), 1);

    // Rounding to whole grey values adds 1/12 to the variance; 410280 pixels.
    EXPECT_NEAR(Mean(Raw), 128.0, 0.05);
    EXPECT_NEAR(Sigma(Raw), std::sqrt(25.0 + 1.0 / 12.0), 0.03);
}

TEST(SimImaging, NoiseIsNewInEveryCaptureAndTheColumnsGainIsNot) {
    ClScannerSettings Settings;
    Settings.m_Sensor.m_dNoise = 2.0;
    Settings.m_Sensor.m_dColumnGain = 0.01;
    const ClScanner Scanner(1, Settings);
    const ClRaster First = sim::ImageRaw(Scanner, ClPlate(), 1);
    const ClRaster Second = sim::ImageRaw(Scanner, ClPlate(), 2);

    EXPECT_NE(First.m_aPixels, Second.m_aPixels);
    double dSquares = 0.0;
    for (int x = 0; x < First.m_nWidth; ++x) {
        // The mean of 800 pixels of noise 2 has a sigma of 0.07.
        EXPECT_NEAR(ColumnMean(First, x), ColumnMean(Second, x), 0.6);
        dSquares += std::pow(ColumnMean(First, x) - 230.0, 2);
    }
    // 390 columns know their sigma, 2.3, to 4 percent.
    EXPECT_NEAR(std::sqrt(dSquares / First.m_nWidth), 2.3, 0.35);
}

TEST(SimImaging, LineNoiseShiftsWholeLines) {
    ClScannerSettings Settings;
    Settings.m_Light.m_dBright = 128.0;
    Settings.m_Sensor.m_dLineNoise = 4.0;
    const ClRaster Raw = sim::ImageRaw(ClScanner(1, Settings), ClPlate(), 1);

    for (int y = 0; y < Raw.m_nHeight; ++y)
        for (int x = 1; x < Raw.m_nWidth; ++x)
            ASSERT_EQ(Raw.At(x, y), Raw.At(0, y));
    EXPECT_NEAR(Sigma(Raw), 4.0, 0.4);
}

// The derivative of a blurred edge is the point spread: its variance is that of the blur plus 1/12
// of the pixel's own width.
TEST(SimImaging, BlursEdgesByItsSigma) {
    ClScannerSettings Settings;
    Settings.m_Light.m_dBright = 250.0;
    Settings.m_Sensor.m_dBlurX = 2.0;
    const ClRaster Raw = sim::ImageRaw(ClScanner(1, Settings), HalfBlack(), 1);

    double dWeight = 0.0;
    double dSum = 0.0;
    double dSquares = 0.0;
    for (int x = 170; x < 220; ++x) {
        const double dStep = Raw.At(x, 500) - Raw.At(x + 1, 500);
        dWeight += dStep;
        dSum += dStep * (x + 0.5);
        dSquares += dStep * (x + 0.5) * (x + 0.5);
    }
    const double dMean = dSum / dWeight;

    EXPECT_EQ(dWeight, 250.0);
    EXPECT_NEAR(dMean, 195.0, 0.05);
    EXPECT_NEAR(dSquares / dWeight - dMean * dMean, 4.0 + 1.0 / 12.0, 0.25);
}

TEST(SimImaging, BlurDownLeavesVerticalEdgesSharp) {
    ClScannerSettings Settings;
    Settings.m_Sensor.m_dBlurY = 3.0;
    const ClRaster Raw = sim::ImageRaw(ClScanner(1, Settings), HalfBlack(), 1);

    EXPECT_EQ(Raw.At(193, 500), 230);
    EXPECT_EQ(Raw.At(197, 500), 0);
}

TEST(SimImaging, IdealImageHasNeitherDistortionNorLightNorNoise) {
    const ClScanner Scanner(6);
    const ClRaster Ideal = sim::ImageIdeal(Scanner, ClPlate());
    const auto nBright = static_cast<unsigned char>(Scanner.Settings().m_Light.m_dBright + 0.5);

    for (const unsigned char nGrey : Ideal.m_aPixels)
        ASSERT_EQ(nGrey, nBright);
}

TEST(SimImaging, FingerAreaShowsWhatIsCovered) {
    const ClScanner Scanner(1, ClScannerSettings());
    ClPlate Plate;
    for (int y = 0; y < ClPlate::ms_nHeight; ++y)
        for (int x = ClPlate::ms_nWidth / 2; x < ClPlate::ms_nWidth; ++x)
            Plate.Cover(x, y);
    const ClRaster Area = sim::ImageFingerArea(Scanner, Plate);

    // The middle of the platen is pixel 160 of an ideal scanner's frame.
    EXPECT_EQ(Area.At(159, 240), 255);
    EXPECT_EQ(Area.At(161, 240), 0);
}
