#pragma once

/// Runs of random sequences in processes of their own, so that a sequence that ends its process is
/// told and made short like one that breaks a promise.

#include <string>
#include <vector>

namespace Properties {

/// How a run ended.
struct StRunEnd {
    bool m_bFailed = false;
    long m_nStep = 0;         ///< that was made last
    long m_nQuickFingers = 0; ///< that the dynamic step has found the quick way
    std::string m_What;       ///< the first promise that was broken, or how the process ended

    bool IsSame(const StRunEnd& Other) const {
        return m_bFailed == Other.m_bFailed && m_What == Other.m_What;
    }
};

/// How much of a run is seen on standard error.
enum class ETold { eNothing, eFailures, eCalls };

/// Makes the steps of these numbers, as the seed decides them.
StRunEnd RunSteps(int nSeed, const std::vector<long>& anSteps, ETold eTold);

/// The steps up to the one that failed, without all those that the failure does not need.
std::vector<long> ShrunkSteps(int nSeed, const StRunEnd& End);

} // namespace Properties
