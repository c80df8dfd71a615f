// The way of a capture through the header allocates nothing: counted beside the C interface.

#include "cpp/Scanner.h"
#include "support/AllocationCount.h"

using tessarin::Calibrator;
using TestSupport::Bytes;

namespace {

constexpr int cnCaptures = 3;

template <class Correct>
long AllocationsOfALoop(Correct correct) {
    correct(); // the first capture may prepare what the others find
    const TestSupport::ClCountAllocations Count;
    for (int i = 0; i < cnCaptures; ++i)
        correct();
    return Count.SoFar().m_nCount;
}

class CaptureLoop : public testing::Test {
protected:
    Calibrator m_Scanner = TestSupport::Loaded();
    Bytes m_aCapture = TestSupport::ScannerCapture();
    Bytes m_aOut = Bytes(TestSupport::ScannerCorrected().size());
    tessarin::Bytes m_Out = m_aOut;

    /// What the library itself allocates for the captures.
    long Expected() {
        return AllocationsOfALoop([this] {
            unsigned long nSize = m_aOut.size();
            EXPECT_EQ(Calibrate(m_Scanner.handle(), m_aCapture.data(), m_aCapture.size(),
                                m_aOut.data(), &nSize),
                      QMT_SUCCESS);
        });
    }
};

} // namespace

TEST_F(CaptureLoop, AllocatesNothingWithSpans) {
    std::error_code Error;
    EXPECT_EQ(AllocationsOfALoop([&] { m_Scanner.correct(m_aCapture, m_Out, Error); }), Expected());
    EXPECT_EQ(AllocationsOfALoop([&] { m_Scanner.correct(m_aCapture, m_Out); }), Expected());
    EXPECT_FALSE(Error);
}

TEST_F(CaptureLoop, AllocatesNothingWithAVectorUsedAgain) {
    Bytes aOut;
    EXPECT_EQ(AllocationsOfALoop([&] { m_Scanner.correct(m_aCapture, aOut); }), Expected());
    EXPECT_EQ(aOut, TestSupport::ScannerCorrected());
}

TEST_F(CaptureLoop, AllocatesAVectorThatIsMadeAnew) {
    EXPECT_EQ(AllocationsOfALoop([&] {
                  Bytes aOut;
                  m_Scanner.correct(m_aCapture, aOut);
              }),
              Expected() + cnCaptures);
}

TEST_F(CaptureLoop, AllocatesNothingForLevelsAndOptions) {
    std::error_code Error;
    EXPECT_EQ(AllocationsOfALoop([&] {
                  m_Scanner.setOption(tessarin::Switch::sensitiveMode, true, Error);
                  m_Scanner.isEnabled(tessarin::Switch::sensitiveMode, Error);
                  m_Scanner.levels(Error);
              }),
              0);
    EXPECT_FALSE(Error);
}

TEST(Calibrator, ReleasesWhatItHolds) {
    const long nBefore = TestSupport::LiveAllocations();
    {
        Calibrator First = TestSupport::Loaded();
        Calibrator Second;
        Second = std::move(First);
        EXPECT_GT(TestSupport::LiveAllocations(), nBefore);
    }
    EXPECT_EQ(TestSupport::LiveAllocations(), nBefore);
}
