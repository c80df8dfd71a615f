// Masks of bitmaps: where the channels of pixels of 16 and 32 bits stand.

#include "Tools/BitmapPixelForms.h"
#include "Tools/Exception.h"

#include <limits>

namespace {

unsigned int SaturatedToUInt32(double dValue) {
    constexpr double dMost = std::numeric_limits<unsigned int>::max();
    return dValue < dMost ? static_cast<unsigned int>(dValue)
                          : std::numeric_limits<unsigned int>::max();
}

} // namespace

BitmapPixels::StField BitmapPixels::FieldOf(const ClBitmap& Bitmap, int nChannel) {
    StField field;
    Bitmap.GetMask(static_cast<unsigned int>(nChannel), field.m_nShift, field.m_nMask,
                   field.m_nScaleUp, field.m_nScaleDown);
    Bitmap.MaskData(field.m_nMask, field.m_nShift, field.m_nWidth);
    return field;
}

void BitmapPixels::LongToMem(unsigned char* pMem, unsigned int nValue, int nBytes) {
    for (int i = 0; i < nBytes; ++i)
        pMem[i] = static_cast<unsigned char>(nValue >> (8 * i));
}

const tagRGBQUAD& BitmapPixels::RequirePalette(const ClBitmap& Bitmap) {
    if (Bitmap.Palette() == nullptr)
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    return *Bitmap.Palette();
}

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
        const tagRGBQUAD* pMasks = &BitmapPixels::RequirePalette(*this);
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
