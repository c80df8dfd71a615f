#pragma once

/// What stands in a calibration block and in a precalculated block.
///
/// The library gives no view into its blocks, so the tool has readers of its own. They follow the
/// same rules as the library about what can be read at all, but judge less: a wrong checksum or a
/// point that is no number is reported, not refused. Foreign bytes are safe: all that they can
/// cause is a `ClFailure`, whose words say what was expected where.

#include "apps/qk7/File.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qk7 {

enum class EFileKind { eUnknown, eCalibration, ePrecalculated, eBitmap, ePng };

/// By the first bytes alone.
EFileKind KindOf(const Bytes& Content);

/// An image's size in pixels and resolution in pixels per metre, 0 where the block tells none.
struct StFrame {
    std::uint32_t m_nWidth = 0;
    std::uint32_t m_nHeight = 0;
    std::uint32_t m_nPelsX = 0;
    std::uint32_t m_nPelsY = 0;
};

/// A list of points, described. The extent covers the finite points; all 0 without any.
struct StPoints {
    std::uint32_t m_nCount = 0;
    std::uint32_t m_nNotFinite = 0;
    std::array<float, 2> m_afMin = {};
    std::array<float, 2> m_afMax = {};
};

struct StChecksum {
    std::uint32_t m_nStored = 0;
    std::uint32_t m_nComputed = 0;

    bool Ok() const { return m_nStored == m_nComputed; }
};

struct StCalibrationInfo {
    std::string m_Tag;
    std::string m_SubTag;
    std::string m_Version;
    int m_nLayout = 0; ///< 0 to 6
    StFrame m_Source;
    StFrame m_Target;
    std::uint32_t m_nPlanes = 0;
    std::optional<std::uint8_t> m_nBackground; ///< from layout 4 on
    StPoints m_TargetPoints;
    std::vector<StPoints> m_aActualPoints; ///< one list per plane
    std::optional<StChecksum> m_Checksum;  ///< in layout 6
    std::size_t m_nBytesBehind = 0;
};

/// Reads all layouts, 0 to 6, with the tags of today and the older ones.
StCalibrationInfo ReadCalibrationInfo(const Bytes& Block);

struct StPrecalculatedInfo {
    std::string m_Version;
    std::string m_Hash; ///< of the calibration data, 32 hexadecimal digits
    StFrame m_Source;   ///< without resolution
    StFrame m_Target;
    std::uint32_t m_nPlanes = 0;
    std::uint8_t m_nBackground = 0;
    std::uint64_t m_nEntries = 0;
    std::uint64_t m_nWithoutSource = 0; ///< entries that give the background
    std::size_t m_nBytesBehind = 0;
};

/// Bytes of an entry of the warp table.
constexpr std::uint32_t cnEntrySize = 36;

StPrecalculatedInfo ReadPrecalculatedInfo(const Bytes& Block);

/// The bytes of a precalculated block with a table for this frame and number of planes.
std::uint64_t PrecalculatedBytes(const StFrame& Target, std::uint32_t nPlanes);
/// The bytes of the precalculated block of a calibration block, no more than the tool handles; 1
/// where the block is not readable.
std::size_t ExpectedPrecalculatedBytes(const Bytes& Calibration);

/// CRC-32/BZIP2: polynomial 0x04C11DB7, most significant bit first, start all ones, inverted.
std::uint32_t Checksum(const unsigned char* pData, std::size_t nSize);

} // namespace qk7
