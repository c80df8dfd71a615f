#include "Tools/FpImage.h"

#include "Tools/Allocate.h"
#include "Tools/MathConst.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace {

struct StPixelType {
    unsigned char m_nType;
    const char* m_szText;
    double m_dBlack;
    double m_dWhite;
};

/// The pixel types with their texts and default ranges.
constexpr StPixelType caPixelTypes[] = {
    {ClImage::eTypeUnknown, "unknown", MathConst::cdNaN, MathConst::cdNaN},
    {ClImage::eUInt8, "uint8", 0.0, 255.0},
    {ClImage::eUInt16, "uint16", 0.0, 65535.0},
    {ClImage::eUInt32, "uint32", 0.0, 4294967295.0},
    {ClImage::eInt8, "int8", -128.0, 127.0},
    {ClImage::eInt16, "int16", -32768.0, 32767.0},
    {ClImage::eInt32, "int32", -2147483648.0, 2147483647.0},
    {ClImage::eFloat32, "float32", -1.0, 1.0},
    {ClImage::eDouble64, "double64", -1.0, 1.0},
    {ClImage::eTypeDefault, "default", MathConst::cdNaN, MathConst::cdNaN},
};

const StPixelType* FindType(unsigned char nType) {
    for (const StPixelType& type : caPixelTypes)
        if (type.m_nType == nType)
            return &type;
    return nullptr;
}

/// A buffer begins with a cache line, so that no vector of a loop over its samples has parts in two
/// of them. Memory is not asked for in that alignment: it would split the heap of a process in
/// which handles come and go.
#ifdef TESSARIN_WATCHES_MEMORY // a sanitizer sees what is done behind its end
constexpr std::size_t cnAlignment = 1;
#else
constexpr std::size_t cnAlignment = 64;
#endif

unsigned char* FirstAligned(unsigned char* pMemory) {
    return pMemory + (0 - reinterpret_cast<std::uintptr_t>(pMemory)) % cnAlignment;
}

[[noreturn]] void ThrowAreaNotPositive() {
    throw ClException("Image area must be positive", QMT_ERROR_INTERNAL, false, VEK_NOWHERE);
}

} // namespace

// State

ClImage::ClImage() noexcept : m_dBlack(MathConst::cdNaN), m_dWhite(MathConst::cdNaN) {}

ClImage::ClImage(int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY) : ClImage() {
    NewWithType(eUInt8, nWidth, nHeight, nPlanes, nPelsX, nPelsY);
}

ClImage::~ClImage() = default;

void ClImage::Initialize() noexcept {
    m_pData.reset();
    m_nDataType = eTypeUnknown;
    m_eContent = eUnknown;
    m_nWidth = m_nHeight = 0;
    m_nPelsX = m_nPelsY = 0;
    m_nPlanes = 0;
    m_dBlack = m_dWhite = MathConst::cdNaN;
    m_nAttribute = 0;
    m_nBufferSize = 0;
}

void ClImage::CopyDescription(const ClImage& Src) {
    m_nDataType = Src.m_nDataType;
    m_eContent = Src.m_eContent;
    m_nWidth = Src.m_nWidth;
    m_nHeight = Src.m_nHeight;
    m_nPelsX = Src.m_nPelsX;
    m_nPelsY = Src.m_nPelsY;
    m_nPlanes = Src.m_nPlanes;
    m_dBlack = Src.m_dBlack;
    m_dWhite = Src.m_dWhite;
    m_nAttribute = Src.m_nAttribute;
}

void ClImage::Swap(ClImage& Other) {
    if (this == &Other)
        return;
    std::swap(m_nDataType, Other.m_nDataType);
    std::swap(m_eContent, Other.m_eContent);
    std::swap(m_nWidth, Other.m_nWidth);
    std::swap(m_nHeight, Other.m_nHeight);
    std::swap(m_nPelsX, Other.m_nPelsX);
    std::swap(m_nPelsY, Other.m_nPelsY);
    m_pData.swap(Other.m_pData);
    std::swap(m_nPlanes, Other.m_nPlanes);
    std::swap(m_dBlack, Other.m_dBlack);
    std::swap(m_dWhite, Other.m_dWhite);
    std::swap(m_nAttribute, Other.m_nAttribute);
    std::swap(m_nBufferSize, Other.m_nBufferSize);
}

// Geometry

std::int64_t ClImage::StrideBytes(unsigned char nType, int nWidth, int nPlanes) {
    // Two sides of 31 bits leave no room for the size of a sample: what is too long for any image
    // is cut to a length that still is.
    constexpr std::int64_t nTooLong = std::int64_t{INT_MAX} + 1;
    const std::int64_t nSamples = std::clamp(std::int64_t{nWidth} * nPlanes, -nTooLong, nTooLong);
    const std::int64_t nBytes = (nSamples * BytesPerSample(nType) + 3) & ~std::int64_t{3};
    return std::clamp(nBytes, -nTooLong, nTooLong);
}

int ClImage::LineStrideBytes() const {
    return static_cast<int>(StrideBytes(m_nDataType, m_nWidth, m_nPlanes));
}

int ClImage::LineStrideSamples() const {
    const int nBytes = BytesPerSample();
    return nBytes == 0 ? 0 : LineStrideBytes() / nBytes;
}

std::size_t ClImage::SizeBytes() const {
    if (m_nWidth < 1 || m_nHeight < 1 || m_nPlanes < 1)
        return 0;
    const std::int64_t nStride = StrideBytes(m_nDataType, m_nWidth, m_nPlanes);
    return static_cast<std::size_t>(nStride * m_nHeight);
}

const char* ClImage::TypeText(unsigned char nType) {
    const StPixelType* pType = FindType(nType);
    return pType != nullptr ? pType->m_szText : "not valid";
}

void ClImage::BlackWhiteFromType(unsigned char nType) {
    const StPixelType* pType = FindType(nType);
    m_dBlack = pType != nullptr ? pType->m_dBlack : MathConst::cdNaN;
    m_dWhite = pType != nullptr ? pType->m_dWhite : MathConst::cdNaN;
}

void ClImage::ContentFromPlanes(int nPlanes) {
    switch (nPlanes) {
    case 1:
        m_eContent = eGrayscale;
        break;
    case 3:
        m_eContent = eRGB;
        break;
    case 4:
        m_eContent = eRGBA;
        break;
    default:
        m_eContent = eUnknown;
    }
}

// Allocation

void ClImage::NewWithType(unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX,
                          int nPelsY) {
    m_nDataType = nType;
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    m_nPlanes = nPlanes;
    m_nPelsX = nPelsX;
    m_nPelsY = nPelsY;
    ContentFromPlanes(nPlanes);
    BlackWhiteFromType(nType);

    if (nWidth < 0 || nHeight < 0 || nPlanes < 0)
        ThrowAreaNotPositive();
    const std::int64_t nStride = StrideBytes(nType, nWidth, nPlanes);
    const std::int64_t nSize = nStride * nHeight;
    if (m_pData.use_count() <= 1 && static_cast<std::int64_t>(m_nBufferSize) == nSize)
        return;
    if (nHeight < 1 || nStride < 1)
        ThrowAreaNotPositive();
    if (nSize > INT_MAX) {
        Initialize();
        Vek::ThrowBadAlloc();
    }
    Allocate(static_cast<std::size_t>(nSize));
}

void ClImage::Allocate(std::size_t nSize) {
    const std::size_t nRounded = (nSize + 7) & ~std::size_t{7};
    unsigned char* pMemory = new (std::nothrow) unsigned char[nRounded + cnAlignment - 1]();
    if (pMemory == nullptr) {
        Initialize();
        Vek::ThrowBadAlloc();
    }
    try {
        m_pData.reset(FirstAligned(pMemory), [pMemory](unsigned char*) { delete[] pMemory; });
    } catch (const std::bad_alloc&) { // the pointer has deleted the memory
        Initialize();
        Vek::ThrowBadAlloc();
    }
    m_nBufferSize = nSize;
}

void ClImage::NewWithType(const ClImage& Src, unsigned char nType) {
    if (this == &Src)
        throw ClException("this function dose not work on the same image.",
                          QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    NewWithType(nType, Src.m_nWidth, Src.m_nHeight, Src.m_nPlanes, Src.m_nPelsX, Src.m_nPelsY);
    m_eContent = Src.m_eContent;
    m_nAttribute = Src.m_nAttribute;
}

void ClImage::New(const ClImage& Src) {
    if (this == &Src)
        return;
    NewWithType(Src, Src.m_nDataType);
    m_dBlack = Src.m_dBlack;
    m_dWhite = Src.m_dWhite;
}

ClImage& ClImage::operator=(const ClImage& Src) {
    if (this == &Src)
        return *this;
    New(Src);
    if (!Src.HasBytes())
        return *this = static_cast<unsigned char>(0);
    if (HasBytes()) // a view of Src's own memory has kept it: they may overlap
        std::memmove(Data(), Src.Data(), SizeBytes());
    return *this;
}

ClImage& ClImage::operator=(unsigned char nValue) {
    if (nValue != 0 && BytesPerSample() != 1)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, false,
                          VEK_NOWHERE);
    if (HasBytes())
        std::memset(Data(), nValue, SizeBytes());
    return *this;
}

// Attaching

void ClImage::Attach(void* pData, unsigned char nType, int nWidth, int nHeight, int nPlanes,
                     int nPelsX, int nPelsY) {
    Delete();
    HoldForeign(pData);
    m_nDataType = nType;
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    m_nPlanes = nPlanes;
    m_nPelsX = nPelsX;
    m_nPelsY = nPelsY;
    ContentFromPlanes(nPlanes);
    BlackWhiteFromType(nType);
    m_nBufferSize = m_pData ? SizeBytes() : 0;
}

void ClImage::Attach(void* pData, const ClImage& Layout) {
    Delete();
    if (this == &Layout)
        return;
    HoldForeign(pData);
    CopyDescription(Layout);
    m_nBufferSize = m_pData ? SizeBytes() : 0;
}

void ClImage::Attach(const ClImage& Src) {
    Delete();
    if (this == &Src)
        return;
    CopyDescription(Src);
    m_pData = Src.m_pData;
    m_nBufferSize = Src.m_nBufferSize;
}

/// For an empty image.
void ClImage::HoldForeign(void* pData) {
    if (pData == nullptr)
        return;
    try {
        m_pData.reset(static_cast<unsigned char*>(pData), void_deleter());
    } catch (const std::bad_alloc&) {
        Vek::ThrowBadAlloc();
    }
}

// Planes and line ends

namespace {

/// Copies samples of `nBytes` bytes that stand `nStep` bytes apart to a dense line.
template <std::size_t nBytes>
void GatherSamples(const unsigned char* pFrom, std::size_t nStep, unsigned char* pTo, int nCount) {
    for (int i = 0; i < nCount; ++i, pFrom += nStep, pTo += nBytes)
        std::memcpy(pTo, pFrom, nBytes);
}

using GatherFunction = void (*)(const unsigned char*, std::size_t, unsigned char*, int);

GatherFunction GatherOf(int nBytes) {
    switch (nBytes) {
    case 1:
        return GatherSamples<1>;
    case 2:
        return GatherSamples<2>;
    case 4:
        return GatherSamples<4>;
    default:
        return GatherSamples<8>;
    }
}

bool IsPixelType(unsigned char nType) {
    return FindType(nType) != nullptr && ClImage::BytesPerSample(nType) > 0 &&
           nType != ClImage::eTypeDefault;
}

} // namespace

void ClImage::GetPlane(int nPlane, ClImage& Out) const {
    if (!IsPixelType(m_nDataType))
        return;
    if (nPlane < 0 || nPlane >= m_nPlanes)
        throw ClExTessarin(QMT_ERROR_PARAM_OUT_OF_RANGE, VEK_HERE);
    if (&Out == this) {
        ClImage Plane;
        GetPlane(nPlane, Plane);
        Plane.m_nAttribute = m_nAttribute;
        return Out.Swap(Plane);
    }
    Out.NewWithType(m_nDataType, m_nWidth, m_nHeight, 1, m_nPelsX, m_nPelsY);
    if (!HasBytes()) {
        Out = static_cast<unsigned char>(0);
        return;
    }
    const GatherFunction gather = GatherOf(BytesPerSample());
    const std::ptrdiff_t nOffset = std::ptrdiff_t{nPlane} * BytesPerSample();
    const std::size_t nStep =
        static_cast<std::size_t>(std::ptrdiff_t{m_nPlanes} * BytesPerSample());
    for (int y = 0; y < m_nHeight; ++y)
        gather(LineData(y) + nOffset, nStep, Out.LineData(y), m_nWidth);
}

void ClImage::FillAligment(int nValue) {
    if (!HasBytes())
        return;
    const int nPad = LineStrideBytes() - m_nWidth;
    if (nPad < 1)
        return;
    for (int y = 0; y < m_nHeight; ++y)
        std::memset(LineData(y) + m_nWidth, nValue, static_cast<std::size_t>(nPad));
}

// Validity

const char* ClImage::FirstDefect() const {
    if (m_nWidth < 0 || m_nHeight < 0 || m_nPelsX < 0 || m_nPelsY < 0)
        return "ClImage::IsValid. Wrong width, height or dpi";
    if (m_dBlack > m_dWhite)
        return "ClImage::IsValid. value of Black should be < than value of White";
    if (!(m_dBlack >= 0) && !IsSigned(m_nDataType))
        return "ClImage::IsValid. Unsigned require data range >= 0";
    if (m_nDataType == eUInt8 && !(m_dBlack == 0.0 && m_dWhite == 255.0))
        return "ClImage::IsValid. Char require data range 0...255";
    if (m_nDataType == eInt8 && !(m_dBlack == -128.0 && m_dWhite == 127.0))
        return "ClImage::IsValid. Signed Char require data range -128...127";
    return nullptr;
}

bool ClImage::IsValid() const {
    return FirstDefect() == nullptr;
}

bool ClImage::CheckValid() const {
    if (const char* szDefect = FirstDefect())
        throw ClException(szDefect, QMT_ERROR_INTERNAL, false, VEK_NOWHERE);
    return true;
}
