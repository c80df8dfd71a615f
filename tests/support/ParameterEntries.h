#pragma once

/// Short names for what tests of parameter lists write again and again.

#include "Tools/ParameterInterface.h"

namespace TestSupport {

using ClEntry = ClParameterInterface::ClParameter;
inline constexpr auto ceIn = ClParameterInterface::eIn;

} // namespace TestSupport
