#include "ImageProcessing/IpFilterMin.h"

#include "ImageProcessing/ExtremeFilterCases.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/MinMaxRuns.h"

namespace TestSupport {

struct StMinTraits {
    using Filter = ClIpFilterMin;
    static constexpr const char* cszFile = "ImageProcessing/IpFilterMin";
    static constexpr long cnEvenWidthLine = 367;
    static constexpr long cnNoInImageLine = 203;
    static constexpr long cnNoOutImageLine = 204;
    static bool Takes(double a, double b) { return a <= b; }
    static RealRows Naive(const RealRows& aIn, long nMode, long nWidth) {
        return NaiveMin(aIn, nMode, nWidth);
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(IpFilterMin, ExtremeFilter, StMinTraits, );

} // namespace TestSupport

namespace {

using TestSupport::ClTestImage;
using TestSupport::Filtered;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

TEST(IpFilterMin, SpreadsADarkPixelOverItsWindow) {
    const ClTestImage in = Img({{9, 9, 9, 9}, {9, 9, 9, 9}, {9, 9, 9, 0}, {9, 9, 9, 9}});
    EXPECT_EQ(Filtered<ClIpFilterMin>(in, 3, 3),
              Rows({{9, 9, 9, 9}, {9, 9, 0, 0}, {9, 9, 0, 0}, {9, 9, 0, 0}}));
}

TEST(IpFilterMin, TakesTheNextMinimumWhenTheFormerOneLeaves) {
    EXPECT_EQ(Filtered<ClIpFilterMin>(Img({{1, 9, 5, 8, 3, 7, 7, 9}}), 3, 1),
              Rows({{1, 1, 5, 3, 3, 3, 7, 7}}));
}

TEST(IpFilterMin, CutsTheWindowAtTheEdge) {
    EXPECT_EQ(Filtered<ClIpFilterMin>(Img({{5, 9, 9, 9, 8}}), 3, 1), Rows({{5, 5, 9, 8, 8}}));
}

TEST(IpFilterMin, StaysBelowTheMaximum) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 29, 18, 1, 6);
    const Rows aLow = Filtered<ClIpFilterMin>(in, 5, 3);
    const Rows aHigh = Filtered<ClIpFilterMax>(in, 5, 3);
    const Rows aIn = Pixels(in);
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x) {
            EXPECT_LE(aLow[y][x], aIn[y][x]);
            EXPECT_LE(aIn[y][x], aHigh[y][x]);
        }
}

/// The maximum of the minimum: specks go.
Rows Opened(const ClTestImage& In, long nWidth) {
    return Filtered<ClIpFilterMax>(Img(Filtered<ClIpFilterMin>(In, nWidth, 3)), nWidth, 3);
}

TEST(IpFilterMin, RemovesSpecksOnceAndForAll) {
    for (long nWidth : {3L, 5L, 9L}) {
        const ClTestImage in = RandomImage(ClImage::eUInt8, 29, 18, 1, 6);
        const Rows aOnce = Opened(in, nWidth);
        EXPECT_EQ(Opened(Img(aOnce), nWidth), aOnce);
    }
}

} // namespace
