#include "sim/Target.h"

#include "sim/Capture.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using sim::ClCapture;
using sim::ClLine;
using sim::ClPoint;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClScannerSettings;
using sim::ClTargetSettings;

namespace {

/// Even light and a noiseless sensor, so that darkness is a measure of the print alone.
ClScannerSettings QuietSettings(std::uint64_t nSeed) {
    ClScannerSettings Settings = ClScanner::DrawSettings(nSeed);
    Settings.m_Light = sim::ClLightSettings();
    Settings.m_Sensor.m_dNoise = 0.0;
    Settings.m_Sensor.m_dLineNoise = 0.0;
    Settings.m_Sensor.m_dColumnGain = 0.0;
    return Settings;
}

/// The dark pixels in a window around a place, weighted by how much darker they are than
/// `dLight`.
struct ClBlob {
    ClBlob(const ClRaster& Raw, const ClPoint& Around, double dLight) {
        for (int y = static_cast<int>(Around.y) - 26; y <= static_cast<int>(Around.y) + 27; ++y) {
            for (int x = static_cast<int>(Around.x) - 13; x <= static_cast<int>(Around.x) + 14;
                 ++x) {
                const double dDark = dLight - Raw.At(x, y);
                if (dDark <= 0.0)
                    continue;
                m_dWeight += dDark;
                m_Centre.x += dDark * x;
                m_Centre.y += dDark * y;
            }
        }
        m_Centre.x /= m_dWeight;
        m_Centre.y /= m_dWeight;
    }
    ClPoint m_Centre;
    double m_dWeight = 0.0;
};

ClCapture Target(const ClScanner& Scanner, const ClTargetSettings& Settings) {
    return sim::CaptureTarget(Scanner, Settings, sim::ClDirtSettings(), 1);
}

/// Centre of the dark line that crosses a row (or, with steps swapped, a column) near `dAt`.
double LineCentre(const ClRaster& Raster, double dAt, int nFixed, bool bVertical, double dLight) {
    double dWeight = 0.0;
    double dSum = 0.0;
    for (int n = static_cast<int>(dAt) - 7; n <= static_cast<int>(dAt) + 8; ++n) {
        const double dDark = dLight - (bVertical ? Raster.At(n, nFixed) : Raster.At(nFixed, n));
        dWeight += dDark;
        dSum += dDark * n;
    }
    return dSum / dWeight;
}

} // namespace

TEST(SimTarget, PatternHas75DotsColumnByColumnAboutItsMiddle) {
    const std::vector<ClPoint> aDots = sim::DotPattern();

    ASSERT_EQ(aDots.size(), 75U);
    EXPECT_EQ(aDots[0].x, -6.0);
    EXPECT_EQ(aDots[0].y, -10.0);
    EXPECT_EQ(aDots[9].y, 8.0); // the first column has 10 dots
    EXPECT_EQ(aDots[10].x, -4.0);
    EXPECT_EQ(aDots[10].y, -10.0);
    EXPECT_EQ(aDots[20].y, 10.0);
    EXPECT_EQ(aDots[74].x, 6.0);
    EXPECT_EQ(aDots[74].y, 8.0);
}

TEST(SimTarget, DotCentresMatchTheCentroidsOfTheDarkPixels) {
    for (std::uint64_t nSeed = 1; nSeed <= 5; ++nSeed) {
        const ClScanner Scanner(nSeed, QuietSettings(nSeed));
        ClTargetSettings Settings;
        Settings.m_dRotation = 0.7;
        Settings.m_dShiftX = 0.3;
        const ClCapture Capture = Target(Scanner, Settings);

        ASSERT_EQ(Capture.m_aDots.size(), 75U);
        for (const ClPoint& Dot : Capture.m_aDots) {
            const ClBlob Blob(Capture.m_Raw, Dot, 230.0);
            EXPECT_NEAR(Blob.m_Centre.x, Dot.x, 0.03);
            EXPECT_NEAR(Blob.m_Centre.y, Dot.y, 0.03);
        }
    }
}

TEST(SimTarget, DotCentresSurviveNoiseAndLight) {
    const ClScanner Scanner(21);
    const ClCapture Capture = Target(Scanner, ClTargetSettings());

    for (const ClPoint& Dot : Capture.m_aDots) {
        const ClBlob Blob(Capture.m_Raw, Dot, 190.0);
        EXPECT_NEAR(Blob.m_Centre.x, Dot.x, 0.1);
        EXPECT_NEAR(Blob.m_Centre.y, Dot.y, 0.15);
    }
}

// A dot of 0.8 mm covers pi / 4 * 0.64 mm^2, at 19.398 x 39.736 pixels per square millimetre.
TEST(SimTarget, DotsHaveTheirAreaAndContrast) {
    const ClScanner Scanner(1, ClScannerSettings());
    ClTargetSettings Settings;
    Settings.m_dContrast = 0.5;
    const ClCapture Capture = Target(Scanner, Settings);
    const ClBlob Blob(Capture.m_Raw, Capture.m_aDots[37], 230.0);
    const double dPixels = M_PI / 4 * 0.64 * (492.706 / 25.4) * (1009.287 / 25.4);

    EXPECT_NEAR(Blob.m_dWeight / 115.0, dPixels, 0.01 * dPixels);
    const ClPoint& Dot = Capture.m_aDots[37];
    EXPECT_EQ(Capture.m_Raw.At(static_cast<int>(Dot.x), static_cast<int>(Dot.y)), 115);
}

TEST(SimTarget, MissingDotsAreNotPrintedAndExtraOnesAre) {
    const ClScanner Scanner(1, ClScannerSettings());
    ClTargetSettings Settings;
    Settings.m_aMissing = {0, 74};
    Settings.m_aExtra = {{-1.0, 1.0}};
    const ClCapture Capture = Target(Scanner, Settings);
    const auto At = [&](const ClPoint& p) {
        return Capture.m_Raw.At(static_cast<int>(p.x), static_cast<int>(p.y));
    };

    ASSERT_EQ(Capture.m_aDots.size(), 75U);
    EXPECT_EQ(At(Capture.m_aDots[0]), 230);
    EXPECT_EQ(At(Capture.m_aDots[74]), 230);
    EXPECT_LT(At(Capture.m_aDots[1]), 60);
    EXPECT_LT(At(Scanner.RawFromPlaten({-1.0, 1.0})), 60);
}

TEST(SimTarget, LiesOnThePlatenAsTold) {
    ClTargetSettings Settings;
    Settings.m_dRotation = 30.0;
    Settings.m_dShiftX = 1.0;
    Settings.m_dShiftY = -2.0;
    const ClPoint Turned = sim::PlatenFromPattern(Settings, {2.0, 0.0});
    Settings = ClTargetSettings();
    Settings.m_dRowSlant = 18.0;
    const ClPoint Slanted = sim::PlatenFromPattern(Settings, {2.0, 1.0});

    EXPECT_NEAR(Turned.x, 1.0 + std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(Turned.y, -1.0, 1e-12);
    EXPECT_NEAR(Slanted.x, 2.0, 1e-12);
    EXPECT_NEAR(Slanted.y, 1.0 + 2.0 * std::tan(18.0 * M_PI / 180.0), 1e-12);
}

TEST(SimTarget, ColumnsLeanWhileRowsStayLevel) {
    ClTargetSettings Settings;
    Settings.m_dColumnLean = 18.0;
    const ClPoint Right = sim::PlatenFromPattern(Settings, {2.0, 0.0});
    const ClPoint Below = sim::PlatenFromPattern(Settings, {2.0, 3.0});

    EXPECT_NEAR(Right.x, 2.0, 1e-12);
    EXPECT_NEAR(Right.y, 0.0, 1e-12);
    EXPECT_NEAR(Below.x, 2.0 + 3.0 * std::tan(18.0 * M_PI / 180.0), 1e-12);
    EXPECT_NEAR(Below.y, 3.0, 1e-12);
}

// Slant and lean at once, seen by an ideal scanner of 492.706 x 1009.287 dots per inch whose
// platen's middle is the middle of 390 x 1052 pixels.
TEST(SimTarget, ShearedDotsAreWhereTheMatrixPutsThem) {
    const ClScanner Scanner(1, ClScannerSettings());
    ClTargetSettings Settings;
    Settings.m_dRowSlant = 6.0;
    Settings.m_dColumnLean = -3.0;
    const ClCapture Capture = Target(Scanner, Settings);
    const std::vector<ClPoint> aPattern = sim::DotPattern();

    for (std::size_t n = 0; n < aPattern.size(); ++n) {
        const double x = aPattern[n].x + std::tan(-3.0 * M_PI / 180.0) * aPattern[n].y;
        const double y = aPattern[n].y + std::tan(6.0 * M_PI / 180.0) * aPattern[n].x;
        const ClBlob Blob(Capture.m_Raw, Capture.m_aDots[n], 230.0);
        EXPECT_NEAR(Blob.m_Centre.x, 195.0 + x * 492.706 / 25.4, 0.03);
        EXPECT_NEAR(Blob.m_Centre.y, 526.0 + y * 1009.287 / 25.4, 0.03);
    }
}

// On a plate turned by 30 degrees clockwise, right is (cos 30, sin 30) and below (-sin 30, cos 30).
TEST(SimTarget, BesideADotIsToldInThePatternsDirections) {
    ClTargetSettings Settings;
    Settings.m_dRotation = 30.0;
    Settings.m_dShiftX = 0.5;
    // Dot 37 is the pattern's middle: column 3, row 5.
    const ClPoint Right = sim::BesideDot(Settings, 37, 2.0, 0.0);
    const ClPoint Below = sim::BesideDot(Settings, 37, 2.0, 90.0);

    EXPECT_NEAR(Right.x, 0.5 + std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(Right.y, 1.0, 1e-12);
    EXPECT_NEAR(Below.x, 0.5 - 1.0, 1e-12);
    EXPECT_NEAR(Below.y, std::sqrt(3.0), 1e-12);
    EXPECT_THROWS(sim::BesideDot(Settings, -1, 1.0, 0.0), ClException, -35,
                  "sim: dots count from 0 to 74");
    EXPECT_THROWS(sim::BesideDot(Settings, 75, 1.0, 0.0), ClException, -35,
                  "sim: dots count from 0 to 74");
}

TEST(SimTarget, ScalesThePatternAndNotTheDots) {
    ClTargetSettings Settings;
    Settings.m_dScale = 1.02;
    const ClPoint Place = sim::PlatenFromPattern(Settings, {2.0, -4.0});
    sim::ClPlate Plate;
    const std::vector<ClPoint> aDots = sim::PaintDots(Plate, Settings);

    EXPECT_NEAR(Place.x, 2.04, 1e-12);
    EXPECT_NEAR(Place.y, -4.08, 1e-12);
    EXPECT_NEAR(aDots[1].y - aDots[0].y, 2.04, 1e-12);
    EXPECT_LT(Plate.Reflectance({aDots[0].x + 0.39, aDots[0].y}), 0.5);
    EXPECT_EQ(Plate.Reflectance({aDots[0].x + 0.42, aDots[0].y}), 1.0);
}

// A quarter of the diameter of 0.8 mm off on the right: the edge stands 0.2 mm from the middle. Of
// the disc pi r^2 a segment of r^2 (acos(1/2) - sqrt(3)/4) is lost.
TEST(SimTarget, AWornDotEndsAtItsEdge) {
    ClTargetSettings Settings;
    Settings.m_aWorn = {{37, 0.25, 0.0}};
    sim::ClPlate Plate;
    const std::vector<ClPoint> aDots = sim::PaintDots(Plate, Settings);
    const auto at = [&](int nDot, double dx, double dy) {
        const ClPoint& Dot = aDots[static_cast<std::size_t>(nDot)];
        return Plate.Reflectance({Dot.x + dx, Dot.y + dy});
    };
    double dArea = 0.0;
    for (double x = -0.5; x < 0.5; x += 0.01)
        for (double y = -0.5; y < 0.5; y += 0.01)
            dArea += at(37, x, y) < 1.0 - 0.5 * Settings.m_dContrast ? 0.01 * 0.01 : 0.0;

    EXPECT_NEAR(at(37, 0.17, 0.0), 0.24, 1e-6);
    EXPECT_EQ(at(37, 0.23, 0.0), 1.0);
    EXPECT_NEAR(at(37, -0.37, 0.0), 0.24, 1e-6);
    EXPECT_NEAR(at(36, 0.23, 0.0), 0.24, 1e-6);
    EXPECT_NEAR(dArea, 0.16 * (M_PI - std::acos(0.5) + 0.25 * std::sqrt(3.0)), 0.005);
}

TEST(SimTarget, MayBeCutOffByTheEdgeOfTheCapture) {
    const ClScanner Scanner(1, ClScannerSettings());
    ClTargetSettings Settings;
    Settings.m_dShiftX = 5.0;
    const ClCapture Capture = Target(Scanner, Settings);

    EXPECT_GT(Capture.m_aDots[74].x, Capture.m_Raw.m_nWidth);
    EXPECT_LT(Capture.m_aDots[0].x, Capture.m_Raw.m_nWidth);
}

TEST(SimTarget, RulesAreStraightInTheIdealImage) {
    const ClScanner Scanner(1, ClScannerSettings());
    const ClCapture Capture = sim::CaptureRuledPlate(Scanner, ClTargetSettings(), 1);

    // 9 vertical rules at -8 to 8 mm, 13 horizontal ones at -12 to 12 mm.
    ASSERT_EQ(Capture.m_aLines.size(), 9U + 13U);
    for (std::size_t n = 1; n < 8; ++n) {
        const double x = Capture.m_aLines[n].m_From.x;
        EXPECT_NEAR(x, 160.0 + (static_cast<double>(n) - 4.0) * 1000.0 / 25.4, 1e-9);
        // 260 is midway between two horizontal rules.
        EXPECT_NEAR(LineCentre(Capture.m_Ideal, x, 260, true, 230.0), x, 0.05);
    }
    for (std::size_t n = 10; n < 21; ++n) {
        const double y = Capture.m_aLines[n].m_From.y;
        EXPECT_NEAR(LineCentre(Capture.m_Ideal, y, 180, false, 230.0), y, 0.05);
    }
}

TEST(SimTarget, RulesBendInTheCaptureAsTheDistortionTells) {
    ClScannerSettings Settings;
    Settings.m_Distortion.m_dBow = 0.003;
    Settings.m_Distortion.m_dBarrel = -0.0003;
    const ClScanner Scanner(1, Settings);
    const ClCapture Capture = sim::CaptureRuledPlate(Scanner, ClTargetSettings(), 1);

    // The horizontal rule at y = 8 mm, looked at between the vertical ones.
    double dHighest = 0.0;
    double dLowest = 1e9;
    for (const double x : {-7.0, -3.0, 1.0, 5.0}) {
        const ClPoint Raw = Scanner.RawFromPlaten({x, 8.0});
        const ClPoint Nearest{std::floor(Raw.x + 0.5), Raw.y};
        const double dTrue = Scanner.RawFromPlaten({Scanner.PlatenFromRaw(Nearest).x, 8.0}).y;
        const double dFound =
            LineCentre(Capture.m_Raw, dTrue, static_cast<int>(Nearest.x), false, 230.0);
        EXPECT_NEAR(dFound, dTrue, 0.1);
        dHighest = std::max(dHighest, dFound);
        dLowest = std::min(dLowest, dFound);
    }
    EXPECT_GT(dHighest - dLowest, 0.5);
}

TEST(SimTarget, CrossingsAreNoDarkerThanTheRules) {
    const ClScanner Scanner(1, ClScannerSettings());
    const ClCapture Capture = sim::CaptureRuledPlate(Scanner, ClTargetSettings(), 1);
    const unsigned char nDarkest =
        *std::min_element(Capture.m_Raw.m_aPixels.begin(), Capture.m_Raw.m_aPixels.end());

    EXPECT_EQ(nDarkest, 55); // 230 * (1 - 0.76), rounded
}

TEST(SimTarget, RefusesSettingsOutOfRange) {
    sim::ClPlate Plate;
    ClTargetSettings Angle;
    Angle.m_dRowSlant = 45.0;
    ClTargetSettings Lean;
    Lean.m_dColumnLean = -45.0;
    ClTargetSettings Contrast;
    Contrast.m_dContrast = 1.1;
    ClTargetSettings Diameter;
    Diameter.m_dDotDiameter = 0.0;
    ClTargetSettings Spacing;
    Spacing.m_dLineSpacing = 0.05;

    EXPECT_THROWS(sim::PaintDots(Plate, Angle), ClException, -35,
                  "sim: an angle is not below 45 degrees");
    EXPECT_THROWS(sim::PaintDots(Plate, Lean), ClException, -35,
                  "sim: an angle is not below 45 degrees");
    EXPECT_THROWS(sim::PaintDots(Plate, Contrast), ClException, -35,
                  "sim: contrast is not from 0 to 1");
    EXPECT_THROWS(sim::PaintDots(Plate, Diameter), ClException, -35, "sim: a dot has up to 5 mm");
    EXPECT_THROWS(sim::PaintRules(Plate, Spacing), ClException, -35,
                  "sim: rules are too close or too thin");
    for (const double dScale : {0.49, 2.01, std::nan("")}) {
        ClTargetSettings Scale;
        Scale.m_dScale = dScale;
        EXPECT_THROWS(sim::PaintDots(Plate, Scale), ClException, -35,
                      "sim: a pattern is scaled by 0.5 to 2");
    }
    ClTargetSettings Worn;
    Worn.m_aWorn = {{75, 0.2, 0.0}};
    EXPECT_THROWS(sim::PaintDots(Plate, Worn), ClException, -35, "sim: dots count from 0 to 74");
    for (const sim::ClWornDot& Dot :
         {sim::ClWornDot{0, -0.1, 0.0}, {0, 1.1, 0.0}, {0, 0.2, HUGE_VAL}}) {
        Worn.m_aWorn = {Dot};
        EXPECT_THROWS(sim::PaintDots(Plate, Worn), ClException, -35,
                      "sim: a worn dot is out of range");
    }
}
