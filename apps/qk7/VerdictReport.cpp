#include "apps/qk7/VerdictReport.h"

#include "diagnosis/Words.h"

#include <algorithm>
#include <cmath>

namespace qk7 {

namespace {

using diagnosis::StAffine;
using diagnosis::StDiagnosis;
using diagnosis::StDotReading;
using diagnosis::StErrorMap;
using diagnosis::StPoint;
using diagnosis::StReason;
using diagnosis::StSecond;
using diagnosis::Words;

/// The largest of all dots, without sign.
StPoint MostLeftOut(const StDiagnosis& Diagnosis) {
    StPoint most;
    for (const StDotReading& dot : Diagnosis.m_aDots) {
        most.m_dX = std::max(most.m_dX, std::fabs(dot.m_LeaveOneOut.m_dX));
        most.m_dY = std::max(most.m_dY, std::fabs(dot.m_LeaveOneOut.m_dY));
    }
    return most;
}

std::string FigureLines(const StDiagnosis& Diagnosis) {
    const StPoint most = MostLeftOut(Diagnosis);
    const StAffine& middle = Diagnosis.m_Plate.m_Middle; // what the verdict goes by
    const StErrorMap& errors = Diagnosis.m_Errors;
    return Words("  Each dot lies within %.2f pixels in x and %.2f in y of where the other 74 "
                 "place it.\n",
                 most.m_dX, most.m_dY) +
           Words("  Scale in the middle %.4f in x and %.4f in y, shear %.2f degrees, "
                 "distortion up to %.3f mm.\n",
                 middle.m_dScaleX, middle.m_dScaleY, middle.m_dShear,
                 Diagnosis.m_Plate.m_dDistortionMax) +
           Words("  Expected error of a corrected image: %.2f pixels inside the dots, %.2f beyond "
                 "them, %.2f in the corners.\n",
                 errors.m_dInside, errors.m_dEdge, errors.m_dCorner);
}

std::string SecondLine(const StSecond& Second) {
    if (!Second.m_bFound)
        return "";
    return Words("  Second capture: dots within %.2f pixels of their places, %.2f %% of the "
                 "distances within the EFTS limits, scale %.4f.\n",
                 Second.m_dMax, Second.m_dPercent, Second.m_dScale);
}

Json Pair(const StPoint& Point) {
    return {Point.m_dX, Point.m_dY};
}

Json JsonOf(const diagnosis::StPatternPlace& Place) {
    return {{"column", Place.m_nColumn}, {"row", Place.m_nRow}};
}

Json JsonOf(const StReason& Reason) {
    Json json = {{"reason", diagnosis::ReasonName(Reason.m_eReason)}};
    if (Reason.m_nDot < diagnosis::cnDots)
        json.update(JsonOf(diagnosis::PatternPlace(Reason.m_nDot)));
    json["words"] = Reason.m_Words;
    return json;
}

Json JsonOf(const StDotReading& Dot) {
    Json json = JsonOf(Dot.m_Place);
    json["at"] = Pair(Dot.m_Found);
    json["leave_one_out"] = Pair(Dot.m_LeaveOneOut);
    json["off"] = Pair(Dot.m_Off);
    json["grey_off"] = Pair(Dot.m_GreyOff);
    json["contrast"] = Dot.m_dContrast;
    json["diameter_mm"] = Dot.m_dDiameter;
    json["roundness"] = Dot.m_dRoundness;
    return json;
}

Json JsonOf(const StAffine& Affine) {
    return {{"scale", {Affine.m_dScaleX, Affine.m_dScaleY}},
            {"rotation", Affine.m_dRotation},
            {"shear", Affine.m_dShear}};
}

Json JsonOf(const diagnosis::StPlateFit& Plate) {
    return {{"whole", JsonOf(Plate.m_Whole)},
            {"middle", JsonOf(Plate.m_Middle)},
            {"distortion_mm", {{"rms", Plate.m_dDistortionRms}, {"max", Plate.m_dDistortionMax}}}};
}

Json JsonOf(const StErrorMap& Errors) {
    Json json = {{"inside", Errors.m_dInside},
                 {"edge", Errors.m_dEdge},
                 {"corner", Errors.m_dCorner},
                 {"scatter", {Errors.m_Scatter.m_dX, Errors.m_Scatter.m_dY}},
                 {"columns", StErrorMap::cnColumns},
                 {"rows", StErrorMap::cnRows},
                 {"map", Json::array()}};
    for (int nRow = 0; nRow < StErrorMap::cnRows; ++nRow) {
        Json row = Json::array();
        for (int nColumn = 0; nColumn < StErrorMap::cnColumns; ++nColumn)
            row.push_back(std::round(1e4 * Errors.At(nColumn, nRow)) / 1e4);
        json["map"].push_back(row);
    }
    return json;
}

Json JsonOf(const StSecond& Second) {
    if (!Second.m_bFound)
        return {{"found", false}};
    Json json = {{"found", true},
                 {"efts_percent", Second.m_dPercent},
                 {"scale", Second.m_dScale},
                 {"rms", Second.m_dRms},
                 {"max", Second.m_dMax},
                 {"dots", Json::array()}};
    for (const diagnosis::StSecondDot& dot : Second.m_aDots) {
        Json entry = JsonOf(dot.m_Place);
        entry["at"] = Pair(dot.m_Found);
        entry["off"] = Pair(dot.m_Off);
        entry["failed_pairs"] = dot.m_nFailedPairs;
        json["dots"].push_back(entry);
    }
    return json;
}

template <class Range>
Json ListOf(const Range& Things) {
    Json json = Json::array();
    for (const auto& thing : Things)
        json.push_back(JsonOf(thing));
    return json;
}

} // namespace

bool StJudged::IsGood() const {
    return Reasons().empty();
}

diagnosis::Reasons StJudged::Reasons() const {
    diagnosis::Reasons reasons = m_First.m_aReasons;
    for (const auto* pCorrected : {&m_Target, &m_Second})
        if (*pCorrected)
            reasons.insert(reasons.end(), (*pCorrected)->m_aReasons.begin(),
                           (*pCorrected)->m_aReasons.end());
    return reasons;
}

std::string SentenceOf(const StReason& Reason) {
    std::string words = Reason.m_Words;
    words[0] =
        static_cast<char>(words[0] >= 'a' && words[0] <= 'z' ? words[0] - 'a' + 'A' : words[0]);
    return words + ".";
}

std::string VerdictOf(const StJudged& Judged) {
    return Judged.IsGood() ? "good" : "doubtful";
}

std::string TextOf(const std::string& Calibration, const StJudged& Judged,
                   const std::string& Verdict) {
    std::string text = Calibration + ": " + Verdict + "\n";
    for (const StReason& reason : Judged.Reasons())
        text += "  " + SentenceOf(reason) + "\n";
    text += FigureLines(Judged.m_First);
    return Judged.m_Second ? text + SecondLine(*Judged.m_Second) : text;
}

Json JsonOf(const StJudged& Judged) {
    Json json = {{"verdict", VerdictOf(Judged)},
                 {"reasons", ListOf(Judged.Reasons())},
                 {"dots", ListOf(Judged.m_First.m_aDots)},
                 {"plate", JsonOf(Judged.m_First.m_Plate)},
                 {"expected_error", JsonOf(Judged.m_First.m_Errors)}};
    if (Judged.m_Second)
        json["second"] = JsonOf(*Judged.m_Second);
    return json;
}

} // namespace qk7
