// What a calibrator does, against the published results.

#include "cpp/Scanner.h"
#include "support/DataJson.h"

#include <nlohmann/json.hpp>

#include <type_traits>

using tessarin::Calibrator;
using tessarin::Geometry;
using tessarin::Switch;
using TestSupport::Bytes;
using TestSupport::DataBlock;
using TestSupport::DataFile;
using TestSupport::Loaded;
using TestSupport::ScannerCapture;
using TestSupport::ScannerCorrected;
using TestSupport::ScannerData;

static_assert(!std::is_copy_constructible_v<Calibrator> && !std::is_copy_assignable_v<Calibrator>);
static_assert(std::is_nothrow_move_constructible_v<Calibrator>);
static_assert(std::is_nothrow_move_assignable_v<Calibrator>);
static_assert(sizeof(Calibrator) == sizeof(void*));

TEST(Calibrator, CorrectsIntoAVectorThatBecomesAsLongAsTheImage) {
    Calibrator Scanner = Loaded();
    for (const std::size_t nLength : {0u, 1u, 2000000u}) {
        Bytes aOut(nLength);
        Scanner.correct(ScannerCapture(), aOut);
        EXPECT_EQ(aOut, ScannerCorrected()) << nLength;
    }
}

TEST(Calibrator, TellsTheSizeNeededAndThenCorrectsIntoASpan) {
    Calibrator Scanner = Loaded();
    const Bytes aExpected = ScannerCorrected();
    std::error_code Error;
    const std::size_t nNeeded = Scanner.correct(ScannerCapture(), tessarin::Bytes(), Error);
    EXPECT_EQ(Error.value(), QMT_ERROR_TEMPLATE_SIZE);
    ASSERT_EQ(nNeeded, aExpected.size());

    Bytes aOut(nNeeded + 1, 77);
    EXPECT_EQ(Scanner.correct(ScannerCapture(), tessarin::Bytes(aOut), Error), nNeeded);
    EXPECT_FALSE(Error);
    EXPECT_EQ(aOut.back(), 77);
    aOut.pop_back();
    EXPECT_EQ(aOut, aExpected);
    EXPECT_EQ(Scanner.correct(ScannerCapture(), tessarin::Bytes(aOut)), nNeeded);
}

TEST(Calibrator, TellsNoSizeWhereThatOfTheCaptureIsWrong) {
    Calibrator Scanner = Loaded();
    Bytes aCapture = ScannerCapture();
    aCapture.pop_back();
    Bytes aOut(16);
    std::error_code Error;
    EXPECT_EQ(Scanner.correct(aCapture, tessarin::Bytes(aOut), Error), 0u);
    EXPECT_EQ(Error.value(), QMT_ERROR_TEMPLATE_SIZE);
    Scanner.correct(aCapture, aOut, Error);
    EXPECT_EQ(Error.value(), QMT_ERROR_TEMPLATE_SIZE);
}

TEST(Calibrator, MovesWithItsDataAndOptions) {
    Calibrator First = Loaded();
    Calibrator Second;
    void* const pHandle = First.handle();
    Second = std::move(First);
    EXPECT_EQ(Second.handle(), pHandle);
    EXPECT_FALSE(First); // NOLINT(bugprone-use-after-move): what is left is told
    Bytes aOut;
    Second.correct(ScannerCapture(), aOut);
    EXPECT_EQ(aOut, ScannerCorrected());

    swap(First, Second);
    EXPECT_EQ(First.handle(), pHandle);
    EXPECT_FALSE(Second);
}

TEST(Calibrator, SurvivesBeingMovedToItself) {
    Calibrator Scanner = Loaded();
    Calibrator& rSame = Scanner;
    Scanner = std::move(rSame);
    EXPECT_TRUE(Scanner);
    EXPECT_EQ(Scanner.getData(), ScannerData());
}

TEST(Calibrator, GivesItsBlocksInVectorsAndInSpans) {
    Calibrator Scanner = Loaded();
    EXPECT_EQ(Scanner.getData(), ScannerData());
    std::error_code Error;
    EXPECT_EQ(Scanner.getData(tessarin::Bytes(), Error), ScannerData().size());
    EXPECT_EQ(Error.value(), QMT_ERROR_TEMPLATE_SIZE);
    Bytes aOut(ScannerData().size());
    EXPECT_EQ(Scanner.getData(aOut, Error), aOut.size());
    EXPECT_FALSE(Error);
    EXPECT_EQ(aOut, ScannerData());
    EXPECT_EQ(Scanner.getPrecalculatedData(tessarin::Bytes(), Error),
              Scanner.getPrecalculatedData().size());
}

TEST(Calibrator, StartsWithAPrecalculatedTable) {
    const Bytes aTable = Loaded().getPrecalculatedData();
    Calibrator Scanner;
    Scanner.setOption(Switch::dynamicFingerMask, false);
    Scanner.setOption(Switch::precalculatedData, true);
    Scanner.setData(ScannerData());
    Scanner.setPrecalculatedData(aTable);
    EXPECT_EQ(Scanner.getPrecalculatedData(), aTable);
    Bytes aOut;
    Scanner.correct(ScannerCapture(), aOut);
    EXPECT_EQ(aOut, ScannerCorrected());
}

TEST(Calibrator, GeneratesWhatWasPublished) {
    Calibrator Scanner;
    Scanner.generateData(DataBlock("generate/912_target.bmp"));
    EXPECT_EQ(Scanner.getData(), DataFile("generate/912.cal"));
}

TEST(Calibrator, TakesAReferencePlateAndDropsItsDataForIt) {
    Calibrator Scanner = Loaded();
    Scanner.setReferenceData(ScannerData());
    std::error_code Error;
    EXPECT_TRUE(Scanner.getData(Error).empty());
    EXPECT_EQ(Error.value(), QMT_ERROR_NOT_INITIALIZED);
    Scanner.generateData(DataBlock("generate/912_target.bmp"));
    EXPECT_EQ(Scanner.getData().size(), ScannerData().size());
}

TEST(Calibrator, MeasuresAsWasPublished) {
    Calibrator Bent;
    Bent.setData(DataFile("efts/903.cal"));
    EXPECT_DOUBLE_EQ(Bent.checkEfts(DataBlock("efts/903_bent.bmp")), 99.42342342342343);

    Calibrator Dirty;
    EXPECT_NEAR(Dirty.contamination(DataBlock("dynamic/empty_raw.bmp")), 0.26103896103896107, 1e-9);
}

TEST(Calibrator, TellsTheLevelsOfTheLastCapture) {
    Calibrator Scanner;
    EXPECT_EQ(Scanner.levels().dryFinger, 0.0);
    Scanner.setData(DataFile("dynamic/dry.cal"));
    Bytes aOut;
    Scanner.correct(DataBlock("dynamic/dry_raw.bmp"), aOut);
    const tessarin::Levels Found = Scanner.levels();
    EXPECT_NEAR(Found.dirt, 2.501176470588235, 1e-9);
    EXPECT_NEAR(Found.dryFinger, 58.84654018167308, 1e-9);
}
