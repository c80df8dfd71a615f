// Pixels of a bitmap by channel. Three forms have to be read: indices of a palette (up to 8
// bits), bytes (24 and 32 bits) and fields under masks (16 and 32 bits). Each is a small function
// of line and column, and one loop applies it; none of this lies on the way of a capture, which
// is attached to its image without looking at a pixel.
//
// A field value v becomes (v * nScaleUp + 0x8FFF) >> 16, at most 255, and a sample s becomes the
// field value (s * nScaleDown + 0x8FFF) >> 16, cut by the mask.

#include "Tools/Allocate.h"
#include "Tools/Bitmap.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint64_t cnRounding = 0x8FFF;

/// Byte of a channel in a palette entry and in a pixel of 24 or 32 bits.
int ByteOf(int nChannel) {
    return nChannel == ClBitmap::eAlpha ? 3 : 2 - nChannel;
}

/// A channel's field in a pixel of 16 or 32 bits.
struct StField {
    unsigned int m_nMask = 0;
    unsigned int m_nShift = 0;
    unsigned int m_nWidth = 0;
    unsigned int m_nScaleUp = 0;
    unsigned int m_nScaleDown = 0;

    std::uint64_t Value(unsigned int nPixel) const { return (nPixel & m_nMask) >> m_nShift; }
    unsigned int Replace(unsigned int nPixel, std::uint64_t nValue) const {
        const auto nPlaced = static_cast<unsigned int>(nValue << m_nShift);
        return (nPixel & ~m_nMask) | (nPlaced & m_nMask);
    }

    unsigned char Scaled(unsigned int nPixel) const {
        const std::uint64_t nSample = (Value(nPixel) * m_nScaleUp + cnRounding) >> 16;
        return static_cast<unsigned char>(std::min<std::uint64_t>(nSample, 255));
    }
    unsigned int WithScaled(unsigned int nPixel, unsigned char nSample) const {
        return Replace(nPixel, (std::uint64_t{nSample} * m_nScaleDown + cnRounding) >> 16);
    }

    /// The same with shifts alone.
    unsigned int Shifted(unsigned int nPixel) const {
        const std::uint64_t nValue = Value(nPixel);
        const std::uint64_t n = m_nWidth < 8 ? nValue << (8 - m_nWidth) : nValue >> (m_nWidth - 8);
        return static_cast<unsigned int>(std::min<std::uint64_t>(n, 255));
    }
    unsigned int WithShifted(unsigned int nPixel, unsigned int nSample) const {
        const std::uint64_t n = nSample & 0xFF;
        return Replace(nPixel, m_nWidth < 8 ? n >> (8 - m_nWidth) : n << (m_nWidth - 8));
    }
};

StField FieldOf(const ClBitmap& Bitmap, int nChannel) {
    StField field;
    Bitmap.GetMask(static_cast<unsigned int>(nChannel), field.m_nShift, field.m_nMask,
                   field.m_nScaleUp, field.m_nScaleDown);
    Bitmap.MaskData(field.m_nMask, field.m_nShift, field.m_nWidth);
    return field;
}

unsigned int SaturatedToUInt32(double dValue) {
    constexpr double dMost = std::numeric_limits<unsigned int>::max();
    return dValue < dMost ? static_cast<unsigned int>(dValue)
                          : std::numeric_limits<unsigned int>::max();
}

void LongToMem(unsigned char* pMem, unsigned int nValue, int nBytes) {
    for (int i = 0; i < nBytes; ++i)
        pMem[i] = static_cast<unsigned char>(nValue >> (8 * i));
}

/// Indices of 1, 2, 4 or 8 bits, the first one in the highest bits of its byte.
struct StIndexPlace {
    long m_nByte;
    int m_nShift;
    unsigned int m_nMask;

    StIndexPlace(long x, int nBits)
        : m_nByte(x * nBits / 8), m_nShift(8 - nBits - static_cast<int>(x * nBits % 8)),
          m_nMask((1u << nBits) - 1) {}

    unsigned int Read(const unsigned char* pLine) const {
        return (pLine[m_nByte] >> m_nShift) & m_nMask;
    }
    void Write(unsigned char* pLine, unsigned int nIndex) const {
        const unsigned int nKept = pLine[m_nByte] & ~(m_nMask << m_nShift);
        pLine[m_nByte] = static_cast<unsigned char>(nKept | (nIndex << m_nShift));
    }
};

/// Entries of the palette that a pixel may name.
unsigned int ReachableEntries(const tagBITMAPINFOHEADER& Header) {
    const std::int64_t nNamed = std::int64_t{1} << Header.biBitCount;
    return static_cast<unsigned int>(std::min(ClBitmap::PalSize(Header), nNamed));
}

/// An index without an entry stands for the first.
unsigned int EntryOf(unsigned int nIndex, unsigned int nEntries) {
    return nIndex < nEntries ? nIndex : 0;
}

using TpByteTable = std::array<unsigned char, 256>;

/// One channel of every index.
TpByteTable PaletteTable(const ClBitmap& Bitmap, int nChannel) {
    const auto* pPalette = reinterpret_cast<const unsigned char*>(Bitmap.Palette());
    const unsigned int nEntries = ReachableEntries(*Bitmap.Header());
    TpByteTable aTable;
    for (unsigned int i = 0; i < aTable.size(); ++i)
        aTable[i] =
            pPalette[4 * EntryOf(i, nEntries) + static_cast<unsigned int>(ByteOf(nChannel))];
    return aTable;
}

bool IsIdentity(const TpByteTable& aTable) {
    for (unsigned int i = 0; i < aTable.size(); ++i)
        if (aTable[i] != i)
            return false;
    return true;
}

/// Sets plane `nPlane` of an image of the bitmap's size to `sample(line, x)`.
template <class Sample>
void FillPlane(const ClBitmap& Bitmap, ClImage& Out, int nPlane, Sample sample) {
    if (Out.Data() == nullptr) // no columns
        return;
    for (int y = 0; y < Out.Height(); ++y) {
        const unsigned char* pLine = Bitmap.Line(y);
        unsigned char* pOut = Out.LineData(y) + nPlane;
        for (long x = 0; x < Out.Width(); ++x, pOut += Out.Planes())
            *pOut = sample(pLine, x);
    }
}

void FillPlaneFromPalette(const ClBitmap& Bitmap, int nChannel, ClImage& Out, int nPlane) {
    const TpByteTable aTable = PaletteTable(Bitmap, nChannel);
    const int nBits = Bitmap.Header()->biBitCount;
    FillPlane(Bitmap, Out, nPlane, [&](const unsigned char* pLine, long x) {
        return aTable[StIndexPlace(x, nBits).Read(pLine)];
    });
}

void FillPlaneFromBytes(const ClBitmap& Bitmap, int nChannel, ClImage& Out, int nPlane) {
    const int nBytes = Bitmap.Header()->biBitCount / 8;
    const int nByte = ByteOf(nChannel);
    FillPlane(Bitmap, Out, nPlane,
              [=](const unsigned char* pLine, long x) { return pLine[x * nBytes + nByte]; });
}

void FillPlaneFromField(const ClBitmap& Bitmap, int nChannel, ClImage& Out, int nPlane) {
    const int nBytes = Bitmap.Header()->biBitCount / 8;
    const StField field = FieldOf(Bitmap, nChannel);
    FillPlane(Bitmap, Out, nPlane, [=](const unsigned char* pLine, long x) {
        return field.Scaled(ClBitmap::LongFromMem(pLine + x * nBytes, nBytes));
    });
}

/// Where image and bitmap have the same lines.
void CopyLines(const ClBitmap& Bitmap, ClImage& Out) {
    if (Out.Data() == nullptr) // no columns
        return;
    const std::size_t nBytes =
        static_cast<std::size_t>(Out.Width()) * static_cast<std::size_t>(Out.Planes());
    for (int y = 0; y < Out.Height(); ++y)
        std::memmove(Out.LineData(y), Bitmap.Line(y), nBytes);
}

/// `Out` as an image of the bitmap's size and resolution.
void ShapeLike(const tagBITMAPINFOHEADER& Header, int nPlanes, ClImage& Out) {
    Out.NewWithType(ClImage::eUInt8, Header.biWidth, Header.biHeight, nPlanes,
                    Header.biXPelsPerMeter, Header.biYPelsPerMeter);
}

void CheckChannel(const tagBITMAPINFOHEADER& Header, int nChannel) {
    const bool bAlphaOfRgb = nChannel == ClBitmap::eAlpha && Header.biBitCount == 24;
    if (nChannel < ClBitmap::eRed || nChannel > ClBitmap::eAlpha || bAlphaOfRgb)
        throw ClExTessarin(QMT_ERROR_PARAM_OUT_OF_RANGE, VEK_HERE);
}

const tagRGBQUAD& RequirePalette(const ClBitmap& Bitmap) {
    if (Bitmap.Palette() == nullptr)
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    return *Bitmap.Palette();
}

} // namespace

// Masks

unsigned int ClBitmap::LongFromMem(const unsigned char* pMem, int nBytes) {
    unsigned int nValue = 0;
    for (int i = 0; i < nBytes; ++i)
        nValue |= static_cast<unsigned int>(pMem[i]) << (8 * i);
    return nValue;
}

void ClBitmap::MaskData(long nMask, unsigned int& nShift, unsigned int& nWidth) const {
    nShift = 0;
    nWidth = 0;
    auto nBits = static_cast<unsigned long>(nMask);
    if (nBits == 0)
        return;
    for (; (nBits & 1) == 0; nBits >>= 1)
        ++nShift;
    for (; nBits != 0; nBits >>= 1)
        nWidth += nBits & 1;
}

void ClBitmap::GetMask(unsigned int nChannel, unsigned int& nShift, unsigned int& nMask,
                       unsigned int& nScaleUp, unsigned int& nScaleDown) const {
    static constexpr unsigned int caNarrow[4] = {0x7C00, 0x03E0, 0x001F, 0x8000};
    static constexpr unsigned int caWide[4] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFF000000};
    const tagBITMAPINFOHEADER& header = RequireHeader();
    if (nChannel > eAlpha)
        throw ClExTessarin(QMT_ERROR_PARAM_OUT_OF_RANGE, VEK_HERE);

    if (header.biCompression == eBitFields && header.biBitCount > 8 && nChannel < eAlpha) {
        const tagRGBQUAD* pMasks = &RequirePalette(*this);
        nMask = LongFromMem(reinterpret_cast<const unsigned char*>(pMasks + nChannel), 4);
    } else {
        nMask = header.biBitCount <= 16 ? caNarrow[nChannel] : caWide[nChannel];
    }
    unsigned int nWidth = 0;
    MaskData(nMask, nShift, nWidth);
    const auto dMax = static_cast<double>((std::uint64_t{1} << nWidth) - 1);
    nScaleUp = nWidth == 0 ? 0 : SaturatedToUInt32(16711680.0 / dMax);
    nScaleDown = SaturatedToUInt32(dMax * 257.00392156862745);
}

// To images

void ClBitmap::GetImage(ClImage& Out) const {
    const tagBITMAPINFOHEADER& header = RequirePlainPixels();
    const int nBits = header.biBitCount;
    if (nBits <= 8 && IsGray(false)) {
        ShapeLike(header, 1, Out);
        if (nBits == 8 && IsIdentity(PaletteTable(*this, eRed)))
            CopyLines(*this, Out);
        else
            FillPlaneFromPalette(*this, eRed, Out, 0);
        return;
    }
    ShapeLike(header, nBits == 32 ? 4 : 3, Out);
    if (nBits == 24 || (nBits == 32 && header.biCompression == ePlain))
        return CopyLines(*this, Out);
    for (int nPlane = 0; nPlane < Out.Planes(); ++nPlane) {
        const int nChannel = nPlane == 3 ? eAlpha : eBlue - nPlane;
        if (nBits <= 8)
            FillPlaneFromPalette(*this, nChannel, Out, nPlane);
        else
            FillPlaneFromField(*this, nChannel, Out, nPlane);
    }
}

void ClBitmap::GetChannel(int nChannel, ClImage& Out) const {
    const tagBITMAPINFOHEADER& header = RequirePlainPixels();
    CheckChannel(header, nChannel);
    ShapeLike(header, 1, Out);
    if (header.biBitCount <= 8)
        FillPlaneFromPalette(*this, nChannel, Out, 0);
    else if (header.biBitCount == 16)
        FillPlaneFromField(*this, nChannel, Out, 0);
    else
        FillPlaneFromBytes(*this, nChannel, Out, 0);
}

void ClBitmap::SplitChannels(ClImage& Red, ClImage& Green, ClImage& Blue) const {
    GetRedChannel(Red);
    GetGreenChannel(Green);
    GetBlueChannel(Blue);
}

// From images

void ClBitmap::CheckSettable(int nChannel, const ClImage& Image) const {
    const tagBITMAPINFOHEADER& header = RequirePlainPixels();
    CheckChannel(header, nChannel);
    if (header.biBitCount <= 8)
        throw ClExTessarin(QMT_ERROR_FORMAT_NOTSUPPORTED, VEK_HERE);
    if (Image.Width() != header.biWidth || Image.Height() != header.biHeight ||
        Image.Planes() != 1 || Image.DataType() != ClImage::eUInt8 || Image.Data() == nullptr)
        throw ClExTessarin(QMT_ERROR_BITMAP_DIMENSION, VEK_HERE);
}

void ClBitmap::WriteChannel(int nChannel, const ClImage& Image) {
    const int nBytes = m_pBI->biBitCount / 8;
    const StField field = FieldOf(*this, nChannel);
    for (int y = 0; y < Image.Height(); ++y) {
        const unsigned char* pIn = Image.LineData(y);
        unsigned char* pPixel = Line(y);
        for (int x = 0; x < Image.Width(); ++x, pPixel += nBytes) {
            if (nBytes == 2)
                LongToMem(pPixel, field.WithScaled(LongFromMem(pPixel, 2), pIn[x]), 2);
            else
                pPixel[ByteOf(nChannel)] = pIn[x];
        }
    }
}

void ClBitmap::SetChannel(int nChannel, const ClImage& Image) {
    CheckSettable(nChannel, Image);
    WriteChannel(nChannel, Image);
}

void ClBitmap::JoinChannels(const ClImage& Red, const ClImage& Green, const ClImage& Blue) {
    if (!m_pBI) {
        ClBitmap created(Red.Width(), Red.Height(), 24, ePlain, Red.PelsX(), Red.PelsY());
        created.JoinChannels(Red, Green, Blue);
        return Swap(created);
    }
    CheckSettable(eRed, Red);
    CheckSettable(eGreen, Green);
    CheckSettable(eBlue, Blue);
    WriteChannel(eRed, Red);
    WriteChannel(eGreen, Green);
    WriteChannel(eBlue, Blue);
}

// Single pixels

namespace {

bool IsReadablePixel(const ClBitmap& Bitmap, long x, long y) {
    const tagBITMAPINFOHEADER* pBI = Bitmap.Header();
    return Bitmap.Line(y) != nullptr && x >= 0 && x < pBI->biWidth && pBI->biBitCount <= 32 &&
           (pBI->biCompression == ClBitmap::ePlain || pBI->biCompression == ClBitmap::eBitFields);
}

unsigned int EntryValue(const ClBitmap& Bitmap, unsigned int nEntry) {
    return ClBitmap::LongFromMem(reinterpret_cast<const unsigned char*>(Bitmap.Palette() + nEntry),
                                 4);
}

unsigned int RepackFields(const ClBitmap& Bitmap, unsigned int nPixel) {
    return FieldOf(Bitmap, ClBitmap::eRed).Shifted(nPixel) << 16 |
           FieldOf(Bitmap, ClBitmap::eGreen).Shifted(nPixel) << 8 |
           FieldOf(Bitmap, ClBitmap::eBlue).Shifted(nPixel);
}

unsigned int WithFields(const ClBitmap& Bitmap, unsigned int nPixel, unsigned int nValue) {
    nPixel = FieldOf(Bitmap, ClBitmap::eRed).WithShifted(nPixel, nValue >> 16);
    nPixel = FieldOf(Bitmap, ClBitmap::eGreen).WithShifted(nPixel, nValue >> 8);
    return FieldOf(Bitmap, ClBitmap::eBlue).WithShifted(nPixel, nValue);
}

void SetIndexByValue(const ClBitmap& Bitmap, unsigned char* pLine, long x, unsigned int nValue) {
    const unsigned int nEntries = ReachableEntries(*Bitmap.Header());
    for (unsigned int i = 0; i < nEntries; ++i)
        if (EntryValue(Bitmap, i) == nValue)
            return StIndexPlace(x, Bitmap.Header()->biBitCount).Write(pLine, i);
}

} // namespace

unsigned int ClBitmap::GetPixel(long x, long y) const {
    if (!IsReadablePixel(*this, x, y))
        return ~0u;
    const int nBits = m_pBI->biBitCount;
    const int nBytes = nBits / 8;
    const unsigned char* pLine = Line(y);
    if (nBits <= 8)
        return EntryValue(*this,
                          EntryOf(StIndexPlace(x, nBits).Read(pLine), ReachableEntries(*m_pBI)));
    if (nBits == 24)
        return LongFromMem(pLine + x * 3, 3);
    return RepackFields(*this, LongFromMem(pLine + x * nBytes, nBytes));
}

void ClBitmap::SetPixel(long x, long y, unsigned int nValue) {
    if (!IsReadablePixel(*this, x, y))
        return;
    const int nBits = m_pBI->biBitCount;
    const int nBytes = nBits / 8;
    unsigned char* pLine = Line(y);
    if (nBits <= 8)
        return SetIndexByValue(*this, pLine, x, nValue);
    unsigned char* pPixel = pLine + x * nBytes;
    if (nBits == 24)
        return LongToMem(pPixel, nValue, 3);
    LongToMem(pPixel, WithFields(*this, LongFromMem(pPixel, nBytes), nValue), nBytes);
}

// Grey

namespace {

/// Marks the entries that pixels name.
std::array<bool, 256> OccurringEntries(const ClBitmap& Bitmap) {
    const tagBITMAPINFOHEADER& header = *Bitmap.Header();
    const unsigned int nEntries = ReachableEntries(header);
    std::array<bool, 256> aOccurs{};
    for (long y = 0; y < header.biHeight; ++y)
        for (long x = 0; x < header.biWidth; ++x)
            aOccurs[EntryOf(StIndexPlace(x, header.biBitCount).Read(Bitmap.Line(y)), nEntries)] =
                true;
    return aOccurs;
}

std::array<bool, 256> AllEntries() {
    std::array<bool, 256> aAll;
    aAll.fill(true);
    return aAll;
}

bool IsPaletteGray(const ClBitmap& Bitmap, const std::array<bool, 256>& aUsed) {
    const tagRGBQUAD* pPalette = &RequirePalette(Bitmap);
    const unsigned int nEntries = ReachableEntries(*Bitmap.Header());
    for (unsigned int i = 0; i < nEntries; ++i) {
        const tagRGBQUAD& entry = pPalette[i];
        if (aUsed[i] && (entry.rgbBlue != entry.rgbGreen || entry.rgbBlue != entry.rgbRed))
            return false;
    }
    return true;
}

template <class IsGrayPixel>
bool AllPixels(const ClBitmap& Bitmap, IsGrayPixel isGray) {
    const tagBITMAPINFOHEADER& header = *Bitmap.Header();
    const int nBytes = header.biBitCount / 8;
    for (long y = 0; y < header.biHeight; ++y)
        for (long x = 0; x < header.biWidth; ++x)
            if (!isGray(Bitmap.Line(y) + x * nBytes))
                return false;
    return true;
}

bool AreFieldsGray(const ClBitmap& Bitmap) {
    const int nBytes = Bitmap.Header()->biBitCount / 8;
    const StField red = FieldOf(Bitmap, ClBitmap::eRed);
    const StField green = FieldOf(Bitmap, ClBitmap::eGreen);
    const StField blue = FieldOf(Bitmap, ClBitmap::eBlue);
    return AllPixels(Bitmap, [=](const unsigned char* p) {
        const unsigned int nPixel = ClBitmap::LongFromMem(p, nBytes);
        const unsigned char nBlue = blue.Scaled(nPixel);
        return nBlue == green.Scaled(nPixel) && nBlue == red.Scaled(nPixel);
    });
}

} // namespace

bool ClBitmap::IsGray(bool bCheckPixels) const {
    const tagBITMAPINFOHEADER& header = RequireHeader();
    if (header.biHeight == 0)
        return true;
    if (header.biBitCount <= 8 && !bCheckPixels)
        return IsPaletteGray(*this, AllEntries());
    RequirePlainPixels();
    if (header.biBitCount <= 8)
        return IsPaletteGray(*this, OccurringEntries(*this));
    if (header.biBitCount == 24)
        return AllPixels(*this,
                         [](const unsigned char* p) { return p[0] == p[1] && p[0] == p[2]; });
    return AreFieldsGray(*this);
}
