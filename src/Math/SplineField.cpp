#include "Math/SplineField.h"

// The radial terms of all sources but the nearest are smooth in a tile of 16 by 16 positions. With
// t the way from the tile's middle to a position and D that from the source to the tile's middle,
// both complex numbers,
//
//     s log s = 2 Re(conj(D + t) f(t)),
//     f(t) = (D + t) log(D + t) = D l + (1 + l) t + sum of (-1)^k t^k / (k (k-1) D^(k-1)), k >= 2,
//
// where log |D| may stand for l = log D: an imaginary part that is the same all over adds nothing
// to the real one. So the sums over all far sources of w a(k) and w conj(D) a(k), a(k) being the
// coefficients of f, are two polynomials that give the sum of their terms; multiplied out they are
// one real polynomial of column and line. That of the few sources within 32 pixels of the middle is
// added position by position, with a logarithm each. 20 tiles side by side are the lanes of loops
// that become vectors. For 75 sources and 320 by 480 positions there are 45,000 logarithms for the
// far and 0.24 million for the near ones in place of 11.5 million.
//
// The error. |t| <= r = 10.607, and |D| >= 32 for a far source. Cut off behind k = K the series
// lacks at most
//
//     2 (r + |D|) |D| q^(K+1) / (K (K+1) (1-q)),    q = r / |D|,
//
// and each source has as many terms as bring that below 2e-6. Roundings, in units of u = 2^-53, n
// sources with weights of W in sum, S the largest s and M = S (log S + 1) + 2: a complex product
// or quotient errs by less than 7 u of its magnitude, the 14 powers by 98 u, logarithms by 32 u,
// sums over sources by n u, multiplying out and the two Horner schemes by 80 u; the magnitudes in
// all of this, |column| + |line| <= 15 in place of |t|, are below 2.6 M per weight, as 15 / |D| is
// below 0.47. The near terms err by (n + 40) u M. Transform() itself errs by (n + 16) u of W M and
// of the affine part A, which costs another 80 u A here. So a value and Transform()'s differ by
// less than
//
//     2e-6 W + (8 n + 1024) u (W M + A).

#include "Math/QuickLogarithm.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using StSource = ClSplineField::StSource;
using StBlock = ClSplineField::StBlock;

constexpr int cnTile = 16;
constexpr int cnLanes = ClSplineField::cnBlockWidth / cnTile;
constexpr double cdMiddle = 0.5 * (cnTile - 1); // of a tile, from its first position
constexpr double cdReach = 10.607;              // from the middle to a corner
constexpr double cdNear = 32.0;
constexpr double cdTruncation = 2e-6;
constexpr int cnDegree = 14;          // of f
constexpr int cnOrder = cnDegree + 1; // of the polynomial
constexpr int cnCoefficients = cnOrder + 1;

using Lanes = double[cnLanes];

// The number of terms

constexpr double Power(double d, int n) {
    return n == 0 ? 1.0 : d * Power(d, n - 1);
}

/// What a series of this degree lacks at most at a distance from the source.
constexpr double Truncation(int nDegree, double dDistance) {
    const double q = cdReach / dDistance;
    return 2.0 * (1.0 + q) * dDistance * dDistance * Power(q, nDegree + 1) /
           (nDegree * (nDegree + 1) * (1.0 - q));
}

static_assert(Truncation(cnDegree, cdNear) < cdTruncation);

struct StDegrees {
    double m_adLeastSquare[cnDegree + 1] = {}; ///< squared distance from which a degree suffices

    constexpr StDegrees() {
        for (int nDegree = 2; nDegree <= cnDegree; ++nDegree) {
            double dDistance = cdNear;
            while (Truncation(nDegree, dDistance) >= cdTruncation)
                dDistance *= 1.03125;
            m_adLeastSquare[nDegree] = dDistance * dDistance * (1.0 + 1e-12);
        }
    }
};

constexpr StDegrees cstDegrees;

int DegreeFor(double dLeastSquare) {
    int nDegree = 2;
    while (nDegree < cnDegree && dLeastSquare < cstDegrees.m_adLeastSquare[nDegree])
        ++nDegree;
    return nDegree;
}

// The far sources

/// Complex numbers, one per tile.
struct StComplex {
    Lanes m_adRe;
    Lanes m_adIm;
};

/// The sums over the far sources for one output.
struct StSeries {
    StComplex m_aF[cnDegree + 1]; ///< of w a(k), from k = 2 on without (-1)^k / (k (k-1))
    StComplex m_aG[cnDegree + 1]; ///< of w conj(D) a(k), the same
};

/// A source as the tiles see it. For a tile that it is near to its weights are 0.
struct StView {
    Lanes m_adSquare;
    StComplex m_D;
    StComplex m_Inverse; ///< 1 / D
    Lanes m_adLog;       ///< log |D|
    Lanes m_aadWeights[2];
    Lanes m_aadTimesSquare[2]; ///< the same times |D|^2

    void Look(const StSource& rSource, double dX, double dY) {
        for (int l = 0; l < cnLanes; ++l) {
            const double dDistanceX = dX + cnTile * l - rSource.m_dX;
            const double dDistanceY = dY - rSource.m_dY;
            const double dSquare = dDistanceX * dDistanceX + dDistanceY * dDistanceY;
            const bool bFar = dSquare >= cdNear * cdNear;
            const double dAway = bFar ? dSquare : cdNear * cdNear;
            const double dInverse = 1.0 / dAway;
            m_adSquare[l] = dAway;
            m_D.m_adRe[l] = dDistanceX;
            m_D.m_adIm[l] = dDistanceY;
            m_Inverse.m_adRe[l] = dDistanceX * dInverse;
            m_Inverse.m_adIm[l] = -dDistanceY * dInverse;
            m_adLog[l] = 0.5 * QuickLog(dAway);
            m_aadWeights[0][l] = bFar ? rSource.m_adWeights[0] : 0.0;
            m_aadWeights[1][l] = bFar ? rSource.m_adWeights[1] : 0.0;
            m_aadTimesSquare[0][l] = m_aadWeights[0][l] * dAway;
            m_aadTimesSquare[1][l] = m_aadWeights[1][l] * dAway;
        }
    }

    double LeastSquare() const { return *std::min_element(m_adSquare, m_adSquare + cnLanes); }
};

void AddConstantAndLinear(const StView& View, int c, StSeries& rSeries) {
    for (int l = 0; l < cnLanes; ++l) {
        const double dWeight = View.m_aadWeights[c][l];
        const double dConstant = dWeight * View.m_adLog[l];
        const double dLinear = dWeight + dConstant;
        rSeries.m_aF[0].m_adRe[l] += dConstant * View.m_D.m_adRe[l];
        rSeries.m_aF[0].m_adIm[l] += dConstant * View.m_D.m_adIm[l];
        rSeries.m_aG[0].m_adRe[l] += dConstant * View.m_adSquare[l];
        rSeries.m_aF[1].m_adRe[l] += dLinear;
        rSeries.m_aG[1].m_adRe[l] += dLinear * View.m_D.m_adRe[l];
        rSeries.m_aG[1].m_adIm[l] -= dLinear * View.m_D.m_adIm[l];
    }
}

void MultiplyBy(const StComplex& Factor, StComplex& rProduct) {
    for (int l = 0; l < cnLanes; ++l) {
        const double dRe = rProduct.m_adRe[l];
        const double dIm = rProduct.m_adIm[l];
        rProduct.m_adRe[l] = dRe * Factor.m_adRe[l] - dIm * Factor.m_adIm[l];
        rProduct.m_adIm[l] = dRe * Factor.m_adIm[l] + dIm * Factor.m_adRe[l];
    }
}

void AddWeighted(const Lanes& rWeights, const StComplex& Term, StComplex& rSum) {
    for (int l = 0; l < cnLanes; ++l) {
        rSum.m_adRe[l] += rWeights[l] * Term.m_adRe[l];
        rSum.m_adIm[l] += rWeights[l] * Term.m_adIm[l];
    }
}

/// 1 / D^m belongs to a(m+1), and by conj(D) / D^(m-1) = |D|^2 / D^m to conj(D) a(m).
void AddFar(const StSource& rSource, double dX, double dY, StSeries* pSeries) {
    StView View;
    View.Look(rSource, dX, dY);
    const int nDegree = DegreeFor(View.LeastSquare());
    StComplex power = View.m_Inverse;
    for (int c = 0; c < 2; ++c) {
        AddConstantAndLinear(View, c, pSeries[c]);
        AddWeighted(View.m_aadWeights[c], power, pSeries[c].m_aF[2]);
    }
    for (int m = 2; m <= nDegree; ++m) {
        MultiplyBy(View.m_Inverse, power);
        for (int c = 0; c < 2; ++c) {
            AddWeighted(View.m_aadTimesSquare[c], power, pSeries[c].m_aG[m]);
            if (m < nDegree)
                AddWeighted(View.m_aadWeights[c], power, pSeries[c].m_aF[m + 1]);
        }
    }
}

// The polynomial

/// m_aad[p][q] is the factor of column^p line^q, both from the middle of the tile.
struct StPolynomial {
    Lanes m_aad[cnCoefficients][cnCoefficients];
};

void AddTo(Lanes& rSum, double dFactor, const Lanes& rTerm) {
    for (int l = 0; l < cnLanes; ++l)
        rSum[l] += dFactor * rTerm[l];
}

/// Adds 2 Re((column - i line) F(t) + G(t)) with t = column + i line.
void MultiplyOut(const StSeries& Series, StPolynomial& rSum) {
    for (int k = 0; k <= cnDegree; ++k) {
        const double dCommon = k < 2 ? 2.0 : (k % 2 == 0 ? 2.0 : -2.0) / (k * (k - 1));
        double dBinomial = dCommon;
        for (int j = 0; j <= k; ++j) { // the part of t^k with column^(k-j) (i line)^j
            const StComplex& F = Series.m_aF[k];
            const StComplex& G = Series.m_aG[k];
            const bool bOdd = j % 2 != 0;
            const double dRe = j % 4 == 1 || j % 4 == 2 ? -dBinomial : dBinomial;
            const double dIm = j % 4 >= 2 ? -dBinomial : dBinomial;
            AddTo(rSum.m_aad[k - j + 1][j], dRe, bOdd ? F.m_adIm : F.m_adRe);
            AddTo(rSum.m_aad[k - j][j + 1], dIm, bOdd ? F.m_adRe : F.m_adIm);
            AddTo(rSum.m_aad[k - j][j], dRe, bOdd ? G.m_adIm : G.m_adRe);
            dBinomial = dBinomial * (k - j) / (j + 1);
        }
    }
}

void AddAffine(const double* pAffine, double dX, double dY, StPolynomial& rSum) {
    for (int l = 0; l < cnLanes; ++l) {
        rSum.m_aad[0][0][l] += pAffine[0] + (dX + cnTile * l) * pAffine[1] + dY * pAffine[2];
        rSum.m_aad[1][0][l] += pAffine[1];
        rSum.m_aad[0][1][l] += pAffine[2];
    }
}

/// Horner's scheme with coefficients `nStep` doubles apart.
template <int nDegree, int nStep>
double Horner(const double* pCoefficients, double t) {
    if constexpr (nDegree == 0)
        return pCoefficients[0];
    else
        return Horner<nDegree - 1, nStep>(pCoefficients + nStep, t) * t + pCoefficients[0];
}

template <int p>
void PowerOfLine(const StPolynomial& Polynomial, double dLine, Lanes* pOfColumn) {
    for (int l = 0; l < cnLanes; ++l)
        pOfColumn[p][l] = Horner<cnOrder - p, cnLanes>(&Polynomial.m_aad[p][0][l], dLine);
}

/// The polynomials of the column that are left on one line.
template <int... p>
void OnLine(const StPolynomial& Polynomial, double dLine, Lanes* pOfColumn,
            std::integer_sequence<int, p...>) {
    (PowerOfLine<p>(Polynomial, dLine, pOfColumn), ...);
}

void EvaluateLine(const StPolynomial& Polynomial, int y, double* pLine) {
    Lanes aOfColumn[cnCoefficients];
    OnLine(Polynomial, y - cdMiddle, aOfColumn, std::make_integer_sequence<int, cnCoefficients>());
    for (int l = 0; l < cnLanes; ++l)
        for (int x = 0; x < cnTile; ++x)
            pLine[cnTile * l + x] = Horner<cnOrder, cnLanes>(&aOfColumn[0][l], x - cdMiddle);
}

// The near sources

void AddNearLine(StSource Source, double dX, double dY, double* __restrict pX,
                 double* __restrict pY) {
    const double dDistanceY = dY - Source.m_dY;
    for (int x = 0; x < cnTile; ++x) {
        const double dDistanceX = dX + x - Source.m_dX;
        const double dSquare = dDistanceX * dDistanceX + dDistanceY * dDistanceY;
        const double dRadial = dSquare * QuickLog(dSquare);
        pX[x] += Source.m_adWeights[0] * dRadial;
        pY[x] += Source.m_adWeights[1] * dRadial;
    }
}

void AddNear(const StSource& rSource, double dX, double dY, StBlock& rBlock) {
    for (int l = 0; l < cnLanes; ++l) {
        const double dDistanceX = dX + cdMiddle + cnTile * l - rSource.m_dX;
        const double dDistanceY = dY + cdMiddle - rSource.m_dY;
        if (dDistanceX * dDistanceX + dDistanceY * dDistanceY >= cdNear * cdNear)
            continue;
        for (int y = 0; y < cnTile; ++y)
            AddNearLine(rSource, dX + cnTile * l, dY + y, &rBlock.m_aadX[y][cnTile * l],
                        &rBlock.m_aadY[y][cnTile * l]);
    }
}

struct StEvaluate {
    static void Run(const StSource* pSources, std::size_t nSources, const double (*pAffine)[3],
                    double dX, double dY, StBlock* pBlock) {
        StSeries aSeries[2] = {};
        for (std::size_t i = 0; i < nSources; ++i)
            AddFar(pSources[i], dX + cdMiddle, dY + cdMiddle, aSeries);
        for (int c = 0; c < 2; ++c) {
            StPolynomial polynomial = {};
            MultiplyOut(aSeries[c], polynomial);
            AddAffine(pAffine[c], dX + cdMiddle, dY + cdMiddle, polynomial);
            for (int y = 0; y < cnTile; ++y)
                EvaluateLine(polynomial, y, c == 0 ? pBlock->m_aadX[y] : pBlock->m_aadY[y]);
        }
        for (std::size_t i = 0; i < nSources; ++i)
            AddNear(pSources[i], dX, dY, *pBlock);
    }
};

// The error

/// The square of the larger distance from a coordinate to the ends of a side, and a tile beyond.
double LargestSquare(double dAt, int nSide) {
    const double dDistance = std::max(std::fabs(dAt), std::fabs(dAt - nSide)) + cnTile;
    return dDistance * dDistance;
}

double LargestAffine(const double* pAffine, int nWidth, int nHeight) {
    return std::fabs(pAffine[0]) + std::fabs(pAffine[1]) * (nWidth + cnTile) +
           std::fabs(pAffine[2]) * (nHeight + cnTile);
}

double ErrorOf(double dWeightSum, double dLargestSquare, double dLargestAffine,
               std::size_t nSources) {
    constexpr double cdUnit = 0x1p-53;
    const double dRadial = dLargestSquare * (QuickLog(dLargestSquare) + 1.0) + 2.0;
    return cdTruncation * dWeightSum + (8.0 * static_cast<double>(nSources) + 1024.0) * cdUnit *
                                           (dWeightSum * dRadial + dLargestAffine);
}

} // namespace

ClSplineField::ClSplineField(const TpThinPlateSplines<double>& rSpline, int nWidth, int nHeight)
    : m_pSources(Vek::NewArrayPtr<StSource>(rSpline.Parts().m_nOrigins)),
      m_nSources(rSpline.Parts().m_nOrigins) {
    const TpThinPlateSplines<double>::StParts Parts = rSpline.Parts();
    double dLargestSquare = 0.0;
    double adWeightSum[2] = {0.0, 0.0};
    for (std::size_t i = 0; i < m_nSources; ++i) {
        const ClVector& rOrigin = Parts.m_pOrigins[i];
        m_pSources[i] = {rOrigin.x, rOrigin.y, {Parts.m_pWeightsX[i], Parts.m_pWeightsY[i]}};
        dLargestSquare = std::fmax(dLargestSquare, LargestSquare(rOrigin.x, nWidth) +
                                                       LargestSquare(rOrigin.y, nHeight));
        adWeightSum[0] += std::fabs(Parts.m_pWeightsX[i]);
        adWeightSum[1] += std::fabs(Parts.m_pWeightsY[i]);
    }
    for (std::size_t i = 0; i < 3; ++i) {
        m_aadAffine[0][i] = Parts.m_pWeightsX[m_nSources + i];
        m_aadAffine[1][i] = Parts.m_pWeightsY[m_nSources + i];
    }
    for (int c = 0; c < 2; ++c)
        m_adError[c] = ErrorOf(adWeightSum[c], dLargestSquare,
                               LargestAffine(m_aadAffine[c], nWidth, nHeight), m_nSources);
}

void ClSplineField::Evaluate(int nX, int nY, StBlock& rBlock) const noexcept {
    RunAtLevel<StEvaluate>(static_cast<const StSource*>(m_pSources.get()), m_nSources,
                           &m_aadAffine[0], static_cast<double>(nX), static_cast<double>(nY),
                           &rBlock);
}
