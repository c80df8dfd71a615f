#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"

namespace {

using namespace TestSupport;

template <class Filter>
void ExpectTreeOfTheFrame() {
    Filter filter;
    ExpectTree(filter, {TreePointer("pInImage", filter.m_pInImage, ePfIn),
                        TreePointer("pOutImage", filter.m_pOutImage, ePfOut),
                        TreeNumber("nFilterWidth", filter.m_nFilterWidth, 3),
                        TreeEnum("nMode", filter.m_nMode, 3, caFilterModeNames),
                        TreePointer("pInDxImage", filter.m_pInDxImage, ePfIn),
                        TreePointer("pInDyImage", filter.m_pInDyImage, ePfIn)});
}

TEST(PublishedRankFilters, AllPublishTheSettingsOfTheFrameInTheTree) {
    ExpectTreeOfTheFrame<ClIpFilterMax>();
    ExpectTreeOfTheFrame<ClIpFilterMin>();
    ExpectTreeOfTheFrame<ClIpFilterMedian>();
    ExpectTreeOfTheFrame<ClIpFilterMid>();
}

template <class Filter>
void ExpectImagesAndWidth() {
    Filter filter;
    ExpectFlat(filter, {FlatImage("InImage", filter.m_pInImage, "In: Original Image"),
                        FlatImage("OutImage", filter.m_pOutImage, "Out: Rescaled Image", ceOut),
                        FlatNumber("FilterWidth", filter.m_nFilterWidth, 3, "In: Filter Width", 3.0,
                                   127.0)});
}

TEST(PublishedRankFilters, MaxAndMinListImagesAndWidth) {
    ExpectImagesAndWidth<ClIpFilterMax>();
    ExpectImagesAndWidth<ClIpFilterMin>();
}

template <class Filter>
void ExpectListOfTheFrame() {
    Filter filter;
    ExpectFlat(filter,
               {FlatImage("InImage", filter.m_pInImage, "In: Original Image"),
                FlatImage("OutImage", filter.m_pOutImage, "Out: Output Image", ceOut),
                FlatNumber("nFilterWidth", filter.m_nFilterWidth, 3, "in: Filter Width"),
                FlatEnum("eFilterWidth", filter.m_nMode, 3, caFilterModeNames, "in: Filter Width"),
                FlatImage("InDxImage", filter.m_pInDxImage, "in: Dx Image"),
                FlatImage("InDyImage", filter.m_pInDyImage, "in: Dy Image")});
}

TEST(PublishedRankFilters, MedianAndMidListTheSettingsOfTheFrame) {
    ExpectListOfTheFrame<ClIpFilterMedian>();
    ExpectListOfTheFrame<ClIpFilterMid>();
}

TEST(PublishedRankFilters, AreProcessors) {
    ExpectProcessor<ClIpFilterMax>("ClIpFilterMax");
    ExpectProcessor<ClIpFilterMin>("ClIpFilterMin");
    ExpectProcessor<ClIpFilterMedian>("ClIpFilterMedian");
    ExpectProcessor<ClIpFilterMid>("ClIpFilterMid");
}

TEST(PublishedRankFilters, PrintTheSettingsOfTheFrame) {
    ExpectSettings(ClIpFilterMax(), "W[3] M[XY] S[Unknown]");
    ExpectSettings(ClIpFilterMin(), "W[3] M[XY] S[Unknown]");
    ClTestImage in = Img({{1}});
    ClIpFilterMedian median;
    median.m_pInImage = &in;
    median.m_nFilterWidth = 5;
    median.m_nMode = 1;
    ExpectSettings(median, "W[5] M[X] S[Unsigned]");
    ClIpFilterMid mid;
    mid.m_pInImage = &in;
    in.SetDataType(ClImage::eInt8);
    mid.m_nMode = 16;
    ExpectSettings(mid, "W[3] M[DirectedOrtho] S[Signed]");
}

TEST(PublishedRankFilters, KeepTheRemainderImageOfMid) {
    ClImage remainder;
    ClIpFilterMid filter;
    EXPECT_EQ(filter.m_pRemainder, nullptr);
    filter.m_pRemainder = &remainder;
    ClParameterContainer container;
    filter.QueryParameters(container);
    EXPECT_EQ(filter.m_pRemainder, &remainder);
    filter.SetParametersToDefault();
    EXPECT_EQ(filter.m_pRemainder, nullptr);
}

} // namespace
