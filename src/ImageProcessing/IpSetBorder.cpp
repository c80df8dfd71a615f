#include "ImageProcessing/IpSetBorder.h"

#include "ImageProcessing/ImageParameters.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstring>

ClIpSetBorder::ClIpSetBorder() {
    ClIpSetBorder::SetParametersToDefault();
}

ClProcessorBase* ClIpSetBorder::Create() {
    return Vek::NewObject<ClIpSetBorder>();
}

const char* ClIpSetBorder::Name() const {
    return "ClIpSetBorder";
}

void ClIpSetBorder::SetParametersToDefault() {
    m_pOutImage = nullptr;
    m_pInImage = nullptr;
    m_nBorderWidth = 1;
    m_nGreyValue = 0;
}

void ClIpSetBorder::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddOutImage(Container, "pOutImage", m_pOutImage);
    Container.AddNumeric("nBorderWidth", &m_nBorderWidth);
    Container.AddNumeric("nGreyValue", &m_nGreyValue);
}

void ClIpSetBorder::PaintLines(int nFirst, int nEnd) const {
    for (int y = nFirst; y < nEnd; ++y)
        std::memset(m_pOutImage->LineData(y), m_nGreyValue,
                    static_cast<std::size_t>(m_pOutImage->Width()));
}

void ClIpSetBorder::PaintSides(int nFirst, int nEnd, int nBorder) const {
    const int nBytes = std::min(m_pOutImage->Width(), nBorder);
    for (int y = nFirst; y < nEnd; ++y) {
        unsigned char* pLine = m_pOutImage->LineData(y);
        std::memset(pLine, m_nGreyValue, static_cast<std::size_t>(nBytes));
        std::memset(pLine + m_pOutImage->Width() - nBytes, m_nGreyValue,
                    static_cast<std::size_t>(nBytes));
    }
}

long ClIpSetBorder::Process() {
    if (m_pInImage == nullptr || m_pOutImage == nullptr || m_pInImage->Data() == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    *m_pOutImage = *m_pInImage;
    if (m_pOutImage->Width() < 1 || m_pOutImage->SizeBytes() == 0)
        return 0;
    const int nHeight = m_pOutImage->Height();
    const int nBorder = static_cast<int>(std::clamp(m_nBorderWidth, 0L, 0x7FFFFFFFL));
    const int nTop = std::min(nHeight, nBorder);
    const int nBottom = std::max(nTop, nHeight - nBorder);
    PaintLines(0, nTop);
    PaintSides(nTop, nBottom, nBorder);
    PaintLines(nBottom, nHeight);
    return 0;
}

long ClIpSetBorder::ApplyParam(ClImage& In, ClImage& Out, long nWidth, unsigned char nGrey) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    m_nBorderWidth = nWidth;
    m_nGreyValue = nGrey;
    return Apply();
}

long ClIpSetBorder::ApplyParam(ClImage& Image, long nWidth, unsigned char nGrey) {
    return ApplyParam(Image, Image, nWidth, nGrey);
}
