// The connected parts of a mask. Runs of neighbouring lines connect where they share a column.
//
// Runs are sorted, so that those of a line that reach into given columns are found by bisection,
// and a blob is followed breadth first: a list of the runs found is at the same time the list of
// those whose neighbours are still to be looked for. A blob may have any number of runs; the work
// is that of a sorted look-up per run, and memory is taken once per mask.

#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskArithmetic.h"
#include "ImageProcessing/MaskChain.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace {

using Limits = std::numeric_limits<std::int64_t>;
using Mask::Difference;
using STEntry = ClMask2::STEntry;
using Runs = TpArrayDynamic<STEntry, 100>;

long Pixels(const STEntry& Run) {
    return Mask::Extent(Run.nFrom, Run.nTo);
}

bool Overlap(const STEntry& a, const STEntry& b) {
    return a.nFrom <= b.nTo && a.nTo >= b.nFrom;
}

/// Indexes of runs, in the order in which they were found.
struct StBlob {
    const unsigned long* m_pBegin = nullptr;
    const unsigned long* m_pEnd = nullptr;

    const unsigned long* begin() const { return m_pBegin; }
    const unsigned long* end() const { return m_pEnd; }
};

/// The unconsumed runs of a mask, which stays as it is meanwhile, to be taken blob by blob.
class ClBlobs {
public:
    explicit ClBlobs(const Runs& aRuns);

    /// Whether a run is still to be taken.
    bool Has(unsigned long nRun) const { return !m_pTaken[nRun]; }
    /// Takes the run and all that connect with it.
    StBlob Take(unsigned long nRun);
    /// Everything taken so far.
    StBlob Taken() const { return {m_pFound.get(), m_pFound.get() + m_nFound}; }

private:
    void SortRuns();
    void Find(unsigned long nRun);
    void FindNeighbours(const STEntry& Seed, std::int64_t nLine);
    const STEntry& Sorted(unsigned long nPlace) const { return m_rRuns[m_pOrder[nPlace]]; }
    unsigned long FirstReaching(std::int64_t nLine, std::int64_t nColumn) const;

    const Runs& m_rRuns;
    unsigned long m_nPlaces = 0;
    unsigned long m_nFound = 0;
    std::unique_ptr<unsigned long[]> m_pOrder; ///< runs by line and column, one per place
    /// Per place, the last column of the runs of its line up to there. Runs that were scaled down
    /// may overlap, and then their own last columns do not ascend.
    std::unique_ptr<std::int64_t[]> m_pReach;
    std::unique_ptr<unsigned long[]> m_pFound;
    std::unique_ptr<bool[]> m_pTaken; ///< by run
};

ClBlobs::ClBlobs(const Runs& aRuns)
    : m_rRuns(aRuns), m_pOrder(Vek::NewArrayPtr<unsigned long>(aRuns.Entries())),
      m_pReach(Vek::NewArrayPtr<std::int64_t>(aRuns.Entries())),
      m_pFound(Vek::NewArrayPtr<unsigned long>(aRuns.Entries())),
      m_pTaken(Vek::NewArrayPtr<bool>(aRuns.Entries())) {
    for (unsigned long i = 0; i < aRuns.Entries(); ++i) {
        m_pTaken[i] = aRuns[i].nLine == -1;
        if (!m_pTaken[i])
            m_pOrder[m_nPlaces++] = i;
    }
    SortRuns();
}

void ClBlobs::SortRuns() {
    unsigned long* pEnd = m_pOrder.get() + m_nPlaces;
    const auto Before = [this](unsigned long a, unsigned long b) {
        return m_rRuns[a] < m_rRuns[b];
    };
    if (!std::is_sorted(m_pOrder.get(), pEnd, Before))
        std::sort(m_pOrder.get(), pEnd, Before);
    for (unsigned long i = 0; i < m_nPlaces; ++i) {
        const bool bSameLine = i > 0 && Sorted(i - 1).nLine == Sorted(i).nLine;
        m_pReach[i] = bSameLine ? std::max(m_pReach[i - 1], Sorted(i).nTo) : Sorted(i).nTo;
    }
}

unsigned long ClBlobs::FirstReaching(std::int64_t nLine, std::int64_t nColumn) const {
    unsigned long nBegin = 0;
    unsigned long nEnd = m_nPlaces;
    while (nBegin < nEnd) {
        const unsigned long nMiddle = nBegin + (nEnd - nBegin) / 2;
        const std::int64_t nItsLine = Sorted(nMiddle).nLine;
        if (nItsLine < nLine || (nItsLine == nLine && m_pReach[nMiddle] < nColumn))
            nBegin = nMiddle + 1;
        else
            nEnd = nMiddle;
    }
    return nBegin;
}

void ClBlobs::Find(unsigned long nRun) {
    m_pTaken[nRun] = true;
    m_pFound[m_nFound++] = nRun;
}

void ClBlobs::FindNeighbours(const STEntry& Seed, std::int64_t nLine) {
    for (unsigned long i = FirstReaching(nLine, Seed.nFrom); i < m_nPlaces; ++i) {
        const STEntry& Run = Sorted(i);
        if (Run.nLine != nLine || Run.nFrom > Seed.nTo)
            return;
        if (Has(m_pOrder[i]) && Overlap(Run, Seed))
            Find(m_pOrder[i]);
    }
}

StBlob ClBlobs::Take(unsigned long nRun) {
    const unsigned long nBegin = m_nFound;
    Find(nRun);
    for (unsigned long i = nBegin; i < m_nFound; ++i) {
        const STEntry& Seed = m_rRuns[m_pFound[i]];
        if (Seed.nLine > Limits::min())
            FindNeighbours(Seed, Seed.nLine - 1);
        if (Seed.nLine < Limits::max())
            FindNeighbours(Seed, Seed.nLine + 1);
    }
    return {m_pFound.get() + nBegin, m_pFound.get() + m_nFound};
}

long Pixels(const Runs& aRuns, const StBlob& Blob) {
    long nSum = 0;
    for (const unsigned long nRun : Blob)
        nSum = Mask::Sum(nSum, Pixels(aRuns[nRun]));
    return nSum;
}

/// Moves a blob from one list to another and returns its pixels. A run is consumed only once
/// there is room for all of them.
long Move(Runs& aFrom, const StBlob& Blob, Runs& aTo) {
    aTo.Reserve(aTo.Entries() + static_cast<unsigned long>(Blob.end() - Blob.begin()));
    const long nPixels = Pixels(aFrom, Blob);
    for (const unsigned long nRun : Blob) {
        aTo.Append(aFrom[nRun]);
        aFrom[nRun].nLine = -1;
    }
    return nPixels;
}

} // namespace

long ClMask2::CompleteFgBlob(long nIdx, long nStep, STEntry Seed, ClMask2& Out) {
    ClBlobs Blobs(m_aEntries);
    STEntry Run;
    while (GetNextFgEntry(nIdx, nStep, Run)) {
        const std::int64_t nDistance =
            Difference(std::max(Run.nLine, Seed.nLine), std::min(Run.nLine, Seed.nLine));
        if (nDistance > 1)
            break;
        const unsigned long nRun = static_cast<unsigned long>(nIdx);
        if (nDistance == 1 && Overlap(Run, Seed) && Blobs.Has(nRun))
            Blobs.Take(nRun);
        if (nStep == 0 || !Advance(nIdx, nStep))
            break;
    }
    return Move(m_aEntries, Blobs.Taken(), Out.m_aEntries);
}

long ClMask2::SeparateFgBlob(long nIdx, ClMask2& Out) {
    Out.Reset();
    Out.CopyHeader(*this);
    if (nIdx < 0 || nIdx >= static_cast<long>(m_aEntries.Entries()))
        return 0;
    const unsigned long nRun = static_cast<unsigned long>(nIdx);
    ClBlobs Blobs(m_aEntries);
    if (!Blobs.Has(nRun))
        return 0;
    const long nPixels = Move(m_aEntries, Blobs.Take(nRun), Out.m_aEntries);
    std::sort(Out.m_aEntries.Data(), Out.m_aEntries.Data() + Out.m_aEntries.Entries());
    return nPixels;
}

long ClMask2::RemoveSmallFgBlobs(long nMinSize, bool bKeepBorderBlobs) {
    ClBlobs Blobs(m_aEntries);
    ClMask2 Removed;
    Removed.m_aEntries.Reserve(m_aEntries.Entries());
    long nKept = 0;
    for (unsigned long i = 0; i + 1 < m_aEntries.Entries(); ++i) {
        if (!Blobs.Has(i))
            continue;
        const StBlob Blob = Blobs.Take(i);
        unsigned nBorders = 0;
        for (const unsigned long nRun : Blob)
            nBorders |= BordersOf(m_aEntries[nRun]);
        const long nSize = Pixels(m_aEntries, Blob);
        if (nSize >= nMinSize || (nSize > 0 && bKeepBorderBlobs && nBorders != 0))
            ++nKept;
        else if (nSize > 0) // runs that end before they begin are nothing to remove
            for (const unsigned long nRun : Blob)
                Removed.m_aEntries.Append(m_aEntries[nRun]);
    }
    RemoveSubMask(Removed);
    return nKept;
}

long ClMask2::RemoveSmallFgBlobs() {
    return RemoveSmallFgBlobs(GetMaxFgBlobSize(), false);
}

long ClMask2::GetMaxFgBlobSize() const {
    ClBlobs Blobs(m_aEntries);
    long nLargest = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
        if (Blobs.Has(i))
            nLargest = std::max(nLargest, Pixels(m_aEntries, Blobs.Take(i)));
    return nLargest;
}

void ClMask2::RemoveBgBlobs() {
    if (m_aEntries.Entries() == 0 || m_aPrecutSteps.Entries() == 0)
        return;
    ClMask2 Inverse;
    Inverse.Invert(*this);
    Inverse.RemoveSmallFgBlobs(Chain().Width() * Chain().Height(), true);
    Invert(Inverse);
}

unsigned ClMask2::BordersOf(const STEntry& Run) const {
    if (m_aPrecutSteps.Entries() == 0 || Run.nLine == -1)
        return 0;
    return (Run.nFrom <= 0 ? 1U : 0U) | (Run.nTo >= Chain().Width() - 1 ? 2U : 0U) |
           (Run.nLine == 0 ? 4U : 0U) | (Run.nLine == Chain().Height() - 1 ? 8U : 0U);
}

int ClMask2::CountBorders() const {
    unsigned nBorders = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
        nBorders |= BordersOf(m_aEntries[i]);
    int nCount = 0;
    for (; nBorders != 0; nBorders &= nBorders - 1)
        ++nCount;
    return nCount;
}
