#include "FingerCoding/Quick/DoubleBlur.h"

#include "FingerCoding/Quick/PlaneCases.h"
#include "support/InstructionLevels.h"

#include <random>

using namespace TestSupport;
using Quick::ClDoubleBlur;
using Quick::StBox;

namespace {

/// 255 where ground is, as an image has it.
Naive::Grid Greys(const Naive::Grid& Region) {
    return Naive::Each(Region, [](int n) { return n == 1 ? 0 : 255; });
}

/// The definition: two means of what is ground, and a threshold.
Naive::Grid Blurred(const Naive::Grid& Region, double dThreshold) {
    const int nWidth = static_cast<int>(ClDoubleBlur::cnWidth);
    const Naive::Grid Image = Naive::Mean(Naive::Mean(Greys(Region), nWidth), nWidth);
    return Naive::Each(Image, [=](int n) { return n < dThreshold ? 1 : 0; });
}

/// What a plane has in a box, on ground.
Naive::Grid Inside(const Naive::Grid& Plane, const StBox& Box) {
    return Naive::Made(Plane.m_nWidth, Plane.m_nHeight, [&](int x, int y) {
        const bool bInside =
            x >= Box.m_nLeft && x < Box.m_nRight && y >= Box.m_nTop && y < Box.m_nBottom;
        return bInside ? Plane.At(x, y) : 0;
    });
}

/// Whether no side of the box could be nearer.
bool IsTight(const Naive::Grid& Region, const StBox& Box) {
    const StBox Smaller[] = {{Box.m_nLeft + 1, Box.m_nTop, Box.m_nRight, Box.m_nBottom},
                             {Box.m_nLeft, Box.m_nTop + 1, Box.m_nRight, Box.m_nBottom},
                             {Box.m_nLeft, Box.m_nTop, Box.m_nRight - 1, Box.m_nBottom},
                             {Box.m_nLeft, Box.m_nTop, Box.m_nRight, Box.m_nBottom - 1}};
    for (const StBox& Other : Smaller)
        if (Inside(Region, Other).m_aValues == Region.m_aValues)
            return false;
    return true;
}

struct StBlurCase {
    Naive::Grid m_Region;
    StBox m_Box;
};

/// A region in a box as near to the edges as it may be.
template <class Value>
StBlurCase InFrame(int nWidth, int nHeight, Value value) {
    const int nReach = static_cast<int>(ClDoubleBlur::cnReach);
    const StBox Box{nReach, nReach, nReach + nWidth, nReach + nHeight};
    return {Naive::Made(nWidth + 2 * nReach, nHeight + 2 * nReach,
                        [&](int x, int y) {
                            const int u = x - nReach;
                            const int v = y - nReach;
                            const bool bInBox = u >= 0 && u < nWidth && v >= 0 && v < nHeight;
                            return bInBox && value(u, v) ? 1 : 0;
                        }),
            Box};
}

void ExpectBlurred(const StBlurCase& Case, bool bGrow) {
    const Naive::Grid Expected = Blurred(Case.m_Region, bGrow ? 245.0 : 10.0);
    ClOwnPlane In(Case.m_Region.m_nWidth, Case.m_Region.m_nHeight, 77); // outside of the box
    for (long y = Case.m_Box.m_nTop; y < Case.m_Box.m_nBottom; ++y)
        for (long x = Case.m_Box.m_nLeft; x < Case.m_Box.m_nRight; ++x)
            In.Plane().Line(y)[x] = static_cast<unsigned char>(
                Case.m_Region.At(static_cast<int>(x), static_cast<int>(y)));
    std::vector<unsigned char> aMemory(ClDoubleBlur::Bytes(Case.m_Region.m_nWidth) + 64);
    unsigned char* pMemory = aMemory.data();
    pMemory += (64 - reinterpret_cast<std::uintptr_t>(pMemory) % 64) % 64;
    const ClDoubleBlur Blur(pMemory);
    AtEveryLevel([&] {
        const ClOwnPlane Out(Case.m_Region.m_nWidth, Case.m_Region.m_nHeight);
        const StBox Found = bGrow ? Blur.Grow(In.Plane(), Case.m_Box, Out.Plane())
                                  : Blur.Shrink(In.Plane(), Case.m_Box, Out.Plane());
        EXPECT_EQ(Found.IsEmpty(), Naive::IsEmpty(Expected));
        if (Found.IsEmpty())
            return;
        ExpectGrid(Inside(GridOf(Out.Plane()), Found), Expected);
        EXPECT_TRUE(IsTight(Expected, Found));
    });
}

} // namespace

TEST(QuickDoubleBlur, GrowsAndShrinksWhatIsSolidByItsDefinition) {
    for (const int nSide : {1, 3, 4, 5, 20, 45, 70}) {
        SCOPED_TRACE(nSide);
        const StBlurCase Case = InFrame(nSide, 50, [](int, int) { return true; });
        ExpectBlurred(Case, true);
        ExpectBlurred(Case, false);
    }
}

TEST(QuickDoubleBlur, GrowsAndShrinksNoiseOfEveryDensity) {
    std::mt19937 Random(3);
    for (int nPercent : {1, 5, 10, 50, 90, 95, 97, 99}) {
        SCOPED_TRACE(nPercent);
        const int nWidth = 1 + static_cast<int>(Random() % 150);
        const int nHeight = 1 + static_cast<int>(Random() % 90);
        const StBlurCase Case = InFrame(nWidth, nHeight, [&](int, int) {
            return Random() % 100 < static_cast<unsigned>(nPercent);
        });
        ExpectBlurred(Case, true);
        ExpectBlurred(Case, false);
    }
}

TEST(QuickDoubleBlur, GrowsAndShrinksRoundPiecesWithGaps) {
    for (const int nGap : {2, 8, 14, 20}) {
        SCOPED_TRACE(nGap);
        const StBlurCase Case = InFrame(140, 100, [nGap](int x, int y) {
            const double u = (x - 70) / 70.0;
            const double v = (y - 50) / 50.0;
            return u * u + v * v < 1.0 && (x + y) % 31 >= nGap;
        });
        ExpectBlurred(Case, true);
        ExpectBlurred(Case, false);
    }
}
