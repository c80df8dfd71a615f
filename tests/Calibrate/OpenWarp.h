#pragma once

/// The warp with its inside open to tests.

#include "Calibrate/IpCalibrateGeometricBicubic.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace TestSupport {

/// One table entry.
struct StWarpEntry {
    std::int32_t m_nOffset = -1;
    std::array<std::int16_t, 16> m_anWeights{};

    bool operator==(const StWarpEntry& Other) const {
        return m_nOffset == Other.m_nOffset && m_anWeights == Other.m_anWeights;
    }
};

inline StWarpEntry ToEntry(const unsigned char* pBytes) {
    StWarpEntry Entry;
    std::memcpy(&Entry.m_nOffset, pBytes, 4);
    std::memcpy(Entry.m_anWeights.data(), pBytes + 4, 32);
    return Entry;
}

class ClOpenWarp : public ClIpCalibrateGeometricBicubic {
public:
    using ClIpCalibrateGeometricBicubic::FillEntry;
    using ClIpCalibrateGeometricBicubic::m_nBackground;
    using ClIpCalibrateGeometricBicubic::m_nEntrySize;
    using ClIpCalibrateGeometricBicubic::m_nPlanes;
    using ClIpCalibrateGeometricBicubic::m_nSourceHeight;
    using ClIpCalibrateGeometricBicubic::m_nSourceWidth;
    using ClIpCalibrateGeometricBicubic::m_nTargetHeight;
    using ClIpCalibrateGeometricBicubic::m_nTargetPelsX;
    using ClIpCalibrateGeometricBicubic::m_nTargetPelsY;
    using ClIpCalibrateGeometricBicubic::m_nTargetWidth;
    using ClIpCalibrateGeometricBicubic::m_pTable;

    std::size_t TableSize() const {
        return std::size_t{m_nTargetWidth} * m_nTargetHeight * m_nPlanes * m_nEntrySize;
    }
    std::vector<unsigned char> Table() const {
        return std::vector<unsigned char>(m_pTable.get(), m_pTable.get() + TableSize());
    }
    StWarpEntry Entry(std::size_t nIndex) const { return ToEntry(m_pTable.get() + 36 * nIndex); }

    /// The entry of a pixel whose source is (sx, sy).
    StWarpEntry EntryAt(double sx, double sy) const {
        unsigned char acEntry[36];
        std::memset(acEntry, 0xEE, sizeof acEntry);
        FillEntry(sx, sy, acEntry);
        return ToEntry(acEntry);
    }
};

} // namespace TestSupport
