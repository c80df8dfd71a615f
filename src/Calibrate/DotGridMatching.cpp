// What is left of the candidates is matched against the ideal pattern at the capture's resolution,
// laid centre on centre. The first match is made with dirt still pulling the centre; its unmatched
// dots are left out of the second.

#include "Calibrate/DotHolders.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Tools/CallTrace.h"

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using ClDot = ClBase::ClDot;

namespace {

/// Beyond these no dot is nearest. Pixels.
constexpr double cdFarFromIdeal = 10000.0;
constexpr double cdFarFromOrigin = 50000.0;

ClBase::DotGrid ValidDots(const ClBase::DotGrid& rGrid) {
    ClBase::DotGrid aValid;
    aValid.Reserve(rGrid.Entries());
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        if (rGrid[i]->m_bValid)
            aValid.Append(rGrid[i]);
    return aValid;
}

/// The dot nearest to a place, the first of equals, or null.
ClDot* NearestDot(const ClBase::DotGrid& rDots, const ClVector& rPlace, double dBelow) {
    ClDot* pNearest = nullptr;
    double dBest = dBelow;
    for (unsigned long i = 0; i < rDots.Entries(); ++i) {
        const double dDistance = (rDots[i]->m_vPos - rPlace).Length();
        if (dDistance < dBest) {
            dBest = dDistance;
            pNearest = rDots[i];
        }
    }
    return pNearest;
}

/// Of several ideal points that choose one dot the last stays.
void Match(const ClBase::DotGrid& rValid, const ClBase::PointList& rIdeal) {
    for (unsigned long i = 0; i < rIdeal.Entries(); ++i) {
        ClDot* pDot = NearestDot(rValid, rIdeal[i], cdFarFromIdeal);
        if (pDot != nullptr)
            pDot->m_vTarget = rIdeal[i];
    }
}

/// A negative x says that there is no match, wherever it came from.
bool IsUnmatched(const ClDot& rDot) {
    return rDot.m_bValid && rDot.m_vTarget.x < 0.0;
}

void MoveOntoGrid(const ClBase& rBase, ClBase::PointList& rIdeal, const ClBase::DotGrid& rGrid) {
    const ClVector vCentre = rBase.GetCentreOfGrid(rGrid);
    rBase.MoveArray(rIdeal, vCentre - rBase.GetCentreOfVectorArray(rIdeal));
}

void MarkUnmatched(const ClBase::DotGrid& rGrid) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        if (IsUnmatched(*rGrid[i]))
            rGrid[i]->m_nStatus = ClDot::eNoIdealPoint;
}

void ForgetMatches(const ClBase::DotGrid& rGrid) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i) {
        if (rGrid[i]->m_nStatus == ClDot::eNoIdealPoint)
            rGrid[i]->m_nStatus = ClDot::eClean;
        rGrid[i]->m_vTarget = {-1.0, -1.0};
    }
}

void RemoveUnmatched(const ClBase::DotGrid& rGrid) {
    const ClDotHolders Holders(rGrid);
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        if (IsUnmatched(*rGrid[i])) {
            Holders.TakeOut(*rGrid[i], [](ClDot&) {});
            rGrid[i]->m_nStatus = ClDot::eNoIdealPoint;
        }
}

void MatchTwice(ClBase& rBase, const ClBase::DotGrid& rGrid) {
    const ClBase::DotGrid aValid = ValidDots(rGrid);
    ClBase::PointList aIdeal;
    rBase.BuildTarget(aIdeal, rBase.m_dSourceDpiX, rBase.m_dSourceDpiY, 0.0, 0.0);
    MoveOntoGrid(rBase, aIdeal, rGrid);
    Match(aValid, aIdeal);
    MarkUnmatched(rGrid);
    MoveOntoGrid(rBase, aIdeal, rGrid);
    ForgetMatches(rGrid);
    Match(aValid, aIdeal);
    RemoveUnmatched(rGrid);
}

} // namespace

void ClBase::AssociatePoints(DotGrid& rGrid, PointList& rActual) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::AssociatePoints()");
    RemoveLessNeighbours(rGrid);
    ReduceToFittingNeighbours(rGrid);
    RemoveLessNeighbours(rGrid);
    GridRemoveBadPoints(rGrid);
    GridToArray(rGrid, rActual);
    if (m_pOutDebugImage != nullptr)
        GridToDebugImage(rGrid, *m_pOutDebugImage);
}

void ClBase::GridRemoveBadPoints(DotGrid& rGrid) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::GridRemoveBadPoints()");
    if (rGrid.Entries() > 0)
        MatchTwice(*this, rGrid);
}

// Asked for every dot and its neighbours, so that two lines each would bury the rest of the trace.
ClDot* ClBase::RetrieveDot(const DotGrid& rGrid, int nX, int nY) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        if (rGrid[i]->m_vGrid.x == nX && rGrid[i]->m_vGrid.y == nY)
            return rGrid[i];
    return nullptr;
}

ClDot* ClBase::GetBottumLeftDot(const DotGrid& rGrid) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::GetBottumLeftDot()");
    return NearestDot(ValidDots(rGrid), {0.0, 0.0}, cdFarFromOrigin);
}
