// Sets grey images side by side, as one PNG.
//
//     contact_sheet OUT.png IN.bmp...
//
// Images taller than the sheet are reduced by whole steps in y, as raw captures have two lines for
// each column.

#include "bench/Sheet.h"

#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

constexpr int cnSheetHeight = 600;
constexpr int cnAllGreys = 256;

sim::ClRaster LoadTile(const char* szFile) {
    ClBitmap Bitmap;
    Bitmap.Load(szFile);
    ClImage Image;
    Bitmap.GetImage(Image);
    if (Image.Planes() != 1)
        throw std::runtime_error(std::string(szFile) + ": is no grey image");
    sim::ClRaster Tile(Image.Width(), Image.Height(), 0);
    for (int y = 0; y < Tile.m_nHeight; ++y)
        std::copy_n(Image.LineData(y), Tile.m_nWidth, &Tile.At(0, y));
    return bench::Reduced(Tile, 1, (Tile.m_nHeight + cnSheetHeight - 1) / cnSheetHeight);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s OUT.png IN.bmp...\n", argv[0]);
        return 2;
    }
    try {
        bench::SheetRow Row;
        for (int i = 2; i < argc; ++i)
            Row.push_back(LoadTile(argv[i]));
        bench::WritePng(argv[1], bench::SetTiles({Row}), cnAllGreys);
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "contact_sheet: %s\n", e.what());
        return 1;
    }
}
