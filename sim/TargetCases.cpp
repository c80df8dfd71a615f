#include "sim/TargetCases.h"

#include "sim/Random.h"

namespace sim {

namespace {

enum ESubject : std::uint64_t { eSubjectCase = 71 };

constexpr int g_nLastRow = 9; ///< the last row that has all seven dots

double Side(ClRandom& Random) {
    return Random.Integer(0, 1) == 0 ? -1.0 : 1.0;
}

/// A dot that has all its eight neighbours.
int InnerDot(ClRandom& Random) {
    const int nColumn = Random.Integer(1, 5);
    const int nRow = Random.Integer(1, g_nLastRow - 1);
    return g_aColumnLengths[0] + (nColumn - 1) * g_aColumnLengths[1] + nRow;
}

/// Between the directions of rows and columns.
double Diagonal(ClRandom& Random) {
    return 45.0 + 90.0 * Random.Integer(0, 3);
}

void AddHair(ClTargetScene& Scene, int nDot, double dBefore, double dBehind, double dHeading) {
    ClPlacedHair Hair;
    Hair.m_From = BesideDot(Scene.m_Target, nDot, -dBefore, dHeading);
    Hair.m_To = BesideDot(Scene.m_Target, nDot, dBehind, dHeading);
    Scene.m_Dirt.m_aPlacedHairs.push_back(Hair);
}

void AddGlare(ClTargetScene& Scene, int nDot, double dDistance, double dHeading, double dLight) {
    Scene.m_Dirt.m_aGlares.push_back(
        {BesideDot(Scene.m_Target, nDot, dDistance, dHeading), 1.6, dLight});
}

void AddSpeck(ClTargetScene& Scene, int nDot, double dDistance, double dHeading, double dDiameter) {
    ClPlacedSpeck Speck;
    Speck.m_Centre = BesideDot(Scene.m_Target, nDot, dDistance, dHeading);
    Speck.m_dDiameter = dDiameter;
    Speck.m_dDarkness = Scene.m_Target.m_dContrast;
    Scene.m_Dirt.m_aPlaced.push_back(Speck);
}

void LayByHand(ClTargetSettings& Target, ClRandom& Random) {
    Target.m_dRotation = Random.Around(0.0, 0.5);
    Target.m_dShiftX = Random.Around(0.0, 0.5);
    Target.m_dShiftY = Random.Around(0.0, 0.5);
}

/// How the plate lies.
void Lay(ClTargetSettings& Target, ETargetCase eCase, ClRandom& Random) {
    const double dSide = Side(Random);
    switch (eCase) {
    case ETargetCase::eLaid:
        return LayByHand(Target, Random);
    case ETargetCase::eRotated:
        Target.m_dRotation = 1.5 * dSide;
        break;
    case ETargetCase::eRotatedFar:
        Target.m_dRotation = 6.0 * dSide;
        break;
    case ETargetCase::eRotatedWildly:
        Target.m_dRotation = 30.0 * dSide;
        break;
    case ETargetCase::eSlanted:
        Target.m_dRowSlant = 5.0 * dSide;
        break;
    case ETargetCase::eSlantedFar:
        Target.m_dRowSlant = 8.3 * dSide;
        break;
    case ETargetCase::eLeaning:
        Target.m_dColumnLean = 1.5 * dSide;
        break;
    case ETargetCase::eLeaningFar:
        Target.m_dColumnLean = 6.0 * dSide;
        break;
    case ETargetCase::eShifted:
        Target.m_dShiftX = 1.5 * dSide;
        Target.m_dShiftY = 1.5 * Side(Random);
        break;
    case ETargetCase::eCutOffSide:
        Target.m_dShiftX = 5.0 * dSide;
        break;
    case ETargetCase::eCutOffBottom:
        Target.m_dShiftY = 5.0;
        break;
    default:
        break;
    }
}

/// How the plate is printed.
void Print(ClTargetSettings& Target, ETargetCase eCase, ClRandom& Random) {
    switch (eCase) {
    case ETargetCase::ePale:
        Target.m_dContrast = 0.25;
        break;
    case ETargetCase::eFaint:
        Target.m_dContrast = 0.02;
        break;
    case ETargetCase::eBlank:
        Target.m_dContrast = 0.0;
        break;
    case ETargetCase::eSmallDots:
        Target.m_dDotDiameter = 0.4;
        break;
    case ETargetCase::eLargeDots:
        Target.m_dDotDiameter = 1.2;
        break;
    case ETargetCase::eMissingDot:
    case ETargetCase::eStandIn:
    case ETargetCase::eStandInFar:
        Target.m_aMissing = {InnerDot(Random)};
        break;
    case ETargetCase::eMissingCorner:
        Target.m_aMissing = {Random.Integer(0, 1) == 0 ? 0 : g_nDots - 1};
        break;
    case ETargetCase::eMissingColumn:
        for (int nDot = 0; nDot < g_aColumnLengths[0]; ++nDot)
            Target.m_aMissing.push_back(nDot);
        break;
    case ETargetCase::eExtraDot:
        Target.m_aExtra = {{4.0 * g_dPitch * Side(Random), Random.Integer(-4, 4) * g_dPitch}};
        break;
    case ETargetCase::eFilledCorner:
        Target.m_aExtra = {{-3.0 * g_dPitch, 5.0 * g_dPitch}, {3.0 * g_dPitch, 5.0 * g_dPitch}};
        break;
    case ETargetCase::eWornDot:
        Target.m_aWorn = {{InnerDot(Random), 0.1, Diagonal(Random)}};
        break;
    case ETargetCase::eHalfHidden:
        Target.m_aWorn = {{InnerDot(Random), 0.39, Diagonal(Random)}};
        break;
    case ETargetCase::eNarrowPitch:
        Target.m_dScale = 0.98;
        break;
    case ETargetCase::eWidePitch:
        Target.m_dScale = 1.02;
        break;
    default:
        break;
    }
}

/// What lies on the plate that is not printed.
void Soil(ClTargetScene& Scene, ETargetCase eCase, ClRandom& Random) {
    const double dHeading = Random.Uniform(0.0, 360.0);
    const double dAlongRow = Random.Integer(0, 1) * 180.0;
    const double dAlongColumn = 90.0 + dAlongRow;
    const double dRadius = 0.5 * Scene.m_Target.m_dDotDiameter;
    switch (eCase) {
    case ETargetCase::eDust:
        Scene.m_Dirt.m_nSpecks = 300;
        Scene.m_Dirt.m_dSpeckSize = 0.06;
        break;
    case ETargetCase::eSpeckBeside:
        AddSpeck(Scene, InnerDot(Random), dRadius + 0.35, dHeading, 0.3);
        break;
    case ETargetCase::eSpeckBetween:
        AddSpeck(Scene, InnerDot(Random), 0.7071067811865476 * g_dPitch, 45.0, 0.8);
        break;
    case ETargetCase::eBridge:
        AddSpeck(Scene, InnerDot(Random), 0.5 * g_dPitch, dAlongColumn, 1.4);
        break;
    case ETargetCase::eBlot:
        AddSpeck(Scene, InnerDot(Random), 0.0, 0.0, 1.5);
        break;
    case ETargetCase::eSpeckTouching:
        AddSpeck(Scene, InnerDot(Random), dRadius + 0.15, dAlongColumn, 0.45);
        break;
    case ETargetCase::eHiddenDot:
        AddSpeck(Scene, InnerDot(Random), 0.11, dAlongRow, 0.95);
        break;
    case ETargetCase::eStandIn:
        AddSpeck(Scene, Scene.m_Target.m_aMissing[0], 0.4, dAlongColumn, 0.8);
        break;
    case ETargetCase::eStandInFar:
        AddSpeck(Scene, Scene.m_Target.m_aMissing[0], 0.62, dAlongColumn, 0.8);
        break;
    case ETargetCase::eHairEnd:
        AddHair(Scene, InnerDot(Random), 0.0, dRadius + 0.2, dHeading);
        break;
    case ETargetCase::eHairAcross:
        AddHair(Scene, InnerDot(Random), 1.4, 1.4, dAlongRow);
        break;
    case ETargetCase::eGlareBeside:
        AddGlare(Scene, InnerDot(Random), 0.9, dHeading, 1.0);
        break;
    case ETargetCase::eGlareSpot:
        AddGlare(Scene, InnerDot(Random), 0.5, Diagonal(Random), 1.7);
        break;
    default:
        break;
    }
}

/// How the scanner sees it.
void Adjust(ClScannerSettings& Scanner, ETargetCase eCase, ClRandom& Random) {
    const double dSide = Side(Random);
    switch (eCase) {
    case ETargetCase::eSlantedFar:
        // Between the limit of the angle and that of the count there is less room than the
        // scanner's own geometry takes.
        Scanner.m_Distortion.m_dRotation = 0.0;
        Scanner.m_Distortion.m_dRowSlant = 0.0;
        break;
    case ETargetCase::eBarrel:
        Scanner.m_Distortion.m_dBarrel = -0.0003;
        break;
    case ETargetCase::ePincushion:
        Scanner.m_Distortion.m_dBarrel = 0.0003;
        break;
    case ETargetCase::eTrapezoid:
        Scanner.m_Distortion.m_dTrapezoidX = 0.002 * dSide;
        Scanner.m_Distortion.m_dTrapezoidY = 0.003 * Side(Random);
        break;
    case ETargetCase::eUnevenLight:
        Scanner.m_Light.m_dTiltX = 0.15 * dSide;
        Scanner.m_Light.m_dTiltY = 0.15 * Side(Random);
        Scanner.m_Light.m_dVignette = 0.25;
        Scanner.m_Light.m_dCorners = 0.3;
        break;
    case ETargetCase::eDim:
        Scanner.m_Light.m_dBright = 75.0;
        break;
    case ETargetCase::eGlaring:
        Scanner.m_Light.m_dBright = 330.0;
        break;
    case ETargetCase::eDark:
        Scanner.m_Light.m_dBright = 8.0;
        break;
    case ETargetCase::eBlurred:
        Scanner.m_Sensor.m_dBlurX = 1.5;
        Scanner.m_Sensor.m_dBlurY = 3.0;
        break;
    case ETargetCase::eBlurredFar:
        Scanner.m_Sensor.m_dBlurX = 10.0;
        Scanner.m_Sensor.m_dBlurY = 10.0;
        break;
    case ETargetCase::eNoisy:
        Scanner.m_Sensor.m_dNoise = 8.0;
        break;
    case ETargetCase::eNoisyFar:
        Scanner.m_Sensor.m_dNoise = 100.0;
        break;
    default:
        break;
    }
}

} // namespace

const char* TargetCaseName(ETargetCase eCase) {
    return g_aTargetCases.at(static_cast<std::size_t>(eCase)).m_szName;
}

bool TargetCaseFromName(const std::string& sName, ETargetCase& eCase) {
    for (const ClTargetCaseEntry& Entry : g_aTargetCases) {
        if (sName == Entry.m_szName) {
            eCase = Entry.m_eCase;
            return true;
        }
    }
    return false;
}

ClTargetScene TargetScene(const ClScannerSettings& Scanner, ETargetCase eCase,
                          std::uint64_t nSeed) {
    ClRandom Random(nSeed, eSubjectCase);
    ClTargetScene Scene;
    Scene.m_Scanner = Scanner;
    Lay(Scene.m_Target, eCase, Random);
    Print(Scene.m_Target, eCase, Random);
    Soil(Scene, eCase, Random);
    Adjust(Scene.m_Scanner, eCase, Random);
    return Scene;
}

ClCapture CaptureTargetCase(const ClScanner& Scanner, ETargetCase eCase, std::uint64_t nSeed) {
    const ClTargetScene Scene = TargetScene(Scanner.Settings(), eCase, nSeed);
    return CaptureTarget(ClScanner(Scanner.Seed(), Scene.m_Scanner), Scene.m_Target, Scene.m_Dirt,
                         nSeed);
}

} // namespace sim
