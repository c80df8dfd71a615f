#include "ImageProcessing/IpFloodFill.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/Kernels/RegionFill.h"
#include "ImageProcessing/RequireBytes.h"

#include <algorithm>
#include <cstring>

namespace {

using Kernels::StRun;

constexpr unsigned long cnFirstSeeds = 200; ///< room for them without growing

/// No count decides beyond it.
constexpr long cnLargestThresh = 253;

constexpr const char* cszInImage = "In: Original Image";
constexpr const char* cszOutImage = "Out: Output Image";
constexpr const char* cszCountThresh = "Nothing";
constexpr const char* cszFillColor = "In Fill Color";
constexpr const char* cszStartX = "In Start Coordinate X";
constexpr const char* cszStartY = "In Start Coordinate Y";

/// The pixels of one value, which are closed by another one. `visit(run, y)` sees each run.
template <class Visit>
class TpColorArea {
public:
    TpColorArea(ClImage& rPlane, unsigned char nOpen, unsigned char nColor, Visit visit)
        : m_rPlane(rPlane), m_nOpen(nOpen), m_nColor(nColor), m_Visit(visit) {}

    const unsigned char* Line(long y) const { return m_rPlane.LineData(y); }
    unsigned char OpenValue() const { return m_nOpen; }
    bool IsOpen(long x, long y) const { return Line(y)[x] == m_nOpen; }
    long Width() const { return m_rPlane.Width(); }
    long Lines() const { return m_rPlane.Height(); }
    void Close(StRun Run, long y) {
        std::memset(m_rPlane.LineData(y) + Run.m_nBegin, m_nColor,
                    static_cast<std::size_t>(Run.m_nEnd - Run.m_nBegin));
        m_Visit(Run, y);
    }

private:
    ClImage& m_rPlane;
    unsigned char m_nOpen;
    unsigned char m_nColor;
    Visit m_Visit;
};

void PutPlane(const ClImage& Plane, int nPlane, ClImage& rImage) {
    const int nPlanes = rImage.Planes();
    for (int y = 0; y < rImage.Height(); ++y) {
        const unsigned char* pFrom = Plane.LineData(y);
        unsigned char* pTo = rImage.LineData(y) + nPlane;
        for (long x = 0; x < rImage.Width(); ++x)
            pTo[x * nPlanes] = pFrom[x];
    }
}

/// Runs `fill(plane)` for every plane of the image.
template <class Fill>
void ForEachPlane(ClImage& rImage, Fill fill) {
    if (rImage.Planes() == 1)
        return fill(rImage);
    ClImage Plane;
    for (int p = 0; p < rImage.Planes(); ++p) {
        rImage.GetPlane(p, Plane);
        fill(Plane);
        PutPlane(Plane, p, rImage);
    }
}

/// The runs of a region as long as it is small enough to be given back.
class ClSmallRegion {
public:
    explicit ClSmallRegion(long nEnough) : m_nEnough(nEnough) {}

    bool IsSmall() const { return m_nPixels < m_nEnough; }

    void Add(StRun Run, long y) {
        if (!IsSmall())
            return;
        m_nPixels += Run.m_nEnd - Run.m_nBegin;
        m_aRuns[m_nRuns++] = {Run, y}; // each has a pixel: there are no more runs than these
    }

    void Paint(ClImage& rPlane, unsigned char nColor) const {
        for (int i = 0; i < m_nRuns; ++i)
            std::memset(rPlane.LineData(m_aRuns[i].y) + m_aRuns[i].Run.m_nBegin, nColor,
                        static_cast<std::size_t>(m_aRuns[i].Run.m_nEnd - m_aRuns[i].Run.m_nBegin));
    }

private:
    struct StLineRun {
        StRun Run;
        long y;
    };

    long m_nEnough;
    long m_nPixels = 0;
    int m_nRuns = 0;
    StLineRun m_aRuns[cnLargestThresh];
};

} // namespace

ClIpFloodFill::ClIpFloodFill() {
    ClIpFloodFill::SetParametersToDefault();
}

ClProcessorBase* ClIpFloodFill::Create() {
    return Vek::NewObject<ClIpFloodFill>();
}

const char* ClIpFloodFill::Name() const {
    return "ClIpFloodFill";
}

void ClIpFloodFill::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_pBox = nullptr;
    m_nCountThresh = 0;
    m_nFillColor = 0;
    m_nStartX = 0;
    m_nStartY = 0;
}

void ClIpFloodFill::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage, cszInImage);
    AddOutImage(Container, "pOutImage", m_pOutImage, cszOutImage);
    Container.AddNumeric("CountThresh", &m_nCountThresh, cszCountThresh);
    Container.AddNumeric("FillColor", &m_nFillColor, cszFillColor);
    Container.AddNumeric("StartX", &m_nStartX, cszStartX);
    Container.AddNumeric("StartY", &m_nStartY, cszStartY);
    Container.Keep(&m_pBox);
}

void ClIpFloodFill::QueryParameters(ClParameterInterface& List) {
    constexpr double cdMaxPlanes = 3.0;
    List.AddParameter(&m_pInImage, "InImage", cszInImage, ClParameterInterface::eIn, 1.0,
                      cdMaxPlanes);
    List.AddParameter(&m_pOutImage, "OutImage", cszOutImage, ClParameterInterface::eOut, 1.0,
                      cdMaxPlanes);
    AddNumber(List, "CountThresh", m_nCountThresh, cszCountThresh, 0.0, cnLargestThresh);
    AddNumber(List, "FillColor", m_nFillColor, cszFillColor, 0.0, 255.0);
    AddNumber(List, "StartX", m_nStartX, cszStartX, 0.0, 100000.0);
    AddNumber(List, "StartY", m_nStartY, cszStartY, 0.0, 100000.0);
}

long ClIpFloodFill::Initialize() {
    return m_pInImage == nullptr ? QMT_ERROR_BITMAP_PTR : 0;
}

long ClIpFloodFill::CheckInput() const {
    if (m_pInImage == nullptr)
        return QMT_ERROR_BITMAP_PTR;
    if (m_pInImage->Data() == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    RequireBytes(*m_pInImage, VEK_HERE);
    const bool bInside = m_nStartX >= 0 && m_nStartX < m_pInImage->Width() && m_nStartY >= 0 &&
                         m_nStartY < m_pInImage->Height();
    return bInside ? 0 : QMT_ERROR_PARAM_OUT_OF_RANGE;
}

ClImage& ClIpFloodFill::PrepareImage() const {
    if (m_pOutImage == nullptr || m_pOutImage == m_pInImage)
        return *m_pInImage;
    *m_pOutImage = *m_pInImage;
    return *m_pOutImage;
}

long ClIpFloodFill::Process() {
    const long nResult = CheckInput();
    if (nResult != 0)
        return nResult;
    ClImage& rImage = PrepareImage();
    if (m_pBox != nullptr)
        BoundingBoxFill(rImage);
    else if (m_nCountThresh != 0)
        CountFill(rImage);
    else
        FloodFill(rImage);
    return 0;
}

// The fills

template <class Visit>
void ClIpFloodFill::FillPlane(ClImage& rPlane, Visit visit) const {
    const unsigned char nSeed = rPlane.LineData(m_nStartY)[m_nStartX];
    if (nSeed == m_nFillColor)
        return;
    TpColorArea<Visit> Area(rPlane, nSeed, m_nFillColor, visit);
    Kernels::TpSeeds<StLinePart> Seeds(cnFirstSeeds);
    Seeds.Push({m_nStartX, m_nStartY});
    Kernels::FillRegion(Area, Seeds);
}

void ClIpFloodFill::FloodFill(ClImage& rImage) const {
    ForEachPlane(rImage, [&](ClImage& rPlane) { FillPlane(rPlane, [](StRun, long) {}); });
}

void ClIpFloodFill::BoundingBoxFill(ClImage& rImage) const {
    m_pBox[0] = m_pBox[2] = m_nStartX;
    m_pBox[1] = m_pBox[3] = m_nStartY;
    const auto extend = [this](StRun Run, long y) {
        m_pBox[0] = std::min(m_pBox[0], Run.m_nBegin);
        m_pBox[1] = std::min(m_pBox[1], y);
        m_pBox[2] = std::max(m_pBox[2], Run.m_nEnd - 1);
        m_pBox[3] = std::max(m_pBox[3], y);
    };
    ForEachPlane(rImage, [&](ClImage& rPlane) { FillPlane(rPlane, extend); });
}

void ClIpFloodFill::CountFill(ClImage& rImage) const {
    ForEachPlane(rImage, [this](ClImage& rPlane) { CountFillPlane(rPlane); });
}

void ClIpFloodFill::CountFillPlane(ClImage& rPlane) const {
    const unsigned char nSeed = rPlane.LineData(m_nStartY)[m_nStartX];
    ClSmallRegion Region(std::min(m_nCountThresh, cnLargestThresh));
    FillPlane(rPlane, [&](StRun Run, long y) { Region.Add(Run, y); });
    if (Region.IsSmall())
        Region.Paint(rPlane, nSeed);
}
