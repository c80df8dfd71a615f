#pragma once

/// `ClIpBinarizeLocal2`, the comparison of every pixel with the mean of a window around it, which
/// finds dots and ridges under uneven light. It works on bytes and divides nowhere: with S the sum
/// and A the area of the window,
///
///     out = above where (in + offset) * A > S, else below
///
/// The window reaches hx = sizeX / 2 columns and hy = sizeY / 2 lines to each side and ends at the
/// border of the image, where its area shrinks. Columns whose window is whole count the area as
/// rows * sizeX: with an even sizeX that is one column less than is summed, which lowers the
/// output a little. The calibration target is found with this bias.
///
/// Sums of windows are carried from line to line, so that the cost does not depend on the height of
/// the window and little on its width.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpBinarizeLocal2 : public ClIp1to1Base {
public:
    ClIpBinarizeLocal2();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Copies an image that is smaller than the window. Returns -35 for a size below 1. Of each
    /// line the first Width() bytes are compared; what a line has beyond them, in images of several
    /// planes or larger samples, is 0 in the output. Throws `ClExBadAlloc` (-102).
    long DoProcess(ClImage& rIn, ClImage& rOut) override;

    long ApplyParam(ClImage& rIn, ClImage& rOut, long nSizeX, long nSizeY, long nOffset);

    // Set by the caller, and not published.
    long m_nSizeX = 11; ///< of the window, pixels
    long m_nSizeY = 11;
    long m_nOffset = 0; ///< grey values, added to the pixel
    unsigned char m_nBelowValue = 0;
    unsigned char m_nAboveValue = 255;
};
