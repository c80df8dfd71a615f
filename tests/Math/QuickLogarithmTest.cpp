// The logarithm of loops, alone and in loops of every instruction level.

#include "Math/QuickLogarithm.h"

#include "support/InstructionLevels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

struct StLogs {
    static void Run(const double* pIn, long nCount, double* __restrict pOut) {
        for (long i = 0; i < nCount; ++i)
            pOut[i] = QuickLog(pIn[i]);
    }
};

std::vector<double> Numbers() {
    std::mt19937_64 Random(1);
    std::uniform_real_distribution<double> Exponent(-300.0, 300.0);
    std::uniform_real_distribution<double> NearOne(-0.5, 1.0);
    std::vector<double> aNumbers;
    for (int i = 0; i < 200000; ++i) {
        aNumbers.push_back(std::pow(10.0, Exponent(Random)));
        aNumbers.push_back(1.0 + NearOne(Random));
        aNumbers.push_back(1.0 + NearOne(Random) * std::ldexp(1.0, -i % 50));
    }
    for (int n = -1022; n <= 1023; ++n)
        for (const double d : {1.0, 1.4142, 1.41422, 1.9999999999999998})
            aNumbers.push_back(std::ldexp(d, n));
    return aNumbers;
}

} // namespace

TEST(QuickLogarithm, IsOffByLessThanItTellsAtEveryLevel) {
    const std::vector<double> aNumbers = Numbers();
    std::vector<double> aLogs(aNumbers.size());
    TestSupport::AtEveryLevel([&] {
        RunAtLevel<StLogs>(aNumbers.data(), static_cast<long>(aNumbers.size()), aLogs.data());
        for (std::size_t i = 0; i < aNumbers.size(); ++i) {
            const long double dTrue = std::log(static_cast<long double>(aNumbers[i]));
            ASSERT_LE(std::fabs(aLogs[i] - dTrue), std::fabs(dTrue) * 0x1p-48L)
                << std::hexfloat << aNumbers[i];
        }
    });
}

TEST(QuickLogarithm, IsFiniteForZeroAndWhatIsNextToIt) {
    for (const double d : {0.0, 0x1p-1074, 0x1p-1023, 0x1.fffffffffffffp-1023})
        EXPECT_TRUE(std::isfinite(QuickLog(d))) << d;
    EXPECT_EQ(0.0 * QuickLog(0.0), 0.0);
}
