#pragma once

/// How the pixels of a bitmap stand in its lines. Three forms have to be read: indices of a palette
/// (up to 8 bits), bytes (24 and 32 bits) and fields under masks (16 and 32 bits). Each is a small
/// function of line and column; none of this lies on the way of a capture, which is attached to its
/// image without looking at a pixel.

#include "Tools/Bitmap.h"

#include <algorithm>
#include <cstdint>

namespace BitmapPixels {

inline constexpr std::uint64_t cnRounding = 0x8FFF;

/// Byte of a channel in a palette entry and in a pixel of 24 or 32 bits.
inline int ByteOf(int nChannel) {
    return nChannel == ClBitmap::eAlpha ? 3 : 2 - nChannel;
}

/// A channel's field in a pixel of 16 or 32 bits. A field value v becomes the sample
/// (v * nScaleUp + 0x8FFF) >> 16, at most 255, and a sample s becomes the field value
/// (s * nScaleDown + 0x8FFF) >> 16, cut by the mask.
struct StField {
    unsigned int m_nMask = 0;
    unsigned int m_nShift = 0;
    unsigned int m_nWidth = 0;
    unsigned int m_nScaleUp = 0;
    unsigned int m_nScaleDown = 0;

    std::uint64_t Value(unsigned int nPixel) const { return (nPixel & m_nMask) >> m_nShift; }
    unsigned int Replace(unsigned int nPixel, std::uint64_t nValue) const {
        const auto nPlaced = static_cast<unsigned int>(nValue << m_nShift);
        return (nPixel & ~m_nMask) | (nPlaced & m_nMask);
    }

    unsigned char Scaled(unsigned int nPixel) const {
        const std::uint64_t nSample = (Value(nPixel) * m_nScaleUp + cnRounding) >> 16;
        return static_cast<unsigned char>(std::min<std::uint64_t>(nSample, 255));
    }
    unsigned int WithScaled(unsigned int nPixel, unsigned char nSample) const {
        return Replace(nPixel, (std::uint64_t{nSample} * m_nScaleDown + cnRounding) >> 16);
    }

    /// The same with shifts alone.
    unsigned int Shifted(unsigned int nPixel) const {
        const std::uint64_t nValue = Value(nPixel);
        const std::uint64_t n = m_nWidth < 8 ? nValue << (8 - m_nWidth) : nValue >> (m_nWidth - 8);
        return static_cast<unsigned int>(std::min<std::uint64_t>(n, 255));
    }
    unsigned int WithShifted(unsigned int nPixel, unsigned int nSample) const {
        const std::uint64_t n = nSample & 0xFF;
        return Replace(nPixel, m_nWidth < 8 ? n >> (8 - m_nWidth) : n << (m_nWidth - 8));
    }
};

StField FieldOf(const ClBitmap& Bitmap, int nChannel);

/// Stores the low bytes of a number, little endian.
void LongToMem(unsigned char* pMem, unsigned int nValue, int nBytes);

/// Indices of 1, 2, 4 or 8 bits, the first one in the highest bits of its byte.
struct StIndexPlace {
    long m_nByte;
    int m_nShift;
    unsigned int m_nMask;

    StIndexPlace(long x, int nBits)
        : m_nByte(x * nBits / 8), m_nShift(8 - nBits - static_cast<int>(x * nBits % 8)),
          m_nMask((1u << nBits) - 1) {}

    unsigned int Read(const unsigned char* pLine) const {
        return (pLine[m_nByte] >> m_nShift) & m_nMask;
    }
    void Write(unsigned char* pLine, unsigned int nIndex) const {
        const unsigned int nKept = pLine[m_nByte] & ~(m_nMask << m_nShift);
        pLine[m_nByte] = static_cast<unsigned char>(nKept | (nIndex << m_nShift));
    }
};

/// Entries of the palette that a pixel may name.
inline unsigned int ReachableEntries(const tagBITMAPINFOHEADER& Header) {
    const std::int64_t nNamed = std::int64_t{1} << Header.biBitCount;
    return static_cast<unsigned int>(std::min(ClBitmap::PalSize(Header), nNamed));
}

/// An index without an entry stands for the first.
inline unsigned int EntryOf(unsigned int nIndex, unsigned int nEntries) {
    return nIndex < nEntries ? nIndex : 0;
}

/// Throws -10 where there is none.
const tagRGBQUAD& RequirePalette(const ClBitmap& Bitmap);

} // namespace BitmapPixels
