// The quick dynamic calibration gives what the plain sequence of operators gives: outputs with
// their line ends, masks and levels.

#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/Quick/QuickRun.h"
#include "FingerCoding/RandomCaptures.h"
#include "support/InstructionLevels.h"

using namespace TestSupport;

namespace {

/// One object for many captures, as a scanner has it.
class ClPair {
public:
    /// Runs both; whether the quick one took the capture.
    bool Compare(ClImage& rCapture, bool bSensitive) {
        StOutcome Plain;
        RunPlainly(rCapture, bSensitive, Plain);
        StOutcome Quick;
        const bool bTaken = RunQuickly(m_Quick, rCapture, bSensitive, Quick);
        ++(bTaken ? m_nTaken : m_nLeft);
        if (bTaken)
            ExpectTwins(Quick, Plain);
        m_nMasks += bTaken && !IsWhite(Plain.m_Mask) ? 1 : 0;
        m_nFingers += bTaken && !IsWhite(Plain.m_Out) ? 1 : 0;
        m_nBetween += bTaken && Plain.m_dDry > 0.0 && Plain.m_dDry < 100.0 ? 1 : 0;
        return bTaken;
    }
    void CompareBothModes(ClImage& rCapture) {
        for (const bool bSensitive : {false, true}) {
            SCOPED_TRACE(bSensitive ? "sensitive" : "normal");
            Compare(rCapture, bSensitive);
        }
    }

    int m_nTaken = 0;
    int m_nLeft = 0;
    int m_nMasks = 0;   ///< found
    int m_nFingers = 0; ///< and kept
    int m_nBetween = 0; ///< neither moist nor as dry as can be

private:
    Quick::ClDynamicCalibration m_Quick;
};

template <class Value>
ClTestImage Painted(int nWidth, int nHeight, Value value) {
    ClTestImage Image;
    Image.NewWithType(ClImage::eUInt8, nWidth, nHeight, 1, 19685, 19685);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            Image.LineData(y)[x] = static_cast<unsigned char>(value(x, y));
    return Image;
}

} // namespace

TEST(QuickDynamicCalibration, IsThePlainSequenceOnSimulatedCapturesAtEveryLevel) {
    ClPair Pair;
    for (const char* szKind :
         {"loop", "dry", "wet", "partial", "light", "two_fingers", "empty", "dirty"}) {
        SCOPED_TRACE(szKind);
        ClTestImage Capture = WarpedCapture(szKind);
        AtEveryLevel([&] { Pair.CompareBothModes(Capture); });
    }
    EXPECT_EQ(Pair.m_nLeft, 0);
    EXPECT_GT(Pair.m_nFingers, 8);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceOnRandomCapturesOfUnequalAxes) {
    ClPair Pair;
    for (unsigned nSeed = 1000; nSeed < 1300; ++nSeed) {
        SCOPED_TRACE(nSeed);
        ClTestImage Capture = ClRandomCapture(nSeed).Make();
        Pair.CompareBothModes(Capture);
    }
    EXPECT_LT(Pair.m_nLeft, 6);
    EXPECT_GT(Pair.m_nFingers, 150);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceOnScrapsAndWavyPlatens) {
    ClPair Pair;
    for (unsigned nSeed = 1; nSeed <= 150; ++nSeed) {
        SCOPED_TRACE(nSeed);
        ClTestImage Scrap = ClRandomCapture(nSeed).MakeOfAScrap(53, 110);
        Pair.CompareBothModes(Scrap);
        ClTestImage Wavy = ClRandomCapture(nSeed).MakeOnAWavyPlaten();
        Pair.CompareBothModes(Wavy);
    }
    EXPECT_LT(Pair.m_nLeft, 6);
    EXPECT_GT(Pair.m_nFingers, 60);
    EXPECT_GT(Pair.m_nMasks, 100);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceOnNoiseAtEveryLevel) {
    std::mt19937 Random(7);
    ClPair Pair;
    for (int nRun = 0; nRun < 12; ++nRun) {
        const unsigned long nLeast = Random() % 200;
        const unsigned long nRange = 1 + Random() % (256 - nLeast);
        ClTestImage Capture =
            Painted(53 + static_cast<int>(Random() % 90), 53 + static_cast<int>(Random() % 90),
                    [&](int, int) { return nLeast + Random() % nRange; });
        AtEveryLevel([&] { Pair.CompareBothModes(Capture); });
    }
    EXPECT_EQ(Pair.m_nLeft, 0);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceOnGradientsAndBlocks) {
    ClPair Pair;
    const auto compare = [&Pair](ClTestImage Capture) { Pair.CompareBothModes(Capture); };
    for (const int nWidth : {53, 54, 55, 56, 97, 130}) {
        SCOPED_TRACE(nWidth);
        for (const int v : {0, 1, 128, 254, 255})
            compare(Painted(nWidth, 61, [v](int, int) { return v; }));
        compare(Painted(nWidth, 97, [](int x, int) { return std::min(x * 3, 255); }));
        compare(Painted(nWidth, 97, [](int, int y) { return 255 - y * 2; }));
        compare(Painted(nWidth, 97, [](int x, int y) { return (x ^ y) & 1 ? 255 : 0; }));
        compare(Painted(nWidth, 97, [](int x, int y) { return x == 20 && y == 30 ? 0 : 255; }));
        compare(Painted(nWidth, 180, [](int x, int y) { return x < 45 || y > 90 ? 20 : 230; }));
        compare(Painted(nWidth, 180, [](int x, int y) { // ridges in four places
            const bool bGap = x % 60 > 50 || y % 90 > 75;
            return bGap ? 240 : y % 9 < 4 ? 30 : 200;
        }));
        compare(Painted(nWidth, 180, [](int, int y) { return y % 9 < 4 ? 10 : 190; }));
    }
    EXPECT_EQ(Pair.m_nLeft, 0);
    EXPECT_GT(Pair.m_nMasks, 20);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceOnDotsInASaturatedCapture) {
    ClPair Pair; // so few that all of the range counts as noise, and as many as make a region
    for (const int nStep : {5, 6, 7}) {
        SCOPED_TRACE(nStep);
        ClTestImage Capture = Painted(400, 400, [nStep](int x, int y) {
            const bool bInside = std::abs(x - 200) < 45 && std::abs(y - 200) < 60;
            return bInside && x % nStep == 0 && y % nStep == 0 ? 60 + x % 40 : 255;
        });
        Pair.CompareBothModes(Capture);
    }
    EXPECT_EQ(Pair.m_nLeft, 0);
    EXPECT_GT(Pair.m_nMasks, 0);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceWhereTheRangeIsEmptyOrTurnedRound) {
    ClPair Pair;
    for (const int nHalfWidth : {15, 20, 25, 30}) {
        SCOPED_TRACE(nHalfWidth);
        const auto isInside = [=](int x, int y, int nHalfHeight) {
            return std::abs(x - 200) < nHalfWidth && std::abs(y - 200) < nHalfHeight;
        };
        ClTestImage TurnedRound = Painted(400, 400, [&](int x, int y) { // it begins above its end
            const int nPrint = y % 9 < 4 ? 60 + x % 40 : 160;
            return isInside(x, y, 40) ? nPrint : 255;
        });
        Pair.CompareBothModes(TurnedRound);
        ClTestImage Empty = Painted(300, 400, [&](int x, int y) { // it has one value
            return isInside(x, y, 200) && y % 9 < 4 ? 60 : 255;
        });
        Pair.CompareBothModes(Empty);
    }
    EXPECT_EQ(Pair.m_nLeft, 0);
    EXPECT_GT(Pair.m_nMasks, 4);
}

TEST(QuickDynamicCalibration, IsThePlainSequenceWhereAFingerIsSmearedBesideItsRidges) {
    ClPair Pair;
    for (const int nSmear : {0, 10, 25, 40}) {
        SCOPED_TRACE(nSmear);
        for (const int nSlope : {2, 3, 5}) // without an edge at its end, which were a ridge
            for (const bool bMirrored : {false, true}) {
                ClTestImage Capture = Painted(400, 300, [=](int nColumn, int y) {
                    const int x = bMirrored ? 399 - nColumn : nColumn;
                    if (x < 200)
                        return y % 9 < 4 ? 30 : 150;
                    return std::min(nSmear + std::max(x - 220, 0) * nSlope, 232 + (x + y) % 5);
                });
                Pair.CompareBothModes(Capture);
            }
    }
    EXPECT_EQ(Pair.m_nLeft, 0);
    EXPECT_EQ(Pair.m_nMasks, Pair.m_nTaken); // too dirty to be kept, but not to be measured
    EXPECT_EQ(Pair.m_nBetween, Pair.m_nTaken);
}

TEST(QuickDynamicCalibration, LeavesSmallCapturesAndStrangeOnesToThePlainSequence) {
    const auto takes = [](int nWidth, int nHeight, int nPelsX, int nPelsY) {
        ClImage Image(nWidth, nHeight, 1, nPelsX, nPelsY);
        return Quick::ClDynamicCalibration::Takes(Image);
    };
    EXPECT_TRUE(takes(53, 53, 19685, 9842));
    EXPECT_FALSE(takes(52, 53, 19685, 19685));
    EXPECT_FALSE(takes(53, 52, 19685, 19685));
    EXPECT_FALSE(takes(2049, 53, 19685, 19685));
    EXPECT_FALSE(takes(53, 2049, 19685, 19685));
    EXPECT_FALSE(takes(320, 480, 8999, 19685));
    EXPECT_FALSE(takes(320, 480, 19685, 40001));
    ClImage Planes(320, 480, 3, 19685, 19685);
    EXPECT_FALSE(Quick::ClDynamicCalibration::Takes(Planes));
    ClImage Dim(320, 480, 1, 19685, 19685);
    Dim.SetWhite(254.0);
    EXPECT_FALSE(Quick::ClDynamicCalibration::Takes(Dim));
    Dim.Attach(nullptr, ClImage::eUInt8, 320, 480, 1, 19685, 19685);
    EXPECT_FALSE(Quick::ClDynamicCalibration::Takes(Dim));
}

TEST(QuickDynamicCalibration, LeavesOtherWeightsOfDirtToThePlainSequence) {
    ClTestImage Capture = WarpedCapture("dry");
    const auto dirtOf = [&Capture](unsigned char nWeight) {
        ClImage Out;
        ClIpQK7DynamicCalibration30 Calibration;
        Calibration.m_pInImage = &Capture;
        Calibration.m_pOutImage = &Out;
        std::replace(std::begin(Calibration.m_aDirtWeights), std::end(Calibration.m_aDirtWeights),
                     static_cast<unsigned char>(0), nWeight);
        EXPECT_EQ(Calibration.Apply(), 0);
        return Calibration.m_dDirtWarningLevel;
    };
    const double dUsual = dirtOf(0);
    const double dOther = dirtOf(1);
    EXPECT_GT(dOther, dUsual);
    const ClObservedRuns Observed;
    EXPECT_EQ(dirtOf(0), dUsual);
    EXPECT_EQ(dirtOf(1), dOther);
}
