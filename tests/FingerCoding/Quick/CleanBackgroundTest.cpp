#include "FingerCoding/Quick/CleanBackground.h"

#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/Quick/PlaneCases.h"
#include "support/InstructionLevels.h"

#include <random>

using namespace TestSupport;

namespace {

Naive::Grid Random(std::mt19937& rRandom, int nWidth, int nHeight, unsigned nMost) {
    return Naive::Made(nWidth, nHeight,
                       [&](int, int) { return static_cast<int>(rRandom() % (nMost + 1)); });
}

} // namespace

TEST(QuickCleanBackground, KeepsWhereTheMeanOfTheMaskIsHigh) {
    std::mt19937 Engine(9);
    for (const int nWidth : {53, 54, 64, 117, 160})
        for (const unsigned nMost : {1U, 9U, 10U, 11U, 12U, 255U}) { // means of loss around 5
            const Naive::Grid Loss = Random(Engine, nWidth, 53 + nWidth % 40, nMost);
            const Naive::Grid Fade = Random(Engine, nWidth, 53 + nWidth % 40, 255);
            const Naive::Grid Far =
                Naive::Mean(Naive::Each(Loss, [](int n) { return 255 - n; }), 53);
            const Naive::Grid Expected =
                Naive::Both(Far, Fade, [](int nFar, int nFade) { return nFar >= 250 ? nFade : 0; });
            const ClOwnPlane LossPlane(Loss);
            const ClOwnPlane FadePlane(Fade);
            std::vector<unsigned char> aMemory(Quick::FarBackgroundBytes(nWidth) + 64);
            unsigned char* pMemory = aMemory.data();
            pMemory += (64 - reinterpret_cast<std::uintptr_t>(pMemory) % 64) % 64;
            AtEveryLevel([&] {
                const ClOwnPlane Out(nWidth, Loss.m_nHeight);
                Quick::KeepFarBackground(LossPlane.Plane(), FadePlane.Plane(), pMemory,
                                         Out.Plane());
                ExpectGrid(GridOf(Out.Plane()), Expected);
            });
        }
}

TEST(QuickCleanBackground, LosesWhatTheMaskLacksAndWhatIsSaturated) {
    const Naive::Grid Capture = Naive::Made(256, 3, [](int x, int y) { return y == 0 ? 255 : x; });
    const Naive::Grid Mask = Naive::Made(256, 3, [](int x, int y) { return (x * 7 + y) % 256; });
    const ClOwnPlane In(Capture);
    const ClOwnPlane MaskPlane(Mask);
    AtEveryLevel([&] {
        const ClOwnPlane Out(256, 3);
        Quick::WriteLoss(In.Plane(), MaskPlane.Plane(), Out.Plane());
        ExpectGrid(GridOf(Out.Plane()), Naive::Both(Capture, Mask, [](int c, int m) {
                       return 255 - std::max(0, m - (c == 255 ? 255 : 0));
                   }));
    });
}

TEST(QuickCleanBackground, WeighsDirtAsTheTableDoes) {
    const ClIpQK7DynamicCalibration30 Calibration;
    for (int nMask : {0, 1, 17, 255})
        for (int v = 0; v < 256; ++v) {
            const ClOwnPlane In(Naive::Grid(3, 2, v));
            const ClOwnPlane Mask(Naive::Grid(3, 2, nMask));
            AtEveryLevel([&] {
                EXPECT_EQ(Quick::DirtSum(In.Plane(), Mask.Plane()),
                          static_cast<unsigned>(6 * nMask * Calibration.m_aDirtWeights[v]));
            });
        }
}

TEST(QuickCleanBackground, SumsTheExcessOfBothProbabilities) {
    std::mt19937 Engine(2);
    for (const long nThreshold : {100L, 127L, 128L, 129L, 198L})
        for (int nWidth : {1, 15, 64, 131}) {
            const ClOwnPlane Smooth(Random(Engine, nWidth, 1, 255));
            const ClOwnPlane Ridges(Random(Engine, nWidth, 1, 255));
            const ClOwnPlane Mask(Random(Engine, nWidth, 1, 255));
            std::uint64_t nWeights = 0;
            std::uint64_t nExcess = 0;
            for (long x = 0; x < nWidth; ++x) {
                const long nBright =
                    std::clamp(Smooth.Plane().Line(0)[x] + 128 - nThreshold, 0L, 255L);
                const long nProb = std::min(255L, nBright + Ridges.Plane().Line(0)[x]);
                const long nWeight = 255 - Mask.Plane().Line(0)[x];
                nWeights += static_cast<std::uint64_t>(nWeight);
                nExcess += static_cast<std::uint64_t>(std::max(nProb - 128, 0L) * nWeight);
            }
            AtEveryLevel([&] {
                Quick::StDrySums Sums;
                Quick::AddDrySums(Quick::StBrightProb(nThreshold), Smooth.Plane().Line(0),
                                  Ridges.Plane().Line(0), Mask.Plane().Line(0), nWidth, Sums);
                EXPECT_EQ(Sums.m_nWeights, nWeights);
                EXPECT_EQ(Sums.m_nExcess, nExcess);
                Quick::StDrySums Outside;
                Quick::AddDrySums(Mask.Plane().Line(0), nWidth, Outside);
                EXPECT_EQ(Outside.m_nWeights, nWeights);
                EXPECT_EQ(Outside.m_nExcess, 127 * nWeights);
            });
        }
}

TEST(QuickCleanBackground, KnowsPlanesOfOneValue) {
    for (int v : {0, 1, 255}) {
        const ClOwnPlane Plane(Naive::Grid(70, 3, v));
        AtEveryLevel([&] { EXPECT_TRUE(Quick::IsUniform(Plane.Plane())); });
        for (const long x : {0, 31, 69}) {
            Plane.Plane().Line(2)[x] ^= 4;
            AtEveryLevel([&] { EXPECT_FALSE(Quick::IsUniform(Plane.Plane())); });
            Plane.Plane().Line(2)[x] ^= 4;
        }
    }
}
