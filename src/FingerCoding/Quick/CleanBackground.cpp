#include "FingerCoding/Quick/CleanBackground.h"

// The mean is never formed: trunc(s / n) is at least 250 where s >= 250 * n, that is where the
// sum of what the n pixels lack to 255 is at most 5 * n, or 14045. Beyond that sums may be cut,
// and are 16 bits wide: 53 lines of 255 are 13515, and four columns of them still fit. Along a line
// 53 samples are summed as 3 * 16 + 4 + 1, of which all but the last are cut at 14046.

#include "ImageProcessing/Kernels/Scratch.h"
#include "Tools/InstructionLevel.h"

#include <cstring>

namespace Quick {

namespace {

using Kernels::ClScratch;

constexpr long cnHalf = cnFarWidth / 2;
constexpr int cnLossPerPixel = 5;
constexpr std::uint16_t cnAboveBounds = cnLossPerPixel * cnFarWidth * cnFarWidth + 1;

struct StLoss {
    static void Run(const unsigned char* __restrict pCapture, const unsigned char* __restrict pMask,
                    long nPixels, unsigned char* __restrict pOut) {
        for (long i = 0; i < nPixels; ++i)
            pOut[i] = static_cast<unsigned char>(pCapture[i] == 255 ? 255 : 255 - pMask[i]);
    }
};

std::uint16_t Cut(int nSum) {
    return std::min(static_cast<std::uint16_t>(nSum), cnAboveBounds);
}

/// How many of the places n - half to n + half lie in a frame.
long Inside(long n, long nSize) {
    return std::min(n + cnHalf, nSize - 1) - std::max(n - cnHalf, 0L) + 1;
}

/// One line of sums in several stages.
struct StSums {
    StSums(unsigned char* pMemory, long nWidth) {
        const auto nSamples = static_cast<std::size_t>(nWidth + 2 * cnHalf);
        const std::size_t nBytes = ClScratch::Aligned(nSamples * sizeof(std::uint16_t));
        for (std::uint16_t** pp : {&m_pColumns, &m_pFours, &m_pSixteens, &m_pBounds}) {
            *pp = reinterpret_cast<std::uint16_t*>(pMemory);
            pMemory += nBytes;
        }
        m_pEnd = pMemory;
    }
    std::uint16_t* m_pColumns = nullptr; ///< with half a window of zeros on either side
    std::uint16_t* m_pFours = nullptr;
    std::uint16_t* m_pSixteens = nullptr;
    std::uint16_t* m_pBounds = nullptr;
    unsigned char* m_pEnd = nullptr;
};

struct StFar {
    static bool Run(const StPlane* pLoss, const StPlane* pFade, unsigned char* pMemory,
                    const StPlane* pOut) {
        return StFar(*pLoss, *pFade, pMemory, *pOut).KeepLines();
    }

private:
    StFar(const StPlane& Loss, const StPlane& Fade, unsigned char* pMemory, const StPlane& Out)
        : m_Loss(Loss), m_Fade(Fade), m_Out(Out), m_Sums(pMemory, Loss.m_nWidth) {
        std::fill_n(m_Sums.m_pColumns, Loss.m_nWidth + 2 * cnHalf, std::uint16_t{0});
    }

    bool KeepLines() {
        for (long y = 0; y < cnHalf; ++y)
            Enter<1>(y);
        for (long y = 0; y < m_Loss.m_nHeight; ++y) {
            Enter<1>(y + cnHalf);
            Enter<-1>(y - cnHalf - 1);
            SetBounds(Inside(y, m_Loss.m_nHeight));
            KeepLine(y);
        }
        return m_nLeast == m_nMost;
    }

    template <int nSign>
    void Enter(long y) {
        if (y < 0 || y >= m_Loss.m_nHeight)
            return;
        const unsigned char* __restrict pLine = m_Loss.Line(y);
        std::uint16_t* __restrict pColumns = m_Sums.m_pColumns + cnHalf;
        const long nWidth = m_Loss.m_nWidth;
        for (long x = 0; x < nWidth; ++x)
            pColumns[x] = static_cast<std::uint16_t>(pColumns[x] + nSign * pLine[x]);
    }

    void SetBounds(long nLines) {
        if (nLines == m_nLinesOfBounds)
            return;
        m_nLinesOfBounds = nLines;
        for (long x = 0; x < m_Loss.m_nWidth; ++x)
            m_Sums.m_pBounds[x] =
                static_cast<std::uint16_t>(cnLossPerPixel * nLines * Inside(x, m_Loss.m_nWidth));
    }

    void KeepLine(long y) {
        const std::uint16_t* __restrict p = m_Sums.m_pColumns;
        std::uint16_t* __restrict pFours = m_Sums.m_pFours;
        std::uint16_t* __restrict pSixteens = m_Sums.m_pSixteens;
        const std::uint16_t* __restrict pBounds = m_Sums.m_pBounds;
        const unsigned char* __restrict pFade = m_Fade.Line(y);
        unsigned char* __restrict pOut = m_Out.Line(y);
        const long nWidth = m_Loss.m_nWidth;
        for (long i = 0; i < nWidth + 2 * cnHalf - 3; ++i)
            pFours[i] = Cut(p[i] + p[i + 1] + p[i + 2] + p[i + 3]);
        for (long i = 0; i < nWidth + 2 * cnHalf - 15; ++i)
            pSixteens[i] = Cut(pFours[i] + pFours[i + 4] + pFours[i + 8] + pFours[i + 12]);
        unsigned char nLeast = m_nLeast;
        unsigned char nMost = m_nMost;
        for (long x = 0; x < nWidth; ++x) {
            const std::uint16_t n32 = Cut(pSixteens[x] + pSixteens[x + 16]);
            const auto nSum =
                static_cast<std::uint16_t>(n32 + pSixteens[x + 32] + pFours[x + 48] + p[x + 52]);
            const unsigned char nKept = nSum <= pBounds[x] ? pFade[x] : 0;
            pOut[x] = nKept;
            nLeast = std::min(nLeast, nKept);
            nMost = std::max(nMost, nKept);
        }
        m_nLeast = nLeast;
        m_nMost = nMost;
    }

    const StPlane m_Loss;
    const StPlane m_Fade;
    const StPlane m_Out;
    StSums m_Sums;
    long m_nLinesOfBounds = -1;
    unsigned char m_nLeast = 255;
    unsigned char m_nMost = 0;
};

// Levels. The sum of a line fits in 32 bits up to 2^16 pixels.

struct StDirt {
    static std::uint32_t Run(const unsigned char* __restrict pCapture,
                             const unsigned char* __restrict pMask, long nPixels) {
        constexpr std::uint8_t cnPale = 205;
        std::uint32_t nSum = 0;
        for (long i = 0; i < nPixels; ++i) {
            const auto nDark = static_cast<std::uint8_t>(
                std::max(pCapture[i], cnPale) == cnPale ? cnPale - pCapture[i] : 0);
            const auto nSquare = static_cast<std::uint16_t>(nDark * nDark);
            const auto nWeight = static_cast<std::uint16_t>(nSquare * 0x8081U >> 23); // / 255
            nSum += static_cast<std::uint32_t>(nWeight * pMask[i]);
        }
        return nSum;
    }
};

struct StDry {
    static void Run(const unsigned char* __restrict pSmooth, int nOffset,
                    const unsigned char* __restrict pRidges, const unsigned char* __restrict pMask,
                    long nPixels, StDrySums* pSums) {
        std::uint32_t nWeights = 0;
        std::uint32_t nExcess = 0;
        for (long i = 0; i < nPixels; ++i) {
            const int nBright = std::clamp(pSmooth[i] + nOffset, 0, 255);
            const int nProb = std::min(nBright + pRidges[i], 255);
            const int nWeight = 255 - pMask[i];
            nWeights += static_cast<std::uint32_t>(nWeight);
            nExcess += static_cast<std::uint32_t>(std::max(nProb - 128, 0) * nWeight);
        }
        pSums->m_nWeights += nWeights;
        pSums->m_nExcess += nExcess;
    }
};

/// Where no ridges were looked for the probability is 255.
struct StDryOutside {
    static void Run(const unsigned char* __restrict pMask, long nPixels, StDrySums* pSums) {
        std::uint32_t nWeights = 0;
        for (long i = 0; i < nPixels; ++i)
            nWeights += static_cast<std::uint32_t>(255 - pMask[i]);
        pSums->m_nWeights += nWeights;
        pSums->m_nExcess += std::uint64_t{nWeights} * (255 - 128);
    }
};

} // namespace

std::size_t FarBackgroundBytes(long nWidth) {
    return static_cast<std::size_t>(StSums(nullptr, nWidth).m_pEnd -
                                    static_cast<unsigned char*>(nullptr));
}

void WriteLoss(const StPlane& Capture, const StPlane& Mask, const StPlane& Loss) {
    for (long y = 0; y < Loss.m_nHeight; ++y)
        RunAtLevel<StLoss>(Capture.Line(y), Mask.Line(y), Loss.m_nWidth, Loss.Line(y));
}

bool KeepFarBackground(const StPlane& Loss, const StPlane& Fade, unsigned char* pMemory,
                       const StPlane& Out) {
    return RunAtLevel<StFar>(&Loss, &Fade, pMemory, &Out);
}

std::uint64_t DirtSum(const StPlane& Capture, const StPlane& Mask) {
    std::uint64_t nSum = 0;
    for (long y = 0; y < Mask.m_nHeight; ++y)
        nSum += RunAtLevel<StDirt>(Capture.Line(y), Mask.Line(y), Mask.m_nWidth);
    return nSum;
}

void AddDrySums(const unsigned char* pSmooth, int nOffset, const unsigned char* pRidges,
                const unsigned char* pMask, long nPixels, StDrySums& rSums) {
    if (pRidges == nullptr)
        RunAtLevel<StDryOutside>(pMask, nPixels, &rSums);
    else
        RunAtLevel<StDry>(pSmooth, nOffset, pRidges, pMask, nPixels, &rSums);
}

} // namespace Quick
