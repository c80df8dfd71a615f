// Operators on small images, against the results of an independent model.
//
// Each case of operators.json names its operator, its parameters, an input and the output. A new
// operator is one function and one line of caOperators.

#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/IpStretchRangeGlobalNoiseRemoving.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "support/Images.h"
#include "support/TestData.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace {

using nlohmann::json;
using TestSupport::ClTestImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::Rows;

/// Runs an operator with the parameters of a case.
using RunOperator = void (*)(const json& Case, ClImage& rIn, ClImage& rOut);

template <class Gauss>
void RunGauss(const json& Case, ClImage& rIn, ClImage& rOut) {
    Gauss filter;
    filter.m_pInImage = &rIn;
    filter.m_pOutImage = &rOut;
    filter.m_dSigma = Case.at("sigma").get<double>();
    filter.m_nMode = Case.at("mode").get<long>();
    EXPECT_EQ(filter.Apply(), 0);
}

void RunUnsharpMasking(const json& Case, ClImage& rIn, ClImage& rOut) {
    ClIpUnsharpMasking unsharp;
    unsharp.m_dGaussSigma = Case.at("sigma").get<double>();
    unsharp.m_nMode = Case.at("mode").get<long>();
    EXPECT_EQ(unsharp.ApplyParam(rIn, rOut, 0), 0);
}

/// Mid and median, of the square.
template <class Filter>
void RunFilter(const json& Case, ClImage& rIn, ClImage& rOut) {
    EXPECT_EQ(Filter().ApplyParam(rIn, rOut, Case.at("width").get<long>()), 0);
}

template <class Filter>
void RunFilterOfMode(const json& Case, ClImage& rIn, ClImage& rOut) {
    EXPECT_EQ(
        Filter().ApplyParam(rIn, rOut, Case.at("width").get<long>(), Case.at("mode").get<long>()),
        0);
}

void RunStretchNoise(const json& Case, ClImage& rIn, ClImage& rOut) {
    ClIpStretchRangeGlobalNoiseRemoving stretch;
    EXPECT_EQ(stretch.ApplyParam(rIn, rOut, Case.at("dark").get<double>(),
                                 Case.at("bright").get<double>()),
              0);
}

/// The model stretches as the dynamic calibration does: both limits smoothed, no subsampling.
void RunStretchLocal(const json& Case, ClImage& rIn, ClImage& rOut) {
    ClIpStretchRangeLocal stretch;
    stretch.m_nFilterWidth = Case.at("width").get<long>();
    stretch.m_nMinContrast = Case.at("minContrast").get<long>();
    stretch.m_nSubSampleRate = 1;
    stretch.m_bUseMaxSmoothing = true;
    EXPECT_EQ(stretch.ApplyParam(rIn, rOut), 0);
}

void RunBinarizeLocal(const json& Case, ClImage& rIn, ClImage& rOut) {
    ClIpBinarizeLocal2 binarize;
    binarize.m_nBelowValue = Case.at("below").get<unsigned char>();
    binarize.m_nAboveValue = Case.at("above").get<unsigned char>();
    EXPECT_EQ(binarize.ApplyParam(rIn, rOut, Case.at("sizeX").get<long>(),
                                  Case.at("sizeY").get<long>(), Case.at("offset").get<long>()),
              0);
}

/// The length of the gradient, as the contrast of a finger is measured.
void RunEuclidLength(const json&, ClImage& rIn, ClImage& rOut) {
    ClImage Dx;
    ClImage Dy;
    ClIpFilterDGauss gauss;
    gauss.m_pInImage = &rIn;
    gauss.m_pOutImage = &Dx;
    gauss.m_nMode = ClIpFilterBase::ModeX;
    EXPECT_EQ(gauss.Apply(), 0);
    gauss.m_pOutImage = &Dy;
    gauss.m_nMode = ClIpFilterBase::ModeY;
    EXPECT_EQ(gauss.Apply(), 0);
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(Dx, Dy, rOut), 0);
}

struct StOperator {
    RunOperator m_pfnRun;
    int m_nCases;
};

const std::map<std::string, StOperator> caOperators = {
    {"ClIpFilterGauss", {RunGauss<ClIpFilterGauss>, 24}},
    {"ClIpFilterDGauss", {RunGauss<ClIpFilterDGauss>, 16}},
    {"ClIpUnsharpMasking", {RunUnsharpMasking, 8}},
    {"ClIpStretchRangeNoise", {RunStretchNoise, 8}},
    {"ClIpStretchRangeLocal", {RunStretchLocal, 8}},
    {"ClIpBinarizeLocal2", {RunBinarizeLocal, 8}},
    {"ClIpFilterMid", {RunFilter<ClIpFilterMid>, 32}},
    {"ClIpFilterMax", {RunFilterOfMode<ClIpFilterMax>, 16}},
    {"ClIpFilterMin", {RunFilterOfMode<ClIpFilterMin>, 16}},
    {"ClIpFilterMedian", {RunFilter<ClIpFilterMedian>, 16}},
    {"ClIpEuclidLength", {RunEuclidLength, 8}},
};

json Cases() {
    const TestSupport::Bytes aText = TestSupport::DataFile("operators/operators.json");
    return json::parse(aText.begin(), aText.end());
}

TEST(OperatorVectors, EqualTheResultsOfTheModel) {
    const json aCases = Cases();
    for (std::size_t i = 0; i < aCases.size(); ++i) {
        const auto found = caOperators.find(aCases[i].at("op").get<std::string>());
        ASSERT_NE(found, caOperators.end());
        ClTestImage in = Img(aCases[i].at("input").get<Rows>());
        ClImage out;
        found->second.m_pfnRun(aCases[i], in, out);
        EXPECT_EQ(Pixels(out), aCases[i].at("output").get<Rows>())
            << found->first << ", case " << i;
    }
}

TEST(OperatorVectors, AreAllRun) {
    std::map<std::string, int> aExpected;
    for (const auto& [Name, Operator] : caOperators)
        aExpected.emplace(Name, Operator.m_nCases);
    std::map<std::string, int> aCounted;
    for (const json& Case : Cases())
        ++aCounted[Case.at("op").get<std::string>()];
    EXPECT_EQ(aCounted, aExpected);
}

} // namespace
