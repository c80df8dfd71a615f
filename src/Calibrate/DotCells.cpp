#include "Calibrate/DotCells.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <cmath>

namespace {

/// What a rounded sum may miss, so that no dot at the very end of the reach is lost.
constexpr double cdMargin = 1.0 + 1e-6;
/// Rows beyond these are one row: so far out only the order has to hold.
constexpr double cdOutermostRow = 1e9;

bool IsFinite(const ClVector& rPlace) {
    return std::isfinite(rPlace.x) && std::isfinite(rPlace.y);
}

} // namespace

bool ClDotCells::StPlace::operator<(const StPlace& Other) const {
    return m_nRow != Other.m_nRow ? m_nRow < Other.m_nRow : m_dX < Other.m_dX;
}

// A row is twice as high as the reach, so that rounding cannot make two rows of one step.
ClDotCells::ClDotCells(const DotGrid& rGrid, double dReachX, double dReachY)
    : m_rGrid(rGrid), m_dReachX(dReachX * cdMargin), m_dRowHeight(2.0 * dReachY * cdMargin),
      m_pPlaces(Vek::NewArrayPtr<StPlace>(rGrid.Entries())) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        if (rGrid[i]->m_bValid && IsFinite(rGrid[i]->m_vPos))
            m_pPlaces[m_nPlaces++] = {RowOf(rGrid[i]->m_vPos.y), rGrid[i]->m_vPos.x, i};
    std::sort(m_pPlaces.get(), m_pPlaces.get() + m_nPlaces);
}

std::int64_t ClDotCells::RowOf(double dY) const {
    return static_cast<std::int64_t>(
        std::clamp(std::floor(dY / m_dRowHeight), -cdOutermostRow, cdOutermostRow));
}

const ClDotCells::StPlace* ClDotCells::FirstFrom(std::int64_t nRow, double dX) const {
    return std::lower_bound(m_pPlaces.get(), m_pPlaces.get() + m_nPlaces, StPlace{nRow, dX, 0});
}

void ClDotCells::FindBehind(unsigned long nIndex, Indices& rFound) const {
    rFound.Clear();
    const ClVector& rPlace = m_rGrid[nIndex]->m_vPos;
    if (!IsFinite(rPlace))
        return;
    const std::int64_t nOwnRow = RowOf(rPlace.y);
    const double dLast = rPlace.x + m_dReachX;
    for (std::int64_t nRow = nOwnRow - 1; nRow <= nOwnRow + 1; ++nRow)
        for (const StPlace* p = FirstFrom(nRow, rPlace.x - m_dReachX);
             p != m_pPlaces.get() + m_nPlaces && p->m_nRow == nRow && p->m_dX <= dLast; ++p)
            if (p->m_nIndex > nIndex)
                rFound.Append(p->m_nIndex);
    std::sort(rFound.Data(), rFound.Data() + rFound.Entries());
}
