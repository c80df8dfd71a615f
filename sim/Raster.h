#pragma once

/// The two value types that every part of the simulator hands around.

#include <cstddef>
#include <vector>

namespace sim {

/// A position: millimetres on the platen, or pixels of a capture or of the target frame. x runs to
/// the right, y downward; an integer pixel coordinate is the centre of that pixel.
struct ClPoint {
    double x = 0.0;
    double y = 0.0;
};

/// An 8-bit grey image without padding, line 0 on top.
struct ClRaster {
    ClRaster() = default;
    ClRaster(int nWidth, int nHeight, unsigned char nValue)
        : m_nWidth(nWidth), m_nHeight(nHeight),
          m_aPixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight), nValue) {}

    unsigned char& At(int x, int y) { return m_aPixels[Index(x, y)]; }
    unsigned char At(int x, int y) const { return m_aPixels[Index(x, y)]; }
    const unsigned char* Line(int y) const { return &m_aPixels[Index(0, y)]; }

    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nPelsX = 0; ///< pixels per metre
    int m_nPelsY = 0;
    std::vector<unsigned char> m_aPixels;

private:
    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
               static_cast<std::size_t>(x);
    }
};

} // namespace sim
