#include "bench/VerdictTables.h"

#include "diagnosis/Verdict.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>

namespace bench {

namespace {

bool IsDerived(const ClJudged& Judged) {
    return Judged.m_eDerived != EDerived::eRefused;
}

std::string Text(const ClRate& Rate) {
    char szText[64];
    std::snprintf(szText, sizeof szText, "%d of %d (%.2f %%)", Rate.m_nYes, Rate.m_nAll,
                  Rate.Percent());
    return szText;
}

/// A row of the table of kinds.
struct ClKindRow {
    int m_nRefused = 0;
    int m_nDoNotLoad = 0;
    std::map<ETruth, ClRate> m_aDoubtful;
};

std::vector<std::string> KindsOf(const Judgements& aJudged) {
    std::vector<std::string> aKinds;
    for (const ClJudged& Judged : aJudged)
        if (std::find(aKinds.begin(), aKinds.end(), Judged.m_sKind) == aKinds.end())
            aKinds.push_back(Judged.m_sKind);
    return aKinds;
}

constexpr std::array<std::pair<ETruth, const char*>, 5> g_aTruths{{
    {ETruth::eGood, "good"},
    {ETruth::eBetween, "between"},
    {ETruth::eWrongPoint, "wrong point"},
    {ETruth::eNearPlate, "plate nearly right"},
    {ETruth::eWrongPlate, "wrong plate"},
}};

/// Mean, spread and ends of a series.
struct ClSeries {
    void Add(double d) {
        m_dSum += d;
        m_dSquares += d * d;
        m_dLeast = m_nCount == 0 ? d : std::min(m_dLeast, d);
        m_dMost = m_nCount == 0 ? d : std::max(m_dMost, d);
        ++m_nCount;
    }
    double Rms() const { return m_nCount > 0 ? std::sqrt(m_dSquares / m_nCount) : 0.0; }

    int m_nCount = 0;
    double m_dSum = 0.0;
    double m_dSquares = 0.0;
    double m_dLeast = 0.0;
    double m_dMost = 0.0;
};

void PrintSeries(const char* szWhat, const ClSeries& Series) {
    std::printf("%60s: %5d, rms %.5f, from %.5f to %.5f\n", szWhat, Series.m_nCount, Series.Rms(),
                Series.m_dLeast, Series.m_dMost);
}

bool HasRightPlate(const ClJudged& Judged) {
    return IsDerived(Judged) && Judged.m_eTruth != ETruth::eWrongPlate &&
           Judged.m_eTruth != ETruth::eNearPlate;
}

} // namespace

std::vector<ClOperatingPoint> OperatingPoints(const Judgements& aJudged) {
    std::vector<ClOperatingPoint> aPoints;
    for (std::size_t i = 0; i < g_aShares.size(); ++i) {
        ClOperatingPoint Point;
        Point.m_dShare = g_aShares.at(i);
        for (const ClJudged& Judged : aJudged) {
            const ClFlag& Flag = Judged.m_aFlags.at(i);
            if (!IsDerived(Judged))
                continue;
            if (Judged.m_eTruth == ETruth::eWrongPoint) {
                Point.m_Found.Add(Flag.m_bNamed);
                Point.m_All.Add(Flag.m_bAll);
            }
            if (Judged.m_eTruth == ETruth::eGood)
                Point.m_Good.Add(Flag.m_bFlagged);
            if (Judged.m_eTruth == ETruth::eBetween)
                Point.m_Between.Add(Flag.m_bFlagged);
        }
        aPoints.push_back(Point);
    }
    return aPoints;
}

void PrintKinds(const Judgements& aJudged) {
    std::printf("%28s %8s %12s   doubtful of those derived\n", "", "refused", "do not load");
    for (const std::string& sKind : KindsOf(aJudged)) {
        ClKindRow Row;
        for (const ClJudged& Judged : aJudged) {
            if (Judged.m_sKind != sKind)
                continue;
            Row.m_nRefused += IsDerived(Judged) ? 0 : 1;
            Row.m_nDoNotLoad += Judged.m_eDerived == EDerived::eDoesNotLoad ? 1 : 0;
            if (IsDerived(Judged))
                Row.m_aDoubtful[Judged.m_eTruth].Add(Judged.m_bDoubtful);
        }
        std::printf("%28s %8d %12d  ", sKind.c_str(), Row.m_nRefused, Row.m_nDoNotLoad);
        for (const auto& [eTruth, szTruth] : g_aTruths)
            if (Row.m_aDoubtful.count(eTruth) > 0)
                std::printf(" %s %d/%d", szTruth, Row.m_aDoubtful[eTruth].m_nYes,
                            Row.m_aDoubtful[eTruth].m_nAll);
        std::printf("\n");
    }
}

void PrintOperatingPoints(const std::vector<ClOperatingPoint>& aPoints) {
    std::printf("\n%10s %26s %26s %26s %26s\n", "threshold", "wrong, the dot named",
                "all wrong dots named", "good flagged", "between flagged");
    for (const ClOperatingPoint& Point : aPoints)
        std::printf("%10.2f %26s %26s %26s %26s\n", Point.m_dShare, Text(Point.m_Found).c_str(),
                    Text(Point.m_All).c_str(), Text(Point.m_Good).c_str(),
                    Text(Point.m_Between).c_str());
}

void PrintVerdict(const Judgements& aJudged) {
    ClRate Wrong;
    ClRate WrongNamed;
    ClRate Right;
    std::map<ETruth, ClRate> aDoubtful;
    for (const ClJudged& Judged : aJudged) {
        if (!IsDerived(Judged))
            continue;
        aDoubtful[Judged.m_eTruth].Add(Judged.m_bDoubtful);
        if (Judged.m_eTruth == ETruth::eWrongPoint) {
            Wrong.Add(Judged.m_bDoubtful);
            WrongNamed.Add(Judged.m_bNamed);
        } else if (HasRightPlate(Judged)) {
            Right.Add(Judged.m_bDoubtful);
        }
    }
    std::printf("\nverdict doubtful, of all that was derived:\n");
    for (const auto& [eTruth, szTruth] : g_aTruths)
        std::printf("%20s: %s\n", szTruth, Text(aDoubtful[eTruth]).c_str());
    std::printf("%20s: %s\n%20s: %s\n", "wrong, dot named", Text(WrongNamed).c_str(),
                "good and between", Text(Right).c_str());
}

void PrintPlateScales(const Judgements& aJudged) {
    ClSeries X;
    ClSeries Y;
    ClSeries Shear;
    ClSeries OffPlate;
    for (const ClJudged& Judged : aJudged) {
        if (HasRightPlate(Judged) && Judged.m_eTruth == ETruth::eGood) {
            X.Add(Judged.m_Middle.m_dScaleX - 1.0);
            Y.Add(Judged.m_Middle.m_dScaleY - 1.0);
            Shear.Add(Judged.m_Middle.m_dShear);
        }
        if (IsDerived(Judged) && Judged.m_sKind == "wrong pitch") {
            OffPlate.Add(Judged.m_Middle.m_dScaleX - Judged.m_dPlateScale);
            OffPlate.Add(Judged.m_Middle.m_dScaleY - Judged.m_dPlateScale);
        }
    }
    std::printf("\nscale in the middle of the pattern, less what is true:\n");
    PrintSeries("in x, right plates", X);
    PrintSeries("in y, right plates", Y);
    PrintSeries("in x and in y, plates of another pitch", OffPlate);
    PrintSeries("shear in degrees, right plates", Shear);
}

void PrintSecond(const Judgements& aJudged) {
    std::map<ETruth, ClRate> aRates;
    std::map<ETruth, ClSeries> aMax;
    std::map<ETruth, ClSeries> aScale;
    for (const ClJudged& Judged : aJudged) {
        if (!Judged.m_bSecond)
            continue;
        aRates[Judged.m_eTruth].Add(*Judged.m_bSecond);
        aMax[Judged.m_eTruth].Add(Judged.m_dSecondMax);
        aScale[Judged.m_eTruth].Add(Judged.m_dSecondScale - 1.0);
    }
    std::printf("\na second capture, clean, makes it doubtful:\n");
    for (const auto& [eTruth, szTruth] : g_aTruths) {
        if (aRates.count(eTruth) == 0)
            continue;
        std::printf("%20s: %s\n", szTruth, Text(aRates[eTruth]).c_str());
        PrintSeries("dot furthest off, pixels", aMax[eTruth]);
        PrintSeries("scale less 1", aScale[eTruth]);
    }
}

void PrintZones(const Judgements& aJudged) {
    std::printf("\nexpected error of the corrected image against the true one, rms by zone:\n");
    constexpr std::array<const char*, 3> aNames{"inside", "edge", "corner"};
    for (std::size_t n = 0; n < aNames.size(); ++n) {
        ClSeries True;
        ClSeries Expected;
        ClRate Within;
        for (const ClJudged& Judged : aJudged) {
            if (!Judged.m_Zones)
                continue;
            const double dTrue = Judged.m_Zones->m_aTrue.at(n);
            const double dExpected = Judged.m_Zones->m_aExpected.at(n);
            True.Add(dTrue);
            Expected.Add(dExpected);
            Within.Add(dExpected > 0.7 * dTrue && dExpected < 1.3 * dTrue);
        }
        std::printf("%10s: true %.4f, expected %.4f, %+.1f percent; within 30 percent: %s\n",
                    aNames.at(n), True.Rms(), Expected.Rms(),
                    100.0 * (Expected.Rms() / True.Rms() - 1.0), Text(Within).c_str());
    }
}

} // namespace bench
