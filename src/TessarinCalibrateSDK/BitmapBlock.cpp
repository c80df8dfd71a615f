#include "TessarinCalibrateSDK/BitmapBlock.h"

#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <climits>

namespace BitmapBlock {

namespace {

bool FitsInt(std::int64_t n) {
    return n >= INT_MIN && n <= INT_MAX;
}

/// Bytes of the palette or of the masks, in 64 bits.
std::int64_t PaletteBytes(const tagBITMAPINFOHEADER& Header) {
    const std::int64_t nUsed = std::int64_t{Header.biClrUsed} * 4;
    if (Header.biBitCount <= 8)
        return Header.biClrUsed != 0 ? nUsed : std::int64_t{4} << Header.biBitCount;
    return Header.biCompression == ClBitmap::eBitFields ? 12 : nUsed;
}

} // namespace

std::uint64_t SizeByRule(const tagBITMAPINFOHEADER& Header) {
    const std::int64_t nBits = std::int64_t{Header.biBitCount} * Header.biWidth + 7;
    const std::int64_t nStride = ((nBits >> 3) + 3) & ~std::int64_t{3};
    if (!FitsInt(nBits) || !FitsInt(nStride))
        return 0;
    const std::int64_t nPixels = nStride * Header.biHeight;
    const std::int64_t nPalette = PaletteBytes(Header);
    if (!FitsInt(nPixels) || nPalette > UINT32_MAX)
        return 0;
    // The terms are added as unsigned numbers of 32 bits: a negative one asks for nearly 4 GiB.
    return std::uint64_t{Header.biSize} + static_cast<std::uint32_t>(nPixels) +
           static_cast<std::uint32_t>(nPalette);
}

long Copy(const unsigned char* pBlock, unsigned long nSize, ClBitmap& Bitmap) {
    if (nSize < sizeof(tagBITMAPINFOHEADER))
        return QMT_ERROR_TEMPLATE_SIZE;
    const tagBITMAPINFOHEADER* pHeader = ClBitmap::MemToBitmapInfoHeader(pBlock);
    if (SizeByRule(*pHeader) != nSize)
        return QMT_ERROR_TEMPLATE_SIZE;
    Bitmap.CopyFrom(pBlock, true);
    return QMT_SUCCESS;
}

void Attach(const ClBitmap& Bitmap, ClImage& Image) {
    const int nBits = Bitmap.Header()->biBitCount;
    if (nBits != 8 && nBits != 24 && nBits != 32)
        throw ClException("bitmap bit depth not supported\n", QMT_ERROR_BITMAP_BITCOUNT, true,
                          VEK_HERE);
    Image.Attach(Bitmap);
    if (Image.Planes() == 1)
        CheckArea(Image);
}

void CheckArea(const ClImage& Image) {
    if (Image.Planes() > 0 && (Image.Width() < 1 || Image.Height() < 1))
        throw ClException("Image area must be positive", QMT_ERROR_INTERNAL, true, VEK_HERE);
}

} // namespace BitmapBlock
