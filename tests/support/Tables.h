#pragma once

/// Precalculated records and blocks for tests, put together byte by byte without the class under
/// test.

#include "support/Md5.h"
#include "support/Records.h"

namespace TestSupport {

/// A table entry without source, or with the weight 1024 at the second column of the second row.
inline Bytes TableEntry(std::int32_t nOffset) {
    Bytes aEntry(36, 0);
    std::memcpy(aEntry.data(), &nOffset, 4); // host order, as the weights
    const std::int16_t nOne = 1024;
    if (nOffset >= 0)
        std::memcpy(&aEntry[4 + 2 * 5], &nOne, 2);
    return aEntry;
}

/// All fields of the record of a warp table, in their order.
struct StTable {
    std::string m_Type = "PRE";
    std::string m_SubType = "GEO";
    std::string m_Version = "001";
    std::uint32_t m_nSourceWidth = 10;
    std::uint32_t m_nSourceHeight = 9;
    std::uint32_t m_nTargetWidth = 3;
    std::uint32_t m_nTargetHeight = 2;
    std::uint32_t m_nTargetPelsX = 100;
    std::uint32_t m_nTargetPelsY = 200;
    std::uint32_t m_nPlanes = 1;
    std::uint8_t m_nBackground = 77;
    std::uint32_t m_nMagic = 0x4B504600;
    std::uint32_t m_nImageVersion = 1;
    std::uint8_t m_nDataType = 1;
    std::uint32_t m_nImageWidth = 3;
    std::uint32_t m_nImageHeight = 2;
    std::uint32_t m_nPixelBytes = 36;
    std::uint32_t m_nImagePelsX = 100;
    std::uint32_t m_nImagePelsY = 200;
    std::uint32_t m_nContent = 0;
    Bytes m_aBlack = Bytes(8, 0);
    Bytes m_aWhite = {0x40, 0x6F, 0xE0, 0, 0, 0, 0, 0}; // 255.0
    std::uint32_t m_nAttribute = 0;
    Bytes m_aTable;
    std::uint32_t m_nEndMagic = 0x4B504600;
};

/// A table whose entries have these offsets. The source above has lines of 12 bytes, and its
/// largest offset is 5 * 12 + 6.
inline StTable TableOf(const std::vector<std::int32_t>& anOffsets = {0, 66, -1, 13, 12, 6}) {
    StTable Table;
    for (const std::int32_t nOffset : anOffsets) {
        const Bytes aEntry = TableEntry(nOffset);
        Table.m_aTable.insert(Table.m_aTable.end(), aEntry.begin(), aEntry.end());
    }
    return Table;
}

/// The record in big endian numbers.
inline Bytes TableRecord(const StTable& Table) {
    Bytes aRecord;
    const auto Append = [&](const Bytes& aMore) {
        aRecord.insert(aRecord.end(), aMore.begin(), aMore.end());
    };
    AppendTag(aRecord, Table.m_Type);
    AppendTag(aRecord, Table.m_SubType);
    AppendTag(aRecord, Table.m_Version);
    for (const std::uint32_t nNumber :
         {Table.m_nSourceWidth, Table.m_nSourceHeight, Table.m_nTargetWidth, Table.m_nTargetHeight,
          Table.m_nTargetPelsX, Table.m_nTargetPelsY, Table.m_nPlanes})
        AppendBig(aRecord, nNumber);
    aRecord.push_back(Table.m_nBackground);
    AppendBig(aRecord, Table.m_nMagic);
    AppendBig(aRecord, Table.m_nImageVersion);
    aRecord.push_back(Table.m_nDataType);
    for (const std::uint32_t nNumber :
         {Table.m_nImageWidth, Table.m_nImageHeight, Table.m_nPixelBytes, Table.m_nImagePelsX,
          Table.m_nImagePelsY, Table.m_nContent})
        AppendBig(aRecord, nNumber);
    Append(Table.m_aBlack);
    Append(Table.m_aWhite);
    AppendBig(aRecord, Table.m_nAttribute);
    Append(Table.m_aTable);
    AppendBig(aRecord, Table.m_nEndMagic);
    return aRecord;
}

/// The hash that ties a precalculated block to a calibration record.
inline Digest HashOf(const StRecord& Record) {
    Bytes aContent;
    const auto Append = [&](const void* pBytes, std::size_t nSize) {
        const auto* p = static_cast<const unsigned char*>(pBytes);
        aContent.insert(aContent.end(), p, p + nSize);
    };
    for (const std::uint32_t nNumber :
         {Record.m_nSourceWidth, Record.m_nSourceHeight, Record.m_nSourcePelsX,
          Record.m_nSourcePelsY, Record.m_nTargetWidth, Record.m_nTargetHeight,
          Record.m_nTargetPelsX, Record.m_nTargetPelsY, Record.m_nPlanes})
        Append(&nNumber, 4);
    Append(&Record.m_nBackground, 1);
    for (std::size_t i = 0; i < Record.m_aTarget.size(); ++i) {
        Append(&Record.m_aTarget[i], 8);
        for (std::uint32_t p = 0; p < Record.m_nPlanes; ++p)
            Append(&Record.m_aActual[p][i], 8);
    }
    return Md5(aContent);
}

/// Header, hash and record.
inline Bytes PrecalculatedBlock(const StTable& Table, const Digest& aHash,
                                const std::string& Version = "001") {
    Bytes aBlock;
    AppendTag(aBlock, "CAL");
    AppendTag(aBlock, "PRE");
    AppendTag(aBlock, Version);
    aBlock.insert(aBlock.end(), aHash.begin(), aHash.end());
    const Bytes aRecord = TableRecord(Table);
    aBlock.insert(aBlock.end(), aRecord.begin(), aRecord.end());
    return aBlock;
}

} // namespace TestSupport
