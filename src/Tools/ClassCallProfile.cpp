#include "Tools/ClassCallProfile.h"

ClClassCallProfile* g_pClassCallProfile = nullptr;

ClClassCallProfile::~ClClassCallProfile() = default;

void ClClassCallProfile::AddCall(const std::type_info& type, double dSeconds) {
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i) {
        ClEntry& entry = m_aEntries[i];
        if (entry.m_pType != &type)
            continue;
        ++entry.m_nCalls;
        entry.m_dSeconds += dSeconds;
        return;
    }
    m_aEntries.Append(ClEntry{&type, dSeconds, 1});
}

void ClClassCallProfile::Clear() {
    m_aEntries.New(0);
}

void ClClassCallProfile::TraceTimes() {}
