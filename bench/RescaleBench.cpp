// The changes of size, each mode beside the nearest neighbour, which does the least, and the means
// beside the plain loop that defines them. The sizes are those of a calibrated image at half and at
// twice its resolution.

#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpResize.h"
#include "ImageProcessing/IpSubsample.h"
#include "Tools/FpImage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

namespace {

constexpr int cnWidth = 320;
constexpr int cnHeight = 480;

void FillRandom(ClImage& rImage) {
    rImage.NewWithType(ClImage::eUInt8, cnWidth, cnHeight, 1, 19685, 19685);
    std::mt19937 Random(1);
    for (int y = 0; y < rImage.Height(); ++y)
        std::generate_n(rImage.LineData(y), rImage.Width(),
                        [&] { return static_cast<unsigned char>(Random()); });
}

/// Per cent of the size on the axis.
void Rescale(benchmark::State& state, ClIpRescale::eProcessingMode eMode, double dParameter) {
    ClImage In;
    ClImage Out;
    FillRandom(In);
    ClIpRescale Rescale;
    Rescale.m_dConvParameter1 = dParameter;
    const int nPercent = static_cast<int>(state.range(0));
    for (auto _ : state)
        Rescale.ApplyParamSize(In, Out, cnWidth * nPercent / 100, cnHeight * nPercent / 100, eMode);
}

void Sizes(benchmark::internal::Benchmark* pBenchmark) {
    pBenchmark->Arg(50)->Arg(200)->ArgName("percent")->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(Rescale, Nearest, ClIpRescale::ModeNearestNeighbour, -0.75)->Apply(Sizes);
BENCHMARK_CAPTURE(Rescale, BiLinear, ClIpRescale::ModeBiLinear, -0.75)->Apply(Sizes);
BENCHMARK_CAPTURE(Rescale, BiCubicRadial, ClIpRescale::ModeBiCubic, -0.75)->Apply(Sizes);
BENCHMARK_CAPTURE(Rescale, BiCubicSeparable, ClIpRescale::ModeBiCubic, 0.75)->Apply(Sizes);
BENCHMARK_CAPTURE(Rescale, Fant, ClIpRescale::ModeBiLinearFantMar, -0.75)->Apply(Sizes);

void Subsample(benchmark::State& state, bool bMid) {
    ClImage In;
    ClImage Out;
    FillRandom(In);
    ClIpSubsample Subsample;
    for (auto _ : state)
        Subsample.ApplyParam(In, state.range(0), Out, bMid);
}
BENCHMARK_CAPTURE(Subsample, Fast, false)->Arg(2)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Subsample, Mid, true)->Arg(2)->Arg(4)->Unit(benchmark::kMicrosecond);

/// Block by block.
unsigned char BlockMean(const ClImage& In, int nFactor, int nX, int nY) {
    long nSum = 0;
    long nCount = 0;
    for (int y = nY * nFactor; y < std::min((nY + 1) * nFactor, In.Height()); ++y)
        for (int x = nX * nFactor; x < std::min((nX + 1) * nFactor, In.Width()); ++x, ++nCount)
            nSum += In.LineData(y)[x];
    return static_cast<unsigned char>(nSum / nCount);
}

void SubsampleMidByBlocks(benchmark::State& state) {
    const int nFactor = static_cast<int>(state.range(0));
    ClImage In;
    ClImage Out(cnWidth / nFactor, cnHeight / nFactor, 1, 0, 0);
    FillRandom(In);
    for (auto _ : state)
        for (int y = 0; y < Out.Height(); ++y)
            for (int x = 0; x < Out.Width(); ++x)
                Out.LineData(y)[x] = BlockMean(In, nFactor, x, y);
}
BENCHMARK(SubsampleMidByBlocks)->Arg(2)->Arg(4)->Unit(benchmark::kMicrosecond);

void Resize(benchmark::State& state) {
    ClImage In;
    ClImage Out;
    FillRandom(In);
    ClIpResize Resize;
    for (auto _ : state)
        Resize.ApplyParam(In, static_cast<int>(state.range(0)), Out, 0, 0);
}
BENCHMARK(Resize)->Arg(2)->Arg(4)->Unit(benchmark::kMicrosecond);

} // namespace
