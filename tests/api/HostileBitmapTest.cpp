// Bitmap blocks from anywhere: cut, flipped, with absurd headers, at the very end of memory.

#include "api/Api.h"
#include "calls/BitmapRules.h"
#include "support/GuardedMemory.h"
#include "support/Records.h"

#include <climits>
#include <stdexcept>

#include <sys/mman.h>

using Calls::ImpliedSize;
using Calls::SignedField;
using Calls::StatusOfBlock;
using Calls::StatusOfImage;
using Calls::StatusOfRawImage;
using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::ClGuardedBlock;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StRecord;

namespace {

/// Every call that takes a bitmap, on one block whose first `nReal` bytes exist.
class ClBitmapVictim {
public:
    ClBitmapVictim() {
        for (ClApiHandle* pHandle : {&m_Ready, &m_Odd, &m_Spline})
            EXPECT_EQ(pHandle->SetData(RecordBlock(PlausibleRecord())), 0);
        m_Ready.Set("GeometricCalibrate=off");
        m_Odd.Set("GeometricCalibrate=oddLines");
        m_aOut.resize(300000);
    }

    void Attack(const Bytes& aBlock, std::size_t nClaimed, std::size_t nReal) {
        const ClGuardedBlock Guarded(aBlock, nReal);
        unsigned char* pBlock = Guarded.Data();
        const long nBlock = StatusOfBlock(aBlock, nClaimed);
        const long nImage = StatusOfImage(aBlock, nClaimed);

        EXPECT_EQ(Run(m_Ready, pBlock, nClaimed), nImage);
        EXPECT_EQ(Run(m_Odd, pBlock, nClaimed), nImage != 0 ? nImage : StatusOfOddLines(aBlock));
        EXPECT_EQ(Run(m_Spline, pBlock, nClaimed), nImage != 0 ? nImage : StatusOfSpline(aBlock));

        double dResult = 0;
        const long nLevel = ContaminationDetection(m_Ready, pBlock, nClaimed, &dResult);
        EXPECT_EQ(nLevel, StatusOfRawImage(aBlock, nClaimed));
        EXPECT_EQ(nLevel == 0, dResult != 101.0);

        EXPECT_EQ(CalibrateCheckEfts(m_Empty, pBlock, nClaimed, &dResult),
                  nBlock != 0 ? nBlock : QMT_ERROR_NOT_INITIALIZED);
        const long nEfts = CalibrateCheckEfts(m_Ready, pBlock, nClaimed, &dResult);
        const long nGenerated = CalibrateGenerateData(m_Empty, pBlock, nClaimed);
        // None of these images shows a target.
        const long nNoTarget = nImage != 0 ? nImage : QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE;
        EXPECT_EQ(nEfts, nNoTarget);
        EXPECT_EQ(nGenerated, nNoTarget);
    }
    void Attack(const Bytes& aBlock) { Attack(aBlock, aBlock.size(), aBlock.size()); }

private:
    long Run(void* pHandle, unsigned char* pBlock, unsigned long nSize) {
        unsigned long nOut = m_aOut.size();
        return Calibrate(pHandle, pBlock, nSize, m_aOut.data(), &nOut);
    }

    /// What a block that is good in itself gives in a mode.
    static long StatusOfOddLines(const Bytes& aBlock) {
        return SignedField(aBlock, 8) < 2 ? QMT_ERROR_INTERNAL : QMT_SUCCESS;
    }
    static long StatusOfSpline(const Bytes& aBlock) {
        return SignedField(aBlock, 4) == 48 && SignedField(aBlock, 8) == 132
                   ? QMT_SUCCESS
                   : QMT_ERROR_BITMAP_DIMENSION;
    }

    ClApiHandle m_Ready;
    ClApiHandle m_Odd;
    ClApiHandle m_Spline;
    ClApiHandle m_Empty;
    Bytes m_aOut;
};

Bytes SmallPalette(int nWidth, int nHeight) {
    TestSupport::StHead Head;
    Head.m_nWidth = nWidth;
    Head.m_nHeight = nHeight;
    Head.m_nClrUsed = 2;
    return Block(Head, {0, 0xFFFFFF}, NoisePixels(Head));
}

constexpr int canOddSides[] = {1, 2, 3, 4, 5, 7, 8, 9, 31, 33, 64, 65, 129};

std::size_t FullBlockBytes(int nWidth, int nHeight) {
    return 40 + 1024 + static_cast<std::size_t>((nWidth + 3) / 4 * 4 * nHeight);
}

/// Memory of which only what is touched takes room: zeros.
class ClUntouchedPages {
public:
    explicit ClUntouchedPages(std::size_t nSize)
        : m_nSize(nSize), m_pData(mmap(nullptr, nSize, PROT_READ | PROT_WRITE,
                                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
        if (m_pData == MAP_FAILED)
            throw std::runtime_error("no room for a large block");
    }
    ClUntouchedPages(const ClUntouchedPages&) = delete;
    ClUntouchedPages& operator=(const ClUntouchedPages&) = delete;
    ~ClUntouchedPages() { munmap(m_pData, m_nSize); }

    unsigned char* Data() const { return static_cast<unsigned char*>(m_pData); }
    std::size_t Size() const { return m_nSize; }

private:
    std::size_t m_nSize;
    void* m_pData;
};

Bytes HeaderOf(std::int64_t nWidth, std::int64_t nHeight) {
    TestSupport::StHead Head;
    Head.m_nWidth = nWidth;
    Head.m_nHeight = nHeight;
    return HeaderBytes(Head);
}

long StatusOf(void* pHandle, const ClUntouchedPages& Block) {
    unsigned long nOut = 0;
    return Calibrate(pHandle, Block.Data(), Block.Size(), nullptr, &nOut);
}

void Store(Bytes& rBlock, std::size_t nOffset, std::int64_t nValue, std::size_t nBytes) {
    for (std::size_t i = 0; i < nBytes; ++i)
        rBlock[nOffset + i] = static_cast<unsigned char>(nValue >> (8 * i));
}

} // namespace

TEST(HostileBitmap, CutAtEveryByte) {
    ClBitmapVictim Victim;
    const Bytes aBlock = SmallPalette(7, 5);
    for (std::size_t nSize = 0; nSize <= aBlock.size(); ++nSize)
        Victim.Attack(aBlock, nSize, nSize);
}

TEST(HostileBitmap, WithEveryBitFlipped) {
    ClBitmapVictim Victim;
    const Bytes aBlock = SmallPalette(7, 5);
    for (std::size_t nBit = 0; nBit < aBlock.size() * 8; ++nBit) {
        Bytes aFlipped = aBlock;
        aFlipped[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
        Victim.Attack(aFlipped);
    }
}

TEST(HostileBitmap, WithExtremeFields) {
    ClBitmapVictim Victim;
    const std::int64_t anExtremes[] = {
        0,          1,          2,          3,          4,          5,          8,
        39,         41,         255,        256,        257,        0x7FFF,     0x8000,
        0xFFFF,     0x10000,    0x01000000, 0x0FFFFFFF, 0x10000000, 0x1FFFFFFF, 0x20000000,
        0x3FFFFFFF, 0x40000000, 0x7FFFFFFF, 0x80000000, 0xC0000000, 0xFFFFFFFC, 0xFFFFFFFF};
    for (const int nDepth : {8, 24})
        for (const std::size_t nOffset : {0, 4, 8, 16, 20, 24, 28, 32, 36})
            for (const std::int64_t nValue : anExtremes) {
                Bytes aBlock = Capture(5, 3, nDepth);
                Store(aBlock, nOffset, nValue, 4);
                Victim.Attack(aBlock);
            }
    for (const std::size_t nOffset : {12, 14})
        for (std::int64_t nValue = 0; nValue < 0x10000; nValue += nValue < 64 ? 1 : 4099) {
            Bytes aBlock = Capture(5, 3);
            Store(aBlock, nOffset, nValue, 2);
            Victim.Attack(aBlock);
        }
}

TEST(HostileBitmap, WithPairsOfExtremeSides) {
    ClBitmapVictim Victim;
    const std::int64_t anSides[] = {0,     1,       2,       -1,      -2,      -8,     65535,
                                    65536, 1 << 28, 1 << 29, INT_MAX, INT_MIN, -65536, INT_MIN + 1};
    for (const std::int64_t nWidth : anSides)
        for (const std::int64_t nHeight : anSides)
            for (const int nDepth : {1, 8, 32}) {
                Bytes aBlock = Capture(5, 3, nDepth);
                Store(aBlock, 4, nWidth, 4);
                Store(aBlock, 8, nHeight, 4);
                Victim.Attack(aBlock);
                const std::int64_t nImplied = ImpliedSize(aBlock);
                if (nImplied >= 40 && nImplied < 100000) { // give it what it asks for
                    aBlock.resize(static_cast<std::size_t>(nImplied));
                    Victim.Attack(aBlock);
                }
            }
}

// The generator's blocks are noise, whatever their shape: no call finds a target in them, and every
// other outcome follows from the sides.
TEST(HostileBitmap, OfThinAndOddShapes) {
    ClBitmapVictim Victim;
    for (const int nWidth : canOddSides)
        for (const int nHeight : canOddSides) {
            SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
            Victim.Attack(Capture(nWidth, nHeight));
        }
    for (const int nLength : {1023, 16385, 65535}) {
        SCOPED_TRACE(nLength);
        Victim.Attack(Capture(nLength, 1));
        Victim.Attack(Capture(1, nLength));
    }
}

// A finger is sought at the resolution that the data tell: 62.5 and 500 dots per inch.
TEST(HostileBitmap, OfThinAndOddShapesGoesThroughTheSearchForAFinger) {
    for (const StRecord& Record :
         {PlausibleRecord(), PlausibleRecord(390, 1052, 320, 480, 19685)}) {
        ClApiHandle Handle;
        Handle.Set("PrecalculatedData=true");
        ASSERT_EQ(Handle.SetData(RecordBlock(Record)), 0);
        Handle.Set("GeometricCalibrate=oddLines");
        Handle.Set("DynamicFingerMask=true");
        for (const int nWidth : canOddSides)
            for (const int nHeight : canOddSides) {
                SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
                long nStatus = 1;
                const Bytes aOut = Handle.Corrected(Capture(nWidth, nHeight), &nStatus);
                const bool bLineLeft = nHeight > 1;
                EXPECT_EQ(nStatus, bLineLeft ? QMT_SUCCESS : QMT_ERROR_INTERNAL);
                EXPECT_EQ(aOut.size(), bLineLeft ? FullBlockBytes(nWidth, nHeight / 2) : 0u);
            }
    }
}

// A line of 8 bits a sample may have 2^28 - 1 of them: then 8 times their number and 7 still fit
// into a signed field. Of one more the size is not defined, and no claim is the right one.
TEST(HostileBitmap, OfTheWidestLineIsMeasuredAndRefused) {
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    constexpr std::int64_t cnWidest = (1 << 28) - 1;
    const ClUntouchedPages Block(40 + 1024 + (1 << 28));
    std::memcpy(Block.Data(), HeaderOf(cnWidest, 1).data(), 40);
    EXPECT_EQ(StatusOf(Handle, Block), QMT_ERROR_BITMAP_DIMENSION);
    std::memcpy(Block.Data(), HeaderOf(cnWidest + 1, 1).data(), 40);
    EXPECT_EQ(StatusOf(Handle, Block), QMT_ERROR_TEMPLATE_SIZE);
}

// A negative height implies nearly 4 GiB; a caller who says that they are there is not asked for
// more than header and palette.
TEST(HostileBitmap, OfNegativeHeightIsReadNoFurtherThanItsPalette) {
    ClBitmapVictim Victim;
    Bytes aBlock = SmallPalette(4, 1);
    aBlock.resize(48);
    Store(aBlock, 8, -1, 4);
    Victim.Attack(aBlock, 40 + 8 + 4294967292ul, aBlock.size());
}

TEST(HostileBitmap, WithEveryCompressionAndDepth) {
    ClBitmapVictim Victim;
    for (const int nDepth : {1, 4, 8, 16, 24, 32})
        for (std::uint32_t nCompression = 0; nCompression < 6; ++nCompression)
            for (const std::uint32_t nUsed : {0u, 1u, 3u, 300u}) {
                TestSupport::StHead Head;
                Head.m_nWidth = 9;
                Head.m_nHeight = 3;
                Head.m_nBits = nDepth;
                Head.m_nCompression = nCompression;
                Head.m_nClrUsed = nUsed;
                Bytes aBlock = HeaderBytes(Head);
                aBlock.resize(static_cast<std::size_t>(ImpliedSize(aBlock)), 0x5A);
                Victim.Attack(aBlock);
            }
}
