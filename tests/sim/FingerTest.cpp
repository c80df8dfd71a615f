#include "sim/Finger.h"

#include "sim/Capture.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using sim::ClCapture;
using sim::ClDirtSettings;
using sim::ClFingerSettings;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClScannerSettings;
using sim::EPattern;

namespace {

constexpr double g_dBright = 230.0; ///< of the ideal scanner

ClCapture Press(const std::vector<ClFingerSettings>& aFingers, std::uint64_t nSeed) {
    return sim::CaptureFingers(ClScanner(1, ClScannerSettings()), aFingers, ClDirtSettings(),
                               nSeed);
}

ClCapture Press(const ClFingerSettings& Finger, std::uint64_t nSeed) {
    return Press(std::vector<ClFingerSettings>{Finger}, nSeed);
}

int Count(const ClRaster& Raster, unsigned char nValue) {
    return static_cast<int>(std::count(Raster.m_aPixels.begin(), Raster.m_aPixels.end(), nValue));
}

double MeanOnFinger(const ClCapture& Capture) {
    double dSum = 0.0;
    int nCount = 0;
    for (std::size_t n = 0; n < Capture.m_Ideal.m_aPixels.size(); ++n) {
        if (Capture.m_FingerArea.m_aPixels[n] == 0) {
            dSum += Capture.m_Ideal.m_aPixels[n];
            ++nCount;
        }
    }
    return dSum / nCount;
}

/// The share of the finger's area that is darker than halfway to black.
double DarkShare(const ClCapture& Capture) {
    int nDark = 0;
    for (std::size_t n = 0; n < Capture.m_Ideal.m_aPixels.size(); ++n)
        nDark += Capture.m_FingerArea.m_aPixels[n] == 0 && Capture.m_Ideal.m_aPixels[n] < 130;
    return static_cast<double>(nDark) / Count(Capture.m_FingerArea, 0);
}

/// 3 x 3 mean at one of the inner pixels.
double Smooth(const ClRaster& Raster, int x, int y) {
    double dSum = 0.0;
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i)
            dSum += Raster.At(x + i, y + j);
    return dSum / 9.0;
}

/// The ridge distance in a square block, from the crossings of its mean grey value. Straight
/// ridges of distance p and any direction cross h = 2 |sin| / p times per pixel of a row and
/// v = 2 |cos| / p times per pixel of a column, so that p = 2 / sqrt(h^2 + v^2).
double BlockPeriod(const ClRaster& Raster, int x0, int y0, int nSize) {
    double dMean = 0.0;
    for (int y = y0; y < y0 + nSize; ++y)
        for (int x = x0; x < x0 + nSize; ++x)
            dMean += Smooth(Raster, x, y) / (nSize * nSize);
    int nAcross = 0;
    int nDown = 0;
    for (int y = y0; y < y0 + nSize; ++y) {
        for (int x = x0; x < x0 + nSize; ++x) {
            const bool bDark = Smooth(Raster, x, y) < dMean;
            nAcross += bDark != (Smooth(Raster, x + 1, y) < dMean);
            nDown += bDark != (Smooth(Raster, x, y + 1) < dMean);
        }
    }
    const double h = static_cast<double>(nAcross) / (nSize * nSize);
    const double v = static_cast<double>(nDown) / (nSize * nSize);
    return 2.0 / std::sqrt(h * h + v * v);
}

/// Ridge distances of all blocks that lie in the finger's area, with a block around them.
std::vector<double> Periods(const ClCapture& Capture) {
    constexpr int nSize = 32;
    std::vector<double> aPeriods;
    for (int y = nSize; y + 2 * nSize < Capture.m_Ideal.m_nHeight; y += nSize / 2) {
        for (int x = nSize; x + 2 * nSize < Capture.m_Ideal.m_nWidth; x += nSize / 2) {
            const ClRaster& Area = Capture.m_FingerArea;
            if (Area.At(x - 16, y - 16) == 0 && Area.At(x + 48, y - 16) == 0 &&
                Area.At(x - 16, y + 48) == 0 && Area.At(x + 48, y + 48) == 0)
                aPeriods.push_back(BlockPeriod(Capture.m_Ideal, x, y, nSize));
        }
    }
    std::sort(aPeriods.begin(), aPeriods.end());
    return aPeriods;
}

/// Connected regions of value 0, with four neighbours.
int Regions(ClRaster Area) {
    int nRegions = 0;
    std::vector<std::pair<int, int>> aStack;
    for (int y = 0; y < Area.m_nHeight; ++y) {
        for (int x = 0; x < Area.m_nWidth; ++x) {
            if (Area.At(x, y) != 0)
                continue;
            ++nRegions;
            aStack.push_back({x, y});
            while (!aStack.empty()) {
                const auto [i, j] = aStack.back();
                aStack.pop_back();
                if (i < 0 || j < 0 || i >= Area.m_nWidth || j >= Area.m_nHeight ||
                    Area.At(i, j) != 0)
                    continue;
                Area.At(i, j) = 255;
                for (const auto& [di, dj] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
                    aStack.push_back({i + di, j + dj});
            }
        }
    }
    return nRegions;
}

} // namespace

TEST(SimFinger, RidgesAre8To11PixelsApartAt500Dpi) {
    for (const EPattern ePattern :
         {EPattern::eArch, EPattern::eLeftLoop, EPattern::eRightLoop, EPattern::eWhorl}) {
        ClFingerSettings Finger;
        Finger.m_ePattern = ePattern;
        const std::vector<double> aPeriods = Periods(Press(Finger, 3));

        ASSERT_GT(aPeriods.size(), 60U);
        const double dMedian = aPeriods[aPeriods.size() / 2];
        EXPECT_NEAR(dMedian, 0.47 * 500.0 / 25.4, 0.08 * 9.25);
        EXPECT_GT(aPeriods[aPeriods.size() / 20], 8.0);
        EXPECT_LT(aPeriods[aPeriods.size() - 1 - aPeriods.size() / 20], 11.0);
    }
}

TEST(SimFinger, RidgeDistanceFollowsItsSetting) {
    ClFingerSettings Finger;
    Finger.m_ePattern = EPattern::eArch;
    Finger.m_dPeriod = 0.44;
    const std::vector<double> aNarrow = Periods(Press(Finger, 4));
    Finger.m_dPeriod = 0.52;
    const std::vector<double> aWide = Periods(Press(Finger, 4));

    EXPECT_NEAR(aNarrow[aNarrow.size() / 2], 0.44 * 500.0 / 25.4, 0.6);
    EXPECT_NEAR(aWide[aWide.size() / 2], 0.52 * 500.0 / 25.4, 0.6);
}

// The outline lies between an ellipse (pi a b) and the rectangle around it (4 a b), bent by 5
// percent.
TEST(SimFinger, AreaIsOneRegionOfTheSizeOfTheFinger) {
    const ClFingerSettings Finger;
    const ClCapture Capture = Press(Finger, 5);
    const double dPixels = Finger.m_dHalfWidth * Finger.m_dHalfHeight * 19.685 * 19.685;
    const int nArea = Count(Capture.m_FingerArea, 0);

    EXPECT_EQ(nArea + Count(Capture.m_FingerArea, 255), 320 * 480);
    EXPECT_GT(nArea, 0.88 * M_PI * dPixels);
    EXPECT_LT(nArea, 1.10 * 4.0 * dPixels);
    EXPECT_EQ(Regions(Capture.m_FingerArea), 1);
}

TEST(SimFinger, AreaHoldsEverythingDark) {
    const ClCapture Capture = Press(ClFingerSettings(), 6);

    for (int y = 1; y < 479; ++y) {
        for (int x = 1; x < 319; ++x) {
            bool bNear = false;
            for (int j = -1; j <= 1; ++j)
                for (int i = -1; i <= 1; ++i)
                    bNear = bNear || Capture.m_FingerArea.At(x + i, y + j) == 0;
            if (!bNear) {
                ASSERT_EQ(Capture.m_Ideal.At(x, y), g_dBright) << x << " " << y;
            }
        }
    }
}

TEST(SimFinger, HasDarkRidgesAndBrightValleys) {
    const ClCapture Capture = Press(ClFingerSettings(), 7);
    const double dDark = DarkShare(Capture);

    EXPECT_GT(dDark, 0.25);
    EXPECT_LT(dDark, 0.60);
    int nBright = 0;
    for (std::size_t n = 0; n < Capture.m_Ideal.m_aPixels.size(); ++n)
        nBright += Capture.m_FingerArea.m_aPixels[n] == 0 && Capture.m_Ideal.m_aPixels[n] > 200;
    EXPECT_GT(nBright, 0.2 * Count(Capture.m_FingerArea, 0));
}

TEST(SimFinger, DryIsPalerAndWetIsDarkerThanNormal) {
    ClFingerSettings Dry;
    Dry.m_dDryness = 0.8;
    ClFingerSettings Wet;
    Wet.m_dWetness = 0.8;
    const double dNormal = MeanOnFinger(Press(ClFingerSettings(), 8));

    EXPECT_GT(MeanOnFinger(Press(Dry, 8)), dNormal + 8.0);
    EXPECT_LT(MeanOnFinger(Press(Wet, 8)), dNormal - 15.0);
}

TEST(SimFinger, PressureWidensTheRidges) {
    ClFingerSettings Light;
    Light.m_dPressure = 0.75;
    ClFingerSettings Firm;
    Firm.m_dPressure = 1.25;

    EXPECT_LT(DarkShare(Press(Light, 9)) + 0.10, DarkShare(Press(Firm, 9)));
}

TEST(SimFinger, LiesWhereItIsToldAndTurned) {
    ClFingerSettings Finger;
    Finger.m_dHalfWidth = 2.0;
    Finger.m_dHalfHeight = 8.0;
    Finger.m_dRotation = 30.0;
    Finger.m_Centre = {1.0, -2.0};
    const ClRaster Area = Press(Finger, 10).m_FingerArea;
    const auto At = [&](double dAlong, double dAcross) {
        const double c = std::cos(M_PI / 6);
        const double s = std::sin(M_PI / 6);
        const double x = 160.0 + 19.685 * (1.0 + c * dAcross - s * dAlong);
        const double y = 240.0 + 19.685 * (-2.0 + s * dAcross + c * dAlong);
        return Area.At(static_cast<int>(x + 0.5), static_cast<int>(y + 0.5));
    };

    EXPECT_EQ(At(7.0, 0.0), 0);
    EXPECT_EQ(At(-7.0, 0.0), 0);
    EXPECT_EQ(At(0.0, 1.7), 0);
    EXPECT_EQ(At(0.0, 2.6), 255);
    EXPECT_EQ(At(9.2, 0.0), 255);
}

TEST(SimFinger, MayReachOverTheEdgeOfThePlaten) {
    ClFingerSettings Finger;
    Finger.m_Centre.y = -11.0;
    const ClRaster Area = Press(Finger, 11).m_FingerArea;

    EXPECT_EQ(Area.At(160, 0), 0);
    EXPECT_EQ(Area.At(160, 479), 255);
}

TEST(SimFinger, SeveralFingersAreSeveralRegions) {
    ClFingerSettings Left;
    Left.m_dHalfWidth = 3.2;
    Left.m_Centre.x = -4.5;
    ClFingerSettings Right = Left;
    Right.m_Centre.x = 4.5;
    const ClCapture Capture = Press(std::vector<ClFingerSettings>{Left, Right}, 12);

    EXPECT_EQ(Regions(Capture.m_FingerArea), 2);
}

TEST(SimFinger, NoFingerLeavesAnEmptyArea) {
    const ClCapture Capture = Press(std::vector<ClFingerSettings>{}, 13);

    EXPECT_EQ(Count(Capture.m_FingerArea, 255), 320 * 480);
}

TEST(SimFinger, RefusesSettingsOutOfRange) {
    sim::ClPlate Plate;
    ClFingerSettings Period;
    Period.m_dPeriod = 0.6;
    ClFingerSettings Size;
    Size.m_dHalfWidth = 0.5;
    ClFingerSettings Dryness;
    Dryness.m_dDryness = -0.1;
    ClFingerSettings Rotation;
    Rotation.m_dRotation = 45.0;

    EXPECT_THROWS(sim::PaintFinger(Plate, Period, 1), ClException, -35,
                  "sim: a setting of the finger is out of range");
    EXPECT_THROWS(sim::PaintFinger(Plate, Size, 1), ClException, -35,
                  "sim: a setting of the finger is out of range");
    EXPECT_THROWS(sim::PaintFinger(Plate, Dryness, 1), ClException, -35,
                  "sim: a setting of the finger is out of range");
    EXPECT_THROWS(sim::PaintFinger(Plate, Rotation, 1), ClException, -35,
                  "sim: a setting of the finger is out of range");
}
