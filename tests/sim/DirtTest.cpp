#include "sim/Dirt.h"

#include "support/Throws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using sim::ClDirtSettings;
using sim::ClPlate;

namespace {

std::vector<double> Reflectances(const ClPlate& Plate) {
    std::vector<double> aValues;
    for (int y = 0; y < ClPlate::ms_nHeight; ++y)
        for (int x = 0; x < ClPlate::ms_nWidth; ++x)
            aValues.push_back(Plate.Reflectance(ClPlate::Position(x, y)));
    return aValues;
}

std::vector<double> Painted(const ClDirtSettings& Settings, std::uint64_t nSeed) {
    ClPlate Plate;
    sim::PaintDirt(Plate, Settings, nSeed);
    return Reflectances(Plate);
}

/// Square millimetres darker than the limit.
double DarkArea(const std::vector<double>& aValues, double dLimit) {
    int nCount = 0;
    for (const double d : aValues)
        nCount += d < dLimit;
    return nCount * 0.02 * 0.02;
}

} // namespace

TEST(SimDirt, LeavesThePlateCleanByDefault) {
    for (const double d : Painted(ClDirtSettings(), 1))
        ASSERT_EQ(d, 1.0);
}

TEST(SimDirt, SpecksAreSmallAndDark) {
    ClDirtSettings Settings;
    Settings.m_nSpecks = 50;
    const std::vector<double> aValues = Painted(Settings, 3);
    const double dArea = DarkArea(aValues, 0.8);

    // Radii lie between a quarter of half the size, 0.025 mm, and 1.5 times half the size.
    EXPECT_GT(dArea, 20 * M_PI * 0.025 * 0.025);
    EXPECT_LT(dArea, 50 * M_PI * 0.15 * 0.15);
}

TEST(SimDirt, HairsAreLongAndThin) {
    ClDirtSettings Settings;
    Settings.m_nHairs = 8;
    const double dArea = DarkArea(Painted(Settings, 3), 0.9);

    // 2 to 6 mm long and 0.05 to 0.11 mm wide; some may leave the plate.
    EXPECT_GT(dArea, 4 * 2.0 * 0.05);
    EXPECT_LT(dArea, 8 * 6.0 * 0.15);
}

TEST(SimDirt, SmudgesAreLargeAndPale) {
    ClDirtSettings Settings;
    Settings.m_nSmudges = 3;
    const std::vector<double> aValues = Painted(Settings, 3);

    EXPECT_GT(DarkArea(aValues, 0.995), 0.5);
    EXPECT_EQ(DarkArea(aValues, 0.6), 0.0);
}

// Expectations by hand: a disc of 0.8 mm that takes 0.6 of the light removes pi / 4 * 0.64 * 0.6
// square millimetres of it, and its centroid is its centre.
TEST(SimDirt, PlacedSpecksHaveTheirCentreTheirAreaAndTheirDarkness) {
    ClDirtSettings Settings;
    Settings.m_aPlaced = {{{3.1, -7.3}, 0.8, 0.6}};
    const std::vector<double> aValues = Painted(Settings, 1);
    double dTaken = 0.0, dX = 0.0, dY = 0.0;
    double dDarkest = 1.0;
    for (int y = 0; y < ClPlate::ms_nHeight; ++y)
        for (int x = 0; x < ClPlate::ms_nWidth; ++x) {
            const double d = aValues[static_cast<std::size_t>(y) * ClPlate::ms_nWidth +
                                     static_cast<std::size_t>(x)];
            dTaken += 1.0 - d;
            dX += (1.0 - d) * ClPlate::Position(x, y).x;
            dY += (1.0 - d) * ClPlate::Position(x, y).y;
            dDarkest = std::min(dDarkest, d);
        }

    EXPECT_NEAR(dTaken * 0.02 * 0.02, M_PI / 4 * 0.64 * 0.6, 0.002);
    EXPECT_NEAR(dX / dTaken, 3.1, 1e-3);
    EXPECT_NEAR(dY / dTaken, -7.3, 1e-3);
    EXPECT_NEAR(dDarkest, 0.4, 1e-6);
}

TEST(SimDirt, PlacedSpecksLeaveTheOtherDirtWhereItWas) {
    ClDirtSettings Settings;
    Settings.m_nSpecks = 20;
    Settings.m_nHairs = 2;
    const std::vector<double> aWithout = Painted(Settings, 7);
    Settings.m_aPlaced = {{{0.0, 0.0}, 1.0, 1.0}};
    const std::vector<double> aWith = Painted(Settings, 7);

    for (int y = 0; y < ClPlate::ms_nHeight; ++y)
        for (int x = 0; x < ClPlate::ms_nWidth; ++x) {
            const sim::ClPoint p = ClPlate::Position(x, y);
            const double d = std::hypot(p.x, p.y);
            const auto n =
                static_cast<std::size_t>(y) * ClPlate::ms_nWidth + static_cast<std::size_t>(x);
            if (d > 0.53) {
                ASSERT_EQ(aWith[n], aWithout[n]) << x << " " << y;
            }
            if (d < 0.47) {
                ASSERT_EQ(aWith[n], 0.0) << x << " " << y;
            }
        }
}

// 2 mm by 0.12 mm and a disc of 0.12 mm in halves at the ends; the edge of a disc is halfway dark
// at its radius.
TEST(SimDirt, PlacedHairsHaveTheirEndsTheirWidthAndTheirDarkness) {
    ClDirtSettings Settings;
    Settings.m_aPlacedHairs = {{{1.0, -2.0}, {1.0, 0.0}, 0.12, 0.6}};
    ClPlate Plate;
    sim::PaintDirt(Plate, Settings, 1);

    EXPECT_NEAR(DarkArea(Reflectances(Plate), 0.7), 2.0 * 0.12 + M_PI * 0.06 * 0.06, 0.02);
    EXPECT_NEAR(Plate.Reflectance({1.0, -1.99}), 0.4, 1e-6);
    EXPECT_NEAR(Plate.Reflectance({1.0, -0.01}), 0.4, 1e-6);
    EXPECT_EQ(Plate.Reflectance({1.0, -2.1}), 1.0);
    EXPECT_EQ(Plate.Reflectance({1.1, -1.0}), 1.0);
}

// A radius of 1 mm: half of the light at 0.5 mm, where a smooth step has its middle.
TEST(SimDirt, GlareAddsLightToWhatLiesThere) {
    ClDirtSettings Settings;
    Settings.m_aPlaced = {{{0.0, 0.0}, 0.6, 0.8}};
    Settings.m_aGlares = {{{0.0, 0.0}, 2.0, 1.5}};
    ClPlate Plate;
    sim::PaintDirt(Plate, Settings, 1);

    EXPECT_NEAR(Plate.Reflectance({0.0, 0.0}), 0.2 + 1.5, 0.01);
    EXPECT_NEAR(Plate.Reflectance({0.5, 0.0}), 1.0 + 0.75, 0.02);
    EXPECT_NEAR(Plate.Reflectance({0.0, -0.99}), 1.0, 0.01);
    EXPECT_EQ(Plate.Reflectance({1.1, 0.0}), 1.0);
}

TEST(SimDirt, IsTheSameForASeedAndDifferentForAnother) {
    ClDirtSettings Settings;
    Settings.m_nSpecks = 10;
    Settings.m_nHairs = 1;
    Settings.m_nSmudges = 1;

    EXPECT_EQ(Painted(Settings, 5), Painted(Settings, 5));
    EXPECT_NE(Painted(Settings, 5), Painted(Settings, 6));
}

TEST(SimDirt, GrowsWithItsAmountAndKeepsWhatWasThere) {
    std::vector<double> aBefore = Painted(sim::DirtOfAmount(0.0), 9);
    EXPECT_EQ(DarkArea(aBefore, 1.0), 0.0);
    for (const double dAmount : {0.2, 0.5, 1.0}) {
        const std::vector<double> aNow = Painted(sim::DirtOfAmount(dAmount), 9);
        for (std::size_t n = 0; n < aNow.size(); ++n)
            ASSERT_LE(aNow[n], aBefore[n]) << dAmount << " " << n;
        EXPECT_GT(DarkArea(aNow, 0.8), DarkArea(aBefore, 0.8) + 0.1);
        aBefore = aNow;
    }
}

TEST(SimDirt, OfAnAmountIsCountedEvenly) {
    const ClDirtSettings Settings = sim::DirtOfAmount(0.5);
    EXPECT_EQ(Settings.m_nSpecks, 75);
    EXPECT_EQ(Settings.m_nHairs, 3);
    EXPECT_EQ(Settings.m_nSmudges, 5);
    for (const double dAmount : {-0.01, 1.01, std::nan("")})
        EXPECT_THROWS(sim::DirtOfAmount(dAmount), ClException, -35,
                      "sim: an amount of dirt is not from 0 to 1");
}

TEST(SimDirt, RefusesSettingsOutOfRange) {
    ClPlate Plate;
    ClDirtSettings Negative;
    Negative.m_nHairs = -1;
    ClDirtSettings Many;
    Many.m_nSpecks = 10001;
    ClDirtSettings Size;
    Size.m_dSpeckSize = 0.0;

    EXPECT_THROWS(sim::PaintDirt(Plate, Negative, 1), ClException, -35,
                  "sim: dirt is counted from 0 to 10000");
    EXPECT_THROWS(sim::PaintDirt(Plate, Many, 1), ClException, -35,
                  "sim: dirt is counted from 0 to 10000");
    EXPECT_THROWS(sim::PaintDirt(Plate, Size, 1), ClException, -35, "sim: a speck has up to 5 mm");
}

TEST(SimDirt, RefusesPlacedHairsAndGlareOutOfRange) {
    ClPlate Plate;
    const double dNaN = std::nan("");
    for (const sim::ClPlacedHair& Hair :
         std::vector<sim::ClPlacedHair>{{{dNaN, 0.0}, {}, 0.1, 0.5},
                                        {{}, {0.0, HUGE_VAL}, 0.1, 0.5},
                                        {{}, {}, 0.0, 0.5},
                                        {{}, {}, 1.1, 0.5},
                                        {{}, {}, 0.1, -0.1},
                                        {{}, {}, 0.1, dNaN}}) {
        ClDirtSettings Settings;
        Settings.m_aPlacedHairs = {Hair};
        EXPECT_THROWS(sim::PaintDirt(Plate, Settings, 1), ClException, -35,
                      "sim: a hair is out of range");
    }
    for (const sim::ClPlacedGlare& Glare : std::vector<sim::ClPlacedGlare>{{{dNaN, 0.0}, 1.0, 1.0},
                                                                           {{}, 0.0, 1.0},
                                                                           {{}, 20.1, 1.0},
                                                                           {{}, 1.0, -0.1},
                                                                           {{}, 1.0, 10.1},
                                                                           {{}, 1.0, dNaN}}) {
        ClDirtSettings Settings;
        Settings.m_aGlares = {Glare};
        EXPECT_THROWS(sim::PaintDirt(Plate, Settings, 1), ClException, -35,
                      "sim: a glare is out of range");
    }
}

TEST(SimDirt, RefusesPlacedSpecksOutOfRange) {
    ClPlate Plate;
    const char* const szSize = "sim: a speck has up to 5 mm";
    const char* const szPlace = "sim: a speck's place is not finite";
    const char* const szDarkness = "sim: a speck's darkness is not from 0 to 1";
    const double dNaN = std::nan("");
    for (const auto& [Speck, szWords] : std::vector<std::pair<sim::ClPlacedSpeck, const char*>>{
             {{{0.0, 0.0}, 0.0, 0.5}, szSize},
             {{{0.0, 0.0}, 5.1, 0.5}, szSize},
             {{{0.0, 0.0}, dNaN, 0.5}, szSize},
             {{{dNaN, 0.0}, 0.2, 0.5}, szPlace},
             {{{0.0, HUGE_VAL}, 0.2, 0.5}, szPlace},
             {{{0.0, 0.0}, 0.2, -0.1}, szDarkness},
             {{{0.0, 0.0}, 0.2, 1.1}, szDarkness},
             {{{0.0, 0.0}, 0.2, dNaN}, szDarkness}}) {
        ClDirtSettings Settings;
        Settings.m_aPlaced = {Speck};
        EXPECT_THROWS(sim::PaintDirt(Plate, Settings, 1), ClException, -35, szWords);
    }
}
