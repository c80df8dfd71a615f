#include "bench/FingerTables.h"
#include "bench/FingerTally.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace bench {

namespace {

struct ClScene {
    sim::ClScannerSettings m_Scanner;
    std::vector<sim::ClFingerSettings> m_aFingers;
    sim::ClDirtSettings m_Dirt;
};

/// One thing that is changed step by step.
struct ClSeries {
    const char* m_szName;
    std::vector<double> m_aSteps;
    void (*m_pSet)(ClScene& rScene, double dStep);
};

/// A clean platen with a finger on it that is nothing special.
ClScene Plain(std::uint64_t nSeed) {
    ClScene Scene;
    Scene.m_Scanner = sim::ClScanner::DrawSettings(nSeed);
    sim::ClFingerSettings Finger;
    Finger.m_ePattern = static_cast<sim::EPattern>(nSeed % 4);
    Finger.m_Centre = {0.0, 0.6};
    Finger.m_dContrast = 0.88;
    Scene.m_aFingers.push_back(Finger);
    return Scene;
}

/// On the platen left free by the plain finger, in the part of it that counts for the dirt level.
constexpr sim::ClPoint cFreePlace{6.2, -9.6};

/// Two narrow fingers side by side.
void LayTwo(ClScene& rScene, double dGap) {
    rScene.m_aFingers[0].m_dHalfWidth = 3.3;
    rScene.m_aFingers[0].m_dHalfHeight = 7.5;
    rScene.m_aFingers.push_back(rScene.m_aFingers[0]);
    rScene.m_aFingers[0].m_Centre.x = -3.3 - 0.5 * dGap;
    rScene.m_aFingers[1].m_Centre.x = 3.3 + 0.5 * dGap;
}

std::vector<ClSeries> SkinSeries() {
    return {
        {"dryness",
         {0.0, 0.2, 0.4, 0.6, 0.8, 1.0},
         [](ClScene& s, double d) { s.m_aFingers[0].m_dDryness = d; }},
        {"wetness",
         {0.0, 0.2, 0.4, 0.6, 0.8, 1.0},
         [](ClScene& s, double d) { s.m_aFingers[0].m_dWetness = d; }},
        {"contrast: share of the light that a ridge takes",
         {0.9, 0.7, 0.5, 0.45, 0.4, 0.35, 0.3, 0.25, 0.2, 0.15, 0.1, 0.05},
         [](ClScene& s, double d) { s.m_aFingers[0].m_dContrast = d; }},
        {"pressure",
         {1.5, 1.25, 1.0, 0.75, 0.5},
         [](ClScene& s, double d) { s.m_aFingers[0].m_dPressure = d; }},
    };
}

std::vector<ClSeries> PlaceSeries() {
    return {
        {"middle of the finger, mm below that of the platen",
         {0.0, 3.0, 6.0, 9.0, 12.0, 15.0, 17.0, 18.0, 19.0, 20.0, 21.0},
         [](ClScene& s, double d) { s.m_aFingers[0].m_Centre.y = d; }},
        {"middle of the finger, mm beside that of the platen",
         {0.0, 3.0, 6.0, 8.0, 10.0, 11.0, 12.0, 13.0},
         [](ClScene& s, double d) { s.m_aFingers[0].m_Centre.x = d; }},
        {"half the finger's width, mm; half its height is 1.45 times of it",
         {1.25, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 10.0},
         [](ClScene& s, double d) {
             s.m_aFingers[0].m_dHalfWidth = d;
             s.m_aFingers[0].m_dHalfHeight = 1.45 * d;
         }},
        {"two fingers, mm between them", {0.0, 0.5, 1.0, 1.5, 2.0, 3.0}, LayTwo},
    };
}

std::vector<ClSeries> DirtSeries() {
    return {
        {"specks of up to 0.2 mm, anywhere",
         {0.0, 10.0, 20.0, 50.0, 100.0, 200.0, 400.0},
         [](ClScene& s, double d) { s.m_Dirt.m_nSpecks = static_cast<int>(d); }},
        {"largest of 30 specks anywhere, mm",
         {0.1, 0.2, 0.4, 0.6, 0.8, 1.2, 1.6},
         [](ClScene& s, double d) {
             s.m_Dirt.m_nSpecks = 30;
             s.m_Dirt.m_dSpeckSize = d;
         }},
        {"one speck on the free platen, mm",
         {0.0, 0.1, 0.2, 0.3, 0.4, 0.6, 0.8, 1.0, 1.5},
         [](ClScene& s, double d) {
             if (d > 0.0)
                 s.m_Dirt.m_aPlaced.push_back({cFreePlace, d, 0.8});
         }},
        {"darkness of a speck of 0.4 mm on the free platen",
         {0.05, 0.1, 0.2, 0.4, 0.6, 0.8, 1.0},
         [](ClScene& s, double d) {
             s.m_Dirt.m_aPlaced.push_back({cFreePlace, 0.4, d});
         }},
        {"one speck of 0.4 mm, mm inward from the upper right corner of the free platen",
         {0.0, 0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 6.0},
         [](ClScene& s, double d) {
             s.m_Dirt.m_aPlaced.push_back(
                 {{cFreePlace.x + 1.0 - 0.6 * d, cFreePlace.y - 1.0 + 0.8 * d}, 0.4, 0.8});
         }},
        {"hairs",
         {0.0, 2.0, 4.0, 8.0},
         [](ClScene& s, double d) { s.m_Dirt.m_nHairs = static_cast<int>(d); }},
        {"smudges",
         {0.0, 5.0, 20.0},
         [](ClScene& s, double d) { s.m_Dirt.m_nSmudges = static_cast<int>(d); }},
        {"empty platen, specks of up to 0.2 mm",
         {0.0, 20.0, 100.0, 200.0, 300.0, 400.0, 800.0, 1600.0},
         [](ClScene& s, double d) {
             s.m_aFingers.clear();
             s.m_Dirt.m_nSpecks = static_cast<int>(d);
         }},
    };
}

std::vector<ClSeries> LightSeries() {
    return {
        {"brightness of the platen, grey values",
         {60.0, 100.0, 120.0, 160.0, 190.0, 200.0, 205.0, 210.0, 215.0, 220.0, 230.0, 240.0, 245.0,
          250.0, 255.0, 260.0, 300.0},
         [](ClScene& s, double d) { s.m_Scanner.m_Light.m_dBright = d; }},
        {"light lost from the middle to the left edge, and gained to the right",
         {0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6},
         [](ClScene& s, double d) { s.m_Scanner.m_Light.m_dTiltX = d; }},
        {"the same on an empty platen",
         {0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6},
         [](ClScene& s, double d) {
             s.m_aFingers.clear();
             s.m_Scanner.m_Light.m_dTiltX = d;
         }},
    };
}

/// The library's handle depends on the geometry of a scanner, which no series changes.
void MeasureStep(const ClSeries& One, double dStep, const ClFingerScanner& Finger,
                 ClFingerTally& rTally) {
    const std::uint64_t nSeed = Finger.Scanner().Seed();
    ClScene Scene = Plain(nSeed);
    One.m_pSet(Scene, dStep);
    const sim::ClScanner Scanner(nSeed, Scene.m_Scanner);
    rTally.Measure(Finger, sim::CaptureFingers(Scanner, Scene.m_aFingers, Scene.m_Dirt, nSeed));
}

void PrintOne(const ClSeries& One, const std::vector<std::unique_ptr<ClFingerScanner>>& aScanners) {
    ClFingerTally::PrintHead(One.m_szName);
    for (const double dStep : One.m_aSteps) {
        ClFingerTally Tally;
        for (const auto& pFinger : aScanners)
            MeasureStep(One, dStep, *pFinger, Tally);
        char szStep[32];
        std::snprintf(szStep, sizeof szStep, "%g", dStep);
        Tally.Print(szStep);
    }
    std::printf("\n");
}

} // namespace

void PrintSeries(unsigned long nScanners, unsigned long nFirst) {
    std::vector<std::unique_ptr<ClFingerScanner>> aScanners;
    for (unsigned long n = 0; n < nScanners; ++n)
        aScanners.push_back(std::make_unique<ClFingerScanner>(sim::ClScanner(nFirst + n)));
    for (const auto& aGroup : {SkinSeries(), PlaceSeries(), DirtSeries(), LightSeries()})
        for (const ClSeries& One : aGroup)
            PrintOne(One, aScanners);
}

} // namespace bench
