// The operations of the modes, called without the frame.

#include "ImageProcessing/IpLinFilterBase.h"

#include "ImageProcessing/TestKernel.h"
#include "support/Images.h"
#include "support/Throws.h"

namespace {

using TestSupport::ClIpTestKernel;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

using Operation = long (*)(ClIpTestKernel&);
constexpr Operation caPlain[] = {[](ClIpTestKernel& r) { return r.ProcessX(); },
                                 [](ClIpTestKernel& r) { return r.ProcessY(); },
                                 [](ClIpTestKernel& r) { return r.ProcessXY(); },
                                 [](ClIpTestKernel& r) { return r.ProcessDirected(true); }};
constexpr Operation caSigned[] = {[](ClIpTestKernel& r) { return r.ProcessSignedX(); },
                                  [](ClIpTestKernel& r) { return r.ProcessSignedY(); },
                                  [](ClIpTestKernel& r) { return r.ProcessSignedXY(); },
                                  [](ClIpTestKernel& r) { return r.ProcessSignedDirected(true); }};
constexpr long caModesOfOperations[] = {1, 2, 3, 16};

TEST(IpLinFilterBaseOperations, AnswersMissingImagesInEveryOperation) {
    ClTestImage image = RandomImage(ClImage::eInt8, 5, 4, 1, 3);
    ClTestImage claim;
    claim.Attach(nullptr, image);
    for (const auto* pOperations : {caPlain, caSigned})
        for (int i = 0; i < 4; ++i) {
            ClIpTestKernel filter({1.0});
            filter.m_pInDxImage = filter.m_pInDyImage = &image;
            EXPECT_EQ(pOperations[i](filter), -35);
            filter.m_pInImage = &image;
            EXPECT_EQ(pOperations[i](filter), -35);
            filter.m_pInImage = nullptr;
            filter.m_pOutImage = &image;
            EXPECT_EQ(pOperations[i](filter), -35);
            filter.m_pInImage = &claim;
            EXPECT_EQ(pOperations[i](filter), -35);
        }
    ClIpTestKernel filter({1.0});
    EXPECT_THROWS(filter.ProcessDirected(false), ClException, -701, "m_pInDxImage is not set");
    filter.m_pInDxImage = &image;
    EXPECT_THROWS(filter.ProcessSignedDirected(false), ClException, -701,
                  "m_pInDyImage is not set");
}

TEST(IpLinFilterBaseOperations, RefusesWiderSamplesInEveryOperation) {
    for (const auto* pOperations : {caPlain, caSigned})
        for (int i = 0; i < 4; ++i) {
            ClTestImage direction = RandomImage(ClImage::eInt8, 5, 4, 1, 3);
            ClTestImage in = RandomImage(ClImage::eInt16, 5, 4, 1, 3);
            ClTestImage out = Img({{9}});
            ClIpTestKernel filter({1.0});
            filter.m_pInDxImage = filter.m_pInDyImage = &direction;
            filter.m_pInImage = &in;
            filter.m_pOutImage = &out;
            EXPECT_THROWS(pOperations[i](filter), ClException, -101,
                          "Image Type is not the assigned type");
            EXPECT_EQ(Pixels(out), Rows({{9}}));
        }
}

TEST(IpLinFilterBaseOperations, FiltersInPlaceInEveryOperation) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (int i = 0; i < 4; ++i) {
            ClTestImage image = RandomImage(nType, 21, 18, 1, 3);
            ClTestImage direction = RandomImage(ClImage::eInt8, 21, 18, 1, 4);
            ClTestImage apart;
            ClIpTestKernel filter({1.0, 3.0, 2.0, 5.0, 1.0});
            filter.m_nMode = caModesOfOperations[i];
            filter.m_pInDxImage = filter.m_pInDyImage = &direction;
            EXPECT_EQ(filter.ApplyTo(image, apart), 0);
            filter.m_pOutImage = &image;
            EXPECT_EQ((nType == ClImage::eInt8 ? caSigned : caPlain)[i](filter), 0);
            ExpectSameImage(image, apart);
        }
}

} // namespace
