// The finished image, the finger mask and the levels, as an application gets them.

#include "api/Api.h"
#include "support/DataJson.h"
#include "support/Md5.h"
#include "support/Records.h"
#include "support/TestData.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <thread>

using nlohmann::json;
using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::DataBlock;
using TestSupport::DataFile;
using TestSupport::DataJson;

namespace {

struct StLevels {
    double m_dDirt = -1.0;
    double m_dDry = -1.0;
};

StLevels LevelsOf(void* pHandle) {
    StLevels Levels;
    EXPECT_EQ(GetCalibrationWarningLevels(pHandle, &Levels.m_dDirt, &Levels.m_dDry), 0);
    return Levels;
}

void ExpectLevels(void* pHandle, double dDirt, double dDry) {
    const StLevels Levels = LevelsOf(pHandle);
    EXPECT_EQ(Levels.m_dDirt, dDirt);
    EXPECT_EQ(Levels.m_dDry, dDry);
}

Bytes PixelsOf(const Bytes& aBlock) {
    Bytes aPixels;
    for (int y = 0; y < TestSupport::Height(aBlock); ++y) {
        const Bytes aLine = TestSupport::Line(aBlock, y);
        aPixels.insert(aPixels.end(), aLine.begin(), aLine.end());
    }
    return aPixels;
}

bool IsWhite(const Bytes& aBlock) {
    const Bytes aPixels = PixelsOf(aBlock);
    return std::all_of(aPixels.begin(), aPixels.end(), [](int n) { return n == 255; });
}

/// A handle with the options that it is born with, and the data of a published scanner.
struct StScanner : ClApiHandle {
    explicit StScanner(const std::string& Kind) {
        Set("DynamicFingerMask=true");
        EXPECT_EQ(SetData(DataFile("dynamic/" + Kind + ".cal")), 0);
    }
};

Bytes RawOf(const std::string& Kind) {
    return DataBlock("dynamic/" + Kind + "_raw.bmp");
}

/// A capture of the size of another, painted over by a function of column and line.
template <class F>
Bytes Painted(Bytes aBlock, F Value) {
    const int nWidth = TestSupport::Width(aBlock);
    const int nStride = (nWidth + 3) & ~3;
    for (int y = 0; y < TestSupport::Height(aBlock); ++y)
        for (int x = 0; x < nWidth; ++x)
            aBlock[static_cast<std::size_t>(40 + 1024 + y * nStride + x)] =
                static_cast<unsigned char>(Value(x, y));
    return aBlock;
}

void ExpectImage(const Bytes& aBlock, const json& Digests, const std::string& Name) {
    const json& Expected = Digests.at(Name);
    EXPECT_EQ(TestSupport::Width(aBlock), Expected["width"]);
    EXPECT_EQ(TestSupport::Height(aBlock), Expected["height"]);
    EXPECT_EQ(TestSupport::Hex(TestSupport::Md5(PixelsOf(aBlock))), Expected["md5"]) << Name;
}

void ExpectRun(const std::string& Kind, const json& Told, bool bSensitive, const json& Digests) {
    StScanner Handle(Kind);
    Handle.Set(bSensitive ? "SensitiveMode=true" : "SensitiveMode=false");
    const Bytes aRaw = RawOf(Kind);
    ExpectImage(Handle.Corrected(aRaw), Digests, Told["output"]);
    ExpectLevels(Handle, Told["dirt"], Told["dry"]);
    Handle.Set("MaskIsOutput=true");
    ExpectImage(Handle.Corrected(aRaw), Digests, Told["mask"]);
    ExpectLevels(Handle, Told["dirt"], Told["dry"]);
}

} // namespace

TEST(DynamicCalibration, OfRawCapturesIsThatOfAnIndependentModel) {
    const json Captures = DataJson("dynamic/dynamic.json");
    const json Digests = DataJson("dynamic/digests.json");
    ASSERT_EQ(Captures.size(), 8u);
    for (const json& Capture : Captures) {
        const std::string Kind = Capture["kind"];
        SCOPED_TRACE(Kind);
        ExpectRun(Kind, Capture["normal"], false, Digests);
        ExpectRun(Kind, Capture["sensitive"], true, Digests);
    }
}

TEST(DynamicCalibration, IsOnByDefault) {
    StScanner Set("loop");
    void* pHandle = CalibrateCreate();
    const Bytes aRecord = DataFile("dynamic/loop.cal");
    EXPECT_EQ(CalibrateSetData(pHandle, ClApiHandle::Writable(aRecord), aRecord.size()), 0);
    const Bytes aRaw = RawOf("loop");
    const Bytes aExpected = Set.Corrected(aRaw);
    Bytes aOut(aExpected.size());
    unsigned long nSize = aOut.size();
    EXPECT_EQ(Calibrate(pHandle, ClApiHandle::Writable(aRaw), aRaw.size(), aOut.data(), &nSize), 0);
    EXPECT_EQ(aOut, aExpected);
    CalibrateDelete(&pHandle);
}

TEST(DynamicCalibration, WhitensACaptureWithoutRange) {
    const Bytes aRaw = RawOf("loop");
    StScanner Handle("loop");
    for (const int nGrey : {0, 100, 254, 255}) {
        SCOPED_TRACE(nGrey);
        const Bytes aFlat = Painted(aRaw, [nGrey](int, int) { return nGrey; });
        Handle.Set("MaskIsOutput=false");
        EXPECT_TRUE(IsWhite(Handle.Corrected(aFlat)));
        ExpectLevels(Handle, 100.0, 0.0);
        Handle.Set("MaskIsOutput=true");
        EXPECT_TRUE(IsWhite(Handle.Corrected(aFlat)));
        ExpectLevels(Handle, 100.0, 0.0);
    }
}

TEST(DynamicCalibration, SeeksAFingerInANarrowRangeInSensitiveModeOnly) {
    // The same finger with a quarter of its contrast: at most 64 grey values.
    const Bytes aRaw = RawOf("loop");
    const int nStride = (TestSupport::Width(aRaw) + 3) & ~3;
    const Bytes aPale = Painted(aRaw, [&](int x, int y) {
        return 150 + aRaw[static_cast<std::size_t>(1064 + y * nStride + x)] / 4;
    });
    StScanner Handle("loop");
    EXPECT_TRUE(IsWhite(Handle.Corrected(aPale)));
    ExpectLevels(Handle, 100.0, 0.0);
    Handle.Set("SensitiveMode=true");
    EXPECT_FALSE(IsWhite(Handle.Corrected(aPale)));
    EXPECT_GT(LevelsOf(Handle).m_dDry, 0.0);
    Handle.Set("MaskIsOutput=true");
    EXPECT_FALSE(IsWhite(Handle.Corrected(aPale)));
}

TEST(DynamicCalibration, RejectsTwoFingers) {
    StScanner Handle("two_fingers");
    EXPECT_TRUE(IsWhite(Handle.Corrected(RawOf("two_fingers"))));
    ExpectLevels(Handle, 100.0, 0.0);
    Handle.Set("MaskIsOutput=true");
    EXPECT_TRUE(IsWhite(Handle.Corrected(RawOf("two_fingers"))));
}

TEST(DynamicCalibration, GivesUpFromADirtLevelOf2000On) {
    StScanner Handle("loop");
    const Bytes aRaw = RawOf("loop");
    const int nStride = (TestSupport::Width(aRaw) + 3) & ~3;
    const auto WithSpeck = [&](int nWidth, int nHeight) {
        return Painted(aRaw, [&](int x, int y) {
            return x >= 320 && x < 320 + nWidth && y >= 140 && y < 140 + nHeight
                       ? 0
                       : aRaw[static_cast<std::size_t>(1064 + y * nStride + x)];
        });
    };
    // 16.4 for each black pixel: 6 x 6 of them are some 590, 16 x 16 some 4200.
    const Bytes aSmall = Handle.Corrected(WithSpeck(6, 12));
    EXPECT_FALSE(IsWhite(aSmall));
    EXPECT_GT(LevelsOf(Handle).m_dDirt, 400.0);
    EXPECT_LT(LevelsOf(Handle).m_dDirt, 2000.0);
    const Bytes aBig = Handle.Corrected(WithSpeck(16, 32));
    EXPECT_TRUE(IsWhite(aBig));
    EXPECT_EQ(LevelsOf(Handle).m_dDirt, 100.0);
    EXPECT_GT(LevelsOf(Handle).m_dDry, 0.0); // a finger was found all the same
}

TEST(DynamicCalibration, WorksOnOddLinesWithTheResolutionOfTheRecord) {
    StScanner Handle("loop");
    Handle.Set("GeometricCalibrate=oddLines");
    const Bytes aRaw = RawOf("loop");
    const Bytes aOut = Handle.Corrected(aRaw);
    EXPECT_EQ(TestSupport::Width(aOut), TestSupport::Width(aRaw));
    EXPECT_EQ(TestSupport::Height(aOut), TestSupport::Height(aRaw) / 2);
    EXPECT_FALSE(IsWhite(aOut));
    Handle.Set("MaskIsOutput=true");
    const Bytes aMask = Handle.Corrected(aRaw);
    const Bytes aPixels = PixelsOf(aMask);
    EXPECT_GT(std::count(aPixels.begin(), aPixels.end(), 0), 10000);
    EXPECT_GT(std::count(aPixels.begin(), aPixels.end(), 255), 10000);
}

TEST(DynamicCalibration, NeedsAResolutionToSeekAFinger) {
    // Records of old versions do not tell the resolution of the capture, which odd lines take over.
    TestSupport::StRecord Record = TestSupport::PlausibleRecord();
    Record.m_nSourcePelsX = Record.m_nSourcePelsY = 0;
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetData(TestSupport::RecordBlock(Record)), 0);
    Handle.Set("GeometricCalibrate=oddLines");
    Handle.Set("DynamicFingerMask=true");
    long nStatus = 0;
    Handle.Corrected(TestSupport::Capture(48, 132), &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_BITMAP_PELS);
    ExpectLevels(Handle, 0.0, 0.0);
}

TEST(DynamicCalibration, RefusesAResolutionOfWhichTheFingerMaskLeavesNothing) {
    // Lines of 1 per metre, in an image of 19685, are less than 1 at the resolution of the work.
    TestSupport::StRecord Record = TestSupport::PlausibleRecord();
    Record.m_nSourcePelsX = 19685;
    ClApiHandle Handle;
    Handle.Set("GeometricCalibrate=oddLines");
    Handle.Set("DynamicFingerMask=true");
    for (const auto& [nPelsY, nExpected] : {std::pair{2u, QMT_ERROR_INTERNAL}, {6u, 0L}}) {
        Record.m_nSourcePelsY = nPelsY;
        ASSERT_EQ(Handle.SetData(TestSupport::RecordBlock(Record)), 0);
        long nStatus = 1;
        Handle.Corrected(TestSupport::Capture(48, 132), &nStatus);
        EXPECT_EQ(nStatus, nExpected) << nPelsY;
    }
}

/// No size of a capture ends with a failure: what is too small to measure is white.
TEST(DynamicCalibration, OfOddLinesTakesTheSmallestCaptures) {
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetData(TestSupport::RecordBlock(TestSupport::PlausibleRecord())), 0);
    Handle.Set("GeometricCalibrate=oddLines");
    Handle.Set("DynamicFingerMask=true");
    for (const char* szSensitive : {"SensitiveMode=false", "SensitiveMode=true"}) {
        Handle.Set(szSensitive);
        for (const int nWidth : {1, 2, 3, 8, 25})
            for (const int nHeight : {2, 3, 4, 9, 50}) {
                SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
                const Bytes aOut = Handle.Corrected(TestSupport::Capture(nWidth, nHeight));
                ASSERT_EQ(TestSupport::Width(aOut), nWidth);
                ASSERT_EQ(TestSupport::Height(aOut), nHeight / 2);
                EXPECT_TRUE(IsWhite(aOut));
                ExpectLevels(Handle, 100.0, 0.0);
            }
    }
}

TEST(DynamicCalibration, ExcludesTheUncorrectedCapture) {
    StScanner Handle("loop");
    Handle.Set("GeometricCalibrate=off");
    long nStatus = 0;
    EXPECT_TRUE(Handle.Corrected(RawOf("loop"), &nStatus).empty());
    EXPECT_EQ(nStatus, QMT_ERROR_INVALID_OPTIONS_SETTING);
    ExpectLevels(Handle, 0.0, 0.0);
}

TEST(DynamicCalibration, ThatIsOffLeavesTheLevels) {
    StScanner Handle("dry");
    ExpectLevels(Handle, 0.0, 0.0);
    Handle.Corrected(RawOf("dry"));
    const StLevels Before = LevelsOf(Handle);
    EXPECT_GT(Before.m_dDry, 0.0);
    Handle.Set("DynamicFingerMask=false");
    const Bytes aWarped = Handle.Corrected(RawOf("dry"));
    ExpectLevels(Handle, Before.m_dDirt, Before.m_dDry);
    EXPECT_EQ(PixelsOf(aWarped), PixelsOf(DataBlock("dynamic/dry_warped.bmp")));
    Handle.Set("MaskIsOutput=true");
    EXPECT_EQ(Handle.Corrected(RawOf("dry")), aWarped);
}

TEST(DynamicCalibration, OfOneCaptureKnowsNothingOfTheOneBefore) {
    StScanner Handle("loop");
    const Bytes aRaw = RawOf("loop");
    const Bytes aFirst = Handle.Corrected(aRaw);
    const StLevels First = LevelsOf(Handle);
    Handle.Set("MaskIsOutput=true");
    const Bytes aMask = Handle.Corrected(aRaw);
    Handle.Set("MaskIsOutput=false");
    Handle.Corrected(Painted(aRaw, [](int x, int) { return x % 256; }));
    EXPECT_EQ(Handle.Corrected(aRaw), aFirst);
    ExpectLevels(Handle, First.m_dDirt, First.m_dDry);
    EXPECT_NE(aMask, aFirst);
}

TEST(DynamicCalibration, RunsInParallelOnDifferentHandles) {
    const Bytes aRaw = RawOf("wet");
    StScanner First("wet");
    const Bytes aExpected = First.Corrected(aRaw);
    Bytes aaOut[3];
    std::vector<std::thread> aThreads;
    for (Bytes& aOut : aaOut)
        aThreads.emplace_back([&aOut, &aRaw] {
            StScanner Handle("wet");
            aOut = Handle.Corrected(aRaw);
        });
    for (std::thread& Thread : aThreads)
        Thread.join();
    for (const Bytes& aOut : aaOut)
        EXPECT_EQ(aOut, aExpected);
}
