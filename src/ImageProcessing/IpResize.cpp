#include "ImageProcessing/IpResize.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PlaneByPlane.h"
#include "ImageProcessing/RequireBytes.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <climits>

namespace {

/// A side as an image can be asked for; what exceeds it is refused there.
int Side(long long nSide) {
    return static_cast<int>(std::min<long long>(nSide, INT_MAX));
}

/// Repeats every sample `nFactor` times, up to `nCount` samples of output; 0 behind the input.
void RepeatSamples(const unsigned char* pIn, int nInCount, int nFactor, int nCount,
                   unsigned char* pOut) {
    const unsigned char* const pEnd = pOut + nCount;
    for (int x = 0; x < nInCount && pOut < pEnd; ++x)
        pOut = std::fill_n(pOut, std::min<std::ptrdiff_t>(nFactor, pEnd - pOut), pIn[x]);
    std::fill(pOut, pOut + (pEnd - pOut), static_cast<unsigned char>(0));
}

} // namespace

ClIpResize::ClIpResize() {
    ClIpResize::SetParametersToDefault();
}

ClProcessorBase* ClIpResize::Create() {
    return Vek::NewObject<ClIpResize>();
}

const char* ClIpResize::Name() const {
    return "ClIpResize";
}

void ClIpResize::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nScaleFactor = 2;
    m_nDestWidth = 0;
    m_nDestHeight = 0;
}

void ClIpResize::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage);
    AddOutImage(List, "OutImage", m_pOutImage);
    AddNumber(List, "nScaleFactor", m_nScaleFactor);
    AddNumber(List, "nDestWidth", m_nDestWidth);
    AddNumber(List, "nDestHeight", m_nDestHeight);
}

void ClIpResize::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddOutImage(Container, "pOutImage", m_pOutImage);
    Container.AddNumeric("nScaleFactor", &m_nScaleFactor);
    Container.AddNumeric("nDestWidth", &m_nDestWidth);
    Container.AddNumeric("nDestHeight", &m_nDestHeight);
}

long ClIpResize::Process() {
    if (m_pInImage == nullptr)
        throw ClException("m_pInImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (m_pOutImage == nullptr)
        throw ClException("m_pOutImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (m_pInImage->Data() == nullptr || m_nScaleFactor < 1)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    RequireBytes(*m_pInImage, VEK_HERE);
    if (m_pInImage->Planes() > 1)
        return ProcessMultiPlane();
    return ProcessInto(*m_pInImage, *m_pOutImage,
                       [this](const ClImage& In, ClImage& Out) { return Resize(In, Out); });
}

long ClIpResize::ProcessMultiPlane() {
    return ProcessPlaneByPlane(*m_pInImage, *m_pOutImage,
                               [this](const ClImage& In, ClImage& Out) { return Resize(In, Out); });
}

void ClIpResize::NewOutput(const ClImage& In, ClImage& Out) const {
    const long long nFactor = m_nScaleFactor;
    const bool bByFactor = m_nDestWidth == 0 && m_nDestHeight == 0;
    const int nWidth = bByFactor ? Side(In.Width() * nFactor) : m_nDestWidth;
    const int nHeight = bByFactor ? Side(In.Height() * nFactor) : m_nDestHeight;
    if (nWidth < 1 || nHeight < 1)
        throw ClException("Image area must be positive", QMT_ERROR_INTERNAL, true, VEK_HERE);
    Out.NewWithType(ClImage::eUInt8, nWidth, nHeight, 1, static_cast<int>(In.PelsX() * nFactor),
                    static_cast<int>(In.PelsY() * nFactor));
}

long ClIpResize::Resize(const ClImage& In, ClImage& Out) const {
    NewOutput(In, Out);
    for (int y = 0; y < Out.Height(); ++y) {
        const int nLine = y / m_nScaleFactor;
        if (nLine >= In.Height())
            std::fill_n(Out.LineData(y), Out.Width(), static_cast<unsigned char>(0));
        else if (y % m_nScaleFactor != 0)
            std::copy_n(Out.LineData(y - 1), Out.Width(), Out.LineData(y));
        else
            RepeatSamples(In.LineData(nLine), In.Width(), m_nScaleFactor, Out.Width(),
                          Out.LineData(y));
    }
    return 0;
}

long ClIpResize::ApplyParam(ClImage& rIn, int nFactor, ClImage& rOut, int nWidth, int nHeight) {
    m_pInImage = &rIn;
    m_pOutImage = &rOut;
    m_nScaleFactor = nFactor;
    m_nDestWidth = nWidth;
    m_nDestHeight = nHeight;
    return Apply();
}
