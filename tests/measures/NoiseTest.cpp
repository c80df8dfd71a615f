#include "measures/Noise.h"

#include "measures/Pictures.h"
#include "sim/Capture.h"

#include <gtest/gtest.h>

#include <random>

using namespace pictures;
using measures::ClGreyView;
using measures::ClNoise;
using measures::MeasureNoise;

namespace {

ClNoise NoiseOf(const ClPicture& Picture) {
    return MeasureNoise(Picture.View()).value();
}

/// What a scanner with this noise and otherwise like that of the seed makes of its empty platen.
ClNoise Simulated(std::uint64_t nSeed, double dPixel, double dLine, bool bDirty = false) {
    sim::ClScannerSettings Settings = sim::ClScanner::DrawSettings(nSeed);
    Settings.m_Sensor.m_dNoise = dPixel;
    Settings.m_Sensor.m_dLineNoise = dLine;
    const sim::ClScanner Scanner(nSeed, Settings);
    const sim::ClCapture Capture =
        CaptureKind(Scanner, bDirty ? sim::EKind::eDirty : sim::EKind::eEmpty, nSeed);
    return MeasureNoise(ClGreyView{Capture.m_Raw.m_aPixels.data(), Capture.m_Raw.m_nWidth,
                                   Capture.m_Raw.m_nHeight, Capture.m_Raw.m_nWidth})
        .value();
}

} // namespace

TEST(MeasuresNoise, IsNoneInLightThatRisesEvenly) {
    const ClNoise Noise = NoiseOf(Painted(64, 96, [](int x, int y) { return 20.0 + x + y; }));
    EXPECT_EQ(Noise.m_dPixel, 0.0);
    EXPECT_EQ(Noise.m_dLine, 0.0);
}

TEST(MeasuresNoise, OfAChessboardIsItsStepLessTheRounding) {
    // d is 10 or -10 everywhere.
    const ClNoise Noise =
        NoiseOf(Painted(64, 96, [](int x, int y) { return 100.0 + 5.0 * ((x + y) % 2); }));
    EXPECT_NEAR(Noise.m_dPixel, std::sqrt(25.0 - 1.0 / 12.0), 1e-12);
    EXPECT_EQ(Noise.m_dLine, 0.0);
}

TEST(MeasuresNoise, OfLinesIsNoneOfPixels) {
    // Tiles of 8 lines have 7 steps of 6, down and up in turn, in both halves: their mean square is
    // 36, their mean +-6 / 7, and half of the covariance 18 (1 - 1 / 49).
    const ClNoise Noise =
        NoiseOf(Painted(64, 96, [](int, int y) { return 100.0 + 6.0 * (y % 2); }));
    EXPECT_EQ(Noise.m_dPixel, 0.0);
    EXPECT_NEAR(Noise.m_dLine, std::sqrt(18.0 * 48.0 / 49.0), 1e-12);
}

TEST(MeasuresNoise, LeavesOutTheGainOfColumns) {
    const ClNoise Noise =
        NoiseOf(Painted(64, 96, [](int x, int) { return 100.0 + 9.0 * (x * 7 % 5); }));
    EXPECT_EQ(Noise.m_dPixel, 0.0);
    EXPECT_EQ(Noise.m_dLine, 0.0);
}

TEST(MeasuresNoise, NeedsTilesOfFourSamples) {
    EXPECT_TRUE(MeasureNoise(ClPicture(32, 48, 100).View()));
    EXPECT_FALSE(MeasureNoise(ClPicture(31, 48, 100).View()));
    EXPECT_FALSE(MeasureNoise(ClPicture(32, 47, 100).View()));
    EXPECT_FALSE(MeasureNoise(ClGreyView()));
}

TEST(MeasuresNoise, OfPixelsIsThatOfTheSimulatedSensor) {
    for (const double dNoise : {0.5, 1.0, 2.0, 4.0})
        for (const std::uint64_t nSeed : {1U, 2U, 3U})
            EXPECT_NEAR(Simulated(nSeed, dNoise, 0.3).m_dPixel, dNoise, 0.03 * dNoise)
                << "noise " << dNoise << ", seed " << nSeed;
}

TEST(MeasuresNoise, OfLinesIsThatOfTheSimulatedSensor) {
    for (const double dNoise : {0.3, 0.5, 1.0, 2.0})
        for (const std::uint64_t nSeed : {1U, 2U, 3U})
            EXPECT_NEAR(Simulated(nSeed, 1.2, dNoise).m_dLine, dNoise, 0.12 * dNoise)
                << "noise " << dNoise << ", seed " << nSeed;
}

TEST(MeasuresNoise, HardlyGrowsWithDirt) {
    const ClNoise Clean = Simulated(4, 1.2, 0.4);
    const ClNoise Dirty = Simulated(4, 1.2, 0.4, true);
    EXPECT_NEAR(Dirty.m_dPixel, Clean.m_dPixel, 0.1);
    EXPECT_NEAR(Dirty.m_dLine, Clean.m_dLine, 0.1);
}
