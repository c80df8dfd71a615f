#pragma once

/// `ClIpFilterMedian`, the median over a window: single outliers go, edges stay.
///
///     out[x] = sample number (n >> 1) of the n samples of the window, sorted
///
/// along lines (mode 1: n = width), along columns (2), or over the square (3: n = width * width).
/// Beyond the image edge the edge samples repeat, unlike in the other rank filters, which cut the
/// window. 8-bit images, unsigned or signed; Kernels/Median.h says how it is done.

#include "ImageProcessing/IpFilterBase.h"

class ClIpFilterMedian : public ClIpFilterBase {
public:
    ClProcessorBase* Create() override;
    const char* Name() const override;
    long Initialize() override;

    /// All six test in this order: -35 without images or pixels, -35 for a width outside 3 to 100,
    /// -14 for a width or height of the image below 1; throw "Image Type is not the assigned type"
    /// (-101). An even width counts as the next one; the member keeps it. The directed modes do
    /// nothing.
    long ProcessX() override;
    long ProcessY() override;
    long ProcessXY() override;
    long ProcessSignedX() override;
    long ProcessSignedY() override;
    long ProcessSignedXY() override;

    /// Adds the directions x and y to the mode.
    long ApplyParam(ClImage& In, ClImage& Out, long nWidth);

    /// Sorts `nCount` samples in ascending order and returns the one at `nCount >> 1`, or 0 without
    /// any. The names are older than the way, which is by counting.
    static unsigned char Bubblesort(unsigned char* pBuffer, long nCount);
    static signed char BubblesortSigned(signed char* pBuffer, long nCount);

private:
    template <class T>
    long Filter(unsigned char nType, bool bX, bool bY);
    long Check(unsigned char nType) const;
};
