#include "FingerCoding/Quick/RidgeArea.h"

#include "ImageProcessing/IpRescale.h"
#include "support/Images.h"

#include <random>

using namespace TestSupport;
using Quick::StRidgeWork;

namespace {

std::optional<StRidgeWork> WorkOfSize(int nWidth, int nHeight, int nPelsX, int nPelsY,
                                      const ClIpContrastMask2& Settings = {}) {
    ClImage Window;
    Window.Attach(nullptr, ClImage::eUInt8, nWidth, nHeight, 1, nPelsX, nPelsY);
    return StRidgeWork::Of(Window, Settings);
}

void ExpectPixelsOf(const StRidgeWork& Work, ClTestImage& rIn, ClImage& rSmall) {
    for (int y = 0; y < rSmall.Height(); ++y)
        for (int x = 0; x < rSmall.Width(); ++x) {
            const long nX = Work.m_X.SourceOf(x);
            const long nY = Work.m_Y.SourceOf(y);
            if (nX == Quick::StNearestAxis::cnOutside || nY == Quick::StNearestAxis::cnOutside)
                continue;
            ASSERT_EQ(rSmall.LineData(y)[x], rIn.LineData(static_cast<int>(nY))[nX])
                << x << ", " << y;
        }
}

/// The plain operator makes an image of this size, resolution and content of the window.
void ExpectAsRescaled(int nWidth, int nHeight, int nPelsX, int nPelsY) {
    const ClIpContrastMask2 Settings;
    ClTestImage In = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, 3);
    In.SetPelsX(nPelsX);
    In.SetPelsY(nPelsY);
    ClImage Small;
    ClIpRescale().ApplyParamPels(In, Small, Settings.WorkPels(In, nPelsX),
                                 Settings.WorkPels(In, nPelsY), ClIpRescale::ModeNearestNeighbour);
    const auto Work = StRidgeWork::Of(In, Settings);
    ASSERT_TRUE(Work.has_value());
    EXPECT_EQ(Work->m_X.m_nOut, Small.Width());
    EXPECT_EQ(Work->m_Y.m_nOut, Small.Height());
    EXPECT_EQ(Work->m_nPelsX, Small.PelsX());
    EXPECT_EQ(Work->m_nPelsY, Small.PelsY());
    ExpectPixelsOf(*Work, In, Small);
}

constexpr int cnRidgeWorkPels = 9842; ///< 250 dots per inch

} // namespace

TEST(QuickRidgeWork, IsWhatThePlainOperatorRescalesTo) {
    std::mt19937 Random(7);
    for (int nRun = 0; nRun < 300; ++nRun) {
        const auto number = [&](int nFrom, int nTo) {
            return nFrom + static_cast<int>(Random() % static_cast<unsigned>(nTo - nFrom));
        };
        SCOPED_TRACE(nRun);
        ExpectAsRescaled(number(1, 90), number(1, 90), number(9000, 40000), number(9000, 40000));
    }
}

TEST(QuickRidgeWork, KeepsAWindowOfItsResolution) {
    ExpectAsRescaled(10, 20, cnRidgeWorkPels, cnRidgeWorkPels);
    EXPECT_EQ(WorkOfSize(10, 20, cnRidgeWorkPels, cnRidgeWorkPels)->m_nPelsX, cnRidgeWorkPels);
}

/// Too little to lose a pixel: the copy keeps the resolution.
TEST(QuickRidgeWork, KeepsAWindowThatWouldKeepItsSize) {
    ExpectAsRescaled(10, 20, cnRidgeWorkPels + 1, cnRidgeWorkPels + 1);
    EXPECT_EQ(WorkOfSize(10, 20, cnRidgeWorkPels + 1, cnRidgeWorkPels + 1)->m_nPelsX,
              cnRidgeWorkPels + 1);
}

TEST(QuickRidgeWork, IsNothingWithoutAResolutionOrASize) {
    EXPECT_FALSE(WorkOfSize(10, 20, 40000, 4).has_value());
    EXPECT_FALSE(WorkOfSize(0, 20, 20000, 20000).has_value());
    EXPECT_FALSE(WorkOfSize(10, 0, 20000, 20000).has_value());
    ClIpContrastMask2 Coarse;
    Coarse.m_dWorkDpi = 0.01;
    EXPECT_FALSE(WorkOfSize(10, 20, 20000, 20000, Coarse).has_value());
}
