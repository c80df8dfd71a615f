#include "Math/SplineLine.h"

// The sums of Transform() side by side, 64 at a time: each adds the same terms in the same order.
// Logarithms are taken the quick way, which tells where it cannot vouch for the last bit; those are
// looked up. For doubles that is the quick way of CorrectLog(). For floats it is QuickLog(), off by
// less than 2^-48: where 2^-47 less and more of it round to one float, that is the float of the
// correctly rounded logarithm, too.

#include "Math/Logarithm.h"
#include "Math/LogarithmPairs.h"
#include "Math/QuickLogarithm.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int cnLanes = 64;

/// Positions and the sums of their terms.
template <class T>
struct StSums {
    T m_aX[cnLanes];
    T m_aY[cnLanes];
    T m_aSumX[cnLanes];
    T m_aSumY[cnLanes];
};

/// Squared distances from one origin and their logarithms.
template <class T>
struct StDistances {
    T m_aSquare[cnLanes];
    T m_aLog[cnLanes];
};

/// A logarithm, and 1 where it may have been rounded to the wrong side, else 0.
template <class T>
struct StLog {
    T m_Log;
    int m_nDoubt;
};

StLog<float> LogWithDoubt(float fSquare) {
    const double dLog = QuickLog(static_cast<double>(fSquare));
    const float fLess = static_cast<float>(dLog * (1.0 - 0x1p-47));
    return {fLess, fLess != static_cast<float>(dLog * (1.0 + 0x1p-47))};
}

StLog<double> LogWithDoubt(double dSquare) {
    const LogarithmPairs::StPair sum = LogarithmPairs::LogOfNormal(dSquare, 0.0);
    const double dLess = LogarithmPairs::RoundedLess(sum);
    const int nRoundsAlike = dLess == LogarithmPairs::RoundedMore(sum);
    const int nNormal = dSquare >= std::numeric_limits<double>::min();
    const int nFinite = dSquare <= std::numeric_limits<double>::max();
    return {dLess, 1 - (nRoundsAlike & nNormal & nFinite)};
}

/// Returns how many logarithms are in doubt.
template <class T>
struct StMeasure {
    static int Run(const StSums<T>* pSums, T x, T y, StDistances<T>* __restrict pDistances) {
        int nDoubts = 0;
        for (int i = 0; i < cnLanes; ++i) {
            const T distanceX = pSums->m_aX[i] - x;
            const T distanceY = pSums->m_aY[i] - y;
            const T square = distanceX * distanceX + distanceY * distanceY;
            const StLog<T> Log = LogWithDoubt(square);
            pDistances->m_aSquare[i] = square;
            pDistances->m_aLog[i] = Log.m_Log;
            nDoubts += Log.m_nDoubt;
        }
        return nDoubts;
    }
};

template <class T>
struct StAdd {
    static void Run(const StDistances<T>* pDistances, T weightX, T weightY,
                    StSums<T>* __restrict pSums) {
        for (int i = 0; i < cnLanes; ++i) {
            const T square = pDistances->m_aSquare[i];
            const T radial = square * pDistances->m_aLog[i];
            const T oldX = pSums->m_aSumX[i];
            const T oldY = pSums->m_aSumY[i];
            const T newX = oldX + radial * weightX;
            const T newY = oldY + radial * weightY;
            pSums->m_aSumX[i] = square > T(0) ? newX : oldX;
            pSums->m_aSumY[i] = square > T(0) ? newY : oldY;
        }
    }
};

template <class T>
void SumUp(const typename TpThinPlateSplines<T>::StParts& Parts, StSums<T>& rSums) {
    StDistances<T> distances;
    for (unsigned long i = 0; i < Parts.m_nOrigins; ++i) {
        const ClVector& rOrigin = Parts.m_pOrigins[i];
        const int nDoubts = RunAtLevel<StMeasure<T>>(static_cast<const StSums<T>*>(&rSums),
                                                     static_cast<T>(rOrigin.x),
                                                     static_cast<T>(rOrigin.y), &distances);
        for (int l = 0; l < cnLanes && nDoubts != 0; ++l)
            distances.m_aLog[l] = CorrectLog(distances.m_aSquare[l]);
        RunAtLevel<StAdd<T>>(static_cast<const StDistances<T>*>(&distances), Parts.m_pWeightsX[i],
                             Parts.m_pWeightsY[i], &rSums);
    }
}

/// With the affine part, in the order of Transform().
template <class T>
T Whole(T sum, const T* pAffine, T x, T y) {
    return sum + (pAffine[0] + x * pAffine[1] + y * pAffine[2]);
}

} // namespace

template <class T>
void TransformLine(const TpThinPlateSplines<T>& rSpline, const T* pX, const T* pY, long nCount,
                   T* pMappedX, T* pMappedY) {
    const typename TpThinPlateSplines<T>::StParts Parts = rSpline.Parts();
    const unsigned long n = Parts.m_nOrigins;
    if (n == 0)
        throw ClExTessarin(QMT_ERROR_INITIALIZED, VEK_HERE);
    for (long nFirst = 0; nFirst < nCount; nFirst += cnLanes) {
        const long nLanes = std::min<long>(cnLanes, nCount - nFirst);
        StSums<T> sums = {};
        std::copy_n(pX + nFirst, nLanes, sums.m_aX);
        std::copy_n(pY + nFirst, nLanes, sums.m_aY);
        SumUp<T>(Parts, sums);
        for (long l = 0; l < nLanes; ++l) {
            const T x = sums.m_aX[l];
            const T y = sums.m_aY[l];
            pMappedX[nFirst + l] = Whole(sums.m_aSumX[l], Parts.m_pWeightsX + n, x, y);
            pMappedY[nFirst + l] = Whole(sums.m_aSumY[l], Parts.m_pWeightsY + n, x, y);
        }
    }
}

template void TransformLine(const TpThinPlateSplines<double>&, const double*, const double*, long,
                            double*, double*);
template void TransformLine(const TpThinPlateSplines<float>&, const float*, const float*, long,
                            float*, float*);
