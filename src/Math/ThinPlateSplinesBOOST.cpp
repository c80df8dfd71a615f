// The solver's settings belong to this file and to no build type: a zero pivot is the exception
// `singular` in debug and release alike, and the arithmetic is the same in both.
#define BOOST_UBLAS_SINGULAR_CHECK
#define BOOST_UBLAS_NDEBUG
#define BOOST_UBLAS_TYPE_CHECK 0

#include "Math/ThinPlateSplines.h"

#include "Math/Logarithm.h"

#include <boost/numeric/ublas/lu.hpp>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>

#include <climits>
#include <cmath>
#include <new>

namespace ublas = boost::numeric::ublas;

namespace {

/// A mapped origin may miss its target by this much, in pixels.
constexpr double cdTolerance = 0.01;

/// U(s) = s log s of the squared distance, 0 at the point itself. The logarithm is correctly
/// rounded and all else rounds in one way only: splines of one record, and the tables made of them,
/// are the same on every machine.
template <class T>
T Radial(T s) {
    return s > T(0) ? s * CorrectLog(s) : T(0);
}

template <class T>
T SquaredDistance(T x1, T y1, T x2, T y2) {
    const T dX = x1 - x2;
    const T dY = y1 - y2;
    return dX * dX + dY * dY;
}

template <class T>
void FillMatrix(ublas::matrix<T>& rA, unsigned long n, const ClVector* pvOrigin) {
    rA.assign(ublas::zero_matrix<T>(n + 3, n + 3));
    for (unsigned long i = 0; i < n; ++i) {
        const T x = static_cast<T>(pvOrigin[i].x);
        const T y = static_cast<T>(pvOrigin[i].y);
        for (unsigned long j = 0; j < i; ++j)
            rA(i, j) = rA(j, i) = Radial(SquaredDistance(x, y, static_cast<T>(pvOrigin[j].x),
                                                         static_cast<T>(pvOrigin[j].y)));
        rA(i, n) = rA(n, i) = T(1);
        rA(i, n + 1) = rA(n + 1, i) = x;
        rA(i, n + 2) = rA(n + 2, i) = y;
    }
}

void CheckArguments(long nSize, const ClVector* pvOrigin, const ClVector* pvTarget) {
    if (pvOrigin == nullptr)
        throw ClException("pvOrigin is NULL.", QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    if (pvTarget == nullptr)
        throw ClException("pvTarget is NULL.", QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    if (nSize < 1)
        throw ClException("nSize == NULL.", QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
}

} // namespace

template <class T>
TpThinPlateSplines<T>::TpThinPlateSplines() = default;

template <class T>
TpThinPlateSplines<T>::~TpThinPlateSplines() = default;

template <class T>
void TpThinPlateSplines<T>::Setup(long nSize, const ClVector* pvOrigin, const ClVector* pvTarget) {
    CheckArguments(nSize, pvOrigin, pvTarget);
    const unsigned long n = static_cast<unsigned long>(nSize);
    m_aOrigin.Clear(); // until the new weights have stood the test, there is nothing to evaluate
    try {
        Solve(n, pvOrigin, pvTarget);
    } catch (const ublas::singular&) {
        throw ClException("Generation of Geometric Calibration data not possible, simgularity "
                          "detected, contact Tessarin",
                          QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, true, VEK_HERE);
    } catch (const std::bad_alloc&) {
        Vek::ThrowBadAlloc();
    }
    StoreOrigin(n, pvOrigin);
    try {
        CheckSetup(nSize, pvOrigin, pvTarget);
    } catch (const ClException&) {
        m_aOrigin.Clear();
        throw;
    }
}

template <class T>
void TpThinPlateSplines<T>::Solve(unsigned long n, const ClVector* pvOrigin,
                                  const ClVector* pvTarget) {
    if (n > INT_MAX)
        throw std::bad_alloc(); // the elements of the matrix cannot be counted in a long
    ublas::matrix<T> A(n + 3, n + 3);
    FillMatrix(A, n, pvOrigin);

    m_pvWeightsX = std::make_unique<Weights>(ublas::zero_vector<T>(n + 3));
    m_pvWeightsY = std::make_unique<Weights>(ublas::zero_vector<T>(n + 3));
    for (unsigned long i = 0; i < n; ++i) {
        (*m_pvWeightsX)(i) = static_cast<T>(pvTarget[i].x);
        (*m_pvWeightsY)(i) = static_cast<T>(pvTarget[i].y);
    }

    ublas::permutation_matrix<std::size_t> permutation(n + 3);
    ublas::lu_factorize(A, permutation); // a zero pivot shows in the substitution
    ublas::lu_substitute(A, permutation, *m_pvWeightsX);
    ublas::lu_substitute(A, permutation, *m_pvWeightsY);
}

template <class T>
void TpThinPlateSplines<T>::StoreOrigin(unsigned long n, const ClVector* pvOrigin) {
    m_aOrigin.New(n);
    for (unsigned long i = 0; i < n; ++i)
        m_aOrigin[i] = pvOrigin[i];
}

template <class T>
void TpThinPlateSplines<T>::Transform(T x, T y, T* pX, T* pY) const {
    const unsigned long n = m_aOrigin.Entries();
    if (n == 0)
        throw ClExTessarin(QMT_ERROR_INITIALIZED, VEK_HERE);

    const Weights& wx = *m_pvWeightsX;
    const Weights& wy = *m_pvWeightsY;
    T sumX = 0;
    T sumY = 0;
    for (unsigned long i = 0; i < n; ++i) {
        const T s =
            SquaredDistance(x, y, static_cast<T>(m_aOrigin[i].x), static_cast<T>(m_aOrigin[i].y));
        if (s > T(0)) {
            const T u = s * CorrectLog(s);
            sumX += u * wx(i);
            sumY += u * wy(i);
        }
    }
    *pX = sumX + (wx(n) + x * wx(n + 1) + y * wx(n + 2));
    *pY = sumY + (wy(n) + x * wy(n + 1) + y * wy(n + 2));
}

template <class T>
typename TpThinPlateSplines<T>::StParts TpThinPlateSplines<T>::Parts() const {
    if (m_aOrigin.Entries() == 0)
        return {nullptr, 0, nullptr, nullptr};
    return {m_aOrigin.Data(), m_aOrigin.Entries(), &m_pvWeightsX->data()[0],
            &m_pvWeightsY->data()[0]};
}

template <class T>
void TpThinPlateSplines<T>::CheckSetup(long nSize, const ClVector* pvOrigin,
                                       const ClVector* pvTarget) const {
    for (long i = 0; i < nSize; ++i) {
        T x = 0;
        T y = 0;
        Transform(static_cast<T>(pvOrigin[i].x), static_cast<T>(pvOrigin[i].y), &x, &y);
        const double dX = static_cast<double>(x) - pvTarget[i].x;
        const double dY = static_cast<double>(y) - pvTarget[i].y;
        if (std::sqrt(dX * dX + dY * dY) > cdTolerance)
            throw ClException(
                "Generation of Geometric Calibration data not possible, contact Tessarin",
                QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, true, VEK_HERE);
    }
}

template class TpThinPlateSplines<double>;
template class TpThinPlateSplines<float>;
