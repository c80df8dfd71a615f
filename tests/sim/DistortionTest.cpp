#include "sim/Distortion.h"

#include "sim/Random.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using sim::ClDistortion;
using sim::ClDistortionSettings;
using sim::ClPoint;

namespace {

constexpr ClPoint g_Middle{200.0, 500.0};
constexpr double g_dScaleX = 20.0;
constexpr double g_dScaleY = 40.0;

ClDistortion Make(const ClDistortionSettings& Settings) {
    return ClDistortion(Settings, g_Middle, g_dScaleX, g_dScaleY);
}

void ExpectAt(const ClDistortionSettings& Settings, const ClPoint& Platen, const ClPoint& Raw) {
    const ClPoint Found = Make(Settings).RawFromPlaten(Platen);
    EXPECT_NEAR(Found.x, Raw.x, 1e-9);
    EXPECT_NEAR(Found.y, Raw.y, 1e-9);
}

} // namespace

TEST(SimDistortion, WithoutSettingsIsAScaleAboutTheMiddle) {
    ExpectAt({}, {0.0, 0.0}, {200.0, 500.0});
    ExpectAt({}, {3.0, -2.0}, {260.0, 420.0});
}

TEST(SimDistortion, RotatesClockwise) {
    ClDistortionSettings Settings;
    Settings.m_dRotation = 30.0;

    // (2, 0) goes to (2 cos 30, 2 sin 30), to the right and down.
    ExpectAt(Settings, {2.0, 0.0}, {200.0 + 20.0 * std::sqrt(3.0), 540.0});
    ExpectAt(Settings, {0.0, 2.0}, {180.0, 500.0 + 40.0 * std::sqrt(3.0)});
}

TEST(SimDistortion, SlantsRowsAndKeepsColumnsUpright) {
    ClDistortionSettings Settings;
    Settings.m_dRowSlant = 18.0;

    ExpectAt(Settings, {2.0, 0.0}, {240.0, 500.0 + 80.0 * std::tan(18.0 * M_PI / 180.0)});
    ExpectAt(Settings, {0.0, 2.0}, {200.0, 580.0});
}

TEST(SimDistortion, LeansColumnsAndKeepsRowsLevel) {
    ClDistortionSettings Settings;
    Settings.m_dColumnLean = 10.0;

    ExpectAt(Settings, {2.0, 0.0}, {240.0, 500.0});
    ExpectAt(Settings, {0.0, 2.0}, {200.0 + 40.0 * std::tan(10.0 * M_PI / 180.0), 580.0});
}

TEST(SimDistortion, ShiftsByMillimetres) {
    ClDistortionSettings Settings;
    Settings.m_dShiftX = 0.5;
    Settings.m_dShiftY = -0.25;

    ExpectAt(Settings, {0.0, 0.0}, {210.0, 490.0});
}

TEST(SimDistortion, ShrinksTowardTheBottomByTheTrapezoid) {
    ClDistortionSettings Settings;
    Settings.m_dTrapezoidY = 0.05;

    // Divided by 1 + 0.05 * 2 below and by 1 - 0.05 * 2 above.
    ExpectAt(Settings, {1.1, 2.0}, {220.0, 500.0 + 80.0 / 1.1});
    ExpectAt(Settings, {0.9, -2.0}, {220.0, 500.0 - 80.0 / 0.9});
}

TEST(SimDistortion, BowSagsRowsAtBothEnds) {
    ClDistortionSettings Settings;
    Settings.m_dBow = 0.01;

    ExpectAt(Settings, {5.0, 0.0}, {300.0, 510.0});
    ExpectAt(Settings, {-5.0, 0.0}, {100.0, 510.0});
    ExpectAt(Settings, {0.0, 5.0}, {200.0, 700.0});
}

TEST(SimDistortion, BarrelDrawsInByTheSquareOfTheRadius) {
    ClDistortionSettings Settings;
    Settings.m_dBarrel = -0.001;

    // Radius 5: factor 1 - 0.025.
    ExpectAt(Settings, {3.0, 4.0}, {200.0 + 60.0 * 0.975, 500.0 + 160.0 * 0.975});
}

TEST(SimDistortion, InverseLeadsBackFromAnyPlatenPosition) {
    sim::ClRandom Random(1);
    for (int nCase = 0; nCase < 200; ++nCase) {
        ClDistortionSettings Settings;
        Settings.m_dRotation = Random.Around(0.0, 10.0);
        Settings.m_dRowSlant = Random.Around(0.0, 18.0);
        Settings.m_dColumnLean = Random.Around(0.0, 5.0);
        Settings.m_dShiftX = Random.Around(0.0, 2.0);
        Settings.m_dShiftY = Random.Around(0.0, 2.0);
        Settings.m_dTrapezoidX = Random.Around(0.0, 0.003);
        Settings.m_dTrapezoidY = Random.Around(0.0, 0.003);
        Settings.m_dBow = Random.Around(0.0, 0.002);
        Settings.m_dBarrel = Random.Around(0.0, 0.0003);
        const ClDistortion Distortion = Make(Settings);
        const ClPoint Platen{Random.Around(0.0, 10.0), Random.Around(0.0, 13.0)};

        const ClPoint Back = Distortion.PlatenFromRaw(Distortion.RawFromPlaten(Platen));

        EXPECT_NEAR(Back.x, Platen.x, 1e-9);
        EXPECT_NEAR(Back.y, Platen.y, 1e-9);
    }
}

TEST(SimDistortion, MapLeadsBackFromAnyRawPosition) {
    ClDistortionSettings Settings;
    Settings.m_dRotation = 1.2;
    Settings.m_dShiftX = 0.3;
    Settings.m_dTrapezoidX = 0.0008;
    Settings.m_dTrapezoidY = -0.0015;
    Settings.m_dBow = 0.001;
    Settings.m_dBarrel = -0.00016;
    const ClDistortion Distortion = Make(Settings);

    for (int y = 0; y <= 1060; y += 53) {
        for (int x = 0; x <= 395; x += 79) {
            const ClPoint Raw{1.0 * x, 1.0 * y};
            const ClPoint Back = Distortion.RawFromPlaten(Distortion.PlatenFromRaw(Raw));
            EXPECT_NEAR(Back.x, Raw.x, 1e-8);
            EXPECT_NEAR(Back.y, Raw.y, 1e-8);
        }
    }
}

TEST(SimDistortion, RefusesSettingsThatAreNoGeometry) {
    ClDistortionSettings Angle;
    Angle.m_dRotation = 45.0;
    ClDistortionSettings NotANumber;
    NotANumber.m_dBow = std::numeric_limits<double>::quiet_NaN();

    EXPECT_THROWS(Make(Angle), ClException, -35, "sim: an angle is not below 45 degrees");
    EXPECT_THROWS(Make(NotANumber), ClException, -35, "sim: a distortion setting is not finite");
    EXPECT_THROWS((ClDistortion({}, g_Middle, 0.0, 1.0)), ClException, -35,
                  "sim: a scale is not positive");
    EXPECT_THROWS((ClDistortion({}, g_Middle, 1.0, -1.0)), ClException, -35,
                  "sim: a scale is not positive");
}
