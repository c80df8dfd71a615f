#include "bench/VerdictRun.h"

#include "bench/Generation.h"
#include "bench/Residuals.h"
#include "bench/VerdictScenes.h"
#include "diagnosis/Diagnosis.h"
#include "diagnosis/SecondCapture.h"
#include "diagnosis/Zone.h"
#include "sim/BitmapBlock.h"
#include "sim/Imaging.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

constexpr double cdNearlyWrong = 2.0 / 3.0;
constexpr double cdWrongScale = 0.01;
constexpr double cdWrongAngle = 1.0;
enum ESubject : std::uint64_t { eSubjectDirt = 91, eSubjectNoise, eSubjectSecond };

/// The raw image and the true centres alone: the other images of a capture are not looked at.
sim::ClCapture RawCapture(const sim::ClScanner& Scanner, const sim::ClTargetScene& Scene,
                          std::uint64_t nSeed) {
    sim::ClPlate Plate;
    sim::ClCapture Capture;
    for (const sim::ClPoint& Dot : sim::PaintDots(Plate, Scene.m_Target))
        Capture.m_aDots.push_back(Scanner.RawFromPlaten(Dot));
    sim::PaintDirt(Plate, Scene.m_Dirt, sim::ClRandom::Derive(nSeed, eSubjectDirt));
    Capture.m_Raw = sim::ImageRaw(Scanner, Plate, sim::ClRandom::Derive(nSeed, eSubjectNoise));
    return Capture;
}

/// Shares of a wrong point, in pattern order.
std::vector<double> SharesOf(const Points& aActual, const Points& aTrue) {
    std::vector<double> aShares;
    for (std::size_t i = 0; i < aTrue.size(); ++i)
        aShares.push_back(std::max(std::fabs(aActual[i].x - aTrue[i].x) / cdWrongX,
                                   std::fabs(aActual[i].y - aTrue[i].y) / cdWrongY));
    return aShares;
}

double SkewOf(const sim::ClTargetSettings& Target) {
    return std::max(std::fabs(Target.m_dRowSlant), std::fabs(Target.m_dColumnLean));
}

ETruth TruthOf(const sim::ClTargetSettings& Target, double dWorst) {
    const double dScale = std::fabs(Target.m_dScale - 1.0);
    const bool bNoTarget = Target.m_aMissing.size() == static_cast<std::size_t>(sim::g_nDots);
    if (bNoTarget || dScale >= cdWrongScale || SkewOf(Target) >= cdWrongAngle)
        return ETruth::eWrongPlate;
    if (dWorst > 1.0)
        return ETruth::eWrongPoint;
    if (dScale > 0.0 || SkewOf(Target) > 0.0)
        return ETruth::eNearPlate;
    return dWorst > cdNearlyWrong ? ETruth::eBetween : ETruth::eGood;
}

ClFlag FlagOf(const std::vector<diagnosis::StDotOff>& aDoubtful,
              const std::vector<double>& aShares) {
    const auto named = [&](std::size_t nDot) {
        return std::any_of(aDoubtful.begin(), aDoubtful.end(),
                           [&](const auto& Dot) { return Dot.m_nDot == nDot; });
    };
    ClFlag Flag;
    Flag.m_bFlagged = !aDoubtful.empty();
    Flag.m_bNamed = named(static_cast<std::size_t>(
        std::max_element(aShares.begin(), aShares.end()) - aShares.begin()));
    Flag.m_bAll = true;
    for (std::size_t i = 0; i < aShares.size(); ++i) {
        Flag.m_bAll = Flag.m_bAll && (aShares[i] <= 1.0 || named(i));
        Flag.m_nRight += named(i) && aShares[i] <= 1.0 ? 1 : 0;
    }
    return Flag;
}

void CheckOnSecond(const sim::ClScanner& Scanner, const ClGeneration& Generated,
                   ClJudged& rJudged) {
    const std::uint64_t nSecond = sim::ClRandom::Derive(Scanner.Seed(), eSubjectSecond);
    const sim::ClCapture Capture =
        RawCapture(Scanner, FaultScene(Scanner.Settings(), Faults()[0], nSecond), nSecond);
    const diagnosis::StSecond Second =
        diagnosis::CheckSecond(Generated.m_aBlock, Correct(Generated.m_aBlock, Capture.m_Raw));
    rJudged.m_bSecond = !Second.m_aReasons.empty();
    rJudged.m_dSecondMax = Second.m_dMax;
    rJudged.m_dSecondScale = Second.m_dScale;
}

ClZoneErrors ZonesOf(const ClResidualField& Field, const diagnosis::StErrorMap& Map) {
    ClZoneErrors Zones;
    std::array<double, 3> aCounts{};
    for (int nRow = 0; nRow < ClResidualField::cnRows; ++nRow)
        for (int nColumn = 0; nColumn < ClResidualField::cnColumns; ++nColumn) {
            const auto n = static_cast<std::size_t>(
                ZoneOf(ClResidualField::PlaceOf(nColumn, nRow), Field.m_aTarget));
            const sim::ClPoint& Vector = Field.At(nColumn, nRow);
            const double dExpected = Map.At(nColumn, nRow);
            aCounts.at(n) += 1.0;
            Zones.m_aTrue.at(n) += Vector.x * Vector.x + Vector.y * Vector.y;
            Zones.m_aExpected.at(n) += dExpected * dExpected;
        }
    for (std::size_t n = 0; n < aCounts.size(); ++n) {
        Zones.m_aTrue.at(n) = std::sqrt(Zones.m_aTrue.at(n) / aCounts.at(n));
        Zones.m_aExpected.at(n) = std::sqrt(Zones.m_aExpected.at(n) / aCounts.at(n));
    }
    return Zones;
}

bool Names(const diagnosis::Reasons& aReasons, std::size_t nDot) {
    return std::any_of(aReasons.begin(), aReasons.end(), [&](const diagnosis::StReason& Reason) {
        return Reason.m_eReason == diagnosis::EReason::eDot && Reason.m_nDot == nDot;
    });
}

} // namespace

ClJudged Judge(const std::string& sKind, const sim::ClTargetScene& Scene, std::uint64_t nSeed,
               const ClAsked& Asked) {
    const sim::ClScanner Scanner(nSeed, Scene.m_Scanner);
    const sim::ClCapture Capture = RawCapture(Scanner, Scene, nSeed);
    const ClGeneration Generated = Generate(Capture.m_Raw);
    ClJudged Judged;
    Judged.m_sKind = sKind;
    Judged.m_dPlateScale = Scene.m_Target.m_dScale;
    if (Generated.m_nStatus != 0)
        return Judged;
    const std::vector<double> aShares = SharesOf(Generated.m_aActual, Capture.m_aDots);
    const auto worst = std::max_element(aShares.begin(), aShares.end());
    Judged.m_dWorst = *worst;
    Judged.m_eTruth = TruthOf(Scene.m_Target, *worst);
    Judged.m_eDerived = Loads(Generated.m_aBlock) ? EDerived::eLoads : EDerived::eDoesNotLoad;
    const diagnosis::StRecord Record = diagnosis::ReadRecord(Generated.m_aBlock);
    for (std::size_t i = 0; i < g_aShares.size(); ++i)
        Judged.m_aFlags.at(i) = FlagOf(diagnosis::DoubtfulDots(Record, g_aShares.at(i)), aShares);
    const diagnosis::StDiagnosis Diagnosis =
        diagnosis::Diagnose(Generated.m_aBlock, sim::BitmapBlock(Capture.m_Raw));
    Judged.m_Middle = Diagnosis.m_Plate.m_Middle;
    Judged.m_bDoubtful = !Diagnosis.IsGood();
    Judged.m_bNamed =
        Names(Diagnosis.m_aReasons, static_cast<std::size_t>(worst - aShares.begin()));
    if (Judged.m_eDerived != EDerived::eLoads)
        return Judged;
    if (Asked.m_bSecond || Judged.m_eTruth == ETruth::eWrongPoint)
        CheckOnSecond(Scanner, Generated, Judged);
    if (Asked.m_bZones && Judged.m_eTruth == ETruth::eGood)
        Judged.m_Zones = ZonesOf(MeasureResiduals(Scanner, Capture, Generated), Diagnosis.m_Errors);
    return Judged;
}

} // namespace bench
