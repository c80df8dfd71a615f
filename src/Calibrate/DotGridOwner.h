#pragma once

/// The dots of one run; they go when it ends, however it ends.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

class ClDotGridOwner {
public:
    ClDotGridOwner() = default;
    ClDotGridOwner(const ClDotGridOwner&) = delete;
    ClDotGridOwner& operator=(const ClDotGridOwner&) = delete;
    ~ClDotGridOwner() { ClIpCalibrateGeometricBuildRefPointsBase::ReleaseDots(m_aGrid); }

    ClIpCalibrateGeometricBuildRefPointsBase::DotGrid m_aGrid;
};
