#pragma once

/// The list that an operator for every pixel type hands to `EnableDataType`.

#include "Tools/FpImage.h"

#include <iterator>

inline constexpr ClImage::EDataType caAllPixelTypes[] = {
    ClImage::eUInt8,  ClImage::eInt8,  ClImage::eUInt16,  ClImage::eInt16,
    ClImage::eUInt32, ClImage::eInt32, ClImage::eFloat32, ClImage::eDouble64};
inline constexpr unsigned long cnAllPixelTypes = std::size(caAllPixelTypes);
