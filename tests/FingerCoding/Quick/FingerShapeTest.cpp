#include "FingerCoding/Quick/FingerShape.h"

#include "FingerCoding/Quick/PlaneCases.h"

using namespace TestSupport;

TEST(QuickFingerShape, IsAllGroundWithoutARegion) {
    constexpr int cnWidth = 12;
    constexpr int cnHeight = 9;
    constexpr long cnBoth = 2 * Quick::StCanvas::cnMargin;
    const ClOwnPlane A(cnWidth + cnBoth, cnHeight + cnBoth, 1);
    const ClOwnPlane B(cnWidth + cnBoth, cnHeight + cnBoth, 1);
    const ClOwnPlane Mask(cnWidth, cnHeight, 0);
    Quick::StCanvas Canvas;
    Canvas.m_A = A.Plane();
    Canvas.m_B = B.Plane();

    EXPECT_TRUE(Quick::Soften(Canvas, {}, Mask.Plane()).IsEmpty());
    ExpectGrid(GridOf(Mask.Plane()), Naive::Made(cnWidth, cnHeight, [](int, int) { return 255; }));
}
