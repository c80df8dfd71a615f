#pragma once

/// `ClBitmap`, a packed device-independent bitmap: a block of info header, palette or bit-field
/// masks, and pixels. It is the form in which images cross the exported interface. A bitmap
/// attaches to such a block without copying, owns one, or owns a header and shares the pixels of
/// a `ClImage`.
///
/// Sizes are taken from the header and computed in 64 bits, so that no header, however absurd,
/// makes them wrap. A size that comes out negative (of a top-down bitmap, say) stands for no
/// bytes: nothing is copied, filled or compared.
///
/// Where an operation needs a header or pixels and the bitmap has none, it throws -10.

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>

class ClImage;
class ClStream;

#pragma pack(push, 1)
/// The published info header of 40 bytes, little endian. Its alignment is 1: blocks come from
/// anywhere.
struct tagBITMAPINFOHEADER {
    std::uint32_t biSize;
    std::int32_t biWidth;
    std::int32_t biHeight;
    std::uint16_t biPlanes;
    std::uint16_t biBitCount;
    std::uint32_t biCompression;
    std::uint32_t biSizeImage;
    std::int32_t biXPelsPerMeter;
    std::int32_t biYPelsPerMeter;
    std::uint32_t biClrUsed;
    std::uint32_t biClrImportant;
};
#pragma pack(pop)
static_assert(sizeof(tagBITMAPINFOHEADER) == 40 && alignof(tagBITMAPINFOHEADER) == 1,
              "the header is laid over foreign bytes");

/// A palette entry of 32 bits, as it is stored.
struct tagRGBQUAD {
    unsigned char rgbBlue;
    unsigned char rgbGreen;
    unsigned char rgbRed;
    unsigned char rgbReserved;
};
static_assert(sizeof(tagRGBQUAD) == 4 && alignof(tagRGBQUAD) == 1,
              "the palette is laid over foreign bytes");

class ClBitmap {
public:
    /// Values of `biCompression`.
    enum ECompression : std::uint32_t {
        ePlain = 0,
        eRle8 = 1,
        eRle4 = 2,
        eBitFields = 3,
    };

    /// Channels of a pixel. A palette entry and a pixel of 24 or 32 bits store them as blue,
    /// green, red, alpha.
    enum EChannel : int {
        eRed = 0,
        eGreen = 1,
        eBlue = 2,
        eAlpha = 3,
    };

    /// Deleter of foreign blocks: leaves them alone.
    struct void_deleter {
        void operator()(const void*) const noexcept {}
    };

    /// Deleter of pixels that lie in the block of their header: it holds that block, so that
    /// whoever shares the pixels alone keeps the whole block alive.
    class BIH_deleter {
    public:
        explicit BIH_deleter(const boost::shared_ptr<tagBITMAPINFOHEADER>& pBI) : m_pBI(pBI) {}
        void operator()(const void*) noexcept { m_pBI.reset(); }

    private:
        boost::shared_ptr<tagBITMAPINFOHEADER> m_pBI;
    };

    /// The empty bitmap.
    ClBitmap() = default;
    /// See Create(); resolutions are in picture elements per metre.
    ClBitmap(long nWidth, long nHeight, long nBits, long nCompression);
    ClBitmap(long nWidth, long nHeight, long nBits, long nCompression, long nPelsX, long nPelsY);
    /// Copies with `bCopy`, else attaches. The block is taken as big as its header says: the
    /// caller has compared that with its size.
    ClBitmap(unsigned char* pBlock, bool bCopy);
    ClBitmap(const ClImage& Image, bool bCopy);
    ClBitmap(const ClBitmap& Bitmap, bool bCopy);
    ClBitmap(const ClBitmap&) = delete;
    virtual ~ClBitmap();

    /// A bitmap of its own, pixels 0: with a linear grey palette up to 8 bits, with masks for
    /// blue, green and red fields above 8 bits and compression 3. Throws -12 and -31 as
    /// MemToBitmapInfoHeader(), -35 for a side that is no 32-bit number, `ClExBadAlloc` (-102)
    /// where memory is missing or the pixels take more than 2^31 - 1 bytes. A failure changes
    /// nothing.
    void Create(long nWidth, long nHeight, long nBits, long nCompression);
    /// The same size, depth, compression and resolution; palette and pixels as of a new bitmap.
    void Create(const ClBitmap& Shape);

    /// Points at the caller's block, which has to outlive the bitmap and all that share its
    /// pixels. A file header in front is skipped, its `bfOffBits` is not used. An `nSize` of 0
    /// means unknown: the caller vouches for palette and pixels.
    ///
    /// Throws, in this order: "No Bitmap to Attach" (-10) for null; -21 for 1 byte, and -10 for
    /// less than 15 bytes with a file header; -21 below 40 bytes; what MemToBitmapInfoHeader()
    /// throws; -21 for a palette, then for pixels that the block cannot hold. A block that ends
    /// exactly behind its header, or behind its palette, is accepted; what is missing is null.
    /// The bitmap is empty after a failure.
    void Attach(unsigned char* pBlock, unsigned long nSize);
    /// A header of its own over the image's pixels. An image without pixels or lines leaves the
    /// bitmap empty. Throws "Only grey scale, RGB and RGBA images supported" (-33), "Only
    /// unsigned 8 bit images supported" (-33).
    void Attach(const ClImage& Image);
    /// Shares header, palette and pixels. Attaching itself changes nothing.
    void Attach(const ClBitmap& Bitmap);

    /// Copies of header and palette; the pixels are copied with `bCopyPixels`, else shared. An
    /// empty source gives an empty bitmap. A failure changes nothing.
    void CopyFrom(const ClImage& Image, bool bCopyPixels);
    void CopyFrom(const ClBitmap& Bitmap, bool bCopyPixels);
    /// Throws what MemToBitmapInfoHeader() throws, so takes no file header. The caller has
    /// compared the block's size with its header.
    void CopyFrom(const unsigned char* pBlock, bool bCopyPixels);
    /// Copies palette and pixels from where they stand behind a header that the caller has taken
    /// out of the block, tested, and compared with the block's size: where other hands may still
    /// write to the block, what was tested is what holds.
    void CopyFrom(const tagBITMAPINFOHEADER& Header, const unsigned char* pBehind);
    ClBitmap& operator=(const ClImage& Image);
    ClBitmap& operator=(const ClBitmap& Bitmap);

    /// Writes header, palette and pixels, BlockBytes() in all, to the caller's memory. Throws -10
    /// for null.
    void CopyTo(unsigned char* pBlock) const;

    /// Back to the empty state; what others share stays alive for them. All are the same
    /// operation.
    void Clear() noexcept;
    void ClearFree() noexcept { Clear(); }
    void Free() noexcept { Clear(); }
    void Detach() noexcept { Clear(); }
    void DetachThis() noexcept { Clear(); }
    void Swap(ClBitmap& Other) noexcept;

    /// Makes an 8-bit image: one plane for a grey palette; else blue, green, red, and alpha where
    /// a pixel has 32 bits. Palette and masks are applied, lines stay in their order. Throws -31
    /// for run-length encoded pixels, and what NewWithType() throws.
    void GetImage(ClImage& Out) const;
    /// One channel as an 8-bit image of one plane. Throws -35 for a channel outside 0 to 3 and
    /// for the alpha channel of 24 bits, -31 for encoded pixels.
    void GetChannel(int nChannel, ClImage& Out) const;
    void GetRedChannel(ClImage& Out) const { GetChannel(eRed, Out); }
    void GetGreenChannel(ClImage& Out) const { GetChannel(eGreen, Out); }
    void GetBlueChannel(ClImage& Out) const { GetChannel(eBlue, Out); }
    void GetAlphaChannel(ClImage& Out) const { GetChannel(eAlpha, Out); }
    void SplitChannels(ClImage& Red, ClImage& Green, ClImage& Blue) const;

    /// Writes one channel of a bitmap of 16, 24 or 32 bits. Throws -35 and -31 as GetChannel(),
    /// -33 for up to 8 bits, -14 unless the image has the bitmap's size, one plane and 8 bits
    /// unsigned; nothing is written then.
    void SetChannel(int nChannel, const ClImage& Image);
    void SetRedChannel(const ClImage& Image) { SetChannel(eRed, Image); }
    void SetGreenChannel(const ClImage& Image) { SetChannel(eGreen, Image); }
    void SetBlueChannel(const ClImage& Image) { SetChannel(eBlue, Image); }
    void SetAlphaChannel(const ClImage& Image) { SetChannel(eAlpha, Image); }
    /// Sets the three colours; an empty bitmap becomes one of 24 bits and of the size and
    /// resolution of `Red`.
    void JoinChannels(const ClImage& Red, const ClImage& Green, const ClImage& Blue);

    /// The palette entry, or the pixel as 0x00RRGGBB; fields of other widths are shifted to 8
    /// bits, not scaled. All ones outside the bitmap, for encoded pixels and above 32 bits.
    unsigned int GetPixel(long x, long y) const;
    /// The inverse: up to 8 bits it stores the first index whose palette entry equals the value,
    /// and nothing without one; bits of no colour keep their value. Outside it does nothing.
    void SetPixel(long x, long y, unsigned int nValue);

    /// Whether blue, green and red are equal in every pixel; up to 8 bits in every palette entry
    /// that a pixel may name, with `bCheckPixels` only in those that occur.
    bool IsGray(bool bCheckPixels) const;
    /// Width and height.
    bool IsEqualSize(const ClBitmap& Other) const;
    /// Headers, palettes and lines, byte by byte, padding included.
    bool operator==(const ClBitmap& Other) const;
    bool operator!=(const ClBitmap& Other) const { return !(*this == Other); }
    /// Fills the pixels, padding included.
    ClBitmap& operator=(unsigned char nValue);

    /// Reads a bitmap file, or a bare info header with palette and pixels, plain or in 8-bit
    /// run-length encoding. The bitmap kept is plain and bottom-up. The stream's settings are
    /// restored.
    ///
    /// Throws "Fileheader Signature is Missing" (-210), "Unsupported compressions mode" (-31),
    /// tests 3, 4 and 6 of MemToBitmapInfoHeader(), -38 for sizes that fit no block and for a
    /// broken encoding, "Unexpected end of stream" (-201), `ClExBadAlloc` (-102). The bitmap is
    /// empty after a failure.
    void Load(ClStream& Stream);
    void Load(const char* pFileName);
    /// Writes a bitmap file. The header itself is adjusted first: `biSizeImage` is filled in for
    /// plain pixels, `biClrUsed` becomes 0 above 8 bits (such a palette is dropped), the colour
    /// counts are cut to what the depth can name. Throws -33 for compressed pixels of untold
    /// size, "Failed to write into stream" (-202), and what the stream throws.
    void Store(ClStream& Stream) const;
    void Store(const char* pFileName) const;

    /// The header checks, which read 40 bytes. Throw, in this order, -10 for null, -36 for "BM",
    /// -32 for `biSize` not 40, -11 for `biPlanes` not 1, -31 for `biCompression` not 0 to 3, -12
    /// for a depth that IsValidBitCount() refuses.
    static const tagBITMAPINFOHEADER* MemToBitmapInfoHeader(const unsigned char* pMem);
    /// Those of them that look at a header's fields, from `biSize` on.
    static void CheckHeader(const tagBITMAPINFOHEADER& Header);
    /// The checks of Attach(); returns the palette, null where there is none.
    static const tagRGBQUAD* CheckPtr(const unsigned char* pBlock, unsigned long nSize);
    /// 1, 4, 8, 16, 24 and 32.
    static bool IsValidBitCount(long nBits);

    /// Null when the bitmap is empty.
    const tagBITMAPINFOHEADER* Header() const { return m_pBI.get(); }
    /// PalSize() entries, or the three masks; null where there are none.
    const tagRGBQUAD* Palette() const { return m_pPalette; }
    /// First line as stored; null when there are no pixels.
    unsigned char* Pixels() const { return m_pPixel.get(); }
    /// Line `y` as stored, not flipped; null outside the bitmap.
    unsigned char* Line(long y) const;

    /// Bytes from one line to the next: a multiple of 4, negative for a negative width.
    static std::int64_t StrideBytes(const tagBITMAPINFOHEADER& Header);
    /// Entries of the palette, 3 for the masks of bit fields.
    static std::int64_t PalSize(const tagBITMAPINFOHEADER& Header);
    static std::int64_t PaletteBytes(const tagBITMAPINFOHEADER& Header);
    /// Bytes of all lines; what 64 bits cannot hold stops at their ends.
    static std::int64_t PixelBytes(const tagBITMAPINFOHEADER& Header);
    /// Bytes that CopyTo() writes: header, palette and pixels.
    static std::uint64_t BlockBytes(const tagBITMAPINFOHEADER& Header);

    /// The field of a channel: the stored mask of that number for the colours of a bitmap with
    /// compression 3, else the usual one of the depth. A value v of the field is
    /// (v * nScaleUp + 0x8FFF) >> 16 in 8 bits, and the reverse with nScaleDown.
    void GetMask(unsigned int nChannel, unsigned int& nShift, unsigned int& nMask,
                 unsigned int& nScaleUp, unsigned int& nScaleDown) const;
    /// Position of the lowest set bit and number of set bits, 0 and 0 without any.
    void MaskData(long nMask, unsigned int& nShift, unsigned int& nWidth) const;
    /// A little endian number of 2 or 4 bytes.
    static unsigned int LongFromMem(const unsigned char* pMem, int nBytes);

private:
    friend class ClImage;

    /// Where the parts of a block stand; a part behind the block's end is not there.
    struct StParts {
        std::size_t m_nHeader = 0;
        bool m_bPalette = false;
        bool m_bPixels = false;
    };

    static StParts Locate(const unsigned char* pBlock, unsigned long nSize);
    static boost::shared_ptr<tagBITMAPINFOHEADER> NewBlock(std::uint64_t nBytes);
    static boost::shared_ptr<tagBITMAPINFOHEADER>
    BitmapAlloc(int nWidth, int nHeight, int nBits, unsigned int nCompression, bool bWithPixels);
    static void FillBI(tagBITMAPINFOHEADER* pBI, int nWidth, int nHeight, int nBits,
                       unsigned int nCompression);
    static void FillBIFromImage(tagBITMAPINFOHEADER* pBI, const ClImage& Image);

    const tagBITMAPINFOHEADER& RequireHeader() const;
    /// The header, where palette and pixels are there as it says.
    const tagBITMAPINFOHEADER& RequireParts() const;
    /// The same, where the pixels are not encoded.
    const tagBITMAPINFOHEADER& RequirePlainPixels() const;
    void TakeBlock(const boost::shared_ptr<tagBITMAPINFOHEADER>& pBlock);
    void ResetPixel();
    void TakeCopy(const ClBitmap& Source, bool bCopyPixels);
    void TakeImage(const ClImage& Image, bool bCopyPixels);
    void CheckSettable(int nChannel, const ClImage& Image) const;
    void WriteChannel(int nChannel, const ClImage& Image);

    boost::shared_ptr<tagBITMAPINFOHEADER> m_pBI;
    const tagRGBQUAD* m_pPalette = nullptr;
    boost::shared_ptr<unsigned char> m_pPixel;
};
