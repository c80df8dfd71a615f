// Filters on images of several planes.

#include "ImageProcessing/IpFilterBase.h"

#include "Tools/Allocate.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <functional>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

/// A filter of one plane, told by the test, which gets the number of the plane.
class ClIpPlaneProbe : public ClIpFilterBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpPlaneProbe>(); }
    const char* Name() const override { return "ClIpPlaneProbe"; }
    long DoProcess() override { return m_Work(*m_pInImage, *m_pOutImage, m_nCalls++); }
    long ApplyTo(ClImage& rIn, ClImage& rOut) {
        m_nCalls = 0;
        m_pInImage = &rIn;
        m_pOutImage = &rOut;
        return Apply();
    }

    std::function<long(const ClImage&, ClImage&, int)> m_Work;
    int m_nCalls = 0;
};

/// Halves the samples and adds the number of the plane.
long HalveAndNumber(const ClImage& In, ClImage& Out, int nPlane) {
    EXPECT_EQ(In.Planes(), 1);
    Out.New(In);
    for (int y = 0; y < In.Height(); ++y)
        for (int x = 0; x < In.Width(); ++x)
            TestSupport::SetSample(Out, x, y, 0,
                                   std::trunc(TestSupport::Sample(In, x, y) / 2) + nPlane);
    return 0;
}

TEST(IpFilterBasePlanes, AreFilteredOneByOne) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt16, ClImage::eDouble64})
        for (int nPlanes = 2; nPlanes <= 4; ++nPlanes) {
            ClTestImage in = RandomImage(nType, 5, 3, nPlanes, 7);
            ClIpPlaneProbe filter;
            filter.m_Work = HalveAndNumber;
            ClImage out;
            EXPECT_EQ(filter.ApplyTo(in, out), 0);
            EXPECT_EQ(filter.m_nCalls, nPlanes);
            RealRows aExpected = RealPixels(in);
            for (auto& aRow : aExpected)
                for (std::size_t i = 0; i < aRow.size(); ++i)
                    aRow[i] = std::trunc(aRow[i] / 2) +
                              static_cast<double>(i % static_cast<std::size_t>(nPlanes));
            EXPECT_EQ(RealPixels(out), aExpected);
            EXPECT_EQ(out.DataType(), nType);
            EXPECT_EQ(filter.m_pInImage, &in);
            EXPECT_EQ(filter.m_pOutImage, &out);
        }
}

TEST(IpFilterBasePlanes, KeepContentAttributeAndResolution) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 3, 3, 7);
    in.SetContent(ClImage::eCIELab);
    in.SetAttribute(8);
    in.SetPelsX(100);
    in.SetPelsY(200);
    in.SetWhite(1000.0);
    ClIpPlaneProbe filter;
    filter.m_Work = HalveAndNumber;
    ClImage out;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(out.Content(), ClImage::eCIELab);
    EXPECT_EQ(out.Attribute(), 8);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 65535.0); // of the type
}

TEST(IpFilterBasePlanes, TakeTypeAndSizeOfTheFilteredPlanes) {
    ClTestImage in = Img(ClImage::eUInt8, {{1, 2, 3, 4}}, 2);
    ClIpPlaneProbe filter;
    filter.m_Work = [](const ClImage&, ClImage& Out, int nPlane) {
        Out.NewWithType(ClImage::eInt16, 1, 2, 1, 5, 6);
        TestSupport::SetSample(Out, 0, 0, 0, 300 + nPlane);
        TestSupport::SetSample(Out, 0, 1, 0, -300 - nPlane);
        return 0L;
    };
    ClImage out;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt16);
    EXPECT_EQ(Pixels(out), Rows({{300, 301}, {-300, -301}}));
    EXPECT_EQ(out.PelsY(), 6);
}

TEST(IpFilterBasePlanes, MayBeFilteredInPlace) {
    ClTestImage image = Img(ClImage::eUInt8, {{10, 20, 30, 40}}, 2);
    ClIpPlaneProbe filter;
    filter.m_Work = HalveAndNumber;
    EXPECT_EQ(filter.ApplyTo(image, image), 0);
    EXPECT_EQ(Pixels(image), Rows({{5, 11, 15, 21}}));
}

TEST(IpFilterBasePlanes, AnswerZeroAndStayAsTheyAreWhereOneFails) {
    ClTestImage image = Img(ClImage::eUInt8, {{10, 20, 30, 40}}, 2);
    const ClTestImage copy = image;
    ClIpPlaneProbe filter;
    filter.m_Work = [](const ClImage& In, ClImage& Out, int nPlane) {
        return nPlane == 0 ? HalveAndNumber(In, Out, 0) : -33;
    };
    EXPECT_EQ(filter.ApplyTo(image, image), 0);
    ExpectSameImage(image, copy);
    filter.m_nCalls = 0;
    EXPECT_EQ(filter.ProcessMultiPlane(), -33);
}

TEST(IpFilterBasePlanes, StayAsTheyAreWhereTheFilteredOnesMakeNoImage) {
    ClTestImage image = Img(ClImage::eUInt8, {{10, 20, 30, 40}}, 2);
    const ClTestImage copy = image;
    const std::function<void(ClImage&)> aSecond[] = {
        [](ClImage&) {}, [](ClImage& Out) { Out.NewWithType(ClImage::eInt8, 2, 1, 1, 0, 0); },
        [](ClImage& Out) { Out.NewWithType(ClImage::eUInt8, 3, 1, 1, 0, 0); },
        [](ClImage& Out) { Out.NewWithType(ClImage::eUInt8, 2, 2, 1, 0, 0); },
        [](ClImage& Out) { Out.NewWithType(ClImage::eUInt8, 2, 1, 2, 0, 0); }};
    for (const auto& makeSecond : aSecond) {
        ClIpPlaneProbe filter;
        filter.m_Work = [&](const ClImage& In, ClImage& Out, int nPlane) {
            if (nPlane == 0)
                return HalveAndNumber(In, Out, 0);
            makeSecond(Out);
            return 0L;
        };
        EXPECT_EQ(filter.ApplyTo(image, image), 0);
        ExpectSameImage(image, copy);
        filter.m_nCalls = 0;
        EXPECT_EQ(filter.ProcessMultiPlane(), -35);
    }
}

TEST(IpFilterBasePlanes, AreFourAtMost) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 3, 2, 5, 1);
    ClTestImage out = Img({{9}});
    ClIpPlaneProbe filter;
    filter.m_Work = HalveAndNumber;
    EXPECT_THROWS(filter.ApplyTo(in, out), ClException, -35, "Image has more than 4 planes.");
    EXPECT_EQ(Pixels(out), Rows({{9}}));
    EXPECT_EQ(filter.m_nCalls, 0);
    EXPECT_EQ(filter.m_pInImage, &in);
}

TEST(IpFilterBasePlanes, AnswerEveryMissingAllocation) {
    ClTestImage image = Img(ClImage::eUInt8, {{10, 20, 30, 40}}, 2);
    ClIpPlaneProbe filter;
    filter.m_Work = [](const ClImage& In, ClImage& Out, int) {
        Out.New(In);
        Out = static_cast<unsigned char>(3);
        return 0L;
    };
    TestSupport::FailEachAllocation([&] { EXPECT_EQ(filter.ApplyTo(image, image), 0); });
    EXPECT_EQ(Pixels(image), Rows({{3, 3, 3, 3}}));
}

} // namespace
