#include "ImageProcessing/IpFilterMin.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "ImageProcessing/RankWalk.h"
#include "Tools/Allocate.h"

namespace {

constexpr long cnEvenWidthLine = 367;
constexpr long cnNoInImageLine = 203;
constexpr long cnNoOutImageLine = 204;

/// Without a row in the catalogue, as in the frame.
constexpr long cnUnknownMode = -6;

} // namespace

ClProcessorBase* ClIpFilterMin::Create() {
    return Vek::NewObject<ClIpFilterMin>();
}

const char* ClIpFilterMin::Name() const {
    return "ClIpFilterMin";
}

void ClIpFilterMin::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddOutImage(List, "OutImage", m_pOutImage, "Out: Rescaled Image");
    AddNumber(List, "FilterWidth", m_nFilterWidth, "In: Filter Width", 3.0, 127.0);
}

long ClIpFilterMin::DoProcess() {
    if (m_nFilterWidth % 2 == 0)
        throw ClException("Filter width has to be odd.", QMT_ERROR_INVALID_PARAMETER, true,
                          VEK_FILE, cnEvenWidthLine);
    if (m_pInImage == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    return DispatchPixelType(m_pInImage->DataType(), [this](auto Tag) {
        using T = typename decltype(Tag)::Type;
        return ProcessT<T>();
    });
}

template <class T>
long ClIpFilterMin::ProcessT() {
    if (m_pInImage->Data() == nullptr && m_pInImage->SizeBytes() > 0)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    switch (m_nMode) {
    case ModeX:
        return ProcessT_X<T>();
    case ModeY:
        return ProcessT_Y<T>();
    case ModeXY:
        return ProcessT_XY<T>();
    case ModeDirected:
    case ModeDirectedOrtho:
        return QMT_ERROR_FORMAT_NOTSUPPORTED;
    default:
        throw ClExTessarin(cnUnknownMode, VEK_HERE);
    }
}

void ClIpFilterMin::CheckImages() const {
    if (m_pInImage == nullptr)
        throw ClException("m_pInImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_FILE,
                          cnNoInImageLine);
    if (m_pOutImage == nullptr)
        throw ClException("m_pOutImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_FILE,
                          cnNoOutImageLine);
}

template <class Walk>
long ClIpFilterMin::Run(Walk walk) {
    CheckImages();
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage& In, ClImage& Out) {
        walk(In, HalfWidth(m_nFilterWidth), Out);
        return 0L;
    });
}

template <class T>
long ClIpFilterMin::ProcessT_X() {
    return Run(ExtremesAlongX<EExtreme::eMin, T>);
}

template <class T>
long ClIpFilterMin::ProcessT_Y() {
    return Run(ExtremesAlongY<EExtreme::eMin, T>);
}

template <class T>
long ClIpFilterMin::ProcessT_XY() {
    return Run(ExtremesAlongXY<EExtreme::eMin, T>);
}

long ClIpFilterMin::ApplyParam(ClImage& In, ClImage& Out, long nWidth, long nMode) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    m_nFilterWidth = nWidth;
    m_nMode = nMode;
    return Apply();
}
