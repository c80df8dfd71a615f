#pragma once

/// From a pixel type known at run time to a sample type known to the compiler. One switch serves
/// the whole library: an operator hands a generic lambda over and gets a tag per image.
///
///     return DispatchPixelType(In.DataType(), [&](auto Tag) {
///         using T = typename decltype(Tag)::Type;
///         return ProcessT<T>(In, Out);
///     });

#include "Tools/FpImage.h"

#include <type_traits>

template <class T>
struct TpPixelTag {
    using Type = T;
};

/// Result of every dispatcher for a value that is no pixel type.
inline constexpr long cnUnknownPixelType = -101;

/// `Function(TpPixelTag<T>)` for the sample type T of `nType`; -101 where there is none.
template <class Function>
long DispatchPixelType(unsigned char nType, Function&& function) {
    switch (nType) {
    case ClImage::eUInt8:
        return function(TpPixelTag<unsigned char>());
    case ClImage::eInt8:
        return function(TpPixelTag<signed char>());
    case ClImage::eUInt16:
        return function(TpPixelTag<unsigned short>());
    case ClImage::eInt16:
        return function(TpPixelTag<short>());
    case ClImage::eUInt32:
        return function(TpPixelTag<unsigned int>());
    case ClImage::eInt32:
        return function(TpPixelTag<int>());
    case ClImage::eFloat32:
        return function(TpPixelTag<float>());
    case ClImage::eDouble64:
        return function(TpPixelTag<double>());
    default:
        return cnUnknownPixelType;
    }
}

/// The same for two and for three types, with a tag each.
template <class Function>
long DispatchPixelTypes(unsigned char nType1, unsigned char nType2, Function&& function) {
    return DispatchPixelType(nType1, [&](auto Tag1) {
        return DispatchPixelType(nType2, [&](auto Tag2) { return function(Tag1, Tag2); });
    });
}

template <class Function>
long DispatchPixelTypes(unsigned char nType1, unsigned char nType2, unsigned char nType3,
                        Function&& function) {
    return DispatchPixelTypes(nType1, nType2, [&](auto Tag1, auto Tag2) {
        return DispatchPixelType(nType3, [&](auto Tag3) { return function(Tag1, Tag2, Tag3); });
    });
}

/// A sample from a double. Integers by truncation to signed 64 bits, of which the low bits are
/// kept; 0 for values outside 64 bits and for NaN. Neither rounds nor clamps: that is the
/// operator's.
template <class T>
T SampleFromDouble(double dValue) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(dValue);
    } else {
        constexpr double cdTwoTo63 = 9223372036854775808.0;
        if (!(dValue >= -cdTwoTo63 && dValue < cdTwoTo63))
            return T(0);
        return static_cast<T>(static_cast<long long>(dValue));
    }
}
