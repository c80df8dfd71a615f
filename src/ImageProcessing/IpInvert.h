#pragma once

/// `ClIpInvert`, the mirror image of every sample in the range of its image. With black bi and
/// white wi of the input and bo and wo of the output, which are the same unless a caller has
/// changed them, sample v becomes
///
///     bo + (bi - v + wi - bi) * (wo - bo) / (wi - bi)
///
/// in double, from left to right, and is converted by truncation. An input range without extent
/// gives bo. The operator works in place.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpInvert : public NewIpBase::ClIp1to1Base {
public:
    /// Admits all eight pixel types.
    ClIpInvert();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    double GetValue(ClImage& In, ClImage& Out, double dValue) override;
};
