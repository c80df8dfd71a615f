#include "ImageProcessing/IpBinarizeGlobal.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/SettingsText.h"
#include "ImageProcessing/Walks/SampleWalk.h"
#include "Tools/Allocate.h"

#include <cmath>
#include <limits>

namespace {

constexpr const char* cszBlack = "In: Pixelvalue of Black";
constexpr const char* cszWhite = "In: Pixelvalue of White";
constexpr const char* cszThreshold = "In: Binarization Threshold";

/// The threshold as it is compared with samples of type `T`; one that is not a number lets every
/// sample be white.
template <class T>
auto ThresholdOf(double dThreshold) {
    if constexpr (std::is_floating_point_v<T>) {
        return dThreshold;
    } else {
        using Limits = std::numeric_limits<T>;
        const double dCeiling = std::ceil(dThreshold);
        if (!(dCeiling > static_cast<double>(Limits::min())))
            return Limits::min();
        return dCeiling < static_cast<double>(Limits::max()) ? static_cast<T>(dCeiling)
                                                             : Limits::max();
    }
}

} // namespace

ClIpBinarizeGlobal::ClIpBinarizeGlobal() {
    EnableAllTypes();
    ClIpBinarizeGlobal::SetParametersToDefault();
}

ClProcessorBase* ClIpBinarizeGlobal::Create() {
    return Vek::NewObject<ClIpBinarizeGlobal>();
}

const char* ClIpBinarizeGlobal::Name() const {
    return "ClIpBinarizeGlobal";
}

void ClIpBinarizeGlobal::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_dThreshold = MathConst::cdNaN;
    m_dBlack = MathConst::cdNaN;
    m_dWhite = MathConst::cdNaN;
}

void ClIpBinarizeGlobal::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.AddNumeric("Black", &m_dBlack, cszBlack);
    Container.AddNumeric("White", &m_dWhite, cszWhite);
    Container.AddNumeric("Threshold", &m_dThreshold, cszThreshold);
}

void ClIpBinarizeGlobal::QueryParameters(ClParameterInterface& List) {
    ClIp1to1Base::QueryParameters(List);
    AddNumber(List, "Black", m_dBlack, cszBlack);
    AddNumber(List, "White", m_dWhite, cszWhite);
    AddNumber(List, "Threshold", m_dThreshold, cszThreshold);
}

long ClIpBinarizeGlobal::ParameterString(char* pBuffer, unsigned long nSize) {
    const bool bFloat = m_pInImage != nullptr && ClImage::IsFloat(m_pInImage->DataType());
    const int nDigits = bFloat ? 4 : 0;
    return WriteSettings(pBuffer, nSize, "Thr%.*f [%.*f;%.*f]", nDigits, m_dThreshold, nDigits,
                         m_dBlack, nDigits, m_dWhite);
}

bool ClIpBinarizeGlobal::IsUnsetOrInRange(double dValue) const {
    if (std::isnan(dValue))
        return true;
    if (m_pInImage == nullptr)
        return false;
    const double dBlack = m_pInImage->Black();
    const double dWhite = m_pInImage->White();
    return !(dValue < dBlack && dValue < dWhite) && !(dValue > dBlack && dValue > dWhite);
}

bool ClIpBinarizeGlobal::CheckBlackWhite() {
    return IsUnsetOrInRange(m_dBlack) && IsUnsetOrInRange(m_dWhite);
}

bool ClIpBinarizeGlobal::CheckThreshold() {
    return IsUnsetOrInRange(m_dThreshold);
}

bool ClIpBinarizeGlobal::CanApply() {
    if (m_pInImage != nullptr && CheckBlackWhite() && CheckThreshold())
        return true;
    return ClIp1to1Base::CanApply();
}

long ClIpBinarizeGlobal::DoProcess(ClImage& rIn, ClImage& rOut) {
    m_dBlackUsed = std::isnan(m_dBlack) ? rIn.Black() : m_dBlack;
    m_dWhiteUsed = std::isnan(m_dWhite) ? rIn.White() : m_dWhite;
    m_dThresholdUsed = std::isnan(m_dThreshold) ? (rIn.White() + rIn.Black()) / 2 : m_dThreshold;
    if (!CheckBlackWhite() || !CheckThreshold())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (rIn.DataType() == ClImage::eUInt8)
        return ClIp1to1Base::DoProcess(rIn, rOut);
    if (rIn.DataType() != rOut.DataType())
        return cnUnknownPixelType;
    return DispatchPixelType(rIn.DataType(), [&](auto Tag) {
        Binarize<typename decltype(Tag)::Type>(rIn, rOut);
        return 0L;
    });
}

template <class T>
void ClIpBinarizeGlobal::Binarize(const ClImage& rIn, ClImage& rOut) const {
    const auto threshold = ThresholdOf<T>(m_dThresholdUsed);
    const T black = SampleFromDouble<T>(m_dBlackUsed);
    const T white = SampleFromDouble<T>(m_dWhiteUsed);
    WalkSamples<T, T>(rIn, rOut, [&](T value) { return threshold > value ? black : white; });
}

double ClIpBinarizeGlobal::GetValue(ClImage&, ClImage&, double dValue) {
    return dValue >= m_dThresholdUsed ? m_dWhiteUsed : m_dBlackUsed;
}

long ClIpBinarizeGlobal::ApplyParam(ClImage& rIn, ClImage& rOut, double dThreshold) {
    m_dThreshold = dThreshold;
    return ApplyParam(rIn, rOut);
}
