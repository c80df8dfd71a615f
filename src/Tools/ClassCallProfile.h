#pragma once

#include "Tools/Array.h"

#include <cstdint>
#include <typeinfo>

/// Counts runs and time per processor class. `ClProcessorBase::Apply` fills the table that
/// `g_pClassCallProfile` points at; what is made of the figures is up to the application.
class ClClassCallProfile {
public:
    struct ClEntry {
        const std::type_info* m_pType = nullptr;
        double m_dSeconds = 0.0;
        std::int64_t m_nCalls = 0;
    };

    virtual ~ClClassCallProfile();

    /// Adds a run to the entry of `type`, which is found by its address, or to a new entry.
    /// Throws `ClExBadAlloc`, with the table unchanged.
    void AddCall(const std::type_info& type, double dSeconds);

    /// Releases the entries.
    void Clear();
    /// A place for a report; does nothing here.
    void TraceTimes();

    TpArrayDynamic<ClEntry, 10> m_aEntries;
};

/// The table of the process, null while nobody counts. Whoever sets it owns it; it is read
/// without a lock.
extern ClClassCallProfile* g_pClassCallProfile;
