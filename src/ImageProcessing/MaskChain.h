#pragma once

/// The chain of windows of a `ClMask2`, to be asked: at which step does an image stand, and where
/// does the last window lie in it? An image is recognised by its size in the scale of the mask. It
/// may be larger than the step by any amount, and smaller by less than a tolerance: chains run from
/// large windows to small ones, so that the first step that fits is the one that is meant.

#include "ImageProcessing/Mask2.h"

namespace Mask {

/// "The precut index 'nRefIdx' is out of range." (-35).
[[noreturn]] void ThrowIndex();

/// Reads a mask, which outlives it.
class ClPrecutChain {
public:
    using STPrecutStep = ClMask2::STPrecutStep;

    explicit ClPrecutChain(const ClMask2& Mask) : m_rMask(Mask) {}

    /// Columns and lines of the last step, numbers of 32 bits; 0 without steps.
    long Width() const;
    long Height() const;

    /// The first step that fits an image of a size, or -1; see ClMask2::GetOffsetsIndex().
    long IndexOf(long nWidth, long nHeight, long nPelsX, long nPelsY) const;
    /// The step at which an image stands; throws the index message (-35).
    unsigned long StepOf(const ClImage& Image) const;
    /// Whether a step has the size of a window, in the scale of the mask.
    bool Knows(const STPrecutStep& Window, double dTolerance) const;

    /// The last step relative to step `nRefIdx`, in pixels of a resolution; one below 1 stands for
    /// that of the mask. Throws the index message (-35).
    StWindow LastFrom(unsigned long nRefIdx, double dPelsX, double dPelsY) const;
    /// Where the step at which an image stands begins, in pixels of the image, without a size.
    StWindow BeginOf(const ClImage& Image) const;
    /// The last step as a window of an image.
    StWindow LastIn(const ClImage& Image) const;

private:
    unsigned long Count() const { return m_rMask.m_aPrecutSteps.Entries(); }
    const STPrecutStep& Step(unsigned long nIndex) const { return m_rMask.m_aPrecutSteps[nIndex]; }
    const STPrecutStep& Last() const { return Step(Count() - 1); }
    /// A window of the chain in the scale of an image; an axis on which either has no resolution
    /// keeps its scale.
    STPrecutStep InScaleOf(const ClImage& Image, STPrecutStep Window) const;

    const ClMask2& m_rMask;
};

} // namespace Mask
