#include "apps/qk7/RecordFault.h"

#include "Calibrate/DotPattern.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "Tools/Exception.h"
#include "Tools/MemStream.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace qk7 {

namespace {

constexpr double cdInchesPerMetre = 39.37; // as records are written
constexpr double cdTargetTolerance = 10.0; // pixels
constexpr double cdStepTolerance = 0.3;    // of the mean step

/// A dot of the pattern and where it was found.
struct StDot {
    int m_nColumn = 0; ///< from 0
    int m_nRow = 0;
    StPlace m_At;
};

using Dots = std::vector<StDot>;

std::string Tenths(double dValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, "%.1f", dValue);
    return szText;
}

/// The dots of a record, column by column from the left, each from the top.
Dots DotsOf(const ClCalibrateGeometricData& Record) {
    TpArrayStatic<int> lengths;
    ClIpCalibrateGeometricBuildRefPointsQK7().GetGridColumnLengths(lengths);
    Dots dots;
    for (unsigned long c = 0; c < lengths.Entries(); ++c)
        for (int r = 0; r < lengths[c]; ++r) {
            const ClVector& at = Record.m_aActual[0][dots.size()];
            dots.push_back({static_cast<int>(c), r, {at.x, at.y}});
        }
    return dots;
}

StRecordFault FaultAt(StRecordFault::EList eList, const StDot& Dot, const std::string& Words) {
    return {eList, Dot.m_nColumn + 1, Dot.m_nRow + 1, Dot.m_At, Words};
}

std::string TargetWords(double dDistance, const char* szAxis) {
    return Tenths(dDistance) + " pixels in " + szAxis +
           " from its place in the ideal pattern, where " + Tenths(cdTargetTolerance) +
           " are allowed";
}

std::optional<StRecordFault> FindTargetFault(const ClCalibrateGeometricData& Record,
                                             const Dots& aDots) {
    ClCalibrateGeometricData::PointList ideal;
    ClIpCalibrateGeometricBuildRefPointsQK7().BuildTargetPoints(
        ideal, Record.m_nTargetPelsX / cdInchesPerMetre, Record.m_nTargetPelsY / cdInchesPerMetre,
        0.0, 0.0);
    const ClVector vFirst = Record.m_aTarget[0] - ideal[0];
    for (unsigned long i = 0; i < ideal.Entries(); ++i) {
        const ClVector vOff = Record.m_aTarget[i] - ideal[i] - vFirst;
        const bool bInX = std::fabs(vOff.x) > cdTargetTolerance;
        if (bInX || std::fabs(vOff.y) > cdTargetTolerance)
            return FaultAt(StRecordFault::EList::eTarget, aDots[i],
                           TargetWords(std::fabs(bInX ? vOff.x : vOff.y), bInX ? "x" : "y"));
    }
    return std::nullopt;
}

/// One of the two directions in which steps are compared.
struct StDirection {
    int m_nColumns;
    int m_nRows;
    double StPlace::*m_pAxis;
    const char* m_szUnit;
    const char* m_szThere; ///< the other dot, seen from the nearer one
    const char* m_szBack;
};

constexpr StDirection g_Down = {0, 1, &StPlace::m_dY, "lines", "below it", "above it"};
constexpr StDirection g_Right = {1, 0, &StPlace::m_dX, "columns", "on its right", "on its left"};

struct StDotStep {
    const StDot* m_pFrom;
    const StDot* m_pTo;
    double m_dLength;
};

std::vector<StDotStep> StepsOf(const Dots& aDots, const StDirection& Direction) {
    std::vector<StDotStep> steps;
    for (const StDot& from : aDots)
        for (const StDot& to : aDots)
            if (to.m_nColumn == from.m_nColumn + Direction.m_nColumns &&
                to.m_nRow == from.m_nRow + Direction.m_nRows)
                steps.push_back(
                    {&from, &to, to.m_At.*Direction.m_pAxis - from.m_At.*Direction.m_pAxis});
    return steps;
}

/// The steps that are accepted: formed as the library forms them, so that both draw the line at
/// the same place.
struct StRange {
    explicit StRange(const std::vector<StDotStep>& aSteps) {
        double dSum = 0.0;
        for (const StDotStep& step : aSteps)
            dSum += std::fabs(step.m_dLength);
        const double dMean = dSum / static_cast<double>(aSteps.size());
        m_dLeast = dMean - cdStepTolerance * dMean;
        m_dMost = dMean + cdStepTolerance * dMean;
    }
    bool Holds(double dStep) const { return dStep >= m_dLeast && !(dStep > m_dMost); }

    double m_dLeast;
    double m_dMost;
};

/// Where the dots ought to lie if the grid were regular: the plane that fits their places best. In
/// this pattern, whose rows are symmetric, the slopes along columns and rows are independent of
/// each other, so that each is a quotient of two sums.
class ClRegularGrid {
public:
    ClRegularGrid(const Dots& aDots, double StPlace::*pAxis) {
        const double dCount = static_cast<double>(aDots.size());
        for (const StDot& dot : aDots) {
            m_dColumn += dot.m_nColumn / dCount;
            m_dRow += dot.m_nRow / dCount;
            m_dMean += dot.m_At.*pAxis / dCount;
        }
        m_dPerColumn = Slope(aDots, pAxis, &StDot::m_nColumn, m_dColumn);
        m_dPerRow = Slope(aDots, pAxis, &StDot::m_nRow, m_dRow);
    }

    double At(const StDot& Dot) const {
        return m_dMean + (Dot.m_nColumn - m_dColumn) * m_dPerColumn +
               (Dot.m_nRow - m_dRow) * m_dPerRow;
    }

private:
    static double Slope(const Dots& aDots, double StPlace::*pAxis, int StDot::*pIndex,
                        double dMiddle) {
        double dMoment = 0.0;
        double dSquares = 0.0;
        for (const StDot& dot : aDots) {
            const double d = dot.*pIndex - dMiddle;
            dMoment += d * (dot.m_At.*pAxis);
            dSquares += d * d;
        }
        return dMoment / dSquares;
    }

    double m_dColumn = 0.0;
    double m_dRow = 0.0;
    double m_dMean = 0.0;
    double m_dPerColumn = 0.0;
    double m_dPerRow = 0.0;
};

std::string StepWords(const StDotStep& Step, const StDirection& Direction, const StRange& Range,
                      const char* szOther) {
    return Tenths(Step.m_dLength) + " " + Direction.m_szUnit + " to the dot " + szOther +
           ", where " + Tenths(Range.m_dLeast) + " to " + Tenths(Range.m_dMost) + " are expected";
}

/// A step has two ends, and either may be the dot that is wrong: it is the one further from its
/// place in a regular grid.
std::optional<StRecordFault> FindStepFault(const Dots& aDots, const StDirection& Direction) {
    const std::vector<StDotStep> steps = StepsOf(aDots, Direction);
    const StRange range(steps);
    const ClRegularGrid grid(aDots, Direction.m_pAxis);
    const auto off = [&](const StDot& Dot) {
        return std::fabs(Dot.m_At.*Direction.m_pAxis - grid.At(Dot));
    };
    std::optional<StRecordFault> fault;
    double dWorst = -1.0;
    for (const StDotStep& step : steps) {
        const bool bFrom = off(*step.m_pFrom) > off(*step.m_pTo);
        const StDot& dot = bFrom ? *step.m_pFrom : *step.m_pTo;
        if (range.Holds(step.m_dLength) || !(off(dot) > dWorst))
            continue;
        dWorst = off(dot);
        fault = FaultAt(
            StRecordFault::EList::eActual, dot,
            StepWords(step, Direction, range, bFrom ? Direction.m_szThere : Direction.m_szBack));
    }
    return fault;
}

} // namespace

std::optional<StRecordFault> FindRecordFault(const Bytes& Calibration) {
    ClCalibrateGeometricData record;
    try {
        ClMemStream stream(Calibration.data(), Calibration.size());
        static_cast<ClCalibrateDataBase&>(record).Read(stream);
    } catch (const ClException&) {
        return std::nullopt;
    }
    if (record.m_aTarget.Entries() != cnPatternPoints ||
        record.m_aActual[0].Entries() != cnPatternPoints)
        return std::nullopt;
    const Dots dots = DotsOf(record);
    if (auto fault = FindTargetFault(record, dots))
        return fault;
    if (auto fault = FindStepFault(dots, g_Down))
        return fault;
    return FindStepFault(dots, g_Right);
}

} // namespace qk7
