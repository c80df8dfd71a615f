#pragma once

/// PNG files put together by the description of the format: every chunk with its checksum, the
/// lines stored without compression.

#include "apps/qk7/File.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TestSupport {

struct StPngShape {
    std::uint32_t m_nWidth;
    std::uint32_t m_nHeight;
    int m_nBits;
    int m_nColourType;
    int m_nInterlace = 0;
};

qk7::Bytes PngChunk(const std::string& Name, const qk7::Bytes& Content);
/// Unit 1 is the metre.
qk7::Bytes PngResolution(std::uint32_t nX, std::uint32_t nY, unsigned char nUnit = 1);
/// The lines as they are stored, without their filter bytes; further chunks before them.
qk7::Bytes PngFile(const StPngShape& Shape, const std::vector<qk7::Bytes>& aLines,
                   const qk7::Bytes& Between = {});

} // namespace TestSupport
