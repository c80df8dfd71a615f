// The second route of `ClIpBuildConvexHull`: the candidates by their angle about the topmost one.

#include "ImageProcessing/ConvexHull.h"
#include "ImageProcessing/IpBuildConvexHull.h"
#include "ImageProcessing/Kernels/Runs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr unsigned char cnEdge = 0;
constexpr unsigned char cnGround = 255;

/// What does not compare stands last, so that the order of a sort is always one.
double SortKey(double d) {
    return std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
}

} // namespace

void ClIpBuildConvexHull::BuildEdgeImage() {
    const ClImage& In = Input();
    const unsigned char nValue = RegionValue();
    m_pEdgeImage->NewWithType(In, ClImage::eUInt8);
    *m_pEdgeImage = cnGround;
    for (int y = 0; y < In.Height(); ++y) {
        const unsigned char* pLine = In.LineData(y);
        unsigned char* pEdges = m_pEdgeImage->LineData(y);
        for (int x = 0; x + 1 < In.Width(); ++x)
            if ((pLine[x] == nValue) != (pLine[x + 1] == nValue))
                pEdges[pLine[x] == nValue ? x : x + 1] = cnEdge;
    }
}

void ClIpBuildConvexHull::RetrievePoints() {
    const ClImage& Edges = *m_pEdgeImage;
    unsigned long nPoints = 0; // counted first: the array grows in small steps
    for (int y = 0; y < Edges.Height(); ++y) {
        const unsigned char* pLine = Edges.LineData(y);
        nPoints += static_cast<unsigned long>(std::count(pLine, pLine + Edges.Width(), cnEdge));
    }
    m_aPolygon.Clear();
    m_aPolygon.Reserve(nPoints);
    for (int y = 0; y < Edges.Height(); ++y)
        for (int x = 0; x < Edges.Width(); ++x)
            if (Edges.LineData(y)[x] == cnEdge)
                m_aPolygon.Append(ClVector(x, y));
}

unsigned long ClIpBuildConvexHull::GetMinYIdx() const {
    const ClVector* pBegin = m_aPolygon.Data();
    const ClVector* pLowest = std::min_element(pBegin, pBegin + m_aPolygon.Entries(),
                                               [](const ClVector& a, const ClVector& b) {
                                                   return a.y < b.y || (!(a.y > b.y) && a.x < b.x);
                                               });
    return static_cast<unsigned long>(pLowest - pBegin);
}

double ClIpBuildConvexHull::GetTheta(ClVector& a, ClVector& b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double dSum = std::fabs(dx) + std::fabs(dy);
    if (dSum == 0.0)
        return 0.0;
    const double dShare = dy / dSum;
    if (dx < 0.0)
        return (2.0 - dShare) * 90.0;
    return (dy < 0.0 ? 4.0 + dShare : dShare) * 90.0;
}

int ClIpBuildConvexHull::ccw(ClVector& a, ClVector& b, ClVector& c) {
    const ClVector d1 = b - a;
    const ClVector d2 = c - a;
    if (d1.x * d2.y > d1.y * d2.x)
        return 1;
    if (d1.x * d2.y < d1.y * d2.x || d1.x * d2.x < 0.0 || d1.y * d2.y < 0.0)
        return -1;
    return d1.x * d1.x + d1.y * d1.y < d2.x * d2.x + d2.y * d2.y ? 1 : 0;
}

void ClIpBuildConvexHull::SortPointsByTheta() {
    if (m_aPolygon.Entries() < 2)
        return;
    ClVector* pPoints = m_aPolygon.Data();
    std::swap(pPoints[0], pPoints[GetMinYIdx()]);
    ClVector Origin = pPoints[0];
    const auto keyOf = [&Origin](const ClVector& Point) {
        ClVector To = Point;
        return std::make_pair(SortKey(GetTheta(Origin, To)), SortKey((To - Origin).Length()));
    };
    std::sort(pPoints + 1, pPoints + m_aPolygon.Entries(),
              [&keyOf](const ClVector& a, const ClVector& b) { return keyOf(a) < keyOf(b); });
}

void ClIpBuildConvexHull::BuildPolygon() {
    if (m_aPolygon.Entries() == 0)
        return;
    SortPointsByTheta();
    const auto turns = [](ClVector& a, ClVector& b, ClVector c) { return ccw(a, b, c) > 0; };
    Polygon_t Hull;
    Hull.Reserve(m_aPolygon.Entries());
    for (unsigned long i = 0; i < m_aPolygon.Entries(); ++i)
        ConvexHull::ExtendChain(Hull, 1, m_aPolygon[i], turns);
    m_aPolygon = Hull;
    RemovePointsOnLines();
}

void ClIpBuildConvexHull::ChainHull_2D_2(Polygon_t& rPoints, Polygon_t& rHull) {
    ConvexHull::BuildChains(rPoints, rHull,
                            [](ClVector& a, ClVector& b, ClVector c) { return ccw(a, b, c) > 0; });
    ConvexHull::DropPointsOnLines(rHull);
}
