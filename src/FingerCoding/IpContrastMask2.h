#pragma once

/// `ClIpContrastMask2`, the area of ridge structure in an image of gradient lengths. A finger gives
/// strong, evenly spread gradients; dirt gives a few strong edges and little around them. So the
/// amplified gradients are averaged over about two ridge distances, and a threshold parts what is
/// strong everywhere from what is strong in places.
///
/// The work is done at a fixed low resolution: the mean over ridges has no finer detail, and of a
/// capture of 500 dots per inch a quarter of the pixels is left. With f = resolution of the input
/// in dots per inch / 250, in order: black outside the mask; every f-th pixel; frame black;
///
///     g = min(255, trunc(in * ScaleFactor))
///     g = max(g, 3 by 3 median of g)
///     g = mean of g over the width w,   n = trunc(ridge distance * MidRotWidthFactor1 / f)
///                                       w = 2 * ((n - n / 2) | 1) - 1, in integers
///     foreground where g >= t,          t = trunc(ScaleFactor * ThresholdFactor) & 255
///
/// With a probability image g is first moved by 128 - t, limited to 0 to 255, and compared with the
/// same t: the foreground is then where the g above is at least 2 * t - 128.

#include "ImageProcessing/Mask2.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpContrastMask2 : public ClProcessorBase {
public:
    ClIpContrastMask2() = default;
    ClIpContrastMask2(const ClIpContrastMask2&) = delete; // points into itself
    ClIpContrastMask2& operator=(const ClIpContrastMask2&) = delete;

    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// The mask comes with the area to look at: its runs, in the frame of its last step, at the
    /// resolution of the input; one without runs stands for the whole image. It leaves with the
    /// region of contrast, without blobs below `m_dMinFgBlobSize`, and its bounding box as a
    /// further step. The probability image gets the size and resolution of the input; much
    /// contrast is dark, the threshold lies at 127.
    ///
    /// Returns 0, or -15 where no foreground is left; then there is no further step. Throws
    /// "m_pInImage is not set" (-701) for a missing input and for a missing place of the ridge
    /// distance, "m_ppInOutMask is not set" and "*m_ppInOutMask is not set" (-701); -13 of
    /// CheckWorkSize(); "Image Type is not the assigned type" (-101) for other types than
    /// `eUInt8`; the index message of the mask (-35) for an input at none of its steps; "Image area
    /// must be positive" (-101) where the work leaves no resolution of one axis, which is so when
    /// it is ten thousand times coarser than the other; what the sub-processors throw, and as
    /// `ClExTessarin` their results other than 0, -10, -33, -35, -37 and -44, after which the work
    /// goes on; `ClExBadAlloc` (-102). The input is not changed.
    long Process() override;

    /// Throws `ClExTessarin` -13 for an image without resolution, and for one that would be wider
    /// or higher than 4096 pixels or have more than 8 million at the resolution of the work.
    void CheckWorkSize(const ClImage& In) const;

    /// The resolution of the work for one of the input: toward zero, as near as an `int` comes.
    int WorkPels(const ClImage& In, int nPels) const;
    /// Pixels of the work: of the mean.
    long MeanWidth(const ClImage& In) const;

    ClImage* m_pInImage = nullptr;           ///< gradient lengths, 8 bits, one plane; borrowed
    ClImage* m_pOptOutProbImage = nullptr;   ///< may be null
    double m_dRidgeDist = 0.0;               ///< pixels of the input
    double* m_pdRidgeDist = &m_dRidgeDist;   ///< where the ridge distance is read
    ClMask2* m_pInOutMask = nullptr;         ///< in: where to look; out: the region
    ClMask2** m_ppInOutMask = &m_pInOutMask; ///< where the mask is found
    double m_dWorkDpi = 250.0;               ///< dots per inch of the work
    long m_nBorderWidth = 3;                 ///< pixels of the work
    double m_dScaleFactor = 8.0;             ///< amplification of the gradients
    double m_dMidRotWidthFactor1 = 1.5;      ///< times the ridge distance
    double m_dMidRotWidthFactor2 = 1.5;      ///< parameter only
    double m_dMidRotWidthFactor3 = 1.5;      ///< parameter only
    double m_dThresholdFactor = 7.0;         ///< times `m_dScaleFactor`
    double m_dMinFgBlobSize = 16.0;          ///< square millimetres

protected:
    /// In place, on an 8-bit image of one plane: min(255, trunc(sample * dFactor)), of which the
    /// low 8 bits are kept, and 0 for what is not a number. Line padding stays.
    static void Scale(ClImage& Image, double dFactor);
    /// `Out` becomes `In` with a black frame.
    static void CopyWithBlackFrame(const ClImage& In, ClImage& Out, long nWidth);

private:
    void CheckParameters() const;
    double ShrinkFactor(const ClImage& In) const;
    void ShrinkRegion(ClImage& Out);
    void Amplify(ClImage& Image);
    void Smoothen(ClImage& Image);
    void HandOutProbability(const ClImage& In, ClImage& Image, int nThreshold);
    long BuildMask(const ClImage& In, ClImage& Image, int nThreshold);
};
