#include "apps/qk7/BlockInfo.h"

#include "apps/qk7/ByteReader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qk7 {

namespace {

constexpr std::uint32_t cnPels500Dpi = 19685; // of layouts that tell no resolution
constexpr std::uint32_t cnMaxPlanes = 3;
constexpr int cnNewestLayout = 6;
constexpr std::uint32_t cnImageMagic = 0x4B504600; // "KPF" and a zero byte
constexpr std::size_t cnHeaderBytes = 28 + 94;     // of a precalculated block, before its table

[[noreturn]] void Refuse(const std::string& Words) {
    throw ClFailure(Words);
}

bool BeginsWith(const Bytes& Content, const char* szTag, std::size_t nAt) {
    return Content.size() >= nAt + 4 && std::memcmp(Content.data() + nAt, szTag, 4) == 0;
}

/// A version as the library reads it: 0 for what is no number.
int VersionOf(const std::string& Text) {
    return std::atoi(Text.c_str()); // NOLINT(cert-err34-c)
}

/// The layout that a version text stands for. A new layout keeps the fields of the newest known.
int LayoutOf(const std::string& SubTag, const std::string& Version) {
    if (SubTag == "Lmv" && Version == "001")
        Refuse("version 001 with the tag Lmv cannot be read");
    if (SubTag == "Lmv" && Version == "002")
        return 0;
    return std::clamp(VersionOf(Version), 0, cnNewestLayout);
}

void ReadSize(ClByteReader& rReader, StFrame& rFrame, const char* szField) {
    rFrame.m_nWidth = rReader.Big32(szField);
    rFrame.m_nHeight = rReader.Big32(szField);
}

void ReadPels(ClByteReader& rReader, StFrame& rFrame, const char* szField) {
    rFrame.m_nPelsX = rReader.Big32(szField);
    rFrame.m_nPelsY = rReader.Big32(szField);
}

void Extend(StPoints& rPoints, const std::array<float, 2>& afPoint, bool bFirst) {
    for (std::size_t i = 0; i < 2; ++i) {
        rPoints.m_afMin[i] = bFirst ? afPoint[i] : std::min(rPoints.m_afMin[i], afPoint[i]);
        rPoints.m_afMax[i] = bFirst ? afPoint[i] : std::max(rPoints.m_afMax[i], afPoint[i]);
    }
}

StPoints ReadPoints(ClByteReader& rReader, const char* szField) {
    StPoints points;
    points.m_nCount = rReader.Big32(szField);
    if (points.m_nCount > rReader.Left() / 8)
        Refuse(std::string(szField) + " claims " + std::to_string(points.m_nCount) +
               " points, but only " + std::to_string(rReader.Left()) + " bytes follow");
    bool bFirst = true;
    for (std::uint32_t i = 0; i < points.m_nCount; ++i) {
        const float fX = rReader.BigFloat(szField);
        const float fY = rReader.BigFloat(szField);
        if (!std::isfinite(fX) || !std::isfinite(fY)) {
            ++points.m_nNotFinite;
            continue;
        }
        Extend(points, {fX, fY}, bFirst);
        bFirst = false;
    }
    return points;
}

/// The lists of the layouts below 3: the actual one first, one plane.
void ReadOldLists(ClByteReader& rReader, StCalibrationInfo& rInfo) {
    rInfo.m_nPlanes = 1;
    rInfo.m_aActualPoints.push_back(ReadPoints(rReader, "the list of actual points"));
    rInfo.m_TargetPoints = ReadPoints(rReader, "the list of target points");
}

void ReadLists(ClByteReader& rReader, StCalibrationInfo& rInfo) {
    rInfo.m_nPlanes = rReader.Big32("the number of planes");
    if (rInfo.m_nPlanes > cnMaxPlanes)
        Refuse("claims " + std::to_string(rInfo.m_nPlanes) + " planes, at most 3 are possible");
    if (rInfo.m_nLayout > 3)
        rInfo.m_nBackground = rReader.Byte("the background");
    rInfo.m_TargetPoints = ReadPoints(rReader, "the list of target points");
    for (std::uint32_t i = 0; i < rInfo.m_nPlanes; ++i)
        rInfo.m_aActualPoints.push_back(ReadPoints(rReader, "a list of actual points"));
}

void ReadFrames(ClByteReader& rReader, StCalibrationInfo& rInfo) {
    ReadSize(rReader, rInfo.m_Source, "the source size");
    if (rInfo.m_nLayout > 4)
        ReadPels(rReader, rInfo.m_Source, "the source resolution");
    ReadSize(rReader, rInfo.m_Target, "the target size");
    rInfo.m_Target.m_nPelsX = rInfo.m_Target.m_nPelsY = cnPels500Dpi;
    if (rInfo.m_nLayout > 1)
        ReadPels(rReader, rInfo.m_Target, "the target resolution");
}

void ReadTags(ClByteReader& rReader, StCalibrationInfo& rInfo) {
    rInfo.m_Tag = rReader.Tag("the first tag");
    rInfo.m_SubTag = rReader.Tag("the second tag");
    rInfo.m_Version = rReader.Tag("the version");
    if (rInfo.m_Tag != "CAL" && rInfo.m_Tag != "Cal")
        Refuse("does not begin with the tag CAL or Cal of a calibration block");
    if (rInfo.m_SubTag != "GEO" && rInfo.m_SubTag != "Lmv")
        Refuse("does not have the tag GEO or Lmv of a calibration block at byte 4");
    rInfo.m_nLayout = LayoutOf(rInfo.m_SubTag, rInfo.m_Version);
}

std::string Hexadecimal(const unsigned char* pData, std::size_t nSize) {
    const char* szDigits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < nSize; ++i) {
        text += szDigits[pData[i] >> 4];
        text += szDigits[pData[i] & 15];
    }
    return text;
}

void Expect(bool bAsExpected, const char* szField) {
    if (!bAsExpected)
        Refuse(std::string(szField) + " of the precalculated block is not the expected");
}

void ExpectNumber(ClByteReader& rReader, std::uint32_t nExpected, const char* szField) {
    Expect(rReader.Big32(szField) == nExpected, szField);
}

/// The header that ties the block to its calibration data.
void ReadBinding(ClByteReader& rReader, StPrecalculatedInfo& rInfo) {
    Expect(rReader.Tag("the first tag") == "CAL", "the first tag");
    Expect(rReader.Tag("the second tag") == "PRE", "the second tag");
    rInfo.m_Version = rReader.Tag("the version");
    Expect(VersionOf(rInfo.m_Version) == 1, "the version");
    rInfo.m_Hash = Hexadecimal(rReader.Take(16, "the hash"), 16);
}

void ReadWarp(ClByteReader& rReader, StPrecalculatedInfo& rInfo) {
    Expect(rReader.Tag("the first tag of the warp") == "PRE", "the first tag of the warp");
    Expect(rReader.Tag("the second tag of the warp") == "GEO", "the second tag of the warp");
    Expect(VersionOf(rReader.Tag("the version of the warp")) == 1, "the version of the warp");
    ReadSize(rReader, rInfo.m_Source, "the source size");
    ReadSize(rReader, rInfo.m_Target, "the target size");
    ReadPels(rReader, rInfo.m_Target, "the target resolution");
    rInfo.m_nPlanes = rReader.Big32("the number of planes");
    if (rInfo.m_nPlanes == 0)
        Refuse("holds no table: it was stored before the table was prepared");
    Expect(rInfo.m_nPlanes <= cnMaxPlanes, "the number of planes");
    rInfo.m_nBackground = rReader.Byte("the background");
}

/// The table is kept as an image of one entry per pixel and plane, whose header repeats the frame.
void ReadTableHeader(ClByteReader& rReader, const StPrecalculatedInfo& Info) {
    ExpectNumber(rReader, cnImageMagic, "the magic of the table");
    Expect(rReader.Big32("the version of the table") < 2, "the version of the table");
    Expect(rReader.Byte("the data type of the table") == 1, "the data type of the table");
    ExpectNumber(rReader, Info.m_Target.m_nWidth, "the width of the table");
    ExpectNumber(rReader, Info.m_Target.m_nHeight, "the height of the table");
    ExpectNumber(rReader, Info.m_nPlanes * cnEntrySize, "the entry size of the table");
    ExpectNumber(rReader, Info.m_Target.m_nPelsX, "the resolution of the table");
    ExpectNumber(rReader, Info.m_Target.m_nPelsY, "the resolution of the table");
    ExpectNumber(rReader, 0, "the content of the table");
    rReader.Take(8 + 8 + 4, "the value range of the table");
}

/// An entry begins with its source offset in the byte order of the machine that made it; a
/// negative one means that it has no source. All supported machines are little endian.
std::uint64_t CountWithoutSource(const unsigned char* pTable, std::uint64_t nEntries) {
    std::uint64_t nCount = 0;
    for (std::uint64_t i = 0; i < nEntries; ++i)
        nCount += pTable[i * cnEntrySize + 3] >> 7;
    return nCount;
}

/// Limited so that neither the entries nor their bytes overflow; no block holds that many.
std::uint64_t EntriesOf(const StFrame& Target, std::uint32_t nPlanes) {
    const std::uint64_t nPixels = std::uint64_t{Target.m_nWidth} * Target.m_nHeight;
    const std::uint64_t nMost = (std::uint64_t{1} << 56) / cnMaxPlanes;
    return std::min(nPixels, nMost) * std::min(nPlanes, cnMaxPlanes);
}

} // namespace

EFileKind KindOf(const Bytes& Content) {
    if (Content.size() >= 2 && Content[0] == 'B' && Content[1] == 'M')
        return EFileKind::eBitmap;
    if (BeginsWith(Content, "\x28\0\0", 0)) // an info header alone, which begins with its size
        return EFileKind::eBitmap;
    if (BeginsWith(Content, "\x89PNG", 0) && BeginsWith(Content, "\r\n\x1a\n", 4))
        return EFileKind::ePng;
    if (BeginsWith(Content, "CAL", 0) && BeginsWith(Content, "PRE", 4))
        return EFileKind::ePrecalculated;
    if (BeginsWith(Content, "CAL", 0) || BeginsWith(Content, "Cal", 0))
        return EFileKind::eCalibration;
    return EFileKind::eUnknown;
}

StCalibrationInfo ReadCalibrationInfo(const Bytes& Block) {
    ClByteReader reader(Block);
    StCalibrationInfo info;
    ReadTags(reader, info);
    ReadFrames(reader, info);
    if (info.m_nLayout < 3)
        ReadOldLists(reader, info);
    else
        ReadLists(reader, info);
    if (info.m_nLayout == cnNewestLayout) {
        const std::uint32_t nComputed = Checksum(Block.data(), reader.Pos());
        info.m_Checksum = StChecksum{reader.Big32("the checksum"), nComputed};
    }
    info.m_nBytesBehind = reader.Left();
    return info;
}

StPrecalculatedInfo ReadPrecalculatedInfo(const Bytes& Block) {
    ClByteReader reader(Block);
    StPrecalculatedInfo info;
    ReadBinding(reader, info);
    ReadWarp(reader, info);
    ReadTableHeader(reader, info);
    info.m_nEntries = EntriesOf(info.m_Target, info.m_nPlanes);
    const unsigned char* pTable = reader.Take(info.m_nEntries * cnEntrySize, "the table");
    info.m_nWithoutSource = CountWithoutSource(pTable, info.m_nEntries);
    ExpectNumber(reader, cnImageMagic, "the end magic of the table");
    info.m_nBytesBehind = reader.Left();
    return info;
}

std::uint64_t PrecalculatedBytes(const StFrame& Target, std::uint32_t nPlanes) {
    return cnHeaderBytes + EntriesOf(Target, nPlanes) * cnEntrySize + 4;
}

std::size_t ExpectedPrecalculatedBytes(const Bytes& Calibration) {
    try {
        const StCalibrationInfo info = ReadCalibrationInfo(Calibration);
        return std::min<std::size_t>(PrecalculatedBytes(info.m_Target, info.m_nPlanes),
                                     cnFileLimit);
    } catch (const ClFailure&) {
        return 1;
    }
}

std::uint32_t Checksum(const unsigned char* pData, std::size_t nSize) {
    std::uint32_t nCrc = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < nSize; ++i) {
        nCrc ^= std::uint32_t{pData[i]} << 24;
        for (int nBit = 0; nBit < 8; ++nBit)
            nCrc = (nCrc << 1) ^ ((nCrc >> 31) * 0x04C11DB7U);
    }
    return ~nCrc;
}

} // namespace qk7
