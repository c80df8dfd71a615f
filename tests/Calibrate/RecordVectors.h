#pragma once

/// Records as the vectors tell them.

#include "Calibrate/CalibrateGeometricData.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace TestSupport {

inline void ExpectNumbers(const ClCalibrateGeometricData& Data, const nlohmann::json& Expected) {
    EXPECT_EQ(Data.m_nSourceWidth, Expected["source_width"]);
    EXPECT_EQ(Data.m_nSourceHeight, Expected["source_height"]);
    EXPECT_EQ(Data.m_nSourcePelsX, Expected["source_pels_x"]);
    EXPECT_EQ(Data.m_nSourcePelsY, Expected["source_pels_y"]);
    EXPECT_EQ(Data.m_nTargetWidth, Expected["target_width"]);
    EXPECT_EQ(Data.m_nTargetHeight, Expected["target_height"]);
    EXPECT_EQ(Data.m_nTargetPelsX, Expected["target_pels_x"]);
    EXPECT_EQ(Data.m_nTargetPelsY, Expected["target_pels_y"]);
    EXPECT_EQ(Data.m_nPlanes, Expected["planes"]);
}

inline void ExpectPointsTold(const ClCalibrateGeometricData::PointList& Points,
                             const nlohmann::json& Expected) {
    ASSERT_EQ(Points.Entries(), Expected.size());
    for (unsigned long i = 0; i < Points.Entries(); ++i) {
        EXPECT_EQ(Points[i].x, Expected[i][0].get<double>()) << i;
        EXPECT_EQ(Points[i].y, Expected[i][1].get<double>()) << i;
    }
}

} // namespace TestSupport
