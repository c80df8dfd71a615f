#pragma once

/// A capture that the bytes of an input paint: ridges of any period and direction, blots, scratches
/// and noise, or the bytes themselves over and over.

#include "Harness.h"

namespace Fuzz {

/// `nSide` x `nSide` samples of 8 bits.
std::string FingerPicture(unsigned int nSide, ClBytes& rBytes);

} // namespace Fuzz
