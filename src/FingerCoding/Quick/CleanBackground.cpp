#include "FingerCoding/Quick/CleanBackground.h"

// The mean is never formed: trunc(s / n) is at least 250 where s >= 250 * n, that is where the
// sum of what the n pixels lack to 255 is at most 5 * n, or 14045. Beyond that sums may be cut,
// and are 16 bits wide: 53 lines of 255 are 13515, and four columns of them still fit. Along a line
// 53 samples are summed as 3 * 16 + 4 + 1, of which all but the last are cut at 14046.

#include "FingerCoding/Quick/LineSums.h"
#include "ImageProcessing/Kernels/Scratch.h"
#include "Tools/InstructionLevel.h"

#include <cstring>

namespace Quick {

namespace {

using namespace LineSums;

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

/// Lines of sums in several stages, with half a window on either side.
struct StSums {
    template <class Memory>
    StSums(Memory& rMemory, long nWidth) : m_nSamples(nWidth + 2 * cnHalf) {
        m_pColumns = rMemory.template Take<std::uint16_t>(m_nSamples);
        m_pFours = rMemory.template Take<std::uint16_t>(m_nSamples);
        m_pSixteens = rMemory.template Take<std::uint16_t>(m_nSamples);
        m_pBounds = rMemory.template Take<std::uint16_t>(m_nSamples);
        m_pNothing = rMemory.template Take<std::uint8_t>(m_nSamples);
    }
    long m_nSamples;
    std::uint16_t* m_pColumns;
    std::uint16_t* m_pFours;
    std::uint16_t* m_pSixteens;
    std::uint16_t* m_pBounds;
    std::uint8_t* m_pNothing; ///< a line without loss
};

/// The fade where the sum of 53 columns is within its bound, else 0.
void Keep(const std::uint16_t* __restrict p, const std::uint16_t* __restrict pFours,
          const std::uint16_t* __restrict pSixteens, const std::uint16_t* __restrict pBounds,
          const unsigned char* __restrict pFade, long nPixels, unsigned char* __restrict pOut) {
    for (long i = 0; i < nPixels; ++i) {
        const std::uint16_t n32 =
            std::min(static_cast<std::uint16_t>(pSixteens[i] + pSixteens[i + 16]), cnAboveBounds);
        const auto nSum =
            static_cast<std::uint16_t>(n32 + pSixteens[i + 32] + pFours[i + 48] + p[i + 52]);
        pOut[i] = static_cast<unsigned char>(nSum <= pBounds[i] ? pFade[i] : 0);
    }
}

struct StFar {
    static void Run(const StPlane* pLoss, const StPlane* pFade, unsigned char* pMemory,
                    const StPlane* pOut) {
        ClLineMemory Memory(pMemory);
        StFar(*pLoss, *pFade, Memory, *pOut).KeepLines();
    }

private:
    StFar(const StPlane& Loss, const StPlane& Fade, ClLineMemory& rMemory, const StPlane& Out)
        : m_Loss(Loss), m_Fade(Fade), m_Out(Out), m_L(rMemory, Loss.m_nWidth) {
        std::fill_n(m_L.m_pColumns, Room(m_L.m_nSamples), std::uint16_t{0});
        std::memset(m_L.m_pNothing, 0, Room(m_L.m_nSamples));
    }

    void KeepLines() {
        for (long y = -cnHalf; y < m_Loss.m_nHeight; ++y) {
            Exchange(LineOf(y + cnHalf), LineOf(y - cnHalf - 1), m_Loss.m_nWidth,
                     m_L.m_pColumns + cnHalf);
            if (y >= 0)
                KeepLine(y);
        }
    }

    const unsigned char* LineOf(long y) const {
        return y >= 0 && y < m_Loss.m_nHeight ? m_Loss.Line(y) : m_L.m_pNothing;
    }

    void SetBounds(long nLines) {
        if (nLines == m_nLinesOfBounds)
            return;
        m_nLinesOfBounds = nLines;
        FillBounds(cnLossPerPixel, nLines, 0, cnHalf, m_Loss.m_nWidth, m_Loss.m_nWidth,
                   m_L.m_pBounds);
    }

    void KeepLine(long y) {
        SetBounds(Inside(y, cnHalf, m_Loss.m_nHeight));
        SumFours<1>(m_L.m_pColumns, m_L.m_nSamples, cnAboveBounds, m_L.m_pFours);
        SumFours<4>(m_L.m_pFours, m_L.m_nSamples, cnAboveBounds, m_L.m_pSixteens);
        Keep(m_L.m_pColumns, m_L.m_pFours, m_L.m_pSixteens, m_L.m_pBounds, m_Fade.Line(y),
             m_Loss.m_nWidth, m_Out.Line(y));
    }

    const StPlane m_Loss;
    const StPlane m_Fade;
    const StPlane m_Out;
    StSums m_L;
    long m_nLinesOfBounds = -1;
};

/// Whether all samples are `nValue`.
struct StUniform {
    static bool Run(const unsigned char* __restrict p, long nSamples, unsigned char nValue) {
        unsigned char nOther = 0;
        for (long i = 0; i < nSamples; ++i)
            nOther = static_cast<unsigned char>(nOther | (p[i] ^ nValue));
        return nOther == 0;
    }
};

// Levels. The sum of a line fits in 32 bits up to 2^16 pixels.

struct StDirt {
    static std::uint32_t Run(const unsigned char* __restrict pCapture,
                             const unsigned char* __restrict pMask, long nPixels) {
        constexpr std::uint8_t cnPale = 205;
        std::uint32_t nSum = 0;
        for (long i = 0; i < nPixels; ++i) {
            const auto nDark = static_cast<std::uint8_t>(cnPale - std::min(pCapture[i], cnPale));
            const auto nSquare = static_cast<std::uint16_t>(nDark * nDark);
            const auto nWeight = static_cast<std::uint16_t>(nSquare * 0x8081U >> 23); // / 255
            nSum += static_cast<std::uint32_t>(nWeight * pMask[i]);
        }
        return nSum;
    }
};

struct StDry {
    static void Run(StBrightProb Bright, const unsigned char* __restrict pSmooth,
                    const unsigned char* __restrict pRidges, const unsigned char* __restrict pMask,
                    long nPixels, StDrySums* pSums) {
        constexpr std::uint16_t cnDecision = 128;
        constexpr std::uint16_t cnWhite = 255;
        std::uint32_t nWeights = 0;
        std::uint32_t nExcess = 0;
        for (long i = 0; i < nPixels; ++i) {
            const auto nSum = static_cast<std::uint16_t>(Bright.Of(pSmooth[i]) + pRidges[i]);
            const std::uint16_t nProb = std::min(std::max(nSum, cnDecision), cnWhite);
            const auto nWeight = static_cast<std::uint16_t>(255 - pMask[i]);
            nWeights += nWeight;
            nExcess += static_cast<std::uint16_t>((nProb - cnDecision) * nWeight);
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
    ClLineMemorySize Size;
    static_cast<void>(StSums(Size, nWidth));
    return Size.Bytes();
}

void WriteLoss(const StPlane& Capture, const StPlane& Mask, const StPlane& Loss) {
    for (long y = 0; y < Loss.m_nHeight; ++y)
        RunAtLevel<StLoss>(Capture.Line(y), Mask.Line(y), Loss.m_nWidth, Loss.Line(y));
}

void KeepFarBackground(const StPlane& Loss, const StPlane& Fade, unsigned char* pMemory,
                       const StPlane& Out) {
    RunAtLevel<StFar>(&Loss, &Fade, pMemory, &Out);
}

bool IsUniform(const StPlane& Plane) {
    const unsigned char nValue = Plane.Line(0)[0];
    for (long y = 0; y < Plane.m_nHeight; ++y)
        if (!RunAtLevel<StUniform>(Plane.Line(y), Plane.m_nWidth, nValue))
            return false;
    return true;
}

std::uint64_t DirtSum(const StPlane& Capture, const StPlane& Mask) {
    std::uint64_t nSum = 0;
    for (long y = 0; y < Mask.m_nHeight; ++y)
        nSum += RunAtLevel<StDirt>(Capture.Line(y), Mask.Line(y), Mask.m_nWidth);
    return nSum;
}

void AddDrySums(const StBrightProb& Bright, const unsigned char* pSmooth,
                const unsigned char* pRidges, const unsigned char* pMask, long nPixels,
                StDrySums& rSums) {
    RunAtLevel<StDry>(Bright, pSmooth, pRidges, pMask, nPixels, &rSums);
}

void AddDrySums(const unsigned char* pMask, long nPixels, StDrySums& rSums) {
    RunAtLevel<StDryOutside>(pMask, nPixels, &rSums);
}

} // namespace Quick
