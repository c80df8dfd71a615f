#pragma once

/// An operator of one input whose parts the test tells, and what it has to give.

#include "ImageProcessing/Ip1to1Base.h"
#include "Tools/Allocate.h"
#include "support/Images.h"

#include <cmath>
#include <functional>

namespace TestSupport {

/// An operator of either frame whose parts are told by the test.
template <class Frame>
class TpIpProbe : public Frame {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<TpIpProbe>(); }
    const char* Name() const override { return "ClIpProbe"; }

    double GetValue(ClImage& In, ClImage& Out, double dValue) override {
        ++m_nValues;
        return m_Value ? m_Value(dValue) : Frame::GetValue(In, Out, dValue);
    }
    long DoProcess(ClImage& In, ClImage& Out) override {
        m_pSeenIn = &In;
        m_pSeenOut = &Out;
        return m_Loop ? m_Loop(In, Out) : Frame::DoProcess(In, Out);
    }

    std::function<double(double)> m_Value;
    std::function<long(ClImage&, ClImage&)> m_Loop;
    long m_nValues = 0;
    const ClImage* m_pSeenIn = nullptr;
    const ClImage* m_pSeenOut = nullptr;
};

/// `f` of every sample, stored as the pixel type stores it.
inline RealRows Mapped(const ClImage& In, unsigned char nOutType,
                       const std::function<double(double)>& f) {
    RealRows aRows = RealPixels(In);
    for (std::vector<double>& aRow : aRows)
        for (double& d : aRow) {
            d = f(d);
            const int nBits = 8 * ClImage::BytesPerSample(nOutType);
            if (nOutType == ClImage::eFloat32)
                d = static_cast<double>(static_cast<float>(d));
            if (ClImage::IsFloat(nOutType))
                continue;
            const double dModulus = std::ldexp(1.0, nBits);
            d = std::trunc(d);
            d -= std::floor(d / dModulus) * dModulus;
            if (ClImage::IsSigned(nOutType) && d >= dModulus / 2)
                d -= dModulus;
        }
    return aRows;
}

/// Reads each sample after its left neighbour has been written.
inline long AddLeftNeighbour(ClImage& In, ClImage& Out) {
    for (int y = 0; y < In.Height(); ++y)
        for (int x = 0; x < In.Width(); ++x)
            SetSample(Out, x, y, 0, Sample(In, x, y) + (x > 0 ? Sample(In, x - 1, y) : 0.0));
    return 0;
}

} // namespace TestSupport
