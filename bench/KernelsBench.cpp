// The kernels of the operators at each instruction level that the processor has: the last argument
// is 1, 3 or 4. Planes are of random samples.

#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/Kernels/Histogram.h"
#include "ImageProcessing/Kernels/LinearFilter.h"
#include "ImageProcessing/Kernels/LocalStretch.h"
#include "ImageProcessing/Kernels/LocalThreshold.h"
#include "ImageProcessing/Kernels/LookUp.h"
#include "ImageProcessing/Kernels/Mean.h"
#include "ImageProcessing/Kernels/Median.h"
#include "ImageProcessing/Kernels/MinMax.h"
#include "Tools/InstructionLevel.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using Kernels::EExtreme;

class ClPlane {
public:
    ClPlane(long nWidth, long nHeight, unsigned nSeed)
        : m_nWidth(nWidth), m_nHeight(nHeight),
          m_aSamples(static_cast<std::size_t>(nWidth * nHeight)) {
        std::mt19937 random(nSeed);
        std::generate(m_aSamples.begin(), m_aSamples.end(),
                      [&] { return static_cast<unsigned char>(random()); });
    }

    unsigned char* Line(long y) { return m_aSamples.data() + y * m_nWidth; }

    const long m_nWidth;
    const long m_nHeight;

private:
    std::vector<unsigned char> m_aSamples;
};

/// Times `work(in, out)`; the level is the last argument of the benchmark.
template <class Work>
void Run(benchmark::State& state, int nLevelArgument, long nWidth, long nHeight, Work work) {
    const auto eLevel = static_cast<EInstructionLevel>(state.range(nLevelArgument));
    if (eLevel > HighestInstructionLevel()) {
        state.SkipWithError("the processor has no such level");
        return;
    }
    const EInstructionLevel eBefore = InstructionLevel();
    LimitInstructionLevel(eLevel);
    ClPlane In(nWidth, nHeight, 1);
    ClPlane Out(nWidth, nHeight, 2);
    for (auto _ : state) {
        work(In, Out);
        benchmark::ClobberMemory();
    }
    LimitInstructionLevel(eBefore);
    state.SetItemsProcessed(state.iterations() * nWidth * nHeight);
}

constexpr int cnWidth = 320;
constexpr int cnHeight = 480;
constexpr int cnRawWidth = 360;
constexpr int cnRawHeight = 1040;

void ByLevel(benchmark::internal::Benchmark* pBenchmark) {
    pBenchmark->Arg(1)->Arg(3)->Arg(4)->Unit(benchmark::kMicrosecond);
}

/// Widths of windows by levels.
void ByWidthAndLevel(benchmark::internal::Benchmark* pBenchmark) {
    pBenchmark->ArgsProduct({{5, 15, 23, 53}, {1, 3, 4}})->Unit(benchmark::kMicrosecond);
}

// Windows

void Mean(benchmark::State& state) {
    Kernels::ClScratch Scratch;
    const long nHalf = state.range(0) / 2;
    Run(state, 1, cnWidth, cnHeight, [&](ClPlane& rIn, ClPlane& rOut) {
        Kernels::MeanOfWindow<unsigned char>(rIn.Line(0), cnWidth, cnWidth, cnHeight, nHalf, nHalf,
                                             rOut.Line(0), cnWidth, Scratch);
    });
}
BENCHMARK(Mean)->Apply(ByWidthAndLevel);

void Maximum(benchmark::State& state) {
    Kernels::ClScratch Scratch;
    const long nHalf = state.range(0) / 2;
    Run(state, 1, cnWidth, cnHeight, [&](ClPlane& rIn, ClPlane& rOut) {
        Kernels::ExtremeOverSquares<EExtreme::eMax, unsigned char>(
            rIn.Line(0), cnWidth, cnWidth, cnHeight, nHalf, rOut.Line(0), cnWidth, Scratch);
    });
}
BENCHMARK(Maximum)->Apply(ByWidthAndLevel);

void Median3x3(benchmark::State& state) {
    Run(state, 0, cnWidth, cnHeight, [](ClPlane& rIn, ClPlane& rOut) {
        Kernels::MedianOfWindow<unsigned char>(rIn.Line(0), cnWidth, cnWidth, cnHeight, 1, 1,
                                               rOut.Line(0), cnWidth);
    });
}
BENCHMARK(Median3x3)->Apply(ByLevel);

/// As the dots of a target are found.
void LocalThreshold(benchmark::State& state) {
    Kernels::ClScratch Scratch;
    Run(state, 0, cnRawWidth, cnRawHeight, [&](ClPlane& rIn, ClPlane& rOut) {
        Kernels::LocalThreshold(rIn.Line(0), cnRawWidth, cnRawWidth, cnRawHeight,
                                {42, 87, -10, 0, 255}, rOut.Line(0), cnRawWidth, Scratch);
    });
}
BENCHMARK(LocalThreshold)->Apply(ByLevel);

// Linear filters

/// Those of Gaussians of sigma 0.9 and 1.5, and of the derivative of one of sigma 1.
const std::vector<long> caNarrowTaps = {7, 153, 979, 1815, 979, 153, 7};
const std::vector<long> caWideTaps = {0, 4, 31, 147, 447, 872, 1089, 872, 447, 147, 31, 4, 0};
const std::vector<long> caOddTaps = {3, 74, 607, 1361, 0, -1361, -607, -74, -3};

/// `filter(kernel, planes)` on a raw capture.
template <class Filter>
void RunTaps(benchmark::State& state, const std::vector<long>& aTaps, Filter filter) {
    Kernels::ClLinearFilter Kernel(aTaps.data(), static_cast<long>(aTaps.size()), cnRawWidth);
    Run(state, 0, cnRawWidth, cnRawHeight, [&](ClPlane& rIn, ClPlane& rOut) {
        filter(Kernel, Kernels::StInAndOut<unsigned char>{rIn.Line(0), cnRawWidth, cnRawHeight,
                                                          rOut.Line(0), cnRawWidth});
    });
}

void GaussAlongColumns(benchmark::State& state) {
    RunTaps(state, caNarrowTaps,
            [](auto& rKernel, const auto& Planes) { rKernel.FilterAcross(Planes); });
}
BENCHMARK(GaussAlongColumns)->Apply(ByLevel);

void SharpenColumns(benchmark::State& state) {
    RunTaps(state, caNarrowTaps,
            [](auto& rKernel, const auto& Planes) { rKernel.SharpenAcross(Planes); });
}
BENCHMARK(SharpenColumns)->Apply(ByLevel);

void GaussAlongBoth(benchmark::State& state) {
    RunTaps(state, caWideTaps,
            [](auto& rKernel, const auto& Planes) { rKernel.FilterBoth(Planes); });
}
BENCHMARK(GaussAlongBoth)->Apply(ByLevel);

void DerivativeAlongLines(benchmark::State& state) {
    RunTaps(state, caOddTaps,
            [](auto& rKernel, const auto& Planes) { rKernel.FilterAlong(Planes); });
}
BENCHMARK(DerivativeAlongLines)->Apply(ByLevel);

void DerivativeAlongColumns(benchmark::State& state) {
    RunTaps(state, caOddTaps,
            [](auto& rKernel, const auto& Planes) { rKernel.FilterAcross(Planes); });
}
BENCHMARK(DerivativeAlongColumns)->Apply(ByLevel);

// Samples

template <class Entry>
void LookUp(benchmark::State& state, Entry entry) {
    unsigned char aTable[256];
    for (int i = 0; i < 256; ++i)
        aTable[i] = static_cast<unsigned char>(entry(i));
    Run(state, 0, cnWidth, cnHeight, [&](ClPlane& rIn, ClPlane& rOut) {
        Kernels::ClLookUp(aTable).Run(rIn.Line(0), cnWidth, cnWidth, cnHeight, rOut.Line(0),
                                      cnWidth);
    });
}

void Threshold(benchmark::State& state) {
    LookUp(state, [](int i) { return i >= 127 ? 255 : 0; });
}
BENCHMARK(Threshold)->Apply(ByLevel);

void Offset(benchmark::State& state) {
    LookUp(state, [](int i) { return std::min(i + 50, 255); });
}
BENCHMARK(Offset)->Apply(ByLevel);

void Scale(benchmark::State& state) {
    LookUp(state, [](int i) { return std::min(i * 22 / 10, 255); });
}
BENCHMARK(Scale)->Apply(ByLevel);

void AnyTable(benchmark::State& state) {
    LookUp(state, [](int i) { return i * i / 255; });
}
BENCHMARK(AnyTable)->Apply(ByLevel);

void AddCut(benchmark::State& state) {
    Run(state, 0, cnWidth, cnHeight, [](ClPlane& rIn, ClPlane& rOut) {
        Kernels::AddCut({rIn.Line(0), cnWidth, rIn.Line(1), cnWidth, cnWidth, cnHeight - 1,
                         rOut.Line(0), cnWidth});
    });
}
BENCHMARK(AddCut)->Apply(ByLevel);

void LocalStretch(benchmark::State& state) {
    const Kernels::ClLocalStretch Stretch(5, 10, 240);
    ClPlane Min(cnWidth, cnHeight, 3);
    ClPlane Max(cnWidth, cnHeight, 4);
    Run(state, 0, cnWidth, cnHeight, [&](ClPlane& rIn, ClPlane& rOut) {
        for (long y = 0; y < cnHeight; ++y)
            Stretch.StretchLine(rIn.Line(y), Min.Line(y), Max.Line(y), cnWidth, rOut.Line(y));
    });
}
BENCHMARK(LocalStretch)->Apply(ByLevel);

void Histogram(benchmark::State& state) {
    Run(state, 0, cnWidth, cnHeight, [](ClPlane& rIn, ClPlane&) {
        std::int32_t anBins[256] = {};
        Kernels::CountValues(rIn.Line(0), cnWidth, cnWidth, cnHeight, anBins);
        benchmark::DoNotOptimize(anBins);
    });
}
BENCHMARK(Histogram)->Apply(ByLevel);

} // namespace
