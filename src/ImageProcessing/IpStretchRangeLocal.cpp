#include "ImageProcessing/IpStretchRangeLocal.h"

#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/IpResize.h"
#include "ImageProcessing/IpSubsample.h"
#include "ImageProcessing/Kernels/LocalStretch.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PlaneByPlane.h"
#include "ImageProcessing/RequireBytes.h"
#include "ImageProcessing/SettingsText.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int cnPlanes = 3; ///< of an image that is stretched plane by plane

/// The share of samples at either end that the global range does not cover.
constexpr double cdNoisePart = 0.001;

/// Whether a pixel takes the global range.
bool IsAnyFlat(const ClImage& Min, const ClImage& Max, long nMinContrast) {
    for (int y = 0; y < Min.Height(); ++y)
        if (Kernels::IsAnyFlat(Min.LineData(y), Max.LineData(y), Min.Width(), nMinContrast))
            return true;
    return false;
}

constexpr const char* cszNewRangeFrom = "In: NewRangeFrom";
constexpr const char* cszNewRangeTo = "In: NewRangeTo";
constexpr const char* cszFilterWidth = "In: FilterWidth";
constexpr const char* cszMinContrast = "In: MinContrast";
constexpr const char* cszSubSampleRate = "In: SubSampleRate";
constexpr const char* cszInImage = "In: Input Image";
constexpr const char* cszOutImage = "Out: Locally stretched image";

} // namespace

ClIpStretchRangeLocal::ClIpStretchRangeLocal() {
    ClIpStretchRangeLocal::SetParametersToDefault();
}

ClProcessorBase* ClIpStretchRangeLocal::Create() {
    return Vek::NewObject<ClIpStretchRangeLocal>();
}

const char* ClIpStretchRangeLocal::Name() const {
    return "ClIpStretchRangeLocal";
}

void ClIpStretchRangeLocal::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nNewRangeFrom = 0;
    m_nNewRangeTo = 255;
    m_nFilterWidth = 3;
    m_nMinContrast = 5;
    m_nSubSampleRate = 4;
    m_bUseMinSmoothing = true;
    m_bUseMaxSmoothing = false;
    m_pOptOutMinImage = nullptr;
    m_pOptOutMaxImage = nullptr;
}

void ClIpStretchRangeLocal::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage, cszInImage);
    AddOutImage(Container, "pOutImage", m_pOutImage, cszOutImage);
    Container.AddNumeric("nNewRangeFrom", &m_nNewRangeFrom, cszNewRangeFrom);
    Container.AddNumeric("nNewRangeTo", &m_nNewRangeTo, cszNewRangeTo);
    Container.AddNumeric("nFilterWidth", &m_nFilterWidth, cszFilterWidth);
    Container.AddNumeric("nMinContrast", &m_nMinContrast, cszMinContrast);
    Container.AddNumeric("nSubSampleRate", &m_nSubSampleRate, cszSubSampleRate);
    Container.AddBool("bUseMinSmoothing", &m_bUseMinSmoothing);
    Container.AddBool("bUseMaxSmoothing", &m_bUseMaxSmoothing);
    AddOutImage(Container, "pOptOutMinImage", m_pOptOutMinImage);
    AddOutImage(Container, "pOptOutMaxImage", m_pOptOutMaxImage);
}

void ClIpStretchRangeLocal::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, cszInImage);
    AddOutImage(List, "OutImage", m_pOutImage, cszOutImage);
    AddNumber(List, "NewRangeFrom", m_nNewRangeFrom, cszNewRangeFrom);
    AddNumber(List, "NewRangeTo", m_nNewRangeTo, cszNewRangeTo);
    AddNumber(List, "FilterWidth", m_nFilterWidth, cszFilterWidth);
    AddNumber(List, "MinContrast", m_nMinContrast, cszMinContrast);
    AddNumber(List, "SubSampleRate", m_nSubSampleRate, cszSubSampleRate);
}

long ClIpStretchRangeLocal::ParameterString(char* pBuffer, unsigned long nSize) {
    return WriteSettings(pBuffer, nSize, "W%ld", m_nFilterWidth);
}

// The run

long ClIpStretchRangeLocal::Process() {
    if (m_pInImage == nullptr || m_pOutImage == nullptr || m_pInImage->Data() == nullptr ||
        m_nFilterWidth < 1)
        return QMT_ERROR_PARAM_IS_MISSING;
    if (m_pInImage->Planes() != 1 && m_pInImage->Planes() != cnPlanes)
        return QMT_ERROR_PARAM_IS_MISSING;
    RequireBytes(*m_pInImage, VEK_HERE);
    if (m_pInImage->Planes() == cnPlanes)
        return ProcessMultiPlane();
    return ProcessInto(*m_pInImage, *m_pOutImage,
                       [this](const ClImage& In, ClImage& Out) { return StretchPlane(In, Out); });
}

long ClIpStretchRangeLocal::ProcessMultiPlane() {
    ClImage Src; // outputs may be the input
    Src.Attach(*m_pInImage);
    return ProcessPlaneByPlane(Src, *m_pOutImage, [this](const ClImage& In, ClImage& Out) {
        return StretchPlane(In, Out);
    });
}

long ClIpStretchRangeLocal::StretchPlane(const ClImage& In, ClImage& Out) const {
    if (m_nFilterWidth == 1) {
        Out = In;
        return 0;
    }
    ClImage Src; // the limits may be handed out over the input
    Src.Attach(In);
    ClImage Min;
    ClImage Max;
    FindLimits(Src, Min, Max);
    if (m_pOptOutMinImage != nullptr)
        *m_pOptOutMinImage = Min;
    if (m_pOptOutMaxImage != nullptr)
        *m_pOptOutMaxImage = Max;
    Stretch(Src, Min, Max, Out);
    return 0;
}

void ClIpStretchRangeLocal::FindLimits(ClImage& Src, ClImage& Min, ClImage& Max) const {
    if (m_nSubSampleRate < 2) {
        FilterLimits(Src, m_nFilterWidth, Min, Max);
        return;
    }
    constexpr long cnHighestRate = std::numeric_limits<int>::max();
    const long nRate = std::min(m_nSubSampleRate, cnHighestRate);
    ClImage Small;
    ClIpSubsample Subsample;
    Subsample.ApplyParam(Src, nRate, Small, true);
    ClImage SmallMin;
    ClImage SmallMax;
    FilterLimits(Small, std::max(3L, (m_nFilterWidth / m_nSubSampleRate) | 1), SmallMin, SmallMax);
    ClIpResize Resize;
    const int nFactor = static_cast<int>(nRate);
    Resize.ApplyParam(SmallMin, nFactor, Min, Src.Width(), Src.Height());
    Resize.ApplyParam(SmallMax, nFactor, Max, Src.Width(), Src.Height());
}

void ClIpStretchRangeLocal::FilterLimits(ClImage& Src, long nWidth, ClImage& Min,
                                         ClImage& Max) const {
    ClIpFilterMin FilterMin;
    FilterMin.ApplyParam(Src, Min, nWidth, ClIpFilterBase::ModeXY);
    if (m_bUseMinSmoothing)
        Smoothen(Min);
    ClIpFilterMax FilterMax;
    FilterMax.ApplyParam(Src, Max, nWidth, ClIpFilterBase::ModeXY);
    if (m_bUseMaxSmoothing)
        Smoothen(Max);
}

void ClIpStretchRangeLocal::Smoothen(ClImage& Image) const {
    ClImage Smooth;
    ClIpFilterMid Mid;
    Mid.ApplyParam(Image, Smooth, m_nFilterWidth | 1);
    Image.Swap(Smooth);
}

void ClIpStretchRangeLocal::Stretch(const ClImage& Src, const ClImage& Min, const ClImage& Max,
                                    ClImage& Out) const {
    unsigned char nLow = 0;
    unsigned char nHigh = 255;
    if (IsAnyFlat(Min, Max, m_nMinContrast))
        ClHistogram::GetRange(Src, cdNoisePart, cdNoisePart, nLow, nHigh);
    const Kernels::ClLocalStretch Kernel(m_nMinContrast, nLow, nHigh);
    Out.New(Src);
    for (int y = 0; y < Src.Height(); ++y)
        Kernel.StretchLine(Src.LineData(y), Min.LineData(y), Max.LineData(y), Src.Width(),
                           Out.LineData(y));
}

long ClIpStretchRangeLocal::ApplyParam(ClImage& In, ClImage& Out) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    return Apply();
}
