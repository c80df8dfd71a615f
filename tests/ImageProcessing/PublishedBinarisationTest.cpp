// What the binarisations publish.

#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBinarizeLocal2.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/SpecialNumbers.h"

#include <cmath>

namespace {

using TestSupport::cdNaN;

using namespace TestSupport;

TEST(PublishedBinarisation, GlobalPublishesItsSettings) {
    ClIpBinarizeGlobal ip;
    const char* szBlack = "In: Pixelvalue of Black";
    const char* szWhite = "In: Pixelvalue of White";
    const char* szThreshold = "In: Binarization Threshold";
    ExpectTree(ip, {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
                    TreePointer("pOutImage", ip.m_pOutImage, ePfOut, "Out: Output Image"),
                    TreeNumber("Black", ip.m_dBlack, cdNaN, szBlack),
                    TreeNumber("White", ip.m_dWhite, cdNaN, szWhite),
                    TreeNumber("Threshold", ip.m_dThreshold, cdNaN, szThreshold)});
    ClIpBinarizeGlobal flat;
    ExpectFlat(flat, {FlatImage("InImage", flat.m_pInImage, "In: Original Image"),
                      FlatImage("OutImage", flat.m_pOutImage, "Out: Output Image", ceOut),
                      FlatNumber("Black", flat.m_dBlack, cdNaN, szBlack),
                      FlatNumber("White", flat.m_dWhite, cdNaN, szWhite),
                      FlatNumber("Threshold", flat.m_dThreshold, cdNaN, szThreshold)});
}

TEST(PublishedBinarisation, GlobalIsAProcessor) {
    ExpectProcessor<ClIpBinarizeGlobal>("ClIpBinarizeGlobal");
}

TEST(PublishedBinarisation, GlobalTellsItsSettings) {
    ClIpBinarizeGlobal ip;
    ExpectSettings(ip, "Thrnan [nan;nan]");
    ip.m_dThreshold = 72.25;
    ip.m_dBlack = 0.0;
    ip.m_dWhite = 255.0;
    ExpectSettings(ip, "Thr72 [0;255]"); // no input: no digits
    ClTestImage integer = Img({{1}});
    ip.m_pInImage = &integer;
    ExpectSettings(ip, "Thr72 [0;255]");
    for (unsigned char nType : {ClImage::eFloat32, ClImage::eDouble64}) {
        ClTestImage real = BlankImage(nType, 1, 1);
        ip.m_pInImage = &real;
        ExpectSettings(ip, "Thr72.2500 [0.0000;255.0000]");
    }
}

TEST(PublishedBinarisation, LocalPublishesTheSettingsOfItsFrameAlone) {
    ClIpBinarizeLocal2 ip;
    ExpectTree(ip, {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
                    TreePointer("pOutImage", ip.m_pOutImage, ePfOut, "Out: Output Image"),
                    TreeEnum("OutImageType", ip.m_nOutImageType, 255, caPixelTypeNames,
                             "In: OutImage Datatype")});
    ClIpBinarizeLocal2 flat;
    ExpectFlat(flat, {FlatImage("InImage", flat.m_pInImage, "In: Original Image"),
                      FlatImage("OutImage", flat.m_pOutImage, "Out: Output Image", ceOut),
                      FlatEnum("OutImageType", flat.m_nOutImageType, 255, caPixelTypeNames,
                               "In: OutImage Datatype")});
}

TEST(PublishedBinarisation, LocalKeepsItsFieldsWhenDefaultsAreCaptured) {
    ClIpBinarizeLocal2 ip;
    ip.m_nSizeX = 1;
    ip.m_nSizeY = 2;
    ip.m_nOffset = 3;
    ip.m_nBelowValue = 4;
    ip.m_nAboveValue = 5;
    ClParameterContainer Container;
    ip.QueryParameters(Container);
    EXPECT_EQ(ip.m_nSizeX, 1);
    EXPECT_EQ(ip.m_nSizeY, 2);
    EXPECT_EQ(ip.m_nOffset, 3);
    EXPECT_EQ(ip.m_nBelowValue, 4);
    EXPECT_EQ(ip.m_nAboveValue, 5);
}

TEST(PublishedBinarisation, LocalIsAProcessor) {
    ExpectProcessor<ClIpBinarizeLocal2>("ClIpBinarizeLocal2");
    ExpectNoSettings(ClIpBinarizeLocal2());
}

} // namespace
