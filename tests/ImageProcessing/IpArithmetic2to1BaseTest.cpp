// The checks, the signs and the parts of the byte frame. Where it places images is tested with the
// overlay.

#include "ImageProcessing/IpArithmetic2to1Base.h"

#include "Tools/Allocate.h"
#include "Tools/ParameterContainer.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <array>
#include <climits>
#include <functional>

namespace {

using TestSupport::ClTestImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

class ClIpArithmeticProbe : public ClIpArithmetic2to1Base {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpArithmeticProbe>(); }
    const char* Name() const override { return "ClIpArithmeticProbe"; }

    void ProcessArea(long nWidth, long nHeight, long nPlanes, const unsigned char* pIn1,
                     long nIn1Stride, const unsigned char* pIn2, long nIn2Stride,
                     unsigned char* pOut, long nOutStride) override {
        m_pSeenOut = m_pOutImage;
        m_aSeen = {nWidth,     nHeight,
                   nPlanes,    pIn1 - m_pInImage1->Data(),
                   nIn1Stride, pIn2 - m_pInImage2->Data(),
                   nIn2Stride, pOut - m_pOutImage->Data(),
                   nOutStride};
        if (m_Area)
            m_Area(pIn1, pIn2, pOut);
    }

    std::function<void(const unsigned char*, const unsigned char*, unsigned char*)> m_Area;
    const ClImage* m_pSeenOut = nullptr;
    /// The numbers that the area was called with; places as distances from the first byte.
    using Seen = std::array<long, 9>;
    Seen m_aSeen = {};
};

/// The base itself, which processes nothing.
class ClIpNoArithmetic : public ClIpArithmetic2to1Base {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpNoArithmetic>(); }
    const char* Name() const override { return "ClIpNoArithmetic"; }
};

// What is refused

TEST(IpArithmetic2to1Base, AnswersEachMissingImage) {
    ClTestImage image = Img({{1}});
    ClImage empty;
    const struct {
        ClImage* m_pIn1;
        ClImage* m_pIn2;
        ClImage* m_pOut;
    } aCases[] = {{nullptr, nullptr, nullptr}, {nullptr, &image, &image}, {&image, nullptr, &image},
                  {&image, &image, nullptr},   {&empty, &image, &image},  {&image, &empty, &image}};
    for (const auto& c : aCases) {
        ClIpArithmeticProbe ip;
        ip.m_pInImage1 = c.m_pIn1;
        ip.m_pInImage2 = c.m_pIn2;
        ip.m_pOutImage = c.m_pOut;
        EXPECT_FALSE(ip.CanApply());
        EXPECT_EQ(ip.Apply(), -37);
        EXPECT_EQ(ip.Process(), -37);
        EXPECT_EQ(ip.m_pSeenOut, nullptr);
    }
}

TEST(IpArithmetic2to1Base, TakesOnlySamplesOfOneByte) {
    ClTestImage bytes = RandomImage(ClImage::eUInt8, 3, 2, 1, 1);
    for (unsigned char nType : TestSupport::caPixelTypes) {
        ClTestImage other = RandomImage(nType, 3, 2, 1, 2);
        ClTestImage out = Img({{9}});
        ClIpArithmeticProbe ip;
        const bool bByte = nType == ClImage::eUInt8 || nType == ClImage::eInt8;
        EXPECT_EQ(ip.ApplyParam(bytes, other, out), bByte ? 0 : -33) << int{nType};
        EXPECT_EQ(ip.ApplyParam(other, bytes, out), bByte ? 0 : -33) << int{nType};
        EXPECT_EQ(ip.Process(), bByte ? 0 : -33) << int{nType};
        EXPECT_EQ(out.Width(), bByte ? 3 : 1);
    }
}

TEST(IpArithmetic2to1Base, RefusesUnequalSizesAndOffsetsUnlessTold) {
    const struct {
        int m_nWidth, m_nHeight, m_nOffsetX, m_nOffsetY;
        long m_nResult;
    } aCases[] = {{4, 3, 0, 0, -14}, {3, 4, 0, 0, -14},  {4, 4, 1, 0, -14},
                  {3, 3, 1, 0, -35}, {3, 3, 0, -1, -35}, {3, 3, 0, 0, 0}};
    for (const auto& c : aCases) {
        ClIpArithmeticProbe ip;
        ClTestImage in1 = RandomImage(ClImage::eUInt8, 3, 3, 1, 1);
        ClTestImage in2 = RandomImage(ClImage::eUInt8, c.m_nWidth, c.m_nHeight, 1, 2);
        ClTestImage out = Img({{9}});
        ip.m_nOffsetX = c.m_nOffsetX;
        ip.m_nOffsetY = c.m_nOffsetY;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out), c.m_nResult);
        EXPECT_EQ(out.Width(), c.m_nResult == 0 ? 3 : 1);
        ip.m_bSizeMustBeEqual = false;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);
    }
}

TEST(IpArithmetic2to1Base, LeavesAnEmptyOutputEmptyForImagesWithoutPlanes) {
    ClIpArithmeticProbe ip;
    ip.m_bSizeMustBeEqual = false;
    alignas(8) unsigned char aBytes[8] = {};
    ClImage in1;
    ClImage in2;
    in1.Attach(aBytes, ClImage::eUInt8, 2, 2, 0, 0, 0);
    in2.Attach(aBytes, ClImage::eUInt8, 3, 1, 0, 0, 0);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);
    EXPECT_EQ(out.Data(), nullptr);
    ClTestImage full = Img({{1}});
    EXPECT_THROWS(ip.ApplyParam(in1, in2, full), ClException, -101, "Image area must be positive");
}

TEST(IpArithmetic2to1Base, RefusesAnOutputThatIsTooLarge) {
    ClTestImage in = Img({{1, 2}});
    for (int nOffset : {INT_MAX, INT_MIN}) {
        ClIpArithmeticProbe ip;
        ip.m_bSizeMustBeEqual = false;
        ip.m_nOffsetX = nOffset;
        EXPECT_THROWS(ip.ApplyParam(in, in, in), ClException, -101, "Image area must be positive");
        EXPECT_EQ(ip.m_pOutImage, &in);
        EXPECT_EQ(Pixels(in), Rows({{1, 2}}));
    }
}

// The run

TEST(IpArithmetic2to1Base, HandsTheWholeOfTwoEqualImagesToTheOperator) {
    ClIpArithmeticProbe ip;
    ClTestImage in1 = RandomImage(ClImage::eUInt8, 5, 3, 3, 1);
    ClTestImage in2 = RandomImage(ClImage::eInt8, 5, 3, 3, 2);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);
    EXPECT_EQ(ip.m_aSeen, (ClIpArithmeticProbe::Seen{5, 3, 3, 0, 16, 0, 16, 0, 16}));
    EXPECT_EQ(out.PelsX(), in1.PelsX());
    EXPECT_EQ(out.Content(), ClImage::eRGB);
}

TEST(IpArithmetic2to1Base, HandsTheOverlapToTheOperator) {
    ClIpArithmeticProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = -1;
    ip.m_nOffsetY = 2;
    ClTestImage in1 = RandomImage(ClImage::eUInt8, 4, 4, 3, 1);
    ClTestImage in2 = RandomImage(ClImage::eUInt8, 4, 4, 3, 2);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);
    EXPECT_EQ(ip.m_aSeen, (ClIpArithmeticProbe::Seen{3, 2, 3, 2 * 12, 12, 3, 12, 3 + 2 * 16, 16}));
}

TEST(IpArithmetic2to1Base, HandsOverNothingForUnequalPlanesOrWithoutOverlap) {
    ClIpArithmeticProbe ip;
    ClTestImage grey = FlatImage(ClImage::eUInt8, 2, 1, 1, 5);
    ClTestImage colour = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(colour, grey, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{5, 5, 5, 5, 5, 5}})); // image 2 lies above image 1
    EXPECT_EQ(ip.ApplyParam(grey, colour, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{5, 5}}));
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = 2;
    EXPECT_EQ(ip.ApplyParam(grey, grey, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{5, 5, 5, 5}}));
    EXPECT_EQ(ip.m_pSeenOut, nullptr);
}

TEST(IpArithmetic2to1Base, ProcessesNothingByItself) {
    ClIpNoArithmetic ip;
    ClTestImage in1 = Img({{1, 2}});
    ClTestImage in2 = Img({{3, 4}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{3, 4}}));
}

TEST(IpArithmetic2to1Base, GoesThroughALocalImageWhereTheOutputIsAnInput) {
    for (bool bFirst : {true, false}) {
        ClIpArithmeticProbe ip;
        ClTestImage in1 = Img({{1}});
        ClTestImage in2 = Img({{10}});
        ClImage& out = bFirst ? in1 : in2;
        ip.m_Area = [](const unsigned char* p1, const unsigned char* p2, unsigned char* pOut) {
            *pOut = 77;
            EXPECT_EQ(*p1, 1);
            EXPECT_EQ(*p2, 10);
        };
        EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);
        EXPECT_EQ(Pixels(out), Rows({{77}}));
        EXPECT_NE(ip.m_pSeenOut, &out);
        EXPECT_EQ(ip.m_pOutImage, &out);
    }
}

TEST(IpArithmetic2to1Base, KeepsTheImageWhereTheOperatorFails) {
    ClIpArithmeticProbe ip;
    ClTestImage image = Img({{1, 2}});
    ip.m_Area = [](const unsigned char*, const unsigned char*, unsigned char* pOut) {
        *pOut = 99;
        throw ClExTessarin(-44, VEK_HERE);
    };
    EXPECT_THROWS(ip.ApplyParam(image, image, image), ClExTessarin, -44,
                  "One(or more) parameter(s) is(are) invalid.");
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    EXPECT_EQ(ip.m_pOutImage, &image);
}

TEST(IpArithmetic2to1Base, AnswersEveryMissingAllocation) {
    ClIpArithmeticProbe ip;
    ClTestImage image = Img({{1, 2}});
    const ClTestImage copy = image;
    TestSupport::FailEachAllocation([&] { EXPECT_EQ(ip.ApplyParam(image, image, image), 0); });
    TestSupport::ExpectSameImage(image, copy);
    EXPECT_EQ(ip.m_pOutImage, &image);
}

TEST(IpArithmetic2to1Base, GivesEveryMemberItsDefaultAndKeepsAllInAQuery) {
    ClIpArithmeticProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nFillColor = 0x112233;
    ip.m_nOffsetX = 2;
    ip.m_nOffsetY = -3;
    ClParameterContainer container;
    ip.QueryParameters(container);
    EXPECT_FALSE(ip.m_bSizeMustBeEqual);
    EXPECT_EQ(ip.m_nFillColor, 0x112233);
    EXPECT_EQ(ip.m_nOffsetX, 2);
    EXPECT_EQ(ip.m_nOffsetY, -3);
    ip.SetParametersToDefault();
    EXPECT_TRUE(ip.m_bSizeMustBeEqual);
    EXPECT_EQ(ip.m_nFillColor, 0);
    EXPECT_EQ(ip.m_nOffsetX, 0);
    EXPECT_EQ(ip.m_nOffsetY, 0);
}

// The sign

TEST(IpArithmetic2to1Base, GivesTheOutputTheSignOfImage1) {
    ClIpArithmeticProbe ip;
    ClTestImage plain = FlatImage(ClImage::eUInt8, 1, 1, 1, 1);
    ClTestImage sign = FlatImage(ClImage::eInt8, 1, 1, 1, 1);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(sign, plain, out), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt8);
    EXPECT_EQ(out.Black(), -128.0);
    EXPECT_EQ(out.White(), 127.0);
    EXPECT_EQ(ip.ApplyParam(plain, sign, out), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt8);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 255.0);
}

TEST(IpArithmetic2to1Base, MovesTheRangeWithTheSign) {
    ClTestImage plain = FlatImage(ClImage::eUInt8, 1, 1, 1, 1);
    ClTestImage sign = FlatImage(ClImage::eInt8, 1, 1, 1, 1);
    const struct {
        ClImage* m_pIn1;
        unsigned char m_nOut;
        double m_dBlack, m_dWhite;
        unsigned char m_nExpected;
        double m_dMovedBlack, m_dMovedWhite;
    } aCases[] = {{&sign, ClImage::eUInt16, 100, 4095, ClImage::eInt16, -32668, -28673},
                  {&plain, ClImage::eInt16, -100, 100, ClImage::eUInt16, 32668, 32868},
                  {&sign, ClImage::eUInt32, 0, 10, ClImage::eInt32, -2147483648.0, -2147483638.0},
                  {&sign, ClImage::eInt8, -5, 5, ClImage::eInt8, -5, 5},
                  {&plain, ClImage::eUInt8, 0, 9, ClImage::eUInt8, 0, 9},
                  {&sign, ClImage::eFloat32, -1, 1, ClImage::eFloat32, -1, 1},
                  {&plain, ClImage::eFloat32, -1, 1, ClImage::eFloat32 & 0x7F, -1, 1}};
    for (const auto& c : aCases) {
        ClIpArithmeticProbe ip;
        ClTestImage out = TestSupport::BlankImage(c.m_nOut, 1, 1);
        out.SetBlack(c.m_dBlack);
        out.SetWhite(c.m_dWhite);
        ip.m_pInImage1 = c.m_pIn1;
        ip.m_pOutImage = &out;
        ip.SetOutImageSign();
        EXPECT_EQ(out.DataType(), c.m_nExpected);
        EXPECT_EQ(out.Black(), c.m_dMovedBlack);
        EXPECT_EQ(out.White(), c.m_dMovedWhite);
    }
}

// The parts

std::vector<int> Filled(long nColor, long nPlanes) {
    ClIpArithmeticProbe ip;
    ip.m_nFillColor = nColor;
    std::vector<unsigned char> aBytes(static_cast<std::size_t>(4 * nPlanes), 9);
    ip.FillSubpart(2, 2, nPlanes, aBytes.data(), 2 * nPlanes);
    return {aBytes.begin(), aBytes.begin() + 2 * nPlanes};
}

TEST(IpArithmetic2to1Base, FillsEachPlaneWithItsByteOfTheColour) {
    const long nColor = 0x7F332211;
    EXPECT_EQ(Filled(nColor, 1), (std::vector<int>{0x11, 0x11}));
    EXPECT_EQ(Filled(nColor, 2), (std::vector<int>{0x11, 0x22, 0x11, 0x22}));
    EXPECT_EQ(Filled(nColor, 3), (std::vector<int>{0x11, 0x22, 0x33, 0x11, 0x22, 0x33}));
    EXPECT_EQ(Filled(nColor, 4), std::vector<int>(8, 9)); // not at all
    EXPECT_EQ(Filled(0x7F444444, 4), std::vector<int>(8, 0x44));
    EXPECT_EQ(Filled(0, 5), std::vector<int>(10, 0));
}

TEST(IpArithmetic2to1Base, LeavesTheLineEndsAloneWhenItFills) {
    ClIpArithmeticProbe ip;
    ip.m_nFillColor = 1;
    unsigned char aBytes[] = {9, 9, 9, 9, 9, 9, 9, 9};
    ip.FillSubpart(2, 2, 1, aBytes, 4);
    EXPECT_EQ(std::vector<int>(aBytes, aBytes + 8), (std::vector<int>{1, 1, 9, 9, 1, 1, 9, 9}));
}

TEST(IpArithmetic2to1Base, CopiesLinesAndTriplesGreySamples) {
    const unsigned char aFrom[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const struct {
        long m_nPlanes1, m_nPlanes2;
        std::vector<int> m_aTo;
    } aCases[] = {{1, 1, {1, 2, 9, 9, 9, 9, 5, 6, 9, 9, 9, 9}},
                  {2, 2, {1, 2, 3, 4, 9, 9, 5, 6, 7, 8, 9, 9}},
                  {1, 3, {1, 1, 1, 2, 2, 2, 5, 5, 5, 6, 6, 6}},
                  {3, 1, std::vector<int>(12, 9)},
                  {1, 2, std::vector<int>(12, 9)},
                  {2, 3, std::vector<int>(12, 9)}};
    for (const auto& c : aCases) {
        ClIpArithmeticProbe ip;
        unsigned char aTo[12];
        std::fill_n(aTo, 12, static_cast<unsigned char>(9));
        ip.CopySubpart(2, 2, c.m_nPlanes1, c.m_nPlanes2, aFrom, 4, aTo, 6);
        EXPECT_EQ(std::vector<int>(aTo, aTo + 12), c.m_aTo);
    }
}

} // namespace
