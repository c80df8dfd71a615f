// Nearest neighbour. The step of an axis, in 12-bit fixed point, is the quotient of the
// resolutions where both are known and that of the sizes elsewhere:
//
//     step = (pels << 12) / destPels    or    (w << 12) / W
//     out(x, y) = in(x * stepX >> 12, y * stepY >> 12), 0 for a source outside the image
//
// The resolutions say where a sample lies even when the size has been rounded up, so that two
// images of one scene stay registered. The last samples may then lie behind the input's edge.

#include "ImageProcessing/RescaleModes.h"
#include "Tools/Allocate.h"

#include <algorithm>

namespace {

constexpr long long cnOne = 4096; ///< 1.0 in fixed point

std::unique_ptr<int[]> NearestSources(int nIn, int nOut, long long nInPels, int nOutPels) {
    const bool bByPels = nInPels != 0 && nOutPels != 0;
    const long long nStep = bByPels ? nInPels * cnOne / nOutPels : nIn * cnOne / nOut;
    auto aSources = Vek::NewArrayPtr<int>(static_cast<std::size_t>(nOut));
    for (int i = 0; i < nOut; ++i) {
        const long long nSource = (i * nStep) >> 12;
        aSources[static_cast<std::size_t>(i)] =
            nSource >= 0 && nSource < nIn ? static_cast<int>(nSource) : Rescale::cnOutside;
    }
    return aSources;
}

void GatherLine(const unsigned char* pIn, const int* pColumns, int nWidth, unsigned char* pOut) {
    for (int x = 0; x < nWidth; ++x)
        pOut[x] = pColumns[x] >= 0 ? pIn[pColumns[x]] : static_cast<unsigned char>(0);
}

} // namespace

void Rescale::ProcessNearestNeighbour(ClIpRescale& rRun, const ClImage& In, ClImage& Out) {
    NewOutput(rRun, In, rRun.m_nDestWidth, rRun.m_nDestHeight, Out);
    const auto aColumns = NearestSources(In.Width(), Out.Width(), In.PelsX(), rRun.m_nDestPelsX);
    const auto aLines = NearestSources(In.Height(), Out.Height(), In.PelsY(), rRun.m_nDestPelsY);
    Gather(In, aColumns.get(), aLines.get(), Out);
}

void Rescale::Gather(const ClImage& In, const int* pColumns, const int* pLines, ClImage& Out) {
    for (int y = 0; y < Out.Height(); ++y)
        if (pLines[y] < 0)
            std::fill_n(Out.LineData(y), Out.Width(), static_cast<unsigned char>(0));
        else if (y > 0 && pLines[y] == pLines[y - 1])
            std::copy_n(Out.LineData(y - 1), Out.Width(), Out.LineData(y));
        else
            GatherLine(In.LineData(pLines[y]), pColumns, Out.Width(), Out.LineData(y));
}
