// Labelling, measuring and filling of regions, each beside a plain way of the same: a stack of
// pixels that looks at four neighbours each. The images: the dots of a target, noise at the share
// at which regions are most ragged, and the one large region of a finger mask. The sizes are those
// of a calibrated image and of the same on its larger canvas.

#include "ImageProcessing/IpConnectedComponent2.h"
#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpLabeling.h"
#include "Tools/FpImage.h"

#include <benchmark/benchmark.h>

#include <random>
#include <utility>
#include <vector>

namespace {

enum EContent { eDots, eNoise, eFinger };

bool IsObject(EContent eContent, int x, int y, int nWidth, int nHeight, std::mt19937& rRandom) {
    switch (eContent) {
    case eDots: {
        const int u = x % 39 - 19;
        const int v = y % 40 - 20;
        return u * u + v * v < 64;
    }
    case eNoise:
        return rRandom() % 1000 < 593;
    default: {
        const double u = (x - 0.5 * nWidth) / (0.4 * nWidth);
        const double v = (y - 0.5 * nHeight) / (0.45 * nHeight);
        return u * u + v * v < 1.0;
    }
    }
}

void Draw(ClImage& rImage, EContent eContent, const benchmark::State& state) {
    rImage.NewWithType(ClImage::eUInt8, static_cast<int>(state.range(0)),
                       static_cast<int>(state.range(1)), 1, 19685, 19685);
    std::mt19937 Random(1);
    for (int y = 0; y < rImage.Height(); ++y)
        for (int x = 0; x < rImage.Width(); ++x) {
            const bool bObject = IsObject(eContent, x, y, rImage.Width(), rImage.Height(), Random);
            rImage.LineData(y)[x] = bObject ? 0 : 255;
        }
}

using Places = std::vector<std::pair<int, int>>;

/// `take(x, y)` marks a pixel of the region and tells whether it was one that is not yet marked.
template <class Take>
void FillByPixels(int nX, int nY, Places& rPlaces, Take take) {
    if (take(nX, nY))
        rPlaces.emplace_back(nX, nY);
    while (!rPlaces.empty()) {
        const auto [x, y] = rPlaces.back();
        rPlaces.pop_back();
        for (const auto& [u, v] : {std::pair{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}})
            if (take(u, v))
                rPlaces.emplace_back(u, v);
    }
}

void Label(benchmark::State& state, EContent eContent) {
    ClImage In;
    ClImage Out;
    Draw(In, eContent, state);
    ClIpLabeling Labeling;
    Labeling.m_pInImage = &In;
    Labeling.m_pOutImage = &Out;
    for (auto _ : state)
        Labeling.Apply();
    state.counters["regions"] = Labeling.m_nLabels;
}

void LabelByPixels(benchmark::State& state, EContent eContent) {
    ClImage In;
    Draw(In, eContent, state);
    Places aPlaces;
    for (auto _ : state) {
        ClImage Out;
        Out.NewWithType(In, ClImage::eInt32);
        int nLabel = 0;
        const auto take = [&](int x, int y) {
            if (x < 0 || y < 0 || x >= In.Width() || y >= In.Height() || In.LineData(y)[x] != 0 ||
                Out.Line<int>(y)[x] != 0)
                return false;
            Out.Line<int>(y)[x] = nLabel;
            return true;
        };
        for (int y = 0; y < In.Height(); ++y)
            for (int x = 0; x < In.Width(); ++x)
                if (In.LineData(y)[x] == 0 && Out.Line<int>(y)[x] == 0) {
                    ++nLabel;
                    FillByPixels(x, y, aPlaces, take);
                }
    }
}

void Components(benchmark::State& state, EContent eContent) {
    ClImage In;
    ClImage Grey;
    Draw(In, eContent, state);
    Draw(Grey, eNoise, state);
    ClIpConnectedComponent2::ComponentsArray_t aComponents;
    ClIpConnectedComponent2 Measure;
    Measure.m_pInImage = &In;
    Measure.m_pInImageGrey = &Grey;
    Measure.m_pComponents = &aComponents;
    for (auto _ : state)
        Measure.Apply();
}

/// The largest region, from the middle, to and fro.
void Fill(benchmark::State& state, EContent eContent) {
    ClImage Image;
    Draw(Image, eContent, state);
    ClIpFloodFill Flood;
    Flood.m_pInImage = &Image;
    Flood.m_pOutImage = &Image;
    Flood.m_nStartX = Image.Width() / 2;
    Flood.m_nStartY = Image.Height() / 2;
    unsigned char nColor = 100;
    for (auto _ : state) {
        Flood.m_nFillColor = nColor;
        Flood.Apply();
        nColor ^= 1;
    }
}

void FillByPixels(benchmark::State& state, EContent eContent) {
    ClImage Image;
    Draw(Image, eContent, state);
    Places aPlaces;
    unsigned char nSeed = Image.LineData(Image.Height() / 2)[Image.Width() / 2];
    unsigned char nColor = 100;
    for (auto _ : state) {
        const auto take = [&](int x, int y) {
            if (x < 0 || y < 0 || x >= Image.Width() || y >= Image.Height() ||
                Image.LineData(y)[x] != nSeed)
                return false;
            Image.LineData(y)[x] = nColor;
            return true;
        };
        FillByPixels(Image.Width() / 2, Image.Height() / 2, aPlaces, take);
        nSeed = nColor;
        nColor ^= 1;
    }
}

void Sizes(benchmark::internal::Benchmark* pBenchmark) {
    pBenchmark->Args({320, 480})->Args({412, 572});
    pBenchmark->ArgNames({"columns", "lines"})->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(Label, Dots, eDots)->Apply(Sizes);
BENCHMARK_CAPTURE(LabelByPixels, Dots, eDots)->Apply(Sizes);
BENCHMARK_CAPTURE(Label, Noise, eNoise)->Apply(Sizes);
BENCHMARK_CAPTURE(LabelByPixels, Noise, eNoise)->Apply(Sizes);
BENCHMARK_CAPTURE(Label, Finger, eFinger)->Apply(Sizes);
BENCHMARK_CAPTURE(LabelByPixels, Finger, eFinger)->Apply(Sizes);
BENCHMARK_CAPTURE(Components, Dots, eDots)->Apply(Sizes);
BENCHMARK_CAPTURE(Components, Noise, eNoise)->Apply(Sizes);
BENCHMARK_CAPTURE(Components, Finger, eFinger)->Apply(Sizes);
BENCHMARK_CAPTURE(Fill, Finger, eFinger)->Apply(Sizes);
BENCHMARK_CAPTURE(FillByPixels, Finger, eFinger)->Apply(Sizes);

} // namespace
