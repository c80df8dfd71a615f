// The chain of windows of a mask: examples by hand, and random chains against the formulas.

#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskCases.h"
#include "support/Throws.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

using TestSupport::cszIndex;
using TestSupport::cszNoSize;

using namespace TestSupport;

constexpr const char* cszNoPels = "Pels are not in a valid range (see documentation).";

TEST(Mask2Steps, TheFirstCallRecordsTheFrameAndItsWindow) {
    ClMask2 mask;

    mask.AddPrecutStep(400, 300, 1000, 2000, 10, 20, 100, 50, true);

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 400, 300}, {10, 20, 100, 50}}));
    EXPECT_EQ(mask.m_nPelsX, 1000);
    EXPECT_EQ(mask.m_nPelsY, 2000);
    EXPECT_EQ(mask.GetOffsetsCount(), 2);
}

TEST(Mask2Steps, AWindowIsRelativeToTheStepOfItsFrame) {
    ClMask2 mask;
    mask.AddPrecutStep(400, 300, 1000, 1000, 10, 20, 200, 150, true);

    mask.AddPrecutStep(200, 150, 1000, 1000, 5, 6, 100, 50, true);
    mask.AddPrecutStep(400, 300, 1000, 1000, 7, 8, 20, 20, true);

    EXPECT_EQ(StepsOf(mask),
              (StepList{{0, 0, 400, 300}, {10, 20, 200, 150}, {15, 26, 100, 50}, {7, 8, 20, 20}}));
}

TEST(Mask2Steps, AWindowOfAnotherResolutionIsKeptInTheScaleOfTheMask) {
    ClMask2 mask;
    mask.AddPrecutStep(400, 300, 1000, 1000, 0, 0, 400, 300, true);

    mask.AddPrecutStep(200, 600, 500, 2000, 5, 7, 50, 51, true);

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 400, 300}, {10, 3.5, 100, 25.5}}));
    EXPECT_EQ(mask.m_nPelsX, 1000);
    EXPECT_EQ(mask.m_nPelsY, 1000);
}

TEST(Mask2Steps, AWindowOfAKnownSizeAddsNothing) {
    ClMask2 mask;
    mask.AddPrecutStep(400, 400, 1000, 1000, 0, 0, 200, 200, true);
    const StepList before = StepsOf(mask);

    mask.AddPrecutStep(400, 400, 1000, 1000, 50, 60, 198, 198, true); // 2 under 1.98 + 0.5
    mask.AddPrecutStep(400, 400, 1000, 1000, 50, 60, 300, 200, true); // steps may be smaller
    EXPECT_EQ(StepsOf(mask), before);

    mask.AddPrecutStep(400, 400, 1000, 1000, 50, 60, 197, 200, true); // 3 over 1.97 + 0.5
    EXPECT_EQ(mask.GetOffsetsCount(), 3);
}

TEST(Mask2Steps, TheToleranceItselfIsAnotherSize) {
    ClMask2 mask;
    mask.AddPrecutStep(101, 400, 1000, 1000, 0, 0, 101, 400, true);
    // A cut of 50 in height makes the tolerance 1.0.
    mask.m_aPrecutSteps[0].dHeight = 51;
    mask.AddPrecutStep(101, 51, 1000, 1000, 0, 0, 101, 50, true);
    EXPECT_EQ(mask.GetOffsetsCount(), 2);
}

TEST(Mask2Steps, ResettingDropsTheRunsAloneAndBeforeAllTests) {
    ClMask2 mask = MaskWithRuns(40, 30, {{0, 1, 0}});
    mask.AddPrecutStep(40, 30, cnTestPels, cnTestPels, 0, 0, 20, 20, false);
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 1, 0}}));

    ClMask2 refused(mask);
    EXPECT_THROWS(refused.AddPrecutStep(1, 1, cnTestPels, cnTestPels, 0, 0, 1, 1, true),
                  ClException, -35, cszIndex);
    mask.AddPrecutStep(40, 30, cnTestPels, cnTestPels, 0, 0, 40, 30, true);

    EXPECT_EQ(RunsOf(mask), RunList{});
    EXPECT_EQ(RunsOf(refused), RunList{});
    EXPECT_EQ(StepsOf(refused), StepsOf(mask));
}

TEST(Mask2Steps, AnImageIsAFrameAndResetsTheRuns) {
    ClMask2 mask = MaskWithRuns(40, 30, {{0, 1, 0}});
    mask.AddPrecutStep(BlankImage(ClImage::eUInt8, 40, 30), 1, 2, 10, 12);

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 40, 30}, {1, 2, 10, 12}}));
    EXPECT_EQ(RunsOf(mask), RunList{});
}

TEST(Mask2Steps, RefusesAResolutionBelowOne) {
    ClMask2 mask;
    EXPECT_THROWS(mask.AddPrecutStep(4, 4, 0, 10, 0, 0, 2, 2, false), ClExTessarin, -13, cszNoPels);
    EXPECT_THROWS(mask.AddPrecutStep(4, 4, 10, -1, 0, 0, 2, 2, false), ClExTessarin, -13,
                  cszNoPels);
    EXPECT_TRUE(mask == ClMask2());
}

TEST(Mask2Steps, RefusesAFrameWithoutArea) {
    ClMask2 mask;
    EXPECT_THROWS(mask.AddPrecutStep(0, 4, 10, 10, 0, 0, 2, 2, false), ClException, -701,
                  cszNoSize);
    EXPECT_TRUE(mask == ClMask2());
}

TEST(Mask2Steps, RefusesAFrameThatStandsAtNoStep) {
    ClMask2 mask = MaskWithRuns(40, 30, {{0, 1, 0}});
    const ClMask2 before(mask);
    EXPECT_THROWS(mask.AddPrecutStep(30, 30, cnTestPels, cnTestPels, 0, 0, 2, 2, false),
                  ClException, -35, cszIndex);
    EXPECT_TRUE(mask == before);
}

// Recognising a size

TEST(Mask2Steps, AnImageIsRecognisedByItsSize) {
    ClMask2 mask;
    mask.AddPrecutStep(400, 300, 1000, 1000, 0, 0, 200, 100, true);

    EXPECT_EQ(mask.GetOffsetsIndex(400, 300, 1000, 1000), 0);
    EXPECT_EQ(mask.GetOffsetsIndex(500, 500, 1000, 1000), 0); // steps may be smaller
    EXPECT_EQ(mask.GetOffsetsIndex(200, 100, 1000, 1000), 1);
    EXPECT_EQ(mask.GetOffsetsIndex(399, 300, 1000, 1000), 1);
    EXPECT_EQ(mask.GetOffsetsIndex(199, 100, 1000, 1000), -1);
    EXPECT_EQ(mask.GetOffsetsIndex(200, 99, 1000, 1000), -1);
    EXPECT_EQ(mask.GetOffsetsIndex(100, 50, 500, 500), 1);
    EXPECT_EQ(mask.GetOffsetsIndex(200, 100, 0, 0), 1); // the scale of the mask
    EXPECT_EQ(ClMask2().GetOffsetsIndex(1, 1, 1, 1), -1);
}

TEST(Mask2Steps, AResolutionOfOneIsOne) {
    ClMask2 mask;
    mask.AddPrecutStep(40, 30, 2, 2, 0, 0, 40, 30, true);
    EXPECT_EQ(mask.GetOffsetsIndex(20, 15, 1, 1), 0);
    EXPECT_EQ(mask.GetOffsetsIndex(20, 30, 1, 2), 0);
    EXPECT_EQ(mask.GetOffsetsIndex(40, 15, 2, 1), 0);
    EXPECT_EQ(mask.GetOffsetsIndex(20, 15, 0, 0), -1);
    long x = 0;
    long y = 0;
    long w = 0;
    long h = 0;
    mask.GetCutOffsets(0UL, 1, 1, x, y, w, h);
    EXPECT_EQ((std::array{w, h}), (std::array{20L, 15L}));
}

TEST(Mask2Steps, ScaledSizesHaveALargerTolerance) {
    ClMask2 mask;
    mask.AddPrecutStep(100, 100, 10000, 10000, 0, 0, 100, 100, true);
    mask.m_aPrecutSteps[0].dWidth = 100.9;
    mask.m_aPrecutSteps[0].dHeight = 101.0;

    // Width by its truncated size, height by 1 below 0.1 + 1.0; not below 0.1 + 0.5.
    EXPECT_EQ(mask.GetOffsetsIndex(100, 100, 10000, 10000), -1);
    EXPECT_EQ(mask.GetOffsetsIndex(100, 100, 9998, 10000), 0);
    EXPECT_EQ(mask.GetOffsetsIndex(100, 100, 10000, 9998), 0);
}

TEST(Mask2Steps, TheTruncatedSizeOfAStepCountsToo) {
    ClMask2 mask;
    mask.AddPrecutStep(100, 100, 1000, 1000, 0, 0, 100, 100, true);
    mask.m_aPrecutSteps[0].dWidth = 100.95;
    EXPECT_EQ(mask.GetOffsetsIndex(100, 100, 1000, 1000), 0);
    mask.m_aPrecutSteps[0].dWidth = 101.0;
    EXPECT_EQ(mask.GetOffsetsIndex(100, 100, 1000, 1000), -1);
}

TEST(Mask2Steps, RefusesSizesThatNoImageHas) {
    const ClMask2 mask = MaskOf({"##"});
    const long aSizes[][4] = {
        {0, 1, 1, 1}, {1, 0, 1, 1}, {-1, 1, 0, 0}, {1, 1, -1, 1}, {1, 1, 1, -1}};
    for (const auto& Size : aSizes) {
        EXPECT_THROWS(mask.GetOffsetsIndex(Size[0], Size[1], Size[2], Size[3]), ClException, -701,
                      cszNoSize);
    }
    EXPECT_THROWS(mask.GetOffsetsIndex(ClImage()), ClException, -701, cszNoSize);
}

// Offsets

TEST(Mask2Steps, TheLastWindowIsToldRelativeToAStep) {
    ClMask2 mask;
    mask.AddPrecutStep(400, 300, 1000, 1000, 10, 20, 200, 150, true);
    mask.AddPrecutStep(200, 150, 1000, 1000, 5, 6, 101, 51, true);
    int nX = 0;
    int nY = 0;
    int nWidth = 0;
    int nHeight = 0;

    mask.GetCutOffsets(1UL, 1000, 1000, nX, nY, nWidth, nHeight);
    EXPECT_EQ((std::array{nX, nY, nWidth, nHeight}), (std::array{5, 6, 101, 51}));
    mask.GetCutOffsets(0UL, 500, 2000, nX, nY, nWidth, nHeight);
    EXPECT_EQ((std::array{nX, nY, nWidth, nHeight}), (std::array{8, 52, 51, 102}));
    mask.GetCutOffsets(0UL, 0L, -4L, nX, nY, nWidth, nHeight);
    EXPECT_EQ((std::array{nX, nY, nWidth, nHeight}), (std::array{15, 26, 101, 51}));
    mask.GetCutOffsets(0UL, 1500.5, 0.5, nX, nY, nWidth, nHeight); // 22.5075, 151.5505
    EXPECT_EQ((std::array{nX, nY, nWidth, nHeight}), (std::array{23, 26, 152, 51}));
    mask.GetCutOffsets(0UL, 0.5, 1500.5, nX, nY, nWidth, nHeight); // 39.013, 76.5255
    EXPECT_EQ((std::array{nX, nY, nWidth, nHeight}), (std::array{15, 39, 101, 77}));
}

TEST(Mask2Steps, TheLastStepStandsAtNoOffsetFromItself) {
    ClMask2 mask;
    mask.AddPrecutStep(400, 300, 1000, 1000, 10, 20, 200, 150, true);
    long x = 9;
    long y = 9;
    long w = 9;
    long h = 9;
    mask.GetCutOffsets(1UL, 1000, 1000, x, y, w, h);
    EXPECT_EQ((std::array{x, y, w, h}), (std::array{0L, 0L, 200L, 150L}));
}

TEST(Mask2Steps, AnOffsetBeforeAStepIsTruncatedTowardZero) {
    ClMask2 mask = MaskWithRuns(10, 10, {});
    mask.m_aPrecutSteps.Append({-3.0, -2.75, 5, 5});
    long x = 0;
    long y = 0;
    long w = 0;
    long h = 0;
    mask.GetCutOffsets(0UL, 0, 0, x, y, w, h);
    EXPECT_EQ(x, -2); // -2.5
    EXPECT_EQ(y, -2); // -2.25
}

TEST(Mask2Steps, WithoutStepsTheOffsetsStayAsTheyAre) {
    long x = 1;
    long y = 2;
    long w = 3;
    long h = 4;
    ClMask2().GetCutOffsets(77UL, 1000, 1000, x, y, w, h);
    EXPECT_EQ((std::array{x, y, w, h}), (std::array{1L, 2L, 3L, 4L}));
}

TEST(Mask2Steps, AnIndexOutsideIsReportedFromItsKnownPlace) {
    const ClMask2 mask = MaskOf({"##"});
    long n = 0;
    EXPECT_THROWS(mask.GetCutOffsets(1UL, 1, 1, n, n, n, n), ClException, -35, cszIndex);
    try {
        mask.GetCutOffsets(static_cast<unsigned long>(-1), 1, 1, n, n, n, n);
        FAIL() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_EQ(std::string(e.File()), "ImageProcessing/Mask2");
        EXPECT_EQ(e.Line(), 214);
        EXPECT_EQ(e.Number(), -35);
    }
}

TEST(Mask2Steps, AnImageBeginsWhereItsStepBegins) {
    ClMask2 mask;
    mask.AddPrecutStep(40, 30, cnTestPels, cnTestPels, 10, 11, 20, 15, true);
    ClTestImage scaled = BlankImage(ClImage::eUInt8, 8, 9);
    scaled.SetPelsX(cnTestPels / 5 * 2); // 20 x 15 pixels of the mask
    scaled.SetPelsY(cnTestPels / 5 * 3);
    long x = 9;
    long y = 9;

    mask.GetOffsets(BlankImage(ClImage::eUInt8, 40, 30), x, y);
    EXPECT_EQ((std::array{x, y}), (std::array{0L, 0L}));
    mask.GetOffsets(BlankImage(ClImage::eInt16, 20, 15), x, y);
    EXPECT_EQ((std::array{x, y}), (std::array{10L, 11L}));
    double dX = 9;
    double dY = 9;
    mask.GetOffsets(scaled, dX, dY); // 4 and 6.6
    EXPECT_EQ((std::array{dX, dY}), (std::array{4.0, 7.0}));
}

TEST(Mask2Steps, AnImageThatStandsAtNoStepHasNoOffset) {
    long n = 0;
    const ClTestImage image = BlankImage(ClImage::eUInt8, 1, 1);
    EXPECT_THROWS(MaskOf({"##", "##"}).GetOffsets(image, n, n), ClException, -35, cszIndex);
    EXPECT_THROWS(ClMask2().GetOffsets(image, n, n), ClException, -35, cszIndex);
    EXPECT_THROWS(ClMask2().GetOffsets(ClImage(), n, n), ClException, -701, cszNoSize);
}

// Random chains against the formulas

struct StPlainChain {
    StepList m_aSteps;
    double m_dPelsX = 0;
    double m_dPelsY = 0;

    long Index(double w, double h, double pelsX, double pelsY) const {
        const double sx = pelsX >= 1 ? m_dPelsX / pelsX : 1.0;
        const double sy = pelsY >= 1 ? m_dPelsY / pelsY : 1.0;
        const bool bScaled = std::abs(sx - 1.0) >= 0.0001 || std::abs(sy - 1.0) >= 0.0001;
        const double t = std::min(w, h) * 0.001 + (bScaled ? 1.0 : 0.5);
        for (std::size_t i = 0; i < m_aSteps.size(); ++i) {
            const double dWidth = m_aSteps[i][2];
            const double dHeight = m_aSteps[i][3];
            if (dWidth - sx * w < t && dHeight - sy * h < t)
                return static_cast<long>(i);
            if (std::trunc(dWidth) - sx * w < t && std::trunc(dHeight) - sy * h < t)
                return static_cast<long>(i);
        }
        return -1;
    }

    bool Add(double w, double h, double pelsX, double pelsY, const std::array<double, 4>& Cut) {
        if (m_aSteps.empty()) {
            m_dPelsX = pelsX;
            m_dPelsY = pelsY;
            m_aSteps.push_back({0, 0, w, h});
        }
        const long nReference = Index(w, h, pelsX, pelsY);
        if (nReference < 0)
            return false;
        AddTo(static_cast<std::size_t>(nReference), m_dPelsX / pelsX, m_dPelsY / pelsY, Cut);
        return true;
    }

    void AddTo(std::size_t nReference, double sx, double sy, const std::array<double, 4>& Cut) {
        const double t = std::min(Cut[2], Cut[3]) * 0.01 + 0.5;
        for (const auto& Step : m_aSteps)
            if (Step[2] - Cut[2] * sx < t && Step[3] - Cut[3] * sy < t)
                return;
        const auto Reference = m_aSteps[nReference];
        m_aSteps.push_back(
            {Reference[0] + Cut[0] * sx, Reference[1] + Cut[1] * sy, Cut[2] * sx, Cut[3] * sy});
    }

    void Resize(double pelsX, double pelsY) {
        for (auto& Step : m_aSteps) {
            Step[0] *= pelsX / m_dPelsX;
            Step[2] *= pelsX / m_dPelsX;
            Step[1] *= pelsY / m_dPelsY;
            Step[3] *= pelsY / m_dPelsY;
        }
        m_dPelsX = pelsX;
        m_dPelsY = pelsY;
    }

    std::array<long, 4> Window(std::size_t nReference, double pelsX, double pelsY) const {
        const double sx = pelsX >= 1 ? pelsX / m_dPelsX : 1.0;
        const double sy = pelsY >= 1 ? pelsY / m_dPelsY : 1.0;
        const auto& L = m_aSteps.back();
        const auto& R = m_aSteps[nReference];
        return {static_cast<long>((L[0] - R[0]) * sx + 0.5),
                static_cast<long>((L[1] - R[1]) * sy + 0.5), static_cast<long>(sx * L[2] + 0.5),
                static_cast<long>(sy * L[3] + 0.5)};
    }
};

constexpr int canPels[] = {9843, 19685, 39370};

void CompareQuestions(std::mt19937& rRandom, const ClMask2& Mask, const StPlainChain& Plain) {
    const int nPelsX = canPels[RandomInt(rRandom, 0, 2)];
    const int nPelsY = canPels[RandomInt(rRandom, 0, 2)];
    const int nWidth = RandomInt(rRandom, 1, 700);
    const int nHeight = RandomInt(rRandom, 1, 700);
    const long nIndex = Mask.GetOffsetsIndex(nWidth, nHeight, nPelsX, nPelsY);
    EXPECT_EQ(nIndex, Plain.Index(nWidth, nHeight, nPelsX, nPelsY));
    const unsigned long nReference = rRandom() % Mask.m_aPrecutSteps.Entries();
    std::array<long, 4> Window{};
    Mask.GetCutOffsets(nReference, nPelsX, nPelsY, Window[0], Window[1], Window[2], Window[3]);
    EXPECT_EQ(Window, Plain.Window(nReference, nPelsX, nPelsY));
}

void CutAtRandom(std::mt19937& rRandom, ClMask2& rMask, StPlainChain& rPlain) {
    const std::size_t nStep = rRandom() % rPlain.m_aSteps.size();
    const int nPels = canPels[RandomInt(rRandom, 0, 2)];
    const double dScale = nPels / rPlain.m_dPelsX;
    const int w = std::max(1, static_cast<int>(rPlain.m_aSteps[nStep][2] * dScale + 0.5));
    const int h = std::max(1, static_cast<int>(rPlain.m_aSteps[nStep][3] * dScale + 0.5));
    const int x = RandomInt(rRandom, 0, w - 1);
    const int y = RandomInt(rRandom, 0, h - 1);
    const int nWidth = RandomInt(rRandom, 1, w - x);
    const int nHeight = RandomInt(rRandom, 1, h - y);
    if (rPlain.Add(w, h, nPels, nPels, {1.0 * x, 1.0 * y, 1.0 * nWidth, 1.0 * nHeight}))
        rMask.AddPrecutStep(w, h, nPels, nPels, x, y, nWidth, nHeight, false);
    else
        EXPECT_THROWS(rMask.AddPrecutStep(w, h, nPels, nPels, x, y, nWidth, nHeight, false),
                      ClException, -35, cszIndex);
}

void BoundAtRandom(std::mt19937& rRandom, ClMask2& rMask, StPlainChain& rPlain) {
    const auto Last = rPlain.m_aSteps.back();
    const int w = static_cast<int>(Last[2] + 0.5);
    const int h = static_cast<int>(Last[3] + 0.5);
    if (w < 1 || h < 1)
        return;
    const int nLeft = RandomInt(rRandom, 0, w - 1);
    const int nTop = RandomInt(rRandom, 0, h - 1);
    const int nRight = RandomInt(rRandom, nLeft, w - 1);
    SetRuns(rMask, {{nLeft, nRight, nTop}, {nLeft, nLeft, h - 1}});
    const std::array<double, 4> Box{1.0 * nLeft, 1.0 * nTop, nRight - nLeft + 1.0, 1.0 * h - nTop};
    rPlain.AddTo(rPlain.m_aSteps.size() - 1, 1.0, 1.0, Box);
    ASSERT_TRUE(rMask.SetBoundingBox());
    EXPECT_EQ(RunsOf(rMask), (RunList{{0, nRight - nLeft, 0}, {0, 0, h - 1 - nTop}}));
    rMask.ResetEntries();
}

void ResizeAtRandom(std::mt19937& rRandom, ClMask2& rMask, StPlainChain& rPlain) {
    const int nPels = canPels[RandomInt(rRandom, 0, 2)];
    rMask.ResizeMask(1, 1, nPels, nPels);
    rPlain.Resize(nPels, nPels);
}

TEST(Mask2Steps, RandomChainsFollowTheFormulas) {
    std::mt19937 random(5);
    using Change = void (*)(std::mt19937&, ClMask2&, StPlainChain&);
    constexpr Change capfnChanges[] = {CutAtRandom, CutAtRandom, BoundAtRandom, ResizeAtRandom};
    unsigned long nLongest = 0;
    for (int i = 0; i < 500; ++i) {
        ClMask2 mask;
        StPlainChain plain;
        mask.AddPrecutStep(640, 480, 19685, 19685, 0, 0, 640, 480, true);
        plain.Add(640, 480, 19685, 19685, {0, 0, 640, 480});
        for (int nChange = 0; nChange < 12; ++nChange) {
            capfnChanges[RandomInt(random, 0, 3)](random, mask, plain);
            ASSERT_EQ(StepsOf(mask), plain.m_aSteps);
            CompareQuestions(random, mask, plain);
        }
        nLongest = std::max(nLongest, mask.m_aPrecutSteps.Entries());
    }
    EXPECT_GT(nLongest, 5UL); // chains did grow
}

} // namespace
