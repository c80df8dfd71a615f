#pragma once

namespace TestSupport {

inline constexpr double cdRidgeDist = 11.7; ///< in pixels of 500 dots per inch
inline constexpr const char* cszPels = "Pels are not in a valid range (see documentation).";

} // namespace TestSupport
