#pragma once

/// `ClIpCalibrateGeometricBuildRefPointsQK7Half` knows the dot target of the scanner as an image of
/// equal resolution in both directions shows it. It serves the accuracy check of corrected images.
/// The pattern is that of `ClIpCalibrateGeometricBuildRefPointsQK7`.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

class ClIpCalibrateGeometricBuildRefPointsQK7Half
    : public ClIpCalibrateGeometricBuildRefPointsBase {
public:
    ClIpCalibrateGeometricBuildRefPointsQK7Half();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void BuildTargetPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                           double dOffsetY) override;
    void GridToArray(DotGrid& rGrid, PointList& rPoints) override;
    void GetGridColumnLengths(TpArrayStatic<int>& rLengths) override;
    void MoveTarget(PointList& rTarget, PointList& rOther) override;
};
