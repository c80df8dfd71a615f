// What the shape operators publish, in both channels.

#include "support/PublishedParameters.h"

#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/IpImageExtension.h"
#include "ImageProcessing/IpJoinPlanes.h"
#include "ImageProcessing/IpSetBorder.h"
#include "ImageProcessing/IpSplitPlanes.h"

namespace {

using TestSupport::ceOut;
using TestSupport::ExpectFlat;
using TestSupport::ExpectNoSettings;
using TestSupport::ExpectProcessor;
using TestSupport::ExpectTree;
using TestSupport::FlatImage;
using TestSupport::FlatNumber;
using TestSupport::NamedValues;
using TestSupport::TreeBool;
using TestSupport::TreeEnum;
using TestSupport::TreeNumber;
using TestSupport::TreePointer;

TEST(PublishedShape, CutPublishesItsRectangle) {
    ClIpCut cut;
    ExpectTree(cut, {TreePointer("pInImage", cut.m_pInImage, ePfIn, "In: Original Image"),
                     TreePointer("pOutImage", cut.m_pOutImage, ePfOut, "Out: Output Image"),
                     TreeNumber("nDestHeight", cut.m_nDestHeight, 0),
                     TreeNumber("nDestWidth", cut.m_nDestWidth, 0), TreeNumber("nX0", cut.m_nX0, 0),
                     TreeNumber("nY0", cut.m_nY0, 0)});
    ExpectFlat(cut, {FlatImage("InImage", cut.m_pInImage, "In: Original Image"),
                     FlatNumber("DestHeight", cut.m_nDestHeight, 0, "In: Cut Height"),
                     FlatNumber("DestWidth", cut.m_nDestWidth, 0, "In: Cut Width"),
                     FlatNumber("X0", cut.m_nX0, 0, "In: Start X"),
                     FlatNumber("Y0", cut.m_nY0, 0, "In: Start Y"),
                     FlatImage("OutImage", cut.m_pOutImage, "Out: Clipping", ceOut)});
}

TEST(PublishedShape, ImageExtensionPublishesMarginAndFill) {
    ClIpImageExtension extension;
    const NamedValues aAlignmentX = {{0, "Center"}, {1, "Left"}, {2, "Right"}};
    const NamedValues aAlignmentY = {{0, "Center"}, {1, "Down"}, {2, "Up"}};
    const NamedValues aModes = {{0, "ExtendSetColor"},
                                {1, "ExtendAverageColor"},
                                {2, "ExtendBorderContinue"},
                                {3, "ExtendBorderReflection"},
                                {4, "ExtendBorderPeriodic"}};
    ExpectTree(extension,
               {TreePointer("pInImage", extension.m_pInImage, ePfIn, "In: Original Image"),
                TreePointer("pOutImage", extension.m_pOutImage, ePfOut, "Out: Output Image"),
                TreeNumber("Extension in X", extension.m_nExtensionX, 0),
                TreeNumber("Extension in Y", extension.m_nExtensionY, 0),
                TreeNumber("Color for Extension", extension.m_nColor, 0),
                TreeBool("Extend to the next square numbers", extension.m_bNextPowerOfTwo, false),
                TreeEnum("Extension_in_X", extension.m_eAlignmentX, 0, aAlignmentX),
                TreeEnum("Extension_in_Y", extension.m_eAlignmentY, 0, aAlignmentY),
                TreeEnum("Color_for_Extension", extension.m_eMode, 0, aModes)});
    ExpectFlat(extension,
               {FlatImage("InImage", extension.m_pInImage, "In: Original Image"),
                FlatImage("OutImage", extension.m_pOutImage, "Out: Output Image", ceOut)});
}

TEST(PublishedShape, ImageExtensionKeepsItsManualOffsets) {
    ClIpImageExtension extension;
    extension.m_nManualOffsetX = 3;
    extension.m_nManualOffsetY = 4;
    ClParameterContainer Container;
    extension.QueryParameters(Container);
    EXPECT_EQ(extension.m_nManualOffsetX, 3);
    EXPECT_EQ(extension.m_nManualOffsetY, 4);
    extension.SetParametersToDefault();
    EXPECT_EQ(extension.m_nManualOffsetX, 0);
    EXPECT_EQ(extension.m_nManualOffsetY, 0);
}

TEST(PublishedShape, SetBorderPublishesTheFrame) {
    ClIpSetBorder border;
    ExpectTree(border, {TreePointer("pInImage", border.m_pInImage, ePfIn),
                        TreePointer("pOutImage", border.m_pOutImage, ePfOut),
                        TreeNumber("nBorderWidth", border.m_nBorderWidth, 1),
                        TreeNumber("nGreyValue", border.m_nGreyValue, 0)});
    ExpectFlat(border, {});
}

TEST(PublishedShape, SplitPlanesPublishesItsImages) {
    ClIpSplitPlanes split;
    ExpectTree(split, {TreePointer("pInImage", split.m_pInImage, ePfIn),
                       TreePointer("pOutPlane[0]", split.m_apOutPlane[0], ePfOut),
                       TreePointer("pOutPlane[1]", split.m_apOutPlane[1], ePfOut),
                       TreePointer("pOutPlane[2]", split.m_apOutPlane[2], ePfOut),
                       TreePointer("pOutPlane[3]", split.m_apOutPlane[3], ePfOut)});
    ExpectFlat(split, {});
}

TEST(PublishedShape, JoinPlanesPublishesPlanesAndFill) {
    ClIpJoinPlanes join;
    const double dNaN = std::nan("");
    const NamedValues aContents = {{0, "eUnknown"}, {1, "eGrayscale"}, {2, "eRGB"},
                                   {3, "eRGBA"},    {4, "eHSV"},       {5, "eXYZ"},
                                   {6, "eCIELab"},  {7, "eCIELUV"}};
    ExpectTree(join, {TreePointer("pInPlane[0]", join.m_apInPlane[0], ePfIn),
                      TreePointer("pInPlane[1]", join.m_apInPlane[1], ePfIn),
                      TreePointer("pInPlane[2]", join.m_apInPlane[2], ePfIn),
                      TreePointer("pInPlane[3]", join.m_apInPlane[3], ePfIn),
                      TreeNumber("dInFillcolors[0]", join.m_adInFillcolors[0], dNaN),
                      TreeNumber("dInFillcolors[1]", join.m_adInFillcolors[1], dNaN),
                      TreeNumber("dInFillcolors[2]", join.m_adInFillcolors[2], dNaN),
                      TreeNumber("dInFillcolors[3]", join.m_adInFillcolors[3], dNaN),
                      TreeEnum("eOutContent", join.m_eOutContent, 0, aContents),
                      TreeBool("bFillEmptyPlanes", join.m_bFillEmptyPlanes, true),
                      TreePointer("pOutImage", join.m_pOutImage, ePfOut, "Out: Joined Image")});
    ExpectFlat(join, {});
}

TEST(PublishedShape, JoinPlanesKeepsItsNumberOfPlanes) {
    ClIpJoinPlanes join;
    EXPECT_EQ(join.m_nPlanes, 0);
    join.m_nPlanes = 3;
    ClParameterContainer Container;
    join.QueryParameters(Container);
    EXPECT_EQ(join.m_nPlanes, 3);
    join.SetParametersToDefault();
    EXPECT_EQ(join.m_nPlanes, 0);
}

TEST(PublishedShape, TheShapeOperatorsAreProcessors) {
    ExpectProcessor<ClIpCut>("ClIpCut");
    ExpectProcessor<ClIpImageExtension>("ClIpImageExtension");
    ExpectProcessor<ClIpSetBorder>("ClIpSetBorder");
    ExpectProcessor<ClIpSplitPlanes>("ClIpSplitPlanes");
    ExpectProcessor<ClIpJoinPlanes>("ClIpJoinPlanes");
}

TEST(PublishedShape, TheShapeOperatorsShowNoSettings) {
    ExpectNoSettings(ClIpImageExtension());
    ExpectNoSettings(ClIpSetBorder());
    ExpectNoSettings(ClIpSplitPlanes());
    ExpectNoSettings(ClIpJoinPlanes());
    ClIpCut cut;
    ExpectNoSettings(cut);
}

} // namespace
