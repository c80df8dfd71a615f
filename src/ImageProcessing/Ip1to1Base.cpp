#include "ImageProcessing/Ip1to1Base.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/Walks/SampleWalk.h"

// The frame that admits types and keeps them; the one that converts is in Ip1to1BaseConverting.cpp.

namespace NewIpBase {

namespace {

void CheckPointer(const void* pPointer, const char* szText, long nLine) {
    if (pPointer == nullptr)
        throw ClException(szText, QMT_ERROR_BAD_POINTER, true, VEK_FILE, nLine);
}

} // namespace

ClIp1to1Base::ClIp1to1Base() {
    ClIp1to1Base::SetParametersToDefault();
}

void ClIp1to1Base::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
}

void ClIp1to1Base::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddOutImage(List, "OutImage", m_pOutImage, "Out: Output Image");
}

void ClIp1to1Base::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage, "In: Original Image");
    AddOutImage(Container, "pOutImage", m_pOutImage, "Out: Output Image");
}

void ClIp1to1Base::CheckInOutImageTypes() {
    CheckPointer(m_pInImage, "Input image not assigned", __LINE__);
    CheckTypeAllowed(m_pInImage);
}

void ClIp1to1Base::AllocateOutImage(ClImage& Out) {
    Out.New(*m_pInImage);
}

double ClIp1to1Base::GetValue(ClImage&, ClImage&, double) {
    return 0.0;
}

long ClIp1to1Base::Process() {
    CheckPointer(m_pInImage, "m_pInImage is not set", __LINE__);
    CheckPointer(m_pOutImage, "m_pOutImage is not set", __LINE__);
    CheckPointer(m_pInImage->Data(), "m_pInImage->Data() is not set", __LINE__);
    return m_bInPlace ? ProcessInPlace() : ProcessToTarget();
}

long ClIp1to1Base::ProcessInPlace() {
    if (m_pOutImage == m_pInImage)
        return DoProcess(*m_pInImage, *m_pInImage);
    AllocateOutImage(*m_pOutImage);
    return DoProcess(*m_pInImage, *m_pOutImage);
}

/// An operator never reads what it has written: the image becomes the result only when the
/// result is complete.
long ClIp1to1Base::ProcessToTarget() {
    ClImage Local;
    const bool bSame = m_pOutImage == m_pInImage;
    ClImage& Target = bSame ? Local : *m_pOutImage;
    AllocateOutImage(Target);
    const long nResult = DoProcess(*m_pInImage, Target);
    if (bSame && nResult == 0)
        m_pOutImage->Swap(Local);
    return nResult;
}

long ClIp1to1Base::DoProcess(ClImage& In, ClImage& Out) {
    if (In.DataType() != Out.DataType())
        return cnUnknownPixelType;
    if (m_bUseLUT && In.DataType() == ClImage::eUInt8)
        return ProcessLUT<unsigned char>(In, Out);
    return DispatchPixelType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        WalkValues<T, T>(In, Out, [&](double dValue) { return GetValue(In, Out, dValue); });
        return 0L;
    });
}

template <class T>
long ClIp1to1Base::ProcessLUT(ClImage& In, ClImage& Out) {
    WalkTable<T, T>(In, Out, [&](double dValue) { return GetValue(In, Out, dValue); });
    return 0;
}

template long ClIp1to1Base::ProcessLUT<unsigned char>(ClImage& In, ClImage& Out);

long ClIp1to1Base::ApplyParam(ClImage& Image) {
    return ApplyParam(Image, Image);
}

long ClIp1to1Base::ApplyParam(ClImage& In, ClImage& Out) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    return Apply();
}

} // namespace NewIpBase
