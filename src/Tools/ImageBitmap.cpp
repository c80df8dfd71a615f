// The ways between images and bitmaps, in a file of their own: neither class needs the other to
// be what it is. An 8-bit image and a plain bitmap of 8, 24 or 32 bits have the same lines, so
// that each attaches to the other's pixels; the buffer lives as long as its last holder.

#include "Tools/Allocate.h"
#include "Tools/Bitmap.h"
#include "Tools/FpImage.h"

#include <climits>
#include <cstring>

namespace {

int PlanesOfDepth(int nBits) {
    switch (nBits) {
    case 8:
        return 1;
    case 24:
        return 3;
    case 32:
        return 4;
    default:
        throw ClException("bitmap bit depth not supported\n", QMT_ERROR_BITMAP_BITCOUNT, true,
                          VEK_HERE);
    }
}

/// What a bitmap can show.
void CheckShowable(const ClImage& Image) {
    const int nPlanes = Image.Planes();
    if (nPlanes != 1 && nPlanes != 3 && nPlanes != 4)
        throw ClException("Only grey scale, RGB and RGBA images supported",
                          QMT_ERROR_FORMAT_NOTSUPPORTED, true, VEK_HERE);
    if (Image.DataType() != ClImage::eUInt8)
        throw ClException("Only unsigned 8 bit images supported", QMT_ERROR_FORMAT_NOTSUPPORTED,
                          true, VEK_HERE);
}

} // namespace

// From bitmap to image

bool ClImage::Attach(const ClBitmap& Bitmap) {
    Delete();
    const tagBITMAPINFOHEADER& header = Bitmap.RequireHeader();
    if (header.biCompression != ClBitmap::ePlain)
        return false;
    const int nPlanes = PlanesOfDepth(header.biBitCount);
    Bitmap.RequireParts();
    const std::int64_t nBytes = ClBitmap::PixelBytes(header);
    if (nBytes > INT_MAX)
        throw ClExTessarin(QMT_ERROR_BITMAP_DIMENSION, VEK_HERE);

    m_nDataType = eUInt8;
    m_nWidth = header.biWidth;
    m_nHeight = header.biHeight;
    m_nPlanes = nPlanes;
    m_nPelsX = header.biXPelsPerMeter;
    m_nPelsY = header.biYPelsPerMeter;
    m_pData = Bitmap.m_pPixel;
    m_nBufferSize = nBytes > 0 ? static_cast<std::size_t>(nBytes) : 0;
    ContentFromPlanes(nPlanes);
    BlackWhiteFromType(eUInt8);
    return true;
}

ClImage& ClImage::operator=(const ClBitmap& Bitmap) {
    ClImage attached;
    attached.Attach(Bitmap);
    return *this = attached;
}

// From image to bitmap

ClBitmap::ClBitmap(const ClImage& Image, bool bCopy) {
    CopyFrom(Image, bCopy);
}

void ClBitmap::FillBIFromImage(tagBITMAPINFOHEADER* pBI, const ClImage& Image) {
    FillBI(pBI, Image.m_nWidth, Image.m_nHeight, Image.m_nPlanes * 8, ePlain);
    pBI->biXPelsPerMeter = Image.m_nPelsX;
    pBI->biYPelsPerMeter = Image.m_nPelsY;
}

void ClBitmap::Attach(const ClImage& Image) {
    Clear();
    CopyFrom(Image, false);
}

void ClBitmap::CopyFrom(const ClImage& Image, bool bCopyPixels) {
    ClBitmap made;
    if (Image.m_pData && Image.m_nHeight != 0) {
        CheckShowable(Image);
        made.TakeImage(Image, bCopyPixels);
    }
    Swap(made);
}

/// For an empty bitmap and an image with pixels.
void ClBitmap::TakeImage(const ClImage& Image, bool bCopyPixels) {
    const auto pBlock =
        BitmapAlloc(Image.m_nWidth, Image.m_nHeight, Image.m_nPlanes * 8, ePlain, bCopyPixels);
    FillBIFromImage(pBlock.get(), Image);
    TakeBlock(pBlock);
    if (!bCopyPixels) {
        m_pPixel = Image.m_pData;
        return;
    }
    ResetPixel();
    const std::int64_t nBytes = PixelBytes(*pBlock);
    if (nBytes > 0)
        std::memcpy(m_pPixel.get(), Image.m_pData.get(), static_cast<std::size_t>(nBytes));
}

ClBitmap& ClBitmap::operator=(const ClImage& Image) {
    CopyFrom(Image, true);
    return *this;
}
