// Histogram, look-up table, local threshold and local stretch, each fast kernel beside the plain
// loop that defines it.

#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/Kernels/Histogram.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>

namespace {

struct StSize {
    int m_nWidth, m_nHeight;
};

/// The standard frame, and a larger one whose width is no multiple of a vector.
constexpr StSize caSizes[] = {{320, 480}, {412, 572}};

/// Ridges of a grey value period of 9 pixels with noise, in an oval on white.
void FillFinger(ClImage& rImage) {
    std::mt19937 Random(1);
    for (int y = 0; y < rImage.Height(); ++y)
        for (int x = 0; x < rImage.Width(); ++x) {
            const double dX = 2.0 * x / rImage.Width() - 1.0;
            const double dY = 2.0 * y / rImage.Height() - 1.0;
            const int nRidge = (x + y / 2) % 9 < 5 ? 90 : 170;
            const int nNoise = static_cast<int>(Random() % 25);
            rImage.LineData(y)[x] =
                static_cast<unsigned char>(dX * dX + dY * dY < 0.7 ? nRidge + nNoise : 255);
        }
}

class ClFinger : public ClImage {
public:
    explicit ClFinger(StSize Size) : ClImage(Size.m_nWidth, Size.m_nHeight, 1, 19685, 19685) {
        FillFinger(*this);
    }
};

StSize SizeOf(const benchmark::State& state) {
    return caSizes[state.range(0)];
}

void Count(benchmark::State& state) {
    const ClFinger In(SizeOf(state));
    ClHistogram Histogram;
    for (auto _ : state) {
        Histogram.Create(In);
        benchmark::DoNotOptimize(Histogram.m_anCount);
    }
}
BENCHMARK(Count)->Name("Histogram/Kernel")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void CountPlain(benchmark::State& state) {
    const ClFinger In(SizeOf(state));
    for (auto _ : state) {
        std::int32_t anCount[256] = {};
        for (int y = 0; y < In.Height(); ++y)
            for (int x = 0; x < In.Width(); ++x)
                ++anCount[In.LineData(y)[x]];
        benchmark::DoNotOptimize(anCount);
    }
}
BENCHMARK(CountPlain)->Name("Histogram/Plain")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// A table of a told range: the look-up without a histogram.
void LookUp(benchmark::State& state) {
    ClFinger In(SizeOf(state));
    ClImage Out;
    ClIpStretchRangeGlobal Stretch;
    Stretch.m_nOldRangeFrom = 80;
    Stretch.m_nOldRangeTo = 200;
    for (auto _ : state)
        Stretch.ApplyParam(In, Out);
}
BENCHMARK(LookUp)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void WindowAxis(benchmark::internal::Benchmark* pBenchmark) {
    for (long nSize : {0, 1})
        for (long nWindow : {3, 11, 23, 53})
            pBenchmark->Args({nSize, nWindow});
}

void LocalThreshold(benchmark::State& state) {
    ClFinger In(SizeOf(state));
    ClImage Out;
    ClIpBinarizeLocal2 Binarize;
    for (auto _ : state)
        Binarize.ApplyParam(In, Out, state.range(1), state.range(1), 10);
}
BENCHMARK(LocalThreshold)
    ->Name("LocalThreshold/Kernel")
    ->Apply(WindowAxis)
    ->Unit(benchmark::kMicrosecond);

/// Every window summed anew.
void ThresholdPlain(const ClImage& In, int nHalf, int nOffset, ClImage& rOut) {
    for (int y = 0; y < In.Height(); ++y)
        for (int x = 0; x < In.Width(); ++x) {
            const int nLeft = std::max(0, x - nHalf);
            const int nRight = std::min(In.Width() - 1, x + nHalf);
            long nSum = 0;
            long nArea = 0;
            for (int v = std::max(0, y - nHalf); v <= std::min(In.Height() - 1, y + nHalf); ++v) {
                for (int u = nLeft; u <= nRight; ++u)
                    nSum += In.LineData(v)[u];
                nArea += nRight - nLeft + 1;
            }
            rOut.LineData(y)[x] = (In.LineData(y)[x] + nOffset) * nArea > nSum ? 255 : 0;
        }
}

void LocalThresholdPlain(benchmark::State& state) {
    const ClFinger In(SizeOf(state));
    ClImage Out;
    Out.New(In);
    for (auto _ : state)
        ThresholdPlain(In, static_cast<int>(state.range(1)) / 2, 10, Out);
}
BENCHMARK(LocalThresholdPlain)
    ->Name("LocalThreshold/Plain")
    ->Args({0, 3})
    ->Args({0, 11})
    ->Unit(benchmark::kMicrosecond);

/// As the dynamic calibration uses it: both limits smoothed, no subsampling.
void LocalStretch(benchmark::State& state) {
    ClFinger In(SizeOf(state));
    ClImage Out;
    ClIpStretchRangeLocal Stretch;
    Stretch.m_nFilterWidth = state.range(1);
    Stretch.m_nSubSampleRate = 1;
    Stretch.m_bUseMaxSmoothing = true;
    for (auto _ : state)
        Stretch.ApplyParam(In, Out);
}
BENCHMARK(LocalStretch)->Apply(WindowAxis)->Unit(benchmark::kMicrosecond);

/// The same with the limits of blocks of 4 by 4 pixels.
void LocalStretchSubsampled(benchmark::State& state) {
    ClFinger In(SizeOf(state));
    ClImage Out;
    ClIpStretchRangeLocal Stretch;
    Stretch.m_nFilterWidth = state.range(1);
    Stretch.m_bUseMaxSmoothing = true;
    for (auto _ : state)
        Stretch.ApplyParam(In, Out);
}
BENCHMARK(LocalStretchSubsampled)->Args({0, 23})->Args({1, 23})->Unit(benchmark::kMicrosecond);

} // namespace
