#include "ImageProcessing/IpRenderPolygon.h"

#include "ImageProcessing/PixelTypeDispatch.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <cmath>
#include <cstring>

ClIpRenderPolygon::ClIpRenderPolygon(int nWidth, int nHeight, int nPelsX, int nPelsY)
    : m_nWidth(nWidth), m_nHeight(nHeight), m_nPelsX(nPelsX), m_nPelsY(nPelsY) {}

ClProcessorBase* ClIpRenderPolygon::Create() {
    return Vek::NewObject<ClIpRenderPolygon>();
}

const char* ClIpRenderPolygon::Name() const {
    return "ClIpRenderPolygon";
}

long ClIpRenderPolygon::Process() {
    if (m_pOutImage == nullptr)
        return QMT_ERROR_BITMAP_PTR;
    if (m_nWidth == 0 || m_nHeight == 0 || m_pPolygon == nullptr || m_pPolygon->Entries() < 2 ||
        !CheckPolygon())
        return QMT_ERROR_INVALID_PARAMETER;
    if (m_bRender && m_bFill)
        PolygonRendering();
    else
        DrawPolygon();
    return 0;
}

bool ClIpRenderPolygon::CheckPolygon() const {
    const auto isInside = [this](const ClVector& Corner) {
        return Corner.x >= 0.0 && Corner.x < m_nWidth && Corner.y >= 0.0 && Corner.y < m_nHeight;
    };
    return m_pPolygon != nullptr &&
           std::all_of(m_pPolygon->Data(), m_pPolygon->Data() + m_pPolygon->Entries(), isInside);
}

ClVector& ClIpRenderPolygon::Corner(unsigned long nIndex) const {
    return (*m_pPolygon)[nIndex % m_pPolygon->Entries()];
}

void ClIpRenderPolygon::NewImage() const {
    m_pOutImage->NewWithType(ClImage::eUInt8, m_nWidth, m_nHeight, 1, m_nPelsX, m_nPelsY);
    *m_pOutImage = m_nBackground;
}

// Filling by scanlines

/// The image first: what there is no room for needs no crossings.
void ClIpRenderPolygon::PolygonRendering() const {
    NewImage();
    const std::list<CIntersection> Crossings = CalculateAllIntersections();
    for (auto it = Crossings.begin(); it != Crossings.end();) {
        const CIntersection& First = *it++;
        const CIntersection& Second = *it++; // there are two, or more pairs, on every line
        PaintRun(First.m_nY, First.m_nX, Second.m_nX);
    }
    PaintHorizontalEdges();
}

std::list<ClIpRenderPolygon::CIntersection> ClIpRenderPolygon::CalculateAllIntersections() const {
    std::list<CIntersection> Crossings;
    try {
        for (unsigned long i = 0; i < m_pPolygon->Entries(); ++i)
            CalculateIntersections(i, Crossings);
    } catch (const std::bad_alloc&) {
        Vek::ThrowBadAlloc();
    }
    Crossings.sort();
    return Crossings;
}

void ClIpRenderPolygon::CalculateIntersections(unsigned long nEdge,
                                               std::list<CIntersection>& rCrossings) const {
    ClVector& a = Corner(nEdge);
    ClVector& b = Corner(nEdge + 1);
    const int nFirst = static_cast<int>(std::ceil(std::min(a.y, b.y)));
    const int nLast = static_cast<int>(std::floor(std::max(a.y, b.y)));
    for (int y = nFirst; y <= nLast; ++y) {
        int nX = 0;
        if (GetIntersection(a, b, y, nX) && !(y == b.y && GoesOnBehind(nEdge)))
            rCrossings.emplace_back(y, nX);
    }
}

bool ClIpRenderPolygon::GetIntersection(ClVector& a, ClVector& b, int nY, int& nX) {
    const bool bReached = (nY >= a.y && nY <= b.y) || (nY >= b.y && nY <= a.y);
    if (!bReached || a.y == b.y)
        return false;
    nX = SampleFromDouble<int>((nY - a.y) * (b.x - a.x) / (b.y - a.y) + a.x);
    return true;
}

/// Whether the outline passes through the end of an edge, which is not horizontal. The corner is
/// then counted by the next edge that is not horizontal either.
bool ClIpRenderPolygon::GoesOnBehind(unsigned long nEdge) const {
    const bool bDown = Corner(nEdge + 1).y > Corner(nEdge).y;
    unsigned long nNext = nEdge + 1;
    while (Corner(nNext).y == Corner(nNext + 1).y)
        ++nNext;
    return (Corner(nNext + 1).y > Corner(nNext).y) == bDown;
}

void ClIpRenderPolygon::PaintHorizontalEdges() const {
    for (unsigned long i = 0; i < m_pPolygon->Entries(); ++i) {
        const ClVector& a = Corner(i);
        const ClVector& b = Corner(i + 1);
        if (a.y == b.y && a.y == std::floor(a.y))
            PaintRun(static_cast<int>(a.y), static_cast<int>(std::min(a.x, b.x)),
                     static_cast<int>(std::max(a.x, b.x)));
    }
}

void ClIpRenderPolygon::PaintRun(int nY, int nX1, int nX2) const {
    // The division of a crossing may round past a corner in the last column.
    const int nLast = std::min(nX2, m_nWidth - 1);
    const int nFirst = std::clamp(nX1, 0, nLast);
    std::memset(m_pOutImage->LineData(nY) + nFirst, m_nForeground,
                static_cast<std::size_t>(nLast - nFirst) + 1);
}
