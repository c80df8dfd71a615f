#pragma once

/// The maximum and the minimum of a sliding window, for samples of any type: what the two filters
/// share, the one being the mirror image of the other.
///
/// The window of sample i runs from i - half to i + half and is cut at the ends; no samples are
/// invented. Bytes take the kernels of Kernels/MinMax.h. The other types take a walk that looks
/// over the whole window again only when its extreme has left it: near one comparison per sample
/// on real images, and no buffer. Comparisons with a value that is not a number are false: what
/// stays follows from the walk.

#include "ImageProcessing/Kernels/MinMax.h"
#include "Tools/FpImage.h"

#include <algorithm>

using Kernels::EExtreme;

/// Whether an entering sample takes the place of the present extreme; equal ones do.
template <EExtreme eKind, class T>
bool TakesOver(T entering, T current) {
    return eKind == EExtreme::eMax ? entering >= current : entering <= current;
}

/// A line of samples, or a column, that are `m_nStep` apart.
template <class T>
struct StSampleLine {
    T* m_pFirst;
    std::ptrdiff_t m_nStep;
    T& operator[](long i) const { return m_pFirst[i * m_nStep]; }
};

/// The extreme of the samples `nFrom` to `nTo`.
template <EExtreme eKind, class T>
T ExtremeOf(const StSampleLine<const T>& In, long nFrom, long nTo) {
    T current = In[nFrom];
    for (long i = nFrom + 1; i <= nTo; ++i)
        if (TakesOver<eKind>(In[i], current))
            current = In[i];
    return current;
}

/// The windows that are cut at the end of the line only, from its end to `nFrom` downwards.
template <EExtreme eKind, class T>
void WalkRightMargin(const StSampleLine<const T>& In, long nCount, long nHalf, long nFrom,
                     const StSampleLine<T>& Out) {
    if (nFrom >= nCount)
        return;
    T current = ExtremeOf<eKind>(In, nCount - 1 - nHalf, nCount - 1);
    for (long x = nCount - 1; x >= nFrom; --x) {
        if (TakesOver<eKind>(In[x - nHalf], current))
            current = In[x - nHalf];
        Out[x] = current;
    }
}

/// One line of `nCount` samples; input and output do not overlap.
template <EExtreme eKind, class T>
void WalkExtremes(const StSampleLine<const T>& In, long nCount, long nHalf,
                  const StSampleLine<T>& Out) {
    if (nCount < 1)
        return;
    T current = ExtremeOf<eKind>(In, 0, std::min(nHalf, nCount - 1));
    for (long x = 0; x <= std::min(nHalf, nCount - 1); ++x) {
        if (x + nHalf < nCount && TakesOver<eKind>(In[x + nHalf], current))
            current = In[x + nHalf];
        Out[x] = current;
    }
    for (long x = nHalf + 1; x < nCount - nHalf; ++x) {
        if (TakesOver<eKind>(In[x + nHalf], current))
            current = In[x + nHalf];
        else if (In[x - nHalf - 1] == current)
            current = ExtremeOf<eKind>(In, x - nHalf, x + nHalf);
        Out[x] = current;
    }
    WalkRightMargin<eKind>(In, nCount, nHalf, std::max(nHalf + 1, nCount - nHalf), Out);
}

/// One plane along lines; `Out` becomes an image like `In`, which is another one.
template <EExtreme eKind, class T>
void ExtremesAlongX(const ClImage& In, long nHalf, ClImage& Out) {
    Out.New(In);
    if (In.SizeBytes() == 0)
        return;
    if constexpr (sizeof(T) == 1) {
        Kernels::ExtremeAlongLines<eKind>(In.Line<const T>(0), In.LineStrideSamples(), In.Width(),
                                          In.Height(), nHalf, Out.Line<T>(0),
                                          Out.LineStrideSamples());
    } else {
        for (int y = 0; y < In.Height(); ++y)
            WalkExtremes<eKind, T>({In.Line<const T>(y), 1}, In.Width(), nHalf,
                                   {Out.Line<T>(y), 1});
    }
}

/// The same along columns.
template <EExtreme eKind, class T>
void ExtremesAlongY(const ClImage& In, long nHalf, ClImage& Out) {
    Out.New(In);
    if (In.SizeBytes() == 0)
        return;
    if constexpr (sizeof(T) == 1) {
        Kernels::ExtremeAlongColumns<eKind>(In.Line<const T>(0), In.LineStrideSamples(), In.Width(),
                                            In.Height(), nHalf, Out.Line<T>(0),
                                            Out.LineStrideSamples());
    } else {
        for (int x = 0; x < In.Width(); ++x)
            WalkExtremes<eKind, T>({In.Line<const T>(0) + x, In.LineStrideSamples()}, In.Height(),
                                   nHalf, {Out.Line<T>(0) + x, Out.LineStrideSamples()});
    }
}

/// Over the square: along columns of what is along lines.
template <EExtreme eKind, class T>
void ExtremesAlongXY(const ClImage& In, long nHalf, ClImage& Out) {
    if constexpr (sizeof(T) == 1) {
        Out.New(In);
        Kernels::ClScratch Scratch;
        if (In.SizeBytes() > 0)
            Kernels::ExtremeOverSquares<eKind>(In.Line<const T>(0), In.LineStrideSamples(),
                                               In.Width(), In.Height(), nHalf, Out.Line<T>(0),
                                               Out.LineStrideSamples(), Scratch);
    } else {
        ClImage Lines;
        ExtremesAlongX<eKind, T>(In, nHalf, Lines);
        ExtremesAlongY<eKind, T>(Lines, nHalf, Out);
    }
}
