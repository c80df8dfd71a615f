#pragma once

/// `ClIpStretchRangeGlobalNoiseRemoving`, the global stretch of the range that is left when a share
/// of the darkest and one of the brightest samples is set aside as noise, see
/// `ClHistogram::GetNoiseFreeRange`. Of several planes it is the range from the lowest start to the
/// highest end. Where nothing is left, start and end become the end. The old range of the base is
/// not used.

#include "ImageProcessing/IpStretchRangeGlobal.h"

class ClIpStretchRangeGlobalNoiseRemoving : public ClIpStretchRangeGlobal {
public:
    ClIpStretchRangeGlobalNoiseRemoving();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    void QueryParameters(ClParameterInterface& List) override;

    /// Gives the output its geometry, then finds the range and fills the table. Returns -37 and
    /// throws as Process().
    long Initialize() override;

    /// Shares are fractions of 1.
    long ApplyParam(ClImage& In, ClImage& Out, double dDarkNoisePart, double dBrightNoisePart);
    using ClIpStretchRangeGlobal::ApplyParam;

    double m_dDarkNoisePart = 0.0;
    double m_dBrightNoisePart = 0.0;
};
