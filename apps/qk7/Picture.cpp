#include "apps/qk7/Picture.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Png.h"

#include <strings.h>

namespace qk7 {

namespace {

/// The words about a file behind its name.
template <class Work>
Bytes Naming(const std::string& Name, Work work) {
    try {
        return work();
    } catch (const ClFailure& failure) {
        throw ClFailure(Name, failure.what());
    }
}

} // namespace

EPictureFormat FormatOf(const std::string& Path) {
    constexpr std::size_t cnEnding = 4;
    const bool bPng =
        Path.size() > cnEnding && strcasecmp(Path.c_str() + Path.size() - cnEnding, ".png") == 0;
    return bPng ? EPictureFormat::ePng : EPictureFormat::eBitmap;
}

Bytes ReadBlock(const std::string& Path) {
    Bytes content = ReadFile(Path);
    if (IsPng(content))
        return Naming(ShownName(Path, EStream::eIn), [&] { return BlockOfPng(content); });
    RemoveFileHeader(content);
    return content;
}

Bytes PictureFile(const Bytes& Block, EPictureFormat eFormat) {
    if (eFormat == EPictureFormat::ePng)
        return PngOfBlock(Block);
    Bytes file = FileHeaderFor(Block);
    file.insert(file.end(), Block.begin(), Block.end());
    return file;
}

void WriteBlock(const std::string& Path, const Bytes& Block) {
    WriteBlock(Path, Block, FormatOf(Path));
}

void WriteBlock(const std::string& Path, const Bytes& Block, EPictureFormat eFormat) {
    const Bytes file =
        Naming(ShownName(Path, EStream::eOut), [&] { return PictureFile(Block, eFormat); });
    WriteFile(Path, {&file});
}

} // namespace qk7
