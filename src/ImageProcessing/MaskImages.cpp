// A mask and images: building it from one, painting it onto others, cutting others to its frame.

#include "ImageProcessing/ImagePyramid.h"
#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskArithmetic.h"
#include "ImageProcessing/MaskChain.h"
#include "ImageProcessing/RequireBytes.h"

#include <algorithm>
#include <cstring>

namespace {

using Mask::Difference;
using Mask::Scaled;
using Mask::ScaleOf;
using Mask::StWindow;

void CheckImage(const ClImage& Image) {
    RequireBytes(Image, VEK_HERE);
    const bool bArea = Image.Width() >= 1 && Image.Height() >= 1; // else a matter of the steps
    if (bArea && (Image.Data() == nullptr || Image.Planes() < 1))
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
}

/// The bytes of an image that one run covers, as offsets; both are 0 where it lies outside.
struct StSpan {
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
};

class ClRunPlacement {
public:
    ClRunPlacement(const ClImage& Image, const ClMask2& Mask, long nX, long nY)
        : m_rImage(Image), m_dScaleX(ScaleOf(Image.PelsX(), Mask.m_nPelsX)),
          m_dScaleY(ScaleOf(Image.PelsY(), Mask.m_nPelsY)), m_nX(nX), m_nY(nY) {}

    StSpan Place(const ClMask2::STEntry& Run) const {
        const long nLine = Scaled(Run.nLine, m_dScaleY) + m_nY;
        const long nFrom = Scaled(Run.nFrom, m_dScaleX) + m_nX;
        const long nStop = nFrom + Scaled(Difference(Run.nTo, Run.nFrom), m_dScaleX) + 1;
        const long nBegin = std::clamp<long>(nFrom, 0, m_rImage.Width());
        const long nEnd = std::clamp<long>(nStop, nBegin, m_rImage.Width());
        if (nLine < 0 || nLine >= m_rImage.Height() || nBegin == nEnd)
            return {};
        const std::size_t nStart =
            static_cast<std::size_t>(nLine) * static_cast<std::size_t>(m_rImage.LineStrideBytes());
        return {nStart + static_cast<std::size_t>(nBegin), nStart + static_cast<std::size_t>(nEnd)};
    }

private:
    const ClImage& m_rImage;
    double m_dScaleX;
    double m_dScaleY;
    long m_nX;
    long m_nY;
};

} // namespace

void ClMask2::BuildFromImage(const ClImage& Image, unsigned char nBackground) {
    CheckImage(Image);
    ResetEntries();
    if (Image.PelsX() != m_nPelsX || Image.PelsY() != m_nPelsY)
        ResizeMask(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY());
    AddPrecutStep(Image, 0, 0, Image.Width(), Image.Height());
    AppendRuns(Image, nBackground);
}

namespace {

unsigned long CountRuns(const ClImage& Image, unsigned char nBackground) {
    unsigned long nRuns = 0;
    for (int y = 0; y < Image.Height(); ++y) {
        const unsigned char* pLine = Image.LineData(y);
        int nInLine = pLine[0] != nBackground;
        for (int x = 1; x < Image.Width(); ++x)
            nInLine += (pLine[x - 1] == nBackground) & (pLine[x] != nBackground);
        nRuns += static_cast<unsigned long>(nInLine);
    }
    return nRuns;
}

} // namespace

/// Counted first: a noisy image has tens of thousands of runs, which the list is not to copy again
/// and again.
void ClMask2::AppendRuns(const ClImage& Image, unsigned char nBackground) {
    m_aEntries.Reserve(CountRuns(Image, nBackground));
    for (int y = 0; y < Image.Height(); ++y) {
        const unsigned char* pLine = Image.LineData(y);
        for (int x = 0; x < Image.Width(); ++x) {
            if (pLine[x] == nBackground)
                continue;
            const int nFrom = x;
            while (x + 1 < Image.Width() && pLine[x + 1] != nBackground)
                ++x;
            m_aEntries.Append({nFrom, x, y});
        }
    }
}

void ClMask2::ApplyOnImage(ClImage& Image, bool bOutside, unsigned char nValue) const {
    CheckImage(Image);
    if (m_nPelsX < 1 || m_nPelsY < 1 || m_aEntries.Entries() == 0) {
        if (!bOutside)
            Image = nValue;
        return;
    }
    StWindow At;
    if (m_aPrecutSteps.Entries() > 0)
        At = WindowFrom(Chain().StepOf(Image), Image.PelsX(), Image.PelsY());
    if (bOutside)
        PaintOutside(Image, At, nValue);
    else
        PaintInside(Image, At, nValue);
}

/// Lines follow one another without a gap: what lies between two runs is painted in one go,
/// padding included. Where lines of the mask fall on one line of a coarser image, runs step back;
/// then a gap begins at the furthest end so far, and nothing that a run has kept is painted.
void ClMask2::PaintOutside(ClImage& Image, const StWindow& At, unsigned char nValue) const {
    const ClRunPlacement Placement(Image, *this, At.m_nX, At.m_nY);
    std::size_t nPainted = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i) {
        const StSpan Span = Placement.Place(m_aEntries[i]);
        if (Span.m_nBegin > nPainted)
            std::memset(Image.Data() + nPainted, nValue, Span.m_nBegin - nPainted);
        nPainted = std::max(nPainted, Span.m_nEnd);
    }
    if (nPainted < Image.SizeBytes())
        std::memset(Image.Data() + nPainted, nValue, Image.SizeBytes() - nPainted);
}

void ClMask2::PaintInside(ClImage& Image, const StWindow& At, unsigned char nValue) const {
    const ClRunPlacement Placement(Image, *this, At.m_nX, At.m_nY);
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i) {
        const StSpan Span = Placement.Place(m_aEntries[i]);
        std::memset(Image.Data() + Span.m_nBegin, nValue, Span.m_nEnd - Span.m_nBegin);
    }
}

namespace {

void CutTo(ClImage& In, const StWindow& Window, ClImage& Out) {
    ClIpCut Cut;
    Cut.Timer(false);
    if (const long nResult =
            Cut.ApplyParam(In, Window.m_nX, Window.m_nY, Window.m_nWidth, Window.m_nHeight, Out))
        throw ClExTessarin(nResult, VEK_HERE);
}

} // namespace

void ClMask2::CutImage(ClImage& In, ClImage& Out) const {
    if (m_aPrecutSteps.Entries() == 0)
        Out = In;
    else
        CutTo(In, Chain().LastIn(In), Out);
}

void ClMask2::CutImage(ClImage& InOut) const {
    ClImage Scratch;
    CutImage(InOut, Scratch);
    InOut.Swap(Scratch);
}

void ClMask2::Cut(ClImage& Image, int x, int y, int w, int h) {
    AddPrecutStep(Image, 0, 0, Image.Width(), Image.Height());
    AddPrecutStep(Image, x, y, w, h);
    CutImage(Image);
}

void ClMask2::CutPyramid(ClImagePyramid& In, ClImagePyramid& Out) const {
    const unsigned long nStep = Chain().StepOf(In[0]);
    ClImagePyramid Result(In.Layers());
    for (long i = 0; i < In.Layers(); ++i)
        if (In[i].Data() != nullptr)
            CutTo(In[i], WindowFrom(nStep, In[i].PelsX(), In[i].PelsY()), Result[i]);
    Out.Swap(Result);
}

void ClMask2::CutPyramid(ClImagePyramid& InOut) const {
    CutPyramid(InOut, InOut);
}
