// Which candidates are neighbours. Dots of the pattern have partners one pitch away in up to eight
// directions, dirt has them by accident only: blobs are linked that stand about a pitch apart, of
// rivals for one direction the better stays, and what has fewer than two partners is no dot.
//
// The cost grows with the blobs and their neighbours, not with the pairs of blobs: a capture is
// foreign data, and one of a printed raster has tens of thousands of blobs.

#include "Calibrate/DotCells.h"
#include "Calibrate/DotDirection.h"
#include "Calibrate/DotHolders.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Tools/Allocate.h"
#include "Tools/CallTrace.h"
#include "Tools/MathConst.h"

#include <algorithm>
#include <cmath>

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using ClDot = ClBase::ClDot;

namespace {

constexpr unsigned long cnFewestNeighbours = 2;

/// The pitch in the capture, and by how much a step may miss it. Pixels.
struct StSpacing {
    explicit StSpacing(const StDotSettings& rSettings)
        : m_dPitchX(rSettings.m_dSourceDpiX / MathConst::cdMillimetresPerInch * rSettings.m_dPitch),
          m_dPitchY(rSettings.m_dSourceDpiY / MathConst::cdMillimetresPerInch * rSettings.m_dPitch),
          m_dTolX(m_dPitchX * rSettings.m_dPitchTolerance),
          m_dTolY(m_dPitchY * rSettings.m_dPitchTolerance) {}

    double m_dPitchX;
    double m_dPitchY;
    double m_dTolX;
    double m_dTolY;
};

/// How far a step along one axis is from no step, where it is a small one, or from one pitch.
double StepError(double dStep, double dPitch, double dTolerance) {
    const double dLength = std::fabs(dStep);
    return dLength <= dTolerance ? dLength : std::fabs(dLength - dPitch);
}

/// One pitch away in x, in y or in both; two blobs at one place are no neighbours.
bool IsNeighbourStep(const ClVector& rStep, const StSpacing& rSpacing) {
    const bool bFits =
        StepError(rStep.x, rSpacing.m_dPitchX, rSpacing.m_dTolX) < rSpacing.m_dTolX &&
        StepError(rStep.y, rSpacing.m_dPitchY, rSpacing.m_dTolY) < rSpacing.m_dTolY;
    const bool bSamePlace =
        std::fabs(rStep.x) < rSpacing.m_dTolX && std::fabs(rStep.y) < rSpacing.m_dTolY;
    return bFits && !bSamePlace;
}

void MakeDots(ClBase::DotGrid& rGrid, const ClBase::ComponentsArray_t& rComponents) {
    rGrid.Reserve(rComponents.Entries());
    for (unsigned long i = 0; i < rComponents.Entries(); ++i) {
        ClDot* pDot = Vek::NewObject<ClDot>(rComponents[i]);
        pDot->m_nIndex = static_cast<std::int32_t>(i);
        rGrid.Append(pDot);
    }
}

void Refuse(ClDot& rDot, ClDot::EStatus eStatus) {
    rDot.m_bValid = false;
    rDot.m_nStatus = eStatus;
}

/// Every test is made: the last that fails gives the status.
void TestShape(ClDot& rDot, const StDotSettings& rLimits) {
    if (!(rDot.m_dEccentricity >= rLimits.m_dMinEccentricity))
        Refuse(rDot, ClDot::eEccentricityTooSmall);
    if (rDot.m_dEccentricity > rLimits.m_dMaxEccentricity)
        Refuse(rDot, ClDot::eEccentricityTooBig);
    if (!(rDot.m_dArea >= rLimits.m_dMinArea))
        Refuse(rDot, ClDot::eAreaTooSmall);
    if (rDot.m_dArea > rLimits.m_dMaxArea)
        Refuse(rDot, ClDot::eAreaTooBig);
}

/// How far apart along an axis neighbours may stand.
double Reach(double dPitch, double dTolerance) {
    return std::max(dPitch, 0.0) + dTolerance;
}

/// A link is found from its earlier end, which links both: the lists come out in grid order.
void LinkNeighbours(const ClBase::DotGrid& rGrid, const StSpacing& rSpacing) {
    if (!(rSpacing.m_dTolX > 0.0 && rSpacing.m_dTolY > 0.0)) // no step errs by less than nothing
        return;
    const ClDotCells Cells(rGrid, Reach(rSpacing.m_dPitchX, rSpacing.m_dTolX),
                           Reach(rSpacing.m_dPitchY, rSpacing.m_dTolY));
    ClDotCells::Indices aNear;
    for (unsigned long i = 0; i < rGrid.Entries(); ++i) {
        if (!rGrid[i]->m_bValid)
            continue;
        Cells.FindBehind(i, aNear);
        for (unsigned long n = 0; n < aNear.Entries(); ++n)
            if (IsNeighbourStep(rGrid[aNear[n]]->m_vPos - rGrid[i]->m_vPos, rSpacing))
                rGrid[i]->AddDot(rGrid[aNear[n]], true);
    }
}

/// Where the neighbour of each sector should stand.
struct StExpected {
    explicit StExpected(const StSpacing& rSpacing) {
        const double x = rSpacing.m_dPitchX;
        const double y = rSpacing.m_dPitchY;
        const ClVector avOffsets[DotDirection::cnSectors] = {{x, 0},  {x, y},   {0, y},  {-x, y},
                                                             {-x, 0}, {-x, -y}, {0, -y}, {x, -y}};
        std::copy(std::begin(avOffsets), std::end(avOffsets), m_avOffsets);
    }

    ClVector m_avOffsets[DotDirection::cnSectors];
};

/// Unlinks all but the best neighbour of each sector; of equally good ones the first stays. A
/// neighbour exactly between two sectors stays and competes with none.
void KeepFittingNeighbours(ClDot& rDot, const StExpected& rExpected) {
    ClDot* apBest[DotDirection::cnSectors] = {};
    double adBest[DotDirection::cnSectors] = {};
    ClBase::DotGrid aLosers;
    for (unsigned long n = 0; n < rDot.m_aNeighbours.Entries(); ++n) {
        const long k = rDot.GetNeighbourDirection(static_cast<long>(n));
        if (k >= DotDirection::cnSectors)
            continue;
        ClDot* pNeighbour = rDot.m_aNeighbours[n];
        const ClVector vOffset = pNeighbour->m_vPos - rDot.m_vPos;
        const double dDistance = (vOffset - rExpected.m_avOffsets[k]).Length();
        if (apBest[k] != nullptr)
            aLosers.Append(dDistance >= adBest[k] ? pNeighbour : apBest[k]);
        if (apBest[k] == nullptr || !(dDistance >= adBest[k])) {
            apBest[k] = pNeighbour;
            adBest[k] = dDistance;
        }
    }
    for (unsigned long n = 0; n < aLosers.Entries(); ++n)
        rDot.Remove(aLosers[n]);
}

/// How far a direction is from the nearest multiple of 45 degrees, -pi/8 to pi/8.
double OffSector(double dAngle) {
    return std::remainder(dAngle, DotDirection::cdSector);
}

void KeepStraightNeighbours(ClDot& rDot, const ClBase& rBase) {
    const unsigned long nCount = rDot.m_aNeighbours.Entries();
    if (nCount == 0)
        return;
    const auto pAngles = Vek::NewArrayPtr<double>(nCount);
    const auto pSorted = Vek::NewArrayPtr<double>(nCount);
    for (unsigned long n = 0; n < nCount; ++n) {
        pAngles[n] = DotDirection::AngleOf(rDot.m_aNeighbours[n]->m_vPos - rDot.m_vPos);
        pSorted[n] = OffSector(pAngles[n]);
    }
    const double dRotation = rBase.GetMedian(pSorted.get(), static_cast<long>(nCount));
    for (unsigned long n = nCount; n-- > 0;)
        if (std::fabs(OffSector(pAngles[n] - dRotation)) > rBase.m_dAngleTolerance)
            rDot.m_aNeighbours.Remove(n);
}

/// A queued dot is refused at once, so that it is queued once.
void QueueIfLonely(ClDot& rDot, ClBase::DotGrid& rQueue) {
    if (!rDot.m_bValid || rDot.m_aNeighbours.Entries() >= cnFewestNeighbours)
        return;
    Refuse(rDot, ClDot::eTooFewNeighbours);
    rQueue.Append(&rDot);
}

/// Takes lonely dots out and, in their turn, those that are left lonely by it. Which dots go does
/// not depend on the order.
void TakeOutInTurn(ClBase::DotGrid& rQueue, const ClDotHolders& rHolders) {
    for (unsigned long i = 0; i < rQueue.Entries(); ++i)
        rHolders.TakeOut(*rQueue[i], [&](ClDot& rHolder) { QueueIfLonely(rHolder, rQueue); });
}

} // namespace

void ClBase::BuildGrid(DotGrid& rGrid, const ComponentsArray_t& rComponents) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::BuildGrid()");
    ReleaseDots(rGrid);
    MakeDots(rGrid, rComponents);
    SortXY(rGrid);
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        TestShape(*rGrid[i], *this);
    LinkNeighbours(rGrid, StSpacing(*this));
}

void ClBase::RemoveLessNeighbours(DotGrid& rGrid) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsBase::RemoveLessNeighbours()");
    ClBase::DotGrid aQueue;
    aQueue.Reserve(rGrid.Entries()); // every dot may come to stand in it
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        QueueIfLonely(*rGrid[i], aQueue);
    if (aQueue.Entries() > 0)
        TakeOutInTurn(aQueue, ClDotHolders(rGrid));
}

void ClBase::ReduceToFittingNeighbours(DotGrid& rGrid) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsBase::ReduceToFittingNeighbours()");
    const StExpected Expected{StSpacing(*this)};
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        KeepFittingNeighbours(*rGrid[i], Expected);
}

void ClBase::RemoveGridPoint(DotGrid& rGrid, long n) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::RemoveGridPoint()");
    ClDot* pRemoved = rGrid[static_cast<unsigned long>(n)];
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        rGrid[i]->Remove(pRemoved);
    pRemoved->m_bValid = false;
}

void ClBase::RemoveWrongAngleNeighbours(DotGrid& rGrid) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsBase::RemoveWrongAngleNeighbours()");
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        KeepStraightNeighbours(*rGrid[i], *this);
}

double ClBase::GetMedian(double* pValues, long nCount) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::GetMedian()");
    if (nCount <= 0)
        return 0.0;
    // What is not a number goes last: it has no order that a sort could live with.
    std::sort(pValues, pValues + nCount,
              [](double dA, double dB) { return std::isnan(dB) ? !std::isnan(dA) : dA < dB; });
    return pValues[nCount / 2];
}
