#include "ImageProcessing/IpJoinPlanes.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "Tools/Allocate.h"
#include "Tools/MathConst.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

/// A plane count that stands for a content that cannot be joined.
constexpr int cnNoPlanes = -1;

/// Copies dense samples to every `nStep`-th place.
template <class T>
void ScatterSamples(const T* pFrom, int nCount, int nStep, T* pTo) {
    for (int i = 0; i < nCount; ++i, pTo += nStep)
        *pTo = pFrom[i];
}

template <class T>
void FillSamples(T value, int nCount, int nStep, T* pTo) {
    for (int i = 0; i < nCount; ++i, pTo += nStep)
        *pTo = value;
}

template <class T>
T FillValue(double dColor) {
    if (std::isnan(dColor))
        return T(0);
    return SampleFromDouble<T>(dColor);
}

} // namespace

ClIpJoinPlanes::ClIpJoinPlanes() {
    ClIpJoinPlanes::SetParametersToDefault();
}

ClProcessorBase* ClIpJoinPlanes::Create() {
    return Vek::NewObject<ClIpJoinPlanes>();
}

const char* ClIpJoinPlanes::Name() const {
    return "ClIpJoinPlanes";
}

void ClIpJoinPlanes::SetParametersToDefault() {
    std::fill(std::begin(m_apInPlane), std::end(m_apInPlane), nullptr);
    std::fill(std::begin(m_adInFillcolors), std::end(m_adInFillcolors), MathConst::cdNaN);
    m_pOutImage = nullptr;
    m_eOutContent = ClImage::eUnknown;
    m_bFillEmptyPlanes = true;
    m_nPlanes = 0;
}

void ClIpJoinPlanes::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInPlane[0]", m_apInPlane[0]);
    AddInImage(Container, "pInPlane[1]", m_apInPlane[1]);
    AddInImage(Container, "pInPlane[2]", m_apInPlane[2]);
    AddInImage(Container, "pInPlane[3]", m_apInPlane[3]);
    Container.AddNumeric("dInFillcolors[0]", &m_adInFillcolors[0]);
    Container.AddNumeric("dInFillcolors[1]", &m_adInFillcolors[1]);
    Container.AddNumeric("dInFillcolors[2]", &m_adInFillcolors[2]);
    Container.AddNumeric("dInFillcolors[3]", &m_adInFillcolors[3]);
    Container.AddEnum("eOutContent", &m_eOutContent,
                      {{ClImage::eUnknown, "eUnknown"},
                       {ClImage::eGrayscale, "eGrayscale"},
                       {ClImage::eRGB, "eRGB"},
                       {ClImage::eRGBA, "eRGBA"},
                       {ClImage::eHSV, "eHSV"},
                       {ClImage::eXYZ, "eXYZ"},
                       {ClImage::eCIELab, "eCIELab"},
                       {ClImage::eCIELUV, "eCIELUV"}});
    Container.AddBool("bFillEmptyPlanes", &m_bFillEmptyPlanes);
    AddOutImage(Container, "pOutImage", m_pOutImage, "Out: Joined Image");
    Container.Keep(&m_nPlanes);
}

int ClIpJoinPlanes::PlaneCount() const {
    switch (m_eOutContent) {
    case ClImage::eUnknown:
        return std::max(m_nPlanes, 0);
    case ClImage::eGrayscale:
        return 1;
    case ClImage::eRGB:
    case ClImage::eHSV:
    case ClImage::eCIELUV:
        return 3;
    case ClImage::eRGBA:
        return 4;
    default:
        return cnNoPlanes;
    }
}

const ClImage* ClIpJoinPlanes::FirstInput(int nPlanes) const {
    for (int p = 0; p < nPlanes; ++p)
        if (m_apInPlane[p] != nullptr)
            return m_apInPlane[p];
    return nullptr;
}

bool ClIpJoinPlanes::InputsMatch(const ClImage& First, int nPlanes) const {
    return std::all_of(m_apInPlane, m_apInPlane + nPlanes, [&](const ClImage* pIn) {
        return pIn == nullptr ||
               (pIn->Planes() == 1 && pIn->DataType() == First.DataType() &&
                pIn->Width() == First.Width() && pIn->Height() == First.Height() &&
                (pIn->Data() != nullptr || pIn->SizeBytes() == 0));
    });
}

long ClIpJoinPlanes::Process() {
    if (m_pOutImage == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    const int nPlanes = PlaneCount();
    if (nPlanes == 0)
        return 0;
    if (nPlanes < 0 || nPlanes > cnMaxPlanes)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    const ClImage* pFirst = FirstInput(nPlanes);
    if (pFirst == nullptr || !InputsMatch(*pFirst, nPlanes))
        return QMT_ERROR_PARAM_OUT_OF_RANGE;

    if (std::find(m_apInPlane, m_apInPlane + nPlanes, m_pOutImage) == m_apInPlane + nPlanes)
        return Join(*pFirst, nPlanes, *m_pOutImage);
    ClImage Local; // the output is read until all planes are done
    const long nResult = Join(*pFirst, nPlanes, Local);
    if (nResult != 0)
        return nResult;
    Local.SetAttribute(m_pOutImage->Attribute());
    m_pOutImage->Swap(Local);
    return 0;
}

long ClIpJoinPlanes::Join(const ClImage& First, int nPlanes, ClImage& Out) const {
    return DispatchPixelType(First.DataType(), [&](auto Tag) {
        Out.NewWithType(First.DataType(), First.Width(), First.Height(), nPlanes, First.PelsX(),
                        First.PelsY());
        if (m_eOutContent != ClImage::eUnknown)
            Out.SetContent(m_eOutContent);
        for (int y = 0; y < Out.Height(); ++y)
            JoinLine<typename decltype(Tag)::Type>(y, Out);
        return 0L;
    });
}

template <class T>
void ClIpJoinPlanes::JoinLine(int y, ClImage& Out) const {
    for (int p = 0; p < Out.Planes(); ++p) {
        T* pTo = Out.Line<T>(y) + p;
        if (m_apInPlane[p] != nullptr)
            ScatterSamples(m_apInPlane[p]->Line<T>(y), Out.Width(), Out.Planes(), pTo);
        else if (m_bFillEmptyPlanes)
            FillSamples(FillValue<T>(m_adInFillcolors[p]), Out.Width(), Out.Planes(), pTo);
    }
}

long ClIpJoinPlanes::ApplyParam(ClImage& Out, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2,
                                ClImage* pPlane3) {
    m_pOutImage = &Out;
    m_apInPlane[0] = pPlane0;
    m_apInPlane[1] = pPlane1;
    m_apInPlane[2] = pPlane2;
    m_apInPlane[3] = pPlane3;
    return Apply();
}
