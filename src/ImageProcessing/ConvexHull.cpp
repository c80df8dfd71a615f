#include "ImageProcessing/ConvexHull.h"

#include <algorithm>

namespace ConvexHull {

namespace {

/// Whether `b` lies on the straight line between `a` and `c`, ends included.
bool IsBetween(const ClVector& a, const ClVector& b, const ClVector& c) {
    return Cross(a, b, c) == 0.0 && (a.x - b.x) * (c.x - b.x) + (a.y - b.y) * (c.y - b.y) <= 0.0;
}

} // namespace

void DropPointsOnLines(Points_t& rPolygon) {
    if (rPolygon.Entries() < 3)
        return;
    unsigned long nEnd = 0; // the corners kept so far
    for (unsigned long i = 0; i < rPolygon.Entries(); ++i) {
        while (nEnd >= 2 && IsBetween(rPolygon[nEnd - 2], rPolygon[nEnd - 1], rPolygon[i]))
            --nEnd;
        rPolygon[nEnd++] = rPolygon[i];
    }
    while (nEnd >= 3 && IsBetween(rPolygon[nEnd - 2], rPolygon[nEnd - 1], rPolygon[0]))
        --nEnd;
    unsigned long nBegin = 0;
    while (nEnd - nBegin >= 3 &&
           IsBetween(rPolygon[nEnd - 1], rPolygon[nBegin], rPolygon[nBegin + 1]))
        ++nBegin;
    std::copy(rPolygon.Data() + nBegin, rPolygon.Data() + nEnd, rPolygon.Data());
    rPolygon.SetEntries(nEnd - nBegin);
}

} // namespace ConvexHull
