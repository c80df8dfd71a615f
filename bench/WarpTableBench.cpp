// The warp table: what making one costs at each instruction level and by the spline alone, and how
// many of its entries the spline had to decide, over 200 simulated scanners.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/WarpTableMaking.h"
#include "Math/Logarithm.h"
#include "Tools/InstructionLevel.h"
#include "sim/Record.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

/// One scanner with its spline and room for its table.
class ClTable {
public:
    explicit ClTable(std::uint64_t nSeed, std::uint32_t nWidth = 320, std::uint32_t nHeight = 480) {
        ClCalibrateGeometricData Data;
        sim::FillRecord(sim::ClScanner(nSeed), Data);
        m_Warp.m_nSourceWidth = Data.m_nSourceWidth;
        m_Warp.m_nSourceHeight = Data.m_nSourceHeight;
        m_Warp.m_nTargetWidth = nWidth;
        m_Warp.m_nTargetHeight = nHeight;
        m_Warp.m_nPlanes = 1;
        m_Warp.m_nEntrySize = Warp::cnEntrySize;
        m_aTable.resize(m_Warp.TableBytes());
        m_Spline.Setup(static_cast<long>(Data.m_aTarget.Entries()), Data.m_aTarget.Data(),
                       Data.m_aActual[0].Data());
    }

    /// Returns the share of entries that the spline decided.
    double Make(Warp::EDecision eDecision = Warp::EDecision::FieldWhereSure) {
        const std::uint64_t nBySpline =
            Warp::MakeTable(m_Warp, &m_Spline, m_aTable.data(), eDecision);
        return static_cast<double>(nBySpline * Warp::cnEntrySize) /
               static_cast<double>(m_aTable.size());
    }

private:
    StWarp m_Warp;
    TpThinPlateSplines<double> m_Spline;
    std::vector<unsigned char> m_aTable;
};

void MakeAtLevel(benchmark::State& state, Warp::EDecision eDecision) {
    ClTable Table(900);
    LimitInstructionLevel(static_cast<EInstructionLevel>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(Table.Make(eDecision));
    LimitInstructionLevel(HighestInstructionLevel());
}

void Levels(benchmark::internal::Benchmark* pBenchmark) {
    pBenchmark->ArgName("level")->Unit(benchmark::kMillisecond);
    for (const EInstructionLevel eLevel :
         {EInstructionLevel::Baseline, EInstructionLevel::V3, EInstructionLevel::V4})
        pBenchmark->Arg(static_cast<int>(eLevel));
}

void Table(benchmark::State& state) {
    MakeAtLevel(state, Warp::EDecision::FieldWhereSure);
}
BENCHMARK(Table)->Apply(Levels);

void TableBySpline(benchmark::State& state) {
    MakeAtLevel(state, Warp::EDecision::SplineAlways);
}
BENCHMARK(TableBySpline)->Apply(Levels);

/// The largest corrected image that a record may claim.
void LargestTable(benchmark::State& state) {
    ClTable Table(900, 3860, 3860);
    for (auto _ : state)
        state.counters["share_by_spline"] = Table.Make();
}
BENCHMARK(LargestTable)->Unit(benchmark::kMillisecond);

void ShareBySplineOf200Scanners(benchmark::State& state) {
    double dSum = 0.0;
    double dLargest = 0.0;
    for (auto _ : state)
        for (std::uint64_t nSeed = 1; nSeed <= 200; ++nSeed) {
            const double dShare = ClTable(nSeed).Make();
            dSum += dShare / 200.0;
            dLargest = std::fmax(dLargest, dShare);
        }
    state.counters["mean"] = dSum;
    state.counters["largest"] = dLargest;
}
BENCHMARK(ShareBySplineOf200Scanners)->Iterations(1)->Unit(benchmark::kMillisecond);

template <class Log>
void SumOfLogs(benchmark::State& state, Log log) {
    for (auto _ : state) {
        double dSum = 0.0;
        for (int i = 1; i <= 1000; ++i)
            dSum += log(337.5 * i);
        benchmark::DoNotOptimize(dSum);
    }
}

void ThousandCorrectLogs(benchmark::State& state) {
    SumOfLogs(state, [](double x) { return CorrectLog(x); });
}
BENCHMARK(ThousandCorrectLogs);

void ThousandLogsOfTheLibrary(benchmark::State& state) {
    SumOfLogs(state, [](double x) { return std::log(x); });
}
BENCHMARK(ThousandLogsOfTheLibrary);

} // namespace
