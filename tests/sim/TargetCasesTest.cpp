#include "sim/TargetCases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

using sim::ClCapture;
using sim::ClPoint;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClScannerSettings;
using sim::ClTargetCaseEntry;
using sim::ClTargetScene;
using sim::EOutcome;
using sim::ETargetCase;

namespace {

/// The case before an ideal scanner: even light of 230, no blur, no noise.
ClCapture Ideal(ETargetCase eCase, std::uint64_t nSeed = 1) {
    ClTargetScene Scene = sim::TargetScene(ClScannerSettings(), eCase, nSeed);
    return sim::CaptureTarget(ClScanner(1, Scene.m_Scanner), Scene.m_Target, Scene.m_Dirt, nSeed);
}

struct ClRegion {
    int m_nArea = 0;
    ClPoint m_Centre;
};

ClRegion TakeRegion(ClRaster& Raster, int x, int y, int nLimit) {
    ClRegion Region;
    std::vector<std::pair<int, int>> aOpen{{x, y}};
    while (!aOpen.empty()) {
        const auto [i, j] = aOpen.back();
        aOpen.pop_back();
        if (i < 0 || j < 0 || i >= Raster.m_nWidth || j >= Raster.m_nHeight ||
            Raster.At(i, j) >= nLimit)
            continue;
        Raster.At(i, j) = 255;
        ++Region.m_nArea;
        Region.m_Centre.x += i;
        Region.m_Centre.y += j;
        for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
            aOpen.emplace_back(i + dx, j + dy);
    }
    Region.m_Centre.x /= Region.m_nArea;
    Region.m_Centre.y /= Region.m_nArea;
    return Region;
}

/// The dark regions of at least a given area, in the order of a scan.
std::vector<ClRegion> Regions(ClRaster Raster, int nLimit, int nLeastArea = 50) {
    std::vector<ClRegion> aRegions;
    for (int y = 0; y < Raster.m_nHeight; ++y)
        for (int x = 0; x < Raster.m_nWidth; ++x) {
            if (Raster.At(x, y) >= nLimit)
                continue;
            const ClRegion Region = TakeRegion(Raster, x, y, nLimit);
            if (Region.m_nArea >= nLeastArea)
                aRegions.push_back(Region);
        }
    return aRegions;
}

/// How far the nearest region lies from a place, pixels.
double Nearest(const std::vector<ClRegion>& aRegions, const ClPoint& Place) {
    double dNearest = 1e9;
    for (const ClRegion& Region : aRegions)
        dNearest = std::min(dNearest,
                            std::hypot(Region.m_Centre.x - Place.x, Region.m_Centre.y - Place.y));
    return dNearest;
}

double SlopeDegrees(const ClPoint& From, const ClPoint& To) {
    return std::atan2(To.y - From.y, To.x - From.x) * 180.0 / M_PI;
}

} // namespace

TEST(SimTargetCases, StandInTheirOwnOrderWithNamesOfTheirOwn) {
    std::set<std::string> aNames;
    int nIndex = 0;
    for (const ClTargetCaseEntry& Entry : sim::g_aTargetCases) {
        EXPECT_EQ(static_cast<int>(Entry.m_eCase), nIndex++);
        EXPECT_STREQ(sim::TargetCaseName(Entry.m_eCase), Entry.m_szName);
        aNames.insert(Entry.m_szName);
        ETargetCase eFound = ETargetCase::ePlain;
        EXPECT_TRUE(sim::TargetCaseFromName(Entry.m_szName, eFound));
        EXPECT_EQ(eFound, Entry.m_eCase);
    }
    EXPECT_EQ(aNames.size(), sim::g_aTargetCases.size());
}

TEST(SimTargetCases, UnknownNamesAreNoCase) {
    ETargetCase eCase = ETargetCase::eDust;

    EXPECT_FALSE(sim::TargetCaseFromName("thumb", eCase));
    EXPECT_FALSE(sim::TargetCaseFromName("", eCase));
    EXPECT_EQ(eCase, ETargetCase::eDust);
}

TEST(SimTargetCases, OnlyRefusalsHaveWords) {
    for (const ClTargetCaseEntry& Entry : sim::g_aTargetCases)
        EXPECT_EQ(Entry.m_eOutcome == EOutcome::eRefused, *Entry.m_szRefusal != '\0')
            << Entry.m_szName;
}

TEST(SimTargetCases, AreTheSameForASeed) {
    const ClScanner Scanner(4);
    const auto Capture = [&](std::uint64_t nSeed) {
        return sim::CaptureTargetCase(Scanner, ETargetCase::eSpeckBeside, nSeed).m_Raw.m_aPixels;
    };

    EXPECT_EQ(Capture(3), Capture(3));
    EXPECT_NE(Capture(3), Capture(4));
}

TEST(SimTargetCases, KeepTheScannersFrame) {
    const ClScanner Scanner(4);
    for (const ClTargetCaseEntry& Entry : sim::g_aTargetCases) {
        const ClTargetScene Scene = sim::TargetScene(Scanner.Settings(), Entry.m_eCase, 1);
        EXPECT_EQ(Scene.m_Scanner.m_nRawWidth, Scanner.Settings().m_nRawWidth) << Entry.m_szName;
        EXPECT_EQ(Scene.m_Scanner.m_nRawHeight, Scanner.Settings().m_nRawHeight);
    }
}

// At half the darkness of a dot an ideal capture falls into one region for each separate mark.
TEST(SimTargetCases, HaveTheMarksThatTheirNamesTell) {
    const auto Count = [](ETargetCase eCase) { return Regions(Ideal(eCase).m_Raw, 140).size(); };

    EXPECT_EQ(Count(ETargetCase::ePlain), 75U);
    EXPECT_EQ(Count(ETargetCase::eDust), 75U);
    EXPECT_EQ(Count(ETargetCase::eSpeckBeside), 76U);
    EXPECT_EQ(Count(ETargetCase::eSpeckBetween), 76U);
    EXPECT_EQ(Count(ETargetCase::eExtraDot), 76U);
    EXPECT_EQ(Count(ETargetCase::eFilledCorner), 77U);
    EXPECT_EQ(Count(ETargetCase::eMissingDot), 74U);
    EXPECT_EQ(Count(ETargetCase::eMissingCorner), 74U);
    EXPECT_EQ(Count(ETargetCase::eMissingColumn), 65U);
    EXPECT_EQ(Count(ETargetCase::eBridge), 74U);
    EXPECT_EQ(Count(ETargetCase::eBlot), 75U);
    EXPECT_EQ(Count(ETargetCase::eBlank), 0U);
    EXPECT_EQ(Count(ETargetCase::eSpeckTouching), 75U);
    EXPECT_EQ(Count(ETargetCase::eHiddenDot), 75U);
    EXPECT_EQ(Count(ETargetCase::eStandIn), 75U);
    EXPECT_EQ(Count(ETargetCase::eStandInFar), 75U);
    EXPECT_EQ(Count(ETargetCase::eWornDot), 75U);
    EXPECT_EQ(Count(ETargetCase::eHalfHidden), 75U);
    EXPECT_EQ(Count(ETargetCase::eHairEnd), 75U);
    EXPECT_EQ(Count(ETargetCase::eHairAcross), 75U);
    EXPECT_EQ(Count(ETargetCase::eGlareBeside), 75U);
    EXPECT_EQ(Count(ETargetCase::eGlareSpot), 75U);
    EXPECT_EQ(Count(ETargetCase::eNarrowPitch), 75U);
    EXPECT_EQ(Count(ETargetCase::eWidePitch), 75U);
}

TEST(SimTargetCases, AcceptedOnesShowADotAtEachTrueCentre) {
    for (const ClTargetCaseEntry& Entry : sim::g_aTargetCases) {
        if (Entry.m_eOutcome != EOutcome::eAccepted)
            continue;
        const ClTargetScene Scene = sim::TargetScene(ClScannerSettings(), Entry.m_eCase, 1);
        const ClCapture Capture = Ideal(Entry.m_eCase);
        const double dBright = std::min(255.0, Scene.m_Scanner.m_Light.m_dBright);
        const int nLimit = static_cast<int>(
            Scene.m_Scanner.m_Light.m_dBright * (1.0 - Scene.m_Target.m_dContrast) + 0.1 * dBright);
        const auto aRegions = Regions(Capture.m_Raw, nLimit, 150);
        for (const ClPoint& Dot : Capture.m_aDots)
            EXPECT_LT(Nearest(aRegions, Dot), 0.6)
                << Entry.m_szName << " " << Dot.x << " " << Dot.y;
    }
}

// In millimetres, from the pixel positions of an ideal scanner: the slope of the first row's ends
// (dots 0 and 65) and the lean of the middle column (dots 32 and 42).
TEST(SimTargetCases, LieAsTheyTell) {
    const auto Millimetres = [](const ClPoint& Raw) {
        return ClPoint{Raw.x * 25.4 / 492.706, Raw.y * 25.4 / 1009.287};
    };
    const auto Slope = [&](ETargetCase eCase) {
        const ClCapture Capture = Ideal(eCase);
        return SlopeDegrees(Millimetres(Capture.m_aDots[0]), Millimetres(Capture.m_aDots[65]));
    };
    const auto Lean = [&](ETargetCase eCase) {
        const ClCapture Capture = Ideal(eCase);
        return 90.0 -
               SlopeDegrees(Millimetres(Capture.m_aDots[32]), Millimetres(Capture.m_aDots[42]));
    };

    EXPECT_NEAR(std::fabs(Slope(ETargetCase::eRotated)), 1.5, 1e-9);
    EXPECT_NEAR(std::fabs(Slope(ETargetCase::eRotatedFar)), 6.0, 1e-9);
    EXPECT_NEAR(std::fabs(Slope(ETargetCase::eRotatedWildly)), 30.0, 1e-9);
    EXPECT_NEAR(std::fabs(Slope(ETargetCase::eSlanted)), 5.0, 1e-9);
    EXPECT_NEAR(Lean(ETargetCase::eSlanted), 0.0, 1e-9);
    EXPECT_NEAR(std::fabs(Slope(ETargetCase::eSlantedFar)), 8.3, 1e-9);
    EXPECT_NEAR(std::fabs(Lean(ETargetCase::eLeaning)), 1.5, 1e-9);
    EXPECT_NEAR(Slope(ETargetCase::eLeaning), 0.0, 1e-9);
    EXPECT_NEAR(std::fabs(Lean(ETargetCase::eLeaningFar)), 6.0, 1e-9);
}

// In millimetres between the ends of the first row, six pitches apart.
TEST(SimTargetCases, HaveThePitchThatTheirNamesTell) {
    const auto Pitch = [](ETargetCase eCase) {
        const ClCapture Capture = Ideal(eCase);
        return (Capture.m_aDots[65].x - Capture.m_aDots[0].x) / 6.0 * 25.4 / 492.706;
    };

    EXPECT_NEAR(Pitch(ETargetCase::ePlain), 2.0, 1e-9);
    EXPECT_NEAR(Pitch(ETargetCase::eNarrowPitch), 1.96, 1e-9);
    EXPECT_NEAR(Pitch(ETargetCase::eWidePitch), 2.04, 1e-9);
}

TEST(SimTargetCases, CutOffOnesLoseDotsAtTheEdge) {
    const ClCapture Side = Ideal(ETargetCase::eCutOffSide);
    const ClCapture Bottom = Ideal(ETargetCase::eCutOffBottom);
    const auto Inside = [](const ClCapture& Capture) {
        return std::count_if(Capture.m_aDots.begin(), Capture.m_aDots.end(), [&](const ClPoint& p) {
            return p.x > 0 && p.y > 0 && p.x < Capture.m_Raw.m_nWidth &&
                   p.y < Capture.m_Raw.m_nHeight;
        });
    };

    EXPECT_EQ(Inside(Side), 65);   // a column of 10
    EXPECT_EQ(Inside(Bottom), 70); // the row of 5; the edge runs through the one above
}

TEST(SimTargetCases, ScannersChangeInWhatTheCaseIsAboutOnly) {
    const ClScannerSettings Drawn = ClScanner::DrawSettings(6);
    const auto Settings = [&](ETargetCase eCase) {
        return sim::TargetScene(Drawn, eCase, 1).m_Scanner;
    };

    EXPECT_EQ(Settings(ETargetCase::eDim).m_Light.m_dBright, 75.0);
    EXPECT_EQ(Settings(ETargetCase::eDim).m_Sensor.m_dNoise, Drawn.m_Sensor.m_dNoise);
    EXPECT_EQ(Settings(ETargetCase::eNoisy).m_Sensor.m_dNoise, 8.0);
    EXPECT_EQ(Settings(ETargetCase::eNoisy).m_Light.m_dBright, Drawn.m_Light.m_dBright);
    EXPECT_EQ(Settings(ETargetCase::eBlurred).m_Sensor.m_dBlurY, 3.0);
    EXPECT_EQ(Settings(ETargetCase::eBarrel).m_Distortion.m_dBarrel, -0.0003);
    EXPECT_EQ(Settings(ETargetCase::eBarrel).m_Distortion.m_dRotation,
              Drawn.m_Distortion.m_dRotation);
    EXPECT_EQ(Settings(ETargetCase::ePlain).m_Distortion.m_dBarrel, Drawn.m_Distortion.m_dBarrel);
}

// Half the light at the edges' middles or less, against the middle.
TEST(SimTargetCases, UnevenLightFallsOffToHalf) {
    const ClTargetScene Scene = sim::TargetScene(ClScannerSettings(), ETargetCase::eUnevenLight, 1);
    const sim::ClLight Light(Scene.m_Scanner.m_Light);
    double dDarkest = 1e9;
    for (const double u : {-1.0, 1.0})
        for (const double v : {-1.0, 0.0, 1.0})
            dDarkest = std::min(dDarkest, Light.At(u, v));

    EXPECT_LT(dDarkest / Light.At(0.0, 0.0), 0.5);
}
