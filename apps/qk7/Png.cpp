#include "apps/qk7/Png.h"

#include "apps/qk7/BitmapInfo.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>
#include <memory>

namespace qk7 {

namespace {

constexpr std::size_t cnSignature = 8;
constexpr std::size_t cnPixelsAt = 40 + 1024; // in a block

// libpng is C and leaves a failure by longjmp, which must pass over no destructor. Therefore it is
// called only within steps that Guarded() runs and that own nothing; what is owned lives outside,
// and the callbacks, which lie between libpng and the step, neither throw nor own.

struct StPng {
    png_structp m_pPng = nullptr;
    png_infop m_pInfo = nullptr;
    const Bytes* m_pIn = nullptr;
    std::size_t m_nPos = 0;
    Bytes* m_pOut = nullptr;
    std::array<char, 128> m_szWords = {};
};

/// False when libpng gave up; the words are kept. It knows no other way out, and no exception may
/// pass through it. NOLINTBEGIN(cert-err52-cpp)
template <class Step>
bool Guarded(StPng& rPng, Step step) {
    if (setjmp(png_jmpbuf(rPng.m_pPng)) != 0)
        return false;
    step();
    return true;
}
// NOLINTEND(cert-err52-cpp)

extern "C" void KeepWords(png_structp pPng, png_const_charp szWords) {
    auto* pKept = static_cast<StPng*>(png_get_error_ptr(pPng));
    std::strncpy(pKept->m_szWords.data(), szWords, pKept->m_szWords.size() - 1);
    png_longjmp(pPng, 1);
}

extern "C" void IgnoreWarning(png_structp, png_const_charp) {}

extern "C" void GiveBytes(png_structp pPng, png_bytep pData, png_size_t nSize) {
    auto* pFrom = static_cast<StPng*>(png_get_io_ptr(pPng));
    if (nSize > pFrom->m_pIn->size() - pFrom->m_nPos)
        png_error(pPng, "it is cut off");
    std::memcpy(pData, pFrom->m_pIn->data() + pFrom->m_nPos, nSize);
    pFrom->m_nPos += nSize;
}

/// The room was reserved before: nothing can throw here.
extern "C" void TakeBytes(png_structp pPng, png_bytep pData, png_size_t nSize) {
    auto* pTo = static_cast<StPng*>(png_get_io_ptr(pPng));
    if (nSize > pTo->m_pOut->capacity() - pTo->m_pOut->size())
        png_error(pPng, "no room");
    pTo->m_pOut->insert(pTo->m_pOut->end(), pData, pData + nSize);
}

extern "C" void NothingToFlush(png_structp) {}

class ClPngReader {
public:
    explicit ClPngReader(const Bytes& Content) {
        m_Png.m_pIn = &Content;
        m_Png.m_pPng =
            png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_Png, KeepWords, IgnoreWarning);
        if (m_Png.m_pPng != nullptr)
            m_Png.m_pInfo = png_create_info_struct(m_Png.m_pPng);
        if (m_Png.m_pInfo == nullptr) {
            Destroy();
            throw std::bad_alloc();
        }
        ReadHeader();
    }
    ClPngReader(const ClPngReader&) = delete;
    ClPngReader& operator=(const ClPngReader&) = delete;
    ~ClPngReader() { Destroy(); }

    StPngInfo Info() const {
        StPngInfo info;
        info.m_nWidth = png_get_image_width(m_Png.m_pPng, m_Png.m_pInfo);
        info.m_nHeight = png_get_image_height(m_Png.m_pPng, m_Png.m_pInfo);
        info.m_nBits = png_get_bit_depth(m_Png.m_pPng, m_Png.m_pInfo);
        info.m_nColourType = png_get_color_type(m_Png.m_pPng, m_Png.m_pInfo);
        info.m_bInterlaced =
            png_get_interlace_type(m_Png.m_pPng, m_Png.m_pInfo) != PNG_INTERLACE_NONE;
        // 0 where none is told or the unit is no metre
        info.m_nPelsX = png_get_x_pixels_per_meter(m_Png.m_pPng, m_Png.m_pInfo);
        info.m_nPelsY = png_get_y_pixels_per_meter(m_Png.m_pPng, m_Png.m_pInfo);
        return info;
    }

    bool IsTransparent() const {
        return png_get_valid(m_Png.m_pPng, m_Png.m_pInfo, PNG_INFO_tRNS) != 0;
    }

    /// The grey value of each sample or index that occurs in the file's depth.
    Bytes Greys() const;

    /// The samples or indices, one in a byte, into lines that are given from the top; a whole file,
    /// to its end mark.
    void ReadPixels(std::vector<png_bytep>& rLines) {
        Require(Guarded(m_Png, [&] {
            png_set_packing(m_Png.m_pPng);
            png_set_interlace_handling(m_Png.m_pPng);
            png_read_update_info(m_Png.m_pPng, m_Png.m_pInfo);
            png_read_image(m_Png.m_pPng, rLines.data());
            png_read_end(m_Png.m_pPng, nullptr);
        }));
    }

private:
    void ReadHeader() {
        const bool bRead = Guarded(m_Png, [&] {
            png_set_read_fn(m_Png.m_pPng, &m_Png, GiveBytes);
            png_set_user_limits(m_Png.m_pPng, cnPngSideLimit, cnPngSideLimit);
            png_set_chunk_malloc_max(m_Png.m_pPng, png_alloc_size_t{1} << 20);
            // What a checksum proves damaged is refused, wherever it stands.
            png_set_crc_action(m_Png.m_pPng, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
            png_read_info(m_Png.m_pPng, m_Png.m_pInfo);
        });
        if (!bRead)
            Destroy();
        Require(bRead);
    }

    void Require(bool bDone) const {
        if (!bDone)
            throw ClFailure(std::string("is no PNG picture that can be read (") +
                            m_Png.m_szWords.data() + "). Restore it, or save it anew.");
    }

    void Destroy() { png_destroy_read_struct(&m_Png.m_pPng, &m_Png.m_pInfo, nullptr); }

    StPng m_Png;
};

Bytes PaletteGreys(const png_color* pPalette, int nColours) {
    Bytes greys;
    for (int i = 0; i < nColours; ++i) {
        if (pPalette[i].red != pPalette[i].green || pPalette[i].green != pPalette[i].blue)
            throw ClFailure("has a palette of colours, greys are expected. Save it as 8-bit grey.");
        greys.push_back(pPalette[i].red);
    }
    return greys;
}

Bytes ClPngReader::Greys() const {
    const StPngInfo info = Info();
    png_colorp pPalette = nullptr;
    int nColours = 0;
    if (png_get_PLTE(m_Png.m_pPng, m_Png.m_pInfo, &pPalette, &nColours) != 0 &&
        info.m_nColourType == PNG_COLOR_TYPE_PALETTE)
        return PaletteGreys(pPalette, nColours);
    const unsigned int nMost = (1U << info.m_nBits) - 1U;
    Bytes greys;
    for (unsigned int n = 0; n <= nMost; ++n)
        greys.push_back(static_cast<unsigned char>(n * 255U / nMost)); // 255 is a multiple
    return greys;
}

void CheckColours(const StPngInfo& Info, bool bTransparent) {
    if (Info.m_nBits > 8)
        throw ClFailure("has 16 bits per sample, at most 8 are expected. Save it as 8-bit grey.");
    if ((Info.m_nColourType & PNG_COLOR_MASK_ALPHA) != 0 || bTransparent)
        throw ClFailure("has transparency, which no capture has. Save it as 8-bit grey without an "
                        "alpha channel.");
    if (Info.m_nColourType == PNG_COLOR_TYPE_RGB)
        throw ClFailure("is a colour picture, a grey one is expected. Save it as 8-bit grey.");
}

void CheckSize(const StPngInfo& Info) {
    if (std::uint64_t{Info.m_nWidth} * Info.m_nHeight > cnPngPixelLimit)
        throw ClFailure("claims " + std::to_string(Info.m_nWidth) + " x " +
                        std::to_string(Info.m_nHeight) +
                        " pixels, more than any picture for this tool.");
}

void AppendLittle(Bytes& rBytes, std::uint64_t nValue, int nBytes) {
    for (int i = 0; i < nBytes; ++i)
        rBytes.push_back(static_cast<unsigned char>(nValue >> (8 * i)));
}

/// A bitmap's header has 31 bits for a resolution.
std::uint32_t Pels(std::uint32_t nPels) {
    return nPels > PNG_UINT_31_MAX ? 0 : nPels;
}

std::size_t Stride(std::uint32_t nWidth) {
    return (std::size_t{nWidth} + 3) / 4 * 4;
}

/// Header, grey palette and black pixels.
Bytes BlackBlock(const StPngInfo& Info) {
    Bytes block;
    const std::size_t nPixels = Stride(Info.m_nWidth) * Info.m_nHeight;
    block.reserve(cnPixelsAt + nPixels);
    for (const std::uint32_t nField : {40U, Info.m_nWidth, Info.m_nHeight})
        AppendLittle(block, nField, 4);
    AppendLittle(block, 1, 2);
    AppendLittle(block, 8, 2);
    for (const std::uint32_t nField : {0U, 0U, Pels(Info.m_nPelsX), Pels(Info.m_nPelsY), 0U, 0U})
        AppendLittle(block, nField, 4);
    for (std::uint64_t nGrey = 0; nGrey < 256; ++nGrey)
        AppendLittle(block, nGrey * 0x010101, 4);
    block.resize(cnPixelsAt + nPixels);
    return block;
}

/// The lines of a block from the top; the last one stored is the highest.
std::vector<png_bytep> LinesOf(Bytes& rBlock, std::size_t nPixelsAt, std::uint32_t nWidth,
                               std::uint32_t nHeight) {
    std::vector<png_bytep> lines;
    for (std::size_t y = nHeight; y > 0; --y)
        lines.push_back(rBlock.data() + nPixelsAt + (y - 1) * Stride(nWidth));
    return lines;
}

void Translate(const std::vector<png_bytep>& aLines, std::uint32_t nWidth, const Bytes& Greys) {
    for (png_bytep pLine : aLines)
        for (std::uint32_t x = 0; x < nWidth; ++x) {
            if (pLine[x] >= Greys.size())
                throw ClFailure("has a pixel beyond its palette of " +
                                std::to_string(Greys.size()) + " greys. Save it anew.");
            pLine[x] = Greys[pLine[x]];
        }
}

/// A block that can be written, with its pixels still as indices.
struct StGreyBlock {
    StPngInfo m_Info;
    Bytes m_Greys;
    std::size_t m_nPixelsAt = 0;
};

[[noreturn]] void RefuseBlock(const std::string& Words) {
    throw ClFailure("cannot be written as PNG: " + Words +
                    ". Give it a name that does not end in .png.");
}

Bytes GreysOfPalette(const Bytes& Block, std::size_t nColours) {
    Bytes greys;
    for (std::size_t i = 0; i < nColours; ++i) {
        const unsigned char* pEntry = Block.data() + 40 + 4 * i;
        if (pEntry[0] != pEntry[1] || pEntry[1] != pEntry[2])
            RefuseBlock("its palette has colours");
        greys.push_back(pEntry[0]);
    }
    return greys;
}

StGreyBlock Inspect(const Bytes& Block) {
    const StBitmapInfo info = ReadBitmapInfo(Block);
    if (info.m_nBits != 8 || info.m_nCompression != 0 || info.m_nPlanes != 1)
        RefuseBlock("it is no 8-bit bitmap without compression");
    if (!info.m_nImpliedBytes || *info.m_nImpliedBytes != Block.size() || info.m_nColours > 256)
        RefuseBlock("its header does not fit its bytes");
    const std::size_t nColours = info.m_nColours == 0 ? 256 : info.m_nColours;
    StGreyBlock block;
    block.m_Info.m_nWidth = static_cast<std::uint32_t>(info.m_nWidth);
    block.m_Info.m_nHeight = static_cast<std::uint32_t>(info.m_nHeight);
    block.m_Info.m_nPelsX = static_cast<std::uint32_t>(std::max(info.m_nPelsX, 0));
    block.m_Info.m_nPelsY = static_cast<std::uint32_t>(std::max(info.m_nPelsY, 0));
    block.m_Greys = GreysOfPalette(Block, nColours);
    block.m_nPixelsAt = 40 + 4 * nColours;
    return block;
}

class ClPngWriter {
public:
    ClPngWriter() {
        m_Png.m_pPng =
            png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_Png, KeepWords, IgnoreWarning);
        if (m_Png.m_pPng != nullptr)
            m_Png.m_pInfo = png_create_info_struct(m_Png.m_pPng);
        if (m_Png.m_pInfo == nullptr) {
            Destroy();
            throw std::bad_alloc();
        }
    }
    ClPngWriter(const ClPngWriter&) = delete;
    ClPngWriter& operator=(const ClPngWriter&) = delete;
    ~ClPngWriter() { Destroy(); }

    Bytes Write(const StPngInfo& Info, std::vector<png_bytep>& rLines) {
        Bytes file;
        // Deflate adds five bytes to 16 KiB that it cannot reduce, each line has a filter byte,
        // and every part of at most 8 KiB its frame of twelve.
        const std::size_t nRaw = (std::size_t{Info.m_nWidth} + 1) * Info.m_nHeight;
        file.reserve(1024 + nRaw + nRaw / 64);
        m_Png.m_pOut = &file;
        const bool bWritten = Guarded(m_Png, [&] {
            png_set_write_fn(m_Png.m_pPng, &m_Png, TakeBytes, NothingToFlush);
            png_set_IHDR(m_Png.m_pPng, m_Png.m_pInfo, Info.m_nWidth, Info.m_nHeight, 8,
                         PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                         PNG_FILTER_TYPE_DEFAULT);
            if (Info.m_nPelsX > 0 || Info.m_nPelsY > 0)
                png_set_pHYs(m_Png.m_pPng, m_Png.m_pInfo, Info.m_nPelsX, Info.m_nPelsY,
                             PNG_RESOLUTION_METER);
            png_write_info(m_Png.m_pPng, m_Png.m_pInfo);
            png_write_image(m_Png.m_pPng, rLines.data());
            png_write_end(m_Png.m_pPng, nullptr);
        });
        if (!bWritten)
            RefuseBlock(m_Png.m_szWords.data());
        return file;
    }

private:
    void Destroy() { png_destroy_write_struct(&m_Png.m_pPng, &m_Png.m_pInfo); }

    StPng m_Png;
};

} // namespace

bool IsPng(const Bytes& Content) {
    return Content.size() >= cnSignature && png_sig_cmp(Content.data(), 0, cnSignature) == 0;
}

StPngInfo ReadPngInfo(const Bytes& Content) {
    return ClPngReader(Content).Info();
}

Bytes BlockOfPng(const Bytes& Content) {
    ClPngReader reader(Content);
    const StPngInfo info = reader.Info();
    CheckColours(info, reader.IsTransparent());
    CheckSize(info);
    const Bytes greys = reader.Greys();
    Bytes block = BlackBlock(info);
    std::vector<png_bytep> lines = LinesOf(block, cnPixelsAt, info.m_nWidth, info.m_nHeight);
    reader.ReadPixels(lines);
    Translate(lines, info.m_nWidth, greys);
    return block;
}

Bytes PngOfBlock(const Bytes& Block) {
    const StGreyBlock grey = Inspect(Block);
    Bytes copy = Block;
    const StPngInfo& info = grey.m_Info;
    std::vector<png_bytep> lines = LinesOf(copy, grey.m_nPixelsAt, info.m_nWidth, info.m_nHeight);
    Translate(lines, info.m_nWidth, grey.m_Greys);
    return ClPngWriter().Write(info, lines);
}

} // namespace qk7
