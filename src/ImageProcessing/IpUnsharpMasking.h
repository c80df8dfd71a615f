#pragma once

/// `ClIpUnsharpMasking`, sharpening: the difference between an image and its Gaussian low pass is
/// added to it. With sample p, low pass l and d = p - l, the output is
///
///     p                                          where the threshold is not 0 and |d| is within it
///     clamp(p + d * amplification, 0, 255)       truncated, elsewhere

#include "ImageProcessing/Ip1to1Base.h"

class ClIpUnsharpMasking : public NewIpBase::ClIp1to1Base {
public:
    ClIpUnsharpMasking();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    long DoProcess(ClImage& rIn, ClImage& rOut) override;

    long ApplyParam(ClImage& rIn, ClImage& rOut, long nWidth);

    long m_nLowPassFilterWidth = 0;      ///< pixels, odd; 0 takes the width from the sigma
    double m_dGaussSigma = 2.0;          ///< pixels
    double m_dAmplificationFactor = 1.0; ///< weight of the difference
    long m_nThreshold = 0;               ///< grey values; differences within it are noise
    long m_nMode = 3;                    ///< mode of the low pass

private:
    bool IsAlongColumns(const ClImage& rIn, const ClImage& rOut) const;
    long SharpenColumns(ClImage& rIn, ClImage& rOut) const;
};
