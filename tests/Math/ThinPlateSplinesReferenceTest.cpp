// The spline against an independent solution: the same equations, solved by plain Gaussian
// elimination in long double, and against mappings that it has to reproduce.

#include "Math/ThinPlateSplines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace {

using Points = std::vector<ClVector>;
using Column = std::vector<long double>;

long double Radial(long double s) {
    return s > 0 ? s * std::log(s) : 0;
}

/// Solves A x = b by elimination with row exchanges.
Column Solve(std::vector<Column> A, Column b) {
    const std::size_t m = b.size();
    for (std::size_t k = 0; k < m; ++k) {
        std::size_t nPivot = k;
        for (std::size_t i = k + 1; i < m; ++i)
            if (std::fabs(A[i][k]) > std::fabs(A[nPivot][k]))
                nPivot = i;
        std::swap(A[k], A[nPivot]);
        std::swap(b[k], b[nPivot]);
        for (std::size_t i = k + 1; i < m; ++i) {
            const long double dFactor = A[i][k] / A[k][k];
            for (std::size_t j = k; j < m; ++j)
                A[i][j] -= dFactor * A[k][j];
            b[i] -= dFactor * b[k];
        }
    }
    for (std::size_t k = m; k-- > 0;) {
        for (std::size_t j = k + 1; j < m; ++j)
            b[k] -= A[k][j] * b[j];
        b[k] /= A[k][k];
    }
    return b;
}

/// A thin plate spline through values of one coordinate.
class ClReference {
public:
    ClReference(const Points& aOrigin, const Column& aValues) : m_aOrigin(aOrigin) {
        const std::size_t n = aOrigin.size();
        std::vector<Column> A(n + 3, Column(n + 3, 0));
        Column b(n + 3, 0);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j)
                A[i][j] = RadialAt(aOrigin[j], aOrigin[i].x, aOrigin[i].y);
            A[i][n] = A[n][i] = 1;
            A[i][n + 1] = A[n + 1][i] = aOrigin[i].x;
            A[i][n + 2] = A[n + 2][i] = aOrigin[i].y;
            b[i] = aValues[i];
        }
        m_aWeights = Solve(A, b);
    }

    long double At(long double x, long double y) const {
        const std::size_t n = m_aOrigin.size();
        long double d = m_aWeights[n] + m_aWeights[n + 1] * x + m_aWeights[n + 2] * y;
        for (std::size_t i = 0; i < n; ++i)
            d += m_aWeights[i] * RadialAt(m_aOrigin[i], x, y);
        return d;
    }

private:
    static long double RadialAt(const ClVector& v, long double x, long double y) {
        return Radial((x - v.x) * (x - v.x) + (y - v.y) * (y - v.y));
    }

    Points m_aOrigin;
    Column m_aWeights;
};

Points PointsWithin(std::mt19937& random, int nCount, double dSpan) {
    std::uniform_real_distribution<double> position(0.0, dSpan);
    Points aPoints;
    for (int i = 0; i < nCount; ++i)
        aPoints.emplace_back(position(random), position(random));
    return aPoints;
}

ClVector Map(const TpThinPlateSplines<double>& spline, const ClVector& v) {
    ClVector vMapped;
    spline.Transform(v.x, v.y, &vMapped.x, &vMapped.y);
    return vMapped;
}

} // namespace

TEST(ThinPlateSplinesReference, AgreesWithPlainElimination) {
    std::mt19937 random(1);
    for (int nCount : {3, 4, 7, 20, 75}) {
        const Points aOrigin = PointsWithin(random, nCount, 300.0);
        const Points aShift = PointsWithin(random, nCount, 20.0);
        Points aTarget;
        Column aX;
        Column aY;
        for (std::size_t i = 0; i < aOrigin.size(); ++i) {
            aTarget.push_back(aOrigin[i] + aShift[i]);
            aX.push_back(aTarget[i].x);
            aY.push_back(aTarget[i].y);
        }
        const ClReference x(aOrigin, aX);
        const ClReference y(aOrigin, aY);
        TpThinPlateSplines<double> spline;
        spline.Setup(nCount, aOrigin.data(), aTarget.data());
        for (const ClVector& v : PointsWithin(random, 200, 300.0)) {
            const ClVector vMapped = Map(spline, v);
            EXPECT_NEAR(vMapped.x, static_cast<double>(x.At(v.x, v.y)), 1e-8);
            EXPECT_NEAR(vMapped.y, static_cast<double>(y.At(v.x, v.y)), 1e-8);
        }
    }
}

TEST(ThinPlateSplinesReference, ReproducesAffineMappings) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> factor(-2.0, 2.0);
    for (int nCount : {4, 5, 10, 30, 75}) {
        const ClVector vX(factor(random), factor(random));
        const ClVector vY(factor(random), factor(random));
        const ClVector vShift = PointsWithin(random, 1, 100.0)[0];
        const auto Affine = [&](const ClVector& v) {
            return ClVector(vShift.x + vX.x * v.x + vX.y * v.y, vShift.y + vY.x * v.x + vY.y * v.y);
        };
        const Points aOrigin = PointsWithin(random, nCount, 300.0);
        Points aTarget;
        for (const ClVector& v : aOrigin)
            aTarget.push_back(Affine(v));
        TpThinPlateSplines<double> spline;
        spline.Setup(nCount, aOrigin.data(), aTarget.data());
        for (const ClVector& v : PointsWithin(random, 200, 300.0))
            EXPECT_LT((Map(spline, v) - Affine(v)).Length(), 1e-9);
    }
}

TEST(ThinPlateSplinesReference, DoesNotDependOnTheOrderOfThePairs) {
    std::mt19937 random(3);
    const Points aOrigin = PointsWithin(random, 30, 300.0);
    const Points aTarget = PointsWithin(random, 30, 300.0);
    TpThinPlateSplines<double> spline;
    TpThinPlateSplines<double> turned;
    spline.Setup(30, aOrigin.data(), aTarget.data());
    turned.Setup(30, Points(aOrigin.rbegin(), aOrigin.rend()).data(),
                 Points(aTarget.rbegin(), aTarget.rend()).data());
    for (const ClVector& v : PointsWithin(random, 200, 300.0))
        EXPECT_LT((Map(spline, v) - Map(turned, v)).Length(), 1e-7);
}
