// The exported calls on one simulated scanner: what preparing the warp table costs, what loading
// it costs instead, and what one correction costs in each mode.

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
    Block m_Precalculated;

    StScanner() {
        const sim::ClScanner Scanner(900);
        m_Record = sim::RecordBlock(Scanner);
        m_Capture = sim::BitmapBlock(sim::CaptureKind(Scanner, sim::EKind::eLoop, 1).m_Raw);
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

void CalibrateInMode(benchmark::State& state, const char* szMode) {
    void* handle = CalibrateCreate();
    Require(state, CalibrateSetData(handle, Scanner().m_Record.data(), Scanner().m_Record.size()));
    Require(state, CalibrateSetOption(handle, "DynamicFingerMask=false"));
    Require(state, CalibrateSetOption(handle, szMode));
    Block Out(Scanner().m_Capture.size());
    for (auto _ : state) {
        unsigned long nSize = Out.size();
        Require(state, Calibrate(handle, Scanner().m_Capture.data(), Scanner().m_Capture.size(),
                                 Out.data(), &nSize));
        benchmark::ClobberMemory();
    }
    CalibrateDelete(&handle);
}
BENCHMARK_CAPTURE(CalibrateInMode, Off, "GeometricCalibrate=off")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CalibrateInMode, OddLines, "GeometricCalibrate=oddLines")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CalibrateInMode, ThinPlateSpline, "GeometricCalibrate=ThinPlateSpline")
    ->Unit(benchmark::kMicrosecond);

} // namespace
