#pragma once

/// `ClIpBuildConvexHull` replaces the region of one grey value by its convex hull, painted 0 on a
/// ground of 255. Pixels are points; a pixel belongs to the hull when it lies in it or on its edge,
/// as `ClIpRenderPolygon` paints it.
///
/// Candidates for corners are, line by line, the outermost pixels of each run of the value: those
/// beside which the value changes. An end of a run at the image's own border is none. They come in
/// the order of a scan, by y and then by x, which is the one that the monotone chain needs: one
/// walk down and one walk up give the hull in linear time, without sorting. The products are exact
/// for sides below 2^26 pixels.
///
/// A second route to the same corners sorts the candidates by their angle about the topmost one. It
/// serves as a check of the first; Process() does not use it.

#include "Math/Vector.h"
#include "Tools/Array.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

#include <memory>

class ClIpBuildConvexHull : public ClProcessorBase {
public:
    using Polygon_t = TpArrayDynamic<ClVector, 10>;

    /// Throws `ClExBadAlloc` (-102).
    ClIpBuildConvexHull();

    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// The output becomes an image of one plane of the type `eUInt8`. It stays as it is where the
    /// region has no candidate, where the hull is a single pixel, and where it does not fit into
    /// the size told: these answer 0, too.
    ///
    /// Returns 0; before anything changes, in this order, -10 without an input, -11 for more than
    /// one plane and -37 without pixels or output. Throws "Image Type is not the assigned type"
    /// (-101) for another type than `eUInt8`, and `ClExBadAlloc` (-102). The output may be the
    /// input.
    long Process() override;

    // Candidates. Each replaces `m_aPolygon`. The image has to be there and of the type.

    /// Those of the value in force.
    void RetrieveCorners();
    /// Those of `nValue`; a run of one pixel gives one.
    template <class T>
    void BuildCornerImage(T nValue);

    // First route

    /// Replaces candidates in the order of a scan by the corners of their hull.
    void BuildPolygonMonotoneChain();
    /// Gives the corners of the hull, from the topmost, of several the leftmost, on: first down one
    /// side, then up the other. Points lie in the order of a scan. Points on an edge are no
    /// corners.
    static void ChainHull_2D(Polygon_t& rPoints, Polygon_t& rHull);
    /// Removes the corners that lie on the straight line between their neighbours; of fewer than 3
    /// none.
    void RemovePointsOnLines();

    // Second route

    /// Draws the candidates as 0 on 255.
    void BuildEdgeImage();
    /// Takes the pixels drawn as candidates.
    void RetrievePoints();
    /// Index of the point of the lowest y, of several the one of the lowest x; 0 without points.
    unsigned long GetMinYIdx() const;
    /// A measure of the direction from `a` to `b` that grows as the angle does, from 0 along x over
    /// 90 along y to below 360; 0 for equal points.
    static double GetTheta(ClVector& a, ClVector& b);
    /// Which way a walk from `a` over `b` to `c` turns: 1 from x to y, -1 the other way. On one
    /// line, -1 where `a` is between the others, 1 where `b` is, and 0 else.
    static int ccw(ClVector& a, ClVector& b, ClVector& c);
    /// Puts the point of GetMinYIdx() first and sorts the others by their direction from there,
    /// then by their distance.
    void SortPointsByTheta();
    /// Replaces candidates in any order by the corners of their hull, from that of GetMinYIdx() on.
    void BuildPolygon();
    /// ChainHull_2D() by the test of the second route.
    static void ChainHull_2D_2(Polygon_t& rPoints, Polygon_t& rHull);

    ClImage* m_pInImage = nullptr; ///< borrowed
    ClImage* m_pOutImage = nullptr;
    Polygon_t m_aPolygon; ///< first the candidates, then the corners of the hull
    /// Format of the result; unless all four are positive, that of the input.
    int m_nOutWidth = 0;
    int m_nOutHeight = 0;
    int m_nOutPelsX = 0;
    int m_nOutPelsY = 0;
    double m_dValue = -1.0;                ///< grey value of the region; -1.0: the input's black
    std::unique_ptr<ClImage> m_pEdgeImage; ///< scratch of the second route

private:
    const ClImage& Input() const;
    unsigned char RegionValue() const;
    void RenderPolygon();
};
