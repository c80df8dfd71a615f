#include "Calibrate/RecordLimits.h"

#include "Calibrate/WarpTable.h"
#include "Tools/LoggingFacility.h"

#include <algorithm>
#include <cmath>

using PointList = ClCalibrateGeometricData::PointList;

bool RecordLimits::IsFinite(const PointList& rPoints) {
    for (unsigned long i = 0; i < rPoints.Entries(); ++i)
        if (!std::isfinite(rPoints[i].x) || !std::isfinite(rPoints[i].y))
            return false;
    return true;
}

void RecordLimits::CheckTarget(const ClCalibrateGeometricData& rData) {
    if (rData.m_aTarget.Entries() != cnPatternPoints || !IsFinite(rData.m_aTarget) ||
        !Warp::IsSizeAllowed(rData.m_nTargetWidth, rData.m_nTargetHeight, rData.m_nPlanes))
        RefuseTarget();
}

void RecordLimits::CheckSource(const ClCalibrateGeometricData& rData) {
    const std::uint32_t nLists =
        std::clamp(rData.m_nPlanes, std::uint32_t{1}, ClCalibrateGeometricData::cnMaxPlanes);
    for (std::uint32_t p = 0; p < nLists; ++p)
        CheckCount(rData.m_aActual[p], rData.m_aTarget);
    for (std::uint32_t p = 0; p < nLists; ++p)
        if (!IsFinite(rData.m_aActual[p]))
            RefuseSource();
}

void RecordLimits::CheckCount(const PointList& rSource, const PointList& rTarget) {
    if (rSource.Entries() != rTarget.Entries())
        throw ClException("Target and Source arrays must have same size!", QMT_ERROR_CURRUPT_DATA,
                          true, VEK_HERE);
}

void RecordLimits::RefuseTarget() {
    VekLFLog(Vek::eLogError, "calibration data (target) corrupt");
    throw ClException("Target data is corrupt", QMT_ERROR_CURRUPT_DATA, true, VEK_HERE);
}

void RecordLimits::RefuseSource() {
    VekLFLog(Vek::eLogError, "calibration data (source) corrupt");
    throw ClException("Source data is corrupt", QMT_ERROR_CURRUPT_DATA, true, VEK_HERE);
}
