#include "calls/TableRules.h"

#include "calls/BlockReader.h"

#include <TessarinCalibrateSDK.h>

namespace Calls {

namespace {

constexpr std::uint32_t cnMagic = 0x4B504600;
constexpr std::size_t cnEntry = 36;

bool IsHeaderRight(ClBlockReader& rReader, const Digest& aHash) {
    if (!rReader.IsTag("CAL") || !rReader.IsTag("PRE") || rReader.Version() != 1)
        return false;
    const Bytes aStored = rReader.Part(16);
    return std::equal(aHash.begin(), aHash.end(), aStored.begin(), aStored.end()) &&
           rReader.IsTag("PRE") && rReader.IsTag("GEO") && rReader.Version() == 1;
}

std::uint64_t TableSize(const StTable& Table) {
    return std::uint64_t{Table.m_nTargetWidth} * Table.m_nTargetHeight * Table.m_nPlanes * cnEntry;
}

bool IsWidthRight(const StTable& Table) {
    return Table.m_nImageWidth == Table.m_nTargetWidth && Table.m_nImageWidth != 0 &&
           Table.m_nImageWidth <= 16384 && Table.m_nSourceWidth != 0;
}

bool IsHeightRight(const StTable& Table) {
    return Table.m_nImageHeight == Table.m_nTargetHeight && Table.m_nImageHeight != 0 &&
           Table.m_nImageHeight <= 16384 && Table.m_nSourceHeight != 0 &&
           TableSize(Table) <= std::uint64_t{512} << 20;
}

void ReadNumbers(ClBlockReader& rReader, StTable& rTable) {
    rTable.m_nSourceWidth = rReader.Number();
    rTable.m_nSourceHeight = rReader.Number();
    rTable.m_nTargetWidth = rReader.Number();
    rTable.m_nTargetHeight = rReader.Number();
    rTable.m_nTargetPelsX = rReader.Number();
    rTable.m_nTargetPelsY = rReader.Number();
    rTable.m_nPlanes = rReader.Number();
}

/// Every test in its order; where the block ends inside what a test looks at, it has no table.
long ReadImage(ClBlockReader& rReader, StTable& rTable) {
    const auto Expect = [&](bool bRight, long nStatus) {
        return rReader.HasEnded() ? long{QMT_ERROR_UNEXPECTED_SIGNATURE}
                                  : (bRight ? long{QMT_SUCCESS} : nStatus);
    };
    const long nCorrupt = QMT_ERROR_CURRUPT_DATA;
    const long nForeign = QMT_ERROR_UNEXPECTED_SIGNATURE;
    ReadNumbers(rReader, rTable);
    if (const long n = Expect(rTable.m_nPlanes != 0, nForeign))
        return n;
    if (rTable.m_nPlanes > 3)
        return nCorrupt;
    rTable.m_nBackground = static_cast<std::uint8_t>(rReader.Number(1));
    if (const long n = Expect(rReader.Number() == cnMagic, nForeign))
        return n;
    if (const long n = Expect(rReader.Number() < 2, nForeign))
        return n;
    if (const long n = Expect(rReader.Number(1) == 1, nCorrupt))
        return n;
    rTable.m_nImageWidth = rReader.Number();
    if (const long n = Expect(IsWidthRight(rTable), nCorrupt))
        return n;
    rTable.m_nImageHeight = rReader.Number();
    if (const long n = Expect(IsHeightRight(rTable), nCorrupt))
        return n;
    if (const long n = Expect(rReader.Number() == cnEntry * rTable.m_nPlanes, nCorrupt))
        return n;
    if (const long n = Expect(rReader.Number() == rTable.m_nTargetPelsX, nCorrupt))
        return n;
    if (const long n = Expect(rReader.Number() == rTable.m_nTargetPelsY, nCorrupt))
        return n;
    if (const long n = Expect(rReader.Number() == 0, nCorrupt))
        return n;
    rReader.Part(8 + 8 + 4); // range and attribute play no part
    rTable.m_aTable = rReader.Part(TableSize(rTable));
    if (const long n = Expect(rReader.Number() == cnMagic, nForeign))
        return n;
    return AreOffsetsInside(rTable) ? long{QMT_SUCCESS} : nCorrupt;
}

} // namespace

StReadTable ReadTable(const Bytes& aBlock, const Digest& aHash) {
    ClBlockReader Reader(aBlock);
    StReadTable Read{QMT_ERROR_UNEXPECTED_SIGNATURE, {}};
    if (IsHeaderRight(Reader, aHash))
        Read.m_nStatus = ReadImage(Reader, Read.m_Table);
    return Read;
}

Bytes UsualBlockOf(const StTable& Table, const Digest& aHash) {
    StTable Usual;
    Usual.m_nSourceWidth = Table.m_nSourceWidth;
    Usual.m_nSourceHeight = Table.m_nSourceHeight;
    Usual.m_nTargetWidth = Usual.m_nImageWidth = Table.m_nTargetWidth;
    Usual.m_nTargetHeight = Usual.m_nImageHeight = Table.m_nTargetHeight;
    Usual.m_nTargetPelsX = Usual.m_nImagePelsX = Table.m_nTargetPelsX;
    Usual.m_nTargetPelsY = Usual.m_nImagePelsY = Table.m_nTargetPelsY;
    Usual.m_nPlanes = Table.m_nPlanes;
    Usual.m_nPixelBytes = static_cast<std::uint32_t>(cnEntry) * Table.m_nPlanes;
    Usual.m_nBackground = Table.m_nBackground;
    Usual.m_aTable = Table.m_aTable;
    return PrecalculatedBlock(Usual, aHash);
}

Bytes BlockWithoutTable(const Digest& aHash) {
    StTable Empty;
    Empty.m_nSourceWidth = Empty.m_nSourceHeight = 0;
    Empty.m_nTargetWidth = Empty.m_nTargetHeight = 0;
    Empty.m_nTargetPelsX = Empty.m_nTargetPelsY = 0;
    Empty.m_nPlanes = 0;
    Empty.m_nBackground = 0;
    return UsualBlockOf(Empty, aHash);
}

std::int32_t OffsetOf(const StTable& Table, std::size_t nEntry) {
    std::int32_t nOffset = 0;
    std::memcpy(&nOffset, Table.m_aTable.data() + nEntry * cnEntry, sizeof nOffset);
    return nOffset;
}

bool AreOffsetsInside(const StTable& Table) {
    const std::int64_t nStride = (std::int64_t{Table.m_nSourceWidth} + 3) / 4 * 4;
    for (std::size_t i = 0; i < Table.m_aTable.size() / cnEntry; ++i) {
        const std::int64_t nOffset = OffsetOf(Table, i);
        if (nOffset != -1 && (nOffset < 0 || nOffset % nStride + 4 > Table.m_nSourceWidth ||
                              nOffset / nStride + 4 > Table.m_nSourceHeight))
            return false;
    }
    return true;
}

} // namespace Calls
