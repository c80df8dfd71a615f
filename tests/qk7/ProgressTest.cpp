#include "apps/qk7/Progress.h"

#include <gtest/gtest.h>

using qk7::ProgressLine;

TEST(Qk7ProgressLine, ShowsTheShareThatIsDone) {
    EXPECT_EQ(ProgressLine(0, 4, "a.bmp", 80), "[....................] 0/4 a.bmp");
    EXPECT_EQ(ProgressLine(1, 4, "b.bmp", 80), "[#####...............] 1/4 b.bmp");
    EXPECT_EQ(ProgressLine(4, 4, "", 80), "[####################] 4/4 ");
}

TEST(Qk7ProgressLine, FitsIntoTheTerminal) {
    EXPECT_EQ(ProgressLine(1, 4, "capture.bmp", 30), "[#####...............] 1/4 cap");
    EXPECT_EQ(ProgressLine(1, 4, "capture.bmp", 26), "[#####...............] 1/4");
    EXPECT_EQ(ProgressLine(1, 4, "capture.bmp", 25), "1/4");
    EXPECT_EQ(ProgressLine(1, 4, "capture.bmp", 0), "");
}

TEST(Qk7ProgressLine, ShowsNoControlCharacters) {
    EXPECT_EQ(ProgressLine(0, 4, "a\033[2J\n.bmp", 80), "[....................] 0/4 a?[2J?.bmp");
}
