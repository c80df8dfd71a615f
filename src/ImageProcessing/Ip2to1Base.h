#pragma once

/// The frame of operators with two input images. An operator says what one output sample is, as a
/// function of a sample of each image (GetValue()), or brings a loop of its own (DoProcess()); the
/// frame checks the images, places them against each other, allocates the output and walks the
/// samples. Every combination of pixel types is admitted.
///
/// As a rule both images have one size and lie on each other. With `m_bSizeMustBeEqual` clear,
/// image 2 lies at an offset from image 1 and the output is as large as both need, see Overlay.h:
/// it is filled with the fill colour, image 1 is copied, image 2 is copied above it, and the
/// operator writes the overlap.
///
/// The operator is called with samples as doubles, in which all types are exact, and its result is
/// converted by truncation: one loop instead of one per combination of three types.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

struct StPairArea;

class ClIp2to1Base : public ClProcessorBase {
public:
    ClIp2to1Base();

    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Whether the three images are named and both inputs have pixels.
    bool CanApply() override;
    /// Returns -37 where CanApply() is false; -44 for images of different sizes, or an offset,
    /// while sizes have to be equal.
    long Initialize() override;
    /// Where the output is one of the inputs, it becomes the result only when that is complete.
    /// Returns -101 for a value that is no pixel type, before the output is touched, or the result
    /// of DoProcess(). Throws "Image area must be positive" (-101) for an output without area and
    /// for one with a side above 2^31 - 1, `ClExBadAlloc` (-102), and what DoProcess() throws.
    long Process() override;

    /// Walks the overlap: `nWidth` by `nHeight` pixels, at the given offsets into the samples of
    /// each image, whose lines are the given strides apart. Nothing is written for a width or
    /// height of 0 or less, nor where the plane counts cannot be paired, see Walks/PairWalk.h.
    ///
    /// With `m_bUseLUT` and an 8-bit image 2, the results of GetValue() come from a table of 256
    /// by 256, whose rows and columns begin at the black of image 1 and of image 2 and end at
    /// their white; a sample a of image 1 reads row a - black, modulo 256, where image 1 has 8
    /// bits, else row a modulo 256, and a sample b of image 2 column b. Entries outside are 0.
    ///
    /// Returns 0, or -101 for a value that is no pixel type.
    virtual long DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                           long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride,
                           long nIn2Offset, long nIn2Stride, long nOutOffset, long nOutStride);
    /// The output sample of a pair of samples; converted by truncation. Here 0.0.
    virtual double GetValue(ClImage& In1, ClImage& In2, ClImage& Out, double dValue1,
                            double dValue2);

    /// `nOutType` is a pixel type, or `eTypeDefault` for that of image 1.
    long ApplyParam(ClImage& In1, ClImage& In2, ClImage& Out, unsigned char nOutType);

    ClImage* m_pInImage1 = nullptr; ///< borrowed, as all images
    ClImage* m_pInImage2 = nullptr;
    ClImage* m_pOutImage = nullptr;
    unsigned char m_nOutImageType = ClImage::eTypeDefault;
    bool m_bSizeMustBeEqual = true;
    double m_dFillColor = 0.0;         ///< background of an output of one plane
    double m_adPlaneFillColor[4] = {}; ///< background of one of 2 to 4 planes; of more it is 0
    int m_nOffsetX = 0;                ///< pixels from image 1 to image 2
    int m_nOffsetY = 0;
    long m_nOverlapWidth = 0; ///< pixels; this and what follows is valid during DoProcess()
    long m_nOverlapHeight = 0;
    long m_nOutOffset = 0; ///< samples from the first one of an image to the overlap
    long m_nIn1Offset = 0;
    long m_nIn2Offset = 0;
    bool m_bUseLUT = false; ///< a table costs as much as a large image

protected:
    /// Whether DoProcess() takes the table.
    bool UsesLUT(const StPairArea& Area) const;
    /// The walk by the table. Throws `ClExBadAlloc` (-102).
    long ProcessLUT(const StPairArea& Area);

private:
    /// Allocates the output, paints what is not overlap and fixes the overlap.
    void ProcessOverlayPreparations(ClImage& In1, ClImage& In2, ClImage& Out, unsigned char nType);
    long ProcessToTarget(ClImage& Target);
    template <class TOut>
    void FillTable(const StPairArea& Area, TOut* pTable);
    template <class TOut>
    void WalkTable(const StPairArea& Area, const TOut* pTable);
};
