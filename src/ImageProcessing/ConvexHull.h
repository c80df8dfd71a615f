#pragma once

/// The geometry of convex hulls: points in arrays, and no image.

#include "Math/Vector.h"
#include "Tools/Array.h"

namespace ConvexHull {

using Points_t = TpArrayDynamic<ClVector, 10>;

/// Above 0 where a walk from `a` over `b` to `c` turns from x to y, below 0 where it turns the
/// other way, and 0 on a straight line.
inline double Cross(const ClVector& a, const ClVector& b, const ClVector& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Adds a point to a chain that `turns(a, b, c)` at every point. The first `nFixed` points of the
/// array stay, and the last of them begins the chain.
template <class Turns>
void ExtendChain(Points_t& rChain, unsigned long nFixed, const ClVector& Point, Turns turns) {
    unsigned long n = rChain.Entries();
    while (n > nFixed && !turns(rChain[n - 2], rChain[n - 1], Point))
        --n;
    rChain.SetEntries(n);
    rChain.Append(Point);
}

/// The monotone chain: one chain over the points, which are sorted, and one back. The point where
/// the two close stands once, at the beginning. `rHull` is not `rPoints`.
template <class Turns>
void BuildChains(const Points_t& Points, Points_t& rHull, Turns turns) {
    const unsigned long nPoints = Points.Entries();
    rHull.Clear();
    rHull.Reserve(2 * nPoints);
    for (unsigned long i = 0; i < nPoints; ++i)
        ExtendChain(rHull, 1, Points[i], turns);
    const unsigned long nForth = rHull.Entries();
    for (unsigned long i = nPoints; i-- > 1;)
        ExtendChain(rHull, nForth, Points[i - 1], turns);
    if (nPoints > 1)
        rHull.SetEntries(rHull.Entries() - 1);
}

/// Removes the corners that lie on the straight line between their neighbours, again and again;
/// of fewer than 3 none.
void DropPointsOnLines(Points_t& rPolygon);

} // namespace ConvexHull
