// The exported calls on one simulated scanner: what preparing the warp table costs, what loading
// it costs instead, what one correction costs in each mode, and what generating and checking cost.

#include <TessarinCalibrateSDK.h>

#include "sim/BitmapBlock.h"
#include "sim/Capture.h"
#include "sim/Record.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

namespace {

using Block = std::vector<unsigned char>;

/// One scanner with its blocks, made once.
struct StScanner {
    Block m_Record;
    Block m_Capture;
    Block m_Empty;
    Block m_Target;
    Block m_Precalculated;

    StScanner() {
        const sim::ClScanner Scanner(900);
        m_Record = sim::RecordBlock(Scanner);
        m_Capture = sim::BitmapBlock(sim::CaptureKind(Scanner, sim::EKind::eLoop, 1).m_Raw);
        m_Empty = sim::BitmapBlock(sim::CaptureKind(Scanner, sim::EKind::eEmpty, 1).m_Raw);
        m_Target = sim::BitmapBlock(sim::CaptureKind(Scanner, sim::EKind::eTarget, 1).m_Raw);
        void* handle = CalibrateCreate();
        unsigned long nSize = 0;
        if (CalibrateSetData(handle, m_Record.data(), m_Record.size()) != QMT_SUCCESS)
            std::abort();
        CalibrateGetPrecalculatedData(handle, nullptr, &nSize);
        m_Precalculated.resize(nSize);
        if (CalibrateGetPrecalculatedData(handle, m_Precalculated.data(), &nSize) != QMT_SUCCESS)
            std::abort();
        CalibrateDelete(&handle);
    }
};

StScanner& Scanner() {
    static StScanner scanner;
    return scanner;
}

void Require(benchmark::State& state, long nStatus) {
    if (nStatus != QMT_SUCCESS)
        state.SkipWithError(CalibrateGetErrorDescription(nStatus));
}

/// 320 x 480 pixels, 75 points: splines and table.
void SetDataPreparesTheTable(benchmark::State& state) {
    Scanner(); // simulated once, not in the first round
    void* handle = CalibrateCreate();
    for (auto _ : state)
        Require(state,
                CalibrateSetData(handle, Scanner().m_Record.data(), Scanner().m_Record.size()));
    CalibrateDelete(&handle);
}
BENCHMARK(SetDataPreparesTheTable)->Unit(benchmark::kMillisecond);

/// The same start with the table loaded.
void SetDataAndPrecalculatedData(benchmark::State& state) {
    Scanner();
    void* handle = CalibrateCreate();
    Require(state, CalibrateSetOption(handle, "PrecalculatedData=true"));
    for (auto _ : state) {
        Require(state,
                CalibrateSetData(handle, Scanner().m_Record.data(), Scanner().m_Record.size()));
        Require(state, CalibrateSetPrecalculatedData(handle, Scanner().m_Precalculated.data(),
                                                     Scanner().m_Precalculated.size()));
    }
    CalibrateDelete(&handle);
}
BENCHMARK(SetDataAndPrecalculatedData)->Unit(benchmark::kMillisecond);

Block Corrected(benchmark::State& state, void* handle, Block& rCapture) {
    Block corrected(rCapture.size());
    unsigned long nSize = corrected.size();
    Require(state, Calibrate(handle, rCapture.data(), rCapture.size(), corrected.data(), &nSize));
    corrected.resize(nSize);
    return corrected;
}

/// The options that differ from the defaults.
struct StOptions {
    const char* m_szGeometric = "GeometricCalibrate=ThinPlateSpline";
    const char* m_szDynamic = "DynamicFingerMask=true";
    const char* m_szMask = "MaskIsOutput=false";
};

void CalibrateWith(benchmark::State& state, const StOptions& Options, Block StScanner::*pCapture) {
    Block& rCapture = Scanner().*pCapture;
    void* handle = CalibrateCreate();
    Require(state, CalibrateSetData(handle, Scanner().m_Record.data(), Scanner().m_Record.size()));
    for (const char* szOption : {Options.m_szGeometric, Options.m_szDynamic, Options.m_szMask})
        Require(state, CalibrateSetOption(handle, szOption));
    Block Out(rCapture.size());
    for (auto _ : state) {
        unsigned long nSize = Out.size();
        Require(state, Calibrate(handle, rCapture.data(), rCapture.size(), Out.data(), &nSize));
        benchmark::ClobberMemory();
    }
    CalibrateDelete(&handle);
}

constexpr StOptions cDefaults;
constexpr StOptions cMask{"GeometricCalibrate=ThinPlateSpline", "DynamicFingerMask=true",
                          "MaskIsOutput=true"};
constexpr StOptions cOddLines{"GeometricCalibrate=oddLines", "DynamicFingerMask=true",
                              "MaskIsOutput=false"};
constexpr StOptions cWarpAlone{"GeometricCalibrate=ThinPlateSpline", "DynamicFingerMask=false",
                               "MaskIsOutput=false"};
constexpr StOptions cOddLinesAlone{"GeometricCalibrate=oddLines", "DynamicFingerMask=false",
                                   "MaskIsOutput=false"};
constexpr StOptions cOff{"GeometricCalibrate=off", "DynamicFingerMask=false", "MaskIsOutput=false"};

#define BENCH_CALIBRATE(name, options, capture)                                                    \
    BENCHMARK_CAPTURE(CalibrateWith, name, options, &StScanner::capture)                           \
        ->Unit(benchmark::kMicrosecond)
BENCH_CALIBRATE(Defaults, cDefaults, m_Capture);
BENCH_CALIBRATE(DefaultsWithoutFinger, cDefaults, m_Empty);
BENCH_CALIBRATE(MaskIsOutput, cMask, m_Capture);
BENCH_CALIBRATE(OddLines, cOddLines, m_Capture);
BENCH_CALIBRATE(ThinPlateSplineAlone, cWarpAlone, m_Capture);
BENCH_CALIBRATE(OddLinesAlone, cOddLinesAlone, m_Capture);
BENCH_CALIBRATE(Off, cOff, m_Capture);

/// Locating the dots, splines and table.
void GenerateData(benchmark::State& state) {
    void* handle = CalibrateCreate();
    Block& rTarget = Scanner().m_Target;
    for (auto _ : state)
        Require(state, CalibrateGenerateData(handle, rTarget.data(), rTarget.size()));
    CalibrateDelete(&handle);
}
BENCHMARK(GenerateData)->Unit(benchmark::kMillisecond);

void CheckEfts(benchmark::State& state) {
    void* handle = CalibrateCreate();
    Require(state, CalibrateSetData(handle, Scanner().m_Record.data(), Scanner().m_Record.size()));
    Require(state, CalibrateSetOption(handle, "DynamicFingerMask=false"));
    Block corrected = Corrected(state, handle, Scanner().m_Target);
    double dPercent = 0.0;
    for (auto _ : state)
        Require(state, CalibrateCheckEfts(handle, corrected.data(), corrected.size(), &dPercent));
    CalibrateDelete(&handle);
}
BENCHMARK(CheckEfts)->Unit(benchmark::kMillisecond);

void Contamination(benchmark::State& state) {
    void* handle = CalibrateCreate();
    Block& rCapture = Scanner().m_Capture;
    double dLevel = 0.0;
    for (auto _ : state)
        Require(state, ContaminationDetection(handle, rCapture.data(), rCapture.size(), &dLevel));
    CalibrateDelete(&handle);
}
BENCHMARK(Contamination)->Unit(benchmark::kMillisecond);

} // namespace
