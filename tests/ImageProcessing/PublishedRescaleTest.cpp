// What the operators that change sizes publish, in both channels.

#include "support/PublishedParameters.h"

#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpResize.h"
#include "ImageProcessing/IpSubsample.h"

namespace {

using TestSupport::ceOut;
using TestSupport::ExpectFlat;
using TestSupport::ExpectNoSettings;
using TestSupport::ExpectProcessor;
using TestSupport::ExpectSettings;
using TestSupport::ExpectTree;
using TestSupport::FlatEnum;
using TestSupport::FlatImage;
using TestSupport::FlatNumber;
using TestSupport::NamedValues;
using TestSupport::TreeEnum;
using TestSupport::TreeNumber;
using TestSupport::TreePointer;

const NamedValues caModeNames = {{0, "ModeWholeNumbered"},
                                 {1, "ModeNearestNeighbour"},
                                 {2, "ModeBiLinear"},
                                 {3, "ModeBiCubic"},
                                 {4, "ModeBiLinearFantMar"}};

TEST(PublishedRescale, RescalePublishesItsDestinationInTheTree) {
    ClIpRescale rescale;
    ExpectTree(
        rescale,
        {TreePointer("pInImage", rescale.m_pInImage, ePfIn, "In: Original Image"),
         TreePointer("pOutImage", rescale.m_pOutImage, ePfOut, "Out: Rescaled Image"),
         TreeNumber("NewWidth", rescale.m_nNewWidth, 0, "In: New Image Width"),
         TreeNumber("NewHeight", rescale.m_nNewHeight, 0, "In: New Image Height"),
         TreeNumber("NewPelsX", rescale.m_nNewPelsX, 0, "In: New Horizontal Resolution In Pels"),
         TreeNumber("NewPelsY", rescale.m_nNewPelsY, 0, "In: New Vertical Resolution In Pels"),
         TreeEnum("eMode", rescale.m_eMode, 2, caModeNames, "In: Interpolation Mode"),
         TreeNumber("dConvParameter1", rescale.m_dConvParameter1, -0.75)});
}

TEST(PublishedRescale, RescalePublishesItsDestinationInTheList) {
    ClIpRescale rescale;
    ExpectFlat(
        rescale,
        {FlatImage("InImage", rescale.m_pInImage, "In: Original Image"),
         FlatImage("OutImage", rescale.m_pOutImage, "Out: Rescaled Image", ceOut),
         FlatNumber("NewWidth", rescale.m_nNewWidth, 0, "In: New Image Width"),
         FlatNumber("NewHeight", rescale.m_nNewHeight, 0, "In: New Image Height"),
         FlatNumber("NewPelsX", rescale.m_nNewPelsX, 0, "In: New Horizontal Resolution In Pels"),
         FlatNumber("NewPelsY", rescale.m_nNewPelsY, 0, "In: New Vertical Resolution In Pels"),
         FlatEnum("Mode", rescale.m_eMode, 2, caModeNames, "In: Interpolation Mode"),
         FlatNumber("dConvParameter1", rescale.m_dConvParameter1, -0.75)});
}

TEST(PublishedRescale, ResizePublishesFactorAndSize) {
    ClIpResize resize;
    ExpectTree(resize, {TreePointer("pInImage", resize.m_pInImage, ePfIn),
                        TreePointer("pOutImage", resize.m_pOutImage, ePfOut),
                        TreeNumber("nScaleFactor", resize.m_nScaleFactor, 2),
                        TreeNumber("nDestWidth", resize.m_nDestWidth, 0),
                        TreeNumber("nDestHeight", resize.m_nDestHeight, 0)});
    ExpectFlat(resize, {FlatImage("InImage", resize.m_pInImage),
                        FlatImage("OutImage", resize.m_pOutImage, "", ceOut),
                        FlatNumber("nScaleFactor", resize.m_nScaleFactor, 2),
                        FlatNumber("nDestWidth", resize.m_nDestWidth, 0),
                        FlatNumber("nDestHeight", resize.m_nDestHeight, 0)});
}

TEST(PublishedRescale, SubsamplePublishesNothingAndKeepsItsSettings) {
    ClIpSubsample subsample;
    EXPECT_EQ(subsample.m_nFactor, 2);
    EXPECT_FALSE(subsample.m_bMid);
    subsample.m_nFactor = 7;
    subsample.m_bMid = true;
    ExpectTree(subsample, {});
    ExpectFlat(subsample, {});
    EXPECT_EQ(subsample.m_nFactor, 7);
    EXPECT_TRUE(subsample.m_bMid);
    subsample.SetParametersToDefault();
    EXPECT_EQ(subsample.m_nFactor, 2);
    EXPECT_FALSE(subsample.m_bMid);
}

TEST(PublishedRescale, TheRescaleOperatorsAreProcessors) {
    ExpectProcessor<ClIpRescale>("ClIpRescale");
    ExpectProcessor<ClIpResize>("ClIpResize");
    ExpectProcessor<ClIpSubsample>("ClIpSubsample");
}

TEST(PublishedRescale, RescaleShowsSizeOrResolutionAndMode) {
    const char* const aszModes[] = {"WholeNumbered", "NearestNeighbour", "BiLinear", "BiCubic",
                                    "BiLinearFantMar"};
    ClIpRescale rescale;
    ExpectSettings(rescale, "X0 Y0 BiLinear");
    rescale.m_nNewPelsX = 19685;
    rescale.m_nNewPelsY = -3;
    for (int nMode = 0; nMode < 5; ++nMode) {
        rescale.m_eMode = static_cast<ClIpRescale::eProcessingMode>(nMode);
        ExpectSettings(rescale, std::string("X19685 Y-3 ") + aszModes[nMode]);
    }
    rescale.m_nNewWidth = 320;
    rescale.m_nNewHeight = 480;
    rescale.m_eMode = static_cast<ClIpRescale::eProcessingMode>(5);
    ExpectSettings(rescale, "W320 H480 InvalidMode");
}

TEST(PublishedRescale, SubsampleShowsItsFactorResizeNothing) {
    ClIpSubsample subsample;
    ExpectSettings(subsample, "Sub2,Mid=No");
    subsample.m_nFactor = -4;
    subsample.m_bMid = true;
    ExpectSettings(subsample, "Sub-4,Mid=Yes");
    ExpectNoSettings(ClIpResize());
}

} // namespace
