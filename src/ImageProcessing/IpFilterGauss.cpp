#include "ImageProcessing/IpFilterGauss.h"

#include "ImageProcessing/ImageParameters.h"
#include "Tools/Allocate.h"
#include "Tools/PlainLocale.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr double cdOneBySqrtTwoPi = 0.3989422804014327;

} // namespace

ClIpFilterGauss::ClIpFilterGauss() {
    ClIpFilterGauss::SetParametersToDefault();
}

ClProcessorBase* ClIpFilterGauss::Create() {
    return Vek::NewObject<ClIpFilterGauss>();
}

const char* ClIpFilterGauss::Name() const {
    return "ClIpFilterGauss";
}

void ClIpFilterGauss::SetParametersToDefault() {
    ClIpLinFilterBase::SetParametersToDefault();
    m_nFilterWidth = 0;
    m_dSigma = 1.0;
}

void ClIpFilterGauss::QueryParameters(ClParameterInterface& List) {
    ClIpLinFilterBase::QueryParameters(List);
    AddNumber(List, "dSigma", m_dSigma, "In Sigma");
}

void ClIpFilterGauss::PublishParameters(ClParameterContainer& Container) {
    ClIpLinFilterBase::PublishParameters(Container);
    Container.AddNumeric("dSigma", &m_dSigma, "In Sigma");
}

long ClIpFilterGauss::ParameterString(char* pBuffer, unsigned long nSize) {
    if (pBuffer == nullptr)
        nSize = 0;
    const Vek::ClPlainLocale plain;
    const int nLength = std::snprintf(pBuffer, nSize, "S[%.2f] ", m_dSigma);
    if (nLength < 0 || static_cast<unsigned long>(nLength) >= nSize)
        throw ClException("String-Length exceeded available size", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    return nLength + ClIpLinFilterBase::ParameterString(
                         pBuffer + nLength, nSize - static_cast<unsigned long>(nLength));
}

long ClIpFilterGauss::CalcFilterWidth(double dSigma) {
    constexpr long cnWidest = 2147483647;
    if (!(dSigma > 0.0))
        return 1;
    const double dWidth = 8.0 * dSigma;
    if (dWidth >= static_cast<double>(cnWidest))
        return cnWidest;
    const long nWidth = static_cast<long>(dWidth);
    return (nWidth < 3 ? 3 : nWidth) | 1;
}

long ClIpFilterGauss::Initialize() {
    if (m_pInImage == nullptr || m_pOutImage == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (m_nFilterWidth < 1)
        m_nFilterWidth = CalcFilterWidth(m_dSigma);
    return ClIpLinFilterBase::Initialize();
}

void ClIpFilterGauss::CalcFilter(TpArrayStatic<double>& rTaps, long nWidth) {
    const long nHalf = (nWidth - 1) / 2;
    if (!(m_dSigma > 0.0)) {
        rTaps[static_cast<unsigned long>(nHalf)] = 1.0;
        return;
    }
    for (long k = -nHalf; k <= nHalf; ++k)
        rTaps[static_cast<unsigned long>(k + nHalf)] =
            std::exp(static_cast<double>(-k * k) / (2.0 * m_dSigma * m_dSigma)) * cdOneBySqrtTwoPi /
            m_dSigma;
}

long ClIpFilterGauss::ApplyParam(ClImage& rIn, ClImage& rOut, double dSigma, long nWidth) {
    m_pInImage = &rIn;
    m_pOutImage = &rOut;
    m_dSigma = dSigma;
    m_nFilterWidth = nWidth;
    return Apply();
}
