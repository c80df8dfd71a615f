#include "bench/FingerSheets.h"

#include "bench/FingerRun.h"
#include "bench/FingerStages.h"
#include "bench/Sheet.h"

#include <utility>
#include <vector>

namespace bench {

namespace {

using sim::EKind;

/// A tile of the target frame, and one of a raw capture, which has two lines for each column.
sim::ClRaster FrameTile(const sim::ClRaster& Image) {
    return Reduced(Image, 2, 2);
}

sim::ClRaster RawTile(const sim::ClRaster& Image) {
    return Reduced(Image, 2, 4);
}

std::vector<SheetRow> Chain(const ClFingerScanner& Finger) {
    const sim::ClCapture Capture =
        sim::CaptureKind(Finger.Scanner(), EKind::eWhorl, Finger.Scanner().Seed());
    auto Stages = StagesOf(Finger.Warped(Capture.m_Raw));
    std::vector<SheetRow> aRows(2);
    aRows[0].push_back(RawTile(Capture.m_Raw));
    for (const char* szName :
         {"01_InImage", "02_GloballyStretchedImage", "21_BrightProbImage", "21_ContrastProbImage"})
        aRows[0].push_back(FrameTile(Stages.at(szName)));
    for (const char* szName : {"04_MaskProbImage", "06_SmoothMaskImage", "09_StretchedImage",
                               "10_OutImage", "11c_FadedMaskImageForDirtMeasurement"})
        aRows[1].push_back(FrameTile(Stages.at(szName)));
    return aRows;
}

SheetRow KindTiles(const ClFingerScanner& Finger, EKind eKind) {
    const sim::ClCapture Capture =
        sim::CaptureKind(Finger.Scanner(), eKind, Finger.Scanner().Seed());
    const ClFingerRun Run = Finger.Run(Capture.m_Raw, false);
    return {RawTile(Capture.m_Raw), FrameTile(Finger.Warped(Capture.m_Raw)), FrameTile(Run.m_Mask),
            FrameTile(Run.m_Output)};
}

/// Two kinds in a row, to keep the sheet from growing tall.
std::vector<SheetRow> AllKinds(const ClFingerScanner& Finger) {
    const std::vector<std::vector<EKind>> aaKinds{{EKind::eLoop, EKind::eWhorl},
                                                  {EKind::eArch, EKind::eDry},
                                                  {EKind::eWet, EKind::eLight},
                                                  {EKind::ePartial, EKind::eTwoFingers},
                                                  {EKind::eEmpty, EKind::eDirty}};
    std::vector<SheetRow> aRows;
    for (const auto& aKinds : aaKinds) {
        aRows.emplace_back();
        for (const EKind eKind : aKinds)
            for (sim::ClRaster& rTile : KindTiles(Finger, eKind))
                aRows.back().push_back(std::move(rTile));
    }
    return aRows;
}

sim::ClFingerSettings FaintFinger() {
    sim::ClFingerSettings Finger;
    Finger.m_dContrast = 0.2;
    return Finger;
}

sim::ClFingerSettings SmallFinger() {
    sim::ClFingerSettings Finger;
    Finger.m_dHalfWidth = 2.0;
    Finger.m_dHalfHeight = 2.9;
    return Finger;
}

std::vector<SheetRow> Sensitive(const ClFingerScanner& Finger) {
    std::vector<SheetRow> aRows(2);
    const std::vector<std::vector<sim::ClFingerSettings>> aaFingers{
        {FaintFinger()}, {SmallFinger()}, {}};
    for (const auto& aFingers : aaFingers) {
        const sim::ClCapture Capture = sim::CaptureFingers(
            Finger.Scanner(), aFingers, sim::ClDirtSettings(), Finger.Scanner().Seed());
        for (const bool bSensitive : {false, true}) {
            const ClFingerRun Run = Finger.Run(Capture.m_Raw, bSensitive);
            for (const sim::ClRaster& Image :
                 {Finger.Warped(Capture.m_Raw), Run.m_Mask, Run.m_Output})
                aRows[bSensitive ? 1 : 0].push_back(FrameTile(Image));
        }
    }
    return aRows;
}

void Write(const std::string& sFile, const std::vector<SheetRow>& aRows) {
    constexpr int cnGreys = 16;
    WritePng(sFile.c_str(), SetTiles(aRows), cnGreys);
}

} // namespace

void DrawSheets(const std::string& sFolder, unsigned long nScanner) {
    const ClFingerScanner Finger{sim::ClScanner(nScanner)};
    Write(sFolder + "/fingers-chain.png", Chain(Finger));
    Write(sFolder + "/fingers-kinds.png", AllKinds(Finger));
    Write(sFolder + "/fingers-sensitive.png", Sensitive(Finger));
}

} // namespace bench
