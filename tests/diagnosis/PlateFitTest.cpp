/// Plates of known size, rotation and skew.

#include "diagnosis/PlateFit.h"

#include "diagnosis/Patterns.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using namespace diagnosis;
using namespace TestSupport;

namespace {

constexpr double cdRadians = M_PI / 180.0;

} // namespace

TEST(DiagnosisPlateFit, FindsNothingOnANominalScanner) {
    const StPlateFit Plate = FitPlate(MappedRecord([](const StPoint& p) { return p; }));

    for (const StAffine& Affine : {Plate.m_Whole, Plate.m_Middle}) {
        EXPECT_NEAR(Affine.m_dScaleX, 1.0, 1e-9);
        EXPECT_NEAR(Affine.m_dScaleY, 1.0, 1e-9);
        EXPECT_NEAR(Affine.m_dRotation, 0.0, 1e-9);
        EXPECT_NEAR(Affine.m_dShear, 0.0, 1e-9);
    }
    EXPECT_NEAR(Plate.m_dDistortionRms, 0.0, 1e-9);
    EXPECT_NEAR(Plate.m_dDistortionMax, 0.0, 1e-9);
}

TEST(DiagnosisPlateFit, FindsTheScaleOfEachDirection) {
    const StPlateFit Plate = FitPlate(MappedRecord([](const StPoint& p) {
        return StPoint{1.02 * p.m_dX, 0.97 * p.m_dY};
    }));

    EXPECT_NEAR(Plate.m_Whole.m_dScaleX, 1.02, 1e-9);
    EXPECT_NEAR(Plate.m_Whole.m_dScaleY, 0.97, 1e-9);
    EXPECT_NEAR(Plate.m_Middle.m_dScaleX, 1.02, 1e-9);
    EXPECT_NEAR(Plate.m_Middle.m_dScaleY, 0.97, 1e-9);
}

// y runs downward: what turns x toward y turns clockwise.
TEST(DiagnosisPlateFit, FindsTheRotationAndNoShearInIt) {
    const double c = std::cos(2.0 * cdRadians);
    const double s = std::sin(2.0 * cdRadians);
    const StPlateFit Plate = FitPlate(MappedRecord([&](const StPoint& p) {
        return StPoint{c * p.m_dX - s * p.m_dY, s * p.m_dX + c * p.m_dY};
    }));

    EXPECT_NEAR(Plate.m_Whole.m_dRotation, 2.0, 1e-8);
    EXPECT_NEAR(Plate.m_Whole.m_dShear, 0.0, 1e-8);
    EXPECT_NEAR(Plate.m_Whole.m_dScaleX, 1.0, 1e-9);
}

TEST(DiagnosisPlateFit, FindsTheShear) {
    const auto shear = [](double dRows, double dColumns) {
        return FitPlate(MappedRecord([&](const StPoint& p) {
                   return StPoint{p.m_dX - std::tan(dColumns * cdRadians) * p.m_dY,
                                  p.m_dY + std::tan(dRows * cdRadians) * p.m_dX};
               }))
            .m_Whole;
    };

    EXPECT_NEAR(shear(3.0, 0.0).m_dRotation, 3.0, 1e-8);
    EXPECT_NEAR(shear(3.0, 0.0).m_dShear, -3.0, 1e-8);
    EXPECT_NEAR(shear(0.0, 3.0).m_dRotation, 0.0, 1e-8);
    EXPECT_NEAR(shear(0.0, 3.0).m_dShear, 3.0, 1e-8);
}

// A barrel leaves the middle as it is and draws the whole together.
TEST(DiagnosisPlateFit, FindsTheScaleInTheMiddleOfABarrel) {
    const StPlateFit Plate = FitPlate(MappedRecord([](const StPoint& p) {
        const double d = 1.0 - 0.0003 * SquaredLength(p);
        return StPoint{1.01 * d * p.m_dX, 1.01 * d * p.m_dY};
    }));

    EXPECT_LT(Plate.m_Whole.m_dScaleY, 0.995);
    // The pattern's own middle lies 0.27 mm above the image's: d falls by 3 x 0.0003 x 0.27^2.
    EXPECT_NEAR(Plate.m_Middle.m_dScaleX, 1.01, 0.0002);
    EXPECT_NEAR(Plate.m_Middle.m_dScaleY, 1.01, 0.0002);
}

// A single dot of 75 that is off by 0.3 mm: the fit takes a little of it, 0.3 sqrt(1 / 75) is what
// would be left without.
TEST(DiagnosisPlateFit, MeasuresWhatTheAffineMappingLeaves) {
    StRecord Record = MappedRecord([](const StPoint& p) { return p; });
    Record.m_aFound[37].m_dX += 0.3 * Record.m_Source.m_dX;
    const StPlateFit Plate = FitPlate(Record);

    EXPECT_NEAR(Plate.m_dDistortionMax, 0.3, 0.006);
    EXPECT_NEAR(Plate.m_dDistortionRms, 0.3 / std::sqrt(75.0), 0.0006);
}

TEST(DiagnosisPlateFit, RefusesTargetPointsThatAreNoPattern) {
    StRecord Record = MappedRecord([](const StPoint& p) { return p; });
    for (StPoint& rPlace : Record.m_aTarget)
        rPlace = {100.0, 100.0};

    EXPECT_THROW(FitPlate(Record), std::invalid_argument);
}
