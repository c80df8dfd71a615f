#pragma once

/// Two programs for the same work, measured in turn: what else the machine does, and how fast it
/// runs today, meets both.

#include <functional>
#include <string>
#include <vector>

namespace peer {

class ClRace {
public:
    using Work = std::function<void()>;

    /// One work with the peer's and our way of doing it, and how far of the peer's time ours may
    /// take; 0 for no goal.
    void Add(std::string sName, double dGoal, Work peerWork, Work ownWork);

    /// Measures every pair whose name holds `sFilter`: `nRounds` rounds of one block of runs each,
    /// of which the shortest run counts: what else the machine does only ever adds.
    void Run(int nRounds, const std::string& sFilter);

    /// Microseconds of both, their ratio and the goal. Returns how many goals were missed.
    int Print() const;

private:
    struct StPair {
        std::string m_sName;
        double m_dGoal;
        Work m_PeerWork;
        Work m_OwnWork;
        double m_dPeer = 0.0; ///< microseconds
        double m_dOwn = 0.0;
    };

    static void Measure(StPair& rPair, int nRounds);

    std::vector<StPair> m_aPairs;
};

/// What is computed counts as used.
inline void Use(const void* pResult) {
    asm volatile("" : : "g"(pResult) : "memory");
}

} // namespace peer
