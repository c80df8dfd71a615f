#include "FingerCoding/Quick/FingerShape.h"

#include "FingerCoding/Quick/Filters.h"
#include "ImageProcessing/IpRenderPolygon.h"
#include "Tools/InstructionLevel.h"

#include <climits>
#include <cstring>
#include <utility>

namespace Quick {

namespace {

constexpr unsigned char cnRegion = 1;
constexpr unsigned char cnBackground = 255;

bool IsOnePiece(const StPlane& Plane, const StBox& Box, ClSpans& rSpans) {
    if (Box.IsEmpty())
        return false;
    rSpans.Find(Plane.Part(Box));
    return rSpans.CountBlobs() == 1;
}

// The hull

/// The ends of a line are all that its hull may have of it.
void FindPoints(const StPlane& Plane, const StBox& Box, ConvexHull::Points_t& rPoints) {
    const auto nWidth = static_cast<std::size_t>(Box.Width());
    rPoints.Clear();
    rPoints.Reserve(2 * static_cast<unsigned long>(Box.Height()));
    for (long y = Box.m_nTop; y < Box.m_nBottom; ++y) {
        const unsigned char* pLine = Plane.Line(y);
        const void* pFirst = std::memchr(pLine + Box.m_nLeft, cnRegion, nWidth);
        if (pFirst == nullptr)
            continue;
        const void* pLast = memrchr(pLine + Box.m_nLeft, cnRegion, nWidth);
        const auto pointAt = [&](const void* p) {
            return ClVector(static_cast<double>(static_cast<const unsigned char*>(p) - pLine),
                            static_cast<double>(y));
        };
        rPoints.Append(pointAt(pFirst));
        if (pLast != pFirst)
            rPoints.Append(pointAt(pLast));
    }
}

void Reach(double dColumn, StEnds& rEnds) {
    const int nColumn = static_cast<int>(dColumn);
    rEnds = {std::min(rEnds.m_nFirst, nColumn), std::max(rEnds.m_nLast, nColumn)};
}

/// Lets the lines that an edge crosses reach to it.
void ReachEdge(ClVector& a, ClVector& b, StEnds* pEnds) {
    const int nFirst = static_cast<int>(std::min(a.y, b.y));
    const int nLast = static_cast<int>(std::max(a.y, b.y));
    Reach(a.x, pEnds[static_cast<int>(a.y)]);
    Reach(b.x, pEnds[static_cast<int>(b.y)]);
    for (int y = nFirst; y <= nLast; ++y) {
        int nColumn = 0;
        if (ClIpRenderPolygon::GetIntersection(a, b, y, nColumn))
            Reach(nColumn, pEnds[y]);
    }
}

/// A line of a convex polygon is one run, between the outermost of its edges.
void PaintHull(ConvexHull::Points_t& rHull, StEnds* pEnds, const StPlane& Plane, const StBox& Box) {
    std::fill(pEnds + Box.m_nTop, pEnds + Box.m_nBottom, StEnds{INT_MAX, -1});
    for (unsigned long i = 0; i < rHull.Entries(); ++i)
        ReachEdge(rHull[i], rHull[(i + 1) % rHull.Entries()], pEnds);
    for (long y = Box.m_nTop; y < Box.m_nBottom; ++y) {
        const StEnds& Ends = pEnds[y];
        std::fill_n(Plane.Line(y) + Box.m_nLeft, Box.Width(), static_cast<unsigned char>(0));
        std::fill(Plane.Line(y) + Ends.m_nFirst, Plane.Line(y) + Ends.m_nLast + 1, cnRegion);
    }
}

} // namespace

/// A blur closes the gaps between ridges, two more remove bridges and crumbs; the count is taken on
/// a grown copy, so that pieces which nearly touch count as one, and the hull joins them.
std::optional<StBox> Embrace(StCanvas& rCanvas, const StBox& Box, ClSpans& rSpans) {
    const StPlane& A = rCanvas.m_A;
    const StPlane& B = rCanvas.m_B;
    const ClDoubleBlur Blur(rCanvas.m_pBlurMemory);
    StBox Region = Blur.Grow(A, Box, B);
    for (const auto& [From, To] : {std::pair(B, A), std::pair(A, B)})
        if (!Region.IsEmpty())
            Region = Blur.Shrink(From, Region, To);
    if (Region.IsEmpty() || !IsOnePiece(A, Blur.Grow(B, Region, A), rSpans))
        return std::nullopt;
    FindPoints(B, Region, rCanvas.m_aPoints);
    ConvexHull::BuildChains(rCanvas.m_aPoints, rCanvas.m_aHull,
                            [](const ClVector& a, const ClVector& b, const ClVector& c) {
                                return ConvexHull::Cross(a, b, c) > 0.0;
                            });
    ConvexHull::DropPointsOnLines(rCanvas.m_aHull);
    PaintHull(rCanvas.m_aHull, rCanvas.m_pEnds, A, Region);
    return Blur.Grow(A, Region, B).CutTo(rCanvas.FrameBox());
}

// The soft border

namespace {

constexpr long cnSoftMargin = 2; ///< pixels of ground around a mask that is smoothed
constexpr double cdSoftScale = 2.2;
constexpr long cnSoftHalf = 5;               ///< of a window as wide as the distance of ridges
constexpr long cnSoftReach = 2 * cnSoftHalf; ///< of two blurs
/// Windows at the edges of the part that is blurred are cut there, and see nothing but ground.
constexpr long cnSoftPart = 3 * cnSoftHalf + 1;

struct StSoftTable {
    StSoftTable() {
        for (int v = 0; v < 256; ++v)
            m_aValues[v] = static_cast<unsigned char>(std::min(255.0, v * cdSoftScale));
    }
    unsigned char m_aValues[256];
};

struct StToGreys {
    static void Run(const unsigned char* __restrict pIn, long nPixels,
                    unsigned char* __restrict pOut) {
        for (long i = 0; i < nPixels; ++i)
            pOut[i] = static_cast<unsigned char>(pIn[i] == cnRegion ? 0 : cnBackground);
    }
};

/// A region of 1 as 0 on 255, with ground around its box.
void ToGreys(const StPlane& Region, const StBox& Box, const StBox& Part, const StPlane& Out) {
    for (long y = Part.m_nTop; y < Part.m_nBottom; ++y) {
        unsigned char* pOut = Out.Line(y);
        std::fill(pOut + Part.m_nLeft, pOut + Part.m_nRight, cnBackground);
        if (y < Box.m_nTop || y >= Box.m_nBottom)
            continue;
        RunAtLevel<StToGreys>(Region.Line(y) + Box.m_nLeft, Box.Width(), pOut + Box.m_nLeft);
    }
}

} // namespace

StBox Soften(StCanvas& rCanvas, const StBox& Box, const StPlane& Mask) {
    static const StSoftTable Table;
    const StBox Frame = rCanvas.FrameBox();
    for (long y = 0; y < Mask.m_nHeight; ++y)
        std::fill_n(Mask.Line(y), Mask.m_nWidth, cnBackground);
    if (Box.IsEmpty())
        return {};
    const StBox Part = Box.Grown(cnSoftPart).CutTo(Frame.Grown(cnSoftMargin));
    ToGreys(rCanvas.m_B, Box, Part, rCanvas.m_A);
    Mean(rCanvas.m_A.Part(Part), cnSoftHalf, rCanvas.m_B.Part(Part), rCanvas.m_Scratch);
    Mean(rCanvas.m_B.Part(Part), cnSoftHalf, rCanvas.m_A.Part(Part), rCanvas.m_Scratch);
    const StBox Soft = Box.Grown(cnSoftReach).CutTo(Frame);
    const StBox InFrame = Soft.Moved(-StCanvas::cnMargin, -StCanvas::cnMargin);
    LookUp(rCanvas.m_A.Part(Soft), Table.m_aValues, Mask.Part(InFrame));
    return InFrame;
}

} // namespace Quick
