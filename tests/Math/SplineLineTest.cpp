// Many positions against one at a time, bit by bit.

#include "Math/SplineLine.h"

#include "support/InstructionLevels.h"
#include "support/Throws.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

using TestSupport::AtEveryLevel;

namespace {

using Points = std::vector<ClVector>;

/// Whether two numbers have the same bits, or are both no number.
template <class T>
bool Same(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

template <class T>
void ExpectSame(const TpThinPlateSplines<T>& rSpline, const std::vector<T>& aX,
                const std::vector<T>& aY) {
    AtEveryLevel([&] {
        std::vector<T> aMappedX(aX.size(), T(99));
        std::vector<T> aMappedY(aX.size(), T(99));
        TransformLine(rSpline, aX.data(), aY.data(), static_cast<long>(aX.size()), aMappedX.data(),
                      aMappedY.data());
        for (std::size_t i = 0; i < aX.size(); ++i) {
            T x = 0;
            T y = 0;
            rSpline.Transform(aX[i], aY[i], &x, &y);
            ASSERT_TRUE(Same(aMappedX[i], x)) << aX[i] << ", " << aY[i];
            ASSERT_TRUE(Same(aMappedY[i], y)) << aX[i] << ", " << aY[i];
        }
    });
}

Points RandomPoints(std::mt19937& rRandom, int nCount, double dExtent) {
    std::uniform_real_distribution<double> Position(0.0, dExtent);
    Points aPoints;
    for (int i = 0; i < nCount; ++i) {
        const double x = Position(rRandom);
        aPoints.emplace_back(x, Position(rRandom));
    }
    return aPoints;
}

template <class T>
void SetUp(TpThinPlateSplines<T>& rSpline, const Points& aOrigin, const Points& aTarget) {
    rSpline.Setup(static_cast<long>(aOrigin.size()), aOrigin.data(), aTarget.data());
}

} // namespace

template <class T>
class SplineLine : public testing::Test {
protected:
    using Positions = std::vector<T>;
    TpThinPlateSplines<T> m_Spline;
};

using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(SplineLine, Precisions);

TYPED_TEST(SplineLine, MapsEachPositionAsTheSplineDoes) {
    std::mt19937 Random(1);
    for (const long nCount : {0L, 1L, 63L, 64L, 65L, 3000L}) {
        const Points aOrigin = RandomPoints(Random, 12, 100.0);
        TpThinPlateSplines<TypeParam> spline;
        SetUp(spline, aOrigin, RandomPoints(Random, 12, 5.0));
        std::uniform_real_distribution<TypeParam> Position(-50, 400);
        typename TestFixture::Positions aX;
        typename TestFixture::Positions aY;
        for (long i = 0; i < nCount; ++i) {
            aX.push_back(Position(Random));
            aY.push_back(Position(Random));
        }
        ExpectSame(spline, aX, aY);
    }
}

// No term for a position on an origin, and logarithms at and around 0 a pixel beside it.
TYPED_TEST(SplineLine, MapsOriginsAndWhatIsOnePixelFromThem) {
    const Points aOrigin = {{10.0, 10.0}, {50.0, 10.0}, {10.0, 50.0}, {30.0, 40.0}};
    auto& spline = this->m_Spline;
    SetUp(spline, aOrigin, {{1.0, 2.0}, {4.0, 2.0}, {1.5, 8.0}, {3.0, 6.0}});
    typename TestFixture::Positions aX;
    typename TestFixture::Positions aY;
    for (const ClVector& v : aOrigin)
        for (const TypeParam f : {0.0F, 1.0F, -1.0F, 0x1p-20F, 0.99999F, 1.00001F, 0x1p-100F})
            for (const TypeParam g : {0.0F, 0x1p-13F, 0x1p-30F}) {
                aX.push_back(static_cast<TypeParam>(v.x) + f);
                aY.push_back(static_cast<TypeParam>(v.y) + g);
            }
    ExpectSame(spline, aX, aY);
}

TYPED_TEST(SplineLine, MapsWhatIsFarAwayOrNoNumber) {
    using T = TypeParam;
    const T infinity = std::numeric_limits<T>::infinity();
    const T none = std::numeric_limits<T>::quiet_NaN();
    const T most = std::numeric_limits<T>::max();
    const T least = std::numeric_limits<T>::denorm_min();
    auto& spline = this->m_Spline;
    SetUp(spline, {{0.0, 0.0}, {9.0, 1.0}, {2.0, 8.0}, {5.0, 5.0}},
          {{0.0, 0.0}, {9.0, 2.0}, {2.0, 8.0}, {5.0, 5.5}});
    ExpectSame<T>(spline, {T(1e18), T(1e19), most, infinity, -infinity, none, 4, 0, 0, least},
                  {1, T(-1e19), most, 2, infinity, 1, none, T(1e-30), T(1e-160), least});
}

TYPED_TEST(SplineLine, MapsBySplinesThatHoldNoNumbers) {
    const Points aOrigin = {{0.0, 0.0}, {9.0, 1.0}, {2.0, 8.0}, {5.0, 5.0}};
    Points aTarget = aOrigin;
    aTarget[1].x = std::numeric_limits<double>::quiet_NaN();
    auto& spline = this->m_Spline;
    SetUp(spline, aOrigin, aTarget);
    ExpectSame<TypeParam>(spline, {0, 1, 9}, {0, 2, 1});
}

TYPED_TEST(SplineLine, MapsInPlace) {
    SetUp(this->m_Spline, {{0.0, 0.0}, {9.0, 1.0}, {2.0, 8.0}},
          {{1.0, 0.0}, {9.0, 1.0}, {2.0, 8.5}});
    TypeParam x = 3;
    TypeParam y = 4;
    TypeParam expectedX = 0;
    TypeParam expectedY = 0;
    this->m_Spline.Transform(x, y, &expectedX, &expectedY);
    TransformLine(this->m_Spline, &x, &y, 1, &x, &y);
    EXPECT_EQ(x, expectedX);
    EXPECT_EQ(y, expectedY);
}

TYPED_TEST(SplineLine, NeedsASplineThatWasSetUp) {
    TypeParam x = 0;
    EXPECT_THROWS(TransformLine(this->m_Spline, &x, &x, 1, &x, &x), ClExTessarin, -1,
                  "Multiple initialization.");
}
