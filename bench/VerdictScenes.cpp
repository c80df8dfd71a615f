#include "bench/VerdictScenes.h"

#include "sim/Random.h"

#include <cmath>

namespace bench {

namespace {

using Scene = sim::ClTargetScene;
using Random = sim::ClRandom;

enum ESubject : std::uint64_t { eSubjectLaid = 81, eSubjectFault };

int AnyDot(Random& rRandom) {
    return rRandom.Integer(0, sim::g_nDots - 1);
}

double AnyHeading(Random& rRandom) {
    return rRandom.Uniform(0.0, 360.0);
}

void AddSpeck(Scene& rScene, int nDot, double dDistance, double dHeading, double dDiameter) {
    rScene.m_Dirt.m_aPlaced.push_back(
        {sim::BesideDot(rScene.m_Target, nDot, dDistance, dHeading), dDiameter, 0.76});
}

void StandIn(Scene& rScene, Random& rRandom) {
    const int nDot = AnyDot(rRandom);
    rScene.m_Target.m_aMissing.push_back(nDot);
    const double dDiameter = rRandom.Uniform(0.7, 0.9);
    const double dDistance = rRandom.Uniform(0.02, 0.66);
    AddSpeck(rScene, nDot, dDistance, AnyHeading(rRandom), dDiameter);
}

void TwoStandIns(Scene& rScene, Random& rRandom) {
    StandIn(rScene, rRandom);
    StandIn(rScene, rRandom);
}

void HiddenDot(Scene& rScene, Random& rRandom) {
    const double dDiameter = rRandom.Uniform(0.85, 1.0);
    const double dDistance = rRandom.Uniform(0.0, 0.2);
    AddSpeck(rScene, AnyDot(rRandom), dDistance, AnyHeading(rRandom), dDiameter);
}

void SpeckOnRim(Scene& rScene, Random& rRandom) {
    const double dDiameter = rRandom.Uniform(0.2, 0.55);
    const double dOverlap = rRandom.Uniform(0.05, 0.15);
    AddSpeck(rScene, AnyDot(rRandom), 0.5 * (sim::g_dDotDiameter + dDiameter) - dOverlap,
             AnyHeading(rRandom), dDiameter);
}

void WornDot(Scene& rScene, Random& rRandom) {
    const double dShare = rRandom.Uniform(0.05, 0.5);
    rScene.m_Target.m_aWorn.push_back({AnyDot(rRandom), dShare, AnyHeading(rRandom)});
}

void HairAcross(Scene& rScene, Random& rRandom) {
    const double dHalf = rRandom.Uniform(0.3, 1.5);
    const double dAside = rRandom.Around(0.0, 0.5);
    const double dAlong = rRandom.Around(0.0, 0.5);
    const double dAngle = AnyHeading(rRandom) * M_PI / 180.0;
    const double c = std::cos(dAngle);
    const double s = std::sin(dAngle);
    const sim::ClPoint Dot = sim::BesideDot(rScene.m_Target, AnyDot(rRandom), 0.0, 0.0);
    const sim::ClPoint Middle{Dot.x + c * dAlong - s * dAside, Dot.y + s * dAlong + c * dAside};
    sim::ClPlacedHair Hair;
    Hair.m_From = {Middle.x - c * dHalf, Middle.y - s * dHalf};
    Hair.m_To = {Middle.x + c * dHalf, Middle.y + s * dHalf};
    Hair.m_dWidth = rRandom.Uniform(0.03, 0.12);
    Hair.m_dDarkness = rRandom.Uniform(0.1, 0.8);
    rScene.m_Dirt.m_aPlacedHairs.push_back(Hair);
}

void Glare(Scene& rScene, Random& rRandom) {
    sim::ClPlacedGlare Spot;
    Spot.m_dDiameter = rRandom.Uniform(0.6, 4.0);
    Spot.m_dLight = rRandom.Uniform(0.1, 2.5);
    const double dDistance = rRandom.Uniform(0.0, 0.5 + 0.5 * Spot.m_dDiameter);
    Spot.m_Centre =
        sim::BesideDot(rScene.m_Target, AnyDot(rRandom), dDistance, AnyHeading(rRandom));
    rScene.m_Dirt.m_aGlares.push_back(Spot);
}

/// Away from the right one by 0.5 percent at least.
void WrongPitch(Scene& rScene, Random& rRandom) {
    const double dOff = rRandom.Uniform(0.005, 0.08);
    rScene.m_Target.m_dScale = rRandom.Integer(0, 1) == 0 ? 1.0 - dOff : 1.0 + dOff;
}

/// Dots all over the platen, which load or not, as the lattice falls on the pattern.
void Lattice(Scene& rScene, Random& rRandom) {
    constexpr double dReachX = 9.5;
    constexpr double dReachY = 12.8;
    for (int nDot = 0; nDot < sim::g_nDots; ++nDot)
        rScene.m_Target.m_aMissing.push_back(nDot);
    rScene.m_Target.m_dDotDiameter = 0.65;
    const double dPitchX = rRandom.Integer(16, 20) * 25.4 / sim::g_dRawDpiX;
    const double dPitchY = rRandom.Integer(30, 78) * 25.4 / sim::g_dRawDpiY;
    for (double x = -dReachX; x < dReachX; x += dPitchX)
        for (double y = -dReachY; y < dReachY; y += dPitchY)
            rScene.m_Target.m_aExtra.push_back({x, y});
}

void LayByHand(sim::ClTargetScene& rScene, Random Laid) {
    rScene.m_Target.m_dRotation = Laid.Around(0.0, 0.5);
    rScene.m_Target.m_dShiftX = Laid.Around(0.0, 0.5);
    rScene.m_Target.m_dShiftY = Laid.Around(0.0, 0.5);
    rScene.m_Target.m_dContrast = Laid.Uniform(0.70, 0.80);
    rScene.m_Dirt.m_nSpecks = Laid.Integer(1, 6);
    rScene.m_Dirt.m_dSpeckSize = 0.16;
}

} // namespace

const std::vector<ClFault>& Faults() {
    static const std::vector<ClFault> aFaults{
        {"none", [](Scene&, Random&) {}},
        {"rotated target",
         [](Scene& s, Random& r) { s.m_Target.m_dRotation = r.Around(0.0, 3.0); }},
        {"slanted rows", [](Scene& s, Random& r) { s.m_Target.m_dRowSlant = r.Around(0.0, 7.0); }},
        {"leaning columns",
         [](Scene& s, Random& r) { s.m_Target.m_dColumnLean = r.Around(0.0, 3.0); }},
        {"shifted target",
         [](Scene& s, Random& r) {
             s.m_Target.m_dShiftX = r.Around(0.0, 3.0);
             s.m_Target.m_dShiftY = r.Around(0.0, 2.5);
         }},
        {"strong barrel",
         [](Scene& s, Random& r) { s.m_Scanner.m_Distortion.m_dBarrel = r.Around(0.0, 0.0004); }},
        {"strong perspective",
         [](Scene& s, Random& r) {
             s.m_Scanner.m_Distortion.m_dTrapezoidX = r.Around(0.0, 0.002);
             s.m_Scanner.m_Distortion.m_dTrapezoidY = r.Around(0.0, 0.003);
         }},
        {"uneven light",
         [](Scene& s, Random& r) {
             s.m_Scanner.m_Light.m_dTiltX = r.Around(0.0, 0.2);
             s.m_Scanner.m_Light.m_dTiltY = r.Around(0.0, 0.2);
             s.m_Scanner.m_Light.m_dVignette = r.Uniform(0.0, 0.3);
             s.m_Scanner.m_Light.m_dCorners = r.Uniform(0.0, 0.4);
         }},
        {"dim or saturating light",
         [](Scene& s, Random& r) { s.m_Scanner.m_Light.m_dBright = r.Uniform(20.0, 330.0); }},
        {"blur",
         [](Scene& s, Random& r) {
             s.m_Scanner.m_Sensor.m_dBlurX = r.Uniform(0.5, 2.75);
             s.m_Scanner.m_Sensor.m_dBlurY = 2.0 * s.m_Scanner.m_Sensor.m_dBlurX;
         }},
        {"noise",
         [](Scene& s, Random& r) { s.m_Scanner.m_Sensor.m_dNoise = r.Uniform(1.0, 40.0); }},
        {"pale print", [](Scene& s, Random& r) { s.m_Target.m_dContrast = r.Uniform(0.04, 0.6); }},
        {"small or large dots",
         [](Scene& s, Random& r) { s.m_Target.m_dDotDiameter = r.Uniform(0.52, 1.03); }},
        {"dust",
         [](Scene& s, Random& r) {
             s.m_Dirt.m_nSpecks = r.Integer(10, 300);
             s.m_Dirt.m_dSpeckSize = 0.1;
         }},
        {"specks",
         [](Scene& s, Random& r) {
             s.m_Dirt.m_nSpecks = r.Integer(5, 60);
             s.m_Dirt.m_dSpeckSize = r.Uniform(0.2, 0.5);
         }},
        {"hairs", [](Scene& s, Random& r) { s.m_Dirt.m_nHairs = r.Integer(1, 3); }},
        {"hair across a dot", HairAcross},
        {"speck on a rim", SpeckOnRim},
        {"half-hidden dot", WornDot},
        {"glare", Glare},
        {"hidden dot", HiddenDot},
        {"stand-in", StandIn},
        {"two stand-ins", TwoStandIns},
        {"wrong pitch", WrongPitch},
        {"lattice", Lattice},
    };
    return aFaults;
}

sim::ClTargetScene FaultScene(const sim::ClScannerSettings& Scanner, const ClFault& Fault,
                              std::uint64_t nSeed) {
    Scene Scene;
    Scene.m_Scanner = Scanner;
    LayByHand(Scene, Random(nSeed, eSubjectLaid));
    Random Drawn(nSeed, eSubjectFault);
    Fault.m_pAdd(Scene, Drawn);
    return Scene;
}

} // namespace bench
