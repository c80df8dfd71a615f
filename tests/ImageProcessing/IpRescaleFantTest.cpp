// The area-weighted resampling in two passes.

#include "ImageProcessing/NaiveRescale.h"
#include "Tools/ProfileTimer.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using TestSupport::caByteTypes;
using TestSupport::caRescaleSizes;
using TestSupport::ClTestImage;
using TestSupport::Img;
using TestSupport::NaiveFant;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RescaledToSize;
using TestSupport::Rows;
using TestSupport::StSizes;

constexpr auto ceFant = ClIpRescale::ModeBiLinearFantMar;

TEST(IpRescaleFant, EqualsAreaWeightsAtManySizes) {
    for (unsigned char nType : caByteTypes)
        for (const StSizes& s : caRescaleSizes) {
            ClTestImage in = RandomImage(nType, s.m_nInWidth, s.m_nInHeight, 1, 1);
            EXPECT_EQ(RescaledToSize(in, s.m_nOutWidth, s.m_nOutHeight, ceFant),
                      NaiveFant(Pixels(in), s.m_nOutWidth, s.m_nOutHeight))
                << s.m_nInWidth << " x " << s.m_nInHeight;
        }
}

TEST(IpRescaleFant, EqualsAreaWeightsBeyondATile) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 71, 67, 1, 2);
    EXPECT_EQ(RescaledToSize(in, 45, 90, ceFant), NaiveFant(Pixels(in), 45, 90));
}

TEST(IpRescaleFant, MeansByHand) {
    ClTestImage in = Img({{0, 100, 200}});
    // two cells of 1.5 samples; four of 0.75: (0), (0 * 0.25 + 100 * 0.5) / 0.75, ...
    EXPECT_EQ(RescaledToSize(in, 2, 1, ceFant), Rows({{33, 166}}));
    EXPECT_EQ(RescaledToSize(in, 4, 1, ceFant), Rows({{0, 66, 133, 200}}));
    ClTestImage negative = Img(ClImage::eInt8, {{0, -10, -20}});
    EXPECT_EQ(RescaledToSize(negative, 2, 1, ceFant), Rows({{-3, -16}})); // toward zero
}

TEST(IpRescaleFant, RepeatsWholePixelsForWholeFactors) {
    ClTestImage in = Img({{1, 2}, {3, 4}});
    EXPECT_EQ(
        RescaledToSize(in, 4, 6, ceFant),
        Rows({{1, 1, 2, 2}, {1, 1, 2, 2}, {1, 1, 2, 2}, {3, 3, 4, 4}, {3, 3, 4, 4}, {3, 3, 4, 4}}));
}

TEST(IpRescaleFant, HasTwoResamplersThatDoTheSame) {
    ClIpRescale rescale;
    for (unsigned char nType : caByteTypes) {
        unsigned char anIn[2 * 5] = {0, 50, 100, 150, 255, 7, 200, 3, 128, 127};
        unsigned char anFirst[2 * 3] = {};
        unsigned char anSecond[2 * 3] = {};
        rescale.BilinearResample(nType, anIn, 5, 2, 3, anFirst);
        rescale.BilinearResample2(nType, anIn, 5, 2, 3, anSecond);
        EXPECT_TRUE(std::equal(anFirst, anFirst + 6, anSecond));
    }
}

TEST(IpRescaleFant, FlipsLinesToColumns) {
    const unsigned char anIn[6] = {1, 2, 3, 4, 5, 6};
    unsigned char anOut[6] = {};
    ClIpRescale rescale;
    rescale.FlipXY(anIn, 3, 2, anOut);
    const std::vector<unsigned char> aExpected = {1, 4, 2, 5, 3, 6};
    EXPECT_EQ(std::vector<unsigned char>(anOut, anOut + 6), aExpected);
}

/// Notes the marks of a run.
class ClNotingTimer : public ClProfileTimer {
public:
    ClNotingTimer() { g_pProfileTimer = this; }
    ~ClNotingTimer() override { g_pProfileTimer = nullptr; }
    void TimerStart(const char* pFormat, ...) override {
        m_aMarks.push_back(std::string("+") + (pFormat != nullptr ? pFormat : ""));
    }
    void TimerStop(const char* pFormat, ...) override {
        m_aMarks.push_back(std::string("-") + pFormat);
    }
    std::vector<std::string> m_aMarks;
};

TEST(IpRescaleFant, TimesItsSteps) {
    ClNotingTimer timer;
    ClTestImage in = Img({{1, 2}, {3, 4}});
    RescaledToSize(in, 3, 3, ceFant);
    EXPECT_EQ(timer.m_aMarks,
              std::vector<std::string>({"+", "+Convert", "-Convert", "+Resample", "-Resample",
                                        "+FlipXY", "-FlipXY", "+Resample", "-Resample", "+FlipXY",
                                        "-FlipXY", "+Convert", "-Convert", "-%s %s"}));
}

TEST(IpRescaleFant, TimesTheOtherResamplerUnderItsName) {
    ClNotingTimer timer;
    ClIpRescale rescale;
    const unsigned char nIn = 5;
    unsigned char nOut = 0;
    rescale.BilinearResample2(ClImage::eUInt8, &nIn, 1, 1, 1, &nOut);
    EXPECT_EQ(nOut, 5);
    EXPECT_EQ(timer.m_aMarks, std::vector<std::string>({"+Resample 2", "-Resample 2"}));
}

} // namespace
