#include "TessarinCalibrateSDK/BitmapBlock.h"

#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <climits>
#include <cstring>

namespace BitmapBlock {

namespace {

bool FitsInt(std::int64_t n) {
    return n >= INT_MIN && n <= INT_MAX;
}

/// The header of a caller's block. Each byte is read once, whatever the compiler thinks of it: the
/// block may be memory that another process writes to.
tagBITMAPINFOHEADER ReadHeader(const volatile unsigned char* pBlock) {
    unsigned char acBytes[sizeof(tagBITMAPINFOHEADER)];
    for (unsigned char& rByte : acBytes)
        rByte = *pBlock++;
    tagBITMAPINFOHEADER Header;
    std::memcpy(&Header, acBytes, sizeof Header);
    return Header;
}

/// The header tests of a block, on a copy of its header.
void CheckHeader(const tagBITMAPINFOHEADER& Header) {
    ClBitmap::MemToBitmapInfoHeader(reinterpret_cast<const unsigned char*>(&Header));
}

} // namespace

std::uint64_t SizeByRule(const tagBITMAPINFOHEADER& Header) {
    const std::int64_t nLineBits = std::int64_t{Header.biBitCount} * Header.biWidth + 7;
    const std::int64_t nPixels = ClBitmap::PixelBytes(Header);
    const std::int64_t nPalette = ClBitmap::PaletteBytes(Header);
    if (!FitsInt(nLineBits) || !FitsInt(nPixels) || nPalette > UINT32_MAX)
        return 0;
    // The terms are added as unsigned numbers of 32 bits: a negative one asks for nearly 4 GiB.
    return std::uint64_t{Header.biSize} + static_cast<std::uint32_t>(nPixels) +
           static_cast<std::uint32_t>(nPalette);
}

long Copy(const unsigned char* pBlock, unsigned long nSize, ClBitmap& rBitmap) {
    if (nSize < sizeof(tagBITMAPINFOHEADER))
        return QMT_ERROR_TEMPLATE_SIZE;
    const tagBITMAPINFOHEADER Header = ReadHeader(pBlock);
    CheckHeader(Header);
    if (SizeByRule(Header) != nSize)
        return QMT_ERROR_TEMPLATE_SIZE;
    rBitmap.CopyFrom(Header, pBlock + sizeof Header);
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
