#include "sim/Capture.h"

#include "sim/Imaging.h"
#include "sim/Random.h"

namespace sim {

namespace {

enum ESubject : std::uint64_t { eSubjectDirt = 51, eSubjectNoise, eSubjectKind, eSubjectFinger };

ClCapture Imaged(const ClScanner& Scanner, const ClPlate& Plate, std::uint64_t nSeed) {
    ClCapture Capture;
    Capture.m_Raw = ImageRaw(Scanner, Plate, ClRandom::Derive(nSeed, eSubjectNoise));
    Capture.m_Ideal = ImageIdeal(Scanner, Plate);
    Capture.m_FingerArea = ImageFingerArea(Scanner, Plate);
    return Capture;
}

/// Dirt that is always there: a platen is never quite clean.
ClDirtSettings EverydayDirt(ClRandom& Random) {
    ClDirtSettings Dirt;
    Dirt.m_nSpecks = Random.Integer(1, 6);
    Dirt.m_nSmudges = Random.Integer(0, 2);
    Dirt.m_dSpeckSize = 0.16;
    return Dirt;
}

/// Whoever lays the target wipes the platen first.
ClDirtSettings WipedDirt(ClRandom& Random) {
    ClDirtSettings Dirt = EverydayDirt(Random);
    Dirt.m_nSmudges = 0;
    return Dirt;
}

ClDirtSettings MuchDirt(ClRandom& Random) {
    ClDirtSettings Dirt;
    Dirt.m_nSpecks = Random.Integer(50, 90);
    Dirt.m_nHairs = Random.Integer(3, 6);
    Dirt.m_nSmudges = Random.Integer(4, 9);
    Dirt.m_dSpeckSize = 0.45;
    return Dirt;
}

ClTargetSettings LaidTarget(ClRandom& Random) {
    ClTargetSettings Target;
    Target.m_dRotation = Random.Around(0.0, 0.5);
    Target.m_dShiftX = Random.Around(0.0, 0.5);
    Target.m_dShiftY = Random.Around(0.0, 0.5);
    Target.m_dContrast = Random.Uniform(0.70, 0.80);
    return Target;
}

ClFingerSettings AnyFinger(ClRandom& Random) {
    ClFingerSettings Finger;
    Finger.m_ePattern = static_cast<EPattern>(Random.Integer(0, 3));
    Finger.m_Centre = {Random.Around(0.0, 0.8), Random.Around(0.6, 1.0)};
    Finger.m_dHalfWidth = Random.Uniform(6.2, 7.2);
    Finger.m_dHalfHeight = Random.Uniform(9.0, 10.6);
    Finger.m_dRotation = Random.Around(0.0, 8.0);
    Finger.m_dPeriod = Random.Uniform(0.45, 0.51);
    Finger.m_dPressure = Random.Around(1.0, 0.08);
    Finger.m_dContrast = Random.Uniform(0.84, 0.92);
    return Finger;
}

ClFingerSettings FingerOf(EKind eKind, ClRandom& Random) {
    ClFingerSettings Finger = AnyFinger(Random);
    switch (eKind) {
    case EKind::eLoop:
        Finger.m_ePattern = Random.Integer(0, 1) == 0 ? EPattern::eLeftLoop : EPattern::eRightLoop;
        break;
    case EKind::eWhorl:
        Finger.m_ePattern = EPattern::eWhorl;
        break;
    case EKind::eArch:
        Finger.m_ePattern = EPattern::eArch;
        break;
    case EKind::eDry:
        Finger.m_dDryness = Random.Uniform(0.6, 0.9);
        Finger.m_dContrast = Random.Uniform(0.66, 0.74);
        break;
    case EKind::eWet:
        Finger.m_dWetness = Random.Uniform(0.6, 0.9);
        Finger.m_dContrast = Random.Uniform(0.92, 0.96);
        break;
    case EKind::ePartial:
        Finger.m_Centre.y = Random.Uniform(9.5, 11.0) * (Random.Integer(0, 1) == 0 ? -1.0 : 1.0);
        break;
    case EKind::eLight:
        Finger.m_dHalfWidth = Random.Uniform(4.4, 5.2);
        Finger.m_dHalfHeight = Random.Uniform(6.2, 7.4);
        Finger.m_dPressure = Random.Uniform(0.72, 0.80);
        Finger.m_dContrast = Random.Uniform(0.55, 0.63);
        break;
    default:
        break;
    }
    return Finger;
}

std::vector<ClFingerSettings> TwoFingers(ClRandom& Random) {
    std::vector<ClFingerSettings> aFingers;
    for (const double dSide : {-1.0, 1.0}) {
        ClFingerSettings Finger = AnyFinger(Random);
        Finger.m_Centre = {dSide * Random.Uniform(4.6, 5.0), Random.Around(0.0, 1.5)};
        Finger.m_dHalfWidth = Random.Uniform(3.2, 3.7);
        Finger.m_dHalfHeight = Random.Uniform(7.0, 8.2);
        Finger.m_dRotation = Random.Around(0.0, 4.0);
        aFingers.push_back(Finger);
    }
    return aFingers;
}

std::vector<ClFingerSettings> FingersOf(EKind eKind, ClRandom& Random) {
    if (eKind == EKind::eEmpty)
        return {};
    if (eKind == EKind::eTwoFingers)
        return TwoFingers(Random);
    return {FingerOf(eKind, Random)};
}

} // namespace

ClCapture CaptureTarget(const ClScanner& Scanner, const ClTargetSettings& Target,
                        const ClDirtSettings& Dirt, std::uint64_t nSeed) {
    ClPlate Plate;
    const std::vector<ClPoint> aDots = PaintDots(Plate, Target);
    PaintDirt(Plate, Dirt, ClRandom::Derive(nSeed, eSubjectDirt));
    ClCapture Capture = Imaged(Scanner, Plate, nSeed);
    for (const ClPoint& Dot : aDots)
        Capture.m_aDots.push_back(Scanner.RawFromPlaten(Dot));
    return Capture;
}

ClCapture CaptureRuledPlate(const ClScanner& Scanner, const ClTargetSettings& Target,
                            std::uint64_t nSeed) {
    ClPlate Plate;
    const std::vector<ClLine> aLines = PaintRules(Plate, Target);
    ClCapture Capture = Imaged(Scanner, Plate, nSeed);
    for (const ClLine& Line : aLines)
        Capture.m_aLines.push_back(
            {Scanner.FrameFromPlaten(Line.m_From), Scanner.FrameFromPlaten(Line.m_To)});
    return Capture;
}

ClCapture CaptureFingers(const ClScanner& Scanner, const std::vector<ClFingerSettings>& aFingers,
                         const ClDirtSettings& Dirt, std::uint64_t nSeed) {
    ClPlate Plate;
    const std::uint64_t nFingerSeed = ClRandom::Derive(nSeed, eSubjectFinger);
    for (std::size_t n = 0; n < aFingers.size(); ++n)
        PaintFinger(Plate, aFingers[n], ClRandom::Derive(nFingerSeed, n));
    PaintDirt(Plate, Dirt, ClRandom::Derive(nSeed, eSubjectDirt));
    return Imaged(Scanner, Plate, nSeed);
}

const char* KindName(EKind eKind) {
    return g_aKinds.at(static_cast<std::size_t>(eKind)).m_szName;
}

bool KindFromName(const std::string& sName, EKind& eKind) {
    for (const ClKindEntry& Entry : g_aKinds) {
        if (sName == Entry.m_szName) {
            eKind = Entry.m_eKind;
            return true;
        }
    }
    return false;
}

ClCapture CaptureKind(const ClScanner& Scanner, EKind eKind, std::uint64_t nSeed) {
    // Kinds of one seed differ in everything, not in their kind only.
    nSeed = ClRandom::Derive(nSeed, static_cast<std::uint64_t>(eKind));
    ClRandom Random(nSeed, eSubjectKind);
    switch (eKind) {
    case EKind::eTarget: {
        const ClTargetSettings Target = LaidTarget(Random);
        return CaptureTarget(Scanner, Target, WipedDirt(Random), nSeed);
    }
    case EKind::eRuled:
        return CaptureRuledPlate(Scanner, ClTargetSettings(), nSeed);
    case EKind::eDirty:
        return CaptureFingers(Scanner, {}, MuchDirt(Random), nSeed);
    default: {
        const std::vector<ClFingerSettings> aFingers = FingersOf(eKind, Random);
        return CaptureFingers(Scanner, aFingers, EverydayDirt(Random), nSeed);
    }
    }
}

} // namespace sim
