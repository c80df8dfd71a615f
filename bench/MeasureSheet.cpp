#include "bench/MeasureSheet.h"

#include "bench/FingerRun.h"
#include "bench/Sheet.h"

#include "measures/Finger.h"
#include "measures/Platen.h"

#include <cstdio>

namespace bench {

namespace {

measures::ClGreyView View(const sim::ClRaster& Raster) {
    return {Raster.m_aPixels.data(), Raster.m_nWidth, Raster.m_nHeight, Raster.m_nWidth};
}

/// 7.6 x 7.6 mm about the middle.
sim::ClRaster Middle(const sim::ClRaster& Image) {
    constexpr int cnSide = 150;
    sim::ClRaster Part(cnSide, cnSide, 0);
    for (int y = 0; y < cnSide; ++y)
        for (int x = 0; x < cnSide; ++x)
            Part.At(x, y) =
                Image.At(x + (Image.m_nWidth - cnSide) / 2, y + (Image.m_nHeight - cnSide) / 2);
    return Part;
}

sim::ClRaster FingerTile(const ClFingerScanner& Finger, const sim::ClFingerSettings& Settings) {
    const sim::ClRaster Raw =
        sim::CaptureFingers(Finger.Scanner(), {Settings}, {}, Finger.Scanner().Seed()).m_Raw;
    const ClFingerRun Run = Finger.Run(Raw, false);
    const auto Measures =
        measures::MeasureFinger(View(Run.m_Output), View(Run.m_Mask), sim::g_dFrameDpi).m_Ridges;
    std::printf("dryness %.2f, pressure %.2f: brokenness %.4f, pressure measured %.2f\n",
                Settings.m_dDryness, Settings.m_dPressure, Measures.m_dBrokenness.value_or(-1.0),
                Measures.m_dPressure.value_or(-1.0));
    return Middle(Run.m_Output);
}

sim::ClRaster PlatenTile(const ClFingerScanner& Finger, double dDirt) {
    const sim::ClRaster Raw =
        sim::CaptureFingers(Finger.Scanner(), {}, sim::DirtOfAmount(dDirt), Finger.Scanner().Seed())
            .m_Raw;
    std::printf("dirt %.2f: soiled share %.4f\n", dDirt,
                measures::MeasurePlaten(View(Raw))->m_dSoiled);
    return Reduced(Finger.Warped(Raw), 2, 2);
}

} // namespace

void DrawMeasureSheet(const std::string& sFile, unsigned long nScanner) {
    const ClFingerScanner Finger{sim::ClScanner(nScanner)};
    std::vector<SheetRow> aRows(3);
    for (int n = 0; n <= 4; ++n) {
        sim::ClFingerSettings Dry;
        Dry.m_dDryness = 0.25 * n;
        aRows[0].push_back(FingerTile(Finger, Dry));
    }
    for (int n = 0; n <= 4; ++n) {
        sim::ClFingerSettings Pressed;
        Pressed.m_dPressure = 0.5 + 0.25 * n;
        aRows[1].push_back(FingerTile(Finger, Pressed));
    }
    for (int n = 0; n <= 4; ++n)
        aRows[2].push_back(PlatenTile(Finger, 0.25 * n));
    constexpr int cnGreys = 16;
    WritePng(sFile.c_str(), SetTiles(aRows), cnGreys);
}

} // namespace bench
