// The readers that the command line tool has of its own, what it tells of a file, and how it
// compares blocks: any file is read, or refused with words.

#include "Formats.h"
#include "Harness.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockComparison.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/InfoReport.h"
#include "apps/qk7/RecordFault.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace {

Fuzz::ClMilestone s_Bitmap("a bitmap is described");
Fuzz::ClMilestone s_Record("a record is described");
Fuzz::ClMilestone s_Table("a table is described");
Fuzz::ClMilestone s_Compared("a record that loads is compared");

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

/// Lines that drive no terminal, and JSON that can be read.
void Tell(const qk7::Bytes& Content) {
    const qk7::FileInfo Info = qk7::ReadInfo(Content);
    const std::string Text = qk7::TextOf("file", Content.size(), Info);
    Fuzz::Require(std::all_of(Text.begin(), Text.end(),
                              [](char c) { return c == '\n' || (c >= 0x20 && c < 0x7F); }),
                  "a text is plain");
    const nlohmann::ordered_json Json = qk7::JsonOf("file", Content.size(), Info);
    const std::string Dumped =
        Json.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
    Fuzz::Require(nlohmann::ordered_json::parse(Dumped).size() == Json.size(), "JSON can be read");
}

void RequireSame(const qk7::StComparison& Comparison, bool bSame, const char* szPromise) {
    Fuzz::Require(Comparison.m_aDifferences.empty() == bSame, szPromise);
}

qk7::Bytes BytesOf(const std::string& Block) {
    return {Block.begin(), Block.end()};
}

/// What the library makes of a record that it loads.
void CompareRecord(const qk7::Bytes& Content) {
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true"); // no table is made
    const Fuzz::ClBlock block(Content.data(), Content.size());
    if (CalibrateSetData(handle, block.Data(), block.Size()) != 0)
        return;
    static const qk7::Bytes s_Other = BytesOf(Fuzz::SmallScanner(64));
    const qk7::Bytes Rewritten = BytesOf(Fuzz::BlockFrom(handle, CalibrateGetData));
    qk7::CompareCalibration(Content, Rewritten);
    RequireSame(qk7::CompareCalibration(Rewritten, Rewritten), true, "a record is its own");
    RequireSame(qk7::CompareRecords(Rewritten, Rewritten), true, "a record is like itself");
    RequireSame(qk7::CompareRecords(Rewritten, s_Other), Rewritten == s_Other,
                "records that differ are told apart");
    s_Compared.Reach();
}

void CompareTable(const qk7::Bytes& Content) {
    const std::size_t nBehind = qk7::ReadPrecalculatedInfo(Content).m_nBytesBehind;
    qk7::Bytes Other(Content.begin(), Content.end() - static_cast<std::ptrdiff_t>(nBehind));
    RequireSame(qk7::ComparePrecalculated(Content, Other), true, "a table is like itself");
    Other[12] ^= 1; // of the hash
    RequireSame(qk7::ComparePrecalculated(Content, Other), false, "a table of another record");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const qk7::Bytes Content(pData + std::min<std::size_t>(nSize, 1), pData + nSize);
    qk7::KindOf(Content);
    Try([&] { ReadBitmap(Content); });
    Try([&] { ReadRecord(Content); });
    Try([&] { ReadTable(Content); });
    Try([&] { Tell(Content); });
    Try([&] { CompareRecord(Content); });
    Try([&] { CompareTable(Content); });
    Try([&] { qk7::FindRecordFault(Content); });
    Try([&] { Fuzz::Require(qk7::ExpectedPrecalculatedBytes(Content) > 0, "at least one byte"); });
    return 0;
}
