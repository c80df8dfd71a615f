#include "qk7/PngFiles.h"

#include "qk7/TestFiles.h"

namespace TestSupport {

using qk7::Bytes;

namespace {

std::uint32_t Crc32(const Bytes& Content) {
    std::uint32_t nCrc = 0xFFFFFFFFU;
    for (const unsigned char n : Content) {
        nCrc ^= n;
        for (int nBit = 0; nBit < 8; ++nBit)
            nCrc = (nCrc >> 1) ^ ((nCrc & 1U) * 0xEDB88320U);
    }
    return ~nCrc;
}

std::uint32_t Adler32(const Bytes& Content) {
    std::uint32_t nA = 1;
    std::uint32_t nB = 0;
    for (const unsigned char n : Content) {
        nA = (nA + n) % 65521;
        nB = (nB + nA) % 65521;
    }
    return nB << 16 | nA;
}

/// One stored block of deflate, which holds up to 65535 bytes.
Bytes Stored(const Bytes& Content) {
    Bytes stream = {0x78, 0x01, 0x01};
    AppendLittle(stream, Content.size(), 2);
    AppendLittle(stream, ~Content.size() & 0xFFFFU, 2);
    stream = stream + Content;
    AppendBig32(stream, Adler32(Content));
    return stream;
}

} // namespace

Bytes PngChunk(const std::string& Name, const Bytes& Content) {
    const Bytes named = ToBytes(Name) + Content;
    Bytes chunk;
    AppendBig32(chunk, static_cast<std::uint32_t>(Content.size()));
    chunk = chunk + named;
    AppendBig32(chunk, Crc32(named));
    return chunk;
}

Bytes PngResolution(std::uint32_t nX, std::uint32_t nY, unsigned char nUnit) {
    Bytes content;
    AppendBig32(content, nX);
    AppendBig32(content, nY);
    content.push_back(nUnit);
    return PngChunk("pHYs", content);
}

Bytes PngFile(const StPngShape& Shape, const std::vector<Bytes>& aLines, const Bytes& Between) {
    Bytes header;
    AppendBig32(header, Shape.m_nWidth);
    AppendBig32(header, Shape.m_nHeight);
    for (const int nField : {Shape.m_nBits, Shape.m_nColourType, 0, 0, Shape.m_nInterlace})
        header.push_back(static_cast<unsigned char>(nField));
    Bytes lines;
    for (const Bytes& line : aLines)
        lines = lines + Bytes{0} + line;
    return Bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'} + PngChunk("IHDR", header) + Between +
           PngChunk("IDAT", Stored(lines)) + PngChunk("IEND", {});
}

} // namespace TestSupport
