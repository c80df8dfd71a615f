#include "apps/qk7/PatternGaps.h"

#include <algorithm>
#include <cmath>

namespace qk7 {

namespace {

using Places = std::vector<StPlace>;
using Indices = std::vector<std::size_t>;

/// What is under one shift, and the shifts that fit as well.
struct StFit {
    StPlace m_Shift;
    Indices m_aUnfilled;
    bool m_bAmbiguous = false;
};

StPlace Shifted(const StPlace& Place, const StPlace& Shift) {
    return {Place.m_dX + Shift.m_dX, Place.m_dY + Shift.m_dY};
}

/// The first dot within reach, or null.
const StPlace* DotAt(const StPlace& Place, const Places& aDots, const StPlace& Reach) {
    const auto found = std::find_if(aDots.begin(), aDots.end(), [&](const StPlace& Dot) {
        return std::fabs(Dot.m_dX - Place.m_dX) < Reach.m_dX &&
               std::fabs(Dot.m_dY - Place.m_dY) < Reach.m_dY;
    });
    return found == aDots.end() ? nullptr : &*found;
}

Indices UnfilledUnder(const StPlace& Shift, const Places& aPlaces, const Places& aDots,
                      const StPlace& Reach) {
    Indices unfilled;
    for (std::size_t i = 0; i < aPlaces.size(); ++i)
        if (DotAt(Shifted(aPlaces[i], Shift), aDots, Reach) == nullptr)
            unfilled.push_back(i);
    return unfilled;
}

StFit BestFit(const Places& aPlaces, const Places& aDots, const StPlace& Reach) {
    StFit best;
    bool bFirst = true;
    for (const StPlace& place : aPlaces)
        for (const StPlace& dot : aDots) {
            const StPlace shift = {dot.m_dX - place.m_dX, dot.m_dY - place.m_dY};
            Indices unfilled = UnfilledUnder(shift, aPlaces, aDots, Reach);
            if (bFirst || unfilled.size() < best.m_aUnfilled.size())
                best = {shift, std::move(unfilled), false};
            else if (unfilled.size() == best.m_aUnfilled.size())
                best.m_bAmbiguous = best.m_bAmbiguous || unfilled != best.m_aUnfilled;
            bFirst = false;
        }
    return best;
}

/// The shift that brings the places onto their dots in the mean.
StPlace Refined(const StPlace& Shift, const Places& aPlaces, const Places& aDots,
                const StPlace& Reach) {
    StPlace sum;
    double dCount = 0.0;
    for (const StPlace& place : aPlaces)
        if (const StPlace* pDot = DotAt(Shifted(place, Shift), aDots, Reach)) {
            sum.m_dX += pDot->m_dX - place.m_dX;
            sum.m_dY += pDot->m_dY - place.m_dY;
            dCount += 1.0;
        }
    return {sum.m_dX / dCount, sum.m_dY / dCount};
}

} // namespace

std::vector<StUnfilled> UnfilledPlaces(const Places& aPlaces, const Places& aDots,
                                       const StPlace& Reach) {
    if (aDots.empty() || aDots.size() >= aPlaces.size())
        return {};
    const StFit fit = BestFit(aPlaces, aDots, Reach);
    if (fit.m_bAmbiguous || fit.m_aUnfilled.size() != aPlaces.size() - aDots.size())
        return {};
    const StPlace shift = Refined(fit.m_Shift, aPlaces, aDots, Reach);
    std::vector<StUnfilled> unfilled;
    for (const std::size_t nIndex : fit.m_aUnfilled)
        unfilled.push_back({nIndex, Shifted(aPlaces[nIndex], shift)});
    return unfilled;
}

} // namespace qk7
