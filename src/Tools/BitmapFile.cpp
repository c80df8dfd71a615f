// Bitmap files. What is read is foreign: every size is formed in 64 bits from the header and
// compared, with the limit of a block and, where the stream can tell, with what it still holds,
// before memory is asked for. Pixels are read straight into the block that is kept.

#include "Tools/Allocate.h"
#include "Tools/Bitmap.h"
#include "Tools/FileStream.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace {

constexpr std::uint16_t cnSignature = 0x4D42; // "BM"
constexpr std::uint64_t cnFileHeaderBytes = 14;
constexpr std::uint64_t cnHeaderBytes = sizeof(tagBITMAPINFOHEADER);
constexpr std::uint64_t cnLargestBlock = INT_MAX;

/// Little endian, strict reading for a while.
class ClReadSettings {
public:
    explicit ClReadSettings(ClStream& Stream)
        : m_Stream(Stream), m_bBigEndian(Stream.SetBigEndian4Read(false)),
          m_bThrowOnShort(Stream.SetThrowOnShort(true)) {}
    ClReadSettings(const ClReadSettings&) = delete;
    ClReadSettings& operator=(const ClReadSettings&) = delete;
    ~ClReadSettings() {
        m_Stream.SetBigEndian4Read(m_bBigEndian);
        m_Stream.SetThrowOnShort(m_bThrowOnShort);
    }

private:
    ClStream& m_Stream;
    bool m_bBigEndian;
    bool m_bThrowOnShort;
};

/// Little endian writing for a while.
class ClWriteSettings {
public:
    explicit ClWriteSettings(ClStream& Stream)
        : m_Stream(Stream), m_bBigEndian(Stream.SetBigEndian4Write(false)) {}
    ClWriteSettings(const ClWriteSettings&) = delete;
    ClWriteSettings& operator=(const ClWriteSettings&) = delete;
    ~ClWriteSettings() { m_Stream.SetBigEndian4Write(m_bBigEndian); }

private:
    ClStream& m_Stream;
    bool m_bBigEndian;
};

template <class T>
T ReadNumber(ClStream& Stream) {
    T value{};
    Stream.ReadAutoSwap(value);
    return value;
}

[[noreturn]] void ThrowSizes() {
    throw ClExTessarin(QMT_ERROR_CURRUPT_BYTECODE, VEK_HERE);
}

/// What the headers of a file say.
struct StFileHead {
    tagBITMAPINFOHEADER m_Header{};   ///< as it is kept: plain, height positive, colours bounded
    std::uint64_t m_nPaletteArea = 0; ///< bytes between info header and pixels
    bool m_bBare = false;             ///< no file header
    bool m_bRle = false;
    bool m_bTopDown = false;
};

/// File header, if there is one, and `biSize`.
void ReadBeginning(ClStream& Stream, StFileHead& head) {
    const auto nFirst = ReadNumber<std::uint16_t>(Stream);
    head.m_bBare = nFirst == cnHeaderBytes;
    if (head.m_bBare) {
        head.m_Header.biSize = nFirst | std::uint32_t{ReadNumber<std::uint16_t>(Stream)} << 16;
        return;
    }
    if (nFirst != cnSignature)
        throw ClException("ClBitmap::Load. Fileheader Signature is Missing",
                          QMT_ERROR_BMP_NO_SIGNATURE, true, VEK_HERE);
    ReadNumber<std::uint32_t>(Stream); // bfSize, which nobody relies on
    ReadNumber<std::uint32_t>(Stream); // two reserved words
    const std::uint64_t nOffBits = ReadNumber<std::uint32_t>(Stream);
    const std::uint64_t nHeaders = cnFileHeaderBytes + cnHeaderBytes;
    head.m_nPaletteArea = std::max(nOffBits, nHeaders) - nHeaders;
    head.m_Header.biSize = ReadNumber<std::uint32_t>(Stream);
}

void ReadFields(ClStream& Stream, tagBITMAPINFOHEADER& header) {
    header.biWidth = ReadNumber<std::int32_t>(Stream);
    header.biHeight = ReadNumber<std::int32_t>(Stream);
    header.biPlanes = ReadNumber<std::uint16_t>(Stream);
    header.biBitCount = ReadNumber<std::uint16_t>(Stream);
    header.biCompression = ReadNumber<std::uint32_t>(Stream);
    header.biSizeImage = ReadNumber<std::uint32_t>(Stream);
    header.biXPelsPerMeter = ReadNumber<std::int32_t>(Stream);
    header.biYPelsPerMeter = ReadNumber<std::int32_t>(Stream);
    header.biClrUsed = ReadNumber<std::uint32_t>(Stream);
    header.biClrImportant = ReadNumber<std::uint32_t>(Stream);
}

void CheckLoadable(const tagBITMAPINFOHEADER& header) {
    const std::uint32_t nCode = header.biCompression;
    const bool bRle = nCode == ClBitmap::eRle8 && header.biBitCount == 8;
    if (nCode != ClBitmap::ePlain && nCode != ClBitmap::eBitFields && !bRle)
        throw ClException("ClBitmap::Load. Unsupported compressions mode",
                          QMT_ERROR_BITMAP_COMPRESSION, true, VEK_HERE);
    ClBitmap::CheckHeader(header);
    if (header.biWidth < 1 || header.biHeight == INT_MIN)
        ThrowSizes();
}

/// Cuts the colours of a palette to its area and its depth.
void BoundColours(StFileHead& head) {
    tagBITMAPINFOHEADER& header = head.m_Header;
    const std::uint64_t nUsed = header.biClrUsed;
    const std::uint64_t nMost =
        std::min(head.m_nPaletteArea / 4, std::uint64_t{1} << header.biBitCount);
    if (nUsed <= nMost)
        return;
    header.biClrUsed = static_cast<std::uint32_t>(nMost);
    header.biClrImportant =
        std::min(std::uint32_t{header.biClrImportant}, static_cast<std::uint32_t>(nMost));
}

void SettlePalette(StFileHead& head) {
    const auto nPalette = static_cast<std::uint64_t>(ClBitmap::PaletteBytes(head.m_Header));
    if (head.m_bBare)
        head.m_nPaletteArea = nPalette;
    if (head.m_Header.biBitCount <= 8)
        BoundColours(head);
    else if (nPalette > head.m_nPaletteArea)
        ThrowSizes();
}

StFileHead ReadHead(ClStream& Stream) {
    StFileHead head;
    ReadBeginning(Stream, head);
    ReadFields(Stream, head.m_Header);
    CheckLoadable(head.m_Header);
    head.m_bTopDown = head.m_Header.biHeight < 0;
    head.m_Header.biHeight = head.m_bTopDown ? -head.m_Header.biHeight : head.m_Header.biHeight;
    head.m_bRle = head.m_Header.biCompression == ClBitmap::eRle8;
    head.m_Header.biCompression = head.m_bRle ? ClBitmap::ePlain : head.m_Header.biCompression;
    SettlePalette(head);
    if (ClBitmap::BlockBytes(head.m_Header) > cnLargestBlock)
        ThrowSizes();
    return head;
}

/// Whether the stream can hold what the head claims, as far as it knows.
void CheckClaim(const ClStream& Stream, const StFileHead& head) {
    const std::optional<unsigned long> nRest = Stream.Rest();
    const std::uint64_t nPixels =
        head.m_bRle ? 0 : static_cast<std::uint64_t>(ClBitmap::PixelBytes(head.m_Header));
    const auto nPalette = static_cast<std::uint64_t>(ClBitmap::PaletteBytes(head.m_Header));
    if (nRest && nPixels + std::max(nPalette, head.m_nPaletteArea) > *nRest)
        Vek::ThrowUnexpectedEnd();
}

void SkipBytes(ClStream& Stream, std::uint64_t nBytes) {
    unsigned char aDropped[4096];
    while (nBytes > 0)
        nBytes -= Stream.Read(aDropped, std::min<std::uint64_t>(nBytes, sizeof aDropped));
}

/// The palette, and what stands between it and the pixels.
void ReadPalette(ClStream& Stream, const StFileHead& head, void* pPalette) {
    const auto nPalette = static_cast<std::uint64_t>(ClBitmap::PaletteBytes(head.m_Header));
    Stream.Read(pPalette, nPalette);
    SkipBytes(Stream, head.m_nPaletteArea - std::min(head.m_nPaletteArea, nPalette));
}

/// The lines of a bitmap in the order of its file.
class ClFileLines {
public:
    ClFileLines(const ClBitmap& Bitmap, bool bTopDown)
        : m_Bitmap(Bitmap), m_nHeight(Bitmap.Header()->biHeight), m_bTopDown(bTopDown) {}

    long Height() const { return m_nHeight; }
    unsigned char* operator[](long y) const {
        return m_Bitmap.Line(m_bTopDown ? m_nHeight - 1 - y : y);
    }

private:
    const ClBitmap& m_Bitmap;
    long m_nHeight;
    bool m_bTopDown;
};

void ReadPlainLines(ClStream& Stream, const ClFileLines& lines, std::int64_t nStride) {
    for (long y = 0; y < lines.Height(); ++y)
        Stream.Read(lines[y], static_cast<unsigned long>(nStride));
}

/// The 8-bit run-length encoding: pairs of count and value, where count 0 makes the value a
/// code. A run that fills its line goes on in the next one; a run of literal bytes goes there at
/// once, and is never padded to an even length.
///
/// Pixels that are not told stay as they are in the block, 0.
class ClRleDecoder {
public:
    ClRleDecoder(ClStream& Stream, const ClFileLines& lines, long nWidth)
        : m_Stream(Stream), m_Lines(lines), m_nWidth(nWidth) {}

    void Decode() {
        while (IsInside()) {
            const unsigned char nCount = ReadByte();
            const unsigned char nValue = ReadByte();
            if (nCount > 0)
                Run(nCount, nValue);
            else if (nValue == cnEndOfLine)
                NextLine();
            else if (nValue == cnEndOfBitmap)
                return;
            else if (nValue == cnDelta)
                Move();
            else
                Literal(nValue);
        }
    }

private:
    static constexpr unsigned char cnEndOfLine = 0;
    static constexpr unsigned char cnEndOfBitmap = 1;
    static constexpr unsigned char cnDelta = 2;

    bool IsInside() const { return m_y < m_Lines.Height(); }
    unsigned char ReadByte() { return ReadNumber<unsigned char>(m_Stream); }

    [[noreturn]] static void ThrowCorrupt() {
        throw ClException("ClBitmap::Load. RLE Encoding corrupt", QMT_ERROR_CURRUPT_BYTECODE, true,
                          VEK_HERE);
    }

    void NextLine() {
        ++m_y;
        m_x = 0;
    }

    void Put(unsigned char nValue) {
        if (m_x == m_nWidth)
            NextLine();
        if (!IsInside())
            ThrowCorrupt();
        m_Lines[m_y][m_x++] = nValue;
    }

    void Run(int nCount, unsigned char nValue) {
        for (int i = 0; i < nCount; ++i)
            Put(nValue);
    }

    void Literal(int nCount) {
        for (int i = 0; i < nCount; ++i) {
            if (!IsInside())
                ThrowCorrupt();
            Put(ReadByte());
            if (m_x == m_nWidth)
                NextLine();
        }
    }

    void Move() {
        m_x += ReadByte();
        m_y += ReadByte();
        if (m_x > m_nWidth || !IsInside())
            ThrowCorrupt();
    }

    ClStream& m_Stream;
    const ClFileLines& m_Lines;
    long m_nWidth;
    long m_x = 0;
    long m_y = 0;
};

/// Zeros that the system provides where they are touched: a short file that claims a large block
/// costs no more than its codes write.
boost::shared_ptr<tagBITMAPINFOHEADER> NewZeroBlock(std::uint64_t nBytes) {
    void* pZeros = std::calloc(nBytes, 1);
    if (pZeros == nullptr)
        Vek::ThrowBadAlloc();
    try {
        return {static_cast<tagBITMAPINFOHEADER*>(pZeros), std::free};
    } catch (const std::bad_alloc&) { // the zeros have been freed
        Vek::ThrowBadAlloc();
    }
}

/// What a file needs and a block does without.
void AdjustForFile(tagBITMAPINFOHEADER& header) {
    if (header.biSizeImage == 0 && header.biCompression != ClBitmap::ePlain)
        throw ClException("Bitmap Store: Combination of biSizeImage not set and compression set to "
                          "other than plain not allowed",
                          QMT_ERROR_FORMAT_NOTSUPPORTED, true, VEK_HERE);
    if (header.biSizeImage == 0)
        header.biSizeImage =
            static_cast<std::uint32_t>(std::max<std::int64_t>(ClBitmap::PixelBytes(header), 0));
    const std::uint64_t nNamed = std::uint64_t{1} << header.biBitCount;
    const std::uint64_t nColours = header.biBitCount <= 8 ? nNamed : 0;
    if (header.biClrUsed > nColours)
        header.biClrUsed = static_cast<std::uint32_t>(nColours);
    if (header.biClrImportant > nNamed)
        header.biClrImportant = static_cast<std::uint32_t>(nNamed);
}

[[noreturn]] void ThrowFailedWrite() {
    throw ClExStreamFailToWrite("Failed to write into stream", QMT_ERROR_WRITE_FAIL, true,
                                VEK_HERE);
}

/// Both return the bytes written.
unsigned long WriteFileHeader(ClStream& Stream, const tagBITMAPINFOHEADER& header) {
    const auto nPalette = static_cast<std::uint64_t>(ClBitmap::PaletteBytes(header));
    const std::uint64_t nSize = cnFileHeaderBytes + ClBitmap::BlockBytes(header);
    const std::uint64_t nOffBits = cnFileHeaderBytes + cnHeaderBytes + nPalette;
    unsigned long nDone = Stream.WriteAutoSwap(cnSignature);
    nDone += Stream.WriteAutoSwap(static_cast<std::uint32_t>(nSize));
    nDone += Stream.WriteAutoSwap(std::uint32_t{0}); // two reserved words
    nDone += Stream.WriteAutoSwap(static_cast<std::uint32_t>(nOffBits));
    return nDone;
}

unsigned long WriteFields(ClStream& Stream, const tagBITMAPINFOHEADER& header) {
    unsigned long nDone = Stream.WriteAutoSwap(std::uint32_t{header.biSize});
    nDone += Stream.WriteAutoSwap(std::int32_t{header.biWidth});
    nDone += Stream.WriteAutoSwap(std::int32_t{header.biHeight});
    nDone += Stream.WriteAutoSwap(std::uint16_t{header.biPlanes});
    nDone += Stream.WriteAutoSwap(std::uint16_t{header.biBitCount});
    nDone += Stream.WriteAutoSwap(std::uint32_t{header.biCompression});
    nDone += Stream.WriteAutoSwap(std::uint32_t{header.biSizeImage});
    nDone += Stream.WriteAutoSwap(std::int32_t{header.biXPelsPerMeter});
    nDone += Stream.WriteAutoSwap(std::int32_t{header.biYPelsPerMeter});
    nDone += Stream.WriteAutoSwap(std::uint32_t{header.biClrUsed});
    nDone += Stream.WriteAutoSwap(std::uint32_t{header.biClrImportant});
    return nDone;
}

void WriteBytes(ClStream& Stream, const void* pData, std::int64_t nBytes) {
    if (nBytes > 0 && Stream.WriteRaw(pData, static_cast<unsigned long>(nBytes)) !=
                          static_cast<unsigned long>(nBytes))
        ThrowFailedWrite();
}

} // namespace

void ClBitmap::Load(ClStream& Stream) {
    ClearFree();
    const ClReadSettings settings(Stream);
    const StFileHead head = ReadHead(Stream);
    CheckClaim(Stream, head);

    const std::uint64_t nBlock = BlockBytes(head.m_Header);
    const auto pBlock = head.m_bRle ? NewZeroBlock(nBlock) : NewBlock(nBlock);
    *pBlock = head.m_Header;
    ClBitmap loaded;
    loaded.TakeBlock(pBlock);
    loaded.ResetPixel();
    ReadPalette(Stream, head, pBlock.get() + 1);
    const ClFileLines lines(loaded, head.m_bTopDown);
    if (head.m_bRle)
        ClRleDecoder(Stream, lines, head.m_Header.biWidth).Decode();
    else
        ReadPlainLines(Stream, lines, StrideBytes(head.m_Header));
    Swap(loaded);
}

void ClBitmap::Load(const char* pFileName) {
    ClearFree();
    ClFileStream stream(pFileName, "rb");
    Load(stream);
}

void ClBitmap::Store(ClStream& Stream) const {
    RequireParts();
    AdjustForFile(*m_pBI);
    const ClWriteSettings settings(Stream);
    unsigned long nDone = WriteFileHeader(Stream, *m_pBI);
    nDone += WriteFields(Stream, *m_pBI);
    if (nDone != cnFileHeaderBytes + cnHeaderBytes)
        ThrowFailedWrite();
    WriteBytes(Stream, m_pPalette, PaletteBytes(*m_pBI));
    WriteBytes(Stream, m_pPixel.get(), PixelBytes(*m_pBI));
}

void ClBitmap::Store(const char* pFileName) const {
    RequireParts();
    AdjustForFile(*m_pBI); // what is refused leaves a file that exists as it is
    ClFileStream stream(pFileName, "wb");
    Store(stream);
    stream.Close();
}
