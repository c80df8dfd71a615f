#include "ImageProcessing/IpArithmetic2to1Base.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/ImageSwitch.h"
#include "ImageProcessing/Overlay.h"
#include "ImageProcessing/SettingsText.h"

#include <TessarinCalibrateSDK.h>

#include <cmath>
#include <cstring>

namespace {

constexpr const char* cszInImage1 = "In1: Original Image";
constexpr const char* cszInImage2 = "In2: 2nd Original Image";
constexpr const char* cszOutImage = "Out: Output Image";

bool IsByteType(const ClImage& Image) {
    return Image.DataType() == ClImage::eUInt8 || Image.DataType() == ClImage::eInt8;
}

} // namespace

ClIpArithmetic2to1Base::ClIpArithmetic2to1Base() {
    ClIpArithmetic2to1Base::SetParametersToDefault();
}

void ClIpArithmetic2to1Base::SetParametersToDefault() {
    m_pInImage1 = nullptr;
    m_pInImage2 = nullptr;
    m_pOutImage = nullptr;
    m_bSizeMustBeEqual = true;
    m_nFillColor = 0;
    m_nOffsetX = 0;
    m_nOffsetY = 0;
}

void ClIpArithmetic2to1Base::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage1", m_pInImage1, cszInImage1);
    AddInImage(List, "InImage2", m_pInImage2, cszInImage2);
    AddOutImage(List, "OutImage", m_pOutImage, cszOutImage);
}

void ClIpArithmetic2to1Base::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage1", m_pInImage1, cszInImage1);
    AddInImage(Container, "pInImage2", m_pInImage2, cszInImage2);
    AddOutImage(Container, "pOutImage", m_pOutImage, cszOutImage);
    Container.Keep(&m_bSizeMustBeEqual, &m_nFillColor, &m_nOffsetX, &m_nOffsetY);
}

long ClIpArithmetic2to1Base::ParameterString(char* pBuffer, unsigned long nSize) {
    const char* szSign = m_pInImage1 == nullptr                       ? "Unknown Yet"
                         : ClImage::IsSigned(m_pInImage1->DataType()) ? "Signed"
                                                                      : "Unsigned";
    return WriteSettings(pBuffer, nSize, "%s", szSign);
}

// The run

bool ClIpArithmetic2to1Base::CanApply() {
    return m_pInImage1 != nullptr && m_pInImage2 != nullptr && m_pOutImage != nullptr &&
           m_pInImage1->Data() != nullptr && m_pInImage2->Data() != nullptr;
}

long ClIpArithmetic2to1Base::CheckInputs() {
    if (!CanApply())
        return QMT_ERROR_PARAM_IS_MISSING;
    if (!IsByteType(*m_pInImage1) || !IsByteType(*m_pInImage2))
        return QMT_ERROR_FORMAT_NOTSUPPORTED;
    return 0;
}

long ClIpArithmetic2to1Base::Initialize() {
    const long nResult = CheckInputs();
    if (nResult != 0 || !m_bSizeMustBeEqual)
        return nResult;
    if (m_pInImage1->Width() != m_pInImage2->Width() ||
        m_pInImage1->Height() != m_pInImage2->Height())
        return QMT_ERROR_BITMAP_DIMENSION;
    return m_nOffsetX != 0 || m_nOffsetY != 0 ? QMT_ERROR_PARAM_OUT_OF_RANGE : 0;
}

long ClIpArithmetic2to1Base::Process() {
    const long nResult = CheckInputs();
    if (nResult != 0)
        return nResult;
    if (m_pOutImage != m_pInImage1 && m_pOutImage != m_pInImage2) {
        ProcessToOutImage();
        return 0;
    }
    ClImage Local;
    {
        const ClImageSwitch OutImage(m_pOutImage, Local);
        ProcessToOutImage();
    }
    m_pOutImage->Swap(Local);
    return 0;
}

void ClIpArithmetic2to1Base::ProcessToOutImage() {
    long nWidth = 0;
    long nHeight = 0;
    CreateOutImage(nWidth, nHeight);
    SetOutImageSign();
    if (!IsAllArea())
        FillOuterParts();
    const long nPlanes = m_pInImage1->Planes();
    if (nWidth < 1 || nHeight < 1 || nPlanes < 1 || nPlanes != m_pInImage2->Planes())
        return;
    long nOffset1 = 0;
    long nOffset2 = 0;
    long nOffsetOut = 0;
    CalcOffsets(nOffset1, nOffset2, nOffsetOut);
    ProcessArea(nWidth, nHeight, nPlanes, m_pInImage1->Data() + nOffset1,
                m_pInImage1->LineStrideBytes(), m_pInImage2->Data() + nOffset2,
                m_pInImage2->LineStrideBytes(), m_pOutImage->Data() + nOffsetOut,
                m_pOutImage->LineStrideBytes());
}

bool ClIpArithmetic2to1Base::WritesAllOfArea() const {
    return false;
}

/// Whether ProcessArea() writes the whole output.
bool ClIpArithmetic2to1Base::IsAllArea() const {
    return WritesAllOfArea() && m_pInImage1->Planes() == m_pInImage2->Planes() &&
           StOverlay(*m_pInImage1, *m_pInImage2, m_nOffsetX, m_nOffsetY).IsPlain();
}

void ClIpArithmetic2to1Base::CreateOutImage(long& nWidth, long& nHeight) {
    const StOverlay Overlay(*m_pInImage1, *m_pInImage2, m_nOffsetX, m_nOffsetY);
    nWidth = Overlay.m_X.m_nOverlap;
    nHeight = Overlay.m_Y.m_nOverlap;
    Overlay.NewOutput(*m_pOutImage, ClImage::eUInt8, *m_pInImage1);
}

void ClIpArithmetic2to1Base::SetOutImageSign() {
    const unsigned char nType = m_pOutImage->DataType();
    const bool bSigned = ClImage::IsSigned(m_pInImage1->DataType());
    if (bSigned != ClImage::IsSigned(nType) && !ClImage::IsFloat(nType)) {
        const double dHalf = std::ldexp(1.0, 8 * ClImage::BytesPerSample(nType) - 1);
        const double dMove = bSigned ? -dHalf : dHalf;
        m_pOutImage->SetBlack(m_pOutImage->Black() + dMove);
        m_pOutImage->SetWhite(m_pOutImage->White() + dMove);
    }
    m_pOutImage->SetDataType(static_cast<unsigned char>(bSigned ? nType | 0x80 : nType & 0x7F));
}

void ClIpArithmetic2to1Base::FillOuterParts() {
    const StOverlay Overlay(*m_pInImage1, *m_pInImage2, m_nOffsetX, m_nOffsetY);
    FillSubpart(m_pOutImage->Width(), m_pOutImage->Height(), m_pOutImage->Planes(),
                m_pOutImage->Data(), m_pOutImage->LineStrideBytes());
    CopyToOutput(*m_pInImage1, Overlay.m_X.m_nStart1, Overlay.m_Y.m_nStart1);
    CopyToOutput(*m_pInImage2, Overlay.m_X.m_nStart2, Overlay.m_Y.m_nStart2);
}

void ClIpArithmetic2to1Base::CopyToOutput(const ClImage& In, long nX, long nY) {
    unsigned char* pDest =
        m_pOutImage->Data() + nX * m_pOutImage->Planes() + nY * m_pOutImage->LineStrideBytes();
    CopySubpart(In.Width(), In.Height(), In.Planes(), m_pOutImage->Planes(), In.Data(),
                In.LineStrideBytes(), pDest, m_pOutImage->LineStrideBytes());
}

void ClIpArithmetic2to1Base::CalcOffsets(long& nOffset1, long& nOffset2, long& nOffsetOut) const {
    const StOverlay Overlay(*m_pInImage1, *m_pInImage2, m_nOffsetX, m_nOffsetY);
    nOffset1 = Overlay.In1Offset(*m_pInImage1); // a sample is a byte
    nOffset2 = Overlay.In2Offset(*m_pInImage2);
    nOffsetOut = Overlay.OutOffset(*m_pOutImage);
}

long ClIpArithmetic2to1Base::ApplyParam(ClImage& In1, ClImage& In2, ClImage& Out) {
    m_pInImage1 = &In1;
    m_pInImage2 = &In2;
    m_pOutImage = &Out;
    return Apply();
}

// The parts of the output

void ClIpArithmetic2to1Base::ProcessArea(long, long, long, const unsigned char*, long,
                                         const unsigned char*, long, unsigned char*, long) {}

void ClIpArithmetic2to1Base::CopySubpart(long nWidth, long nHeight, long nPlanes1, long nPlanes2,
                                         const unsigned char* pSrc, long nSrcStride,
                                         unsigned char* pDest, long nDestStride) {
    const long nSpread = nPlanes1 == nPlanes2 ? 1 : nPlanes1 == 1 && nPlanes2 == 3 ? 3 : 0;
    const long nSamples = nWidth * nPlanes1;
    if (nSpread == 0 || nSamples < 1)
        return;
    for (long y = 0; y < nHeight; ++y) {
        const unsigned char* pFrom = pSrc + y * nSrcStride;
        unsigned char* pTo = pDest + y * nDestStride;
        if (nSpread == 1)
            std::memcpy(pTo, pFrom, static_cast<std::size_t>(nSamples));
        else
            for (long i = 0; i < nSamples; ++i)
                std::memset(pTo + 3 * i, pFrom[i], 3);
    }
}

void ClIpArithmetic2to1Base::FillSubpart(long nWidth, long nHeight, long nPlanes,
                                         unsigned char* pDest, long nStride) {
    const auto color = [this](long nPlane) {
        return static_cast<unsigned char>(m_nFillColor >> (8 * nPlane));
    };
    const bool bFlat = nPlanes == 1 || (color(0) == color(1) && color(1) == color(2));
    if (!bFlat && nPlanes > 3)
        return;
    for (long y = 0; y < nHeight; ++y)
        for (long i = 0; i < nWidth * nPlanes; ++i)
            pDest[y * nStride + i] = bFlat ? color(0) : color(i % nPlanes);
}
