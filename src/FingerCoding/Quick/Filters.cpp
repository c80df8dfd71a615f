#include "FingerCoding/Quick/Filters.h"

#include "ImageProcessing/Kernels/Histogram.h"
#include "ImageProcessing/Kernels/LookUp.h"
#include "ImageProcessing/Kernels/Mean.h"

namespace Quick {

void Mean(const StPlane& In, long nHalf, const StPlane& Out, Kernels::ClScratch& rScratch) {
    Kernels::MeanOfWindow<unsigned char>(In.m_pData, In.m_nStride, In.m_nWidth, In.m_nHeight, nHalf,
                                         nHalf, Out.m_pData, Out.m_nStride, rScratch);
}

namespace {

template <Kernels::EExtreme eKind>
void ExtremeOf(const StPlane& In, long nHalf, const StPlane& Out, Kernels::ClScratch& rScratch) {
    Kernels::ExtremeOverSquares<eKind, unsigned char>(In.m_pData, In.m_nStride, In.m_nWidth,
                                                      In.m_nHeight, nHalf, Out.m_pData,
                                                      Out.m_nStride, rScratch);
}

} // namespace

void Extreme(Kernels::EExtreme eKind, const StPlane& In, long nHalf, const StPlane& Out,
             Kernels::ClScratch& rScratch) {
    if (eKind == Kernels::EExtreme::eMin)
        ExtremeOf<Kernels::EExtreme::eMin>(In, nHalf, Out, rScratch);
    else
        ExtremeOf<Kernels::EExtreme::eMax>(In, nHalf, Out, rScratch);
}

void LookUp(const StPlane& In, const unsigned char* pTable, const StPlane& Out) {
    Kernels::ClLookUp(pTable).Run(In.m_pData, In.m_nStride, In.m_nWidth, In.m_nHeight, Out.m_pData,
                                  Out.m_nStride);
}

Kernels::StPairOfPlanes PairOf(const StPlane& A, const StPlane& B, const StPlane& Out) {
    return {A.m_pData,  A.m_nStride, B.m_pData,   B.m_nStride,
            A.m_nWidth, A.m_nHeight, Out.m_pData, Out.m_nStride};
}

ClHistogram HistogramOf(const StPlane& Plane) {
    ClHistogram Histogram;
    Kernels::CountValues(Plane.m_pData, Plane.m_nStride, Plane.m_nWidth, Plane.m_nHeight,
                         Histogram.m_anCount);
    return Histogram;
}

} // namespace Quick
