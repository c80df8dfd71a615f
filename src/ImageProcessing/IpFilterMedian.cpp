#include "ImageProcessing/IpFilterMedian.h"

#include "ImageProcessing/Kernels/Median.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/RequireBytes.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <limits>

namespace {

constexpr long cnNarrowest = 3;
constexpr long cnWidest = 100;

template <class T>
T SortByCounting(T* pBuffer, long nCount) {
    constexpr int cnLowest = std::numeric_limits<T>::min();
    long anCount[256] = {};
    for (long i = 0; i < nCount; ++i)
        ++anCount[pBuffer[i] - cnLowest];
    T* pNext = pBuffer;
    for (int i = 0; i < 256; ++i)
        pNext = std::fill_n(pNext, anCount[i], static_cast<T>(cnLowest + i));
    return nCount > 0 ? pBuffer[nCount >> 1] : T{0};
}

} // namespace

ClProcessorBase* ClIpFilterMedian::Create() {
    return Vek::NewObject<ClIpFilterMedian>();
}

const char* ClIpFilterMedian::Name() const {
    return "ClIpFilterMedian";
}

long ClIpFilterMedian::Initialize() {
    return 0;
}

long ClIpFilterMedian::Check(unsigned char nType) const {
    if (!HasImages() || m_nFilterWidth < cnNarrowest || m_nFilterWidth > cnWidest)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (m_pInImage->Width() < 1 || m_pInImage->Height() < 1)
        return QMT_ERROR_BITMAP_DIMENSION;
    RequireType(*m_pInImage, nType, VEK_HERE);
    return 0;
}

template <class T>
long ClIpFilterMedian::Filter(unsigned char nType, bool bX, bool bY) {
    const long nCheck = Check(nType);
    if (nCheck != 0)
        return nCheck;
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage& In, ClImage& Out) {
        const long nHalf = HalfWidth();
        Out = In;
        if (In.SizeBytes() > 0)
            Kernels::MedianOfWindow(In.Line<const T>(0), In.LineStrideSamples(), In.Width(),
                                    In.Height(), bX ? nHalf : 0, bY ? nHalf : 0, Out.Line<T>(0),
                                    Out.LineStrideSamples());
        return 0L;
    });
}

long ClIpFilterMedian::ProcessX() {
    return Filter<unsigned char>(ClImage::eUInt8, true, false);
}

long ClIpFilterMedian::ProcessY() {
    return Filter<unsigned char>(ClImage::eUInt8, false, true);
}

long ClIpFilterMedian::ProcessXY() {
    return Filter<unsigned char>(ClImage::eUInt8, true, true);
}

long ClIpFilterMedian::ProcessSignedX() {
    return Filter<signed char>(ClImage::eInt8, true, false);
}

long ClIpFilterMedian::ProcessSignedY() {
    return Filter<signed char>(ClImage::eInt8, false, true);
}

long ClIpFilterMedian::ProcessSignedXY() {
    return Filter<signed char>(ClImage::eInt8, true, true);
}

long ClIpFilterMedian::ApplyParam(ClImage& In, ClImage& Out, long nWidth) {
    m_pInImage = &In;
    m_pOutImage = &Out;
    m_nFilterWidth = nWidth;
    m_nMode |= ModeXY;
    return Apply();
}

unsigned char ClIpFilterMedian::Bubblesort(unsigned char* pBuffer, long nCount) {
    return SortByCounting(pBuffer, nCount);
}

signed char ClIpFilterMedian::BubblesortSigned(signed char* pBuffer, long nCount) {
    return SortByCounting(pBuffer, nCount);
}
