/// The closed forms against splines that are set up anew without a place.

#include "diagnosis/SplineSystem.h"

#include "diagnosis/Patterns.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace diagnosis;
using namespace TestSupport;

namespace {

template <class Tp>
std::vector<Tp> Without(std::vector<Tp> aAll, std::size_t nOut) {
    aAll.erase(aAll.begin() + static_cast<std::ptrdiff_t>(nOut));
    return aAll;
}

StPoint SplineThrough(const Points& aPlaces, const Points& aFound, const StPoint& At) {
    StRecord Record = RecordOf(aFound);
    Record.m_aTarget = aPlaces;
    return SplineAt(Record, At);
}

double Sum(const Values& aCounts, const Values& aValues) {
    double dSum = 0.0;
    for (std::size_t i = 0; i < aCounts.size(); ++i)
        dSum += aCounts[i] * aValues[i];
    return dSum;
}

} // namespace

TEST(DiagnosisSplineSystem, LeavesEachDotOutAsASplineThroughTheOther74Does) {
    const Points aPlaces = PatternPlaces();
    const Points aFound = FoundBy(aPlaces, 3);
    const ClSplineSystem System(aPlaces);
    const Values aX = System.LeaveOneOut(Along(&StPoint::m_dX, aFound));
    const Values aY = System.LeaveOneOut(Along(&StPoint::m_dY, aFound));

    for (std::size_t i = 0; i < aPlaces.size(); ++i) {
        const StPoint Predicted =
            SplineThrough(Without(aPlaces, i), Without(aFound, i), aPlaces[i]);
        EXPECT_NEAR(aX[i], aFound[i].m_dX - Predicted.m_dX, 1e-8) << i;
        EXPECT_NEAR(aY[i], aFound[i].m_dY - Predicted.m_dY, 1e-8) << i;
    }
}

TEST(DiagnosisSplineSystem, CountsTheValuesAsTheSplineOfTheLibraryDoes) {
    const Points aPlaces = PatternPlaces();
    const Points aFound = FoundBy(aPlaces, 4);
    const ClSplineSystem System(aPlaces);

    for (const StPoint& At : {StPoint{160.3, 237.9}, {1.0, 2.0}, {319.0, 479.0}, {70.0, 300.0}}) {
        const StPoint Mapped = SplineThrough(aPlaces, aFound, At);
        const Values aCounts = System.KnowledgeAt(At).m_aCounts;
        EXPECT_NEAR(Sum(aCounts, Along(&StPoint::m_dX, aFound)), Mapped.m_dX, 1e-8);
        EXPECT_NEAR(Sum(aCounts, Along(&StPoint::m_dY, aFound)), Mapped.m_dY, 1e-8);
        EXPECT_NEAR(Sum(aCounts, Values(aCounts.size(), 1.0)), 1.0, 1e-10);
    }
}

TEST(DiagnosisSplineSystem, CountsAValueAloneAtItsOwnPlaceAndLeavesNothingOpenThere) {
    const Points aPlaces = PatternPlaces();
    const ClSplineSystem System(aPlaces);
    const StKnowledge Known = System.KnowledgeAt(aPlaces[20]);

    for (std::size_t i = 0; i < aPlaces.size(); ++i)
        EXPECT_NEAR(Known.m_aCounts[i], i == 20 ? 1.0 : 0.0, 1e-10) << i;
    EXPECT_NEAR(Known.m_dOpenness, 0.0, 1e-10);
}

// The openness is that of the places moved to their middle and scaled, and leaving one of 75 out
// changes both a little; places of a square about the origin stay what they are.
TEST(DiagnosisSplineSystem, LeavesAsMuchOpenAsThePlaceThatIsLeftOutTells) {
    Points aPlaces;
    for (const double x : {-2.0, -1.0, 0.0, 1.0, 2.0})
        for (const double y : {-2.0, -1.0, 0.0, 1.0, 2.0})
            aPlaces.push_back({x / 2.0, y / 2.0}); // a mean square of 1
    const std::size_t nMiddle = 12;
    const ClSplineSystem All(aPlaces);
    const ClSplineSystem Others(Without(aPlaces, nMiddle));
    const double dScale = std::sqrt(25.0 / 24.0); // of the others' mean square

    EXPECT_NEAR(Others.KnowledgeAt(aPlaces[nMiddle]).m_dOpenness * dScale * dScale,
                1.0 / All.Bending(nMiddle, nMiddle), 1e-10);
}

TEST(DiagnosisSplineSystem, LeavesMoreOpenTheFurtherOutsideAPlaceLies) {
    const ClSplineSystem System(PatternPlaces());
    double dBefore = 0.0;
    for (const double y : {437.0, 445.0, 455.0, 470.0, 500.0}) {
        const double dOpen = System.KnowledgeAt({160.0, y}).m_dOpenness;
        EXPECT_GT(dOpen, dBefore) << y;
        dBefore = dOpen;
    }
}

TEST(DiagnosisSplineSystem, DoesNotBendForATrend) {
    const Points aPlaces = PatternPlaces();
    for (int nDegree = 1; nDegree <= 3; ++nDegree) {
        const ClSplineSystem System(aPlaces, nDegree);
        for (int nPower = 0; nPower <= nDegree; ++nPower) {
            Values aValues;
            for (const StPoint& Place : aPlaces)
                aValues.push_back(std::pow(0.01 * Place.m_dX, nPower) *
                                  std::pow(0.01 * Place.m_dY, nDegree - nPower));
            for (const double dError : System.LeaveOneOut(aValues))
                EXPECT_NEAR(dError, 0.0, 1e-8) << nDegree << " " << nPower;
        }
    }
}

// Seen from the middle a parabola is no plane: a trend of degree 1 leaves it to the bending.
TEST(DiagnosisSplineSystem, BendsForWhatItsTrendLacks) {
    const Points aPlaces = PatternPlaces();
    const ClSplineSystem System(aPlaces, 1);
    Values aSquares;
    for (const StPoint& Place : aPlaces)
        aSquares.push_back(0.0001 * (Place.m_dX - 160.0) * (Place.m_dX - 160.0));

    EXPECT_GT(std::fabs(System.LeaveOneOut(aSquares)[0]), 0.01);
}

TEST(DiagnosisSplineSystem, DoesNotDependOnWhereAndHowLargeThePatternIs) {
    const Points aPlaces = PatternPlaces();
    Points aElsewhere;
    for (const StPoint& Place : aPlaces)
        aElsewhere.push_back({3.0 * Place.m_dX - 1000.0, 3.0 * Place.m_dY + 5000.0});
    const Values aX = Along(&StPoint::m_dX, FoundBy(aPlaces, 5));
    const Values aHere = ClSplineSystem(aPlaces).LeaveOneOut(aX);
    const Values aThere = ClSplineSystem(aElsewhere).LeaveOneOut(aX);

    for (std::size_t i = 0; i < aHere.size(); ++i)
        EXPECT_NEAR(aHere[i], aThere[i], 1e-8) << i;
}

TEST(DiagnosisSplineSystem, RefusesPlacesThatDetermineNoSpline) {
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    const auto refuses = [](const Points& aPlaces, int nDegree = 1) {
        try {
            ClSplineSystem System(aPlaces, nDegree);
        } catch (const std::invalid_argument&) {
            return true;
        }
        return false;
    };
    const Points aSquare{{0, 0}, {1, 0}, {0, 1}, {1, 1}};

    EXPECT_FALSE(refuses(aSquare));
    EXPECT_TRUE(refuses({}));
    EXPECT_TRUE(refuses({{0, 0}, {1, 0}, {0, 1}}));
    EXPECT_TRUE(refuses({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}}));
    EXPECT_TRUE(refuses({{0, 0}, {1, 0}, {0, 1}, {1, 1}, {1, 1}}));
    EXPECT_TRUE(refuses({{0, 0}, {1, 0}, {0, 1}, {1, 1}, {dNaN, 2}}));
    EXPECT_TRUE(refuses({{2, 2}, {2, 2}, {2, 2}, {2, 2}}));
    EXPECT_TRUE(refuses(aSquare, 2));
    EXPECT_TRUE(refuses(PatternPlaces(), 0));
    EXPECT_TRUE(refuses(PatternPlaces(), 4));
}

TEST(DiagnosisSplineSystem, TakesAValueForEachPlace) {
    const ClSplineSystem System(PatternPlaces());

    EXPECT_THROW(System.Weights(Values(74)), std::invalid_argument);
    EXPECT_THROW(System.LeaveOneOut(Values(76)), std::invalid_argument);
}
