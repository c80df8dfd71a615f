// ClImage::Load() with any bytes, strict and not; what loads is stored and loads as the same.

#include "Harness.h"

#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

namespace {

/// A block of one element is read as it stands and written in the order of the stream.
bool IsOneSample(const ClImage& Image) {
    return Image.Width() == 1 && Image.Height() == 1 && Image.Planes() == 1;
}

bool IsSame(const ClImage& One, const ClImage& Other) {
    return One.SizeBytes() == Other.SizeBytes() &&
           (One.SizeBytes() == 0 || std::memcmp(One.Data(), Other.Data(), One.SizeBytes()) == 0);
}

void Load(const Fuzz::ClBlock& block, bool bStrict) {
    try {
        ClMemStream In(static_cast<const unsigned char*>(block.Data()), block.Size());
        In.SetThrowOnShort(bStrict);
        ClImage Image;
        Image.Load(In);
        ClMemStream Out;
        Image.Store(Out);
        Out.Seek(0, 0);
        ClImage Again;
        Again.Load(Out);
        Fuzz::Require(IsOneSample(Image) || IsSame(Again, Image), "an image survives a stream");
    } catch (const ClException& e) {
        Fuzz::RequireStatus(e.Number());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const Fuzz::ClBlock block(pData, nSize);
    Load(block, true);
    Load(block, false);
    return 0;
}
