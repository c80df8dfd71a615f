// From the pruned grid to the list of its points, for every model of the target. A dot is taken
// when it stands in the column of the point whose turn it is; a dot too many or too few shifts the
// order, so that the count tells, and what is in order but crooked shows in the lines.

#include "Calibrate/DotPattern.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Math/RegressionLine.h"
#include "Tools/CallTrace.h"

#include <algorithm>
#include <cmath>

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using PointList = ClBase::PointList;

namespace {

constexpr double cdMillimetresPerInch = 25.4;
constexpr double cdInchesPerMillimetre = 0.03937007874015748;
constexpr double cdDegreesPerRadian = 57.29577951308232;

/// The worst of some lines that should run along an axis.
struct StWorstLine {
    /// A line knows its steepness against the axis that it runs along.
    void Add(const PointList& rPoints) {
        ClRegressionLine Line;
        for (unsigned long i = 0; i < rPoints.Entries(); ++i)
            Line.AddToLine(rPoints[i]);
        double dM = 0.0;
        double dB = 0.0;
        Line.GetLineCoeffizienten(dM, dB);
        m_dAngle = std::max(m_dAngle, std::fabs(std::atan(dM)) * cdDegreesPerRadian);
        for (unsigned long i = 0; i < rPoints.Entries(); ++i)
            m_dDist = std::max(m_dDist, Line.DistFromLine(rPoints[i]));
    }

    double m_dAngle = 0.0; ///< degrees
    double m_dDist = 0.0;  ///< of a point from its line, pixels
};

unsigned long Length(const TpArrayStatic<int>& rLengths, unsigned long nColumn) {
    return static_cast<unsigned long>(std::max(rLengths[nColumn], 0));
}

unsigned long Rows(const TpArrayStatic<int>& rLengths) {
    unsigned long nRows = 0;
    for (unsigned long c = 0; c < rLengths.Entries(); ++c)
        nRows = std::max(nRows, Length(rLengths, c));
    return nRows;
}

unsigned long Points(const TpArrayStatic<int>& rLengths) {
    unsigned long nPoints = 0;
    for (unsigned long c = 0; c < rLengths.Entries(); ++c)
        nPoints += Length(rLengths, c);
    return nPoints;
}

StWorstLine WorstColumn(const TpArrayStatic<int>& rLengths, const PointList& rPoints) {
    StWorstLine Worst;
    unsigned long nStart = 0;
    for (unsigned long c = 0; c < rLengths.Entries(); ++c) {
        PointList aColumn;
        for (unsigned long r = 0; r < Length(rLengths, c); ++r)
            aColumn.Append(rPoints[nStart + r]);
        Worst.Add(aColumn);
        nStart += Length(rLengths, c);
    }
    return Worst;
}

/// A row has a point of every column that is long enough.
StWorstLine WorstRow(const TpArrayStatic<int>& rLengths, const PointList& rPoints) {
    StWorstLine Worst;
    for (unsigned long r = 0; r < Rows(rLengths); ++r) {
        PointList aRow;
        unsigned long nStart = 0;
        for (unsigned long c = 0; c < rLengths.Entries(); ++c) {
            if (r < Length(rLengths, c))
                aRow.Append(rPoints[nStart + r]);
            nStart += Length(rLengths, c);
        }
        Worst.Add(aRow);
    }
    return Worst;
}

/// Whether a dot stands in the column of an ideal point. Only x decides, against both tolerances.
struct StColumnTest {
    StColumnTest(const ClBase& rBase, const PointList& rIdeal, double dShift)
        : m_rIdeal(rIdeal), m_dShift(dShift), m_dTolX(rBase.m_dPitch * rBase.m_dPitchTolerance *
                                                      rBase.m_dSourceDpiX / cdMillimetresPerInch),
          m_dTolY(rBase.m_dPitch * rBase.m_dPitchTolerance * rBase.m_dSourceDpiY /
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

void RefuseAbove(double dValue, double dLimit, const char* szText) {
    if (dValue > dLimit)
        throw ClException(szText, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, true, VEK_HERE);
}

} // namespace

void ClBase::BuildPatternPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                                double dOffsetY) {
    TpArrayStatic<int> aLengths;
    GetGridColumnLengths(aLengths);
    rTarget.Clear();
    for (unsigned long c = 0; c < aLengths.Entries(); ++c)
        for (int r = 0; r < aLengths[c]; ++r)
            rTarget.Append(
                {(dOffsetX + static_cast<double>(c) * m_dPitch) * dDpiX * cdInchesPerMillimetre,
                 (r * m_dPitch + dOffsetY) * dDpiY * cdInchesPerMillimetre});
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
    CheckLinesOf(aLengths, rPoints);
}

void ClBase::CheckLinesOf(const TpArrayStatic<int>& rLengths, const PointList& rPoints) const {
    if (rPoints.Entries() != Points(rLengths))
        throw ClExTessarin(QMT_ERROR_PARAM_OUT_OF_RANGE, VEK_HERE);
    const StWorstLine Column = WorstColumn(rLengths, rPoints);
    const StWorstLine Row = WorstRow(rLengths, rPoints);
    RefuseAbove(Row.m_dAngle, m_dMaxAngleX, "The Angle(x) of the Dot Grid is too big.");
    RefuseAbove(Row.m_dDist, m_dMaxDistX, "There are Dots are too far a way from a Grid(x) line.");
    RefuseAbove(Column.m_dAngle, m_dMaxAngleY, "The Angle(y) of the Dot Grid is too big.");
    RefuseAbove(Column.m_dDist, m_dMaxDistY,
                "There are Dots are too far a way from a Grid(y) line.");
}

void ClBase::MoveByPitch(PointList& rTarget) const {
    MoveArray(rTarget, {m_dPitch * m_dTargetDpiX / cdMillimetresPerInch,
                        m_dPitch * m_dTargetDpiY / cdMillimetresPerInch});
}
