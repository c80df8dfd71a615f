#include "diagnosis/ErrorMap.h"

#include "diagnosis/SplineSystem.h"
#include "diagnosis/Zone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace diagnosis {

namespace {

constexpr int cnCubic = 3;
constexpr double cdNormal = 1.4826; ///< of the median of absolute values, for normal scatter
constexpr double cdOutlier = 3.0;   ///< times the scatter: does not count for it

template <class Tp>
std::vector<Tp> Without(const std::vector<Tp>& aAll, const std::vector<std::size_t>& aOut) {
    std::vector<Tp> aKept;
    for (std::size_t i = 0; i < aAll.size(); ++i)
        if (std::find(aOut.begin(), aOut.end(), i) == aOut.end())
            aKept.push_back(aAll[i]);
    return aKept;
}

double Median(Values aValues) {
    const auto middle = aValues.begin() + static_cast<std::ptrdiff_t>(aValues.size() / 2);
    std::nth_element(aValues.begin(), middle, aValues.end());
    return *middle;
}

double RowSquares(const ClSplineSystem& System, std::size_t i) {
    double dSum = 0.0;
    for (std::size_t j = 0; j < System.Size(); ++j)
        dSum += System.Bending(i, j) * System.Bending(i, j);
    return dSum;
}

/// White scatter of the values makes weights of a variance of (C C)_ii times its own.
double ScatterOf(const ClSplineSystem& System, const Values& aWeights) {
    Values aSizes;
    for (std::size_t i = 0; i < aWeights.size(); ++i)
        aSizes.push_back(std::fabs(aWeights[i]) / std::sqrt(RowSquares(System, i)));
    const double dMost = cdOutlier * cdNormal * Median(aSizes);
    double dSum = 0.0;
    double dCount = 0.0;
    for (const double dSize : aSizes)
        if (dSize <= dMost) {
            dSum += dSize * dSize;
            dCount += 1.0;
        }
    return std::sqrt(dSum / dCount);
}

/// The places whose leaving out leaves more open than the middle one of all: the border.
std::vector<std::size_t> BorderOf(const ClSplineSystem& System) {
    Values aBending;
    for (std::size_t i = 0; i < System.Size(); ++i)
        aBending.push_back(System.Bending(i, i));
    const double dMiddle = Median(aBending);
    std::vector<std::size_t> aBorder;
    for (std::size_t i = 0; i < System.Size(); ++i)
        if (System.Bending(i, i) < 0.9 * dMiddle)
            aBorder.push_back(i);
    return aBorder;
}

/// A loose trend of looseness 1 adds C_ii to the variance of a weight.
double LoosenessOf(const ClSplineSystem& System, const Values& aWeights, double dScatter) {
    double dSum = 0.0;
    double dCount = 0.0;
    for (const std::size_t i : BorderOf(System)) {
        dSum += (aWeights[i] * aWeights[i] - dScatter * dScatter * RowSquares(System, i)) /
                System.Bending(i, i);
        dCount += 1.0;
    }
    return dSum > 0.0 ? std::sqrt(dSum / dCount) : 0.0;
}

double Sum(const Values& aCounts, const Values& aValues) {
    double dSum = 0.0;
    for (std::size_t i = 0; i < aCounts.size(); ++i)
        dSum += aCounts[i] * aValues[i];
    return dSum;
}

/// Numbers of the places that are kept, with 0 for those that are out.
Values Expanded(const Values& aKept, std::size_t nAll, const std::vector<std::size_t>& aOut) {
    Values aAll(nAll, 0.0);
    std::size_t nNext = 0;
    for (std::size_t i = 0; i < nAll; ++i)
        if (std::find(aOut.begin(), aOut.end(), i) == aOut.end())
            aAll[i] = aKept[nNext++];
    return aAll;
}

/// What counts at a place, whichever the coordinate.
struct StPlaceCounts {
    double m_dOwnSquares; ///< of the counts of the calibration's spline
    Values m_aDifference; ///< of its counts and those of the better one
    double m_dDifferenceSquares;
    double m_dOpenness; ///< of the better one
};

StPlaceCounts CountsOf(const StKnowledge& Own, const StKnowledge& Better,
                       const std::vector<std::size_t>& aOut) {
    Values aDifference = Expanded(Better.m_aCounts, Own.m_aCounts.size(), aOut);
    for (std::size_t i = 0; i < aDifference.size(); ++i)
        aDifference[i] = Own.m_aCounts[i] - aDifference[i];
    return {Sum(Own.m_aCounts, Own.m_aCounts), aDifference, Sum(aDifference, aDifference),
            Better.m_dOpenness};
}

/// One coordinate of the points.
class ClAxis {
public:
    ClAxis(const Values& aAll, const Values& aKept, const ClSplineSystem& Better) : m_aAll(aAll) {
        const Values aWeights = Better.Weights(aKept);
        m_dScatter = ScatterOf(Better, aWeights);
        m_dLooseness = LoosenessOf(Better, aWeights, m_dScatter);
    }

    /// Expected square of the error, raw pixels.
    double SquareAt(const StPlaceCounts& Counts) const {
        const double dLost = Sum(Counts.m_aDifference, m_aAll);
        const double dVariance = m_dScatter * m_dScatter;
        return std::max(0.0, dLost * dLost - dVariance * Counts.m_dDifferenceSquares) +
               dVariance * Counts.m_dOwnSquares + m_dLooseness * m_dLooseness * Counts.m_dOpenness;
    }
    double Scatter() const { return m_dScatter; }
    double Looseness() const { return m_dLooseness; }

private:
    Values m_aAll;
    double m_dScatter;
    double m_dLooseness;
};

/// A mean of squares for each zone.
class ClZoneMeans {
public:
    void Add(EZone eZone, double dSquare) {
        m_aSums.at(static_cast<std::size_t>(eZone)) += dSquare;
        m_aCounts.at(static_cast<std::size_t>(eZone)) += 1.0;
    }
    double Root(EZone eZone) const {
        const auto n = static_cast<std::size_t>(eZone);
        return m_aCounts.at(n) > 0.0 ? std::sqrt(m_aSums.at(n) / m_aCounts.at(n)) : 0.0;
    }

private:
    std::array<double, 3> m_aSums{};
    std::array<double, 3> m_aCounts{};
};

} // namespace

StPoint StErrorMap::PlaceOf(int nColumn, int nRow) const {
    return {nColumn * (m_nWidth - 1.0) / (cnColumns - 1), nRow * (m_nHeight - 1.0) / (cnRows - 1)};
}

double StErrorMap::At(int nColumn, int nRow) const {
    return m_aErrors[static_cast<std::size_t>(nRow) * cnColumns +
                     static_cast<std::size_t>(nColumn)];
}

double StErrorMap::At(const StPoint& Place) const {
    const double x =
        std::clamp(Place.m_dX * (cnColumns - 1) / (m_nWidth - 1.0), 0.0, cnColumns - 1.0);
    const double y = std::clamp(Place.m_dY * (cnRows - 1) / (m_nHeight - 1.0), 0.0, cnRows - 1.0);
    const int nColumn = std::min(static_cast<int>(x), cnColumns - 2);
    const int nRow = std::min(static_cast<int>(y), cnRows - 2);
    const double u = x - nColumn;
    const double v = y - nRow;
    return (1.0 - v) * ((1.0 - u) * At(nColumn, nRow) + u * At(nColumn + 1, nRow)) +
           v * ((1.0 - u) * At(nColumn, nRow + 1) + u * At(nColumn + 1, nRow + 1));
}

StErrorMap MapErrors(const StRecord& Record, const std::vector<std::size_t>& aWrong) {
    if (Record.m_nTargetWidth < 2 || Record.m_nTargetHeight < 2)
        throw std::invalid_argument("the corrected image has no area");
    const ClSplineSystem Own(Record.m_aTarget);
    const ClSplineSystem Better(Without(Record.m_aTarget, aWrong), cnCubic);
    const Points aKept = Without(Record.m_aFound, aWrong);
    const ClAxis X(Along(&StPoint::m_dX, Record.m_aFound), Along(&StPoint::m_dX, aKept), Better);
    const ClAxis Y(Along(&StPoint::m_dY, Record.m_aFound), Along(&StPoint::m_dY, aKept), Better);
    const double dPerRawX = Record.m_Target.m_dX / Record.m_Source.m_dX;
    const double dPerRawY = Record.m_Target.m_dY / Record.m_Source.m_dY;
    StErrorMap Map;
    Map.m_nWidth = Record.m_nTargetWidth;
    Map.m_nHeight = Record.m_nTargetHeight;
    Map.m_Scatter = {X.Scatter(), Y.Scatter()};
    Map.m_Looseness = {X.Looseness(), Y.Looseness()};
    ClZoneMeans Means;
    for (int nRow = 0; nRow < StErrorMap::cnRows; ++nRow)
        for (int nColumn = 0; nColumn < StErrorMap::cnColumns; ++nColumn) {
            const StPoint Place = Map.PlaceOf(nColumn, nRow);
            const StPlaceCounts Counts =
                CountsOf(Own.KnowledgeAt(Place), Better.KnowledgeAt(Place), aWrong);
            const double dSquare =
                dPerRawX * dPerRawX * X.SquareAt(Counts) + dPerRawY * dPerRawY * Y.SquareAt(Counts);
            Map.m_aErrors.push_back(std::sqrt(dSquare));
            Means.Add(ZoneOf(Place, Record.m_aTarget), dSquare);
        }
    Map.m_dInside = Means.Root(EZone::eInside);
    Map.m_dEdge = Means.Root(EZone::eEdge);
    Map.m_dCorner = Means.Root(EZone::eCorner);
    return Map;
}

} // namespace diagnosis
