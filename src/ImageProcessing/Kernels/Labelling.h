#pragma once

/// The pixels of one value, and the label of each: 8 bits in, 32 bits out.

#include "ImageProcessing/Kernels/Runs.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kernels {

/// An area for FillRegion(): a pixel is open while it is 0 and has no label. Strides are in
/// samples.
class ClLabelArea {
public:
    ClLabelArea(const unsigned char* pPixels, std::ptrdiff_t nPixelStride, std::int32_t* pLabels,
                std::ptrdiff_t nLabelStride, long nWidth, long nLines)
        : m_pPixels(pPixels), m_nPixelStride(nPixelStride), m_pLabels(pLabels),
          m_nLabelStride(nLabelStride), m_nWidth(nWidth), m_nLines(nLines) {}

    /// The label that Close() gives from now on.
    void SetLabel(std::int32_t nLabel) { m_nLabel = nLabel; }

    const unsigned char* Line(long y) const { return m_pPixels + y * m_nPixelStride; }
    static unsigned char OpenValue() { return 0; }
    bool IsOpen(long x, long y) const { return Line(y)[x] == 0 && Labels(y)[x] == 0; }
    long Width() const { return m_nWidth; }
    long Lines() const { return m_nLines; }
    void Close(StRun Run, long y) {
        std::fill(Labels(y) + Run.m_nBegin, Labels(y) + Run.m_nEnd, m_nLabel);
    }

private:
    std::int32_t* Labels(long y) const { return m_pLabels + y * m_nLabelStride; }

    const unsigned char* m_pPixels;
    std::ptrdiff_t m_nPixelStride;
    std::int32_t* m_pLabels;
    std::ptrdiff_t m_nLabelStride;
    long m_nWidth;
    long m_nLines;
    std::int32_t m_nLabel = 0;
};

} // namespace Kernels
