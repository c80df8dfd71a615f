// Minimum, maximum, median and mean against their definitions: any shape, window and content, at
// every instruction level.

#include "OperatorCase.h"

#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/NaiveRankFilter.h"

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_Compared("an operator is compared");

struct StCase {
    ClTestImage m_In;
    long m_nMode;
    long m_nWidth;
};

template <class Filter>
void Compare(const StCase& Case, const RealRows& aExpected, const char* szPromise) {
    Fuzz::AtEveryLevel([&] {
        ClTestImage In = Case.m_In;
        ClImage Out;
        Filter filter;
        filter.m_pInImage = &In;
        filter.m_pOutImage = &Out;
        filter.m_nMode = Case.m_nMode;
        filter.m_nFilterWidth = Case.m_nWidth;
        Fuzz::Require(filter.Apply() == 0 && RealPixels(Out) == aExpected, szPromise);
        s_Compared.Reach();
    });
}

bool IsWiderThanImage(const StCase& Case) {
    return ((Case.m_nMode & 1) != 0 && Case.m_nWidth > Case.m_In.Width()) ||
           ((Case.m_nMode & 2) != 0 && Case.m_nWidth > Case.m_In.Height());
}

RealRows Mean(const StCase& Case, const RealRows& aIn) {
    if (IsWiderThanImage(Case))
        return aIn;
    const bool bSquare = Case.m_nMode == 3 && Case.m_nWidth == 3;
    return bSquare ? NaiveMean3x3(aIn) : NaiveMean(aIn, Case.m_nMode, Case.m_nWidth);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const int nFilter = Bytes.Below(4);
    const long nMode = 1 + Bytes.Below(3);
    const long nMostHalf = nFilter == 2 ? 3 : 20; // the windows of a median are small
    const long nWidth = 3 + 2 * (Bytes.Next() % nMostHalf);
    const StCase Case = {Fuzz::ImageFrom(Bytes, 70, nFilter != 3), nMode, nWidth};
    const RealRows aIn = RealPixels(Case.m_In);
    if (nFilter == 0)
        Compare<ClIpFilterMax>(Case, NaiveMax(aIn, nMode, nWidth), "a maximum is the largest");
    else if (nFilter == 1)
        Compare<ClIpFilterMin>(Case, NaiveMin(aIn, nMode, nWidth), "a minimum is the smallest");
    else if (nFilter == 2)
        Compare<ClIpFilterMedian>(Case, NaiveMedian(aIn, nMode, nWidth), "a median is the middle");
    else
        Compare<ClIpFilterMid>(Case, Mean(Case, aIn), "a mean is the mean");
    return 0;
}
