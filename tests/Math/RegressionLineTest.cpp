#include "Math/RegressionLine.h"

#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using TestSupport::cdPi;

ClRegressionLine LineOf(const std::vector<ClVector>& aPoints) {
    ClRegressionLine line;
    for (const ClVector& vPoint : aPoints)
        line.AddToLine(vPoint);
    return line;
}

struct StForm {
    bool m_bYOverX;
    double m_dM;
    double m_dB;
};

StForm FormOf(const ClRegressionLine& line) {
    StForm form{false, 99.0, 99.0};
    form.m_bYOverX = line.GetLineCoeffizienten(form.m_dM, form.m_dB);
    return form;
}

void ExpectForm(const ClRegressionLine& line, bool bYOverX, double dM, double dB) {
    const StForm form = FormOf(line);
    EXPECT_EQ(form.m_bYOverX, bYOverX);
    EXPECT_DOUBLE_EQ(form.m_dM, dM);
    EXPECT_DOUBLE_EQ(form.m_dB, dB);
}

void ExpectEnds(const ClRegressionLine& line, const ClVector& vStart, const ClVector& vEnd) {
    ClVector vActualStart(99.0, 99.0);
    ClVector vActualEnd(99.0, 99.0);
    line.GetLine(vActualStart, vActualEnd);
    EXPECT_DOUBLE_EQ(vActualStart.x, vStart.x);
    EXPECT_DOUBLE_EQ(vActualStart.y, vStart.y);
    EXPECT_DOUBLE_EQ(vActualEnd.x, vEnd.x);
    EXPECT_DOUBLE_EQ(vActualEnd.y, vEnd.y);
}

std::vector<ClVector> ScatteredPoints(std::mt19937& random, int nCount) {
    std::uniform_real_distribution<double> position(-50.0, 50.0);
    std::vector<ClVector> aPoints;
    for (int i = 0; i < nCount; ++i)
        aPoints.emplace_back(position(random), position(random));
    return aPoints;
}

} // namespace

// Points

TEST(RegressionLine, StartsEmpty) {
    const ClRegressionLine line;
    EXPECT_EQ(line.Points(), 0);
    ExpectForm(line, false, 0.0, 0.0);
    ExpectEnds(line, {0.0, 0.0}, {0.0, 0.0});
    EXPECT_EQ(line.Len(), 0.0);
    static_assert(std::has_virtual_destructor_v<ClRegressionLine>);
}

TEST(RegressionLine, ForgetsItsPoints) {
    ClRegressionLine line = LineOf({{3.0, 4.0}, {5.0, 9.0}});
    EXPECT_EQ(line.Clear(), 0);
    EXPECT_EQ(line.Points(), 0);
    ExpectForm(line, false, 0.0, 0.0);
    ExpectEnds(line, {0.0, 0.0}, {0.0, 0.0});
    line.AddToLine({7.0, 8.0}); // the first point sets the box again
    ExpectEnds(line, {7.0, 8.0}, {7.0, 8.0});
}

TEST(RegressionLine, KeepsTheBoxOfItsPoints) {
    const ClRegressionLine line = LineOf({{3.0, -4.0}});
    ExpectEnds(line, {3.0, -4.0}, {3.0, -4.0});
    // a horizontal pair: the ends lie at the smallest and the largest x
    ExpectEnds(LineOf({{-7.0, 2.0}, {-9.0, 2.0}, {-8.0, 2.0}}), {-9.0, 2.0}, {-7.0, 2.0});
}

TEST(RegressionLine, JoinsLines) {
    const std::vector<ClVector> aFirst = {{1.0, 2.0}, {3.0, 3.5}};
    const std::vector<ClVector> aSecond = {{-2.0, 0.5}, {8.0, 6.0}, {4.0, 4.0}};
    ClRegressionLine joined = LineOf(aFirst);
    joined.JoinLine(LineOf(aSecond));
    std::vector<ClVector> aAll = aFirst;
    aAll.insert(aAll.end(), aSecond.begin(), aSecond.end());
    const ClRegressionLine all = LineOf(aAll);
    const StForm form = FormOf(all);
    EXPECT_EQ(joined.Points(), 5);
    ExpectForm(joined, form.m_bYOverX, form.m_dM, form.m_dB);
    ClVector vStart;
    ClVector vEnd;
    all.GetLine(vStart, vEnd);
    ExpectEnds(joined, vStart, vEnd);
    EXPECT_EQ(vStart.x, -2.0);
    EXPECT_EQ(vEnd.x, 8.0);
}

TEST(RegressionLine, JoinsWithEmptyLines) {
    ClRegressionLine line = LineOf({{2.0, 4.0}, {3.0, 6.0}});
    line.JoinLine(ClRegressionLine()); // the box does not take the other's zero in
    ExpectEnds(line, {2.0, 4.0}, {3.0, 6.0});
    ClRegressionLine empty;
    empty.JoinLine(line);
    EXPECT_EQ(empty.Points(), 2);
    ExpectEnds(empty, {2.0, 4.0}, {3.0, 6.0});
    ClRegressionLine none;
    none.JoinLine(ClRegressionLine());
    EXPECT_EQ(none.Points(), 0);
}

TEST(RegressionLine, JoinsWithASinglePoint) {
    ClRegressionLine line = LineOf({{2.0, 4.0}, {3.0, 6.0}});
    line.JoinLine(LineOf({{5.0, 10.0}})); // on the line, and beyond its box
    EXPECT_EQ(line.Points(), 3);
    ExpectEnds(line, {2.0, 4.0}, {5.0, 10.0});
}

TEST(RegressionLine, JoinsWithItself) {
    ClRegressionLine line = LineOf({{2.0, 4.0}, {3.0, 6.0}, {4.0, 7.0}});
    const StForm form = FormOf(line);
    const ClRegressionLine& same = line;
    line.JoinLine(same);
    EXPECT_EQ(line.Points(), 6);
    ExpectForm(line, form.m_bYOverX, form.m_dM, form.m_dB);
}

// Coefficients

TEST(RegressionLine, HasNoFormBelowTwoPoints) {
    ExpectForm(LineOf({{3.0, 4.0}}), false, 0.0, 0.0);
}

TEST(RegressionLine, HasNoFormForOnePointTwice) {
    ExpectForm(LineOf({{3.0, 4.0}, {3.0, 4.0}}), false, 0.0, 0.0);
}

TEST(RegressionLine, TakesYOverXForFlatLines) {
    ExpectForm(LineOf({{0.0, 1.0}, {2.0, 2.0}, {4.0, 3.0}}), true, 0.5, 1.0);
    ExpectForm(LineOf({{0.0, 1.0}, {4.0, -1.0}}), true, -0.5, 1.0);
}

TEST(RegressionLine, TakesXOverYForSteepLines) {
    ExpectForm(LineOf({{1.0, 0.0}, {2.0, 2.0}, {3.0, 4.0}}), false, 0.5, 1.0);
    ExpectForm(LineOf({{1.0, 0.0}, {-1.0, 4.0}}), false, -0.5, 1.0);
}

TEST(RegressionLine, TakesYOverXAtFortyFiveDegrees) {
    ExpectForm(LineOf({{0.0, 3.0}, {1.0, 4.0}, {5.0, 8.0}}), true, 1.0, 3.0);
    ExpectForm(LineOf({{0.0, 3.0}, {1.0, 2.0}, {5.0, -2.0}}), true, -1.0, 3.0);
}

TEST(RegressionLine, TakesXOverYForVerticalLines) {
    ExpectForm(LineOf({{3.0, 1.0}, {3.0, 2.0}, {3.0, 7.0}}), false, 0.0, 3.0);
    EXPECT_TRUE(LineOf({{3.0, 1.0}, {3.0, 2.0}}).Vertical());
}

TEST(RegressionLine, TakesYOverXForHorizontalLines) {
    ExpectForm(LineOf({{1.0, 3.0}, {2.0, 3.0}, {7.0, 3.0}}), true, 0.0, 3.0);
}

TEST(RegressionLine, ComparesTheSpreadsWhereBothSlopesAreZero) {
    // crosses without correlation: wide, tall, and as wide as tall
    ExpectForm(LineOf({{0.0, 1.0}, {6.0, 1.0}, {3.0, 0.0}, {3.0, 2.0}}), true, 0.0, 1.0);
    ExpectForm(LineOf({{0.0, 3.0}, {2.0, 3.0}, {1.0, 0.0}, {1.0, 6.0}}), false, 0.0, 1.0);
    ExpectForm(LineOf({{0.0, 5.0}, {2.0, 5.0}, {1.0, 4.0}, {1.0, 6.0}}), true, 0.0, 5.0);
}

TEST(RegressionLine, ComparesTheSpreadsOnTheAxesToo) {
    ExpectForm(LineOf({{-1.0, 0.0}, {5.0, 0.0}}), true, 0.0, 0.0); // all four coefficients 0
    ExpectForm(LineOf({{0.0, -1.0}, {0.0, 5.0}}), false, 0.0, 0.0);
    ExpectForm(LineOf({{-3.0, 0.0}, {3.0, 0.0}, {0.0, -1.0}, {0.0, 1.0}}), true, 0.0, 0.0);
    ExpectForm(LineOf({{-1.0, 0.0}, {1.0, 0.0}, {0.0, -1.0}, {0.0, 1.0}}), false, 0.0, 0.0);
}

TEST(RegressionLine, HasTheLeastSquaresForm) {
    // the centred closed form, in long double
    std::mt19937 random(2);
    for (int nTry = 0; nTry < 200; ++nTry) {
        const std::vector<ClVector> aPoints = ScatteredPoints(random, 2 + nTry % 30);
        long double dX = 0;
        long double dY = 0;
        for (const ClVector& v : aPoints) {
            dX += v.x;
            dY += v.y;
        }
        const long double n = static_cast<long double>(aPoints.size());
        dX /= n;
        dY /= n;
        long double dXX = 0;
        long double dYY = 0;
        long double dXY = 0;
        for (const ClVector& v : aPoints) {
            dXX += (v.x - dX) * (v.x - dX);
            dYY += (v.y - dY) * (v.y - dY);
            dXY += (v.x - dX) * (v.y - dY);
        }
        const bool bYOverX = dXX >= dYY; // the smaller slope divides by the larger spread
        const long double dM = dXY / (bYOverX ? dXX : dYY);
        const long double dB = bYOverX ? dY - dM * dX : dX - dM * dY;
        const StForm form = FormOf(LineOf(aPoints));
        EXPECT_EQ(form.m_bYOverX, bYOverX);
        EXPECT_NEAR(form.m_dM, static_cast<double>(dM), 1e-9);
        EXPECT_NEAR(form.m_dB, static_cast<double>(dB), 1e-8);
    }
}

// Ends

TEST(RegressionLine, EndsAtTheBox) {
    // y = x / 2 + 2/3, from x 0 to 2
    ExpectEnds(LineOf({{0.0, 1.0}, {1.0, 0.5}, {2.0, 2.0}}), {0.0, 2.0 / 3}, {2.0, 5.0 / 3});
    // the same with x and y exchanged
    ExpectEnds(LineOf({{1.0, 0.0}, {0.5, 1.0}, {2.0, 2.0}}), {2.0 / 3, 0.0}, {5.0 / 3, 2.0});
}

TEST(RegressionLine, MeasuresBetweenItsEnds) {
    EXPECT_DOUBLE_EQ(LineOf({{1.0, 2.0}, {4.0, 6.0}}).Len(), 5.0);
    EXPECT_DOUBLE_EQ(LineOf({{0.0, 1.0}, {6.0, 1.0}, {3.0, 0.0}, {3.0, 2.0}}).Len(), 6.0);
    EXPECT_EQ(LineOf({{1.0, 2.0}}).Len(), 0.0);
}

TEST(RegressionLine, KnowsHorizontalAndVertical) {
    const ClRegressionLine flat = LineOf({{0.0, 0.0}, {10.0, 9.0}});
    const ClRegressionLine steep = LineOf({{0.0, 0.0}, {9.0, -10.0}});
    const ClRegressionLine even = LineOf({{0.0, 0.0}, {8.0, 8.0}});
    EXPECT_TRUE(flat.Horizontal());
    EXPECT_FALSE(flat.Vertical());
    EXPECT_FALSE(steep.Horizontal());
    EXPECT_TRUE(steep.Vertical());
    EXPECT_FALSE(even.Horizontal());
    EXPECT_FALSE(even.Vertical());
}

TEST(RegressionLine, KnowsThemFarFromTheOriginToo) {
    const ClRegressionLine steep = LineOf({{100.0, 200.0}, {101.0, 210.0}});
    const ClRegressionLine flat = LineOf({{100.0, 200.0}, {110.0, 201.0}});
    EXPECT_FALSE(steep.Horizontal());
    EXPECT_TRUE(steep.Vertical());
    EXPECT_TRUE(flat.Horizontal());
    EXPECT_FALSE(flat.Vertical());
}

TEST(RegressionLine, IsNeitherWithoutADirection) {
    for (const ClRegressionLine& line :
         {ClRegressionLine(), LineOf({{3.0, 4.0}}), LineOf({{3.0, 4.0}, {3.0, 4.0}})}) {
        EXPECT_FALSE(line.Horizontal());
        EXPECT_FALSE(line.Vertical());
    }
}

// Distances and angles

TEST(RegressionLine, MeasuresFromItsOnlyPoint) {
    EXPECT_DOUBLE_EQ(LineOf({{3.0, 4.0}}).DistFromLine({6.0, 8.0}), 5.0);
    EXPECT_DOUBLE_EQ(ClRegressionLine().DistFromLine({6.0, 8.0}), 10.0);
}

TEST(RegressionLine, MeasuresAcrossItsDirection) {
    const ClRegressionLine line = LineOf({{0.0, 0.0}, {4.0, 3.0}});
    EXPECT_NEAR(line.DistFromLine({4.0 - 3.0, 3.0 + 4.0}), 5.0, 1e-12);   // above the end
    EXPECT_NEAR(line.DistFromLine({-8.0 + 3.0, -6.0 - 4.0}), 5.0, 1e-12); // before the start
}

TEST(RegressionLine, IsAtNoDistanceFromItsOwnPoints) {
    const ClRegressionLine line = LineOf({{1.0, 2.0}, {3.0, 3.0}});
    for (double t : {-10.0, 0.0, 0.5, 1.0, 2.0, 100.0}) // also beyond both ends
        EXPECT_NEAR(line.DistFromLine({1.0 + 2.0 * t, 2.0 + t}), 0.0, 1e-5);
    EXPECT_EQ(line.DistFromLine({1.0, 2.0}), 0.0); // its start
}

TEST(RegressionLine, MeasuresFromItsStartWithoutADirection) {
    EXPECT_DOUBLE_EQ(LineOf({{3.0, 0.0}, {3.0, 0.0}}).DistFromLine({3.0, 4.0}), 5.0);
}

TEST(RegressionLine, MeasuresAsTheCrossProductDoes) {
    std::mt19937 random(3);
    for (int nTry = 0; nTry < 200; ++nTry) {
        const ClRegressionLine line = LineOf(ScatteredPoints(random, 5));
        const ClVector vPoint = ScatteredPoints(random, 1)[0];
        ClVector vStart;
        ClVector vEnd;
        line.GetLine(vStart, vEnd);
        const ClVector vAlong = vEnd - vStart;
        const ClVector vOffset = vPoint - vStart;
        const double dExpected =
            std::fabs(vAlong.x * vOffset.y - vAlong.y * vOffset.x) / vAlong.Length();
        EXPECT_NEAR(line.DistFromLine(vPoint), dExpected, 1e-6);
    }
}

TEST(RegressionLine, HasAnAngleToAnotherLine) {
    const ClRegressionLine right = LineOf({{0.0, 0.0}, {4.0, 0.0}});
    const ClRegressionLine down = LineOf({{2.0, 1.0}, {2.0, 7.0}});
    const ClRegressionLine slanted = LineOf({{0.0, 0.0}, {5.0, 5.0}});
    const ClRegressionLine rising = LineOf({{0.0, 5.0}, {5.0, 0.0}}); // ends by growing x
    EXPECT_DOUBLE_EQ(right.CrossPhi(down), cdPi / 2);
    EXPECT_DOUBLE_EQ(right.CrossPhi(slanted), cdPi / 4);
    EXPECT_DOUBLE_EQ(right.CrossPhi(rising), cdPi / 4);
    EXPECT_DOUBLE_EQ(down.CrossPhi(rising), 3 * cdPi / 4);
    EXPECT_EQ(right.CrossPhi(right), 0.0);
    EXPECT_DOUBLE_EQ(slanted.CrossPhi(rising), cdPi / 2);
}

TEST(RegressionLine, TakesALineWithoutLengthAsPerpendicular) {
    const ClRegressionLine right = LineOf({{0.0, 0.0}, {4.0, 0.0}});
    EXPECT_DOUBLE_EQ(right.CrossPhi(LineOf({{1.0, 1.0}})), cdPi / 2);
    EXPECT_DOUBLE_EQ(ClRegressionLine().CrossPhi(right), cdPi / 2);
}

TEST(RegressionLine, TurnsRoundWhereItsEndsDo) {
    // Ends go by growing x or y, so that opposite directions need a line that falls back: a steep
    // line whose x falls, against a flat one whose y falls, with the same slope in the limit.
    const ClRegressionLine steep = LineOf({{1.0, 0.0}, {0.0, 1.000001}});
    const ClRegressionLine flat = LineOf({{0.0, 1.0}, {1.000001, 0.0}});
    EXPECT_NEAR(steep.CrossPhi(flat), cdPi, 1e-5);
}

// Crossings

TEST(RegressionLine, CrossesAnotherLine) {
    const ClRegressionLine line = LineOf({{0.0, 2.0}, {4.0, 2.0}});
    const ClRegressionLine other = LineOf({{3.0, 0.0}, {3.0, 8.0}});
    double dT1 = 99.0;
    double dT2 = 99.0;
    const ClVector v = line.Intersection(other, dT1, dT2);
    EXPECT_DOUBLE_EQ(v.x, 3.0);
    EXPECT_DOUBLE_EQ(v.y, 2.0);
    EXPECT_DOUBLE_EQ(dT1, -0.75); // directions point from end to start
    EXPECT_DOUBLE_EQ(dT2, -0.25);
    const ClVector vAlias = line.CrossPoint(other, dT1, dT2);
    EXPECT_DOUBLE_EQ(vAlias.x, 3.0);
    EXPECT_DOUBLE_EQ(dT1, -0.75);
}

TEST(RegressionLine, CrossesBeyondItsEnds) {
    const ClRegressionLine line = LineOf({{0.0, 0.0}, {1.0, 0.0}});
    const ClRegressionLine other = LineOf({{5.0, 3.0}, {5.0, 4.0}});
    double dT1 = 0.0;
    double dT2 = 0.0;
    const ClVector v = line.Intersection(other, dT1, dT2);
    EXPECT_DOUBLE_EQ(v.x, 5.0);
    EXPECT_DOUBLE_EQ(v.y, 0.0);
    EXPECT_DOUBLE_EQ(dT1, -5.0);
    EXPECT_DOUBLE_EQ(dT2, 3.0);
}

TEST(RegressionLine, DoesNotCrossAParallelLine) {
    const ClRegressionLine line = LineOf({{0.0, 2.0}, {4.0, 2.0}});
    for (const ClRegressionLine& other : {LineOf({{0.0, 3.0}, {4.0, 3.0}}), LineOf({{1.0, 1.0}})}) {
        double dT1 = 99.0;
        double dT2 = 99.0;
        const ClVector v = line.Intersection(other, dT1, dT2);
        EXPECT_EQ(v.x, 0.0);
        EXPECT_EQ(v.y, 0.0);
        EXPECT_EQ(dT1, 0.0);
        EXPECT_EQ(dT2, 0.0);
    }
}
