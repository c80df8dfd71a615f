#include "measures/Platen.h"

#include "measures/Pictures.h"

#include <gtest/gtest.h>

#include <random>

using namespace pictures;
using measures::ClPlatenMeasures;
using measures::MeasurePlaten;

namespace {

ClPlatenMeasures Measured(const ClPicture& Picture) {
    return MeasurePlaten(Picture.View()).value();
}

} // namespace

TEST(MeasuresPlaten, OfEvenLightIsUniformAndClean) {
    const ClPlatenMeasures Measures = Measured(ClPicture(80, 120, 230));
    EXPECT_EQ(Measures.m_dBrightness, 230.0);
    EXPECT_EQ(Measures.m_dUniformity, 1.0);
    EXPECT_EQ(Measures.m_dSaturated, 0.0);
    EXPECT_EQ(Measures.m_dDark, 0.0);
    EXPECT_EQ(Measures.m_dSoiled, 0.0);
}

TEST(MeasuresPlaten, IsAsUniformAsItsDarkestTileIsBright) {
    // Tiles of 10 x 10 samples, brighter by one from tile to tile, line by line.
    const ClPicture Picture =
        Painted(80, 120, [](int x, int y) { return 100.0 + y / 10 * 8 + x / 10; });
    const ClPlatenMeasures Measures = Measured(Picture);
    EXPECT_NEAR(Measures.m_dUniformity, 100.0 / 195.0, 1e-12);
    EXPECT_NEAR(Measures.m_dBrightness, 147.5, 1e-12);
}

TEST(MeasuresPlaten, SizesNeedNotBeMultiplesOfTheTiles) {
    // The last tile holds columns 70 and later of 83, and lines 112 and later of 125.
    ClPicture Picture(83, 125, 200);
    for (int y = 115; y < 125; ++y)
        for (int x = 73; x < 83; ++x)
            Picture.At(x, y) = 150;
    EXPECT_NEAR(Measured(Picture).m_dUniformity, 0.75, 1e-12);
}

TEST(MeasuresPlaten, DirtIsCountedAndDoesNotCountAsLight) {
    ClPicture Picture(80, 120, 200);
    for (int y = 40; y < 46; ++y)
        for (int x = 30; x < 38; ++x)
            Picture.At(x, y) = 100;
    const ClPlatenMeasures Measures = Measured(Picture);
    EXPECT_NEAR(Measures.m_dSoiled, 48.0 / 9600.0, 1e-12);
    EXPECT_EQ(Measures.m_dUniformity, 1.0);
}

TEST(MeasuresPlaten, DirtTakesMoreThanSevenPercent) {
    ClPicture Picture(80, 120, 200);
    Picture.At(5, 5) = 186;
    EXPECT_EQ(Measured(Picture).m_dSoiled, 0.0);
    Picture.At(5, 5) = 185;
    EXPECT_GT(Measured(Picture).m_dSoiled, 0.0);
}

TEST(MeasuresPlaten, UnevenLightIsNoDirt) {
    // Along a tile the light changes by more than dirt takes, up to the borders.
    const ClPlatenMeasures Across =
        Measured(Painted(160, 240, [](int x, int) { return 30.0 + 1.3 * x; }));
    EXPECT_EQ(Across.m_dSoiled, 0.0);
    EXPECT_NEAR(Across.m_dUniformity, (30.0 + 1.3 * 10) / (30.0 + 1.3 * 150), 0.005);
    const ClPlatenMeasures Down =
        Measured(Painted(160, 240, [](int, int y) { return 30.0 + 0.85 * y; }));
    EXPECT_EQ(Down.m_dSoiled, 0.0);
    EXPECT_NEAR(Down.m_dUniformity, (30.0 + 0.85 * 10) / (30.0 + 0.85 * 230), 0.005);
}

// The last tiles, 20 samples wide, have a light of 150, those before one of 200. Samples of 150 are
// soiled where the light between is above 161.29, that is up to 0.774 of the way from middle to
// middle: the first five of them.
TEST(MeasuresPlaten, HasALightThatIsInterpolatedBetweenTheMiddlesOfTheTiles) {
    const ClPicture Below = Painted(160, 240, [](int, int y) { return y < 220 ? 200.0 : 150.0; });
    EXPECT_NEAR(Measured(Below).m_dSoiled, 5.0 / 240.0, 1e-12);
    const ClPicture Right = Painted(160, 240, [](int x, int) { return x < 140 ? 200.0 : 150.0; });
    EXPECT_NEAR(Measured(Right).m_dSoiled, 5.0 / 160.0, 1e-12);
}

TEST(MeasuresPlaten, SaturatedAndDarkSamplesAreCounted) {
    ClPicture Picture(80, 120, 254);
    Picture.At(3, 4) = 255;
    Picture.At(50, 60) = 84;
    Picture.At(51, 60) = 0;
    Picture.At(52, 60) = 85;
    const ClPlatenMeasures Measures = Measured(Picture);
    EXPECT_NEAR(Measures.m_dSaturated, 1.0 / 9600.0, 1e-12);
    EXPECT_NEAR(Measures.m_dDark, 2.0 / 9600.0, 1e-12);
}

TEST(MeasuresPlaten, IsNotMeasurableBelowOneSampleATile) {
    EXPECT_TRUE(MeasurePlaten(ClPicture(8, 12, 9).View()));
    EXPECT_FALSE(MeasurePlaten(ClPicture(7, 12, 9).View()));
    EXPECT_FALSE(MeasurePlaten(ClPicture(8, 11, 9).View()));
    EXPECT_FALSE(MeasurePlaten(ClPicture(1, 1, 9).View()));
    EXPECT_FALSE(MeasurePlaten({}));
}

TEST(MeasuresPlaten, IsNotMeasurableInTheDark) {
    EXPECT_FALSE(MeasurePlaten(ClPicture(80, 120, 0).View()));
}

TEST(MeasuresPlaten, AnyImageIsMeasuredWithinTheLimits) {
    std::mt19937 Random(8);
    for (int nWidth = 8; nWidth < 40; nWidth += 5)
        for (int nHeight = 12; nHeight < 40; nHeight += 5) {
            ClPicture Picture(nWidth, nHeight, 0);
            for (unsigned char& rSample : Picture.m_aSamples)
                rSample = static_cast<unsigned char>(Random() >> 24);
            const ClPlatenMeasures Measures = Measured(Picture);
            for (const double d : {Measures.m_dUniformity, Measures.m_dSaturated, Measures.m_dDark,
                                   Measures.m_dSoiled, Measures.m_dBrightness / 255.0}) {
                EXPECT_GE(d, 0.0);
                EXPECT_LE(d, 1.0);
            }
        }
}
