/// What the frames of the operators publish, and the linear filters with them. Operators of other
/// subjects have tables of their own, in files named Published...Test.cpp.

#include "support/PublishedParameters.h"
#include "ImageProcessing/Ip1to1Base.h"
#include "ImageProcessing/IpFilterBase.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "Tools/Allocate.h"
#include "support/Images.h"

namespace {

using namespace TestSupport;

/// A frame made concrete, with nothing of its own.
template <class Frame>
class TpPlain : public Frame {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<TpPlain>(); }
    const char* Name() const override { return "Plain"; }
};

using ClPlainNew1to1 = TpPlain<NewIpBase::ClIp1to1Base>;
using ClPlain1to1 = TpPlain<ClIp1to1Base>;
using ClPlainFilter = TpPlain<ClIpFilterBase>;

template <class Frame>
std::vector<StTreeRow> TreeOfImages(Frame& frame) {
    return {TreePointer("pInImage", frame.m_pInImage, ePfIn, "In: Original Image"),
            TreePointer("pOutImage", frame.m_pOutImage, ePfOut, "Out: Output Image")};
}

template <class Frame>
std::vector<StFlatRow> FlatOfImages(Frame& frame) {
    return {FlatImage("InImage", frame.m_pInImage, "In: Original Image"),
            FlatImage("OutImage", frame.m_pOutImage, "Out: Output Image", ceOut)};
}

std::vector<StTreeRow> TreeOfFilter(ClIpFilterBase& filter, long nWidth, long nMode) {
    return {TreePointer("pInImage", filter.m_pInImage, ePfIn),
            TreePointer("pOutImage", filter.m_pOutImage, ePfOut),
            TreeNumber("nFilterWidth", filter.m_nFilterWidth, static_cast<double>(nWidth)),
            TreeEnum("nMode", filter.m_nMode, nMode, caFilterModeNames),
            TreePointer("pInDxImage", filter.m_pInDxImage, ePfIn),
            TreePointer("pInDyImage", filter.m_pInDyImage, ePfIn)};
}

std::vector<StFlatRow> FlatOfFilter(ClIpFilterBase& filter, long nWidth, long nMode) {
    return {FlatImage("InImage", filter.m_pInImage, "In: Original Image"),
            FlatImage("OutImage", filter.m_pOutImage, "Out: Output Image", ceOut),
            FlatNumber("nFilterWidth", filter.m_nFilterWidth, static_cast<double>(nWidth),
                       "in: Filter Width"),
            FlatEnum("eFilterWidth", filter.m_nMode, nMode, caFilterModeNames, "in: Filter Width"),
            FlatImage("InDxImage", filter.m_pInDxImage, "in: Dx Image"),
            FlatImage("InDyImage", filter.m_pInDyImage, "in: Dy Image")};
}

/// The rows, and further ones behind them.
template <class Row>
std::vector<Row> With(std::vector<Row> aRows, const std::vector<Row>& aMore) {
    aRows.insert(aRows.end(), aMore.begin(), aMore.end());
    return aRows;
}

// Frames of one input

TEST(PublishedFrames, New1to1PublishesItsImages) {
    ClPlainNew1to1 frame;
    ExpectTree(frame, TreeOfImages(frame));
    ExpectFlat(frame, FlatOfImages(frame));
}

TEST(PublishedFrames, New1to1IsAProcessor) {
    ExpectProcessor<ClPlainNew1to1>("Plain");
    ExpectNoSettings(ClPlainNew1to1());
}

TEST(PublishedFrames, Old1to1PublishesItsImagesAndTheOutputType) {
    ClPlain1to1 frame;
    ExpectTree(frame,
               With(TreeOfImages(frame), {TreeEnum("OutImageType", frame.m_nOutImageType, 255,
                                                   caPixelTypeNames, "In: OutImage Datatype")}));
    ExpectFlat(frame,
               With(FlatOfImages(frame), {FlatEnum("OutImageType", frame.m_nOutImageType, 255,
                                                   caPixelTypeNames, "In: OutImage Datatype")}));
}

TEST(PublishedFrames, Old1to1IsAProcessor) {
    ExpectProcessor<ClPlain1to1>("Plain");
    ExpectNoSettings(ClPlain1to1());
}

// Filters

TEST(PublishedFrames, FiltersPublishWidthModeAndImages) {
    ClPlainFilter filter;
    ExpectTree(filter, TreeOfFilter(filter, 3, 3));
    ExpectFlat(filter, FlatOfFilter(filter, 3, 3));
}

TEST(PublishedFrames, FiltersAreProcessors) {
    ExpectProcessor<ClPlainFilter>("Plain");
    ExpectSettings(ClPlainFilter(), "W[3] M[XY] S[Unknown]");
}

TEST(PublishedFilters, GaussAddsItsSigma) {
    ClIpFilterGauss gauss;
    ExpectTree(gauss, With(TreeOfFilter(gauss, 0, 3),
                           {TreeNumber("dSigma", gauss.m_dSigma, 1.0, "In Sigma")}));
    ExpectFlat(gauss, With(FlatOfFilter(gauss, 0, 3),
                           {FlatNumber("dSigma", gauss.m_dSigma, 1.0, "In Sigma")}));
}

TEST(PublishedFilters, GaussIsAProcessor) {
    ExpectProcessor<ClIpFilterGauss>("ClIpFilterGauss");
    ExpectSettings(ClIpFilterGauss(), "S[1.00] W[0] M[XY] S[Unknown]");
}

TEST(PublishedFilters, DGaussPublishesWhatGaussDoes) {
    ClIpFilterDGauss filter;
    ExpectTree(filter, With(TreeOfFilter(filter, 0, 1),
                            {TreeNumber("dSigma", filter.m_dSigma, 1.0, "In Sigma")}));
    ExpectFlat(filter, With(FlatOfFilter(filter, 0, 1),
                            {FlatNumber("dSigma", filter.m_dSigma, 1.0, "In Sigma")}));
}

TEST(PublishedFilters, DGaussIsAProcessor) {
    ExpectProcessor<ClIpFilterDGauss>("ClIpFilterDGauss");
    ExpectSettings(ClIpFilterDGauss(), "S[1.00] W[0] M[X] S[Unknown]");
}

// Sharpening

TEST(PublishedFilters, UnsharpMaskingPublishesItsLowPass) {
    ClIpUnsharpMasking filter;
    ExpectTree(filter, With(TreeOfImages(filter),
                            {TreeNumber("nLowPassFilterWidth", filter.m_nLowPassFilterWidth, 0,
                                        "In: Width of gauss filter."),
                             TreeNumber("dGaussSigma", filter.m_dGaussSigma, 2.0,
                                        "In: Sigma of the gauss filter."),
                             TreeNumber("dAmplificationFactor", filter.m_dAmplificationFactor, 1.0,
                                        "In: Factor for amplifying the edge image."),
                             TreeNumber("nThreshold", filter.m_nThreshold, 0,
                                        "In: Threshold for suppressing noise."),
                             TreeEnum("nMode", filter.m_nMode, 3, caFilterModeNames)}));
    ExpectFlat(filter, With(FlatOfImages(filter),
                            {FlatNumber("LowPassFilterWidth", filter.m_nLowPassFilterWidth, 0,
                                        "In: Width of gauss filter."),
                             FlatNumber("GaussSigma", filter.m_dGaussSigma, 2.0,
                                        "In: Sigma of the gauss filter."),
                             FlatNumber("AmplificationFactor", filter.m_dAmplificationFactor, 1.0,
                                        "In: Factor for amplifying the edge image."),
                             FlatNumber("Threshold", filter.m_nThreshold, 0,
                                        "In: Threshold for suppressing noise."),
                             FlatEnum("nMode", filter.m_nMode, 3, caFilterModeNames)}));
}

TEST(PublishedFilters, UnsharpMaskingIsAProcessor) {
    ExpectProcessor<ClIpUnsharpMasking>("ClIpUnsharpMasking");
    ExpectNoSettings(ClIpUnsharpMasking());
}

TEST(PublishedFilters, UnsharpMaskingCanApplyToBytesAlone) {
    ClIpUnsharpMasking filter;
    for (const auto eType : caPixelTypes) {
        ClTestImage image = BlankImage(eType, 2, 2);
        filter.m_pInImage = &image;
        EXPECT_EQ(filter.CanApply(), eType == ClImage::eUInt8) << eType;
    }
}

// The flat list against the processor

TEST(PublishedFilters, AToolSetsAndReadsAProcessorThroughTheFlatList) {
    ClIpFilterGauss gauss;
    ClParameterInterface List;
    gauss.QueryParameters(List);
    List.GetParam("dSigma")->SetValue(1.5);
    List.GetParam("eFilterWidth")->SetEnum("Mode Y");
    List.GetParam("nFilterWidth")->SetValue(5.0);
    char szSettings[64];
    gauss.ParameterString(szSettings, sizeof szSettings);
    EXPECT_STREQ(szSettings, "S[1.50] W[5] M[Y] S[Unknown]");
}

TEST(PublishedFilters, TheFlatListIsWholeOrAnswersMissingMemory) {
    ClIpUnsharpMasking filter;
    ClParameterInterface List;
    FailEachAllocation([&] {
        List.Clear();
        filter.QueryParameters(List);
    });
    EXPECT_EQ(List.Count(), 7);
}

} // namespace
