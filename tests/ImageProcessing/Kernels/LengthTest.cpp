#include "ImageProcessing/Kernels/Length.h"

#include "ImageProcessing/NaiveLength.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <vector>

namespace {

constexpr unsigned char cnFrameByte = 0xA5;

int LengthOf(bool bSigned, unsigned char a, unsigned char b) {
    using Signed = signed char;
    return bSigned ? TestSupport::NaiveLength(static_cast<Signed>(a), static_cast<Signed>(b), 1414)
                   : TestSupport::NaiveLength(a, b, 707);
}

/// Planes with another stride each, in a frame of guards.
void ExpectLengthsOfPlanes(bool bSigned, long nSamples, long nLines, unsigned nSeed) {
    SCOPED_TRACE(testing::Message() << nSamples << " by " << nLines << ", signed " << bSigned);
    const long nStrides[] = {nSamples + 3, nSamples + 16, nSamples + 17};
    std::vector<unsigned char> aPlanes[3];
    std::mt19937 Random(nSeed);
    for (int i = 0; i < 3; ++i) {
        aPlanes[i].resize(static_cast<std::size_t>(nStrides[i] * (nLines + 2)));
        for (unsigned char& r : aPlanes[i])
            r = i < 2 ? static_cast<unsigned char>(Random()) : cnFrameByte;
    }
    const auto at = [&](int i, long y) { return aPlanes[i].data() + (y + 1) * nStrides[i]; };
    const Kernels::StPairOfPlanes Planes{at(0, 0), nStrides[0], at(1, 0), nStrides[1],
                                         nSamples, nLines,      at(2, 0), nStrides[2]};
    std::vector<unsigned char> aExpected = aPlanes[2];
    for (long y = 0; y < nLines; ++y)
        for (long x = 0; x < nSamples; ++x)
            aExpected[static_cast<std::size_t>((y + 1) * nStrides[2] + x)] =
                static_cast<unsigned char>(LengthOf(bSigned, at(0, y)[x], at(1, y)[x]));
    bSigned ? Kernels::SignedLength(Planes) : Kernels::UnsignedLength(Planes);
    EXPECT_EQ(aPlanes[2], aExpected);
}

} // namespace

TEST(LengthKernel, EqualsItsDefinitionAtEveryWidth) {
    for (const bool bSigned : {false, true})
        for (long nSamples = 0; nSamples <= 50; ++nSamples)
            ExpectLengthsOfPlanes(bSigned, nSamples, 3, static_cast<unsigned>(nSamples));
}

TEST(LengthKernel, EqualsItsDefinitionOnEveryPairOfBytes) {
    for (const bool bSigned : {false, true}) {
        std::vector<unsigned char> aFirst(65536), aSecond(65536), aOut(65536);
        for (std::size_t i = 0; i < 65536; ++i) {
            aFirst[i] = static_cast<unsigned char>(i >> 8);
            aSecond[i] = static_cast<unsigned char>(i);
        }
        const Kernels::StPairOfPlanes Planes{aFirst.data(), 0, aSecond.data(), 0,
                                             65536,         1, aOut.data(),    0};
        bSigned ? Kernels::SignedLength(Planes) : Kernels::UnsignedLength(Planes);
        for (std::size_t i = 0; i < 65536; ++i)
            ASSERT_EQ(aOut[i], LengthOf(bSigned, aFirst[i], aSecond[i])) << i;
    }
}

TEST(LengthKernel, MayReplaceEitherComponent) {
    for (int nReplaced : {0, 1}) {
        unsigned char aPlanes[2][37];
        unsigned char aExpected[37];
        for (int x = 0; x < 37; ++x) {
            aPlanes[0][x] = static_cast<unsigned char>(7 * x);
            aPlanes[1][x] = static_cast<unsigned char>(255 - 5 * x);
            aExpected[x] = static_cast<unsigned char>(LengthOf(true, aPlanes[0][x], aPlanes[1][x]));
        }
        Kernels::SignedLength({aPlanes[0], 0, aPlanes[1], 0, 37, 1, aPlanes[nReplaced], 0});
        for (int x = 0; x < 37; ++x)
            EXPECT_EQ(aPlanes[nReplaced][x], aExpected[x]) << x;
    }
}
