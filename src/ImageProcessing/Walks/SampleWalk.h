#pragma once

/// The walks that the operator frames share: over the samples of two images of one geometry.

#include "ImageProcessing/Kernels/LookUp.h"
#include "ImageProcessing/PixelTypeDispatch.h"

#include <type_traits>

/// `Out = function(In)` for every sample, line by line; both images have `In`'s width, height and
/// planes.
template <class TIn, class TOut, class Function>
void WalkSamples(const ClImage& In, ClImage& Out, Function&& function) {
    const long nSamples = static_cast<long>(In.Width()) * In.Planes();
    for (int y = 0; y < In.Height(); ++y) {
        const TIn* pIn = In.Line<TIn>(y);
        TOut* pOut = Out.Line<TOut>(y);
        for (long i = 0; i < nSamples; ++i)
            pOut[i] = function(pIn[i]);
    }
}

/// The same with a function from double to double.
template <class TIn, class TOut, class Function>
void WalkValues(const ClImage& In, ClImage& Out, Function&& function) {
    WalkSamples<TIn, TOut>(In, Out, [&](TIn value) {
        return SampleFromDouble<TOut>(function(static_cast<double>(value)));
    });
}

/// The same through a table of all values that a sample of `TIn`, of 8 bits, can have.
template <class TIn, class TOut, class Function>
void WalkTable(const ClImage& In, ClImage& Out, Function&& function) {
    static_assert(std::is_same_v<TIn, unsigned char>);
    constexpr int cnValues = 256;
    TOut aTable[cnValues];
    for (int i = 0; i < cnValues; ++i)
        aTable[i] = SampleFromDouble<TOut>(function(static_cast<double>(i)));
    if constexpr (std::is_same_v<TOut, unsigned char>) {
        if (In.Height() > 0)
            Kernels::ClLookUp(aTable).Run(In.LineData(0), In.LineStrideBytes(),
                                          static_cast<long>(In.Width()) * In.Planes(), In.Height(),
                                          Out.LineData(0), Out.LineStrideBytes());
    } else {
        WalkSamples<TIn, TOut>(In, Out, [&](TIn n) { return aTable[n]; });
    }
}
