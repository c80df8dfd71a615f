#include "report/Outliers.h"

#include <gtest/gtest.h>

#include <limits>

using report::Outliers;

namespace {

constexpr double cdNone = std::numeric_limits<double>::quiet_NaN();

using Flags = std::vector<bool>;

} // namespace

TEST(Outliers, LieBeyondFiveRobustDeviations) {
    // The median of 1 to 9 and one more is 5.5, of the distances from it 2.5: the limit is
    // 5.5 + 5 x 1.4826 x 2.5 = 24.0325.
    EXPECT_EQ(Outliers({1, 2, 3, 4, 5, 6, 7, 8, 9, 24.03}, 0.0), Flags(10, false));
    Flags Last(10, false);
    Last[9] = true;
    EXPECT_EQ(Outliers({1, 2, 3, 4, 5, 6, 7, 8, 9, 24.04}, 0.0), Last);
    EXPECT_EQ(Outliers({1, 2, 3, 4, 5, 6, 7, 8, 9, -100}, 0.0), Last);
}

TEST(Outliers, AreNoneWithinFiveGrains) {
    std::vector<double> aValues(9, 100.0);
    aValues.push_back(99.91);
    EXPECT_EQ(Outliers(aValues, 0.02), Flags(10, false));
    aValues.back() = 99.89;
    EXPECT_TRUE(Outliers(aValues, 0.02).back());
}

TEST(Outliers, AreNotKnownOfFewerThanEight) {
    EXPECT_EQ(Outliers({1, 1, 1, 1, 1, 1, 1000}, 0.1), Flags(7, false));
    EXPECT_TRUE(Outliers({1, 1, 1, 1, 1, 1, 1, 1000}, 0.1).back());
}

TEST(Outliers, ValuesThatAreNoneDoNotCount) {
    EXPECT_EQ(Outliers({1, 1, 1, 1, 1, 1, cdNone, 1000}, 0.1), Flags(8, false));
    const Flags aOut = Outliers({1, 1, 1, 1, 1, 1, 1, cdNone, 1000}, 0.1);
    EXPECT_FALSE(aOut[7]);
    EXPECT_TRUE(aOut[8]);
}

TEST(Outliers, AreNoneOfNothing) {
    EXPECT_TRUE(Outliers({}, 1.0).empty());
}
