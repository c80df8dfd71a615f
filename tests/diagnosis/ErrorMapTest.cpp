/// The expected error of a corrected image: what scatters, what a trend takes with it, what is left
/// open.

#include "diagnosis/ErrorMap.h"

#include "diagnosis/Patterns.h"
#include "sim/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using namespace diagnosis;
using namespace TestSupport;

namespace {

/// A perfect scanner.
StRecord Perfect() {
    return MappedRecord([](const StPoint& p) { return p; });
}

/// Where it takes a place of the corrected image from.
StPoint PerfectAt(const StPoint& Place) {
    return {200.0 + 19.397 * (Place.m_dX - 160.0) / 19.685,
            530.0 + 39.735 * (Place.m_dY - 240.0) / 19.685};
}

/// Its points with normal scatter, raw pixels.
StRecord Scattered(double dX, double dY, std::uint64_t nSeed) {
    StRecord Record = Perfect();
    sim::ClRandom Random(nSeed);
    for (StPoint& rFound : Record.m_aFound) {
        rFound.m_dX += dX * Random.Normal();
        rFound.m_dY += dY * Random.Normal();
    }
    return Record;
}

/// A scanner whose rows sag: by this times the square of x, millimetres.
StRecord Bowed(double dBow) {
    return MappedRecord([=](const StPoint& p) {
        return StPoint{p.m_dX, p.m_dY + dBow * p.m_dX * p.m_dX};
    });
}

constexpr StPoint cMiddle{160.0, 240.0};
constexpr StPoint cCorner{319.0, 479.0};

} // namespace

TEST(DiagnosisErrorMap, ExpectsNothingOfAPerfectRecord) {
    const StErrorMap Map = MapErrors(Perfect(), {});

    for (const double dError : Map.m_aErrors)
        EXPECT_NEAR(dError, 0.0, 1e-6);
    EXPECT_NEAR(Map.m_dCorner, 0.0, 1e-6);
}

// Over 40 records: the mean of the squares, which has its own spread of a ninth for one record.
TEST(DiagnosisErrorMap, MeasuresTheScatterOfTheDots) {
    double dX = 0.0;
    double dY = 0.0;
    for (std::uint64_t nSeed = 1; nSeed <= 40; ++nSeed) {
        const StSpread Scatter = MapErrors(Scattered(0.1, 0.3, nSeed), {}).m_Scatter;
        dX += Scatter.m_dX * Scatter.m_dX / 40.0;
        dY += Scatter.m_dY * Scatter.m_dY / 40.0;
    }

    EXPECT_NEAR(std::sqrt(dX), 0.1, 0.006);
    EXPECT_NEAR(std::sqrt(dY), 0.3, 0.018);
}

// At a dot the spline takes the dot's own error and no other: the scatter, in pixels of the
// corrected image, 19.685 of them to 19.397 in x and to 39.735 in y.
TEST(DiagnosisErrorMap, ExpectsTheScatterItselfAtADot) {
    const StRecord Record = Scattered(0.1, 0.3, 5);
    const StErrorMap Map = MapErrors(Record, {});
    const double dX = Map.m_Scatter.m_dX * 19.685 / 19.397;
    const double dY = Map.m_Scatter.m_dY * 19.685 / 39.735;

    // The dot in the middle lies on a place of the grid but for half a pixel.
    EXPECT_NEAR(Map.At(Record.m_aTarget[37]), std::hypot(dX, dY), 0.005);
}

// Over 15 records of a plane, whose true errors are known. Amid the dots there is nothing to be
// expected but them. In the corners a plane cannot be told from a trend that scatter hides: more
// may be expected there, and not less.
TEST(DiagnosisErrorMap, ExpectsTheErrorsThatScatterMakes) {
    const auto ratio = [](const Points& aPlaces) {
        double dExpected = 0.0;
        double dTrue = 0.0;
        for (std::uint64_t nSeed = 1; nSeed <= 15; ++nSeed) {
            const StRecord Record = Scattered(0.2, 0.4, nSeed);
            const StErrorMap Map = MapErrors(Record, {});
            for (const StPoint& Place : aPlaces) {
                const StPoint Error = SplineAt(Record, Place) - PerfectAt(Place);
                dTrue +=
                    SquaredLength({Error.m_dX * 19.685 / 19.397, Error.m_dY * 19.685 / 39.735});
                dExpected += Map.At(Place) * Map.At(Place);
            }
        }
        return std::sqrt(dExpected / dTrue);
    };

    EXPECT_NEAR(ratio({cMiddle, {140.0, 100.0}, {75.0, 80.0}, {250.0, 390.0}}), 1.0, 0.2);
    const double dCorners = ratio({cCorner, {0.0, 0.0}, {0.0, 479.0}, {319.0, 0.0}});
    EXPECT_GT(dCorners, 0.9);
    EXPECT_LT(dCorners, 1.6);
}

// A spline that falls back to a plane loses a bow outside the dots; the truth is known.
TEST(DiagnosisErrorMap, ExpectsWhatASplineLosesOfABowInTheCorners) {
    const double dBow = 0.002;
    const StRecord Record = Bowed(dBow);
    const StErrorMap Map = MapErrors(Record, {});
    for (const StPoint& Place : {cCorner, StPoint{0.0, 0.0}, {0.0, 479.0}, {319.0, 200.0}}) {
        const double x = (Place.m_dX - 160.0) / 19.685;
        const double y = (Place.m_dY - 240.0) / 19.685 + dBow * x * x;
        const StPoint Error =
            SplineAt(Record, Place) - StPoint{200.0 + 19.397 * x, 530.0 + 39.735 * y};
        const double dTrue = std::hypot(Error.m_dX * 19.685 / 19.397, Error.m_dY * 19.685 / 39.735);

        EXPECT_NEAR(Map.At(Place), dTrue, 0.05 * dTrue + 0.01);
    }
    EXPECT_GT(Map.At(cCorner), 10.0 * Map.At(cMiddle));
    EXPECT_GT(Map.m_dCorner, Map.m_dEdge);
    EXPECT_GT(Map.m_dEdge, Map.m_dInside);
}

TEST(DiagnosisErrorMap, ShowsTheErrorOfADotThatIsNamed) {
    StRecord Record = Perfect();
    Record.m_aFound[37].m_dX += 4.0;
    const StPoint At = Record.m_aTarget[37];

    EXPECT_NEAR(MapErrors(Record, {37}).At(At), 4.0 * 19.685 / 19.397, 0.1);
    EXPECT_LT(MapErrors(Record, {37}).At({20.0, 460.0}), 0.1);
    EXPECT_LT(MapErrors(Record, {}).At(At), 0.1); // trusted, it is what the image ought to show
}

TEST(DiagnosisErrorMap, IsLinearBetweenItsPlacesAndEvenOutside) {
    const StErrorMap Map = MapErrors(Scattered(0.2, 0.2, 3), {});
    const StPoint Place = Map.PlaceOf(10, 20);
    const StPoint Next = Map.PlaceOf(11, 21);
    const StPoint Amid{0.5 * (Place.m_dX + Next.m_dX), 0.5 * (Place.m_dY + Next.m_dY)};

    EXPECT_NEAR(Map.At(Place), Map.At(10, 20), 1e-12);
    EXPECT_NEAR(Map.At(Amid),
                0.25 * (Map.At(10, 20) + Map.At(11, 20) + Map.At(10, 21) + Map.At(11, 21)), 1e-12);
    EXPECT_NEAR(Map.At(StPoint{-50.0, 900.0}), Map.At(0, 60), 1e-12);
    EXPECT_NEAR(Map.At(StPoint{319.0, 479.0}), Map.At(40, 60), 1e-12);
}

// 8 pixels from place to place: a grid of half as much says the same in between.
TEST(DiagnosisErrorMap, IsSmoothEnoughForItsGrid) {
    const StRecord Record = Scattered(0.1, 0.2, 9);
    const StErrorMap Map = MapErrors(Record, {});
    for (int nRow = 1; nRow + 1 < StErrorMap::cnRows; ++nRow)
        for (int nColumn = 1; nColumn + 1 < StErrorMap::cnColumns; ++nColumn)
            EXPECT_NEAR(Map.At(nColumn, nRow),
                        0.5 * (Map.At(nColumn - 1, nRow) + Map.At(nColumn + 1, nRow)), 0.02)
                << nColumn << " " << nRow;
}

TEST(DiagnosisErrorMap, RefusesWhatDeterminesNoSpline) {
    StRecord Record = Perfect();
    for (StPoint& rPlace : Record.m_aTarget)
        rPlace = {1.0, 1.0};
    StRecord NoImage = Perfect();
    NoImage.m_nTargetWidth = 1;

    EXPECT_THROW(MapErrors(Record, {}), std::invalid_argument);
    EXPECT_THROW(MapErrors(NoImage, {}), std::invalid_argument);
}
