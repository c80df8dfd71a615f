#include "ImageProcessing/Kernels/Histogram.h"

// Captures hold long runs of one value. A counter that is increased again before its last store
// has left the pipeline makes the next sample wait for it; with four tables in turn neighbours
// never meet. The tables are added up once, which costs as much as some hundred samples.
//
// What is left is one store for each sample, of which the processor makes one in a cycle: more
// tables, smaller counters and other ways to take the bytes apart cost the same. Counting pairs
// halves the stores, but takes 128 KiB, is slower on noise and much slower on runs.

#include <cstring>

namespace Kernels {

namespace {

constexpr int cnTables = 4;
constexpr int cnRound = 8; ///< samples of one load

using Tables = std::uint32_t[cnTables][256];

void CountLine(const unsigned char* pLine, long nSamples, Tables& rTables) {
    long x = 0;
    for (; x + cnRound <= nSamples; x += cnRound) {
        std::uint64_t nEight = 0;
        std::memcpy(&nEight, pLine + x, sizeof nEight);
        for (int i = 0; i < cnRound; ++i, nEight >>= 8)
            ++rTables[i % cnTables][nEight & 0xFF];
    }
    for (; x < nSamples; ++x)
        ++rTables[0][pLine[x]];
}

} // namespace

void CountValues(const unsigned char* pData, std::ptrdiff_t nStride, long nSamples, long nLines,
                 std::int32_t* pBins) {
    Tables aTables = {};
    for (long y = 0; y < nLines; ++y)
        CountLine(pData + y * nStride, nSamples, aTables);
    for (int i = 0; i < 256; ++i)
        pBins[i] += static_cast<std::int32_t>(aTables[0][i] + aTables[1][i] + aTables[2][i] +
                                              aTables[3][i]);
}

} // namespace Kernels
