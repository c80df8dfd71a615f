#pragma once

/// `ClIpFilterGauss`, smoothing with a Gaussian.

#include "ImageProcessing/IpLinFilterBase.h"

class ClIpFilterGauss : public ClIpLinFilterBase {
public:
    ClIpFilterGauss();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// "S[sigma] " and the text of the base. Throws as that does.
    long ParameterString(char* pBuffer, unsigned long nSize) override;
    /// Returns -35 without images; a width below 1 becomes CalcFilterWidth() and stays.
    long Initialize() override;

    /// tap(k) = exp(-k^2 / (2 sigma^2)) * 0.3989422804014327 / sigma, k from -(width - 1) / 2 on;
    /// a single 1 in the middle for a sigma that is not above 0.
    void CalcFilter(TpArrayStatic<double>& rTaps, long nWidth) override;

    /// The odd width that holds a Gaussian: 8 sigma and at least 3; 1 for a sigma that is not
    /// above 0.
    static long CalcFilterWidth(double dSigma);

    long ApplyParam(ClImage& rIn, ClImage& rOut, double dSigma, long nWidth);

    double m_dSigma = 1.0; ///< pixels
};
