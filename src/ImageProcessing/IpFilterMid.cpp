#include "ImageProcessing/IpFilterMid.h"

#include "ImageProcessing/Kernels/Mean.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "ImageProcessing/Walks/DirectedWalk.h"
#include "ImageProcessing/Walks/MeanWalk.h"
#include "Tools/Allocate.h"
#include "Tools/ParameterContainer.h"

#include <algorithm>

namespace {

constexpr long cnNoDyImageLine = 316;

} // namespace

ClIpFilterMid::ClIpFilterMid() {
    ClIpFilterMid::SetParametersToDefault();
}

ClProcessorBase* ClIpFilterMid::Create() {
    return Vek::NewObject<ClIpFilterMid>();
}

const char* ClIpFilterMid::Name() const {
    return "ClIpFilterMid";
}

void ClIpFilterMid::SetParametersToDefault() {
    ClIpFilterBase::SetParametersToDefault();
    m_pRemainder = nullptr;
}

void ClIpFilterMid::PublishParameters(ClParameterContainer& Container) {
    ClIpFilterBase::PublishParameters(Container);
    Container.Keep(&m_pRemainder);
}

long ClIpFilterMid::Initialize() {
    m_nFilterWidth |= 1;
    return 0;
}

long ClIpFilterMid::DoProcess() {
    if (m_pInImage == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    const unsigned char nType = m_pInImage->DataType();
    if (nType == ClImage::eUInt8 || nType == ClImage::eInt8)
        return ClIpFilterBase::DoProcess();
    return DispatchPixelType(nType, [this](auto Tag) {
        using T = typename decltype(Tag)::Type;
        return ProcessT<T>();
    });
}

// The window

bool ClIpFilterMid::IsWiderThanImage(long nAxes) const {
    return ((nAxes & ModeX) != 0 && m_nFilterWidth > m_pInImage->Width()) ||
           ((nAxes & ModeY) != 0 && m_nFilterWidth > m_pInImage->Height());
}

/// Calls `work(In, HalfWidth(), Out)` with an output like the input, or copies.
template <class Work>
long ClIpFilterMid::Run(long nAxes, Work work) {
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage& In, ClImage& Out) {
        if (IsWiderThanImage(nAxes)) {
            Out = In;
            return 0L;
        }
        Out.New(In);
        if (In.SizeBytes() > 0)
            work(In, HalfWidth(), Out);
        return 0L;
    });
}

// Bytes

namespace {

template <class T>
void MeansOfBytes(const ClImage& In, long nHalfX, long nHalfY, ClImage& Out) {
    Kernels::MeanOfWindow(In.Line<const T>(0), In.LineStrideSamples(), In.Width(), In.Height(),
                          nHalfX, nHalfY, Out.Line<T>(0), Out.LineStrideSamples());
}

} // namespace

template <class T>
long ClIpFilterMid::Filter(long nAxes) {
    return Run(nAxes, [&](const ClImage& In, long nHalf, ClImage& Out) {
        MeansOfBytes<T>(In, (nAxes & ModeX) != 0 ? nHalf : 0, (nAxes & ModeY) != 0 ? nHalf : 0,
                        Out);
    });
}

template <class T>
long ClIpFilterMid::FilterXY() {
    return Run(ModeXY, [&](const ClImage& In, long nHalf, ClImage& Out) {
        const bool bThree = m_nFilterWidth == 3;
        if (m_pRemainder != nullptr && bThree)
            Process3x3Remainder<T>(In, Out);
        else if (m_pRemainder != nullptr)
            ProcessXYRemainder<T>(In, nHalf, Out);
        else if (bThree)
            Process3x3<T>(In, Out);
        else
            MeansOfBytes<T>(In, nHalf, nHalf, Out);
    });
}

template <class T>
void ClIpFilterMid::Process3x3(const ClImage& In, ClImage& Out) const {
    Kernels::Mean3x3(In.Line<const T>(0), In.LineStrideSamples(), In.Width(), In.Height(),
                     Out.Line<T>(0), Out.LineStrideSamples());
}

template <class T>
void ClIpFilterMid::ProcessXYRemainder(const ClImage& In, long nHalf, ClImage& Out) const {
    ClImage Remainder; // may replace one of the other two
    Remainder.NewWithType(ClImage::eDouble64, In.Width(), In.Height(), 1, In.PelsX(), In.PelsY());
    WalkSquares<T>(In, nHalf, [&](long x, long y, long long nSum, long nCount) {
        const T nMean = MeanSample<T>(nSum, nCount);
        Out.Line<T>(static_cast<int>(y))[x] = nMean;
        Remainder.Line<double>(static_cast<int>(y))[x] =
            static_cast<double>(nSum) / static_cast<double>(nCount) - nMean;
    });
    m_pRemainder->Swap(Remainder);
}

/// The exact mean needs no form of its own.
template <class T>
void ClIpFilterMid::Process3x3Remainder(const ClImage& In, ClImage& Out) const {
    ProcessXYRemainder<T>(In, 1, Out);
}

long ClIpFilterMid::ProcessX() {
    return Filter<unsigned char>(ModeX);
}

long ClIpFilterMid::ProcessY() {
    return Filter<unsigned char>(ModeY);
}

long ClIpFilterMid::ProcessXY() {
    return FilterXY<unsigned char>();
}

long ClIpFilterMid::ProcessSignedX() {
    return Filter<signed char>(ModeX);
}

long ClIpFilterMid::ProcessSignedY() {
    return Filter<signed char>(ModeY);
}

long ClIpFilterMid::ProcessSignedXY() {
    return FilterXY<signed char>();
}

// Along a direction per pixel

namespace {

/// The mean of the samples at most `nReach` steps away from pixel (`x`, `y`), none of which leaves
/// the image.
unsigned char MeanAlong(const ClImage& In, long x, long y, StPlanePoint Step, long nReach) {
    const unsigned char* pIn = In.Data();
    const long nStride = In.LineStrideBytes();
    long nSum = 0;
    for (long i = -nReach; i <= nReach; ++i) {
        const StPlanePoint At = PixelAt(x, y, Step, i);
        nSum += pIn[At.m_nY * nStride + At.m_nX];
    }
    return static_cast<unsigned char>(nSum / (2 * nReach + 1));
}

long DistanceToEdge(const ClImage& Image, long x, long y) {
    return std::min({x, Image.Width() - 1 - x, y, Image.Height() - 1 - y});
}

} // namespace

long ClIpFilterMid::ProcessDirected(bool bOrtho) {
    const long nCheck = CheckDirectionImages(VEK_FILE, cnNoDyImageLine);
    if (nCheck != 0)
        return nCheck;
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage& In, ClImage& Out) {
        Out.New(In);
        if (In.SizeBytes() > 0)
            WalkDirected<unsigned char>(
                *m_pInDxImage, *m_pInDyImage, bOrtho, Out, [&](long x, long y, StPlanePoint Step) {
                    const long nReach = std::min(HalfWidth(), DistanceToEdge(In, x, y));
                    return MeanAlong(In, x, y, Step, nReach);
                });
        return 0L;
    });
}

// Samples of other types

template <class T>
long ClIpFilterMid::ProcessT() {
    return ProcessAxes([this] { return ProcessT_X<T>(); }, [this] { return ProcessT_Y<T>(); },
                       [this] { return ProcessT_XY<T>(); }, VEK_HERE);
}

template <class T>
long ClIpFilterMid::ProcessT_X() {
    return Run(ModeX, [](const ClImage& In, long nHalf, ClImage& Out) {
        for (int y = 0; y < In.Height(); ++y)
            WalkMeans<T>(In.Line<const T>(y), 1, In.Width(), nHalf, Out.Line<T>(y), 1);
    });
}

template <class T>
long ClIpFilterMid::ProcessT_Y() {
    return Run(ModeY, [](const ClImage& In, long nHalf, ClImage& Out) {
        for (int x = 0; x < In.Width(); ++x)
            WalkMeans<T>(In.Line<const T>(0) + x, In.LineStrideSamples(), In.Height(), nHalf,
                         Out.Line<T>(0) + x, Out.LineStrideSamples());
    });
}

template <class T>
long ClIpFilterMid::ProcessT_XY() {
    return Run(ModeXY, [](const ClImage& In, long nHalf, ClImage& Out) {
        WalkSquares<T>(In, nHalf, [&](long x, long y, TpSumOf<T> sum, long nCount) {
            Out.Line<T>(static_cast<int>(y))[x] = MeanSample<T>(sum, nCount);
        });
    });
}

long ClIpFilterMid::ApplyParam(ClImage& In, ClImage& Out, long nWidth) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    m_nFilterWidth = nWidth;
    return Apply();
}
