#include "calls/BitmapRules.h"

#include <TessarinCalibrateSDK.h>

#include <climits>

namespace Calls {

std::int64_t Field(const Bytes& aBlock, std::size_t nOffset, int nBytes) {
    std::uint64_t nValue = 0;
    for (int i = nBytes - 1; i >= 0; --i)
        nValue = nValue << 8 | aBlock[nOffset + static_cast<std::size_t>(i)];
    return static_cast<std::int64_t>(nValue);
}

std::int64_t SignedField(const Bytes& aBlock, std::size_t nOffset) {
    return static_cast<std::int32_t>(Field(aBlock, nOffset, 4));
}

std::int64_t ImpliedSize(const Bytes& aBlock) {
    const std::int64_t nBits = Field(aBlock, 14, 2);
    const std::int64_t nCompression = Field(aBlock, 16, 4);
    const std::int64_t nUsed = Field(aBlock, 32, 4);
    const std::int64_t nLineBits = nBits * SignedField(aBlock, 4) + 7;
    const std::int64_t nStride = ((nLineBits >> 3) + 3) & ~std::int64_t{3};
    const auto Overflows = [](std::int64_t n) { return n < INT_MIN || n > INT_MAX; };
    if (Overflows(nLineBits) || Overflows(nStride))
        return -1;
    const std::int64_t nPixels = nStride * SignedField(aBlock, 8);
    const std::int64_t nPalette = nBits <= 8          ? 4 * (nUsed != 0 ? nUsed : 1ll << nBits)
                                  : nCompression == 3 ? 12
                                                      : 4 * nUsed;
    if (Overflows(nPixels) || nPalette > UINT_MAX)
        return -1;
    return 40 + std::int64_t{static_cast<std::uint32_t>(nPixels)} + nPalette;
}

long StatusOfBlock(const Bytes& aBlock, std::size_t nSize) {
    if (nSize < 40)
        return QMT_ERROR_TEMPLATE_SIZE;
    if (aBlock[0] == 'B' && aBlock[1] == 'M')
        return QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER;
    if (Field(aBlock, 0, 4) != 40)
        return QMT_ERROR_BITMAP_HEADERSIZE;
    if (Field(aBlock, 12, 2) != 1)
        return QMT_ERROR_BITMAP_PLANE;
    if (Field(aBlock, 16, 4) > 3)
        return QMT_ERROR_BITMAP_COMPRESSION;
    const std::int64_t nBits = Field(aBlock, 14, 2);
    if (nBits != 1 && nBits != 4 && nBits != 8 && nBits != 16 && nBits != 24 && nBits != 32)
        return QMT_ERROR_BITMAP_BITCOUNT;
    if (ImpliedSize(aBlock) != static_cast<std::int64_t>(nSize))
        return QMT_ERROR_TEMPLATE_SIZE;
    return QMT_SUCCESS;
}

long StatusOfImage(const Bytes& aBlock, std::size_t nSize) {
    if (const long nStatus = StatusOfBlock(aBlock, nSize))
        return nStatus;
    const std::int64_t nBits = Field(aBlock, 14, 2);
    if (nBits != 8 && nBits != 24 && nBits != 32)
        return QMT_ERROR_BITMAP_BITCOUNT;
    if (Field(aBlock, 16, 4) != 0 || nBits != 8)
        return QMT_ERROR_BITMAP_PLANE;
    if (SignedField(aBlock, 4) < 1 || SignedField(aBlock, 8) < 1)
        return QMT_ERROR_INTERNAL;
    return QMT_SUCCESS;
}

long StatusOfRawImage(const Bytes& aBlock, std::size_t nSize) {
    const long nStatus = StatusOfImage(aBlock, nSize);
    if (nStatus != QMT_ERROR_BITMAP_PLANE || StatusOfBlock(aBlock, nSize) != 0)
        return nStatus;
    return Field(aBlock, 16, 4) != 0 ? QMT_SUCCESS : QMT_ERROR_INTERNAL;
}

} // namespace Calls
