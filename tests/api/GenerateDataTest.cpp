// From a capture of the dot target to blocks that another handle takes.

#include "api/Api.h"
#include "support/DotTargets.h"
#include "support/Records.h"
#include "support/TestData.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <ostream>

using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::DotsOf;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StDot;
using TestSupport::StPoint;
using TestSupport::StRecord;
using TestSupport::StTargetImage;
using TestSupport::TargetBlock;

namespace {

/// A handle with data generated from the usual capture.
struct StGenerated : ClApiHandle {
    StGenerated() { EXPECT_EQ(GenerateData(TargetBlock(StTargetImage())), 0); }
};

/// A 32-bit number of a calibration block.
std::uint32_t Number(const Bytes& aBlock, std::size_t nOffset) {
    std::uint32_t nNumber = 0;
    for (std::size_t i = 0; i < 4; ++i)
        nNumber = nNumber << 8 | aBlock[nOffset + i];
    return nNumber;
}

/// Points of a list of a calibration block behind its count.
std::vector<StDot> Points(const Bytes& aBlock, std::size_t nOffset) {
    std::vector<StDot> aPoints;
    for (std::uint32_t i = 0; i < Number(aBlock, nOffset); ++i) {
        float afPoint[2];
        for (std::size_t k = 0; k < 2; ++k) {
            const std::uint32_t nBits = Number(aBlock, nOffset + 4 + 8 * i + 4 * k);
            std::memcpy(&afPoint[k], &nBits, 4);
        }
        aPoints.push_back({static_cast<double>(afPoint[0]), static_cast<double>(afPoint[1])});
    }
    return aPoints;
}
constexpr std::size_t cnTargetPoints = 49;
constexpr std::size_t cnActualPoints = cnTargetPoints + 4 + 75 * 8;

/// The ideal pattern at 500 dots per inch, stretched along x, as a reference target.
StRecord Reference(double dStretch) {
    StRecord Record = PlausibleRecord(390, 1052, 320, 480, 19685);
    Record.m_aTarget.clear();
    for (const StDot& Dot : DotsOf(TestSupport::CorrectedTarget()))
        Record.m_aTarget.push_back(
            {static_cast<float>(Dot.x * dStretch), static_cast<float>(Dot.y)});
    return Record;
}

/// Width of the pattern in the corrected image.
double PatternWidth(const Bytes& aBlock) {
    const std::vector<StDot> aTarget = Points(aBlock, cnTargetPoints);
    return aTarget[74].x - aTarget[0].x;
}
constexpr double cdIdealWidth = 12.0 * 500.0 / 25.4;

} // namespace

// Success

TEST(CalibrateGenerateData, FindsThePaintedDots) {
    StGenerated Handle;
    const Bytes aBlock = Handle.Data();
    ASSERT_EQ(aBlock.size(), 1261u);
    EXPECT_EQ(Number(aBlock, 12), 390u);
    EXPECT_EQ(Number(aBlock, 16), 1052u);
    EXPECT_EQ(Number(aBlock, 20), 19397u);
    EXPECT_EQ(Number(aBlock, 24), 39735u);
    EXPECT_EQ(Number(aBlock, 28), 320u);
    EXPECT_EQ(Number(aBlock, 32), 480u);
    EXPECT_EQ(Number(aBlock, 36), 19685u);
    EXPECT_EQ(Number(aBlock, 40), 19685u);
    EXPECT_EQ(Number(aBlock, 44), 1u);
    EXPECT_EQ(aBlock[48], 255);
    const std::vector<StDot> aActual = Points(aBlock, cnActualPoints);
    const std::vector<StDot> aDots = DotsOf(StTargetImage());
    ASSERT_EQ(aActual.size(), 75u);
    for (std::size_t i = 0; i < 75; ++i)
        EXPECT_LT(std::hypot(aActual[i].x - aDots[i].x, aActual[i].y - aDots[i].y), 0.25);
    EXPECT_NEAR(PatternWidth(aBlock), cdIdealWidth, 1e-3);
}

TEST(CalibrateGenerateData, GivesABlockThatANewHandleTakesAndGives) {
    StGenerated Handle;
    ClApiHandle Second;
    ASSERT_EQ(Second.SetData(Handle.Data()), 0);
    EXPECT_EQ(Second.Data(), Handle.Data());
}

TEST(CalibrateGenerateData, GivesAPrecalculatedBlockThatANewHandleTakes) {
    StGenerated Handle;
    ClApiHandle Second;
    Second.Set("PrecalculatedData=true");
    ASSERT_EQ(Second.SetData(Handle.Data()), 0);
    ASSERT_EQ(Second.SetPrecalculatedData(Handle.PrecalculatedData()), 0);
    const Bytes aCapture = TargetBlock(StTargetImage());
    EXPECT_EQ(Second.Corrected(aCapture), Handle.Corrected(aCapture));
    EXPECT_EQ(Second.PrecalculatedData(), Handle.PrecalculatedData());
}

TEST(CalibrateGenerateData, MakesAHandleThatTakesItsPrecalculatedBlockBack) {
    StGenerated Handle;
    const Bytes aTable = Handle.PrecalculatedData();
    EXPECT_EQ(Handle.SetPrecalculatedData(aTable), 0);
    EXPECT_EQ(Handle.PrecalculatedData(), aTable);
    ClApiHandle Failed;
    EXPECT_EQ(Failed.GenerateData(TestSupport::Capture(48, 132)),
              QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_EQ(Failed.SetPrecalculatedData(aTable), QMT_ERROR_PARAM_IS_MISSING);
}

TEST(CalibrateGenerateData, AnswersASizeThatIsTooSmallAsForLoadedData) {
    StGenerated Handle;
    unsigned long nSize = 0;
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 1261u);
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_PTR);
    nSize = 0;
    EXPECT_EQ(CalibrateGetPrecalculatedData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 28u + 94 + 36 * 320 * 480 + 4);
}

TEST(CalibrateGenerateData, PreparesTheTableWhateverTheOption) {
    StGenerated Handle;
    ClApiHandle Second;
    Second.Set("PrecalculatedData=true");
    ASSERT_EQ(Second.GenerateData(TargetBlock(StTargetImage())), 0);
    EXPECT_EQ(Second.PrecalculatedData(), Handle.PrecalculatedData());
}

TEST(CalibrateGenerateData, StraightensItsOwnCapture) {
    StTargetImage Target;
    std::vector<StDot> aBent = DotsOf(Target);
    for (StDot& rDot : aBent)
        rDot.x += 0.00002 * (rDot.y - 526.0) * (rDot.y - 526.0);
    const Bytes aCapture = TargetBlock(Target, aBent);
    ClApiHandle Handle;
    ASSERT_EQ(Handle.GenerateData(aCapture), 0);
    const Bytes aCorrected = Handle.Corrected(aCapture);
    ASSERT_EQ(TestSupport::Width(aCorrected), 320);
    ASSERT_EQ(TestSupport::Height(aCorrected), 480);
    double dPercent = 0.0;
    ASSERT_EQ(
        CalibrateCheckEfts(Handle, ClApiHandle::Writable(aCorrected), aCorrected.size(), &dPercent),
        0);
    EXPECT_GE(dPercent, 99.9);
}

TEST(CalibrateGenerateData, ReplacesLoadedDataAndKeepsTheOptions) {
    ClApiHandle Handle;
    Handle.Set("SensitiveMode=true");
    Handle.Set("GeometricCalibrate=oddLines");
    ASSERT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    ASSERT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), 0);
    EXPECT_EQ(Handle.Data(), StGenerated().Data());
    for (const auto& [szKey, szValue] :
         {std::pair("SensitiveMode", "Enabled"), {"GeometricCalibrate", "oddLines"}}) {
        char szText[32];
        unsigned long nSize = sizeof szText;
        EXPECT_EQ(CalibrateGetOption(Handle, szKey, szText, &nSize), 0);
        EXPECT_STREQ(szText, szValue);
    }
}

TEST(CalibrateGenerateData, LeavesTheCaptureAlone) {
    Bytes aBlock = TargetBlock(StTargetImage());
    const Bytes aBefore = aBlock;
    ClApiHandle Handle;
    ASSERT_EQ(CalibrateGenerateData(Handle, aBlock.data(), aBlock.size()), 0);
    EXPECT_EQ(aBlock, aBefore);
}

TEST(CalibrateGenerateData, GivesTheBlocksOfAnIndependentModel) {
    const Bytes aText = TestSupport::DataFile("generate/generate.json");
    const auto Cases = nlohmann::json::parse(aText.begin(), aText.end());
    ASSERT_EQ(Cases.size(), 9u);
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case["capture"].get<std::string>());
        ClApiHandle Handle;
        const long nStatus = Handle.GenerateData(TestSupport::DataBlock(Case["capture"]));
        EXPECT_EQ(nStatus, Case["status"].get<long>());
        if (nStatus == 0) {
            EXPECT_EQ(Handle.Data(), TestSupport::DataFile(Case["record"]));
        }
    }
}

// What is generated and what loads

namespace {

/// The status of a generation and, behind a success, that of loading its block on another handle.
struct StProduced {
    long m_nGenerated = 1;
    long m_nLoaded = 1;

    bool operator==(const StProduced& Other) const {
        return m_nGenerated == Other.m_nGenerated && m_nLoaded == Other.m_nLoaded;
    }
};

std::ostream& operator<<(std::ostream& rOut, const StProduced& Produced) {
    return rOut << Produced.m_nGenerated << ", " << Produced.m_nLoaded;
}

constexpr StProduced cLoads = {QMT_SUCCESS, QMT_SUCCESS};
constexpr StProduced cDoesNotLoad = {QMT_SUCCESS, QMT_ERROR_CURRUPT_DATA};
constexpr StProduced cIsNotGenerated = {QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, 1};

StProduced Produced(ClApiHandle& rHandle, const Bytes& aCapture) {
    StProduced Result;
    Result.m_nGenerated = rHandle.GenerateData(aCapture);
    if (Result.m_nGenerated == QMT_SUCCESS) {
        ClApiHandle Second;
        Second.Set("PrecalculatedData=true");
        Result.m_nLoaded = Second.SetData(rHandle.Data());
    }
    return Result;
}

/// For a capture whose middle dot is this far off, in millimetres.
StProduced ProducedWithADotOff(double dx, double dy) {
    const StTargetImage Target;
    std::vector<StDot> aDots = DotsOf(Target);
    aDots[37].x += dx * Target.m_dDpiX / 25.4;
    aDots[37].y += dy * Target.m_dDpiY / 25.4;
    ClApiHandle Handle;
    return Produced(Handle, TargetBlock(Target, aDots));
}

/// On a reference that is larger than the ideal pattern by these factors.
StProduced ProducedByReference(double dStretchX, double dStretchY) {
    StRecord Record = Reference(dStretchX);
    for (StPoint& rPoint : Record.m_aTarget)
        rPoint.y = static_cast<float>(static_cast<double>(rPoint.y) * dStretchY);
    ClApiHandle Handle;
    EXPECT_EQ(Handle.SetReferenceData(RecordBlock(Record)), 0);
    return Produced(Handle, TargetBlock(StTargetImage()));
}

} // namespace

// Loading takes steps of 30 percent more or less than 2 mm, locating dots 0.62 mm off.
TEST(CalibrateGenerateData, TakesADotFartherOffThanLoadingTakes) {
    for (const double dSign : {1.0, -1.0})
        for (const bool bAlongX : {true, false}) {
            const auto Off = [&](double dDistance) {
                return bAlongX ? ProducedWithADotOff(dSign * dDistance, 0.0)
                               : ProducedWithADotOff(0.0, dSign * dDistance);
            };
            EXPECT_EQ(Off(0.3), cLoads);
            EXPECT_EQ(Off(0.59), cLoads);
            EXPECT_EQ(Off(0.61), cDoesNotLoad);
            EXPECT_EQ(Off(0.615), cDoesNotLoad);
            EXPECT_EQ(Off(0.64), cIsNotGenerated);
        }
}

// Loading takes points within 10 pixels of a pattern that is 236.2 wide and 393.7 high.
TEST(CalibrateGenerateData, TakesAReferenceThatIsLargerThanLoadingTakes) {
    EXPECT_EQ(ProducedByReference(1.0, 1.0), cLoads);
    EXPECT_EQ(ProducedByReference(1.042, 1.0), cLoads); // 9.9 pixels
    EXPECT_EQ(ProducedByReference(0.958, 1.0), cLoads);
    EXPECT_EQ(ProducedByReference(1.043, 1.0), cDoesNotLoad); // 10.2 pixels
    EXPECT_EQ(ProducedByReference(0.957, 1.0), cDoesNotLoad);
    EXPECT_EQ(ProducedByReference(1.0, 1.025), cLoads); // 9.8 pixels
    EXPECT_EQ(ProducedByReference(1.0, 0.975), cLoads);
    EXPECT_EQ(ProducedByReference(1.0, 1.026), cDoesNotLoad); // 10.2 pixels
    EXPECT_EQ(ProducedByReference(1.0, 0.974), cDoesNotLoad);
}

// Failures

TEST(CalibrateGenerateData, OfAnIncompletePatternLeavesNothing) {
    StGenerated Handle;
    StTargetImage Target;
    Target.m_aMissing = {12};
    EXPECT_EQ(Handle.GenerateData(TargetBlock(Target)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_FALSE(Handle.IsReady());
    long nStatus = 0;
    Handle.Corrected(TargetBlock(StTargetImage()), &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_NOT_INITIALIZED);
}

TEST(CalibrateGenerateData, OfACrookedPatternLeavesNothing) {
    StTargetImage Target;
    Target.m_dRowSlant = 16.5;
    StGenerated Handle;
    EXPECT_EQ(Handle.GenerateData(TargetBlock(Target)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_FALSE(Handle.IsReady());
}

TEST(CalibrateGenerateData, OfACorrectedImageFails) {
    ClApiHandle Handle;
    EXPECT_EQ(Handle.GenerateData(TargetBlock(TestSupport::CorrectedTarget())),
              QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
}

TEST(CalibrateGenerateData, OfTinyCapturesFails) {
    ClApiHandle Handle;
    for (const int nSide : {1, 2, 3, 16, 41, 88})
        EXPECT_EQ(Handle.GenerateData(TestSupport::Capture(nSide, nSide)),
                  QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
            << nSide;
}

TEST(CalibrateGenerateData, WorksAgainAfterAFailure) {
    StGenerated Handle;
    const Bytes aData = Handle.Data();
    const Bytes aTable = Handle.PrecalculatedData();
    EXPECT_EQ(Handle.GenerateData(TestSupport::Capture(48, 132)),
              QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), 0);
    EXPECT_EQ(Handle.Data(), aData);
    EXPECT_EQ(Handle.PrecalculatedData(), aTable);
    EXPECT_EQ(Handle.GenerateData(Bytes(39)), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(Handle.SetData(aData), 0);
    EXPECT_EQ(Handle.Data(), aData);
}

// Reference target

TEST(CalibrateSetReferenceData, ServesEveryGenerationThatFollows) {
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Reference(1.01))), 0);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), 0);
        EXPECT_NEAR(PatternWidth(Handle.Data()), 1.01 * cdIdealWidth, 1e-3);
        EXPECT_EQ(Handle.GenerateData(TestSupport::Capture(48, 132)),
                  QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
        EXPECT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    }
    ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Reference(1.0))), 0);
    ASSERT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), 0);
    EXPECT_NEAR(PatternWidth(Handle.Data()), cdIdealWidth, 1e-3);
}

TEST(CalibrateSetReferenceData, OfAnotherPatternIsRefusedByTheGeneration) {
    StRecord Short = Reference(1.0);
    Short.m_aTarget.pop_back();
    StRecord WithoutResolution = Reference(1.0);
    WithoutResolution.m_nTargetPelsY = 0;
    StRecord NotANumber = Reference(1.0);
    NotANumber.m_aTarget[7].x = NAN;
    for (const StRecord& Record : {Short, WithoutResolution, NotANumber}) {
        ClApiHandle Handle;
        ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Record)), 0);
        EXPECT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), QMT_ERROR_CURRUPT_DATA);
        EXPECT_FALSE(Handle.IsReady());
        ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Reference(1.0))), 0);
        EXPECT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), 0);
    }
}

// It is laid onto what was found, and what was found is judged by it.
TEST(CalibrateSetReferenceData, OfAnotherPatternIsRefusedBetweenFindingDotsAndJudgingThem) {
    StRecord Short = Reference(1.0);
    Short.m_aTarget.pop_back();
    const StTargetImage Target;
    const Bytes aEmpty = TargetBlock(Target, {});
    const Bytes aOneDot = TargetBlock(Target, {{195.0, 526.0}});
    StTargetImage Crooked;
    Crooked.m_dRowSlant = 16.5;
    ClApiHandle Handle;
    const auto ExpectStatuses = [&](long nOfEmpty, long nOfOneDot, long nOfCrooked) {
        EXPECT_EQ(Handle.GenerateData(Bytes(39)), QMT_ERROR_TEMPLATE_SIZE);
        EXPECT_EQ(Handle.GenerateData(aEmpty), nOfEmpty);
        EXPECT_EQ(Handle.GenerateData(aOneDot), nOfOneDot);
        EXPECT_EQ(Handle.GenerateData(TargetBlock(Crooked)), nOfCrooked);
    };
    ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Short)), 0);
    ExpectStatuses(QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, QMT_ERROR_CURRUPT_DATA,
                   QMT_ERROR_CURRUPT_DATA);
    ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Reference(1.0))), 0);
    ExpectStatuses(QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
                   QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
}

TEST(CalibrateSetReferenceData, ThatFailsKeepsWhatWasReadOfIt) {
    Bytes aBroken = RecordBlock(Reference(1.01));
    aBroken.back() ^= 1;
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetReferenceData(aBroken), QMT_ERROR_CURRUPT_DATA);
    ASSERT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())), 0);
    EXPECT_NEAR(PatternWidth(Handle.Data()), 1.01 * cdIdealWidth, 1e-3);
}

TEST(CalibrateSetReferenceData, OfExtremePointsFindsNoPattern) {
    for (const float fExtreme : {3e38f, -3e38f, 1e-38f, 1e9f, -70000.0f}) {
        StRecord Record = Reference(1.0);
        Record.m_aTarget[40].x = fExtreme;
        ClApiHandle Handle;
        ASSERT_EQ(Handle.SetReferenceData(RecordBlock(Record)), 0);
        EXPECT_EQ(Handle.GenerateData(TargetBlock(StTargetImage())),
                  QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
        EXPECT_FALSE(Handle.IsReady());
    }
}
