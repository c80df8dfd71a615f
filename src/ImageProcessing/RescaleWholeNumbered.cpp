// Whole factors. From the resolution p of an axis to n, the factor is
//
//     n above p:   f = n / p, and 1 more where the remainder exceeds p / 2;  out[i] = in[i / f]
//     n below p:   f = p / n, and 1 more where the remainder exceeds n / 2;  out[i] = in[i * f]
//
// and 0 behind the input's end: no new grey value arises, and every sample is repeated as often as
// any other. The size is that of the exact quotient. An axis without resolution, or with the same,
// stays as it is.

#include "ImageProcessing/IpRescale.h"
#include "Tools/Allocate.h"

namespace {

constexpr int cnOutside = -1;

int RoundedQuotient(int nLarge, int nSmall) {
    return nLarge / nSmall + (nLarge % nSmall > nSmall / 2 ? 1 : 0);
}

/// Above 0: how often a sample is repeated; below 0: minus the distance of the samples picked; 0:
/// the axis stays.
int WholeFactor(int nPels, int nNewPels) {
    if (nPels < 1 || nNewPels < 1 || nPels == nNewPels)
        return 0;
    return nNewPels > nPels ? RoundedQuotient(nNewPels, nPels) : -RoundedQuotient(nPels, nNewPels);
}

template <class SourceOf>
void FillSources(int nIn, int nOut, int* pSources, SourceOf sourceOf) {
    for (int i = 0; i < nOut; ++i) {
        const long long nSource = sourceOf(i);
        pSources[i] = nSource < nIn ? static_cast<int>(nSource) : cnOutside;
    }
}

} // namespace

void ClIpRescale::ProcessWholeNumbered(const ClImage& In, ClImage& Out) const {
    NewOutput(In, m_nDestWidth, m_nDestHeight, Out);
    const auto aColumns = Vek::NewArrayPtr<int>(static_cast<std::size_t>(m_nDestWidth));
    const auto aLines = Vek::NewArrayPtr<int>(static_cast<std::size_t>(m_nDestHeight));
    const int nFactorX = WholeFactor(In.PelsX(), m_nDestPelsX);
    if (nFactorX < 0)
        ProcessXWholeNumberedSubsample(-nFactorX, In.Width(), aColumns.get());
    else
        ProcessXWholeNumberedResize(nFactorX == 0 ? 1 : nFactorX, In.Width(), aColumns.get());
    const int nFactorY = WholeFactor(In.PelsY(), m_nDestPelsY);
    if (nFactorY < 0)
        ProcessYWholeNumberedSubsample(-nFactorY, In.Height(), aLines.get());
    else
        ProcessYWholeNumberedResize(nFactorY == 0 ? 1 : nFactorY, In.Height(), aLines.get());
    Gather(In, aColumns.get(), aLines.get(), Out);
}

void ClIpRescale::ProcessXWholeNumberedResize(int nFactor, int nInWidth, int* pColumns) const {
    FillSources(nInWidth, m_nDestWidth, pColumns, [=](int x) { return x / nFactor; });
}

void ClIpRescale::ProcessYWholeNumberedResize(int nFactor, int nInHeight, int* pLines) const {
    FillSources(nInHeight, m_nDestHeight, pLines, [=](int y) { return y / nFactor; });
}

void ClIpRescale::ProcessXWholeNumberedSubsample(int nFactor, int nInWidth, int* pColumns) const {
    FillSources(nInWidth, m_nDestWidth, pColumns, [=](long long x) { return x * nFactor; });
}

void ClIpRescale::ProcessYWholeNumberedSubsample(int nFactor, int nInHeight, int* pLines) const {
    FillSources(nInHeight, m_nDestHeight, pLines, [=](long long y) { return y * nFactor; });
}
