#pragma once

/// The frames of operators with one input image. An operator says what one output sample is, as a
/// function of one input sample (GetValue()), or brings a loop of its own (DoProcess()); the
/// frame checks the images, allocates the output and walks the samples of every pixel type. For
/// 8-bit input a table of 256 values replaces the call per sample.
///
/// Two frames stand side by side: `NewIpBase::ClIp1to1Base` admits the pixel types that the
/// operator lists and keeps the type; `ClIp1to1Base` takes every type and converts.

#include "ImageProcessing/ImageDataTypeCheck.h"

namespace NewIpBase {

class ClIp1to1Base : public ClIpProcessorBase {
public:
    ClIp1to1Base();

    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Throws -701 for a missing image or missing pixels.
    long Process() override;

    /// One output line after the other. `In` and `Out` are one image only for operators that work
    /// in place.
    virtual long DoProcess(ClImage& In, ClImage& Out);
    /// Gives the output its type, geometry and range: those of the input.
    virtual void AllocateOutImage(ClImage& Out);
    /// The output sample of an input sample; converted by truncation. Here 0.0.
    virtual double GetValue(ClImage& In, ClImage& Out, double dValue);

    void CheckInOutImageTypes() override;

    /// In place, or through a local image where the operator needs one.
    long ApplyParam(ClImage& Image);
    long ApplyParam(ClImage& In, ClImage& Out);

    ClImage* m_pInImage = nullptr;  ///< borrowed
    ClImage* m_pOutImage = nullptr; ///< borrowed
    bool m_bInPlace = false;        ///< the operator may write what it reads
    bool m_bUseLUT = true;

protected:
    /// The whole output by a table of GetValue(), whatever `m_bUseLUT` says; both images are of
    /// type T, which is `unsigned char`. Returns 0; throws `ClExBadAlloc` (-102).
    template <class T>
    long ProcessLUT(ClImage& In, ClImage& Out);

private:
    long ProcessInPlace();
    long ProcessToTarget();
};

} // namespace NewIpBase

class ClIp1to1Base : public ClProcessorBase {
public:
    ClIp1to1Base();

    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Returns -10 for a missing image or missing pixels, -101 for an unknown pixel type.
    long Process() override;

    virtual long DoProcess(ClImage& In, ClImage& Out);
    virtual double GetValue(ClImage& In, ClImage& Out, double dValue);

    /// In and out are `Image`, which keeps its type.
    long ApplyParam(ClImage& Image);
    /// `nOutType` is a pixel type, or `eTypeDefault` for the input's.
    long ApplyParam(ClImage& In, ClImage& Out, unsigned char nOutType);

    ClImage* m_pInImage = nullptr;  ///< borrowed
    ClImage* m_pOutImage = nullptr; ///< borrowed
    unsigned char m_nOutImageType = ClImage::eTypeDefault;
    bool m_bInPlace = false;
    bool m_bUseLUT = true;

private:
    template <class TIn>
    long DispatchDefault(ClImage& In, ClImage& Out);
    template <class TIn, class TOut>
    long Default(ClImage& In, ClImage& Out);
    template <class TIn>
    long DispatchLUT(ClImage& In, ClImage& Out);
    template <class TIn, class TOut>
    long ProcessLUT(ClImage& In, ClImage& Out);
    long ProcessToTarget();
};
