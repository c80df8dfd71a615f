#include "apps/qk7/Progress.h"

#include <gtest/gtest.h>

using qk7::ProgressLine;
using qk7::StPace;

namespace {

StPace Pace(std::size_t nDone, std::size_t nTotal, double dSeconds = 0.0,
            std::size_t nLeftOut = 0) {
    StPace pace;
    pace.m_nTotal = nTotal;
    pace.m_nDone = nDone;
    pace.m_nLeftOut = nLeftOut;
    pace.m_dSeconds = dSeconds;
    return pace;
}

} // namespace

TEST(Qk7ProgressLine, ShowsTheShareThatIsDone) {
    EXPECT_EQ(ProgressLine(Pace(0, 4), "a.bmp", 80), "[....................] 0/4, a.bmp");
    EXPECT_EQ(ProgressLine(Pace(1, 4), "b.bmp", 80), "[#####...............] 1/4, b.bmp");
    EXPECT_EQ(ProgressLine(Pace(4, 4), "", 80), "[####################] 4/4");
}

TEST(Qk7ProgressLine, ShowsTheRateAndTheTimeLeft) {
    EXPECT_EQ(ProgressLine(Pace(2, 8, 0.5), "c", 80),
              "[#####...............] 2/8, 4.00/s, 0:02 left, c")
        << "6 more at 4 per second take 1.5 seconds, of which a begun one counts";
    EXPECT_EQ(ProgressLine(Pace(100, 12400, 10.0), "", 80),
              "[....................] 100/12400, 10/s, 20:30 left");
    EXPECT_EQ(ProgressLine(Pace(1, 4000, 1.0), "", 80),
              "[....................] 1/4000, 1.00/s, 1:06:39 left");
    EXPECT_EQ(ProgressLine(Pace(1, 1000000000, 1.0), "", 80),
              "[....................] 1/1000000000, 1.00/s, 99:59:59 left");
}

TEST(Qk7ProgressLine, CountsOnlyTheStepsThatWereDoneForTheRate) {
    EXPECT_EQ(ProgressLine(Pace(6, 8, 1.0, 4), "", 80),
              "[###############.....] 6/8, 2.00/s, 0:01 left");
    EXPECT_EQ(ProgressLine(Pace(4, 8, 1.0, 4), "", 80), "[##########..........] 4/8");
}

TEST(Qk7ProgressLine, FitsIntoTheTerminal) {
    const StPace pace = Pace(1, 4, 1.0);
    EXPECT_EQ(ProgressLine(pace, "capture.bmp", 53),
              "[#####...............] 1/4, 1.00/s, 0:03 left, captur");
    EXPECT_EQ(ProgressLine(pace, "capture.bmp", 45),
              "[#####...............] 1/4, 1.00/s, 0:03 left");
    EXPECT_EQ(ProgressLine(pace, "capture.bmp", 44), "[#####...............] 1/4, 1.00/s");
    EXPECT_EQ(ProgressLine(pace, "capture.bmp", 26), "[#####...............] 1/4");
    EXPECT_EQ(ProgressLine(pace, "capture.bmp", 25), "1/4");
    EXPECT_EQ(ProgressLine(pace, "capture.bmp", 0), "");
}

TEST(Qk7ProgressLine, CutsNoCharacter) {
    // "ü" takes two bytes and one column, the wide one three bytes and two columns.
    EXPECT_EQ(ProgressLine(Pace(0, 4), "\u00fc\u00fc", 30),
              "[....................] 0/4, \u00fc\u00fc");
    EXPECT_EQ(ProgressLine(Pace(0, 4), "\u00fc\u00fc", 29), "[....................] 0/4, \u00fc");
    EXPECT_EQ(ProgressLine(Pace(0, 4), "\u6307\u6307", 30), "[....................] 0/4, \u6307");
}

TEST(Qk7ProgressLine, ShowsNoControlCharacters) {
    EXPECT_EQ(ProgressLine(Pace(0, 4), "a\033[2J\n.bmp", 80),
              "[....................] 0/4, a?[2J?.bmp");
    EXPECT_EQ(ProgressLine(Pace(0, 4),
                           "\xC2\x9B"
                           "2J\xFF\xE6\x8C",
                           80),
              "[....................] 0/4, ?2J???");
}
