#pragma once

/// The headers of bitmaps: the block of the library's interface, and that block in a file.

#include "apps/qk7/File.h"

#include <cstdint>
#include <optional>

namespace qk7 {

struct StBitmapInfo {
    bool m_bFileHeader = false;
    std::uint32_t m_nFileSize = 0;    ///< told by the file header
    std::uint32_t m_nPixelOffset = 0; ///< told by the file header
    std::int32_t m_nWidth = 0;
    std::int32_t m_nHeight = 0;
    std::uint16_t m_nPlanes = 0;
    std::uint16_t m_nBits = 0;
    std::uint32_t m_nCompression = 0;
    std::uint32_t m_nImageSize = 0;
    std::int32_t m_nPelsX = 0; ///< pixels per metre
    std::int32_t m_nPelsY = 0;
    std::uint32_t m_nColours = 0;
    std::uint32_t m_nImportant = 0;
    std::uint64_t m_nBlockBytes = 0; ///< bytes there are, without file header
    /// Bytes that the header implies; none where its numbers are absurd.
    std::optional<std::uint64_t> m_nImpliedBytes;
};

/// Reads the header of a bitmap with or without file header. Throws `ClFailure` when it is cut off
/// or is not the info header of 40 bytes.
StBitmapInfo ReadBitmapInfo(const Bytes& Content);

/// The bytes of a block with an 8-bit grey palette and a plane per channel.
std::uint64_t BitmapBytes(std::uint32_t nWidth, std::uint32_t nHeight, std::uint32_t nPlanes);

/// Removes the 14 bytes of a file header, where there is one.
void RemoveFileHeader(Bytes& rContent);

/// The file header for a block that the library gave. Throws `ClFailure` as `ReadBitmapInfo`.
Bytes FileHeaderFor(const Bytes& Block);

} // namespace qk7
