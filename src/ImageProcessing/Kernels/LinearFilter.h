#pragma once

/// A linear filter in fixed point on planes of 8-bit samples, along lines, across them, or both.
/// Taps count in 1/4096. Results are rounded toward zero, and of them the low 8 bits are kept.
/// Samples beyond an edge are those at the edge.

#include "ImageProcessing/Kernels/PairedFilter.h"
#include "ImageProcessing/Kernels/Scratch.h"

#include <memory>

namespace Kernels {

/// The taps of a filter and the scratch memory for planes of one width. The templates exist for
/// `unsigned char` and `signed char`; the planes may be one.
class ClLinearFilter {
public:
    /// Copies the `nTaps` taps; without any, all results are 0. Throws `ClExBadAlloc` (-102), as do
    /// the others.
    ClLinearFilter(const long* pTaps, long nTaps, long nWidth);

    /// out[y][x] = (sum over i of taps[i] * in[y][clamp(x + i - nTaps / 2, 0, width - 1)]) / 4096.
    template <class T>
    void FilterAlong(const StInAndOut<T>& Planes);

    /// out[y][x] = (sum over i of taps[i] * in[clamp(y + i - nTaps / 2, 0, height - 1)][x]) / 4096.
    /// The planes are two.
    template <class T>
    void FilterAcross(const StInAndOut<T>& Planes);

    /// Across lines and then along, with one division, by 2^24: the sums of all columns are
    /// filtered as FilterAlong() filters samples. The planes are two.
    template <class T>
    void FilterBoth(const StInAndOut<T>& Planes);

    /// out = min(255, max(0, 2 in - l)), with l the result of FilterAcross(): unsharp masking along
    /// columns. The planes are two.
    void SharpenAcross(const StInAndOut<unsigned char>& Planes);

private:
    void CopyTaps(const long* pTaps, long nTaps);

    template <class Pass>
    void RunPass(const StInAndOut<unsigned char>& Planes);
    void AlongPaired(const StInAndOut<unsigned char>& Planes);
    void AcrossPaired(const StInAndOut<unsigned char>& Planes);

    template <class T, class FilterLines>
    void ForEachLine(const StInAndOut<T>& Planes, FilterLines filter) const;
    template <class T>
    void FilterLine(const T* pIn, T* pOut);
    template <class T>
    void FilterColumns(const T* const* ppLines, T* pOut) const;
    template <class T>
    void FilterLineOfBoth(const T* const* ppLines, T* pOut);
    template <class T, class LineAt>
    void Filter(const LineAt& lineAt, T* pOut) const;
    template <class T>
    void SumColumns(const T* const* ppLines, double* pSums) const;
    template <class T>
    void ProcessLine(const double* pSums, T* pOut, long nWidth) const;
    template <class T>
    void FilterBothWide(const T* const* ppLines, T* pOut) const;

    long m_nTaps;
    long m_nWidth;
    /// Whether the absolute taps sum to at most 32767, so that vectors hold every sum.
    bool m_bNarrow = false;
    ClPairedTaps m_Paired;
    ClScratch m_Scratch; ///< of paired taps
    std::unique_ptr<long[]> m_pTaps;
    std::unique_ptr<int[]> m_pPairs;    ///< taps 2 i and 2 i + 1 in 16 bits each
    std::unique_ptr<double[]> m_pReals; ///< the taps as real numbers
    std::unique_ptr<unsigned char[]> m_pPadded;
    std::unique_ptr<double[]> m_pSums;
};

} // namespace Kernels
