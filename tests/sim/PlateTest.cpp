#include "sim/Plate.h"

#include <gtest/gtest.h>

using sim::ClPlate;
using sim::ClPoint;
using sim::ClWindow;

TEST(SimPlate, BeginsClean) {
    const ClPlate Plate;

    EXPECT_EQ(Plate.Reflectance({0.0, 0.0}), 1.0);
    EXPECT_EQ(Plate.Reflectance({-11.0, 14.0}), 1.0);
    EXPECT_FALSE(Plate.IsCovered({0.0, 0.0}));
}

TEST(SimPlate, SamplesLieOnAGridOfAFiftiethMillimetreAboutTheMiddle) {
    const ClPoint First = ClPlate::Position(0, 0);
    const ClPoint Last = ClPlate::Position(ClPlate::ms_nWidth - 1, ClPlate::ms_nHeight - 1);

    EXPECT_NEAR(First.x, -Last.x, 1e-12);
    EXPECT_NEAR(First.y, -Last.y, 1e-12);
    EXPECT_NEAR(ClPlate::Position(1, 0).x - First.x, 0.02, 1e-12);
    EXPECT_NEAR(ClPlate::Sample(ClPlate::Position(17, 900)).x, 17.0, 1e-9);
    EXPECT_NEAR(ClPlate::Sample(ClPlate::Position(17, 900)).y, 900.0, 1e-9);
}

TEST(SimPlate, DarknessMultipliesAndPrintsDoNot) {
    ClPlate Plate;
    Plate.Darken(100, 200, 0.5);
    Plate.Darken(100, 200, 0.5);
    Plate.DarkenTo(300, 200, 0.4);
    Plate.DarkenTo(300, 200, 0.6);

    EXPECT_NEAR(Plate.Reflectance(ClPlate::Position(100, 200)), 0.25, 1e-7);
    EXPECT_NEAR(Plate.Reflectance(ClPlate::Position(300, 200)), 0.4, 1e-7);
}

TEST(SimPlate, InterpolatesBetweenSamples) {
    ClPlate Plate;
    Plate.DarkenTo(500, 600, 0.0);
    const ClPoint Dark = ClPlate::Position(500, 600);

    EXPECT_NEAR(Plate.Reflectance({Dark.x + 0.005, Dark.y}), 0.25, 1e-6);
    EXPECT_NEAR(Plate.Reflectance({Dark.x - 0.01, Dark.y + 0.01}), 0.75, 1e-6);
}

TEST(SimPlate, ContinuesItsEdgeOutside) {
    ClPlate Plate;
    Plate.DarkenTo(0, 0, 0.2);

    EXPECT_NEAR(Plate.Reflectance({-1000.0, -1000.0}), 0.2, 1e-6);
    EXPECT_EQ(Plate.Reflectance({1000.0, 1000.0}), 1.0);
}

TEST(SimPlate, RemembersWhatAFingerCovers) {
    ClPlate Plate;
    Plate.Cover(40, 50);
    const ClPoint Covered = ClPlate::Position(40, 50);

    EXPECT_TRUE(Plate.IsCovered(Covered));
    EXPECT_TRUE(Plate.IsCovered({Covered.x + 0.009, Covered.y - 0.009}));
    EXPECT_FALSE(Plate.IsCovered({Covered.x + 0.011, Covered.y}));
}

TEST(SimWindow, HoldsTheSamplesOfARectangle) {
    const ClWindow Window(ClPlate::Position(100, 200), 0.2, 0.1);

    // 0.2 mm are 10 samples, 0.1 mm 5; rounding may take one more on each side.
    EXPECT_LE(Window.m_nLeft, 90);
    EXPECT_GE(Window.m_nLeft, 89);
    EXPECT_GE(Window.m_nRight, 111);
    EXPECT_LE(Window.m_nRight, 112);
    EXPECT_LE(Window.m_nTop, 195);
    EXPECT_GE(Window.m_nBottom, 206);
}

TEST(SimWindow, IsCutToThePlate) {
    const ClWindow All({0.0, 0.0}, 1000.0, 1000.0);
    const ClWindow None({1000.0, 0.0}, 1.0, 1.0);

    EXPECT_EQ(All.m_nLeft, 0);
    EXPECT_EQ(All.m_nTop, 0);
    EXPECT_EQ(All.m_nRight, ClPlate::ms_nWidth);
    EXPECT_EQ(All.m_nBottom, ClPlate::ms_nHeight);
    EXPECT_EQ(None.m_nLeft, None.m_nRight);
}
