// What the range stretchers publish.

#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpStretchRangeGlobalNoiseRemoving.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "support/PublishedParameters.h"

namespace {

using namespace TestSupport;

constexpr const char* cszOldFrom = "In: Input Range Start";
constexpr const char* cszOldTo = "In: Input Range End";
constexpr const char* cszNewFrom = "In: Stretch Range Start";
constexpr const char* cszNewTo = "In: Stretch Range End";

std::vector<StTreeRow> GlobalTree(ClIpStretchRangeGlobal& ip, const char* szOut) {
    return {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
            TreePointer("pOutImage", ip.m_pOutImage, ePfOut, szOut),
            TreeNumber("OldRangeFrom", ip.m_nOldRangeFrom, 255, cszOldFrom),
            TreeNumber("OldRangeTo", ip.m_nOldRangeTo, 0, cszOldTo),
            TreeNumber("NewRangeFrom", ip.m_nNewRangeFrom, 0, cszNewFrom),
            TreeNumber("NewRangeTo", ip.m_nNewRangeTo, 255, cszNewTo)};
}

std::vector<StFlatRow> GlobalFlat(ClIpStretchRangeGlobal& ip, const char* szOut) {
    return {FlatImage("InImage", ip.m_pInImage, "In: Original Image"),
            FlatImage("OutImage", ip.m_pOutImage, szOut, ceOut),
            FlatNumber("OldRangeFrom", ip.m_nOldRangeFrom, 255, cszOldFrom),
            FlatNumber("OldRangeTo", ip.m_nOldRangeTo, 0, cszOldTo),
            FlatNumber("NewRangeFrom", ip.m_nNewRangeFrom, 0, cszNewFrom),
            FlatNumber("NewRangeTo", ip.m_nNewRangeTo, 255, cszNewTo)};
}

TEST(PublishedStretching, GlobalPublishesItsRanges) {
    ClIpStretchRangeGlobal ip;
    ExpectTree(ip, GlobalTree(ip, "Out: Stretched Imaged"));
    ClIpStretchRangeGlobal flat;
    ExpectFlat(flat, GlobalFlat(flat, "Out: Stretched Imaged"));
}

TEST(PublishedStretching, GlobalIsAProcessor) {
    ExpectProcessor<ClIpStretchRangeGlobal>("ClIpStretchRangeGlobal");
    ExpectNoSettings(ClIpStretchRangeGlobal());
}

TEST(PublishedStretching, NoiseRemovingPublishesItsShares) {
    const char* szDark = "In: Noise Level For Dark Pixels";
    const char* szBright = "In: Noise Level For Bright Pixels";
    ClIpStretchRangeGlobalNoiseRemoving ip;
    std::vector<StTreeRow> aTree = GlobalTree(ip, "Out: Stretched Image");
    aTree.push_back(TreeNumber("DarkNoisePart", ip.m_dDarkNoisePart, 0.0, szDark));
    aTree.push_back(TreeNumber("BrightNoisePart", ip.m_dBrightNoisePart, 0.0, szBright));
    ExpectTree(ip, aTree);
    ClIpStretchRangeGlobalNoiseRemoving flat;
    std::vector<StFlatRow> aFlat = GlobalFlat(flat, "Out: Stretched Image");
    aFlat.push_back(FlatNumber("DarkNoisePart", flat.m_dDarkNoisePart, 0.0, szDark));
    aFlat.push_back(FlatNumber("BrightNoisePart", flat.m_dBrightNoisePart, 0.0, szBright));
    ExpectFlat(flat, aFlat);
}

TEST(PublishedStretching, NoiseRemovingIsAProcessor) {
    ExpectProcessor<ClIpStretchRangeGlobalNoiseRemoving>("ClIpStretchRangeGlobalNoiseRemoving");
    ExpectNoSettings(ClIpStretchRangeGlobalNoiseRemoving());
}

TEST(PublishedStretching, LocalPublishesItsSettings) {
    ClIpStretchRangeLocal ip;
    ExpectTree(ip,
               {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Input Image"),
                TreePointer("pOutImage", ip.m_pOutImage, ePfOut, "Out: Locally stretched image"),
                TreeNumber("nNewRangeFrom", ip.m_nNewRangeFrom, 0, "In: NewRangeFrom"),
                TreeNumber("nNewRangeTo", ip.m_nNewRangeTo, 255, "In: NewRangeTo"),
                TreeNumber("nFilterWidth", ip.m_nFilterWidth, 3, "In: FilterWidth"),
                TreeNumber("nMinContrast", ip.m_nMinContrast, 5, "In: MinContrast"),
                TreeNumber("nSubSampleRate", ip.m_nSubSampleRate, 4, "In: SubSampleRate"),
                TreeBool("bUseMinSmoothing", ip.m_bUseMinSmoothing, true),
                TreeBool("bUseMaxSmoothing", ip.m_bUseMaxSmoothing, false),
                TreePointer("pOptOutMinImage", ip.m_pOptOutMinImage, ePfOut),
                TreePointer("pOptOutMaxImage", ip.m_pOptOutMaxImage, ePfOut)});
    ClIpStretchRangeLocal flat;
    ExpectFlat(flat,
               {FlatImage("InImage", flat.m_pInImage, "In: Input Image"),
                FlatImage("OutImage", flat.m_pOutImage, "Out: Locally stretched image", ceOut),
                FlatNumber("NewRangeFrom", flat.m_nNewRangeFrom, 0, "In: NewRangeFrom"),
                FlatNumber("NewRangeTo", flat.m_nNewRangeTo, 255, "In: NewRangeTo"),
                FlatNumber("FilterWidth", flat.m_nFilterWidth, 3, "In: FilterWidth"),
                FlatNumber("MinContrast", flat.m_nMinContrast, 5, "In: MinContrast"),
                FlatNumber("SubSampleRate", flat.m_nSubSampleRate, 4, "In: SubSampleRate")});
}

TEST(PublishedStretching, LocalIsAProcessor) {
    ExpectProcessor<ClIpStretchRangeLocal>("ClIpStretchRangeLocal");
}

TEST(PublishedStretching, LocalTellsItsWidth) {
    ClIpStretchRangeLocal ip;
    ExpectSettings(ip, "W3");
    ip.m_nFilterWidth = 12345;
    ExpectSettings(ip, "W12345");
}

} // namespace
