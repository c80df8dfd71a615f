#include "apps/qk7/TargetReport.h"

#include "apps/qk7/Console.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qk7 {

namespace {

using Json = nlohmann::ordered_json;

/// More than this are counted, not told: in text, and in JSON.
constexpr std::size_t cnPlacesTold = 4;
constexpr std::size_t cnRegionsListed = 100;

std::string Place(double dX, double dY) {
    return "(" + std::to_string(std::lround(dX)) + ", " + std::to_string(std::lround(dY)) + ")";
}

std::string Count(std::size_t nCount, const std::string& Thing) {
    return std::to_string(nCount) + " " + Thing + (nCount == 1 ? "" : "s");
}

/// As near to a limit as an eccentricity may lie.
std::string Thousandths(double dValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, "%.3f", dValue);
    return szText;
}

/// "7 at (12, 30)", with what a limit is about, or the place alone.
std::string TextOf(const StRegion& Region, double StRegion::*pMeasured) {
    std::string place = "at " + Place(Region.m_dX, Region.m_dY);
    if (pMeasured == nullptr)
        return place;
    if (pMeasured == &StRegion::m_dArea)
        return std::to_string(std::lround(Region.m_dArea)) + " " + place;
    return Thousandths(Region.*pMeasured) + " " + place;
}

/// "    7 with an area below 200 pixels: 121 at (12, 30), 80 at (200, 511) and 5 more".
std::string TextOf(const StRefusal& Refusal) {
    const std::vector<StRegion>& regions = Refusal.m_aRegions;
    const std::size_t nTold = std::min(regions.size(), cnPlacesTold);
    std::string text = "\n    " + std::to_string(regions.size()) + " " + Refusal.m_Words + ":";
    for (std::size_t i = 0; i < nTold; ++i)
        text += (i > 0 ? ", " : " ") + TextOf(regions[i], Refusal.m_pMeasured);
    if (regions.size() > nTold)
        text += " and " + std::to_string(regions.size() - nTold) + " more";
    return text;
}

std::string TextOf(const StGap& Gap) {
    return "\n  No dot near " + Place(Gap.m_dX, Gap.m_dY) + ": column " +
           std::to_string(Gap.m_nColumn) + ", row " + std::to_string(Gap.m_nRow) +
           " of the pattern.";
}

std::string TextOf(const std::vector<StGap>& aGaps) {
    std::string text;
    const std::size_t nTold = std::min(aGaps.size(), cnPlacesTold);
    for (std::size_t i = 0; i < nTold; ++i)
        text += TextOf(aGaps[i]);
    if (aGaps.size() > nTold)
        text += "\n  No dot at " + Count(aGaps.size() - nTold, "further place") + ".";
    return text;
}

std::size_t CountRegions(const StTargetDiagnosis& Diagnosis) {
    std::size_t nCount = 0;
    for (const StRefusal& refusal : Diagnosis.m_aRefusals)
        nCount += refusal.m_aRegions.size();
    return nCount;
}

std::string RefusedText(const StTargetDiagnosis& Diagnosis) {
    const std::size_t nCount = CountRegions(Diagnosis);
    if (nCount == 0)
        return "No region refused.";
    std::string text = Count(nCount, "region") + " refused; places are columns and lines:";
    for (const StRefusal& refusal : Diagnosis.m_aRefusals)
        text += TextOf(refusal);
    return text;
}

Json JsonOf(const StRecordFault& Fault) {
    return {{"column", Fault.m_nColumn},
            {"row", Fault.m_nRow},
            {"at", {Fault.m_At.m_dX, Fault.m_At.m_dY}},
            {"words", Fault.m_Words}};
}

Json JsonOf(const StRefusal& Refusal) {
    Json json = {{"reason", Refusal.m_Reason},
                 {"words", Refusal.m_Words},
                 {"count", Refusal.m_aRegions.size()},
                 {"regions", Json::array()}};
    const std::size_t nListed = std::min(Refusal.m_aRegions.size(), cnRegionsListed);
    for (std::size_t i = 0; i < nListed; ++i) {
        const StRegion& region = Refusal.m_aRegions[i];
        json["regions"].push_back({{"at", {region.m_dX, region.m_dY}},
                                   {"area", region.m_dArea},
                                   {"eccentricity", region.m_dEccentricity}});
    }
    return json;
}

} // namespace

std::string TextOf(const StTargetDiagnosis& Diagnosis) {
    std::string text = "\n  " + std::to_string(Diagnosis.m_nFound) + " of " +
                       Count(Diagnosis.m_nDots, "dot") + " found";
    if (Diagnosis.m_nAccepted < Diagnosis.m_nFound)
        text += ", " + std::to_string(Diagnosis.m_nAccepted) + " of them accepted";
    return text + "." + TextOf(Diagnosis.m_aGaps) + "\n  " + RefusedText(Diagnosis);
}

std::string SentenceOf(const StRecordFault& Fault) {
    return "The dot at " + Place(Fault.m_At.m_dX, Fault.m_At.m_dY) + ", column " +
           std::to_string(Fault.m_nColumn) + ", row " + std::to_string(Fault.m_nRow) +
           " of the pattern: " + Fault.m_Words + ".";
}

Json JsonOf(const StTargetDiagnosis& Diagnosis) {
    Json json = {{"dots", Diagnosis.m_nDots},
                 {"found", Diagnosis.m_nFound},
                 {"accepted", Diagnosis.m_nAccepted},
                 {"missing", Json::array()},
                 {"refused", Json::array()}};
    for (const StGap& gap : Diagnosis.m_aGaps)
        json["missing"].push_back(
            {{"column", gap.m_nColumn}, {"row", gap.m_nRow}, {"near", {gap.m_dX, gap.m_dY}}});
    for (const StRefusal& refusal : Diagnosis.m_aRefusals)
        json["refused"].push_back(JsonOf(refusal));
    return json;
}

ClRefusedTarget::ClRefusedTarget(const std::string& Message, const StTargetDiagnosis& Diagnosis,
                                 const std::string& Advice)
    : ClFailure(Message + TextOf(Diagnosis) + "\n  " + Advice), m_Message(Message),
      m_Advice(Advice), m_Diagnosis(Diagnosis) {}

ClUnloadableRecord::ClUnloadableRecord(const std::string& Message, const StRecordFault& Fault,
                                       const StTargetDiagnosis& Diagnosis,
                                       const std::string& Advice)
    : ClFailure(Message + "\n  " + SentenceOf(Fault) + "\n  " + Advice), m_Message(Message),
      m_Advice(Advice), m_Fault(Fault), m_Diagnosis(Diagnosis) {}

Json FailureJson(const std::string& Path, const std::exception& Error) {
    if (const auto* pRefused = dynamic_cast<const ClRefusedTarget*>(&Error))
        return {{"file", Path},
                {"error", pRefused->Message()},
                {"target", JsonOf(pRefused->Diagnosis())}};
    if (const auto* pUnloadable = dynamic_cast<const ClUnloadableRecord*>(&Error))
        return {{"file", Path},
                {"error", pUnloadable->Message()},
                {"dot", JsonOf(pUnloadable->Fault())},
                {"target", JsonOf(pUnloadable->Diagnosis())}};
    return {{"file", Path}, {"error", WordsOf(Error)}};
}

} // namespace qk7
