// The mean along a direction per pixel.

#include "ImageProcessing/IpFilterMid.h"

#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

namespace {

using TestSupport::At;
using TestSupport::caRankSizes;
using TestSupport::ClTestImage;
using TestSupport::FlatImage;
using TestSupport::ForEachPlace;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

constexpr long cnAlong = 8;
constexpr long cnAcross = 16;

struct StDirected {
    ClTestImage m_In, m_Dx, m_Dy;
    ClTestImage m_Out;

    long Run(long nWidth, long nMode) {
        ClIpFilterMid filter;
        filter.m_nMode = nMode;
        filter.m_pInDxImage = &m_Dx;
        filter.m_pInDyImage = &m_Dy;
        return filter.ApplyParam(m_In, m_Out, nWidth);
    }
};

/// One direction for the whole image.
StDirected Uniform(const ClTestImage& In, int nDx, int nDy) {
    return {In,
            FlatImage(ClImage::eInt8, In.Width(), In.Height(), 1, nDx),
            FlatImage(ClImage::eInt8, In.Width(), In.Height(), 1, nDy),
            {}};
}

/// The mean in real coordinates, in which the steps of 1/128 pixel are exact.
RealRows NaiveDirectedMean(const StDirected& Case, long nWidth, bool bAcross) {
    const RealRows aIn = RealPixels(Case.m_In);
    const RealRows aDx = RealPixels(Case.m_Dx);
    const RealRows aDy = RealPixels(Case.m_Dy);
    return ForEachPlace(aIn, [&](long x, long y) {
        const double dX = (bAcross ? At(aDy, x, y) : At(aDx, x, y)) / 128.0;
        const double dY = (bAcross ? At(aDx, x, y) : -At(aDy, x, y)) / 128.0;
        const long nToEdge = std::min(
            {x, y, TestSupport::ColumnsOf(aIn) - 1 - x, TestSupport::LinesOf(aIn) - 1 - y});
        const long nReach = std::min(nWidth / 2, nToEdge);
        double dSum = 0.0;
        for (long i = -nReach; i <= nReach; ++i)
            dSum += At(aIn,
                       static_cast<long>(
                           std::floor(static_cast<double>(x) + 0.5 + static_cast<double>(i) * dX)),
                       static_cast<long>(
                           std::floor(static_cast<double>(y) + 0.5 + static_cast<double>(i) * dY)));
        return std::trunc(dSum / static_cast<double>(2 * nReach + 1));
    });
}

TEST(IpFilterMidDirected, EqualsItsDefinition) {
    for (const auto& Size : caRankSizes)
        for (long nWidth : {3L, 5L, 9L, 31L}) {
            StDirected directed = {
                RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, 1, 1),
                RandomImage(ClImage::eInt8, Size.m_nWidth, Size.m_nHeight, 1, 2),
                RandomImage(ClImage::eInt8, Size.m_nWidth, Size.m_nHeight, 1, 3),
                {}};
            for (long nMode : {cnAlong, cnAcross}) {
                EXPECT_EQ(directed.Run(nWidth, nMode), 0);
                EXPECT_EQ(RealPixels(directed.m_Out),
                          NaiveDirectedMean(directed, nWidth, nMode == cnAcross))
                    << Size.m_nWidth << " by " << Size.m_nHeight << ", width " << nWidth
                    << ", mode " << nMode;
            }
        }
}

TEST(IpFilterMidDirected, TakesTheLongestSteps) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 13, 11, 1, 1);
    for (int nDx : {-128, 0, 127})
        for (int nDy : {-128, 0, 127})
            for (long nMode : {cnAlong, cnAcross}) {
                StDirected directed = Uniform(in, nDx, nDy);
                EXPECT_EQ(directed.Run(7, nMode), 0);
                EXPECT_EQ(RealPixels(directed.m_Out),
                          NaiveDirectedMean(directed, 7, nMode == cnAcross))
                    << nDx << ", " << nDy;
            }
}

TEST(IpFilterMidDirected, FollowsTheDirection) {
    const ClTestImage in = Img({{0, 0, 0}, {3, 60, 9}, {0, 0, 0}});
    StDirected along = Uniform(in, -128, 0); // a full pixel to the left per step
    EXPECT_EQ(along.Run(3, cnAlong), 0);
    EXPECT_EQ(Pixels(along.m_Out), Rows({{0, 0, 0}, {3, 24, 9}, {0, 0, 0}}));
    EXPECT_EQ(along.Run(3, cnAcross), 0);
    EXPECT_EQ(Pixels(along.m_Out), Rows({{0, 0, 0}, {3, 20, 9}, {0, 0, 0}}));
}

TEST(IpFilterMidDirected, PointsUpwardForAPositiveDy) {
    const ClTestImage in = Img({{0, 0, 30}, {0, 0, 0}, {60, 0, 0}});
    StDirected rising = Uniform(in, 127, 127);
    EXPECT_EQ(rising.Run(3, cnAlong), 0);
    EXPECT_EQ(Pixels(rising.m_Out)[1][1], 30);
    EXPECT_EQ(rising.Run(3, cnAcross), 0);
    EXPECT_EQ(Pixels(rising.m_Out)[1][1], 0);
}

TEST(IpFilterMidDirected, StaysWhereItIsWithoutADirection) {
    StDirected still = Uniform(RandomImage(ClImage::eUInt8, 9, 8, 1, 1), 0, 0);
    EXPECT_EQ(still.Run(5, cnAlong), 0);
    EXPECT_EQ(Pixels(still.m_Out), Pixels(still.m_In));
}

TEST(IpFilterMidDirected, ReadsUnsignedDirectionsAsSignedOnes) {
    StDirected directed = Uniform(RandomImage(ClImage::eUInt8, 9, 8, 1, 1), -100, 77);
    EXPECT_EQ(directed.Run(5, cnAlong), 0);
    const Rows aSigned = Pixels(directed.m_Out);
    directed.m_Dx.SetDataType(ClImage::eUInt8);
    directed.m_Dy.SetDataType(ClImage::eUInt8);
    EXPECT_EQ(directed.Run(5, cnAlong), 0);
    EXPECT_EQ(Pixels(directed.m_Out), aSigned);
}

TEST(IpFilterMidDirected, FitsWindowsThatAreWiderThanTheImage) {
    StDirected directed = Uniform(RandomImage(ClImage::eUInt8, 9, 8, 1, 1), -100, 77);
    EXPECT_EQ(directed.Run(9, cnAlong), 0);
    const Rows aWidest = Pixels(directed.m_Out);
    EXPECT_EQ(directed.Run(53, cnAlong), 0);
    EXPECT_EQ(Pixels(directed.m_Out), aWidest);
}

// Failures

TEST(IpFilterMidDirected, NamesAMissingDirectionImage) {
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    ClIpFilterMid filter;
    for (long nMode : {cnAlong, cnAcross}) {
        filter.m_nMode = nMode;
        filter.m_pInDxImage = nullptr;
        EXPECT_THROWS(filter.ApplyParam(in, out, 3), ClException, -701, "m_pInDxImage is not set");
        filter.m_pInDxImage = &in;
        try {
            filter.ApplyParam(in, out, 3);
            ADD_FAILURE();
        } catch (const ClException& e) {
            EXPECT_EQ(e.Number(), -701);
            EXPECT_EQ(TestSupport::Words(e), "m_pInDyImage is not set");
            EXPECT_STREQ(e.File(), "ImageProcessing/IpFilterMid");
            EXPECT_EQ(e.Line(), 316);
        }
    }
}

TEST(IpFilterMidDirected, TestsTheDirectionImagesBeforeTheOthers) {
    ClTestImage image = Img({{1, 2, 3}});
    ClIpFilterMid filter;
    EXPECT_THROWS(filter.ProcessDirected(false), ClException, -701, "m_pInDxImage is not set");
    filter.m_pInDxImage = &image;
    EXPECT_THROWS(filter.ProcessDirected(false), ClException, -701, "m_pInDyImage is not set");
    filter.m_pInDyImage = &image;
    EXPECT_EQ(filter.ProcessDirected(false), -35);
    filter.m_pInImage = &image;
    EXPECT_EQ(filter.ProcessDirected(true), -35);
    filter.m_nMode = cnAlong;
    EXPECT_EQ(filter.DoProcess(), -35);
    filter.m_pInImage = nullptr;
    filter.m_pInDxImage = nullptr;
    EXPECT_EQ(filter.DoProcess(), -35);
}

TEST(IpFilterMidDirected, RefusesDirectionImagesOfAnotherShape) {
    const ClTestImage in = FlatImage(ClImage::eUInt8, 4, 3, 1, 1);
    const ClTestImage aBad[] = {
        FlatImage(ClImage::eInt8, 3, 3, 1, 0), FlatImage(ClImage::eInt8, 4, 4, 1, 0),
        FlatImage(ClImage::eInt8, 4, 3, 2, 0), FlatImage(ClImage::eInt16, 4, 3, 1, 0)};
    for (const ClTestImage& Bad : aBad)
        for (bool bDx : {false, true}) {
            StDirected directed = Uniform(in, 1, 1);
            directed.m_Out = Img({{9}});
            (bDx ? directed.m_Dx : directed.m_Dy) = Bad;
            EXPECT_EQ(directed.Run(3, cnAlong), -35);
            EXPECT_EQ(Pixels(directed.m_Out), Rows({{9}}));
        }
}

TEST(IpFilterMidDirected, LeavesSignedSamplesAlone) {
    for (long nMode : {cnAlong, cnAcross}) {
        StDirected directed = Uniform(FlatImage(ClImage::eInt8, 4, 3, 1, 1), 1, 1);
        directed.m_Out = Img({{9}});
        EXPECT_EQ(directed.Run(3, nMode), 0);
        EXPECT_EQ(Pixels(directed.m_Out), Rows({{9}}));
    }
}

TEST(IpFilterMidDirected, TakesAnImageWithoutSamples) {
    StDirected directed = Uniform(FlatImage(ClImage::eUInt8, 4, 3, 1, 1), 1, 1);
    directed.m_In.Attach(nullptr, ClImage::eUInt8, 4, 3, 0, 0, 0);
    EXPECT_EQ(directed.Run(3, cnAlong), 0);
    EXPECT_EQ(directed.m_Out.SizeBytes(), 0u);
}

TEST(IpFilterMidDirected, AnswersEveryMissingAllocation) {
    StDirected directed = Uniform(RandomImage(ClImage::eUInt8, 9, 8, 1, 1), -100, 77);
    TestSupport::FailEachAllocation([&] {
        directed.m_Out.Delete();
        directed.Run(5, cnAlong);
    });
}

} // namespace
