// ClImage::Load() with any bytes, strict and not; what loads is stored and loads as the same.

#include "Formats.h"
#include "Harness.h"

#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

#include <algorithm>

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairRawImage);
Fuzz::ClMilestone s_Loaded("an image is loaded");

/// A block of one element is read as it stands and written in the order of the stream: it comes
/// back turned round.
bool IsOneSample(const ClImage& Image) {
    return Image.SizeBytes() == static_cast<std::size_t>(Image.BytesPerSample());
}

std::string BytesOf(const ClImage& Image) {
    return {reinterpret_cast<const char*>(Image.Data()), Image.SizeBytes()};
}

std::string Expected(const ClImage& Image) {
    std::string Bytes = BytesOf(Image);
    const bool bNumber = Image.BytesPerSample() == 4 || Image.BytesPerSample() == 8;
    if (bNumber && IsOneSample(Image))
        std::reverse(Bytes.begin(), Bytes.end());
    return Bytes;
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
        s_Loaded.Reach();
        Fuzz::Require(BytesOf(Again) == Expected(Image), "an image survives a stream");
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
