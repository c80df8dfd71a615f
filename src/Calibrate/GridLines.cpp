// A dot too many or too few shifts the order of the dots, so that the count tells it; what is in
// order but crooked shows here, in the lines through rows and columns.

#include "Calibrate/GridLines.h"

#include "Math/RegressionLine.h"
#include "Tools/Exception.h"
#include "Tools/MathConst.h"

#include <algorithm>
#include <cmath>

using PointList = TpArrayDynamic<ClVector, 10>;

namespace {

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
        m_dAngle = std::max(m_dAngle, std::fabs(std::atan(dM)) * MathConst::cdDegreesPerRadian);
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

void RefuseAbove(double dValue, double dLimit, const char* szText) {
    if (dValue > dLimit)
        throw ClException(szText, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, true, VEK_HERE);
}

} // namespace

void GridLines::Check(const TpArrayStatic<int>& rLengths, const PointList& rPoints,
                      const StDotSettings& rLimits) {
    if (rPoints.Entries() != Points(rLengths))
        throw ClExTessarin(QMT_ERROR_PARAM_OUT_OF_RANGE, VEK_HERE);
    const StWorstLine Column = WorstColumn(rLengths, rPoints);
    const StWorstLine Row = WorstRow(rLengths, rPoints);
    RefuseAbove(Row.m_dAngle, rLimits.m_dMaxAngleX, "The Angle(x) of the Dot Grid is too big.");
    RefuseAbove(Row.m_dDist, rLimits.m_dMaxDistX,
                "There are Dots are too far a way from a Grid(x) line.");
    RefuseAbove(Column.m_dAngle, rLimits.m_dMaxAngleY, "The Angle(y) of the Dot Grid is too big.");
    RefuseAbove(Column.m_dDist, rLimits.m_dMaxDistY,
                "There are Dots are too far a way from a Grid(y) line.");
}
