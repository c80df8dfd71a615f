#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include "Calibrate/DotGridOwner.h"
#include "Calibrate/DotGridPicture.h"
#include "Calibrate/DotLocation.h"
#include "Calibrate/DotSorting.h"
#include "Calibrate/RecordLimits.h"
#include "Calibrate/RecordPlausibility.h"
#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpSplitPlanes.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "Tools/CallTrace.h"
#include "Tools/MathConst.h"
#include "Tools/ThrowIfFailed.h"

#include <algorithm>
#include <cmath>

namespace {

using DotGrid = ClIpCalibrateGeometricBuildRefPointsBase::DotGrid;
using PointList = ClIpCalibrateGeometricBuildRefPointsBase::PointList;
using ClDot = ClIpCalibrateGeometricBuildRefPointsBase::ClDot;

constexpr double cdPelsPerDpi = 39.37007874015748;
/// What turns the resolutions of a record back into dots per inch. It is the rounder number on
/// purpose: measured references have always been read with it.
constexpr double cdRecordPelsPerDpi = 39.37;
constexpr double cdRecordDpiPerPels = 1.0 / cdRecordPelsPerDpi;

void CheckReference(const ClCalibrateGeometricData& rData) {
    if (rData.m_aTarget.Entries() != cnPatternPoints || !RecordLimits::IsFinite(rData.m_aTarget) ||
        rData.m_nTargetPelsX == 0 || rData.m_nTargetPelsY == 0)
        RecordLimits::RefuseTarget();
}

/// A mean that is not a number where nothing was counted.
ClVector Mean(const ClVector& rSum, unsigned long nCount) {
    if (nCount == 0)
        return {MathConst::cdNaN, MathConst::cdNaN};
    const auto dCount = static_cast<double>(nCount);
    return {rSum.x / dCount, rSum.y / dCount};
}

bool IsClean(const ClDot& rDot) {
    return rDot.m_nStatus == ClDot::eClean;
}

} // namespace

ClIpCalibrateGeometricBuildRefPointsBase::ClIpCalibrateGeometricBuildRefPointsBase() = default;

void ClIpCalibrateGeometricBuildRefPointsBase::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddOutImage(Container, "pOutDebugImage", m_pOutDebugImage);
}

long ClIpCalibrateGeometricBuildRefPointsBase::Process() {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::Process()");
    if (m_pInImage == nullptr)
        throw ClException("ClIpCalibrateGeometricBuildRefPointsBase m_pInImage is NULL",
                          QMT_ERROR_PARAM_IS_MISSING, true, VEK_HERE);
    if (m_pOutData == nullptr)
        throw ClException("ClIpCalibrateGeometricBuildRefPointsBase m_pOutData is NULL",
                          QMT_ERROR_PARAM_IS_MISSING, true, VEK_HERE);
    if (m_pRefData != nullptr)
        m_pRefData->Log();
    m_pOutData->Clear();
    // An image without planes goes the way of one plane: the first operator refuses it.
    const auto nPlanes = static_cast<std::uint32_t>(std::clamp(
        m_pInImage->Planes(), 1, static_cast<int>(ClCalibrateGeometricData::cnMaxPlanes)));
    LocateDots(nPlanes);
    BuildTarget(m_pOutData->m_aTarget, m_dTargetDpiX, m_dTargetDpiY, 0.0, 0.0);
    CenterTarget(m_pOutData->m_aTarget, m_pOutData->m_aActual, nPlanes);
    FillRecord(nPlanes);
    return 0;
}

void ClIpCalibrateGeometricBuildRefPointsBase::LocateDots(std::uint32_t nPlanes) {
    ClImage aPlanes[ClCalibrateGeometricData::cnMaxPlanes];
    if (nPlanes > 1)
        ThrowIfFailed(ClIpSplitPlanes().ApplyParam(*m_pInImage, &aPlanes[0], &aPlanes[1],
                                                   &aPlanes[2], nullptr),
                      VEK_HERE);
    if (m_pOutDebugImage != nullptr)
        m_pOutDebugImage->New(*m_pInImage);
    ClDotGridOwner Owner;
    for (std::uint32_t p = 0; p < nPlanes; ++p) {
        LocatePoints(nPlanes > 1 ? aPlanes[p] : *m_pInImage, Owner.m_aGrid);
        AssociatePoints(Owner.m_aGrid, m_pOutData->m_aActual[p]);
    }
}

void ClIpCalibrateGeometricBuildRefPointsBase::FillRecord(std::uint32_t nPlanes) {
    const auto toPels = [](double dDpi) {
        return SampleFromDouble<std::uint32_t>(dDpi * cdPelsPerDpi);
    };
    ClCalibrateGeometricData& rData = *m_pOutData;
    rData.m_nSourceWidth = static_cast<std::uint32_t>(m_pInImage->Width());
    rData.m_nSourceHeight = static_cast<std::uint32_t>(m_pInImage->Height());
    rData.m_nSourcePelsX = toPels(m_dSourceDpiX);
    rData.m_nSourcePelsY = toPels(m_dSourceDpiY);
    rData.m_nTargetWidth = static_cast<std::uint32_t>(m_nTargetWidth);
    rData.m_nTargetHeight = static_cast<std::uint32_t>(m_nTargetHeight);
    rData.m_nPlanes = nPlanes;
    rData.m_nTargetPelsX = toPels(m_dTargetDpiX);
    rData.m_nTargetPelsY = toPels(m_dTargetDpiY);
    rData.m_nBackground = m_bBrightDots ? 0 : 255;
}

void ClIpCalibrateGeometricBuildRefPointsBase::LocatePoints(ClImage& rImage, DotGrid& rGrid) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::LocatePoints()");
    ComponentsArray_t Components;
    DotLocation::Measure(rImage, *this, m_pOutLabelImage, Components);
    BuildGrid(rGrid, Components);
}

void ClIpCalibrateGeometricBuildRefPointsBase::BuildTarget(PointList& rTarget, double dDpiX,
                                                           double dDpiY, double dOffsetX,
                                                           double dOffsetY) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::BuildTarget()");
    if (m_pRefData == nullptr) {
        BuildTargetPoints(rTarget, dDpiX, dDpiY, dOffsetX, dOffsetY);
    } else {
        CheckReference(*m_pRefData);
        const double dScaleX = dDpiX * cdRecordPelsPerDpi / m_pRefData->m_nTargetPelsX;
        const double dScaleY = dDpiY * cdRecordPelsPerDpi / m_pRefData->m_nTargetPelsY;
        rTarget = m_pRefData->m_aTarget;
        for (unsigned long i = 0; i < rTarget.Entries(); ++i) {
            rTarget[i].x = rTarget[i].x * dScaleX + dOffsetX;
            rTarget[i].y = rTarget[i].y * dScaleY + dOffsetY;
        }
    }
}

void ClIpCalibrateGeometricBuildRefPointsBase::SortXY(DotGrid& rGrid) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::SortXY()");
    DotSorting::IntoColumns(rGrid, m_cdHalfPitchFactor * m_dSourceDpiX * m_dPitch);
}

ClVector ClIpCalibrateGeometricBuildRefPointsBase::GetCentreOfGrid(const DotGrid& rGrid) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::GetCentreOfGrid()");
    ClVector vSum;
    unsigned long nCount = 0;
    for (unsigned long i = 0; i < rGrid.Entries(); ++i) {
        if (!rGrid[i]->m_bValid || !IsClean(*rGrid[i]))
            continue;
        vSum = vSum + rGrid[i]->m_vPos;
        ++nCount;
    }
    return Mean(vSum, nCount);
}

ClVector
ClIpCalibrateGeometricBuildRefPointsBase::GetCentreOfVectorArray(const PointList& rArray) const {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsBase::GetCentreOfVectorArray()");
    ClVector vSum;
    for (unsigned long i = 0; i < rArray.Entries(); ++i)
        vSum = vSum + rArray[i];
    return Mean(vSum, rArray.Entries());
}

void ClIpCalibrateGeometricBuildRefPointsBase::MoveArray(PointList& rArray,
                                                         const ClVector& rMove) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::MoveArray()");
    for (unsigned long i = 0; i < rArray.Entries(); ++i)
        rArray[i] = rArray[i] + rMove;
}

void ClIpCalibrateGeometricBuildRefPointsBase::ArrayToGrid(const PointList& rSource,
                                                           const PointList& rTarget,
                                                           DotGrid& rGrid) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::ArrayToGrid()");
    TpArrayStatic<int> aLengths;
    GetGridColumnLengths(aLengths);
    RecordPlausibility::PlaceDots(aLengths, rSource, rTarget, rGrid);
}

void ClIpCalibrateGeometricBuildRefPointsBase::ValidateTargetPoints(
    const ClCalibrateGeometricData& rData) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsBase::ValidateTargetPoints()");
    RecordLimits::CheckTarget(rData);
    PointList aIdeal;
    BuildTargetPoints(aIdeal, rData.m_nTargetPelsX * cdRecordDpiPerPels,
                      rData.m_nTargetPelsY * cdRecordDpiPerPels, 0.0, 0.0);
    RecordPlausibility::CheckTarget(aIdeal, rData.m_aTarget);
}

void ClIpCalibrateGeometricBuildRefPointsBase::ValidateCalibrationData(
    const ClCalibrateGeometricData& rData) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsBase::ValidateCalibrationData()");
    ValidateTargetPoints(rData);
    RecordLimits::CheckSource(rData);
    ClDotGridOwner Owner;
    ArrayToGrid(rData.m_aActual[0], rData.m_aTarget, Owner.m_aGrid);
    RecordPlausibility::CheckSteps(Owner.m_aGrid);
}

void ClIpCalibrateGeometricBuildRefPointsBase::GridToDebugImage(const DotGrid& rGrid,
                                                                ClImage& rImage) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::GridToDebugImage()");
    DotGridPicture::Draw(rGrid, rImage);
}

void ClIpCalibrateGeometricBuildRefPointsBase::TraceGrid(const DotGrid& rGrid) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::TraceGrid()");
    DotGridPicture::LogStates(rGrid);
}

void ClIpCalibrateGeometricBuildRefPointsBase::LogGrid(const DotGrid& rGrid) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::LogGrid()");
    DotGridPicture::LogShapes(rGrid);
}

void ClIpCalibrateGeometricBuildRefPointsBase::ReleaseDots(DotGrid& rGrid) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        delete rGrid[i];
    rGrid.Clear();
}
