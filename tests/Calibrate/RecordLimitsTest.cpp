#include "Calibrate/RecordLimits.h"

#include "support/LogCapture.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <limits>
#include <string>

using TestSupport::ClLogCapture;
using TestSupport::PlausibleRecord;
using TestSupport::StRecord;

namespace {

constexpr float cfNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float cfInfinity = std::numeric_limits<float>::infinity();

void Check(const StRecord& Record) {
    ClCalibrateGeometricData Data;
    Fill(Record, Data);
    RecordLimits::CheckTarget(Data);
    RecordLimits::CheckSource(Data);
}

void ExpectTargetRefused(const StRecord& Record, const char* szWhat) {
    SCOPED_TRACE(szWhat);
    const ClLogCapture Log;
    EXPECT_THROWS(Check(Record), ClException, -39, "Target data is corrupt");
    EXPECT_TRUE(Log.Contains("calibration data (target) corrupt"));
}

void ExpectSourceRefused(const StRecord& Record, const char* szWhat) {
    SCOPED_TRACE(szWhat);
    const ClLogCapture Log;
    EXPECT_THROWS(Check(Record), ClException, -39, "Source data is corrupt");
    EXPECT_TRUE(Log.Contains("calibration data (source) corrupt"));
}

StRecord Sized(std::uint32_t nWidth, std::uint32_t nHeight, std::uint32_t nPlanes = 1) {
    StRecord Record = PlausibleRecord();
    Record.m_nTargetWidth = nWidth;
    Record.m_nTargetHeight = nHeight;
    Record.m_nPlanes = nPlanes;
    for (std::uint32_t p = 1; p < nPlanes; ++p)
        Record.m_aActual[p] = Record.m_aActual[0];
    return Record;
}

} // namespace

TEST(RecordLimits, AcceptARecordOfThePattern) {
    const ClLogCapture Log;
    EXPECT_NO_THROW(Check(PlausibleRecord()));
    EXPECT_NO_THROW(Check(Sized(40, 60, 3)));
    EXPECT_TRUE(Log.Lines().empty());
}

TEST(RecordLimits, WantExactly75TargetPoints) {
    for (const std::size_t nCount : {0, 1, 74, 76, 150}) {
        StRecord Record = PlausibleRecord();
        Record.m_aTarget.resize(nCount, {1, 1});
        ExpectTargetRefused(Record, std::to_string(nCount).c_str());
        Record.m_aActual[0].resize(nCount, {1, 1});
        ExpectTargetRefused(Record, "equal counts");
    }
}

TEST(RecordLimits, WantFiniteTargetPoints) {
    for (const float f : {cfNaN, cfInfinity, -cfInfinity})
        for (const std::size_t nPoint : {0, 37, 74}) {
            StRecord Record = PlausibleRecord();
            Record.m_aTarget[nPoint].x = f;
            ExpectTargetRefused(Record, "x");
            Record = PlausibleRecord();
            Record.m_aTarget[nPoint].y = f;
            ExpectTargetRefused(Record, "y");
        }
}

TEST(RecordLimits, WantAsManyActualPointsInEveryPlane) {
    for (std::uint32_t nPlane = 0; nPlane < 3; ++nPlane)
        for (const std::size_t nCount : {0, 74, 76}) {
            StRecord Record = Sized(40, 60, 3);
            Record.m_aActual[nPlane].resize(nCount, {1, 1});
            EXPECT_THROWS(Check(Record), ClException, -39,
                          "Target and Source arrays must have same size!");
        }
}

TEST(RecordLimits, WantActualPointsOfARecordWithoutPlanes) {
    StRecord Record = PlausibleRecord();
    Record.m_nPlanes = 0;
    Record.m_aActual[0].clear();
    EXPECT_THROWS(Check(Record), ClException, -39, "Target and Source arrays must have same size!");
}

TEST(RecordLimits, WantFiniteActualPointsInEveryPlane) {
    for (const float f : {cfNaN, cfInfinity, -cfInfinity})
        for (std::uint32_t nPlane = 0; nPlane < 3; ++nPlane) {
            StRecord Record = Sized(40, 60, 3);
            Record.m_aActual[nPlane][74].y = f;
            ExpectSourceRefused(Record, "y");
            Record = Sized(40, 60, 3);
            Record.m_aActual[nPlane][0].x = f;
            ExpectSourceRefused(Record, "x");
        }
}

TEST(RecordLimits, LookAtListsInUseOnly) {
    StRecord Record = PlausibleRecord();
    Record.m_aActual[1] = {{cfNaN, cfNaN}};
    EXPECT_NO_THROW(Check(Record));
}

TEST(RecordLimits, TestTargetPointsThenCountsThenActualPoints) {
    StRecord Record = Sized(40, 60, 2);
    Record.m_aActual[0][3].x = cfNaN;
    Record.m_aActual[1].pop_back();
    EXPECT_THROWS(Check(Record), ClException, -39, "Target and Source arrays must have same size!");
    Record.m_aTarget[3].x = cfNaN;
    EXPECT_THROWS(Check(Record), ClException, -39, "Target data is corrupt");
}

TEST(RecordLimits, EndAt16384PixelsASide) {
    EXPECT_NO_THROW(Check(Sized(16384, 1)));
    EXPECT_NO_THROW(Check(Sized(1, 16384)));
    EXPECT_NO_THROW(Check(Sized(0, 0)));
    ExpectTargetRefused(Sized(16385, 1), "width");
    ExpectTargetRefused(Sized(1, 16385), "height");
    ExpectTargetRefused(Sized(16385, 0), "width without height");
    ExpectTargetRefused(Sized(0xFFFFFFFF, 1), "largest width");
    ExpectTargetRefused(Sized(1, 0xFFFFFFFF), "largest height");
    ExpectTargetRefused(Sized(0x80000000, 0x80000000), "a product that overflows");
}

// 512 MiB hold 14913080 entries of 36 bytes; 16384 * 910 are 14909440, 16384 * 911 are 14925824.
TEST(RecordLimits, EndAtATableOf512MiB) {
    EXPECT_NO_THROW(Check(Sized(16384, 910)));
    ExpectTargetRefused(Sized(16384, 911), "one plane");
    EXPECT_NO_THROW(Check(Sized(16384, 303, 3)));
    ExpectTargetRefused(Sized(16384, 304, 3), "three planes");
}
