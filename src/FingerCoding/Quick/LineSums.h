#pragma once

/// Loops over lines that kernels of windows share. Lines are worked on in whole rounds of 64
/// samples: behind the end of a line there is room for one round more, and what comes to stand
/// there means nothing.

#include "ImageProcessing/Kernels/Scratch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Quick::LineSums {

constexpr long cnRound = 64;

/// A number of samples in whole rounds.
inline long Rounds(long nSamples) {
    return (nSamples + cnRound - 1) & -cnRound;
}

/// Samples to make room for.
inline std::size_t Room(long nSamples) {
    return static_cast<std::size_t>(Rounds(nSamples) + cnRound);
}

/// Hands out lines in aligned memory, one after the other.
class ClLineMemory {
public:
    explicit ClLineMemory(unsigned char* pMemory) : m_pNext(pMemory) {}

    template <class T>
    T* Take(long nSamples) {
        const auto nBytes = Kernels::ClScratch::Aligned(Room(nSamples) * sizeof(T));
        return reinterpret_cast<T*>(std::exchange(m_pNext, m_pNext + nBytes));
    }

private:
    unsigned char* m_pNext;
};

/// Hands out nothing and counts what the lines would take.
class ClLineMemorySize {
public:
    template <class T>
    T* Take(long nSamples) {
        m_nBytes += Kernels::ClScratch::Aligned(Room(nSamples) * sizeof(T));
        return nullptr;
    }

    std::size_t Bytes() const { return m_nBytes; }

private:
    std::size_t m_nBytes = 0;
};

/// sums[i] += enter[i] - leave[i], for exactly so many samples.
template <class Sum>
void Exchange(const std::uint8_t* __restrict pEnter, const std::uint8_t* __restrict pLeave,
              long nSamples, Sum* __restrict pSums) {
    for (long i = 0; i < nSamples; ++i)
        pSums[i] = static_cast<Sum>(pSums[i] + pEnter[i] - pLeave[i]);
}

/// The sum of four samples from i on, `nStep` apart, cut at `nMost`. Four samples fit in `Sum`.
template <long nStep, class Sum>
void SumFours(const Sum* __restrict p, long nSamples, Sum nMost, Sum* __restrict pFours) {
    const long nEnd = Rounds(nSamples);
    for (long i = 0; i < nEnd; ++i)
        pFours[i] = std::min(
            static_cast<Sum>(p[i] + p[i + nStep] + p[i + 2 * nStep] + p[i + 3 * nStep]), nMost);
}

/// How many of the places n - nHalf to n + nHalf lie in a frame.
inline long Inside(long n, long nHalf, long nSize) {
    return std::max(std::min(n + nHalf, nSize - 1) - std::max(n - nHalf, 0L) + 1, 0L);
}

/// bounds[i] = nPerPixel * lines * columns of the window around column nFirst + i of a frame.
inline void FillBounds(int nPerPixel, long nLines, long nFirst, long nHalf, long nFrame,
                       long nSamples, std::uint16_t* pBounds) {
    for (long i = 0; i < nSamples; ++i)
        pBounds[i] =
            static_cast<std::uint16_t>(nPerPixel * nLines * Inside(nFirst + i, nHalf, nFrame));
}

} // namespace Quick::LineSums
