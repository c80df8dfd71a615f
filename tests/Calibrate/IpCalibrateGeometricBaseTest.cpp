// Preparation, the tests of a run in their order, and the trace.

#include "Calibrate/OpenWarp.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/LogCapture.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <string>
#include <vector>

using TestSupport::ClLogCapture;
using TestSupport::ClOpenWarp;
using TestSupport::PlausibleRecord;
using TestSupport::StRecord;

namespace {

constexpr const char* cszSameImage = "InImage can't be the out image";
constexpr const char* cszNotInitialized = "Calibrate is not initialized";

/// A prepared warp with a capture of the right size.
struct StReady {
    StReady() : m_In(48, 132, 1, 0, 0) {
        Fill(PlausibleRecord(), m_Data);
        m_Warp.m_pData = &m_Data;
        m_Warp.m_pInImage = &m_In;
        m_Warp.m_pOutImage = &m_Out;
        m_Warp.Initiate();
    }

    ClCalibrateGeometricData m_Data;
    ClImage m_In;
    ClImage m_Out;
    ClOpenWarp m_Warp;
};

} // namespace

// State

TEST(IpCalibrateGeometricBase, StartsUnset) {
    const ClOpenWarp Warp;
    EXPECT_EQ(Warp.m_nSourceWidth + Warp.m_nSourceHeight + Warp.m_nTargetWidth +
                  Warp.m_nTargetHeight + Warp.m_nTargetPelsX + Warp.m_nTargetPelsY + Warp.m_nPlanes,
              0u);
    EXPECT_EQ(Warp.m_nBackground, 0);
    EXPECT_FALSE(Warp.HasTable());
    EXPECT_EQ(Warp.m_pData, nullptr);
    EXPECT_EQ(Warp.m_pInImage, nullptr);
    EXPECT_EQ(Warp.m_pOutImage, nullptr);
}

TEST(IpCalibrateGeometricBase, InitiateTakesTheNumbersOfTheRecord) {
    const StReady Ready;
    EXPECT_EQ(Ready.m_Warp.m_nSourceWidth, 48u);
    EXPECT_EQ(Ready.m_Warp.m_nSourceHeight, 132u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetWidth, 40u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetHeight, 60u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetPelsX, 2461u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetPelsY, 2461u);
    EXPECT_EQ(Ready.m_Warp.m_nPlanes, 1u);
    EXPECT_EQ(Ready.m_Warp.m_nBackground, 255);
    EXPECT_EQ(Ready.m_Warp.m_nEntrySize, 36u);
    EXPECT_TRUE(Ready.m_Warp.HasTable());
}

TEST(IpCalibrateGeometricBase, ResetDropsNumbersAndTableAndKeepsTheEntrySize) {
    StReady Ready;
    Ready.m_Warp.Reset();
    EXPECT_EQ(Ready.m_Warp.m_nSourceWidth, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nSourceHeight, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetWidth, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetHeight, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetPelsX, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nTargetPelsY, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nPlanes, 0u);
    EXPECT_EQ(Ready.m_Warp.m_nBackground, 0);
    EXPECT_FALSE(Ready.m_Warp.HasTable());
    EXPECT_EQ(Ready.m_Warp.m_nEntrySize, 36u);
    EXPECT_EQ(Ready.m_Warp.m_pData, &Ready.m_Data);
}

TEST(IpCalibrateGeometricBase, InitiateKeepsWhatIsThere) {
    StReady Ready;
    const unsigned char* pTable = Ready.m_Warp.m_pTable.get();
    Ready.m_Data.m_nTargetWidth = 10;
    Ready.m_Warp.Initiate();
    EXPECT_EQ(Ready.m_Warp.m_nTargetWidth, 40u);
    EXPECT_EQ(Ready.m_Warp.m_pTable.get(), pTable);

    Ready.m_Warp.m_pData = nullptr;
    EXPECT_NO_THROW(Ready.m_Warp.Initiate());
    Ready.m_Warp.m_pData = &Ready.m_Data;
    Ready.m_Warp.Reset();
    Ready.m_Warp.Initiate();
    EXPECT_EQ(Ready.m_Warp.m_nTargetWidth, 10u);
}

TEST(IpCalibrateGeometricBase, InitiateWantsData) {
    ClOpenWarp Warp;
    EXPECT_THROWS(Warp.Initiate(), ClException, -37, "The calibrations data is not set");
    EXPECT_THROWS(Warp.Apply(), ClException, -37, "The calibrations data is not set");
}

void ExpectNothingPrepared(const ClOpenWarp& Warp) {
    EXPECT_FALSE(Warp.HasTable());
    EXPECT_EQ(Warp.m_nSourceWidth, 0u);
    EXPECT_EQ(Warp.m_nSourceHeight, 0u);
    EXPECT_EQ(Warp.m_nTargetWidth, 0u);
    EXPECT_EQ(Warp.m_nTargetHeight, 0u);
    EXPECT_EQ(Warp.m_nTargetPelsX, 0u);
    EXPECT_EQ(Warp.m_nTargetPelsY, 0u);
    EXPECT_EQ(Warp.m_nPlanes, 0u);
    EXPECT_EQ(Warp.m_nBackground, 0);
}

TEST(IpCalibrateGeometricBase, FailuresOfTheSplinesPassAndLeaveNothing) {
    ClCalibrateGeometricData Data;
    StRecord Record = PlausibleRecord();
    Record.m_aTarget[1] = Record.m_aTarget[0]; // one dot at two places
    Fill(Record, Data);
    ClOpenWarp Warp;
    Warp.m_pData = &Data;
    for (int nTry = 0; nTry < 2; ++nTry) {
        EXPECT_THROWS(Warp.Initiate(), ClException, -600,
                      "Generation of Geometric Calibration data not possible, simgularity "
                      "detected, contact Tessarin");
        ExpectNothingPrepared(Warp);
    }

    Fill(PlausibleRecord(), Data);
    Warp.Initiate();
    EXPECT_TRUE(Warp.HasTable());
}

TEST(IpCalibrateGeometricBase, MissingMemoryLeavesNothing) {
    ClCalibrateGeometricData Data;
    Fill(PlausibleRecord(), Data);
    ClOpenWarp Warp;
    Warp.m_pData = &Data;
    TestSupport::FailEachAllocation([&] {
        ExpectNothingPrepared(Warp);
        Warp.Initiate();
    });
    EXPECT_TRUE(Warp.HasTable());
}

TEST(IpCalibrateGeometricBase, RefusesRecordsThatNoTableFits) {
    ClCalibrateGeometricData Data;
    ClOpenWarp Warp;
    Warp.m_pData = &Data;
    for (const std::uint32_t nWidth : {16385u, 0xFFFFFFFFu}) {
        Fill(PlausibleRecord(), Data);
        Data.m_nTargetWidth = nWidth;
        EXPECT_THROWS(Warp.Initiate(), ClExTessarin, -39,
                      "The input is corrupt; it can be a memoryblock or a file.");
    }
    Fill(PlausibleRecord(), Data);
    Data.m_nPlanes = 4;
    EXPECT_THROWS(Warp.Initiate(), ClExTessarin, -39,
                  "The input is corrupt; it can be a memoryblock or a file.");
    Data.m_nPlanes = 2; // the second list is empty
    EXPECT_THROWS(Warp.Initiate(), ClExTessarin, -39,
                  "The input is corrupt; it can be a memoryblock or a file.");
}

// Runs

TEST(IpCalibrateGeometricBase, ApplyPreparesOnceAndCorrects) {
    ClCalibrateGeometricData Data;
    Fill(PlausibleRecord(), Data);
    ClImage In(48, 132, 1, 7, 8);
    ClImage Out;
    ClOpenWarp Warp;
    Warp.m_pData = &Data;
    Warp.m_pInImage = &In;
    Warp.m_pOutImage = &Out;
    EXPECT_EQ(Warp.Apply(), 0);
    const unsigned char* pTable = Warp.m_pTable.get();
    EXPECT_EQ(Out.Width(), 40);
    EXPECT_EQ(Out.Height(), 60);
    EXPECT_EQ(Out.Planes(), 1);
    EXPECT_EQ(Out.PelsX(), 2461);
    EXPECT_EQ(Out.PelsY(), 2461);
    EXPECT_EQ(Out.DataType(), ClImage::eUInt8);
    EXPECT_EQ(Warp.Apply(), 0);
    EXPECT_EQ(Warp.m_pTable.get(), pTable);
}

TEST(IpCalibrateGeometricBase, ApplyWithoutImagesOnlyPrepares) {
    ClCalibrateGeometricData Data;
    Fill(PlausibleRecord(), Data);
    ClOpenWarp Warp;
    Warp.m_pData = &Data;
    EXPECT_EQ(Warp.Apply(), 0);
    EXPECT_TRUE(Warp.HasTable());
}

TEST(IpCalibrateGeometricBase, CalibrateWithoutInputDoesNothing) {
    ClOpenWarp Unset;
    ClImage Out(3, 3, 1, 5, 6);
    Unset.m_pOutImage = &Out;
    EXPECT_NO_THROW(Unset.Calibrate());
    StReady Ready;
    Ready.m_Warp.m_pInImage = nullptr;
    Ready.m_Warp.m_pOutImage = &Out;
    Ready.m_Warp.Calibrate();
    EXPECT_EQ(Out.Width(), 3);
    EXPECT_EQ(Out.PelsX(), 5);
}

TEST(IpCalibrateGeometricBase, CalibrateWantsSizes) {
    for (const int nSide : {0, 1, 2, 3}) {
        StReady Ready;
        std::uint32_t* const apnSides[] = {
            &Ready.m_Warp.m_nSourceWidth, &Ready.m_Warp.m_nSourceHeight,
            &Ready.m_Warp.m_nTargetWidth, &Ready.m_Warp.m_nTargetHeight};
        *apnSides[nSide] = 0;
        EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -2, cszNotInitialized);
    }
}

TEST(IpCalibrateGeometricBase, CalibrateRefusesOtherSizesWithTheTextAboutTheOutImage) {
    StReady Ready;
    for (const auto& [nWidth, nHeight] : {std::pair(47, 132), {49, 132}, {48, 131}, {132, 48}}) {
        Ready.m_In.NewWithType(ClImage::eUInt8, nWidth, nHeight, 1, 0, 0);
        EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -14, cszSameImage);
    }
    EXPECT_EQ(Ready.m_Out.Width(), 0);
}

TEST(IpCalibrateGeometricBase, CalibrateRefusesAnotherPlaneCountAsAnotherSize) {
    StReady Ready;
    for (const int nPlanes : {2, 3, 4}) {
        Ready.m_In.NewWithType(ClImage::eUInt8, 48, 132, nPlanes, 0, 0);
        EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -14, cszSameImage);
    }
}

TEST(IpCalibrateGeometricBase, CalibrateRefusesToWorkInPlace) {
    StReady Ready;
    Ready.m_Warp.m_pOutImage = &Ready.m_In;
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -35, cszSameImage);
}

TEST(IpCalibrateGeometricBase, CalibrateWantsATable) {
    StReady Ready;
    Ready.m_Warp.m_pTable.reset();
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -2, cszNotInitialized);
    EXPECT_EQ(Ready.m_Out.Width(), 40); // the output comes first
}

TEST(IpCalibrateGeometricBase, CalibrateTestsSizesThenTheInputThenTheTable) {
    StReady Ready;
    Ready.m_Warp.m_pTable.reset();
    Ready.m_Warp.m_pOutImage = &Ready.m_In;
    Ready.m_In.NewWithType(ClImage::eUInt8, 5, 5, 1, 0, 0);
    Ready.m_Warp.m_nTargetHeight = 0;
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -2, cszNotInitialized);
    Ready.m_Warp.m_nTargetHeight = 60;
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -14, "InImage can't be the out image");
    Ready.m_In.NewWithType(ClImage::eUInt8, 48, 132, 1, 0, 0);
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -35, "InImage can't be the out image");
    Ready.m_Warp.m_pOutImage = &Ready.m_Out;
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -2, cszNotInitialized);
}

TEST(IpCalibrateGeometricBase, CalibrateWantsAnOutputAnd8Bits) {
    StReady Ready;
    Ready.m_Warp.m_pOutImage = nullptr;
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    Ready.m_Warp.m_pOutImage = &Ready.m_Out;
    Ready.m_In.NewWithType(ClImage::eInt16, 48, 132, 1, 0, 0);
    EXPECT_THROWS(Ready.m_Warp.Calibrate(), ClException, -101,
                  "Image Type is not the assigned type");
}

TEST(IpCalibrateGeometricBase, CalibrateKeepsAnOutputOfTheRightSize) {
    StReady Ready;
    Ready.m_Out.NewWithType(ClImage::eUInt8, 40, 60, 1, 1, 2);
    Ready.m_Out.SetAttribute(5);
    Ready.m_Out.SetContent(ClImage::eUnknown);
    const unsigned char* pPixels = Ready.m_Out.Data();
    Ready.m_Warp.Calibrate();
    EXPECT_EQ(Ready.m_Out.Data(), pPixels);
    EXPECT_EQ(Ready.m_Out.PelsX(), 2461);
    EXPECT_EQ(Ready.m_Out.PelsY(), 2461);
    EXPECT_EQ(Ready.m_Out.Content(), ClImage::eUnknown); // nothing else was touched
}

TEST(IpCalibrateGeometricBase, CalibrateRenewsAnyOtherOutput) {
    StReady Ready;
    Ready.m_Out.NewWithType(ClImage::eUInt8, 40, 61, 1, 0, 0);
    Ready.m_Warp.Calibrate();
    EXPECT_EQ(Ready.m_Out.Height(), 60);
    Ready.m_Out.NewWithType(ClImage::eUInt8, 40, 60, 3, 0, 0);
    Ready.m_Warp.Calibrate();
    EXPECT_EQ(Ready.m_Out.Planes(), 1);
    Ready.m_Out.NewWithType(ClImage::eDouble64, 40, 60, 1, 0, 0);
    Ready.m_Warp.Calibrate();
    EXPECT_EQ(Ready.m_Out.DataType(), ClImage::eUInt8);
}

// Trace

TEST(IpCalibrateGeometricBase, TracesPreparationAndRun) {
    StReady Ready;
    Ready.m_Warp.Reset();
    const ClLogCapture Log;
    Ready.m_Warp.Apply();
    EXPECT_EQ(Log.Texts(7),
              (std::vector<std::string>{"ClIpCalibrateBase::Process() Enter",
                                        "ClIpCalibrateGeometricBase::Initiate() Enter",
                                        "ClIpCalibrateGeometricBicubic::InitiateParams() Enter",
                                        "ClIpCalibrateGeometricBicubic::InitiateParams() Leaving",
                                        "ClIpCalibrateGeometricBase::Initiate() Leaving",
                                        "ClIpCalibrateGeometricBase::Calibrate() Enter",
                                        "ClIpCalibrateGeometricBicubic::CalibrateGeo() Enter",
                                        "ClIpCalibrateGeometricBicubic::CalibrateGeo() Leaving",
                                        "ClIpCalibrateGeometricBase::Calibrate() Leaving",
                                        "ClIpCalibrateBase::Process() Leaving"}));
    EXPECT_EQ(Log.Texts(7).size(), Log.Lines().size());
}

TEST(IpCalibrateGeometricBase, TracesResetStoreAndLoad) {
    StReady Ready;
    ClMemStream Stream;
    const ClLogCapture Log;
    Ready.m_Warp.Store(Stream);
    Stream.Seek(0, 0);
    Ready.m_Warp.Load(Stream);
    Ready.m_Warp.Reset();
    EXPECT_EQ(Log.Texts(7),
              (std::vector<std::string>{"ClIpCalibrateGeometricBase::Store() Enter",
                                        "ClIpCalibrateGeometricBase::Store() Leaving",
                                        "ClIpCalibrateGeometricBase::Load() Enter",
                                        "ClIpCalibrateGeometricBase::Load() Leaving",
                                        "ClIpCalibrateGeometricBase::Reset() Enter",
                                        "ClIpCalibrateGeometricBase::Reset() Leaving"}));
}
