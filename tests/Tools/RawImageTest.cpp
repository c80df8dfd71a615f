#include "Tools/FpImage.h"

#include "Tools/FileStream.h"
#include "Tools/MathConst.h"
#include "support/AllocationFailures.h"
#include "support/TestFolder.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <cmath>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using TestSupport::Bytes;
using TestSupport::ClPipeStream;
using TestSupport::Content;

namespace {

constexpr unsigned char canTypes[] = {ClImage::eUInt8,   ClImage::eUInt16,  ClImage::eUInt32,
                                      ClImage::eInt8,    ClImage::eInt16,   ClImage::eInt32,
                                      ClImage::eFloat32, ClImage::eDouble64};
constexpr std::size_t cnHeader = 53; // bytes before the samples

void FillRandom(ClImage& rImage, std::mt19937& rRandom) {
    for (std::size_t i = 0; i < rImage.SizeBytes(); ++i)
        rImage.Data()[i] = static_cast<unsigned char>(rRandom());
}

/// An image of an odd size with every field set to something of its own.
void MakeRandom(ClImage& rImage, unsigned char nType, std::mt19937& rRandom) {
    const auto Size = [&rRandom] { return static_cast<int>(1 + rRandom() % 9); };
    rImage.NewWithType(nType, Size() + 1, Size() + 1, 1 + Size() % 5, 19685, 20000);
    FillRandom(rImage, rRandom);
    rImage.SetBlack(-3.25);
    rImage.SetWhite(1e300);
    rImage.SetContent(ClImage::eCIELab);
    rImage.SetAttribute(-77);
}

Bytes SamplesOf(const ClImage& rImage) {
    return Bytes(rImage.Data(), rImage.Data() + rImage.SizeBytes());
}

void ExpectSame(const ClImage& rA, const ClImage& rB) {
    EXPECT_EQ(rA.DataType(), rB.DataType());
    EXPECT_EQ(rA.Width(), rB.Width());
    EXPECT_EQ(rA.Height(), rB.Height());
    EXPECT_EQ(rA.Planes(), rB.Planes());
    EXPECT_EQ(rA.PelsX(), rB.PelsX());
    EXPECT_EQ(rA.PelsY(), rB.PelsY());
    EXPECT_EQ(rA.Content(), rB.Content());
    EXPECT_EQ(rA.Black(), rB.Black());
    EXPECT_EQ(rA.White(), rB.White());
    EXPECT_EQ(rA.Attribute(), rB.Attribute());
    EXPECT_EQ(SamplesOf(rA), SamplesOf(rB));
}

Bytes RecordOf(const ClImage& rImage) {
    ClMemStream Stream;
    rImage.Store(Stream);
    return Content(Stream);
}

/// The record of an image of one grey pixel, by hand.
Bytes OnePixel() {
    return {0x4B, 0x50, 0x46, 0,    0, 0, 0, 1, // magic, version
            1,    0,    0,    0,    1, 0, 0, 0, // type, width
            1,    0,    0,    0,    1,          // height, planes
            0,    0,    0x4C, 0xE5, 0, 0, 1, 2, // resolutions
            0,    0,    0,    1,                // content
            0x40, 0x6F, 0xE0, 0,    0, 0, 0, 0, // white, 255.0
            0,    0,    0,    0,    0, 0, 0, 0, // black
            0,    0,    0,    5,                // attribute
            0xAA, 0xBB, 0xCC, 0xDD,             // the pixel and its padding
            0x4B, 0x50, 0x46, 0};
}

void Load(ClImage& rImage, const Bytes& aRecord, bool bStrict = false) {
    ClMemStream Stream(aRecord.data(), aRecord.size());
    Stream.SetThrowOnShort(bStrict);
    rImage.Load(Stream);
}

/// The record of one pixel with a 32-bit number replaced.
Bytes WithNumber(std::size_t nOffset, std::uint32_t nNumber) {
    Bytes aRecord = OnePixel();
    for (std::size_t i = 0; i < 4; ++i)
        aRecord[nOffset + i] = static_cast<unsigned char>(nNumber >> (24 - 8 * i));
    return aRecord;
}

} // namespace

// The record

TEST(RawImage, OnePixelIsStoredWithItsPadding) {
    ClImage Image(1, 1, 1, 19685, 258);
    const unsigned char acPixel[] = {0xAA, 0xBB, 0xCC, 0xDD};
    std::memcpy(Image.Data(), acPixel, 4);
    Image.SetAttribute(5);
    EXPECT_EQ(RecordOf(Image), OnePixel());
}

TEST(RawImage, OnePixelIsLoaded) {
    ClImage Image;
    Load(Image, OnePixel());
    EXPECT_EQ(Image.DataType(), ClImage::eUInt8);
    EXPECT_EQ(Image.Width(), 1);
    EXPECT_EQ(Image.Height(), 1);
    EXPECT_EQ(Image.Planes(), 1);
    EXPECT_EQ(Image.PelsX(), 19685);
    EXPECT_EQ(Image.PelsY(), 258);
    EXPECT_EQ(Image.Content(), ClImage::eGrayscale);
    EXPECT_EQ(Image.White(), 255.0);
    EXPECT_EQ(Image.Black(), 0.0);
    EXPECT_EQ(Image.Attribute(), 5);
    EXPECT_EQ(SamplesOf(Image), (Bytes{0xAA, 0xBB, 0xCC, 0xDD}));
    EXPECT_TRUE(Image.IsValid());
}

TEST(RawImage, LinesOfThreeWideSamplesTakeFour) {
    ClImage Image;
    Image.NewWithType(ClImage::eUInt16, 3, 2, 1, 0, 0);
    for (unsigned char i = 0; i < 16; ++i)
        Image.Data()[i] = i;
    const Bytes aRecord = RecordOf(Image);
    ASSERT_EQ(aRecord.size(), cnHeader + 16 + 4);
    EXPECT_EQ(Bytes(aRecord.begin() + cnHeader, aRecord.begin() + cnHeader + 8),
              (Bytes{1, 0, 3, 2, 5, 4, 7, 6})); // most significant byte first
}

TEST(RawImage, TheMagicFollowsTheByteOrder) {
    const ClImage Image(1, 1, 1, 0, 0);
    ClMemStream Stream;
    Stream.SetBigEndian(false);
    Image.Store(Stream);
    const Bytes aLittle = Content(Stream);
    const Bytes aBig = RecordOf(Image);
    EXPECT_EQ(Bytes(aBig.begin(), aBig.begin() + 4), (Bytes{0x4B, 0x50, 0x46, 0}));
    EXPECT_EQ(Bytes(aLittle.begin(), aLittle.begin() + 4), (Bytes{0, 0x46, 0x50, 0x4B}));
}

TEST(RawImage, ARecordOfVersionZeroHasNoAttribute) {
    Bytes aRecord = OnePixel();
    aRecord[7] = 0;
    aRecord.erase(aRecord.begin() + 49, aRecord.begin() + 53);
    ClImage Image;
    Image.SetAttribute(99);
    Load(Image, aRecord);
    EXPECT_EQ(Image.Attribute(), 0);
    EXPECT_EQ(SamplesOf(Image), (Bytes{0xAA, 0xBB, 0xCC, 0xDD}));
}

TEST(RawImage, ARangeThatIsNotANumberIsKeptAndNotValid) {
    ClImage Image(2, 2, 1, 0, 0);
    Image.SetBlack(MathConst::cdNaN);
    Image.SetWhite(MathConst::cdNaN);
    ClImage Loaded;
    Load(Loaded, RecordOf(Image));
    EXPECT_TRUE(std::isnan(Loaded.Black()));
    EXPECT_TRUE(std::isnan(Loaded.White()));
    EXPECT_FALSE(Loaded.IsValid());
}

TEST(RawImage, AnEmptyImageIsARecordWithoutSamples) {
    const Bytes aRecord = RecordOf(ClImage());
    EXPECT_EQ(aRecord.size(), cnHeader + 4);
    ClImage Image(3, 3, 1, 0, 0);
    Load(Image, aRecord);
    EXPECT_EQ(Image.DataType(), ClImage::eTypeUnknown);
    EXPECT_EQ(Image.Width(), 0);
    EXPECT_EQ(Image.Data(), nullptr);
}

TEST(RawImage, RecordsOfSizeZeroLoadQuietlyWithoutPixels) {
    for (const std::size_t nOffset : {9, 13, 17}) { // width, height, planes
        Bytes aRecord = WithNumber(nOffset, 0);
        aRecord.erase(aRecord.begin() + cnHeader, aRecord.begin() + cnHeader + 4);
        ClImage Image;
        EXPECT_NO_THROW(Load(Image, aRecord, true));
        EXPECT_EQ(Image.Data(), nullptr);
    }
}

TEST(RawImage, RecordsFollowEachOtherInAStream) {
    const Bytes aRecord = OnePixel();
    ClMemStream Stream;
    Stream.WriteAutoSwap('x');
    for (int i = 0; i < 2; ++i)
        Stream.Write(aRecord.data(), aRecord.size());
    Stream.Seek(1, 0);
    ClImage Image;
    Image.Load(Stream);
    Image.Load(Stream);
    EXPECT_EQ(Stream.Pos(), Stream.Size());
}

TEST(RawImage, LoadingLeavesSharersOfTheFormerBufferAlone) {
    ClImage Image(1, 1, 1, 0, 0);
    Image = static_cast<unsigned char>(7);
    ClImage Sharer;
    Sharer.Attach(Image);
    Load(Image, OnePixel());
    EXPECT_EQ(Sharer.Data()[0], 7);
    EXPECT_EQ(Image.Data()[0], 0xAA);
}

// Round trips

TEST(RawImage, RandomImagesOfEveryTypeSurviveBothByteOrders) {
    std::mt19937 Random(1);
    for (const unsigned char nType : canTypes) {
        for (int i = 0; i < 40; ++i) {
            ClImage Image;
            MakeRandom(Image, nType, Random);
            ClMemStream Stream;
            Stream.SetBigEndian(i % 2 == 0);
            Stream.SetThrowOnShort(true);
            Image.Store(Stream);
            ASSERT_EQ(Stream.Size(), cnHeader + Image.SizeBytes() + 4);
            Stream.Seek(0, 0);
            ClImage Loaded;
            Loaded.Load(Stream);
            ExpectSame(Loaded, Image);
        }
    }
}

TEST(RawImage, SamplesAreSwappedByTheWriteOrderOnLoading) {
    std::mt19937 Random(2);
    ClImage Image;
    MakeRandom(Image, ClImage::eUInt16, Random);
    const Bytes aRecord = RecordOf(Image);
    ClMemStream Stream(aRecord.data(), aRecord.size());
    Stream.SetBigEndian4Write(false);
    ClImage Loaded;
    Loaded.Load(Stream);
    Bytes aExpected = SamplesOf(Image);
    for (std::size_t i = 0; i < aExpected.size(); i += 2)
        std::swap(aExpected[i], aExpected[i + 1]);
    EXPECT_EQ(SamplesOf(Loaded), aExpected);
}

TEST(RawImage, ABlockOfOneSampleStaysAsItIsStored) {
    ClImage Image;
    Image.NewWithType(ClImage::eUInt32, 1, 1, 1, 0, 0);
    *Image.Line<std::uint32_t>(0) = 0x01020304;
    ClImage Loaded;
    Load(Loaded, RecordOf(Image));
    EXPECT_EQ(*Loaded.Line<std::uint32_t>(0), 0x04030201u);
    ClImage Again;
    Load(Again, RecordOf(Loaded));
    EXPECT_EQ(*Again.Line<std::uint32_t>(0), 0x01020304u);
}

// Damage

TEST(RawImage, AWrongMagicIsReported) {
    ClImage Image;
    EXPECT_THROWS(Load(Image, WithNumber(0, 0x4B504601)), ClException, -101,
                  "KPF Magic is missing");
    EXPECT_THROWS(Load(Image, Bytes()), ClException, -101, "KPF Magic is missing");
}

TEST(RawImage, LoadingForgetsTheFormerImageBeforeTheFirstByte) {
    ClImage Image(2, 2, 1, 0, 0);
    EXPECT_THROWS(Load(Image, Bytes()), ClException, -101, "KPF Magic is missing");
    EXPECT_EQ(Image.Data(), nullptr);
    EXPECT_EQ(Image.Width(), 0);
}

TEST(RawImage, NegativeSidesWhoseProductIsPositiveStoreNoSamples) {
    ClImage Image(8, 6, 1, 0, 0);
    EXPECT_THROWS(Image.NewWithType(ClImage::eUInt8, -8000, 6, -1, 0, 0), ClException, -101,
                  "Image area must be positive");
    EXPECT_EQ(RecordOf(Image).size(), cnHeader + 4); // what stands behind the buffer stays there
}

TEST(RawImage, AWrongVersionIsReportedBeforeAnythingElseIsRead) {
    for (const std::uint32_t nVersion : {2u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        const Bytes aRecord = WithNumber(4, nVersion);
        ClMemStream Stream(aRecord.data(), aRecord.size());
        ClImage Image;
        EXPECT_THROWS(Image.Load(Stream), ClException, -101, "Wrong KPF version");
        EXPECT_EQ(Stream.Pos(), 8u);
    }
}

TEST(RawImage, AWrongEndMagicIsReported) {
    ClImage Image;
    EXPECT_THROWS(Load(Image, WithNumber(cnHeader + 4, 0)), ClException, -101,
                  "KPF end Magic is missing");
}

TEST(RawImage, NegativeSizesAreReported) {
    for (const std::size_t nOffset : {9, 13, 17}) {
        for (const std::uint32_t nNumber : {0xFFFFFFFFu, 0x80000000u}) {
            ClImage Image;
            EXPECT_THROWS(Load(Image, WithNumber(nOffset, nNumber)), ClException, -101,
                          "Image area must be positive");
        }
    }
}

TEST(RawImage, AClaimBeyondTheStreamIsReportedBeforeASampleIsRead) {
    for (const std::size_t nOffset : {9, 13, 17}) {
        for (const std::uint32_t nNumber : {9u, 0x10000000u, 0x7FFFFFFFu}) {
            const Bytes aRecord = WithNumber(nOffset, nNumber);
            ClMemStream Stream(aRecord.data(), aRecord.size());
            ClImage Image;
            EXPECT_THROWS(Image.Load(Stream), ClException, -101, "KPF end Magic is missing");
            EXPECT_EQ(Stream.Pos(), cnHeader);
            EXPECT_EQ(Image.Data(), nullptr);
            EXPECT_THROWS(Load(Image, aRecord, true), ClExStreamUnexpectedEnd, -201,
                          "Unexpected end of stream");
        }
    }
}

TEST(RawImage, AClaimOfEverythingIsReported) {
    Bytes aRecord = OnePixel();
    for (std::size_t i = 9; i < 21; ++i)
        aRecord[i] = (i - 9) % 4 == 0 ? 0x7F : 0xFF;
    aRecord[8] = 0xDF; // a type of 31 bytes
    ClImage Image;
    EXPECT_THROWS(Load(Image, aRecord, true), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    ClPipeStream Pipe(aRecord); // does not know how much is left
    EXPECT_THROWS(Image.Load(Pipe), ClExBadAlloc, -102, "Memory allocation failed");
}

TEST(RawImage, ARecordThatEndsAnywhereIsReported) {
    const Bytes aRecord = OnePixel();
    for (std::size_t nSize = 0; nSize < aRecord.size(); ++nSize) {
        const Bytes aCut(aRecord.begin(), aRecord.begin() + static_cast<long>(nSize));
        ClImage Image;
        EXPECT_THROWS(Load(Image, aCut, true), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
        if (nSize + 1 <
            aRecord.size()) // missing bytes count as 0, as the last ones of both magics are
            EXPECT_THROWS(Load(Image, aCut), ClException, -101,
                          nSize < 3 ? "KPF Magic is missing" : "KPF end Magic is missing");
    }
}

TEST(RawImage, AnyDamageEitherLoadsOrIsReported) {
    std::mt19937 Random(4);
    ClImage Image;
    MakeRandom(Image, ClImage::eInt16, Random);
    const Bytes aRecord = RecordOf(Image);
    for (int i = 0; i < 3000; ++i) {
        Bytes aDamaged = aRecord;
        for (unsigned long n = 1 + Random() % 3; n > 0; --n)
            aDamaged[Random() % 60] = static_cast<unsigned char>(Random());
        ClImage Loaded;
        try {
            Load(Loaded, aDamaged, i % 2 == 0);
            EXPECT_LE(Loaded.SizeBytes(), aRecord.size());
        } catch (const ClException& e) {
            EXPECT_TRUE(e.Number() == -101 || e.Number() == -201) << e.What();
        }
    }
}

// Streams that fail

TEST(RawImage, AShortWriteThrowsOnAStrictStream) {
    const ClImage Image(3, 3, 1, 0, 0);
    const std::size_t nRecord = RecordOf(Image).size();
    for (std::size_t nRoom = 0; nRoom < nRecord; ++nRoom) {
        ClPipeStream Stream({}, nRoom);
        Stream.SetThrowOnShort(true);
        EXPECT_THROWS(Image.Store(Stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
    }
}

TEST(RawImage, PendingBitsAreReported) {
    const ClImage Image(1, 1, 1, 0, 0);
    ClImage Loaded;
    ClMemStream Stream;
    Stream.WriteBits(1, 1);
    EXPECT_THROWS(Image.Store(Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
    EXPECT_THROWS(Loaded.Load(Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
}

TEST(RawImage, MissingMemoryLeaksNothing) {
    const ClImage Image(10, 10, 1, 0, 0);
    TestSupport::FailEachAllocation([&Image] {
        ClMemStream Stream;
        Image.Store(Stream);
    });
    const Bytes aRecord = OnePixel();
    TestSupport::FailEachAllocation([&aRecord] {
        ClImage Loaded;
        Load(Loaded, aRecord);
    });
}

// Files

TEST(RawImage, SurvivesInAFile) {
    const TestSupport::ClTestFolder Folder;
    const std::string Name = Folder / "image.kpf";
    std::mt19937 Random(6);
    ClImage Image;
    MakeRandom(Image, ClImage::eFloat32, Random);
    Image.Store(Name.c_str());
    ClImage Loaded;
    Loaded.Load(Name.c_str());
    ExpectSame(Loaded, Image);
    std::remove(Name.c_str());
    EXPECT_THROWS(Loaded.Load(Name.c_str()), ClExFilesystem, -200, Name);
}

TEST(RawImage, LoadsFromANamedPipe) {
    const TestSupport::ClTestFolder Folder;
    const std::string Name = Folder / "pipe";
    std::mt19937 Random(7);
    ClImage Image;
    MakeRandom(Image, ClImage::eUInt16, Random);
    const Bytes aRecord = RecordOf(Image);
    ASSERT_EQ(mkfifo(Name.c_str(), 0600), 0);
    const int nPipe = open(Name.c_str(), O_RDWR); // a writer and a reader: opening cannot block
    ASSERT_EQ(write(nPipe, aRecord.data(), aRecord.size()), static_cast<long>(aRecord.size()));
    ClImage Loaded;
    Loaded.Load(Name.c_str());
    ExpectSame(Loaded, Image);
    close(nPipe);
}

TEST(RawImage, AFileThatCannotBeStoredIsReported) {
    const char* szFullDevice = "/dev/full";
    ASSERT_EQ(access(szFullDevice, W_OK), 0) << "every Linux has this device";
    EXPECT_THROWS(ClImage(2, 2, 1, 0, 0).Store(szFullDevice), ClExStream, -204,
                  "ClFileStream::Close. Failed to Close");
    EXPECT_THROWS(ClImage(300, 300, 1, 0, 0).Store(szFullDevice), ClExStream, -204,
                  "ClFileStream::Close. Failed to Close");
}
