#include "ImageProcessing/IpOffset.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/RangeClip.h"
#include "ImageProcessing/SettingsText.h"
#include "ImageProcessing/Walks/SampleWalk.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* cszOffset = "In: Offset Value";

/// The offset as it is added to samples of type `T`. Within the limits every sum with a sample is
/// an exact double, and beyond them it would be clipped all the same.
template <class T>
double OffsetOf(double dOffset) {
    if constexpr (std::is_floating_point_v<T>) {
        return dOffset;
    } else {
        constexpr double cdLimit = 4294967296.0;
        return std::isnan(dOffset) ? 0.0 : std::trunc(std::clamp(dOffset, -cdLimit, cdLimit));
    }
}

} // namespace

ClIpOffset::ClIpOffset() {
    EnableAllTypes();
    ClIpOffset::SetParametersToDefault();
}

ClProcessorBase* ClIpOffset::Create() {
    return Vek::NewObject<ClIpOffset>();
}

const char* ClIpOffset::Name() const {
    return "ClIpOffset";
}

void ClIpOffset::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_dOffset = 0.0;
}

void ClIpOffset::QueryParameters(ClParameterInterface& List) {
    ClIp1to1Base::QueryParameters(List);
    AddNumber(List, "Offset", m_dOffset, cszOffset, -255.0, 255.0);
}

void ClIpOffset::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.AddNumeric("Offset", &m_dOffset, cszOffset);
}

long ClIpOffset::ParameterString(char* pBuffer, unsigned long nSize) {
    const bool bFloat = m_pInImage != nullptr && ClImage::IsFloat(m_pInImage->DataType());
    return WriteSettings(pBuffer, nSize, "Offset = %.*f", bFloat ? 4 : 0, m_dOffset);
}

bool ClIpOffset::CanApply() {
    return m_pInImage != nullptr;
}

long ClIpOffset::DoProcess(ClImage& In, ClImage& Out) {
    if (In.DataType() != Out.DataType())
        return cnUnknownPixelType;
    if (In.DataType() == ClImage::eUInt8)
        return ProcessLUT<unsigned char>(In, Out);
    return DispatchPixelType(In.DataType(), [&](auto Tag) {
        Offset<typename decltype(Tag)::Type>(In, Out);
        return 0L;
    });
}

template <class T>
void ClIpOffset::Offset(const ClImage& In, ClImage& Out) const {
    const double dOffset = OffsetOf<T>(m_dOffset);
    if (dOffset == 0.0) {
        Out = In;
        return;
    }
    const ClRangeClip clip(Out);
    WalkSamples<T, T>(In, Out, [&](T value) {
        return SampleFromDouble<T>(clip(static_cast<double>(value) + dOffset));
    });
}

double ClIpOffset::GetValue(ClImage&, ClImage& Out, double dValue) {
    return ClRangeClip(Out)(dValue + m_dOffset);
}

long ClIpOffset::ApplyParam(ClImage& Image, double dValue) {
    return ApplyParam(Image, Image, dValue);
}

long ClIpOffset::ApplyParam(ClImage& In, ClImage& Out, double dValue) {
    m_dOffset = dValue;
    return ApplyParam(In, Out);
}
