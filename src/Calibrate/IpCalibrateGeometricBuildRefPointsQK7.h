#pragma once

/// `ClIpCalibrateGeometricBuildRefPointsQK7` knows the dot target of the scanner as its raw capture
/// shows it, with about twice as many lines per inch as columns. It creates calibration data.
///
/// The pattern: seven columns of 10, 11, 11, 11, 11, 11 and 10 dots, 2 mm apart in both directions,
/// all beginning at the same row. Lists of its 75 points go column by column from the left, each
/// from the top.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

class ClIpCalibrateGeometricBuildRefPointsQK7 : public ClIpCalibrateGeometricBuildRefPointsBase {
public:
    ClIpCalibrateGeometricBuildRefPointsQK7();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void BuildTargetPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                           double dOffsetY) override;
    void GridToArray(DotGrid& rGrid, PointList& rPoints) override;
    void GetGridColumnLengths(TpArrayStatic<int>& rLengths) override;
    void MoveTarget(PointList& rTarget, PointList& rOther) override;
};
