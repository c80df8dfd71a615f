#include "bench/FingerTally.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace bench {

namespace {

std::string Number(double d, int nDecimals) {
    char szText[64];
    std::snprintf(szText, sizeof szText, "%.*f", nDecimals, d);
    return szText;
}

} // namespace

double ClSpread::Mean() const {
    return std::accumulate(m_aValues.begin(), m_aValues.end(), 0.0) /
           static_cast<double>(m_aValues.size());
}

std::string ClSpread::Text(int nDecimals) const {
    if (m_aValues.empty())
        return "-";
    const auto [itLowest, itHighest] = std::minmax_element(m_aValues.begin(), m_aValues.end());
    return Number(Mean(), nDecimals) + " (" + Number(*itLowest, nDecimals) + " to " +
           Number(*itHighest, nDecimals) + ")";
}

std::string ClSpread::LowText(int nDecimals) const {
    if (m_aValues.empty())
        return "-";
    return Number(Mean(), nDecimals) + ", " +
           Number(*std::min_element(m_aValues.begin(), m_aValues.end()), nDecimals);
}

void ClFingerTally::AddTaken(const ClFingerRun& Run, const sim::ClCapture& Capture) {
    ++m_nTaken;
    m_Dirt.Add(Run.m_dDirt);
    m_Dry.Add(Run.m_dDry);
    if (!HasFinger(Capture))
        return;
    const sim::ClRaster Print = PrintArea(Capture);
    m_Area.Add(OverlapOf(Run.m_Mask, Capture.m_FingerArea, cnMaskThreshold));
    m_Print.Add(OverlapOf(Run.m_Mask, Print, cnMaskThreshold));
    m_AreaWithRim.Add(OverlapOf(Run.m_Mask, Capture.m_FingerArea, cnBackground));
    m_PrintWithRim.Add(OverlapOf(Run.m_Mask, Print, cnBackground));
}

void ClFingerTally::AddSensitive(const ClFingerRun& Run, const sim::ClCapture& Capture) {
    if (!Run.IsTaken())
        return;
    ++m_nTakenSensitive;
    m_DrySensitive.Add(Run.m_dDry);
    if (HasFinger(Capture))
        m_AreaSensitive.Add(OverlapOf(Run.m_Mask, Capture.m_FingerArea, cnMaskThreshold));
}

bool ClFingerTally::Measure(const ClFingerScanner& Finger, const sim::ClCapture& Capture) {
    ++m_nCaptures;
    AddSensitive(Finger.Run(Capture.m_Raw, true), Capture);
    m_Contamination.Add(Finger.Contamination(Capture.m_Raw));
    const ClFingerRun Run = Finger.Run(Capture.m_Raw, false);
    if (Run.IsTaken()) {
        AddTaken(Run, Capture);
    } else if (Run.HasMask()) {
        // Without free platen the dry finger level is 0.0 by rule; dirt leaves it as it was
        // measured.
        ++(Run.m_dDry > 0.0 ? m_nTooDirty : m_nNoFreePlaten);
    }
    return Run.IsTaken();
}

void ClFingerTally::PrintHead(const char* szFirstColumn) {
    std::printf("| %s | taken | too dirty | no free platen | overlap, finger | overlap, print | "
                "overlap with rim, finger | overlap with rim, print | dirt level | dry finger "
                "level | contamination | taken, sensitive | overlap, finger, "
                "sensitive | dry finger level, sensitive |\n"
                "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n",
                szFirstColumn);
}

void ClFingerTally::Print(const std::string& sFirstColumn) const {
    std::printf("| %s | %d of %d | %d | %d | %s | %s | %s | %s | %s | %s | %s | %d | %s | %s |\n",
                sFirstColumn.c_str(), m_nTaken, m_nCaptures, m_nTooDirty, m_nNoFreePlaten,
                m_Area.LowText(2).c_str(), m_Print.LowText(2).c_str(),
                m_AreaWithRim.LowText(2).c_str(), m_PrintWithRim.LowText(2).c_str(),
                m_Dirt.Text(1).c_str(), m_Dry.Text(1).c_str(), m_Contamination.Text(1).c_str(),
                m_nTakenSensitive, m_AreaSensitive.LowText(2).c_str(),
                m_DrySensitive.Text(1).c_str());
    std::fflush(stdout);
}

} // namespace bench
