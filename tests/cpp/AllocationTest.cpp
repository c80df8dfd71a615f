// The way of a capture through the header allocates nothing: counted beside the C interface.

#include "cpp/Scanner.h"
#include "support/AllocationCount.h"
#include "support/AllocationFailures.h"

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

namespace {

/// Lets each allocation of a call fail in turn, and gives how many did.
template <class Call>
long FailuresOf(Call call) {
    long nFailures = 0;
    for (;; ++nFailures) {
        std::error_code Error;
        bool bFailed = false;
        {
            const TestSupport::ClFailAllocation Fail(nFailures);
            EXPECT_NO_THROW(call(Error));
            bFailed = TestSupport::ClFailAllocation::Happened();
        }
        if (!bFailed) {
            EXPECT_FALSE(Error);
            return nFailures;
        }
        EXPECT_TRUE(!Error || Error == std::errc::not_enough_memory) << nFailures << Error;
        if (nFailures == 10000)
            return -1;
    }
}

} // namespace

TEST_F(CaptureLoop, TellsMemoryThatIsMissingForAVector) {
    const Bytes aData = TestSupport::ScannerData();
    const Bytes aCorrected = TestSupport::ScannerCorrected();
    EXPECT_GT(FailuresOf([&](auto& rError) {
                  const Bytes aTold = m_Scanner.getData(rError);
                  EXPECT_TRUE(rError ? aTold.empty() : aTold == aData);
              }),
              0);
    EXPECT_GT(FailuresOf([&](auto& rError) {
                  const Bytes aTable = m_Scanner.getPrecalculatedData(rError);
                  EXPECT_EQ(aTable.empty(), static_cast<bool>(rError));
              }),
              0);
    for (const std::size_t nRoom : {0, 1})
        EXPECT_GT(FailuresOf([&, aOut = Bytes(nRoom)](auto& rError) mutable {
                      aOut.resize(nRoom);
                      aOut.shrink_to_fit();
                      m_Scanner.correct(m_aCapture, aOut, rError);
                      EXPECT_TRUE(rError || aOut == aCorrected);
                  }),
                  0);
}

TEST_F(CaptureLoop, TellsASizeThatNoVectorCanHave) {
    std::error_code Error;
    Bytes aOut;
    m_Scanner.correct(tessarin::ConstBytes(m_aCapture.data(), ~std::size_t{0}), aOut, Error);
    EXPECT_EQ(Error, std::errc::not_enough_memory);
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
