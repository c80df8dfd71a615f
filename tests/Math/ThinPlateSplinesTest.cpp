#include "Math/ThinPlateSplines.h"

#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

using namespace TestSupport;

namespace {

using Points = std::vector<ClVector>;

constexpr const char* cszSingular =
    "Generation of Geometric Calibration data not possible, simgularity detected, contact Tessarin";
constexpr const char* cszMissed =
    "Generation of Geometric Calibration data not possible, contact Tessarin";

template <class T>
void Solve(TpThinPlateSplines<T>& spline, const Points& aOrigin, const Points& aTarget) {
    spline.Setup(static_cast<long>(aOrigin.size()), aOrigin.data(), aTarget.data());
}

template <class T>
ClVector Map(const TpThinPlateSplines<T>& spline, const ClVector& v) {
    T x = 99;
    T y = 99;
    spline.Transform(static_cast<T>(v.x), static_cast<T>(v.y), &x, &y);
    return {static_cast<double>(x), static_cast<double>(y)};
}

template <class T>
void ExpectNotSetUp(const TpThinPlateSplines<T>& spline) {
    EXPECT_THROWS(Map(spline, {1.0, 2.0}), ClExTessarin, -1, "Multiple initialization.");
}

/// A grid of 5 by 15 points as a target plate has it, each moved by up to two pixels.
Points Grid(std::mt19937& random, double dPitch = 30.0) {
    std::uniform_real_distribution<double> shift(-2.0, 2.0);
    Points aPoints;
    for (int y = 0; y < 15; ++y)
        for (int x = 0; x < 5; ++x)
            aPoints.emplace_back(dPitch * x + shift(random), dPitch * y + shift(random));
    return aPoints;
}

Points Moved(Points aPoints, std::mt19937& random, double dMost) {
    std::uniform_real_distribution<double> shift(-dMost, dMost);
    for (ClVector& v : aPoints)
        v = v + ClVector(shift(random), shift(random));
    return aPoints;
}

const Points caSquare = {{0.0, 0.0}, {10.0, 0.0}, {0.0, 10.0}, {10.0, 10.0}, {4.0, 7.0}};

} // namespace

template <class T>
class ThinPlateSplines : public testing::Test {
protected:
    TpThinPlateSplines<T> m_Spline;
};

using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(ThinPlateSplines, Precisions);

// Setup refused

TYPED_TEST(ThinPlateSplines, NeedsItsArguments) {
    ClVector v;
    EXPECT_THROWS(this->m_Spline.Setup(0, nullptr, nullptr), ClException, -44, "pvOrigin is NULL.");
    EXPECT_THROWS(this->m_Spline.Setup(0, &v, nullptr), ClException, -44, "pvTarget is NULL.");
    EXPECT_THROWS(this->m_Spline.Setup(0, &v, &v), ClException, -44, "nSize == NULL.");
    EXPECT_THROWS(this->m_Spline.Setup(-1, &v, &v), ClException, -44, "nSize == NULL.");
    ExpectNotSetUp(this->m_Spline);
}

TYPED_TEST(ThinPlateSplines, RefusesMorePointsThanItCanCount) {
    ClVector v; // nobody reads beyond it
    for (long nSize : {std::numeric_limits<long>::max(), 1L << 32, 1L << 31})
        EXPECT_THROWS(this->m_Spline.Setup(nSize, &v, &v), ClExBadAlloc, -102,
                      "Memory allocation failed");
    ExpectNotSetUp(this->m_Spline);
}

TYPED_TEST(ThinPlateSplines, TransformsNothingBeforeItsSetup) {
    ExpectNotSetUp(this->m_Spline);
    EXPECT_THROWS(this->m_Spline.CheckSetup(1, caSquare.data(), caSquare.data()), ClExTessarin, -1,
                  "Multiple initialization.");
    static_assert(std::has_virtual_destructor_v<TpThinPlateSplines<TypeParam>>);
}

TYPED_TEST(ThinPlateSplines, FindsOneOrTwoPointsSingular) {
    EXPECT_THROWS(Solve(this->m_Spline, {{3.0, 4.0}}, {{5.0, 6.0}}), ClException, -600,
                  cszSingular);
    EXPECT_THROWS(Solve(this->m_Spline, {{0.0, 0.0}, {4.0, 0.0}}, {{0.0, 0.0}, {4.0, 0.0}}),
                  ClException, -600, cszSingular);
    ExpectNotSetUp(this->m_Spline);
}

TYPED_TEST(ThinPlateSplines, FindsPointsOnAnAxisSingular) {
    const Points aPoints = {{0.0, 0.0}, {4.0, 0.0}, {9.0, 0.0}, {11.0, 0.0}};
    EXPECT_THROWS(Solve(this->m_Spline, aPoints, aPoints), ClException, -600, cszSingular);
}

TYPED_TEST(ThinPlateSplines, TellsWhereItFailed) {
    try {
        Solve(this->m_Spline, {{3.0, 4.0}}, {{5.0, 6.0}});
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Math/ThinPlateSplinesBOOST");
    }
}

TYPED_TEST(ThinPlateSplines, EitherRefusesPointsOnALineOrMeetsThem) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> position(0.0, 100.0);
    for (int nTry = 0; nTry < 50; ++nTry) {
        const ClVector vStart(position(random), position(random));
        const ClVector vStep(position(random) / 10.0, position(random) / 10.0);
        Points aOrigin;
        for (int i = 0; i < 2 + nTry % 6; ++i)
            aOrigin.emplace_back(vStart.x + i * vStep.x, vStart.y + i * vStep.y);
        const Points aTarget = Moved(aOrigin, random, 3.0);
        try {
            Solve(this->m_Spline, aOrigin, aTarget);
        } catch (const ClException& e) {
            EXPECT_EQ(e.Number(), -600);
            ExpectNotSetUp(this->m_Spline);
            continue;
        }
        for (std::size_t i = 0; i < aOrigin.size(); ++i)
            EXPECT_LE((Map(this->m_Spline, aOrigin[i]) - aTarget[i]).Length(), 0.01);
    }
}

TYPED_TEST(ThinPlateSplines, RefusesOnePointWithTwoTargets) {
    Points aOrigin = caSquare;
    aOrigin.push_back(aOrigin[4]);
    Points aTarget = aOrigin;
    aTarget[5].x += 1.0;
    // In float rounding hides that the pivot is zero, and the proof tells.
    const char* szWords = std::is_same_v<TypeParam, float> ? cszMissed : cszSingular;
    EXPECT_THROWS(Solve(this->m_Spline, aOrigin, aTarget), ClException, -600, szWords);
    ExpectNotSetUp(this->m_Spline);
}

// Solutions

TYPED_TEST(ThinPlateSplines, IsTheIdentityWithoutAnyDeformation) {
    std::mt19937 random(2);
    const Points aPoints = Grid(random);
    Solve(this->m_Spline, aPoints, aPoints);
    const double dTolerance = std::is_same_v<TypeParam, double> ? 1e-9 : 0.05;
    for (const ClVector& v : Moved(aPoints, random, 40.0)) {
        const ClVector vMapped = Map(this->m_Spline, v);
        EXPECT_NEAR(vMapped.x, v.x, dTolerance);
        EXPECT_NEAR(vMapped.y, v.y, dTolerance);
    }
}

TYPED_TEST(ThinPlateSplines, MeetsItsTargets) {
    std::mt19937 random(3);
    for (int nTry = 0; nTry < 5; ++nTry) {
        const Points aOrigin = Grid(random);
        const Points aTarget = Moved(aOrigin, random, 2.0);
        Solve(this->m_Spline, aOrigin, aTarget);
        for (std::size_t i = 0; i < aOrigin.size(); ++i)
            EXPECT_LE((Map(this->m_Spline, aOrigin[i]) - aTarget[i]).Length(), 0.01);
    }
}

TYPED_TEST(ThinPlateSplines, BendsAsTheClosedFormSays) {
    // Pulled out along x, pushed in along y: by symmetry there is no affine part, and the weights
    // are w on the x axis and -w on the y axis with w (U(4) - 2 U(2)) = 4 w ln 2 = 1.
    const Points aOrigin = {{1.0, 0.0}, {-1.0, 0.0}, {0.0, 1.0}, {0.0, -1.0}};
    const Points aTarget = {{1.0, 0.0}, {1.0, 0.0}, {-1.0, 5.0}, {-1.0, 5.0}};
    Solve(this->m_Spline, aOrigin, aTarget);
    const double w = 1.0 / (4.0 * std::log(2.0));
    const double dTolerance = std::is_same_v<TypeParam, double> ? 1e-13 : 1e-5;
    const auto Expect = [&](const ClVector& v, double dX) {
        const ClVector vMapped = Map(this->m_Spline, v);
        EXPECT_NEAR(vMapped.x, dX, dTolerance);
        EXPECT_NEAR(vMapped.y, 2.5 - 2.5 * dX, 10 * dTolerance); // the same shape, scaled
    };
    Expect({0.0, 0.0}, 0.0);
    Expect({1.0, 0.0}, 1.0);
    Expect({0.0, -1.0}, -1.0);
    Expect({2.0, 0.0}, w * (9.0 * std::log(9.0) - 10.0 * std::log(5.0)));
    Expect({0.0, 2.0}, -w * (9.0 * std::log(9.0) - 10.0 * std::log(5.0)));
    Expect({3.0, 3.0}, 0.0);
}

TYPED_TEST(ThinPlateSplines, ForgetsAnEarlierSetup) {
    const Points aShifted = {{5.0, 5.0}, {15.0, 5.0}, {5.0, 15.0}};
    std::mt19937 random(4);
    Solve(this->m_Spline, caSquare, Moved(caSquare, random, 1.0));
    Solve(this->m_Spline, {{0.0, 0.0}, {10.0, 0.0}, {0.0, 10.0}}, aShifted);
    const ClVector v = Map(this->m_Spline, {20.0, 30.0});
    EXPECT_NEAR(v.x, 25.0, 1e-3);
    EXPECT_NEAR(v.y, 35.0, 1e-3);
}

TYPED_TEST(ThinPlateSplines, IsNotSetUpAfterAFailedSetup) {
    Solve(this->m_Spline, caSquare, caSquare);
    EXPECT_THROWS(this->m_Spline.Setup(0, caSquare.data(), caSquare.data()), ClException, -44,
                  "nSize == NULL.");
    EXPECT_NEAR(Map(this->m_Spline, {4.0, 7.0}).y, 7.0, 1e-3); // arguments are checked before
    EXPECT_THROWS((Solve(this->m_Spline, {{3.0, 4.0}}, {{5.0, 6.0}})), ClException, -600,
                  cszSingular);
    ExpectNotSetUp(this->m_Spline);
}

TYPED_TEST(ThinPlateSplines, PassesTargetsThatAreNoNumbers) {
    Points aTarget = caSquare;
    aTarget[2].x = std::numeric_limits<double>::quiet_NaN();
    Solve(this->m_Spline, caSquare, aTarget);
    const ClVector v = Map(this->m_Spline, {2.0, 3.0});
    EXPECT_TRUE(std::isnan(v.x));
    EXPECT_NEAR(v.y, 3.0, 1e-3);
}

// The proof

TYPED_TEST(ThinPlateSplines, ProvesItsSolutionWithinAHundredth) {
    Solve(this->m_Spline, caSquare, caSquare);
    Points aTarget = caSquare;
    aTarget[4] = {4.0 + 0.0079, 7.0 - 0.0059}; // 0.00986 away
    this->m_Spline.CheckSetup(5, caSquare.data(), aTarget.data());
    aTarget[4] = {4.0 + 0.0081, 7.0 - 0.0061}; // 0.01014 away
    EXPECT_THROWS(this->m_Spline.CheckSetup(5, caSquare.data(), aTarget.data()), ClException, -600,
                  cszMissed);
    this->m_Spline.CheckSetup(4, caSquare.data(), aTarget.data());
}

TYPED_TEST(ThinPlateSplines, ProvesNothingAboutWhatIsNoNumber) {
    Solve(this->m_Spline, caSquare, caSquare);
    Points aTarget = caSquare;
    aTarget[4].y = std::numeric_limits<double>::quiet_NaN();
    this->m_Spline.CheckSetup(5, caSquare.data(), aTarget.data());
    SUCCEED();
}

TYPED_TEST(ThinPlateSplines, LeaksNothingWithoutMemory) {
    FailEachAllocation([] {
        TpThinPlateSplines<TypeParam> spline;
        Solve(spline, caSquare, caSquare);
        EXPECT_NEAR(Map(spline, {2.0, 3.0}).x, 2.0, 1e-3);
    });
    Solve(this->m_Spline, caSquare, caSquare);
    FailEachAllocation([&] {
        try {
            Solve(this->m_Spline, caSquare, caSquare);
        } catch (const ClExBadAlloc&) {
            ExpectNotSetUp(this->m_Spline);
            throw;
        }
    });
}

// Precision

TEST(ThinPlateSplinesPrecision, FloatMayMissWhereDoubleMeets) {
    Points aTarget = caSquare;
    for (ClVector& v : aTarget)
        v.x += 16777217.0; // float has no odd numbers here
    TpThinPlateSplines<double> fine;
    Solve(fine, caSquare, aTarget);
    EXPECT_NEAR(Map(fine, {4.0, 7.0}).x, 16777221.0, 0.01);
    TpThinPlateSplines<float> coarse;
    EXPECT_THROWS(Solve(coarse, caSquare, aTarget), ClException, -600, cszMissed);
    ExpectNotSetUp(coarse);
}

TEST(ThinPlateSplinesPrecision, FloatComesNearDouble) {
    std::mt19937 random(5);
    const Points aOrigin = Grid(random);
    const Points aTarget = Moved(aOrigin, random, 2.0);
    TpThinPlateSplines<double> fine;
    TpThinPlateSplines<float> coarse;
    Solve(fine, aOrigin, aTarget);
    Solve(coarse, aOrigin, aTarget);
    for (const ClVector& v : Moved(aOrigin, random, 15.0))
        EXPECT_LT((Map(fine, v) - Map(coarse, v)).Length(), 0.05);
}
