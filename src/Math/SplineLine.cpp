#include "Math/SplineLine.h"

// The sums of Transform() side by side, 64 at a time: each adds the same terms in the same order.
// The logarithm of a squared distance is QuickLog()'s, which is off by less than 2^-48: where
// 2^-47 more and less of it round to one float, that is the float of the correctly rounded
// logarithm, too. One in some million does not, and is looked up.

#include "Math/Logarithm.h"
#include "Math/QuickLogarithm.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>

namespace {

constexpr int cnLanes = 64;

struct StSums {
    float m_afX[cnLanes]; ///< the positions
    float m_afY[cnLanes];
    float m_afSumX[cnLanes];
    float m_afSumY[cnLanes];
};

/// Squared distances from one origin and their logarithms.
struct StDistances {
    float m_afSquare[cnLanes];
    float m_afLog[cnLanes];
};

/// Returns how many logarithms may have been rounded to the wrong float.
struct StMeasure {
    static int Run(const StSums* pSums, float fX, float fY, StDistances* __restrict pDistances) {
        int nDoubts = 0;
        for (int i = 0; i < cnLanes; ++i) {
            const float fDistanceX = pSums->m_afX[i] - fX;
            const float fDistanceY = pSums->m_afY[i] - fY;
            const float fSquare = fDistanceX * fDistanceX + fDistanceY * fDistanceY;
            const double dLog = QuickLog(static_cast<double>(fSquare));
            pDistances->m_afSquare[i] = fSquare;
            pDistances->m_afLog[i] = static_cast<float>(dLog * (1.0 - 0x1p-47));
            nDoubts += pDistances->m_afLog[i] != static_cast<float>(dLog * (1.0 + 0x1p-47));
        }
        return nDoubts;
    }
};

struct StAdd {
    static void Run(const StDistances* pDistances, float fWeightX, float fWeightY,
                    StSums* __restrict pSums) {
        for (int i = 0; i < cnLanes; ++i) {
            const float fSquare = pDistances->m_afSquare[i];
            const float fRadial = fSquare * pDistances->m_afLog[i];
            const float fSumX = pSums->m_afSumX[i] + fRadial * fWeightX;
            const float fSumY = pSums->m_afSumY[i] + fRadial * fWeightY;
            pSums->m_afSumX[i] = fSquare > 0.0F ? fSumX : pSums->m_afSumX[i];
            pSums->m_afSumY[i] = fSquare > 0.0F ? fSumY : pSums->m_afSumY[i];
        }
    }
};

void SumUp(const TpThinPlateSplines<float>::StParts& Parts, StSums& rSums) {
    StDistances distances;
    for (unsigned long i = 0; i < Parts.m_nOrigins; ++i) {
        const ClVector& rOrigin = Parts.m_pOrigins[i];
        const int nDoubts =
            RunAtLevel<StMeasure>(static_cast<const StSums*>(&rSums), static_cast<float>(rOrigin.x),
                                  static_cast<float>(rOrigin.y), &distances);
        for (int l = 0; l < cnLanes && nDoubts != 0; ++l)
            distances.m_afLog[l] = CorrectLog(distances.m_afSquare[l]);
        RunAtLevel<StAdd>(static_cast<const StDistances*>(&distances), Parts.m_pWeightsX[i],
                          Parts.m_pWeightsY[i], &rSums);
    }
}

} // namespace

void TransformLine(const TpThinPlateSplines<float>& rSpline, const float* pX, const float* pY,
                   long nCount, float* pMappedX, float* pMappedY) {
    const TpThinPlateSplines<float>::StParts Parts = rSpline.Parts();
    const unsigned long n = Parts.m_nOrigins;
    if (n == 0)
        throw ClExTessarin(QMT_ERROR_INITIALIZED, VEK_HERE);
    for (long nFirst = 0; nFirst < nCount; nFirst += cnLanes) {
        const long nLanes = std::min<long>(cnLanes, nCount - nFirst);
        StSums sums = {};
        std::copy_n(pX + nFirst, nLanes, sums.m_afX);
        std::copy_n(pY + nFirst, nLanes, sums.m_afY);
        SumUp(Parts, sums);
        for (long l = 0; l < nLanes; ++l) {
            const float x = sums.m_afX[l];
            const float y = sums.m_afY[l];
            pMappedX[nFirst + l] =
                sums.m_afSumX[l] + (Parts.m_pWeightsX[n] + x * Parts.m_pWeightsX[n + 1] +
                                    y * Parts.m_pWeightsX[n + 2]);
            pMappedY[nFirst + l] =
                sums.m_afSumY[l] + (Parts.m_pWeightsY[n] + x * Parts.m_pWeightsY[n + 1] +
                                    y * Parts.m_pWeightsY[n + 2]);
        }
    }
}
