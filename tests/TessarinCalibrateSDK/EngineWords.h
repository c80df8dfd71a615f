#pragma once

/// Words of the correction's refusals.

namespace TestSupport {

inline constexpr const char* cszMissing = "One of the required parameter is missing.";
inline constexpr const char* cszPlanes =
    "Only grey-scale images with 8-bit color-depth are supported.";
inline constexpr const char* cszSingular =
    "Generation of Geometric Calibration data not possible, simgularity detected, "
    "contact Tessarin";

} // namespace TestSupport
