#pragma once

/// Captures with which something is wrong, of every degree: from what does no harm to what moves a
/// point by a third of a pitch.

#include "sim/Capture.h"
#include "sim/Random.h"
#include "sim/TargetCases.h"

#include <cstdint>
#include <vector>

namespace bench {

/// What may be wrong. The degree of it is drawn.
struct ClFault {
    const char* m_szName;
    void (*m_pAdd)(sim::ClTargetScene& rScene, sim::ClRandom& rRandom);
};

/// The single list of faults; the first is none.
const std::vector<ClFault>& Faults();

/// A target laid by hand on a wiped platen, with one fault in it.
sim::ClTargetScene FaultScene(const sim::ClScannerSettings& Scanner, const ClFault& Fault,
                              std::uint64_t nSeed);

} // namespace bench
