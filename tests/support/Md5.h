#pragma once

/// The MD5 digest as RFC 1321 defines it, written for clarity, as a second opinion on the
/// library's own.

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace TestSupport {

using Digest = std::array<unsigned char, 16>;

namespace Detail {

inline void Md5Block(const unsigned char* pBlock, std::array<std::uint32_t, 4>& anState) {
    static const int caShift[4][4] = {
        {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    static const int caStep[4] = {1, 5, 3, 7};
    static const int caFirst[4] = {0, 1, 5, 0};
    std::uint32_t a = anState[0], b = anState[1], c = anState[2], d = anState[3];
    for (int i = 0; i < 64; ++i) {
        const int nRound = i / 16;
        const std::uint32_t nMix = nRound == 0   ? (b & c) | (~b & d)
                                   : nRound == 1 ? (b & d) | (c & ~d)
                                   : nRound == 2 ? b ^ c ^ d
                                                 : c ^ (b | ~d);
        const unsigned char* pWord = pBlock + 4 * ((caFirst[nRound] + caStep[nRound] * i) % 16);
        const std::uint32_t nWord = pWord[0] | std::uint32_t{pWord[1]} << 8 |
                                    std::uint32_t{pWord[2]} << 16 | std::uint32_t{pWord[3]} << 24;
        const auto nSine = static_cast<std::uint32_t>(std::fabs(std::sin(i + 1.0)) * 4294967296.0);
        const std::uint32_t nSum = a + nMix + nWord + nSine;
        const int nShift = caShift[nRound][i % 4];
        a = d;
        d = c;
        c = b;
        b += nSum << nShift | nSum >> (32 - nShift);
    }
    anState[0] += a;
    anState[1] += b;
    anState[2] += c;
    anState[3] += d;
}

} // namespace Detail

inline Digest Md5(std::vector<unsigned char> aBytes) {
    const std::uint64_t nBits = std::uint64_t{aBytes.size()} * 8;
    aBytes.push_back(0x80);
    while (aBytes.size() % 64 != 56)
        aBytes.push_back(0);
    for (int i = 0; i < 8; ++i)
        aBytes.push_back(static_cast<unsigned char>(nBits >> (8 * i)));
    std::array<std::uint32_t, 4> anState = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    for (std::size_t n = 0; n < aBytes.size(); n += 64)
        Detail::Md5Block(aBytes.data() + n, anState);
    Digest aDigest{};
    for (std::size_t i = 0; i < 16; ++i)
        aDigest[i] = static_cast<unsigned char>(anState[i / 4] >> (8 * (i % 4)));
    return aDigest;
}

inline std::string Hex(const Digest& aDigest) {
    static const char caDigits[] = "0123456789abcdef";
    std::string Text;
    for (const unsigned char nByte : aDigest) {
        Text += caDigits[nByte >> 4];
        Text += caDigits[nByte & 15];
    }
    return Text;
}

} // namespace TestSupport
