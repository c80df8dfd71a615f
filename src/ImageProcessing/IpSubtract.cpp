#include "ImageProcessing/IpSubtract.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/RangeClip.h"
#include "ImageProcessing/Walks/PairWalk.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <utility>

namespace {

constexpr TpNamedValues<ClIpSubtract::EDataRangeType> caDataRanges = {
    {ClIpSubtract::DataDependent, "DataDependent"},
    {ClIpSubtract::InputDependent, "InputDependent"},
    {ClIpSubtract::UserDependent, "UserDependent"}};

/// A sample of a pixel type made from a value.
double AsSample(unsigned char nType, double dValue) {
    DispatchPixelType(nType, [&](auto Tag) {
        dValue = static_cast<double>(SampleFromDouble<typename decltype(Tag)::Type>(dValue));
        return 0L;
    });
    return dValue;
}

/// Bounds of integer samples are integers of their type, those of real ones stay in double.
ClRangeClip ClipOf(unsigned char nType, double dLower, double dUpper) {
    if (ClImage::IsFloat(nType))
        return {dLower, dUpper};
    return {AsSample(nType, dLower), AsSample(nType, dUpper)};
}

} // namespace

ClIpSubtract::ClIpSubtract() {
    ClIpSubtract::SetParametersToDefault();
}

ClProcessorBase* ClIpSubtract::Create() {
    return Vek::NewObject<ClIpSubtract>();
}

const char* ClIpSubtract::Name() const {
    return "ClIpSubtract";
}

void ClIpSubtract::SetParametersToDefault() {
    ClIp2to1Base::SetParametersToDefault();
    m_dLowerBound = 0.0;
    m_dUpperBound = 0.0;
    m_eDataRange = DataDependent;
}

void ClIpSubtract::QueryParameters(ClParameterInterface& List) {
    ClIp2to1Base::QueryParameters(List);
    AddNumber(List, "LowerBound", m_dLowerBound);
    AddNumber(List, "UpperBound", m_dUpperBound);
    AddEnum(List, "Data Output Range", m_eDataRange, caDataRanges);
}

void ClIpSubtract::PublishParameters(ClParameterContainer& Container) {
    ClIp2to1Base::PublishParameters(Container);
    Container.AddNumeric("LowerBound", &m_dLowerBound);
    Container.AddNumeric("UpperBound", &m_dUpperBound);
    Container.AddEnum("Data Output Range", &m_eDataRange, caDataRanges);
}

long ClIpSubtract::DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                             long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride,
                             long nIn2Offset, long nIn2Stride, long nOutOffset, long nOutStride) {
    const StPairArea Area{In1,        In2,        Out,        nWidth,     nHeight,
                          nPlanes1,   nPlanes2,   nIn1Offset, nIn1Stride, nIn2Offset,
                          nIn2Stride, nOutOffset, nOutStride};
    if (!ArePixelTypes(In1, In2, Out) || m_eDataRange < DataDependent ||
        m_eDataRange > UserDependent)
        return QMT_ERROR_INTERNAL;
    return UsesLUT(Area) ? ProcessLUT(Area) : Default(Area);
}

long ClIpSubtract::Default(const StPairArea& Area) const {
    if (PlanesPerSample(Area.m_nPlanes1, Area.m_nPlanes2) == 0)
        return 0;
    const ClRangeClip clip = FixBounds(Area);
    if (Area.IsEightBit() && clip.IsEightBit() && Area.m_nPlanes1 == Area.m_nPlanes2)
        WalkPairPlanes(Area, Kernels::Subtract);
    else // doubles hold the difference of any two integer samples
        WalkPairs(Area, [&](double a, double b) { return clip(a - b); });
    return 0;
}

ClRangeClip ClIpSubtract::FixBounds(const StPairArea& Area) const {
    const unsigned char nType = Area.m_rOut.DataType();
    double dLower = Area.m_rOut.Black();
    double dUpper = Area.m_rOut.White();
    switch (m_eDataRange) {
    case InputDependent:
        return ClipOf(nType, Area.m_rIn1.Black() - Area.m_rIn2.White(),
                      Area.m_rIn1.White() - Area.m_rIn2.Black());
    case UserDependent:
        Area.m_rOut.SetBlack(AsSample(nType, m_dLowerBound));
        Area.m_rOut.SetWhite(AsSample(nType, m_dUpperBound));
        return ClipOf(nType, m_dLowerBound, m_dUpperBound);
    default:
        if (dUpper < dLower)
            std::swap(dLower, dUpper);
        return ClipOf(nType, dLower, dUpper);
    }
}

double ClIpSubtract::GetValue(ClImage&, ClImage&, ClImage& Out, double dValue1, double dValue2) {
    return ClRangeClip(Out)(dValue1 - dValue2);
}
