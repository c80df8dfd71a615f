#pragma once

/// `ClIpFilterMid`, the mean over a window: smoothing, with a cost that does not grow with the
/// window.
///
///     out = (sum of the samples in the window) / (their number)     toward zero
///
/// along lines (mode 1), along columns (2), or over the square in one pass (3). The window is cut
/// at the image edge and its divisor with it: a flat image stays flat. Where the filter width
/// exceeds an axis that is filtered, the output is a copy of the input.
///
/// The square of width 3 on 8-bit samples is in fixed point, which rounds:
///
///     corner   4 samples   (sum + 2) >> 2
///     edge     6 samples   ((sum + 3) * 682) >> 12
///     inside   9 samples   ((sum + 4) * 455) >> 12
///
/// Bytes take Kernels/Mean.h, the other pixel types the walks of Walks/MeanWalk.h.

#include "ImageProcessing/IpFilterBase.h"

class ClIpFilterMid : public ClIpFilterBase {
public:
    ClIpFilterMid();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// Makes the width odd.
    long Initialize() override;
    /// One plane. Tests in this order: returns -35 without an input, -101 for an unknown pixel
    /// type, -33 for the directed modes on samples that are not bytes; throws -6 for an unknown
    /// mode; returns -35 without pixels or output. An even width, which only a direct call meets,
    /// counts as it is where it is compared with 3 or with the image; its window is that of the
    /// next width.
    long DoProcess() override;
    long ProcessX() override;
    long ProcessY() override;
    long ProcessXY() override;
    long ProcessSignedX() override;
    long ProcessSignedY() override;
    long ProcessSignedXY() override;
    /// The mean along a line through each pixel, for `eUInt8`. With dx and dy the samples of the
    /// direction images, as signed numbers, a step is (2 dx, -2 dy), or across the direction
    /// (2 dy, 2 dx), in 1/256 pixel. From the middle of the pixel h = width / 2 steps go to either
    /// side, but no more than the distance to the nearest edge; the sum of the 2 h + 1 nearest
    /// samples is divided by their number and truncated.
    ///
    /// Throws "m_pInDxImage is not set" and "m_pInDyImage is not set" (-701); returns -35 without
    /// images or pixels and for direction images that are not one plane of bytes of the input's
    /// size.
    long ProcessDirected(bool bOrtho) override;

    /// Keeps the mode, which is XY by default.
    long ApplyParam(ClImage& In, ClImage& Out, long nWidth);

    /// Where set, the square of 8-bit samples is exact, at width 3 too: the output is the truncated
    /// mean, and this image, borrowed, becomes one plane of `eDouble64`, the mean minus the output.
    /// A run that copies leaves it as it is.
    ClImage* m_pRemainder = nullptr;

private:
    bool IsWiderThanImage(long nAxes) const;
    template <class Work>
    long Run(long nAxes, Work work);

    template <class T>
    long Filter(long nAxes);
    template <class T>
    long FilterXY();
    template <class T>
    void Process3x3(const ClImage& In, ClImage& Out) const;
    template <class T>
    void ProcessXYRemainder(const ClImage& In, long nHalf, ClImage& Out) const;
    template <class T>
    void Process3x3Remainder(const ClImage& In, ClImage& Out) const;

    template <class T>
    long ProcessT();
    template <class T>
    long ProcessT_X();
    template <class T>
    long ProcessT_Y();
    template <class T>
    long ProcessT_XY();
};
