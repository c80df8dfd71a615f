#pragma once

/// `ClIpAbs`, the absolute value of every sample. It is not clipped: the value of the lowest signed
/// sample, such as 128 of -128, does not exist in its type, and the sample stays as it is.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpAbs : public NewIpBase::ClIp1to1Base {
public:
    /// Admits all eight pixel types.
    ClIpAbs();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    double GetValue(ClImage& In, ClImage& Out, double dValue) override;
};
