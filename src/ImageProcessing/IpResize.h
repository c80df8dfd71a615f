#pragma once

/// `ClIpResize` enlarges an 8-bit image by a whole factor n: every input pixel becomes a block of
/// n by n pixels,
///
///     out(x, y) = in(x / n, y / n)
///
/// up to the destination's size. Pixels of a larger destination that no block reaches are 0. It is
/// the way back from `ClIpSubsample`, whose blocks may end beyond the edge of the image that they
/// were taken from: the destination size then cuts what is too much.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpResize : public ClProcessorBase {
public:
    ClIpResize();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void QueryParameters(ClParameterInterface& List) override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// With both destination sizes 0 the output has n times the input's size; its resolutions are
    /// n times those of the input. Throws "m_pInImage is not set" and "m_pOutImage is not set"
    /// (-701); returns -35 for an input without pixels and for a factor below 1. Throws "Image
    /// Type is not the assigned type" (-101) for other types than `eUInt8`; "Image has more than 4
    /// planes." (-35); "Image area must be positive" (-101) for other destination sizes below 1;
    /// `ClExBadAlloc` (-102), also for sizes that no image has. In and out may be one image; the
    /// input then changes with success only. Planes are enlarged one by one.
    long Process() override;

    /// A width and height of 0 leave the size to the factor.
    long ApplyParam(ClImage& rIn, int nFactor, ClImage& rOut, int nWidth, int nHeight);

    ClImage* m_pInImage = nullptr; ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr;
    int m_nScaleFactor = 2;
    int m_nDestWidth = 0; ///< pixels; both 0: by the factor
    int m_nDestHeight = 0;

private:
    long ProcessMultiPlane();
    void NewOutput(const ClImage& In, ClImage& Out) const;
    long Resize(const ClImage& In, ClImage& Out) const;
};
