#pragma once

/// What the two detectors of a finger, by brightness and by contrast, do alike: running their
/// steps, painting the edge of an 8-bit image of one plane, and turning an area in square
/// millimetres into pixels.

#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/MaskArithmetic.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

namespace DetectorSteps {

/// Throws `ClExTessarin` with the result of a step that has failed, but for the codes by which
/// operators tell that they have nothing to do with their arguments: the detector goes on with the
/// image as they left it, and where that is empty, the next step refuses it.
inline void ThrowFailure(long nResult) {
    switch (nResult) {
    case QMT_SUCCESS:
    case QMT_ERROR_BITMAP_PTR:
    case QMT_ERROR_FORMAT_NOTSUPPORTED:
    case QMT_ERROR_PARAM_OUT_OF_RANGE:
    case QMT_ERROR_PARAM_IS_MISSING:
    case QMT_ERROR_INVALID_PARAMETER:
        return;
    default:
        throw ClExTessarin(nResult, VEK_HERE);
    }
}

/// Runs `Step.ApplyParam(arguments...)`, timed where the owner is.
template <class Processor, class... Arguments>
void Run(const ClProcessorBase& Owner, Processor&& Step, Arguments&&... arguments) {
    ThrowFailure(Timed(Owner, std::forward<Processor>(Step))
                     .ApplyParam(std::forward<Arguments>(arguments)...));
}

/// trunc((sqrt(dMM2) * 100.0 * dPelsPer100thMM)^2), evaluated as written; 0 for what is no area.
inline std::int64_t PixelsOfArea(double dMM2, double dPelsPer100thMM) {
    const double dSide = std::sqrt(dMM2) * 100.0 * dPelsPer100thMM;
    return Mask::Truncated(dSide * dSide);
}

/// Paints the outermost `nWidth` lines and columns. Where a line is not painted whole, its right
/// end gets a value of its own, which wins where both ends meet. Line padding stays.
inline void PaintOutermostPixels(ClImage& Image, long nWidth, unsigned char nValue,
                                 unsigned char nRightEnd) {
    const long nLines = Image.Height();
    const long nBorder = std::max(nWidth, 0L);
    const auto nLineBytes = static_cast<std::size_t>(Image.Width());
    const auto nSideBytes = static_cast<std::size_t>(std::min<long>(Image.Width(), nBorder));
    for (int y = 0; y < nLines; ++y) {
        unsigned char* pLine = Image.LineData(y);
        const bool bWhole = y < nBorder || y >= nLines - nBorder;
        std::memset(pLine, nValue, bWhole ? nLineBytes : nSideBytes);
        if (!bWhole)
            std::memset(pLine + nLineBytes - nSideBytes, nRightEnd, nSideBytes);
    }
}

} // namespace DetectorSteps
