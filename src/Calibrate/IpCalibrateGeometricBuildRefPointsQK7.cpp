#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"

#include "Calibrate/DotPattern.h"
#include "Tools/Allocate.h"
#include "Tools/LoggingFacility.h"

// The defaults of the base are those of the raw capture.
ClIpCalibrateGeometricBuildRefPointsQK7::ClIpCalibrateGeometricBuildRefPointsQK7() = default;

ClProcessorBase* ClIpCalibrateGeometricBuildRefPointsQK7::Create() {
    return Vek::NewObject<ClIpCalibrateGeometricBuildRefPointsQK7>();
}

const char* ClIpCalibrateGeometricBuildRefPointsQK7::Name() const {
    return "ClIpCalibrateGeometricBuildRefPointsQK7";
}

void ClIpCalibrateGeometricBuildRefPointsQK7::BuildTargetPoints(PointList& rTarget, double dDpiX,
                                                                double dDpiY, double dOffsetX,
                                                                double dOffsetY) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBuildRefPointsQK7::BuildTargetPoints() Enter");
    BuildPatternPoints(rTarget, dDpiX, dDpiY, dOffsetX, dOffsetY);
    VekLFLog(Vek::eLogTrace,
             "ClIpCalibrateGeometricBuildRefPointsQK7::BuildTargetPoints() Leaving");
}

void ClIpCalibrateGeometricBuildRefPointsQK7::GridToArray(DotGrid& rGrid, PointList& rPoints) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBuildRefPointsQK7::GridToArray() Enter");
    TakeDots(
        rGrid, rPoints, [](ClDot& rDot) { rDot.m_nStatus = ClDot::eOutsideColumn; },
        "Not the expected dot count found.");
    CheckGridLines(rPoints);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBuildRefPointsQK7::GridToArray() Leaving");
}

void ClIpCalibrateGeometricBuildRefPointsQK7::GetGridColumnLengths(TpArrayStatic<int>& rLengths) {
    VekLFLog(Vek::eLogTrace,
             "ClIpCalibrateGeometricBuildRefPointsQK7::GetGridColumnLengths() Enter");
    DotPattern::GetColumnLengths(rLengths);
    VekLFLog(Vek::eLogTrace,
             "ClIpCalibrateGeometricBuildRefPointsQK7::GetGridColumnLengths() Leaving");
}

void ClIpCalibrateGeometricBuildRefPointsQK7::MoveTarget(PointList& rTarget, PointList&) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBuildRefPointsQK7::MoveTarget() Enter");
    MoveByPitch(rTarget);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBuildRefPointsQK7::MoveTarget() Leaving");
}
