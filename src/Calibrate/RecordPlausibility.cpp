// The plausibility of a stored record, purely by geometry: the target points are the pattern, and
// every step between neighbouring dots of the capture is like the others.

#include "Calibrate/RecordPlausibility.h"

#include "Calibrate/RecordLimits.h"
#include "Tools/Allocate.h"

#include <cmath>

using RecordPlausibility::DotGrid;
using RecordPlausibility::PointList;

namespace {

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using ClDot = ClBase::ClDot;

constexpr double cdTargetTolerance = 10.0; // pixels
constexpr double cdStepTolerance = 0.3;    // of the mean step

/// Whether a list is another one moved as a whole, within the tolerance.
bool IsMoved(const PointList& rIdeal, const PointList& rPoints) {
    if (rIdeal.Entries() != rPoints.Entries() || rIdeal.Entries() == 0)
        return false;
    const ClVector vMove = rIdeal[0] - rPoints[0];
    for (unsigned long i = 0; i < rIdeal.Entries(); ++i) {
        const ClVector vRest = rIdeal[i] - rPoints[i] - vMove;
        if (std::fabs(vRest.x) > cdTargetTolerance || std::fabs(vRest.y) > cdTargetTolerance)
            return false;
    }
    return true;
}

/// Walks the places of the pattern, column by column. Behind the last one there is no place.
class ClPlaces {
public:
    explicit ClPlaces(const TpArrayStatic<int>& rLengths) : m_rLengths(rLengths) {}

    ClVector Next() {
        while (m_nColumn < m_rLengths.Entries() && m_nRow >= m_rLengths[m_nColumn]) {
            ++m_nColumn;
            m_nRow = 0;
        }
        if (m_nColumn == m_rLengths.Entries())
            return {-1.0, -1.0};
        return {static_cast<double>(m_nColumn), static_cast<double>(m_nRow++)};
    }

private:
    const TpArrayStatic<int>& m_rLengths;
    unsigned long m_nColumn = 0;
    int m_nRow = 0;
};

/// The steps from dots to their neighbours in one direction. Sums may overflow: the range is then
/// not a number, and no step lies in it.
class ClSteps {
public:
    void Add(double dStep) {
        m_dSum += std::fabs(dStep);
        ++m_nCount;
    }

    /// A step has a sign: one that leads back is none of the pattern's.
    bool IsUsual(double dStep) const {
        const double dMean = m_dSum / static_cast<double>(m_nCount);
        const double dLower = dMean - cdStepTolerance * dMean;
        const double dUpper = dMean + cdStepTolerance * dMean;
        return dStep >= dLower && !(dStep > dUpper);
    }

private:
    double m_dSum = 0.0;
    long m_nCount = 0;
};

/// The neighbours of a dot in the pattern, or null where it has none.
struct StNext {
    StNext(const DotGrid& rGrid, const ClDot& rDot)
        : m_pBelow(ClBase::RetrieveDot(rGrid, static_cast<int>(rDot.m_vGrid.x),
                                       static_cast<int>(rDot.m_vGrid.y) + 1)),
          m_pRight(ClBase::RetrieveDot(rGrid, static_cast<int>(rDot.m_vGrid.x) + 1,
                                       static_cast<int>(rDot.m_vGrid.y))) {}

    const ClDot* m_pBelow;
    const ClDot* m_pRight;
};

} // namespace

void RecordPlausibility::CheckTarget(const PointList& rIdeal, const PointList& rPoints) {
    if (!IsMoved(rIdeal, rPoints))
        RecordLimits::RefuseTarget();
}

void RecordPlausibility::PlaceDots(const TpArrayStatic<int>& rColumnLengths,
                                   const PointList& rSource, const PointList& rTarget,
                                   DotGrid& rGrid) {
    RecordLimits::CheckCount(rSource, rTarget);
    ClPlaces Places(rColumnLengths);
    ClBase::ReleaseDots(rGrid);
    rGrid.Reserve(rSource.Entries());
    for (unsigned long i = 0; i < rSource.Entries(); ++i) {
        ClDot* pDot = Vek::NewObject<ClDot>(rSource[i]);
        pDot->m_nIndex = static_cast<std::int32_t>(i);
        pDot->m_vTarget = rTarget[i];
        pDot->m_vGrid = Places.Next();
        rGrid.Append(pDot);
    }
}

void RecordPlausibility::CheckSteps(const DotGrid& rGrid) {
    ClSteps Down;
    ClSteps Right;
    for (unsigned long i = 0; i < rGrid.Entries(); ++i) {
        const StNext Next(rGrid, *rGrid[i]);
        if (Next.m_pBelow != nullptr)
            Down.Add(Next.m_pBelow->m_vPos.y - rGrid[i]->m_vPos.y);
        if (Next.m_pRight != nullptr)
            Right.Add(Next.m_pRight->m_vPos.x - rGrid[i]->m_vPos.x);
    }
    for (unsigned long i = 0; i < rGrid.Entries(); ++i) {
        const StNext Next(rGrid, *rGrid[i]);
        if ((Next.m_pBelow != nullptr &&
             !Down.IsUsual(Next.m_pBelow->m_vPos.y - rGrid[i]->m_vPos.y)) ||
            (Next.m_pRight != nullptr &&
             !Right.IsUsual(Next.m_pRight->m_vPos.x - rGrid[i]->m_vPos.x)))
            RecordLimits::RefuseSource();
    }
}
