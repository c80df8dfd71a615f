// The frame that takes every pixel type and converts, `ClIp1to1Base`; the other one is in
// Ip1to1Base.cpp.

#include "ImageProcessing/Ip1to1Base.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/Walks/SampleWalk.h"

ClIp1to1Base::ClIp1to1Base() {
    ClIp1to1Base::SetParametersToDefault();
}

void ClIp1to1Base::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nOutImageType = ClImage::eTypeDefault;
}

void ClIp1to1Base::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddOutImage(List, "OutImage", m_pOutImage, "Out: Output Image");
    AddPixelType(List, "OutImageType", m_nOutImageType, "In: OutImage Datatype");
}

void ClIp1to1Base::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage, "In: Original Image");
    AddOutImage(Container, "pOutImage", m_pOutImage, "Out: Output Image");
    AddPixelType(Container, "OutImageType", m_nOutImageType, "In: OutImage Datatype");
}

double ClIp1to1Base::GetValue(ClImage&, ClImage&, double) {
    return 0.0;
}

long ClIp1to1Base::Process() {
    if (m_pInImage == nullptr || m_pInImage->Data() == nullptr || m_pOutImage == nullptr)
        return QMT_ERROR_BITMAP_PTR;
    if (m_bInPlace && m_nOutImageType == ClImage::eTypeDefault &&
        m_pInImage->DataType() == ClImage::eTypeDefault) { // no valid image has this type
        if (m_pOutImage != m_pInImage)
            m_pOutImage->New(*m_pInImage);
        return DoProcess(*m_pInImage, *m_pOutImage);
    }
    return ProcessToTarget();
}

long ClIp1to1Base::ProcessToTarget() {
    ClImage Local;
    const bool bSame = m_pOutImage == m_pInImage;
    ClImage& Target = bSame ? Local : *m_pOutImage;
    Target.NewWithType(*m_pInImage, m_nOutImageType == ClImage::eTypeDefault
                                        ? m_pInImage->DataType()
                                        : m_nOutImageType);
    const long nResult = DoProcess(*m_pInImage, Target);
    if (bSame && nResult == 0)
        m_pOutImage->Swap(Local);
    return nResult;
}

long ClIp1to1Base::DoProcess(ClImage& In, ClImage& Out) {
    if (m_bUseLUT && In.DataType() == ClImage::eUInt8)
        return DispatchLUT<unsigned char>(In, Out);
    return DispatchPixelType(In.DataType(), [&](auto Tag) {
        return DispatchDefault<typename decltype(Tag)::Type>(In, Out);
    });
}

template <class TIn>
long ClIp1to1Base::DispatchDefault(ClImage& In, ClImage& Out) {
    return DispatchPixelType(Out.DataType(), [&](auto Tag) {
        return Default<TIn, typename decltype(Tag)::Type>(In, Out);
    });
}

template <class TIn, class TOut>
long ClIp1to1Base::Default(ClImage& In, ClImage& Out) {
    WalkValues<TIn, TOut>(In, Out, [&](double dValue) { return GetValue(In, Out, dValue); });
    return 0;
}

template <class TIn>
long ClIp1to1Base::DispatchLUT(ClImage& In, ClImage& Out) {
    return DispatchPixelType(Out.DataType(), [&](auto Tag) {
        return ProcessLUT<TIn, typename decltype(Tag)::Type>(In, Out);
    });
}

template <class TIn, class TOut>
long ClIp1to1Base::ProcessLUT(ClImage& In, ClImage& Out) {
    WalkTable<TIn, TOut>(In, Out, [&](double dValue) { return GetValue(In, Out, dValue); });
    return 0;
}

long ClIp1to1Base::ApplyParam(ClImage& Image) {
    return ApplyParam(Image, Image, ClImage::eTypeDefault);
}

long ClIp1to1Base::ApplyParam(ClImage& In, ClImage& Out, unsigned char nOutType) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    m_nOutImageType = nOutType;
    return Apply();
}
