// The quick form of the functionality check gives what its operators give.

#include "FingerCoding/Quick/Defects.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/Quick/QuickRun.h"
#include "FingerCoding/RandomCaptures.h"
#include "support/InstructionLevels.h"

using namespace TestSupport;

namespace {

double Check(ClIpQK7FunctionalityCheck& rCheck, ClImage& rCapture, ClImage& rOut) {
    EXPECT_EQ(rCheck.ApplyParam(rCapture, rOut, ClImage::eTypeDefault), 0);
    return rCheck.m_dOutDefectWarningLevel;
}

/// The same object runs quickly, observed, and quickly again.
void ExpectTheSame(ClImage& rCapture, unsigned char nNoise) {
    ClIpQK7FunctionalityCheck Check1;
    Check1.m_nNoise = nNoise;
    ClImage Plain;
    double dPlain = 0.0;
    {
        const ClObservedRuns Observed;
        dPlain = Check(Check1, rCapture, Plain);
    }
    AtEveryLevel([&] {
        ClImage Out;
        EXPECT_EQ(Check(Check1, rCapture, Out), dPlain);
        EXPECT_TRUE(IsTwin(Out, Plain));
    });
}

} // namespace

TEST(QuickDefects, AreThoseOfTheOperatorsOnSimulatedCaptures) {
    for (const char* szKind : {"empty", "dirty", "loop"}) {
        SCOPED_TRACE(szKind);
        ClTestImage Capture = WarpedCapture(szKind);
        ExpectTheSame(Capture, 5);
    }
}

TEST(QuickDefects, AreThoseOfTheOperatorsForEveryNoiseAndSize) {
    std::mt19937 Random(11);
    const auto below = [&Random](unsigned long n) { return static_cast<int>(Random() % n); };
    for (int nRun = 0; nRun < 60; ++nRun) {
        SCOPED_TRACE(nRun);
        ClTestImage Capture;
        Capture.NewWithType(ClImage::eUInt8, 49 + below(70), 49 + below(90), 1, 0, 7);
        const int nRange = 1 + below(256);
        for (int y = 0; y < Capture.Height(); ++y)
            for (int x = 0; x < Capture.Width(); ++x)
                Capture.LineData(y)[x] = static_cast<unsigned char>(
                    nRun % 3 == 0 ? (x * 7 + y / 9) % 256 : 255 - below(256) % nRange);
        ExpectTheSame(Capture, static_cast<unsigned char>(below(70)));
    }
}

TEST(QuickDefects, AreThoseOfTheOperatorsAtTheEndsOfTheScale) {
    for (const int n : {0, 1, 84, 85, 86, 169, 170, 171, 254, 255}) {
        SCOPED_TRACE(n);
        ClTestImage Capture = FlatImage(ClImage::eUInt8, 97, 83, 1, n);
        ExpectTheSame(Capture, 0);
        Capture.LineData(40)[50] = static_cast<unsigned char>(255 - n);
        ExpectTheSame(Capture, 0);
    }
}

/// Stripes whose middles are white defects, in lines enough for columns to sum to 2^16 and more.
TEST(QuickDefects, AreAddedUpOverAnyNumberOfLines) {
    for (const int nHeight : {256, 257, 258, 600}) {
        SCOPED_TRACE(nHeight);
        ClTestImage Capture = FlatImage(ClImage::eUInt8, 130, nHeight, 1, 255);
        for (int y = 0; y < nHeight; ++y)
            for (int x = 0; x < 130; ++x)
                if (x / 20 % 2 == 0)
                    Capture.LineData(y)[x] = 0;
        ClTestImage Fade = FlatImage(ClImage::eUInt8, 130, nHeight, 1, 255);
        ClTestImage Out = FlatImage(ClImage::eUInt8, 130, nHeight, 1, 0);
        const auto planeOf = [](const ClImage& Image) {
            return Quick::StPlane{Image.Data(), Image.LineStrideBytes(), Image.Width(),
                                  Image.Height()};
        };
        Kernels::ClScratch Memory;
        Kernels::ClScratch Scratch;
        const Quick::StDefectSums Sums =
            Quick::WriteDefects(planeOf(Capture), 5, planeOf(Fade), Memory, Scratch, planeOf(Out));
        long nWhite = 0;
        unsigned long nSum = 0;
        for (int y = 0; y < nHeight; ++y)
            for (int x = 0; x < 130; ++x) {
                nWhite += Out.LineData(y)[x] == 255 ? 1 : 0;
                nSum += Out.LineData(y)[x];
            }
        EXPECT_EQ(Out.LineData(nHeight / 2)[50], 255);
        EXPECT_EQ(Sums.m_nWhite, nWhite);
        EXPECT_EQ(Sums.m_nSum, nSum);
    }
}

TEST(QuickDefects, AreThoseOfTheOperatorsForNoiseAroundAFullDefect) {
    ClTestImage Capture = FlatImage(ClImage::eUInt8, 60, 140, 1, 200);
    for (int n = 0; n < 60; ++n)
        Capture.LineData(60 + n % 20)[n] = static_cast<unsigned char>(4 * n);
    for (const int nNoise : {62, 63, 64, 65, 255})
        ExpectTheSame(Capture, static_cast<unsigned char>(nNoise));
}

TEST(QuickDefects, DependOnNoCaptureOfAnotherSizeBefore) {
    ClIpQK7FunctionalityCheck Kept;
    for (const auto& [nWidth, nHeight] :
         {std::pair(97, 83), std::pair(97, 160), std::pair(120, 160), std::pair(97, 83)}) {
        ClTestImage Capture = FlatImage(ClImage::eUInt8, nWidth, nHeight, 1, 230);
        for (int n = 0; n < nHeight; ++n)
            Capture.LineData(n)[n % nWidth] = 40;
        ClImage Out;
        ClImage Expected;
        ClIpQK7FunctionalityCheck Fresh;
        EXPECT_EQ(Check(Kept, Capture, Out), Check(Fresh, Capture, Expected));
        EXPECT_TRUE(IsTwin(Out, Expected));
    }
}
