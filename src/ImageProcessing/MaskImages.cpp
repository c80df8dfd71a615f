// A mask and images: building it from one, painting it onto others, cutting others to its frame.

#include "ImageProcessing/ImagePyramid.h"
#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskArithmetic.h"

#include <algorithm>
#include <cstring>

namespace {

using Mask::Rounded;
using Mask::Scaled;

void CheckImage(const ClImage& Image) {
    if (Image.DataType() != ClImage::eUInt8)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    const bool bArea = Image.Width() >= 1 && Image.Height() >= 1; // else a matter of the steps
    if (bArea && (Image.Data() == nullptr || Image.Planes() < 1))
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
}

/// The bytes of an image that one run covers, as offsets; begin and end are equal where it lies
/// outside.
struct StSpan {
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
};

/// Scale of a mask's runs in an image, 1 where either has no resolution.
double ScaleOf(int nImagePels, int nMaskPels) {
    return nImagePels < 1 || nMaskPels < 1 ? 1.0 : static_cast<double>(nImagePels) / nMaskPels;
}

class ClRunPlacement {
public:
    ClRunPlacement(const ClImage& Image, const ClMask2& Mask, long nX, long nY)
        : m_rImage(Image), m_dScaleX(ScaleOf(Image.PelsX(), Mask.m_nPelsX)),
          m_dScaleY(ScaleOf(Image.PelsY(), Mask.m_nPelsY)), m_nX(nX), m_nY(nY) {}

    StSpan Place(const ClMask2::STEntry& Run) const {
        const long nLine = Scaled(Run.nLine, m_dScaleY) + m_nY;
        const long nFrom = Scaled(Run.nFrom, m_dScaleX) + m_nX;
        const long nStop = nFrom + Scaled(Run.nTo - Run.nFrom, m_dScaleX) + 1;
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
        At = WindowFrom(static_cast<unsigned long>(GetOffsetsIndex(Image)), Image.PelsX(),
                        Image.PelsY());
    if (bOutside)
        PaintOutside(Image, At, nValue);
    else
        PaintInside(Image, At, nValue);
}

/// Lines follow one another without a gap: what lies between two runs is painted in one go,
/// padding included.
void ClMask2::PaintOutside(ClImage& Image, const StWindow& At, unsigned char nValue) const {
    const ClRunPlacement Placement(Image, *this, At.m_nX, At.m_nY);
    std::size_t nPainted = 0;
    for (unsigned long i = 0; i < m_aEntries.Entries(); ++i) {
        const StSpan Span = Placement.Place(m_aEntries[i]);
        if (Span.m_nBegin == Span.m_nEnd)
            continue;
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

void CutTo(ClImage& In, long nX, long nY, long nWidth, long nHeight, ClImage& Out) {
    ClIpCut Cut;
    Cut.Timer(false);
    if (const long nResult = Cut.ApplyParam(In, nX, nY, nWidth, nHeight, Out))
        throw ClExTessarin(nResult, VEK_HERE);
}

} // namespace

void ClMask2::CutImage(ClImage& In, ClImage& Out) const {
    if (m_aPrecutSteps.Entries() == 0) {
        Out = In;
        return;
    }
    long x = 0;
    long y = 0;
    GetOffsets(In, x, y);
    const double fx = m_nPelsX > 0 ? static_cast<double>(In.PelsX()) / m_nPelsX : 1.0;
    const double fy = m_nPelsY > 0 ? static_cast<double>(In.PelsY()) / m_nPelsY : 1.0;
    const STPrecutStep& Last = LastStep();
    CutTo(In, Rounded(Last.dX * fx) - x, Rounded(Last.dY * fy) - y, Rounded(Last.dWidth * fx),
          Rounded(Last.dHeight * fy), Out);
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
    const long nIndex = GetOffsetsIndex(In[0]);
    if (nIndex < 0)
        ThrowIndex();
    ClImagePyramid Result(In.Layers());
    for (long i = 0; i < In.Layers(); ++i) {
        ClImage& rLayer = In[i];
        if (rLayer.Data() == nullptr)
            continue;
        const StWindow Window =
            WindowFrom(static_cast<unsigned long>(nIndex), rLayer.PelsX(), rLayer.PelsY());
        CutTo(rLayer, Window.m_nX, Window.m_nY, Window.m_nWidth, Window.m_nHeight, Result[i]);
    }
    if (Out.Layers() != In.Layers())
        Out.Create(In.Layers());
    for (long i = 0; i < Result.Layers(); ++i)
        Out[i].Swap(Result[i]);
}

void ClMask2::CutPyramid(ClImagePyramid& InOut) const {
    CutPyramid(InOut, InOut);
}
