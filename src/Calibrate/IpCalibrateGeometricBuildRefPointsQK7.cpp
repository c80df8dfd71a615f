#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"

#include "Calibrate/DotPattern.h"
#include "Tools/Allocate.h"
#include "Tools/CallTrace.h"

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
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsQK7::BuildTargetPoints()");
    BuildPatternPoints(rTarget, dDpiX, dDpiY, dOffsetX, dOffsetY);
}

void ClIpCalibrateGeometricBuildRefPointsQK7::GridToArray(DotGrid& rGrid, PointList& rPoints) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsQK7::GridToArray()");
    TakeDots(
        rGrid, rPoints, [](ClDot& rDot) { rDot.m_nStatus = ClDot::eOutsideColumn; },
        "Not the expected dot count found.");
    CheckGridLines(rPoints);
}

void ClIpCalibrateGeometricBuildRefPointsQK7::GetGridColumnLengths(TpArrayStatic<int>& rLengths) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsQK7::GetGridColumnLengths()");
    DotPattern::GetColumnLengths(rLengths);
}

void ClIpCalibrateGeometricBuildRefPointsQK7::MoveTarget(PointList& rTarget, PointList&) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsQK7::MoveTarget()");
    MoveByPitch(rTarget);
}
