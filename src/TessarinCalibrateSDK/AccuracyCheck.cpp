#include "TessarinCalibrateSDK/AccuracyCheck.h"

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "Math/GeometricAccuracy.h"
#include "Math/GeometricTransformation.h"
#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"
#include "Tools/LoggingFacility.h"
#include "Tools/ThrowIfFailed.h"

namespace AccuracyCheck {

namespace {

void AppendPoints(const PointList& rTarget, const PointList& rLocated,
                  ClGeometricAccuracy& rAccuracy) {
    VekLFLog(Vek::eLogTrace,
             "ClGeometricAccuracy::setRequirements(ClGeometricAccuracy::eEFTS) Enter");
    if (rTarget.Entries() != rLocated.Entries())
        throw ClException("The compare data is not the same Entry count.",
                          QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    for (unsigned long i = 0; i < rTarget.Entries(); ++i)
        rAccuracy.appendPoint(rTarget[i], rLocated[i]);
    rAccuracy.setRequirements(ClGeometricAccuracy::eEFTS);
    VekLFLog(Vek::eLogTrace, "ClGeometricAccuracy::setRequirements() Leaving");
}

} // namespace

void FitOntoTarget(PointList& rTarget, PointList& rLocated) {
    ClGeometricTransformation fit;
    fit.m_pFixed = &rTarget;
    fit.m_pMoved = &rLocated;
    VekLFLog(Vek::eLogTrace, "ClGeometricTransformation::Transform() Enter");
    fit.Transform();
    VekLFLog(Vek::eLogTrace, "ClGeometricTransformation::Transform() Leaving");
}

double PercentWithinLimits(const PointList& rTarget, const PointList& rLocated) {
    ClGeometricAccuracy accuracy;
    AppendPoints(rTarget, rLocated, accuracy);
    VekLFLog(Vek::eLogTrace, "ClGeometricAccuracy::Calculate() Enter");
    accuracy.Calculate();
    VekLFLog(Vek::eLogTrace, "ClGeometricAccuracy::Calculate() Leaving");
    VekLFLog(Vek::eLogTrace, "ClGeometricAccuracy::getTestResult() Enter");
    const double dResult = accuracy.getTestResult();
    VekLFLog(Vek::eLogTrace, "ClGeometricAccuracy::getTestResult() Leaving");
    return dResult;
}

} // namespace AccuracyCheck

double ClIpCalibrateLumivane2::Compare() {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Compare() Enter");
    if (m_pInImage == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    CheckGrey(*m_pInImage);

    ClCalibrateGeometricData data;
    ClIpCalibrateGeometricBuildRefPointsQK7Half builder;
    builder.m_bBrightDots = !builder.m_bBrightDots; // the target is printed dark on bright
    builder.m_pInImage = m_pInImage;
    builder.m_pRefData = m_CalibrationData.m_aTarget.Entries() != 0 ? &m_CalibrationData : nullptr;
    builder.m_pOutData = &data;
    ThrowIfFailed(builder.Apply(), VEK_HERE);
    AccuracyCheck::FitOntoTarget(data.m_aTarget, data.m_aActual[0]);
    const double dPercent = AccuracyCheck::PercentWithinLimits(data.m_aTarget, data.m_aActual[0]);

    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Compare() Leaving");
    return dPercent;
}
