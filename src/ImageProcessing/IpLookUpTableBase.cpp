#include "ImageProcessing/IpLookUpTableBase.h"

#include "ImageProcessing/Kernels/LookUp.h"
#include "ImageProcessing/RequireBytes.h"
#include "Tools/Exception.h"

namespace {

/// As many as operators take apart and join again.
constexpr int cnMaxPlanes = 4;

} // namespace

ClIpLookUpTableBase::ClIpLookUpTableBase() {
    ClIpLookUpTableBase::SetParametersToDefault();
}

void ClIpLookUpTableBase::SetParametersToDefault() {}

void ClIpLookUpTableBase::CalculateLuT() {}

long ClIpLookUpTableBase::Initialize() {
    CalculateLuT();
    return 0;
}

long ClIpLookUpTableBase::CheckInImage() const {
    if (m_pInImage == nullptr || m_pInImage->Data() == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    RequireBytes(*m_pInImage, VEK_HERE);
    if (m_pInImage->Planes() > cnMaxPlanes)
        throw ClException("Image has more than 4 planes.", QMT_ERROR_PARAM_OUT_OF_RANGE, true,
                          VEK_HERE);
    return 0;
}

ClImage& ClIpLookUpTableBase::PrepareOutImage() const {
    if (m_pOutImage == nullptr || m_pOutImage == m_pInImage)
        return *m_pInImage;
    m_pOutImage->New(*m_pInImage);
    return *m_pOutImage;
}

long ClIpLookUpTableBase::Process() {
    const long nResult = CheckInImage();
    if (nResult != 0)
        return nResult;
    ClImage& Out = PrepareOutImage();
    const long nSamples = static_cast<long>(m_pInImage->Width()) * m_pInImage->Planes();
    if (m_pInImage->Height() > 0)
        Kernels::ClLookUp(m_aLuT).Run(m_pInImage->LineData(0), m_pInImage->LineStrideBytes(),
                                      nSamples, m_pInImage->Height(), Out.LineData(0),
                                      Out.LineStrideBytes());
    if (m_pInImage->Planes() > 1)
        Out.BlackWhiteFromType(Out.DataType());
    m_bLuTValid = true;
    return 0;
}

long ClIpLookUpTableBase::ApplyParam(ClImage& In, ClImage& Out) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    return Apply();
}

long ClIpLookUpTableBase::ApplyParam(ClImage& InOut) {
    return ApplyParam(InOut, InOut);
}
