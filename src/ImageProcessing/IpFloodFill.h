#pragma once

/// `ClIpFloodFill` gives the region of a start pixel another colour: all pixels of the start
/// pixel's value that join it by direct neighbours, in each plane by itself. A plane in which the
/// start pixel has the fill colour already stays as it is.
///
/// The fill goes by runs over an explicit stack of seeds: linear in the pixels of the region, and
/// no shape can exhaust the call stack. It works in place, so that many regions of one image can be
/// filled one by one without a copy each.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpFloodFill : public ClProcessorBase {
public:
    /// A place from which the fill goes on.
    struct StLinePart {
        long m_nColumn;
        long m_nLine;
    };

    ClIpFloodFill();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    void QueryParameters(ClParameterInterface& List) override;

    /// -10 without an input.
    long Initialize() override;
    /// Fills in the output, which becomes a copy of the input first, or in the input where that is
    /// the output or there is none. Fills with the bounding box if `m_pBox` is set, else under the
    /// condition of the count if `m_nCountThresh` is not 0.
    ///
    /// Returns 0, -37 for an input without pixels and -35 for a start pixel outside it; throws
    /// "Image Type is not the assigned type" (-101) for another type than `eUInt8`: all before a
    /// pixel changes. Throws `ClExBadAlloc` (-102), after which the region may be filled in part.
    long Process() override;

    ClImage* m_pInImage = nullptr;  ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr; ///< may be null or the input
    /// The caller's array of 4, or null: receives the smallest x, the smallest y, the largest x
    /// and the largest y of the filled pixels, all planes together; the start pixel alone where
    /// none is filled.
    long* m_pBox = nullptr;
    /// A region of fewer pixels stays as it is; values above 253 count as 253.
    long m_nCountThresh = 0;
    unsigned char m_nFillColor = 0;
    long m_nStartX = 0;
    long m_nStartY = 0;

private:
    long CheckInput() const;
    ClImage& PrepareImage() const;
    void FloodFill(ClImage& rImage) const;
    void BoundingBoxFill(ClImage& rImage) const;
    void CountFill(ClImage& rImage) const;
    template <class Visit>
    void FillPlane(ClImage& rPlane, Visit visit) const;
    void CountFillPlane(ClImage& rPlane) const;
};
