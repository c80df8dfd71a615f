#include "ImageProcessing/IpAdd.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/RangeClip.h"
#include "ImageProcessing/Walks/PairWalk.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <type_traits>

namespace {

constexpr TpNamedValues<ClIpAdd::EProcessingMode> caModes = {{ClIpAdd::ModeCut, "ModeCut"},
                                                             {ClIpAdd::ModeScale, "ModeScale"},
                                                             {ClIpAdd::ModeEnlarge, "ModeEnlarge"}};

constexpr const char* cszMode = "In: Addition Mode";

/// a + b as the language forms it in the type `Sum`: `int`, `unsigned int`, `float` or `double`.
/// Both are exact as doubles, and so is the sum of two integers before it is cut to 32 bits.
template <class Sum>
Sum SumAs(double a, double b) {
    if constexpr (std::is_floating_point_v<Sum>)
        return static_cast<Sum>(a) + static_cast<Sum>(b);
    else
        return SampleFromDouble<Sum>(a + b);
}

/// `function(TpPixelTag<Sum>)` for the type in which samples of two pixel types are added.
template <class Function>
long DispatchSumType(unsigned char nType1, unsigned char nType2, Function&& function) {
    const auto any = [=](unsigned char nType) { return nType1 == nType || nType2 == nType; };
    if (any(ClImage::eDouble64))
        return function(TpPixelTag<double>());
    if (any(ClImage::eFloat32))
        return function(TpPixelTag<float>());
    if (any(ClImage::eUInt32))
        return function(TpPixelTag<unsigned int>());
    return function(TpPixelTag<int>());
}

using PlaneKernel = void (*)(const Kernels::StPairOfPlanes&);

} // namespace

// The modes

class ClIpAdd::ClModeCut {
public:
    explicit ClModeCut(const ClImage& Out) : m_Clip(Out) {}

    template <class Sum>
    double Value(Sum sum) const {
        return m_Clip(static_cast<double>(sum));
    }
    PlaneKernel EightBitKernel() const { return m_Clip.IsEightBit() ? Kernels::AddCut : nullptr; }

private:
    ClRangeClip m_Clip;
};

class ClIpAdd::ClModeScale {
public:
    explicit ClModeScale(const ClImage& Out) : m_Clip(Out) {}

    template <class Sum>
    double Value(Sum sum) const {
        if constexpr (std::is_floating_point_v<Sum>)
            return m_Clip(sum * 0.5);
        else
            return m_Clip(static_cast<double>(sum / 2)); // NOLINT(bugprone-integer-division)
    }
    PlaneKernel EightBitKernel() const { return m_Clip.IsEightBit() ? Kernels::AddHalf : nullptr; }

private:
    ClRangeClip m_Clip;
};

class ClIpAdd::ClModeEnlarge {
public:
    explicit ClModeEnlarge(const ClImage&) {}

    template <class Sum>
    double Value(Sum sum) const {
        return static_cast<double>(sum);
    }
    PlaneKernel EightBitKernel() const { return nullptr; }
};

// Parameters

ClIpAdd::ClIpAdd() {
    ClIpAdd::SetParametersToDefault();
}

ClProcessorBase* ClIpAdd::Create() {
    return Vek::NewObject<ClIpAdd>();
}

const char* ClIpAdd::Name() const {
    return "ClIpAdd";
}

void ClIpAdd::SetParametersToDefault() {
    ClIp2to1Base::SetParametersToDefault();
    m_eMode = ModeScale;
}

void ClIpAdd::QueryParameters(ClParameterInterface& List) {
    ClIp2to1Base::QueryParameters(List);
    AddEnum(List, "Mode", m_eMode, caModes, cszMode);
}

void ClIpAdd::PublishParameters(ClParameterContainer& Container) {
    ClIp2to1Base::PublishParameters(Container);
    Container.AddEnum("Mode", &m_eMode, caModes, cszMode);
}

// The run

long ClIpAdd::DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                        long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride,
                        long nIn2Offset, long nIn2Stride, long nOutOffset, long nOutStride) {
    const StPairArea Area{In1,        In2,        Out,        nWidth,     nHeight,
                          nPlanes1,   nPlanes2,   nIn1Offset, nIn1Stride, nIn2Offset,
                          nIn2Stride, nOutOffset, nOutStride};
    if (!ArePixelTypes(In1, In2, Out) || m_eMode < ModeCut || m_eMode > ModeEnlarge)
        return QMT_ERROR_INTERNAL;
    if (UsesLUT(Area))
        return ProcessLUT(Area);
    switch (m_eMode) {
    case ModeCut:
        return Default<ClModeCut>(Area);
    case ModeScale:
        return Default<ClModeScale>(Area);
    default:
        return Default<ClModeEnlarge>(Area);
    }
}

template <class Mode>
long ClIpAdd::Default(const StPairArea& Area) {
    if (Area.m_nPlanes1 != Area.m_nPlanes2)
        throw ClException("unequal plane count is not suported.", QMT_ERROR_INVALID_PARAMETER, true,
                          VEK_HERE);
    const Mode mode(Area.m_rOut);
    const PlaneKernel kernel = Area.IsEightBit() ? mode.EightBitKernel() : nullptr;
    if (kernel != nullptr) {
        WalkPairPlanes(Area, kernel);
        return 0;
    }
    return DispatchSumType(Area.m_rIn1.DataType(), Area.m_rIn2.DataType(), [&](auto Tag) {
        using Sum = typename decltype(Tag)::Type;
        WalkPairs(Area, [&](double a, double b) { return mode.Value(SumAs<Sum>(a, b)); });
        return 0L;
    });
}

double ClIpAdd::GetValue(ClImage&, ClImage&, ClImage& Out, double dValue1, double dValue2) {
    switch (m_eMode) {
    case ModeCut:
        return ClRangeClip(Out)(dValue1 + dValue2);
    case ModeScale:
        return ClRangeClip(Out)((dValue1 + dValue2) * 0.5);
    default:
        return 0.0;
    }
}
