#pragma once

/// The sample type of an image of 8 bits, for work that knows no other.

#include "ImageProcessing/PixelTypeDispatch.h"

/// `Function(TpPixelTag<T>)` with `signed char` for `eInt8` and `unsigned char` otherwise; the
/// caller has tested for one of both.
template <class Function>
void DispatchByteType(unsigned char nType, Function function) {
    if (nType == ClImage::eInt8)
        function(TpPixelTag<signed char>());
    else
        function(TpPixelTag<unsigned char>());
}
