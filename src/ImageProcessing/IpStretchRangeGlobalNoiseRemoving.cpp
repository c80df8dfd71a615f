#include "ImageProcessing/IpStretchRangeGlobalNoiseRemoving.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/PlaneHistograms.h"
#include "Tools/Allocate.h"

#include <algorithm>

namespace {

constexpr const char* cszOutDescription = "Out: Stretched Image";
constexpr const char* cszDarkDescription = "In: Noise Level For Dark Pixels";
constexpr const char* cszBrightDescription = "In: Noise Level For Bright Pixels";

} // namespace

ClIpStretchRangeGlobalNoiseRemoving::ClIpStretchRangeGlobalNoiseRemoving() {
    ClIpStretchRangeGlobalNoiseRemoving::SetParametersToDefault();
}

ClProcessorBase* ClIpStretchRangeGlobalNoiseRemoving::Create() {
    return Vek::NewObject<ClIpStretchRangeGlobalNoiseRemoving>();
}

const char* ClIpStretchRangeGlobalNoiseRemoving::Name() const {
    return "ClIpStretchRangeGlobalNoiseRemoving";
}

void ClIpStretchRangeGlobalNoiseRemoving::SetParametersToDefault() {
    ClIpStretchRangeGlobal::SetParametersToDefault();
    m_dDarkNoisePart = 0.0;
    m_dBrightNoisePart = 0.0;
}

void ClIpStretchRangeGlobalNoiseRemoving::PublishParameters(ClParameterContainer& Container) {
    PublishStretch(Container, cszOutDescription);
    Container.AddNumeric("DarkNoisePart", &m_dDarkNoisePart, cszDarkDescription);
    Container.AddNumeric("BrightNoisePart", &m_dBrightNoisePart, cszBrightDescription);
}

void ClIpStretchRangeGlobalNoiseRemoving::QueryParameters(ClParameterInterface& List) {
    QueryStretch(List, cszOutDescription);
    AddNumber(List, "DarkNoisePart", m_dDarkNoisePart, cszDarkDescription);
    AddNumber(List, "BrightNoisePart", m_dBrightNoisePart, cszBrightDescription);
}

long ClIpStretchRangeGlobalNoiseRemoving::Initialize() {
    const long nResult = CheckInImage();
    if (nResult != 0)
        return nResult;
    PrepareOutImage();
    m_nFrom = 255;
    m_nTo = 0;
    ForEachPlaneHistogram(*m_pInImage, [this](const ClHistogram& Histogram) {
        unsigned char nLow = 0;
        unsigned char nHigh = 0;
        Histogram.GetNoiseFreeRange(m_dDarkNoisePart, m_dBrightNoisePart, nLow, nHigh);
        m_nFrom = std::min(m_nFrom, nLow);
        m_nTo = std::max(m_nTo, nHigh);
    });
    m_nFrom = std::min(m_nFrom, m_nTo);
    CalculateLuT();
    return 0;
}

long ClIpStretchRangeGlobalNoiseRemoving::ApplyParam(ClImage& In, ClImage& Out,
                                                     double dDarkNoisePart,
                                                     double dBrightNoisePart) {
    m_dDarkNoisePart = dDarkNoisePart;
    m_dBrightNoisePart = dBrightNoisePart;
    return ApplyParam(In, Out);
}
