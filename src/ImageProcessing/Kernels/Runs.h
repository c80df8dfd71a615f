#pragma once

/// Runs of equal samples along a line: where they begin and where they end. Regions are large and
/// runs are long, so bytes are compared eight at a time, and only the eight in which a run ends are
/// looked at one by one.

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Kernels {

/// Places `m_nBegin` to `m_nEnd` - 1 of a line.
struct StRun {
    long m_nBegin;
    long m_nEnd;
};

/// First place from `nFrom` on that holds `value`; `nEnd` where there is none.
template <class T>
long FindValue(const T* pLine, long nFrom, long nEnd, T value) {
    return std::find(pLine + nFrom, pLine + nEnd, value) - pLine;
}

inline long FindValue(const unsigned char* pLine, long nFrom, long nEnd, unsigned char nValue) {
    const auto nBytes = static_cast<std::size_t>(nEnd - nFrom);
    const void* pFound = nFrom < nEnd ? std::memchr(pLine + nFrom, nValue, nBytes) : nullptr;
    return pFound != nullptr ? static_cast<const unsigned char*>(pFound) - pLine : nEnd;
}

/// First place from `nFrom` on that holds another value; `nEnd` where there is none.
template <class T>
long FindOther(const T* pLine, long nFrom, long nEnd, T value) {
    while (nFrom < nEnd && pLine[nFrom] == value)
        ++nFrom;
    return nFrom;
}

inline long FindOther(const unsigned char* pLine, long nFrom, long nEnd, unsigned char nValue) {
    const std::uint64_t nEight = 0x0101010101010101U * nValue;
    for (std::uint64_t nBytes = 0; nFrom + 8 <= nEnd; nFrom += 8) {
        std::memcpy(&nBytes, pLine + nFrom, sizeof nBytes);
        if (nBytes != nEight)
            break;
    }
    while (nFrom < nEnd && pLine[nFrom] == nValue)
        ++nFrom;
    return nFrom;
}

/// The place where the run around `nPlace`, which holds the value, begins.
inline long FindRunBegin(const unsigned char* pLine, long nPlace, unsigned char nValue) {
    const std::uint64_t nEight = 0x0101010101010101U * nValue;
    for (std::uint64_t nBytes = 0; nPlace >= 8; nPlace -= 8) {
        std::memcpy(&nBytes, pLine + nPlace - 8, sizeof nBytes);
        if (nBytes != nEight)
            break;
    }
    while (nPlace > 0 && pLine[nPlace - 1] == nValue)
        --nPlace;
    return nPlace;
}

/// `visit(StRun)` for every run of `value` between two places, from left to right.
template <class T, class Visit>
void ForEachRun(const T* pLine, long nFrom, long nEnd, T value, Visit visit) {
    for (long nBegin = FindValue(pLine, nFrom, nEnd, value); nBegin < nEnd;) {
        const long nRunEnd = FindOther(pLine, nBegin, nEnd, value);
        visit(StRun{nBegin, nRunEnd});
        nBegin = FindValue(pLine, nRunEnd, nEnd, value);
    }
}

} // namespace Kernels
