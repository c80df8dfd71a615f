#pragma once

/// The form of a warp and its table, and the limits that keep hostile sizes from being allocated.

#include "ImageProcessing/Kernels/Warp.h"

#include <cstdint>
#include <memory>

namespace Warp {

/// One table entry: an offset and 16 weights of 2 bytes.
inline constexpr unsigned long cnEntrySize = Kernels::cnWarpEntrySize;
/// The offset of a pixel without source.
inline constexpr std::int32_t cnNoSource = -1;
/// A weight of 1.0.
inline constexpr double cdWeightOne = 1024.0;

/// Corrected images beyond these sizes do not exist on any scanner.
inline constexpr std::uint32_t cnMaxTargetSide = 16384;
inline constexpr std::uint64_t cnMaxTableBytes = std::uint64_t{512} << 20;

inline constexpr std::uint64_t TableBytes(std::uint32_t nWidth, std::uint32_t nHeight,
                                          std::uint32_t nPlanes, unsigned long nEntrySize) {
    return std::uint64_t{nWidth} * nHeight * nPlanes * nEntrySize;
}

/// Whether a table for this target size may be made. The sides are tested first, so that the
/// product cannot overflow.
inline constexpr bool IsSizeAllowed(std::uint32_t nWidth, std::uint32_t nHeight,
                                    std::uint32_t nPlanes) {
    return nWidth <= cnMaxTargetSide && nHeight <= cnMaxTargetSide && nPlanes <= 3 &&
           TableBytes(nWidth, nHeight, nPlanes, cnEntrySize) <= cnMaxTableBytes;
}

/// Bytes from one line of a capture to the next, as table offsets count them.
inline constexpr std::uint64_t LineStride(std::uint32_t nWidth) {
    return (std::uint64_t{nWidth} + 3) & ~std::uint64_t{3};
}

/// Whether 4 by 4 samples from this offset on are pixels of a capture of this size.
inline constexpr bool IsOffsetInside(std::int32_t nOffset, std::uint32_t nWidth,
                                     std::uint32_t nHeight) {
    if (nOffset < 0 || nWidth < 4 || nHeight < 4)
        return false;
    const std::uint64_t nRow = static_cast<std::uint64_t>(nOffset) / LineStride(nWidth);
    const std::uint64_t nColumn = static_cast<std::uint64_t>(nOffset) % LineStride(nWidth);
    return nColumn + 4 <= nWidth && nRow + 4 <= nHeight;
}

} // namespace Warp

/// A warp is without table, all its numbers 0, or prepared, numbers and table of one making. Who
/// makes one makes it whole and lets it take the place of the one before; what is between the two
/// is never seen.
struct StWarp {
    std::uint32_t m_nSourceWidth = 0;
    std::uint32_t m_nSourceHeight = 0;
    std::uint32_t m_nTargetWidth = 0;
    std::uint32_t m_nTargetHeight = 0;
    std::uint32_t m_nTargetPelsX = 0; ///< pixels per metre
    std::uint32_t m_nTargetPelsY = 0;
    std::uint32_t m_nPlanes = 0;
    std::uint8_t m_nBackground = 0;            ///< value of a pixel without source
    std::unique_ptr<unsigned char[]> m_pTable; ///< null exactly where nothing is prepared
    unsigned long m_nEntrySize = 0;            ///< bytes per entry; stays when the table goes

    bool HasTable() const { return m_pTable != nullptr; }

    std::uint64_t TableBytes() const {
        return Warp::TableBytes(m_nTargetWidth, m_nTargetHeight, m_nPlanes, m_nEntrySize);
    }

    void Drop() {
        const unsigned long nEntrySize = m_nEntrySize;
        *this = StWarp();
        m_nEntrySize = nEntrySize;
    }
};
