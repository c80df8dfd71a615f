#include "Tools/MD5.h"

#include "Tools/Exception.h"
#include "Tools/FileStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

/// The integer part of 2^32 * |sin(i + 1)|.
constexpr std::uint32_t canSine[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

/// Left rotations, four per round, used in turn.
constexpr int canRotation[4][4] = {
    {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

/// The word of the block that step `i` takes: round r begins at `canFirst[r]`, goes by
/// `canStep[r]`.
constexpr int canFirst[4] = {0, 1, 5, 0};
constexpr int canStep[4] = {1, 5, 3, 7};

std::uint32_t RotatedLeft(std::uint32_t n, int nBits) {
    return (n << nBits) | (n >> (32 - nBits));
}

/// The function of round `r`, bit by bit.
std::uint32_t Mixed(int r, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    switch (r) {
    case 0:
        return (b & c) | (~b & d);
    case 1:
        return (b & d) | (c & ~d);
    case 2:
        return b ^ c ^ d;
    default:
        return c ^ (b | ~d);
    }
}

std::uint32_t Word(unsigned long n) {
    return static_cast<std::uint32_t>(n);
}

} // namespace

const unsigned char ClMD5::PADDING[64] = {0x80};

void ClMD5::Init(MD5_CTX* pContext) {
    *pContext = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, {0, 0}, {}};
}

void ClMD5::Update(MD5_CTX* pContext, const unsigned char* pData, unsigned long nSize) {
    unsigned long nUsed = (pContext->count[0] >> 3) & 63;
    const unsigned long nLow = pContext->count[0] + ((nSize << 3) & 0xffffffff);
    pContext->count[0] = Word(nLow);
    pContext->count[1] = Word(pContext->count[1] + (nSize >> 29) + (nLow >> 32));
    while (nSize > 0) {
        const unsigned long nTake = std::min(nSize, 64 - nUsed);
        MD5_memcpy(pContext->buffer + nUsed, pData, nTake);
        if (nUsed + nTake == 64)
            MD5Transform(pContext->state, pContext->buffer);
        nUsed = (nUsed + nTake) & 63;
        pData += nTake;
        nSize -= nTake;
    }
}

void ClMD5::Final(unsigned char* pDigest, MD5_CTX* pContext) {
    unsigned char aLength[8];
    Encode(aLength, pContext->count, sizeof aLength);
    const unsigned long nUsed = (pContext->count[0] >> 3) & 63;
    Update(pContext, PADDING, nUsed < 56 ? 56 - nUsed : 120 - nUsed);
    Update(pContext, aLength, sizeof aLength);
    Encode(pDigest, pContext->state, 16);
    MD5_memset(reinterpret_cast<unsigned char*>(pContext), 0, sizeof *pContext);
}

void ClMD5::MD5Transform(unsigned long* pState, const unsigned char* pBlock) {
    unsigned long anBlock[16];
    Decode(anBlock, pBlock, 64);
    std::uint32_t a = Word(pState[0]);
    std::uint32_t b = Word(pState[1]);
    std::uint32_t c = Word(pState[2]);
    std::uint32_t d = Word(pState[3]);
    for (int i = 0; i < 64; ++i) {
        const int r = i / 16;
        const std::uint32_t nWord = Word(anBlock[(canFirst[r] + canStep[r] * i) & 15]);
        const std::uint32_t nSum = a + Mixed(r, b, c, d) + nWord + canSine[i];
        a = d;
        d = c;
        c = b;
        b += RotatedLeft(nSum, canRotation[r][i & 3]);
    }
    pState[0] = Word(pState[0] + a);
    pState[1] = Word(pState[1] + b);
    pState[2] = Word(pState[2] + c);
    pState[3] = Word(pState[3] + d);
}

void ClMD5::Encode(unsigned char* pBytes, const unsigned long* pWords, unsigned long nBytes) {
    for (unsigned long i = 0; i < nBytes; ++i)
        pBytes[i] = static_cast<unsigned char>(pWords[i / 4] >> (i % 4 * 8));
}

void ClMD5::Decode(unsigned long* pWords, const unsigned char* pBytes, unsigned long nBytes) {
    for (unsigned long i = 0; i < nBytes; i += 4)
        pWords[i / 4] = pBytes[i] | static_cast<unsigned long>(pBytes[i + 1]) << 8 |
                        static_cast<unsigned long>(pBytes[i + 2]) << 16 |
                        static_cast<unsigned long>(pBytes[i + 3]) << 24;
}

void ClMD5::MD5_memcpy(unsigned char* pTo, const unsigned char* pFrom, unsigned long nSize) {
    std::memcpy(pTo, pFrom, nSize);
}

void ClMD5::MD5_memset(unsigned char* pTo, int nValue, unsigned long nSize) {
    std::memset(pTo, nValue, nSize);
}

void ClMD5::Make(const unsigned char* pData, unsigned long nSize, unsigned char* pDigest) {
    MD5_CTX Context;
    Init(&Context);
    Update(&Context, pData, nSize);
    Final(pDigest, &Context);
}

void ClMD5::Make(const char* pFileName, unsigned char* pDigest) {
    ClFileStream File(pFileName, "rb");
    MD5_CTX Context;
    Init(&Context);
    unsigned char aBlock[1024];
    while (const unsigned long nSize = File.Read(aBlock, sizeof aBlock))
        Update(&Context, aBlock, nSize);
    if (File.HasFailed())
        throw ClExStream("ClMD5::Make. Failed to read", QMT_ERROR_IO, true, VEK_HERE);
    File.Close();
    Final(pDigest, &Context);
}

void ClMD5::Make(const char* pFileName, const char* pDigestFileName) {
    unsigned char aDigest[16];
    Make(pFileName, aDigest);
    ClFileStream File(pDigestFileName, "wb");
    File.SetThrowOnShort(true);
    File.Write(aDigest, sizeof aDigest);
    File.Close();
}
