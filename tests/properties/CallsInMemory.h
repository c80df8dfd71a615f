#pragma once

/// Every exported call that takes a handle, with arguments that let it work to its end, and all
/// that can be read of a handle: for tests of what a call leaves.

#include "support/Records.h"

#include <TessarinCalibrateSDK.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Properties {

using TestSupport::Bytes;

/// Whether the long forms of the tests were asked for, by TESSARIN_NIGHTLY in the environment.
bool IsNight();

/// One of the sets of options that there are.
struct StOptionSet {
    bool m_bDynamicFingerMask;
    bool m_bSensitiveMode;
    int m_nGeometry; ///< 0 off, 1 odd lines, 2 splines
    bool m_bMaskIsOutput;
    bool m_bPrecalculatedData;

    /// The two of them that exclude each other.
    bool IsRefused() const { return m_bDynamicFingerMask && m_nGeometry == 0; }
    std::string Name() const;
};

inline std::ostream& operator<<(std::ostream& rTo, const StOptionSet& Options) {
    return rTo << Options.Name();
}

/// All 48.
const std::vector<StOptionSet>& AllOptions();

/// A handle with its options set.
class ClHandle {
public:
    explicit ClHandle(const StOptionSet& Options);
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;
    ~ClHandle() { CalibrateDelete(&m_pHandle); }

    operator void*() const { return m_pHandle; }
    /// Leaves the handle to the caller.
    void* Release() { return std::exchange(m_pHandle, nullptr); }

private:
    void* m_pHandle;
};

/// What a call answers and writes.
struct StOutcome {
    long m_nStatus = 0;
    unsigned long m_nSize = 0; ///< where a size goes in and out
    Bytes m_aOut;
    double m_dResult = 0.0;

    bool operator==(const StOutcome& Other) const;
};

/// All that can be read of a handle.
struct StState {
    Bytes m_aOptions;
    Bytes m_aLevels;
    Bytes m_aData;  ///< status and block
    Bytes m_aTable; ///< status and block

    bool operator==(const StState& Other) const;
};

StState StateOf(void* pHandle);

/// What stands in a state where there is no calibration data.
Bytes NoBlock();

struct StCall {
    const char* m_szName;
    void (*m_pPrepare)(void*);
    long (*m_pRun)(void*, StOutcome&);
    StOutcome m_Left;  ///< what stands in the outputs when the call writes none
    bool m_bDropsData; ///< when it fails
    /// Whether the call asks for memory with these options.
    bool (*m_pAsks)(const StOptionSet&);
    long m_nStride; ///< of the allocations that fail in turn, by day
    long m_nShare;  ///< by day, every so many sets of options are tried

    StOutcome Run(void* pHandle) const;
};

const std::vector<StCall>& CallsThatAllocate();
const std::vector<StCall>& CallsThatDoNot();

} // namespace Properties
