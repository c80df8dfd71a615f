#include "FingerCoding/TimedOperator.h"

#include "FingerCoding/TimerMarks.h"
#include "ImageProcessing/IpInvert.h"
#include "support/Images.h"

namespace {

using namespace TestSupport;
using Names = std::vector<std::string>;

TEST(TimedOperator, RunsWithTheTimerOfItsOwner) {
    ClTimerMarks marks;
    ClTestImage image = Img({{1, 2}});
    ClIpInvert owner;
    Timed(owner, ClIpInvert()).ApplyParam(image);
    EXPECT_EQ(marks.m_aNames, Names{"ClIpInvert"});
    owner.Timer(false);
    Timed(owner, ClIpInvert()).ApplyParam(image);
    EXPECT_EQ(marks.m_aNames, Names{"ClIpInvert"});
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
}

TEST(TimedOperator, RunsWithoutAnOwner) {
    ClTimerMarks marks;
    ClTestImage image = Img({{1, 2}});
    ClIpInvert operation;
    EXPECT_EQ(&Timed(false, operation), &operation);
    operation.ApplyParam(image);
    EXPECT_EQ(marks.m_aNames, Names());
    Timed(true, operation).ApplyParam(image);
    EXPECT_EQ(marks.m_aNames, Names{"ClIpInvert"});
}

TEST(TimedOperator, ReadsAnImageThroughAView) {
    const ClTestImage image = Img({{1, 2, 3}, {4, 5, 6}});
    ClTestImage out;
    ClInputView view(image);
    EXPECT_EQ(view.Data(), image.Data());
    EXPECT_EQ(Timed(false, ClIpInvert()).ApplyParam(view, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{254, 253, 252}, {251, 250, 249}}));
    ExpectSameImage(image, Img({{1, 2, 3}, {4, 5, 6}}));
}

} // namespace
