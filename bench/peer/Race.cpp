#include "Race.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <utility>

namespace peer {

namespace {

constexpr double cdBlock = 50000.0; ///< microseconds that a block of runs takes
constexpr double cdShortest = 10.0; ///< of a sample, which holds as many runs as that takes
constexpr int cnSamples = 3;        ///< at least, in a block

double Now() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::micro>(now).count();
}

double TimeOf(const ClRace::Work& work, int nRuns) {
    const double dStart = Now();
    for (int i = 0; i < nRuns; ++i)
        work();
    return (Now() - dStart) / nRuns;
}

/// Microseconds of the shortest run of a block.
double BlockOf(const ClRace::Work& work) {
    const double dOne = std::max(0.05, TimeOf(work, 1)); // fills the caches, too
    const int nRuns = std::max(1, static_cast<int>(cdShortest / dOne));
    double dShortest = dOne;
    const double dEnd = Now() + cdBlock;
    for (int i = 0; i < cnSamples || Now() < dEnd; ++i)
        dShortest = std::min(dShortest, TimeOf(work, nRuns));
    return dShortest;
}

} // namespace

void ClRace::Add(std::string sName, double dGoal, Work peerWork, Work ownWork) {
    m_aPairs.push_back({std::move(sName), dGoal, std::move(peerWork), std::move(ownWork)});
}

void ClRace::Measure(StPair& rPair, int nRounds) {
    rPair.m_dPeer = rPair.m_dOwn = std::numeric_limits<double>::infinity();
    for (int i = 0; i < nRounds; ++i) {
        rPair.m_dPeer = std::min(rPair.m_dPeer, BlockOf(rPair.m_PeerWork));
        rPair.m_dOwn = std::min(rPair.m_dOwn, BlockOf(rPair.m_OwnWork));
    }
}

void ClRace::Run(int nRounds, const std::string& sFilter) {
    std::vector<StPair> aChosen;
    for (StPair& rPair : m_aPairs)
        if (rPair.m_sName.find(sFilter) != std::string::npos)
            aChosen.push_back(std::move(rPair));
    m_aPairs = std::move(aChosen);
    for (StPair& rPair : m_aPairs)
        Measure(rPair, nRounds);
}

int ClRace::Print() const {
    int nMissed = 0;
    std::printf("%-52s %10s %10s %7s %6s\n", "work", "peer us", "ours us", "ratio", "goal");
    for (const StPair& Pair : m_aPairs) {
        const double dRatio = Pair.m_dOwn / Pair.m_dPeer;
        std::printf("%-52s %10.2f %10.2f %7.2f", Pair.m_sName.c_str(), Pair.m_dPeer, Pair.m_dOwn,
                    dRatio);
        if (Pair.m_dGoal == 0.0) {
            std::printf("\n");
            continue;
        }
        const bool bReached = dRatio <= Pair.m_dGoal;
        nMissed += bReached ? 0 : 1;
        std::printf(" %6.2f%s\n", Pair.m_dGoal, bReached ? "" : "  missed");
    }
    return nMissed;
}

} // namespace peer
