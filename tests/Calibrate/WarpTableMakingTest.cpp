// Tables made of the field against tables made of the spline alone.

#include "Calibrate/WarpTableMaking.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Math/SplineField.h"
#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

using TestSupport::AtEveryLevel;
using Warp::EDecision;

namespace {

using Points = std::vector<ClVector>;
using TableSpline = TpThinPlateSplines<double>;
using Table = std::vector<unsigned char>;

void Solve(TableSpline& rSpline, const Points& aOrigin, const Points& aTarget) {
    rSpline.Setup(static_cast<long>(aOrigin.size()), aOrigin.data(), aTarget.data());
}

struct StSizes : StWarp {
    StSizes(std::uint32_t nSourceWidth, std::uint32_t nSourceHeight, std::uint32_t nTargetWidth,
            std::uint32_t nTargetHeight, std::uint32_t nPlanes = 1) {
        m_nSourceWidth = nSourceWidth;
        m_nSourceHeight = nSourceHeight;
        m_nTargetWidth = nTargetWidth;
        m_nTargetHeight = nTargetHeight;
        m_nPlanes = nPlanes;
        m_nEntrySize = Warp::cnEntrySize;
    }
};

struct StMade {
    Table m_aTable;
    std::uint64_t m_nBySpline;
};

StMade Make(const StSizes& Sizes, const TableSpline* pSplines,
            EDecision eDecision = EDecision::FieldWhereSure) {
    StMade Made{Table(Sizes.TableBytes(), 0xEE), 0};
    Made.m_nBySpline = Warp::MakeTable(Sizes, pSplines, Made.m_aTable.data(), eDecision);
    return Made;
}

/// Returns the share of entries that the field did not decide.
double ExpectSame(const StSizes& Sizes, const TableSpline* pSplines) {
    const std::uint64_t nEntries = Sizes.TableBytes() / Warp::cnEntrySize;
    const StMade Reference = Make(Sizes, pSplines, EDecision::SplineAlways);
    EXPECT_EQ(Reference.m_nBySpline, nEntries);
    double dShare = 0.0;
    AtEveryLevel([&] {
        const StMade Made = Make(Sizes, pSplines);
        EXPECT_TRUE(Made.m_aTable == Reference.m_aTable);
        dShare = static_cast<double>(Made.m_nBySpline) / static_cast<double>(nEntries);
    });
    return dShare;
}

Points RandomPoints(std::mt19937& rRandom, int nCount, double dWidth, double dHeight) {
    std::uniform_real_distribution<double> Part(0.0, 1.0);
    Points aPoints;
    for (int i = 0; i < nCount; ++i) {
        const double x = Part(rRandom) * dWidth;
        aPoints.emplace_back(x, Part(rRandom) * dHeight);
    }
    return aPoints;
}

Points Shifted(Points aPoints, double dX, double dY) {
    for (ClVector& v : aPoints)
        v = v + ClVector(dX, dY);
    return aPoints;
}

const Points caSquare = {{0.0, 0.0}, {40.0, 0.0}, {0.0, 60.0}, {40.0, 60.0}, {17.0, 33.0}};

/// The middle of the two floats around a position.
double MiddleOfFloats(double dPosition) {
    const float f = static_cast<float>(dPosition);
    return (static_cast<double>(f) + static_cast<double>(std::nextafter(f, 1e30F))) / 2.0;
}

} // namespace

TEST(WarpTableMaking, GivesTheTablesOfTheSplinesForScanners) {
    for (const char* szScanner : {"900", "901", "902"}) {
        const auto aBlock =
            TestSupport::DataFile("records/scanner" + std::string(szScanner) + "_layout6.cal");
        ClMemStream Stream(aBlock.data(), aBlock.size());
        ClCalibrateGeometricData Data;
        static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
        TableSpline spline;
        spline.Setup(75, Data.m_aTarget.Data(), Data.m_aActual[0].Data());
        const StSizes Sizes(Data.m_nSourceWidth, Data.m_nSourceHeight, Data.m_nTargetWidth,
                            Data.m_nTargetHeight);
        EXPECT_LT(ExpectSame(Sizes, &spline), 0.005) << szScanner;
    }
}

TEST(WarpTableMaking, GivesTheTablesOfTheSplinesForSeveralPlanesAndAnySize) {
    std::mt19937 Random(1);
    for (std::uint32_t nPlanes = 1; nPlanes <= 3; ++nPlanes) {
        TableSpline aSplines[3];
        for (TableSpline& rSpline : aSplines)
            Solve(rSpline, RandomPoints(Random, 12, 50.0, 50.0),
                  RandomPoints(Random, 12, 90.0, 70.0));
        for (const std::uint32_t nWidth : {0u, 1u, 15u, 16u, 17u, 319u, 321u})
            for (const std::uint32_t nHeight : {0u, 1u, 16u, 35u})
                ExpectSame(StSizes(91, 77, nWidth, nHeight, nPlanes), aSplines);
    }
}

// Clusters, lines and distances that make weights large and the field worth little.
TEST(WarpTableMaking, GivesTheTablesOfTheSplinesForPointsAnywhere) {
    std::mt19937 Random(2);
    for (const double dExtent : {1e-6, 1e-3, 1.0, 30.0, 1e4, 1e7}) {
        Points aOrigin = RandomPoints(Random, 15, 60.0, 60.0);
        for (const ClVector& v : RandomPoints(Random, 15, dExtent, dExtent))
            aOrigin.push_back(v + ClVector(20.0, 20.0));
        TableSpline spline;
        try {
            Solve(spline, aOrigin, RandomPoints(Random, 30, 90.0, 70.0));
        } catch (const ClException& e) {
            EXPECT_EQ(e.Number(), -600);
            continue;
        }
        ExpectSame(StSizes(91, 77, 64, 48), &spline);
    }
}

TEST(WarpTableMaking, AsksTheSplineAtEveryMiddleOfTwoFloats) {
    TableSpline spline;
    Solve(spline, caSquare, Shifted(caSquare, 300.0 + 0x1p-16, 200.0));
    EXPECT_EQ(ExpectSame(StSizes(600, 600, 40, 60), &spline), 1.0);
}

TEST(WarpTableMaking, AsksTheSplineAtTheLimits) {
    // Column 1 of the identity lies at the lower, column 37 at the upper limit, or just beside
    // them.
    TableSpline spline;
    Solve(spline, caSquare, caSquare);
    EXPECT_GE(ExpectSame(StSizes(40, 1000, 41, 60), &spline), 2.0 / 41);
}

// One position after the other is moved into the middle of two floats, or to a limit, as exactly as
// doubles allow: what the field gives there lies on either side by chance.
TEST(WarpTableMaking, GivesTheTablesOfTheSplinesAtPositionsOnTheEdge) {
    std::mt19937 Random(3);
    std::uniform_real_distribution<double> Shift(-0.03, 0.03);
    Points aOrigin;
    Points aTarget;
    for (int i = 0; i < 24; ++i) { // bent a little, so that the field is worth something
        aOrigin.emplace_back(10.0 * (i % 4) + 5.0, 10.0 * (i / 4) + 5.0);
        aTarget.emplace_back(4.0 * aOrigin.back().x + Shift(Random),
                             5.0 * aOrigin.back().y + Shift(Random));
    }
    const StSizes Sizes(190, 290, 40, 60);
    TableSpline plain;
    Solve(plain, aOrigin, aTarget);
    std::uint64_t nBySpline = 0;
    for (int i = 0; i < 60; ++i) {
        double sx = 0.0;
        double sy = 0.0;
        plain.Transform(static_cast<double>(Random() % 40), static_cast<double>(Random() % 60), &sx,
                        &sy);
        const double dX = i % 3 == 0 ? 1.0 : i % 3 == 1 ? 187.0 : MiddleOfFloats(sx);
        TableSpline spline;
        const double dY = i % 3 == 2 ? MiddleOfFloats(sy) : sy;
        Solve(spline, aOrigin, Shifted(aTarget, dX - sx, dY - sy));
        const StMade Made = Make(Sizes, &spline);
        nBySpline += Made.m_nBySpline;
        ASSERT_TRUE(Made.m_aTable == Make(Sizes, &spline, EDecision::SplineAlways).m_aTable) << i;
    }
    EXPECT_GE(nBySpline, 60u); // each edge was seen
    EXPECT_LT(nBySpline, 60u * 2400 / 10);
}

TEST(WarpTableMaking, AsksTheSplineWhereNumbersEnd) {
    Points aTarget = caSquare;
    aTarget[1].y = std::nan("");
    TableSpline spline;
    Solve(spline, caSquare, aTarget);
    EXPECT_EQ(ExpectSame(StSizes(90, 90, 40, 60), &spline), 1.0);
}

TEST(WarpTableMaking, LeaksNothingWithoutMemory) {
    TableSpline spline;
    Solve(spline, caSquare, caSquare);
    const StSizes Sizes(90, 90, 5, 5);
    Table aTable(Sizes.TableBytes());
    TestSupport::FailEachAllocation([&] { Warp::MakeTable(Sizes, &spline, aTable.data()); });
}
