#include "Tools/CRC32.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using Bytes = std::vector<unsigned char>;

namespace {

std::uint32_t Crc(const Bytes& aBytes) {
    return ClCRC32().Get_CRC(aBytes.data(), aBytes.size());
}

/// The definition, bit by bit.
std::uint32_t NaiveCrc(const Bytes& aBytes) {
    std::uint32_t nRest = 0xFFFFFFFF;
    for (const unsigned char nByte : aBytes) {
        for (int nBit = 7; nBit >= 0; --nBit) {
            const std::uint32_t nOut = (nRest >> 31) ^ ((nByte >> nBit) & 1u);
            nRest = (nRest << 1) ^ (nOut * 0x04C11DB7u);
        }
    }
    return ~nRest;
}

Bytes RandomBytes(std::mt19937& rRandom, std::size_t nSize) {
    Bytes aBytes(nSize);
    for (unsigned char& nByte : aBytes)
        nByte = static_cast<unsigned char>(rRandom());
    return aBytes;
}

} // namespace

TEST(CRC32, GivesThePublishedCheckValue) {
    EXPECT_EQ(Crc({'1', '2', '3', '4', '5', '6', '7', '8', '9'}), 0xFC891918u);
}

TEST(CRC32, OfNoBytesIsZero) {
    EXPECT_EQ(ClCRC32().Get_CRC(nullptr, 0), 0u);
}

TEST(CRC32, DoesWhatTheDefinitionDoes) {
    std::mt19937 Random(1);
    for (std::size_t nSize = 0; nSize < 100; ++nSize) {
        const Bytes aBytes = RandomBytes(Random, nSize);
        EXPECT_EQ(Crc(aBytes), NaiveCrc(aBytes)) << nSize << " bytes";
    }
}

TEST(CRC32, OfAnyMessageWithItsChecksumIsThePublishedResidue) {
    std::mt19937 Random(2);
    for (std::size_t nSize = 0; nSize < 100; ++nSize) {
        Bytes aBytes = RandomBytes(Random, nSize);
        const std::uint32_t nCrc = Crc(aBytes);
        for (int nShift = 24; nShift >= 0; nShift -= 8)
            aBytes.push_back(static_cast<unsigned char>(nCrc >> nShift));
        EXPECT_EQ(~Crc(aBytes), 0xC704DD7Bu);
    }
}

TEST(CRC32, EverySingleBitCounts) {
    std::mt19937 Random(3);
    Bytes aBytes = RandomBytes(Random, 200);
    const std::uint32_t nWhole = Crc(aBytes);
    for (std::size_t i = 0; i < aBytes.size() * 8; ++i) {
        const auto nMask = static_cast<unsigned char>(1u << (i % 8));
        aBytes[i / 8] = static_cast<unsigned char>(aBytes[i / 8] ^ nMask);
        EXPECT_NE(Crc(aBytes), nWhole) << "bit " << i;
        aBytes[i / 8] = static_cast<unsigned char>(aBytes[i / 8] ^ nMask);
    }
}
