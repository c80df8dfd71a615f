#include "ImageProcessing/IpFilterBase.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/ImageSwitch.h"
#include "ImageProcessing/IpJoinPlanes.h"
#include "ImageProcessing/IpSplitPlanes.h"
#include "Tools/Exception.h"

#include <algorithm>
#include <cstdio>

namespace {

/// The line that exceptions about an unknown mode name.
constexpr long cnUnknownModeLine = 178;

} // namespace

ClIpFilterBase::ClIpFilterBase() {
    ClIpFilterBase::SetParametersToDefault();
}

void ClIpFilterBase::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nFilterWidth = 3;
    m_nMode = ModeXY;
    m_pInDxImage = nullptr;
    m_pInDyImage = nullptr;
}

void ClIpFilterBase::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddOutImage(List, "OutImage", m_pOutImage, "Out: Output Image");
    AddNumber(List, "nFilterWidth", m_nFilterWidth, "in: Filter Width");
    AddFilterMode(List, "eFilterWidth", m_nMode, "in: Filter Width");
    AddInImage(List, "InDxImage", m_pInDxImage, "in: Dx Image");
    AddInImage(List, "InDyImage", m_pInDyImage, "in: Dy Image");
}

void ClIpFilterBase::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddOutImage(Container, "pOutImage", m_pOutImage);
    Container.AddNumeric("nFilterWidth", &m_nFilterWidth);
    AddFilterMode(Container, "nMode", m_nMode);
    AddInImage(Container, "pInDxImage", m_pInDxImage);
    AddInImage(Container, "pInDyImage", m_pInDyImage);
}

long ClIpFilterBase::ParameterString(char* pBuffer, unsigned long nSize) {
    if (pBuffer == nullptr)
        nSize = 0;
    const char* szSign = m_pInImage == nullptr                       ? "Unknown"
                         : ClImage::IsSigned(m_pInImage->DataType()) ? "Signed"
                                                                     : "Unsigned";
    const int nLength =
        std::snprintf(pBuffer, nSize, "W[%ld] M[%s%s%s%s] S[%s]", m_nFilterWidth,
                      (m_nMode & ModeX) != 0 ? "X" : "", (m_nMode & ModeY) != 0 ? "Y" : "",
                      (m_nMode & ModeDirected) != 0 ? "Directed" : "",
                      (m_nMode & ModeDirectedOrtho) != 0 ? "DirectedOrtho" : "", szSign);
    if (nLength < 0 || static_cast<unsigned long>(nLength) >= nSize)
        throw ClException("String-Length exceeded available size", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    return nLength;
}

bool ClIpFilterBase::HasInput() const {
    return m_pInImage != nullptr && (m_pInImage->Data() != nullptr || m_pInImage->SizeBytes() == 0);
}

bool ClIpFilterBase::HasImages() const {
    return HasInput() && m_pOutImage != nullptr;
}

long ClIpFilterBase::HalfWidth() const {
    return std::max(m_nFilterWidth, 0L) / 2;
}

long ClIpFilterBase::Process() {
    return m_nFilterWidth <= 1 ? CopyInput() : ProcessPlanes();
}

long ClIpFilterBase::CopyInput() {
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    *m_pOutImage = *m_pInImage;
    return 0;
}

long ClIpFilterBase::ProcessPlanes() {
    if (m_pInImage != nullptr && m_pInImage->Planes() >= 2) {
        const long nResult = ProcessMultiPlane();
        return HasImages() ? 0 : nResult;
    }
    if (m_pInImage != nullptr && m_pInImage == m_pOutImage)
        return QMT_ERROR_BITMAP_PTR;
    return DoProcess();
}

long ClIpFilterBase::ProcessMultiPlane() {
    if (!HasInput())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    ClImageSwitch InImage(m_pInImage);
    ClImageSwitch OutImage(m_pOutImage);
    ClImage& In = *InImage.Own();
    ClImage aPlane[ClIpSplitPlanes::cnMaxPlanes];
    ClImage aFiltered[ClIpSplitPlanes::cnMaxPlanes];
    ClIpSplitPlanes Split;
    long nResult = Split.ApplyParam(In, &aPlane[0], &aPlane[1], &aPlane[2], &aPlane[3]);
    for (int p = 0; p < In.Planes() && nResult == 0; ++p) {
        InImage.Set(aPlane[p]);
        OutImage.Set(aFiltered[p]);
        nResult = DoProcess();
        aPlane[p].Delete();
    }
    if (nResult != 0)
        return nResult;
    if (OutImage.Own() == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;

    ClImage Joined;
    ClIpJoinPlanes Join;
    Join.m_nPlanes = In.Planes();
    nResult = Join.ApplyParam(Joined, &aFiltered[0], &aFiltered[1], &aFiltered[2], &aFiltered[3]);
    if (nResult != 0)
        return nResult;
    Joined.SetContent(In.Content());
    Joined.SetAttribute(In.Attribute());
    OutImage.Own()->Swap(Joined);
    return 0;
}

long ClIpFilterBase::DoProcess() {
    if (m_pInImage == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    const bool bSigned = ClImage::IsSigned(m_pInImage->DataType());
    switch (m_nMode) {
    case ModeX:
        return bSigned ? ProcessSignedX() : ProcessX();
    case ModeY:
        return bSigned ? ProcessSignedY() : ProcessY();
    case ModeXY:
        return bSigned ? ProcessSignedXY() : ProcessXY();
    case ModeDirected:
    case ModeDirectedOrtho: {
        const bool bOrtho = m_nMode == ModeDirectedOrtho;
        return bSigned ? ProcessSignedDirected(bOrtho) : ProcessDirected(bOrtho);
    }
    default:
        throw ClExTessarin(cnUnknownMode, VEK_FILE, cnUnknownModeLine);
    }
}

long ClIpFilterBase::ProcessX() {
    return 0;
}

long ClIpFilterBase::ProcessY() {
    return 0;
}

template <class First, class Second>
long ClIpFilterBase::ProcessTwice(First first, Second second) {
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    ClImage Local;
    {
        const ClImageSwitch OutImage(m_pOutImage, Local);
        const long nResult = first();
        if (nResult != 0)
            return nResult;
    }
    const ClImageSwitch InImage(m_pInImage, Local);
    return second();
}

long ClIpFilterBase::ProcessXY() {
    return ProcessTwice([this] { return ProcessX(); }, [this] { return ProcessY(); });
}

long ClIpFilterBase::ProcessSignedX() {
    return 0;
}

long ClIpFilterBase::ProcessSignedY() {
    return 0;
}

long ClIpFilterBase::ProcessSignedXY() {
    return ProcessTwice([this] { return ProcessSignedX(); }, [this] { return ProcessSignedY(); });
}

long ClIpFilterBase::ProcessDirected(bool) {
    return 0;
}

long ClIpFilterBase::ProcessSignedDirected(bool) {
    return 0;
}

long ClIpFilterBase::CheckDirectionImages(const char* szFile, long nLine) const {
    if (m_pInDxImage == nullptr)
        throw ClException("m_pInDxImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (m_pInDyImage == nullptr)
        throw ClException("m_pInDyImage is not set", QMT_ERROR_BAD_POINTER, true, szFile, nLine);
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    for (const ClImage* pImage : {m_pInDxImage, m_pInDyImage})
        if (pImage->Planes() != 1 || pImage->BytesPerSample() != 1 ||
            pImage->Width() != m_pInImage->Width() || pImage->Height() != m_pInImage->Height() ||
            pImage->Data() == nullptr)
            return QMT_ERROR_PARAM_OUT_OF_RANGE;
    return 0;
}
