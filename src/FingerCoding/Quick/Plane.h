#pragma once

/// Planes of bytes, and rectangles in them: what the quick dynamic calibration works on in place
/// of images, which know more than its loops need.

#include <algorithm>
#include <cstddef>

namespace Quick {

/// Columns m_nLeft to m_nRight - 1, lines m_nTop to m_nBottom - 1.
struct StBox {
    long m_nLeft = 0;
    long m_nTop = 0;
    long m_nRight = 0;
    long m_nBottom = 0;

    long Width() const { return m_nRight - m_nLeft; }
    long Height() const { return m_nBottom - m_nTop; }
    bool IsEmpty() const { return Width() < 1 || Height() < 1; }

    StBox Moved(long nX, long nY) const {
        return {m_nLeft + nX, m_nTop + nY, m_nRight + nX, m_nBottom + nY};
    }
    StBox Grown(long nPixels) const {
        return {m_nLeft - nPixels, m_nTop - nPixels, m_nRight + nPixels, m_nBottom + nPixels};
    }
    StBox CutTo(const StBox& Frame) const {
        return {std::max(m_nLeft, Frame.m_nLeft), std::max(m_nTop, Frame.m_nTop),
                std::min(m_nRight, Frame.m_nRight), std::min(m_nBottom, Frame.m_nBottom)};
    }
};

/// Borrowed bytes in lines that begin `m_nStride` bytes apart.
struct StPlane {
    unsigned char* m_pData = nullptr;
    std::ptrdiff_t m_nStride = 0;
    long m_nWidth = 0;
    long m_nHeight = 0;

    unsigned char* Line(long y) const { return m_pData + y * m_nStride; }
    StBox Frame() const { return {0, 0, m_nWidth, m_nHeight}; }
    /// The bytes of a box inside the frame.
    StPlane Part(const StBox& Box) const {
        return {Line(Box.m_nTop) + Box.m_nLeft, m_nStride, Box.Width(), Box.Height()};
    }
};

} // namespace Quick
