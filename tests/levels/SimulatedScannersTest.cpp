// Whatever the calls give for simulated scanners is the same at every instruction level: ten
// calibrations with their tables, and five captures of each scanner.

#include "api/Api.h"
#include "sim/BitmapBlock.h"
#include "sim/Capture.h"
#include "support/InstructionLevels.h"

using sim::EKind;
using TestSupport::Bytes;

namespace {

constexpr std::array<std::array<EKind, 5>, 2> caaKinds{{
    {EKind::eLoop, EKind::eDry, EKind::eLight, EKind::eTwoFingers, EKind::eEmpty},
    {EKind::eWhorl, EKind::eWet, EKind::ePartial, EKind::eArch, EKind::eDirty},
}};

struct StScannerCase {
    explicit StScannerCase(unsigned int nSeed) {
        const sim::ClScanner Scanner(nSeed);
        m_aTarget = sim::BitmapBlock(sim::CaptureKind(Scanner, EKind::eTarget, 1).m_Raw);
        for (const EKind eKind : caaKinds[nSeed % 2])
            m_aaCaptures.push_back(sim::BitmapBlock(sim::CaptureKind(Scanner, eKind, nSeed).m_Raw));
    }

    Bytes m_aTarget;
    std::vector<Bytes> m_aaCaptures;
};

/// What the calls give for one scanner.
struct StResults {
    std::vector<Bytes> m_aaBlocks;
    std::vector<double> m_adLevels;

    bool operator==(const StResults& rOther) const {
        return m_aaBlocks == rOther.m_aaBlocks && m_adLevels == rOther.m_adLevels;
    }
};

StResults ResultsOf(const StScannerCase& Case) {
    TestSupport::ClApiHandle Handle;
    StResults Results;
    EXPECT_EQ(Handle.GenerateData(Case.m_aTarget), 0);
    Results.m_aaBlocks = {Handle.Data(), Handle.PrecalculatedData()};
    Handle.Set("DynamicFingerMask=true");
    for (const Bytes& aCapture : Case.m_aaCaptures) {
        Results.m_aaBlocks.push_back(Handle.Corrected(aCapture));
        double dDirt = -1.0;
        double dDry = -1.0;
        EXPECT_EQ(GetCalibrationWarningLevels(Handle, &dDirt, &dDry), 0);
        double dContamination = -1.0;
        EXPECT_EQ(ContaminationDetection(Handle, Handle.Writable(aCapture), aCapture.size(),
                                         &dContamination),
                  0);
        Results.m_adLevels.insert(Results.m_adLevels.end(), {dDirt, dDry, dContamination});
    }
    return Results;
}

} // namespace

class SimulatedScanners : public testing::TestWithParam<unsigned int> {};

TEST_P(SimulatedScanners, GiveTheSameBytesAtEveryLevel) {
    const StScannerCase Case(GetParam());
    StResults Lowest;
    for (const EInstructionLevel eLevel : TestSupport::Levels()) {
        SCOPED_TRACE(static_cast<int>(eLevel));
        const TestSupport::ClLevelLimit Limit(eLevel);
        const StResults Results = ResultsOf(Case);
        if (eLevel == EInstructionLevel::Baseline)
            Lowest = Results;
        EXPECT_TRUE(Results == Lowest);
        EXPECT_EQ(Results.m_aaBlocks.size(), 7u);
    }
}

INSTANTIATE_TEST_SUITE_P(OfScanner, SimulatedScanners, testing::Range(1u, 11u));
