// The match of what is left against the ideal pattern, the steps in their order, and looking up.

#include "Calibrate/DotGrids.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace TestSupport;

namespace {

using Numbers = std::vector<int>;

/// A target of a few points, in place of the pattern's, that are pixels already.
class ClFewPoints : public ClQK7 {
public:
    explicit ClFewPoints(const std::vector<ClVector>& aIdeal) : m_aIdeal(ListOf(aIdeal)) {}

    void BuildTargetPoints(PointList& rTarget, double, double, double, double) override {
        rTarget = m_aIdeal;
    }

private:
    PointList m_aIdeal;
};

Numbers StatusOf(ClTestGrid& rGrid) {
    Numbers anStatus;
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        anStatus.push_back(static_cast<int>(rGrid(i).m_nStatus));
    return anStatus;
}

void ExpectAt(const ClVector& rPlace, double x, double y) {
    EXPECT_NEAR(rPlace.x, x, 1e-9);
    EXPECT_NEAR(rPlace.y, y, 1e-9);
}

/// Records which steps ran, in their order.
class ClSteps : public ClQK7 {
public:
    void GridToArray(DotGrid& rGrid, PointList& rPoints) override {
        m_nDotsTaken = 0;
        for (unsigned long i = 0; i < rGrid.Entries(); ++i)
            m_nDotsTaken += rGrid[i]->m_bValid ? 1 : 0;
        rPoints.Append({1.0, 2.0});
    }

    int m_nDotsTaken = -1;
};

} // namespace

// Matching

TEST(GridRemoveBadPoints, ReturnsAtOnceForAnEmptyGrid) {
    /// Building a target would throw.
    struct StRefuses : ClQK7 {
        void BuildTarget(PointList&, double, double, double, double) override {
            throw ClExTessarin(-35, VEK_HERE);
        }
    } Builder;
    ClTestGrid Grid;
    EXPECT_NO_THROW(Builder.GridRemoveBadPoints(Grid));
    Grid.Add(1, 1);
    EXPECT_THROWS(Builder.GridRemoveBadPoints(Grid), ClExTessarin, -35,
                  "One of the parameters is out of range.");
}

TEST(GridRemoveBadPoints, GivesEveryDotOfThePatternItsIdealPoint) {
    ClQK7 Builder;
    ClTestGrid Grid(PatternPlaces());
    Builder.GridRemoveBadPoints(Grid);
    for (unsigned long i = 0; i < 75; ++i) {
        EXPECT_TRUE(Grid(i).m_bValid);
        EXPECT_EQ(Grid(i).m_nStatus, 0u);
        ExpectAt(Grid(i).m_vTarget, Grid(i).m_vPos.x, Grid(i).m_vPos.y);
    }
}

TEST(GridRemoveBadPoints, BuildsTheIdealAtTheResolutionOfTheCapture) {
    ClQK7 Builder;
    Builder.m_dSourceDpiX = 254; // 20 pixels a pitch
    Builder.m_dSourceDpiY = 508; // 40
    ClTestGrid Grid(PatternPlaces(60, 70, 20, 40));
    Builder.GridRemoveBadPoints(Grid);
    ExpectAt(Grid(PointAt(6, 9)).m_vTarget, 180, 430);
}

TEST(GridRemoveBadPoints, RemovesADotThatNoIdealPointChooses) {
    ClQK7 Builder;
    auto aPlaces = PatternPlaces();
    aPlaces.push_back({aPlaces[74].x + 30, aPlaces[74].y + 70});
    ClTestGrid Grid(aPlaces);
    Grid(74).AddDot(&Grid(75), true);
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_FALSE(Grid(75).m_bValid);
    EXPECT_EQ(Grid(75).m_nStatus, 6u);
    EXPECT_EQ(Neighbours(Grid(74)), Numbers());
    EXPECT_EQ(Neighbours(Grid(75)), Numbers{74});
    for (unsigned long i = 0; i < 75; ++i)
        EXPECT_TRUE(Grid(i).m_bValid);
}

// Two ideal points 4 apart at the centre of dots at 0, 10 and 95: first 33 and 37, which choose
// the dot at 10 only; then, without the others, 8 and 12, which choose it again.
TEST(GridRemoveBadPoints, LetsTheLastOfSeveralIdealPointsStay) {
    ClFewPoints Builder({{0, 0}, {4, 0}});
    ClTestGrid Grid({{0, 0}, {10, 0}, {95, 0}});
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), (Numbers{6, 0, 6}));
    ExpectAt(Grid(1).m_vTarget, 12, 0);
}

TEST(GridRemoveBadPoints, MatchesAgainWithTheCentreOfWhatWasMatched) {
    ClFewPoints Builder({{0, 0}, {40, 0}});
    ClTestGrid Grid({{100, 0}, {140, 0}, {150, 300}});
    // Centre (130, 100): ideal (110, 100), (150, 100) choose dots 0 and 1.
    // Then centre (120, 0): ideal (100, 0), (140, 0).
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), (Numbers{0, 0, 6}));
    ExpectAt(Grid(0).m_vTarget, 100, 0);
    ExpectAt(Grid(1).m_vTarget, 140, 0);
    ExpectAt(Grid(2).m_vTarget, -1, -1);
}

TEST(GridRemoveBadPoints, TakesADotBackThatOnlyTheFirstMatchMissed) {
    ClFewPoints Builder({{0, 0}, {100, 0}});
    ClTestGrid Grid({{100, 0}, {200, 0}, {270, 0}, {270, 30}});
    // Centre (210, 7.5): ideal 160 and 260 choose 200 and (270, 0).
    // Centre (235, 0): ideal 185 and 285 choose the same; the first dot stays out.
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), (Numbers{6, 0, 0, 6}));
    ClTestGrid Other({{100, 0}, {200, 0}, {180, 320}});
    // Centre (160, 106.7): ideal 110 and 210 at 106.7 choose the first two; the dirt is out.
    // Centre (150, 0): ideal 100 and 200.
    Builder.GridRemoveBadPoints(Other);
    EXPECT_EQ(StatusOf(Other), (Numbers{0, 0, 6}));
    ClTestGrid Back({{0, 0}, {80, 0}, {95, 0}, {250, 0}});
    // Centre 106.25: ideal 56.25 and 156.25 choose 80 and 95, 61.25 away. Centre 87.5: ideal 37.5
    // and 137.5 choose 0, which the first match missed, and 95.
    Builder.GridRemoveBadPoints(Back);
    EXPECT_EQ(StatusOf(Back), (Numbers{0, 6, 0, 6}));
    ExpectAt(Back(0).m_vTarget, 37.5, 0);
}

TEST(GridRemoveBadPoints, TakesTheFirstOfEquallyNearDots) {
    ClFewPoints Builder({{0, 0}});
    ClTestGrid Grid({{110, 50}, {90, 50}});
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), (Numbers{0, 6}));
}

TEST(GridRemoveBadPoints, PassesInvalidDotsOver) {
    ClFewPoints Builder({{0, 0}});
    ClTestGrid Grid({{100, 50}, {140, 50}, {90, 50}});
    Grid(2).m_bValid = false;
    Grid(2).m_nStatus = ClDot::eAreaTooBig;
    Grid(2).m_vTarget = {5, 5};
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), (Numbers{0, 6, 4}));
    ExpectAt(Grid(2).m_vTarget, -1, -1);
}

TEST(GridRemoveBadPoints, TakesAnIdealPointLeftOfTheImageForNone) {
    ClFewPoints Builder({{0, 0}, {40, 0}});
    ClTestGrid Grid({{1, 50}, {37, 50}}); // ideal at -1 and 39
    Builder.GridRemoveBadPoints(Grid);
    // The first match takes dot 0 for unmatched; the ideal then lies about dot 1 alone, at 17 and
    // 57, of which the first is nearer to dot 0.
    EXPECT_EQ(StatusOf(Grid), (Numbers{0, 0}));
    ExpectAt(Grid(0).m_vTarget, 17, 50);
    ExpectAt(Grid(1).m_vTarget, 57, 50);
}

TEST(GridRemoveBadPoints, FindsNoDotAtTenThousandPixels) {
    ClFewPoints Builder({{0, 0}, {19999, 0}});
    ClTestGrid Near({{30000, 0}});
    Builder.GridRemoveBadPoints(Near);
    EXPECT_EQ(StatusOf(Near), Numbers{0});
    ClFewPoints Far({{0, 0}, {20000, 0}});
    ClTestGrid Grid({{30000, 0}});
    Far.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), Numbers{6});
}

TEST(GridRemoveBadPoints, RemovesAllWithoutACleanDot) {
    ClQK7 Builder;
    ClTestGrid Grid({{100, 100}, {140, 100}});
    Grid(0).m_nStatus = Grid(1).m_nStatus = ClDot::eOutsideColumn;
    Builder.GridRemoveBadPoints(Grid);
    EXPECT_EQ(StatusOf(Grid), (Numbers{6, 6}));
    EXPECT_FALSE(Grid(0).m_bValid);
    EXPECT_FALSE(Grid(1).m_bValid);
}

TEST(GridRemoveBadPoints, AnswersFailedAllocations) {
    FailEachAllocation([] {
        ClQK7 Builder;
        ClTestGrid Grid;
        Grid.Add(100, 100);
        Builder.GridRemoveBadPoints(Grid);
    });
}

// The steps

TEST(AssociatePoints, PrunesAndHandsTheRestOver) {
    ClSteps Builder;
    auto aPlaces = PatternPlaces();
    aPlaces.push_back({500, 900});                                         // lonely dirt
    aPlaces.push_back({aPlaces[9].x - cdPitchX, aPlaces[9].y + cdPitchY}); // beside one dot
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt(aPlaces));
    ClBuilder::PointList aPoints;
    Builder.AssociatePoints(Grid, aPoints);
    EXPECT_EQ(Builder.m_nDotsTaken, 75);
    EXPECT_EQ(Grid.OfIndex(75).m_nStatus, 5u);
    EXPECT_EQ(Grid.OfIndex(76).m_nStatus, 5u);
    EXPECT_EQ(aPoints.Entries(), 1u);
}

// The blob on the upper right hangs on a dot and its twin, both in one direction: only one of them
// survives the reduction, and one is too few.
TEST(AssociatePoints, RemovesWhatHasOnePartnerAfterTheReduction) {
    ClSteps Builder;
    ClTestGrid Grid;
    const double x = 200;
    const double y = 300;
    Builder.BuildGrid(Grid, RegionsAt({{x, y},
                                       {x + cdPitchX, y},
                                       {x, y + cdPitchY},
                                       {x + cdPitchX, y + cdPitchY},
                                       {x + cdPitchX + 3, y + 5},
                                       {x + 2 * cdPitchX, y - cdPitchY}}));
    ClDot& rBlob = Grid.OfIndex(5);
    ASSERT_EQ(Neighbours(rBlob), (Numbers{1, 4}));
    ASSERT_EQ(rBlob.GetNeighbourDirection(0), 3);
    ASSERT_EQ(rBlob.GetNeighbourDirection(1), 3);
    ClBuilder::PointList aPoints;
    Builder.AssociatePoints(Grid, aPoints);
    EXPECT_FALSE(rBlob.m_bValid);
    EXPECT_EQ(rBlob.m_nStatus, 5u);
    EXPECT_EQ(Neighbours(rBlob), Numbers{1});
}

TEST(AssociatePoints, DrawsThePictureOnRequest) {
    ClSteps Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt(PatternPlaces()));
    ClImage Picture(400, 1100, 1, 0, 0);
    Picture = static_cast<unsigned char>(7);
    Builder.m_pOutDebugImage = &Picture;
    ClBuilder::PointList aPoints;
    Builder.AssociatePoints(Grid, aPoints);
    EXPECT_EQ(*Picture.LineData(0), 0);
    EXPECT_EQ(Picture.LineData(150)[100], 64);
    EXPECT_EQ(Picture.LineData(150)[101], 128);
    EXPECT_EQ(Picture.LineData(150)[99], 0);
}

TEST(AssociatePoints, DrawsNothingWhereThePatternWasRefused) {
    ClQK7 Builder;
    ClTestGrid Grid;
    auto aPlaces = PatternPlaces();
    aPlaces.pop_back();
    Builder.BuildGrid(Grid, RegionsAt(aPlaces));
    ClImage Picture(400, 1100, 1, 0, 0);
    Picture = static_cast<unsigned char>(7);
    Builder.m_pOutDebugImage = &Picture;
    ClBuilder::PointList aPoints;
    EXPECT_THROWS(Builder.AssociatePoints(Grid, aPoints), ClException, -600,
                  "Not the expected dot count found.");
    EXPECT_EQ(*Picture.LineData(0), 7);
}

// Looking up

TEST(RetrieveDot, FindsTheFirstDotAtAPlaceOfThePattern) {
    const ClQK7 Builder;
    ClTestGrid Grid({{1, 1}, {2, 2}, {3, 3}});
    Grid(1).m_vGrid = {2, 3};
    Grid(2).m_vGrid = {2, 3};
    EXPECT_EQ(Builder.RetrieveDot(Grid, 2, 3), &Grid(1));
    EXPECT_EQ(Builder.RetrieveDot(Grid, -1, -1), &Grid(0));
    EXPECT_EQ(Builder.RetrieveDot(Grid, 3, 2), nullptr);
    EXPECT_EQ(Builder.RetrieveDot(ClTestGrid(), 0, 0), nullptr);
}

TEST(GetBottumLeftDot, FindsTheValidDotNearestToTheOrigin) {
    const ClQK7 Builder;
    ClTestGrid Grid({{30, 40}, {3, 4}, {0, 50}, {40, 30}});
    Grid(1).m_bValid = false;
    EXPECT_EQ(Builder.GetBottumLeftDot(Grid), &Grid(0));
    Grid(0).m_bValid = Grid(2).m_bValid = Grid(3).m_bValid = false;
    EXPECT_EQ(Builder.GetBottumLeftDot(Grid), nullptr);
    EXPECT_EQ(Builder.GetBottumLeftDot(ClTestGrid()), nullptr);
}

TEST(GetBottumLeftDot, LooksNoFartherThanFiftyThousandPixels) {
    const ClQK7 Builder;
    ClTestGrid Grid({{30000, 40000}});
    EXPECT_EQ(Builder.GetBottumLeftDot(Grid), nullptr);
    Grid(0).m_vPos.x = 29999;
    EXPECT_EQ(Builder.GetBottumLeftDot(Grid), &Grid(0));
}
