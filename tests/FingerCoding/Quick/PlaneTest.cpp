#include "FingerCoding/Quick/Plane.h"

#include <gtest/gtest.h>

using Quick::StBox;

TEST(QuickBox, IsEmptyWithoutColumnsOrLines) {
    EXPECT_FALSE((StBox{2, 3, 3, 4}).IsEmpty());
    EXPECT_TRUE((StBox{2, 3, 2, 4}).IsEmpty());
    EXPECT_TRUE((StBox{2, 3, 3, 3}).IsEmpty());
    EXPECT_TRUE((StBox{2, 3, 3, 1}).IsEmpty());
}

TEST(QuickBox, IsCutToAFrameAndEmptyBesideIt) {
    const StBox Cut = StBox{-2, 1, 3, 9}.CutTo({0, 0, 5, 4});
    EXPECT_EQ(Cut.m_nLeft, 0);
    EXPECT_EQ(Cut.m_nTop, 1);
    EXPECT_EQ(Cut.m_nRight, 3);
    EXPECT_EQ(Cut.m_nBottom, 4);
    EXPECT_TRUE((StBox{6, 0, 9, 4}.CutTo({0, 0, 5, 4}).IsEmpty()));
}
