#include "ImageProcessing/IpMax.h"

#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/RangeClip.h"
#include "ImageProcessing/Walks/PairWalk.h"
#include "Tools/Allocate.h"

namespace {

double Larger(double a, double b) {
    return b > a ? b : a;
}

} // namespace

ClIpMax::ClIpMax() {
    ClIpMax::SetParametersToDefault();
}

ClProcessorBase* ClIpMax::Create() {
    return Vek::NewObject<ClIpMax>();
}

const char* ClIpMax::Name() const {
    return "ClIpMax";
}

long ClIpMax::DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                        long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride,
                        long nIn2Offset, long nIn2Stride, long nOutOffset, long nOutStride) {
    const StPairArea Area{In1,        In2,        Out,        nWidth,     nHeight,
                          nPlanes1,   nPlanes2,   nIn1Offset, nIn1Stride, nIn2Offset,
                          nIn2Stride, nOutOffset, nOutStride};
    if (!ArePixelTypes(In1, In2, Out))
        return cnUnknownPixelType;
    return UsesLUT(Area) ? ProcessLUT(Area) : Default(Area);
}

long ClIpMax::Default(const StPairArea& Area) {
    const ClRangeClip clip(Area.m_rOut);
    if (Area.IsEightBit() && clip.IsEightBit() && Area.m_nPlanes1 == Area.m_nPlanes2)
        WalkPairPlanes(Area, Kernels::Max);
    else
        WalkPairs(Area, [&](double a, double b) { return clip(Larger(a, b)); });
    return 0;
}

double ClIpMax::GetValue(ClImage&, ClImage&, ClImage& Out, double dValue1, double dValue2) {
    return ClRangeClip(Out)(Larger(dValue1, dValue2));
}
