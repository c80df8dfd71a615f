// ClBitmap::Load() with any bytes; what loads is stored and loads again.

#include "Formats.h"
#include "Harness.h"

#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairBitmap);
Fuzz::ClMilestone s_Loaded("a bitmap is loaded");

/// A few bytes of a compressed bitmap may claim two gigabytes, and are loaded at no cost. What is
/// done with all pixels afterwards costs what was claimed.
bool IsWorthWalking(const ClBitmap& Bitmap) {
    return ClBitmap::BlockBytes(*Bitmap.Header()) < (1U << 22);
}

void Convert(const ClBitmap& Bitmap) {
    try {
        ClImage Image;
        Bitmap.GetImage(Image);
        Bitmap.GetChannel(0, Image);
    } catch (const ClException& e) {
        Fuzz::RequireStatus(e.Number());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const Fuzz::ClBlock block(pData, nSize);
    try {
        ClMemStream In(static_cast<const unsigned char*>(block.Data()), block.Size());
        ClBitmap Bitmap;
        Bitmap.Load(In);
        s_Loaded.Reach();
        if (!IsWorthWalking(Bitmap))
            return 0;
        Convert(Bitmap);
        ClMemStream Out;
        Bitmap.Store(Out);
        Out.Seek(0, 0);
        ClBitmap Again;
        Again.Load(Out);
        Fuzz::Require(Again == Bitmap, "what was stored loads again");
    } catch (const ClException& e) {
        Fuzz::RequireStatus(e.Number());
    }
    return 0;
}
