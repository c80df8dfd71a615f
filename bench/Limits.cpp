#include "bench/Limits.h"

#include "bench/Generation.h"
#include "sim/TargetCases.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench {

namespace {

/// One thing that is made worse step by step.
struct ClQuantity {
    const char* m_szName;
    std::vector<double> m_aSteps;
    void (*m_pSet)(sim::ClTargetScene& rScene, double dStep);
};

/// Dot 37 is the middle of the pattern.
void AddSpeck(sim::ClTargetScene& rScene, double dDistance, double dHeading, double dDiameter) {
    rScene.m_Dirt.m_aPlaced.push_back(
        {sim::BesideDot(rScene.m_Target, 37, dDistance, dHeading), dDiameter, 0.76});
}

/// A speck whose rim meets the dot's, overlapping by a tenth of a millimetre.
void AddSpeckOnRim(sim::ClTargetScene& rScene, double dHeading, double dDiameter) {
    AddSpeck(rScene, 0.5 * (sim::g_dDotDiameter + dDiameter) - 0.1, dHeading, dDiameter);
}

const std::vector<ClQuantity>& Quantities() {
    using Scene = sim::ClTargetScene;
    static const std::vector<ClQuantity> aQuantities{
        {"rotation of the target, degrees",
         {1.0, 2.0, 2.5, 3.0, 3.5, 4.0, 4.5, 5.0, 10.0},
         [](Scene& s, double d) { s.m_Target.m_dRotation = d; }},
        {"slant of its rows, degrees",
         {2.0, 4.0, 6.0, 6.5, 7.0, 7.5, 8.0, 8.5, 9.0, 9.5, 10.0, 15.0},
         [](Scene& s, double d) { s.m_Target.m_dRowSlant = d; }},
        {"lean of its columns, degrees",
         {1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 4.0, 5.0, 10.0},
         [](Scene& s, double d) { s.m_Target.m_dColumnLean = d; }},
        {"shift to the side, mm",
         {1.0, 2.0, 2.5, 3.0, 3.5, 4.0},
         [](Scene& s, double d) { s.m_Target.m_dShiftX = d; }},
        {"shift down, mm",
         {1.0, 2.0, 2.5, 3.0, 3.5, 4.0},
         [](Scene& s, double d) { s.m_Target.m_dShiftY = d; }},
        {"barrel distortion, 1e-4/mm^2",
         {1.0, 2.0, 4.0, 6.0, 8.0, 10.0},
         [](Scene& s, double d) { s.m_Scanner.m_Distortion.m_dBarrel = -d * 1e-4; }},
        {"noise, grey values",
         {4.0, 8.0, 16.0, 24.0, 32.0, 40.0, 48.0, 64.0, 80.0},
         [](Scene& s, double d) { s.m_Scanner.m_Sensor.m_dNoise = d; }},
        {"blur in x, and twice of it in y, pixels",
         {1.0, 1.5, 2.0, 2.25, 2.5, 2.75, 3.0, 4.0},
         [](Scene& s, double d) {
             s.m_Scanner.m_Sensor.m_dBlurX = d;
             s.m_Scanner.m_Sensor.m_dBlurY = 2.0 * d;
         }},
        {"contrast of the print",
         {0.5, 0.25, 0.1, 0.06, 0.05, 0.04, 0.035, 0.03, 0.025, 0.02},
         [](Scene& s, double d) { s.m_Target.m_dContrast = d; }},
        {"brightness of the platen, grey values",
         {120.0, 60.0, 40.0, 30.0, 20.0, 15.0, 10.0},
         [](Scene& s, double d) { s.m_Scanner.m_Light.m_dBright = d; }},
        {"diameter of the dots, mm",
         {0.50, 0.55, 0.60, 0.70, 0.90, 0.95, 1.00, 1.05, 1.10},
         [](Scene& s, double d) { s.m_Target.m_dDotDiameter = d; }},
        {"speck on the right rim of a dot, mm",
         {0.15, 0.2, 0.22, 0.25, 0.28, 0.3, 0.4, 0.8},
         [](Scene& s, double d) { AddSpeckOnRim(s, 0.0, d); }},
        {"speck on the lower rim of a dot, mm",
         {0.15, 0.2, 0.22, 0.25, 0.28, 0.3, 0.4, 0.8},
         [](Scene& s, double d) { AddSpeckOnRim(s, 90.0, d); }},
        {"speck on the lower right rim of a dot, mm",
         {0.2, 0.3, 0.4, 0.45, 0.5, 0.6, 0.8},
         [](Scene& s, double d) { AddSpeckOnRim(s, 45.0, d); }},
        {"dot hidden under dirt of 0.95 mm, off to the right by mm",
         {0.0, 0.05, 0.075, 0.1, 0.15, 0.2},
         [](Scene& s, double d) { AddSpeck(s, d, 0.0, 0.95); }},
        {"specks of up to 0.2 mm, anywhere",
         {20.0, 50.0, 100.0, 200.0, 400.0, 800.0},
         [](Scene& s, double d) { s.m_Dirt.m_nSpecks = static_cast<int>(d); }},
        {"specks of up to 0.5 mm, anywhere",
         {10.0, 20.0, 50.0, 100.0, 200.0},
         [](Scene& s, double d) {
             s.m_Dirt.m_nSpecks = static_cast<int>(d);
             s.m_Dirt.m_dSpeckSize = 0.5;
         }},
        {"hairs, anywhere",
         {1.0, 2.0, 4.0, 8.0},
         [](Scene& s, double d) { s.m_Dirt.m_nHairs = static_cast<int>(d); }},
        {"dot not printed, one of its size beside its place by mm",
         {0.1, 0.2, 0.4, 0.5, 0.58, 0.6, 0.61, 0.62, 0.63, 0.64, 0.66, 0.7},
         [](Scene& s, double d) {
             s.m_Target.m_aMissing = {37};
             AddSpeck(s, d, 90.0, sim::g_dDotDiameter);
         }},
    };
    return aQuantities;
}

/// What the captures of one step came to.
struct ClTally {
    void Add(const ClGeneration& Generated, const sim::ClCapture& Capture);
    void Print(double dStep) const;

    int m_nAccepted = 0;
    int m_nWrong = 0;
    int m_nUnloadable = 0; ///< of both: a block that does not load
    double m_dMaxX = 0.0;  ///< of the accepted, wrong ones included
    double m_dMaxY = 0.0;
    std::map<std::string, int> m_aRefusals;
};

void ClTally::Add(const ClGeneration& Generated, const sim::ClCapture& Capture) {
    if (Generated.m_nStatus != 0) {
        ++m_aRefusals[std::to_string(Generated.m_nStatus) + " " + Generated.m_sWords];
        return;
    }
    const ClPointErrors Errors = ErrorsOf(Generated.m_aActual, Capture.m_aDots);
    ++(IsWrong(Errors) ? m_nWrong : m_nAccepted);
    m_nUnloadable += Loads(Generated.m_aBlock) ? 0 : 1;
    m_dMaxX = std::max(m_dMaxX, Errors.m_dMaxX);
    m_dMaxY = std::max(m_dMaxY, Errors.m_dMaxY);
}

void ClTally::Print(double dStep) const {
    std::printf("%10g %9d %7d %11d", dStep, m_nAccepted, m_nWrong, m_nUnloadable);
    if (m_nAccepted + m_nWrong > 0)
        std::printf(" %9.2f %9.2f", m_dMaxX, m_dMaxY);
    else
        std::printf(" %9s %9s", "-", "-");
    for (const auto& [sWords, nCount] : m_aRefusals)
        std::printf("   %d: %s", nCount, sWords.c_str());
    std::printf("\n");
}

/// The target laid straight, so that a step is what its number tells; a scanner's own rotation and
/// slant come on top.
sim::ClCapture CaptureStep(const ClQuantity& Quantity, double dStep, unsigned long nSeed) {
    sim::ClTargetScene Scene;
    Scene.m_Scanner = sim::ClScanner::DrawSettings(nSeed);
    Quantity.m_pSet(Scene, dStep);
    return sim::CaptureTarget(sim::ClScanner(nSeed, Scene.m_Scanner), Scene.m_Target, Scene.m_Dirt,
                              nSeed);
}

/// The lowest and the highest of a series.
struct ClRange {
    void Add(double d) {
        m_dLowest = std::min(m_dLowest, d);
        m_dHighest = std::max(m_dHighest, d);
    }
    double m_dLowest = 100.0;
    double m_dHighest = 0.0;
};

double Checked(const ClGeneration& Generated, const sim::ClRaster& Raw) {
    return CheckEfts(Generated.m_aBlock, Correct(Generated.m_aBlock, Raw));
}

/// What the accuracy check makes of a calibration with a wrong point.
void PrintChecks(const sim::ClTargetCaseEntry& Case, unsigned long nScanners,
                 unsigned long nFirst) {
    ClRange Same;
    ClRange Second;
    for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed) {
        const sim::ClScanner Scanner(nSeed);
        const sim::ClCapture Capture = sim::CaptureTargetCase(Scanner, Case.m_eCase, 1);
        const ClGeneration Generated = Generate(Capture.m_Raw);
        if (Generated.m_nStatus != 0)
            continue;
        Same.Add(Checked(Generated, Capture.m_Raw));
        Second.Add(Checked(Generated, sim::CaptureKind(Scanner, sim::EKind::eTarget, 2).m_Raw));
    }
    std::printf("%s: %s\n    check of this capture %.3f to %.3f, of a clean one %.3f to %.3f\n",
                Case.m_szName, Case.m_szDescription, Same.m_dLowest, Same.m_dHighest,
                Second.m_dLowest, Second.m_dHighest);
}

} // namespace

int PrintLimits(unsigned long nScanners, unsigned long nFirst) {
    for (const ClQuantity& Quantity : Quantities()) {
        std::printf("%s\n%10s %9s %7s %11s %9s %9s   refused\n", Quantity.m_szName, "", "accepted",
                    "wrong", "do not load", "max x", "max y");
        for (const double dStep : Quantity.m_aSteps) {
            ClTally Tally;
            for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed) {
                const sim::ClCapture Capture = CaptureStep(Quantity, dStep, nSeed);
                Tally.Add(Generate(Capture.m_Raw), Capture);
            }
            Tally.Print(dStep);
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    for (const sim::ClTargetCaseEntry& Case : sim::g_aTargetCases)
        if (Case.m_eOutcome == sim::EOutcome::eMisled)
            PrintChecks(Case, nScanners, nFirst);
    return 0;
}

} // namespace bench
