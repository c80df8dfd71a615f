#pragma once

/// Polygons for tests, and plain ways of saying which pixels one covers and what a convex hull is.

#include "Math/Vector.h"
#include "Tools/Array.h"
#include "support/Images.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace TestSupport {

using Polygon_t = TpArrayDynamic<ClVector, 10>;
using Point = std::pair<double, double>; ///< y and x, so that points sort in the order of a scan

using XY = std::vector<std::pair<double, double>>;

inline Polygon_t PolygonOf(const XY& aXY) {
    Polygon_t polygon;
    for (const auto& [x, y] : aXY)
        polygon.Append(ClVector(x, y));
    return polygon;
}

inline XY Corners(const Polygon_t& rPolygon) {
    XY aXY;
    for (unsigned long i = 0; i < rPolygon.Entries(); ++i)
        aXY.emplace_back(rPolygon[i].x, rPolygon[i].y);
    return aXY;
}

/// The corners in the order of a scan.
inline std::vector<Point> SortedCorners(const Polygon_t& rPolygon) {
    std::vector<Point> aPoints;
    for (unsigned long i = 0; i < rPolygon.Entries(); ++i)
        aPoints.emplace_back(rPolygon[i].y, rPolygon[i].x);
    std::sort(aPoints.begin(), aPoints.end());
    return aPoints;
}

/// Corners drawn evenly from an image, in quarters of a pixel or in whole ones: crossings of their
/// edges with a line are then exact at the ends.
inline Polygon_t RandomPolygon(unsigned long nCorners, int nWidth, int nHeight, bool bWhole,
                               unsigned nSeed) {
    std::mt19937 random(nSeed);
    const int nParts = bWhole ? 1 : 4;
    const auto draw = [&](int nSize) {
        const auto nMax = static_cast<unsigned long>((nSize - 1) * nParts);
        return static_cast<double>(random() % (nMax + 1)) / nParts;
    };
    Polygon_t polygon;
    while (polygon.Entries() < nCorners) {
        const double x = draw(nWidth);
        polygon.Append(ClVector(x, draw(nHeight)));
    }
    return polygon;
}

inline double CrossOf(const ClVector& a, const ClVector& b, const ClVector& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// `visit(a, b)` for every edge.
template <class Visit>
void ForEachEdge(const Polygon_t& rPolygon, Visit visit) {
    for (unsigned long i = 0; i < rPolygon.Entries(); ++i)
        visit(rPolygon[i], rPolygon[(i + 1) % rPolygon.Entries()]);
}

/// Column in which an edge that is not horizontal meets a line.
inline int ColumnAt(const ClVector& a, const ClVector& b, int y) {
    return static_cast<int>((y - a.y) * (b.x - a.x) / (b.y - a.y) + a.x);
}

/// Whether a pixel is painted: it lies on the outline of its line, or an odd number of edges pass
/// to its left. An edge counts with its upper end and without its lower one, which counts every
/// corner that is passed through once and every turn twice or not at all.
inline bool NaivePainted(const Polygon_t& rPolygon, int x, int y) {
    bool bOnOutline = false;
    bool bInside = false;
    ForEachEdge(rPolygon, [&](const ClVector& a, const ClVector& b) {
        if (y < std::min(a.y, b.y) || y > std::max(a.y, b.y))
            return;
        if (a.y == b.y) {
            bOnOutline |= x >= static_cast<int>(std::min(a.x, b.x)) &&
                          x <= static_cast<int>(std::max(a.x, b.x));
            return;
        }
        bOnOutline |= x == ColumnAt(a, b, y);
        bInside ^= y < std::max(a.y, b.y) && ColumnAt(a, b, y) < x;
    });
    return bOnOutline || bInside;
}

/// The same for a convex polygon: between the outermost crossings of the line.
inline bool NaiveConvexPainted(const Polygon_t& rPolygon, int x, int y) {
    double dLeft = 1e9;
    double dRight = -1e9;
    ForEachEdge(rPolygon, [&](const ClVector& a, const ClVector& b) {
        if (y < std::min(a.y, b.y) || y > std::max(a.y, b.y))
            return;
        const bool bFlat = a.y == b.y;
        const double d1 = bFlat ? a.x : (y - a.y) * (b.x - a.x) / (b.y - a.y) + a.x;
        const double d2 = bFlat ? b.x : d1;
        dLeft = std::min({dLeft, d1, d2});
        dRight = std::max({dRight, d1, d2});
    });
    return x >= std::trunc(dLeft) && x <= std::trunc(dRight);
}

/// The rows of an image in which `isPainted(x, y)` decides between two values.
template <class IsPainted>
Rows PaintedRows(int nWidth, int nHeight, int nInside, int nOutside, IsPainted isPainted) {
    Rows aRows(static_cast<std::size_t>(nHeight));
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            aRows[static_cast<std::size_t>(y)].push_back(isPainted(x, y) ? nInside : nOutside);
    return aRows;
}

/// The convex hull by wrapping: from the first point of a scan on, always to the point that leaves
/// all others on one side, the farthest of several on a line.
inline Polygon_t WrappedHull(const Polygon_t& rPoints) {
    Polygon_t hull;
    if (rPoints.Entries() == 0)
        return hull;
    const std::vector<Point> aSorted = SortedCorners(rPoints);
    const ClVector first(aSorted[0].second, aSorted[0].first);
    ClVector current = first;
    do {
        hull.Append(current);
        ClVector next = current;
        for (const auto& [y, x] : aSorted) {
            const ClVector other(x, y);
            const double dCross = CrossOf(current, next, other);
            const bool bFarther = (other - current).Length() > (next - current).Length();
            if (dCross < 0.0 || (dCross == 0.0 && bFarther))
                next = other;
        }
        current = next;
    } while (current.x != first.x || current.y != first.y);
    return hull;
}

} // namespace TestSupport
