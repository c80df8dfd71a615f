/// The limits that the drawings tell are those by which the library judges.

#include "report/EftsPairs.h"

#include "TessarinCalibrateSDK/AccuracyCheck.h"

#include <gtest/gtest.h>

using report::EftsLimit;

namespace {

/// Two points in a row.
AccuracyCheck::PointList Pair(double dDistance) {
    AccuracyCheck::PointList aPair;
    aPair.Append({0.0, 0.0});
    aPair.Append({dDistance, 0.0});
    return aPair;
}

bool Passes(double dReference, double dMeasured) {
    return AccuracyCheck::PercentWithinLimits(Pair(dReference), Pair(dMeasured)) == 100.0;
}

} // namespace

// A difference of two distances is rounded: a billionth of a pixel is far above that.
TEST(ReportEftsLimit, IsThatOfTheLibrarysCheck) {
    constexpr double cdLittle = 1e-9;
    for (const double dReference : {0.5, 10.0, 34.999, 35.0, 35.001, 39.37, 100.0, 600.0}) {
        SCOPED_TRACE(dReference);
        const double dLimit = EftsLimit(dReference);
        EXPECT_TRUE(Passes(dReference, dReference + dLimit - cdLittle));
        EXPECT_FALSE(Passes(dReference, dReference + dLimit + cdLittle));
        if (dLimit < dReference) {
            EXPECT_TRUE(Passes(dReference, dReference - dLimit + cdLittle));
            EXPECT_FALSE(Passes(dReference, dReference - dLimit - cdLittle));
        }
    }
}
