#include "FingerCoding/Quick/Spans.h"

#include "ImageProcessing/Kernels/Runs.h"

#include <utility>

namespace Quick {

namespace {

constexpr unsigned char cnRegion = 1;
constexpr unsigned char cnGround = 0;

} // namespace

void ClSpans::Find(const StPlane& Plane) {
    Clear();
    for (long y = 0; y < Plane.m_nHeight; ++y)
        Append(Plane.Line(y), static_cast<int>(y), Plane.m_nWidth);
}

void ClSpans::Append(const unsigned char* pLine, int nLine, long nWidth) {
    for (long nEnd = 0;;) {
        const long nBegin = Kernels::FindValue(pLine, nEnd, nWidth, cnRegion);
        if (nBegin == nWidth)
            return;
        nEnd = Kernels::FindValue(pLine, nBegin, nWidth, cnGround);
        m_pSpans[m_nCount++] = {nLine, static_cast<int>(nBegin), static_cast<int>(nEnd - 1)};
    }
}

StBox ClSpans::Box() const {
    if (IsEmpty())
        return {};
    StBox Box{m_pSpans[0].m_nFirst, m_pSpans[0].m_nLine, 0, m_pSpans[m_nCount - 1].m_nLine + 1L};
    for (const StSpan& Span : *this) {
        Box.m_nLeft = std::min<long>(Box.m_nLeft, Span.m_nFirst);
        Box.m_nRight = std::max<long>(Box.m_nRight, Span.m_nLast + 1L);
    }
    return Box;
}

// Blobs

int ClSpans::RootOf(int nSpan) {
    while (m_Scratch.m_pRoots[nSpan] != nSpan)
        nSpan = m_Scratch.m_pRoots[nSpan] = m_Scratch.m_pRoots[m_Scratch.m_pRoots[nSpan]];
    return nSpan;
}

/// `nAbove` is the first span that may lie in the line above and reach the current one or later.
void ClSpans::JoinLines() {
    int nAbove = 0;
    for (int i = 0; i < m_nCount; ++i) {
        const StSpan& Span = m_pSpans[i];
        const int nLine = Span.m_nLine - 1;
        m_Scratch.m_pRoots[i] = i;
        while (m_pSpans[nAbove].m_nLine < nLine ||
               (m_pSpans[nAbove].m_nLine == nLine && m_pSpans[nAbove].m_nLast < Span.m_nFirst))
            ++nAbove;
        for (int k = nAbove; m_pSpans[k].m_nLine == nLine && m_pSpans[k].m_nFirst <= Span.m_nLast;
             ++k) {
            const auto [nFirst, nSecond] = std::minmax({RootOf(k), RootOf(i)});
            m_Scratch.m_pRoots[nSecond] = nFirst;
        }
    }
}

long ClSpans::CountBlobs() {
    JoinLines();
    long nBlobs = 0;
    for (int i = 0; i < m_nCount; ++i)
        nBlobs += m_Scratch.m_pRoots[i] == i ? 1 : 0;
    return nBlobs;
}

/// Keeps the blobs whose tallies `keeps(tally)`, and one of the last span alone.
template <class Keeps>
void ClSpans::KeepBlobs(Keeps keeps) {
    long nKept = 0;
    for (int i = 0; i < m_nCount; ++i) {
        const int nRoot = RootOf(i);
        if (keeps(m_Scratch.m_pTally[nRoot]) || nRoot == m_nCount - 1)
            m_pSpans[nKept++] = m_pSpans[i];
    }
    m_nCount = nKept;
}

void ClSpans::DropSmall(long nLeast) {
    JoinLines();
    std::fill(m_Scratch.m_pTally, m_Scratch.m_pTally + m_nCount, 0);
    for (int i = 0; i < m_nCount; ++i)
        m_Scratch.m_pTally[RootOf(i)] += static_cast<int>(m_pSpans[i].Pixels());
    KeepBlobs([nLeast](int nPixels) { return nPixels >= nLeast; });
}

// Holes

/// The spans become those of the rest of a frame.
void ClSpans::Invert(long nWidth, long nHeight) {
    long nOthers = 0;
    const StSpan* pNext = begin();
    for (int y = 0; y < nHeight; ++y) {
        int nOpen = 0; // first column not yet covered
        for (; pNext != end() && pNext->m_nLine == y; ++pNext) {
            if (pNext->m_nFirst > nOpen)
                m_Scratch.m_pOthers[nOthers++] = {y, nOpen, pNext->m_nFirst - 1};
            nOpen = pNext->m_nLast + 1;
        }
        if (nOpen < nWidth)
            m_Scratch.m_pOthers[nOthers++] = {y, nOpen, static_cast<int>(nWidth) - 1};
    }
    std::swap(m_pSpans, m_Scratch.m_pOthers);
    m_nCount = nOthers;
}

/// Inverted twice, the spans stand where they stood.
void ClSpans::FillHoles(long nWidth, long nHeight) {
    if (IsEmpty())
        return;
    Invert(nWidth, nHeight);
    JoinLines();
    std::fill(m_Scratch.m_pTally, m_Scratch.m_pTally + m_nCount, 0);
    for (int i = 0; i < m_nCount; ++i) {
        const StSpan& Span = m_pSpans[i];
        const bool bAtEdge = Span.m_nFirst == 0 || Span.m_nLast == nWidth - 1 ||
                             Span.m_nLine == 0 || Span.m_nLine == nHeight - 1;
        m_Scratch.m_pTally[RootOf(i)] |= bAtEdge ? 1 : 0;
    }
    KeepBlobs([](int nAtEdge) { return nAtEdge != 0; });
    Invert(nWidth, nHeight);
}

} // namespace Quick
