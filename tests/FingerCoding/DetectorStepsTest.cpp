#include "FingerCoding/DetectorSteps.h"

#include "Tools/ProcessorBase.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <TessarinCalibrateSDK.h>

#include <climits>
#include <limits>

namespace {

using namespace TestSupport;

TEST(DetectorSteps, TurnsSquareMillimetresIntoPixels) {
    EXPECT_EQ(DetectorSteps::PixelsOfArea(0.0, 0.19685), 0);
    EXPECT_EQ(DetectorSteps::PixelsOfArea(1.0, 0.19685), 387); // 19.685^2 = 387.499...
    EXPECT_EQ(DetectorSteps::PixelsOfArea(16.0, 0.09842), 1549);
    EXPECT_EQ(DetectorSteps::PixelsOfArea(4.0, 0.5), 10000);
}

TEST(DetectorSteps, CountsNoPixelsForWhatIsNoArea) {
    EXPECT_EQ(DetectorSteps::PixelsOfArea(-1.0, 0.2), 0);
    EXPECT_EQ(DetectorSteps::PixelsOfArea(std::numeric_limits<double>::quiet_NaN(), 0.2), 0);
    EXPECT_EQ(DetectorSteps::PixelsOfArea(std::numeric_limits<double>::infinity(), 0.0), 0);
}

TEST(DetectorSteps, CountsMoreThanAnyImageForAnEndlessArea) {
    for (double d : {1e300, std::numeric_limits<double>::infinity()})
        EXPECT_GT(DetectorSteps::PixelsOfArea(d, 0.2), std::int64_t{INT_MAX});
}

TEST(DetectorSteps, PaintsTheOutermostPixelsByTheirDefinition) {
    for (int w = 1; w <= 6; ++w)
        for (int h = 1; h <= 6; ++h)
            for (long nBorder : {LONG_MIN, -1L, 0L, 1L, 2L, 3L, 6L, 7L, 1L << 33, LONG_MAX}) {
                const ClTestImage in = RandomImage(ClImage::eUInt8, w, h, 1, 4);
                ClTestImage image = in;
                DetectorSteps::PaintOutermostPixels(image, nBorder, 200, 100);
                for (int y = 0; y < h; ++y) {
                    const bool bWhole = y < nBorder || h - 1 - y < nBorder;
                    for (int x = 0; x < w; ++x) {
                        const bool bRight = !bWhole && w - 1 - x < nBorder;
                        const bool bLeft = bWhole || x < nBorder;
                        const double d = bRight ? 100.0 : bLeft ? 200.0 : Sample(in, x, y);
                        EXPECT_EQ(Sample(image, x, y), d) << w << h << nBorder;
                    }
                    for (int i = w; i < image.LineStrideBytes(); ++i)
                        EXPECT_EQ(image.LineData(y)[i], cnPaddingByte);
                }
            }
}

TEST(DetectorSteps, PaintsNothingOnAnEmptyImage) {
    ClTestImage image;
    DetectorSteps::PaintOutermostPixels(image, 3, 1, 2);
    ExpectEmptyImage(image);
}

/// Answers what it is told.
class ClIpAnswer : public ClProcessorBase {
public:
    ClProcessorBase* Create() override { return nullptr; }
    const char* Name() const override { return "ClIpAnswer"; }
    long Process() override { return m_nAnswer; }
    long ApplyParam(long nAnswer) {
        m_nAnswer = nAnswer;
        return Apply();
    }

    long m_nAnswer = 0;
};

TEST(DetectorSteps, RunsAStepThatMayHaveNothingToDo) {
    ClIpAnswer owner;
    ClIpAnswer sub;
    DetectorSteps::Run(owner, sub, -35L);
    EXPECT_EQ(sub.m_nAnswer, -35);
    EXPECT_THROWS(DetectorSteps::Run(owner, ClIpAnswer(), -14L), ClExTessarin, -14,
                  "The image is too small or too big.");
}

/// Missing, unsuitable or out of range: a step that has nothing to do with its arguments.
TEST(DetectorSteps, GoesOnAfterTheCodesOfAStepThatHasNothingToDo) {
    ClIpAnswer sub;
    for (const long nAnswer : {0L, -10L, -33L, -35L, -37L, -44L})
        EXPECT_NO_THROW(DetectorSteps::ThrowFailure(sub.ApplyParam(nAnswer))) << nAnswer;
}

TEST(DetectorSteps, ThrowsEveryOtherResultOfAStep) {
    ClIpAnswer sub;
    for (const long nAnswer : {1L, -1L, -9L, -11L, -13L, -14L, -15L, -32L, -34L, -36L, -38L, -43L,
                               -45L, -101L, -102L, -701L})
        EXPECT_THROWS(DetectorSteps::ThrowFailure(sub.ApplyParam(nAnswer)), ClExTessarin, nAnswer,
                      GetErrorDescriptionIntern(nAnswer));
}

} // namespace
