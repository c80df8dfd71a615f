#pragma once

/// `ClIpLinFilterBase`, the frame of the separable linear filters: a one-dimensional kernel,
/// applied along x, along y or along both, on 8-bit unsigned or signed samples, in integers.
///
/// Taps are fixed-point numbers in which 4095 stands for 1.0, while sums are divided by 4096: a
/// flat image comes out slightly darker. A sample is
///
///     (sum over i of tap[i] * in[x + i - width / 2]) / 4096     rounded toward zero
///
/// with the position limited to the image, so that border samples repeat. Both axes in one pass
/// divide once, by 2^24.

#include "ImageProcessing/IpFilterBase.h"
#include "ImageProcessing/Walks/DirectedWalk.h"
#include "Tools/Array.h"

namespace Kernels {
class ClLinearFilter;
}

class ClIpLinFilterBase : public ClIpFilterBase {
public:
    /// Limits the width to the filtered axes, where it stays odd and at least 1, and computes the
    /// taps. Throws "ClIpLinFilterBase::Initialize. Negative FilterWidth is not valid" (-101);
    /// returns -35 without images.
    long Initialize() override;
    /// A width of 0 copies, a negative one does nothing. Returns -35 without images or pixels and
    /// -10 for filtering in place. Throws "Image Type is not the assigned type" (-101) for samples
    /// that are not 8 bits wide.
    long Process() override;
    /// Makes the output signed if kernel or input is, and moves its range with its sign. After a
    /// failure it changes nothing. Returns 0.
    long Finalize(long nResult) override;

    long ProcessMultiPlane() override;
    /// The operations of the modes filter by the taps of the last Initialize(), in place too. They
    /// return -35 without images or pixels, the directed ones also as CheckDirectionImages(); throw
    /// "Image Type is not the assigned type" (-101). The plain ones read samples as unsigned.
    long ProcessX() override;
    long ProcessY() override;
    long ProcessXY() override;
    long ProcessSignedX() override;
    long ProcessSignedY() override;
    long ProcessSignedXY() override;
    long ProcessDirected(bool bOrtho) override;
    long ProcessSignedDirected(bool bOrtho) override;

    /// Out = min(255, max(0, 2 In - F)), with F what ProcessY() makes of In: unsharp masking. Both
    /// are one plane of `eUInt8` with samples and of one geometry; In is the input of the last
    /// Initialize().
    void SharpenY(const ClImage& In, ClImage& Out) const;

    /// Fixed-point taps from real ones: divided by their sum, or by twice the larger one-signed
    /// sum where the signs are mixed. All taps are 0 where that is 0 or not finite.
    virtual void TransferArray(TpArrayStatic<double>& rTaps, TpArrayStatic<long>& rFilter);
    /// The real taps of a kernel of `nWidth`; the array is that long and zero.
    virtual void CalcFilter(TpArrayStatic<double>& rTaps, long nWidth) = 0;

    const TpArrayStatic<long>& Filter() const { return m_aFilter; }
    bool HasNegativeTaps() const { return m_bSigned; }

private:
    long LimitedWidth() const;
    Kernels::ClLinearFilter LineKernel() const;
    long CheckImages() const;
    template <class Work>
    long Run(Work work) const;
    template <class T>
    long FilterX() const;
    template <class T>
    long FilterY() const;
    template <class T>
    long FilterXY() const;
    template <class T>
    long FilterDirected(bool bOrtho) const;
    template <class T>
    long SumAlong(const ClImage& In, long nX, long nY, StPlanePoint Step) const;

    TpArrayStatic<long> m_aFilter;
    bool m_bSigned = false;
    bool m_bPlanesFailed = false; ///< the frame answers 0 even so
};
