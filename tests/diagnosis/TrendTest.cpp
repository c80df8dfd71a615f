/// Polynomials and inverses with known answers.

#include "diagnosis/Trend.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace diagnosis;

namespace {

Points Grid() {
    Points aPlaces;
    for (const double x : {-1.0, -0.5, 0.0, 0.5, 1.0})
        for (const double y : {-1.0, -0.4, 0.1, 0.7})
            aPlaces.push_back({x, y});
    return aPlaces;
}

} // namespace

TEST(DiagnosisTrend, HasTheTermsOfItsDegree) {
    EXPECT_EQ(TrendTerms(1), 3U);
    EXPECT_EQ(TrendTerms(2), 6U);
    EXPECT_EQ(TrendTerms(3), 10U);
    EXPECT_EQ(TrendAt({2.0, 3.0}, 3),
              (Values{1.0, 2.0, 3.0, 4.0, 6.0, 9.0, 8.0, 12.0, 18.0, 27.0}));
    EXPECT_THROW(TrendTerms(0), std::invalid_argument);
    EXPECT_THROW(TrendTerms(4), std::invalid_argument);
}

TEST(DiagnosisTrend, FindsAPolynomialAgain) {
    const Values aFactors{1.0, -2.0, 0.5, 3.0, 0.25, -1.0, 2.0, -0.5, 1.5, 4.0};
    Values aValues;
    for (const StPoint& Place : Grid()) {
        const Values aTerms = TrendAt(Place, 3);
        double dSum = 0.0;
        for (std::size_t i = 0; i < aTerms.size(); ++i)
            dSum += aFactors[i] * aTerms[i];
        aValues.push_back(dSum);
    }
    const Values aFound = FitTrend(Grid(), aValues, 3);

    for (std::size_t i = 0; i < aFactors.size(); ++i)
        EXPECT_NEAR(aFound[i], aFactors[i], 1e-10) << i;
}

// Of 0, 0, 1, 1 over a square the plane x / 2 + 1 / 2 in the least squares of a fifth value, 3, in
// the middle: the mean becomes 1.
TEST(DiagnosisTrend, FitsInTheLeastSquares) {
    const Points aPlaces{{-1.0, -1.0}, {-1.0, 1.0}, {1.0, -1.0}, {1.0, 1.0}, {0.0, 0.0}};
    const Values aFound = FitTrend(aPlaces, {0.0, 0.0, 1.0, 1.0, 3.0}, 1);

    EXPECT_NEAR(aFound[0], 1.0, 1e-12);
    EXPECT_NEAR(aFound[1], 0.5, 1e-12);
    EXPECT_NEAR(aFound[2], 0.0, 1e-12);
}

TEST(DiagnosisTrend, RefusesTooFewOrUnfitPlaces) {
    EXPECT_THROW(FitTrend({{0.0, 0.0}, {1.0, 0.0}}, {1.0, 2.0}, 1), std::invalid_argument);
    EXPECT_THROW(FitTrend(Grid(), {1.0}, 1), std::invalid_argument);
    EXPECT_THROW(FitTrend({{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}}, {1.0, 2.0, 3.0}, 1),
                 std::invalid_argument);
}

// Mean (2, 3), mean square of the distances 2.
TEST(DiagnosisTrend, ScalesPlacesToAMeanSquareOfOne) {
    const Points aPlaces{{1.0, 2.0}, {3.0, 2.0}, {1.0, 4.0}, {3.0, 4.0}};
    const ClScaling Scaling(aPlaces);

    EXPECT_NEAR(Scaling.Scale(), std::sqrt(2.0), 1e-12);
    EXPECT_NEAR(Scaling({3.0, 2.0}).m_dX, std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(Scaling({3.0, 2.0}).m_dY, -std::sqrt(0.5), 1e-12);
    EXPECT_THROW(ClScaling(Points{}), std::invalid_argument);
    EXPECT_THROW(ClScaling(Points{{1.0, 1.0}, {1.0, 1.0}}), std::invalid_argument);
    EXPECT_THROW(ClScaling(Points{{1.0, std::numeric_limits<double>::infinity()}, {1.0, 1.0}}),
                 std::invalid_argument);
}

// 0 in the corner: a pivot has to be looked for.
TEST(DiagnosisInverse, InvertsByHand) {
    const Values aInverse = Inverse({0.0, 2.0, 1.0, 1.0}, 2);
    const Values aExpected{-0.5, 1.0, 0.5, 0.0};

    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(aInverse[i], aExpected[i], 1e-12) << i;
    EXPECT_EQ(Product({1.0, 2.0, 3.0, 4.0}, {5.0, 6.0}), (Values{17.0, 39.0}));
}

TEST(DiagnosisInverse, RefusesSingularMatrices) {
    EXPECT_THROW(Inverse({1.0, 2.0, 2.0, 4.0}, 2), std::invalid_argument);
    EXPECT_THROW(Inverse({1.0, 2.0, 2.0}, 2), std::invalid_argument);
    EXPECT_THROW(Inverse({std::nan(""), 2.0, 2.0, 4.0}, 2), std::invalid_argument);
}
