#include "Math/GeometricTransformation.h"

#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace {

using TestSupport::cdNaN;
using TestSupport::cdPi;

using PointList = ClGeometricTransformation::PointList;

PointList ListOf(const std::vector<ClVector>& aPoints) {
    PointList aList;
    for (const ClVector& vPoint : aPoints)
        aList.Append(vPoint);
    return aList;
}

PointList RandomPoints(std::mt19937& rRandom, int nCount) {
    std::uniform_real_distribution<double> position(-300.0, 300.0);
    PointList aList;
    for (int i = 0; i < nCount; ++i)
        aList.Append({position(rRandom), position(rRandom)});
    return aList;
}

void ExpectNear(const PointList& rPoints, const PointList& rExpected, double dLimit) {
    ASSERT_EQ(rPoints.Entries(), rExpected.Entries());
    for (unsigned long i = 0; i < rPoints.Entries(); ++i) {
        EXPECT_NEAR(rPoints[i].x, rExpected[i].x, dLimit) << i;
        EXPECT_NEAR(rPoints[i].y, rExpected[i].y, dLimit) << i;
    }
}

/// A failure without a source position.
template <class Call>
void ExpectRefused(Call call, long nNumber) {
    try {
        call();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_EQ(e.Number(), nNumber);
        EXPECT_STREQ(e.What(), GetErrorDescriptionIntern(nNumber));
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}

/// Rays of length 1 from the origin; the first point is the origin.
PointList Rays(const std::vector<ClVector>& aEnds) {
    PointList aList;
    aList.Append({0.0, 0.0});
    for (const ClVector& vEnd : aEnds)
        aList.Append(vEnd);
    return aList;
}

} // namespace

// Parts

TEST(GeometricTransformation, StartsWithoutListsOrFit) {
    const ClGeometricTransformation fit;
    EXPECT_EQ(fit.m_pFixed, nullptr);
    EXPECT_EQ(fit.m_pMoved, nullptr);
    EXPECT_EQ(fit.m_dAngle, 0.0);
    EXPECT_EQ(fit.m_Translation.x, 0.0);
    EXPECT_EQ(fit.m_Translation.y, 0.0);
    static_assert(std::has_virtual_destructor_v<ClGeometricTransformation>);
}

TEST(GeometricTransformation, FindsTheCentreOfMass) {
    const ClVector v =
        ClGeometricTransformation::GetCenterOfMass(ListOf({{1.0, 10.0}, {2.0, -4.0}, {6.0, 0.0}}));
    EXPECT_EQ(v.x, 3.0);
    EXPECT_EQ(v.y, 2.0);
    const ClVector vNone = ClGeometricTransformation::GetCenterOfMass(PointList());
    EXPECT_TRUE(std::isnan(vNone.x));
    EXPECT_TRUE(std::isnan(vNone.y));
}

TEST(GeometricTransformation, ShiftsEveryPoint) {
    PointList aPoints = ListOf({{1.0, 2.0}, {-3.0, 4.0}});
    ClGeometricTransformation::Translate({10.0, -0.5}, aPoints);
    ExpectNear(aPoints, ListOf({{11.0, 1.5}, {7.0, 3.5}}), 0.0);
    ClGeometricTransformation::Translate(aPoints[0], aPoints); // a point as the shift
    ExpectNear(aPoints, ListOf({{22.0, 3.0}, {18.0, 5.0}}), 0.0);
    PointList aNone;
    ClGeometricTransformation::Translate({1.0, 1.0}, aNone);
    EXPECT_EQ(aNone.Entries(), 0u);
}

TEST(GeometricTransformation, RotatesFromXToY) {
    PointList aPoints = ListOf({{3.0, 1.0}, {2.0, 1.0}});
    ClGeometricTransformation::Rotate({2.0, 1.0}, cdPi / 2, aPoints);
    ExpectNear(aPoints, ListOf({{2.0, 2.0}, {2.0, 1.0}}), 1e-15);
    ClGeometricTransformation::Rotate({0.0, 0.0}, cdPi, aPoints);
    ExpectNear(aPoints, ListOf({{-2.0, -2.0}, {-2.0, -1.0}}), 1e-15);
    PointList aTilted = ListOf({{2.0, 0.0}, {0.0, 2.0}});
    ClGeometricTransformation::Rotate({0.0, 0.0}, cdPi / 6, aTilted);
    ExpectNear(aTilted, ListOf({{std::sqrt(3.0), 1.0}, {-1.0, std::sqrt(3.0)}}), 1e-15);
}

TEST(GeometricTransformation, RotatesAboutOneOfItsPoints) {
    PointList aPoints = ListOf({{5.0, 5.0}, {6.0, 5.0}, {5.0, 4.0}});
    ClGeometricTransformation::Rotate(aPoints[0], cdPi / 2, aPoints);
    ExpectNear(aPoints, ListOf({{5.0, 5.0}, {5.0, 6.0}, {6.0, 5.0}}), 1e-15);
}

// Angles

TEST(GeometricTransformation, AngleWithoutRaysIsARightOne) {
    const PointList aOne = ListOf({{4.0, 2.0}});
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aOne, aOne), cdPi / 2);
    EXPECT_EQ(ClGeometricTransformation::RotAngle(PointList(), PointList()), cdPi / 2);
}

TEST(GeometricTransformation, AngleReadsNoFurtherThanTheShorterList) {
    const PointList aOne = ListOf({{4.0, 2.0}});
    const PointList aThree = ListOf({{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}});
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aOne, aThree), cdPi / 2);
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aThree, aOne), cdPi / 2);
    EXPECT_EQ(ClGeometricTransformation::RotAngle(PointList(), aThree), cdPi / 2);
}

TEST(GeometricTransformation, AngleOfTheSameRaysIsExactlyZero) {
    std::mt19937 random(1);
    const PointList aPoints = RandomPoints(random, 75);
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aPoints, aPoints), 0.0);
}

// cos(pi) is exactly -1 while sin(pi), in doubles, is not 0: two rays turned by pi and by -pi
// cancel it out.
TEST(GeometricTransformation, AngleOfTurnedRaysIsExactlyPiWhereTheSinesCancel) {
    const PointList aFixed = Rays({{1.0, 0.0}, {-1.0, 0.0}});
    const PointList aTurned = Rays({{-1.0, 0.0}, {1.0, 0.0}});
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aFixed, aTurned), cdPi);
}

// Cosines that cancel out exactly, 1 and -1, leave what sin(pi) is in doubles, and its sign.
TEST(GeometricTransformation, AngleIsARightOneWhereTheCosinesCancel) {
    ASSERT_GT(std::sin(cdPi), 0.0);
    // direction to the first point: of (1, 0) it is pi, of (-1, 0) it is 0
    const PointList aBoth = Rays({{1.0, 0.0}, {1.0, 0.0}});
    const PointList aOneTurned = Rays({{1.0, 0.0}, {-1.0, 0.0}});
    // differences 0 and 0 - pi: s is below 0
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aBoth, aOneTurned), 3 * cdPi / 2);
    // differences 0 and pi - 0: s is above 0
    EXPECT_EQ(ClGeometricTransformation::RotAngle(aOneTurned, aBoth), cdPi / 2);
}

TEST(GeometricTransformation, AnglesLieBetweenZeroAndAFullTurn) {
    const PointList aFixed = Rays({{100.0, 0.0}, {0.0, 30.0}, {-20.0, 7.0}});
    for (int nDegrees = 1; nDegrees < 360; ++nDegrees) {
        PointList aMoved = aFixed;
        ClGeometricTransformation::Rotate({3.0, 4.0}, nDegrees * cdPi / 180, aMoved);
        EXPECT_NEAR(ClGeometricTransformation::RotAngle(aFixed, aMoved), nDegrees * cdPi / 180,
                    1e-13);
    }
}

TEST(GeometricTransformation, TinyNegativeAnglesDoNotRoundUpToAFullTurn) {
    const PointList aFixed = Rays({{1.0, 0.0}, {-1.0, 0.0}});
    const PointList aTilted = Rays({{1.0, 0.0}, {-1.0, 1e-30}}); // by -1e-30
    const double dAngle = ClGeometricTransformation::RotAngle(aFixed, aTilted);
    EXPECT_GE(dAngle, 0.0);
    EXPECT_LT(dAngle, 2 * cdPi);
    EXPECT_NEAR(dAngle, 0.0, 1e-15);
}

TEST(GeometricTransformation, AngleIsTheCircularMeanOfTheRays) {
    const auto At = [](double dDegrees) {
        return ClVector(std::cos(dDegrees * cdPi / 180), std::sin(dDegrees * cdPi / 180));
    };
    const PointList aFixed = Rays({{1.0, 0.0}, {1.0, 0.0}});
    // the plain mean of 350 and 30 degrees would be 190
    EXPECT_NEAR(ClGeometricTransformation::RotAngle(aFixed, Rays({At(350.0), At(30.0)})),
                10.0 * cdPi / 180, 1e-14);
    // lengths of rays have no weight
    EXPECT_NEAR(ClGeometricTransformation::RotAngle(aFixed, Rays({At(40.0), {1e6, 0.0}})),
                20.0 * cdPi / 180, 1e-14);
}

// Fit

TEST(GeometricTransformation, WantsBothLists) {
    PointList aPoints = ListOf({{1.0, 2.0}});
    for (const bool bFixed : {false, true})
        for (const bool bMoved : {false, true}) {
            if (bFixed && bMoved)
                continue;
            ClGeometricTransformation fit;
            fit.m_pFixed = bFixed ? &aPoints : nullptr;
            fit.m_pMoved = bMoved ? &aPoints : nullptr;
            ExpectRefused([&] { fit.Transform(); }, -37);
            ExpectRefused([&] { fit.Transform(1.0, {0.0, 0.0}); }, -37);
        }
}

TEST(GeometricTransformation, WantsEqualCountsAboveZero) {
    PointList aNone;
    PointList aOne = ListOf({{1.0, 2.0}});
    PointList aTwo = ListOf({{1.0, 2.0}, {3.0, 4.0}});
    PointList* const apLists[] = {&aNone, &aOne, &aTwo};
    for (PointList* pFixed : apLists)
        for (PointList* pMoved : apLists) {
            if (pFixed == pMoved && pFixed != &aNone)
                continue;
            ClGeometricTransformation fit;
            fit.m_pFixed = pFixed;
            fit.m_pMoved = pMoved;
            ExpectRefused([&] { fit.Transform(); }, -44);
            ExpectRefused([&] { fit.Transform(1.0, {5.0, 5.0}); }, -44);
        }
    EXPECT_EQ(aTwo[1].x, 3.0); // nothing has moved
}

TEST(GeometricTransformation, FindsRotationAndShift) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> angle(0.0, 2 * cdPi);
    std::uniform_real_distribution<double> shift(-1000.0, 1000.0);
    for (int nRun = 0; nRun < 50; ++nRun) {
        PointList aFixed = RandomPoints(random, 2 + nRun);
        const double dAngle = angle(random);
        const ClVector vShift(shift(random), shift(random));
        PointList aMoved = aFixed;
        ClGeometricTransformation::Rotate(ClGeometricTransformation::GetCenterOfMass(aFixed),
                                          dAngle, aMoved);
        ClGeometricTransformation::Translate(vShift, aMoved);

        ClGeometricTransformation fit;
        fit.m_pFixed = &aFixed;
        fit.m_pMoved = &aMoved;
        fit.Transform();
        EXPECT_NEAR(fit.m_dAngle, dAngle, 1e-11);
        EXPECT_NEAR(fit.m_Translation.x, -vShift.x, 1e-10);
        EXPECT_NEAR(fit.m_Translation.y, -vShift.y, 1e-10);
        ExpectNear(aMoved, aFixed, 1e-9);
    }
}

TEST(GeometricTransformation, FindsAShiftAlone) {
    PointList aFixed = ListOf({{0.0, 0.0}, {4.0, 0.0}, {0.0, 8.0}, {4.0, 8.0}});
    PointList aMoved = aFixed;
    ClGeometricTransformation::Translate({16.0, -2.0}, aMoved);
    ClGeometricTransformation fit;
    fit.m_pFixed = &aFixed;
    fit.m_pMoved = &aMoved;
    fit.Transform();
    EXPECT_EQ(fit.m_dAngle, 0.0);
    EXPECT_EQ(fit.m_Translation.x, -16.0);
    EXPECT_EQ(fit.m_Translation.y, 2.0);
    ExpectNear(aMoved, aFixed, 0.0);
}

TEST(GeometricTransformation, FitsOnePointByARightAngleAboutItself) {
    PointList aFixed = ListOf({{3.0, 4.0}});
    PointList aMoved = ListOf({{-10.0, 20.0}});
    ClGeometricTransformation fit;
    fit.m_pFixed = &aFixed;
    fit.m_pMoved = &aMoved;
    fit.Transform();
    EXPECT_EQ(fit.m_dAngle, cdPi / 2);
    EXPECT_EQ(fit.m_Translation.x, 13.0);
    EXPECT_EQ(fit.m_Translation.y, -16.0);
    ExpectNear(aMoved, aFixed, 0.0);
}

TEST(GeometricTransformation, FitsAListOntoItself) {
    PointList aPoints = ListOf({{1.0, 2.0}, {3.0, 4.0}, {5.0, 0.0}});
    ClGeometricTransformation fit;
    fit.m_pFixed = fit.m_pMoved = &aPoints;
    fit.Transform();
    EXPECT_EQ(fit.m_dAngle, 0.0);
    ExpectNear(aPoints, ListOf({{1.0, 2.0}, {3.0, 4.0}, {5.0, 0.0}}), 1e-15);
}

TEST(GeometricTransformation, KeepsDistancesAndTheFixedPoints) {
    std::mt19937 random(9);
    PointList aFixed = RandomPoints(random, 20);
    const PointList aFixedBefore = aFixed;
    PointList aMoved = RandomPoints(random, 20); // no copy of the fixed ones at all
    const PointList aMovedBefore = aMoved;
    ClGeometricTransformation fit;
    fit.m_pFixed = &aFixed;
    fit.m_pMoved = &aMoved;
    fit.Transform();
    ExpectNear(aFixed, aFixedBefore, 0.0);
    for (unsigned long i = 1; i < 20; ++i)
        EXPECT_NEAR((aMoved[i] - aMoved[0]).Length(), (aMovedBefore[i] - aMovedBefore[0]).Length(),
                    1e-10);
    const ClVector vCentre = ClGeometricTransformation::GetCenterOfMass(aMoved);
    const ClVector vFixed = ClGeometricTransformation::GetCenterOfMass(aFixed);
    EXPECT_NEAR(vCentre.x, vFixed.x, 1e-10);
    EXPECT_NEAR(vCentre.y, vFixed.y, 1e-10);
}

TEST(GeometricTransformation, SurvivesPointsThatAreNoNumbers) {
    PointList aFixed = ListOf({{1.0, 2.0}, {cdNaN, 4.0}});
    PointList aMoved = ListOf({{1.0, 2.0}, {3.0, std::numeric_limits<double>::infinity()}});
    ClGeometricTransformation fit;
    fit.m_pFixed = &aFixed;
    fit.m_pMoved = &aMoved;
    EXPECT_NO_THROW(fit.Transform());
    EXPECT_TRUE(std::isnan(aMoved[0].x));
}

TEST(GeometricTransformation, AppliesAKnownFitAboutTheOrigin) {
    PointList aFixed = ListOf({{0.0, 0.0}, {0.0, 0.0}});
    PointList aMoved = ListOf({{2.0, 0.0}, {0.0, 3.0}});
    ClGeometricTransformation fit;
    fit.m_pFixed = &aFixed;
    fit.m_pMoved = &aMoved;
    fit.Transform(cdPi / 2, {10.0, 20.0});
    ExpectNear(aMoved, ListOf({{10.0, 22.0}, {7.0, 20.0}}), 1e-15);
    EXPECT_EQ(fit.m_dAngle, 0.0); // it finds nothing
    EXPECT_EQ(fit.m_Translation.x, 0.0);
}
