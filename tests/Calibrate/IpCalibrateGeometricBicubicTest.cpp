// The table and what it does to a capture, against the definition.

#include "Calibrate/IpCalibrateGeometricBicubic.h"

#include "Calibrate/NaiveWarp.h"
#include "Math/ThinPlateSplines.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <memory>
#include <numeric>
#include <random>

using TestSupport::ClOpenWarp;
using TestSupport::NaiveEntry;
using TestSupport::NaiveWarped;
using TestSupport::PlausibleRecord;
using TestSupport::StRecord;
using TestSupport::StWarpEntry;

namespace {

constexpr std::array<std::int16_t, 16> canUnit = {0, 0, 0, 0, 0, 1024, 0, 0,
                                                  0, 0, 0, 0, 0, 0,    0, 0};

/// A warp for captures of this size, without a table.
struct StSized : ClOpenWarp {
    StSized(std::uint32_t nWidth, std::uint32_t nHeight) {
        m_nSourceWidth = nWidth;
        m_nSourceHeight = nHeight;
    }
};

/// A record whose actual points are its target points: the mapping is the identity.
StRecord Identity(std::uint32_t nWidth, std::uint32_t nHeight) {
    StRecord Record = PlausibleRecord(nWidth, nHeight, nWidth, nHeight);
    Record.m_aActual[0] = Record.m_aTarget;
    return Record;
}

StRecord Planes(std::uint32_t nPlanes) {
    StRecord Record = PlausibleRecord();
    Record.m_nPlanes = nPlanes;
    for (std::uint32_t p = 1; p < nPlanes; ++p)
        for (const TestSupport::StPoint& Point : Record.m_aActual[0])
            Record.m_aActual[p].push_back(
                {Point.x + 0.3f * static_cast<float>(p), Point.y - 1.7f * static_cast<float>(p)});
    return Record;
}

void Prepare(ClOpenWarp& rWarp, const StRecord& Record, ClCalibrateGeometricData& rData) {
    Fill(Record, rData);
    rWarp.m_pData = &rData;
    rWarp.Initiate();
}

void FillNoise(ClImage& rImage, unsigned int nSeed) {
    std::mt19937 Random(nSeed);
    for (std::size_t i = 0; i < rImage.SizeBytes(); ++i)
        rImage.Data()[i] = static_cast<unsigned char>(Random());
}

} // namespace

// Kernel

TEST(IpCalibrateGeometricBicubic, KernelHasTheValuesOfTheCubicWithMinusThreeQuarters) {
    const auto K = ClIpCalibrateGeometricBicubic::CubicConvolution;
    EXPECT_EQ(K(0.0), 1.0);
    EXPECT_EQ(K(0.25), 0.87890625);
    EXPECT_EQ(K(0.5), 0.59375);
    EXPECT_EQ(K(0.75), 0.26171875);
    EXPECT_EQ(K(1.0), 0.0);
    EXPECT_EQ(K(1.25), -0.10546875);
    EXPECT_EQ(K(1.5), -0.09375);
    EXPECT_EQ(K(1.75), -0.03515625);
    EXPECT_EQ(K(2.0), 0.0);
    EXPECT_EQ(K(1e300), 0.0);
}

TEST(IpCalibrateGeometricBicubic, KernelIsEvenAndItsFourTapsSumToOne) {
    const auto K = ClIpCalibrateGeometricBicubic::CubicConvolution;
    for (int i = 0; i <= 1000; ++i) {
        const double d = i / 1000.0;
        EXPECT_EQ(K(-d), K(d));
        EXPECT_EQ(K(-1.0 - d), K(1.0 + d));
        EXPECT_NEAR(K(-1.0 - d) + K(-d) + K(1.0 - d) + K(2.0 - d), 1.0, 1e-14);
    }
}

// Entries

TEST(IpCalibrateGeometricBicubic, EntryHoldsOffsetAndTruncatedProducts) {
    // Columns -96, 608, 608, -96 by rows -0.10546875, 0.87890625, 0.26171875, -0.03515625.
    const StWarpEntry Entry = StSized(10, 20).EntryAt(2.5, 3.25);
    EXPECT_EQ(Entry.m_nOffset, 2 * 12 + 1);
    EXPECT_EQ(Entry.m_anWeights,
              (std::array<std::int16_t, 16>{10, -64, -64, 10, -84, 534, 534, -84, //
                                            -25, 159, 159, -25, 3, -21, -21, 3}));
}

TEST(IpCalibrateGeometricBicubic, PositionOneTakesTheFirstColumnAndRow) {
    const StWarpEntry Entry = StSized(10, 20).EntryAt(1.0, 1.0);
    EXPECT_EQ(Entry.m_nOffset, 0);
    EXPECT_EQ(Entry.m_anWeights, canUnit);
}

TEST(IpCalibrateGeometricBicubic, PositionsBelowOneHaveNoSource) {
    const StSized Warp(10, 20);
    const double dBelow = std::nextafter(1.0, 0.0);
    EXPECT_EQ(Warp.EntryAt(dBelow, 5), StWarpEntry());
    EXPECT_EQ(Warp.EntryAt(5, dBelow), StWarpEntry());
    EXPECT_EQ(Warp.EntryAt(-1e300, 5), StWarpEntry());
}

TEST(IpCalibrateGeometricBicubic, PositionThreeFromTheEndTakesTheLastColumnAndRow) {
    const StWarpEntry Entry = StSized(10, 20).EntryAt(7.0, 17.0);
    EXPECT_EQ(Entry.m_nOffset, 16 * 12 + 6); // columns 6 to 9, rows 16 to 19
    EXPECT_EQ(Entry.m_anWeights, canUnit);
}

TEST(IpCalibrateGeometricBicubic, PositionsBeyondThreeFromTheEndHaveNoSource) {
    const StSized Warp(10, 20);
    EXPECT_EQ(Warp.EntryAt(std::nextafter(7.0, 8.0), 5), StWarpEntry());
    EXPECT_EQ(Warp.EntryAt(5, std::nextafter(17.0, 18.0)), StWarpEntry());
    EXPECT_EQ(Warp.EntryAt(1e300, 5), StWarpEntry());
}

TEST(IpCalibrateGeometricBicubic, PositionsThatAreNoNumbersHaveNoSource) {
    const StSized Warp(10, 20);
    for (const double d :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(Warp.EntryAt(d, 5), StWarpEntry());
        EXPECT_EQ(Warp.EntryAt(5, d), StWarpEntry());
    }
}

TEST(IpCalibrateGeometricBicubic, FractionIsThatOfThe32BitFloat) {
    const StSized Warp(1000, 1000);
    for (const double d : {500.0 + 1e-9, 500.0 - 1e-9}) {
        EXPECT_EQ(Warp.EntryAt(d, 500).m_nOffset, 499 * 1000 + 499);
        EXPECT_EQ(Warp.EntryAt(d, 500).m_anWeights, canUnit);
        EXPECT_EQ(Warp.EntryAt(500, d), Warp.EntryAt(500, 500));
    }
}

TEST(IpCalibrateGeometricBicubic, CapturesBelowFourPixelsHaveNoSource) {
    EXPECT_EQ(StSized(4, 4).EntryAt(1, 1).m_nOffset, 0);
    EXPECT_EQ(StSized(3, 9).EntryAt(1, 1), StWarpEntry());
    EXPECT_EQ(StSized(9, 3).EntryAt(1, 1), StWarpEntry());
    EXPECT_EQ(StSized(0, 0).EntryAt(1, 1), StWarpEntry());
}

TEST(IpCalibrateGeometricBicubic, OffsetsThatNoNumberHoldsHaveNoSource) {
    const StSized Warp(0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(Warp.EntryAt(1e6, 1), NaiveEntry(1e6, 1, 2000000, 10));
    EXPECT_EQ(Warp.EntryAt(5, 2), StWarpEntry()); // the second line begins at 2^32
    EXPECT_EQ(Warp.EntryAt(4294967293.0, 1), StWarpEntry());
    EXPECT_EQ(StSized(65536, 65536).EntryAt(65530, 32768).m_nOffset, 32767 * 65536 + 65529);
    EXPECT_EQ(StSized(65536, 65536).EntryAt(65530, 32769), StWarpEntry());
}

TEST(IpCalibrateGeometricBicubic, EntriesAreThoseOfTheDefinition) {
    std::mt19937 Random(5);
    std::uniform_real_distribution<double> Position(-2.0, 40.0);
    const StSized Warp(37, 35);
    for (int i = 0; i < 20000; ++i) {
        const double sx = Position(Random);
        const double sy = Position(Random);
        EXPECT_EQ(Warp.EntryAt(sx, sy), NaiveEntry(sx, sy, 37, 35)) << sx << ", " << sy;
    }
}

// Table

TEST(IpCalibrateGeometricBicubic, TableHasAnEntryPerPixelAndPlaneInLines) {
    for (std::uint32_t nPlanes = 1; nPlanes <= 3; ++nPlanes) {
        const StRecord Record = Planes(nPlanes);
        ClCalibrateGeometricData Data;
        ClOpenWarp Warp;
        Prepare(Warp, Record, Data);
        TpThinPlateSplines<double> aSplines[3];
        for (std::uint32_t p = 0; p < nPlanes; ++p)
            aSplines[p].Setup(75, Data.m_aTarget.Data(), Data.m_aActual[p].Data());

        ASSERT_EQ(Warp.TableSize(), 40u * 60u * 36u * nPlanes);
        std::size_t nEntry = 0;
        std::size_t nInside = 0;
        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 40; ++x)
                for (std::uint32_t p = 0; p < nPlanes; ++p, ++nEntry) {
                    double sx = 0;
                    double sy = 0;
                    aSplines[p].Transform(x, y, &sx, &sy);
                    const StWarpEntry Expected = NaiveEntry(sx, sy, 48, 132);
                    nInside += Expected.m_nOffset >= 0;
                    ASSERT_EQ(Warp.Entry(nEntry), Expected) << x << ", " << y << ", " << p;
                }
        EXPECT_GT(nInside, nEntry * 8 / 10); // the comparison is about something
        EXPECT_LT(nInside, nEntry);
    }
}

// Captures

TEST(IpCalibrateGeometricBicubic, IdentityReproducesTheCapture) {
    ClCalibrateGeometricData Data;
    ClOpenWarp Warp;
    Prepare(Warp, Identity(41, 61), Data);
    ClImage In(41, 61, 1, 0, 0);
    ClImage Out;
    FillNoise(In, 1);
    Warp.m_pInImage = &In;
    Warp.m_pOutImage = &Out;
    Warp.Calibrate();

    for (int y = 2; y <= 57; ++y)
        for (int x = 2; x <= 37; ++x) {
            EXPECT_EQ(Warp.Entry(static_cast<std::size_t>(y * 41 + x)).m_anWeights, canUnit);
            EXPECT_EQ(Out.LineData(y)[x], In.LineData(y)[x]) << x << ", " << y;
        }
    for (int y = 0; y < 61; ++y) {
        EXPECT_EQ(Out.LineData(y)[0], 255);
        EXPECT_EQ(Out.LineData(y)[39], 255);
        EXPECT_EQ(Out.LineData(y)[40], 255);
    }
}

TEST(IpCalibrateGeometricBicubic, WeightsThatSumToMoreThanOneClampInWhite) {
    const StSized Warp(10, 10);
    int nAbove = 0;
    for (int i = 0; i < 64; ++i)
        for (int j = 0; j < 64; ++j) {
            const StWarpEntry Entry = Warp.EntryAt(2 + i / 64.0, 3 + j / 64.0);
            int nSum = 0;
            for (const std::int16_t nWeight : Entry.m_anWeights)
                nSum += nWeight;
            nAbove += nSum > 1024;
        }
    EXPECT_GT(nAbove, 0);

    ClCalibrateGeometricData Data;
    ClOpenWarp Bent;
    Prepare(Bent, PlausibleRecord(), Data);
    ClImage In(48, 132, 1, 0, 0);
    In = static_cast<unsigned char>(255);
    ClImage Out;
    Bent.m_pInImage = &In;
    Bent.m_pOutImage = &Out;
    Bent.Calibrate();
    int nClamped = 0;
    for (std::size_t nEntry = 0; nEntry < 40 * 60; ++nEntry) {
        const StWarpEntry Entry = Bent.Entry(nEntry);
        const int nSum = std::accumulate(Entry.m_anWeights.begin(), Entry.m_anWeights.end(), 0);
        const int nValue = Out.LineData(nEntry / 40)[nEntry % 40];
        if (nSum > 1024) // 256 or more, were it not for the clamp
            EXPECT_EQ(nValue, 255) << nEntry;
        else
            EXPECT_GE(nValue, 250) << nEntry;
        nClamped += nSum > 1024;
    }
    EXPECT_GT(nClamped, 0);
}

TEST(IpCalibrateGeometricBicubic, PixelsAreWeightedSumsAndTheBackground) {
    for (int nPlanes = 1; nPlanes <= 3; ++nPlanes) {
        StRecord Record = Planes(static_cast<std::uint32_t>(nPlanes));
        Record.m_nBackground = 99;
        ClCalibrateGeometricData Data;
        ClOpenWarp Warp;
        Prepare(Warp, Record, Data);
        ClImage In(48, 132, nPlanes, 0, 0);
        FillNoise(In, 3);
        ClImage Out;
        Warp.m_pInImage = &In;
        Warp.m_pOutImage = &Out;
        Warp.Calibrate();

        ASSERT_EQ(Out.Planes(), nPlanes);
        const int nLine = (nPlanes * 48 + 3) & ~3;
        std::size_t nEntry = 0;
        for (int y = 0; y < 60; ++y)
            for (int i = 0; i < 40 * nPlanes; ++i, ++nEntry) {
                const StWarpEntry Entry = Warp.Entry(nEntry);
                const int nExpected = NaiveWarped(Entry, In.Data(), nLine, nPlanes, 99);
                ASSERT_EQ(Out.LineData(y)[i], nExpected) << nPlanes << ": " << i << ", " << y;
            }
    }
}

TEST(IpCalibrateGeometricBicubic, LinePaddingIsNotWritten) {
    ClCalibrateGeometricData Data;
    ClOpenWarp Warp;
    Prepare(Warp, Identity(41, 61), Data);
    ClImage In(41, 61, 1, 0, 0);
    ClImage Out(41, 61, 1, 0, 0);
    In = static_cast<unsigned char>(10);
    Out = static_cast<unsigned char>(77);
    Warp.m_pInImage = &In;
    Warp.m_pOutImage = &Out;
    Warp.Calibrate();
    for (int y = 0; y < 61; ++y)
        for (int x = 41; x < 44; ++x)
            EXPECT_EQ(Out.LineData(y)[x], 77);
}

// The class

TEST(IpCalibrateGeometricBicubic, TellsItsNameAndCreatesItsLike) {
    ClIpCalibrateGeometricBicubic Warp;
    EXPECT_STREQ(Warp.Name(), "ClIpCalibrateGeometricBicubic");
    const std::unique_ptr<ClProcessorBase> pLike(Warp.Create());
    EXPECT_STREQ(pLike->Name(), "ClIpCalibrateGeometricBicubic");
    TestSupport::FailEachAllocation([&] { delete Warp.Create(); });
}

TEST(IpCalibrateGeometricBicubic, PreparationSurvivesMissingMemory) {
    ClCalibrateGeometricData Data;
    StRecord Record = PlausibleRecord();
    Record.m_nTargetWidth = Record.m_nTargetHeight = 3;
    Fill(Record, Data);
    TestSupport::FailEachAllocation([&] {
        ClOpenWarp Warp;
        Warp.m_pData = &Data;
        Warp.Initiate();
    });
}
