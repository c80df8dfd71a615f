#include "measures/Finger.h"

#include "measures/Pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using namespace pictures;
using measures::ClFingerMeasures;
using measures::ClRidgeMeasures;
using measures::LightTaken;
using measures::MeasureFinger;

namespace {

ClFingerMeasures Measured(const ClPicture& Picture, const ClPicture& Mask, double dDpi = cdDpi) {
    return MeasureFinger(Picture.View(), Mask.View(), dDpi);
}

ClRidgeMeasures RidgesOf(const ClPicture& Picture) {
    return Measured(Picture, WholeMask(Picture)).m_Ridges;
}

/// 10 x 10 samples of finger amid 40 x 30 of background, its middle 5 right of and 4 below that of
/// the frame.
ClPicture SquareMask() {
    ClPicture Mask(40, 30, cnBackground);
    for (int y = 14; y < 24; ++y)
        for (int x = 20; x < 30; ++x)
            Mask.At(x, y) = cnFinger;
    return Mask;
}

} // namespace

TEST(MeasuresArea, IsTheCountOfFingerSamplesInSquareMillimetres) {
    // At 254 dots per inch a sample is 0.1 mm wide.
    EXPECT_NEAR(*Measured(ClPicture(40, 30, 0), SquareMask(), 254.0).m_dArea, 1.0, 1e-12);
    EXPECT_NEAR(*Measured(ClPicture(40, 30, 0), SquareMask(), 508.0).m_dArea, 0.25, 1e-12);
}

TEST(MeasuresArea, CountsTheInnerHalfOfTheRim) {
    ClPicture Mask(10, 10, cnBackground);
    Mask.At(4, 4) = 127;
    Mask.At(5, 4) = 128;
    EXPECT_NEAR(*Measured(ClPicture(10, 10, 0), Mask, 254.0).m_dArea, 0.01, 1e-12);
}

TEST(MeasuresCentring, IsTheOffsetFromTheMiddleOfTheFrame) {
    const ClFingerMeasures Measures = Measured(ClPicture(40, 30, 0), SquareMask(), 254.0);
    EXPECT_NEAR(*Measures.m_dOffsetX, 0.5, 1e-12);
    EXPECT_NEAR(*Measures.m_dOffsetY, 0.4, 1e-12);
}

TEST(MeasuresShares, CountTheFingerAlone) {
    ClPicture Picture(40, 30, 255); // white, and so saturated, around the finger
    for (int y = 14; y < 24; ++y)
        for (int x = 20; x < 30; ++x)
            Picture.At(x, y) = 100;
    Picture.At(20, 14) = 255;
    Picture.At(21, 14) = 254;
    Picture.At(22, 14) = 84;
    Picture.At(23, 14) = 0;
    Picture.At(24, 14) = 85;
    Picture.At(0, 0) = 0;
    const ClFingerMeasures Measures = Measured(Picture, SquareMask());
    EXPECT_NEAR(*Measures.m_dSaturated, 0.01, 1e-12);
    EXPECT_NEAR(*Measures.m_dDark, 0.02, 1e-12);
}

TEST(MeasuresRidges, HaveTheWidthsThatWerePaintedAtEveryAngle) {
    for (const double dPeriod : {8.0, 9.3, 11.0})
        for (const double dShare : {0.4, 0.5, 0.65})
            for (int nDegrees = 0; nDegrees <= 90; nDegrees += 15) {
                const double dRidge = dShare * dPeriod;
                const ClRidgeMeasures Measures = RidgesOf(RidgePicture(dPeriod, dRidge, nDegrees));
                const auto szWhere = testing::Message()
                                     << dPeriod << ' ' << dShare << ' ' << nDegrees;
                ASSERT_TRUE(Measures.m_dRidgeWidth) << szWhere;
                EXPECT_NEAR(*Measures.m_dRidgeWidth / cdMmPerSample, dRidge, 0.15) << szWhere;
                EXPECT_NEAR(*Measures.m_dValleyWidth / cdMmPerSample, dPeriod - dRidge, 0.15)
                    << szWhere;
                EXPECT_NEAR(*Measures.m_dRidgeShare, dShare, 0.02) << szWhere;
                EXPECT_LT(*Measures.m_dRidgeSpread, 0.07) << szWhere;
                EXPECT_LT(*Measures.m_dValleySpread, 0.07) << szWhere;
                EXPECT_LT(*Measures.m_dBrokenness, 0.002) << szWhere;
            }
}

TEST(MeasuresRidges, OfLessThanThreeSamplesLookAFifthOfASampleWiderAtMost) {
    // Between samples the darkest value of so thin a ridge is not met.
    for (int nDegrees = 0; nDegrees <= 90; nDegrees += 15) {
        const ClRidgeMeasures Measures = RidgesOf(RidgePicture(8.0, 2.4, nDegrees));
        const double dExcess = *Measures.m_dRidgeWidth / cdMmPerSample - 2.4;
        EXPECT_GT(dExcess, -0.02) << nDegrees;
        EXPECT_LT(dExcess, 0.2) << nDegrees;
    }
}

TEST(MeasuresRidges, AreNarrowerInMillimetresWhereTheResolutionIsHigher) {
    const ClPicture Picture = RidgePicture(10.0, 4.0, 0.0);
    const ClRidgeMeasures At400 = Measured(Picture, WholeMask(Picture), 400.0).m_Ridges;
    const ClRidgeMeasures At600 = Measured(Picture, WholeMask(Picture), 600.0).m_Ridges;
    EXPECT_NEAR(*At400.m_dRidgeWidth, 4.0 * 25.4 / 400.0, 0.003);
    EXPECT_NEAR(*At600.m_dRidgeWidth, 4.0 * 25.4 / 600.0, 0.003);
}

TEST(MeasuresRidges, SpreadAsTheirWidthsDo) {
    // Ridges of 3 and 5 samples in turn, valleys of 5: a mean of 4 and a deviation of 1.
    const ClPicture Picture = Painted(200, 60, [](int x, int) {
        return std::min(Ridges(x, 18.0, 3.0), Ridges(x - 9.0, 18.0, 5.0));
    });
    const ClRidgeMeasures Measures = RidgesOf(Picture);
    EXPECT_NEAR(*Measures.m_dRidgeSpread, 0.25, 0.02);
    EXPECT_NEAR(*Measures.m_dRidgeWidth / cdMmPerSample, 4.0, 0.1);
    EXPECT_LT(*Measures.m_dValleySpread, 0.05);
}

TEST(MeasuresRidges, SpreadOfValleysIsToldApart) {
    const ClPicture Picture = Painted(200, 60, [](int x, int) {
        return 255.0 - std::min(Ridges(x, 18.0, 3.0), Ridges(x - 9.0, 18.0, 5.0));
    });
    const ClRidgeMeasures Measures = RidgesOf(Picture);
    EXPECT_NEAR(*Measures.m_dValleySpread, 0.25, 0.02);
    EXPECT_LT(*Measures.m_dRidgeSpread, 0.05);
}

TEST(MeasuresRidges, HaveTheContrastOfTheWave) {
    const ClPicture Picture =
        Painted(120, 60, [](int x, int) { return 120.0 + 51.0 * std::cos(2.0 * M_PI * x / 10.0); });
    // Extremes of the wave lie on samples: 171 and 69.
    EXPECT_NEAR(*RidgesOf(Picture).m_dContrast, 102.0 / 255.0, 1e-9);
}

TEST(MeasuresRidges, AreReadThroughEveryFourthSampleThatHasRoomForAProfile) {
    const ClPicture Picture = Painted(120, 60, [](int x, int) { return Ridges(x, 9.0, 4.0); });
    // 16 samples to each side, two above and below, and two to spare for the interpolation: columns
    // 16, 20 ... 100 and lines 4, 8 ... 52.
    EXPECT_EQ(RidgesOf(Picture).m_nProfiles, 22U * 13U);
}

TEST(MeasuresRidges, AreNotReadBelowTwentyGreyValuesOfContrast) {
    const auto Wave = [](double dContrast) {
        return RidgesOf(Painted(120, 60, [&](int x, int) { return x / 5 % 2 * dContrast; }));
    };
    EXPECT_EQ(Wave(19.0).m_nProfiles, 0U);
    EXPECT_FALSE(Wave(19.0).m_dContrast);
    EXPECT_FALSE(Wave(19.0).m_dBrokenness);
    EXPECT_FALSE(Wave(19.0).m_dPressure);
    EXPECT_GT(Wave(20.0).m_nProfiles, 0U);
    EXPECT_NEAR(*Wave(20.0).m_dContrast, 20.0 / 255.0, 1e-9);
}

TEST(MeasuresBrokenness, IsTheShareOfTheEnergyThatDarkSamplesHaveAlongTheRidges) {
    // Upright ridges, their tops lightened at places along them. The sum of the two waves keeps the
    // direction across the ridges level.
    const ClPicture Picture = Painted(128, 128, [](int x, int y) {
        return 110.0 + 80.0 * std::cos(2.0 * M_PI * x / 8.0) +
               24.0 * std::cos(2.0 * M_PI * y / 8.0);
    });
    const auto At = [&](int x, int y) { return int{Picture.View().At(x, y)}; };
    double dDark = 0.0;
    double dAll = 0.0;
    for (int y = 1; y < 127; ++y)
        for (int x = 1; x < 127; ++x) {
            int nAcross = 0;
            int nAlong = 0;
            for (const int n : {-1, 0, 0, 1}) {
                nAcross += At(x + 1, y + n) - At(x - 1, y + n);
                nAlong += At(x + n, y + 1) - At(x + n, y - 1);
            }
            dAll += nAcross * nAcross + nAlong * nAlong;
            dDark += At(x, y) < 85 ? nAlong * nAlong : 0.0;
        }
    ASSERT_GT(dDark / dAll, 0.02);
    EXPECT_NEAR(*RidgesOf(Picture).m_dBrokenness, dDark / dAll, 0.001);
}

TEST(MeasuresBrokenness, RisesWithTheRidgesThatAreInterrupted) {
    const auto Broken = [](int nEvery) {
        return *RidgesOf(Painted(120, 140, [&](int x, int y) {
                    return y % nEvery < 3 && x / 9 % 2 == 0 ? 200.0 : Ridges(x - 4, 9.0, 4.0);
                })).m_dBrokenness;
    };
    EXPECT_GT(Broken(12), 1.3 * Broken(24));
    EXPECT_GT(Broken(24), 1.3 * Broken(48));
    EXPECT_GT(Broken(48), 0.001);
}

TEST(MeasuresPressure, IsTheRidgeShareWithoutWhatMoistureDoes) {
    const ClPicture Picture = Painted(200, 60, [](int x, int y) {
        const double dRidges = std::min(Ridges(x, 18.0, 3.0), Ridges(x - 9.0, 18.0, 5.0));
        return y % 20 < 3 ? 0.5 * (dRidges + 255.0) : dRidges;
    });
    const ClRidgeMeasures Measures = RidgesOf(Picture);
    ASSERT_GT(*Measures.m_dBrokenness, 0.002);
    ASSERT_GT(*Measures.m_dRidgeSpread, 0.1);
    EXPECT_NEAR(*Measures.m_dPressure,
                *Measures.m_dRidgeShare + 6.5 * *Measures.m_dBrokenness -
                    0.85 * *Measures.m_dRidgeSpread,
                1e-12);
}

TEST(MeasuresLight, IsTakenAsTheDarkestTwoPercentTellBesideTheLightestTenth) {
    // 100 samples: two of 60, eighty-eight of 100, ten of 200. The ends are 60 and 100.
    ClPicture Picture(10, 10, 100);
    Picture.At(3, 3) = Picture.At(7, 1) = 60;
    for (int x = 0; x < 10; ++x)
        Picture.At(x, 9) = 200;
    const ClPicture Mask = WholeMask(Picture);
    EXPECT_NEAR(*LightTaken(Picture.View(), Mask.View()), 1.0 - 60.0 / 100.0, 1e-12);
    Picture.At(0, 8) = 200;
    EXPECT_NEAR(*LightTaken(Picture.View(), Mask.View()), 1.0 - 60.0 / 200.0, 1e-12);
    Picture.At(3, 3) = 100;
    EXPECT_NEAR(*LightTaken(Picture.View(), Mask.View()), 1.0 - 100.0 / 200.0, 1e-12);
}

TEST(MeasuresLight, IsThatOfTheFingerAlone) {
    ClPicture Picture(40, 30, 10);
    for (int y = 14; y < 24; ++y)
        for (int x = 20; x < 30; ++x)
            Picture.At(x, y) = y < 18 ? 50 : 200;
    EXPECT_NEAR(*LightTaken(Picture.View(), SquareMask().View()), 0.75, 1e-12);
}
