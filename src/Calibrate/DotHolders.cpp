#include "Calibrate/DotHolders.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <functional>

ClDotHolders::ClDotHolders(const DotGrid& rGrid) {
    unsigned long nLinks = 0;
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        nLinks += rGrid[i]->m_aNeighbours.Entries();
    m_pLinks = Vek::NewArrayPtr<StLink>(nLinks);
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        for (unsigned long n = 0; n < rGrid[i]->m_aNeighbours.Entries(); ++n)
            m_pLinks[m_nLinks++] = {rGrid[i]->m_aNeighbours[n], rGrid[i]};
    std::sort(m_pLinks.get(), m_pLinks.get() + m_nLinks, [](const StLink& A, const StLink& B) {
        return std::less<const ClDot*>()(A.m_pDot, B.m_pDot);
    });
}

const ClDotHolders::StLink* ClDotHolders::First(const ClDot& rDot) const {
    return std::lower_bound(Begin(), End(), &rDot, [](const StLink& Link, const ClDot* pDot) {
        return std::less<const ClDot*>()(Link.m_pDot, pDot);
    });
}
