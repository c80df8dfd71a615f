#include "ImageProcessing/IpStretchRangeGlobal.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/PlaneHistograms.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr const char* cszOutDescription = "Out: Stretched Imaged";

} // namespace

ClIpStretchRangeGlobal::ClIpStretchRangeGlobal() {
    ClIpStretchRangeGlobal::SetParametersToDefault();
}

ClProcessorBase* ClIpStretchRangeGlobal::Create() {
    return Vek::NewObject<ClIpStretchRangeGlobal>();
}

const char* ClIpStretchRangeGlobal::Name() const {
    return "ClIpStretchRangeGlobal";
}

void ClIpStretchRangeGlobal::SetParametersToDefault() {
    ClIpLookUpTableBase::SetParametersToDefault();
    m_nOldRangeFrom = 255;
    m_nOldRangeTo = 0;
    m_nNewRangeFrom = 0;
    m_nNewRangeTo = 255;
}

void ClIpStretchRangeGlobal::Reset() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    SetParametersToDefault();
}

// Parameters

void ClIpStretchRangeGlobal::PublishParameters(ClParameterContainer& Container) {
    PublishStretch(Container, cszOutDescription);
}

void ClIpStretchRangeGlobal::QueryParameters(ClParameterInterface& List) {
    QueryStretch(List, cszOutDescription);
}

void ClIpStretchRangeGlobal::PublishStretch(ClParameterContainer& Container,
                                            const char* pOutDescription) {
    AddInImage(Container, "pInImage", m_pInImage, "In: Original Image");
    AddOutImage(Container, "pOutImage", m_pOutImage, pOutDescription);
    Container.AddNumeric("OldRangeFrom", &m_nOldRangeFrom, "In: Input Range Start");
    Container.AddNumeric("OldRangeTo", &m_nOldRangeTo, "In: Input Range End");
    Container.AddNumeric("NewRangeFrom", &m_nNewRangeFrom, "In: Stretch Range Start");
    Container.AddNumeric("NewRangeTo", &m_nNewRangeTo, "In: Stretch Range End");
}

void ClIpStretchRangeGlobal::QueryStretch(ClParameterInterface& List, const char* pOutDescription) {
    AddInImage(List, "InImage", m_pInImage, "In: Original Image");
    AddOutImage(List, "OutImage", m_pOutImage, pOutDescription);
    AddNumber(List, "OldRangeFrom", m_nOldRangeFrom, "In: Input Range Start");
    AddNumber(List, "OldRangeTo", m_nOldRangeTo, "In: Input Range End");
    AddNumber(List, "NewRangeFrom", m_nNewRangeFrom, "In: Stretch Range Start");
    AddNumber(List, "NewRangeTo", m_nNewRangeTo, "In: Stretch Range End");
}

// The run

long ClIpStretchRangeGlobal::Initialize() {
    m_nFrom = m_nOldRangeFrom;
    m_nTo = m_nOldRangeTo;
    if (m_nTo < m_nFrom) {
        const long nResult = CheckInImage();
        if (nResult != 0)
            return nResult;
        m_nFrom = 255;
        m_nTo = 0;
        ForEachPlaneHistogram(*m_pInImage, [this](const ClHistogram& Histogram) {
            m_nFrom = std::min(m_nFrom, Histogram.FirstValue());
            m_nTo = std::max(m_nTo, Histogram.LastValue());
        });
    }
    CalculateLuT();
    return 0;
}

void ClIpStretchRangeGlobal::CalculateLuT() {
    m_bLuTValid = true;
    if (m_nTo == m_nFrom) {
        std::fill(m_aLuT, m_aLuT + 256, m_nNewRangeFrom);
        return;
    }
    const auto nStep = static_cast<std::int64_t>((m_nNewRangeTo + 0.9 - m_nNewRangeFrom) * 4096.0 /
                                                 (m_nTo - m_nFrom));
    std::int64_t nAcc = -m_nFrom * nStep;
    for (unsigned char& nEntry : m_aLuT) {
        const std::int64_t nValue = m_nNewRangeFrom + (nAcc >> 12);
        nEntry = nValue < m_nNewRangeFrom ? m_nNewRangeFrom
                 : nValue > m_nNewRangeTo ? m_nNewRangeTo
                                          : static_cast<unsigned char>(nValue);
        nAcc += nStep;
    }
}
