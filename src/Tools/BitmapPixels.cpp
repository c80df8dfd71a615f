// Single pixels of a bitmap.

#include "Tools/BitmapPixelForms.h"

using namespace BitmapPixels;

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
