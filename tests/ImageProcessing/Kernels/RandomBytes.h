#pragma once

/// Samples for tests of kernels.

#include "support/TestData.h"

#include <cstddef>
#include <random>

namespace TestSupport {

inline Bytes RandomBytes(std::size_t nCount, unsigned nSeed) {
    std::mt19937 random(nSeed);
    Bytes aBytes(nCount);
    for (unsigned char& n : aBytes)
        n = static_cast<unsigned char>(random());
    return aBytes;
}

} // namespace TestSupport
