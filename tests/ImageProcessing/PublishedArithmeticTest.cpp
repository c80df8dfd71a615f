// What the frames with two inputs and the pixel arithmetic publish, in both channels.

#include "ImageProcessing/IpAbs.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpArithmetic2to1Base.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpMax.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/IpSubtract.h"
#include "Tools/Allocate.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"

namespace {

using TestSupport::caPixelTypeNames;
using TestSupport::ceOut;
using TestSupport::ExpectFlat;
using TestSupport::ExpectNoSettings;
using TestSupport::ExpectProcessor;
using TestSupport::ExpectSettings;
using TestSupport::ExpectTree;
using TestSupport::FlatEnum;
using TestSupport::FlatNumber;
using TestSupport::NamedValues;
using TestSupport::StFlatRow;
using TestSupport::StTreeRow;
using TestSupport::TreeEnum;
using TestSupport::TreeNumber;
using TestSupport::TreePointer;

const NamedValues caTrueFalse = {{1, "true"}, {0, "false"}};
const NamedValues caModes = {{0, "ModeCut"}, {1, "ModeScale"}, {2, "ModeEnlarge"}};
const NamedValues caDataRanges = {
    {0, "DataDependent"}, {1, "InputDependent"}, {2, "UserDependent"}};

constexpr const char* cszIn1 = "In1: Original Image";
constexpr const char* cszIn2 = "In2: 2nd Original Image";
constexpr const char* cszOut = "Out: Output Image";
constexpr const char* cszType = "In: OutImage Datatype";
constexpr const char* cszEqual = "Bool: Size must be equal";
constexpr const char* cszFill = "Double: Fillcolor for Offset-Images";
constexpr const char* cszX = "Long: Offset of Image2 to Image1 in x-direction";
constexpr const char* cszY = "Long: Offset of Image2 to Image1 in y-direction";

/// The rows of the frame for two images, and those of an operator behind them.
std::vector<StTreeRow> PairTree(ClIp2to1Base& ip, const std::vector<StTreeRow>& aMore = {}) {
    std::vector<StTreeRow> aRows = {
        TreePointer("pInImage1", ip.m_pInImage1, ePfIn, cszIn1),
        TreePointer("pInImage2", ip.m_pInImage2, ePfIn, cszIn2),
        TreePointer("pOutImage", ip.m_pOutImage, ePfOut, cszOut),
        TreeEnum("OutImageType", ip.m_nOutImageType, 255, caPixelTypeNames, cszType),
        TreeEnum("SizeMustBeEqual", ip.m_bSizeMustBeEqual, 1, caTrueFalse, cszEqual),
        TreeNumber("FillColor", ip.m_dFillColor, 0.0, cszFill),
        TreeNumber("OffsetX", ip.m_nOffsetX, 0, cszX),
        TreeNumber("OffsetY", ip.m_nOffsetY, 0, cszY)};
    aRows.insert(aRows.end(), aMore.begin(), aMore.end());
    return aRows;
}

std::vector<StFlatRow> PairFlat(ClIp2to1Base& ip, const std::vector<StFlatRow>& aMore = {}) {
    std::vector<StFlatRow> aRows = {
        TestSupport::FlatImage("InImage1", ip.m_pInImage1, cszIn1),
        TestSupport::FlatImage("InImage2", ip.m_pInImage2, cszIn2),
        TestSupport::FlatImage("OutImage", ip.m_pOutImage, cszOut, ceOut),
        FlatEnum("OutImageType", ip.m_nOutImageType, 255, caPixelTypeNames, cszType),
        FlatEnum("SizeMustBeEqual", ip.m_bSizeMustBeEqual, 1, caTrueFalse, cszEqual),
        FlatNumber("FillColor", ip.m_dFillColor, 0.0, cszFill),
        FlatNumber("OffsetX", ip.m_nOffsetX, 0, cszX),
        FlatNumber("OffsetY", ip.m_nOffsetY, 0, cszY)};
    aRows.insert(aRows.end(), aMore.begin(), aMore.end());
    return aRows;
}

/// The rows of the frame for one image, and those of an operator behind them.
std::vector<StTreeRow> SingleTree(NewIpBase::ClIp1to1Base& ip,
                                  const std::vector<StTreeRow>& aMore = {}) {
    std::vector<StTreeRow> aRows = {
        TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
        TreePointer("pOutImage", ip.m_pOutImage, ePfOut, cszOut)};
    aRows.insert(aRows.end(), aMore.begin(), aMore.end());
    return aRows;
}

std::vector<StFlatRow> SingleFlat(NewIpBase::ClIp1to1Base& ip,
                                  const std::vector<StFlatRow>& aMore = {}) {
    std::vector<StFlatRow> aRows = {
        TestSupport::FlatImage("InImage", ip.m_pInImage, "In: Original Image"),
        TestSupport::FlatImage("OutImage", ip.m_pOutImage, cszOut, ceOut)};
    aRows.insert(aRows.end(), aMore.begin(), aMore.end());
    return aRows;
}

TEST(PublishedArithmetic, AddPublishesItsMode) {
    ClIpAdd add;
    ExpectTree(add,
               PairTree(add, {TreeEnum("Mode", add.m_eMode, 1, caModes, "In: Addition Mode")}));
    ExpectFlat(add,
               PairFlat(add, {FlatEnum("Mode", add.m_eMode, 1, caModes, "In: Addition Mode")}));
    ExpectProcessor<ClIpAdd>("ClIpAdd");
    ExpectNoSettings(ClIpAdd());
}

TEST(PublishedArithmetic, SubtractPublishesItsRange) {
    ClIpSubtract subtract;
    ExpectTree(subtract, PairTree(subtract, {TreeNumber("LowerBound", subtract.m_dLowerBound, 0.0),
                                             TreeNumber("UpperBound", subtract.m_dUpperBound, 0.0),
                                             TreeEnum("Data Output Range", subtract.m_eDataRange, 0,
                                                      caDataRanges)}));
    ExpectFlat(subtract, PairFlat(subtract, {FlatNumber("LowerBound", subtract.m_dLowerBound, 0.0),
                                             FlatNumber("UpperBound", subtract.m_dUpperBound, 0.0),
                                             FlatEnum("Data Output Range", subtract.m_eDataRange, 0,
                                                      caDataRanges)}));
    ExpectProcessor<ClIpSubtract>("ClIpSubtract");
    ExpectNoSettings(ClIpSubtract());
}

TEST(PublishedArithmetic, MaxPublishesTheFrameAlone) {
    ClIpMax max;
    ExpectTree(max, PairTree(max));
    ExpectFlat(max, PairFlat(max));
    ExpectProcessor<ClIpMax>("ClIpMax");
    ExpectNoSettings(ClIpMax());
}

TEST(PublishedArithmetic, AbsAndInvertPublishTheFrameAlone) {
    ClIpAbs abs;
    ExpectTree(abs, SingleTree(abs));
    ExpectFlat(abs, SingleFlat(abs));
    ExpectProcessor<ClIpAbs>("ClIpAbs");
    ExpectNoSettings(ClIpAbs());
    ClIpInvert invert;
    ExpectTree(invert, SingleTree(invert));
    ExpectFlat(invert, SingleFlat(invert));
    ExpectProcessor<ClIpInvert>("ClIpInvert");
    ExpectNoSettings(ClIpInvert());
}

TEST(PublishedArithmetic, OffsetPublishesItsOffset) {
    ClIpOffset offset;
    ExpectTree(offset, SingleTree(offset, {TreeNumber("Offset", offset.m_dOffset, 0.0,
                                                      "In: Offset Value")}));
    ExpectFlat(offset, SingleFlat(offset, {FlatNumber("Offset", offset.m_dOffset, 0.0,
                                                      "In: Offset Value", -255.0, 255.0)}));
    ExpectProcessor<ClIpOffset>("ClIpOffset");
}

TEST(PublishedArithmetic, ScalePublishesItsFactor) {
    ClIpScale scale;
    ExpectTree(scale, SingleTree(scale, {TreeNumber("dScaleFactor", scale.m_dScaleFactor, 1.0,
                                                    "In: Grey Value Multiplier")}));
    ExpectFlat(scale, SingleFlat(scale, {FlatNumber("ScaleFactor", scale.m_dScaleFactor, 1.0,
                                                    "In: Grey Value Multiplier")}));
    ExpectProcessor<ClIpScale>("ClIpScale");
}

class ClIpBytes : public ClIpArithmetic2to1Base {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpBytes>(); }
    const char* Name() const override { return "ClIpBytes"; }
};

TEST(PublishedArithmetic, TheFrameOfBytesPublishesItsImages) {
    ClIpBytes ip;
    ExpectTree(ip, {TreePointer("pInImage1", ip.m_pInImage1, ePfIn, cszIn1),
                    TreePointer("pInImage2", ip.m_pInImage2, ePfIn, cszIn2),
                    TreePointer("pOutImage", ip.m_pOutImage, ePfOut, cszOut)});
    ExpectFlat(ip, {TestSupport::FlatImage("InImage1", ip.m_pInImage1, cszIn1),
                    TestSupport::FlatImage("InImage2", ip.m_pInImage2, cszIn2),
                    TestSupport::FlatImage("OutImage", ip.m_pOutImage, cszOut, ceOut)});
    ExpectProcessor<ClIpBytes>("ClIpBytes");
}

// Settings as text

/// Settings with digits behind the point where the input has floating-point samples.
template <class Processor>
void ExpectDigits(Processor& ip, const char* szWithout, const char* szWith) {
    ExpectSettings(ip, szWithout);
    for (unsigned char nType : TestSupport::caPixelTypes) {
        TestSupport::ClTestImage image = TestSupport::FlatImage(nType, 1, 1, 1, 0);
        ip.m_pInImage = &image;
        ExpectSettings(ip, ClImage::IsFloat(nType) ? szWith : szWithout);
    }
}

TEST(PublishedArithmetic, OffsetSaysItsOffset) {
    ClIpOffset offset;
    offset.m_dOffset = -12.75;
    ExpectDigits(offset, "Offset = -13", "Offset = -12.7500");
}

TEST(PublishedArithmetic, ScaleSaysItsFactor) {
    ClIpScale scale;
    ExpectDigits(scale, "ScaleFactor = 1", "ScaleFactor = 1.0000");
    scale.m_pInImage = nullptr;
    scale.m_dScaleFactor = 2.2;
    ExpectDigits(scale, "ScaleFactor = 2", "ScaleFactor = 2.2000");
}

TEST(PublishedArithmetic, TheFrameOfBytesSaysTheSignOfImage1) {
    ClIpBytes ip;
    ExpectSettings(ip, "Unknown Yet");
    TestSupport::ClTestImage image = TestSupport::FlatImage(ClImage::eUInt8, 1, 1, 1, 0);
    ip.m_pInImage1 = &image;
    ExpectSettings(ip, "Unsigned");
    TestSupport::ClTestImage sign = TestSupport::FlatImage(ClImage::eInt8, 1, 1, 1, 0);
    ip.m_pInImage1 = &sign;
    ExpectSettings(ip, "Signed");
}

// Copies

TEST(PublishedArithmetic, SettingsAreCopiedWithoutImages) {
    ClIpSubtract from;
    ClIpSubtract to;
    ClImage image;
    from.m_pInImage1 = &image;
    from.m_eDataRange = ClIpSubtract::UserDependent;
    from.m_dUpperBound = 7.5;
    from.m_bSizeMustBeEqual = false;
    from.m_nOffsetY = -3;
    from.CopyParametersTo(to);
    EXPECT_EQ(to.m_pInImage1, nullptr);
    EXPECT_EQ(to.m_eDataRange, ClIpSubtract::UserDependent);
    EXPECT_EQ(to.m_dUpperBound, 7.5);
    EXPECT_FALSE(to.m_bSizeMustBeEqual);
    EXPECT_EQ(to.m_nOffsetY, -3);
}

} // namespace
