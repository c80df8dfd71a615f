#pragma once

/// `ClIpOffset` adds a constant to every sample and clips to the range of the image:
///
///     8 bits, unsigned      min(hi, max(lo, v + offset)), truncated
///     other integers        the same with the truncated offset, which is limited to +-2^32
///     floating point        the same in double
///
/// An offset that counts as 0 copies what is not of 8 bits, without clipping.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpOffset : public NewIpBase::ClIp1to1Base {
public:
    /// Admits all eight pixel types.
    ClIpOffset();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// "Offset = <offset>", with 4 digits behind the point for an input of a floating-point type.
    /// Throws "String-Length exceeded available size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;
    /// Whether an input image is named, of whatever type.
    bool CanApply() override;

    long DoProcess(ClImage& In, ClImage& Out) override;
    double GetValue(ClImage& In, ClImage& Out, double dValue) override;

    using ClIp1to1Base::ApplyParam;
    long ApplyParam(ClImage& Image, double dValue);
    long ApplyParam(ClImage& In, ClImage& Out, double dValue);

    double m_dOffset = 0.0;

private:
    template <class T>
    void Offset(const ClImage& In, ClImage& Out) const;
};
