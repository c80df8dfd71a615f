#pragma once

/// Planes of random bytes for kernels that take pointers and strides.

#include "support/Images.h"

#include <algorithm>
#include <random>
#include <vector>

namespace TestSupport {

/// A plane in a buffer that ends with its last sample, so that a read behind it is found out, and
/// an output whose lines stand apart by bytes that nobody may write.
template <class T>
class ClPlaneCase {
public:
    ClPlaneCase(long nWidth, long nHeight, unsigned nSeed)
        : m_nWidth(nWidth), m_nHeight(nHeight), m_nInStride(nWidth + 2), m_nOutStride(nWidth + 5),
          m_aIn(Size(m_nInStride)), m_aOut(Size(m_nOutStride), Guard()) {
        std::mt19937 random(nSeed);
        std::generate(m_aIn.begin(), m_aIn.end(), [&] { return static_cast<T>(random()); });
    }

    /// Runs `kernel(in, in stride, width, height, out, out stride)` and reads the output.
    template <class Kernel>
    RealRows Run(Kernel kernel) {
        kernel(m_aIn.data(), m_nInStride, m_nWidth, m_nHeight, m_aOut.data(), m_nOutStride);
        for (long y = 0; y + 1 < m_nHeight; ++y)
            for (long x = m_nWidth; x < m_nOutStride; ++x)
                EXPECT_EQ(m_aOut[Index(x, y, m_nOutStride)], Guard()) << "behind line " << y;
        return Rows(m_aOut, m_nOutStride);
    }

    RealRows In() const { return Rows(m_aIn, m_nInStride); }
    void Set(long x, long y, int nValue) {
        m_aIn[Index(x, y, m_nInStride)] = static_cast<T>(nValue);
    }
    void Fill(int nValue) { std::fill(m_aIn.begin(), m_aIn.end(), static_cast<T>(nValue)); }

private:
    static T Guard() { return static_cast<T>(0x5A); }
    static std::size_t Index(long x, long y, long nStride) {
        return static_cast<std::size_t>(y * nStride + x);
    }
    std::size_t Size(long nStride) const { return Index(m_nWidth, m_nHeight - 1, nStride); }
    RealRows Rows(const std::vector<T>& aFrom, long nStride) const {
        RealRows aRows(static_cast<std::size_t>(m_nHeight));
        for (long y = 0; y < m_nHeight; ++y)
            for (long x = 0; x < m_nWidth; ++x)
                aRows[static_cast<std::size_t>(y)].push_back(
                    static_cast<double>(aFrom[Index(x, y, nStride)]));
        return aRows;
    }

    long m_nWidth;
    long m_nHeight;
    long m_nInStride;
    long m_nOutStride;
    std::vector<T> m_aIn;
    std::vector<T> m_aOut;
};

} // namespace TestSupport
