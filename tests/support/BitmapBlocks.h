#pragma once

/// Bitmap blocks for tests, put together byte by byte, and what their pixels mean, worked out
/// without the class under test.

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

namespace TestSupport {

using Bytes = std::vector<unsigned char>;

inline void Append(Bytes& aTo, const Bytes& aMore) {
    aTo.insert(aTo.end(), aMore.begin(), aMore.end());
}

inline Bytes LittleEndian(std::uint64_t nValue, int nBytes) {
    Bytes aBytes;
    for (int i = 0; i < nBytes; ++i)
        aBytes.push_back(static_cast<unsigned char>(nValue >> (8 * i)));
    return aBytes;
}

/// The fields of an info header; those that a test does not name have usual values.
struct StHead {
    std::int64_t m_nWidth = 1;
    std::int64_t m_nHeight = 1;
    int m_nBits = 8;
    std::uint32_t m_nCompression = 0;
    std::uint32_t m_nClrUsed = 0;
    std::uint32_t m_nClrImportant = 0;
    std::uint32_t m_nSizeImage = 0;
    int m_nPelsX = 0;
    int m_nPelsY = 0;
    int m_nPlanes = 1;
    std::uint32_t m_nSize = 40;
};

inline Bytes HeaderBytes(const StHead& head) {
    Bytes aBytes = LittleEndian(head.m_nSize, 4);
    Append(aBytes, LittleEndian(static_cast<std::uint64_t>(head.m_nWidth), 4));
    Append(aBytes, LittleEndian(static_cast<std::uint64_t>(head.m_nHeight), 4));
    Append(aBytes, LittleEndian(static_cast<std::uint64_t>(head.m_nPlanes), 2));
    Append(aBytes, LittleEndian(static_cast<std::uint64_t>(head.m_nBits), 2));
    Append(aBytes, LittleEndian(head.m_nCompression, 4));
    Append(aBytes, LittleEndian(head.m_nSizeImage, 4));
    Append(aBytes, LittleEndian(static_cast<std::uint64_t>(head.m_nPelsX), 4));
    Append(aBytes, LittleEndian(static_cast<std::uint64_t>(head.m_nPelsY), 4));
    Append(aBytes, LittleEndian(head.m_nClrUsed, 4));
    Append(aBytes, LittleEndian(head.m_nClrImportant, 4));
    return aBytes;
}

/// Entries 0xAARRGGBB, or masks.
inline Bytes PaletteBytes(const std::vector<std::uint32_t>& aEntries) {
    Bytes aBytes;
    for (std::uint32_t nEntry : aEntries)
        Append(aBytes, LittleEndian(nEntry, 4));
    return aBytes;
}

inline std::vector<std::uint32_t> GreyPalette(unsigned int nEntries = 256) {
    std::vector<std::uint32_t> aEntries;
    for (std::uint32_t i = 0; i < nEntries; ++i)
        aEntries.push_back(i * 255 / (nEntries - 1) * 0x010101);
    return aEntries;
}

/// Header, palette and pixels in a row.
inline Bytes Block(const StHead& head, const std::vector<std::uint32_t>& aPalette,
                   const Bytes& aPixels) {
    Bytes aBlock = HeaderBytes(head);
    Append(aBlock, PaletteBytes(aPalette));
    Append(aBlock, aPixels);
    return aBlock;
}

/// Whole 32-bit words for the bits of a line.
inline std::size_t WordsStride(int nBits, std::int64_t nWidth) {
    return static_cast<std::size_t>((nWidth * nBits + 31) / 32 * 4);
}

/// Pixels of a size, padding included, without any order in them.
inline Bytes NoisePixels(const StHead& head, unsigned int nSeed = 1) {
    std::mt19937 random(nSeed);
    Bytes aPixels(WordsStride(head.m_nBits, head.m_nWidth) *
                  static_cast<std::size_t>(head.m_nHeight));
    for (unsigned char& nByte : aPixels)
        nByte = static_cast<unsigned char>(random());
    return aPixels;
}

/// A whole block of the usual form of its depth: grey palette, no masks.
inline Bytes UsualBlock(const StHead& head) {
    return Block(head,
                 head.m_nBits <= 8 ? GreyPalette(1u << head.m_nBits) : std::vector<std::uint32_t>(),
                 NoisePixels(head));
}

inline Bytes FileBytes(const Bytes& aBlock, std::uint32_t nOffBits) {
    Bytes aFile{'B', 'M'};
    Append(aFile, LittleEndian(14 + aBlock.size(), 4));
    Append(aFile, LittleEndian(0, 4));
    Append(aFile, LittleEndian(nOffBits, 4));
    Append(aFile, aBlock);
    return aFile;
}

/// The first `nSize` bytes in memory of exactly that size, so that a tool sees any step beyond.
inline std::unique_ptr<unsigned char[]> Exactly(const Bytes& aBytes, std::size_t nSize) {
    auto pCopy = std::make_unique<unsigned char[]>(nSize);
    for (std::size_t i = 0; i < nSize && i < aBytes.size(); ++i)
        pCopy[i] = aBytes[i];
    return pCopy;
}

/// Pixel `x` of a line as a number: indices from the highest bit down, others little endian.
inline std::uint32_t PixelNumber(const unsigned char* pLine, int nBits, int x) {
    std::uint32_t nValue = 0;
    if (nBits < 8) {
        for (int i = x * nBits; i < (x + 1) * nBits; ++i)
            nValue = nValue * 2 + ((pLine[i / 8] >> (7 - i % 8)) & 1u);
        return nValue;
    }
    for (int i = nBits / 8 - 1; i >= 0; --i)
        nValue = nValue * 256 + pLine[x * (nBits / 8) + i];
    return nValue;
}

} // namespace TestSupport
