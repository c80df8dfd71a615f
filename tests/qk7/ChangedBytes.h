#pragma once

#include "apps/qk7/File.h"

#include <cstddef>

namespace TestSupport {

/// A block with another byte at one place.
inline qk7::Bytes With(qk7::Bytes block, std::size_t nAt, unsigned char nValue) {
    block[nAt] = nValue;
    return block;
}

} // namespace TestSupport
