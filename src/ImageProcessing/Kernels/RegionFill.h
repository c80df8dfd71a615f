#pragma once

/// Scanline filling of one region of pixels that join by their four direct neighbours.
///
/// A step of the fill takes a seed off the stack, closes the whole run of open pixels around it
/// and puts one seed per open run that touches it from the lines above and below. Each contact of
/// two runs makes at most one seed, and a seed whose run is closed meanwhile costs one look: the
/// work is linear in the pixels of the region. The stack is explicit, and the call stack stays
/// flat, whatever the shape.

#include "ImageProcessing/Kernels/Runs.h"
#include "Tools/Array.h"

#include <algorithm>
#include <cstddef>

namespace Kernels {

/// The places from which a region is still to be filled, last in first out.
template <class Seed>
class TpSeeds {
public:
    static constexpr unsigned long cnStep = 100;

    TpSeeds() = default;
    explicit TpSeeds(unsigned long nCapacity) { m_aSeeds.Reserve(nCapacity); }

    bool IsEmpty() const { return m_aSeeds.Entries() == 0; }
    void Clear() { m_aSeeds.Clear(); }
    unsigned long Capacity() const { return m_aSeeds.Capacity(); }

    /// Grows in whole steps of 100 seeds, by at least what is there: the copying stays linear
    /// also where a region needs very many. Throws `ClExBadAlloc` (-102).
    void Push(const Seed& rSeed) {
        if (m_aSeeds.Entries() == m_aSeeds.Capacity())
            m_aSeeds.Reserve(m_aSeeds.Capacity() + std::max(cnStep, m_aSeeds.Capacity()));
        m_aSeeds.Append(rSeed);
    }

    Seed Pop() {
        const unsigned long nLast = m_aSeeds.Entries() - 1;
        const Seed Last = m_aSeeds[nLast];
        m_aSeeds.SetEntries(nLast);
        return Last;
    }

private:
    TpArrayDynamic<Seed, cnStep> m_aSeeds;
};

/// Puts a seed on each open run of line `nLine` between the two places.
template <class Area, class Seed>
void PushOpenRuns(const Area& rArea, StRun Run, long nLine, TpSeeds<Seed>& rSeeds) {
    const auto pushOpen = [&](StRun Found) {
        if (rArea.IsOpen(Found.m_nBegin, nLine))
            rSeeds.Push({Found.m_nBegin, nLine});
    };
    ForEachRun(rArea.Line(nLine), Run.m_nBegin, Run.m_nEnd, rArea.OpenValue(), pushOpen);
}

/// Fills the regions of all seeds, and takes the seeds off. An area says
///
///     Width(), Lines()  its size
///     OpenValue()       the byte of pixels that may be open
///     Line(y)           the bytes of a line: a run of that value is open or closed as a whole
///     IsOpen(x, y)      whether a pixel is open
///     Close(run, y)     closes a run
///
/// A seed is a pair of x and y. What the stack and Close() throw passes: the regions are then
/// filled in part, and seeds are left.
template <class Area, class Seed>
void FillRegion(Area& rArea, TpSeeds<Seed>& rSeeds) {
    while (!rSeeds.IsEmpty()) {
        const auto [x, y] = rSeeds.Pop();
        if (!rArea.IsOpen(x, y))
            continue;
        const unsigned char* pLine = rArea.Line(y);
        const StRun Run = {FindRunBegin(pLine, x, rArea.OpenValue()),
                           FindOther(pLine, x, rArea.Width(), rArea.OpenValue())};
        rArea.Close(Run, y);
        if (y + 1 < rArea.Lines())
            PushOpenRuns(rArea, Run, y + 1, rSeeds);
        if (y > 0)
            PushOpenRuns(rArea, Run, y - 1, rSeeds);
    }
}

} // namespace Kernels
