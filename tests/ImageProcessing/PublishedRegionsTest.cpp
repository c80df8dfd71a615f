// What the operators on regions, polygons and gradients publish.

#include "ImageProcessing/IpBuildConvexHull.h"
#include "ImageProcessing/IpConnectedComponent2.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpLabeling.h"
#include "ImageProcessing/IpRenderPolygon.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"

namespace {

using namespace TestSupport;

template <class Processor>
void ExpectNothingPublished() {
    Processor processor;
    ExpectTree(processor, {});
    ExpectFlat(processor, {});
}

TEST(PublishedRegions, LabelingAndPolygonsPublishNothing) {
    ExpectNothingPublished<ClIpLabeling>();
    ExpectNothingPublished<ClIpBuildConvexHull>();
    ExpectNothingPublished<ClIpRenderPolygon>();
}

TEST(PublishedRegions, ConnectedComponentsPublishTheirImages) {
    ClIpConnectedComponent2 components;
    ExpectTree(components, {TreePointer("pInImage", components.m_pInImage, ePfIn),
                            TreePointer("m_pInImageGrey", components.m_pInImageGrey, ePfIn),
                            TreePointer("m_pOutImage", components.m_pOutImage, ePfOut)});
    ExpectFlat(components, {FlatImage("pInImage", components.m_pInImage),
                            FlatImage("m_pInImageGrey", components.m_pInImageGrey),
                            FlatImage("m_pOutImage", components.m_pOutImage, "", ceOut)});
}

TEST(PublishedRegions, ConnectedComponentsKeepTheirArrayWhenAsked) {
    ClIpConnectedComponent2 components;
    ClIpConnectedComponent2::ComponentsArray_t aComponents;
    components.m_pComponents = &aComponents;
    ClParameterContainer Container;
    components.QueryParameters(Container);
    EXPECT_EQ(components.m_pComponents, &aComponents);
}

TEST(PublishedRegions, FloodFillPublishesItsSettingsInTheTree) {
    ClIpFloodFill fill;
    ExpectTree(fill, {TreePointer("pInImage", fill.m_pInImage, ePfIn, "In: Original Image"),
                      TreePointer("pOutImage", fill.m_pOutImage, ePfOut, "Out: Output Image"),
                      TreeNumber("CountThresh", fill.m_nCountThresh, 0, "Nothing"),
                      TreeNumber("FillColor", fill.m_nFillColor, 0, "In Fill Color"),
                      TreeNumber("StartX", fill.m_nStartX, 0, "In Start Coordinate X"),
                      TreeNumber("StartY", fill.m_nStartY, 0, "In Start Coordinate Y")});
}

/// An image of one to three planes.
StFlatRow PlanesRow(const char* szName, ClImage*& pMember, const char* szText,
                    EDirection eDirection) {
    StFlatRow Row = FlatImage(szName, pMember, szText, eDirection);
    Row.m_dLower = 1.0;
    Row.m_dUpper = 3.0;
    return Row;
}

TEST(PublishedRegions, FloodFillListsItsSettingsWithTheirRanges) {
    ClIpFloodFill fill;
    ExpectFlat(fill,
               {PlanesRow("InImage", fill.m_pInImage, "In: Original Image", ceIn),
                PlanesRow("OutImage", fill.m_pOutImage, "Out: Output Image", ceOut),
                FlatNumber("CountThresh", fill.m_nCountThresh, 0, "Nothing", 0.0, 253.0),
                FlatNumber("FillColor", fill.m_nFillColor, 0, "In Fill Color", 0.0, 255.0),
                FlatNumber("StartX", fill.m_nStartX, 0, "In Start Coordinate X", 0.0, 100000.0),
                FlatNumber("StartY", fill.m_nStartY, 0, "In Start Coordinate Y", 0.0, 100000.0)});
}

TEST(PublishedRegions, FloodFillKeepsItsBoxWhenAsked) {
    ClIpFloodFill fill;
    long anBox[4] = {};
    fill.m_pBox = anBox;
    ClParameterContainer Container;
    fill.QueryParameters(Container);
    EXPECT_EQ(fill.m_pBox, anBox);
    fill.SetParametersToDefault();
    EXPECT_EQ(fill.m_pBox, nullptr);
}

TEST(PublishedRegions, EuclidLengthPublishesTheImagesOfItsFrame) {
    ClIpEuclidLength length;
    ExpectTree(length,
               {TreePointer("pInImage1", length.m_pInImage1, ePfIn, "In1: Original Image"),
                TreePointer("pInImage2", length.m_pInImage2, ePfIn, "In2: 2nd Original Image"),
                TreePointer("pOutImage", length.m_pOutImage, ePfOut, "Out: Output Image")});
    ExpectFlat(length, {FlatImage("InImage1", length.m_pInImage1, "In1: Original Image"),
                        FlatImage("InImage2", length.m_pInImage2, "In2: 2nd Original Image"),
                        FlatImage("OutImage", length.m_pOutImage, "Out: Output Image", ceOut)});
}

TEST(PublishedRegions, AllAreProcessors) {
    ExpectProcessor<ClIpLabeling>("ClIpLabeling");
    ExpectProcessor<ClIpConnectedComponent2>("ClIpConnectedComponent2");
    ExpectProcessor<ClIpFloodFill>("ClIpFloodFill");
    ExpectProcessor<ClIpBuildConvexHull>("ClIpBuildConvexHull");
    ExpectProcessor<ClIpRenderPolygon>("ClIpRenderPolygon");
    ExpectProcessor<ClIpEuclidLength>("ClIpEuclidLength");
}

TEST(PublishedRegions, OnlyEuclidLengthShowsSettings) {
    ExpectNoSettings(ClIpLabeling());
    ExpectNoSettings(ClIpConnectedComponent2());
    ExpectNoSettings(ClIpFloodFill());
    ExpectNoSettings(ClIpBuildConvexHull());
    ExpectNoSettings(ClIpRenderPolygon());
    ClIpEuclidLength length;
    ExpectSettings(length, "Unknown Yet");
    ClTestImage image = FlatImage(ClImage::eInt8, 1, 1, 1, 0.0);
    length.m_pInImage1 = &image;
    ExpectSettings(length, "Signed");
}

} // namespace
