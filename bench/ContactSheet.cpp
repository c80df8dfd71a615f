// Sets grey images side by side, as one PNG.
//
//     contact_sheet OUT.png IN.bmp...
//
// Images taller than the sheet are reduced by whole steps in y, as raw captures have two lines for
// each column.

#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <vector>

namespace {

constexpr int cnSheetHeight = 600;
constexpr int cnGap = 8;
constexpr unsigned char cnPaper = 200;

struct StTile {
    int m_nWidth = 0;
    int m_nHeight = 0;
    std::vector<unsigned char> m_aPixels;
};

StTile LoadTile(const char* szFile) {
    ClBitmap Bitmap;
    Bitmap.Load(szFile);
    ClImage Image;
    Bitmap.GetImage(Image);
    if (Image.Planes() != 1)
        throw std::runtime_error(std::string(szFile) + ": is no grey image");
    const int nStep = (Image.Height() + cnSheetHeight - 1) / cnSheetHeight;
    StTile Tile;
    Tile.m_nWidth = Image.Width();
    Tile.m_nHeight = Image.Height() / nStep;
    for (int y = 0; y < Tile.m_nHeight; ++y)
        for (int x = 0; x < Tile.m_nWidth; ++x) {
            int nSum = 0;
            for (int i = 0; i < nStep; ++i)
                nSum += Image.LineData(y * nStep + i)[x];
            Tile.m_aPixels.push_back(static_cast<unsigned char>(nSum / nStep));
        }
    return Tile;
}

void WritePng(const char* szFile, int nWidth, int nHeight, const std::vector<unsigned char>& a) {
    png_image Png = {};
    Png.version = PNG_IMAGE_VERSION;
    Png.width = static_cast<png_uint_32>(nWidth);
    Png.height = static_cast<png_uint_32>(nHeight);
    Png.format = PNG_FORMAT_GRAY;
    if (png_image_write_to_file(&Png, szFile, 0, a.data(), nWidth, nullptr) == 0)
        throw std::runtime_error(std::string(szFile) + ": " + Png.message);
}

void MakeSheet(const char* szOut, const std::vector<StTile>& aTiles) {
    int nWidth = cnGap;
    int nHeight = 0;
    for (const StTile& Tile : aTiles) {
        nWidth += Tile.m_nWidth + cnGap;
        nHeight = std::max(nHeight, Tile.m_nHeight + 2 * cnGap);
    }
    std::vector<unsigned char> aSheet(
        static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight), cnPaper);
    int nLeft = cnGap;
    for (const StTile& Tile : aTiles) {
        for (int y = 0; y < Tile.m_nHeight; ++y)
            std::copy_n(Tile.m_aPixels.begin() + y * Tile.m_nWidth, Tile.m_nWidth,
                        aSheet.begin() + (y + cnGap) * nWidth + nLeft);
        nLeft += Tile.m_nWidth + cnGap;
    }
    WritePng(szOut, nWidth, nHeight, aSheet);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s OUT.png IN.bmp...\n", argv[0]);
        return 2;
    }
    try {
        std::vector<StTile> aTiles;
        for (int i = 2; i < argc; ++i)
            aTiles.push_back(LoadTile(argv[i]));
        MakeSheet(argv[1], aTiles);
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "contact_sheet: %s\n", e.what());
        return 1;
    }
}
