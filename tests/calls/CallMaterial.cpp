#include "calls/CallMaterial.h"

#include "calls/RecordRules.h"
#include "support/BitmapBlocks.h"
#include "support/DotTargets.h"

namespace Calls {

using TestSupport::AppendBig;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StPoint;

namespace {

constexpr std::uint32_t cnPels = 2461; ///< small, so that the pattern is small
constexpr std::uint32_t cnQuickPels = 9000;
constexpr StSize cQuickSize = {69, 186};

StRecord Good() {
    return PlausibleRecord(20, 24, 8, 10, cnPels);
}

StRecord OfOtherSize() {
    StRecord Record = PlausibleRecord(9, 33, 5, 3, cnPels);
    Record.m_nBackground = 0;
    return Record;
}

/// Large enough for a finger where every other line is left out, with line ends, and with images of
/// the same size in both modes.
StRecord OfLargerSize() {
    return PlausibleRecord(77, 190, 77, 95, cnPels);
}

StRecord OfAnotherScanner() {
    StRecord Record = Good();
    Record.m_aActual[0][37].x += 0.25F;
    return Record;
}

StRecord OfThreePlanes() {
    StRecord Record = Good();
    Record.m_nPlanes = 3;
    Record.m_aActual[1] = Record.m_aActual[2] = Record.m_aActual[0];
    return Record;
}

/// Plausible, but no smooth mapping has two values at one place.
StRecord WithTwinPoints(StRecord Record) {
    Record.m_aTarget[1] = Record.m_aTarget[0];
    return Record;
}

/// So large that a step beside its table leads out of all memory.
StRecord LargeWithTwinPoints() {
    return WithTwinPoints(PlausibleRecord(16, 16, 600, 600, cnPels));
}

StRecord WithoutColumns() {
    StRecord Record = Good();
    Record.m_nSourceWidth = 0;
    return Record;
}

StRecord WithoutLines() {
    StRecord Record = Good();
    Record.m_nSourceHeight = 0;
    return Record;
}

StRecord WithoutResolution() {
    StRecord Record = Good();
    Record.m_nTargetPelsX = Record.m_nTargetPelsY = 0;
    Record.m_aTarget.assign(75, StPoint{4.0F, 5.0F});
    return Record;
}

StRecord WithAStepTooLong() {
    StRecord Record = Good();
    Record.m_aActual[0][74].y += 10.0F;
    return Record;
}

/// The records that most calls give; the first two may be spoilt.
const std::vector<Bytes>& UsualRecords() {
    static const std::vector<Bytes> aBlocks = {
        RecordBlock(Good()),
        RecordBlock(OfOtherSize()),
        RecordBlock(OfAnotherScanner()),
        RecordBlock(OfLargerSize()),
        QuickScanner(),
        QuickScanner(), // more often, because few captures show a finger
        QuickScanner(),
        RecordBlock(WithTwinPoints(Good())),
        RecordBlock(LargeWithTwinPoints()),
        RecordBlock(OfThreePlanes()),
        RecordBlock(WithoutColumns()),
        RecordBlock(WithoutLines()),
        RecordBlock(WithoutResolution()),
        RecordBlock(WithAStepTooLong()),
    };
    return aBlocks;
}

/// The first layouts tell no resolution of the target: they are of 500 dots per inch.
const std::vector<Bytes>& OldRecords() {
    static const std::vector<Bytes> aBlocks = [] {
        const StRecord Old = PlausibleRecord(20, 24, 8, 10, 19685);
        std::vector<Bytes> aMade = {RecordBlock(Old, 0, "002", "Cal", "Lmv"),
                                    RecordBlock(Old, 0, "001", "Cal", "Lmv")};
        for (int nLayout = 0; nLayout < 6; ++nLayout)
            aMade.push_back(RecordBlock(Old, nLayout));
        return aMade;
    }();
    return aBlocks;
}

const std::uint32_t canExtremes[] = {0,  1,  2,   3,     4,          74,         75,        76,
                                     36, 72, 255, 16384, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

void StoreBig(Bytes& rBlock, std::size_t nOffset, std::uint32_t nValue) {
    for (std::size_t i = 0; i < 4 && nOffset + i < rBlock.size(); ++i)
        rBlock[nOffset + i] = static_cast<unsigned char>(nValue >> (24 - 8 * i));
}

/// An offset from `nFirst` to `nEnd`, which is greater; the first numbers of a block decide most.
std::size_t AnyOffset(ClChoices& rChoices, std::size_t nFirst, std::size_t nEnd) {
    const std::size_t nLast = rChoices.OneIn(2) ? std::min<std::size_t>(nEnd, nFirst + 64) : nEnd;
    return nFirst + rChoices.Below(static_cast<std::uint32_t>(nLast - nFirst));
}

void Spoil(ClChoices& rChoices, Bytes& rBlock, std::size_t nFirst) {
    const std::uint32_t nChanges = 1 + rChoices.Below(3);
    for (std::uint32_t i = 0; i < nChanges; ++i) {
        const std::size_t nAt = AnyOffset(rChoices, nFirst, rBlock.size());
        switch (rChoices.Below(3)) {
        case 0:
            rBlock[nAt] = static_cast<unsigned char>(rChoices.Below(256));
            break;
        case 1:
            rBlock[nAt] ^= static_cast<unsigned char>(1u << rChoices.Below(8));
            break;
        default:
            StoreBig(rBlock, nAt, rChoices.Of(canExtremes));
        }
    }
}

void Cut(ClChoices& rChoices, Bytes& rBlock) {
    rBlock.resize(rChoices.Below(static_cast<std::uint32_t>(rBlock.size() + 1)));
}

Bytes Noise(ClChoices& rChoices, std::size_t nEnd) {
    Bytes aBytes(rChoices.Below(static_cast<std::uint32_t>(nEnd)));
    for (unsigned char& nByte : aBytes)
        nByte = static_cast<unsigned char>(rChoices.Below(256));
    return aBytes;
}

// Records

constexpr std::size_t cnTargetWidthAt = 28;

/// A spoilt target side must not ask for a table that takes seconds to prepare.
void KeepTargetSmall(Bytes& rBlock) {
    const StReadRecord Read = ReadRecord(rBlock);
    if (Read.m_nStatus != 0 || std::uint64_t{Read.m_Record.m_nTargetWidth} *
                                       Read.m_Record.m_nTargetHeight * Read.m_Record.m_nPlanes <
                                   2000)
        return;
    StoreBig(rBlock, cnTargetWidthAt, 8);
    StoreBig(rBlock, cnTargetWidthAt + 4, 10);
    TestSupport::RenewCrc(rBlock);
}

Bytes SpoiltRecord(ClChoices& rChoices) {
    Bytes aBlock = UsualRecords()[rChoices.Below(2)];
    Spoil(rChoices, aBlock, 12);
    if (rChoices.OneIn(4))
        return aBlock;
    TestSupport::RenewCrc(aBlock);
    KeepTargetSmall(aBlock);
    return aBlock;
}

Bytes SpoiltTags(ClChoices& rChoices) {
    Bytes aBlock = rChoices.OneOf(OldRecords());
    aBlock[rChoices.Below(12)] = static_cast<unsigned char>(rChoices.Below(256));
    return aBlock;
}

Bytes LongerRecord(ClChoices& rChoices) {
    Bytes aBlock = UsualRecords()[rChoices.Below(2)];
    aBlock.resize(aBlock.size() + 1 + rChoices.Below(9), 0x5A);
    return aBlock;
}

} // namespace

Bytes QuickScanner() {
    StRecord Record = PlausibleRecord(cQuickSize.m_nWidth, cQuickSize.m_nHeight,
                                      cQuickSize.m_nWidth, cQuickSize.m_nHeight / 2, cnQuickPels);
    Record.m_nSourcePelsX = cnQuickPels;
    Record.m_nSourcePelsY = 2 * cnQuickPels;
    return RecordBlock(Record);
}

Bytes AnyRecordBlock(ClChoices& rChoices) {
    switch (rChoices.Below(16)) {
    case 0:
        return SpoiltRecord(rChoices);
    case 1:
        return rChoices.OneOf(OldRecords());
    case 2:
        return LongerRecord(rChoices);
    case 3: {
        Bytes aBlock = UsualRecords()[0];
        Cut(rChoices, aBlock);
        return aBlock;
    }
    case 4:
        return SpoiltTags(rChoices);
    case 5:
        return Noise(rChoices, 40);
    default:
        return rChoices.OneOf(UsualRecords());
    }
}

// Tables

namespace {

constexpr std::size_t cnTableAt = 28;

StTable OfSizes(const StSize& Source, const StSize& Target) {
    StTable Table;
    Table.m_nSourceWidth = Source.m_nWidth;
    Table.m_nSourceHeight = Source.m_nHeight;
    Table.m_nTargetWidth = Table.m_nImageWidth = Target.m_nWidth;
    Table.m_nTargetHeight = Table.m_nImageHeight = Target.m_nHeight;
    return Table;
}

void AppendEntry(StTable& rTable, std::int32_t nOffset) {
    const Bytes aEntry = TestSupport::TableEntry(nOffset);
    rTable.m_aTable.insert(rTable.m_aTable.end(), aEntry.begin(), aEntry.end());
}

bool HasOffsets(const StSize& Source) {
    return Source.m_nWidth >= 4 && Source.m_nHeight >= 4 && Source.m_nWidth <= 64 &&
           Source.m_nHeight <= 64;
}

/// An offset inside the source, or up to `nBeyond` lines and columns outside.
std::int32_t AnyOffsetIn(ClChoices& rChoices, const StSize& Source, std::uint32_t nBeyond) {
    if (!HasOffsets(Source) || rChoices.OneIn(4))
        return -1;
    const std::uint32_t nStride = (Source.m_nWidth + 3) / 4 * 4;
    return static_cast<std::int32_t>(rChoices.Below(Source.m_nHeight - 3 + nBeyond) * nStride +
                                     rChoices.Below(Source.m_nWidth - 3 + nBeyond));
}

StTable AnyTable(ClChoices& rChoices, const StSize& Handle) {
    static const StSize caSources[] = {{10, 9}, {20, 24}, {0, 0}, {0, 9}, {10, 0}, {4, 4}, {3, 3}};
    static const StSize caTargets[] = {{3, 2}, {1, 1}, {8, 10}, {1, 7}, {0, 0}, {5, 0}};
    const StSize Source = rChoices.OneIn(2) ? Handle : rChoices.Of(caSources);
    StTable Table = OfSizes(Source, rChoices.Of(caTargets));
    const std::uint32_t nPlanes = rChoices.OneIn(8) ? 1 + rChoices.Below(3) : 1;
    Table.m_nPlanes = nPlanes;
    Table.m_nPixelBytes = 36 * nPlanes;
    const std::uint32_t nEntries = Table.m_nTargetWidth * Table.m_nTargetHeight * nPlanes;
    const bool bAllWithoutSource = rChoices.OneIn(4);
    const std::uint32_t nBeyond = rChoices.OneIn(8) ? 1 : 0;
    for (std::uint32_t i = 0; i < nEntries; ++i)
        AppendEntry(Table, bAllWithoutSource ? -1 : AnyOffsetIn(rChoices, Source, nBeyond));
    return Table;
}

Bytes SpoiltTable(ClChoices& rChoices, Bytes aBlock) {
    // Mostly behind the header, so that what follows is read.
    Spoil(rChoices, aBlock, rChoices.OneIn(8) ? 0 : cnTableAt + 12);
    return aBlock;
}

void SetHash(Bytes& rBlock, const Digest& aHash) {
    if (rBlock.size() >= cnTableAt)
        std::copy(aHash.begin(), aHash.end(), rBlock.begin() + 12);
}

} // namespace

Bytes AnyTableBlock(ClChoices& rChoices, const Digest& aHash, const StSize& Source,
                    const std::vector<Bytes>& aGiven) {
    const std::uint32_t nKind = rChoices.Below(16);
    if (nKind < 4 && !aGiven.empty()) { // as it was given, or for another scanner, hash repaired
        Bytes aBlock = rChoices.OneOf(aGiven);
        if (nKind != 0)
            SetHash(aBlock, aHash);
        return nKind == 3 ? SpoiltTable(rChoices, aBlock) : aBlock;
    }
    if (nKind == 4)
        return Noise(rChoices, 200);
    Bytes aBlock = PrecalculatedBlock(AnyTable(rChoices, Source), aHash);
    if (nKind == 5)
        Cut(rChoices, aBlock);
    if (nKind == 6)
        aBlock[12 + rChoices.Below(16)] ^= 1;
    if (nKind == 7)
        aBlock.resize(aBlock.size() + 1 + rChoices.Below(9), 0x5A);
    return nKind >= 13 ? SpoiltTable(rChoices, aBlock) : aBlock;
}

// Captures

namespace {

using TestSupport::StHead;

/// Grey values without order, to cut pixels from.
const Bytes& NoisePool() {
    static const Bytes aPool = [] {
        StHead Head;
        Head.m_nWidth = 256;
        Head.m_nHeight = 256;
        return TestSupport::NoisePixels(Head);
    }();
    return aPool;
}

using Painter = unsigned char (*)(double u, double v);

/// Ridges on a finger in the middle, dark on bright. `u` and `v` go from -1 to 1.
unsigned char Finger(double u, double v) {
    if (u * u + v * v > 0.7)
        return 220;
    return static_cast<int>(7.0 * u + 4.0 * v + 40.0) % 2 == 0 ? 70 : 170;
}

/// The same to one side, so that far from it there is a background, which is how a finger is
/// told from dirt.
unsigned char FingerAtTheSide(double u, double v) {
    const double dX = u + 0.5;
    const double dY = v + 0.5;
    if (dX * dX + dY * dY > 0.6)
        return 220;
    return static_cast<int>(12.0 * u + 11.0 * v + 40.0) % 2 == 0 ? 70 : 170;
}

/// A platen with a dark blot and a shadow.
unsigned char DirtyPlaten(double u, double v) {
    const double dX = u - 0.3;
    const double dY = v + 0.4;
    return dX * dX + dY * dY < 0.02 ? 40 : static_cast<unsigned char>(210.0 + 20.0 * u);
}

unsigned char CleanPlaten(double /*u*/, double /*v*/) {
    return 200;
}

void Paint(Painter pPainter, const StSize& Size, Bytes& rPixels) {
    const std::size_t nStride = TestSupport::WordsStride(8, Size.m_nWidth);
    for (std::uint32_t y = 0; y < Size.m_nHeight; ++y)
        for (std::uint32_t x = 0; x < Size.m_nWidth; ++x)
            rPixels[y * nStride + x] =
                pPainter(2.0 * x / Size.m_nWidth - 1.0, 2.0 * y / Size.m_nHeight - 1.0);
}

Bytes AnyPixels(ClChoices& rChoices, const StSize& Size, int nBits) {
    static const Painter capPainters[] = {Finger, FingerAtTheSide, DirtyPlaten, CleanPlaten};
    const auto First = NoisePool().begin() + rChoices.Below(16) * 64;
    Bytes aPixels(First,
                  First + static_cast<std::ptrdiff_t>(
                              TestSupport::WordsStride(nBits, Size.m_nWidth) * Size.m_nHeight));
    if (nBits == 8 && !rChoices.OneIn(4))
        Paint(rChoices.Of(capPainters), Size, aPixels);
    return aPixels;
}

/// A block with two palette entries: small, and read like one with all of them.
Bytes CaptureOf(const StSize& Size, int nBits, const Bytes& aPixels) {
    StHead Head;
    Head.m_nWidth = Size.m_nWidth;
    Head.m_nHeight = Size.m_nHeight;
    Head.m_nBits = nBits;
    Head.m_nClrUsed = nBits <= 8 ? 2 : 0;
    Head.m_nPelsX = 2425;
    Head.m_nPelsY = 4967;
    Bytes aBlock = TestSupport::HeaderBytes(Head);
    aBlock.resize(aBlock.size() + 4 * Head.m_nClrUsed);
    TestSupport::Append(aBlock, aPixels);
    return aBlock;
}

Bytes SpoiltCapture(ClChoices& rChoices, Bytes aBlock) {
    static const std::size_t canFields[] = {0, 4, 8, 12, 14, 16, 20, 32, 36};
    switch (rChoices.Below(4)) {
    case 0:
        Cut(rChoices, aBlock);
        break;
    case 1:
        aBlock.push_back(0);
        break;
    case 2:
        aBlock[rChoices.Below(40)] ^= static_cast<unsigned char>(1u << rChoices.Below(8));
        break;
    default: {
        const std::size_t nAt = rChoices.Of(canFields);
        const std::uint32_t nValue = rChoices.Of(canExtremes);
        for (std::size_t i = 0; i < 2; ++i)
            aBlock[nAt + i] = static_cast<unsigned char>(nValue >> (8 * i));
    }
    }
    return aBlock;
}

} // namespace

Bytes AnyCapture(ClChoices& rChoices, const StSize& Size) {
    static const StSize caOther[] = {{1, 1}, {7, 1}, {1, 7}, {5, 4}, {10, 9}, {33, 20}};
    static const int canDepths[] = {1, 4, 16, 24, 32};
    const bool bUsable = Size.m_nWidth - 1 < 80 && Size.m_nHeight - 1 < 200; // not 0
    const StSize Used = bUsable && !rChoices.OneIn(8) ? Size : rChoices.Of(caOther);
    const int nBits = rChoices.OneIn(32) ? rChoices.Of(canDepths) : 8;
    Bytes aBlock = CaptureOf(Used, nBits, AnyPixels(rChoices, Used, nBits));
    return rChoices.OneIn(16) ? SpoiltCapture(rChoices, std::move(aBlock)) : aBlock;
}

Bytes QuickFinger() {
    Bytes aPixels(TestSupport::WordsStride(8, cQuickSize.m_nWidth) * cQuickSize.m_nHeight);
    Paint(FingerAtTheSide, cQuickSize, aPixels);
    return CaptureOf(cQuickSize, 8, aPixels);
}

const Bytes& TargetCapture() {
    static const Bytes aBlock = [] {
        TestSupport::StTargetImage Image;
        Image.m_nWidth = 280;
        Image.m_nHeight = 880;
        return TargetBlock(Image);
    }();
    return aBlock;
}

const Bytes& CorrectedTarget() {
    static const Bytes aBlock = TargetBlock(TestSupport::CorrectedTarget());
    return aBlock;
}

} // namespace Calls
