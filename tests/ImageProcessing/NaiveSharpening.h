#pragma once

/// Sharpening, defined sample by sample.

#include "support/Images.h"

#include <algorithm>

namespace TestSupport {

/// The sharpened image from a sample and its low pass, by the definition.
inline Rows NaiveSharpened(const Rows& aIn, const Rows& aLow, double dAmplification,
                           long nThreshold) {
    Rows aOut = aIn;
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x) {
            const int p = aIn[y][x];
            const int d = p - aLow[y][x];
            if (nThreshold != 0 && d >= -nThreshold && d <= nThreshold)
                continue;
            const double dValue = p + d * dAmplification;
            aOut[y][x] = static_cast<int>(std::min(255.0, std::max(0.0, dValue)));
        }
    return aOut;
}

} // namespace TestSupport
