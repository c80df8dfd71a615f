#pragma once

/// The refusal of images whose samples an operator does not take.

#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <TessarinCalibrateSDK.h>

/// Throws "Image Type is not the assigned type" (-101) for all but one type, with the place of the
/// caller: `RequireType(In, ClImage::eInt8, VEK_HERE)`.
inline void RequireType(const ClImage& Image, unsigned char nType, const char* szFile, long nLine) {
    if (Image.DataType() != nType)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true, szFile,
                          nLine);
}

/// The same for all but unsigned bytes: `RequireBytes(In, VEK_HERE)`.
inline void RequireBytes(const ClImage& Image, const char* szFile, long nLine) {
    RequireType(Image, ClImage::eUInt8, szFile, nLine);
}
