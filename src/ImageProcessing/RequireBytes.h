#pragma once

/// The refusal of images whose samples an operator does not take.

#include "Tools/Exception.h"
#include "Tools/FpImage.h"

/// Throws "Image Type is not the assigned type" (-101) for all but unsigned bytes, with the place
/// of the caller: `RequireBytes(In, VEK_HERE)`.
inline void RequireBytes(const ClImage& Image, const char* szFile, long nLine) {
    if (Image.DataType() != ClImage::eUInt8)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true, szFile,
                          nLine);
}
