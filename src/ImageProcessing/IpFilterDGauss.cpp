#include "ImageProcessing/IpFilterDGauss.h"

#include "Tools/Allocate.h"

#include <cmath>

namespace {

constexpr double cdTwoPi = 6.283185307179586;

} // namespace

ClIpFilterDGauss::ClIpFilterDGauss() {
    ClIpFilterDGauss::SetParametersToDefault();
}

ClProcessorBase* ClIpFilterDGauss::Create() {
    return Vek::NewObject<ClIpFilterDGauss>();
}

const char* ClIpFilterDGauss::Name() const {
    return "ClIpFilterDGauss";
}

void ClIpFilterDGauss::SetParametersToDefault() {
    ClIpFilterGauss::SetParametersToDefault();
    m_nMode = ModeX;
}

long ClIpFilterDGauss::ProcessXY() {
    return QMT_ERROR_INTERNAL;
}

long ClIpFilterDGauss::ProcessSignedXY() {
    return QMT_ERROR_INTERNAL;
}

void ClIpFilterDGauss::CalcFilter(TpArrayStatic<double>& rTaps, long nWidth) {
    const long nHalf = (nWidth - 1) / 2;
    const double dVariance = m_dSigma * m_dSigma;
    // The root holds 2 pi sigma, not 2 pi sigma^2. The norm cancels the factor, but where taps are
    // so small that their signs do not count as mixed it matters.
    const double dFactor = -1.0 / (dVariance * std::sqrt(cdTwoPi * m_dSigma));
    for (long k = -nHalf; k <= nHalf; ++k)
        rTaps[static_cast<unsigned long>(k + nHalf)] =
            static_cast<double>(k) *
            std::exp(static_cast<double>(-k * k) / (2.0 * m_dSigma * m_dSigma)) * dFactor;
}

long ClIpFilterDGauss::ApplyParam(ClImage& rIn, ClImage& rOutX, ClImage& rOutY, double dSigma,
                                  long nWidth) {
    m_nMode = ModeX;
    const long nResult = ClIpFilterGauss::ApplyParam(rIn, rOutX, dSigma, nWidth);
    if (nResult != 0)
        return nResult;
    m_nMode = ModeY;
    m_pOutImage = &rOutY;
    return Apply();
}
