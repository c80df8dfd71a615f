#pragma once

/// The small frame of operators with two 8-bit input images and an 8-bit output, signed or
/// unsigned as image 1 is. It works on bytes: an operator overrides ProcessArea() and says what a
/// pair of them gives.
///
/// Images of different size and position lie against each other as in `ClIp2to1Base`, see
/// Overlay.h. The output is filled with the fill colour, both inputs are copied into it, image 2
/// above image 1, and the operator writes the overlap.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpArithmetic2to1Base : public ClProcessorBase {
public:
    ClIpArithmetic2to1Base();

    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Whether the three images are named and both inputs have pixels.
    bool CanApply() override;
    /// "Signed" or "Unsigned", as image 1 is, or "Unknown Yet" without one. Throws
    /// "String-Length exceeded available size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;
    /// Returns, in this order, -37 where CanApply() is false; -33 for an input of a type other than
    /// `eUInt8` and `eInt8`; and, while sizes have to be equal, -14 for different sizes and -35 for
    /// an offset.
    long Initialize() override;
    /// Where the output is one of the inputs, it becomes the result only when that is complete.
    /// Returns 0, or -37 and -33 as Initialize(). Throws "Image area must be positive" (-101) for
    /// an output without area and for one with a side above 2^31 - 1, and `ClExBadAlloc` (-102).
    long Process() override;

    /// Writes the overlap, `nWidth` by `nHeight` pixels from the given places on. Strides are in
    /// bytes. Called only for an overlap with pixels and for equally many planes in both inputs;
    /// planes follow each other within a pixel. Here nothing.
    virtual void ProcessArea(long nWidth, long nHeight, long nPlanes, const unsigned char* pIn1,
                             long nIn1Stride, const unsigned char* pIn2, long nIn2Stride,
                             unsigned char* pOut, long nOutStride);
    /// Copies lines of samples. From one plane to three, the sample goes into each of them; other
    /// unequal counts copy nothing.
    virtual void CopySubpart(long nWidth, long nHeight, long nPlanes1, long nPlanes2,
                             const unsigned char* pSrc, long nSrcStride, unsigned char* pDest,
                             long nDestStride);
    /// Fills with the colour: plane p gets byte p of `m_nFillColor`. With more than 3 planes only
    /// a colour of three equal bytes fills.
    virtual void FillSubpart(long nWidth, long nHeight, long nPlanes, unsigned char* pDest,
                             long nStride);
    /// Gives `m_pOutImage`, which is the image under work during a run, the signedness of image 1
    /// and moves its range along.
    virtual void SetOutImageSign();

    long ApplyParam(ClImage& In1, ClImage& In2, ClImage& Out);

    ClImage* m_pInImage1 = nullptr; ///< borrowed, as all images
    ClImage* m_pInImage2 = nullptr;
    ClImage* m_pOutImage = nullptr;
    bool m_bSizeMustBeEqual = true;
    long m_nFillColor = 0; ///< the low three bytes, the lowest for plane 0
    int m_nOffsetX = 0;    ///< pixels from image 1 to image 2
    int m_nOffsetY = 0;

protected:
    /// Whether ProcessArea() writes all of the overlap, so that nothing need be painted under it.
    /// Here not.
    virtual bool WritesAllOfArea() const;
    /// Allocates the output and gives the size of the overlap.
    void CreateOutImage(long& nWidth, long& nHeight);
    /// Paints the output without the operator's own part.
    void FillOuterParts();
    /// Where the overlap begins in each image, in bytes.
    void CalcOffsets(long& nOffset1, long& nOffset2, long& nOffsetOut) const;

private:
    long CheckInputs();
    void ProcessToOutImage();
    bool IsAllArea() const;
    void CopyToOutput(const ClImage& In, long nX, long nY);
};
