// Whole factors. From the resolution p of an axis to n, the factor is
//
//     n above p:   f = n / p, and 1 more where the remainder exceeds p / 2;  out[i] = in[i / f]
//     n below p:   f = p / n, and 1 more where the remainder exceeds n / 2;  out[i] = in[i * f]
//
// and 0 behind the input's end: no new grey value arises, and every sample is repeated as often as
// any other. The size is that of the exact quotient. An axis without resolution, or with the same,
// stays as it is.

#include "ImageProcessing/RescaleModes.h"
#include "Tools/Allocate.h"

#include <algorithm>

namespace {

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

using Sources = std::unique_ptr<int[]>;

template <class SourceOf>
Sources FillSources(int nIn, int nOut, SourceOf sourceOf) {
    auto aSources = Vek::NewArrayPtr<int>(static_cast<std::size_t>(nOut));
    for (int i = 0; i < nOut; ++i) {
        const long long nSource = sourceOf(i);
        aSources[static_cast<std::size_t>(i)] =
            nSource < nIn ? static_cast<int>(nSource) : Rescale::cnOutside;
    }
    return aSources;
}

/// The samples of one axis.
Sources WholeNumberedSources(int nIn, int nOut, int nFactor) {
    if (nFactor < 0)
        return FillSources(nIn, nOut, [=](long long i) { return i * -nFactor; });
    return FillSources(nIn, nOut, [=](int i) { return i / std::max(nFactor, 1); });
}

} // namespace

void Rescale::ProcessWholeNumbered(ClIpRescale& rRun, const ClImage& In, ClImage& Out) {
    NewOutput(rRun, In, rRun.m_nDestWidth, rRun.m_nDestHeight, Out);
    const Sources aColumns =
        WholeNumberedSources(In.Width(), Out.Width(), WholeFactor(In.PelsX(), rRun.m_nDestPelsX));
    const Sources aLines =
        WholeNumberedSources(In.Height(), Out.Height(), WholeFactor(In.PelsY(), rRun.m_nDestPelsY));
    Gather(In, aColumns.get(), aLines.get(), Out);
}
