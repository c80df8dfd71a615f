// Images of a bitmap's channels, and back.

#include "Tools/Allocate.h"
#include "Tools/BitmapPixelForms.h"
#include "Tools/FpImage.h"

#include <array>
#include <cstring>

using namespace BitmapPixels;

namespace {

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

} // namespace

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
