#include "Calibrate/RecordLimits.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/WarpTable.h"
#include "Tools/LoggingFacility.h"

#include <algorithm>
#include <cmath>

namespace {

using PointList = ClCalibrateGeometricData::PointList;

bool IsFinite(const PointList& rPoints) {
    for (unsigned long i = 0; i < rPoints.Entries(); ++i)
        if (!std::isfinite(rPoints[i].x) || !std::isfinite(rPoints[i].y))
            return false;
    return true;
}

void CheckTarget(const ClCalibrateGeometricData& rData) {
    if (rData.m_aTarget.Entries() == cnPatternPoints && IsFinite(rData.m_aTarget) &&
        Warp::IsSizeAllowed(rData.m_nTargetWidth, rData.m_nTargetHeight, rData.m_nPlanes))
        return;
    VekLFLog(Vek::eLogError, "calibration data (target) corrupt");
    throw ClException("Target data is corrupt", QMT_ERROR_CURRUPT_DATA, true, VEK_HERE);
}

void CheckCount(const PointList& rPoints, unsigned long nExpected) {
    if (rPoints.Entries() != nExpected)
        throw ClException("Target and Source arrays must have same size!", QMT_ERROR_CURRUPT_DATA,
                          true, VEK_HERE);
}

void CheckSource(const PointList& rPoints) {
    if (IsFinite(rPoints))
        return;
    VekLFLog(Vek::eLogError, "calibration data (source) corrupt");
    throw ClException("Source data is corrupt", QMT_ERROR_CURRUPT_DATA, true, VEK_HERE);
}

} // namespace

void CheckRecordLimits(const ClCalibrateGeometricData& rData) {
    CheckTarget(rData);
    const std::uint32_t nLists =
        std::clamp(rData.m_nPlanes, std::uint32_t{1}, ClCalibrateGeometricData::cnMaxPlanes);
    for (std::uint32_t p = 0; p < nLists; ++p)
        CheckCount(rData.m_aActual[p], rData.m_aTarget.Entries());
    for (std::uint32_t p = 0; p < nLists; ++p)
        CheckSource(rData.m_aActual[p]);
}
