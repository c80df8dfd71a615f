#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"

#include "Calibrate/DotPattern.h"
#include "Calibrate/GridLines.h"
#include "Tools/Allocate.h"
#include "Tools/CallTrace.h"

// A round dot is round here, and has half of the raw capture's lines.
ClIpCalibrateGeometricBuildRefPointsQK7Half::ClIpCalibrateGeometricBuildRefPointsQK7Half() {
    m_dPitchTolerance = 0.21;
    m_dMinEccentricity = 0.0;
    m_dMaxEccentricity = 0.35;
    m_dMinArea = 100.0;
    m_dMaxArea = 350.0;
    m_dSourceDpiY = 504.743;
}

ClProcessorBase* ClIpCalibrateGeometricBuildRefPointsQK7Half::Create() {
    return Vek::NewObject<ClIpCalibrateGeometricBuildRefPointsQK7Half>();
}

const char* ClIpCalibrateGeometricBuildRefPointsQK7Half::Name() const {
    return "ClIpCalibrateGeometricBuildRefPointsQK7Half";
}

void ClIpCalibrateGeometricBuildRefPointsQK7Half::BuildTargetPoints(PointList& rTarget,
                                                                    double dDpiX, double dDpiY,
                                                                    double dOffsetX,
                                                                    double dOffsetY) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsQK7Half::BuildTargetPoints()");
    BuildPatternPoints(rTarget, dDpiX, dDpiY, dOffsetX, dOffsetY);
}

void ClIpCalibrateGeometricBuildRefPointsQK7Half::GridToArray(DotGrid& rGrid, PointList& rPoints) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsQK7Half::GridToArray()");
    TakeDots(
        rGrid, rPoints, [](ClDot& rDot) { rDot.m_dWeight = 0.0; },
        "Not the expected Dot count found.");
    TpArrayStatic<int> aLengths;
    DotPattern::GetColumnLengths(aLengths);
    GridLines::Check(aLengths, rPoints, *this);
}

void ClIpCalibrateGeometricBuildRefPointsQK7Half::GetGridColumnLengths(
    TpArrayStatic<int>& rLengths) {
    const Vek::ClCallTrace Trace(
        "ClIpCalibrateGeometricBuildRefPointsQK7Half::GetGridColumnLengths()");
    DotPattern::GetColumnLengths(rLengths);
}

void ClIpCalibrateGeometricBuildRefPointsQK7Half::MoveTarget(PointList& rTarget, PointList&) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsQK7Half::MoveTarget()");
    MoveByPitch(rTarget);
}
