#include "ImageProcessing/IpBuildConvexHull.h"

#include "ImageProcessing/ConvexHull.h"
#include "ImageProcessing/IpRenderPolygon.h"
#include "ImageProcessing/Kernels/Runs.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "ImageProcessing/RequireBytes.h"

ClIpBuildConvexHull::ClIpBuildConvexHull() : m_pEdgeImage(Vek::NewObject<ClImage>()) {}

ClProcessorBase* ClIpBuildConvexHull::Create() {
    return Vek::NewObject<ClIpBuildConvexHull>();
}

const char* ClIpBuildConvexHull::Name() const {
    return "ClIpBuildConvexHull";
}

const ClImage& ClIpBuildConvexHull::Input() const {
    if (m_pInImage == nullptr || m_pInImage->Data() == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    RequireBytes(*m_pInImage, VEK_HERE);
    return *m_pInImage;
}

unsigned char ClIpBuildConvexHull::RegionValue() const {
    return SampleFromDouble<unsigned char>(m_dValue == -1.0 ? Input().Black() : m_dValue);
}

long ClIpBuildConvexHull::Process() {
    if (m_pInImage == nullptr)
        return QMT_ERROR_BITMAP_PTR;
    if (m_pInImage->Planes() > 1)
        return QMT_ERROR_BITMAP_PLANE;
    if (m_pInImage->Data() == nullptr || m_pOutImage == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    RetrieveCorners();
    BuildPolygonMonotoneChain();
    if (m_aPolygon.Entries() > 0)
        RenderPolygon();
    return 0;
}

void ClIpBuildConvexHull::RenderPolygon() {
    const bool bTold = m_nOutWidth > 0 && m_nOutHeight > 0 && m_nOutPelsX > 0 && m_nOutPelsY > 0;
    ClIpRenderPolygon Render(
        bTold ? m_nOutWidth : m_pInImage->Width(), bTold ? m_nOutHeight : m_pInImage->Height(),
        bTold ? m_nOutPelsX : m_pInImage->PelsX(), bTold ? m_nOutPelsY : m_pInImage->PelsY());
    Render.Timer(IsTimerEnabled());
    Render.m_pPolygon = &m_aPolygon;
    // A hull that cannot be painted leaves the output as it is, and that is no failure.
    ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage&, ClImage& Target) {
        Render.m_pOutImage = &Target;
        return Render.Apply();
    });
}

// Candidates

void ClIpBuildConvexHull::RetrieveCorners() {
    BuildCornerImage<unsigned char>(RegionValue());
}

namespace {

/// `visit(x, y)` for every candidate in the order of a scan.
template <class T, class Visit>
void ForEachCorner(const ClImage& Image, T nValue, Visit visit) {
    const long nWidth = Image.Width();
    for (int y = 0; y < Image.Height(); ++y)
        Kernels::ForEachRun(Image.Line<const T>(y), 0, nWidth, nValue, [&](Kernels::StRun Run) {
            const bool bBegins = Run.m_nBegin > 0;
            if (bBegins)
                visit(Run.m_nBegin, y);
            if (Run.m_nEnd < nWidth && !(bBegins && Run.m_nEnd - Run.m_nBegin == 1))
                visit(Run.m_nEnd - 1, y);
        });
}

} // namespace

template <class T>
void ClIpBuildConvexHull::BuildCornerImage(T nValue) {
    const ClImage& In = Input();
    unsigned long nCorners = 0; // counted first: the array grows in small steps
    ForEachCorner(In, nValue, [&](long, long) { ++nCorners; });
    m_aPolygon.Clear();
    m_aPolygon.Reserve(nCorners);
    ForEachCorner(In, nValue, [&](long x, long y) {
        m_aPolygon.Append(ClVector(static_cast<double>(x), static_cast<double>(y)));
    });
}

template void ClIpBuildConvexHull::BuildCornerImage<unsigned char>(unsigned char);

// First route

void ClIpBuildConvexHull::BuildPolygonMonotoneChain() {
    if (m_aPolygon.Entries() == 0)
        return;
    Polygon_t Hull;
    ChainHull_2D(m_aPolygon, Hull);
    m_aPolygon = Hull;
    RemovePointsOnLines();
}

void ClIpBuildConvexHull::ChainHull_2D(Polygon_t& rPoints, Polygon_t& rHull) {
    ConvexHull::BuildChains(rPoints, rHull,
                            [](const ClVector& a, const ClVector& b, const ClVector& c) {
                                return ConvexHull::Cross(a, b, c) > 0.0;
                            });
}

void ClIpBuildConvexHull::RemovePointsOnLines() {
    ConvexHull::DropPointsOnLines(m_aPolygon);
}
