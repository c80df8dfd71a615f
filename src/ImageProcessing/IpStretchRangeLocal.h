#pragma once

/// `ClIpStretchRangeLocal`, the stretch of every pixel between the minimum and the maximum of its
/// neighbourhood, which evens out the light of the scanner. With d = Max - Min of a pixel,
///
///     out = ((0xFF0000 / (d + 1)) * (in - Min)) >> 16                  where d > minContrast
///     out = ((0xFF0000 / (high - low + 1)) * (in - low)) >> 16         elsewhere, and for d = -1
///
/// limited to 0 to 255; divisions truncate, shifts are arithmetic. A range too flat to trust gives
/// way to the global one, low to high, which sets aside a thousandth of the darkest and of the
/// brightest samples.
///
/// Min and Max are the rank filters of the given width, each smoothed, if wanted, by the mean of
/// that width (made odd), so that the stretch does not jump where a single speck enters the window.
/// With subsampling all this happens on an image of block means, smaller by the rate: the rank
/// filters take a width smaller by the same rate, made odd and at least 3, the means the full one,
/// and each limit serves a block, whose pixels may then lie beyond it.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpStretchRangeLocal : public ClProcessorBase {
public:
    ClIpStretchRangeLocal();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    void QueryParameters(ClParameterInterface& List) override;
    /// "W<width>". Throws "String-Length exceeded available size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    /// Returns -37 without images or input pixels, for a width below 1, and for an input of other
    /// than one or three planes. Throws "Image Type is not the assigned type" (-101) for other
    /// types than `eUInt8`, "Filter width has to be odd." (-44) for an even width above 1 without
    /// subsampling, `ClExBadAlloc` (-102). In and out may be one image; the output changes when
    /// everything else is done. A width of 1 copies. Several planes are stretched one by one, the
    /// result has their content and attribute.
    long Process() override;

    long ApplyParam(ClImage& In, ClImage& Out);

    ClImage* m_pInImage = nullptr;     ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr;    ///< may be the input
    unsigned char m_nNewRangeFrom = 0; ///< parameter only: the stretch always goes to 0 to 255
    unsigned char m_nNewRangeTo = 255; ///< likewise
    long m_nFilterWidth = 3;           ///< side of the neighbourhood, pixels
    long m_nMinContrast = 5;           ///< grey values; ranges up to this are too flat
    long m_nSubSampleRate = 4;         ///< below 2: none
    bool m_bUseMinSmoothing = true;
    bool m_bUseMaxSmoothing = false;
    ClImage* m_pOptOutMinImage = nullptr; ///< get copies of Min and Max, of the last plane
    ClImage* m_pOptOutMaxImage = nullptr;

private:
    long ProcessMultiPlane();
    long StretchPlane(const ClImage& In, ClImage& Out) const;
    void FindLimits(ClImage& Src, ClImage& Min, ClImage& Max) const;
    void FilterLimits(ClImage& Src, long nWidth, ClImage& Min, ClImage& Max) const;
    void Smoothen(ClImage& Image) const;
    void Stretch(const ClImage& Src, const ClImage& Min, const ClImage& Max, ClImage& Out) const;
};
