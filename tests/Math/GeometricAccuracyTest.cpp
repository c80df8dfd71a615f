#include "Math/GeometricAccuracy.h"

#include "Math/GeometricTransformation.h"
#include "support/AllocationFailures.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

namespace {

using TestSupport::cdInfinity;
using TestSupport::cdNaN;

/// One pair of points on the x axis with these distances.
double ResultOfPair(double dReference, double dMeasured) {
    ClGeometricAccuracy accuracy;
    accuracy.appendPoint({3.0, 5.0}, {-7.0, 2.0});
    accuracy.appendPoint({3.0 + dReference, 5.0}, {-7.0 + dMeasured, 2.0});
    accuracy.Calculate();
    return accuracy.getTestResult();
}

} // namespace

// Requirements

TEST(GeometricAccuracy, StartsEmptyWithTheLimitsOfEfts) {
    const ClGeometricAccuracy accuracy;
    EXPECT_EQ(accuracy.m_aReference.Entries(), 0u);
    EXPECT_EQ(accuracy.m_aMeasured.Entries(), 0u);
    EXPECT_EQ(accuracy.m_dAbsoluteTolerance, 0.35);
    EXPECT_EQ(accuracy.m_dRelativeTolerance, 0.01);
    EXPECT_EQ(accuracy.getTestResult(), 0.0);
    static_assert(!std::is_polymorphic_v<ClGeometricAccuracy>);
    static_assert(ClGeometricAccuracy::eEFTS == 0 && ClGeometricAccuracy::ePIV == 1);
}

TEST(GeometricAccuracy, KnowsTwoRequirementsAndLeavesTheLimitsAtAnyOther) {
    ClGeometricAccuracy accuracy;
    accuracy.setRequirements(ClGeometricAccuracy::ePIV);
    EXPECT_EQ(accuracy.m_dAbsoluteTolerance, 0.65);
    EXPECT_EQ(accuracy.m_dRelativeTolerance, 0.018);
    for (const int nOther : {2, -1, 1000})
        accuracy.setRequirements(static_cast<ClGeometricAccuracy::ERequirement>(nOther));
    EXPECT_EQ(accuracy.m_dAbsoluteTolerance, 0.65);
    EXPECT_EQ(accuracy.m_dRelativeTolerance, 0.018);
    accuracy.setRequirements(ClGeometricAccuracy::eEFTS);
    EXPECT_EQ(accuracy.m_dAbsoluteTolerance, 0.35);
    EXPECT_EQ(accuracy.m_dRelativeTolerance, 0.01);
}

TEST(GeometricAccuracy, AllowsAnAbsoluteDifferenceAtShortDistances) {
    const ClGeometricAccuracy accuracy;
    EXPECT_TRUE(accuracy.checkRequirements(34.9, 35.2));
    EXPECT_FALSE(accuracy.checkRequirements(34.9, 35.3));
    EXPECT_TRUE(accuracy.checkRequirements(34.9, 34.6));
    EXPECT_FALSE(accuracy.checkRequirements(34.9, 34.5));
    EXPECT_TRUE(accuracy.checkRequirements(0.0, 0.35)); // the limit itself passes
    EXPECT_FALSE(accuracy.checkRequirements(0.0, std::nextafter(0.35, 1.0)));
}

TEST(GeometricAccuracy, AllowsARelativeDifferenceAtLongDistances) {
    const ClGeometricAccuracy accuracy;
    EXPECT_TRUE(accuracy.checkRequirements(100.0, 101.0)); // the limit itself passes
    EXPECT_FALSE(accuracy.checkRequirements(100.0, 101.1));
    EXPECT_TRUE(accuracy.checkRequirements(100.0, 99.0));
    EXPECT_FALSE(accuracy.checkRequirements(100.0, 98.9));
}

TEST(GeometricAccuracy, TakesTheRelativeLimitFromExactly35On) {
    ClGeometricAccuracy accuracy;
    accuracy.m_dAbsoluteTolerance = 0.0;
    EXPECT_TRUE(accuracy.checkRequirements(35.0, 35.25));
    EXPECT_FALSE(accuracy.checkRequirements(std::nextafter(35.0, 0.0), 35.25));
    accuracy.m_dAbsoluteTolerance = 1000.0;
    EXPECT_FALSE(accuracy.checkRequirements(35.0, 36.0));
    // the reference distance decides, not the measured one
    EXPECT_TRUE(accuracy.checkRequirements(34.0, 500.0));
}

TEST(GeometricAccuracy, WidensWithTheOtherRequirement) {
    ClGeometricAccuracy accuracy;
    accuracy.setRequirements(ClGeometricAccuracy::ePIV);
    EXPECT_TRUE(accuracy.checkRequirements(20.0, 20.625));
    EXPECT_FALSE(accuracy.checkRequirements(20.0, 20.75));
    EXPECT_TRUE(accuracy.checkRequirements(1000.0, 1018.0));
    EXPECT_FALSE(accuracy.checkRequirements(1000.0, 1018.5));
}

TEST(GeometricAccuracy, PassesWhatIsNotANumber) {
    const ClGeometricAccuracy accuracy;
    EXPECT_TRUE(accuracy.checkRequirements(cdNaN, 10.0));
    EXPECT_TRUE(accuracy.checkRequirements(10.0, cdNaN));
    EXPECT_TRUE(accuracy.checkRequirements(1000.0, cdNaN));
    EXPECT_TRUE(accuracy.checkRequirements(cdInfinity, cdInfinity));
    EXPECT_FALSE(accuracy.checkRequirements(10.0, cdInfinity));
    EXPECT_TRUE(accuracy.checkRequirements(cdInfinity, 10.0)); // infinity is not above infinity
}

// Distances

TEST(GeometricAccuracy, MeasuresEuclideanDistances) {
    EXPECT_EQ(ClGeometricAccuracy::calculateDistance({1.0, 2.0}, {4.0, 6.0}), 5.0);
    EXPECT_EQ(ClGeometricAccuracy::calculateDistance({4.0, 6.0}, {1.0, 2.0}), 5.0);
    EXPECT_EQ(ClGeometricAccuracy::calculateDistance({-5.0, 0.0}, {0.0, -12.0}), 13.0);
    EXPECT_EQ(ClGeometricAccuracy::calculateDistance({7.5, 7.5}, {7.5, 7.5}), 0.0);
}

// Points

TEST(GeometricAccuracy, CollectsPointsInPairs) {
    ClGeometricAccuracy accuracy;
    for (int i = 0; i < 25; ++i)
        EXPECT_NO_THROW(accuracy.appendPoint({1.0 * i, 2.0}, {3.0, 4.0 * i}));
    ASSERT_EQ(accuracy.m_aReference.Entries(), 25u);
    ASSERT_EQ(accuracy.m_aMeasured.Entries(), 25u);
    EXPECT_EQ(accuracy.m_aReference[24].x, 24.0);
    EXPECT_EQ(accuracy.m_aReference[24].y, 2.0);
    EXPECT_EQ(accuracy.m_aMeasured[24].x, 3.0);
    EXPECT_EQ(accuracy.m_aMeasured[24].y, 96.0);
    accuracy.ClearPoints();
    EXPECT_EQ(accuracy.m_aReference.Entries(), 0u);
    EXPECT_EQ(accuracy.m_aMeasured.Entries(), 0u);
}

TEST(GeometricAccuracy, AppendsItsOwnPoints) {
    ClGeometricAccuracy accuracy;
    accuracy.appendPoint({1.0, 2.0}, {3.0, 4.0});
    for (int i = 0; i < 20; ++i)
        accuracy.appendPoint(accuracy.m_aReference[0], accuracy.m_aMeasured[0]);
    EXPECT_EQ(accuracy.m_aReference[20].y, 2.0);
    EXPECT_EQ(accuracy.m_aMeasured[20].x, 3.0);
}

TEST(GeometricAccuracy, KeepsTheListsInStepWithoutMemory) {
    TestSupport::FailEachAllocation([] {
        ClGeometricAccuracy accuracy;
        try {
            for (int i = 0; i < 11; ++i)
                accuracy.appendPoint({1.0, 2.0}, {3.0, 4.0});
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(accuracy.m_aReference.Entries(), accuracy.m_aMeasured.Entries());
            throw;
        }
    });
}

// Calculation

TEST(GeometricAccuracy, WantsTwoPoints) {
    ClGeometricAccuracy accuracy;
    accuracy.m_dTestResult = 12.5;
    for (int nPoints = 0; nPoints < 2; ++nPoints) {
        try {
            accuracy.Calculate();
            ADD_FAILURE() << nPoints << " points";
        } catch (const ClException& e) {
            EXPECT_EQ(e.Number(), -101);
            EXPECT_EQ(TestSupport::Words(e), "less than 2 points!");
            EXPECT_STREQ(e.File(), "Unknown");
            EXPECT_EQ(e.Line(), -1);
        }
        EXPECT_EQ(accuracy.getTestResult(), 12.5);
        accuracy.appendPoint({0.0, 0.0}, {0.0, 0.0});
    }
    EXPECT_NO_THROW(accuracy.Calculate());
}

TEST(GeometricAccuracy, ComparesNoFurtherThanTheShorterList) {
    ClGeometricAccuracy accuracy;
    accuracy.m_aReference.New(1000);
    EXPECT_THROWS(accuracy.Calculate(), ClException, -101, "less than 2 points!");
    accuracy.m_aMeasured.New(2);
    accuracy.Calculate();
    EXPECT_EQ(accuracy.getTestResult(), 100.0);
}

TEST(GeometricAccuracy, JudgesAPairByItsDistance) {
    EXPECT_EQ(ResultOfPair(20.0, 20.25), 100.0);
    EXPECT_EQ(ResultOfPair(20.0, 20.5), 0.0);
    EXPECT_EQ(ResultOfPair(200.0, 201.5), 100.0);
    EXPECT_EQ(ResultOfPair(200.0, 203.0), 0.0);
    EXPECT_EQ(ResultOfPair(200.0, cdNaN), 100.0);
}

TEST(GeometricAccuracy, OfThreePointsStepsByThirds) {
    // a point moved along the axis, away from its partners one by one
    const double adMoved[] = {20.0, 20.3, 20.5};
    const double adExpected[] = {100.0, 100.0, 100.0 / 3};
    for (int i = 0; i < 3; ++i) {
        ClGeometricAccuracy accuracy;
        accuracy.appendPoint({0.0, 0.0}, {0.0, 0.0});
        accuracy.appendPoint({10.0, 0.0}, {10.0, 0.0});
        accuracy.appendPoint({20.0, 0.0}, {adMoved[i], 0.0});
        accuracy.Calculate();
        EXPECT_DOUBLE_EQ(accuracy.getTestResult(), adExpected[i]);
    }
    // only one of the two distances leaves its limit: the longer one may differ by more
    ClGeometricAccuracy accuracy;
    accuracy.appendPoint({0.0, 0.0}, {0.0, 0.0});
    accuracy.appendPoint({80.0, 0.0}, {80.0, 0.0});
    accuracy.appendPoint({100.0, 0.0}, {100.5, 0.0});
    accuracy.Calculate();
    EXPECT_DOUBLE_EQ(accuracy.getTestResult(), 200.0 / 3);
}

// One point of n is away from all others: (n - 1) of n (n - 1) / 2 pairs fail.
TEST(GeometricAccuracy, TriesEveryPair) {
    for (const int nPoints : {2, 5, 75, 400}) {
        ClGeometricAccuracy accuracy;
        for (int i = 0; i < nPoints; ++i) {
            const double dOff = i == nPoints / 2 ? 1.0e6 : 0.0;
            accuracy.appendPoint({1.0 * i, 0.0}, {1.0 * i, dOff});
        }
        accuracy.Calculate();
        EXPECT_DOUBLE_EQ(accuracy.getTestResult(), 100.0 - 200.0 / nPoints);
    }
}

// A scale of 1.02 keeps a distance d short of 35 when 0.02 d <= 0.35, and fails every longer one.
TEST(GeometricAccuracy, OfAScaledLineIsAClosedForm) {
    ClGeometricAccuracy accuracy;
    constexpr int cnPoints = 60;
    for (int i = 0; i < cnPoints; ++i)
        accuracy.appendPoint({1.0 * i, 0.0}, {1.02 * i, 0.0});
    accuracy.Calculate();
    int nPasses = 0;
    for (int nDistance = 1; nDistance <= 17; ++nDistance) // 17 x 0.02 is 0.34
        nPasses += cnPoints - nDistance;
    EXPECT_DOUBLE_EQ(accuracy.getTestResult(), nPasses * 100.0 / (cnPoints * (cnPoints - 1) / 2));
}

TEST(GeometricAccuracy, DoesNotDependOnTheOrderOfThePoints) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> position(0.0, 300.0);
    std::uniform_real_distribution<double> error(-0.5, 0.5);
    ClGeometricAccuracy forward;
    for (int i = 0; i < 40; ++i) {
        const ClVector vReference(position(random), position(random));
        forward.appendPoint(vReference, vReference + ClVector(error(random), error(random)));
    }
    ClGeometricAccuracy backward;
    for (unsigned long i = 40; i-- > 0;)
        backward.appendPoint(forward.m_aReference[i], forward.m_aMeasured[i]);
    forward.Calculate();
    backward.Calculate();
    EXPECT_GT(forward.getTestResult(), 0.0);
    EXPECT_LT(forward.getTestResult(), 100.0);
    EXPECT_EQ(forward.getTestResult(), backward.getTestResult());
}

TEST(GeometricAccuracy, OfARotatedAndShiftedCopyIs100) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> position(0.0, 500.0);
    ClGeometricAccuracy accuracy;
    for (int i = 0; i < 75; ++i) {
        TpArrayDynamic<ClVector, 10> aMoved;
        const ClVector v(position(random), position(random));
        aMoved.Append(v);
        ClGeometricTransformation::Rotate({11.0, -20.0}, 2.3, aMoved);
        ClGeometricTransformation::Translate({1000.0, -3000.0}, aMoved);
        accuracy.appendPoint(v, aMoved[0]);
    }
    accuracy.Calculate();
    EXPECT_EQ(accuracy.getTestResult(), 100.0);
}

TEST(GeometricAccuracy, ForgetsThePointsAndKeepsTheResult) {
    ClGeometricAccuracy accuracy;
    accuracy.appendPoint({0.0, 0.0}, {0.0, 0.0});
    accuracy.appendPoint({1.0, 0.0}, {1.0, 0.0});
    accuracy.Calculate();
    accuracy.ClearPoints();
    EXPECT_EQ(accuracy.getTestResult(), 100.0);
    EXPECT_THROWS(accuracy.Calculate(), ClException, -101, "less than 2 points!");
}
