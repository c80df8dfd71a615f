#pragma once

/// Planes and plain grids of numbers, for the parts of the quick dynamic calibration.

#include "FingerCoding/NaiveGrid.h"
#include "FingerCoding/Quick/Plane.h"

#include <gtest/gtest.h>

#include <vector>

namespace TestSupport {

/// A plane with lines that are wider than it, of bytes that mean nothing.
class ClOwnPlane {
public:
    ClOwnPlane(long nWidth, long nHeight, unsigned char nFill = 0xA5)
        : m_aBytes(static_cast<std::size_t>((nWidth + cnPadding) * nHeight), nFill),
          m_Plane{m_aBytes.data(), nWidth + cnPadding, nWidth, nHeight} {}
    explicit ClOwnPlane(const Naive::Grid& Grid) : ClOwnPlane(Grid.m_nWidth, Grid.m_nHeight) {
        for (int y = 0; y < Grid.m_nHeight; ++y)
            for (int x = 0; x < Grid.m_nWidth; ++x)
                m_Plane.Line(y)[x] = static_cast<unsigned char>(Grid.At(x, y));
    }
    ClOwnPlane(const ClOwnPlane&) = delete;
    ClOwnPlane& operator=(const ClOwnPlane&) = delete;

    const Quick::StPlane& Plane() const { return m_Plane; }

private:
    static constexpr long cnPadding = 5;
    std::vector<unsigned char> m_aBytes;
    Quick::StPlane m_Plane;
};

inline Naive::Grid GridOf(const Quick::StPlane& Plane) {
    return Naive::Made(static_cast<int>(Plane.m_nWidth), static_cast<int>(Plane.m_nHeight),
                       [&](int x, int y) { return int{Plane.Line(y)[x]}; });
}

inline void ExpectGrid(const Naive::Grid& Found, const Naive::Grid& Expected) {
    ASSERT_EQ(Found.m_nWidth, Expected.m_nWidth);
    ASSERT_EQ(Found.m_nHeight, Expected.m_nHeight);
    for (int y = 0; y < Found.m_nHeight; ++y)
        for (int x = 0; x < Found.m_nWidth; ++x)
            ASSERT_EQ(Found.At(x, y), Expected.At(x, y)) << "column " << x << ", line " << y;
}

} // namespace TestSupport
