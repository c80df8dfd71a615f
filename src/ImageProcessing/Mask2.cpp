#include "ImageProcessing/Mask2.h"

#include "ImageProcessing/MaskArithmetic.h"
#include "ImageProcessing/MaskChain.h"

#include <algorithm>

namespace {

using Mask::Difference;
using Mask::Extent;
using Mask::Sum;
using STEntry = ClMask2::STEntry;

bool Consumed(const STEntry& Entry) {
    return Entry.nLine == -1;
}

void RequirePels(int nPelsX, int nPelsY) {
    if (nPelsX < 1 || nPelsY < 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PELS, VEK_HERE);
}

} // namespace

bool ClMask2::STEntry::operator<(const STEntry& other) const {
    return nLine != other.nLine ? nLine < other.nLine : nFrom < other.nFrom;
}

ClMask2& ClMask2::operator=(const ClMask2& Other) {
    if (this == &Other)
        return *this;
    // All memory first: the assignment itself cannot fail.
    m_aPrecutSteps.Reserve(Other.m_aPrecutSteps.Entries());
    m_aEntries.Reserve(Other.m_aEntries.Entries());
    m_aPrecutSteps.Clear();
    for (unsigned long i = 0; i < Other.m_aPrecutSteps.Entries(); ++i)
        m_aPrecutSteps.Append(Other.m_aPrecutSteps[i]);
    m_aEntries.Clear();
    for (unsigned long i = 0; i < Other.m_aEntries.Entries(); ++i)
        m_aEntries.Append(Other.m_aEntries[i]);
    m_nPelsX = Other.m_nPelsX;
    m_nPelsY = Other.m_nPelsY;
    return *this;
}

void ClMask2::Init() {
    m_aEntries.Clear();
    m_aPrecutSteps.Clear();
    m_nPelsX = m_nPelsY = 0;
}

void ClMask2::ResetEntries() {
    m_aEntries.Clear();
}

void ClMask2::CopyHeader(const ClMask2& From) {
    m_aPrecutSteps = From.m_aPrecutSteps;
    m_nPelsX = From.m_nPelsX;
    m_nPelsY = From.m_nPelsY;
}

// Runs

long ClMask2::AreaSize() const {
    long nSum = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
        nSum = Sum(nSum, Difference(m_aEntries[i].nTo, m_aEntries[i].nFrom));
    return nSum;
}

bool ClMask2::Advance(long& nIdx, long nStep) const {
    const long nCount = static_cast<long>(m_aEntries.Entries());
    const bool bInside = nStep < 0 ? nStep >= -nIdx : nStep < nCount - nIdx;
    if (bInside)
        nIdx += nStep;
    return bInside;
}

bool ClMask2::GetNextFgEntry(long& nIdx, long nStep, STEntry& Out) const {
    if (nIdx < 0 || nIdx >= static_cast<long>(m_aEntries.Entries()))
        return false;
    long i = nIdx;
    while (Consumed(m_aEntries[static_cast<unsigned long>(i)]))
        if (nStep == 0 || !Advance(i, nStep))
            return false;
    nIdx = i;
    Out = m_aEntries[static_cast<unsigned long>(i)];
    return true;
}

void ClMask2::GetRange(long& nLeft, long& nRight, long& nTop, long& nBottom) const {
    nLeft = nRight = nTop = nBottom = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i) {
        const STEntry& Entry = m_aEntries[i];
        const bool bFirst = i == 0;
        nLeft = bFirst ? Entry.nFrom : std::min<long>(nLeft, Entry.nFrom);
        nRight = bFirst ? Entry.nTo : std::max<long>(nRight, Entry.nTo);
        nTop = bFirst ? Entry.nLine : std::min<long>(nTop, Entry.nLine);
        nBottom = bFirst ? Entry.nLine : std::max<long>(nBottom, Entry.nLine);
    }
}

void ClMask2::RemoveSubMask(const ClMask2& Sub) {
    TpArrayDynamic<STEntry, 100> aSub(Sub.m_aEntries);
    STEntry* pEnd = aSub.Data() + aSub.Entries();
    // All three fields decide: two runs may begin at one place.
    const auto Before = [](const STEntry& a, const STEntry& b) {
        return a < b || (!(b < a) && a.nTo < b.nTo);
    };
    std::sort(aSub.Data(), pEnd, Before);
    unsigned long nKept = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
        if (!std::binary_search(aSub.Data(), pEnd, m_aEntries[i], Before))
            m_aEntries[nKept++] = m_aEntries[i];
    m_aEntries.SetEntries(nKept);
}

// Steps

Mask::ClPrecutChain ClMask2::Chain() const {
    return Mask::ClPrecutChain(*this);
}

long ClMask2::GetOffsetsCount() const {
    return static_cast<long>(m_aPrecutSteps.Entries());
}

long ClMask2::GetOffsetsIndex(long nWidth, long nHeight, long nPelsX, long nPelsY) const {
    return Chain().IndexOf(nWidth, nHeight, nPelsX, nPelsY);
}

long ClMask2::GetOffsetsIndex(const ClImage& Image) const {
    return GetOffsetsIndex(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY());
}

Mask::StWindow ClMask2::WindowFrom(unsigned long nRefIdx, double dPelsX, double dPelsY) const {
    return Chain().LastFrom(nRefIdx, dPelsX, dPelsY);
}

Mask::StWindow ClMask2::OffsetOf(const ClImage& Image) const {
    return Chain().BeginOf(Image);
}

void ClMask2::AddPrecutStep(int w, int h, int pelsX, int pelsY, int x, int y, int cutW, int cutH,
                            bool bReset) {
    if (bReset)
        ResetEntries();
    RequirePels(pelsX, pelsY);
    const long nFitting = GetOffsetsIndex(w, h, pelsX, pelsY);
    if (m_aPrecutSteps.Entries() == 0) {
        m_aPrecutSteps.Reserve(2); // what follows cannot fail half-way
        m_aPrecutSteps.Append({0.0, 0.0, static_cast<double>(w), static_cast<double>(h)});
        m_nPelsX = pelsX;
        m_nPelsY = pelsY;
        AddWindow(0, {1.0 * x, 1.0 * y, 1.0 * cutW, 1.0 * cutH}, 1.0, 1.0);
        return;
    }
    if (nFitting < 0)
        Mask::ThrowIndex();
    AddWindow(static_cast<unsigned long>(nFitting), {1.0 * x, 1.0 * y, 1.0 * cutW, 1.0 * cutH},
              static_cast<double>(m_nPelsX) / pelsX, static_cast<double>(m_nPelsY) / pelsY);
}

void ClMask2::AddPrecutStep(const ClImage& Image, int x, int y, int w, int h) {
    AddPrecutStep(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY(), x, y, w, h, true);
}

/// A window of a step, of whose pixels one is `sx` by `sy` pixels of the mask.
void ClMask2::AddWindow(unsigned long nStep, STPrecutStep Window, double sx, double sy) {
    const double dTolerance = std::min(Window.dWidth, Window.dHeight) * 0.01 + 0.5;
    Window.Scale(sx, sy);
    Window.dX += m_aPrecutSteps[nStep].dX;
    Window.dY += m_aPrecutSteps[nStep].dY;
    if (!Chain().Knows(Window, dTolerance))
        m_aPrecutSteps.Append(Window);
}

bool ClMask2::SetBoundingBox() {
    if (m_aEntries.Entries() == 0)
        return false;
    if (m_aPrecutSteps.Entries() == 0)
        Mask::ThrowIndex();
    RequirePels(m_nPelsX, m_nPelsY);
    long nLeft = 0;
    long nRight = 0;
    long nTop = 0;
    long nBottom = 0;
    GetRange(nLeft, nRight, nTop, nBottom);
    AddWindow(m_aPrecutSteps.Entries() - 1,
              {static_cast<double>(nLeft), static_cast<double>(nTop),
               static_cast<double>(Extent(nLeft, nRight)),
               static_cast<double>(Extent(nTop, nBottom))},
              1.0, 1.0);
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
        m_aEntries[i] = {Difference(m_aEntries[i].nFrom, nLeft),
                         Difference(m_aEntries[i].nTo, nLeft),
                         Difference(m_aEntries[i].nLine, nTop)};
    return true;
}

// Comparison

bool ClMask2::IsValid() const {
    const unsigned long nCount = m_aEntries.Entries();
    if (m_aPrecutSteps.Entries() == 0)
        return nCount == 0;
    const long nWidth = Chain().Width();
    const long nHeight = Chain().Height();
    for (unsigned long i = 0; i < nCount; ++i) {
        const STEntry& Run = m_aEntries[i];
        if (Run.nFrom < 0 || Run.nTo < Run.nFrom || Run.nTo >= nWidth || Run.nLine < 0 ||
            Run.nLine >= nHeight)
            return false;
        const STEntry* pBefore = i > 0 ? &m_aEntries[i - 1] : nullptr;
        if (pBefore != nullptr &&
            (Run < *pBefore || (Run.nLine == pBefore->nLine && Run.nFrom <= pBefore->nTo)))
            return false;
    }
    return true;
}

bool ClMask2::IsValid(const ClImage& Image) const {
    return IsValid() && Image.Width() >= 1 && Image.Height() >= 1 && Image.PelsX() >= 0 &&
           Image.PelsY() >= 0 && GetOffsetsIndex(Image) >= 0;
}

bool ClMask2::operator==(const ClMask2& Other) const {
    return m_nPelsX == Other.m_nPelsX && m_nPelsY == Other.m_nPelsY &&
           std::equal(m_aPrecutSteps.Data(), m_aPrecutSteps.Data() + m_aPrecutSteps.Entries(),
                      Other.m_aPrecutSteps.Data(),
                      Other.m_aPrecutSteps.Data() + Other.m_aPrecutSteps.Entries()) &&
           std::equal(m_aEntries.Data(), m_aEntries.Data() + m_aEntries.Entries(),
                      Other.m_aEntries.Data(),
                      Other.m_aEntries.Data() + Other.m_aEntries.Entries());
}
