// The shape of the finger mask: one convex piece with a soft border.

#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBuildConvexHull.h"
#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpImageExtension.h"
#include "ImageProcessing/IpScale.h"
#include "Tools/FpImage.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr unsigned char cnFinger = 0;
constexpr unsigned char cnBackground = 255;

/// A blur spreads a region and its ground into each other. What it has left untouched of the
/// ground lies above the one threshold, what is purely region below the other.
constexpr double cdGrow = 245.0;
constexpr double cdShrink = 10.0;

constexpr int cnSoftMargin = 2; ///< pixels of ground around a mask that is smoothed
constexpr double cdSoftScale = 2.2;

/// A length of pixels from a real one, truncated. Eight times the largest are still an `int`.
int WholePixels(double dLength) {
    constexpr int cnMost = std::numeric_limits<int>::max() / 8;
    return dLength > 0.0 ? static_cast<int>(std::min(dLength, double{cnMost})) : 0;
}

/// The first column from `nFrom` on where a line has the value; the width without one.
int ColumnOf(unsigned char nValue, const ClImage& Image, int nLine, int nFrom) {
    const unsigned char* pLine = Image.LineData(nLine);
    const void* pFound =
        std::memchr(pLine + nFrom, nValue, static_cast<std::size_t>(Image.Width() - nFrom));
    return pFound == nullptr ? Image.Width()
                             : static_cast<int>(static_cast<const unsigned char*>(pFound) - pLine);
}

// Operators, with the timer of their owner

/// Grows the mask by ground, `nExtension` pixels in total on each axis, half of it on each side.
void Extend(const ClProcessorBase& Owner, const ClImage& Mask, int nExtension, ClImage& Out) {
    ClInputView In(Mask);
    Timed(Owner, ClIpImageExtension())
        .ApplyParam(In, Out, nExtension, nExtension, cnBackground, false);
}

void CutMargin(const ClProcessorBase& Owner, const ClImage& Image, int nMargin, ClImage& Out) {
    ClInputView In(Image);
    Timed(Owner, ClIpCut())
        .ApplyParam(In, nMargin, nMargin, long{In.Width()} - 2L * nMargin,
                    long{In.Height()} - 2L * nMargin, Out);
}

/// `Out` may be `In`.
void BlurTwice(const ClProcessorBase& Owner, ClImage& In, long nWidth, ClImage& Scratch,
               ClImage& Out) {
    ClIpFilterMid Mid;
    Timed(Owner, Mid).ApplyParam(In, Scratch, nWidth);
    Mid.ApplyParam(Scratch, Out, nWidth);
}

void Binarize(const ClProcessorBase& Owner, ClImage& In, double dThreshold, ClImage& Out) {
    Timed(Owner, ClIpBinarizeGlobal()).ApplyParam(In, Out, dThreshold);
}

void BlurAndBinarize(const ClProcessorBase& Owner, ClImage& Image, long nWidth, double dThreshold,
                     ClImage& Scratch) {
    BlurTwice(Owner, Image, nWidth, Scratch, Image);
    Binarize(Owner, Image, dThreshold, Image);
}

/// The region becomes its convex hull.
void FillToHull(const ClProcessorBase& Owner, ClImage& Image) {
    ClIpBuildConvexHull Hull;
    Hull.m_pInImage = &Image;
    Hull.m_pOutImage = &Image;
    Timed(Owner, Hull).Apply();
}

} // namespace

/// A blur of twice the ridge distance, run twice, closes the gaps between ridges; the count is
/// taken on a grown copy, so that pieces which nearly touch count as one, and the hull joins them.
long ClIpQK7DynamicCalibration30::EmbraceMask(ClImage& Mask, double dRidgeDist) {
    const int k = WholePixels(2.0 * dRidgeDist);
    const long nWidth = k | 1;
    ClImage A; // larger than the mask, so that no blur meets the edge
    ClImage B;
    Extend(*this, Mask, 4 * k, A);
    BlurAndBinarize(*this, A, nWidth, cdGrow, B);
    BlurAndBinarize(*this, A, nWidth, cdShrink, B);
    BlurAndBinarize(*this, A, nWidth, cdShrink, B); // removes bridges and crumbs
    ClImage Grown;
    BlurTwice(*this, A, nWidth, B, Grown);
    Binarize(*this, Grown, cdGrow, B);
    if (GetMaskRegionCount(B, cnFinger) != 1)
        return QMT_ERROR_FORMAT_NOTSUPPORTED;
    FillToHull(*this, A);
    BlurAndBinarize(*this, A, nWidth, cdGrow, B);
    CutMargin(*this, A, 2 * k, Mask);
    return 0;
}

/// The scale keeps the finger's side of the ramp in place and brings the other to white sooner.
long ClIpQK7DynamicCalibration30::SmoothenMask(ClImage& Mask, double dRidgeDist) {
    ClImage A;
    ClImage B;
    Extend(*this, Mask, 2 * cnSoftMargin, A);
    BlurTwice(*this, A, WholePixels(dRidgeDist) | 1, B, A);
    Timed(*this, ClIpScale()).ApplyParam(A, cdSoftScale);
    CutMargin(*this, A, cnSoftMargin, Mask);
    return 0;
}

/// Each region found is painted over, so that every pixel is looked at once.
long ClIpQK7DynamicCalibration30::GetMaskRegionCount(const ClImage& Image, unsigned char nValue) {
    ClImage Copy;
    Copy = Image;
    ClIpFloodFill Fill;
    Fill.m_pInImage = &Copy;
    Fill.m_pOutImage = &Copy;
    Fill.m_nFillColor = static_cast<unsigned char>(~nValue);
    long nRegions = 0;
    for (int y = 0; y < Copy.Height(); ++y)
        for (int x = ColumnOf(nValue, Copy, y, 0); x < Copy.Width();
             x = ColumnOf(nValue, Copy, y, x + 1)) {
            ++nRegions;
            Fill.m_nStartX = x;
            Fill.m_nStartY = y;
            Timed(*this, Fill).Apply();
        }
    return nRegions;
}
