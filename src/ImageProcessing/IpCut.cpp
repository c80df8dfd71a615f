#include "ImageProcessing/IpCut.h"

#include "ImageProcessing/ImageParameters.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstring>

namespace {

void Require(bool bHolds, const char* szText, long nLine) {
    if (!bHolds)
        throw ClException(szText, QMT_ERROR_PARAM_OUT_OF_RANGE, true, VEK_FILE, nLine);
}

/// What is left of a side. A border beyond any image is refused by its start; here it must only
/// not overflow.
long Inside(int nSize, long nBorder) {
    constexpr long cnBeyond = 1L << 32;
    return nSize - 2 * std::clamp(nBorder, -cnBeyond, cnBeyond);
}

} // namespace

ClIpCut::ClIpCut() {
    EnableAllTypes();
    ClIpCut::SetParametersToDefault();
}

ClProcessorBase* ClIpCut::Create() {
    return Vek::NewObject<ClIpCut>();
}

const char* ClIpCut::Name() const {
    return "ClIpCut";
}

void ClIpCut::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_nX0 = m_nY0 = 0;
    m_nDestWidth = m_nDestHeight = 0;
    ReadOwnFields();
}

void ClIpCut::ReadOwnFields() {
    m_pX0 = &m_nX0;
    m_pY0 = &m_nY0;
    m_pDestWidth = &m_nDestWidth;
    m_pDestHeight = &m_nDestHeight;
}

void ClIpCut::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddNumber(List, "DestHeight", m_nDestHeight, "In: Cut Height");
    AddNumber(List, "DestWidth", m_nDestWidth, "In: Cut Width");
    AddNumber(List, "X0", m_nX0, "In: Start X");
    AddNumber(List, "Y0", m_nY0, "In: Start Y");
    AddOutImage(List, "OutImage", m_pOutImage, "Out: Clipping");
}

void ClIpCut::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.AddNumeric("nDestHeight", &m_nDestHeight);
    Container.AddNumeric("nDestWidth", &m_nDestWidth);
    Container.AddNumeric("nX0", &m_nX0);
    Container.AddNumeric("nY0", &m_nY0);
    Container.Keep(&m_pX0, &m_pY0, &m_pDestWidth, &m_pDestHeight);
}

void ClIpCut::CheckRectangle(const ClImage& In) const {
    const long nX0 = *m_pX0;
    const long nY0 = *m_pY0;
    Require(nX0 >= 0, "ClIpCut::Process. m_nX0<0", __LINE__);
    Require(nY0 >= 0, "ClIpCut::Process. m_nY0<0", __LINE__);
    Require(nX0 < In.Width(), "ClIpCut::Process. m_nX0>=m_pInImage->Width()", __LINE__);
    Require(nY0 < In.Height(), "ClIpCut::Process. m_nY0>=m_pInImage->Height()", __LINE__);
    Require(*m_pDestWidth >= 0, "ClIpCut::Process. m_nDestWidth < 0", __LINE__);
    Require(*m_pDestHeight >= 0, "ClIpCut::Process. m_nDestHeight < 0", __LINE__);
    Require(*m_pDestWidth <= In.Width() - nX0,
            "ClIpCut::Process. m_nX0+m_nDestWidth > m_pInImage->Width()", __LINE__);
    Require(*m_pDestHeight <= In.Height() - nY0,
            "ClIpCut::Process. m_nY0+m_nDestHeight > m_pInImage->Height()", __LINE__);
}

long ClIpCut::DoProcess(ClImage& In, ClImage& Out) {
    if (m_pX0 == nullptr || m_pY0 == nullptr || m_pDestWidth == nullptr || m_pDestHeight == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    CheckRectangle(In);
    if (&In != &Out) {
        Cut(In, Out);
        return 0;
    }
    ClImage Local;
    AllocateOutImage(Local);
    Cut(In, Local);
    Out.Swap(Local);
    return 0;
}

void ClIpCut::Cut(const ClImage& In, ClImage& Out) const {
    Out.NewWithType(In.DataType(), static_cast<int>(*m_pDestWidth),
                    static_cast<int>(*m_pDestHeight), In.Planes(), In.PelsX(), In.PelsY());
    Out.SetContent(In.Content());
    Out.SetBlack(In.Black());
    Out.SetWhite(In.White());
    Out.SetAttribute(In.Attribute());

    const long nPixelBytes = static_cast<long>(In.Planes()) * In.BytesPerSample();
    const std::size_t nBytes = static_cast<std::size_t>(Out.Width() * nPixelBytes);
    for (int y = 0; y < Out.Height(); ++y)
        std::memmove(Out.LineData(y),
                     In.LineData(static_cast<int>(*m_pY0) + y) + *m_pX0 * nPixelBytes, nBytes);
}

long ClIpCut::ApplyParam(ClImage& In, long nBorder, ClImage& Out) {
    return ApplyParam(In, nBorder, nBorder, Inside(In.Width(), nBorder),
                      Inside(In.Height(), nBorder), Out);
}

long ClIpCut::ApplyParam(ClImage& In, long nX0, long nY0, long nWidth, long nHeight, ClImage& Out) {
    m_nX0 = nX0;
    m_nY0 = nY0;
    m_nDestWidth = nWidth;
    m_nDestHeight = nHeight;
    ReadOwnFields();
    return ClIp1to1Base::ApplyParam(In, Out);
}
