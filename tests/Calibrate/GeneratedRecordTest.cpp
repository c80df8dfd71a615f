// What is generated, and what of it loads: records are judged more strictly than captures.

#include "Calibrate/DotGrids.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "Tools/MemStream.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

/// The record of dots at these places, as it comes back from a stream; -600 where the grid refuses
/// them.
template <class Model>
ClCalibrateGeometricData Generated(const std::vector<ClVector>& aPlaces) {
    Model Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt(aPlaces));
    ClCalibrateGeometricData Data;
    Builder.AssociatePoints(Grid, Data.m_aActual[0]);
    Builder.BuildTarget(Data.m_aTarget, 500.0, 500.0, 0.0, 0.0);
    Data.m_nSourceWidth = 390;
    Data.m_nSourceHeight = 1052;
    Data.m_nTargetWidth = 320;
    Data.m_nTargetHeight = 480;
    Data.m_nTargetPelsX = Data.m_nTargetPelsY = 19685;
    Data.m_nPlanes = 1;
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(Data).Write(Stream);
    Stream.Seek(0, 0);
    ClCalibrateGeometricData Back;
    static_cast<ClCalibrateDataBase&>(Back).Read(Stream);
    return Back;
}

template <class Model = ClQK7>
void ExpectLoads(const std::vector<ClVector>& aPlaces) {
    const ClCalibrateGeometricData Data = Generated<Model>(aPlaces);
    EXPECT_NO_THROW(Model().ValidateCalibrationData(Data));
}

/// The pattern with the dot of a place off by shares of the pitch.
std::vector<ClVector> WithDotOff(int nColumn, int nRow, double dX, double dY) {
    std::vector<ClVector> aPlaces = PatternPlaces();
    aPlaces[PointAt(nColumn, nRow)].x += dX * cdPitchX;
    aPlaces[PointAt(nColumn, nRow)].y += dY * cdPitchY;
    return aPlaces;
}

struct StOff {
    double m_dX;
    double m_dY;
};

constexpr StOff caDirections[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, 1}};

} // namespace

TEST(GeneratedRecord, LoadsWithADotOffByLessThanThreeTenthsOfAPitch) {
    for (const StOff& Off : caDirections)
        ExpectLoads(WithDotOff(3, 5, 0.299 * Off.m_dX, 0.299 * Off.m_dY));
}

// Dots are linked and taken at up to 31 percent, records at up to 30: between the two a capture
// gives data that do not load again.
TEST(GeneratedRecord, DoesNotLoadWithADotOffByMore) {
    for (const StOff& Off : caDirections) {
        const auto Data = Generated<ClQK7>(WithDotOff(3, 5, 0.301 * Off.m_dX, 0.301 * Off.m_dY));
        EXPECT_THROWS(ClQK7().ValidateCalibrationData(Data), ClException, -39,
                      "Source data is corrupt");
    }
}

TEST(GeneratedRecord, LoadsAtEveryScaleAtWhichItIsGenerated) {
    // The outer columns are off by three times the pitch's error: 31 percent of it are reached at
    // a little over 10 percent.
    for (const double dScale : {0.90, 0.95, 1.05, 1.10})
        ExpectLoads(PatternPlaces(100.0, 150.0, cdPitchX * dScale, cdPitchY));
    for (const double dScale : {0.89, 1.11})
        EXPECT_THROWS(Generated<ClQK7>(PatternPlaces(100.0, 150.0, cdPitchX * dScale, cdPitchY)),
                      ClException, -600, "Not the expected dot count found.");
}

// In y no column is compared. Beyond these scales the rows at the ends are off by half a step, and
// two ideal points choose one dot.
TEST(GeneratedRecord, LoadsAtEveryScaleInYAtWhichItIsGenerated) {
    for (const double dScale : {0.90, 0.95, 1.05, 1.10})
        ExpectLoads(PatternPlaces(100.0, 150.0, cdPitchX, cdPitchY * dScale));
    for (const double dScale : {0.88, 1.12})
        EXPECT_THROWS(Generated<ClQK7>(PatternPlaces(100.0, 150.0, cdPitchX, cdPitchY * dScale)),
                      ClException, -600, "Not the expected dot count found.");
}

TEST(GeneratedRecord, LoadsOfACorrectedImageToo) {
    using ClHalf = ClIpCalibrateGeometricBuildRefPointsQK7Half;
    const double dPitchY = 504.743 / 25.4 * 2.0;
    for (const double dOff : {-0.205, 0.205}) { // its tolerance is 21 percent
        std::vector<ClVector> aPlaces = PatternPlaces(100.0, 150.0, cdPitchX, dPitchY);
        aPlaces[PointAt(3, 5)].x += dOff * cdPitchX;
        aPlaces[PointAt(3, 5)].y += dOff * dPitchY;
        ExpectLoads<ClHalf>(aPlaces);
    }
}
