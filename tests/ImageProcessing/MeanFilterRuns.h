#pragma once

/// Runs of the mean filter, and which of them it refuses.

#include "ImageProcessing/IpFilterMid.h"
#include "support/Images.h"

#include <gtest/gtest.h>

namespace TestSupport {

inline long MeanFilter(ClImage& rIn, ClImage& rOut, long nWidth, long nMode) {
    ClIpFilterMid filter;
    filter.m_nMode = nMode;
    return filter.ApplyParam(rIn, rOut, nWidth);
}

inline ClTestImage MeanFiltered(const ClTestImage& In, long nWidth, long nMode = 3) {
    ClTestImage in = In;
    ClTestImage out;
    EXPECT_EQ(MeanFilter(in, out, nWidth, nMode), 0);
    ExpectSameImage(in, In);
    return out;
}

/// Whether the window reaches beyond both ends of an image in a direction of the mode.
inline bool IsWider(long nWidth, long nMode, const ClImage& Image) {
    return ((nMode & 1) != 0 && nWidth > Image.Width()) ||
           ((nMode & 2) != 0 && nWidth > Image.Height());
}

} // namespace TestSupport
