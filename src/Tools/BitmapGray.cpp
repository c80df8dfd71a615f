// Whether a bitmap is grey.

#include "Tools/BitmapPixelForms.h"

#include <array>

using namespace BitmapPixels;

namespace {

/// Lines without a pixel are not walked: a header alone may claim two thousand million of them.
long WalkedLines(const tagBITMAPINFOHEADER& header) {
    return header.biWidth > 0 ? header.biHeight : 0;
}

/// Marks the entries that pixels name.
std::array<bool, 256> OccurringEntries(const ClBitmap& Bitmap) {
    const tagBITMAPINFOHEADER& header = *Bitmap.Header();
    const unsigned int nEntries = ReachableEntries(header);
    std::array<bool, 256> aOccurs{};
    for (long y = 0; y < WalkedLines(header); ++y)
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
    for (long y = 0; y < WalkedLines(header); ++y)
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
