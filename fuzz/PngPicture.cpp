// The tool's own reader and writer of PNG: any file becomes a bitmap block or is refused with
// words, and a block that came of one is written and comes of that file again.

#include "Formats.h"
#include "Harness.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Png.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairPng);
Fuzz::ClMilestone s_Grey("a picture of 8-bit grey is read");
Fuzz::ClMilestone s_Packed("a picture of less than 8 bits is read");
Fuzz::ClMilestone s_Palette("a picture with a palette is read");
Fuzz::ClMilestone s_Interlaced("an interlaced picture is read");
Fuzz::ClMilestone s_Refused("a colour picture is refused");

constexpr int cnPalette = 3;

/// The sizes that a small file may claim are judged before memory is taken, and zeroing them takes
/// most of the time.
bool IsWorthReading(const qk7::StPngInfo& Info) {
    return std::uint64_t{Info.m_nWidth} * Info.m_nHeight < (1U << 20) ||
           std::uint64_t{Info.m_nWidth} * Info.m_nHeight > qk7::cnPngPixelLimit;
}

void NoteKind(const qk7::StPngInfo& Info) {
    if (Info.m_nColourType == cnPalette)
        s_Palette.Reach();
    else
        (Info.m_nBits == 8 ? s_Grey : s_Packed).Reach();
    if (Info.m_bInterlaced)
        s_Interlaced.Reach();
}

void CheckBlock(const qk7::StPngInfo& Info, const qk7::Bytes& Block) {
    const qk7::StBitmapInfo Told = qk7::ReadBitmapInfo(Block);
    Fuzz::Require(Told.m_nWidth == static_cast<std::int64_t>(Info.m_nWidth) &&
                      Told.m_nHeight == static_cast<std::int64_t>(Info.m_nHeight),
                  "a block has the sides of its picture");
    Fuzz::Require(Told.m_nImpliedBytes && *Told.m_nImpliedBytes == Block.size(),
                  "a block has the bytes that its header implies");
    Fuzz::Require(qk7::BlockOfPng(qk7::PngOfBlock(Block)) == Block,
                  "a block that was written comes back");
}

void Read(const qk7::Bytes& File) {
    const qk7::StPngInfo Info = qk7::ReadPngInfo(File);
    if (!IsWorthReading(Info))
        return;
    if (Info.m_nColourType == 2)
        s_Refused.Reach();
    const qk7::Bytes Block = qk7::BlockOfPng(File);
    Fuzz::Require(Info.m_nBits <= 8 && Info.m_nColourType % 4 != 2, "colours are refused");
    NoteKind(Info);
    CheckBlock(Info, Block);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const qk7::Bytes File(pData, pData + nSize);
    try {
        qk7::IsPng(File);
        Read(File);
    } catch (const qk7::ClFailure& e) {
        Fuzz::Require(std::strlen(e.what()) > 0, "a refusal has words");
    }
    return 0;
}
