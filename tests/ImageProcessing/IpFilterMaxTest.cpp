#include "ImageProcessing/IpFilterMax.h"

#include "ImageProcessing/ExtremeFilterCases.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/MinMaxRuns.h"

#include <string>

namespace TestSupport {

struct StMaxTraits {
    using Filter = ClIpFilterMax;
    static constexpr const char* cszFile = "ImageProcessing/IpFilterMax";
    static constexpr long cnEvenWidthLine = 214;
    static constexpr long cnNoInImageLine = 302;
    static constexpr long cnNoOutImageLine = 303;
    static bool Takes(double a, double b) { return a >= b; }
    static RealRows Naive(const RealRows& aIn, long nMode, long nWidth) {
        return NaiveMax(aIn, nMode, nWidth);
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(IpFilterMax, ExtremeFilter, StMaxTraits, );

} // namespace TestSupport

namespace {

using TestSupport::ClTestImage;
using TestSupport::Filtered;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

Rows Inverted(Rows aRows) {
    for (auto& aRow : aRows)
        for (int& n : aRow)
            n = 255 - n;
    return aRows;
}

TEST(IpFilterMax, SpreadsABrightPixelOverItsWindow) {
    const ClTestImage in =
        Img({{0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 9, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}});
    EXPECT_EQ(
        Filtered<ClIpFilterMax>(in, 3, 3),
        Rows(
            {{0, 0, 0, 0, 0}, {0, 9, 9, 9, 0}, {0, 9, 9, 9, 0}, {0, 9, 9, 9, 0}, {0, 0, 0, 0, 0}}));
    EXPECT_EQ(Filtered<ClIpFilterMax>(in, 3, 1)[2], std::vector<int>({0, 9, 9, 9, 0}));
    EXPECT_EQ(Filtered<ClIpFilterMax>(in, 3, 2)[1], std::vector<int>({0, 0, 9, 0, 0}));
}

TEST(IpFilterMax, TakesTheNextMaximumWhenTheFormerOneLeaves) {
    EXPECT_EQ(Filtered<ClIpFilterMax>(Img({{9, 1, 5, 2, 7, 3, 3, 0}}), 3, 1),
              Rows({{9, 9, 5, 7, 7, 7, 3, 3}}));
}

TEST(IpFilterMax, CutsTheWindowAtTheEdge) {
    EXPECT_EQ(Filtered<ClIpFilterMax>(Img({{5, 1, 1, 1, 8}}), 3, 1), Rows({{5, 5, 1, 8, 8}}));
    const ClTestImage negative = Img(ClImage::eInt16, {{-5, -1, -9, -9, -8}});
    EXPECT_EQ(Filtered<ClIpFilterMax>(negative, 3, 1), Rows({{-1, -1, -1, -8, -8}}));
}

TEST(IpFilterMax, OfTheInverseIsTheInverseOfTheMinimum) {
    for (long nMode : {1L, 2L, 3L})
        for (long nWidth : {3L, 7L, 21L}) {
            const ClTestImage in = RandomImage(ClImage::eUInt8, 29, 18, 1, 6);
            EXPECT_EQ(Filtered<ClIpFilterMax>(Img(Inverted(Pixels(in))), nWidth, nMode),
                      Inverted(Filtered<ClIpFilterMin>(in, nWidth, nMode)));
        }
}

/// The minimum of the maximum: gaps close.
Rows Closed(const ClTestImage& In, long nWidth, long nMode) {
    return Filtered<ClIpFilterMin>(Img(Filtered<ClIpFilterMax>(In, nWidth, nMode)), nWidth, nMode);
}

TEST(IpFilterMax, ClosesGapsOnceAndForAll) {
    for (long nMode : {1L, 2L, 3L})
        for (long nWidth : {3L, 5L, 9L}) {
            const ClTestImage in = RandomImage(ClImage::eUInt8, 29, 18, 1, 6);
            const Rows aOnce = Closed(in, nWidth, nMode);
            EXPECT_EQ(Closed(Img(aOnce), nWidth, nMode), aOnce);
            const Rows aIn = Pixels(in);
            for (std::size_t y = 0; y < aIn.size(); ++y)
                for (std::size_t x = 0; x < aIn[y].size(); ++x)
                    EXPECT_GE(aOnce[y][x], aIn[y][x]);
        }
}

std::string Printed(const ClTestImage& In, long nWidth) {
    ClTestImage in = In;
    ClImage out;
    ClIpFilterMax filter;
    EXPECT_EQ(filter.ApplyParam(in, out, nWidth, 1), 0);
    std::string text;
    const TestSupport::RealRows aOut = TestSupport::RealPixels(out);
    for (double d : aOut[0])
        text += std::isnan(d) ? "? " : std::to_string(static_cast<int>(d)) + " ";
    return text;
}

TEST(IpFilterMax, NeverTakesAValueThatIsNotANumberButWhereAScanBegins) {
    const double q = std::nan("");
    // It enters nowhere; 5 leaves, and the scan for the third sample begins with a 1.
    EXPECT_EQ(Printed(Img(ClImage::eFloat32, {{5, 1, 1, q, 2, 3, 3}}), 3), "5 5 1 2 3 3 3 ");
    // The first scan begins with it: what enters is not greater, until the walk from the end.
    EXPECT_EQ(Printed(Img(ClImage::eFloat32, {{q, 7, 1, 1, 2}}), 3), "? ? ? ? 2 ");
    // 9 leaves, and the scan for the third sample begins with it.
    EXPECT_EQ(Printed(Img(ClImage::eFloat32, {{9, q, 5, 4, 2, 3}}), 3), "9 9 ? ? ? 3 ");
}

TEST(IpFilterMax, LetsInfinityWin) {
    const double dInfinity = std::numeric_limits<double>::infinity();
    ClTestImage in = Img(ClImage::eDouble64, {{-dInfinity, 1.0, 2.0, dInfinity, 0.0, -1.0}});
    ClImage out;
    ClIpFilterMax filter;
    EXPECT_EQ(filter.ApplyParam(in, out, 3, 1), 0);
    EXPECT_EQ(TestSupport::RealPixels(out),
              TestSupport::RealRows({{1.0, 2.0, dInfinity, dInfinity, dInfinity, 0.0}}));
}

} // namespace
