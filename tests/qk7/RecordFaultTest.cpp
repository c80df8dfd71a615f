/// The dot that keeps a block from loading, against what was moved; the library says whether one
/// does.

#include "apps/qk7/RecordFault.h"

#include "qk7/Direct.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include "TessarinCalibrateSDK.h"

#include <gtest/gtest.h>

#include <string>

using namespace qk7;
using namespace TestSupport;

namespace {

using EList = StRecordFault::EList;

// Steps of the scanner without distortion, by 2 mm: 38.796 columns and 79.471 lines.
constexpr float cfColumn = 38.796F;
constexpr float cfLine = 79.471F;

void ExpectFault(const Bytes& Block, EList eList, int nColumn, int nRow, const std::string& Words) {
    const auto fault = FindRecordFault(Block);

    EXPECT_EQ(DirectLoadStatus(Block), QMT_ERROR_CURRUPT_DATA);
    ASSERT_TRUE(fault.has_value()) << Words;
    EXPECT_EQ(fault->m_eList, eList);
    EXPECT_EQ(fault->m_nColumn, nColumn) << Words;
    EXPECT_EQ(fault->m_nRow, nRow) << Words;
    EXPECT_EQ(fault->m_Words, Words);
}

void ExpectActual(int nDot, float fColumns, float fLines, int nColumn, int nRow,
                  const std::string& Words) {
    ExpectFault(CalibrationWithDotMoved(nDot, fColumns, fLines), EList::eActual, nColumn, nRow,
                Words);
}

} // namespace

TEST(Qk7RecordFault, IsNoneInAGoodRecord) {
    EXPECT_FALSE(FindRecordFault(TrueCalibration()).has_value());
    EXPECT_FALSE(FindRecordFault(Record()).has_value());
}

TEST(Qk7RecordFault, IsNoneInWhatIsNoRecord) {
    EXPECT_FALSE(FindRecordFault({}).has_value());
    EXPECT_FALSE(FindRecordFault(RawTarget()).has_value());
}

// Of the two dots of a step the moved one is named, also where it stands at the pattern's border
// and has one neighbour only. The mean of the steps hardly changes when one dot moves: 30 percent
// of it are 11.6 columns and 23.8 lines.
TEST(Qk7RecordFault, NamesTheDotThatStandsElsewhere) {
    ExpectActual(38, 0.0F, 25.0F, 4, 7,
                 "104.5 lines to the dot above it, where 55.6 to 103.3 are expected");
    ExpectActual(38, 0.0F, -25.0F, 4, 7,
                 "54.5 lines to the dot above it, where 55.6 to 103.3 are expected");
    ExpectActual(38, 12.5F, 0.0F, 4, 7,
                 "51.3 columns to the dot on its left, where 27.2 to 50.4 are expected");
    ExpectActual(38, -12.5F, 0.0F, 4, 7,
                 "26.3 columns to the dot on its left, where 27.2 to 50.4 are expected");
    // The first dot's one step grows the mean of 68 steps down by 25 / 68.
    ExpectActual(0, 0.0F, -25.0F, 1, 1,
                 "104.5 lines to the dot below it, where 55.9 to 103.8 are expected");
    ExpectActual(74, 0.0F, 25.0F, 7, 10,
                 "104.5 lines to the dot above it, where 55.9 to 103.8 are expected");
}

TEST(Qk7RecordFault, NamesTheFirstTargetPointThatIsNoneOfThePattern) {
    // 39.37 pixels from dot to dot; the eleventh row and the seventh column are the first that
    // come to lie further off than 10.
    ExpectFault(StretchedCalibration(1.0F, 1.027F), EList::eTarget, 2, 11,
                "10.6 pixels in y from its place in the ideal pattern, where 10.0 are allowed");
    ExpectFault(StretchedCalibration(1.05F, 1.0F), EList::eTarget, 7, 1,
                "11.8 pixels in x from its place in the ideal pattern, where 10.0 are allowed");
    EXPECT_FALSE(FindRecordFault(StretchedCalibration(1.04F, 1.025F)).has_value());
}

TEST(Qk7RecordFault, TellsWhereTheDotIsInTheCapture) {
    const auto fault = FindRecordFault(CalibrationWithDotMoved(38, 0.0F, 25.0F));

    ASSERT_TRUE(fault.has_value());
    const sim::ClPoint dot = TargetCapture().m_aDots[38];
    EXPECT_NEAR(fault->m_At.m_dX, dot.x, 0.001);
    EXPECT_NEAR(fault->m_At.m_dY, dot.y + 25.0, 0.001);
}

// Each dot moved to all four sides, a little less and a little more than the library takes.
TEST(Qk7RecordFault, IsFoundExactlyWhereTheLibraryDoesNotLoad) {
    int nLoad = 0;
    int nDoNot = 0;
    for (int nDot = 0; nDot < 75; nDot += 7)
        for (const float fShare : {-0.31F, -0.305F, -0.3F, -0.295F, 0.295F, 0.3F, 0.305F, 0.31F})
            for (const bool bInX : {true, false}) {
                const Bytes block = CalibrationWithDotMoved(nDot, bInX ? fShare * cfColumn : 0.0F,
                                                            bInX ? 0.0F : fShare * cfLine);
                const long nStatus = DirectLoadStatus(block);
                EXPECT_EQ(FindRecordFault(block).has_value(), nStatus != QMT_SUCCESS)
                    << nDot << " " << fShare << " " << bInX;
                ++(nStatus == QMT_SUCCESS ? nLoad : nDoNot);
            }
    EXPECT_GT(nLoad, 20);
    EXPECT_GT(nDoNot, 20);
}
