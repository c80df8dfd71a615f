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
using FloatSpline = TpThinPlateSplines<float>;

std::uint32_t Bits(float f) {
    std::uint32_t nBits = 0;
    std::memcpy(&nBits, &f, sizeof f);
    return nBits;
}

/// Whether two floats have the same bits, or are both no number.
bool Same(float a, float b) {
    return Bits(a) == Bits(b) || (std::isnan(a) && std::isnan(b));
}

void ExpectSame(const FloatSpline& rSpline, const std::vector<float>& aX,
                const std::vector<float>& aY) {
    AtEveryLevel([&] {
        std::vector<float> aMappedX(aX.size(), 99.0F);
        std::vector<float> aMappedY(aX.size(), 99.0F);
        TransformLine(rSpline, aX.data(), aY.data(), static_cast<long>(aX.size()), aMappedX.data(),
                      aMappedY.data());
        for (std::size_t i = 0; i < aX.size(); ++i) {
            float x = 0;
            float y = 0;
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

void Solve(FloatSpline& rSpline, const Points& aOrigin, const Points& aTarget) {
    rSpline.Setup(static_cast<long>(aOrigin.size()), aOrigin.data(), aTarget.data());
}

} // namespace

TEST(SplineLine, MapsEachPositionAsTheSplineDoes) {
    std::mt19937 Random(1);
    for (const long nCount : {0L, 1L, 63L, 64L, 65L, 3000L}) {
        const Points aOrigin = RandomPoints(Random, 12, 100.0);
        FloatSpline spline;
        Solve(spline, aOrigin, RandomPoints(Random, 12, 5.0));
        std::uniform_real_distribution<float> Position(-50.0F, 400.0F);
        std::vector<float> aX;
        std::vector<float> aY;
        for (long i = 0; i < nCount; ++i) {
            aX.push_back(Position(Random));
            aY.push_back(Position(Random));
        }
        ExpectSame(spline, aX, aY);
    }
}

// No term for a position on an origin, and logarithms at and around 0 a pixel beside it.
TEST(SplineLine, MapsOriginsAndWhatIsOnePixelFromThem) {
    const Points aOrigin = {{10.0, 10.0}, {50.0, 10.0}, {10.0, 50.0}, {30.0, 40.0}};
    FloatSpline spline;
    Solve(spline, aOrigin, {{1.0, 2.0}, {4.0, 2.0}, {1.5, 8.0}, {3.0, 6.0}});
    std::vector<float> aX;
    std::vector<float> aY;
    for (const ClVector& v : aOrigin)
        for (const float f : {0.0F, 1.0F, -1.0F, 0x1p-20F, 0.99999F, 1.00001F, 0x1p-100F})
            for (const float g : {0.0F, 0x1p-13F, 0x1p-30F}) {
                aX.push_back(static_cast<float>(v.x) + f);
                aY.push_back(static_cast<float>(v.y) + g);
            }
    ExpectSame(spline, aX, aY);
}

TEST(SplineLine, MapsWhatIsFarAwayOrNoNumber) {
    const float fInfinity = std::numeric_limits<float>::infinity();
    const float fNone = std::numeric_limits<float>::quiet_NaN();
    FloatSpline spline;
    Solve(spline, {{0.0, 0.0}, {9.0, 1.0}, {2.0, 8.0}, {5.0, 5.0}},
          {{0.0, 0.0}, {9.0, 2.0}, {2.0, 8.0}, {5.0, 5.5}});
    ExpectSame(spline, {1e18F, 1e19F, 3e38F, fInfinity, -fInfinity, fNone, 4.0F, 0.0F},
               {1.0F, -1e19F, 3e38F, 2.0F, fInfinity, 1.0F, fNone, 1e-30F});
}

TEST(SplineLine, MapsBySplinesThatHoldNoNumbers) {
    const Points aOrigin = {{0.0, 0.0}, {9.0, 1.0}, {2.0, 8.0}, {5.0, 5.0}};
    Points aTarget = aOrigin;
    aTarget[1].x = std::numeric_limits<double>::quiet_NaN();
    FloatSpline spline;
    Solve(spline, aOrigin, aTarget);
    ExpectSame(spline, {0.0F, 1.0F, 9.0F}, {0.0F, 2.0F, 1.0F});
}

TEST(SplineLine, NeedsASplineThatWasSetUp) {
    const FloatSpline spline;
    float f = 0.0F;
    EXPECT_THROWS(TransformLine(spline, &f, &f, 1, &f, &f), ClExTessarin, -1,
                  "Multiple initialization.");
}
