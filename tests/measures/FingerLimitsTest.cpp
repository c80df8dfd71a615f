// What no finger was seen on, what is no image, and what is any image.

#include "measures/Finger.h"

#include "measures/Pictures.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

using namespace pictures;
using measures::ClFingerMeasures;
using measures::ClGreyView;
using measures::ClRidgeMeasures;
using measures::LightTaken;
using measures::Measure;
using measures::MeasureFinger;

namespace {

bool IsNothing(const ClRidgeMeasures& m) {
    return m.m_nProfiles == 0 && !m.m_dContrast && !m.m_dRidgeWidth && !m.m_dValleyWidth &&
           !m.m_dRidgeShare && !m.m_dRidgeSpread && !m.m_dValleySpread && !m.m_dBrokenness &&
           !m.m_dPressure;
}

bool IsNothing(const ClFingerMeasures& m) {
    return !m.m_dArea && !m.m_dOffsetX && !m.m_dOffsetY && !m.m_dSaturated && !m.m_dDark &&
           IsNothing(m.m_Ridges);
}

/// Absent, or within the limits; no number is not.
bool IsWithin(const Measure& m, double dLow, double dHigh) {
    return !m || (*m >= dLow && *m <= dHigh);
}

void ExpectLimits(const ClFingerMeasures& m, const ClPicture& Picture) {
    const double dWidth = Picture.m_nWidth * cdMmPerSample;
    const double dHeight = Picture.m_nHeight * cdMmPerSample;
    EXPECT_TRUE(IsWithin(m.m_dArea, 0.0, dWidth * dHeight * (1.0 + 1e-12)));
    EXPECT_TRUE(IsWithin(m.m_dOffsetX, -0.5 * dWidth, 0.5 * dWidth));
    EXPECT_TRUE(IsWithin(m.m_dOffsetY, -0.5 * dHeight, 0.5 * dHeight));
    EXPECT_TRUE(IsWithin(m.m_dSaturated, 0.0, 1.0));
    EXPECT_TRUE(IsWithin(m.m_dDark, 0.0, 1.0));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dContrast, 20.0 / 255.0, 1.0));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dRidgeWidth, 0.0, 1.65));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dValleyWidth, 0.0, 1.65));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dRidgeShare, 0.0, 1.0));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dRidgeSpread, 0.0, 100.0));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dValleySpread, 0.0, 100.0));
    EXPECT_TRUE(IsWithin(m.m_Ridges.m_dBrokenness, 0.0, 1.0));
    EXPECT_EQ(m.m_Ridges.m_dContrast.has_value(), m.m_Ridges.m_nProfiles > 0);
}

ClPicture Noise(int nWidth, int nHeight, std::mt19937& rRandom) {
    ClPicture Picture(nWidth, nHeight, 0);
    for (unsigned char& rSample : Picture.m_aSamples)
        rSample = static_cast<unsigned char>(rRandom() >> 24);
    return Picture;
}

} // namespace

TEST(MeasuresLimits, NothingIsMeasurableWithoutAFinger) {
    const ClPicture Picture = RidgePicture(9.0, 4.0, 30.0);
    const ClPicture Mask(Picture.m_nWidth, Picture.m_nHeight, cnBackground);
    EXPECT_TRUE(IsNothing(MeasureFinger(Picture.View(), Mask.View(), cdDpi)));
    EXPECT_FALSE(LightTaken(Picture.View(), Mask.View()));
}

TEST(MeasuresLimits, NothingIsMeasurableWithoutSamples) {
    EXPECT_TRUE(IsNothing(MeasureFinger({}, {}, cdDpi)));
    EXPECT_FALSE(LightTaken({}, {}));
    const unsigned char nSample = 0;
    const ClGreyView NoLines{&nSample, 1, 0, 1};
    EXPECT_TRUE(IsNothing(MeasureFinger(NoLines, NoLines, cdDpi)));
    const ClPicture Picture(4, 4, 0);
    const ClGreyView Nowhere{nullptr, 4, 4, 4};
    EXPECT_TRUE(IsNothing(MeasureFinger(Picture.View(), Nowhere, cdDpi)));
    EXPECT_TRUE(IsNothing(MeasureFinger(Nowhere, Picture.View(), cdDpi)));
    EXPECT_FALSE(LightTaken(Picture.View(), Nowhere));
    EXPECT_FALSE(LightTaken(Nowhere, Picture.View()));
}

TEST(MeasuresLimits, OneSampleHasAnAreaAndNoRidges) {
    const ClPicture Picture(1, 1, 255);
    const ClFingerMeasures Measures =
        MeasureFinger(Picture.View(), WholeMask(Picture).View(), 254.0);
    EXPECT_NEAR(*Measures.m_dArea, 0.01, 1e-12);
    EXPECT_EQ(*Measures.m_dOffsetX, 0.0);
    EXPECT_EQ(*Measures.m_dOffsetY, 0.0);
    EXPECT_EQ(*Measures.m_dSaturated, 1.0);
    EXPECT_EQ(*Measures.m_dDark, 0.0);
    EXPECT_TRUE(IsNothing(Measures.m_Ridges));
}

TEST(MeasuresLimits, AWhiteFingerHasNoRidges) {
    const ClPicture White(100, 100, 255);
    const ClFingerMeasures Measures = MeasureFinger(White.View(), WholeMask(White).View(), cdDpi);
    EXPECT_TRUE(IsNothing(Measures.m_Ridges));
    EXPECT_EQ(*Measures.m_dSaturated, 1.0);
}

TEST(MeasuresLimits, LengthsNeedAResolution) {
    const ClPicture Picture = RidgePicture(9.0, 4.0, 30.0);
    const ClPicture Mask = WholeMask(Picture);
    const double dNaN = std::nan("");
    for (const double dDpi : {0.0, -500.0, 99.9, 2000.1, 1e300, dNaN}) {
        const ClFingerMeasures Measures = MeasureFinger(Picture.View(), Mask.View(), dDpi);
        EXPECT_FALSE(Measures.m_dArea) << dDpi;
        EXPECT_FALSE(Measures.m_dOffsetX) << dDpi;
        EXPECT_TRUE(IsNothing(Measures.m_Ridges)) << dDpi;
        EXPECT_TRUE(Measures.m_dDark) << dDpi;
    }
    for (const double dDpi : {100.0, 2000.0})
        EXPECT_TRUE(MeasureFinger(Picture.View(), Mask.View(), dDpi).m_dArea) << dDpi;
}

TEST(MeasuresLimits, NoLightIsTakenFromBlack) {
    const ClPicture Black(20, 20, 0);
    EXPECT_FALSE(LightTaken(Black.View(), WholeMask(Black).View()));
}

TEST(MeasuresLimits, ImageAndMaskAreOfOneSize) {
    const ClPicture Image(20, 20, 0);
    for (const ClPicture& Mask : {ClPicture(21, 20, 0), ClPicture(20, 19, 0)}) {
        EXPECT_THROW(MeasureFinger(Image.View(), Mask.View(), cdDpi), std::invalid_argument);
        EXPECT_THROW(LightTaken(Image.View(), Mask.View()), std::invalid_argument);
    }
}

TEST(MeasuresLimits, LinesMayBeFurtherApartThanTheyAreWide) {
    const ClPicture Picture = RidgePicture(9.0, 4.0, 30.0);
    const ClPicture Mask = WholeMask(Picture);
    ClPicture Wide(Picture.m_nWidth + 13, Picture.m_nHeight, 77);
    for (int y = 0; y < Picture.m_nHeight; ++y)
        for (int x = 0; x < Picture.m_nWidth; ++x)
            Wide.At(x, y) = Picture.View().At(x, y);
    ClGreyView View = Wide.View();
    View.m_nWidth = Picture.m_nWidth;
    const ClFingerMeasures Plain = MeasureFinger(Picture.View(), Mask.View(), cdDpi);
    const ClFingerMeasures Strided = MeasureFinger(View, Mask.View(), cdDpi);
    EXPECT_EQ(Strided.m_dDark, Plain.m_dDark);
    EXPECT_EQ(Strided.m_Ridges.m_dRidgeWidth, Plain.m_Ridges.m_dRidgeWidth);
    EXPECT_EQ(Strided.m_Ridges.m_dBrokenness, Plain.m_Ridges.m_dBrokenness);
}

TEST(MeasuresLimits, AnyTinyImageIsMeasuredWithinThem) {
    std::mt19937 Random(5);
    for (int nWidth = 1; nWidth <= 40; nWidth += 3)
        for (int nHeight = 1; nHeight <= 40; nHeight += 3) {
            const ClPicture Picture = Noise(nWidth, nHeight, Random);
            const ClPicture Mask = Noise(nWidth, nHeight, Random);
            ExpectLimits(MeasureFinger(Picture.View(), Mask.View(), cdDpi), Picture);
            ExpectLimits(MeasureFinger(Picture.View(), WholeMask(Picture).View(), cdDpi), Picture);
            EXPECT_TRUE(IsWithin(LightTaken(Picture.View(), Mask.View()), 0.0, 1.0));
        }
}

TEST(MeasuresLimits, NoiseHasNoDirectionAndIsMeasuredWithinThem) {
    std::mt19937 Random(6);
    const ClPicture Picture = Noise(150, 150, Random);
    const ClFingerMeasures Measures =
        MeasureFinger(Picture.View(), WholeMask(Picture).View(), cdDpi);
    ExpectLimits(Measures, Picture);
    ASSERT_GT(Measures.m_Ridges.m_nProfiles, 0U);
    // A third of the samples is dark, and somewhat less than half of their energy lies along.
    EXPECT_NEAR(*Measures.m_Ridges.m_dBrokenness, 0.5 / 3.0, 0.04);
}

TEST(MeasuresLimits, AMirroredFingerHasTheSameMeasures) {
    const ClPicture Picture = RidgePicture(9.3, 4.0, 35.0);
    ClPicture Mirrored = Picture;
    for (int y = 0; y < Picture.m_nHeight; ++y)
        for (int x = 0; x < Picture.m_nWidth; ++x)
            Mirrored.At(Picture.m_nWidth - 1 - x, y) = Picture.View().At(x, y);
    const ClPicture Mask = WholeMask(Picture);
    const ClFingerMeasures Plain = MeasureFinger(Picture.View(), Mask.View(), cdDpi);
    const ClFingerMeasures Other = MeasureFinger(Mirrored.View(), Mask.View(), cdDpi);
    EXPECT_EQ(Other.m_dDark, Plain.m_dDark);
    EXPECT_NEAR(*Other.m_Ridges.m_dRidgeWidth, *Plain.m_Ridges.m_dRidgeWidth, 0.001);
    EXPECT_NEAR(*Other.m_Ridges.m_dBrokenness, *Plain.m_Ridges.m_dBrokenness, 1e-9);
}
