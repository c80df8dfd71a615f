// The outline of a polygon, and the flood inside it.

#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpRenderPolygon.h"
#include "Tools/Exception.h"

#include <algorithm>

namespace {

/// A difference of two coordinates takes 65 bits, a product of two lengths 128.
__extension__ typedef __int128 Wide;
__extension__ typedef unsigned __int128 UnsignedWide;

/// One axis of a line.
struct StAxis {
    StAxis(long nFrom, long nTo, long nSize)
        : m_nFrom(nFrom), m_nSize(nSize), m_nSign(nTo < nFrom ? -1 : 1),
          m_nLength((Wide{nTo} - nFrom) * m_nSign) {}

    /// The steps at which the line is inside the image, for the axis on which each step counts.
    Wide FirstStep() const {
        return std::max(Wide{0}, m_nSign > 0 ? -Wide{m_nFrom} : Wide{m_nFrom} - (m_nSize - 1));
    }
    Wide LastStep() const {
        return std::min(m_nLength, m_nSign > 0 ? m_nSize - 1 - Wide{m_nFrom} : Wide{m_nFrom});
    }
    Wide At(Wide nSteps) const { return m_nFrom + m_nSign * nSteps; }
    bool IsInside(Wide nPlace) const { return nPlace >= 0 && nPlace < m_nSize; }

    long m_nFrom;
    long m_nSize;
    int m_nSign;
    Wide m_nLength;
};

/// `nStep` x `nAcross` / `nAlong`, rounded to the nearest, a half upward.
Wide StepsAcross(Wide nStep, Wide nAcross, Wide nAlong) {
    if (nAlong == 0)
        return 0;
    const auto nProduct = static_cast<UnsignedWide>(nStep) * static_cast<UnsignedWide>(nAcross);
    const auto nLength = static_cast<UnsignedWide>(nAlong);
    const UnsignedWide nRest = nProduct % nLength;
    return static_cast<Wide>(nProduct / nLength) + (nRest >= nLength - nRest ? 1 : 0);
}

/// Calls `paint(along, across)` for each step along the longer axis. The error sum of Bresenham's
/// walk is written as a quotient, so that steps outside the image need not be walked.
template <class Paint>
void WalkLine(const StAxis& Along, const StAxis& Across, Paint paint) {
    const Wide nLast = Along.LastStep();
    for (Wide i = Along.FirstStep(); i <= nLast; ++i) {
        const Wide nAcross = Across.At(StepsAcross(i, Across.m_nLength, Along.m_nLength));
        if (Across.IsInside(nAcross))
            paint(static_cast<long>(Along.At(i)), static_cast<long>(nAcross));
    }
}

bool IsOnEdge(const ClVector& a, const ClVector& b, const ClVector& Point) {
    return (b.x - a.x) * (Point.y - a.y) == (b.y - a.y) * (Point.x - a.x) &&
           Point.x >= std::min(a.x, b.x) && Point.x <= std::max(a.x, b.x) &&
           Point.y >= std::min(a.y, b.y) && Point.y <= std::max(a.y, b.y);
}

/// Whether a ray from the point to the right crosses the edge.
bool IsLeftOfEdge(const ClVector& a, const ClVector& b, const ClVector& Point) {
    if ((a.y > Point.y) == (b.y > Point.y))
        return false;
    const double dCross = (b.x - a.x) * (Point.y - a.y) - (b.y - a.y) * (Point.x - a.x);
    return (b.y > a.y) == (dCross > 0.0);
}

} // namespace

void ClIpRenderPolygon::DrawLine(ClImage& rImage, long nX1, long nY1, long nX2, long nY2,
                                 unsigned char nValue) {
    if (rImage.DataType() != ClImage::eUInt8 || rImage.Planes() != 1)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    const auto paint = [&](long x, long y) { rImage.LineData(y)[x] = nValue; };
    const StAxis X(nX1, nX2, rImage.Width());
    const StAxis Y(nY1, nY2, rImage.Height());
    if (X.m_nLength >= Y.m_nLength)
        WalkLine(X, Y, paint);
    else
        WalkLine(Y, X, [&](long y, long x) { paint(x, y); });
}

void ClIpRenderPolygon::DrawPolygon() const {
    NewImage();
    for (unsigned long i = 0; i < m_pPolygon->Entries(); ++i) {
        const ClVector& a = Corner(i);
        const ClVector& b = Corner(i + 1);
        DrawLine(*m_pOutImage, static_cast<long>(a.x), static_cast<long>(a.y),
                 static_cast<long>(b.x), static_cast<long>(b.y), m_nForeground);
    }
    if (m_bFill)
        FillPolygonFloodFill();
}

bool ClIpRenderPolygon::IsPointInsidePolygon(Polygon_t& rPolygon, ClVector& rPoint) {
    bool bInside = false;
    for (unsigned long i = 0; i < rPolygon.Entries(); ++i) {
        const ClVector& a = rPolygon[i];
        const ClVector& b = rPolygon[(i + 1) % rPolygon.Entries()];
        if (IsOnEdge(a, b, rPoint))
            return true;
        bInside ^= IsLeftOfEdge(a, b, rPoint);
    }
    return bInside;
}

void ClIpRenderPolygon::TruncateCorners(Polygon_t& rTruncated) const {
    rTruncated = *m_pPolygon;
    for (unsigned long i = 0; i < rTruncated.Entries(); ++i)
        rTruncated[i] = ClVector(static_cast<double>(static_cast<long>(rTruncated[i].x)),
                                 static_cast<double>(static_cast<long>(rTruncated[i].y)));
}

/// The first pixel in the order of a scan that lies in the polygon and not on its outline, as these
/// are drawn: a point between the true outline and the drawn one would flood the ground.
bool ClIpRenderPolygon::DetermineFillingStartingPoint(long& nX, long& nY) const {
    Polygon_t Drawn;
    TruncateCorners(Drawn);
    for (nY = 0; nY < m_nHeight; ++nY) {
        const unsigned char* pLine = m_pOutImage->LineData(nY);
        for (nX = 0; nX < m_nWidth; ++nX) {
            ClVector Point(static_cast<double>(nX), static_cast<double>(nY));
            if (pLine[nX] != m_nForeground && IsPointInsidePolygon(Drawn, Point))
                return true;
        }
    }
    return false;
}

void ClIpRenderPolygon::FillPolygonFloodFill() const {
    ClIpFloodFill Fill;
    if (!DetermineFillingStartingPoint(Fill.m_nStartX, Fill.m_nStartY))
        return;
    Fill.Timer(IsTimerEnabled());
    Fill.m_pInImage = m_pOutImage;
    Fill.m_pOutImage = m_pOutImage;
    Fill.m_nFillColor = m_nForeground;
    Fill.Apply();
}
