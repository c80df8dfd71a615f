#pragma once

/// `ClIpCalibrateGeometricBicubic`, the geometric correction with a 4 by 4 cubic convolution
/// kernel. Thin plate splines over the record tell for every pixel of the corrected image where
/// it lies in the capture; the table keeps the offset of the 16 samples and their weights, 1024
/// standing for 1.0.

#include "Calibrate/IpCalibrateGeometricBase.h"

class ClIpCalibrateGeometricBicubic : public ClIpCalibrateGeometricBase {
public:
    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// The kernel with the parameter -0.75; 0 from a distance of 2 on.
    static double CubicConvolution(double t);

protected:
    void InitiateParams(PointList& rTarget, PointList* pActual, unsigned int nPlanes) override;
    void CalibrateGeo(ClImage& rIn, ClImage& rOut) override;

    /// Writes the entry of one corrected pixel whose source is (sx, sy).
    void FillEntry(double sx, double sy, unsigned char* pEntry) const;
};
