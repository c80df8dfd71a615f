#include "ImageProcessing/IpBinarizeGlobal.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <vector>

namespace {

using TestSupport::BlankImage;
using TestSupport::caPixelTypes;
using TestSupport::cdNaN;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

/// Every sample compared with the threshold.
RealRows Compared(const ClImage& In, double dThreshold, double dBlack, double dWhite) {
    RealRows aRows = RealPixels(In);
    for (std::vector<double>& aRow : aRows)
        for (double& d : aRow)
            d = dThreshold > d ? dBlack : dWhite;
    return aRows;
}

TEST(IpBinarizeGlobal, BeginsWithNothingSet) {
    const ClIpBinarizeGlobal ip;
    EXPECT_TRUE(std::isnan(ip.m_dThreshold));
    EXPECT_TRUE(std::isnan(ip.m_dBlack));
    EXPECT_TRUE(std::isnan(ip.m_dWhite));
    EXPECT_FALSE(ip.m_bInPlace);
    EXPECT_TRUE(ip.m_bUseLUT);
}

TEST(IpBinarizeGlobal, ThresholdsInTheMiddleOfTheRangeByDefault) {
    ClTestImage in = Img({{0, 127, 128, 255}});
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.m_pInImage = &in;
    ip.m_pOutImage = &out;
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 255, 255}}));
    EXPECT_EQ(ip.m_dThresholdUsed, 127.5);
    EXPECT_EQ(ip.m_dBlackUsed, 0.0);
    EXPECT_EQ(ip.m_dWhiteUsed, 255.0);
    EXPECT_TRUE(std::isnan(ip.m_dThreshold)); // the wish stays
}

TEST(IpBinarizeGlobal, TakesAThresholdBetweenIntegersAsTheNextOne) {
    for (unsigned char nType : caPixelTypes) {
        if (ClImage::IsFloat(nType))
            continue;
        ClTestImage in = Img(nType, {{9, 10, 11, 12}});
        ClImage out;
        ClIpBinarizeGlobal ip;
        EXPECT_EQ(ip.ApplyParam(in, out, 10.5), 0);
        const double b = in.Black();
        const double w = in.White();
        EXPECT_EQ(RealPixels(out), RealRows({{b, b, w, w}})) << int{nType};
        ClImage same;
        EXPECT_EQ(ip.ApplyParam(in, same, 11.0), 0);
        EXPECT_EQ(RealPixels(same), RealPixels(out));
    }
}

TEST(IpBinarizeGlobal, ComparesEverySampleOfEveryTypeAndPlane) {
    for (unsigned char nType : caPixelTypes)
        for (int nPlanes : {1, 3})
            for (int nWidth : {1, 5, 16, 31}) {
                ClTestImage in = RandomImage(nType, nWidth, 7, nPlanes, 5);
                const double dSpan = in.White() - in.Black();
                for (double dShare : {0.0, 0.3, 0.5, 0.77, 1.0}) {
                    const double dThreshold = in.Black() + dShare * dSpan;
                    ClImage out;
                    ClIpBinarizeGlobal ip;
                    EXPECT_EQ(ip.ApplyParam(in, out, dThreshold), 0);
                    EXPECT_EQ(RealPixels(out), Compared(in, dThreshold, in.Black(), in.White()))
                        << int{nType} << ' ' << dThreshold;
                    EXPECT_EQ(out.DataType(), nType);
                    EXPECT_EQ(out.Planes(), nPlanes);
                }
            }
}

TEST(IpBinarizeGlobal, GivesTheSameWithoutTheTable) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 13, 9, 1, 6);
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.m_bUseLUT = false;
    for (double dThreshold : {0.0, 99.5, 100.0, 255.0}) {
        EXPECT_EQ(ip.ApplyParam(in, out, dThreshold), 0);
        EXPECT_EQ(RealPixels(out), Compared(in, dThreshold, 0, 255));
    }
}

TEST(IpBinarizeGlobal, KeepsFractionsOfFloatingPointThresholds) {
    for (unsigned char nType : {ClImage::eFloat32, ClImage::eDouble64}) {
        ClTestImage in = Img(nType, {{0.25, 0.5, 0.75}});
        ClImage out;
        ClIpBinarizeGlobal ip;
        EXPECT_EQ(ip.ApplyParam(in, out, 0.6), 0);
        EXPECT_EQ(RealPixels(out), RealRows({{-1, -1, 1}}));
        EXPECT_EQ(ip.ApplyParam(in, out, 0.5), 0);
        EXPECT_EQ(RealPixels(out), RealRows({{-1, 1, 1}}));
    }
}

TEST(IpBinarizeGlobal, ComparesFloatsWithTheThresholdInFullPrecision) {
    ClTestImage in = Img(ClImage::eFloat32, {{0.1}}); // 0.100000001490116
    ClImage out;
    ClIpBinarizeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.1), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{1}}));
    EXPECT_EQ(ip.ApplyParam(in, out, 0.10000000150), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{-1}}));
}

TEST(IpBinarizeGlobal, WritesTheValuesOfBlackAndWhiteThatAreSet) {
    ClTestImage in = Img(ClImage::eInt16, {{-5, 5}});
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.m_dBlack = 300.9;
    ip.m_dWhite = -7.9;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.0), 0);
    EXPECT_EQ(Pixels(out), Rows({{300, -7}}));
    ip.m_dWhite = cdNaN;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.0), 0);
    EXPECT_EQ(Pixels(out), Rows({{300, 32767}}));
}

TEST(IpBinarizeGlobal, WritesTheValuesThroughTheTableToo) {
    ClTestImage in = Img({{0, 99, 100, 255}});
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.m_dBlack = 200.0;
    ip.m_dWhite = 10.7;
    EXPECT_EQ(ip.ApplyParam(in, out, 99.5), 0);
    EXPECT_EQ(Pixels(out), Rows({{200, 200, 10, 10}}));
}

TEST(IpBinarizeGlobal, UsesTheRangeOfTheImageAndNotOfTheType) {
    ClTestImage in = Img(ClImage::eUInt16, {{99, 100, 300}});
    in.SetBlack(50);
    in.SetWhite(150);
    ClImage out;
    ClIpBinarizeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(in, out, cdNaN), 0);
    EXPECT_EQ(Pixels(out), Rows({{50, 150, 150}}));
    EXPECT_EQ(out.Black(), 50);
    EXPECT_EQ(out.White(), 150);
    EXPECT_EQ(ip.ApplyParam(in, out, 151.0), -35);
    EXPECT_EQ(ip.ApplyParam(in, out, 49.0), -35);
}

TEST(IpBinarizeGlobal, WorksOntoItself) {
    for (unsigned char nType : caPixelTypes) {
        ClTestImage image = RandomImage(nType, 9, 5, 1, 7);
        const double dMiddle = (image.Black() + image.White()) / 2;
        const RealRows aExpected = Compared(image, dMiddle, image.Black(), image.White());
        ClIpBinarizeGlobal ip;
        EXPECT_EQ(ip.ApplyParam(image, image, dMiddle), 0);
        EXPECT_EQ(RealPixels(image), aExpected) << int{nType};
    }
}

TEST(IpBinarizeGlobal, AnswersGetValueByTheThresholdInUse) {
    ClTestImage in = Img({{1}});
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.ApplyParam(in, out, 100.0);
    EXPECT_EQ(ip.GetValue(in, out, 99.999), 0.0);
    EXPECT_EQ(ip.GetValue(in, out, 100.0), 255.0);
    EXPECT_EQ(ip.GetValue(in, out, 101.0), 255.0);
}

// Checks

TEST(IpBinarizeGlobal, RefusesAThresholdOutsideTheRange) {
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    ClIpBinarizeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 255.5), -35);
    EXPECT_EQ(ip.ApplyParam(in, out, 256.0), -35);
    EXPECT_EQ(ip.ApplyParam(in, out, -0.001), -35);
    EXPECT_EQ(ip.ApplyParam(in, out, std::numeric_limits<double>::infinity()), -35);
    EXPECT_TRUE(out.IsValid());
    EXPECT_EQ(ip.ApplyParam(in, out, 255.0), 0);
    EXPECT_EQ(ip.ApplyParam(in, out, 0.0), 0);
}

TEST(IpBinarizeGlobal, RefusesBlackAndWhiteOutsideTheRange) {
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    for (double d : {-1.0, 255.5, 1e300}) {
        ClIpBinarizeGlobal ip;
        ip.m_dBlack = d;
        EXPECT_EQ(ip.ApplyParam(in, out, 100.0), -35);
        ip.m_dBlack = cdNaN;
        ip.m_dWhite = d;
        EXPECT_EQ(ip.ApplyParam(in, out, 100.0), -35);
        ip.m_dWhite = 255.0;
        EXPECT_EQ(ip.ApplyParam(in, out, 100.0), 0);
    }
}

TEST(IpBinarizeGlobal, KeepsAnImageThatIsItsOwnOutputAfterAFailedCheck) {
    ClTestImage image = RandomImage(ClImage::eInt16, 9, 5, 1, 7);
    const ClTestImage before(image);
    ClIpBinarizeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(image, image, 1e9), -35);
    ExpectSameImage(image, before);
}

TEST(IpBinarizeGlobal, TakesTheEndsOfTheRangeInEitherOrder) {
    ClTestImage in = Img(ClImage::eInt32, {{10, 20, 30}});
    in.SetBlack(100);
    in.SetWhite(-100);
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.m_dBlack = 5;
    ip.m_dWhite = -5;
    EXPECT_EQ(ip.ApplyParam(in, out, 20.0), 0);
    EXPECT_EQ(Pixels(out), Rows({{5, -5, -5}}));
    EXPECT_EQ(ip.ApplyParam(in, out, 101.0), -35);
    EXPECT_EQ(ip.ApplyParam(in, out, -101.0), -35);
}

TEST(IpBinarizeGlobal, LetsEverythingBeWhiteWithoutAnyThreshold) {
    for (unsigned char nType : caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = BlankImage(nType, 3, 1);
        in.SetBlack(cdNaN); // no middle
        ClImage out;
        ClIpBinarizeGlobal ip;
        EXPECT_EQ(ip.ApplyParam(in, out, cdNaN), 0);
        const double w = in.White();
        EXPECT_EQ(RealPixels(out), RealRows({{w, w, w}})) << int{nType};
    }
}

TEST(IpBinarizeGlobal, LetsBytesBeBlackWithoutAnyThreshold) {
    for (bool bUseLUT : {false, true}) {
        ClTestImage in = Img({{0, 100, 255}});
        in.SetBlack(cdNaN);
        ClImage out;
        ClIpBinarizeGlobal ip;
        ip.m_bUseLUT = bUseLUT;
        ip.m_dBlack = 3.0;
        ip.m_dWhite = 200.0;
        EXPECT_EQ(ip.ApplyParam(in, out, cdNaN), 0);
        EXPECT_EQ(Pixels(out), Rows({{3, 3, 3}}));
    }
}

TEST(IpBinarizeGlobal, LetsASampleThatIsNotANumberBeWhite) {
    ClTestImage in = Img(ClImage::eFloat32, {{cdNaN, -1.0, 1.0}});
    ClImage out;
    ClIpBinarizeGlobal ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 0.5), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, -1, 1}}));
}

TEST(IpBinarizeGlobal, LimitsTheThresholdToTheType) {
    // a range wider than the type admits thresholds that no sample has
    ClTestImage in = Img(ClImage::eInt16, {{-32768, 0, 32767}});
    in.SetBlack(-100000);
    in.SetWhite(100000);
    ClImage out;
    ClIpBinarizeGlobal ip;
    ip.m_dBlack = 1;
    ip.m_dWhite = 2;
    EXPECT_EQ(ip.ApplyParam(in, out, 99999.0), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 1, 2}}));
    EXPECT_EQ(ip.ApplyParam(in, out, -99999.0), 0);
    EXPECT_EQ(Pixels(out), Rows({{2, 2, 2}}));
}

class ClIpRefusing : public ClIpBinarizeGlobal {
public:
    bool CheckBlackWhite() override { return m_bBlackWhite; }
    bool CheckThreshold() override { return !m_bBlackWhite; }
    bool m_bBlackWhite = false;
};

TEST(IpBinarizeGlobal, AsksItsVirtualChecks) {
    ClTestImage in = Img({{1}});
    ClImage out;
    ClIpRefusing ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 1.0), -35);
    ip.m_bBlackWhite = true;
    EXPECT_EQ(ip.ApplyParam(in, out, 1.0), -35);
}

TEST(IpBinarizeGlobal, CanApplyWithAnInputWhoseChecksHold) {
    ClIpBinarizeGlobal ip;
    EXPECT_FALSE(ip.CanApply());
    ClTestImage in = Img({{1}});
    ip.m_pInImage = &in;
    EXPECT_TRUE(ip.CanApply());
    ClImage empty; // no type: the checks hold, there being nothing set
    ip.m_pInImage = &empty;
    EXPECT_TRUE(ip.CanApply());
}

TEST(IpBinarizeGlobal, AsksTheFrameWhetherItCanApplyWhereAChecksFails) {
    ClTestImage in = Img({{1}});
    ClIpBinarizeGlobal ip;
    ip.m_dThreshold = 1000.0;
    ip.m_dBlack = 3;
    EXPECT_FALSE(ip.CanApply()); // no input
    ip.m_pInImage = &in;
    EXPECT_FALSE(ip.CheckThreshold());
    EXPECT_TRUE(ip.CheckBlackWhite());
    EXPECT_TRUE(ip.CanApply()); // the frame knows pixel types alone
    ClTestImage unknown = Img({{1}});
    unknown.SetDataType(65);
    ip.m_pInImage = &unknown;
    EXPECT_FALSE(ip.CanApply());
}

TEST(IpBinarizeGlobal, FailsChecksOfSetValuesWithoutAnInput) {
    ClIpBinarizeGlobal ip;
    EXPECT_TRUE(ip.CheckThreshold());
    EXPECT_TRUE(ip.CheckBlackWhite());
    ip.m_dThreshold = 1;
    EXPECT_FALSE(ip.CheckThreshold());
    ip.m_dWhite = 1;
    EXPECT_FALSE(ip.CheckBlackWhite());
}

// Failures

TEST(IpBinarizeGlobal, ReportsAMissingImage) {
    ClIpBinarizeGlobal ip;
    EXPECT_THROWS(ip.Apply(), ClException, -701, "Input image not assigned");
    ClTestImage in = Img({{1}});
    ip.m_pInImage = &in;
    EXPECT_THROWS(ip.Apply(), ClException, -701, "m_pOutImage is not set");
}

TEST(IpBinarizeGlobal, RefusesAnUnknownPixelType) {
    ClTestImage in = Img({{1}});
    in.SetDataType(65);
    ClTestImage out(in);
    ClIpBinarizeGlobal ip;
    EXPECT_THROWS(ip.ApplyParam(in, out, 0.5), ClException, -33,
                  "Input pixel type \"not valid\" not supported by processor.");
    ip.m_pInImage = &in;
    EXPECT_EQ(ip.DoProcess(in, out), -101);
    ClTestImage wide = Img(ClImage::eInt16, {{1}});
    EXPECT_EQ(ip.DoProcess(wide, out), -101); // an output of another type
}

TEST(IpBinarizeGlobal, KeepsTheInputWhenMemoryIsMissing) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 6, 6, 1, 6);
    const ClTestImage before(in);
    TestSupport::FailEachAllocation([&] {
        ClIpBinarizeGlobal ip;
        ip.ApplyParam(in, in, 1.0);
        in = before;
    });
    ExpectSameImage(in, before);
}

} // namespace
