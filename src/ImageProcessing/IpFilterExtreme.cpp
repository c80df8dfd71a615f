#include "ImageProcessing/IpFilterExtreme.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PixelTypeDispatch.h"

namespace {

/// The places that failures name: those of two files, which logs are searched for.
template <EExtreme eExtreme>
struct TpPlaces;

template <>
struct TpPlaces<EExtreme::eMax> {
    static constexpr const char* cszFile = "ImageProcessing/IpFilterMax";
    static constexpr long cnEvenWidth = 214;
    static constexpr long cnNoInImage = 302;
    static constexpr long cnNoOutImage = 303;
};

template <>
struct TpPlaces<EExtreme::eMin> {
    static constexpr const char* cszFile = "ImageProcessing/IpFilterMin";
    static constexpr long cnEvenWidth = 367;
    static constexpr long cnNoInImage = 203;
    static constexpr long cnNoOutImage = 204;
};

} // namespace

template <EExtreme eExtreme>
void TpIpFilterExtreme<eExtreme>::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddOutImage(List, "OutImage", m_pOutImage, "Out: Rescaled Image");
    AddNumber(List, "FilterWidth", m_nFilterWidth, "In: Filter Width", 3.0, 127.0);
}

template <EExtreme eExtreme>
long TpIpFilterExtreme<eExtreme>::DoProcess() {
    using Places = TpPlaces<eExtreme>;
    if (m_nFilterWidth % 2 == 0)
        throw ClException("Filter width has to be odd.", QMT_ERROR_INVALID_PARAMETER, true,
                          Places::cszFile, Places::cnEvenWidth);
    if (m_pInImage == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    return DispatchPixelType(m_pInImage->DataType(), [this](auto Tag) {
        using T = typename decltype(Tag)::Type;
        return this->template ProcessT<T>();
    });
}

template <EExtreme eExtreme>
template <class T>
long TpIpFilterExtreme<eExtreme>::ProcessT() {
    return ProcessAxes([this] { return ProcessT_X<T>(); }, [this] { return ProcessT_Y<T>(); },
                       [this] { return ProcessT_XY<T>(); }, TpPlaces<eExtreme>::cszFile, __LINE__);
}

template <EExtreme eExtreme>
void TpIpFilterExtreme<eExtreme>::CheckImages() const {
    using Places = TpPlaces<eExtreme>;
    if (m_pInImage == nullptr)
        throw ClException("m_pInImage is not set", QMT_ERROR_BAD_POINTER, true, Places::cszFile,
                          Places::cnNoInImage);
    if (m_pOutImage == nullptr)
        throw ClException("m_pOutImage is not set", QMT_ERROR_BAD_POINTER, true, Places::cszFile,
                          Places::cnNoOutImage);
}

template <EExtreme eExtreme>
template <class Walk>
long TpIpFilterExtreme<eExtreme>::Run(Walk walk) {
    CheckImages();
    if (!HasInput())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage& In, ClImage& Out) {
        walk(In, HalfWidth(), Out);
        return 0L;
    });
}

template <EExtreme eExtreme>
template <class T>
long TpIpFilterExtreme<eExtreme>::ProcessT_X() {
    return Run(ExtremesAlongX<eExtreme, T>);
}

template <EExtreme eExtreme>
template <class T>
long TpIpFilterExtreme<eExtreme>::ProcessT_Y() {
    return Run(ExtremesAlongY<eExtreme, T>);
}

template <EExtreme eExtreme>
template <class T>
long TpIpFilterExtreme<eExtreme>::ProcessT_XY() {
    return Run(ExtremesAlongXY<eExtreme, T>);
}

template <EExtreme eExtreme>
long TpIpFilterExtreme<eExtreme>::ApplyParam(ClImage& In, ClImage& Out, long nWidth, long nMode) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    m_nFilterWidth = nWidth;
    m_nMode = nMode;
    return Apply();
}

template class TpIpFilterExtreme<EExtreme::eMax>;
template class TpIpFilterExtreme<EExtreme::eMin>;
