#pragma once

/// Two images of different size and position in one output. Image 2 lies at an offset from image 1,
/// and the output is as large as both need. On each axis, with sizes s1 and s2 and offset o:
///
///     output    max(s1, |o| + s2), for a negative offset max(s2, |o| + s1)
///     image 1   at -o for a negative offset, else at 0
///     image 2   at o for a positive offset, else at 0
///     overlap   min(s1, s2) - |o|, from |o| on in the output
///
/// The overlap is smaller than the true intersection where one image lies inside the other. That
/// is kept: results have depended on it. It may be 0 or less.

#include "Tools/FpImage.h"

/// One axis.
struct StOverlayAxis {
    StOverlayAxis(int nSize1, int nSize2, int nOffset);

    bool IsPlain() const { return m_nStart1 == 0 && m_nStart2 == 0 && m_bSameSize; }

    long m_nOutput;  ///< size
    long m_nOverlap; ///< size
    long m_nStart1;  ///< of image 1 in the output; also where the overlap begins in image 2
    long m_nStart2;  ///< of image 2 in the output; also where the overlap begins in image 1
    bool m_bSameSize;
};

struct StOverlay {
    StOverlay(const ClImage& In1, const ClImage& In2, int nOffsetX, int nOffsetY);

    /// The images have one size and lie on each other.
    bool IsPlain() const { return m_X.IsPlain() && m_Y.IsPlain(); }

    /// Gives the output its size, and image 1's planes and resolutions. Throws "Image area must be
    /// positive" (-101), also for a side above 2^31 - 1, and as `ClImage::NewWithType`.
    void NewOutput(ClImage& Out, unsigned char nType, const ClImage& In1) const;

    /// Where the overlap begins, in samples.
    long OutOffset(const ClImage& Out) const;
    long In1Offset(const ClImage& In1) const;
    long In2Offset(const ClImage& In2) const;

    StOverlayAxis m_X;
    StOverlayAxis m_Y;
};

/// Gives each sample of plane p of `Out` the value `pColors[p]`, for 1 to 4 planes of a pixel
/// type; clears an image of more.
void FillPlanes(ClImage& Out, const double* pColors);

/// Copies the samples of `In` into `Out` at a place where they fit; both have pixel types. A grey
/// image goes into all planes of an output of three, otherwise the planes are equally many or
/// nothing is copied.
void PasteImage(const ClImage& In, ClImage& Out, long nX, long nY);
