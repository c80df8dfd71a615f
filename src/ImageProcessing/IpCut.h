#pragma once

/// `ClIpCut` takes a rectangle out of an image: pixel (x, y) of the output is pixel
/// (x + X0, y + Y0) of the input, for x below the wanted width and y below the wanted height. The
/// rectangle lies inside the input; nothing is clipped.
///
/// The four numbers of the rectangle are read through pointers, which normally point at the
/// processor's own fields. Pointed elsewhere, several cuts follow one rectangle that another
/// object holds.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpCut : public NewIpBase::ClIp1to1Base {
public:
    ClIpCut();
    ClIpCut(const ClIpCut&) = delete; // it would read the fields of the original
    ClIpCut& operator=(const ClIpCut&) = delete;

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    /// An empty rectangle in the own fields.
    void SetParametersToDefault() override;
    void QueryParameters(ClParameterInterface& List) override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// The output gets type, planes, resolutions, range, content and attribute of the input.
    /// Throws -35 with the condition in words for a rectangle that does not lie inside: a
    /// negative start in x and y, a start behind the input in x and y, a negative width and
    /// height, a right and an upper end behind the input, tested in this order; "Image area must
    /// be positive" (-101) for an empty one; `ClExBadAlloc` (-102). Returns -37 where a number
    /// has no place to be read. `Out` may be `In`.
    long DoProcess(ClImage& In, ClImage& Out) override;

    /// Cuts `nBorder` pixels off each side.
    long ApplyParam(ClImage& In, long nBorder, ClImage& Out);
    /// Both forms store the rectangle in the own fields and read it there.
    long ApplyParam(ClImage& In, long nX0, long nY0, long nWidth, long nHeight, ClImage& Out);
    using NewIpBase::ClIp1to1Base::ApplyParam;

    long m_nX0 = 0; ///< first column and line, pixels
    long m_nY0 = 0;
    long m_nDestWidth = 0; ///< pixels
    long m_nDestHeight = 0;
    long* m_pX0 = &m_nX0; ///< where the rectangle is read
    long* m_pY0 = &m_nY0;
    long* m_pDestWidth = &m_nDestWidth;
    long* m_pDestHeight = &m_nDestHeight;

private:
    void ReadOwnFields();
    void CheckRectangle(const ClImage& In) const;
    void Cut(const ClImage& In, ClImage& Out) const;
};
