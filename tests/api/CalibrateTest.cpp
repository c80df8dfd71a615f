// Calibrate(): the order of its tests, its size protocol and what the modes give.

#include "api/Api.h"
#include "support/GuardedMemory.h"
#include "support/Records.h"
#include "support/TestData.h"

#include <algorithm>
#include <thread>

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::Height;
using TestSupport::Line;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::Width;

namespace {

/// A handle with the data of a small scanner: captures of 48 x 132, a frame of 40 x 60 pixels.
struct StReady : ClApiHandle {
    explicit StReady(const char* szMode = "ThinPlateSpline") {
        EXPECT_EQ(SetData(RecordBlock(PlausibleRecord())), 0);
        Set((std::string("GeometricCalibrate=") + szMode).c_str());
    }
};

constexpr unsigned long cnFrameBlock = 40 + 1024 + 40 * 60;

} // namespace

// Sizes

TEST(Calibrate, TellsTheNeededSizeAndThenFillsABufferOfIt) {
    StReady Handle;
    Bytes aIn = Capture(48, 132);
    unsigned long nSize = 0;
    EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    ASSERT_EQ(nSize, cnFrameBlock);
    Bytes aOut(nSize);
    EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), aOut.data(), &nSize), QMT_SUCCESS);
    EXPECT_EQ(nSize, cnFrameBlock);
}

TEST(Calibrate, ShrinksALargerSizeToWhatWasUsed) {
    StReady Handle;
    Bytes aIn = Capture(48, 132);
    Bytes aOut(cnFrameBlock + 100, 0xEE);
    unsigned long nSize = aOut.size();
    EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), aOut.data(), &nSize), QMT_SUCCESS);
    EXPECT_EQ(nSize, cnFrameBlock);
    EXPECT_EQ(Bytes(aOut.begin() + cnFrameBlock, aOut.end()), Bytes(100, 0xEE));
}

TEST(Calibrate, WritesNothingIntoABufferThatIsTooSmall) {
    StReady Handle;
    Bytes aIn = Capture(48, 132);
    for (const unsigned long nGiven : {1ul, 40ul, cnFrameBlock - 1}) {
        Bytes aOut(nGiven, 0xEE);
        unsigned long nSize = nGiven;
        EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), aOut.data(), &nSize),
                  QMT_ERROR_TEMPLATE_SIZE);
        EXPECT_EQ(nSize, cnFrameBlock);
        EXPECT_EQ(aOut, Bytes(nGiven, 0xEE));
    }
}

TEST(Calibrate, LeavesSizeAndBufferOnOtherFailures) {
    StReady Handle;
    Bytes aIn = Capture(47, 132);
    Bytes aOut(5000, 0xEE);
    unsigned long nSize = aOut.size();
    EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), aOut.data(), &nSize),
              QMT_ERROR_BITMAP_DIMENSION);
    EXPECT_EQ(nSize, 5000u);
    EXPECT_EQ(aOut, Bytes(5000, 0xEE));
}

TEST(Calibrate, NeitherWritesToItsInputNorReadsBeyondIt) {
    for (const char* szMode : {"off", "oddLines", "ThinPlateSpline"}) {
        StReady Handle(szMode);
        const Bytes aIn = Capture(48, 132);
        const TestSupport::ClGuardedBlock Guarded(aIn);
        Bytes aOut(100000);
        unsigned long nSize = aOut.size();
        EXPECT_EQ(Calibrate(Handle, Guarded.Data(), Guarded.Size(), aOut.data(), &nSize), 0);
        aOut.resize(nSize);
        EXPECT_EQ(aOut, Handle.Corrected(aIn));
    }
}

// Order of tests

TEST(Calibrate, TestsItsArgumentsInOrder) {
    ClApiHandle Handle;
    Handle.Set("DynamicFingerMask=true");
    Handle.Set("GeometricCalibrate=off");
    Bytes aBroken(10); // no block at all
    unsigned char* pIn = aBroken.data();
    unsigned long nSize = 5;
    EXPECT_EQ(Calibrate(nullptr, nullptr, 10, nullptr, nullptr), QMT_ERROR_NO_HANDLE);
    EXPECT_EQ(Calibrate(Handle, nullptr, 10, nullptr, nullptr), QMT_ERROR_BITMAP_PTR);
    EXPECT_EQ(Calibrate(Handle, pIn, 10, pIn, nullptr), QMT_ERROR_BITMAP_PTR);
    EXPECT_EQ(Calibrate(Handle, pIn, 10, nullptr, nullptr), QMT_ERROR_TEMPLATE_SIZE_PTR);
    EXPECT_EQ(Calibrate(Handle, pIn, 10, nullptr, &nSize), QMT_ERROR_BITMAP_PTR);
    nSize = 0;
    EXPECT_EQ(Calibrate(Handle, pIn, 10, nullptr, &nSize), QMT_ERROR_INVALID_OPTIONS_SETTING);
    Handle.Set("DynamicFingerMask=false");
    EXPECT_EQ(Calibrate(Handle, pIn, 10, nullptr, &nSize), QMT_ERROR_NOT_INITIALIZED);
    Handle.SetData(RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Calibrate(Handle, pIn, 10, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 0u);
}

TEST(Calibrate, RefusesToWorkInPlace) {
    StReady Handle;
    Bytes aIn = Capture(48, 132);
    unsigned long nSize = aIn.size();
    EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), aIn.data(), &nSize), QMT_ERROR_BITMAP_PTR);
    EXPECT_EQ(aIn, Capture(48, 132));
}

TEST(Calibrate, WantsDataWhateverTheOptions) {
    ClApiHandle Handle;
    Bytes aIn = Capture(48, 132);
    unsigned long nSize = 0;
    const auto Status = [&](const char* szDynamic, const char* szMode) {
        Handle.Set((std::string("DynamicFingerMask=") + szDynamic).c_str());
        Handle.Set((std::string("GeometricCalibrate=") + szMode).c_str());
        return Calibrate(Handle, aIn.data(), aIn.size(), nullptr, &nSize);
    };
    for (const char* szMode : {"off", "oddLines", "ThinPlateSpline"})
        EXPECT_EQ(Status("false", szMode), QMT_ERROR_NOT_INITIALIZED);
    for (const char* szMode : {"oddLines", "ThinPlateSpline"})
        EXPECT_EQ(Status("true", szMode), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(Status("true", "off"), QMT_ERROR_INVALID_OPTIONS_SETTING);
}

// Blocks

TEST(Calibrate, TakesBlocksOfExactlyTheirSize) {
    StReady Handle("off");
    Bytes aIn = Capture(321, 3);
    EXPECT_EQ(aIn.size(), 40u + 1024 + 324 * 3);
    aIn.push_back(0);
    long nStatus = 0;
    Handle.Corrected(aIn, &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_TEMPLATE_SIZE);
    aIn.resize(aIn.size() - 2);
    Handle.Corrected(aIn, &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_TEMPLATE_SIZE);
}

TEST(Calibrate, CountsThePaletteThatTheHeaderTells) {
    StReady Handle("off");
    for (const auto& [nClrUsed, nEntries] : {std::pair(0u, 256u), {256u, 256u}, {16u, 16u}}) {
        TestSupport::StHead Head;
        Head.m_nWidth = 5;
        Head.m_nHeight = 2;
        Head.m_nClrUsed = nClrUsed;
        const Bytes aIn = Block(Head, TestSupport::GreyPalette(nEntries), NoisePixels(Head));
        EXPECT_EQ(aIn.size(), 40u + 4 * nEntries + 16);
        const Bytes aOut = Handle.Corrected(aIn);
        EXPECT_EQ(aOut.size(), 40u + 1024 + 16); // written with its full palette
        EXPECT_EQ(TestSupport::HeaderField(aOut, 32), 0);
        EXPECT_TRUE(std::equal(aOut.end() - 16, aOut.end(), aIn.end() - 16));
    }
}

TEST(Calibrate, RefusesColourCompressionAndOtherDepths) {
    StReady Handle("off");
    const auto Status = [&](int nBits, std::uint32_t nCompression, std::int64_t nWidth) {
        TestSupport::StHead Head;
        Head.m_nWidth = nWidth;
        Head.m_nHeight = 4;
        Head.m_nBits = nBits;
        Head.m_nCompression = nCompression;
        Bytes aIn = HeaderBytes(Head);
        aIn.resize(aIn.size() +
                   (nBits <= 8          ? 4u << nBits
                    : nCompression == 3 ? 12u
                                        : 0u) +
                   TestSupport::WordsStride(nBits, nWidth) * 4);
        long nStatus = 0;
        Handle.Corrected(aIn, &nStatus);
        return nStatus;
    };
    EXPECT_EQ(Status(8, 0, 4), QMT_SUCCESS);
    for (const int nBits : {24, 32})
        for (const std::uint32_t nCompression : {0u, 1u, 2u, 3u})
            EXPECT_EQ(Status(nBits, nCompression, 4), QMT_ERROR_BITMAP_PLANE);
    for (const std::uint32_t nCompression : {1u, 2u, 3u})
        EXPECT_EQ(Status(8, nCompression, 4), QMT_ERROR_BITMAP_PLANE);
    for (const int nBits : {1, 4, 16})
        for (const std::uint32_t nCompression : {0u, 1u, 2u, 3u})
            EXPECT_EQ(Status(nBits, nCompression, 4), QMT_ERROR_BITMAP_BITCOUNT);
    EXPECT_EQ(Status(8, 0, 0), QMT_ERROR_INTERNAL);
    EXPECT_EQ(Status(24, 0, 0), QMT_ERROR_BITMAP_PLANE); // the plane before the area
    EXPECT_EQ(Status(16, 1, 0), QMT_ERROR_BITMAP_BITCOUNT);
}

// Modes

TEST(Calibrate, WithGeometryOffGivesTheInput) {
    StReady Handle("off");
    for (const int nWidth : {1, 2, 3, 4, 5, 47, 48}) {
        const Bytes aIn = Capture(nWidth, 9);
        const Bytes aOut = Handle.Corrected(aIn);
        ASSERT_EQ(aOut.size(), aIn.size());
        EXPECT_EQ(aOut, aIn); // resolution, grey palette and line ends included
    }
}

TEST(Calibrate, WithGeometryOffWritesHeaderAndPaletteAnew) {
    StReady Handle("off");
    TestSupport::StHead Head;
    Head.m_nWidth = 6;
    Head.m_nHeight = 2;
    Head.m_nClrUsed = 256;
    Head.m_nClrImportant = 99;
    Head.m_nSizeImage = 4711;
    Head.m_nPelsX = 1;
    Head.m_nPelsY = 2;
    std::vector<std::uint32_t> aPalette(256, 0xFF123456);
    const Bytes aIn = Block(Head, aPalette, NoisePixels(Head));
    Head.m_nClrUsed = Head.m_nClrImportant = Head.m_nSizeImage = 0;
    EXPECT_EQ(Handle.Corrected(aIn), Block(Head, TestSupport::GreyPalette(), NoisePixels(Head)));
}

TEST(Calibrate, WithOddLinesGivesHalfTheLinesAtTheRecordsResolution) {
    StReady Handle("oddLines");
    for (const int nHeight : {2, 3, 100, 131}) {
        const Bytes aOut = Handle.Corrected(Capture(21, nHeight));
        EXPECT_EQ(Width(aOut), 21);
        EXPECT_EQ(Height(aOut), nHeight / 2);
        EXPECT_EQ(TestSupport::HeaderField(aOut, 24), 2425);
        EXPECT_EQ(TestSupport::HeaderField(aOut, 28), 2483);
        EXPECT_EQ(Bytes(aOut.end() - 3, aOut.end()), Bytes(3, 0)); // the line end
    }
}

TEST(Calibrate, WithOddLinesHasNothingOfASingleLine) {
    StReady Handle("oddLines");
    long nStatus = 0;
    Handle.Corrected(Capture(21, 1), &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_INTERNAL);
}

TEST(Calibrate, WithSplinesGivesTheFrameOfTheRecord) {
    StReady Handle;
    const Bytes aOut = Handle.Corrected(Capture(48, 132));
    EXPECT_EQ(Width(aOut), 40);
    EXPECT_EQ(Height(aOut), 60);
    EXPECT_EQ(TestSupport::HeaderField(aOut, 24), 2461);
    EXPECT_EQ(TestSupport::HeaderField(aOut, 28), 2461);
}

// The capture of the mode without geometry, line ends included, has the size of the frame.
TEST(Calibrate, WithSplinesGivesNothingOfAnEarlierCapture) {
    ClApiHandle Handle;
    EXPECT_EQ(Handle.SetData(RecordBlock(PlausibleRecord(48, 132, 41, 60))), 0);
    const Bytes aExpected = Handle.Corrected(Capture(48, 132));
    Handle.Set("GeometricCalibrate=off");
    Handle.Corrected(Capture(41, 60));
    Handle.Set("GeometricCalibrate=ThinPlateSpline");
    EXPECT_EQ(Handle.Corrected(Capture(48, 132)), aExpected);
    EXPECT_EQ(Bytes(aExpected.end() - 3, aExpected.end()), Bytes(3, 0)); // the line end
}

// An image without finger is white to the line ends, one with a finger is not.
TEST(Calibrate, GivesNothingOfAnEarlierImage) {
    const Bytes aFinger = TestSupport::DataBlock("dynamic/dry_raw.bmp");
    ASSERT_EQ(Width(aFinger) % 4, 2);
    Bytes aEmpty = aFinger;
    std::fill(aEmpty.begin() + 40 + 1024, aEmpty.end(), 0xFF);
    for (const char* szOutput : {"MaskIsOutput=false", "MaskIsOutput=true"}) {
        ClApiHandle New;
        ClApiHandle Used;
        for (ClApiHandle* pHandle : {&New, &Used}) {
            EXPECT_EQ(pHandle->SetData(TestSupport::DataFile("dynamic/dry.cal")), 0);
            for (const char* szOption :
                 {"GeometricCalibrate=oddLines", "DynamicFingerMask=true", szOutput})
                pHandle->Set(szOption);
        }
        EXPECT_EQ(Used.Corrected(aEmpty).back(), 0xFF);
        EXPECT_EQ(Used.Corrected(aFinger), New.Corrected(aFinger)) << szOutput;
    }
}

TEST(Calibrate, WithSplinesTakesNothingButTheScannersSize) {
    StReady Handle;
    for (const auto& [nWidth, nHeight] : {std::pair(47, 132), {49, 132}, {48, 131}, {48, 133}}) {
        long nStatus = 0;
        Handle.Corrected(Capture(nWidth, nHeight), &nStatus);
        EXPECT_EQ(nStatus, QMT_ERROR_BITMAP_DIMENSION);
    }
}

TEST(Calibrate, IgnoresMaskAndSensitivityWithoutTheDynamicStep) {
    for (const char* szMode : {"off", "oddLines", "ThinPlateSpline"}) {
        StReady Handle(szMode);
        const Bytes aIn = Capture(48, 132);
        const Bytes aPlain = Handle.Corrected(aIn);
        Handle.Set("MaskIsOutput=true");
        Handle.Set("SensitiveMode=true");
        EXPECT_EQ(Handle.Corrected(aIn), aPlain);
    }
}

TEST(Calibrate, KeepsItsDataAfterFailures) {
    StReady Handle;
    const Bytes aIn = Capture(48, 132);
    const Bytes aOut = Handle.Corrected(aIn);
    long nStatus = 0;
    Handle.Corrected(Capture(5, 5), &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_BITMAP_DIMENSION);
    Handle.Corrected(Bytes(3), &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(Handle.Corrected(aIn), aOut);
}

TEST(Calibrate, RunsInParallelOnDifferentHandles) {
    const Bytes aIn = Capture(48, 132);
    StReady First;
    const Bytes aExpected = First.Corrected(aIn);
    Bytes aaOut[4];
    std::vector<std::thread> aThreads;
    for (Bytes& aOut : aaOut)
        aThreads.emplace_back([&aOut, &aIn] {
            StReady Handle;
            for (int i = 0; i < 20; ++i)
                aOut = Handle.Corrected(aIn);
        });
    for (std::thread& Thread : aThreads)
        Thread.join();
    for (const Bytes& aOut : aaOut)
        EXPECT_EQ(aOut, aExpected);
}
