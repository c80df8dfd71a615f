// The field against the spline itself: never farther off than it tells.

#include "Math/SplineField.h"

#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

using TestSupport::AtEveryLevel;

namespace {

using Points = std::vector<ClVector>;
using Spline = TpThinPlateSplines<double>;
constexpr int cnColumns = ClSplineField::cnBlockWidth;
constexpr int cnLines = ClSplineField::cnBlockHeight;

Points RandomPoints(unsigned int nSeed, int nCount, double dWidth, double dHeight) {
    std::mt19937 Random(nSeed);
    std::uniform_real_distribution<double> Part(0.0, 1.0);
    Points aPoints;
    for (int i = 0; i < nCount; ++i) {
        const double x = Part(Random) * dWidth;
        aPoints.emplace_back(x, Part(Random) * dHeight);
    }
    return aPoints;
}

/// A plate of 7 by 11 dots in the middle of 320 by 480.
Points Plate() {
    Points aPoints;
    for (int y = 0; y < 11; ++y)
        for (int x = 0; x < 7; ++x)
            aPoints.emplace_back(42.0 + 39.37 * x, 43.0 + 39.37 * y);
    return aPoints;
}

/// What a scanner makes of it: stretched, and bent by a pixel or two.
Points Bent(const Points& aPoints, unsigned int nSeed) {
    std::mt19937 Random(nSeed);
    std::uniform_real_distribution<double> Shift(-0.3, 0.3);
    Points aBent;
    for (const ClVector& v : aPoints) {
        const double u = (v.x - 160.0) * (v.y - 240.0) / 40000.0;
        const double x = 40.0 + 0.985 * v.x + u + Shift(Random);
        aBent.emplace_back(x, 44.0 + 2.02 * v.y - 2.0 * u + Shift(Random));
    }
    return aBent;
}

void Solve(Spline& rSpline, const Points& aOrigin, const Points& aTarget) {
    rSpline.Setup(static_cast<long>(aOrigin.size()), aOrigin.data(), aTarget.data());
}

/// Compares the values of a plane, at every position or at some, and returns the largest
/// difference as a share of the bound.
double ExpectWithinBound(const Spline& rSpline, int nWidth, int nHeight, int nStep = 1) {
    const ClSplineField Field(rSpline, nWidth, nHeight);
    const auto pBlock = std::make_unique<ClSplineField::StBlock>();
    double dLargest = 0.0;
    for (int nY = 0; nY < nHeight; nY += cnLines)
        for (int nX = 0; nX < nWidth; nX += cnColumns) {
            Field.Evaluate(nX, nY, *pBlock);
            for (int y = 0; y < cnLines && nY + y < nHeight; y += nStep)
                for (int x = 0; x < cnColumns && nX + x < nWidth; x += nStep) {
                    double sx = 0.0;
                    double sy = 0.0;
                    rSpline.Transform(nX + x, nY + y, &sx, &sy);
                    const double dX = std::fabs(pBlock->m_aadX[y][x] - sx) / Field.ErrorOfX();
                    const double dY = std::fabs(pBlock->m_aadY[y][x] - sy) / Field.ErrorOfY();
                    dLargest = std::fmax(dLargest, std::fmax(dX, dY));
                }
        }
    EXPECT_LT(dLargest, 1.0);
    return dLargest;
}

} // namespace

TEST(SplineField, StaysWithinItsBoundForScanners) {
    AtEveryLevel([] {
        for (unsigned int nSeed = 1; nSeed <= 2; ++nSeed) {
            Spline spline;
            Solve(spline, Plate(), Bent(Plate(), nSeed));
            EXPECT_GT(ExpectWithinBound(spline, 320, 480), 0.0);
        }
    });
}

TEST(SplineField, HasASmallBoundForScanners) {
    Spline spline;
    Solve(spline, Plate(), Bent(Plate(), 1));
    const ClSplineField Field(spline, 320, 480);
    EXPECT_LT(Field.ErrorOfX(), 2e-8);
    EXPECT_LT(Field.ErrorOfY(), 2e-8);
    EXPECT_GT(Field.ErrorOfX(), 1e-13); // no more precise than Transform() itself
}

TEST(SplineField, StaysWithinItsBoundForPointsAnywhere) {
    AtEveryLevel([] {
        const struct {
            int m_nCount;
            double m_dWidth;
            double m_dHeight;
            int m_nWidth;
            int m_nHeight;
        } aCases[] = {{3, 50.0, 50.0, 1, 1},     {4, 10.0, 10.0, 37, 41},
                      {20, 3.0, 400.0, 321, 17}, {60, 100.0, 20.0, 640, 33},
                      {75, 5.0, 5.0, 100, 100},  {150, 1000.0, 1000.0, 700, 100},
                      {30, 1e5, 1e5, 330, 20},   {10, 1e-3, 1e-3, 50, 20}};
        unsigned int nSeed = 10;
        for (const auto& Case : aCases) {
            const Points aOrigin =
                RandomPoints(++nSeed, Case.m_nCount, Case.m_dWidth, Case.m_dHeight);
            Spline spline;
            Solve(spline, aOrigin, RandomPoints(++nSeed, Case.m_nCount, 300.0, 300.0));
            SCOPED_TRACE(nSeed);
            ExpectWithinBound(spline, Case.m_nWidth, Case.m_nHeight);
        }
    });
}

// Points on the circle that parts near from far, around the middle of a tile, and next to it.
TEST(SplineField, StaysWithinItsBoundWhereNearMeetsFar) {
    Points aOrigin;
    for (int i = 0; i < 24; ++i) {
        const double dRadius = 32.0 + (i % 5 - 2) * 1e-13 + (i % 7 - 3) * 1e-3;
        aOrigin.emplace_back(7.5 + dRadius * std::cos(0.26 * i),
                             7.5 + dRadius * std::sin(0.26 * i));
    }
    aOrigin.emplace_back(7.5 + 32.0, 7.5);
    aOrigin.emplace_back(7.5, 7.5 - 32.0);
    aOrigin.emplace_back(3.0, 5.0);
    AtEveryLevel([&] {
        Spline spline;
        Solve(spline, aOrigin, RandomPoints(5, static_cast<int>(aOrigin.size()), 300.0, 300.0));
        ExpectWithinBound(spline, 16, 16);
    });
}

TEST(SplineField, StaysWithinItsBoundOnTheLargestPlanes) {
    Points aOrigin = Plate();
    Points aTarget = Bent(Plate(), 3);
    for (std::size_t i = 0; i < aOrigin.size(); ++i) {
        aOrigin[i] = {12.0 * aOrigin[i].x, 8.0 * aOrigin[i].y};
        aTarget[i] = {12.0 * aTarget[i].x, 8.0 * aTarget[i].y};
    }
    Spline spline;
    Solve(spline, aOrigin, aTarget);
    ExpectWithinBound(spline, 3860, 3860, 13);
}

TEST(SplineField, PromisesNothingWhereNumbersEnd) {
    Points aTarget = Bent(Plate(), 1);
    aTarget[3].x = std::numeric_limits<double>::quiet_NaN();
    Spline spline;
    Solve(spline, Plate(), aTarget);
    const ClSplineField Field(spline, 320, 480);
    EXPECT_FALSE(std::isfinite(Field.ErrorOfX()));
    EXPECT_LT(Field.ErrorOfY(), 2e-8);

    Points aOrigin = {{1e160, 0.0}, {0.0, 3e160}, {-2e160, 1e160}};
    Spline huge;
    try {
        Solve(huge, aOrigin, aOrigin);
    } catch (const ClException&) {
        return; // no spline is right, too
    }
    EXPECT_FALSE(std::isfinite(ClSplineField(huge, 320, 480).ErrorOfX()));
}

TEST(SplineField, LeaksNothingWithoutMemory) {
    Spline spline;
    Solve(spline, Plate(), Bent(Plate(), 1));
    TestSupport::FailEachAllocation([&] { const ClSplineField Field(spline, 320, 480); });
}
