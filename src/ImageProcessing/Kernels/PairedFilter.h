#pragma once

// Planes of bytes through taps that pair up (PairedTaps.h), along lines, across lines, or both.
// Each line is widened to 16 bits once, with its ends repeated, and a ring keeps as many lines as
// there are taps: what a result is made of lies in the nearest cache, and no loop tests for a
// border. Loops go in whole rounds of samples; what they make of the memory behind a line is never
// looked at.
//
// For both, lines are filtered along first, into sums of products s = 16 a + b of 20 bits, and the
// lines of sums are then filtered across, in 32 bits: all products add up to 4096^2 * 255 at most.
// Sums have neither been rounded nor cut, so that the order of the two makes no difference; this
// one has its wide loads where they are aligned.

#include "ImageProcessing/Kernels/PairedTaps.h"
#include "ImageProcessing/Kernels/Scratch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kernels {

/// A plane to read, and one of the same size to write, which may be the same. Strides are in
/// samples.
template <class T>
struct StInAndOut {
    const T* m_pIn;
    std::ptrdiff_t m_nInStride;
    long m_nHeight;
    T* m_pOut;
    std::ptrdiff_t m_nOutStride;

    const T* In(long y) const { return m_pIn + y * m_nInStride; }
    T* Out(long y) const { return m_pOut + y * m_nOutStride; }
};

// What becomes of a and b, and of the sample p in the middle

struct StQuotientOfSum {
    static std::uint16_t Of(std::uint16_t a, std::uint16_t b, std::uint16_t) {
        return static_cast<std::uint16_t>(static_cast<std::uint16_t>(a + (b >> 4)) >> 8);
    }
};

/// With the quotient l, 2 p - l, limited to 0 to 255: unsharp masking.
struct StSharpened {
    static std::uint16_t Of(std::uint16_t a, std::uint16_t b, std::uint16_t p) {
        const auto nValue = static_cast<std::int16_t>(2 * p - StQuotientOfSum::Of(a, b, p));
        const std::int16_t nFloor = nValue < 0 ? std::int16_t{0} : nValue;
        return static_cast<std::uint16_t>(nFloor > 255 ? std::int16_t{255} : nFloor);
    }
};

struct StWholeSum {
    static std::uint32_t Of(std::uint16_t a, std::uint16_t b, std::uint16_t) { return 16U * a + b; }
};

/// The quotient toward zero, which for negative sums is ceil((a + ceil(b / 16)) / 256).
struct StSignedQuotient {
    static std::uint16_t Of(std::int16_t a, std::int16_t b, std::uint16_t) {
        const auto nSixteenth = static_cast<std::int16_t>(a + (b >> 4));
        const auto nNegative = static_cast<std::uint16_t>(nSixteenth >> 15); // all bits or none
        const auto bUp = static_cast<std::int16_t>(b + (nNegative >> 12));
        const auto nRounded = static_cast<std::int16_t>(a + (bUp >> 4) + (nNegative >> 8));
        return static_cast<std::uint16_t>(nRounded >> 8);
    }
};

// Sums of pairs

/// Room for taps: loops of this length do for all that fit in.
template <int nHalf, int nWholes>
struct StTapRoom {
    static constexpr int cnHalf = nHalf;
    static constexpr int cnWholes = nWholes;
    static constexpr int cnTaps = 2 * nHalf + 1;

    static bool Holds(const ClPairedTaps& Taps) {
        return Taps.Half() <= nHalf && Taps.Wholes() <= nWholes;
    }
};

template <int nHalf, int nWholes>
struct StEvenRoom : StTapRoom<nHalf, nWholes> {
    using Number = std::uint16_t;
    static constexpr bool cbMiddle = true; ///< has a tap
    static Number Pair(Number before, Number behind) {
        return static_cast<Number>(before + behind);
    }
};

template <int nHalf, int nWholes>
struct StOddRoom : StTapRoom<nHalf, nWholes> {
    using Number = std::int16_t;
    static constexpr bool cbMiddle = false;
    static Number Pair(std::uint16_t before, std::uint16_t behind) {
        return static_cast<Number>(before - behind);
    }
};

/// Calls `work(room)` for the first of some rooms that holds the taps.
template <class Work, class Room, class... Rooms>
void InFirstOf(const ClPairedTaps& Taps, Work work, Room room, Rooms... rooms) {
    if constexpr (sizeof...(Rooms) > 0)
        if (!Room::Holds(Taps))
            return InFirstOf(Taps, work, rooms...);
    work(room);
}

template <class Work>
void InEvenRoom(const ClPairedTaps& Taps, Work work) {
    constexpr int n = ClPairedTaps::cnLargestHalf;
    InFirstOf(Taps, work, StEvenRoom<3, 3>(), StEvenRoom<5, 4>(), StEvenRoom<n, n + 1>());
}

template <class Work>
void InOddRoom(const ClPairedTaps& Taps, Work work) {
    constexpr int n = ClPairedTaps::cnLargestHalf;
    InFirstOf(Taps, work, StOddRoom<4, 3>(), StOddRoom<n, n + 1>());
}

// Lines

constexpr long cnPairedRound = 32;

inline std::size_t PairedLine(long nSamples) {
    return static_cast<std::size_t>((nSamples + cnPairedRound - 1) / cnPairedRound * cnPairedRound);
}

/// One line of what `Finish` makes of the lines, or moved copies of one, that the taps meet.
template <class Room, class Finish, class Out>
void FilterWords(const ClPairedTaps& Taps, const std::uint16_t* const* ppLines,
                 std::size_t nRounded, Out* __restrict pOut) {
    using Number = typename Room::Number;
    constexpr int h = Room::cnHalf;
    const ClPairedTaps::Numbers aWhole = Taps.m_aWhole;
    const ClPairedTaps::Numbers aPart = Taps.m_aPart;
    const std::uint16_t* apLines[Room::cnTaps];
    std::copy_n(ppLines, Room::cnTaps, apLines);
    for (std::size_t x = 0; x < nRounded; ++x) {
        const std::uint16_t nMiddle = apLines[h][x];
        auto a = static_cast<Number>(Room::cbMiddle ? nMiddle * aWhole[0] : 0);
        auto b = static_cast<Number>(Room::cbMiddle ? nMiddle * aPart[0] : 0);
        for (int k = 1; k <= h; ++k) {
            const auto i = static_cast<std::size_t>(k);
            const Number nPair = Room::Pair(apLines[h - k][x], apLines[h + k][x]);
            b = static_cast<Number>(b + static_cast<Number>(nPair * aPart[i]));
            if (k < Room::cnWholes)
                a = static_cast<Number>(a + static_cast<Number>(nPair * aWhole[i]));
        }
        pOut[x] = Finish::Of(a, b, nMiddle);
    }
}

/// Of lines of sums, divided by 2^24.
template <class Room>
void FilterSums(const ClPairedTaps& Taps, const std::uint32_t* const* ppLines, std::size_t nRounded,
                std::uint16_t* __restrict pOut) {
    constexpr int h = Room::cnHalf;
    const ClPairedTaps::Numbers aTaps = Taps.m_aTaps;
    const std::uint32_t* apLines[Room::cnTaps];
    std::copy_n(ppLines, Room::cnTaps, apLines);
    for (std::size_t x = 0; x < nRounded; ++x) {
        std::uint32_t nSum = static_cast<std::uint32_t>(aTaps[0]) * apLines[h][x];
        for (int k = 1; k <= h; ++k)
            nSum += static_cast<std::uint32_t>(aTaps[static_cast<std::size_t>(k)]) *
                    (apLines[h - k][x] + apLines[h + k][x]);
        pOut[x] = static_cast<std::uint16_t>(nSum >> 24);
    }
}

/// Calls `loop(from, samples)` for whole rounds, and for a last one that ends with the line and
/// does some samples again; for a line that is shorter than a round, for that.
template <class Loop>
void InPairedRounds(long nSamples, Loop loop) {
    const long nWhole = nSamples / cnPairedRound * cnPairedRound;
    if (nWhole == 0)
        return loop(0L, nSamples);
    loop(0L, nWhole);
    if (nWhole < nSamples)
        loop(nSamples - cnPairedRound, cnPairedRound);
}

template <class From, class To>
void ConvertSamples(const From* pIn, long nSamples, To* pOut) {
    InPairedRounds(nSamples, [=](long nFrom, long nCount) {
        const From* pFrom = pIn + nFrom;
        To* __restrict pTo = pOut + nFrom;
        for (long x = 0; x < nCount; ++x)
            pTo[x] = static_cast<To>(pFrom[x]);
    });
}

inline void Widen(const unsigned char* pIn, long nSamples, std::uint16_t* pOut) {
    ConvertSamples(pIn, nSamples, pOut);
}

inline void Narrow(const std::uint16_t* pIn, long nSamples, unsigned char* pOut) {
    ConvertSamples(pIn, nSamples, pOut);
}

/// Lines in 16 bits with their ends repeated, each of which stands for as many moved ones as there
/// are taps. A line is filled while the one before it is filtered: a moved line reads parts of two
/// stores at once, and would wait for them.
template <class Room>
class ClPaddedLines {
public:
    static std::size_t Bytes(long nWidth) { return 2 * LineBytes(nWidth); }

    ClPaddedLines(unsigned char* pMemory, long nWidth, long nHeight)
        : m_nWidth(nWidth), m_nHeight(nHeight) {
        for (std::size_t n = 0; n < 2; ++n)
            for (int i = 0; i < Room::cnTaps; ++i)
                m_apMoved[n][i] =
                    reinterpret_cast<std::uint16_t*>(pMemory + n * LineBytes(nWidth)) + i;
    }

    /// Line y, moved. Called for each in turn; `enter(y, samples)` fills one.
    template <class Enter>
    const std::uint16_t* const* Moved(long y, Enter enter) const {
        if (y == 0)
            Fill(0, enter);
        if (y + 1 < m_nHeight)
            Fill(y + 1, enter);
        return m_apMoved[y % 2];
    }

private:
    static std::size_t LineBytes(long nWidth) {
        return ClScratch::Aligned((PairedLine(nWidth) + Room::cnTaps) * sizeof(std::uint16_t));
    }

    template <class Enter>
    void Fill(long y, Enter enter) const {
        std::uint16_t* pLine = m_apMoved[y % 2][0];
        std::uint16_t* pSamples = pLine + Room::cnHalf;
        enter(y, pSamples);
        std::fill_n(pLine, Room::cnHalf, pSamples[0]);
        std::fill_n(pSamples + m_nWidth, Room::cnHalf, pSamples[m_nWidth - 1]);
    }

    long m_nWidth;
    long m_nHeight;
    std::uint16_t* m_apMoved[2][Room::cnTaps];
};

/// The last lines, as many as there are taps.
template <class Room, class Number>
class ClLineRing {
public:
    static std::size_t Bytes(long nWidth) {
        return Room::cnTaps * ClScratch::Aligned(PairedLine(nWidth) * sizeof(Number));
    }

    ClLineRing(unsigned char* pMemory, long nWidth, long nHeight)
        : m_pLines(reinterpret_cast<Number*>(pMemory)),
          m_nStride(ClScratch::Aligned(PairedLine(nWidth) * sizeof(Number)) / sizeof(Number)),
          m_nHeight(nHeight) {}

    /// Calls `enter(y, line)`, which fills a line, and `take(y, lines)` with the lines that the
    /// taps meet around line y, for each y in turn.
    template <class Enter, class Take>
    void Run(Enter enter, Take take) const {
        long nEntered = 0;
        for (long y = 0; y < m_nHeight; ++y) {
            for (; nEntered < std::min(y + Room::cnHalf + 1, m_nHeight); ++nEntered)
                enter(nEntered, Line(nEntered));
            const Number* apLines[Room::cnTaps];
            for (int i = 0; i < Room::cnTaps; ++i)
                apLines[i] = Line(std::clamp(y + i - Room::cnHalf, 0L, m_nHeight - 1));
            take(y, apLines);
        }
    }

private:
    Number* Line(long y) const {
        return m_pLines + static_cast<std::size_t>(y % Room::cnTaps) * m_nStride;
    }

    Number* m_pLines;
    std::size_t m_nStride;
    long m_nHeight;
};

// Planes

template <class Room, class Finish>
struct StFilterAlong {
    using Padded = ClPaddedLines<Room>;

    static std::size_t Bytes(long nWidth) {
        return Padded::Bytes(nWidth) + PairedLine(nWidth) * sizeof(std::uint16_t);
    }

    static void Run(const ClPairedTaps* pTaps, unsigned char* pMemory, long nWidth,
                    const StInAndOut<unsigned char>* pPlanes) {
        const ClPairedTaps Taps = *pTaps;
        const StInAndOut<unsigned char> Planes = *pPlanes;
        const Padded Lines(pMemory, nWidth, Planes.m_nHeight);
        auto* pResults = reinterpret_cast<std::uint16_t*>(pMemory + Padded::Bytes(nWidth));
        const auto enter = [&](long y, std::uint16_t* pLine) {
            Widen(Planes.In(y), nWidth, pLine);
        };
        for (long y = 0; y < Planes.m_nHeight; ++y) {
            FilterWords<Room, Finish>(Taps, Lines.Moved(y, enter), PairedLine(nWidth), pResults);
            Narrow(pResults, nWidth, Planes.Out(y));
        }
    }
};

template <class Room, class Finish>
struct StFilterAcross {
    using Ring = ClLineRing<Room, std::uint16_t>;

    static std::size_t Bytes(long nWidth) {
        return Ring::Bytes(nWidth) + PairedLine(nWidth) * sizeof(std::uint16_t);
    }

    static void Run(const ClPairedTaps* pTaps, unsigned char* pMemory, long nWidth,
                    const StInAndOut<unsigned char>* pPlanes) {
        const ClPairedTaps Taps = *pTaps;
        const StInAndOut<unsigned char> Planes = *pPlanes;
        auto* pResults = reinterpret_cast<std::uint16_t*>(pMemory + Ring::Bytes(nWidth));
        Ring(pMemory, nWidth, Planes.m_nHeight)
            .Run([&](long y, std::uint16_t* pLine) { Widen(Planes.In(y), nWidth, pLine); },
                 [&](long y, const std::uint16_t* const* ppLines) {
                     FilterWords<Room, Finish>(Taps, ppLines, PairedLine(nWidth), pResults);
                     Narrow(pResults, nWidth, Planes.Out(y));
                 });
    }
};

/// Along and across, for even taps.
template <class Room>
struct StFilterBoth {
    using Ring = ClLineRing<Room, std::uint32_t>;
    using Padded = ClPaddedLines<Room>;

    static std::size_t Bytes(long nWidth) {
        return Ring::Bytes(nWidth) + Padded::Bytes(nWidth) +
               PairedLine(nWidth) * sizeof(std::uint16_t);
    }

    /// `enter(y, samples)` fills a line, `take(y, results)` uses one.
    template <class Enter, class Take>
    static void RunLines(const ClPairedTaps& Taps, unsigned char* pMemory, long nWidth,
                         long nHeight, Enter enter, Take take) {
        unsigned char* pPadded = pMemory + Ring::Bytes(nWidth);
        const Padded Lines(pPadded, nWidth, nHeight);
        auto* pResults = reinterpret_cast<std::uint16_t*>(pPadded + Padded::Bytes(nWidth));
        Ring(pMemory, nWidth, nHeight)
            .Run(
                [&](long y, std::uint32_t* pSums) {
                    FilterWords<Room, StWholeSum>(Taps, Lines.Moved(y, enter), PairedLine(nWidth),
                                                  pSums);
                },
                [&](long y, const std::uint32_t* const* ppLines) {
                    FilterSums<Room>(Taps, ppLines, PairedLine(nWidth), pResults);
                    take(y, static_cast<const std::uint16_t*>(pResults));
                });
    }

    static void Run(const ClPairedTaps* pTaps, unsigned char* pMemory, long nWidth,
                    const StInAndOut<unsigned char>* pPlanes) {
        const ClPairedTaps Taps = *pTaps;
        const StInAndOut<unsigned char> Planes = *pPlanes;
        RunLines(
            Taps, pMemory, nWidth, Planes.m_nHeight,
            [&](long y, std::uint16_t* pLine) { Widen(Planes.In(y), nWidth, pLine); },
            [&](long y, const std::uint16_t* pLine) { Narrow(pLine, nWidth, Planes.Out(y)); });
    }
};

} // namespace Kernels
