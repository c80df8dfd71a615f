#pragma once

/// `ClIpScale` multiplies every sample by a factor, in double, clips to the range of the image and
/// truncates:
///
///     min(hi, max(lo, v * factor))
///
/// A factor of exactly 1.0 copies what is not of type `unsigned char`, without clipping.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpScale : public NewIpBase::ClIp1to1Base {
public:
    /// Admits all eight pixel types.
    ClIpScale();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// "ScaleFactor = <factor>", with 4 digits behind the point for an input of a floating-point
    /// type. Throws "String-Length exceeded available size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    long DoProcess(ClImage& In, ClImage& Out) override;
    double GetValue(ClImage& In, ClImage& Out, double dValue) override;

    using ClIp1to1Base::ApplyParam;
    long ApplyParam(ClImage& Image, double dValue);
    long ApplyParam(ClImage& In, ClImage& Out, double dValue);

    double m_dScaleFactor = 1.0;

private:
    template <class T>
    void Scale(const ClImage& In, ClImage& Out) const;
};
