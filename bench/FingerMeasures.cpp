#include "bench/FingerRun.h"
#include "bench/FingerScenes.h"
#include "bench/FingerTables.h"

#include "measures/Finger.h"
#include "measures/Platen.h"
#include "measures/RankCorrelation.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace bench {

namespace {

using measures::Measure;

/// What the simulator knows, and what is measured, of one finger and of its platen without it.
struct ClSubject {
    sim::ClFingerSettings m_Finger;
    double m_dDirt = 0.0;
    double m_dArea = 0.0;  ///< of the print, mm^2
    double m_dRight = 0.0; ///< of the middle of the print from that of the frame, mm
    double m_dDown = 0.0;
    double m_dEvenness = 0.0; ///< of the uneven light
    bool m_bTaken = false;
    measures::ClFingerMeasures m_Measures;
    Measure m_dLightTaken;
    measures::ClPlatenMeasures m_Platen;
    measures::ClPlatenMeasures m_UnevenPlaten;
    double m_dDirtLevel = 0.0;
    double m_dDryLevel = 0.0;
    double m_dContamination = 0.0;
};

measures::ClGreyView View(const sim::ClRaster& Raster) {
    return {Raster.m_aPixels.data(), Raster.m_nWidth, Raster.m_nHeight, Raster.m_nWidth};
}

/// The area that prints is 0 as a mask is; so its area and place are measured like a mask's.
void KnowPrint(const sim::ClCapture& Capture, ClSubject& rSubject) {
    const sim::ClRaster Print = PrintArea(Capture);
    double dCount = 0.0;
    double dX = 0.0;
    double dY = 0.0;
    for (int y = 0; y < Print.m_nHeight; ++y)
        for (int x = 0; x < Print.m_nWidth; ++x)
            if (Print.At(x, y) == 0) {
                dCount += 1.0;
                dX += x;
                dY += y;
            }
    constexpr double cdMm = 25.4 / sim::g_dFrameDpi;
    rSubject.m_dArea = dCount * cdMm * cdMm;
    rSubject.m_dRight = (dX / dCount - 0.5 * (Print.m_nWidth - 1)) * cdMm;
    rSubject.m_dDown = (dY / dCount - 0.5 * (Print.m_nHeight - 1)) * cdMm;
}

/// Darkest over brightest light of a grid over the capture.
double EvennessOf(const sim::ClLight& Light) {
    double dLowest = 1e9;
    double dHighest = 0.0;
    for (int y = -9; y <= 9; ++y)
        for (int x = -9; x <= 9; ++x) {
            const double d = Light.At(0.1 * x, 0.1 * y);
            dLowest = std::min(dLowest, d);
            dHighest = std::max(dHighest, d);
        }
    return dLowest / dHighest;
}

/// A clean or dirty platen, as the scanner sees it.
sim::ClRaster EmptyPlaten(const sim::ClScanner& Scanner, double dDirt) {
    return sim::CaptureFingers(Scanner, {}, sim::DirtOfAmount(dDirt), Scanner.Seed()).m_Raw;
}

void MeasureLight(const sim::ClScanner& Scanner, const ClFingerScene& Scene, ClSubject& rSubject) {
    sim::ClScannerSettings Settings = Scanner.Settings();
    Settings.m_Light = Scene.m_UnevenLight;
    const sim::ClScanner Uneven(Scanner.Seed(), Settings);
    rSubject.m_dEvenness = EvennessOf(Uneven.Light());
    rSubject.m_UnevenPlaten =
        measures::MeasurePlaten(View(EmptyPlaten(Uneven, Scene.m_dDirt))).value();
}

void MeasureFinger(const ClFingerScanner& Finger, const sim::ClRaster& Raw, ClSubject& rSubject) {
    const ClFingerRun Run = Finger.Run(Raw, false);
    rSubject.m_bTaken = Run.IsTaken();
    rSubject.m_dDirtLevel = Run.m_dDirt;
    rSubject.m_dDryLevel = Run.m_dDry;
    rSubject.m_Measures =
        measures::MeasureFinger(View(Run.m_Output), View(Run.m_Mask), sim::g_dFrameDpi);
    rSubject.m_dLightTaken = measures::LightTaken(View(Finger.Warped(Raw)), View(Run.m_Mask));
}

ClSubject SubjectOf(EVaried eVaried, unsigned long nSeed) {
    const ClFingerScanner Finger{sim::ClScanner(nSeed)};
    const ClFingerScene Scene = DrawFingerScene(eVaried, nSeed);
    const sim::ClCapture Capture = sim::CaptureFingers(Finger.Scanner(), {Scene.m_Finger},
                                                       sim::DirtOfAmount(Scene.m_dDirt), nSeed);
    const sim::ClRaster Empty = EmptyPlaten(Finger.Scanner(), Scene.m_dDirt);
    ClSubject Subject;
    Subject.m_Finger = Scene.m_Finger;
    Subject.m_dDirt = Scene.m_dDirt;
    KnowPrint(Capture, Subject);
    MeasureFinger(Finger, Capture.m_Raw, Subject);
    Subject.m_Platen = measures::MeasurePlaten(View(Empty)).value();
    MeasureLight(Finger.Scanner(), Scene, Subject);
    Subject.m_dContamination = Finger.Contamination(Empty);
    return Subject;
}

std::vector<ClSubject> SubjectsOf(EVaried eVaried, unsigned long nFingers, unsigned long nFirst) {
    std::vector<ClSubject> aSubjects;
    for (unsigned long nSeed = nFirst; nSeed < nFirst + nFingers; ++nSeed)
        aSubjects.push_back(SubjectOf(eVaried, nSeed));
    return aSubjects;
}

/// A number of a subject, by its name; nothing for the subjects that it leaves out.
struct ClColumn {
    const char* m_szName;
    Measure (*m_pOf)(const ClSubject& Subject);
};

const std::vector<ClColumn>& Measured() {
    static const std::vector<ClColumn> aColumns{
        {"area", [](const ClSubject& s) { return s.m_Measures.m_dArea; }},
        {"offset to the right", [](const ClSubject& s) { return s.m_Measures.m_dOffsetX; }},
        {"offset down", [](const ClSubject& s) { return s.m_Measures.m_dOffsetY; }},
        {"saturated share", [](const ClSubject& s) { return s.m_Measures.m_dSaturated; }},
        {"dark share", [](const ClSubject& s) { return s.m_Measures.m_dDark; }},
        {"ridge contrast", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dContrast; }},
        {"ridge width", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dRidgeWidth; }},
        {"valley width", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dValleyWidth; }},
        {"ridge share", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dRidgeShare; }},
        {"ridge spread", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dRidgeSpread; }},
        {"valley spread", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dValleySpread; }},
        {"brokenness", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dBrokenness; }},
        {"pressure", [](const ClSubject& s) { return s.m_Measures.m_Ridges.m_dPressure; }},
        {"light taken", [](const ClSubject& s) { return s.m_dLightTaken; }},
        {"platen: soiled share", [](const ClSubject& s) { return Measure(s.m_Platen.m_dSoiled); }},
        {"platen: soiled share, uneven light",
         [](const ClSubject& s) { return Measure(s.m_UnevenPlaten.m_dSoiled); }},
        {"platen: uniformity, uneven light",
         [](const ClSubject& s) { return Measure(s.m_UnevenPlaten.m_dUniformity); }},
        {"*dirt level*", [](const ClSubject& s) { return Measure(s.m_dDirtLevel); }},
        {"*dry finger level*", [](const ClSubject& s) { return Measure(s.m_dDryLevel); }},
        {"*contamination*", [](const ClSubject& s) { return Measure(s.m_dContamination); }},
    };
    return aColumns;
}

/// The wetness of what is not dry, the dryness of what is not wet.
Measure Unless(double dOther, double d) {
    return dOther > 0.0 ? std::nullopt : Measure(d);
}

const std::vector<ClColumn>& Known() {
    static const std::vector<ClColumn> aColumns{
        {"dryness", [](const ClSubject& s) { return Measure(s.m_Finger.m_dDryness); }},
        {"dryness unless wet",
         [](const ClSubject& s) { return Unless(s.m_Finger.m_dWetness, s.m_Finger.m_dDryness); }},
        {"wetness unless dry",
         [](const ClSubject& s) { return Unless(s.m_Finger.m_dDryness, s.m_Finger.m_dWetness); }},
        {"pressure", [](const ClSubject& s) { return Measure(s.m_Finger.m_dPressure); }},
        {"dirt", [](const ClSubject& s) { return Measure(s.m_dDirt); }},
        {"contrast", [](const ClSubject& s) { return Measure(s.m_Finger.m_dContrast); }},
        {"area of print", [](const ClSubject& s) { return Measure(s.m_dArea); }},
        {"its offset to the right", [](const ClSubject& s) { return Measure(s.m_dRight); }},
        {"its offset down", [](const ClSubject& s) { return Measure(s.m_dDown); }},
        {"evenness of light", [](const ClSubject& s) { return Measure(s.m_dEvenness); }},
    };
    return aColumns;
}

double Correlation(const std::vector<ClSubject>& aSubjects, const ClColumn& One,
                   const ClColumn& Other) {
    std::vector<double> aOne;
    std::vector<double> aOther;
    for (const ClSubject& Subject : aSubjects) {
        const Measure dOne = One.m_pOf(Subject);
        const Measure dOther = Other.m_pOf(Subject);
        if (!Subject.m_bTaken || !dOne || !dOther)
            continue;
        aOne.push_back(*dOne);
        aOther.push_back(*dOther);
    }
    return measures::RankCorrelation(aOne, aOther);
}

int Taken(const std::vector<ClSubject>& aSubjects) {
    return static_cast<int>(std::count_if(aSubjects.begin(), aSubjects.end(),
                                          [](const ClSubject& s) { return s.m_bTaken; }));
}

/// The range, without the lowest and the highest twentieth.
void PrintRange(const std::vector<ClSubject>& aSubjects, const ClColumn& Column) {
    std::vector<double> aValues;
    for (const ClSubject& Subject : aSubjects)
        if (const Measure d = Column.m_pOf(Subject); Subject.m_bTaken && d)
            aValues.push_back(*d);
    if (aValues.empty())
        return;
    std::sort(aValues.begin(), aValues.end());
    const std::size_t nCut = aValues.size() / 20;
    std::printf(" %.3g to %.3g |", aValues[nCut], aValues[aValues.size() - 1 - nCut]);
}

void PrintHead(const char* szFirst, const std::vector<const char*>& aNames) {
    std::printf("| %s |", szFirst);
    for (const char* szName : aNames)
        std::printf(" %s |", szName);
    std::printf("\n|---|");
    for (std::size_t n = 0; n < aNames.size(); ++n)
        std::printf("---|");
    std::printf("\n");
}

void PrintTogether(unsigned long nFingers, unsigned long nFirst) {
    const std::vector<ClSubject> aSubjects = SubjectsOf(EVaried::eAll, nFingers, nFirst);
    std::printf("Everything differs: %d of %lu fingers were taken\n\n", Taken(aSubjects), nFingers);
    std::vector<const char*> aNames{"range"};
    for (const ClColumn& Column : Known())
        aNames.push_back(Column.m_szName);
    PrintHead("measure", aNames);
    for (const ClColumn& Row : Measured()) {
        std::printf("| %s |", Row.m_szName);
        PrintRange(aSubjects, Row);
        for (const ClColumn& Column : Known())
            std::printf(" %.2f |", Correlation(aSubjects, Row, Column));
        std::printf("\n");
    }
}

void PrintAlone(unsigned long nFingers, unsigned long nFirst) {
    struct ClAlone {
        ClColumn m_Truth;
        std::vector<ClSubject> m_aSubjects;
    };
    const std::vector<ClAlone> aAlone{
        {Known()[0], SubjectsOf(EVaried::eDryness, nFingers, nFirst)},
        {Known()[3], SubjectsOf(EVaried::ePressure, nFingers, nFirst)},
        {Known()[4], SubjectsOf(EVaried::eDirt, nFingers, nFirst)},
    };
    std::printf("\nOne thing differs: of %lu fingers each, taken were", nFingers);
    for (const ClAlone& One : aAlone)
        std::printf(" %d", Taken(One.m_aSubjects));
    std::printf("\n\n");
    PrintHead("measure", {"dryness alone", "pressure alone", "dirt alone"});
    for (const ClColumn& Row : Measured()) {
        std::printf("| %s |", Row.m_szName);
        for (const ClAlone& One : aAlone)
            std::printf(" %.2f |", Correlation(One.m_aSubjects, Row, One.m_Truth));
        std::printf("\n");
    }
}

} // namespace

void PrintMeasures(unsigned long nFingers, unsigned long nFirst) {
    PrintTogether(nFingers, nFirst);
    PrintAlone((nFingers + 2) / 3, nFirst);
}

} // namespace bench
