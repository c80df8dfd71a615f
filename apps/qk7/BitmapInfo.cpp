#include "apps/qk7/BitmapInfo.h"

#include "apps/qk7/ByteReader.h"

#include <limits>

namespace qk7 {

namespace {

constexpr std::size_t cnFileHeader = 14;
constexpr std::uint32_t cnInfoHeader = 40;
constexpr std::uint32_t cnBitFields = 3;
constexpr std::uint16_t cnMostBits = 32;

bool HasFileHeader(const Bytes& Content) {
    return Content.size() >= 2 && Content[0] == 'B' && Content[1] == 'M';
}

std::int32_t Signed32(ClByteReader& rReader, const char* szField) {
    return static_cast<std::int32_t>(rReader.Little32(szField));
}

void ReadFileHeader(ClByteReader& rReader, StBitmapInfo& rInfo) {
    rInfo.m_bFileHeader = true;
    rReader.Take(2, "the file header");
    rInfo.m_nFileSize = rReader.Little32("the file header");
    rReader.Take(4, "the file header");
    rInfo.m_nPixelOffset = rReader.Little32("the file header");
}

void ReadInfoHeader(ClByteReader& rReader, StBitmapInfo& rInfo) {
    const char* szField = "the info header";
    const std::uint32_t nHeader = rReader.Little32(szField);
    if (nHeader != cnInfoHeader)
        throw ClFailure("has an info header of " + std::to_string(nHeader) +
                        " bytes, one of 40 bytes is expected. Save it as a Windows 3 bitmap.");
    rInfo.m_nWidth = Signed32(rReader, szField);
    rInfo.m_nHeight = Signed32(rReader, szField);
    rInfo.m_nPlanes = rReader.Little16(szField);
    rInfo.m_nBits = rReader.Little16(szField);
    rInfo.m_nCompression = rReader.Little32(szField);
    rInfo.m_nImageSize = rReader.Little32(szField);
    rInfo.m_nPelsX = Signed32(rReader, szField);
    rInfo.m_nPelsY = Signed32(rReader, szField);
    rInfo.m_nColours = rReader.Little32(szField);
    rInfo.m_nImportant = rReader.Little32(szField);
}

std::uint64_t LineBytes(std::uint64_t nBitsPerLine) {
    return ((nBitsPerLine + 7) / 8 + 3) / 4 * 4;
}

/// Of the palette, or of the three masks of a bit-field bitmap.
std::uint64_t PaletteBytes(const StBitmapInfo& Info) {
    if (Info.m_nBits > 8 && Info.m_nCompression == cnBitFields)
        return 12;
    if (Info.m_nBits > 8 || Info.m_nColours != 0)
        return std::uint64_t{Info.m_nColours} * 4;
    return std::uint64_t{4} << Info.m_nBits;
}

/// In 64 bits, and none where the 32 bits of the format overflow.
std::optional<std::uint64_t> ImpliedBytes(const StBitmapInfo& Info) {
    if (Info.m_nWidth < 1 || Info.m_nHeight < 1 || Info.m_nBits < 1 || Info.m_nBits > cnMostBits)
        return std::nullopt;
    const std::uint64_t nLine =
        LineBytes(std::uint64_t{Info.m_nBits} * static_cast<std::uint64_t>(Info.m_nWidth));
    const std::uint64_t nPixels = nLine * static_cast<std::uint64_t>(Info.m_nHeight);
    const std::uint64_t nPalette = PaletteBytes(Info);
    constexpr std::uint64_t nMost = std::numeric_limits<std::int32_t>::max();
    if (nPixels > nMost || nPalette > nMost)
        return std::nullopt;
    return cnInfoHeader + nPalette + nPixels;
}

void AppendLittle32(Bytes& rBytes, std::uint64_t nValue) {
    for (int nShift = 0; nShift < 32; nShift += 8)
        rBytes.push_back(static_cast<unsigned char>(nValue >> nShift));
}

} // namespace

StBitmapInfo ReadBitmapInfo(const Bytes& Content) {
    ClByteReader reader(Content);
    StBitmapInfo info;
    if (HasFileHeader(Content))
        ReadFileHeader(reader, info);
    info.m_nBlockBytes = reader.Left();
    ReadInfoHeader(reader, info);
    info.m_nImpliedBytes = ImpliedBytes(info);
    return info;
}

std::uint64_t BitmapBytes(std::uint32_t nWidth, std::uint32_t nHeight, std::uint32_t nPlanes) {
    return cnInfoHeader + 1024 + LineBytes(std::uint64_t{8} * nWidth * nPlanes) * nHeight;
}

void RemoveFileHeader(Bytes& rContent) {
    if (HasFileHeader(rContent) && rContent.size() >= cnFileHeader)
        rContent.erase(rContent.begin(), rContent.begin() + cnFileHeader);
}

Bytes FileHeaderFor(const Bytes& Block) {
    const std::uint64_t nPalette = PaletteBytes(ReadBitmapInfo(Block));
    Bytes header = {'B', 'M'};
    AppendLittle32(header, cnFileHeader + Block.size());
    AppendLittle32(header, 0);
    AppendLittle32(header, cnFileHeader + cnInfoHeader + nPalette);
    return header;
}

} // namespace qk7
