#include "ImageProcessing/Kernels/Arithmetic.h"

// Each is one loop without a branch, in forms that stay within 8 bits, so that the compiler has an
// instruction per vector of 16 samples for every step:
//
//     min(255, a + b)  =  min(a, 255 - b) + b
//     (a + b) / 2      =  (a & b) + ((a ^ b) >> 1)
//     max(0, a - b)    =  max(a, b) - b
//
// The half is that of the bits which both have, twice, and of the bits which only one has.

namespace Kernels {

namespace {

unsigned char Larger(unsigned char a, unsigned char b) {
    return a > b ? a : b;
}

unsigned char Smaller(unsigned char a, unsigned char b) {
    return a < b ? a : b;
}

} // namespace

void AddCutLine(const unsigned char* pA, const unsigned char* pB, long nSamples,
                unsigned char* pOut) {
    for (long i = 0; i < nSamples; ++i) {
        const auto nRoom = static_cast<unsigned char>(~pB[i]);
        pOut[i] = static_cast<unsigned char>(Smaller(pA[i], nRoom) + pB[i]);
    }
}

void AddHalfLine(const unsigned char* pA, const unsigned char* pB, long nSamples,
                 unsigned char* pOut) {
    for (long i = 0; i < nSamples; ++i)
        pOut[i] = static_cast<unsigned char>((pA[i] & pB[i]) + ((pA[i] ^ pB[i]) >> 1));
}

void SubtractLine(const unsigned char* pA, const unsigned char* pB, long nSamples,
                  unsigned char* pOut) {
    for (long i = 0; i < nSamples; ++i)
        pOut[i] = static_cast<unsigned char>(Larger(pA[i], pB[i]) - pB[i]);
}

void MaxLine(const unsigned char* pA, const unsigned char* pB, long nSamples, unsigned char* pOut) {
    for (long i = 0; i < nSamples; ++i)
        pOut[i] = Larger(pA[i], pB[i]);
}

} // namespace Kernels
