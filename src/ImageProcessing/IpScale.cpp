#include "ImageProcessing/IpScale.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/RangeClip.h"
#include "ImageProcessing/SettingsText.h"
#include "ImageProcessing/Walks/SampleWalk.h"
#include "Tools/Allocate.h"

namespace {

constexpr const char* cszScaleFactor = "In: Grey Value Multiplier";

} // namespace

ClIpScale::ClIpScale() {
    m_bUseLUT = true;
    m_bInPlace = false;
    EnableAllTypes();
    ClIpScale::SetParametersToDefault();
}

ClProcessorBase* ClIpScale::Create() {
    return Vek::NewObject<ClIpScale>();
}

const char* ClIpScale::Name() const {
    return "ClIpScale";
}

void ClIpScale::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_dScaleFactor = 1.0;
}

void ClIpScale::QueryParameters(ClParameterInterface& List) {
    ClIp1to1Base::QueryParameters(List);
    AddNumber(List, "ScaleFactor", m_dScaleFactor, cszScaleFactor);
}

void ClIpScale::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.AddNumeric("dScaleFactor", &m_dScaleFactor, cszScaleFactor);
}

long ClIpScale::ParameterString(char* pBuffer, unsigned long nSize) {
    const bool bFloat = m_pInImage != nullptr && ClImage::IsFloat(m_pInImage->DataType());
    return WriteSettings(pBuffer, nSize, "ScaleFactor = %.*f", bFloat ? 4 : 0, m_dScaleFactor);
}

long ClIpScale::DoProcess(ClImage& In, ClImage& Out) {
    if (In.DataType() != Out.DataType())
        return cnUnknownPixelType;
    if (In.DataType() == ClImage::eUInt8)
        return ProcessLUT<unsigned char>(In, Out);
    return DispatchPixelType(In.DataType(), [&](auto Tag) {
        Scale<typename decltype(Tag)::Type>(In, Out);
        return 0L;
    });
}

template <class T>
void ClIpScale::Scale(const ClImage& In, ClImage& Out) const {
    if (m_dScaleFactor == 1.0) {
        Out = In;
        return;
    }
    const ClRangeClip clip(Out);
    WalkSamples<T, T>(In, Out, [&](T value) {
        return SampleFromDouble<T>(clip(static_cast<double>(value) * m_dScaleFactor));
    });
}

double ClIpScale::GetValue(ClImage&, ClImage& Out, double dValue) {
    return ClRangeClip(Out)(dValue * m_dScaleFactor);
}

long ClIpScale::ApplyParam(ClImage& Image, double dValue) {
    return ApplyParam(Image, Image, dValue);
}

long ClIpScale::ApplyParam(ClImage& In, ClImage& Out, double dValue) {
    m_dScaleFactor = dValue;
    return ApplyParam(In, Out);
}
