// Where the pattern stands in the corrected image. It is built in that image's upper left corner;
// a spline from there into the capture tells where the borders of the corrected image would be
// taken from, and the pattern moves until they lie evenly about the capture's middle. Estimating
// in floats is enough: the result is one translation, which the final spline follows exactly.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Calibrate/RecordLimits.h"
#include "Math/SplineLine.h"
#include "Tools/CallTrace.h"
#include "Tools/FpImage.h"
#include "Tools/MathConst.h"

#include <algorithm>

namespace {

using PointList = ClIpCalibrateGeometricBuildRefPointsBase::PointList;

struct StExtent {
    ClVector m_vMin;
    ClVector m_vMax;
};

StExtent ExtentOf(const PointList& rPoints) {
    StExtent Extent{rPoints[0], rPoints[0]};
    for (unsigned long i = 1; i < rPoints.Entries(); ++i) {
        Extent.m_vMin.x = std::min(Extent.m_vMin.x, rPoints[i].x);
        Extent.m_vMin.y = std::min(Extent.m_vMin.y, rPoints[i].y);
        Extent.m_vMax.x = std::max(Extent.m_vMax.x, rPoints[i].x);
        Extent.m_vMax.y = std::max(Extent.m_vMax.y, rPoints[i].y);
    }
    return Extent;
}

/// Some pixels of a border, mapped together.
struct StBorderPart {
    static constexpr long cnMost = 256;
    float m_afX[cnMost];
    float m_afY[cnMost];
};

/// What brings the pattern, with half a pitch around it, to the middle of the corrected image.
ClVector MoveByExtent(const PointList& rTarget, const StDotSettings& rSettings) {
    const double dHalfX =
        rSettings.m_dPitch * rSettings.m_dTargetDpiX * StDotSettings::m_cdHalfPitchFactor;
    const double dHalfY =
        rSettings.m_dPitch * rSettings.m_dTargetDpiY * StDotSettings::m_cdHalfPitchFactor;
    const double dBelow = (rSettings.m_dPitch / 2 + rSettings.m_dBottomMargin) *
                          rSettings.m_dTargetDpiY / MathConst::cdMillimetresPerInch;
    const StExtent Extent = ExtentOf(rTarget);
    const double dMinX = Extent.m_vMin.x - dHalfX;
    const double dMaxX = Extent.m_vMax.x + dHalfX;
    const double dMinY = Extent.m_vMin.y - dHalfY;
    const double dMaxY = Extent.m_vMax.y + dBelow;
    // Whole pixels here, unlike the capture's middle.
    const int nMiddleX = rSettings.m_nTargetWidth / 2;
    const int nMiddleY = rSettings.m_nTargetHeight / 2;
    return {nMiddleX - (dMinX + dMaxX) / 2, nMiddleY - (dMinY + dMaxY) / 2};
}

} // namespace

void ClIpCalibrateGeometricBuildRefPointsBase::CenterTarget(PointList& rTarget, PointList* pActual,
                                                            unsigned int) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::CenterTarget()");
    if (pActual != nullptr)
        RecordLimits::CheckCount(*pActual, rTarget); // the spline reads both lists side by side
    Spline spline;
    spline.Setup(static_cast<long>(rTarget.Entries()), rTarget.Data(),
                 pActual != nullptr ? pActual->Data() : nullptr);
    MoveArray(rTarget, m_bCenterByBorders ? MoveByBorders(spline) : MoveByExtent(rTarget, *this));
}

ClVector ClIpCalibrateGeometricBuildRefPointsBase::MoveByBorders(Spline& rSpline) const {
    if (m_pInImage == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    const double dTop = GetBorderDelta(rSpline, 0, 0, m_nTargetWidth, false);
    const double dBottom = GetBorderDelta(rSpline, 0, m_nTargetHeight, m_nTargetWidth, false);
    const double dLeft = GetBorderDelta(rSpline, 0, 0, m_nTargetHeight, true);
    const double dRight = GetBorderDelta(rSpline, m_nTargetWidth, 0, m_nTargetHeight, true);
    const double dMiddleX = m_pInImage->Width() / 2.0;
    const double dMiddleY = m_pInImage->Height() / 2.0;
    return {(m_dTargetDpiX / m_dSourceDpiX) * ((dLeft + dRight) / 2 - dMiddleX),
            (m_dTargetDpiY / m_dSourceDpiY) * ((dTop + dBottom) / 2 - dMiddleY)};
}

double ClIpCalibrateGeometricBuildRefPointsBase::GetBorderDelta(Spline& rSpline, int nX, int nY,
                                                                int nLength, bool bVertical) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::GetBorderDelta()");
    float sum = 0.0F;
    for (long nFirst = 0; nFirst < nLength; nFirst += StBorderPart::cnMost) {
        StBorderPart part;
        const long nCount = std::min(StBorderPart::cnMost, nLength - nFirst);
        for (long i = 0; i < nCount; ++i) {
            const long nAlong = nFirst + i;
            part.m_afX[i] = static_cast<float>(bVertical ? nX : nX + nAlong);
            part.m_afY[i] = static_cast<float>(bVertical ? nY + nAlong : nY);
        }
        TransformLine(rSpline, part.m_afX, part.m_afY, nCount, part.m_afX, part.m_afY);
        for (long i = 0; i < nCount; ++i)
            sum += bVertical ? part.m_afX[i] : part.m_afY[i];
    }
    return static_cast<double>(nLength > 0 ? sum / static_cast<float>(nLength) : 0.0F);
}
