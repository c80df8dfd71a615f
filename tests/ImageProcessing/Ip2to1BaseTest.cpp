#include "ImageProcessing/Ip2to1Base.h"

#include "ImageProcessing/NaiveArithmetic.h"
#include "Tools/ParameterContainer.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <climits>

namespace {

using TestSupport::ceDefault;
using TestSupport::ClIpPairProbe;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

double Sum(double a, double b) {
    return a + b;
}

// What is refused

TEST(Ip2to1Base, AnswersEachMissingImage) {
    ClTestImage image = Img({{1}});
    ClImage empty;
    const struct {
        ClImage* m_pIn1;
        ClImage* m_pIn2;
        ClImage* m_pOut;
    } aCases[] = {{nullptr, nullptr, nullptr}, {nullptr, &image, &image}, {&image, nullptr, &image},
                  {&image, &image, nullptr},   {&empty, &image, &image},  {&image, &empty, &image}};
    for (const auto& c : aCases) {
        ClIpPairProbe ip;
        ip.m_pInImage1 = c.m_pIn1;
        ip.m_pInImage2 = c.m_pIn2;
        ip.m_pOutImage = c.m_pOut;
        EXPECT_FALSE(ip.CanApply());
        EXPECT_EQ(ip.Initialize(), -37);
        EXPECT_EQ(ip.Apply(), -37);
        EXPECT_EQ(ip.Process(), -37);
        EXPECT_EQ(ip.m_pSeenOut, nullptr);
    }
    EXPECT_EQ(Pixels(image), Rows({{1}}));
}

TEST(Ip2to1Base, RefusesUnequalSizesAndOffsetsUnlessTold) {
    const struct {
        int m_nWidth, m_nHeight, m_nOffsetX, m_nOffsetY;
    } aCases[] = {{4, 3, 0, 0}, {3, 4, 0, 0}, {3, 3, 1, 0}, {3, 3, 0, -1}, {5, 5, 1, 1}};
    for (const auto& c : aCases) {
        ClIpPairProbe ip;
        ClTestImage in1 = RandomImage(ClImage::eUInt8, 3, 3, 1, 1);
        ClTestImage in2 = RandomImage(ClImage::eUInt8, c.m_nWidth, c.m_nHeight, 1, 2);
        ClTestImage out = Img({{9}});
        ip.m_nOffsetX = c.m_nOffsetX;
        ip.m_nOffsetY = c.m_nOffsetY;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), -44);
        EXPECT_TRUE(ip.CanApply());
        EXPECT_EQ(Pixels(out), Rows({{9}}));
        EXPECT_EQ(ip.m_pSeenOut, nullptr);
        ip.m_bSizeMustBeEqual = false;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    }
}

TEST(Ip2to1Base, AnswersValuesThatAreNoPixelType) {
    ClIpPairProbe ip;
    alignas(8) unsigned char aBytes[96] = {};
    ClTestImage image = Img({{1, 2}});
    ClImage strange;
    ClImage out;
    strange.Attach(aBytes, 3, 2, 1, 1, 0, 0);
    EXPECT_EQ(ip.ApplyParam(strange, image, out, ClImage::eUInt8), -101);
    EXPECT_EQ(ip.ApplyParam(strange, image, out, ceDefault), -101);
    EXPECT_EQ(ip.ApplyParam(image, strange, out, ceDefault), -101);
    EXPECT_EQ(ip.ApplyParam(image, image, out, 7), -101);
    EXPECT_EQ(ip.ApplyParam(image, image, image, 7), -101);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    EXPECT_EQ(ip.m_pSeenOut, nullptr);
    EXPECT_EQ(ip.ApplyParam(image, image, out, ClImage::eTypeUnknown), -101);
    TestSupport::ExpectEmptyImage(out);
}

TEST(Ip2to1Base, TestsTheTypesBeforeItTouchesTheOutput) {
    ClIpPairProbe ip;
    alignas(8) unsigned char aBytes[96] = {};
    ClTestImage image = Img({{1, 2}});
    ClImage strange;
    strange.Attach(aBytes, 3, 2, 1, 1, 0, 0);
    ClTestImage out = RandomImage(ClImage::eInt16, 3, 2, 3, 1);
    const ClTestImage before(out);
    EXPECT_EQ(ip.ApplyParam(strange, image, out, ceDefault), -101);
    EXPECT_EQ(ip.ApplyParam(image, strange, out, ceDefault), -101);
    EXPECT_EQ(ip.ApplyParam(image, image, out, 7), -101);
    ExpectSameImage(out, before);
}

TEST(Ip2to1Base, AnswersValuesThatAreNoPixelTypeFromTheLoop) {
    alignas(8) unsigned char aBytes[96] = {};
    ClTestImage image = Img({{1, 2}});
    ClImage strange;
    strange.Attach(aBytes, 3, 2, 1, 1, 0, 0);
    for (bool bUseLUT : {false, true}) {
        ClIpPairProbe ip;
        ip.m_bUseLUT = bUseLUT;
        const auto run = [&](ClImage& In1, ClImage& In2, ClImage& Out) {
            return ip.DoProcess(In1, In2, Out, 2, 1, 1, 1, 0, 4, 0, 4, 0, 4);
        };
        EXPECT_EQ(run(strange, image, image), -101);
        EXPECT_EQ(run(image, strange, image), -101);
        EXPECT_EQ(run(image, image, strange), -101);
    }
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
}

TEST(Ip2to1Base, RefusesAnOutputWithoutArea) {
    ClIpPairProbe ip;
    alignas(8) unsigned char aBytes[8] = {};
    ClImage in1;
    in1.Attach(aBytes, ClImage::eUInt8, 2, -2, 1, 0, 0);
    ClImage in2;
    in2.Attach(in1);
    ClTestImage out = Img({{1}});
    EXPECT_THROWS(ip.ApplyParam(in1, in2, out, ceDefault), ClException, -101,
                  "Image area must be positive");
}

TEST(Ip2to1Base, LeavesAnEmptyOutputEmptyForImagesWithoutPlanes) {
    ClIpPairProbe ip;
    ip.m_bSizeMustBeEqual = false;
    alignas(8) unsigned char aBytes[8] = {};
    ClImage in1;
    ClImage in2;
    in1.Attach(aBytes, ClImage::eUInt8, 2, 2, 0, 0, 0);
    in2.Attach(aBytes, ClImage::eUInt8, 3, 1, 0, 0, 0);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(out.Data(), nullptr);
    ClTestImage full = Img({{1}});
    EXPECT_THROWS(ip.ApplyParam(in1, in2, full, ceDefault), ClException, -101,
                  "Image area must be positive");
}

TEST(Ip2to1Base, RefusesAnOutputThatIsTooLarge) {
    ClTestImage in = Img({{1, 2}});
    for (int nOffset : {INT_MAX, INT_MIN, INT_MAX - 1, -INT_MAX}) {
        ClIpPairProbe ip;
        ClImage out;
        ip.m_bSizeMustBeEqual = false;
        ip.m_nOffsetX = nOffset;
        EXPECT_THROWS(ip.ApplyParam(in, in, out, ceDefault), ClException, -101,
                      "Image area must be positive");
        ip.m_nOffsetX = 0;
        ip.m_nOffsetY = nOffset < 0 ? nOffset : INT_MAX;
        EXPECT_THROWS(ip.ApplyParam(in, in, out, ceDefault), ClException, -101,
                      "Image area must be positive");
    }
}

TEST(Ip2to1Base, AnswersASizeBeyondWhatAnImageHolds) {
    ClTestImage in = Img({{1, 2}});
    ClIpPairProbe ip;
    ClImage out;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = 1000000;
    ip.m_nOffsetY = -1000000;
    EXPECT_THROWS(ip.ApplyParam(in, in, out, ceDefault), ClExBadAlloc, -102,
                  "Memory allocation failed");
    TestSupport::ExpectEmptyImage(out);
    EXPECT_THROWS(ip.ApplyParam(in, in, in, ceDefault), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_EQ(Pixels(in), Rows({{1, 2}}));
}

// What the loop is called with

TEST(Ip2to1Base, WalksAllOfTwoEqualImages) {
    ClIpPairProbe ip;
    ClTestImage in1 = RandomImage(ClImage::eUInt8, 5, 3, 3, 1);
    ClTestImage in2 = RandomImage(ClImage::eInt16, 5, 3, 1, 2);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ClImage::eFloat32), 0);
    EXPECT_EQ(ip.m_aSeen, (ClIpPairProbe::Seen{5, 3, 3, 1, 0, 16, 0, 6, 0, 15}));
    EXPECT_EQ(ip.m_pSeenOut, &out);
}

TEST(Ip2to1Base, PlacesASmallImageInsideALargeOne) {
    ClIpPairProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = 1;
    ip.m_nOffsetY = 1;
    ip.m_Value = [](double a, double b) { return 10 * a + b; };
    ClTestImage in1 = Img({{11, 12, 13, 14}, {21, 22, 23, 24}, {31, 32, 33, 34}, {41, 42, 43, 44}});
    ClTestImage in2 = Img({{1, 2}, {3, 4}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(ip.m_aSeen, (ClIpPairProbe::Seen{1, 1, 1, 1, 5, 4, 0, 4, 5, 4}));
    EXPECT_EQ(ip.m_nOverlapWidth, 1);
    EXPECT_EQ(ip.m_nOverlapHeight, 1);
    EXPECT_EQ(ip.m_nIn1Offset, 5);
    EXPECT_EQ(ip.m_nIn2Offset, 0);
    EXPECT_EQ(ip.m_nOutOffset, 5);
    EXPECT_EQ(Pixels(out),
              Rows({{11, 12, 13, 14}, {21, 221, 2, 24}, {31, 3, 4, 34}, {41, 42, 43, 44}}));
}

TEST(Ip2to1Base, PlacesImage2ToTheLeft) {
    ClIpPairProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = -1;
    ip.m_Value = Sum;
    ClTestImage in1 = FlatImage(ClImage::eUInt8, 4, 4, 1, 10);
    ClTestImage in2 = Img({{1, 2, 3, 4}, {1, 2, 3, 4}, {1, 2, 3, 4}, {1, 2, 3, 4}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(ip.m_aSeen, (ClIpPairProbe::Seen{3, 4, 1, 1, 0, 4, 1, 4, 1, 8}));
    const std::vector<int> aLine = {1, 12, 13, 14, 10};
    EXPECT_EQ(Pixels(out), Rows({aLine, aLine, aLine, aLine}));
}

TEST(Ip2to1Base, KeepsAnOverlapWithoutPixelsAndWalksNothing) {
    ClIpPairProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = 5;
    ip.m_nOffsetY = 1;
    ip.m_dFillColor = 7.0;
    ClTestImage in1 = Img({{1, 2}, {3, 4}});
    ClTestImage in2 = Img({{5, 6}});
    ClImage out;
    for (bool bUseLUT : {false, true}) {
        ip.m_bUseLUT = bUseLUT;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
        EXPECT_EQ(ip.m_nOverlapWidth, -3);
        EXPECT_EQ(ip.m_nOverlapHeight, 0);
        EXPECT_EQ(Pixels(out), Rows({{1, 2, 7, 7, 7, 7, 7}, {3, 4, 7, 7, 7, 5, 6}}));
    }
}

// The output

TEST(Ip2to1Base, GivesZeroWithoutAValueOfItsOwn) {
    ClIpPairProbe ip;
    ClTestImage in = RandomImage(ClImage::eInt16, 3, 2, 1, 1);
    ClTestImage out = RandomImage(ClImage::eInt16, 3, 2, 1, 2);
    EXPECT_EQ(ip.ApplyParam(in, in, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0}, {0, 0, 0}}));
}

TEST(Ip2to1Base, DescribesTheOutputByImage1) {
    ClIpPairProbe ip;
    ClTestImage in1 = RandomImage(ClImage::eUInt16, 3, 2, 3, 1);
    in1.SetWhite(4095.0);
    in1.SetPelsX(100);
    in1.SetPelsY(200);
    in1.SetContent(ClImage::eHSV);
    in1.SetAttribute(12);
    ClTestImage in2 = RandomImage(ClImage::eFloat32, 3, 2, 1, 2);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt16);
    EXPECT_EQ(out.Planes(), 3);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 65535.0); // the range of the type
    EXPECT_EQ(out.Content(), ClImage::eRGB);
    EXPECT_EQ(out.Attribute(), 12);
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ClImage::eInt8), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt8);
    EXPECT_EQ(out.Black(), -128.0);
}

TEST(Ip2to1Base, NeitherFillsNorCopiesWhereTheImagesLieOnEachOther) {
    ClIpPairProbe ip;
    ip.m_dFillColor = 99.0;
    ip.m_Loop = [](ClImage&) { return 0L; };
    for (bool bSizeMustBeEqual : {true, false}) {
        ip.m_bSizeMustBeEqual = bSizeMustBeEqual;
        ClTestImage in = Img({{1, 2}});
        ClTestImage out = Img({{3, 4}}); // the buffer is kept
        EXPECT_EQ(ip.ApplyParam(in, in, out, ceDefault), 0);
        EXPECT_EQ(Pixels(out), Rows({{3, 4}}));
        ClImage fresh;
        EXPECT_EQ(ip.ApplyParam(in, in, fresh, ceDefault), 0);
        EXPECT_EQ(Pixels(fresh), Rows({{0, 0}}));
    }
}

TEST(Ip2to1Base, WrapsTheFillColor) {
    ClIpPairProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = 2;
    ip.m_dFillColor = 300.0;
    ClTestImage in1 = Img({{1}});
    ClTestImage in2 = Img({{2}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 44, 2}}));
}

TEST(Ip2to1Base, NeitherRoundsNorClamps) {
    ClIpPairProbe ip;
    ip.m_Value = [](double a, double) {
        return a == 0.0 ? 1.999 : a == 1.0 ? 300.0 : a == 2.0 ? -1.0 : std::nan("");
    };
    ClTestImage in = Img({{0, 1, 2, 3}});
    ClImage out;
    for (bool bUseLUT : {false, true}) {
        ip.m_bUseLUT = bUseLUT;
        EXPECT_EQ(ip.ApplyParam(in, in, out, ceDefault), 0);
        EXPECT_EQ(Pixels(out), Rows({{1, 44, 255, 0}}));
    }
}

// One image as input and output

TEST(Ip2to1Base, GoesThroughALocalImageWhereTheOutputIsAnInput) {
    for (bool bFirst : {true, false}) {
        ClIpPairProbe ip;
        ip.m_bSizeMustBeEqual = false;
        ip.m_nOffsetX = 1;
        ip.m_Value = Sum;
        ClTestImage in1 = Img({{1, 2, 3}});
        ClTestImage in2 = Img({{10, 20, 30}});
        ClImage& out = bFirst ? in1 : in2;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, ClImage::eInt16), 0);
        EXPECT_EQ(out.DataType(), ClImage::eInt16);
        EXPECT_EQ(Pixels(out), Rows({{1, 12, 23, 30}}));
        EXPECT_EQ(Pixels(bFirst ? in2 : in1), bFirst ? Rows({{10, 20, 30}}) : Rows({{1, 2, 3}}));
        EXPECT_NE(ip.m_pSeenOut, &out);
        EXPECT_EQ(ip.m_pOutImage, &out);
    }
}

TEST(Ip2to1Base, TakesOneImageThreeTimes) {
    ClIpPairProbe ip;
    ip.m_Value = Sum;
    ClTestImage image = Img({{1, 2, 3}});
    EXPECT_EQ(ip.ApplyParam(image, image, image, ceDefault), 0);
    EXPECT_EQ(Pixels(image), Rows({{2, 4, 6}}));
}

TEST(Ip2to1Base, LeavesAnInputThatSharesItsBufferAlone) {
    ClIpPairProbe ip;
    ip.m_Value = Sum;
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    out.Attach(in);
    EXPECT_EQ(ip.ApplyParam(in, in, out, ceDefault), 0);
    EXPECT_EQ(Pixels(in), Rows({{1, 2}}));
    EXPECT_EQ(Pixels(out), Rows({{2, 4}}));
}

TEST(Ip2to1Base, KeepsTheImageWhereTheLoopFails) {
    ClIpPairProbe ip;
    ClTestImage image = Img({{1, 2}});
    const ClTestImage copy = image;
    ip.m_Loop = [](ClImage& Out) {
        Out = static_cast<unsigned char>(7);
        return -35L;
    };
    EXPECT_EQ(ip.ApplyParam(image, image, image, ceDefault), -35);
    ExpectSameImage(image, copy);
    ip.m_Loop = [](ClImage&) -> long { throw ClExTessarin(-44, VEK_HERE); };
    EXPECT_THROWS(ip.ApplyParam(image, image, image, ceDefault), ClExTessarin, -44,
                  "One(or more) parameter(s) is(are) invalid.");
    ExpectSameImage(image, copy);
}

TEST(Ip2to1Base, LetsTheExceptionOfAValueThrough) {
    for (bool bUseLUT : {false, true}) {
        ClIpPairProbe ip;
        ip.m_bUseLUT = bUseLUT;
        ip.m_Value = [](double, double) -> double { throw ClExTessarin(-44, VEK_HERE); };
        ClTestImage image = Img({{1, 2}});
        EXPECT_THROWS(ip.ApplyParam(image, image, image, ceDefault), ClExTessarin, -44,
                      "One(or more) parameter(s) is(are) invalid.");
        EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    }
}

TEST(Ip2to1Base, AnswersEveryMissingAllocation) {
    for (bool bUseLUT : {false, true}) {
        ClIpPairProbe ip;
        ip.m_bUseLUT = bUseLUT;
        ip.m_Value = [](double a, double) { return a; };
        ClTestImage image = Img({{1, 2, 3}});
        TestSupport::FailEachAllocation(
            [&] { EXPECT_EQ(ip.ApplyParam(image, image, image, ceDefault), 0); });
        EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
    }
}

TEST(Ip2to1Base, SaysThatTheTableCouldNotBeAllocated) {
    ClIpPairProbe ip;
    ip.m_bUseLUT = true;
    ClTestImage in = Img({{1, 2, 3}});
    ClTestImage out = Img({{4, 5, 6}}); // its buffer is kept, so that the table comes first
    const TestSupport::ClFailAllocation Fail(0);
    EXPECT_THROWS(ip.ApplyParam(in, in, out, ceDefault), ClExBadAlloc, -102,
                  "Memory allocation failed");
}

TEST(Ip2to1Base, GivesEveryMemberItsDefaultAndKeepsAllInAQuery) {
    ClIpPairProbe ip;
    ip.m_bUseLUT = true;
    ip.m_adPlaneFillColor[0] = 1.0;
    ip.m_adPlaneFillColor[3] = 4.0;
    ClParameterContainer container;
    ip.QueryParameters(container);
    EXPECT_TRUE(ip.m_bUseLUT);
    EXPECT_EQ(ip.m_adPlaneFillColor[0], 1.0);
    EXPECT_EQ(ip.m_adPlaneFillColor[3], 4.0);
    ip.SetParametersToDefault();
    EXPECT_FALSE(ip.m_bUseLUT);
    for (double dColor : ip.m_adPlaneFillColor)
        EXPECT_EQ(dColor, 0.0);
}

TEST(Ip2to1Base, KeepsItsImagesAfterARun) {
    ClIpPairProbe ip;
    ClTestImage in1 = Img({{1}});
    ClTestImage in2 = Img({{2}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ClImage::eInt32), 0);
    EXPECT_EQ(ip.m_pInImage1, &in1);
    EXPECT_EQ(ip.m_pInImage2, &in2);
    EXPECT_EQ(ip.m_pOutImage, &out);
    EXPECT_EQ(ip.m_nOutImageType, ClImage::eInt32);
}

} // namespace
