// How accurate a calibration is that was derived from one capture of the dot target, over many
// simulated scanners, and where deriving one is refused:
//
//     accuracy [SCANNERS [FIRST_SEED]]                     10 scanners from seed 1
//     accuracy --limits [SCANNERS [FIRST_SEED]]            the limits of success
//     accuracy --plates [SCANNERS [FIRST_SEED]]            plates that are not the target
//     accuracy --residuals PNG [SCANNERS [FIRST_SEED]]     errors over the whole corrected image
//     accuracy --verdicts SVG [SCANNERS [FIRST_SEED]]      whether wrong ones are told from good
//
// For each scanner the target is laid by hand and captured. The generated points are compared with
// the true centres of the dots. Then three captures are corrected with the generated data: the same
// one and a second one of the target, laid anew, for the accuracy check, and one of a ruled plate,
// whose lines are followed. The last is corrected with the true geometry as well, to tell what the
// splines leave from what the located points add.

#include "bench/EftsPairs.h"
#include "bench/Generation.h"
#include "bench/Limits.h"
#include "bench/PlateFrame.h"
#include "bench/Plates.h"
#include "bench/Residuals.h"
#include "bench/Straightness.h"
#include "bench/Verdicts.h"
#include "sim/Record.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// Captures are numbered by their seeds.
constexpr std::uint64_t cnCalibrationCapture = 1;
constexpr std::uint64_t cnCheckCapture = 2;

/// What one scanner came to.
struct ClRow {
    bench::ClPointErrors m_Points;
    double m_dEftsSame = 0.0;
    double m_dEftsSecond = 0.0;
    bench::ClStraightness m_True;      ///< with the true geometry
    bench::ClStraightness m_Generated; ///< with the generated data
};

/// What all scanners came to.
struct ClSummary {
    void Add(const ClRow& Row);
    void Refuse(const std::string& sWords) { ++m_aRefusals[sWords]; }
    void Print(unsigned long nScanners) const;

    int m_nDerived = 0;
    int m_nWrong = 0;
    double m_dSumX = 0.0; ///< of the squared rms
    double m_dSumY = 0.0;
    bench::ClPointErrors m_Points; ///< the largest
    std::vector<double> m_aEftsSame;
    std::vector<double> m_aEftsSecond;
    int m_nLines = 0;
    bench::ClStraightness m_True;
    bench::ClStraightness m_Generated;
    std::map<std::string, int> m_aRefusals;
};

void KeepLargest(bench::ClStraightness& rAll, const bench::ClStraightness& One) {
    rAll.m_dBefore = std::max(rAll.m_dBefore, One.m_dBefore);
    rAll.m_dAfter = std::max(rAll.m_dAfter, One.m_dAfter);
    rAll.m_nLines += One.m_nLines;
}

void ClSummary::Add(const ClRow& Row) {
    ++m_nDerived;
    m_nWrong += bench::IsWrong(Row.m_Points);
    m_dSumX += Row.m_Points.m_dRmsX * Row.m_Points.m_dRmsX;
    m_dSumY += Row.m_Points.m_dRmsY * Row.m_Points.m_dRmsY;
    m_Points.m_dMaxX = std::max(m_Points.m_dMaxX, Row.m_Points.m_dMaxX);
    m_Points.m_dMaxY = std::max(m_Points.m_dMaxY, Row.m_Points.m_dMaxY);
    m_aEftsSame.push_back(Row.m_dEftsSame);
    m_aEftsSecond.push_back(Row.m_dEftsSecond);
    KeepLargest(m_True, Row.m_True);
    KeepLargest(m_Generated, Row.m_Generated);
}

void PrintEfts(const char* szWhat, const std::vector<double>& aPercent) {
    double dSum = 0.0;
    for (const double d : aPercent)
        dSum += d;
    std::printf("accuracy check, %s: lowest %.3f, mean %.4f percent, %ld of %zu at 100\n", szWhat,
                *std::min_element(aPercent.begin(), aPercent.end()),
                dSum / static_cast<double>(aPercent.size()),
                static_cast<long>(std::count(aPercent.begin(), aPercent.end(), 100.0)),
                aPercent.size());
}

void ClSummary::Print(unsigned long nScanners) const {
    std::printf("\n%d of %lu generations succeeded, %d of them with a point off by more than %.1f "
                "pixels in x or %.1f in y\n",
                m_nDerived, nScanners, m_nWrong, bench::cdWrongX, bench::cdWrongY);
    for (const auto& [sWords, nCount] : m_aRefusals)
        std::printf("refused %d times: %s\n", nCount, sWords.c_str());
    if (m_nDerived == 0)
        return;
    std::printf("points against true centres, raw pixels: rms %.4f in x, %.4f in y; largest %.3f "
                "in x, %.3f in y\n",
                std::sqrt(m_dSumX / m_nDerived), std::sqrt(m_dSumY / m_nDerived), m_Points.m_dMaxX,
                m_Points.m_dMaxY);
    PrintEfts("capture of the calibration", m_aEftsSame);
    PrintEfts("second capture", m_aEftsSecond);
    std::printf("straight lines, pixels of 0.0508 mm: %.3f in the captures; %.3f corrected (%d "
                "lines); %.3f corrected by the true geometry (%d lines)\n",
                m_Generated.m_dBefore, m_Generated.m_dAfter, m_Generated.m_nLines, m_True.m_dAfter,
                m_True.m_nLines);
}

/// A calibration at work on one capture of its scanner.
struct ClCheck {
    const char* m_szWhat;
    const bench::ClGeneration& m_Generated;
    const bench::ClPlateFrame& m_Frame;
    const sim::ClScanner& m_Scanner;
    const sim::ClCapture& m_Capture;
};

/// How far a dot lies from its true place in the corrected image, which is the calibration's doing,
/// and how far from there the check locates it.
void PrintDot(const ClCheck& Check, const bench::Bytes& aCorrected, const bench::Points& aFound,
              int nDot) {
    const auto n = static_cast<std::size_t>(nDot);
    const sim::ClPoint True =
        Check.m_Frame.FromPlaten(Check.m_Scanner.PlatenFromRaw(Check.m_Capture.m_aDots[n]));
    const sim::ClPoint Lies = bench::CentreOfDarkness(aCorrected, True);
    std::printf("             dot %2d lies off by %6.3f %6.3f, is located off by %6.3f %6.3f\n",
                nDot, Lies.x - True.x, Lies.y - True.y, aFound[n].x - Lies.x, aFound[n].y - Lies.y);
}

/// Tells for which dots a check fails, and by which errors.
void PrintCause(const ClCheck& Check, const bench::Bytes& aCorrected) {
    const bench::Points aFound = bench::LocateCorrected(aCorrected);
    for (const bench::ClFailedPair& Pair :
         bench::FailedPairs(Check.m_Generated.m_aTarget, aFound)) {
        std::printf("         %s: dots %d and %d, distance %.3f pixels, should be %.3f\n",
                    Check.m_szWhat, Pair.m_nFirst, Pair.m_nSecond, Pair.m_dMeasured,
                    Pair.m_dReference);
        PrintDot(Check, aCorrected, aFound, Pair.m_nFirst);
        PrintDot(Check, aCorrected, aFound, Pair.m_nSecond);
    }
}

double CheckedEfts(const ClCheck& Check) {
    const bench::Bytes& aBlock = Check.m_Generated.m_aBlock;
    const bench::Bytes aCorrected = bench::Correct(aBlock, Check.m_Capture.m_Raw);
    const double dPercent = bench::CheckEfts(aBlock, aCorrected);
    if (dPercent < 100.0)
        PrintCause(Check, aCorrected);
    return dPercent;
}

/// Lines of the platen where a correction puts them.
std::vector<sim::ClLine> Placed(const bench::ClPlateFrame& Frame,
                                const std::vector<sim::ClLine>& aPlatenLines) {
    std::vector<sim::ClLine> aLines;
    for (const sim::ClLine& Line : aPlatenLines)
        aLines.push_back({Frame.FromPlaten(Line.m_From), Frame.FromPlaten(Line.m_To)});
    return aLines;
}

bench::ClPlateFrame FrameOf(const sim::ClScanner& Scanner, const sim::ClCapture& Target,
                            const bench::ClGeneration& Generated) {
    bench::Points aOnPlaten;
    for (const sim::ClPoint& Dot : Target.m_aDots)
        aOnPlaten.push_back(Scanner.PlatenFromRaw(Dot));
    return {aOnPlaten, Generated.m_aTarget};
}

void MeasureLines(const sim::ClScanner& Scanner, const bench::ClPlateFrame& Frame,
                  const bench::ClGeneration& Generated, ClRow& rRow) {
    const sim::ClCapture Ruled = sim::CaptureKind(Scanner, sim::EKind::eRuled, 1);
    std::vector<sim::ClLine> aPlatenLines;
    for (const sim::ClLine& Line : Ruled.m_aLines)
        aPlatenLines.push_back(
            {Scanner.PlatenFromFrame(Line.m_From), Scanner.PlatenFromFrame(Line.m_To)});
    const bench::Bytes aTrue = bench::Correct(sim::RecordBlock(Scanner), Ruled.m_Raw);
    rRow.m_True = bench::MeasureStraightness(Scanner, aPlatenLines, Ruled.m_aLines,
                                             aTrue.data() + bench::cnPixelsAt);
    const bench::Bytes aCorrected = bench::Correct(Generated.m_aBlock, Ruled.m_Raw);
    rRow.m_Generated = bench::MeasureStraightness(
        Scanner, aPlatenLines, Placed(Frame, aPlatenLines), aCorrected.data() + bench::cnPixelsAt);
}

void PrintHead() {
    std::printf("%8s %23s %23s %17s %25s\n", "", "rms error [raw px]", "max error [raw px]",
                "check [%]", "bent lines [px]");
    std::printf("%8s %11s %11s %11s %11s %8s %8s %8s %8s %8s\n", "scanner", "x", "y", "x", "y",
                "same", "second", "raw", "true", "derived");
}

void PrintRow(unsigned long nSeed, const ClRow& Row) {
    std::printf("%8lu %11.4f %11.4f %11.3f %11.3f %8.3f %8.3f %8.3f %8.3f %8.3f\n", nSeed,
                Row.m_Points.m_dRmsX, Row.m_Points.m_dRmsY, Row.m_Points.m_dMaxX,
                Row.m_Points.m_dMaxY, Row.m_dEftsSame, Row.m_dEftsSecond, Row.m_Generated.m_dBefore,
                Row.m_True.m_dAfter, Row.m_Generated.m_dAfter);
}

void MeasureScanner(unsigned long nSeed, ClSummary& rSummary) {
    const sim::ClScanner Scanner(nSeed);
    const sim::ClCapture Target =
        sim::CaptureKind(Scanner, sim::EKind::eTarget, cnCalibrationCapture);
    const bench::ClGeneration Generated = bench::Generate(Target.m_Raw);
    if (Generated.m_nStatus != 0) {
        std::printf("%8lu %ld %s\n", nSeed, Generated.m_nStatus, Generated.m_sWords.c_str());
        rSummary.Refuse(Generated.m_sWords);
        return;
    }
    const bench::ClPlateFrame Frame = FrameOf(Scanner, Target, Generated);
    const sim::ClCapture Second = sim::CaptureKind(Scanner, sim::EKind::eTarget, cnCheckCapture);
    ClRow Row;
    Row.m_Points = bench::ErrorsOf(Generated.m_aActual, Target.m_aDots);
    Row.m_dEftsSame =
        CheckedEfts({"capture of the calibration", Generated, Frame, Scanner, Target});
    Row.m_dEftsSecond = CheckedEfts({"second capture", Generated, Frame, Scanner, Second});
    MeasureLines(Scanner, Frame, Generated, Row);
    PrintRow(nSeed, Row);
    rSummary.Add(Row);
}

int MeasureScanners(unsigned long nScanners, unsigned long nFirst) {
    ClSummary Summary;
    PrintHead();
    for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed)
        MeasureScanner(nSeed, Summary);
    Summary.Print(nScanners);
    return 0;
}

struct ClCall {
    std::string m_sMode; ///< empty for the first table
    std::string m_sPicture;
    unsigned long m_nScanners = 10;
    unsigned long m_nFirst = 1;
};

/// False where the arguments are not those of the head of this file.
bool ReadCall(std::vector<std::string> aArguments, ClCall& rCall) {
    std::reverse(aArguments.begin(), aArguments.end());
    const auto Take = [&aArguments] {
        const std::string sFirst = aArguments.back();
        aArguments.pop_back();
        return sFirst;
    };
    if (!aArguments.empty() && aArguments.back().rfind("--", 0) == 0)
        rCall.m_sMode = Take();
    const bool bPicture = rCall.m_sMode == "--residuals" || rCall.m_sMode == "--verdicts";
    if (bPicture && !aArguments.empty())
        rCall.m_sPicture = Take();
    if (!aArguments.empty())
        rCall.m_nScanners = std::strtoul(Take().c_str(), nullptr, 10);
    if (!aArguments.empty())
        rCall.m_nFirst = std::strtoul(Take().c_str(), nullptr, 10);
    return aArguments.empty() && rCall.m_nScanners > 0 && rCall.m_sPicture.empty() != bPicture;
}

int Run(const ClCall& Call) {
    if (Call.m_sMode == "--limits")
        return bench::PrintLimits(Call.m_nScanners, Call.m_nFirst);
    if (Call.m_sMode == "--plates")
        return bench::PrintPlates(Call.m_nScanners, Call.m_nFirst);
    if (Call.m_sMode == "--residuals")
        return bench::PrintResiduals(Call.m_sPicture, Call.m_nScanners, Call.m_nFirst);
    if (Call.m_sMode == "--verdicts")
        return bench::PrintVerdicts(Call.m_sPicture, Call.m_nScanners, Call.m_nFirst);
    return MeasureScanners(Call.m_nScanners, Call.m_nFirst);
}

} // namespace

int main(int argc, char** argv) {
    ClCall Call;
    const std::vector<std::string> aModes{"", "--limits", "--plates", "--residuals", "--verdicts"};
    if (!ReadCall({argv + 1, argv + argc}, Call) ||
        std::count(aModes.begin(), aModes.end(), Call.m_sMode) == 0) {
        std::fprintf(stderr,
                     "usage: %s [--limits|--plates|--residuals PNG|--verdicts SVG] [SCANNERS "
                     "[FIRST_SEED]]\n",
                     argv[0]);
        return 2;
    }
    try {
        return Run(Call);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "accuracy: %s\n", e.what());
        return 1;
    }
}
