#pragma once

/// Lines of a linear filter in fixed point, on 8-bit samples, along the line, across lines, or
/// both. Taps count in 1/4096. Results are rounded toward zero, and of them the low 8 bits are
/// kept.

#include "ImageProcessing/Kernels/SymmetricFilter.h"

#include <cstdint>
#include <memory>

namespace Kernels {

/// The taps of a filter and the scratch memory for lines of one width. The templates exist for
/// `unsigned char` and `signed char`.
class ClLinearFilter {
public:
    /// Copies the `nTaps` taps; without any, all results are 0. Throws `ClExBadAlloc` (-102).
    ClLinearFilter(const long* pTaps, long nTaps, long nWidth);

    /// out[x] = (sum over i of taps[i] * in[clamp(x + i - nTaps / 2, 0, nWidth - 1)]) / 4096.
    /// `pIn` and `pOut` may be one line.
    template <class T>
    void FilterLine(const T* pIn, T* pOut);

    /// out[x] = (sum over i of taps[i] * lines[i][x]) / 4096. `pOut` is none of the `nTaps` lines.
    template <class T>
    void FilterColumns(const T* const* ppLines, T* pOut) const;

    /// out[x] = min(255, max(0, 2 p - l)), with p the sample of the line in the middle and l that
    /// of FilterColumns(): unsharp masking along columns. For an odd number of taps.
    void SharpenColumns(const unsigned char* const* ppLines, unsigned char* pOut) const;

    /// Across lines and then along, with one division, by 2^24: the sums of all columns are
    /// filtered as FilterLine() filters samples.
    template <class T>
    void FilterBoth(const T* const* ppLines, T* pOut);

private:
    void CopyTaps(const long* pTaps, long nTaps);
    template <class T, class LineAt>
    void Filter(const LineAt& lineAt, T* pOut) const;
    template <class T>
    void SumColumns(const T* const* ppLines, double* pSums) const;
    template <class T>
    void ProcessLine(const double* pSums, T* pOut, long nWidth) const;
    template <class T>
    void FilterBothWide(const T* const* ppLines, T* pOut) const;

    template <class Finish, class Out>
    void FilterSymmetric(const unsigned char* const* ppLines, Out* pOut) const;
    void FilterBothSymmetric(const unsigned char* const* ppLines, unsigned char* pOut);

    long m_nTaps;
    long m_nWidth;
    /// Whether the absolute taps sum to at most 32767, so that vectors hold every sum.
    bool m_bNarrow = false;
    ClSymmetricTaps m_Symmetric;
    std::unique_ptr<long[]> m_pTaps;
    std::unique_ptr<int[]> m_pPairs;    ///< taps 2 i and 2 i + 1 in 16 bits each
    std::unique_ptr<double[]> m_pReals; ///< the taps as real numbers
    std::unique_ptr<unsigned char[]> m_pPadded;
    std::unique_ptr<double[]> m_pSums;
    std::unique_ptr<std::uint32_t[]> m_pSymmetricSums;
};

} // namespace Kernels
