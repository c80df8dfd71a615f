#include "ImageProcessing/Kernels/CellMean.h"

#include <algorithm>

namespace Kernels {

namespace {

/// Columns summed at a time: their sums stay in the nearest cache.
constexpr int cnBlock = 512;

template <class T>
void AddLine(const T* pIn, long long nWeight, int nCount, long long* pSums) {
    for (int i = 0; i < nCount; ++i)
        pSums[i] += nWeight * pIn[i];
}

template <class T>
void MeanOfBlock(const T* pIn, std::ptrdiff_t nStride, const StCell& Cell, long long nUnit,
                 int nCount, T* pOut) {
    long long anSums[cnBlock] = {};
    AddLine(pIn + Cell.m_nFirst * nStride, Cell.m_nFirstWeight, nCount, anSums);
    for (long y = Cell.m_nFirst + 1L; y < Cell.m_nLast; ++y)
        AddLine(pIn + y * nStride, nUnit, nCount, anSums);
    AddLine(pIn + Cell.m_nLast * nStride, Cell.m_nLastWeight, nCount, anSums);
    for (int i = 0; i < nCount; ++i)
        pOut[i] = static_cast<T>(anSums[i] / Cell.m_nLength);
}

} // namespace

StCell MakeCell(long long nFrom, long long nTo, long long nUnit) {
    const long long nFirst = nFrom / nUnit;
    const long long nLast = (nTo - 1) / nUnit;
    const long long nFirstWeight = std::min(nTo, (nFirst + 1) * nUnit) - nFrom;
    const long long nLastWeight = nLast > nFirst ? nTo - nLast * nUnit : 0;
    return {static_cast<int>(nFirst), static_cast<int>(nLast), nFirstWeight, nLastWeight,
            nTo - nFrom};
}

template <class T>
void MeanOfCells(const T* pIn, const StCell* pCells, int nCells, long long nUnit, T* pOut) {
    for (int i = 0; i < nCells; ++i) {
        const StCell& Cell = pCells[i];
        if (Cell.m_nFirst == Cell.m_nLast) { // the mean of one sample
            pOut[i] = pIn[Cell.m_nFirst];
            continue;
        }
        long long nSum = 0;
        for (int x = Cell.m_nFirst + 1; x < Cell.m_nLast; ++x)
            nSum += pIn[x];
        nSum = nSum * nUnit + Cell.m_nFirstWeight * pIn[Cell.m_nFirst] +
               Cell.m_nLastWeight * pIn[Cell.m_nLast];
        pOut[i] = static_cast<T>(nSum / Cell.m_nLength);
    }
}

template <class T>
void MeanOfLines(const T* pIn, std::ptrdiff_t nStride, const StCell& Cell, long long nUnit,
                 int nWidth, T* pOut) {
    for (int x = 0; x < nWidth;) {
        const int nCount = std::min(cnBlock, nWidth - x);
        MeanOfBlock(pIn + x, nStride, Cell, nUnit, nCount, pOut + x);
        x += nCount;
    }
}

template void MeanOfCells(const unsigned char*, const StCell*, int, long long, unsigned char*);
template void MeanOfCells(const signed char*, const StCell*, int, long long, signed char*);
template void MeanOfLines(const unsigned char*, std::ptrdiff_t, const StCell&, long long, int,
                          unsigned char*);
template void MeanOfLines(const signed char*, std::ptrdiff_t, const StCell&, long long, int,
                          signed char*);

} // namespace Kernels
