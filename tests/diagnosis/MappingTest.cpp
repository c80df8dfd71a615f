#include "diagnosis/Mapping.h"

#include "diagnosis/Patterns.h"

#include <gtest/gtest.h>

using namespace diagnosis;
using namespace TestSupport;

TEST(DiagnosisMapping, TakesTargetPointsToTheirDots) {
    const StRecord Record = RecordOf(FoundBy(PatternPlaces(), 3));
    const ClMapping Mapping(Record);
    for (std::size_t i = 0; i < cnDots; ++i) {
        const StPoint Raw = Mapping(Record.m_aTarget[i]);
        EXPECT_NEAR(Raw.m_dX, Record.m_aFound[i].m_dX, 1e-8) << i;
        EXPECT_NEAR(Raw.m_dY, Record.m_aFound[i].m_dY, 1e-8) << i;
    }
}

TEST(DiagnosisMapping, IsTheLibrarysSplineEverywhere) {
    const StRecord Record = RecordOf(FoundBy(PatternPlaces(), 3));
    const ClMapping Mapping(Record);
    for (const StPoint& Place : {StPoint{0.0, 0.0}, StPoint{319.0, 479.0}, StPoint{100.5, 203.25},
                                 StPoint{-20.0, 500.0}}) {
        const StPoint Expected = SplineAt(Record, Place);
        EXPECT_NEAR(Mapping(Place).m_dX, Expected.m_dX, 1e-6);
        EXPECT_NEAR(Mapping(Place).m_dY, Expected.m_dY, 1e-6);
    }
}
