// ClBitmap::Load() and ClBitmap::Attach() with any bytes; what loads is stored and loads again.

#include "Harness.h"

#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

namespace {

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
        Convert(Bitmap);
        ClMemStream Out;
        Bitmap.Store(Out);
        Out.Seek(0, 0);
        ClBitmap Again;
        Again.Load(Out);
        Fuzz::Require(Again.IsEqualSize(Bitmap), "what was stored loads again");
    } catch (const ClException& e) {
        Fuzz::RequireStatus(e.Number());
    }
    if (nSize == 0) // a size of 0 means that the caller vouches for the block
        return 0;
    try {
        ClBitmap Bitmap;
        Bitmap.Attach(block.Data(), block.Size());
        Convert(Bitmap);
    } catch (const ClException& e) {
        Fuzz::RequireStatus(e.Number());
    }
    return 0;
}
