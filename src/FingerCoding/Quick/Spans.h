#pragma once

/// Regions as spans of pixels, sorted by line and column and apart from one another. Two spans
/// connect where they share a column in neighbouring lines; spans that connect, directly or over
/// others, are a blob.
///
/// Everything here is linear in the number of spans: those of two neighbouring lines are walked
/// side by side, and blobs are found by union and find with the first span of a blob as its root.

#include "FingerCoding/Quick/Plane.h"

namespace Quick {

/// Columns m_nFirst to m_nLast, both included, of one line.
struct StSpan {
    int m_nLine;
    int m_nFirst;
    int m_nLast;

    long Pixels() const { return m_nLast - m_nFirst + 1L; }
};

class ClSpans {
public:
    /// The most spans that a frame may need, for regions and for what is outside of them.
    static constexpr std::size_t Most(long nWidth, long nHeight) {
        return static_cast<std::size_t>(nHeight) * static_cast<std::size_t>(nWidth / 2 + 1);
    }
    /// What operations need besides the spans themselves, for up to so many; several regions of
    /// which one is worked on at a time may share it.
    struct StScratch {
        StSpan* m_pOthers = nullptr;
        int* m_pRoots = nullptr; ///< by span
        int* m_pTally = nullptr; ///< by root
    };

    ClSpans() = default;
    /// All memory is borrowed, and for as many spans.
    ClSpans(StSpan* pSpans, const StScratch& Scratch) : m_pSpans(pSpans), m_Scratch(Scratch) {}

    void Clear() { m_nCount = 0; }
    bool IsEmpty() const { return m_nCount == 0; }
    const StSpan* begin() const { return m_pSpans; }
    const StSpan* end() const { return m_pSpans + m_nCount; }

    /// Becomes the bytes of 1 in a plane of 0 and 1.
    void Find(const StPlane& Plane);
    /// Adds those of one line, which lies behind all others.
    void Append(const unsigned char* pLine, int nLine, long nWidth);

    /// The smallest box around all; empty without spans.
    StBox Box() const;
    long CountBlobs();
    /// Drops blobs of fewer than `nLeast` pixels, but never one of the last span alone.
    void DropSmall(long nLeast);
    /// Adds what the spans enclose in a frame: blobs of the outside that reach no edge. One of the
    /// last span of the outside alone stays open.
    void FillHoles(long nWidth, long nHeight);

private:
    void JoinLines();
    int RootOf(int nSpan);
    void Invert(long nWidth, long nHeight);
    template <class Keeps>
    void KeepBlobs(Keeps keeps);

    StSpan* m_pSpans = nullptr;
    StScratch m_Scratch;
    long m_nCount = 0;
};

} // namespace Quick
