#include "apps/qk7/Measures.h"

#include "qk7/Direct.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using measures::ClFingerMeasures;
using measures::ClGreyView;
using qk7::Bytes;
using qk7::ClHandle;
using qk7::MeasureCapture;
using qk7::MeasureFinger;
using qk7::MeasurePlaten;
using qk7::StFingerMeasures;

namespace {

constexpr int cnWidth = 101; // lines are padded by three bytes
constexpr int cnHeight = 120;
constexpr std::size_t cnPixels = 40 + 1024;
constexpr std::size_t cnPelsX = 24;

void SetPels(Bytes& rBlock, unsigned int nPelsX, unsigned int nPelsY) {
    for (std::size_t n = 0; n < 4; ++n) {
        rBlock[cnPelsX + n] = static_cast<unsigned char>(nPelsX >> (8 * n));
        rBlock[cnPelsX + 4 + n] = static_cast<unsigned char>(nPelsY >> (8 * n));
    }
}

/// Upright ridges at 500 dots per inch.
Bytes RidgeBlock() {
    Bytes block = GreyBlock(cnWidth, cnHeight);
    SetPels(block, 19685, 19685);
    for (std::size_t n = cnPixels; n < block.size(); ++n)
        block[n] = (n - cnPixels) % 104 / 4 % 2 == 0 ? 20 : 220;
    return block;
}

Bytes MaskBlock(unsigned char nGrey) {
    Bytes block = GreyBlock(cnWidth, cnHeight);
    std::fill(block.begin() + cnPixels, block.end(), nGrey);
    return block;
}

bool IsMeasured(const StFingerMeasures& Measures) {
    return Measures.m_Print.m_dDark.has_value();
}

} // namespace

TEST(Qk7Measures, AreThoseOfTheSamplesInTheBlock) {
    const Bytes block = RidgeBlock();
    const Bytes mask = MaskBlock(0);
    const ClGreyView view{&block[cnPixels], cnWidth, cnHeight, 104};
    const ClGreyView maskView{&mask[cnPixels], cnWidth, cnHeight, 104};
    const ClFingerMeasures expected = measures::MeasureFinger(view, maskView, 19685 * 0.0254);

    const StFingerMeasures told = MeasureFinger(block, mask, block);

    ASSERT_TRUE(expected.m_Ridges.m_dPressure);
    EXPECT_NEAR(*told.m_Print.m_dArea, *expected.m_dArea, 1e-9);
    EXPECT_EQ(told.m_Print.m_dDark, expected.m_dDark);
    EXPECT_EQ(told.m_Print.m_Ridges.m_dRidgeShare, expected.m_Ridges.m_dRidgeShare);
    EXPECT_EQ(told.m_dLightTaken, measures::LightTaken(view, maskView));
    EXPECT_EQ(MeasurePlaten(block)->m_dBrightness, measures::MeasurePlaten(view)->m_dBrightness);
}

TEST(Qk7Measures, AreNoneOfBlocksThatAreNotPlainGrey) {
    const Bytes mask = MaskBlock(0);
    ASSERT_TRUE(IsMeasured(MeasureFinger(RidgeBlock(), mask, RidgeBlock())));
    Bytes compressed = RidgeBlock();
    compressed[16] = 1;
    Bytes inverted = RidgeBlock();
    inverted[40] = 255;
    Bytes cutOff = RidgeBlock();
    cutOff.pop_back();
    Bytes few = RidgeBlock();
    few[32] = 2; // colours
    Bytes coloured = RidgeBlock();
    coloured[14] = 24;
    Bytes topDown = RidgeBlock();
    for (std::size_t n = 8; n < 12; ++n)
        topDown[n] = 255; // a height of -1
    for (const Bytes& block : {compressed, inverted, cutOff, few, coloured, topDown}) {
        EXPECT_FALSE(IsMeasured(MeasureFinger(block, mask, block)));
        EXPECT_FALSE(IsMeasured(MeasureFinger(RidgeBlock(), block, RidgeBlock())));
        EXPECT_FALSE(MeasurePlaten(block));
    }
}

TEST(Qk7Measures, AreNoneWhereImageAndMaskDifferInSize) {
    EXPECT_FALSE(IsMeasured(
        MeasureFinger(GreyBlock(100, 120), MaskBlock(0), GreyBlock(cnWidth, cnHeight - 1))));
}

TEST(Qk7Measures, HaveNoLengthsWhereTheAxesDiffer) {
    Bytes block = RidgeBlock();
    SetPels(block, 19685, 39735);
    const StFingerMeasures told = MeasureFinger(block, MaskBlock(0), block);
    EXPECT_FALSE(told.m_Print.m_dArea);
    EXPECT_TRUE(told.m_Print.m_dDark);
}

TEST(Qk7Measures, LeaveOptionsAndLevelsAsTheyWere) {
    ClHandle handle;
    handle.SetData(Record());
    handle.SetOption("MaskIsOutput=true");
    const Bytes before = handle.Calibrate(Capture(), 0);
    const auto levels = handle.Levels();

    MeasureCapture(handle, Capture(), 0);

    EXPECT_TRUE(handle.IsEnabled("DynamicFingerMask"));
    EXPECT_TRUE(handle.IsEnabled("MaskIsOutput"));
    EXPECT_EQ(handle.Levels().m_dDirt, levels.m_dDirt);
    EXPECT_EQ(handle.Levels().m_dDryFinger, levels.m_dDryFinger);
    EXPECT_EQ(handle.Calibrate(Capture(), 0), before);
}

TEST(Qk7Measures, AreToldWithWhatIsNotMeasurable) {
    const StFingerMeasures nothing = MeasureFinger(RidgeBlock(), MaskBlock(255), RidgeBlock());
    const auto json = qk7::FingerJson(nothing);
    EXPECT_EQ(json.size(), 14U);
    for (const auto& value : json)
        EXPECT_TRUE(value.is_null());
    EXPECT_EQ(qk7::FingerText(nothing).find("area not measurable"), 9U);
    EXPECT_TRUE(qk7::PlatenJson(std::nullopt).is_null());
    EXPECT_EQ(qk7::PlatenText(std::nullopt), "  platen: not measurable\n");
}

TEST(Qk7Measures, AreTheNumbersInTextAndJson) {
    StFingerMeasures m;
    m.m_Print.m_dArea = 150.04;
    m.m_Print.m_dOffsetX = -0.125;
    m.m_Print.m_dOffsetY = 1.5;
    m.m_Print.m_dSaturated = 0.0525;
    m.m_Print.m_dDark = 0.25;
    m.m_Print.m_Ridges = {0.9, 0.24, 0.26, 0.48, 0.21, 0.19, 0.0123, 0.44, 7};
    m.m_dLightTaken = 0.7;
    EXPECT_EQ(qk7::FingerText(m),
              "  print: area 150.0 mm2, offset to the right -0.12 mm, down 1.50 mm, "
              "saturated 5.2 percent, dark 25.0 percent\n"
              "  ridges: contrast 0.900, ridge width 0.240 mm, valley width 0.260 mm, "
              "ridge share 0.480, spread of ridges 0.210, of valleys 0.190\n"
              "  skin: brokenness 0.0123, pressure 0.440, light taken 0.700\n");
    EXPECT_EQ(qk7::FingerJson(m).dump(),
              R"({"area_mm2":150.04,"offset_right_mm":-0.125,"offset_down_mm":1.5,)"
              R"("saturated_share":0.0525,"dark_share":0.25,"ridge_contrast":0.9,)"
              R"("ridge_width_mm":0.24,"valley_width_mm":0.26,"ridge_share":0.48,)"
              R"("ridge_spread":0.21,"valley_spread":0.19,"brokenness":0.0123,"pressure":0.44,)"
              R"("light_taken":0.7})");
}
