#pragma once

/// `ClIpStretchRangeGlobal`, one linear map of an old range of grey values, From to To, to a new
/// one. The table is computed in 20.12 fixed point:
///
///     step     = trunc((newTo + 0.9 - newFrom) * 4096 / (To - From))
///     table[i] = newFrom + (((i - From) * step) >> 12), limited to newFrom to newTo
///
/// The 0.9 lets the top of the old range land on the top of the new one in spite of the truncation.
/// An old range of a single value has no slope: every entry is newFrom then.
///
/// Where the old range begins above its end, as it does by default, it is taken from the image: its
/// lowest and its highest value, over all planes.

#include "ImageProcessing/IpLookUpTableBase.h"

class ClIpStretchRangeGlobal : public ClIpLookUpTableBase {
public:
    ClIpStretchRangeGlobal();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    void QueryParameters(ClParameterInterface& List) override;

    /// Fixes the range in use and fills the table. Where the range comes from the image, returns
    /// -37 and throws as Process().
    long Initialize() override;
    void CalculateLuT() override;

    /// Forgets the images and returns to the default ranges.
    void Reset();

    using ClIpLookUpTableBase::ApplyParam;

    unsigned char m_nOldRangeFrom = 255;
    unsigned char m_nOldRangeTo = 0;
    unsigned char m_nNewRangeFrom = 0;
    unsigned char m_nNewRangeTo = 255;
    unsigned char m_nFrom = 0; ///< the old range in use
    unsigned char m_nTo = 0;

protected:
    /// Both channels, with the given words on the output.
    void PublishStretch(ClParameterContainer& Container, const char* pOutDescription);
    void QueryStretch(ClParameterInterface& List, const char* pOutDescription);
};
