#pragma once

/// Lengths of vectors, of which the two planes hold the components.

#include "ImageProcessing/Kernels/Arithmetic.h"

namespace Kernels {

/// out = trunc(sqrt(a^2 + b^2) * 1.414), with a and b from -128 to 127
void SignedLength(const StPairOfPlanes& Planes);

/// out = trunc(sqrt(a^2 + b^2) * 0.707), with a and b from 0 to 255
void UnsignedLength(const StPairOfPlanes& Planes);

} // namespace Kernels
