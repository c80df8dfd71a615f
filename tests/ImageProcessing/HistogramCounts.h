#pragma once

/// Histograms for tests.

#include "ImageProcessing/Histogram.h"

#include <initializer_list>
#include <utility>

namespace TestSupport {

/// A histogram with the given counts at the given bins.
inline ClHistogram Counts(std::initializer_list<std::pair<int, int>> aCounts) {
    ClHistogram Histogram;
    for (const auto& [nBin, nCount] : aCounts)
        Histogram.m_anCount[nBin] = nCount;
    return Histogram;
}

} // namespace TestSupport
