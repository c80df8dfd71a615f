#pragma once

/// `ClIpMax`, the larger sample of two images, clipped to the output's range: with samples a and b,
///
///     min(hi, max(lo, b > a ? b : a))
///
/// Samples are compared by value, whatever their types. One that is not a number in image 1 stays
/// and clips to lo; one in image 2 never wins.

#include "ImageProcessing/Ip2to1Base.h"

class ClIpMax : public ClIp2to1Base {
public:
    ClIpMax();

    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// Pairs three planes with one, too; other unequal counts write nothing.
    long DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                   long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride, long nIn2Offset,
                   long nIn2Stride, long nOutOffset, long nOutStride) override;
    double GetValue(ClImage& In1, ClImage& In2, ClImage& Out, double dValue1,
                    double dValue2) override;

private:
    static long Default(const StPairArea& Area);
};
