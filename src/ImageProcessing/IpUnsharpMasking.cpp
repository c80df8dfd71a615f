#include "ImageProcessing/IpUnsharpMasking.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/Kernels/Sharpen.h"
#include "Tools/Allocate.h"

ClIpUnsharpMasking::ClIpUnsharpMasking() {
    EnableDataType(ClImage::eUInt8);
    ClIpUnsharpMasking::SetParametersToDefault();
}

ClProcessorBase* ClIpUnsharpMasking::Create() {
    return Vek::NewObject<ClIpUnsharpMasking>();
}

const char* ClIpUnsharpMasking::Name() const {
    return "ClIpUnsharpMasking";
}

void ClIpUnsharpMasking::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_nLowPassFilterWidth = 0;
    m_dGaussSigma = 2.0;
    m_dAmplificationFactor = 1.0;
    m_nThreshold = 0;
    m_nMode = ClIpFilterBase::ModeXY;
}

void ClIpUnsharpMasking::QueryParameters(ClParameterInterface& List) {
    ClIp1to1Base::QueryParameters(List);
    AddNumber(List, "LowPassFilterWidth", m_nLowPassFilterWidth, "In: Width of gauss filter.");
    AddNumber(List, "GaussSigma", m_dGaussSigma, "In: Sigma of the gauss filter.");
    AddNumber(List, "AmplificationFactor", m_dAmplificationFactor,
              "In: Factor for amplifying the edge image.");
    AddNumber(List, "Threshold", m_nThreshold, "In: Threshold for suppressing noise.");
    AddFilterMode(List, "nMode", m_nMode);
}

void ClIpUnsharpMasking::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.AddNumeric("nLowPassFilterWidth", &m_nLowPassFilterWidth,
                         "In: Width of gauss filter.");
    Container.AddNumeric("dGaussSigma", &m_dGaussSigma, "In: Sigma of the gauss filter.");
    Container.AddNumeric("dAmplificationFactor", &m_dAmplificationFactor,
                         "In: Factor for amplifying the edge image.");
    Container.AddNumeric("nThreshold", &m_nThreshold, "In: Threshold for suppressing noise.");
    AddFilterMode(Container, "nMode", m_nMode);
}

/// Whether the low pass and the difference can be taken in one pass, as Kernels::ClLinearFilter
/// does.
bool ClIpUnsharpMasking::IsAlongColumns(const ClImage& rIn, const ClImage& rOut) const {
    return m_nMode == ClIpFilterBase::ModeY && m_dAmplificationFactor == 1.0 && m_nThreshold == 0 &&
           &rIn != &rOut && rIn.DataType() == ClImage::eUInt8 && rIn.Planes() == 1 &&
           rIn.SizeBytes() > 0;
}

long ClIpUnsharpMasking::SharpenColumns(ClImage& rIn, ClImage& rOut) const {
    ClIpFilterGauss Gauss;
    Gauss.m_nMode = m_nMode;
    Gauss.m_dSigma = m_dGaussSigma;
    Gauss.m_nFilterWidth = m_nLowPassFilterWidth;
    Gauss.m_pInImage = &rIn;
    Gauss.m_pOutImage = &rOut;
    const long nResult = Gauss.Initialize();
    if (nResult == 0)
        Gauss.SharpenY(rIn, rOut);
    return nResult;
}

long ClIpUnsharpMasking::DoProcess(ClImage& rIn, ClImage& rOut) {
    rOut.New(rIn);
    if (IsAlongColumns(rIn, rOut))
        return SharpenColumns(rIn, rOut);
    rOut = static_cast<unsigned char>(0);
    ClImage LowPass;
    ClIpFilterGauss Gauss;
    Gauss.m_nMode = m_nMode;
    const long nResult = Gauss.ApplyParam(rIn, LowPass, m_dGaussSigma, m_nLowPassFilterWidth);
    if (nResult != 0)
        return nResult;
    const long nSamples = static_cast<long>(rIn.Width()) * rIn.Planes();
    for (int y = 0; y < rIn.Height(); ++y)
        Kernels::SharpenLine(rIn.LineData(y), LowPass.LineData(y), nSamples, m_dAmplificationFactor,
                             m_nThreshold, rOut.LineData(y));
    return 0;
}

long ClIpUnsharpMasking::ApplyParam(ClImage& rIn, ClImage& rOut, long nWidth) {
    m_nLowPassFilterWidth = nWidth;
    return ClIp1to1Base::ApplyParam(rIn, rOut);
}
