#include "ImageProcessing/MaskChain.h"

#include "ImageProcessing/MaskArithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Mask {

namespace {

bool Fits(double dStepWidth, double dStepHeight, double dWidth, double dHeight, double dTolerance) {
    return dStepWidth - dWidth < dTolerance && dStepHeight - dHeight < dTolerance;
}

/// A size in whole pixels, as far as an image can have it.
long RoundedSize(double dValue) {
    using Limits = std::numeric_limits<int>;
    return std::clamp<std::int64_t>(Rounded(dValue), Limits::min(), Limits::max());
}

/// Pixels of a mask per pixel of a resolution, which may be unknown.
double ScaleFrom(long nPels, int nMaskPels) {
    return nPels >= 1 ? nMaskPels / static_cast<double>(nPels) : 1.0;
}

bool IsScaled(double dScale) {
    return std::fabs(dScale - 1.0) >= 0.0001;
}

} // namespace

void ThrowIndex() {
    constexpr long cnIndexLine = 214; // known to those who read logs
    throw ClException("The precut index 'nRefIdx' is out of range.", QMT_ERROR_PARAM_OUT_OF_RANGE,
                      true, "ImageProcessing/Mask2", cnIndexLine);
}

long ClPrecutChain::Width() const {
    return Count() == 0 ? 0 : RoundedSize(Last().dWidth);
}

long ClPrecutChain::Height() const {
    return Count() == 0 ? 0 : RoundedSize(Last().dHeight);
}

long ClPrecutChain::IndexOf(long nWidth, long nHeight, long nPelsX, long nPelsY) const {
    if (nPelsX < 0 || nPelsY < 0 || nWidth < 1 || nHeight < 1)
        throw ClException("No image size given.", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    const double sx = ScaleFrom(nPelsX, m_rMask.m_nPelsX);
    const double sy = ScaleFrom(nPelsY, m_rMask.m_nPelsY);
    const double dWidth = sx * static_cast<double>(nWidth);
    const double dHeight = sy * static_cast<double>(nHeight);
    const double dTolerance = static_cast<double>(std::min(nWidth, nHeight)) * 0.001 +
                              (IsScaled(sx) || IsScaled(sy) ? 1.0 : 0.5);
    for (unsigned long i = 0; i < Count(); ++i)
        if (Fits(Step(i).dWidth, Step(i).dHeight, dWidth, dHeight, dTolerance) ||
            Fits(std::trunc(Step(i).dWidth), std::trunc(Step(i).dHeight), dWidth, dHeight,
                 dTolerance))
            return static_cast<long>(i);
    return -1;
}

unsigned long ClPrecutChain::StepOf(const ClImage& Image) const {
    const long nIndex = IndexOf(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY());
    if (nIndex < 0)
        ThrowIndex();
    return static_cast<unsigned long>(nIndex);
}

bool ClPrecutChain::Knows(const STPrecutStep& Window, double dTolerance) const {
    for (unsigned long i = 0; i < Count(); ++i)
        if (Fits(Step(i).dWidth, Step(i).dHeight, Window.dWidth, Window.dHeight, dTolerance))
            return true;
    return false;
}

StWindow ClPrecutChain::LastFrom(unsigned long nRefIdx, double dPelsX, double dPelsY) const {
    if (nRefIdx >= Count())
        ThrowIndex();
    const double sx = dPelsX >= 1 ? dPelsX / m_rMask.m_nPelsX : 1.0;
    const double sy = dPelsY >= 1 ? dPelsY / m_rMask.m_nPelsY : 1.0;
    const STPrecutStep& Reference = Step(nRefIdx);
    return {Rounded((Last().dX - Reference.dX) * sx), Rounded((Last().dY - Reference.dY) * sy),
            Rounded(sx * Last().dWidth), Rounded(sy * Last().dHeight)};
}

ClPrecutChain::STPrecutStep ClPrecutChain::InScaleOf(const ClImage& Image,
                                                     STPrecutStep Window) const {
    Window.Scale(ScaleOf(Image.PelsX(), m_rMask.m_nPelsX),
                 ScaleOf(Image.PelsY(), m_rMask.m_nPelsY));
    return Window;
}

StWindow ClPrecutChain::BeginOf(const ClImage& Image) const {
    const STPrecutStep Begin = InScaleOf(Image, Step(StepOf(Image)));
    return {Rounded(Begin.dX), Rounded(Begin.dY), 0, 0};
}

StWindow ClPrecutChain::LastIn(const ClImage& Image) const {
    const StWindow Begin = BeginOf(Image);
    const STPrecutStep Window = InScaleOf(Image, Last());
    return {Rounded(Window.dX) - Begin.m_nX, Rounded(Window.dY) - Begin.m_nY,
            Rounded(Window.dWidth), Rounded(Window.dHeight)};
}

} // namespace Mask
