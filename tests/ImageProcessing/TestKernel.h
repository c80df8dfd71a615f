#pragma once

/// A linear filter whose kernel the test tells.

#include "ImageProcessing/IpLinFilterBase.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <vector>

namespace TestSupport {

class ClIpTestKernel : public ClIpLinFilterBase {
public:
    explicit ClIpTestKernel(std::vector<double> aKernel = {}) : m_aKernel(std::move(aKernel)) {
        m_nFilterWidth = static_cast<long>(m_aKernel.size());
    }

    ClProcessorBase* Create() override { return Vek::NewObject<ClIpTestKernel>(); }
    const char* Name() const override { return "ClIpTestKernel"; }
    void CalcFilter(TpArrayStatic<double>& rTaps, long nWidth) override {
        m_nAskedWidth = nWidth;
        const auto nCount = std::min(m_aKernel.size(), static_cast<std::size_t>(nWidth));
        std::copy_n(m_aKernel.begin(), nCount, rTaps.Data());
    }

    long ApplyTo(ClImage& rIn, ClImage& rOut) {
        m_pInImage = &rIn;
        m_pOutImage = &rOut;
        return Apply();
    }
    std::vector<long> FixedTaps() const {
        return std::vector<long>(Filter().Data(), Filter().Data() + Filter().Entries());
    }

    std::vector<double> m_aKernel;
    long m_nAskedWidth = -1;
};

} // namespace TestSupport
