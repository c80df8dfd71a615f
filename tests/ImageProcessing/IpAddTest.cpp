#include "ImageProcessing/IpAdd.h"

#include "ImageProcessing/NaiveOperators.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

namespace {

using TestSupport::caPixelTypes;
using TestSupport::ceDefault;
using TestSupport::ClTestImage;
using TestSupport::EdgeImage;
using TestSupport::Img;
using TestSupport::NaiveAdded;
using TestSupport::NaivePairs;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;
using TestSupport::StRange;
using TestSupport::SumInLanguage;

ClTestImage Sum(ClIpAdd::EProcessingMode eMode, ClImage& In1, ClImage& In2,
                unsigned char nOut = ceDefault) {
    ClIpAdd add;
    add.m_eMode = eMode;
    ClTestImage out;
    EXPECT_EQ(add.ApplyParam(In1, In2, out, nOut), 0);
    return out;
}

ClTestImage SumOf(ClIpAdd::EProcessingMode eMode, int a, int b) {
    ClTestImage in1 = Img({{a}});
    ClTestImage in2 = Img({{b}});
    return Sum(eMode, in1, in2);
}

// By hand

TEST(IpAdd, CutsAtTheEndOfTheRange) {
    EXPECT_EQ(Pixels(SumOf(ClIpAdd::ModeCut, 200, 100)), Rows({{255}}));
    EXPECT_EQ(Pixels(SumOf(ClIpAdd::ModeCut, 200, 55)), Rows({{255}}));
    EXPECT_EQ(Pixels(SumOf(ClIpAdd::ModeCut, 200, 54)), Rows({{254}}));
}

TEST(IpAdd, TakesTheMeanByDefault) {
    ClIpAdd add;
    EXPECT_EQ(add.m_eMode, ClIpAdd::ModeScale);
    ClTestImage in1 = Img({{200}});
    ClTestImage in2 = Img({{101}});
    ClImage out;
    EXPECT_EQ(add.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{150}}));
}

TEST(IpAdd, WrapsWhereItEnlarges) {
    EXPECT_EQ(Pixels(SumOf(ClIpAdd::ModeEnlarge, 200, 100)), Rows({{44}}));
}

TEST(IpAdd, KeepsASumThatALargerTypeHolds) {
    ClTestImage in1 = Img({{200}});
    ClTestImage in2 = Img({{101}});
    for (auto eMode : {ClIpAdd::ModeCut, ClIpAdd::ModeEnlarge})
        EXPECT_EQ(Pixels(Sum(eMode, in1, in2, ClImage::eInt16)), Rows({{301}}));
    EXPECT_EQ(Pixels(Sum(ClIpAdd::ModeScale, in1, in2, ClImage::eInt16)), Rows({{150}}));
}

TEST(IpAdd, HalvesTowardZero) {
    ClTestImage in1 = Img(ClImage::eInt8, {{-3, 3, -128, 127, -2}});
    ClTestImage in2 = Img(ClImage::eInt8, {{0, 0, -1, 126, 1}});
    EXPECT_EQ(Pixels(Sum(ClIpAdd::ModeScale, in1, in2)), Rows({{-1, 1, -64, 126, 0}}));
}

TEST(IpAdd, HalvesFloatingPointSamplesExactly) {
    ClTestImage in1 = Img(ClImage::eFloat32, {{0.5, -0.25, 3.0, -9.0}});
    ClTestImage in2 = Img(ClImage::eUInt8, {{0, 0, 2, 1}});
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeScale, in1, in2)),
              RealRows({{0.25, -0.125, 1.0, -1.0}})); // floats range from -1 to 1
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeScale, in1, in2, ClImage::eInt16)),
              RealRows({{0, 0, 2, -4}}));
}

TEST(IpAdd, AddsIntegersModuloTwoToThe32) {
    const double dTop = 2147483647.0;
    ClTestImage ints = Img(ClImage::eInt32, {{dTop, -dTop - 1.0, dTop}});
    ClTestImage more = Img(ClImage::eInt32, {{1.0, -1.0, dTop}});
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeCut, ints, more)), RealRows({{-dTop - 1.0, dTop, -2.0}}));
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeScale, ints, more)),
              RealRows({{-1073741824.0, 1073741823.0, -1.0}}));

    ClTestImage words = Img(ClImage::eUInt32, {{4294967295.0, 5.0, 0.0}});
    ClTestImage bytes = Img(ClImage::eInt8, {{1.0, -6.0, -1.0}});
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeCut, words, bytes)),
              RealRows({{0.0, 4294967295.0, 4294967295.0}}));
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeScale, words, bytes, ClImage::eDouble64)),
              RealRows({{0.0, 1.0, 1.0}})); // clipped
}

TEST(IpAdd, AddsInTheFloatOfOneImage) {
    ClTestImage ints = Img(ClImage::eInt32, {{16777217.0, 16777219.0}}); // no floats
    ClTestImage floats = Img(ClImage::eFloat32, {{-16777216.0, 0.0}});
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeEnlarge, ints, floats, ClImage::eDouble64)),
              RealRows({{0.0, 16777220.0}}));
    ClTestImage doubles = Img(ClImage::eDouble64, {{-16777216.0, 0.0}});
    EXPECT_EQ(RealPixels(Sum(ClIpAdd::ModeEnlarge, ints, doubles, ClImage::eDouble64)),
              RealRows({{1.0, 16777219.0}}));
}

TEST(IpAdd, ClipsWhatIsNotANumberToTheLowerBound) {
    const double dNaN = std::nan("");
    ClTestImage in1 = Img(ClImage::eFloat32, {{dNaN, 1e30, -1e30}});
    ClTestImage in2 = Img(ClImage::eFloat32, {{1.0, 1.0, 1.0}});
    for (auto eMode : {ClIpAdd::ModeCut, ClIpAdd::ModeScale}) {
        EXPECT_EQ(RealPixels(Sum(eMode, in1, in2)), RealRows({{-1, 1, -1}}));
        EXPECT_EQ(Pixels(Sum(eMode, in1, in2, ClImage::eInt8)), Rows({{-128, 127, -128}}));
    }
    EXPECT_EQ(Pixels(Sum(ClIpAdd::ModeEnlarge, in1, in2, ClImage::eInt8)), Rows({{0, 0, 0}}));
}

// Against the arithmetic of the language

void ExpectAllModes(ClImage& In1, ClImage& In2, unsigned char nOut) {
    const StRange Range(nOut);
    for (auto eMode : {ClIpAdd::ModeCut, ClIpAdd::ModeScale, ClIpAdd::ModeEnlarge})
        EXPECT_EQ(RealPixels(Sum(eMode, In1, In2, nOut)),
                  NaivePairs(In1, In2, nOut,
                             [&](double a, double b) {
                                 return NaiveAdded(
                                     eMode, SumInLanguage(In1.DataType(), a, In2.DataType(), b),
                                     Range);
                             }))
            << "mode " << eMode << ": " << int{In1.DataType()} << " + " << int{In2.DataType()}
            << " to " << int{nOut};
}

TEST(IpAdd, EqualsTheLanguageForEveryCombinationOfTypes) {
    unsigned nSeed = 0;
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            for (unsigned char nOut : caPixelTypes) {
                ClTestImage in1 = RandomImage(nType1, 7, 3, 1, ++nSeed);
                ClTestImage in2 = RandomImage(nType2, 7, 3, 1, ++nSeed);
                ExpectAllModes(in1, in2, nOut);
                for (int nShift : {0, 1, 5}) {
                    ClTestImage edge1 = EdgeImage(nType1, 0);
                    ClTestImage edge2 = EdgeImage(nType2, nShift);
                    ExpectAllModes(edge1, edge2, nOut);
                }
            }
}

TEST(IpAdd, EqualsTheLanguageOnEverySizeOfEightBits) {
    const struct {
        int m_nWidth, m_nHeight, m_nPlanes;
    } aSizes[] = {{1, 1, 1}, {15, 3, 1}, {16, 2, 1}, {17, 5, 1}, {33, 2, 3}, {129, 3, 4}};
    for (const auto& Size : aSizes) {
        ClTestImage in1 =
            RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, Size.m_nPlanes, 1);
        ClTestImage in2 =
            RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, Size.m_nPlanes, 2);
        ExpectAllModes(in1, in2, ClImage::eUInt8);
    }
}

TEST(IpAdd, ClipsToWhateverRangeTheOutputHas) {
    ClIpAdd add;
    ClTestImage in1 = Img({{100, 200, 10}});
    ClTestImage in2 = Img({{100, 100, 10}});
    const struct {
        double m_dBlack, m_dWhite;
        Rows m_aCut;
    } aCases[] = {{30, 220, {{200, 220, 30}}},
                  {220, 30, {{200, 220, 30}}},
                  {30.75, 220.75, {{200, 220, 30}}},
                  {std::nan(""), 220, {{200, 220, 20}}},
                  {30, std::nan(""), {{200, 44, 30}}}};
    for (const auto& c : aCases) {
        ClTestImage out = TestSupport::BlankImage(ClImage::eUInt8, 3, 1);
        out.SetBlack(c.m_dBlack);
        out.SetWhite(c.m_dWhite);
        add.m_eMode = ClIpAdd::ModeCut;
        EXPECT_EQ(add.DoProcess(in1, in2, out, 3, 1, 1, 1, 0, 4, 0, 4, 0, 4), 0);
        EXPECT_EQ(Pixels(out), c.m_aCut);
    }
}

// What is refused

TEST(IpAdd, RefusesUnequalPlaneCounts) {
    const struct { int m_nPlanes1, m_nPlanes2; } aCases[] = {{1, 3}, {3, 1}, {2, 1}};
    for (const auto& c : aCases)
        for (auto eMode : {ClIpAdd::ModeCut, ClIpAdd::ModeScale, ClIpAdd::ModeEnlarge}) {
            ClIpAdd add;
            add.m_eMode = eMode;
            ClTestImage in1 = RandomImage(ClImage::eUInt8, 2, 1, c.m_nPlanes1, 1);
            ClTestImage in2 = RandomImage(ClImage::eUInt8, 2, 1, c.m_nPlanes2, 2);
            ClTestImage out;
            EXPECT_THROWS(add.ApplyParam(in1, in2, out, ceDefault), ClException, -44,
                          "unequal plane count is not suported.");
        }
}

TEST(IpAdd, TellsWhereUnequalPlaneCountsWereRefused) {
    ClIpAdd add;
    ClTestImage in1 = RandomImage(ClImage::eUInt8, 2, 1, 1, 1);
    ClTestImage in2 = RandomImage(ClImage::eUInt8, 2, 1, 3, 2);
    ClTestImage out;
    try {
        add.ApplyParam(in1, in2, out, ceDefault);
        FAIL();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "ImageProcessing/IpAdd");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(IpAdd, AnswersAModeOutsideTheThree) {
    for (bool bUseLUT : {false, true})
        for (int nMode : {-1, 3, 255}) {
            ClIpAdd add;
            add.m_bUseLUT = bUseLUT;
            add.m_eMode = static_cast<ClIpAdd::EProcessingMode>(nMode);
            ClTestImage image = Img({{1, 2}});
            EXPECT_EQ(add.ApplyParam(image, image, image, ceDefault), -101);
            EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
            EXPECT_EQ(add.GetValue(image, image, image, 3.0, 4.0), 0.0);
        }
}

TEST(IpAdd, AnswersWhatTheFrameRefuses) {
    ClIpAdd add;
    EXPECT_EQ(add.Apply(), -37);
    ClTestImage in1 = Img({{1, 2}});
    ClTestImage in2 = Img({{1}});
    ClImage out;
    EXPECT_EQ(add.ApplyParam(in1, in2, out, ceDefault), -44);
    EXPECT_EQ(add.ApplyParam(in1, in1, out, 7), -101);
    alignas(8) unsigned char aBytes[16] = {};
    ClImage strange;
    strange.Attach(aBytes, 3, 1, 1, 1, 0, 0);
    EXPECT_EQ(add.DoProcess(strange, in2, in2, 1, 1, 1, 1, 0, 4, 0, 4, 0, 4), -101);
    EXPECT_EQ(add.DoProcess(in2, strange, in2, 1, 1, 1, 1, 0, 4, 0, 4, 0, 4), -101);
    EXPECT_EQ(add.DoProcess(in2, in2, strange, 1, 1, 1, 1, 0, 4, 0, 4, 0, 4), -101);
}

// The table

TEST(IpAdd, UsesTheTableOfItsValuesWhereItIsToldTo) {
    ClTestImage in1 = Img({{200, 200, 1, 0}});
    ClTestImage in2 = Img({{100, 101, 2, 0}});
    const struct {
        ClIpAdd::EProcessingMode m_eMode;
        RealRows m_aOut;
    } aCases[] = {{ClIpAdd::ModeCut, {{255, 255, 3, 0}}},
                  {ClIpAdd::ModeScale, {{150, 150, 1, 0}}},
                  {ClIpAdd::ModeEnlarge, {{0, 0, 0, 0}}}};
    for (const auto& c : aCases) {
        ClIpAdd add;
        add.m_eMode = c.m_eMode;
        add.m_bUseLUT = true;
        ClImage out;
        EXPECT_EQ(add.ApplyParam(in1, in2, out, ceDefault), 0);
        EXPECT_EQ(RealPixels(out), c.m_aOut);
    }
}

TEST(IpAdd, KeepsTheHalfInTheTableOfAFloatingPointOutput) {
    ClIpAdd add;
    add.m_bUseLUT = true;
    ClTestImage in1 = Img({{1, 0, 1}});
    ClTestImage in2 = Img({{0, 0, 4}});
    ClImage out;
    EXPECT_EQ(add.ApplyParam(in1, in2, out, ClImage::eDouble64), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{0.5, 0.0, 1.0}}));
}

TEST(IpAdd, PairsThreePlanesWithOneOnlyByTheTable) {
    ClIpAdd add;
    add.m_bUseLUT = true;
    add.m_eMode = ClIpAdd::ModeCut;
    ClTestImage in1 = Img(ClImage::eUInt8, {{1, 2, 3}}, 3);
    ClTestImage in2 = Img({{10}});
    ClImage out;
    EXPECT_EQ(add.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{11, 12, 13}}));
}

TEST(IpAdd, SaysItsValuesInDouble) {
    ClIpAdd add;
    ClTestImage out = Img({{0}});
    EXPECT_EQ(add.GetValue(out, out, out, 200, 101), 150.5);
    EXPECT_EQ(add.GetValue(out, out, out, -200, 101), 0.0);
    add.m_eMode = ClIpAdd::ModeCut;
    EXPECT_EQ(add.GetValue(out, out, out, 200, 101), 255.0);
    EXPECT_EQ(add.GetValue(out, out, out, 100.25, 0.5), 100.75);
    add.m_eMode = ClIpAdd::ModeEnlarge;
    EXPECT_EQ(add.GetValue(out, out, out, 1, 1), 0.0);
}

// The frame

TEST(IpAdd, AddsInPlaceAndInTheOverlap) {
    ClIpAdd add;
    add.m_eMode = ClIpAdd::ModeCut;
    ClTestImage image = Img({{100, 200, 3}});
    EXPECT_EQ(add.ApplyParam(image, image, image, ceDefault), 0);
    EXPECT_EQ(Pixels(image), Rows({{200, 255, 6}}));
    add.m_bSizeMustBeEqual = false;
    add.m_nOffsetX = 2;
    ClTestImage other = Img({{4, 5, 6}});
    EXPECT_EQ(add.ApplyParam(image, other, image, ceDefault), 0);
    EXPECT_EQ(Pixels(image), Rows({{200, 255, 10, 5, 6}}));
}

TEST(IpAdd, AnswersEveryMissingAllocation) {
    for (bool bUseLUT : {false, true}) {
        ClIpAdd add;
        add.m_bUseLUT = bUseLUT;
        ClTestImage image = Img({{1, 2, 3}});
        TestSupport::FailEachAllocation(
            [&] { EXPECT_EQ(add.ApplyParam(image, image, image, ceDefault), 0); });
        EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
    }
}

} // namespace
