/// Dots drawn by hand.

#include "diagnosis/DotShape.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace diagnosis;

namespace {

constexpr StDensity cEven{20.0, 20.0};
constexpr StDensity cRaw{20.0, 40.0};

/// What `darkness(dx, dy)` leaves of a light of 200, millimetres from a place; each pixel is the
/// mean of 8 x 8 samples.
template <class Darkness>
StGrey Drawn(const StPoint& Centre, const StDensity& Density, Darkness darkness) {
    StGrey Image{80, 100, {}};
    for (int y = 0; y < Image.m_nHeight; ++y)
        for (int x = 0; x < Image.m_nWidth; ++x) {
            double dSum = 0.0;
            for (int j = 0; j < 8; ++j)
                for (int i = 0; i < 8; ++i)
                    dSum += darkness((x + (i - 3.5) / 8.0 - Centre.m_dX) / Density.m_dX,
                                     (y + (j - 3.5) / 8.0 - Centre.m_dY) / Density.m_dY);
            Image.m_aSamples.push_back(
                static_cast<unsigned char>(std::lround(200.0 * (1.0 - dSum / 64.0))));
        }
    return Image;
}

double Ellipse(double dx, double dy, double dHalfX, double dHalfY, double dDarkness) {
    return std::hypot(dx / dHalfX, dy / dHalfY) < 1.0 ? dDarkness : 0.0;
}

} // namespace

TEST(DiagnosisDotShape, MeasuresARoundDot) {
    for (const StDensity& Density : {cEven, cRaw}) {
        const StPoint Centre{40.3, 50.7};
        const StGrey Image = Drawn(
            Centre, Density, [](double dx, double dy) { return Ellipse(dx, dy, 0.4, 0.4, 0.75); });
        const StDotShape Shape = MeasureDot(Image, {40.9, 50.2}, Density);

        EXPECT_NEAR(Shape.m_GreyCentre.m_dX, Centre.m_dX, 0.02);
        EXPECT_NEAR(Shape.m_GreyCentre.m_dY, Centre.m_dY, 0.02);
        EXPECT_NEAR(Shape.m_dContrast, 0.75, 0.005);
        EXPECT_NEAR(Shape.m_dDiameter, 0.8, 0.01);
        EXPECT_NEAR(Shape.m_dRoundness, 1.0, 0.035);
    }
}

TEST(DiagnosisDotShape, MeasuresHowRoundADotIs) {
    const StGrey Image = Drawn(
        {40.0, 50.0}, cRaw, [](double dx, double dy) { return Ellipse(dx, dy, 0.45, 0.36, 0.75); });
    const StDotShape Shape = MeasureDot(Image, {40.0, 50.0}, cRaw);

    EXPECT_NEAR(Shape.m_dRoundness, 0.8, 0.035);
    EXPECT_NEAR(Shape.m_dDiameter, 2.0 * std::sqrt(0.45 * 0.36), 0.015);
}

TEST(DiagnosisDotShape, SeesADotTurnedAsRoundAsUpright) {
    const StGrey Image = Drawn({40.0, 50.0}, cRaw, [](double dx, double dy) {
        const double u = std::sqrt(0.5) * (dx + dy);
        const double v = std::sqrt(0.5) * (dx - dy);
        return Ellipse(u, v, 0.45, 0.36, 0.75);
    });

    EXPECT_NEAR(MeasureDot(Image, {40.0, 50.0}, cRaw).m_dRoundness, 0.8, 0.035);
}

// The left half is half as dark: its weight is that of a quarter. A half disc has its centre
// 4 r / 3 pi = 0.17 mm off the middle; (0.17 x (0.675 - 0.3)) / (0.675 + 0.3), after a tenth is
// taken from each, is 0.065 mm. By area alone it would be 0.
TEST(DiagnosisDotShape, WeighsByDarkness) {
    const StGrey Image = Drawn({40.0, 50.0}, cEven, [](double dx, double dy) {
        return Ellipse(dx, dy, 0.4, 0.4, dx > 0.0 ? 0.75 : 0.375);
    });
    const double dOff = 4.0 * 0.4 / (3.0 * M_PI);
    const double dLight = 0.75;
    const double dMiddle = MeasureDot(Image, {40.0, 50.0}, cEven).m_dContrast;
    const double dIgnored = 0.1 * dMiddle;
    const double dExpected = dOff * ((dLight - dIgnored) - (0.375 - dIgnored)) /
                             ((dLight - dIgnored) + (0.375 - dIgnored));

    EXPECT_NEAR(MeasureDot(Image, {40.0, 50.0}, cEven).m_GreyCentre.m_dX, 40.0 + 20.0 * dExpected,
                0.1);
}

TEST(DiagnosisDotShape, LooksPastItsNeighbours) {
    const StGrey Image = Drawn({40.0, 50.0}, cEven, [](double dx, double dy) {
        return Ellipse(dx, dy, 0.4, 0.4, 0.75) + Ellipse(dx - 1.5, dy, 0.4, 0.4, 0.75);
    });

    EXPECT_NEAR(MeasureDot(Image, {40.0, 50.0}, cEven).m_GreyCentre.m_dX, 40.0, 0.02);
}

TEST(DiagnosisDotShape, IsNotANumberWhereNothingDarkStands) {
    const StGrey Even = Drawn({40.0, 50.0}, cEven, [](double, double) { return 0.0; });

    EXPECT_TRUE(std::isnan(MeasureDot(Even, {40.0, 50.0}, cEven).m_GreyCentre.m_dX));
    EXPECT_TRUE(std::isnan(MeasureDot(Even, {40.0, 50.0}, cEven).m_dRoundness));
}

TEST(DiagnosisDotShape, StaysWithinTheImage) {
    const StGrey Image = Drawn(
        {0.0, 99.0}, cEven, [](double dx, double dy) { return Ellipse(dx, dy, 0.4, 0.4, 0.75); });

    EXPECT_NEAR(MeasureDot(Image, {0.0, 99.0}, cEven).m_dContrast, 0.75, 0.005);
    EXPECT_TRUE(std::isnan(MeasureDot(Image, {-500.0, 50.0}, cEven).m_dContrast));
    EXPECT_TRUE(std::isnan(MeasureDot(Image, {40.0, 5000.0}, cEven).m_dContrast));
}
