// The readers that the command line tool has of its own: any file is read, or refused with words.

#include "Formats.h"
#include "Harness.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/RecordFault.h"

#include <cmath>

namespace {

Fuzz::ClMilestone s_Bitmap("a bitmap is described");
Fuzz::ClMilestone s_Record("a record is described");
Fuzz::ClMilestone s_Table("a table is described");

/// A kind by the first byte, for the format does not tell itself.
void Repair(std::string& rBytes, Fuzz::ClRandom& rRandom) {
    if (rBytes.empty())
        rBytes = "R";
    std::string Content = rBytes.substr(1);
    if (rBytes[0] % 3 == 0)
        Fuzz::RepairBitmap(Content, rRandom);
    else if (rBytes[0] % 3 == 1)
        Fuzz::RepairRecord(Content, rRandom);
    else if (Content.size() > 28) {
        std::string Table = Content.substr(28);
        Fuzz::RepairTable(Table, rRandom);
        Content = std::string("CAL\0PRE\000001\0", 12) + Content.substr(12, 16) + Table;
    }
    rBytes = rBytes[0] + Content;
}
const Fuzz::ClFormat s_Format(Repair);

template <class Work>
void Try(Work work) {
    try {
        work();
    } catch (const qk7::ClFailure& e) {
        Fuzz::Require(std::strlen(e.what()) > 0, "a refusal has words");
    }
}

void Describe(const qk7::StPoints& Points) {
    Fuzz::Require(Points.m_nNotFinite <= Points.m_nCount, "some of the points are not finite");
    Fuzz::Require(Points.m_afMin[0] <= Points.m_afMax[0] && Points.m_afMin[1] <= Points.m_afMax[1],
                  "an extent has an order");
}

void ReadRecord(const qk7::Bytes& Content) {
    const qk7::StCalibrationInfo Info = qk7::ReadCalibrationInfo(Content);
    Describe(Info.m_TargetPoints);
    for (const qk7::StPoints& Points : Info.m_aActualPoints)
        Describe(Points);
    Fuzz::Require(Info.m_nBytesBehind < Content.size(), "a record is part of its file");
    s_Record.Reach();
}

void ReadTable(const qk7::Bytes& Content) {
    const qk7::StPrecalculatedInfo Info = qk7::ReadPrecalculatedInfo(Content);
    Fuzz::Require(Info.m_nWithoutSource <= Info.m_nEntries &&
                      Info.m_nEntries <= Content.size() / qk7::cnEntrySize,
                  "entries are counted where they are");
    s_Table.Reach();
}

void ReadBitmap(const qk7::Bytes& Content) {
    const qk7::StBitmapInfo Info = qk7::ReadBitmapInfo(Content);
    Fuzz::Require(Info.m_nBlockBytes <= Content.size(), "a block is part of its file");
    s_Bitmap.Reach();
    qk7::Bytes Block = Content;
    qk7::RemoveFileHeader(Block);
    const qk7::Bytes Header = qk7::FileHeaderFor(Block);
    Fuzz::Require(Header.size() == 14, "a file header has 14 bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const qk7::Bytes Content(pData + std::min<std::size_t>(nSize, 1), pData + nSize);
    qk7::KindOf(Content);
    Try([&] { ReadBitmap(Content); });
    Try([&] { ReadRecord(Content); });
    Try([&] { ReadTable(Content); });
    Try([&] { qk7::FindRecordFault(Content); });
    Try([&] { Fuzz::Require(qk7::ExpectedPrecalculatedBytes(Content) > 0, "at least one byte"); });
    return 0;
}
