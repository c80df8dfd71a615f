#pragma once

/// `ClIpSubtract`, the difference of two images. With samples a and b it is
///
///     lo  where a - b < lo, else hi where a - b > hi, else a - b
///
/// and a difference that is not a number gives lo. The bounds, by the data range:
///
///     DataDependent     black and white of the output, whichever is the smaller first
///     InputDependent    black 1 - white 2 and white 1 - black 2, of the inputs
///     UserDependent     the two members, which also become the output's range, in its type
///
/// For an integer output the bounds are converted to its type first, for a real one they stay as
/// they are. So -255, the lower bound of
/// two 8-bit inputs, counts as 1 where the output is `unsigned char`.

#include "ImageProcessing/Ip2to1Base.h"

class ClRangeClip;

class ClIpSubtract : public ClIp2to1Base {
public:
    enum EDataRangeType : int { DataDependent = 0, InputDependent = 1, UserDependent = 2 };

    ClIpSubtract();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Pairs three planes with one, too; other unequal counts leave the output and its range
    /// alone. Returns -101 also for a data range outside the three.
    long DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                   long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride, long nIn2Offset,
                   long nIn2Stride, long nOutOffset, long nOutStride) override;
    /// The difference clipped to the output's range, whatever the data range.
    double GetValue(ClImage& In1, ClImage& In2, ClImage& Out, double dValue1,
                    double dValue2) override;

    double m_dLowerBound = 0.0; ///< for UserDependent, to be set with it
    double m_dUpperBound = 0.0;
    EDataRangeType m_eDataRange = DataDependent;

private:
    long Default(const StPairArea& Area) const;
    ClRangeClip FixBounds(const StPairArea& Area) const;
};
