// The rank filters, their width on an axis: 3 as for single outliers, 11 as for the smoothing of a
// mask, 53 as for a background. The sizes are those of a calibrated image and of the same on its
// larger canvas.

#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/Walks/MeanWalk.h"
#include "ImageProcessing/Walks/RankWalk.h"
#include "Tools/FpImage.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace {

/// Ridges of a period of 9 pixels with noise: the runs of rising and falling samples that the
/// walks meet in a capture.
void FillRidges(ClImage& rImage) {
    std::mt19937 Random(1);
    for (int y = 0; y < rImage.Height(); ++y)
        for (int x = 0; x < rImage.Width(); ++x) {
            const double dRidge = std::sin(0.7 * x + 0.2 * y + 0.001 * x * y);
            const double dNoise = static_cast<double>(Random() % 16);
            rImage.LineData(y)[x] = static_cast<unsigned char>(120.0 + 100.0 * dRidge + dNoise);
        }
}

ClImage& Ridges(ClImage& rImage, const benchmark::State& state) {
    rImage.NewWithType(ClImage::eUInt8, static_cast<int>(state.range(1)),
                       static_cast<int>(state.range(2)), 1, 19685, 19685);
    FillRidges(rImage);
    return rImage;
}

template <class Filter, long nMode>
void Filtered(benchmark::State& state) {
    ClImage In;
    ClImage Out;
    Filter Rank;
    Rank.m_pInImage = &Ridges(In, state);
    Rank.m_pOutImage = &Out;
    Rank.m_nFilterWidth = state.range(0);
    Rank.m_nMode = nMode;
    for (auto _ : state)
        Rank.Apply();
}

// The plain ways beside: the walks that serve samples of any type.

void MaxByWalk(benchmark::State& state) {
    ClImage In;
    ClImage Between;
    ClImage Out;
    Ridges(In, state);
    Between.New(In);
    Out.New(In);
    const long nHalf = state.range(0) / 2;
    const long nStride = In.LineStrideSamples();
    using T = unsigned char;
    for (auto _ : state) {
        for (int y = 0; y < In.Height(); ++y)
            WalkExtremes<EExtreme::eMax, T>({In.LineData(y), 1}, In.Width(), nHalf,
                                            {Between.LineData(y), 1});
        for (int x = 0; x < In.Width(); ++x)
            WalkExtremes<EExtreme::eMax, T>({Between.Data() + x, nStride}, In.Height(), nHalf,
                                            {Out.Data() + x, nStride});
    }
}

void MidByWalk(benchmark::State& state) {
    ClImage In;
    ClImage Out;
    Ridges(In, state);
    Out.New(In);
    for (auto _ : state)
        WalkSquares<unsigned char>(In, state.range(0) / 2,
                                   [&](long x, long y, long long nSum, long nCount) {
                                       Out.LineData(y)[x] = MeanSample<unsigned char>(nSum, nCount);
                                   });
}

void Widths(benchmark::internal::Benchmark* pBenchmark) {
    for (const long nWidth : {3, 11, 53}) {
        pBenchmark->Args({nWidth, 320, 480});
        pBenchmark->Args({nWidth, 412, 572});
    }
    pBenchmark->ArgNames({"width", "columns", "lines"})->Unit(benchmark::kMicrosecond);
}

BENCHMARK_TEMPLATE(Filtered, ClIpFilterMid, 3)->Name("Mid/XY")->Apply(Widths);
BENCHMARK(MidByWalk)->Name("Mid/XY/Walk")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMid, 1)->Name("Mid/X")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMid, 2)->Name("Mid/Y")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMax, 3)->Name("Max/XY")->Apply(Widths);
BENCHMARK(MaxByWalk)->Name("Max/XY/Walk")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMax, 1)->Name("Max/X")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMax, 2)->Name("Max/Y")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMin, 3)->Name("Min/XY")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMedian, 3)->Name("Median/XY")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMedian, 1)->Name("Median/X")->Apply(Widths);
BENCHMARK_TEMPLATE(Filtered, ClIpFilterMedian, 2)->Name("Median/Y")->Apply(Widths);

} // namespace
