// The images of the local stretch: planes, outputs that are inputs, failures.

#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/NaiveLocalStretch.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <limits>

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

constexpr long caRates[] = {1, 4};

ClTestImage Stretched(const ClImage& In, long nRate) {
    ClTestImage in(In);
    ClTestImage out;
    ClIpStretchRangeLocal ip;
    ip.m_nFilterWidth = 5;
    ip.m_nSubSampleRate = nRate;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    return out;
}

TEST(IpStretchRangeLocalImages, OutputKeepsTheDescriptionOfTheInput) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 1, 1);
    in.SetAttribute(6);
    for (long nRate : caRates) {
        const ClTestImage out = Stretched(in, nRate);
        EXPECT_EQ(out.Attribute(), 6);
        EXPECT_EQ(out.PelsX(), in.PelsX());
        EXPECT_EQ(out.PelsY(), in.PelsY());
        EXPECT_EQ(out.Content(), ClImage::eGrayscale);
        EXPECT_EQ(out.White(), 255.0);
    }
}

TEST(IpStretchRangeLocalImages, WorksOntoItself) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 1, 2);
    for (long nRate : caRates) {
        ClTestImage image(in);
        ClIpStretchRangeLocal ip;
        ip.m_nFilterWidth = 5;
        ip.m_nSubSampleRate = nRate;
        EXPECT_EQ(ip.ApplyParam(image, image), 0);
        ExpectSameImage(image, Stretched(in, nRate));
    }
}

TEST(IpStretchRangeLocalImages, LeavesTheInputAloneWhereTheOutputSharesItsPixels) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 1, 3);
    const ClTestImage before(in);
    ClImage out;
    out.Attach(in);
    ClIpStretchRangeLocal ip;
    ip.m_nFilterWidth = 5;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(in, before);
    ExpectSameImage(out, Stretched(before, 4));
}

TEST(IpStretchRangeLocalImages, StretchesThreePlanesOneByOne) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 3, 4);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(2);
    for (long nRate : caRates) {
        const ClTestImage out = Stretched(in, nRate);
        EXPECT_EQ(out.Planes(), 3);
        EXPECT_EQ(out.Content(), ClImage::eHSV);
        EXPECT_EQ(out.Attribute(), 2);
        EXPECT_EQ(out.PelsX(), in.PelsX());
        for (int p = 0; p < 3; ++p) {
            ClImage inPlane;
            ClImage outPlane;
            in.GetPlane(p, inPlane);
            out.GetPlane(p, outPlane);
            EXPECT_EQ(Pixels(outPlane), Pixels(Stretched(inPlane, nRate))) << p;
        }
        ClTestImage same(in);
        ClIpStretchRangeLocal ip;
        ip.m_nFilterWidth = 5;
        ip.m_nSubSampleRate = nRate;
        EXPECT_EQ(ip.ApplyParam(same, same), 0);
        ExpectSameImage(same, out);
    }
}

TEST(IpStretchRangeLocalImages, HandsOutCopiesOfItsLimits) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 1, 5);
    const Rows aIn = Pixels(in);
    ClImage out;
    ClImage min;
    ClImage max;
    ClIpStretchRangeLocal ip;
    ip.m_nFilterWidth = 5;
    ip.m_nSubSampleRate = 1;
    ip.m_pOptOutMinImage = &min;
    ip.m_pOptOutMaxImage = &max;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(min), TestSupport::NaiveMid(TestSupport::NaiveMin(aIn, 5), 5));
    EXPECT_EQ(Pixels(max), TestSupport::NaiveMax(aIn, 5));
    ExpectSameImage(out, Stretched(in, 1));
    ip.m_pOptOutMinImage = nullptr; // each by itself
    ClImage alone;
    ip.m_pOptOutMaxImage = &alone;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(alone, max);
}

TEST(IpStretchRangeLocalImages, HandsOutLimitsOfTheInputsSizeWithSubsampling) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 1, 5);
    ClImage out;
    ClImage min;
    ClImage max;
    ClIpStretchRangeLocal ip;
    ip.m_pOptOutMinImage = &min;
    ip.m_pOptOutMaxImage = &max;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(min.Width(), 17);
    EXPECT_EQ(min.Height(), 11);
    EXPECT_EQ(max.Width(), 17);
    EXPECT_EQ(max.Height(), 11);
    EXPECT_EQ(Pixels(out), TestSupport::NaiveStretched(Pixels(in), {Pixels(min), Pixels(max)}, 5));
}

TEST(IpStretchRangeLocalImages, MayHandOutALimitOverTheInput) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 1, 6);
    const ClTestImage before(in);
    ClImage out;
    ClIpStretchRangeLocal ip;
    ip.m_nFilterWidth = 5;
    ip.m_nSubSampleRate = 1;
    ip.m_pOptOutMaxImage = &in;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(out, Stretched(before, 1));
    EXPECT_EQ(Pixels(in), TestSupport::NaiveMax(Pixels(before), 5));
}

TEST(IpStretchRangeLocalImages, MayHandOutALimitOverAnInputOfThreePlanes) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 11, 3, 6);
    const ClTestImage before(in);
    ClImage out;
    ClIpStretchRangeLocal ip;
    ip.m_nFilterWidth = 5;
    ip.m_nSubSampleRate = 1;
    ip.m_pOptOutMaxImage = &in;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(out, Stretched(before, 1));
    ClImage last;
    before.GetPlane(2, last);
    EXPECT_EQ(Pixels(in), TestSupport::NaiveMax(Pixels(last), 5));
}

// Failures

TEST(IpStretchRangeLocalImages, ReportsMissingImagesAndWidthsBelowOne) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{7}});
    ClIpStretchRangeLocal ip;
    EXPECT_EQ(ip.Apply(), -37);
    ip.m_pInImage = &in;
    EXPECT_EQ(ip.Apply(), -37);
    ip.m_pInImage = nullptr;
    ip.m_pOutImage = &out;
    EXPECT_EQ(ip.Apply(), -37);
    ClImage empty;
    EXPECT_EQ(ip.ApplyParam(empty, out), -37);
    for (long nWidth : {0L, -1L, std::numeric_limits<long>::min()}) {
        ip.m_nFilterWidth = nWidth;
        EXPECT_EQ(ip.ApplyParam(in, out), -37);
    }
    EXPECT_EQ(Pixels(out), Rows({{7}}));
}

TEST(IpStretchRangeLocalImages, RefusesOtherPlaneCounts) {
    ClTestImage out = Img({{7}});
    for (int nPlanes : {2, 4, 5}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 5, 5, nPlanes, 1);
        ClIpStretchRangeLocal ip;
        EXPECT_EQ(ip.ApplyParam(in, out), -37);
        ip.m_nFilterWidth = 1;
        EXPECT_EQ(ip.ApplyParam(in, out), -37);
    }
    EXPECT_EQ(Pixels(out), Rows({{7}}));
}

TEST(IpStretchRangeLocalImages, RefusesOtherPixelTypesBeforeTheOutputChanges) {
    ClTestImage out = Img({{7}});
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (long nWidth : {1L, 3L}) {
            if (nType == ClImage::eUInt8)
                continue;
            ClTestImage in = BlankImage(nType, 5, 5);
            ClIpStretchRangeLocal ip;
            ip.m_nFilterWidth = nWidth;
            EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -101,
                          "Image Type is not the assigned type");
        }
    EXPECT_EQ(Pixels(out), Rows({{7}}));
}

TEST(IpStretchRangeLocalImages, TestsWidthThenPlanesThenTypeThenAnEvenWidth) {
    ClTestImage out = Img({{7}});
    ClIpStretchRangeLocal ip;
    ip.m_nSubSampleRate = 1;
    ClTestImage wrongPlanes = BlankImage(ClImage::eInt16, 5, 5, 2);
    ClTestImage wrongType = BlankImage(ClImage::eInt16, 5, 5, 3);
    ip.m_nFilterWidth = 0;
    EXPECT_EQ(ip.ApplyParam(wrongType, out), -37);
    ip.m_nFilterWidth = 4;
    EXPECT_EQ(ip.ApplyParam(wrongPlanes, out), -37);
    for (int nPlanes : {1, 3}) {
        wrongType = BlankImage(ClImage::eInt16, 5, 5, nPlanes);
        EXPECT_THROWS(ip.ApplyParam(wrongType, out), ClException, -101,
                      "Image Type is not the assigned type");
        ClTestImage in = RandomImage(ClImage::eUInt8, 5, 5, nPlanes, 1);
        EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -44, "Filter width has to be odd.");
    }
    EXPECT_EQ(Pixels(out), Rows({{7}}));
}

/// Whatever is missing, the output and the images of the limits change one after the other, at the
/// end: while one is as before, those behind it are, too.
TEST(IpStretchRangeLocalImages, ChangesTheOutputWhenEverythingElseIsDone) {
    for (int nPlanes : {1, 3})
        for (long nRate : caRates) {
            ClTestImage in = RandomImage(ClImage::eUInt8, 17, 12, nPlanes, 7);
            const ClTestImage before = RandomImage(ClImage::eUInt8, 17, 12, nPlanes, 8);
            ClTestImage out(before); // has its size already: nothing need be allocated
            long nFailures = 0;
            TestSupport::FailEachAllocation([&] {
                out = before;
                ClImage min;
                ClImage max;
                ClIpStretchRangeLocal ip;
                ip.m_nSubSampleRate = nRate;
                ip.m_pOptOutMinImage = &min;
                ip.m_pOptOutMaxImage = &max;
                try {
                    ip.ApplyParam(in, out);
                } catch (const ClExBadAlloc&) {
                    ++nFailures;
                    ExpectSameImage(out, before);
                    if (nPlanes == 1 && min.Data() == nullptr) {
                        EXPECT_EQ(max.Data(), nullptr);
                    }
                    throw;
                }
            });
            EXPECT_GE(nFailures, 10) << nPlanes << " planes, rate " << nRate;
            EXPECT_NE(Pixels(out), Pixels(before));
        }
}

TEST(IpStretchRangeLocalImages, KeepsTheOutputWhereTheWidthIsEven) {
    for (int nPlanes : {1, 3}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 9, 8, nPlanes, 7);
        const ClTestImage before = RandomImage(ClImage::eUInt8, 9, 8, nPlanes, 8);
        ClTestImage out(before);
        ClTestImage limit(before);
        ClIpStretchRangeLocal ip;
        ip.m_nSubSampleRate = 1;
        ip.m_nFilterWidth = 6;
        ip.m_pOptOutMinImage = ip.m_pOptOutMaxImage = &limit;
        EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -44, "Filter width has to be odd.");
        ExpectSameImage(out, before);
        ExpectSameImage(limit, before);
    }
}

TEST(IpStretchRangeLocalImages, KeepsTheInputWhenMemoryIsMissing) {
    for (int nPlanes : {1, 3})
        for (long nRate : caRates) {
            ClTestImage image = RandomImage(ClImage::eUInt8, 9, 8, nPlanes, 7);
            const ClTestImage before(image);
            TestSupport::FailEachAllocation([&] {
                image = before; // a run that gets by has changed it
                ClIpStretchRangeLocal ip;
                ip.m_nSubSampleRate = nRate;
                try {
                    ip.ApplyParam(image, image);
                } catch (const ClExBadAlloc&) {
                    ExpectSameImage(image, before);
                    throw;
                }
            });
        }
}

} // namespace
