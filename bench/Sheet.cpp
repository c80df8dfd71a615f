#include "bench/Sheet.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

constexpr int cnGap = 8;
constexpr unsigned char cnPaper = 120;

int RowWidth(const SheetRow& Row) {
    int nWidth = cnGap;
    for (const sim::ClRaster& Tile : Row)
        nWidth += Tile.m_nWidth + cnGap;
    return nWidth;
}

int RowHeight(const SheetRow& Row) {
    int nHeight = 0;
    for (const sim::ClRaster& Tile : Row)
        nHeight = std::max(nHeight, Tile.m_nHeight);
    return nHeight;
}

void SetTile(const sim::ClRaster& Tile, int nLeft, int nTop, sim::ClRaster& rSheet) {
    for (int y = 0; y < Tile.m_nHeight; ++y)
        std::copy_n(Tile.Line(y), Tile.m_nWidth, &rSheet.At(nLeft, nTop + y));
}

/// The index of a grey value among even steps, and the grey value of a step.
int StepOf(unsigned char nGrey, int nGreys) {
    return (nGrey * (nGreys - 1) + 127) / 255;
}

unsigned char GreyOf(int nStep, int nGreys) {
    return static_cast<unsigned char>(nStep * 255 / (nGreys - 1));
}

} // namespace

sim::ClRaster Reduced(const sim::ClRaster& Image, int nAcross, int nDown) {
    sim::ClRaster Result(Image.m_nWidth / nAcross, Image.m_nHeight / nDown, 0);
    for (int y = 0; y < Result.m_nHeight; ++y)
        for (int x = 0; x < Result.m_nWidth; ++x) {
            int nSum = 0;
            for (int j = 0; j < nDown; ++j)
                for (int i = 0; i < nAcross; ++i)
                    nSum += Image.At(x * nAcross + i, y * nDown + j);
            Result.At(x, y) = static_cast<unsigned char>(nSum / (nAcross * nDown));
        }
    return Result;
}

sim::ClRaster SetTiles(const std::vector<SheetRow>& aRows) {
    int nWidth = 0;
    int nHeight = cnGap;
    for (const SheetRow& Row : aRows) {
        nWidth = std::max(nWidth, RowWidth(Row));
        nHeight += RowHeight(Row) + cnGap;
    }
    sim::ClRaster Sheet(nWidth, nHeight, cnPaper);
    int nTop = cnGap;
    for (const SheetRow& Row : aRows) {
        int nLeft = cnGap;
        for (const sim::ClRaster& Tile : Row) {
            SetTile(Tile, nLeft, nTop, Sheet);
            nLeft += Tile.m_nWidth + cnGap;
        }
        nTop += RowHeight(Row) + cnGap;
    }
    return Sheet;
}

void WritePng(const char* szFile, const sim::ClRaster& Sheet, int nGreys) {
    // A colour map of up to 16 entries is stored in 4 bits per pixel.
    std::array<unsigned char, 256> aMap{};
    std::vector<unsigned char> aPixels = Sheet.m_aPixels;
    for (int n = 0; n < nGreys; ++n)
        aMap.at(static_cast<std::size_t>(n)) = GreyOf(n, nGreys);
    for (unsigned char& rPixel : aPixels)
        rPixel = static_cast<unsigned char>(StepOf(rPixel, nGreys));
    png_image Png = {};
    Png.version = PNG_IMAGE_VERSION;
    Png.width = static_cast<png_uint_32>(Sheet.m_nWidth);
    Png.height = static_cast<png_uint_32>(Sheet.m_nHeight);
    Png.format = nGreys <= 16 ? PNG_FORMAT_GRAY | PNG_FORMAT_FLAG_COLORMAP : PNG_FORMAT_GRAY;
    Png.colormap_entries = static_cast<png_uint_32>(nGreys);
    if (png_image_write_to_file(&Png, szFile, 0, aPixels.data(), Sheet.m_nWidth, aMap.data()) == 0)
        throw std::runtime_error(std::string(szFile) + ": " + Png.message);
}

} // namespace bench
