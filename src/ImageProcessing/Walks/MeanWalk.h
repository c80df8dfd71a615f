#pragma once

/// Means over a sliding window for samples of any type, along a line or over a square, with the
/// window cut at the edges and its divisor with it.
///
/// A running sum takes one sample in and puts one out, so that the width costs nothing. Integers
/// are summed in 64 bits and divided toward zero. Real numbers are summed in double precision,
/// where the order of adding shows in the last bits; it is that of the running sum.

#include "Tools/Allocate.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <type_traits>

template <class T>
using TpSumOf = std::conditional_t<std::is_floating_point_v<T>, double, long long>;

template <class T>
T MeanSample(TpSumOf<T> sum, long nCount) {
    return static_cast<T>(sum / static_cast<TpSumOf<T>>(nCount));
}

/// Calls `write(i, sum, count)` for each of `nCount` places of a line whose samples, or sums of
/// columns, are `at(i)`.
template <class Sum, class At, class Write>
void WalkSums(long nCount, long nHalf, At at, Write write) {
    Sum sum = 0;
    long nIn = std::min(nHalf, nCount - 1) + 1;
    for (long i = 0; i < nIn; ++i)
        sum += at(i);
    for (long i = 0; i < nCount; ++i) {
        write(i, sum, nIn);
        if (i + nHalf + 1 < nCount) {
            sum += at(i + nHalf + 1);
            ++nIn;
        }
        if (i >= nHalf) {
            sum -= at(i - nHalf);
            --nIn;
        }
    }
}

/// One line of samples, or one column, that are `nInStep` and `nOutStep` apart.
template <class T>
void WalkMeans(const T* pIn, std::ptrdiff_t nInStep, long nCount, long nHalf, T* pOut,
               std::ptrdiff_t nOutStep) {
    WalkSums<TpSumOf<T>>(
        nCount, nHalf, [=](long i) { return static_cast<TpSumOf<T>>(pIn[i * nInStep]); },
        [=](long i, TpSumOf<T> sum, long nIn) { pOut[i * nOutStep] = MeanSample<T>(sum, nIn); });
}

/// The sums of the columns of the lines in a window.
template <class T>
class TpColumnSums {
public:
    explicit TpColumnSums(long nWidth)
        : m_nWidth(nWidth),
          m_pSums(Vek::NewArrayPtr<TpSumOf<T>>(static_cast<std::size_t>(nWidth))) {
        std::fill_n(m_pSums.get(), nWidth, TpSumOf<T>{0});
    }

    void Add(const T* pLine) {
        for (long x = 0; x < m_nWidth; ++x)
            m_pSums.get()[x] += static_cast<TpSumOf<T>>(pLine[x]);
    }
    void Subtract(const T* pLine) {
        for (long x = 0; x < m_nWidth; ++x)
            m_pSums.get()[x] -= static_cast<TpSumOf<T>>(pLine[x]);
    }
    TpSumOf<T> operator[](long x) const { return m_pSums.get()[x]; }

private:
    long m_nWidth;
    std::unique_ptr<TpSumOf<T>[]> m_pSums;
};

/// Calls `write(x, y, sum, count)` for each sample of one plane.
template <class T, class Write>
void WalkSquares(const ClImage& In, long nHalf, Write write) {
    const long nHeight = In.Height();
    const auto lineAt = [&](long y) { return In.Line<const T>(static_cast<int>(y)); };
    TpColumnSums<T> Columns(In.Width());
    long nRows = std::min(nHalf, nHeight);
    for (long y = 0; y < nRows; ++y)
        Columns.Add(lineAt(y));
    for (long y = 0; y < nHeight; ++y) {
        if (y + nHalf < nHeight) {
            Columns.Add(lineAt(y + nHalf));
            ++nRows;
        }
        WalkSums<TpSumOf<T>>(
            In.Width(), nHalf, [&](long x) { return Columns[x]; },
            [&](long x, TpSumOf<T> sum, long nIn) { write(x, y, sum, nIn * nRows); });
        if (y >= nHalf) {
            Columns.Subtract(lineAt(y - nHalf));
            --nRows;
        }
    }
}
