// From the pruned grid to the list of its points, for every model of the target. A dot is taken
// when it stands in the column of the point whose turn it is.

#include "Calibrate/DotPattern.h"
#include "Calibrate/GridLines.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Tools/CallTrace.h"
#include "Tools/MathConst.h"

#include <cmath>

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using PointList = ClBase::PointList;
using MathConst::cdMillimetresPerInch;

namespace {

/// Whether a dot stands in the column of an ideal point. Only x decides, against both tolerances.
struct StColumnTest {
    StColumnTest(const StDotSettings& rSettings, const PointList& rIdeal, double dShift)
        : m_rIdeal(rIdeal), m_dShift(dShift),
          m_dTolX(rSettings.m_dPitch * rSettings.m_dPitchTolerance * rSettings.m_dSourceDpiX /
                  cdMillimetresPerInch),
          m_dTolY(rSettings.m_dPitch * rSettings.m_dPitchTolerance * rSettings.m_dSourceDpiY /
                  cdMillimetresPerInch) {}

    /// Behind the last ideal point every dot counts: one too many is as wrong as one too few.
    bool IsInColumn(unsigned long n, const ClBase::ClDot& rDot) const {
        if (n >= m_rIdeal.Entries())
            return true;
        const double d = std::fabs(m_dShift + m_rIdeal[n].x - rDot.m_vPos.x);
        return d < m_dTolX && d < m_dTolY;
    }

    const PointList& m_rIdeal;
    double m_dShift;
    double m_dTolX;
    double m_dTolY;
};

} // namespace

void ClBase::BuildPatternPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                                double dOffsetY) {
    TpArrayStatic<int> aLengths;
    GetGridColumnLengths(aLengths);
    DotPattern::GetPoints(aLengths, m_dPitch, dDpiX, dDpiY, {dOffsetX, dOffsetY}, rTarget);
}

void ClBase::TakeDots(DotGrid& rGrid, PointList& rPoints, Reject_t pReject,
                      const char* szCountMessage) {
    PointList aIdeal;
    BuildTargetPoints(aIdeal, m_dSourceDpiX, m_dSourceDpiY, 0.0, 0.0);
    const ClVector vCentre = GetCentreOfGrid(rGrid);
    const double dShift = vCentre.x - GetCentreOfVectorArray(aIdeal).x;
    const StColumnTest Test(*this, aIdeal, dShift);
    SortXY(rGrid);
    rPoints.Clear();
    rPoints.Reserve(rGrid.Entries());
    for (unsigned long i = 0; i < rGrid.Entries(); ++i) {
        if (!rGrid[i]->m_bValid)
            continue;
        if (Test.IsInColumn(rPoints.Entries(), *rGrid[i]))
            rPoints.Append(rGrid[i]->m_vPos);
        else
            pReject(*rGrid[i]);
    }
    if (rPoints.Entries() != cnPatternPoints)
        throw ClException(szCountMessage, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, true, VEK_HERE);
}

void ClBase::CheckGridLines(const PointList& rPoints) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::CheckGridLines()");
    TpArrayStatic<int> aLengths;
    GetGridColumnLengths(aLengths);
    GridLines::Check(aLengths, rPoints, *this);
}

void ClBase::MoveByPitch(PointList& rTarget) const {
    MoveArray(rTarget, {m_dPitch * m_dTargetDpiX / cdMillimetresPerInch,
                        m_dPitch * m_dTargetDpiY / cdMillimetresPerInch});
}
