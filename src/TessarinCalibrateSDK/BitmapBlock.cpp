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

namespace {

/// Runs `copy(header)` on the tested header of a block.
template <class CopyTested>
long CopyBlock(const unsigned char* pBlock, unsigned long nSize, CopyTested copy) {
    if (nSize < sizeof(tagBITMAPINFOHEADER))
        return QMT_ERROR_TEMPLATE_SIZE;
    const tagBITMAPINFOHEADER Header = ReadHeader(pBlock);
    CheckHeader(Header);
    if (SizeByRule(Header) != nSize)
        return QMT_ERROR_TEMPLATE_SIZE;
    copy(Header);
    return QMT_SUCCESS;
}

bool IsPlainGrey(const tagBITMAPINFOHEADER& Header) {
    return Header.biCompression == ClBitmap::ePlain && Header.biBitCount == 8 &&
           Header.biWidth > 0 && Header.biHeight > 0;
}

/// The pixels behind a header and its palette, for an image that has the same lines.
void CopyGrey(const tagBITMAPINFOHEADER& Header, const unsigned char* pBehind, ClImage& rImage) {
    rImage.NewWithType(ClImage::eUInt8, Header.biWidth, Header.biHeight, 1, Header.biXPelsPerMeter,
                       Header.biYPelsPerMeter);
    std::memcpy(rImage.Data(), pBehind + ClBitmap::PaletteBytes(Header), rImage.SizeBytes());
}

} // namespace

long Copy(const unsigned char* pBlock, unsigned long nSize, ClBitmap& rBitmap) {
    return CopyBlock(pBlock, nSize, [&](const tagBITMAPINFOHEADER& Header) {
        rBitmap.CopyFrom(Header, pBlock + sizeof Header);
    });
}

long CopyToImage(const unsigned char* pBlock, unsigned long nSize, ClImage& rImage) {
    return CopyBlock(pBlock, nSize, [&](const tagBITMAPINFOHEADER& Header) {
        if (IsPlainGrey(Header))
            return CopyGrey(Header, pBlock + sizeof Header, rImage);
        ClBitmap Bitmap;
        Bitmap.CopyFrom(Header, pBlock + sizeof Header);
        Attach(Bitmap, rImage);
    });
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
