// The runs of a mask as a whole: at another resolution, and inverted.

#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskArithmetic.h"
#include "ImageProcessing/MaskChain.h"

#include <algorithm>

namespace {

using Mask::Scaled;
using STEntry = ClMask2::STEntry;
using Runs = TpArrayDynamic<STEntry, 100>;

/// What a change of resolution makes of runs.
class ClRunScaling {
public:
    ClRunScaling(const Runs& aRuns, double dScaleX, double dScaleY, int nHeight)
        : m_rRuns(aRuns), m_dScaleX(dScaleX), m_dScaleY(dScaleY), m_nHeight(nHeight) {}

    bool Fits(int nWidth) const {
        for (unsigned long i = 0; i < m_rRuns.Entries(); ++i)
            if (Scaled(m_rRuns[i].nTo, m_dScaleX) >= nWidth || FirstLine(i) >= m_nHeight)
                return false;
        return true;
    }

    void AppendTo(Runs& aScaled) const {
        unsigned long nCount = 0;
        for (unsigned long i = 0; i < m_rRuns.Entries(); ++i)
            nCount += static_cast<unsigned long>(EndLine(i) - FirstLine(i));
        aScaled.Reserve(nCount);
        for (unsigned long nBegin = 0; nBegin < m_rRuns.Entries();)
            nBegin = AppendLine(nBegin, aScaled);
    }

private:
    /// Line for line the runs of the line of run `nBegin`; returns where the next line begins.
    unsigned long AppendLine(unsigned long nBegin, Runs& aScaled) const {
        unsigned long nEnd = nBegin;
        while (nEnd < m_rRuns.Entries() && m_rRuns[nEnd].nLine == m_rRuns[nBegin].nLine)
            ++nEnd;
        for (std::int64_t nLine = FirstLine(nBegin); nLine < EndLine(nBegin); ++nLine)
            for (unsigned long i = nBegin; i < nEnd; ++i)
                aScaled.Append({Scaled(m_rRuns[i].nFrom, m_dScaleX),
                                Scaled(m_rRuns[i].nTo, m_dScaleX), nLine});
        return nEnd;
    }

    std::int64_t FirstLine(unsigned long nRun) const {
        return Scaled(m_rRuns[nRun].nLine, m_dScaleY);
    }

    std::int64_t EndLine(unsigned long nRun) const {
        const std::int64_t nNext = Scaled(Mask::Sum(m_rRuns[nRun].nLine, 1), m_dScaleY);
        return std::max(FirstLine(nRun) + 1, std::min<std::int64_t>(nNext, m_nHeight));
    }

    const Runs& m_rRuns;
    double m_dScaleX;
    double m_dScaleY;
    int m_nHeight;
};

/// Runs by line and column.
void SortRuns(Runs& aRuns) {
    STEntry* pEnd = aRuns.Data() + aRuns.Entries();
    if (!std::is_sorted(aRuns.Data(), pEnd))
        std::sort(aRuns.Data(), pEnd);
}

} // namespace

void ClMask2::ResizeMask(int nWidth, int nHeight, int nPelsX, int nPelsY) {
    if (nPelsX < 1 || nPelsY < 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PELS, VEK_HERE);
    if (m_nPelsX >= 1 && m_nPelsY >= 1) {
        const double sx = static_cast<double>(nPelsX) / m_nPelsX;
        const double sy = static_cast<double>(nPelsY) / m_nPelsY;
        const ClRunScaling Scaling(m_aEntries, sx, sy, nHeight);
        if (!Scaling.Fits(nWidth))
            throw ClException("New Width or Height too small.", QMT_ERROR_INTERNAL, true, VEK_HERE);
        Runs aScaled;
        Scaling.AppendTo(aScaled);
        m_aEntries = aScaled;
        for (unsigned long i = 0; i < m_aPrecutSteps.Entries(); ++i)
            m_aPrecutSteps[i].Scale(sx, sy);
    }
    m_nPelsX = nPelsX;
    m_nPelsY = nPelsY;
}

namespace {

/// The runs between those of one line, of which `nRun` is the first; moves it to the next line.
void AppendGaps(const Runs& aRuns, unsigned long& nRun, std::int64_t nLine, std::int64_t nWidth,
                Runs& aGaps) {
    std::int64_t nOpen = 0; // first column not yet covered
    for (; nRun < aRuns.Entries() && aRuns[nRun].nLine == nLine; ++nRun) {
        const std::int64_t nStop = std::min(aRuns[nRun].nFrom, nWidth);
        if (nStop > nOpen)
            aGaps.Append({nOpen, nStop - 1, nLine});
        nOpen = std::max(nOpen, std::min(aRuns[nRun].nTo, nWidth - 1) + 1);
    }
    if (nOpen < nWidth)
        aGaps.Append({nOpen, nWidth - 1, nLine});
}

} // namespace

void ClMask2::Invert(const ClMask2& From) {
    const Mask::ClPrecutChain Frame(From);
    const long nHeight = std::max(Frame.Height(), 0L);
    Runs aRuns(From.m_aEntries);
    SortRuns(aRuns);
    ClMask2 Inverse;
    Inverse.CopyHeader(From);
    Inverse.m_aEntries.Reserve(aRuns.Entries() + static_cast<unsigned long>(nHeight));
    unsigned long nRun = 0;
    while (nRun < aRuns.Entries() && aRuns[nRun].nLine < 0)
        ++nRun;
    for (long nLine = 0; nLine < nHeight; ++nLine)
        AppendGaps(aRuns, nRun, nLine, Frame.Width(), Inverse.m_aEntries);
    *this = Inverse;
}
