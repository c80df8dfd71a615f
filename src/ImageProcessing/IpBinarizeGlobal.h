#pragma once

/// `ClIpBinarizeGlobal`, the comparison of every sample with one threshold:
///
///     out = black where threshold > in, else white
///
/// For integer types the threshold is rounded up to the next integer, which decides the same, and
/// limited to the type. What is not set, that is not a number, comes from the input's range: black
/// and white are its ends, the threshold is its middle. Of a range that has no middle the threshold
/// is not a number even so: then every sample is white, but black in `eUInt8` images, which ask
/// GetValue(). A sample that is not a number is white.

#include "ImageProcessing/Ip1to1Base.h"
#include "Tools/MathConst.h"

class ClIpBinarizeGlobal : public NewIpBase::ClIp1to1Base {
public:
    /// Admits all eight pixel types.
    ClIpBinarizeGlobal();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    void QueryParameters(ClParameterInterface& List) override;
    /// "Thr<threshold> [<black>;<white>]", with 4 digits behind the point for an input of a
    /// floating-point type. Throws "String-Length exceeded available size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    /// True with an input for which both checks hold, else the answer of the base.
    bool CanApply() override;
    /// Returns -35 where a check fails, -101 for an unknown pixel type.
    long DoProcess(ClImage& rIn, ClImage& rOut) override;
    /// White where `dValue` is at least the threshold of this run, else black; so black where
    /// either is not a number.
    double GetValue(ClImage& rIn, ClImage& rOut, double dValue) override;

    /// Whether black, white and threshold, as far as they are set, lie between the ends of the
    /// input's range, whichever of these is the greater.
    virtual bool CheckBlackWhite();
    virtual bool CheckThreshold();

    long ApplyParam(ClImage& rIn, ClImage& rOut, double dThreshold);
    using ClIp1to1Base::ApplyParam;

    double m_dThreshold = MathConst::cdNaN;
    double m_dBlack = MathConst::cdNaN;
    double m_dWhite = MathConst::cdNaN;
    double m_dThresholdUsed = MathConst::cdNaN; ///< in force during one run
    double m_dBlackUsed = MathConst::cdNaN;
    double m_dWhiteUsed = MathConst::cdNaN;

private:
    bool IsUnsetOrInRange(double dValue) const;
    template <class T>
    void Binarize(const ClImage& rIn, ClImage& rOut) const;
};
