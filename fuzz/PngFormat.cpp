#include "ByteOrder.h"
#include "Formats.h"

#include <zlib.h>

#include <algorithm>

namespace Fuzz {

namespace {

const std::string cSignature = "\x89PNG\r\n\x1A\n";
constexpr std::size_t cnFrame = 12; ///< of a chunk: length, name, checksum
constexpr std::size_t cnHead = 13;
constexpr std::uint32_t cnMostSide = 40;

void PutChecksum(std::string& rBytes, std::size_t nChunk, std::size_t nData) {
    const auto* pFrom = reinterpret_cast<const Bytef*>(rBytes.data()) + nChunk + 4;
    PutBig(rBytes, nChunk + 8 + nData,
           static_cast<std::uint32_t>(crc32(0, pFrom, static_cast<uInt>(nData + 4))));
}

std::string Chunk(const std::string& Name, const std::string& Data) {
    std::string Bytes = std::string(4, '\0') + Name + Data + std::string(4, '\0');
    PutBig(Bytes, 0, static_cast<std::uint32_t>(Data.size()));
    PutChecksum(Bytes, 0, Data.size());
    return Bytes;
}

std::string Compressed(const std::string& Data) {
    uLongf nSize = compressBound(static_cast<uLong>(Data.size()));
    std::string Out(nSize, '\0');
    compress(reinterpret_cast<Bytef*>(Out.data()), &nSize,
             reinterpret_cast<const Bytef*>(Data.data()), static_cast<uLong>(Data.size()));
    return Out.substr(0, nSize);
}

/// A head whose fields are allowed, drawn from one that may not be.
std::string Head(const std::string& Drawn) {
    static constexpr char acDepths[] = {8, 1, 2, 4, 8, 16};
    static constexpr char acColours[] = {0, 0, 3, 3, 2, 4, 6};
    std::string Bytes = Drawn;
    Bytes.resize(cnHead);
    for (const std::size_t nSide : {0U, 4U})
        PutBig(Bytes, nSide, 1 + Big<std::uint32_t>(Bytes, nSide) % cnMostSide);
    Bytes[8] = acDepths[static_cast<unsigned char>(Bytes[8]) % std::size(acDepths)];
    Bytes[9] = acColours[static_cast<unsigned char>(Bytes[9]) % std::size(acColours)];
    Bytes[12] = static_cast<char>(Bytes[12] & 1);
    Bytes[10] = Bytes[11] = '\0';
    return Bytes;
}

std::string GreyPalette(std::size_t nColours) {
    std::string Bytes;
    for (std::size_t i = 0; i < nColours; ++i)
        Bytes += std::string(3, static_cast<char>(i * 37));
    return Bytes;
}

/// A whole picture whose head, palette and samples are what the bytes say. Its lines are begun by
/// any of the filters; samples that are too few are followed by zeros, those too many are left.
std::string Picture(const std::string& Bytes) {
    const std::string Fields = Head(Bytes.substr(0, std::min(cnHead, Bytes.size())));
    const std::size_t nColours = 1 + Big<std::uint8_t>(Bytes, cnHead) % 256U;
    std::string Samples = Bytes.substr(std::min(cnHead + 1, Bytes.size()));
    Samples.resize((8 * std::size_t{cnMostSide} + 1) * (cnMostSide + 7));
    for (char& rSample : Samples)
        if (rSample == '\xFF')
            rSample = '\4';
    std::string File = cSignature + Chunk("IHDR", Fields);
    if (Fields[9] == 3)
        File += Chunk("PLTE", GreyPalette(std::min<std::size_t>(nColours, 1U << Fields[8])));
    return File + Chunk("IDAT", Compressed(Samples)) + Chunk("IEND", "");
}

/// Every chunk has its checksum; the last one ends with the file, however long it claims to be.
void RepairChunks(std::string& rBytes, ClRandom& rRandom) {
    rBytes.replace(0, cSignature.size(), cSignature);
    std::size_t nChunk = cSignature.size();
    while (nChunk + cnFrame <= rBytes.size()) {
        const std::size_t nRoom = rBytes.size() - nChunk - cnFrame;
        const auto nData = static_cast<std::uint32_t>(
            std::min<std::size_t>(Big<std::uint32_t>(rBytes, nChunk), nRoom));
        PutBig(rBytes, nChunk, nData);
        if (!rRandom.OneIn(32))
            PutChecksum(rBytes, nChunk, nData);
        nChunk += cnFrame + nData;
    }
}

} // namespace

void RepairPng(std::string& rBytes, ClRandom& rRandom) {
    if (rRandom.OneIn(8))
        rBytes = Picture(rBytes);
    else
        RepairChunks(rBytes, rRandom);
}

} // namespace Fuzz
