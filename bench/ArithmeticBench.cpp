// The pixel arithmetic on a calibrated image. The 8-bit operators stand beside the plain loop of
// the same definition, and beside the same operator on 16 bits, which takes the walk that serves
// every combination of types.

#include "ImageProcessing/IpAbs.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpMax.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/IpSubtract.h"
#include "Tools/FpImage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

namespace {

constexpr int cnWidth = 320;
constexpr int cnHeight = 480;

void NewRandom(ClImage& rImage, unsigned char nType, unsigned nSeed) {
    rImage.NewWithType(nType, cnWidth, cnHeight, 1, 19685, 19685);
    std::mt19937 Random(nSeed);
    for (int y = 0; y < cnHeight; ++y)
        std::generate_n(rImage.LineData(y), rImage.LineStrideBytes(),
                        [&] { return static_cast<unsigned char>(Random()); });
}

void CountPixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * cnWidth * cnHeight);
}

// Two images

template <class Operator>
void RunPair(benchmark::State& state, Operator& rOperator, unsigned char nType) {
    ClImage In1;
    ClImage In2;
    ClImage Out;
    NewRandom(In1, nType, 1);
    NewRandom(In2, nType, 2);
    for (auto _ : state)
        rOperator.ApplyParam(In1, In2, Out, ClImage::eTypeDefault);
    CountPixels(state);
}

void Add(benchmark::State& state, ClIpAdd::EProcessingMode eMode, unsigned char nType,
         bool bUseLUT) {
    ClIpAdd Operator;
    Operator.m_eMode = eMode;
    Operator.m_bUseLUT = bUseLUT;
    RunPair(state, Operator, nType);
}

template <class Operator, ClImage::EDataType eType>
void Pair(benchmark::State& state) {
    Operator ip;
    RunPair(state, ip, eType);
}

/// The definition as a loop over each line.
template <class Definition>
void PlainLoop(benchmark::State& state, Definition definition) {
    ClImage In1;
    ClImage In2;
    ClImage Out;
    NewRandom(In1, ClImage::eUInt8, 1);
    NewRandom(In2, ClImage::eUInt8, 2);
    NewRandom(Out, ClImage::eUInt8, 3);
    for (auto _ : state) {
        for (int y = 0; y < cnHeight; ++y) {
            const unsigned char* pIn1 = In1.LineData(y);
            const unsigned char* pIn2 = In2.LineData(y);
            unsigned char* pOut = Out.LineData(y);
            for (int x = 0; x < cnWidth; ++x)
                pOut[x] = static_cast<unsigned char>(definition(pIn1[x], pIn2[x]));
        }
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

void PlainAdd(benchmark::State& state) {
    PlainLoop(state, [](int a, int b) { return a + b > 255 ? 255 : a + b; });
}

void PlainSubtract(benchmark::State& state) {
    PlainLoop(state, [](int a, int b) { return a > b ? a - b : 0; });
}

BENCHMARK_CAPTURE(Add, Cut, ClIpAdd::ModeCut, ClImage::eUInt8, false);
BENCHMARK(PlainAdd);
BENCHMARK_CAPTURE(Add, CutOf16Bits, ClIpAdd::ModeCut, ClImage::eUInt16, false);
BENCHMARK_CAPTURE(Add, CutByTable, ClIpAdd::ModeCut, ClImage::eUInt8, true);
BENCHMARK_CAPTURE(Add, Scale, ClIpAdd::ModeScale, ClImage::eUInt8, false);
BENCHMARK_CAPTURE(Add, Enlarge, ClIpAdd::ModeEnlarge, ClImage::eUInt8, false);
BENCHMARK_TEMPLATE(Pair, ClIpSubtract, ClImage::eUInt8)->Name("Subtract");
BENCHMARK(PlainSubtract);
BENCHMARK_TEMPLATE(Pair, ClIpSubtract, ClImage::eUInt16)->Name("Subtract/16Bits");
BENCHMARK_TEMPLATE(Pair, ClIpMax, ClImage::eUInt8)->Name("Max");
BENCHMARK_TEMPLATE(Pair, ClIpMax, ClImage::eUInt16)->Name("Max/16Bits");

// One image

template <class Operator>
void RunSingle(benchmark::State& state, Operator& rOperator, unsigned char nType) {
    ClImage In;
    ClImage Out;
    NewRandom(In, nType, 1);
    for (auto _ : state)
        rOperator.ApplyParam(In, Out);
    CountPixels(state);
}

template <class Operator, ClImage::EDataType eType>
void Single(benchmark::State& state) {
    Operator ip;
    RunSingle(state, ip, eType);
}

void Offset(benchmark::State& state, unsigned char nType) {
    ClIpOffset ip;
    ip.m_dOffset = 40.0;
    RunSingle(state, ip, nType);
}

void Scale(benchmark::State& state, unsigned char nType) {
    ClIpScale ip;
    ip.m_dScaleFactor = 2.2;
    RunSingle(state, ip, nType);
}

BENCHMARK_TEMPLATE(Single, ClIpInvert, ClImage::eUInt8)->Name("Invert");
BENCHMARK_TEMPLATE(Single, ClIpInvert, ClImage::eUInt16)->Name("Invert/16Bits");
BENCHMARK_TEMPLATE(Single, ClIpAbs, ClImage::eInt8)->Name("Abs");
BENCHMARK_CAPTURE(Offset, EightBits, ClImage::eUInt8);
BENCHMARK_CAPTURE(Offset, Words, ClImage::eUInt16);
BENCHMARK_CAPTURE(Scale, EightBits, ClImage::eUInt8);
BENCHMARK_CAPTURE(Scale, Words, ClImage::eUInt16);

} // namespace
