#include "bench/Verdicts.h"

#include "bench/RocPicture.h"
#include "bench/VerdictScenes.h"
#include "bench/VerdictTables.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <future>
#include <thread>

namespace bench {

namespace {

constexpr unsigned long cnEverySecond = 5; ///< scanners, one of which gets a second capture

/// A fault whose degree is drawn, and one of the named cases.
std::array<ClJudged, 2> JudgeScanner(unsigned long nSeed) {
    const sim::ClScannerSettings Settings = sim::ClScanner::DrawSettings(nSeed);
    const ClFault& Fault = Faults()[nSeed % Faults().size()];
    const bool bSecond = nSeed / Faults().size() % cnEverySecond == 0;

    const sim::ClTargetCaseEntry& Case = sim::g_aTargetCases[nSeed % sim::g_aTargetCases.size()];
    return {Judge(Fault.m_szName, FaultScene(Settings, Fault, nSeed), nSeed, {bSecond, true}),
            Judge(std::string("case ") + Case.m_szName,
                  sim::TargetScene(Settings, Case.m_eCase, nSeed), nSeed, {})};
}

/// By as many threads as there are processors; which of them takes a scanner makes no difference.
Judgements JudgeScanners(unsigned long nScanners, unsigned long nFirst) {
    Judgements aJudged(2 * nScanners);
    std::atomic<unsigned long> nNext{0};
    const auto work = [&] {
        for (unsigned long n = nNext++; n < nScanners; n = nNext++) {
            const std::array<ClJudged, 2> aPair = JudgeScanner(nFirst + n);
            std::copy(aPair.begin(), aPair.end(),
                      aJudged.begin() + static_cast<std::ptrdiff_t>(2 * n));
        }
    };
    std::vector<std::future<void>> aWorkers;
    for (unsigned int n = 0; n < std::max(1U, std::thread::hardware_concurrency()); ++n)
        aWorkers.push_back(std::async(std::launch::async, work));
    for (std::future<void>& rWorker : aWorkers)
        rWorker.get();
    return aJudged;
}

} // namespace

int PrintVerdicts(const std::string& sPicture, unsigned long nScanners, unsigned long nFirst) {
    const Judgements aJudged = JudgeScanners(nScanners, nFirst);
    PrintKinds(aJudged);
    const std::vector<ClOperatingPoint> aPoints = OperatingPoints(aJudged);
    PrintOperatingPoints(aPoints);
    PrintVerdict(aJudged);
    PrintPlateScales(aJudged);
    PrintSecond(aJudged);
    PrintZones(aJudged);
    DrawRoc(sPicture, aPoints);
    return 0;
}

} // namespace bench
