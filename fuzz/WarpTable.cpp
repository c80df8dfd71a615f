// The warp beside its definition: entries of any positions in captures of any size, and any table
// that loads, applied to any capture; at every instruction level.

#include "OperatorCase.h"

#include "Calibrate/NaiveWarp.h"
#include "Calibrate/WarpEntries.h"
#include "Tools/Exception.h"
#include "Tools/MemStream.h"
#include "support/Tables.h"

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_Entries("entries with a source are compared");
Fuzz::ClMilestone s_Corrected("a capture is corrected by a table");
Fuzz::ClMilestone s_Refused("a table is refused");

// Bytes one after the other, not in the order of an expression

int Next16(Fuzz::ClBytes& rBytes) {
    const int nHigh = rBytes.Next();
    return nHigh << 8 | rBytes.Next();
}

double NextDouble(Fuzz::ClBytes& rBytes) {
    const std::uint64_t nHigh = rBytes.Next32();
    const std::uint64_t nBits = nHigh << 32 | rBytes.Next32();
    double dAny;
    std::memcpy(&dAny, &nBits, sizeof dAny);
    return dAny;
}

// Entries

/// A place on an axis: whole ones, their neighbours, fractions, and any double now and then.
double PositionFrom(Fuzz::ClBytes& rBytes, std::uint32_t nSide) {
    const int nForm = rBytes.Next();
    const double dWhole = rBytes.Next() % (static_cast<int>(nSide) + 2);
    switch (nForm % 8) {
    case 0:
        return std::nextafter(dWhole, 1e9);
    case 1:
        return std::nextafter(dWhole, -1e9);
    case 2:
        return Warp::LargestPosition(nSide);
    case 3:
        return dWhole;
    case 4:
        return NextDouble(rBytes);
    default:
        return dWhole + Next16(rBytes) / 65536.0;
    }
}

/// Entries lie apart as those of one plane among others do.
void CompareEntries(Fuzz::ClBytes& rBytes) {
    const Warp::StCaptureSize Size = {static_cast<std::uint32_t>(rBytes.Below(200)),
                                      static_cast<std::uint32_t>(rBytes.Below(200))};
    const std::size_t nStep = Warp::cnEntrySize * static_cast<std::size_t>(1 + rBytes.Below(3));
    std::vector<double> aX;
    std::vector<double> aY;
    while (!rBytes.IsEmpty() && aX.size() < Warp::cnMostEntries) {
        aX.push_back(PositionFrom(rBytes, Size.m_nWidth));
        aY.push_back(PositionFrom(rBytes, Size.m_nHeight));
    }
    Fuzz::AtEveryLevel([&] {
        std::vector<unsigned char> aEntries(nStep * aX.size());
        Warp::FillEntries(Size, aX.data(), aY.data(), static_cast<int>(aX.size()), nStep,
                          aEntries.data());
        for (std::size_t i = 0; i < aX.size(); ++i) {
            const StWarpEntry Expected = NaiveEntry(aX[i], aY[i], static_cast<int>(Size.m_nWidth),
                                                    static_cast<int>(Size.m_nHeight));
            Fuzz::Require(ToEntry(aEntries.data() + nStep * i) == Expected,
                          "an entry is that of its position");
            if (Expected.m_nOffset >= 0)
                s_Entries.Reach();
        }
    });
}

// Tables

struct StTableCase {
    StTable m_Table;
    ClTestImage m_Capture;
};

void AppendEntry(StTable& rTable, const StWarpEntry& Entry) {
    unsigned char acEntry[Warp::cnEntrySize];
    std::memcpy(acEntry, &Entry.m_nOffset, 4);
    std::memcpy(acEntry + 4, Entry.m_anWeights.data(), 32);
    rTable.m_aTable.insert(rTable.m_aTable.end(), std::begin(acEntry), std::end(acEntry));
}

/// Mostly inside the capture, or none.
std::int32_t OffsetFrom(Fuzz::ClBytes& rBytes, const StTable& Table) {
    const int nForm = rBytes.Next();
    if (nForm % 8 == 0)
        return Warp::cnNoSource;
    if (nForm == 255)
        return static_cast<std::int32_t>(rBytes.Next32());
    const auto below = [&](std::uint32_t nSide) {
        return rBytes.Below(static_cast<int>(std::max(nSide, 4U)) - 3);
    };
    const int nLine = below(Table.m_nSourceHeight);
    return nLine * static_cast<int>(Warp::LineStride(Table.m_nSourceWidth)) +
           below(Table.m_nSourceWidth);
}

/// A kernel as tables have it, with weights that were changed in some.
StWarpEntry EntryFrom(Fuzz::ClBytes& rBytes, const StTable& Table) {
    const double dX = 2.0 + rBytes.Next() / 256.0;
    const double dY = 2.0 + rBytes.Next() / 256.0;
    StWarpEntry Entry = NaiveEntry(dX, dY, 8, 8);
    Entry.m_nOffset = OffsetFrom(rBytes, Table);
    for (int nChanges = rBytes.Next(); nChanges % 4 == 3; nChanges = rBytes.Next())
        Entry.m_anWeights[static_cast<std::size_t>(rBytes.Below(16))] =
            static_cast<std::int16_t>(Next16(rBytes));
    return Entry;
}

StTable TableFrom(Fuzz::ClBytes& rBytes) {
    StTable Table;
    Table.m_nSourceWidth = static_cast<std::uint32_t>(1 + rBytes.Below(40));
    Table.m_nSourceHeight = static_cast<std::uint32_t>(1 + rBytes.Below(40));
    Table.m_nTargetWidth = Table.m_nImageWidth = static_cast<std::uint32_t>(1 + rBytes.Below(21));
    Table.m_nTargetHeight = Table.m_nImageHeight = static_cast<std::uint32_t>(1 + rBytes.Below(7));
    Table.m_nPlanes = static_cast<std::uint32_t>(1 + rBytes.Below(3));
    Table.m_nPixelBytes = static_cast<std::uint32_t>(Table.m_nPlanes * Warp::cnEntrySize);
    Table.m_nBackground = static_cast<std::uint8_t>(rBytes.Next());
    const std::uint32_t nEntries = Table.m_nTargetWidth * Table.m_nTargetHeight * Table.m_nPlanes;
    for (std::uint32_t i = 0; i < nEntries; ++i)
        AppendEntry(Table, EntryFrom(rBytes, Table));
    return Table;
}

/// Bytes from the middle of the table stand for samples: few inputs are long enough for both.
ClTestImage CaptureFor(const StTable& Table) {
    ClTestImage Capture =
        BlankImage(ClImage::eUInt8, static_cast<int>(Table.m_nSourceWidth),
                   static_cast<int>(Table.m_nSourceHeight), static_cast<int>(Table.m_nPlanes));
    std::size_t nNext = 0;
    for (std::size_t i = 0; i < Capture.SizeBytes(); ++i)
        Capture.Data()[i] = Table.m_aTable[(nNext += 7) % Table.m_aTable.size()];
    return Capture;
}

bool AreOffsetsInside(const StTable& Table) {
    for (std::size_t i = 0; i < Table.m_aTable.size(); i += Warp::cnEntrySize) {
        const std::int32_t nOffset = ToEntry(&Table.m_aTable[i]).m_nOffset;
        if (nOffset != Warp::cnNoSource &&
            !Warp::IsOffsetInside(nOffset, Table.m_nSourceWidth, Table.m_nSourceHeight))
            return false;
    }
    return true;
}

bool Load(ClOpenWarp& rWarp, const StTable& Table) {
    const Bytes aRecord = TableRecord(Table);
    ClMemStream Stream(aRecord.data(), aRecord.size());
    try {
        rWarp.Load(Stream);
        return true;
    } catch (const ClException& e) {
        Fuzz::Require(e.Number() == QMT_ERROR_CURRUPT_DATA, "a wrong offset is corrupt data");
        return false;
    }
}

RealRows Warped(const StTable& Table, const ClImage& Capture) {
    const auto nPlanes = static_cast<int>(Table.m_nPlanes);
    RealRows aRows(Table.m_nTargetHeight);
    std::size_t nEntry = 0;
    for (std::vector<double>& rRow : aRows)
        for (std::uint32_t i = 0; i < Table.m_nTargetWidth * Table.m_nPlanes; ++i)
            rRow.push_back(NaiveWarped(ToEntry(&Table.m_aTable[Warp::cnEntrySize * nEntry++]),
                                       Capture.Data(), static_cast<int>(Capture.LineStrideBytes()),
                                       nPlanes, Table.m_nBackground));
    return aRows;
}

void CompareTables(Fuzz::ClBytes& rBytes) {
    const StTable Table = TableFrom(rBytes);
    const bool bInside = AreOffsetsInside(Table);
    ClOpenWarp Correction;
    Fuzz::Require(Load(Correction, Table) == bInside, "a table loads where its offsets are inside");
    if (!bInside)
        return s_Refused.Reach();
    ClTestImage Capture = CaptureFor(Table);
    const RealRows aExpected = Warped(Table, Capture);
    Fuzz::AtEveryLevel([&] {
        ClImage Out;
        Correction.m_pInImage = &Capture;
        Correction.m_pOutImage = &Out;
        Correction.Calibrate();
        Fuzz::Require(RealPixels(Out) == aExpected, "a corrected sample is that of its entry");
    });
    s_Corrected.Reach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    if (Bytes.Below(2) == 0)
        CompareEntries(Bytes);
    else
        CompareTables(Bytes);
    return 0;
}
