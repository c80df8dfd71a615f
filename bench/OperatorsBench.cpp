// The operators of the main path, each fast kernel beside the plain loop that defines it.

#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "ImageProcessing/Kernels/LinearFilter.h"
#include "ImageProcessing/Kernels/Warp.h"
#include "Tools/FpImage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr int cnRawWidth = 390;
constexpr int cnRawHeight = 1052;

void FillRandom(ClImage& rImage) {
    std::mt19937 Random(1);
    for (int y = 0; y < rImage.Height(); ++y)
        std::generate_n(rImage.LineData(y), rImage.LineStrideBytes(),
                        [&] { return static_cast<unsigned char>(Random()); });
}

/// The sharpening of a raw capture, as the scanner uses it.
void UnsharpAlongColumns(benchmark::State& state) {
    ClImage In(cnRawWidth, cnRawHeight, 1, 19397, 39735);
    FillRandom(In);
    ClImage Out;
    ClIpUnsharpMasking Unsharp;
    Unsharp.m_dGaussSigma = 0.9;
    Unsharp.m_nMode = ClIpFilterBase::ModeY;
    for (auto _ : state)
        Unsharp.ApplyParam(In, Out, 0);
}
BENCHMARK(UnsharpAlongColumns)->Unit(benchmark::kMicrosecond);

/// A Gaussian by mode, its sigma on the axis.
void Gauss(benchmark::State& state, long nMode) {
    ClImage In(320, 480, 1, 19685, 19685);
    FillRandom(In);
    ClImage Out;
    ClIpFilterGauss Filter;
    Filter.m_nMode = nMode;
    for (auto _ : state)
        Filter.ApplyParam(In, Out, static_cast<double>(state.range(0)), 0);
}
BENCHMARK_CAPTURE(Gauss, X, 1L)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Gauss, Y, 2L)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Gauss, XY, 3L)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);

constexpr std::size_t cnEntrySize = 36;

std::vector<unsigned char> RandomTable(std::size_t nEntries) {
    std::mt19937 Random(2);
    std::vector<unsigned char> aTable(nEntries * cnEntrySize);
    for (std::size_t i = 0; i < nEntries; ++i) {
        // Neighbouring pixels come from neighbouring places, as in a real table.
        const auto nOffset = static_cast<std::int32_t>((i / 320) * 2 * 392 + i % 320);
        std::memcpy(&aTable[i * cnEntrySize], &nOffset, sizeof nOffset);
        for (int w = 0; w < 16; ++w) {
            const auto nWeight = static_cast<std::int16_t>(Random() % 256);
            std::memcpy(&aTable[i * cnEntrySize + 4 + 2 * static_cast<std::size_t>(w)], &nWeight,
                        sizeof nWeight);
        }
    }
    return aTable;
}

void WarpPlain(const unsigned char* pEntries, std::size_t nEntries, const unsigned char* pSource,
               std::ptrdiff_t nStride, unsigned char* pOut) {
    for (std::size_t i = 0; i < nEntries; ++i, pEntries += cnEntrySize) {
        std::int32_t nOffset = 0;
        std::memcpy(&nOffset, pEntries, sizeof nOffset);
        int nSum = 0;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) {
                std::int16_t nWeight = 0;
                std::memcpy(&nWeight, pEntries + 4 + 2 * (4 * r + c), sizeof nWeight);
                nSum += nWeight * pSource[nOffset + r * nStride + c];
            }
        pOut[i] = static_cast<unsigned char>(std::clamp((nSum + 1023) >> 10, 0, 255));
    }
}

template <bool bFast>
void WarpFrame(benchmark::State& state) {
    constexpr std::size_t nEntries = 320 * 480;
    const std::vector<unsigned char> aTable = RandomTable(nEntries);
    std::vector<unsigned char> aSource(392 * cnRawHeight, 100);
    std::vector<unsigned char> aOut(nEntries);
    for (auto _ : state) {
        if constexpr (bFast)
            Kernels::WarpLine(aTable.data(), nEntries, aSource.data(), 392, 1, 255, aOut.data());
        else
            WarpPlain(aTable.data(), nEntries, aSource.data(), 392, aOut.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK_TEMPLATE(WarpFrame, true)->Name("Warp/Kernel")->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(WarpFrame, false)->Name("Warp/Plain")->Unit(benchmark::kMicrosecond);

} // namespace
