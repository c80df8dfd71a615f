#include "ImageProcessing/IpLinFilterBase.h"

#include "ImageProcessing/Kernels/LinearFilter.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "ImageProcessing/RequireBytes.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Fixed point: a tap of 1.0, and what a sum of products is divided by.
constexpr double cdTapOne = 4095.0;
constexpr long cnDivisor = 4096;

/// Sums of taps that differ by less are kernels of one sign.
constexpr double cdMixedSigns = 0.0001;

} // namespace

long ClIpLinFilterBase::Initialize() {
    if (m_nFilterWidth < 0)
        throw ClException("ClIpLinFilterBase::Initialize. Negative FilterWidth is not valid",
                          QMT_ERROR_INTERNAL, true, VEK_HERE);
    m_aFilter.Clear();
    m_bSigned = false;
    m_bPlanesFailed = false;
    if (m_pInImage == nullptr || m_pOutImage == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (m_nFilterWidth == 0)
        return 0;

    m_nFilterWidth = LimitedWidth();
    TpArrayStatic<double> aTaps;
    aTaps.New(static_cast<unsigned long>(m_nFilterWidth));
    std::fill(aTaps.Data(), aTaps.Data() + aTaps.Entries(), 0.0);
    CalcFilter(aTaps, m_nFilterWidth);
    TransferArray(aTaps, m_aFilter);
    return 0;
}

/// The width, or the largest odd one below the filtered axes.
long ClIpLinFilterBase::LimitedWidth() const {
    long nLimit = std::numeric_limits<long>::max();
    if ((m_nMode & ModeX) != 0)
        nLimit = std::min(nLimit, static_cast<long>(m_pInImage->Width()) - 1);
    if ((m_nMode & ModeY) != 0)
        nLimit = std::min(nLimit, static_cast<long>(m_pInImage->Height()) - 1);
    if (m_nFilterWidth <= nLimit)
        return m_nFilterWidth;
    return std::max(1L, nLimit % 2 == 0 ? nLimit - 1 : nLimit);
}

void ClIpLinFilterBase::TransferArray(TpArrayStatic<double>& rTaps, TpArrayStatic<long>& rFilter) {
    double dPositive = 0.0;
    double dNegative = 0.0;
    double dTotal = 0.0;
    for (unsigned long i = 0; i < rTaps.Entries(); ++i) {
        dTotal += rTaps[i];
        if (rTaps[i] > 0.0)
            dPositive += rTaps[i];
        else
            dNegative -= rTaps[i];
    }
    m_bSigned = dNegative > 0.0;
    const double dNorm =
        dPositive - dTotal > cdMixedSigns ? 2.0 * std::max(dPositive, dNegative) : dTotal;
    // A norm of 0 or not finite, which one tap makes, leaves no quotient but 0 and what becomes 0.
    rFilter.New(rTaps.Entries());
    for (unsigned long i = 0; i < rTaps.Entries(); ++i)
        rFilter[i] = SampleFromDouble<long>(rTaps[i] / dNorm * cdTapOne);
}

long ClIpLinFilterBase::Process() {
    if (m_nFilterWidth < 0)
        return 0;
    const long nCheck = CheckImages();
    if (nCheck != 0)
        return nCheck;
    if (m_nFilterWidth == 0)
        return CopyInput();
    if (m_pInImage->SizeBytes() == 0 && m_pInImage != m_pOutImage) {
        m_pOutImage->New(*m_pInImage); // throws, unless the output has no samples either
        return 0;
    }
    return ProcessPlanes(); // a kernel of one tap is applied: it scales
}

long ClIpLinFilterBase::ProcessMultiPlane() {
    const long nResult = ClIpFilterBase::ProcessMultiPlane();
    m_bPlanesFailed = nResult != 0;
    return nResult;
}

long ClIpLinFilterBase::Finalize(long nResult) {
    if (nResult != 0 || m_bPlanesFailed || m_pInImage == nullptr || m_pOutImage == nullptr)
        return 0;
    constexpr unsigned char cnSignBit = 0x80;
    ClImage& rOut = *m_pOutImage;
    const bool bInSigned = ClImage::IsSigned(m_pInImage->DataType());
    const bool bOutSigned = m_bSigned || bInSigned;
    rOut.SetDataType(
        static_cast<unsigned char>((rOut.DataType() & ~cnSignBit) | (bOutSigned ? cnSignBit : 0)));
    if (bOutSigned != bInSigned && !ClImage::IsFloat(rOut.DataType())) {
        const double dHalf = std::ldexp(1.0, 8 * rOut.BytesPerSample() - 1);
        const double dShift = bOutSigned ? -dHalf : dHalf;
        rOut.SetBlack(rOut.Black() + dShift);
        rOut.SetWhite(rOut.White() + dShift);
    }
    return 0;
}

// The operations of the modes

/// -35 without images or pixels; throws for samples that are not 8 bits wide.
long ClIpLinFilterBase::CheckImages() const {
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    const bool bSigned = ClImage::IsSigned(m_pInImage->DataType());
    RequireType(*m_pInImage, bSigned ? ClImage::eInt8 : ClImage::eUInt8, VEK_HERE);
    return 0;
}

/// Calls `work(In, Out)` with an output like the input.
template <class Work>
long ClIpLinFilterBase::Run(Work work) const {
    const long nCheck = CheckImages();
    if (nCheck != 0)
        return nCheck;
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage& In, ClImage& Out) {
        Out.New(In);
        if (In.SizeBytes() > 0)
            work(In, Out);
        return 0L;
    });
}

/// The taps, made ready for the lines of the input.
Kernels::ClLinearFilter ClIpLinFilterBase::LineKernel() const {
    return Kernels::ClLinearFilter(m_aFilter.Data(), static_cast<long>(m_aFilter.Entries()),
                                   m_pInImage->Width());
}

template <class T>
Kernels::StInAndOut<T> PlanesOf(const ClImage& In, ClImage& Out) {
    return {In.Line<const T>(0), In.LineStrideBytes(), In.Height(), Out.Line<T>(0),
            Out.LineStrideBytes()};
}

// Along lines

template <class T>
long ClIpLinFilterBase::FilterX() const {
    return Run([this](const ClImage& In, ClImage& Out) {
        LineKernel().FilterAlong(PlanesOf<T>(In, Out));
    });
}

long ClIpLinFilterBase::ProcessX() {
    return FilterX<unsigned char>();
}

long ClIpLinFilterBase::ProcessSignedX() {
    return FilterX<signed char>();
}

// Along columns

template <class T>
long ClIpLinFilterBase::FilterY() const {
    return Run([this](const ClImage& In, ClImage& Out) {
        LineKernel().FilterAcross(PlanesOf<T>(In, Out));
    });
}

long ClIpLinFilterBase::ProcessY() {
    return FilterY<unsigned char>();
}

long ClIpLinFilterBase::ProcessSignedY() {
    return FilterY<signed char>();
}

void ClIpLinFilterBase::SharpenY(const ClImage& In, ClImage& Out) const {
    LineKernel().SharpenAcross(PlanesOf<unsigned char>(In, Out));
}

// Along both: some lines of sums, not a whole image in between

template <class T>
long ClIpLinFilterBase::FilterXY() const {
    return Run(
        [this](const ClImage& In, ClImage& Out) { LineKernel().FilterBoth(PlanesOf<T>(In, Out)); });
}

long ClIpLinFilterBase::ProcessXY() {
    return FilterXY<unsigned char>();
}

long ClIpLinFilterBase::ProcessSignedXY() {
    return FilterXY<signed char>();
}

// Along a direction per pixel

/// The sum of products along the line through the middle of pixel (`nX`, `nY`).
template <class T>
long ClIpLinFilterBase::SumAlong(const ClImage& In, long nX, long nY, StPlanePoint Step) const {
    const long nTaps = static_cast<long>(m_aFilter.Entries());
    const long nLastX = In.Width() - 1;
    const long nLastY = In.Height() - 1;
    unsigned long nSum = 0; // modulo 2^64: taps may be of any size
    for (long i = 0; i < nTaps; ++i) {
        const StPlanePoint At = PixelAt(nX, nY, Step, i - nTaps / 2);
        const int y = static_cast<int>(std::clamp(At.m_nY, 0L, nLastY));
        const long nSample = In.Line<const T>(y)[std::clamp(At.m_nX, 0L, nLastX)];
        nSum += static_cast<unsigned long>(m_aFilter[static_cast<unsigned long>(i)]) *
                static_cast<unsigned long>(nSample);
    }
    return static_cast<long>(nSum);
}

template <class T>
long ClIpLinFilterBase::FilterDirected(bool bOrtho) const {
    const long nCheck = CheckDirectionImages(VEK_HERE);
    if (nCheck != 0)
        return nCheck;
    return Run([&](const ClImage& In, ClImage& Out) {
        WalkDirected<T>(*m_pInDxImage, *m_pInDyImage, bOrtho, Out,
                        [&](long x, long y, StPlanePoint Step) {
                            return static_cast<T>(SumAlong<T>(In, x, y, Step) / cnDivisor);
                        });
    });
}

long ClIpLinFilterBase::ProcessDirected(bool bOrtho) {
    return FilterDirected<unsigned char>(bOrtho);
}

long ClIpLinFilterBase::ProcessSignedDirected(bool bOrtho) {
    return FilterDirected<signed char>(bOrtho);
}
