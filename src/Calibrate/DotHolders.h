#pragma once

/// Who links a dot. Links may be one-sided and a dot knows only those that go out from it: taking
/// dots out of a grid would ask all others each time.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Tools/CallTrace.h"

#include <memory>

class ClDotHolders {
public:
    using ClDot = ClIpCalibrateGeometricBuildRefPointsBase::ClDot;
    using DotGrid = ClIpCalibrateGeometricBuildRefPointsBase::DotGrid;

    /// The links as they are now. Those that go later do no harm.
    explicit ClDotHolders(const DotGrid& rGrid);

    /// RemoveGridPoint() without a look at those who never linked the dot. Calls `visit(ClDot&)`
    /// for each dot that linked it and no longer does.
    template <class Visit>
    void TakeOut(ClDot& rDot, Visit visit) const {
        const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::RemoveGridPoint()");
        for (const StLink* p = First(rDot); p != End() && p->m_pDot == &rDot; ++p) {
            p->m_pHolder->Remove(&rDot);
            visit(*p->m_pHolder);
        }
        rDot.m_bValid = false;
    }

private:
    struct StLink {
        const ClDot* m_pDot;
        ClDot* m_pHolder;
    };

    const StLink* First(const ClDot& rDot) const;
    const StLink* Begin() const { return m_pLinks.get(); }
    const StLink* End() const { return m_pLinks.get() + m_nLinks; }

    std::unique_ptr<StLink[]> m_pLinks; ///< sorted by the linked dot
    unsigned long m_nLinks = 0;
};
