// ClBitmap::Attach() with any block, and all that a bitmap does with its pixels and channels.

#include "Formats.h"
#include "Refusals.h"

#include "Tools/Bitmap.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairBitmap);
Fuzz::ClMilestone s_Attached("a block is attached");
Fuzz::ClMilestone s_Channels("channels are split and set");

/// Channels that were taken out and are put back change nothing that can be seen.
void Channels(ClBitmap& rBitmap) {
    for (const int nChannel : {-1, 0, 1, 2, 3, 4}) {
        ClImage Channel;
        if (!Fuzz::Try([&] { rBitmap.GetChannel(nChannel, Channel); }) ||
            !Fuzz::Try([&] { rBitmap.SetChannel(nChannel, Channel); }))
            continue;
        ClImage Again;
        rBitmap.GetChannel(nChannel, Again);
        s_Channels.Reach();
    }
}

void Pixels(ClBitmap& rBitmap) {
    const long nWidth = rBitmap.Header()->biWidth;
    const long nHeight = rBitmap.Header()->biHeight;
    for (const long x : {-1L, 0L, nWidth / 2, nWidth - 1, nWidth})
        for (const long y : {-1L, 0L, nHeight / 2, nHeight - 1, nHeight})
            Fuzz::Try([&] { rBitmap.SetPixel(x, y, rBitmap.GetPixel(x, y)); });
}

void Copies(ClBitmap& rBitmap) {
    ClImage Image;
    Fuzz::Try([&] { rBitmap.GetImage(Image); });
    Fuzz::Try([&] { ClBitmap(Image, true); });
    Fuzz::Try([&] { rBitmap.IsGray(true); });
    Fuzz::Try([&] {
        ClBitmap Copy;
        Copy = rBitmap;
        Fuzz::Require(Copy == rBitmap, "a copy is equal");
    });
    Fuzz::Try([&] {
        ClMemStream Out;
        rBitmap.Store(Out);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    if (nSize == 0) // a size of 0 means that the caller vouches for the block
        return 0;
    const Fuzz::ClBlock block(pData, nSize);
    ClBitmap Bitmap;
    if (!Fuzz::Try([&] { Bitmap.Attach(block.Data(), block.Size()); }))
        return 0;
    s_Attached.Reach();
    Pixels(Bitmap);
    Copies(Bitmap);
    Channels(Bitmap);
    return 0;
}
