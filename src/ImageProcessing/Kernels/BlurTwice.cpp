#include "ImageProcessing/Kernels/BlurTwice.h"

// The lines of the first means go into a ring, from which the second takes them while they are in
// the nearest cache: a window's lines and those of one batch. The second follows half a window
// behind the first.
//
// Windows beyond what MeanLines.h takes are the two passes that they stand for.

#include "ImageProcessing/Kernels/Mean.h"
#include "ImageProcessing/Kernels/MeanLines.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <memory>

namespace Kernels {

namespace {

using T = unsigned char;

struct StPlanes {
    const T* In(long y) const { return m_pIn + y * m_nInStride; }
    T* Out(long y) const { return m_pOut + y * m_nOutStride; }

    const T* m_pIn;
    std::ptrdiff_t m_nInStride;
    long m_nWidth;
    long m_nHeight;
    long m_nHalfX; ///< below the width
    long m_nHalfY; ///< below the height
    T* m_pOut;
    std::ptrdiff_t m_nOutStride;
};

StPlanes Planes(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalf,
                T* pOut, std::ptrdiff_t nOutStride) {
    return {
        pIn,  nInStride, nWidth, nHeight, std::min(nHalf, nWidth - 1), std::min(nHalf, nHeight - 1),
        pOut, nOutStride};
}

/// A power of two of lines, so that one is found without a division.
class ClRing {
public:
    ClRing(T* pLines, long nWidth, long nLines)
        : m_pLines(pLines), m_nStride(Stride(nWidth)), m_nLines(nLines) {}

    static std::size_t Bytes(long nWidth, long nLines) {
        return static_cast<std::size_t>(Stride(nWidth) * nLines);
    }

    T* Line(long y) const { return m_pLines + (y & (m_nLines - 1)) * m_nStride; }

private:
    static long Stride(long nWidth) {
        return static_cast<long>(ClScratch::Aligned(static_cast<std::size_t>(nWidth)));
    }

    T* m_pLines;
    long m_nStride;
    long m_nLines;
};

long RingLines(const StPlanes& rPlanes) {
    long nLines = 1;
    while (nLines < 2 * rPlanes.m_nHalfY + 1 + ClWindowSums::cnBatch)
        nLines *= 2;
    return nLines;
}

template <class Finish>
struct StBlur {
    using First = ClMeanLines<StMean<T>>;
    using Second = ClMeanLines<Finish>;
    static constexpr long cnBatch = First::cnBatch;

    static std::size_t Bytes(const StPlanes& rPlanes) {
        return First::BatchBytes(rPlanes.m_nWidth, rPlanes.m_nHalfX) +
               First::KeptBytes(rPlanes.m_nWidth) + Second::KeptBytes(rPlanes.m_nWidth) +
               ClRing::Bytes(rPlanes.m_nWidth, RingLines(rPlanes));
    }

    static void Run(unsigned char* pMemory, const StPlanes* pPlanes, Finish finish) {
        const StPlanes P = *pPlanes;
        unsigned char* pKept = pMemory + First::BatchBytes(P.m_nWidth, P.m_nHalfX);
        unsigned char* pKept2 = pKept + First::KeptBytes(P.m_nWidth);
        First Blur(pKept, pMemory, P.m_nWidth, P.m_nHalfX, {});
        Second Blur2(pKept2, pMemory, P.m_nWidth, P.m_nHalfX, finish);
        const ClRing Ring(pKept2 + Second::KeptBytes(P.m_nWidth), P.m_nWidth, RingLines(P));
        const auto in = [P](long y) { return P.In(y); };
        const auto ring = [Ring](long y) { return Ring.Line(y); };
        const auto out = [P](long y) { return P.Out(y); };

        // One place for each, so that they are compiled once.
        const long nBatchesAbove = (P.m_nHalfY + cnBatch - 1) / cnBatch;
        for (long y = -nBatchesAbove * cnBatch; y < P.m_nHeight + P.m_nHalfY; y += cnBatch) {
            if (y < P.m_nHeight)
                Blur.RunLines(y, P.m_nHeight, P.m_nHalfY, P.m_nHeight, in, ring);
            if (y >= 0)
                Blur2.RunLines(y - P.m_nHalfY, P.m_nHeight, P.m_nHalfY, P.m_nHeight, ring, out);
        }
    }
};

template <class Finish>
void BlurNarrow(const StPlanes& rPlanes, Finish finish, ClScratch& rScratch) {
    unsigned char* pMemory = rScratch.Reserve(StBlur<Finish>::Bytes(rPlanes));
    RunAtLevel<StBlur<Finish>>(pMemory, &rPlanes, finish);
}

void BlurWide(const StPlanes& P, ClScratch& rScratch) {
    const auto nWidth = static_cast<std::size_t>(P.m_nWidth);
    const auto pBetween = Vek::NewArrayPtr<T>(nWidth * static_cast<std::size_t>(P.m_nHeight));
    MeanOfWindow(P.m_pIn, P.m_nInStride, P.m_nWidth, P.m_nHeight, P.m_nHalfX, P.m_nHalfY,
                 pBetween.get(), P.m_nWidth, rScratch);
    MeanOfWindow<T>(pBetween.get(), P.m_nWidth, P.m_nWidth, P.m_nHeight, P.m_nHalfX, P.m_nHalfY,
                    P.m_pOut, P.m_nOutStride, rScratch);
}

bool IsNarrow(const StPlanes& P) {
    return IsNarrowWindow(P.m_nWidth, P.m_nHeight, P.m_nHalfX, P.m_nHalfY);
}

} // namespace

void BlurTwice(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
               long nHalf, unsigned char* pOut, std::ptrdiff_t nOutStride, ClScratch& rScratch) {
    if (nWidth < 1 || nHeight < 1)
        return;
    const StPlanes P = Planes(pIn, nInStride, nWidth, nHeight, nHalf, pOut, nOutStride);
    if (IsNarrow(P))
        BlurNarrow(P, StMean<T>{}, rScratch);
    else
        BlurWide(P, rScratch);
}

void BlurTwiceAndBinarize(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth,
                          long nHeight, long nHalf, long nThreshold, unsigned char nBelow,
                          unsigned char nAbove, unsigned char* pOut, std::ptrdiff_t nOutStride,
                          ClScratch& rScratch) {
    if (nWidth < 1 || nHeight < 1)
        return;
    const StPlanes P = Planes(pIn, nInStride, nWidth, nHeight, nHalf, pOut, nOutStride);
    if (IsNarrow(P)) {
        const auto nLimited = static_cast<std::int32_t>(std::clamp(nThreshold, 0L, 256L));
        const auto nChange = static_cast<unsigned char>(nBelow ^ nAbove);
        BlurNarrow(P, StMeanAtLeast{nLimited, nBelow, nChange}, rScratch);
        return;
    }
    BlurWide(P, rScratch);
    for (long y = 0; y < nHeight; ++y)
        std::transform(P.Out(y), P.Out(y) + nWidth, P.Out(y),
                       [=](T n) { return n >= nThreshold ? nAbove : nBelow; });
}

} // namespace Kernels
