#include "FingerCoding/Quick/Defects.h"

#include "FingerCoding/Quick/Filters.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/Kernels/LinearFilter.h"
#include "Tools/FpImage.h"
#include "Tools/InstructionLevel.h"

#include <array>

namespace Quick {

namespace {

constexpr double cdFineSigma = 1.5;
constexpr long cnTaps = 13;
constexpr long cnCoarseHalf = 25;
constexpr int cnFullDefect = 64; ///< the difference that becomes white

struct StScaleInverse {
    static void Run(const unsigned char* __restrict pIn, long nPixels,
                    unsigned char* __restrict pOut) {
        constexpr unsigned char cnThird = 85;
        for (long i = 0; i < nPixels; ++i)
            pOut[i] = static_cast<unsigned char>(
                3 * std::min(static_cast<unsigned char>(255 - pIn[i]), cnThird));
    }
};

/// With x = |fine - coarse| - noise the value x * step / 4096 is white from 64 - noise on, so that
/// larger ones need not be told apart, and x * step is below 2^20. With step = 256 h + l
///
///     floor(x (256 h + l) / 4096) = floor((x h + floor(x l / 256)) / 16),
///
/// where all is below 2^16.
struct StStress {
    static void Run(const unsigned char* __restrict pFine, const unsigned char* __restrict pCoarse,
                    const unsigned char* __restrict pFade, int nNoise, long nPixels,
                    unsigned char* __restrict pOut) {
        const auto nMost = static_cast<std::int16_t>(cnFullDefect - nNoise);
        const int nStep = static_cast<int>(255.9 * 4096.0 / nMost);
        const auto nHigh = static_cast<std::uint16_t>(nStep >> 8);
        const auto nLow = static_cast<std::uint16_t>(nStep & 255);
        const auto nFloor = static_cast<std::int16_t>(nNoise);
        for (long i = 0; i < nPixels; ++i) {
            const auto nDifference = static_cast<std::int16_t>(pFine[i] - pCoarse[i]);
            const auto nOpposite = static_cast<std::int16_t>(-nDifference);
            const auto nExcess =
                static_cast<std::int16_t>(std::max(nDifference, nOpposite) - nFloor);
            const auto x =
                static_cast<std::uint16_t>(std::min(std::max(nExcess, std::int16_t{0}), nMost));
            const auto nPart =
                static_cast<std::uint16_t>(static_cast<std::uint16_t>(x * nLow) >> 8);
            const auto nStretched = static_cast<std::int16_t>(
                static_cast<std::uint16_t>(static_cast<std::uint16_t>(x * nHigh) + nPart) >> 4);
            const auto nFaded = static_cast<std::int16_t>(nStretched + pFade[i] - 255);
            pOut[i] = static_cast<unsigned char>(std::max(nFaded, std::int16_t{0}));
        }
    }
};

struct StSumDefects {
    static void Run(const unsigned char* __restrict pPixels, long nPixels, StDefectSums* pSums) {
        std::int32_t nWhite = 0;
        std::uint32_t nSum = 0; // of 2^24 pixels and more
        for (long i = 0; i < nPixels; ++i) {
            nWhite += pPixels[i] == 255 ? 1 : 0;
            nSum += pPixels[i];
        }
        pSums->m_nWhite += nWhite;
        pSums->m_nSum += nSum;
    }
};

Kernels::ClLinearFilter FineKernel(const StPlane& In) {
    ClImage Layout;
    Layout.Attach(nullptr, ClImage::eUInt8, static_cast<int>(In.m_nWidth),
                  static_cast<int>(In.m_nHeight), 1, 1, 1);
    ClImage Out;
    ClIpFilterGauss Filter;
    Filter.m_pInImage = &Layout;
    Filter.m_pOutImage = &Out;
    Filter.m_dSigma = cdFineSigma;
    Filter.Initialize();
    return {Filter.Filter().Data(), static_cast<long>(Filter.Filter().Entries()), In.m_nWidth};
}

} // namespace

StDefectSums WriteDefects(const StPlane& In, int nNoise, const StPlane& Fade,
                          Kernels::ClScratch& rMemory, Kernels::ClScratch& rScratch,
                          const StPlane& Out) {
    const auto nStride = Kernels::ClScratch::Aligned(static_cast<std::size_t>(In.m_nWidth));
    const std::size_t nPlane = nStride * static_cast<std::size_t>(In.m_nHeight);
    unsigned char* pMemory = rMemory.Reserve(2 * nPlane + nStride);
    const auto nBytes = static_cast<std::ptrdiff_t>(nStride);
    const StPlane Scaled{pMemory, nBytes, In.m_nWidth, In.m_nHeight};
    const StPlane Coarse{pMemory + nPlane, nBytes, In.m_nWidth, In.m_nHeight};
    unsigned char* pFine = pMemory + 2 * nPlane;
    for (long y = 0; y < In.m_nHeight; ++y)
        RunAtLevel<StScaleInverse>(In.Line(y), In.m_nWidth, Scaled.Line(y));
    Mean(Scaled, cnCoarseHalf, Coarse, rScratch);
    Kernels::ClLinearFilter Fine = FineKernel(In);
    StDefectSums Sums;
    std::array<const unsigned char*, cnTaps> apLines;
    for (long y = 0; y < In.m_nHeight; ++y) {
        for (long i = 0; i < cnTaps; ++i)
            apLines[static_cast<std::size_t>(i)] =
                Scaled.Line(std::clamp(y + i - cnTaps / 2, 0L, In.m_nHeight - 1));
        Fine.FilterBoth(apLines.data(), pFine);
        RunAtLevel<StStress>(pFine, Coarse.Line(y), Fade.Line(y), nNoise, In.m_nWidth, Out.Line(y));
        RunAtLevel<StSumDefects>(Out.Line(y), In.m_nWidth, &Sums);
    }
    return Sums;
}

} // namespace Quick
