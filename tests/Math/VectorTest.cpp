#include "Math/Vector.h"

#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <type_traits>

namespace {

using TestSupport::cdNaN;

struct StCrossing {
    ClVector m_vPoint;
    double m_dT1;
    double m_dT2;
};

StCrossing Cross(const ClVector& vP1, const ClVector& vD1, const ClVector& vP2,
                 const ClVector& vD2) {
    StCrossing crossing{{}, 99.0, 99.0};
    crossing.m_vPoint = ClVector::Intersection(vP1, vD1, vP2, vD2, crossing.m_dT1, crossing.m_dT2);
    return crossing;
}

void ExpectNoCrossing(const StCrossing& crossing) {
    EXPECT_EQ(crossing.m_dT1, 0.0);
    EXPECT_EQ(crossing.m_dT2, 0.0);
    EXPECT_EQ(crossing.m_vPoint.x, 0.0);
    EXPECT_EQ(crossing.m_vPoint.y, 0.0);
}

} // namespace

TEST(Vector, StartsAtZero) {
    const ClVector v;
    EXPECT_EQ(v.x, 0.0);
    EXPECT_EQ(v.y, 0.0);
}

TEST(Vector, IsCopiedByValue) {
    ClVector v(1.0, 2.0);
    const ClVector copy(v);
    ClVector assigned;
    assigned = v;
    v.x = 5.0;
    EXPECT_EQ(copy.x, 1.0);
    EXPECT_EQ(assigned.y, 2.0);
    static_assert(std::has_virtual_destructor_v<ClVector>);
}

TEST(Vector, HasATolerance) {
    EXPECT_EQ(double{ClVector::m_cdEpsilon}, 1e-07);
}

TEST(Vector, AddsSubtractsAndMeasures) {
    const ClVector vSum = ClVector(1.0, 2.0) + ClVector(2.0, 2.0);
    const ClVector vDifference = ClVector(1.0, 2.0) - ClVector(4.0, 6.0);
    EXPECT_EQ(vSum.x, 3.0);
    EXPECT_EQ(vSum.y, 4.0);
    EXPECT_EQ(vSum.Length(), 5.0);
    EXPECT_EQ(vDifference.x, -3.0);
    EXPECT_EQ(vDifference.y, -4.0);
    EXPECT_EQ(vDifference.Length(), 5.0);
}

TEST(Vector, CrossesTwoLines) {
    // y = 2 and x = 3: one double step along the first, half a step back along the second
    const StCrossing crossing = Cross({1.0, 2.0}, {1.0, 0.0}, {3.0, 1.0}, {0.0, -2.0});
    EXPECT_EQ(crossing.m_dT1, 2.0);
    EXPECT_EQ(crossing.m_dT2, -0.5);
    EXPECT_EQ(crossing.m_vPoint.x, 3.0);
    EXPECT_EQ(crossing.m_vPoint.y, 2.0);
}

TEST(Vector, CrossesUnderItsOtherNameToo) {
    double dT1 = 0.0;
    double dT2 = 0.0;
    const ClVector v =
        ClVector::CrossPoint({1.0, 2.0}, {1.0, 0.0}, {3.0, 1.0}, {0.0, -2.0}, dT1, dT2);
    EXPECT_EQ(dT1, 2.0);
    EXPECT_EQ(dT2, -0.5);
    EXPECT_EQ(v.x, 3.0);
    EXPECT_EQ(v.y, 2.0);
}

TEST(Vector, FindsThePointThatBothLinesName) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> position(-100.0, 100.0);
    int nCrossings = 0;
    for (int i = 0; i < 1000; ++i) {
        const ClVector vP1(position(random), position(random));
        const ClVector vD1(position(random), position(random));
        const ClVector vP2(position(random), position(random));
        const ClVector vD2(position(random), position(random));
        if (std::abs(vD1.x * vD2.y - vD1.y * vD2.x) < 100.0)
            continue; // nearly parallel: the numbers grow too large for a fixed tolerance
        const StCrossing c = Cross(vP1, vD1, vP2, vD2);
        EXPECT_NEAR(c.m_vPoint.x, vP1.x + c.m_dT1 * vD1.x, 1e-8);
        EXPECT_NEAR(c.m_vPoint.y, vP1.y + c.m_dT1 * vD1.y, 1e-8);
        EXPECT_NEAR(c.m_vPoint.x, vP2.x + c.m_dT2 * vD2.x, 1e-8);
        EXPECT_NEAR(c.m_vPoint.y, vP2.y + c.m_dT2 * vD2.y, 1e-8);
        ++nCrossings;
    }
    EXPECT_GT(nCrossings, 900);
}

TEST(Vector, HasNoCrossingForParallelLines) {
    ExpectNoCrossing(Cross({1.0, 2.0}, {1.0, 1.0}, {3.0, 1.0}, {-2.0, -2.0}));
    ExpectNoCrossing(Cross({1.0, 2.0}, {0.0, 0.0}, {3.0, 1.0}, {1.0, 0.0}));
    ExpectNoCrossing(Cross({1.0, 2.0}, {1.0, 0.0}, {1.0, 2.0}, {1.0, 0.0})); // the same line
}

TEST(Vector, TakesLinesWithinTheToleranceAsParallel) {
    ExpectNoCrossing(Cross({1.0, 2.0}, {1.0, 0.0}, {3.0, 1.0}, {1.0, 1e-07}));
    ExpectNoCrossing(Cross({1.0, 2.0}, {1.0, 0.0}, {3.0, 1.0}, {1.0, -1e-07}));
    const StCrossing crossing = Cross({0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}, {0.0, 1.0000001e-07});
    EXPECT_NEAR(crossing.m_dT2, -1e7, 2.0);
    EXPECT_NEAR(crossing.m_vPoint.y, 0.0, 1e-9);
}

TEST(Vector, HasNoCrossingForWhatIsNoNumber) {
    ExpectNoCrossing(Cross({1.0, 2.0}, {cdNaN, 0.0}, {3.0, 1.0}, {0.0, 1.0}));
}
