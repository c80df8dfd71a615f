#include "FingerCoding/Quick/Defects.h"

#include "FingerCoding/Quick/Filters.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/Kernels/PairedFilter.h"
#include "Tools/FpImage.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <cstdint>

namespace Quick {

namespace {

constexpr double cdFineSigma = 1.5;
constexpr long cnCoarseHalf = 25;
constexpr int cnFullDefect = 64; ///< the difference that becomes white

struct StScaleInverse {
    static void Run(const StPlane* pIn, const StPlane* pOut) {
        const StPlane In = *pIn;
        const StPlane Out = *pOut;
        for (long y = 0; y < In.m_nHeight; ++y)
            Kernels::InPairedRounds(In.m_nWidth, [&](long nFrom, long nPixels) {
                ScaleLine(In.Line(y) + nFrom, nPixels, Out.Line(y) + nFrom);
            });
    }

private:
    static void ScaleLine(const unsigned char* pIn, long nPixels, unsigned char* __restrict pOut) {
        constexpr unsigned char cnThird = 85;
        for (long i = 0; i < nPixels; ++i)
            pOut[i] = static_cast<unsigned char>(
                3 * std::min(static_cast<unsigned char>(255 - pIn[i]), cnThird));
    }
};

struct StPlanesOfDefects {
    StPlane m_Scaled;
    StPlane m_Fade;
    StPlane m_Out; ///< the coarse image at first
};

/// Sums of columns in 16 bits, as far as they go.
class ClColumnSums {
public:
    static constexpr long cnMostLines = 257; ///< of pixels of 255

    static std::size_t Bytes(long nWidth) {
        return 2 * Kernels::PairedLine(nWidth) * sizeof(std::uint16_t);
    }

    ClColumnSums(unsigned char* pMemory, long nWidth)
        : m_nWidth(static_cast<std::size_t>(nWidth)), m_nColumns(Kernels::PairedLine(nWidth)),
          m_pGrey(reinterpret_cast<std::uint16_t*>(pMemory)), m_pWhite(m_pGrey + m_nColumns) {
        Clear();
    }

    /// Of whole rounds of columns.
    std::uint16_t* Grey() const { return m_pGrey; }
    std::uint16_t* White() const { return m_pWhite; }

    void MoveTo(StDefectSums* pSums) {
        std::uint64_t nSum = 0;
        std::int32_t nWhite = 0;
        for (std::size_t x = 0; x < m_nWidth; ++x) {
            nSum += m_pGrey[x];
            nWhite += m_pWhite[x];
        }
        pSums->m_nSum += nSum;
        pSums->m_nWhite += nWhite;
        Clear();
    }

private:
    void Clear() { std::fill_n(m_pGrey, 2 * m_nColumns, std::uint16_t{0}); }

    std::size_t m_nWidth;
    std::size_t m_nColumns; ///< in whole rounds
    std::uint16_t* m_pGrey;
    std::uint16_t* m_pWhite;
};

/// With x = |fine - coarse| - noise the value x * step / 4096 is white from 64 - noise on, so that
/// larger ones need not be told apart, and x * step is below 2^20. With step = 256 h + l
///
///     floor(x (256 h + l) / 4096) = floor((x h + floor(x l / 256)) / 16),
///
/// where all is below 2^16.
class ClStress {
public:
    explicit ClStress(int nNoise)
        : m_nNoise(static_cast<std::int16_t>(nNoise)),
          m_nMost(static_cast<std::int16_t>(cnFullDefect - nNoise)) {
        const int nStep = static_cast<int>(255.9 * 4096.0 / m_nMost);
        m_nHigh = static_cast<std::uint16_t>(nStep >> 8);
        m_nLow = static_cast<std::uint16_t>(nStep & 255);
    }

    /// The coarse line becomes one of defects. The rest behind its rounds goes by way of a round of
    /// its own.
    void ChangeLine(const std::uint16_t* pFine, const unsigned char* pFade, long nPixels,
                    unsigned char* pLine, const ClColumnSums& Sums) const {
        const long nWhole = nPixels / Kernels::cnPairedRound * Kernels::cnPairedRound;
        const long nRest = nPixels - nWhole;
        ChangeRounds(pFine, pFade, nWhole, pLine, Sums.Grey(), Sums.White());
        if (nRest == 0)
            return;
        unsigned char aFade[Kernels::cnPairedRound] = {};
        unsigned char aLine[Kernels::cnPairedRound] = {};
        std::copy_n(pFade + nWhole, nRest, aFade);
        std::copy_n(pLine + nWhole, nRest, aLine);
        ChangeRounds(pFine + nWhole, aFade, Kernels::cnPairedRound, aLine, Sums.Grey() + nWhole,
                     Sums.White() + nWhole);
        std::copy_n(aLine, nRest, pLine + nWhole);
    }

private:
    void ChangeRounds(const std::uint16_t* pFine, const unsigned char* pFade, long nPixels,
                      unsigned char* __restrict pLine, std::uint16_t* __restrict pGrey,
                      std::uint16_t* __restrict pWhite) const {
        const ClStress Stress = *this;
        for (long x = 0; x < nPixels; ++x) {
            const auto nFaded =
                static_cast<std::int16_t>(Stress.Of(pFine[x], pLine[x]) + pFade[x] - 255);
            const auto nDefect = static_cast<std::uint16_t>(std::max(nFaded, std::int16_t{0}));
            pLine[x] = static_cast<unsigned char>(nDefect);
            pGrey[x] = static_cast<std::uint16_t>(pGrey[x] + nDefect);
            pWhite[x] = static_cast<std::uint16_t>(pWhite[x] + ((nDefect + 1) >> 8));
        }
    }

    std::int16_t Of(std::uint16_t nFine, std::uint16_t nCoarse) const {
        const auto nDifference = static_cast<std::int16_t>(nFine - nCoarse);
        const auto nOpposite = static_cast<std::int16_t>(-nDifference);
        const auto nExcess = static_cast<std::int16_t>(std::max(nDifference, nOpposite) - m_nNoise);
        const auto x =
            static_cast<std::uint16_t>(std::min(std::max(nExcess, std::int16_t{0}), m_nMost));
        const auto nPart = static_cast<std::uint16_t>(static_cast<std::uint16_t>(x * m_nLow) >> 8);
        return static_cast<std::int16_t>(
            static_cast<std::uint16_t>(static_cast<std::uint16_t>(x * m_nHigh) + nPart) >> 4);
    }

    std::int16_t m_nNoise;
    std::int16_t m_nMost;
    std::uint16_t m_nHigh;
    std::uint16_t m_nLow;
};

template <class Room>
struct StWriteDefects {
    using Fine = Kernels::StFilterBoth<Room>;

    static std::size_t Bytes(long nWidth) {
        return Fine::Bytes(nWidth) + ClColumnSums::Bytes(nWidth);
    }

    static void Run(const Kernels::ClPairedTaps* pTaps, unsigned char* pMemory,
                    const StPlanesOfDefects* pPlanes, int nNoise, StDefectSums* pSums) {
        const StPlanesOfDefects Planes = *pPlanes;
        const long nWidth = Planes.m_Out.m_nWidth;
        const ClStress Stress(nNoise);
        ClColumnSums Sums(pMemory + Fine::Bytes(nWidth), nWidth);
        Fine::RunLines(
            *pTaps, pMemory, nWidth, Planes.m_Out.m_nHeight,
            [&](long y, std::uint16_t* pLine) {
                Kernels::Widen(Planes.m_Scaled.Line(y), nWidth, pLine);
            },
            [&](long y, const std::uint16_t* pFine) {
                Stress.ChangeLine(pFine, Planes.m_Fade.Line(y), nWidth, Planes.m_Out.Line(y), Sums);
                if ((y + 1) % ClColumnSums::cnMostLines == 0)
                    Sums.MoveTo(pSums);
            });
        Sums.MoveTo(pSums);
    }
};

/// The taps that the operator has on images of this size.
Kernels::ClPairedTaps FineTaps(const StPlane& In) {
    ClImage Layout;
    Layout.Attach(nullptr, ClImage::eUInt8, static_cast<int>(In.m_nWidth),
                  static_cast<int>(In.m_nHeight), 1, 1, 1);
    ClImage Out;
    ClIpFilterGauss Filter;
    Filter.m_pInImage = &Layout;
    Filter.m_pOutImage = &Out;
    Filter.m_dSigma = cdFineSigma;
    Filter.Initialize();
    return {Filter.Filter().Data(), static_cast<long>(Filter.Filter().Entries())};
}

} // namespace

StDefectSums WriteDefects(const StPlane& In, int nNoise, const StPlane& Fade,
                          Kernels::ClScratch& rMemory, Kernels::ClScratch& rScratch,
                          const StPlane& Out) {
    using Kernel = StWriteDefects<Kernels::StEvenRoom<5, 4>>; // holds the taps of a sigma of 1.5
    const Kernels::ClPairedTaps Taps = FineTaps(In);
    const auto nStride = Kernels::ClScratch::Aligned(static_cast<std::size_t>(In.m_nWidth));
    const std::size_t nPlane = nStride * static_cast<std::size_t>(In.m_nHeight);
    unsigned char* pMemory = rMemory.Reserve(nPlane + Kernel::Bytes(In.m_nWidth));
    const StPlane Scaled{pMemory, static_cast<std::ptrdiff_t>(nStride), In.m_nWidth, In.m_nHeight};
    RunAtLevel<StScaleInverse>(&In, &Scaled);
    Mean(Scaled, cnCoarseHalf, Out, rScratch);
    const StPlanesOfDefects Planes{Scaled, Fade, Out};
    StDefectSums Sums;
    RunAtLevel<Kernel>(&Taps, pMemory + nPlane, &Planes, nNoise, &Sums);
    return Sums;
}

} // namespace Quick
