// Building, painting and the connected parts of a mask, on the binarised picture of a finger as
// the detectors leave it: an oval with ragged ridges at its edge and crumbs around it.

#include "ImageProcessing/Mask2.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

constexpr int cnWidth = 320;
constexpr int cnHeight = 480;
constexpr int cnPels = 19685;
constexpr unsigned char cnBackground = 255;

/// Solid in the middle, ridges of a period of 9 pixels toward the edge, noise everywhere.
bool IsFinger(int x, int y, unsigned nRandom) {
    const double dX = 2.0 * x / cnWidth - 1.0;
    const double dY = 2.0 * y / cnHeight - 1.0;
    const double dRadius = dX * dX + dY * dY;
    if (nRandom % 200 == 0)
        return dRadius >= 0.5;
    return dRadius < 0.5 || (dRadius < 0.8 && (x + y / 2) % 9 < 5);
}

class ClFinger : public ClImage {
public:
    ClFinger() : ClImage(cnWidth, cnHeight, 1, cnPels, cnPels) {
        std::mt19937 Random(1);
        for (int y = 0; y < cnHeight; ++y)
            for (int x = 0; x < cnWidth; ++x)
                LineData(y)[x] = IsFinger(x, y, static_cast<unsigned>(Random())) ? 0 : cnBackground;
    }
};

ClMask2 FingerMask() {
    ClMask2 Mask;
    Mask.BuildFromImage(ClFinger(), cnBackground);
    return Mask;
}

void Build(benchmark::State& state) {
    const ClFinger Finger;
    ClMask2 Mask;
    for (auto _ : state) {
        Mask.BuildFromImage(Finger, cnBackground);
        benchmark::DoNotOptimize(Mask.m_aEntries.Data());
    }
    state.counters["runs"] = static_cast<double>(Mask.m_aEntries.Entries());
}
BENCHMARK(Build)->Name("Mask/Build")->Unit(benchmark::kMicrosecond);

void Paint(benchmark::State& state) {
    const ClMask2 Mask = FingerMask();
    ClFinger Image;
    for (auto _ : state) {
        Mask.ApplyOnImage(Image, state.range(0) != 0, 77);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Paint)->Name("Mask/PaintInside")->Arg(0)->Unit(benchmark::kMicrosecond);
BENCHMARK(Paint)->Name("Mask/PaintOutside")->Arg(1)->Unit(benchmark::kMicrosecond);

/// With the copy that each run needs, which is a small part of it.
template <class Work>
void OnCopies(benchmark::State& state, Work work) {
    const ClMask2 Finger = FingerMask();
    ClMask2 Mask;
    for (auto _ : state) {
        Mask = Finger;
        work(Mask);
        benchmark::DoNotOptimize(Mask.m_aEntries.Data());
    }
}

void RemoveBlobs(benchmark::State& state) {
    OnCopies(state, [](ClMask2& rMask) { rMask.RemoveSmallFgBlobs(1000, false); });
}
BENCHMARK(RemoveBlobs)->Name("Mask/RemoveSmallFgBlobs")->Unit(benchmark::kMicrosecond);

void FillHoles(benchmark::State& state) {
    OnCopies(state, [](ClMask2& rMask) { rMask.RemoveBgBlobs(); });
}
BENCHMARK(FillHoles)->Name("Mask/RemoveBgBlobs")->Unit(benchmark::kMicrosecond);

void Copy(benchmark::State& state) {
    OnCopies(state, [](ClMask2&) {});
}
BENCHMARK(Copy)->Name("Mask/Copy")->Unit(benchmark::kMicrosecond);

} // namespace
