#pragma once

/// Constants of the raw image format ("KPF"), which keeps an image without loss. The members
/// ClImage::Store() and ClImage::Load() write and read it; docs/file-formats.md has its layout.

#include <cstdint>

namespace RawImage {

/// The letters "KPF" and a zero byte, at the beginning and at the end of a record.
inline constexpr std::uint32_t cnMagic = 0x4B504600;
/// The version that is written; 0, without attribute, is read too.
inline constexpr std::uint32_t cnVersion = 1;

} // namespace RawImage
