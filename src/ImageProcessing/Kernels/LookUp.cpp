#include "ImageProcessing/Kernels/LookUp.h"

// No vector instruction that every processor has looks up 256 bytes, and a load per sample is slow
// beside arithmetic on 16 to 64 samples at once. The tables of thresholds, offsets, inversions,
// factors and stretched ranges are functions that take few steps of 8 and 16 bits. A table that
// is none of them is looked up.
//
// A form is taken only where it gives every one of the 256 entries. For the ray,
//
//     out = min(floor(f x), top)     x = min(max(0, in - origin), x of the first entry that is top)
//
// each entry t below top leaves f an interval, t <= f x < t + 1, and top one without an end; f is
// the beginning of what is left of all intervals, in units of 2^-23. With f 2^7 = a + b / 2^16, a
// and b integers, floor(f x 2^7) is a x + floor(b x / 2^16): a lower and an upper half of products
// of 16 bits. For all x but the last, f x is below 256, so that the sum holds in 16 bits; the last
// is top.

#include "ImageProcessing/Kernels/SampleBySample.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <cstring>

namespace Kernels {

namespace {

constexpr int cnValues = 256;
constexpr int cnFactorBits = 23;

unsigned char Smaller(unsigned char a, unsigned char b) {
    return a < b ? a : b;
}

/// max(0, a - b)
unsigned char Difference(unsigned char a, unsigned char b) {
    return static_cast<unsigned char>((a > b ? a : b) - b);
}

/// min(255, a + b)
unsigned char Sum(unsigned char a, unsigned char b) {
    return static_cast<unsigned char>(Smaller(a, static_cast<unsigned char>(~b)) + b);
}

/// `work(in, out)` for each sample.
template <class Work>
void ForEachSample(const unsigned char* pIn, long nSamples, unsigned char* pOut, Work work) {
    TESSARIN_SAMPLE_BY_SAMPLE
    for (long i = 0; i < nSamples; ++i)
        pOut[i] = work(pIn[i]);
}

} // namespace

// Each of these runs one line.

struct StStepLines {
    static void Line(const ClLookUp& T, const unsigned char* pIn, long nSamples,
                     unsigned char* pOut) {
        const unsigned char nFirst = T.m_nFirst;
        const unsigned char nLow = T.m_nLow;
        const unsigned char nChange = T.m_nChange;
        ForEachSample(pIn, nSamples, pOut, [=](unsigned char n) {
            const auto nMask = static_cast<unsigned char>(n >= nFirst ? nChange : 0);
            return static_cast<unsigned char>(nLow ^ nMask);
        });
    }
};

struct StShiftLines {
    static void Line(const ClLookUp& T, const unsigned char* pIn, long nSamples,
                     unsigned char* pOut) {
        const unsigned char nFlip = T.m_nFlip;
        const unsigned char nUp = T.m_nUp;
        const unsigned char nDown = T.m_nDown;
        ForEachSample(pIn, nSamples, pOut, [=](unsigned char n) {
            return Difference(Sum(static_cast<unsigned char>(n ^ nFlip), nUp), nDown);
        });
    }
};

struct StRayLines {
    static void Line(const ClLookUp& T, const unsigned char* pIn, long nSamples,
                     unsigned char* pOut) {
        const unsigned char nOrigin = T.m_nFirst;
        const unsigned char nLargest = T.m_nLargestX;
        const unsigned char nTop = T.m_nTop;
        const std::uint16_t nWhole = T.m_nWhole;
        const std::uint16_t nPart = T.m_nPart;
        ForEachSample(pIn, nSamples, pOut, [=](unsigned char n) {
            const std::uint16_t x = Smaller(Difference(n, nOrigin), nLargest);
            const auto nUpperHalf = static_cast<std::uint16_t>(std::uint32_t{x} * nPart >> 16);
            const auto nProduct = static_cast<std::uint16_t>(x * nWhole + nUpperHalf);
            const auto nValue = static_cast<unsigned char>(nProduct >> (cnFactorBits - 16));
            return x < nLargest ? nValue : nTop;
        });
    }
};

struct StTableLines {
    static void Line(const ClLookUp& T, const unsigned char* pIn, long nSamples,
                     unsigned char* pOut) {
        LookUpLine(pIn, nSamples, T.m_aTable, pOut);
    }
};

namespace {

template <class Lines>
struct StPlaneOf {
    static void Run(const ClLookUp* pTable, const unsigned char* pIn, std::ptrdiff_t nInStride,
                    long nSamples, long nLines, unsigned char* pOut, std::ptrdiff_t nOutStride) {
        if (nInStride == nSamples && nOutStride == nSamples) { // the lines are one
            nSamples *= nLines;
            nLines = 1;
        }
        for (long y = 0; y < nLines; ++y)
            Lines::Line(*pTable, pIn + y * nInStride, nSamples, pOut + y * nOutStride);
    }
};

} // namespace

ClLookUp::ClLookUp(const unsigned char* pTable) {
    std::memcpy(m_aTable, pTable, sizeof m_aTable);
    if (IsStep(pTable))
        m_eForm = EForm::eStep;
    else if (IsShift(pTable, 0) || IsShift(pTable, 255))
        m_eForm = EForm::eShift;
    else if (IsRay(pTable, static_cast<int>(std::count(pTable, pTable + cnValues, 0)) - 1) ||
             IsRay(pTable, 0))
        m_eForm = EForm::eRay;
    else
        m_eForm = EForm::eTable;
}

bool ClLookUp::IsStep(const unsigned char* pTable) {
    const unsigned char* pLast = pTable + cnValues - 1;
    const unsigned char* pFirst = std::find(pTable, pLast, *pLast);
    m_nFirst = static_cast<unsigned char>(pFirst - pTable);
    m_nLow = *pTable;
    m_nChange = static_cast<unsigned char>(*pTable ^ *pLast);
    return std::count(pTable, pFirst, *pTable) == pFirst - pTable &&
           std::count(pFirst, pLast, *pLast) == pLast - pFirst;
}

/// An entry that is neither 0 nor 255 tells the constant; tables without any are steps, or no
/// shifts of samples one apart.
bool ClLookUp::IsShift(const unsigned char* pTable, unsigned char nFlip) {
    const auto isInside = [](unsigned char n) { return n != 0 && n != 255; };
    const auto nInside = std::find_if(pTable, pTable + cnValues, isInside) - pTable;
    if (nInside == cnValues)
        return false;
    const int nShift = pTable[nInside] - (static_cast<int>(nInside) ^ nFlip);
    m_nFlip = nFlip;
    m_nUp = static_cast<unsigned char>(std::max(nShift, 0));
    m_nDown = static_cast<unsigned char>(std::max(-nShift, 0));
    for (int i = 0; i < cnValues; ++i)
        if (pTable[i] != std::clamp((i ^ nFlip) + nShift, 0, 255))
            return false;
    return true;
}

bool ClLookUp::IsRay(const unsigned char* pTable, int nOrigin) {
    if (nOrigin < 0 || nOrigin >= cnValues - 1)
        return false;
    const unsigned char nTop = pTable[cnValues - 1];
    const long nFirstTop = std::find(pTable, pTable + cnValues, nTop) - pTable;
    if (std::count(pTable, pTable + nOrigin + 1, 0) != nOrigin + 1 ||
        std::count(pTable + nFirstTop, pTable + cnValues, nTop) != cnValues - nFirstTop)
        return false;
    std::uint32_t nLeast = 0;
    std::uint32_t nEnd = UINT32_MAX;
    for (long i = nOrigin + 1; i <= nFirstTop; ++i) {
        const auto x = static_cast<std::uint32_t>(i - nOrigin);
        const auto firstFactor = [x](std::uint32_t n) { return ((n << cnFactorBits) + x - 1) / x; };
        nLeast = std::max(nLeast, firstFactor(pTable[i]));
        if (i < nFirstTop)
            nEnd = std::min(nEnd, firstFactor(pTable[i] + 1U));
    }
    m_nFirst = static_cast<unsigned char>(nOrigin);
    m_nLargestX = static_cast<unsigned char>(nFirstTop - nOrigin);
    m_nTop = nTop;
    m_nWhole = static_cast<std::uint16_t>(nLeast >> 16);
    m_nPart = static_cast<std::uint16_t>(nLeast);
    return nLeast < nEnd;
}

void ClLookUp::Run(const unsigned char* pIn, std::ptrdiff_t nInStride, long nSamples, long nLines,
                   unsigned char* pOut, std::ptrdiff_t nOutStride) const {
    switch (m_eForm) {
    case EForm::eStep:
        return RunAtLevel<StPlaneOf<StStepLines>>(this, pIn, nInStride, nSamples, nLines, pOut,
                                                  nOutStride);
    case EForm::eShift:
        return RunAtLevel<StPlaneOf<StShiftLines>>(this, pIn, nInStride, nSamples, nLines, pOut,
                                                   nOutStride);
    case EForm::eRay:
        return RunAtLevel<StPlaneOf<StRayLines>>(this, pIn, nInStride, nSamples, nLines, pOut,
                                                 nOutStride);
    default:
        return StPlaneOf<StTableLines>::Run(this, pIn, nInStride, nSamples, nLines, pOut,
                                            nOutStride);
    }
}

void LookUpLine(const unsigned char* pIn, long nSamples, const unsigned char* pTable,
                unsigned char* pOut) {
    constexpr int cnRound = 8; // samples of one load and one store
    long i = 0;
    for (; i + cnRound <= nSamples; i += cnRound) {
        std::uint64_t nIn = 0;
        std::uint64_t nOut = 0;
        std::memcpy(&nIn, pIn + i, sizeof nIn);
        for (int n = 0; n < 64; n += 8)
            nOut |= static_cast<std::uint64_t>(pTable[nIn >> n & 0xFF]) << n;
        std::memcpy(pOut + i, &nOut, sizeof nOut);
    }
    for (; i < nSamples; ++i)
        pOut[i] = pTable[pIn[i]];
}

} // namespace Kernels
