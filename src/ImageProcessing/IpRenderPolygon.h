#pragma once

/// `ClIpRenderPolygon` paints a polygon, given by its corners in image coordinates, into a new
/// 8-bit image: filled by scanlines, filled by a flood inside its outline, or the outline alone.
///
/// By scanlines, line y is painted between the places where the outline crosses it, taken in pairs
/// from left to right, both ends of a pair included. An edge from a to b crosses at
///
///     trunc((y - a.y) * (b.x - a.x) / (b.y - a.y) + a.x)
///
/// on every line between its ends, the ends included. A corner on a line counts once where the
/// outline passes through it, and twice where it turns back, so that no line is left with half a
/// pair. A horizontal edge on a line crosses nothing; its pixels are painted. The result is the
/// closed polygon without gaps; parts that are covered twice are outside.

#include "Math/Vector.h"
#include "Tools/Array.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

#include <list>

class ClIpRenderPolygon : public ClProcessorBase {
public:
    using Polygon_t = TpArrayDynamic<ClVector, 10>;

    /// Where the outline crosses a line.
    class CIntersection {
    public:
        CIntersection(int nY, int nX) : m_nY(nY), m_nX(nX) {}
        /// The order of a scan.
        bool operator<(const CIntersection& Other) const {
            return m_nY != Other.m_nY ? m_nY < Other.m_nY : m_nX < Other.m_nX;
        }

        int m_nY;
        int m_nX;
    };

    ClIpRenderPolygon() = default;
    /// Size and resolutions of the result.
    ClIpRenderPolygon(int nWidth, int nHeight, int nPelsX, int nPelsY);

    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// The output becomes an image of one plane of the type `eUInt8` with the size told. Returns 0;
    /// before anything changes, -10 without an output, and -44 for a width or height of 0, without
    /// a polygon, for fewer than 2 corners and where CheckPolygon() is false. Throws `ClExBadAlloc`
    /// (-102); the output is then empty or as large as told, with any pixels.
    long Process() override;

    /// Whether every corner has 0 <= x < width and 0 <= y < height.
    bool CheckPolygon() const;
    /// Whether the point lies in the polygon by the even-odd rule, or on its outline.
    static bool IsPointInsidePolygon(Polygon_t& rPolygon, ClVector& rPoint);
    /// The column in which the edge from `a` to `b` crosses a line. False, and no column, for a
    /// horizontal edge and a line beyond the ends.
    static bool GetIntersection(ClVector& a, ClVector& b, int nY, int& nX);
    /// Draws the line from (x1, y1) to (x2, y2), ends included, by Bresenham: one pixel per step
    /// along the longer axis, the nearest to the line, or of two as near the farther from the
    /// start. Pixels outside the image are left out. Throws "Image Type is not the assigned type"
    /// (-101) for another image than one of one plane of the type `eUInt8`.
    static void DrawLine(ClImage& rImage, long nX1, long nY1, long nX2, long nY2,
                         unsigned char nValue);

    Polygon_t* m_pPolygon = nullptr; ///< the corners, borrowed; closed from the last to the first
    ClImage* m_pOutImage = nullptr;  ///< borrowed
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nPelsX = 0;
    int m_nPelsY = 0;
    unsigned char m_nBackground = 255;
    unsigned char m_nForeground = 0;
    bool m_bFill = true;   ///< fill, not only outline
    bool m_bRender = true; ///< fill by scanlines rather than by flood

private:
    void NewImage() const;
    void PolygonRendering() const;
    std::list<CIntersection> CalculateAllIntersections() const;
    void CalculateIntersections(unsigned long nEdge, std::list<CIntersection>& rCrossings) const;
    bool GoesOnBehind(unsigned long nEdge) const;
    void PaintHorizontalEdges() const;
    void PaintRun(int nY, int nX1, int nX2) const;
    ClVector& Corner(unsigned long nIndex) const;

    void DrawPolygon() const;
    void TruncateCorners(Polygon_t& rTruncated) const;
    bool DetermineFillingStartingPoint(long& nX, long& nY) const;
    void FillPolygonFloodFill() const;
};
