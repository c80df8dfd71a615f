#pragma once

/// `ClIpFilterMax`, the maximum over a window: bright areas grow.
///
///     out[x] = max(in[x - h], ..., in[x + h])      h = width / 2, cut at the image edge
///
/// along lines (mode 1), along columns (2) or along both (3), which is the maximum over a square:
/// lines first, then columns of that result. Every pixel type; see RankWalk.h for the way.

#include "ImageProcessing/IpFilterBase.h"

class ClIpFilterMax : public ClIpFilterBase {
public:
    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    /// Images and width alone.
    void QueryParameters(ClParameterInterface& List) override;
    /// One plane. Tests in this order: throws "Filter width has to be odd." (-44); returns -35
    /// without an input and its pixels, -101 for an unknown pixel type, -33 for the directed
    /// modes; throws -6 for an unknown mode and "m_pOutImage is not set" (-701).
    long DoProcess() override;

    long ApplyParam(ClImage& In, ClImage& Out, long nWidth, long nMode);

protected:
    /// Throws "m_pInImage is not set" and "m_pOutImage is not set" (-701).
    void CheckImages() const;

private:
    template <class Walk>
    long Run(Walk walk);
    template <class T>
    long ProcessT();
    template <class T>
    long ProcessT_X();
    template <class T>
    long ProcessT_Y();
    template <class T>
    long ProcessT_XY();
};
