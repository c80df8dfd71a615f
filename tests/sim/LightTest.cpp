#include "sim/Light.h"

#include <gtest/gtest.h>

using sim::ClLight;
using sim::ClLightSettings;

TEST(SimLight, IsEvenByDefault) {
    const ClLight Light{ClLightSettings()};

    EXPECT_EQ(Light.At(0.0, 0.0), 230.0);
    EXPECT_EQ(Light.At(-1.0, -1.0), 230.0);
    EXPECT_EQ(Light.At(1.0, 1.0), 230.0);
}

TEST(SimLight, TiltsLinearly) {
    ClLightSettings Settings;
    Settings.m_dBright = 200.0;
    Settings.m_dTiltX = 0.10;
    Settings.m_dTiltY = -0.05;
    const ClLight Light(Settings);

    EXPECT_NEAR(Light.At(1.0, 0.0), 220.0, 1e-9);
    EXPECT_NEAR(Light.At(-0.5, 0.0), 190.0, 1e-9);
    EXPECT_NEAR(Light.At(0.0, 1.0), 190.0, 1e-9);
}

TEST(SimLight, LosesLightAtTheSides) {
    ClLightSettings Settings;
    Settings.m_dBright = 200.0;
    Settings.m_dVignette = 0.10;
    const ClLight Light(Settings);

    EXPECT_NEAR(Light.At(0.0, 0.9), 200.0, 1e-9);
    EXPECT_NEAR(Light.At(-1.0, 0.0), 180.0, 1e-9);
    EXPECT_NEAR(Light.At(0.5, 0.0), 200.0 * (1.0 - 0.1 / 16.0), 1e-9);
}

TEST(SimLight, LosesLightAtTheTopEdgeOnly) {
    ClLightSettings Settings;
    Settings.m_dBright = 200.0;
    Settings.m_dTopEdge = 0.20;
    const ClLight Light(Settings);

    EXPECT_NEAR(Light.At(0.0, -1.0), 160.0, 1e-9);
    EXPECT_NEAR(Light.At(0.0, -0.8), 200.0, 1e-9);
    EXPECT_NEAR(Light.At(0.0, 1.0), 200.0, 1e-9);
}

TEST(SimLight, LosesLightInTheLowerCornersOnly) {
    ClLightSettings Settings;
    Settings.m_dBright = 200.0;
    Settings.m_dCorners = 0.25;
    const ClLight Light(Settings);

    EXPECT_NEAR(Light.At(-1.0, 1.0), 150.0, 1e-9);
    EXPECT_NEAR(Light.At(1.0, 1.0), 150.0, 1e-9);
    EXPECT_NEAR(Light.At(1.0, -1.0), 200.0, 1e-9);
    EXPECT_NEAR(Light.At(0.0, 1.0), 200.0, 1e-9);
}

TEST(SimLight, MaySaturateTheSensor) {
    ClLightSettings Settings;
    Settings.m_dBright = 300.0;

    EXPECT_EQ(ClLight(Settings).At(0.0, 0.0), 300.0);
}
