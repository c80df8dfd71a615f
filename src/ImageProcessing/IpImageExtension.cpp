#include "ImageProcessing/IpImageExtension.h"

#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpJoinPlanes.h"
#include "ImageProcessing/IpSplitPlanes.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr long cnLargestSize = std::numeric_limits<int>::max();
constexpr long cnLargestPower = 1L << 30;

std::size_t PixelBytes(const ClImage& Image) {
    return static_cast<std::size_t>(Image.Planes()) *
           static_cast<std::size_t>(Image.BytesPerSample());
}

unsigned char* Pixel(const ClImage& Image, int x, int y) {
    return Image.LineData(y) + static_cast<std::size_t>(x) * PixelBytes(Image);
}

double TruncatedMid(const ClImage& Plane) {
    ClHistogram Histogram;
    Histogram.Create(Plane);
    return static_cast<double>(static_cast<long>(Histogram.GetGreyMid(0, 255)));
}

/// Copies the image into a larger one of its type.
void CopyAt(const ClImage& In, int nOffsetX, int nOffsetY, ClImage& Out) {
    const std::size_t nBytes = static_cast<std::size_t>(In.Width()) * PixelBytes(In);
    for (int y = 0; y < In.Height(); ++y)
        std::memcpy(Pixel(Out, nOffsetX, nOffsetY + y), In.LineData(y), nBytes);
}

void CheckOffset(int nOffset, int nExtension, const char* szText, long nLine) {
    if (nOffset < 0 || nOffset > nExtension)
        throw ClException(szText, QMT_ERROR_INVALID_PARAMETER, true, VEK_FILE, nLine);
}

} // namespace

ClIpImageExtension::ClIpImageExtension() {
    EnableAllTypes();
    ClIpImageExtension::SetParametersToDefault();
}

ClProcessorBase* ClIpImageExtension::Create() {
    return Vek::NewObject<ClIpImageExtension>();
}

const char* ClIpImageExtension::Name() const {
    return "ClIpImageExtension";
}

void ClIpImageExtension::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_nExtensionX = m_nExtensionY = 0;
    m_nColor = 0;
    m_bNextPowerOfTwo = false;
    m_eAlignmentX = EAlignmentX::Center;
    m_eAlignmentY = EAlignmentY::Center;
    m_eMode = ExtendSetColor;
    m_nManualOffsetX = m_nManualOffsetY = 0;
}

void ClIpImageExtension::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.AddNumeric("Extension in X", &m_nExtensionX);
    Container.AddNumeric("Extension in Y", &m_nExtensionY);
    Container.AddNumeric("Color for Extension", &m_nColor);
    Container.AddBool("Extend to the next square numbers", &m_bNextPowerOfTwo);
    Container.AddEnum("Extension_in_X", &m_eAlignmentX,
                      {{EAlignmentX::Center, "Center"},
                       {EAlignmentX::Left, "Left"},
                       {EAlignmentX::Right, "Right"}});
    Container.AddEnum(
        "Extension_in_Y", &m_eAlignmentY,
        {{EAlignmentY::Center, "Center"}, {EAlignmentY::Down, "Down"}, {EAlignmentY::Up, "Up"}});
    Container.AddEnum("Color_for_Extension", &m_eMode,
                      {{ExtendSetColor, "ExtendSetColor"},
                       {ExtendAverageColor, "ExtendAverageColor"},
                       {ExtendBorderContinue, "ExtendBorderContinue"},
                       {ExtendBorderReflection, "ExtendBorderReflection"},
                       {ExtendBorderPeriodic, "ExtendBorderPeriodic"}});
    Container.Keep(&m_nManualOffsetX, &m_nManualOffsetY);
}

// Sizes

long ClIpImageExtension::CalculateNextTwoPower(int nSize, int nExtension) {
    const long nWanted = static_cast<long>(nSize) + nExtension;
    long nPower = 1;
    while (nPower < nWanted)
        nPower <<= 1;
    return nPower;
}

long ClIpImageExtension::ExtendedSize(int nSize, int nExtension) const {
    return m_bNextPowerOfTwo ? CalculateNextTwoPower(nSize, nExtension)
                             : static_cast<long>(nSize) + nExtension;
}

bool ClIpImageExtension::RepeatsWholeImage() const {
    return m_eMode == ExtendBorderReflection || m_eMode == ExtendBorderPeriodic;
}

long ClIpImageExtension::DoProcess(ClImage& In, ClImage& Out) {
    if (In.Data() == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (In.Width() < 1 || In.Height() < 1)
        return QMT_ERROR_BITMAP_DIMENSION;
    if (m_nExtensionX < 0 || m_nExtensionY < 0)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    const long nWidth = ExtendedSize(In.Width(), m_nExtensionX);
    const long nHeight = ExtendedSize(In.Height(), m_nExtensionY);
    if (std::max(nWidth, nHeight) > (m_bNextPowerOfTwo ? cnLargestPower : cnLargestSize))
        return QMT_ERROR_BITMAP_DIMENSION;
    if (RepeatsWholeImage() && (nWidth > 2L * In.Width() || nHeight > 2L * In.Height()))
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (In.Planes() != 1 && In.Planes() != 3)
        return QMT_ERROR_BITMAP_PLANE;

    ClImage Extended;
    CalculateNewExtendedImage(In, static_cast<int>(nWidth), static_cast<int>(nHeight), Extended);
    Out = Extended;
    return 0;
}

// Fill

void ClIpImageExtension::CalculateNewExtendedImage(ClImage& In, int nWidth, int nHeight,
                                                   ClImage& Out) {
    if (m_eMode == ExtendAverageColor && In.DataType() != ClImage::eUInt8) {
        Out = In;
        return;
    }
    Out.NewWithType(In.DataType(), nWidth, nHeight, In.Planes(), In.PelsX(), In.PelsY());
    if (m_eMode == ExtendAverageColor)
        FillAverageColor(In, Out);
    else
        Out = m_nColor;
    const int nOffsetX = CalculateOffsetX(nWidth - In.Width());
    const int nOffsetY = CalculateOffsetY(nHeight - In.Height());
    CopyAt(In, nOffsetX, nOffsetY, Out);
    if (m_eMode == ExtendBorderContinue || RepeatsWholeImage())
        CalculateExtension(In, nOffsetX, nOffsetY, Out);
    Out.SetContent(In.Content());
    Out.SetBlack(In.Black());
    Out.SetWhite(In.White());
    Out.SetAttribute(In.Attribute());
}

/// Three planes are joined from one that is filled and two that are fill colours.
void ClIpImageExtension::FillAverageColor(ClImage& In, ClImage& Out) {
    if (In.Planes() == 1) {
        Out = static_cast<unsigned char>(TruncatedMid(In));
        return;
    }
    ClImage aPlane[3];
    ClIpSplitPlanes Split;
    Split.Timer(IsTimerEnabled());
    Split.ApplyParam(In, &aPlane[0], &aPlane[1], &aPlane[2], nullptr);
    ClIpJoinPlanes Join;
    Join.Timer(IsTimerEnabled());
    Join.m_eOutContent = ClImage::eRGB;
    for (int p = 0; p < 3; ++p)
        Join.m_adInFillcolors[p] = TruncatedMid(aPlane[p]);
    aPlane[0].NewWithType(ClImage::eUInt8, Out.Width(), Out.Height(), 1, Out.PelsX(), Out.PelsY());
    aPlane[0] = static_cast<unsigned char>(Join.m_adInFillcolors[0]);
    Join.ApplyParam(Out, &aPlane[0], nullptr, nullptr, nullptr);
}

// Place

int ClIpImageExtension::CalculateOffsetX(int nExtension) const {
    switch (m_eAlignmentX) {
    case EAlignmentX::Left:
        return 0;
    case EAlignmentX::Right:
        return nExtension;
    case EAlignmentX::Manual:
        CheckOffset(m_nManualOffsetX, nExtension,
                    "The manually set x offset must be at most the x extension", __LINE__);
        return m_nManualOffsetX;
    default:
        return nExtension / 2;
    }
}

int ClIpImageExtension::CalculateOffsetY(int nExtension) const {
    switch (m_eAlignmentY) {
    case EAlignmentY::Down:
        return 0;
    case EAlignmentY::Up:
        return nExtension;
    case EAlignmentY::Manual:
        CheckOffset(m_nManualOffsetY, nExtension,
                    "The manually set y offset must be at most the y extension", __LINE__);
        return m_nManualOffsetY;
    default:
        return nExtension / 2;
    }
}

// Margins

/// The position in the image that a position of the margin takes its sample from.
int ClIpImageExtension::SourceIndex(int nIndex, int nSize) const {
    switch (m_eMode) {
    case ExtendBorderReflection:
        return nIndex < 0 ? -1 - nIndex : nSize - 1 - (nIndex - nSize);
    case ExtendBorderPeriodic:
        return nIndex < 0 ? nIndex + nSize : nIndex - nSize;
    default:
        return nIndex < 0 ? 0 : nSize - 1;
    }
}

void ClIpImageExtension::CalculateExtension(const ClImage& In, int nOffsetX, int nOffsetY,
                                            ClImage& Out) {
    TimerStart("CalculateExtensionLoop");
    const std::size_t nPixelBytes = PixelBytes(Out);
    const std::size_t nLineBytes = static_cast<std::size_t>(Out.Width()) * nPixelBytes;
    for (int y = nOffsetY; y < nOffsetY + In.Height(); ++y) {
        const auto fill = [&](int x) {
            std::memcpy(Pixel(Out, x, y),
                        Pixel(Out, nOffsetX + SourceIndex(x - nOffsetX, In.Width()), y),
                        nPixelBytes);
        };
        for (int x = 0; x < nOffsetX; ++x)
            fill(x);
        for (int x = nOffsetX + In.Width(); x < Out.Width(); ++x)
            fill(x);
    }
    const auto fillLine = [&](int y) {
        std::memcpy(Out.LineData(y),
                    Out.LineData(nOffsetY + SourceIndex(y - nOffsetY, In.Height())), nLineBytes);
    };
    for (int y = 0; y < nOffsetY; ++y)
        fillLine(y);
    for (int y = nOffsetY + In.Height(); y < Out.Height(); ++y)
        fillLine(y);
    TimerStop("CalculateExtensionLoop");
}

// ApplyParam

long ClIpImageExtension::ApplyParam(ClImage& In, ClImage& Out, int nExtension, unsigned char nColor,
                                    bool bNextPowerOfTwo) {
    return ApplyParam(In, Out, nExtension, nExtension, nColor, bNextPowerOfTwo);
}

long ClIpImageExtension::ApplyParam(ClImage& Image, int nExtension, unsigned char nColor,
                                    bool bNextPowerOfTwo) {
    return ApplyParam(Image, Image, nExtension, nExtension, nColor, bNextPowerOfTwo);
}

long ClIpImageExtension::ApplyParam(ClImage& Image, int nExtensionX, int nExtensionY,
                                    unsigned char nColor, bool bNextPowerOfTwo) {
    return ApplyParam(Image, Image, nExtensionX, nExtensionY, nColor, bNextPowerOfTwo);
}

long ClIpImageExtension::ApplyParam(ClImage& In, ClImage& Out, int nExtensionX, int nExtensionY,
                                    unsigned char nColor, bool bNextPowerOfTwo) {
    m_nExtensionX = nExtensionX;
    m_nExtensionY = nExtensionY;
    m_nColor = nColor;
    m_bNextPowerOfTwo = bNextPowerOfTwo;
    return ClIp1to1Base::ApplyParam(In, Out);
}
