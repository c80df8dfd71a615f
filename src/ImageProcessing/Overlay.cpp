#include "ImageProcessing/Overlay.h"

#include "ImageProcessing/Walks/PairWalk.h"
#include "ImageProcessing/Walks/SampleBlocks.h"
#include "Tools/Exception.h"

#include <algorithm>
#include <climits>

// Geometry

StOverlayAxis::StOverlayAxis(int nSize1, int nSize2, int nOffset)
    : m_nStart1(nOffset < 0 ? -long{nOffset} : 0), m_nStart2(nOffset > 0 ? long{nOffset} : 0),
      m_bSameSize(nSize1 == nSize2) {
    m_nOutput = std::max(m_nStart1 + nSize1, m_nStart2 + nSize2);
    m_nOverlap = std::min(nSize1, nSize2) - (m_nStart1 + m_nStart2);
}

StOverlay::StOverlay(const ClImage& In1, const ClImage& In2, int nOffsetX, int nOffsetY)
    : m_X(In1.Width(), In2.Width(), nOffsetX), m_Y(In1.Height(), In2.Height(), nOffsetY) {}

void StOverlay::NewOutput(ClImage& Out, unsigned char nType, const ClImage& In1) const {
    if (m_X.m_nOutput > INT_MAX || m_Y.m_nOutput > INT_MAX)
        throw ClException("Image area must be positive", QMT_ERROR_INTERNAL, false, VEK_NOWHERE);
    Out.NewWithType(nType, static_cast<int>(m_X.m_nOutput), static_cast<int>(m_Y.m_nOutput),
                    In1.Planes(), In1.PelsX(), In1.PelsY());
}

namespace {

long SampleOffset(const ClImage& Image, long nX, long nY) {
    return nX * Image.Planes() + nY * Image.LineStrideSamples();
}

} // namespace

long StOverlay::OutOffset(const ClImage& Out) const {
    return SampleOffset(Out, m_X.m_nStart1 + m_X.m_nStart2, m_Y.m_nStart1 + m_Y.m_nStart2);
}

long StOverlay::In1Offset(const ClImage& In1) const {
    return SampleOffset(In1, m_X.m_nStart2, m_Y.m_nStart2);
}

long StOverlay::In2Offset(const ClImage& In2) const {
    return SampleOffset(In2, m_X.m_nStart1, m_Y.m_nStart1);
}

// Painting

namespace {

/// `function(y, i, n)` for blocks of `n` of the samples of each line, from sample `i` on.
template <class Function>
void WalkBlocks(long nSamples, long nHeight, Function function) {
    for (long y = 0; y < nHeight; ++y)
        for (long i = 0; i < nSamples; i += cnSampleBlock)
            function(static_cast<int>(y), i, std::min(cnSampleBlock, nSamples - i));
}

} // namespace

void FillPlanes(ClImage& Out, const double* pColors) {
    const long nPlanes = Out.Planes();
    if (nPlanes > 4) {
        Out = static_cast<unsigned char>(0);
        return;
    }
    if (nPlanes < 1)
        return;
    double aBlock[cnSampleBlock];
    for (long i = 0; i < cnSampleBlock; ++i)
        aBlock[i] = pColors[i % nPlanes];
    const StoreSamples store = StoreSamplesOf(Out.DataType());
    WalkBlocks(Out.Width() * nPlanes, Out.Height(), [&](int y, long i, long n) {
        store(aBlock, n, Out.LineData(y) + i * Out.BytesPerSample());
    });
}

void PasteImage(const ClImage& In, ClImage& Out, long nX, long nY) {
    const long nSpread = PlanesPerSample(Out.Planes(), In.Planes());
    if (nSpread == 0)
        return;
    const LoadSamples load = LoadSamplesOf(In.DataType());
    const StoreSamples store = StoreSamplesOf(Out.DataType());
    const long nSamples = long{In.Width()} * In.Planes() * nSpread;
    const long nBytes = Out.BytesPerSample();
    double aBlock[cnSampleBlock];
    WalkBlocks(nSamples, In.Height(), [&](int y, long i, long n) {
        load(In.LineData(y) + i / nSpread * In.BytesPerSample(), n / nSpread, aBlock);
        SpreadSamples(aBlock, n / nSpread, nSpread);
        unsigned char* pLine = Out.LineData(static_cast<int>(nY) + y);
        store(aBlock, n, pLine + (nX * Out.Planes() + i) * nBytes);
    });
}
