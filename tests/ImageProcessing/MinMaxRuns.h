#pragma once

/// Runs of the filters that choose the smallest or the largest sample.

#include "support/Images.h"

#include <gtest/gtest.h>

namespace TestSupport {

template <class Filter>
Rows Filtered(const ClTestImage& In, long nWidth, long nMode) {
    ClTestImage in = In;
    ClImage out;
    Filter filter;
    EXPECT_EQ(filter.ApplyParam(in, out, nWidth, nMode), 0);
    return Pixels(out);
}

} // namespace TestSupport
