#include "ImageProcessing/Mask2.h"

#include "ImageProcessing/MaskArithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Mask::Rounded;
using Mask::Scaled;
using STEntry = ClMask2::STEntry;

double Ratio(double dNumerator, double dDenominator) {
    return dNumerator / dDenominator;
}

/// Whether a size of the chain is a size asked for: it may be smaller by any amount, and larger
/// by less than the tolerance. Chains run from large windows to small ones, so that the first
/// that fits is the one that is meant.
bool Fits(double dStepWidth, double dStepHeight, double dWidth, double dHeight, double dTolerance) {
    return dStepWidth - dWidth < dTolerance && dStepHeight - dHeight < dTolerance;
}

/// A size in whole pixels, as far as an image can have it.
int RoundedSize(double dValue) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<std::int64_t>(Rounded(dValue), Limits::min(), Limits::max()));
}

bool Consumed(const STEntry& Entry) {
    return Entry.nLine == -1;
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
        nSum += m_aEntries[i].nTo - m_aEntries[i].nFrom;
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

namespace {

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
        const std::int64_t nNext = Scaled(m_rRuns[nRun].nLine + 1, m_dScaleY);
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
        const double sx = Ratio(nPelsX, m_nPelsX);
        const double sy = Ratio(nPelsY, m_nPelsY);
        const ClRunScaling Scaling(m_aEntries, sx, sy, nHeight);
        if (!Scaling.Fits(nWidth))
            throw ClException("New Width or Height too small.", QMT_ERROR_INTERNAL, true, VEK_HERE);
        Runs aScaled;
        Scaling.AppendTo(aScaled);
        m_aEntries = aScaled;
        for (unsigned long i = 0; i < m_aPrecutSteps.Entries(); ++i) {
            m_aPrecutSteps[i].dX *= sx;
            m_aPrecutSteps[i].dWidth *= sx;
            m_aPrecutSteps[i].dY *= sy;
            m_aPrecutSteps[i].dHeight *= sy;
        }
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
    const long nHeight = std::max(From.FrameHeight(), 0L);
    Runs aRuns(From.m_aEntries);
    SortRuns(aRuns);
    ClMask2 Inverse;
    Inverse.CopyHeader(From);
    Inverse.m_aEntries.Reserve(aRuns.Entries() + static_cast<unsigned long>(nHeight));
    unsigned long nRun = 0;
    while (nRun < aRuns.Entries() && aRuns[nRun].nLine < 0)
        ++nRun;
    for (long nLine = 0; nLine < nHeight; ++nLine)
        AppendGaps(aRuns, nRun, nLine, From.FrameWidth(), Inverse.m_aEntries);
    *this = Inverse;
}

// Steps

void ClMask2::ThrowIndex() {
    constexpr long cnIndexLine = 214; // known to those who read logs
    throw ClException("The precut index 'nRefIdx' is out of range.", QMT_ERROR_PARAM_OUT_OF_RANGE,
                      true, "ImageProcessing/Mask2", cnIndexLine);
}

const ClMask2::STPrecutStep& ClMask2::LastStep() const {
    return m_aPrecutSteps[m_aPrecutSteps.Entries() - 1];
}

long ClMask2::FrameWidth() const {
    return m_aPrecutSteps.Entries() == 0 ? 0 : RoundedSize(LastStep().dWidth);
}

long ClMask2::FrameHeight() const {
    return m_aPrecutSteps.Entries() == 0 ? 0 : RoundedSize(LastStep().dHeight);
}

long ClMask2::GetOffsetsCount() const {
    return static_cast<long>(m_aPrecutSteps.Entries());
}

void ClMask2::AddPrecutStep(int w, int h, int pelsX, int pelsY, int x, int y, int cutW, int cutH,
                            bool bReset) {
    if (bReset)
        ResetEntries();
    if (pelsX < 1 || pelsY < 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PELS, VEK_HERE);
    long nReference = GetOffsetsIndex(w, h, pelsX, pelsY);
    if (m_aPrecutSteps.Entries() == 0) {
        m_aPrecutSteps.Reserve(2); // what follows cannot fail half-way
        m_aPrecutSteps.Append({0.0, 0.0, static_cast<double>(w), static_cast<double>(h)});
        m_nPelsX = pelsX;
        m_nPelsY = pelsY;
        nReference = 0;
    }
    if (nReference < 0)
        ThrowIndex();

    const double sx = Ratio(m_nPelsX, pelsX);
    const double sy = Ratio(m_nPelsY, pelsY);
    const double dWidth = cutW * sx;
    const double dHeight = cutH * sy;
    const double dTolerance = std::min(cutW, cutH) * 0.01 + 0.5;
    for (unsigned long i = 0; i < m_aPrecutSteps.Entries(); ++i)
        if (Fits(m_aPrecutSteps[i].dWidth, m_aPrecutSteps[i].dHeight, dWidth, dHeight, dTolerance))
            return;
    const STPrecutStep& Reference = m_aPrecutSteps[static_cast<unsigned long>(nReference)];
    m_aPrecutSteps.Append({Reference.dX + x * sx, Reference.dY + y * sy, dWidth, dHeight});
}

void ClMask2::AddPrecutStep(const ClImage& Image, int x, int y, int w, int h) {
    AddPrecutStep(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY(), x, y, w, h, true);
}

bool ClMask2::SetBoundingBox() {
    if (m_aEntries.Entries() == 0)
        return false;
    if (m_aPrecutSteps.Entries() == 0)
        ThrowIndex();
    long nLeft = 0;
    long nRight = 0;
    long nTop = 0;
    long nBottom = 0;
    GetRange(nLeft, nRight, nTop, nBottom);
    const auto ToInt = [](long nValue) { return RoundedSize(static_cast<double>(nValue)); };
    AddPrecutStep(RoundedSize(LastStep().dWidth), RoundedSize(LastStep().dHeight), m_nPelsX,
                  m_nPelsY, ToInt(nLeft), ToInt(nTop), ToInt(nRight - nLeft + 1),
                  ToInt(nBottom - nTop + 1), false);
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i) {
        m_aEntries[i].nFrom -= nLeft;
        m_aEntries[i].nTo -= nLeft;
        m_aEntries[i].nLine -= nTop;
    }
    return true;
}

long ClMask2::GetOffsetsIndex(long nWidth, long nHeight, long nPelsX, long nPelsY) const {
    if (nPelsX < 0 || nPelsY < 0 || nWidth < 1 || nHeight < 1)
        throw ClException("No image size given.", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    const double sx = nPelsX >= 1 ? Ratio(m_nPelsX, static_cast<double>(nPelsX)) : 1.0;
    const double sy = nPelsY >= 1 ? Ratio(m_nPelsY, static_cast<double>(nPelsY)) : 1.0;
    const double dWidth = sx * static_cast<double>(nWidth);
    const double dHeight = sy * static_cast<double>(nHeight);
    const bool bScaled = std::fabs(sx - 1.0) >= 0.0001 || std::fabs(sy - 1.0) >= 0.0001;
    const double dTolerance =
        static_cast<double>(std::min(nWidth, nHeight)) * 0.001 + (bScaled ? 1.0 : 0.5);
    for (unsigned long i = 0; i < m_aPrecutSteps.Entries(); ++i) {
        const STPrecutStep& Step = m_aPrecutSteps[i];
        if (Fits(Step.dWidth, Step.dHeight, dWidth, dHeight, dTolerance) ||
            Fits(std::trunc(Step.dWidth), std::trunc(Step.dHeight), dWidth, dHeight, dTolerance))
            return static_cast<long>(i);
    }
    return -1;
}

long ClMask2::GetOffsetsIndex(const ClImage& Image) const {
    return GetOffsetsIndex(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY());
}

ClMask2::StWindow ClMask2::WindowFrom(unsigned long nRefIdx, double dPelsX, double dPelsY) const {
    if (nRefIdx >= m_aPrecutSteps.Entries())
        ThrowIndex();
    const double sx = dPelsX >= 1 ? Ratio(dPelsX, m_nPelsX) : 1.0;
    const double sy = dPelsY >= 1 ? Ratio(dPelsY, m_nPelsY) : 1.0;
    const STPrecutStep& Last = LastStep();
    const STPrecutStep& Reference = m_aPrecutSteps[nRefIdx];
    return {Rounded((Last.dX - Reference.dX) * sx), Rounded((Last.dY - Reference.dY) * sy),
            Rounded(sx * Last.dWidth), Rounded(sy * Last.dHeight)};
}

ClMask2::StWindow ClMask2::OffsetOf(const ClImage& Image) const {
    const long nIndex = GetOffsetsIndex(Image);
    if (nIndex < 0)
        ThrowIndex();
    const STPrecutStep& Step = m_aPrecutSteps[static_cast<unsigned long>(nIndex)];
    const double fx = m_nPelsX > 0 && Image.PelsX() > 0 ? Ratio(Image.PelsX(), m_nPelsX) : 1.0;
    const double fy = m_nPelsY > 0 && Image.PelsY() > 0 ? Ratio(Image.PelsY(), m_nPelsY) : 1.0;
    return {Rounded(Step.dX * fx), Rounded(Step.dY * fy), 0, 0};
}

// Comparison

bool ClMask2::IsValid() const {
    const unsigned long nCount = m_aEntries.Entries();
    if (m_aPrecutSteps.Entries() == 0)
        return nCount == 0;
    const long nWidth = FrameWidth();
    const long nHeight = FrameHeight();
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
