#pragma once

/// `ClIpFilterDGauss`, the derivative of a Gaussian along x or along y. Its output is signed.

#include "ImageProcessing/IpFilterGauss.h"

class ClIpFilterDGauss : public ClIpFilterGauss {
public:
    ClIpFilterDGauss();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;

    /// A derivative has one direction: -101.
    long ProcessXY() override;
    long ProcessSignedXY() override;

    /// tap(k) = k * exp(-k^2 / (2 sigma^2)) * (-1 / (sigma^2 sqrt(2 pi sigma))).
    void CalcFilter(TpArrayStatic<double>& rTaps, long nWidth) override;

    /// Both derivatives of an image, with one setting: a width that is found or limited for x is
    /// the one that y begins with. Returns the first result that is not 0.
    long ApplyParam(ClImage& rIn, ClImage& rOutX, ClImage& rOutY, double dSigma, long nWidth);
};
