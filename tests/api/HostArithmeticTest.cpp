// How an application has its processor round, treat small numbers and trap: no answer depends on
// it, and each call leaves it as it is.

#include "api/Api.h"
#include "support/TestData.h"

#include <cfenv>
#include <xmmintrin.h>

using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::DataBlock;
using TestSupport::DataFile;

namespace {

struct StAnswers {
    Bytes m_aRecord;
    Bytes m_aTable;
    Bytes m_aImage;
    double m_dDirt = -1.0;
    double m_dDryFinger = -1.0;
    double m_dContamination = -1.0;
    double m_dAccuracy = -1.0;
};

void ExpectSame(const StAnswers& Answers, const StAnswers& Expected) {
    EXPECT_TRUE(Answers.m_aRecord == Expected.m_aRecord);
    EXPECT_TRUE(Answers.m_aTable == Expected.m_aTable);
    EXPECT_TRUE(Answers.m_aImage == Expected.m_aImage);
    EXPECT_EQ(Answers.m_dDirt, Expected.m_dDirt);
    EXPECT_EQ(Answers.m_dDryFinger, Expected.m_dDryFinger);
    EXPECT_EQ(Answers.m_dContamination, Expected.m_dContamination);
    EXPECT_EQ(Answers.m_dAccuracy, Expected.m_dAccuracy);
}

/// What the application has chosen, flags included.
struct StChosen {
    int m_nRounding = std::fegetround();
    int m_nTraps = fegetexcept();
    unsigned int m_nVectors = _mm_getcsr();

    bool operator==(const StChosen& Other) const {
        return m_nRounding == Other.m_nRounding && m_nTraps == Other.m_nTraps &&
               m_nVectors == Other.m_nVectors;
    }
};

struct StInputs {
    Bytes m_aTarget = DataBlock("generate/911_target.bmp");
    Bytes m_aData = DataFile("dynamic/loop.cal");
    Bytes m_aCapture = DataBlock("dynamic/loop_raw.bmp");
    Bytes m_aPlaten = DataBlock("dynamic/dirty_raw.bmp");
    Bytes m_aScanner = DataFile("efts/911.cal");
    Bytes m_aCorrected = DataBlock("efts/911_corrected.bmp");
};

/// Nothing but the library computes in here: what traps would end the test.
StAnswers Ask(StInputs& rInputs) {
    StAnswers Answers;
    ClApiHandle Maker;
    EXPECT_EQ(Maker.GenerateData(rInputs.m_aTarget), 0);
    Answers.m_aRecord = Maker.Data();
    ClApiHandle User;
    EXPECT_EQ(User.SetData(rInputs.m_aData), 0);
    Answers.m_aTable = User.PrecalculatedData();
    User.Set("DynamicFingerMask=true");
    Answers.m_aImage = User.Corrected(rInputs.m_aCapture);
    EXPECT_EQ(GetCalibrationWarningLevels(User, &Answers.m_dDirt, &Answers.m_dDryFinger), 0);
    EXPECT_EQ(ContaminationDetection(User, rInputs.m_aPlaten.data(), rInputs.m_aPlaten.size(),
                                     &Answers.m_dContamination),
              0);
    EXPECT_EQ(User.SetData(rInputs.m_aScanner), 0);
    EXPECT_EQ(CalibrateCheckEfts(User, rInputs.m_aCorrected.data(), rInputs.m_aCorrected.size(),
                                 &Answers.m_dAccuracy),
              0);
    EXPECT_EQ(User.SetData(Bytes(20)), QMT_ERROR_UNEXPECTED_SIGNATURE);
    return Answers;
}

template <class Choose>
void ExpectThatItPlaysNoPart(Choose choose) {
    StInputs Inputs;
    const StAnswers Expected = Ask(Inputs);
    choose();
    const StChosen Before;
    const StAnswers Answers = Ask(Inputs);
    const StChosen Behind;
    std::fesetenv(FE_DFL_ENV);
    EXPECT_TRUE(Behind == Before);
    ExpectSame(Answers, Expected);
}

} // namespace

TEST(HostArithmetic, MayRoundAsItLikes) {
    for (int nRounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
        ExpectThatItPlaysNoPart([&] { std::fesetround(nRounding); });
}

TEST(HostArithmetic, MayTakeSmallNumbersForZero) {
    ExpectThatItPlaysNoPart([] { _mm_setcsr(_mm_getcsr() | 0x8040); });
}

TEST(HostArithmetic, MayTrapWhateverItLikes) {
    ExpectThatItPlaysNoPart([] {
        std::feclearexcept(FE_ALL_EXCEPT);
        feenableexcept(FE_ALL_EXCEPT);
    });
}

TEST(HostArithmetic, FindsItsFlagsAgain) {
    ExpectThatItPlaysNoPart([] {
        std::feclearexcept(FE_ALL_EXCEPT);
        std::feraiseexcept(FE_OVERFLOW);
    });
}
