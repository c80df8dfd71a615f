#include "apps/qk7/CalibrationReport.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/PagePicture.h"
#include "apps/qk7/ScannerReport.h"

#include "diagnosis/LocatedDots.h"
#include "diagnosis/Mapping.h"
#include "report/CaptureOutline.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace qk7 {

namespace {

constexpr double cdDotMillimetres = 0.8;
constexpr double cdBoxPerRegion = 1.6; ///< how much wider a box is than what it marks
/// Refused regions below this share of a dot's smallest area are grains; drawings leave them out.
constexpr double cdLeastArea = 50.0;
constexpr std::size_t cnMostDrawn = 100; ///< refused regions
constexpr std::size_t cnMostNamed = 6;
constexpr double cdMicrometresPerPixel = 50.8; ///< of the corrected image

/// A box around a place, so many millimetres wide and high.
report::StBox BoxAt(const report::StFrame& Frame, double dX, double dY, double dMillimetres) {
    const double dWidth = dMillimetres * Frame.m_Density.m_dX;
    const double dHeight = dMillimetres * Frame.m_Density.m_dY;
    return {dX - 0.5 * dWidth, dY - 0.5 * dHeight, dWidth, dHeight};
}

/// "area too small".
std::string ShortWords(std::string reason) {
    std::replace(reason.begin(), reason.end(), '_', ' ');
    return reason;
}

/// Dots that stand out of order are dots: only what was no dot by itself is drawn as refused.
bool IsNoDot(const StRefusal& Refusal) {
    return Refusal.m_Reason != "outside_column" && Refusal.m_Reason != "no_ideal_point";
}

report::StRegion Drawn(const report::StFrame& Frame, const StRegion& Region,
                       const std::string& Words) {
    const double dSide = std::sqrt(Region.m_dArea / (Frame.m_Density.m_dX * Frame.m_Density.m_dY));
    return {report::ERegion::eRefused,
            BoxAt(Frame, Region.m_dX, Region.m_dY, cdBoxPerRegion * dSide), Words};
}

void NoteRefusals(const StTargetDiagnosis& Target, const report::StFrame& Frame,
                  report::StTargetFinds& rFinds) {
    for (const StRefusal& refusal : Target.m_aRefusals) {
        rFinds.m_aRefusals.push_back({refusal.m_Words, refusal.m_aRegions.size()});
        for (const StRegion& region : refusal.m_aRegions)
            if (IsNoDot(refusal) && region.m_dArea >= cdLeastArea &&
                rFinds.m_aRegions.size() < cnMostDrawn)
                rFinds.m_aRegions.push_back(Drawn(Frame, region, ShortWords(refusal.m_Reason)));
    }
    if (rFinds.m_aRegions.size() > cnMostNamed)
        for (report::StRegion& rRegion : rFinds.m_aRegions)
            rRegion.m_sWords.clear();
}

void NoteGaps(const StTargetDiagnosis& Target, const report::StFrame& Frame,
              report::StTargetFinds& rFinds) {
    for (const StGap& gap : Target.m_aGaps) {
        const report::StPatternPlace place = {gap.m_nColumn, gap.m_nRow};
        rFinds.m_aMissing.push_back({place, {gap.m_dX, gap.m_dY}});
        rFinds.m_aRegions.push_back(
            {report::ERegion::eMissing,
             BoxAt(Frame, gap.m_dX, gap.m_dY, cdBoxPerRegion * cdDotMillimetres),
             report::NameOf(place)});
    }
}

report::StFrame CorrectedFrame(const diagnosis::StRecord& Record, bool bUpward) {
    return {Record.m_nTargetWidth, Record.m_nTargetHeight, Record.m_Target, bUpward,
            "corrected image"};
}

/// Places 2 mm apart, as the dots are, over the whole corrected image.
report::StWarpGrid GridOf(const diagnosis::ClMapping& Mapping, const report::StFrame& Capture,
                          const report::StFrame& Corrected) {
    report::StWarpGrid grid;
    grid.m_Capture = Capture;
    grid.m_nColumns = 9;
    grid.m_nRows = 13;
    grid.m_Step = {2.0, 2.0};
    const report::StPoint middle = {0.5 * (Corrected.m_nWidth - 1),
                                    0.5 * (Corrected.m_nHeight - 1)};
    for (int nRow = 0; nRow < grid.m_nRows; ++nRow)
        for (int nColumn = 0; nColumn < grid.m_nColumns; ++nColumn)
            grid.m_aRaw.push_back(
                Mapping({middle.m_dX + (nColumn - 4) * grid.m_Step.m_dX * Corrected.m_Density.m_dX,
                         middle.m_dY + (nRow - 6) * grid.m_Step.m_dY * Corrected.m_Density.m_dY}));
    return grid;
}

double Distance(const diagnosis::Points& aPoints, std::size_t i, std::size_t j) {
    return std::sqrt(diagnosis::SquaredLength(aPoints[i] - aPoints[j]));
}

report::StEftsPairs PairsOf(const diagnosis::StLocated& Located, const diagnosis::StRecord& Record,
                            const report::StFrame& Corrected) {
    report::StEftsPairs pairs;
    pairs.m_Corrected = Corrected;
    pairs.m_dPercent = Located.m_dPercent;
    pairs.m_nAll = Located.m_aFound.size() * (Located.m_aFound.size() - 1) / 2;
    for (std::size_t i = 0; i < Located.m_aFound.size(); ++i)
        pairs.m_aDots.push_back({diagnosis::PatternPlace(i), Located.m_aFound[i], {}, false});
    for (const auto& [i, j] : Located.m_aFailedPairs) {
        const double dReference = Distance(Record.m_aTarget, i, j);
        pairs.m_aFailing.push_back(
            {i, j, dReference, Distance(Located.m_aFound, i, j), report::EftsLimit(dReference)});
    }
    return pairs;
}

/// The library's own percentage; nothing where it does not find the target.
void NoteEfts(const StDerivation& Derivation, const StBlocks& Blocks,
              const diagnosis::StRecord& Record, report::StScanner& rScanner) {
    const Bytes corrected = Corrected(Derivation.m_Target, Blocks.m_Calibration);
    ClHandle handle;
    handle.SetOption("PrecalculatedData=true"); // no warp table is needed
    handle.SetData(Blocks.m_Calibration);
    try {
        rScanner.m_Values["check/efts_percent"] = handle.CheckEfts(corrected);
    } catch (const ClLibraryError&) {
        return;
    }
    rScanner.m_Calibrated->m_Efts =
        PairsOf(diagnosis::LocateCorrected(Blocks.m_Calibration, corrected), Record,
                rScanner.m_Calibrated->m_Corrected);
}

/// Of the entries of the warp table those that have a source.
double CoverageOf(const Bytes& Precalculated) {
    const StPrecalculatedInfo info = ReadPrecalculatedInfo(Precalculated);
    return 100.0 * (1.0 - static_cast<double>(info.m_nWithoutSource) /
                              static_cast<double>(info.m_nEntries));
}

void NoteResiduals(report::StScanner& rScanner) {
    const std::vector<double> lengths = report::ResidualLengths(
        report::DotsOf(rScanner.m_Calibrated->m_Diagnosis), rScanner.m_CaptureFrame.m_Density);
    const double dMean =
        std::accumulate(lengths.begin(), lengths.end(), 0.0) / static_cast<double>(lengths.size());
    const double dMax = *std::max_element(lengths.begin(), lengths.end());
    report::Values& rValues = rScanner.m_Values;
    rValues["report/residual_mean"] = dMean;
    rValues["report/residual_max"] = dMax;
    rValues["report/residual_mean_pixels"] = dMean / cdMicrometresPerPixel;
    rValues["report/residual_max_pixels"] = dMax / cdMicrometresPerPixel;
}

double WorstDot(const diagnosis::StDiagnosis& Diagnosis) {
    double dWorst = 0.0;
    for (const diagnosis::StDotReading& dot : Diagnosis.m_aDots)
        dWorst = std::max(dWorst, diagnosis::ShareOfWrong(dot.m_Off));
    return dWorst;
}

void NoteVerdict(const StJudged& Judged, report::StScanner& rScanner) {
    const diagnosis::Reasons reasons = Judged.Reasons();
    rScanner.m_eVerdict = reasons.empty() ? report::EVerdict::eGood : report::EVerdict::eDoubtful;
    for (const diagnosis::StReason& reason : reasons)
        rScanner.m_aReasons.push_back(SentenceOf(reason));
    if (!reasons.empty())
        rScanner.m_sAdvice = DoubtAdvice(reasons) + ".";
}

} // namespace

report::StPicture PictureOf(const StSource& Source) {
    try {
        return PagePicture(Source.m_Bytes);
    } catch (const ClFailure& error) {
        throw ClFailure(Source.Name(), error.what());
    }
}

void NoteCapture(const StSource& Capture, report::StScanner& rScanner) {
    rScanner.m_Capture = PictureOf(Capture);
    const StBitmapInfo info = ReadBitmapInfo(Capture.m_Bytes);
    rScanner.m_CaptureFrame.m_nWidth = info.m_nWidth;
    rScanner.m_CaptureFrame.m_nHeight = std::abs(info.m_nHeight);
    rScanner.m_CaptureFrame.m_bUpward = info.m_nHeight > 0;
}

void NoteTarget(const StTargetDiagnosis& Target, report::StScanner& rScanner) {
    rScanner.m_CaptureFrame.m_Density = {Target.m_dColumnsPerMm, Target.m_dLinesPerMm};
    report::StTargetFinds& rFinds = rScanner.m_Finds;
    rFinds.m_nDots = Target.m_nDots;
    rFinds.m_nFound = Target.m_nFound;
    rFinds.m_nAccepted = Target.m_nAccepted;
    for (const StRegion& dot : Target.m_aFound)
        rFinds.m_aDots.push_back({{0, 0}, {dot.m_dX, dot.m_dY}, {}, false});
    NoteRefusals(Target, rScanner.m_CaptureFrame, rFinds);
    NoteGaps(Target, rScanner.m_CaptureFrame, rFinds);
}

void NoteJudged(const StDerivation& Derivation, const StBlocks& Blocks, const StJudged& Judged,
                report::StScanner& rScanner) {
    const diagnosis::StRecord record = diagnosis::ReadRecord(Blocks.m_Calibration);
    const diagnosis::ClMapping mapping(record);
    report::StFrame& rCapture = rScanner.m_CaptureFrame;
    rCapture.m_Density = record.m_Source; // as the calibration takes the capture
    report::StCalibrated calibrated;
    calibrated.m_Diagnosis = Judged.m_First;
    calibrated.m_Second = Judged.m_Second;
    calibrated.m_bStored = Judged.m_Target.has_value();
    calibrated.m_aTarget = record.m_aTarget;
    calibrated.m_Corrected = CorrectedFrame(record, rCapture.m_bUpward);
    calibrated.m_aOutline = report::CaptureOutline(mapping, rCapture, calibrated.m_Corrected);
    calibrated.m_Grid = GridOf(mapping, rCapture, calibrated.m_Corrected);
    rScanner.m_Calibrated = calibrated;
    NoteVerdict(Judged, rScanner);
    AddNumbers("generate", JsonOf(Judged), rScanner.m_Values);
    rScanner.m_Values["report/worst_dot"] = WorstDot(Judged.m_First);
    rScanner.m_Values["report/coverage"] = CoverageOf(Blocks.m_Precalculated);
    NoteResiduals(rScanner);
    NoteEfts(Derivation, Blocks, record, rScanner);
}

} // namespace qk7
