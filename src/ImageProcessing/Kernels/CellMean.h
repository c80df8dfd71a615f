#pragma once

/// Means over the cells of an axis. An output sample covers a span of the input, its cell, whose
/// ends fall inside input samples. With positions in units of which an input sample has `nUnit`,
/// the cell from `nFrom` to `nTo` is
///
///     sum of (units of the cell in sample k) * sample k / (nTo - nFrom)
///
/// truncated toward zero. Every input sample counts with its share, none is skipped, so that a
/// constant stays exactly what it is. Sums are exact in 64 bits for lines of up to 2^31 samples
/// and units of up to 2^14.

#include <cstddef>

namespace Kernels {

struct StCell {
    int m_nFirst; ///< samples at the ends of the cell; those between are covered wholly
    int m_nLast;
    long long m_nFirstWeight; ///< units
    long long m_nLastWeight;  ///< 0 where the cell lies in one sample
    long long m_nLength;
};

/// `nFrom` is below `nTo`.
StCell MakeCell(long long nFrom, long long nTo, long long nUnit);

/// The cells of one line; `T` is `unsigned char` or `signed char`.
template <class T>
void MeanOfCells(const T* pIn, const StCell* pCells, int nCells, long long nUnit, T* pOut);

/// One cell across lines: the means of `nWidth` columns. `pIn` is line 0, lines are `nStride`
/// samples apart.
template <class T>
void MeanOfLines(const T* pIn, std::ptrdiff_t nStride, const StCell& Cell, long long nUnit,
                 int nWidth, T* pOut);

} // namespace Kernels
