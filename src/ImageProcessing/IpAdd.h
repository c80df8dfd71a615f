#pragma once

/// `ClIpAdd`, the sum of two images. With samples a and b and the output's range from lo to hi,
/// whichever of black and white is the smaller:
///
///     ModeCut        min(hi, max(lo, a + b))
///     ModeScale      min(hi, max(lo, half)), half being (a + b) / 2, truncated, for integers, and
///                    (a + b) * 0.5 for floating-point samples
///     ModeEnlarge    a + b, of which an integer output keeps the low bits
///
/// The sum is formed in the arithmetic of the two sample types: 32-bit integers where both are
/// integers, unsigned ones where one is `unsigned int`, modulo 2^32; `float` or `double` where one
/// is that. Only then is it clipped and converted.

#include "ImageProcessing/Ip2to1Base.h"

class ClIpAdd : public ClIp2to1Base {
public:
    enum EProcessingMode : int { ModeCut = 0, ModeScale = 1, ModeEnlarge = 2 };

    ClIpAdd();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Returns -101 also for a mode outside the three. Throws "unequal plane count is not
    /// suported." (-44) unless both images have equally many planes; only the table pairs three
    /// planes with one.
    long DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                   long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride, long nIn2Offset,
                   long nIn2Stride, long nOutOffset, long nOutStride) override;
    /// The same in double; 0.0 for ModeEnlarge.
    double GetValue(ClImage& In1, ClImage& In2, ClImage& Out, double dValue1,
                    double dValue2) override;

    EProcessingMode m_eMode = ModeScale;

private:
    class ClModeCut;
    class ClModeScale;
    class ClModeEnlarge;

    template <class Mode>
    static long Default(const StPairArea& Area);
};
