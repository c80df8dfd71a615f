#include "Tools/Bitmap.h"

#include "Tools/Allocate.h"

#include <boost/checked_delete.hpp>

#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>

namespace {

constexpr std::int64_t cnHeaderBytes = sizeof(tagBITMAPINFOHEADER);
constexpr std::uint64_t cnFileHeaderBytes = 14;

std::int64_t StrideOf(std::int64_t nBits, std::int64_t nWidth) {
    return (((nBits * nWidth + 7) >> 3) + 3) & ~std::int64_t{3};
}

/// A stride of at most 45 bits by a height of 32, stopped at the ends of 64 bits.
std::int64_t LinesOf(std::int64_t nStride, std::int64_t nHeight) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (nStride == 0 || nHeight == 0)
        return 0;
    const std::int64_t nMost = Limits::max() / (nStride < 0 ? -nStride : nStride);
    if (nHeight >= -nMost && nHeight <= nMost)
        return nStride * nHeight;
    return (nStride < 0) == (nHeight < 0) ? Limits::max() : Limits::min();
}

/// Palette or masks of a block that is made here: what the depth can name.
std::int64_t PaletteRoom(std::int64_t nBits, std::uint32_t nCompression) {
    if (nBits <= 8)
        return std::int64_t{4} << nBits;
    return nCompression == ClBitmap::eBitFields ? 12 : 0;
}

std::uint64_t AtLeastNone(std::int64_t nBytes) {
    return nBytes > 0 ? static_cast<std::uint64_t>(nBytes) : 0;
}

void CopyBytes(void* pTo, const void* pFrom, std::uint64_t nBytes) {
    if (nBytes > 0)
        std::memmove(pTo, pFrom, nBytes);
}

/// Parts that are both there, or both not.
bool SameBytes(const void* pOne, const void* pOther, std::uint64_t nBytes) {
    if (nBytes == 0)
        return true;
    if (pOne == nullptr || pOther == nullptr)
        return pOne == pOther;
    return std::memcmp(pOne, pOther, nBytes) == 0;
}

template <class T, class Deleter>
boost::shared_ptr<T> Hold(T* p, Deleter deleter) {
    try {
        return boost::shared_ptr<T>(p, deleter);
    } catch (const std::bad_alloc&) { // the deleter has been called
        Vek::ThrowBadAlloc();
    }
}

bool BeginsWithFileHeader(const unsigned char* pMem) {
    return pMem[0] == 'B' && pMem[1] == 'M';
}

void CheckCompression(std::int64_t nCompression) {
    if (nCompression < ClBitmap::ePlain || nCompression > ClBitmap::eBitFields)
        throw ClException("ClBitmap::Attach, Not Supported FOCC.", QMT_ERROR_BITMAP_COMPRESSION,
                          true, VEK_HERE);
}

void CheckBitCount(long nBits) {
    if (!ClBitmap::IsValidBitCount(nBits))
        throw ClException("The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!",
                          QMT_ERROR_BITMAP_BITCOUNT, true, VEK_HERE);
}

void CheckSide(long nSide) {
    if (nSide < INT_MIN || nSide > INT_MAX)
        throw ClExTessarin(QMT_ERROR_PARAM_OUT_OF_RANGE, VEK_HERE);
}

/// The bytes of a caller's block that no part has claimed yet; may be unknown.
class ClRest {
public:
    explicit ClRest(unsigned long nSize) : m_bKnown(nSize != 0), m_nBytes(nSize) {}

    void Skip(std::uint64_t nBytes) {
        if (m_bKnown)
            m_nBytes -= nBytes;
    }
    bool IsBelow(std::uint64_t nBytes) const { return m_bKnown && m_nBytes < nBytes; }

    /// Whether a part of `nBytes` is there. It need not be where the block has ended exactly; in
    /// a block that goes on it has to fit.
    bool Claim(std::int64_t nBytes) {
        if (!m_bKnown || nBytes == 0)
            return true;
        if (m_nBytes == 0)
            return false;
        if (nBytes < 0 || IsBelow(static_cast<std::uint64_t>(nBytes)))
            throw ClExTessarin(QMT_ERROR_TEMPLATE_SIZE, VEK_HERE);
        Skip(static_cast<std::uint64_t>(nBytes));
        return true;
    }

private:
    bool m_bKnown;
    std::uint64_t m_nBytes;
};

/// Skips a file header: returns how many bytes it has.
std::size_t SkipFileHeader(const unsigned char* pBlock, ClRest& rest) {
    if (rest.IsBelow(2))
        throw ClExTessarin(QMT_ERROR_TEMPLATE_SIZE, VEK_HERE);
    if (!BeginsWithFileHeader(pBlock))
        return 0;
    if (rest.IsBelow(cnFileHeaderBytes + 1))
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    rest.Skip(cnFileHeaderBytes);
    return cnFileHeaderBytes;
}

} // namespace

// Header checks

bool ClBitmap::IsValidBitCount(long nBits) {
    return nBits == 1 || nBits == 4 || nBits == 8 || nBits == 16 || nBits == 24 || nBits == 32;
}

const tagBITMAPINFOHEADER* ClBitmap::MemToBitmapInfoHeader(const unsigned char* pMem) {
    if (pMem == nullptr)
        throw ClException("ClBitmap::Attach, Pointer is NULL.", QMT_ERROR_BITMAP_PTR, true,
                          VEK_HERE);
    if (BeginsWithFileHeader(pMem))
        throw ClException("ClBitmap::Attach, Bitmapfileheader found Bitmapinfoheader expected.",
                          QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER, true, VEK_HERE);
    const auto* pBI = reinterpret_cast<const tagBITMAPINFOHEADER*>(pMem);
    CheckHeader(*pBI);
    return pBI;
}

void ClBitmap::CheckHeader(const tagBITMAPINFOHEADER& Header) {
    if (Header.biSize != cnHeaderBytes)
        throw ClException("ClBitmap::Attach, Bitmap Header size is not known.",
                          QMT_ERROR_BITMAP_HEADERSIZE, true, VEK_HERE);
    if (Header.biPlanes != 1)
        throw ClException("ClBitmap::Attach, pBI->biPlanes != 1.", QMT_ERROR_BITMAP_PLANE, true,
                          VEK_HERE);
    CheckCompression(Header.biCompression);
    CheckBitCount(Header.biBitCount);
}

ClBitmap::StParts ClBitmap::Locate(const unsigned char* pBlock, unsigned long nSize) {
    if (pBlock == nullptr)
        throw ClException("No Bitmap to Attach", QMT_ERROR_BITMAP_PTR, true, VEK_HERE);
    ClRest rest(nSize);
    StParts parts;
    parts.m_nHeader = SkipFileHeader(pBlock, rest);
    if (rest.IsBelow(cnHeaderBytes))
        throw ClExTessarin(QMT_ERROR_TEMPLATE_SIZE, VEK_HERE);
    rest.Skip(cnHeaderBytes);
    const tagBITMAPINFOHEADER& header = *MemToBitmapInfoHeader(pBlock + parts.m_nHeader);
    parts.m_bPalette = rest.Claim(PaletteBytes(header));
    parts.m_bPixels = rest.Claim(PixelBytes(header)) && parts.m_bPalette;
    return parts;
}

const tagRGBQUAD* ClBitmap::CheckPtr(const unsigned char* pBlock, unsigned long nSize) {
    const StParts parts = Locate(pBlock, nSize);
    const auto* pBI = reinterpret_cast<const tagBITMAPINFOHEADER*>(pBlock + parts.m_nHeader);
    if (!parts.m_bPalette || PalSize(*pBI) == 0)
        return nullptr;
    return reinterpret_cast<const tagRGBQUAD*>(pBI + 1);
}

// Sizes

std::int64_t ClBitmap::StrideBytes(const tagBITMAPINFOHEADER& Header) {
    return StrideOf(Header.biBitCount, Header.biWidth);
}

std::int64_t ClBitmap::PalSize(const tagBITMAPINFOHEADER& Header) {
    if (Header.biBitCount <= 8)
        return Header.biClrUsed != 0 ? Header.biClrUsed : std::int64_t{1} << Header.biBitCount;
    return Header.biCompression == eBitFields ? 3 : Header.biClrUsed;
}

std::int64_t ClBitmap::PaletteBytes(const tagBITMAPINFOHEADER& Header) {
    return 4 * PalSize(Header);
}

std::int64_t ClBitmap::PixelBytes(const tagBITMAPINFOHEADER& Header) {
    return LinesOf(StrideBytes(Header), Header.biHeight);
}

std::uint64_t ClBitmap::BlockBytes(const tagBITMAPINFOHEADER& Header) {
    return static_cast<std::uint64_t>(cnHeaderBytes) + AtLeastNone(PaletteBytes(Header)) +
           AtLeastNone(PixelBytes(Header));
}

unsigned char* ClBitmap::Line(long y) const {
    if (!m_pBI || !m_pPixel || y < 0 || y >= m_pBI->biHeight)
        return nullptr;
    return m_pPixel.get() + y * StrideBytes(*m_pBI);
}

// Construction

ClBitmap::ClBitmap(long nWidth, long nHeight, long nBits, long nCompression) {
    Create(nWidth, nHeight, nBits, nCompression);
}

ClBitmap::ClBitmap(long nWidth, long nHeight, long nBits, long nCompression, long nPelsX,
                   long nPelsY) {
    CheckSide(nPelsX);
    CheckSide(nPelsY);
    Create(nWidth, nHeight, nBits, nCompression);
    m_pBI->biXPelsPerMeter = static_cast<std::int32_t>(nPelsX);
    m_pBI->biYPelsPerMeter = static_cast<std::int32_t>(nPelsY);
}

ClBitmap::ClBitmap(unsigned char* pBlock, bool bCopy) {
    if (bCopy)
        CopyFrom(pBlock, true);
    else
        Attach(pBlock, 0);
}

ClBitmap::ClBitmap(const ClBitmap& Bitmap, bool bCopy) {
    if (bCopy)
        CopyFrom(Bitmap, true);
    else
        Attach(Bitmap);
}

ClBitmap::~ClBitmap() = default;

void ClBitmap::Clear() noexcept {
    m_pPixel.reset();
    m_pPalette = nullptr;
    m_pBI.reset();
}

void ClBitmap::Swap(ClBitmap& Other) noexcept {
    m_pBI.swap(Other.m_pBI);
    std::swap(m_pPalette, Other.m_pPalette);
    m_pPixel.swap(Other.m_pPixel);
}

void ClBitmap::Create(long nWidth, long nHeight, long nBits, long nCompression) {
    CheckSide(nWidth);
    CheckSide(nHeight);
    CheckCompression(nCompression);
    CheckBitCount(nBits);
    const int nColumns = static_cast<int>(nWidth);
    const int nLines = static_cast<int>(nHeight);
    const unsigned int nCode = static_cast<unsigned int>(nCompression);
    const auto pBlock = BitmapAlloc(nColumns, nLines, static_cast<int>(nBits), nCode, true);
    FillBI(pBlock.get(), nColumns, nLines, static_cast<int>(nBits), nCode);
    ClBitmap created;
    created.TakeBlock(pBlock);
    created.ResetPixel();
    Swap(created);
}

void ClBitmap::Create(const ClBitmap& Shape) {
    const tagBITMAPINFOHEADER shape = Shape.RequireHeader();
    Create(shape.biWidth, shape.biHeight, shape.biBitCount, shape.biCompression);
    m_pBI->biXPelsPerMeter = shape.biXPelsPerMeter;
    m_pBI->biYPelsPerMeter = shape.biYPelsPerMeter;
}

boost::shared_ptr<tagBITMAPINFOHEADER> ClBitmap::NewBlock(std::uint64_t nBytes) {
    constexpr std::uint64_t nUnit = sizeof(tagBITMAPINFOHEADER);
    return Hold(Vek::NewArray<tagBITMAPINFOHEADER>((nBytes + nUnit - 1) / nUnit),
                boost::checked_array_deleter<tagBITMAPINFOHEADER>());
}

boost::shared_ptr<tagBITMAPINFOHEADER> ClBitmap::BitmapAlloc(int nWidth, int nHeight, int nBits,
                                                             unsigned int nCompression,
                                                             bool bWithPixels) {
    const std::int64_t nPixels = bWithPixels ? LinesOf(StrideOf(nBits, nWidth), nHeight) : 0;
    if (nPixels > INT_MAX) // no image could take them
        Vek::ThrowBadAlloc();
    const std::uint64_t nSize =
        AtLeastNone(cnHeaderBytes + PaletteRoom(nBits, nCompression)) + AtLeastNone(nPixels);
    auto pBlock = NewBlock(nSize);
    std::memset(static_cast<void*>(pBlock.get()), 0, nSize);
    return pBlock;
}

namespace {

void FillGreyPalette(tagRGBQUAD* pPalette, int nEntries) {
    const int nStep = 255 / (nEntries - 1);
    for (int i = 0; i < nEntries; ++i) {
        const unsigned char nGrey = static_cast<unsigned char>(i * nStep);
        pPalette[i] = {nGrey, nGrey, nGrey, 0};
    }
}

/// Fields of 5 bits, or of 8: blue, green, red.
void FillMasks(tagRGBQUAD* pMasks, int nBits) {
    const std::uint32_t caNarrow[3] = {31, 992, 31744};
    const std::uint32_t caWide[3] = {255, 65280, 16711680};
    std::memcpy(pMasks, nBits <= 16 ? caNarrow : caWide, sizeof caWide);
}

} // namespace

void ClBitmap::FillBI(tagBITMAPINFOHEADER* pBI, int nWidth, int nHeight, int nBits,
                      unsigned int nCompression) {
    *pBI = {};
    pBI->biSize = sizeof(tagBITMAPINFOHEADER);
    pBI->biWidth = nWidth;
    pBI->biHeight = nHeight;
    pBI->biPlanes = 1;
    pBI->biBitCount = static_cast<std::uint16_t>(nBits);
    pBI->biCompression = nCompression;
    auto* pBehind = reinterpret_cast<tagRGBQUAD*>(pBI + 1);
    if (nBits <= 8)
        FillGreyPalette(pBehind, 1 << nBits);
    else if (nCompression == eBitFields)
        FillMasks(pBehind, nBits);
}

/// For a block that the caller of this function has made.
void ClBitmap::TakeBlock(const boost::shared_ptr<tagBITMAPINFOHEADER>& pBlock) {
    m_pPalette = CheckPtr(reinterpret_cast<const unsigned char*>(pBlock.get()), 0);
    m_pBI = pBlock;
}

void ClBitmap::ResetPixel() {
    const tagBITMAPINFOHEADER& header = RequireHeader();
    unsigned char* pBlock = reinterpret_cast<unsigned char*>(m_pBI.get());
    m_pPixel = Hold(pBlock + cnHeaderBytes + PaletteBytes(header), BIH_deleter(m_pBI));
}

// Attaching

void ClBitmap::Attach(unsigned char* pBlock, unsigned long nSize) {
    Clear();
    const StParts parts = Locate(pBlock, nSize);
    auto* pBI = reinterpret_cast<tagBITMAPINFOHEADER*>(pBlock + parts.m_nHeader);
    ClBitmap attached;
    attached.m_pBI = Hold(pBI, void_deleter());
    if (parts.m_bPalette && PalSize(*pBI) > 0)
        attached.m_pPalette = reinterpret_cast<const tagRGBQUAD*>(pBI + 1);
    if (parts.m_bPixels)
        attached.ResetPixel();
    Swap(attached);
}

void ClBitmap::Attach(const ClBitmap& Bitmap) {
    m_pBI = Bitmap.m_pBI;
    m_pPalette = Bitmap.m_pPalette;
    m_pPixel = Bitmap.m_pPixel;
}

// Copying

/// For an empty bitmap.
void ClBitmap::TakeCopy(const ClBitmap& Source, bool bCopyPixels) {
    const tagBITMAPINFOHEADER header = *Source.m_pBI;
    const bool bPixels = bCopyPixels && Source.m_pPixel;
    // A palette that a header claims and its block lacks takes no room.
    const std::int64_t nPalette = Source.m_pPalette || bPixels ? PaletteBytes(header) : 0;
    const std::int64_t nRoom =
        std::max(nPalette, PaletteRoom(header.biBitCount, header.biCompression));
    const std::uint64_t nPixels = bPixels ? AtLeastNone(PixelBytes(header)) : 0;

    m_pBI = NewBlock(AtLeastNone(cnHeaderBytes + nRoom) + nPixels);
    *m_pBI = header;
    if (Source.m_pPalette != nullptr) {
        CopyBytes(m_pBI.get() + 1, Source.m_pPalette, AtLeastNone(PaletteBytes(header)));
        m_pPalette = CheckPtr(reinterpret_cast<const unsigned char*>(m_pBI.get()), 0);
    }
    if (!bPixels) {
        m_pPixel = Source.m_pPixel;
        return;
    }
    ResetPixel();
    CopyBytes(m_pPixel.get(), Source.m_pPixel.get(), nPixels);
}

void ClBitmap::CopyFrom(const ClBitmap& Bitmap, bool bCopyPixels) {
    ClBitmap copy;
    if (Bitmap.m_pBI)
        copy.TakeCopy(Bitmap, bCopyPixels);
    Swap(copy);
}

void ClBitmap::CopyFrom(const unsigned char* pBlock, bool bCopyPixels) {
    MemToBitmapInfoHeader(pBlock);
    ClBitmap source;
    source.Attach(const_cast<unsigned char*>(pBlock), 0);
    CopyFrom(source, bCopyPixels);
}

void ClBitmap::CopyFrom(const tagBITMAPINFOHEADER& Header, const unsigned char* pBehind) {
    ClBitmap source;
    source.m_pBI = Hold(const_cast<tagBITMAPINFOHEADER*>(&Header), void_deleter());
    if (PalSize(Header) > 0)
        source.m_pPalette = reinterpret_cast<const tagRGBQUAD*>(pBehind);
    source.m_pPixel =
        Hold(const_cast<unsigned char*>(pBehind) + PaletteBytes(Header), void_deleter());
    CopyFrom(source, true);
}

ClBitmap& ClBitmap::operator=(const ClBitmap& Bitmap) {
    if (this != &Bitmap)
        CopyFrom(Bitmap, true);
    return *this;
}

void ClBitmap::CopyTo(unsigned char* pBlock) const {
    const tagBITMAPINFOHEADER& header = RequireParts();
    if (pBlock == nullptr)
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    const std::uint64_t nPalette = AtLeastNone(PaletteBytes(header));
    const std::uint64_t nPixels = AtLeastNone(PixelBytes(header));
    std::memmove(pBlock, m_pBI.get(), cnHeaderBytes);
    CopyBytes(pBlock + cnHeaderBytes, m_pPalette, nPalette);
    CopyBytes(pBlock + cnHeaderBytes + nPalette, m_pPixel.get(), nPixels);
}

ClBitmap& ClBitmap::operator=(unsigned char nValue) {
    const std::uint64_t nPixels = AtLeastNone(PixelBytes(RequireParts()));
    if (nPixels > 0)
        std::memset(m_pPixel.get(), nValue, nPixels);
    return *this;
}

// Comparing

bool ClBitmap::IsEqualSize(const ClBitmap& Other) const {
    const tagBITMAPINFOHEADER& one = RequireHeader();
    const tagBITMAPINFOHEADER& other = Other.RequireHeader();
    return one.biWidth == other.biWidth && one.biHeight == other.biHeight;
}

bool ClBitmap::operator==(const ClBitmap& Other) const {
    if (!m_pBI || !Other.m_pBI)
        return !m_pBI && !Other.m_pBI;
    return SameBytes(m_pBI.get(), Other.m_pBI.get(), cnHeaderBytes) &&
           SameBytes(m_pPalette, Other.m_pPalette, AtLeastNone(PaletteBytes(*m_pBI))) &&
           SameBytes(m_pPixel.get(), Other.m_pPixel.get(), AtLeastNone(PixelBytes(*m_pBI)));
}

// What an operation needs

const tagBITMAPINFOHEADER& ClBitmap::RequireHeader() const {
    if (!m_pBI)
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    return *m_pBI;
}

const tagBITMAPINFOHEADER& ClBitmap::RequireParts() const {
    const tagBITMAPINFOHEADER& header = RequireHeader();
    if ((m_pPalette == nullptr && PalSize(header) > 0) || (!m_pPixel && PixelBytes(header) > 0))
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    return header;
}

const tagBITMAPINFOHEADER& ClBitmap::RequirePlainPixels() const {
    const tagBITMAPINFOHEADER& header = RequireParts();
    if (header.biCompression != ePlain && header.biCompression != eBitFields)
        throw ClExTessarin(QMT_ERROR_BITMAP_COMPRESSION, VEK_HERE);
    return header;
}
