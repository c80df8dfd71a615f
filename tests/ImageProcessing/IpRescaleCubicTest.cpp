// Bicubic: the radial kernel, and the separable form.

#include "ImageProcessing/NaiveRescale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using TestSupport::At;
using TestSupport::caByteTypes;
using TestSupport::caRescaleSizes;
using TestSupport::ClTestImage;
using TestSupport::FlatImage;
using TestSupport::Height;
using TestSupport::Img;
using TestSupport::IsSeparable;
using TestSupport::LimitsOf;
using TestSupport::NaiveRadial;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RescaledToSize;
using TestSupport::Rows;
using TestSupport::StSizes;
using TestSupport::Width;

constexpr auto ceBiCubic = ClIpRescale::ModeBiCubic;

TEST(IpRescaleCubic, EqualsTheRadialKernelAtManySizes) {
    for (unsigned char nType : caByteTypes)
        for (double dParameter : {-0.75, -0.5, -1.0, 0.0, -3.0})
            for (const StSizes& s : caRescaleSizes) {
                ClTestImage in = RandomImage(nType, s.m_nInWidth, s.m_nInHeight, 1, 1);
                EXPECT_EQ(RescaledToSize(in, s.m_nOutWidth, s.m_nOutHeight, ceBiCubic, dParameter),
                          NaiveRadial(Pixels(in), s.m_nOutWidth, s.m_nOutHeight, dParameter,
                                      LimitsOf(nType)))
                    << s.m_nInWidth << " x " << s.m_nInHeight << ", parameter " << dParameter;
            }
}

TEST(IpRescaleCubic, WeighsDiagonalsByTheSecondBranch) {
    // At a whole position the taps beside it (q = 1) weigh 0, those on the diagonals (q = 2) weigh
    // (sqrt(2) * 10 - 10) a - 4 a = 0.14214 a, and those from q = 4 on do not count.
    ClTestImage in = Img({{0, 50, 0, 0, 0},
                          {50, 0, 50, 0, 0},
                          {0, 50, 100, 50, 0},
                          {0, 0, 50, 0, 50},
                          {0, 0, 0, 50, 0}});
    const Rows aOut = RescaledToSize(in, 5, 10, ceBiCubic); // line 4 lies at 2.0
    EXPECT_EQ(Height(aOut), 10);
    // The diagonals are 0: 100 / (1 - 4 * 0.75 * 0.14214) = 174.3.
    EXPECT_EQ(At(aOut, 2, 4), 174);
}

TEST(IpRescaleCubic, TakesTheStartOfTheNextLineBehindTheEnd) {
    // Column 1 of line 0 lies at 0.5 of a line of one sample: the tap to the right is line 1.
    ClTestImage in = Img({{0}, {200}});
    const Rows aOut = RescaledToSize(in, 2, 2, ceBiCubic);
    EXPECT_EQ(At(aOut, 0, 0), 0);
    EXPECT_GT(At(aOut, 1, 0), 0);
}

TEST(IpRescaleCubic, GivesZeroWhereNoWeightIsFinite) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 4, 4, 1, 200);
    const double dInfinity = std::numeric_limits<double>::infinity();
    const Rows aZero = Pixels(FlatImage(ClImage::eUInt8, 9, 9, 1, 0));
    EXPECT_EQ(RescaledToSize(in, 9, 9, ceBiCubic, std::nan("")), aZero);
    EXPECT_EQ(RescaledToSize(in, 9, 9, ceBiCubic, -dInfinity), aZero);
    EXPECT_EQ(RescaledToSize(in, 9, 9, ceBiCubic, dInfinity), aZero);
}

TEST(IpRescaleCubic, StandsExtremeParameters) {
    for (unsigned char nType : caByteTypes)
        for (double dParameter : {1e308, -1e308, 1e-308, -1e-308}) {
            ClTestImage in = RandomImage(nType, 6, 5, 1, 2);
            const Rows aOut = RescaledToSize(in, 11, 3, ceBiCubic, dParameter);
            EXPECT_EQ(Width(aOut), 11);
            EXPECT_EQ(Height(aOut), 3);
        }
}

// The separable form

TEST(IpRescaleCubic, EqualsTheSeparableKernelForAParameterAboveZero) {
    for (unsigned char nType : caByteTypes)
        for (double dParameter : {0.75, 0.5, 1.0})
            for (const StSizes& s : caRescaleSizes) {
                ClTestImage in = RandomImage(nType, s.m_nInWidth, s.m_nInHeight, 1, 3);
                const Rows aOut =
                    RescaledToSize(in, s.m_nOutWidth, s.m_nOutHeight, ceBiCubic, dParameter);
                EXPECT_TRUE(IsSeparable(Pixels(in), aOut, -dParameter, LimitsOf(nType)))
                    << s.m_nInWidth << " x " << s.m_nInHeight << ", parameter " << dParameter;
            }
}

TEST(IpRescaleCubic, InterpolatesALineByHand) {
    // Half way the weights for 0.5 are -1, 9, 9, -1 sixteenths; taps beyond the border repeat it:
    // 220 / 16, 450 / 16, 870 / 16 and 1320 / 16.
    ClTestImage in = Img({{10, 20, 40, 80}});
    EXPECT_EQ(RescaledToSize(in, 8, 1, ceBiCubic, 0.5), Rows({{10, 13, 20, 28, 40, 61, 80, 82}}));
}

TEST(IpRescaleCubic, FlipsTheSignForOneRunOnly) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 5, 1, 4);
    ClImage first;
    ClImage second;
    ClIpRescale rescale;
    rescale.m_dConvParameter1 = 0.75;
    EXPECT_EQ(rescale.ApplyParamSize(in, first, 8, 9, ceBiCubic), 0);
    EXPECT_EQ(rescale.m_dConvParameter1, 0.75);
    EXPECT_EQ(rescale.ApplyParamSize(in, second, 8, 9, ceBiCubic), 0);
    EXPECT_EQ(Pixels(first), Pixels(second));
}

TEST(IpRescaleCubic, LimitsOvershoot) {
    ClTestImage edge = Img({{0, 0, 255, 255}});
    const Rows aOut = RescaledToSize(edge, 16, 1, ceBiCubic, 0.75);
    EXPECT_EQ(*std::min_element(aOut[0].begin(), aOut[0].end()), 0);
    EXPECT_EQ(*std::max_element(aOut[0].begin(), aOut[0].end()), 255);
    EXPECT_TRUE(std::is_sorted(aOut[0].begin(), aOut[0].end()));
}

} // namespace
