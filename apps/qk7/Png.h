#pragma once

/// Pictures in PNG: the bitmap block of the library's interface, and that block as such a file.
///
/// A picture looks the same in both formats, so the upper line of the one is the upper line of the
/// other: a bitmap stores its lowest line first, PNG its highest. Samples are taken as they are
/// stored; what a file says about gamma or colour profiles changes nothing. Interlaced pictures
/// are read like others.
///
/// Foreign bytes are safe: all that they can cause is a `ClFailure`, whose words follow the name of
/// the file, and memory is taken only for sizes that were judged before.

#include "apps/qk7/File.h"

#include <cstdint>
#include <string>

namespace qk7 {

struct StPngInfo {
    std::uint32_t m_nWidth = 0;
    std::uint32_t m_nHeight = 0;
    int m_nBits = 0;       ///< per sample, or per index of a palette
    int m_nColourType = 0; ///< as in the file: 0 grey, 2 colour, 3 palette, 4 and 6 with alpha
    bool m_bInterlaced = false;
    std::uint32_t m_nPelsX = 0; ///< pixels per metre, 0 where the file tells none
    std::uint32_t m_nPelsY = 0;
};

/// By the signature of eight bytes.
bool IsPng(const Bytes& Content);

/// Reads what stands before the pixels.
StPngInfo ReadPngInfo(const Bytes& Content);

/// The picture as a block of 8-bit grey with its resolution. Grey of 1, 2, 4 and 8 bits and
/// palettes of greys are taken; colour, transparency and 16 bits are refused with what to do.
Bytes BlockOfPng(const Bytes& Content);

/// An 8-bit uncompressed block as a PNG file of 8-bit grey with the same resolution. Throws
/// `ClFailure` for any other block.
Bytes PngOfBlock(const Bytes& Block);

/// No picture that is read has a longer side, or more pixels.
constexpr std::uint32_t cnPngSideLimit = 32767;
constexpr std::uint64_t cnPngPixelLimit = std::uint64_t{64} << 20;

} // namespace qk7
