#include "sim/BitmapBlock.h"

#include <cstdint>

namespace sim {

namespace {

constexpr std::uint32_t g_nFileHeader = 14;
constexpr std::uint32_t g_nInfoHeader = 40;
constexpr std::uint32_t g_nPalette = 256 * 4;

void Append(std::vector<unsigned char>& aBytes, std::uint32_t nValue, int nCount) {
    for (int n = 0; n < nCount; ++n)
        aBytes.push_back(static_cast<unsigned char>(nValue >> (8 * n)));
}

void AppendInfoHeader(std::vector<unsigned char>& aBytes, const ClRaster& Raster) {
    Append(aBytes, g_nInfoHeader, 4);
    Append(aBytes, static_cast<std::uint32_t>(Raster.m_nWidth), 4);
    Append(aBytes, static_cast<std::uint32_t>(Raster.m_nHeight), 4);
    Append(aBytes, 1, 2); // planes
    Append(aBytes, 8, 2); // bits per pixel
    Append(aBytes, 0, 4); // not compressed
    Append(aBytes, 0, 4); // size of the pixels, implied
    Append(aBytes, static_cast<std::uint32_t>(Raster.m_nPelsX), 4);
    Append(aBytes, static_cast<std::uint32_t>(Raster.m_nPelsY), 4);
    Append(aBytes, 0, 4); // colours used: all
    Append(aBytes, 0, 4); // colours important: all
}

void AppendPalette(std::vector<unsigned char>& aBytes) {
    for (std::uint32_t nGrey = 0; nGrey < 256; ++nGrey)
        Append(aBytes, nGrey * 0x010101U, 4);
}

void AppendPixels(std::vector<unsigned char>& aBytes, const ClRaster& Raster) {
    const int nPadding = (4 - Raster.m_nWidth % 4) % 4;
    for (int y = 0; y < Raster.m_nHeight; ++y) {
        const unsigned char* pLine = Raster.Line(y);
        aBytes.insert(aBytes.end(), pLine, pLine + Raster.m_nWidth);
        Append(aBytes, 0, nPadding);
    }
}

} // namespace

std::vector<unsigned char> BitmapBlock(const ClRaster& Raster) {
    std::vector<unsigned char> aBytes;
    aBytes.reserve(g_nInfoHeader + g_nPalette + Raster.m_aPixels.size() +
                   4 * static_cast<std::size_t>(Raster.m_nHeight));
    AppendInfoHeader(aBytes, Raster);
    AppendPalette(aBytes);
    AppendPixels(aBytes, Raster);
    return aBytes;
}

std::vector<unsigned char> BitmapFile(const ClRaster& Raster) {
    const std::vector<unsigned char> aBlock = BitmapBlock(Raster);
    std::vector<unsigned char> aBytes;
    aBytes.reserve(g_nFileHeader + aBlock.size());
    Append(aBytes, 'B' | 'M' << 8, 2);
    Append(aBytes, static_cast<std::uint32_t>(g_nFileHeader + aBlock.size()), 4);
    Append(aBytes, 0, 4); // reserved
    Append(aBytes, g_nFileHeader + g_nInfoHeader + g_nPalette, 4);
    aBytes.insert(aBytes.end(), aBlock.begin(), aBlock.end());
    return aBytes;
}

} // namespace sim
