#pragma once

#include "bench/VerdictRun.h"

#include <vector>

namespace bench {

/// How many of so many.
struct ClRate {
    void Add(bool bYes) {
        m_nYes += bYes ? 1 : 0;
        ++m_nAll;
    }
    double Percent() const { return m_nAll > 0 ? 100.0 * m_nYes / m_nAll : 0.0; }

    int m_nYes = 0;
    int m_nAll = 0;
};

/// A threshold of the verdict on dots, over all calibrations that load or not.
struct ClOperatingPoint {
    double m_dShare = 0.0;
    ClRate m_Found;   ///< wrong ones with their dot named
    ClRate m_All;     ///< wrong ones with all their wrong dots named
    ClRate m_Good;    ///< good ones flagged
    ClRate m_Between; ///< those between flagged
};

using Judgements = std::vector<ClJudged>;

std::vector<ClOperatingPoint> OperatingPoints(const Judgements& aJudged);

void PrintKinds(const Judgements& aJudged);
void PrintOperatingPoints(const std::vector<ClOperatingPoint>& aPoints);
void PrintVerdict(const Judgements& aJudged);
void PrintPlateScales(const Judgements& aJudged);
void PrintSecond(const Judgements& aJudged);
void PrintZones(const Judgements& aJudged);

} // namespace bench
