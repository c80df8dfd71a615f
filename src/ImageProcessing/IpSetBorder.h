#pragma once

/// `ClIpSetBorder` paints a frame inside an image: with border b, every sample whose distance to
/// an edge, counted from 0, is below b gets the grey value. It works in bytes and is meant for
/// 8-bit images of one plane; of others it paints the same byte positions, that is the first
/// `Width()` bytes of each line count as the line.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpSetBorder : public ClProcessorBase {
public:
    ClIpSetBorder();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Copies the input to the output, where these differ, and paints there. Returns 0; -37 for a
    /// missing image or missing pixels. Throws as the assignment of images.
    long Process() override;

    long ApplyParam(ClImage& In, ClImage& Out, long nWidth, unsigned char nGrey);
    /// In place.
    long ApplyParam(ClImage& Image, long nWidth, unsigned char nGrey);

    ClImage* m_pOutImage = nullptr; ///< borrowed, as all images
    ClImage* m_pInImage = nullptr;
    long m_nBorderWidth = 1; ///< pixels; negative ones count as 0
    unsigned char m_nGreyValue = 0;

private:
    void PaintLines(int nFirst, int nEnd) const;
    void PaintSides(int nFirst, int nEnd, int nBorder) const;
};
