#pragma once

/// `TpIpFilterExtreme`, what `ClIpFilterMax` and `ClIpFilterMin` share: everything but the order
/// of samples and their names. See Walks/RankWalk.h for the walks.

#include "ImageProcessing/IpFilterBase.h"
#include "ImageProcessing/Walks/RankWalk.h"

template <EExtreme eExtreme>
class TpIpFilterExtreme : public ClIpFilterBase {
public:
    using ClProcessorBase::QueryParameters;

    /// Images and width alone.
    void QueryParameters(ClParameterInterface& List) override;
    /// One plane. Tests in this order: throws "Filter width has to be odd." (-44); returns -35
    /// without an input, -101 for an unknown pixel type, -33 for the directed modes; throws -6 for
    /// an unknown mode and "m_pOutImage is not set" (-701); returns -35 for an input without the
    /// pixels that it claims.
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

extern template class TpIpFilterExtreme<EExtreme::eMax>;
extern template class TpIpFilterExtreme<EExtreme::eMin>;
