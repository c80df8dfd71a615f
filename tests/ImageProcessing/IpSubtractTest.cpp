#include "ImageProcessing/IpSubtract.h"

#include "ImageProcessing/NaiveOperators.h"
#include "support/AllocationFailures.h"

namespace {

using TestSupport::caPixelTypes;
using TestSupport::ceDefault;
using TestSupport::ClTestImage;
using TestSupport::EdgeImage;
using TestSupport::Img;
using TestSupport::NaiveBounds;
using TestSupport::NaivePairs;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;
using TestSupport::Stored;

// By hand

TEST(IpSubtract, ClipsToTheRangeOfTheOutputByDefault) {
    ClIpSubtract subtract;
    ClTestImage in1 = Img({{10, 20, 255, 0}});
    ClTestImage in2 = Img({{20, 10, 0, 255}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 10, 255, 0}}));
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt8), 0);
    EXPECT_EQ(Pixels(out), Rows({{-10, 10, 127, -128}}));
    EXPECT_EQ(out.Black(), -128.0);
    EXPECT_EQ(out.White(), 127.0);
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt16), 0);
    EXPECT_EQ(Pixels(out), Rows({{-10, 10, 255, -255}}));
}

TEST(IpSubtract, ClipsToTheUsersBoundsAndTakesThemForTheRange) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    subtract.m_dLowerBound = 10.0;
    subtract.m_dUpperBound = 100.0;
    ClTestImage in1 = Img({{10, 90, 255, 110}});
    ClTestImage in2 = Img({{20, 50, 0, 10}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{10, 40, 100, 100}}));
    EXPECT_EQ(out.Black(), 10.0);
    EXPECT_EQ(out.White(), 100.0);
}

TEST(IpSubtract, ClipsEverythingToZeroWithoutTheUsersBounds) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    ClTestImage in1 = Img({{10, 90, 255}});
    ClTestImage in2 = Img({{20, 50, 0}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0}}));
    EXPECT_EQ(out.White(), 0.0);
}

TEST(IpSubtract, ConvertsTheUsersBoundsToTheOutput) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    subtract.m_dLowerBound = -246.5; // 10 modulo 256
    subtract.m_dUpperBound = 300.0;  // 44
    ClTestImage in1 = Img({{10, 90, 255}});
    ClTestImage in2 = Img({{20, 50, 0}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{10, 40, 44}}));
    EXPECT_EQ(out.Black(), 10.0);
    EXPECT_EQ(out.White(), 44.0);
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eFloat32), 0);
    EXPECT_EQ(Pixels(out), Rows({{-10, 40, 255}}));
    EXPECT_EQ(out.Black(), -246.5);
    EXPECT_EQ(out.White(), 300.0);
}

TEST(IpSubtract, ConvertsTheRangeOfAnIntegerOutputToItsType) {
    ClIpSubtract subtract;
    ClTestImage in1 = Img({{10, 90, 255}});
    ClTestImage in2 = Img({{20, 50, 0}});
    ClTestImage out = TestSupport::BlankImage(ClImage::eUInt8, 3, 1);
    out.SetBlack(-226.5); // 30 modulo 256
    out.SetWhite(200.75);
    EXPECT_EQ(subtract.DoProcess(in1, in2, out, 3, 1, 1, 1, 0, 4, 0, 4, 0, 4), 0);
    EXPECT_EQ(Pixels(out), Rows({{30, 40, 200}}));
    out.SetBlack(200.75); // the other way round
    out.SetWhite(-226.5);
    EXPECT_EQ(subtract.DoProcess(in1, in2, out, 3, 1, 1, 1, 0, 4, 0, 4, 0, 4), 0);
    EXPECT_EQ(Pixels(out), Rows({{30, 40, 200}}));
    EXPECT_EQ(out.Black(), 200.75);
}

TEST(IpSubtract, AsksTheLowerBoundFirst) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    subtract.m_dLowerBound = 100.0;
    subtract.m_dUpperBound = 10.0;
    ClTestImage in1 = Img({{5, 50, 200}});
    ClTestImage in2 = Img({{0, 0, 0}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{100, 100, 10}}));
}

TEST(IpSubtract, TakesTheRangeOfTheDifferenceFromTheInputs) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::InputDependent;
    ClTestImage in1 = Img({{10, 20, 255, 7, 7}});
    ClTestImage in2 = Img({{20, 10, 0, 7, 6}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 10, 255, 1, 1}})); // -255 is 1 modulo 256
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 255.0);
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt16), 0);
    EXPECT_EQ(Pixels(out), Rows({{-10, 10, 255, 0, 1}}));
    EXPECT_EQ(out.Black(), -32768.0);
}

TEST(IpSubtract, TakesTheRangeFromNarrowInputs) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::InputDependent;
    ClTestImage in1 = Img(ClImage::eUInt16, {{0, 500, 1000}});
    ClTestImage in2 = Img(ClImage::eUInt16, {{500, 500, 0}});
    in1.SetBlack(100.0);
    in1.SetWhite(900.0);
    in2.SetBlack(50.0);
    in2.SetWhite(450.0);
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt32), 0);
    EXPECT_EQ(Pixels(out), Rows({{-350, 0, 850}}));
}

TEST(IpSubtract, DoesNotOverflow) {
    ClIpSubtract subtract;
    ClTestImage low = Img(ClImage::eInt32, {{-2147483648.0}});
    ClTestImage high = Img(ClImage::eUInt32, {{4294967295.0}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(low, high, out, ClImage::eDouble64), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{-1.0}}));
    subtract.m_eDataRange = ClIpSubtract::InputDependent;
    EXPECT_EQ(subtract.ApplyParam(low, high, out, ClImage::eDouble64), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{-6442450943.0}}));
    EXPECT_EQ(subtract.ApplyParam(high, low, out, ClImage::eDouble64), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{6442450943.0}}));
}

TEST(IpSubtract, TakesTheLowerBoundForWhatIsNotANumber) {
    const double dNaN = std::nan("");
    const double dInfinity = std::numeric_limits<double>::infinity();
    ClIpSubtract subtract;
    ClTestImage in1 = Img(ClImage::eDouble64, {{dNaN, 0.5, dInfinity, dInfinity, 0.0}});
    ClTestImage in2 = Img(ClImage::eFloat32, {{0.0, dNaN, dInfinity, 0.0, dInfinity}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{-1, -1, -1, 1, -1}}));
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt8), 0);
    EXPECT_EQ(Pixels(out), Rows({{-128, -128, -128, 127, -128}}));
    EXPECT_EQ(subtract.GetValue(in1, in2, out, dNaN, 1.0), -128.0);
}

TEST(IpSubtract, DoesNotClipAtABoundThatIsNotANumber) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    subtract.m_dLowerBound = std::nan("");
    subtract.m_dUpperBound = 2.0;
    ClTestImage in1 = Img({{10, 3, 9}});
    ClTestImage in2 = Img({{20, 2, 0}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eFloat32), 0);
    EXPECT_EQ(Pixels(out), Rows({{-10, 1, 2}}));
    EXPECT_TRUE(std::isnan(out.Black()));
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt16), 0); // there it becomes 0
    EXPECT_EQ(Pixels(out), Rows({{0, 1, 2}}));
    EXPECT_EQ(out.Black(), 0.0);
}

// Against the definition

void ExpectAllRanges(ClImage& In1, ClImage& In2, unsigned char nOut) {
    for (auto eRange :
         {ClIpSubtract::DataDependent, ClIpSubtract::InputDependent, ClIpSubtract::UserDependent}) {
        SCOPED_TRACE(testing::Message() << "range " << eRange << ": " << int{In1.DataType()}
                                        << " - " << int{In2.DataType()} << " to " << int{nOut});
        ClIpSubtract subtract;
        subtract.m_eDataRange = eRange;
        subtract.m_dLowerBound = -33.5;
        subtract.m_dUpperBound = 77.25;
        const TestSupport::StBounds Bounds = NaiveBounds(subtract, In1, In2, nOut);
        ClImage out;
        EXPECT_EQ(subtract.ApplyParam(In1, In2, out, nOut), 0);
        EXPECT_EQ(RealPixels(out), NaivePairs(In1, In2, nOut, [&](double a, double b) {
                      return Bounds.Clip(a - b);
                  }));
        if (eRange == ClIpSubtract::UserDependent) {
            EXPECT_EQ(out.Black(), Bounds.m_dLower);
            EXPECT_EQ(out.White(), Bounds.m_dUpper);
        }
    }
}

TEST(IpSubtract, EqualsItsDefinitionForEveryCombinationOfTypes) {
    unsigned nSeed = 0;
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            for (unsigned char nOut : caPixelTypes) {
                ClTestImage in1 = RandomImage(nType1, 7, 3, 1, ++nSeed);
                ClTestImage in2 = RandomImage(nType2, 7, 3, 1, ++nSeed);
                ExpectAllRanges(in1, in2, nOut);
                for (int nShift : {0, 1, 5}) {
                    ClTestImage edge1 = EdgeImage(nType1, 0);
                    ClTestImage edge2 = EdgeImage(nType2, nShift);
                    ExpectAllRanges(edge1, edge2, nOut);
                }
            }
}

TEST(IpSubtract, EqualsItsDefinitionOnEverySizeOfEightBits) {
    const struct {
        int m_nWidth, m_nHeight, m_nPlanes1, m_nPlanes2;
    } aSizes[] = {{1, 1, 1, 1},  {15, 3, 1, 1}, {17, 5, 1, 1},
                  {33, 2, 3, 3}, {33, 2, 3, 1}, {129, 3, 4, 4}};
    for (const auto& Size : aSizes) {
        ClTestImage in1 =
            RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, Size.m_nPlanes1, 1);
        ClTestImage in2 =
            RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, Size.m_nPlanes2, 2);
        ExpectAllRanges(in1, in2, ClImage::eUInt8);
    }
}

TEST(IpSubtract, KeepsTheBoundsOfRealOutputsInDouble) {
    // As a float 0.1 is greater, so that a difference of 0.1 would lie below it. Above an upper
    // bound of 0 it lies in any case.
    ClTestImage in1 = Img(ClImage::eDouble64, {{0.1, 0.05, 0.2}});
    ClTestImage in2 = Img(ClImage::eDouble64, {{0.0, 0.0, 0.0}});
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    subtract.m_dLowerBound = 0.1;
    subtract.m_dUpperBound = 0.0;
    ClImage out;
    const double dLower = static_cast<double>(0.1F);
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eFloat32), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{0.0, dLower, 0.0}}));
    EXPECT_EQ(out.Black(), dLower); // the range is in the type of the output even so
    in1.SetBlack(0.1);
    in1.SetWhite(0.0);
    in2.SetBlack(0.0);
    in2.SetWhite(0.0);
    subtract.m_eDataRange = ClIpSubtract::InputDependent;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eFloat32), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{0.0, dLower, 0.0}}));
}

TEST(IpSubtract, GivesTheLowerBoundForADifferenceThatIsNotANumber) {
    const double dInfinity = std::numeric_limits<double>::infinity();
    ClTestImage in1 = Img(ClImage::eDouble64, {{std::nan(""), dInfinity, 1.0}});
    ClTestImage in2 = Img(ClImage::eDouble64, {{0.0, dInfinity, std::nan("")}});
    for (unsigned char nOut : {ClImage::eFloat32, ClImage::eDouble64, ClImage::eInt16}) {
        ClIpSubtract subtract;
        subtract.m_eDataRange = ClIpSubtract::UserDependent;
        subtract.m_dLowerBound = -3.0;
        subtract.m_dUpperBound = 5.0;
        ClImage out;
        EXPECT_EQ(subtract.ApplyParam(in1, in2, out, nOut), 0);
        EXPECT_EQ(Pixels(out), Rows({{-3, -3, -3}}));
    }
}

// Planes, failures, table

TEST(IpSubtract, LeavesTheOutputAloneForPlanesThatCannotBePaired) {
    ClIpSubtract subtract;
    subtract.m_eDataRange = ClIpSubtract::UserDependent;
    subtract.m_dUpperBound = 5.0;
    ClTestImage in1 = RandomImage(ClImage::eUInt8, 3, 2, 1, 1);
    ClTestImage in2 = RandomImage(ClImage::eUInt8, 3, 2, 3, 2);
    ClTestImage out = RandomImage(ClImage::eUInt8, 3, 2, 1, 3);
    const ClTestImage before = out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Pixels(before));
    EXPECT_EQ(out.White(), 255.0);
}

TEST(IpSubtract, AnswersADataRangeOutsideTheThree) {
    for (int nRange : {-1, 3}) {
        ClIpSubtract subtract;
        subtract.m_eDataRange = static_cast<ClIpSubtract::EDataRangeType>(nRange);
        ClTestImage image = Img({{1, 2}});
        EXPECT_EQ(subtract.ApplyParam(image, image, image, ceDefault), -101);
        EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    }
}

TEST(IpSubtract, AnswersWhatTheFrameRefuses) {
    ClIpSubtract subtract;
    EXPECT_EQ(subtract.Apply(), -37);
    ClTestImage in1 = Img({{1, 2}});
    ClTestImage in2 = Img({{1}});
    ClImage out;
    EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), -44);
    EXPECT_EQ(subtract.ApplyParam(in1, in1, out, 7), -101);
    alignas(8) unsigned char aBytes[16] = {};
    ClImage strange;
    strange.Attach(aBytes, 3, 1, 1, 1, 0, 0);
    EXPECT_EQ(subtract.DoProcess(strange, in2, in2, 1, 1, 1, 1, 0, 4, 0, 4, 0, 4), -101);
}

TEST(IpSubtract, ClipsTheTableToTheRangeOfTheOutput) {
    ClTestImage in1 = Img({{10, 90, 255}});
    ClTestImage in2 = Img({{20, 50, 0}});
    for (auto eRange :
         {ClIpSubtract::DataDependent, ClIpSubtract::InputDependent, ClIpSubtract::UserDependent}) {
        ClIpSubtract subtract;
        subtract.m_bUseLUT = true;
        subtract.m_eDataRange = eRange;
        ClImage out;
        EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ceDefault), 0);
        EXPECT_EQ(Pixels(out), Rows({{0, 40, 255}}));
        EXPECT_EQ(subtract.ApplyParam(in1, in2, out, ClImage::eInt8), 0);
        EXPECT_EQ(Pixels(out), Rows({{-10, 40, 127}}));
    }
}

TEST(IpSubtract, SubtractsInPlace) {
    ClIpSubtract subtract;
    ClTestImage in1 = Img({{10, 90, 255}});
    ClTestImage in2 = Img({{20, 50, 0}});
    EXPECT_EQ(subtract.ApplyParam(in1, in2, in2, ceDefault), 0);
    EXPECT_EQ(Pixels(in2), Rows({{0, 40, 255}}));
    EXPECT_EQ(subtract.ApplyParam(in1, in2, in1, ceDefault), 0);
    EXPECT_EQ(Pixels(in1), Rows({{10, 50, 0}}));
}

TEST(IpSubtract, AnswersEveryMissingAllocation) {
    ClIpSubtract subtract;
    ClTestImage image = Img({{1, 2, 3}});
    ClTestImage zero = Img({{0, 0, 0}});
    TestSupport::FailEachAllocation(
        [&] { EXPECT_EQ(subtract.ApplyParam(image, zero, image, ceDefault), 0); });
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
}

} // namespace
