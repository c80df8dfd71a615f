#include "sim/Scanner.h"

#include "support/Throws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

using sim::ClPoint;
using sim::ClScanner;
using sim::ClScannerSettings;

namespace {

struct ClBounds {
    double m_dLeft = 1e9, m_dTop = 1e9, m_dRight = -1e9, m_dBottom = -1e9;
};

/// The raw positions of the frame's border pixels.
ClBounds FrameInRaw(const ClScanner& Scanner) {
    ClBounds Bounds;
    const auto Add = [&](int x, int y) {
        const ClPoint p = Scanner.RawFromFrame({1.0 * x, 1.0 * y});
        Bounds.m_dLeft = std::min(Bounds.m_dLeft, p.x);
        Bounds.m_dRight = std::max(Bounds.m_dRight, p.x);
        Bounds.m_dTop = std::min(Bounds.m_dTop, p.y);
        Bounds.m_dBottom = std::max(Bounds.m_dBottom, p.y);
    };
    for (int x = 0; x < sim::g_nFrameWidth; ++x)
        for (const int y : {0, sim::g_nFrameHeight - 1})
            Add(x, y);
    for (int y = 0; y < sim::g_nFrameHeight; ++y)
        for (const int x : {0, sim::g_nFrameWidth - 1})
            Add(x, y);
    return Bounds;
}

} // namespace

// Every pixel of the corrected image has its 4 x 4 source pixels inside the capture.
TEST(SimScanner, RawFrameCoversTheTargetFrameForEverySeed) {
    for (std::uint64_t nSeed = 0; nSeed < 300; ++nSeed) {
        const ClScanner Scanner(nSeed);
        const ClBounds Bounds = FrameInRaw(Scanner);
        EXPECT_GE(Bounds.m_dLeft, 1.0) << nSeed;
        EXPECT_GE(Bounds.m_dTop, 1.0) << nSeed;
        EXPECT_LE(Bounds.m_dRight, Scanner.Settings().m_nRawWidth - 3.0) << nSeed;
        EXPECT_LE(Bounds.m_dBottom, Scanner.Settings().m_nRawHeight - 3.0) << nSeed;
    }
}

TEST(SimScanner, RawFrameSizesLieInTheToldRangeAndDiffer) {
    int nLeast = 10000;
    int nMost = 0;
    for (std::uint64_t nSeed = 0; nSeed < 200; ++nSeed) {
        const ClScannerSettings Settings = ClScanner::DrawSettings(nSeed);
        ASSERT_GE(Settings.m_nRawWidth, 384);
        ASSERT_LE(Settings.m_nRawWidth, 395);
        ASSERT_GE(Settings.m_nRawHeight, 1045);
        ASSERT_LE(Settings.m_nRawHeight, 1060);
        nLeast = std::min(nLeast, Settings.m_nRawWidth);
        nMost = std::max(nMost, Settings.m_nRawWidth);
    }
    EXPECT_EQ(nLeast, 384);
    EXPECT_EQ(nMost, 395);
}

TEST(SimScanner, PlacesTheFrameWithItsBordersAtEqualDistances) {
    const ClScanner Scanner(17);
    double dLeft = 0.0;
    double dRight = 0.0;
    for (int y = 0; y < 480; ++y) {
        dLeft += Scanner.RawFromFrame({0.0, 1.0 * y}).x / 480.0;
        dRight += Scanner.RawFromFrame({320.0, 1.0 * y}).x / 480.0;
    }
    double dTop = 0.0;
    double dBottom = 0.0;
    for (int x = 0; x < 320; ++x) {
        dTop += Scanner.RawFromFrame({1.0 * x, 0.0}).y / 320.0;
        dBottom += Scanner.RawFromFrame({1.0 * x, 480.0}).y / 320.0;
    }

    EXPECT_NEAR(dLeft + dRight, Scanner.Settings().m_nRawWidth, 1e-6);
    EXPECT_NEAR(dTop + dBottom, Scanner.Settings().m_nRawHeight, 1e-6);
}

// Without distortion a frame pixel is 492.706 / 500 raw columns and 1009.287 / 500 raw lines.
TEST(SimScanner, IdealScannerScalesTheFrameToTheRawResolution) {
    const ClScanner Scanner(1, ClScannerSettings());

    const ClPoint Corner = Scanner.RawFromFrame({0.0, 0.0});
    const ClPoint Middle = Scanner.RawFromFrame({160.0, 240.0});

    EXPECT_NEAR(Middle.x, 195.0, 1e-9);
    EXPECT_NEAR(Middle.y, 526.0, 1e-9);
    EXPECT_NEAR(Corner.x, 195.0 - 160.0 * 492.706 / 500.0, 1e-9);
    EXPECT_NEAR(Corner.y, 526.0 - 240.0 * 1009.287 / 500.0, 1e-9);
}

TEST(SimScanner, FrameAndPlatenPositionsAreInverse) {
    const ClScanner Scanner(5);
    const ClPoint Platen = Scanner.PlatenFromFrame({12.25, 400.5});

    EXPECT_NEAR(Scanner.FrameFromPlaten(Platen).x, 12.25, 1e-9);
    EXPECT_NEAR(Scanner.FrameFromPlaten(Platen).y, 400.5, 1e-9);
    // 500 pixels of the frame are one inch.
    EXPECT_NEAR(Scanner.PlatenFromFrame({512.25, 400.5}).x - Platen.x, 25.4, 1e-9);
}

TEST(SimScanner, RastersCarrySizeAndResolution) {
    const ClScanner Scanner(5);
    const sim::ClRaster Raw = Scanner.RawRaster(7);
    const sim::ClRaster Frame = ClScanner::FrameRaster(9);

    EXPECT_EQ(Raw.m_nWidth, Scanner.Settings().m_nRawWidth);
    EXPECT_EQ(Raw.m_nHeight, Scanner.Settings().m_nRawHeight);
    EXPECT_EQ(Raw.m_nPelsX, static_cast<int>(492.706 * 39.37007874015748));
    EXPECT_EQ(Raw.m_nPelsY, static_cast<int>(1009.287 * 39.37007874015748));
    EXPECT_EQ(Raw.At(3, 4), 7);
    EXPECT_EQ(Frame.m_nWidth, 320);
    EXPECT_EQ(Frame.m_nHeight, 480);
    EXPECT_EQ(Frame.m_nPelsX, 19685);
    EXPECT_EQ(Frame.m_nPelsY, 19685);
    EXPECT_EQ(Frame.At(319, 479), 9);
}

TEST(SimScanner, DrawsTheSameSettingsForASeedAndOthersForAnother) {
    const ClScannerSettings First = ClScanner::DrawSettings(3);
    const ClScannerSettings Again = ClScanner::DrawSettings(3);
    const ClScannerSettings Other = ClScanner::DrawSettings(4);

    EXPECT_EQ(First.m_Distortion.m_dRotation, Again.m_Distortion.m_dRotation);
    EXPECT_EQ(First.m_Light.m_dBright, Again.m_Light.m_dBright);
    EXPECT_NE(First.m_Distortion.m_dRotation, Other.m_Distortion.m_dRotation);
    EXPECT_NE(First.m_Light.m_dBright, Other.m_Light.m_dBright);
    EXPECT_NE(First.m_Sensor.m_dNoise, Other.m_Sensor.m_dNoise);
}

TEST(SimScanner, RefusesSettingsOutOfRange) {
    const ClScannerSettings Good;
    ClScannerSettings Size = Good;
    Size.m_nRawWidth = 15;
    ClScannerSettings Height = Good;
    Height.m_nRawHeight = 4097;
    ClScannerSettings Blur = Good;
    Blur.m_Sensor.m_dBlurX = -0.1;
    ClScannerSettings Light = Good;
    Light.m_Light.m_dBright = 1001.0;

    EXPECT_THROWS(ClScanner(1, Size), ClException, -35,
                  "sim: a raw frame has 16 to 4096 columns and lines");
    EXPECT_THROWS(ClScanner(1, Height), ClException, -35,
                  "sim: a raw frame has 16 to 4096 columns and lines");
    EXPECT_THROWS(ClScanner(1, Blur), ClException, -35,
                  "sim: a setting of the sensor or the light is out of range");
    EXPECT_THROWS(ClScanner(1, Light), ClException, -35,
                  "sim: a setting of the sensor or the light is out of range");
}
