#include "measures/RankCorrelation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using measures::RankCorrelation;
using measures::Ranks;
using testing::ElementsAre;

TEST(MeasuresRanks, BeginWithOneAndAreSharedByEqualValues) {
    EXPECT_THAT(Ranks({30.0, 10.0, 20.0}), ElementsAre(3.0, 1.0, 2.0));
    EXPECT_THAT(Ranks({5.0, 7.0, 5.0, 9.0, 5.0}), ElementsAre(2.0, 4.0, 2.0, 5.0, 2.0));
}

TEST(MeasuresRankCorrelation, IsOneForWhatRisesTogether) {
    EXPECT_NEAR(RankCorrelation({1.0, 2.0, 3.0, 4.0}, {1.0, 10.0, 100.0, 1e9}), 1.0, 1e-12);
    EXPECT_NEAR(RankCorrelation({1.0, 2.0, 3.0, 4.0}, {0.0, -1.0, -50.0, -51.0}), -1.0, 1e-12);
}

// One less 6 times the sum of the squared differences of the ranks over n (n^2 - 1).
TEST(MeasuresRankCorrelation, IsThatOfTheTextbooks) {
    // Ranks 1, 3, 2, 5, 4: differences 0, 1, 1, 1, 1.
    EXPECT_NEAR(RankCorrelation({1.0, 2.0, 3.0, 4.0, 5.0}, {1.0, 3.0, 2.0, 6.0, 4.0}),
                1.0 - 6.0 * 4.0 / 120.0, 1e-12);
    // Differences 1, 1, 2.
    EXPECT_NEAR(RankCorrelation({1.0, 2.0, 3.0}, {2.0, 3.0, 1.0}), 1.0 - 6.0 * 6.0 / 24.0, 1e-12);
}

TEST(MeasuresRankCorrelation, IsZeroForWhatStaysTheSame) {
    EXPECT_EQ(RankCorrelation({1.0, 2.0, 3.0}, {4.0, 4.0, 4.0}), 0.0);
    EXPECT_EQ(RankCorrelation({}, {}), 0.0);
}

TEST(MeasuresRankCorrelation, NeedsListsOfOneLength) {
    EXPECT_THROW(RankCorrelation({1.0}, {1.0, 2.0}), std::invalid_argument);
}
