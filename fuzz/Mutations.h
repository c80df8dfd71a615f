#pragma once

/// Mutations that are the same on every machine, and what the two programs that replay share.

#include "Random.h"

#include <string>
#include <vector>

namespace Fuzz {

/// Truncated, with bytes replaced, with 32-bit numbers replaced by extreme values; where the
/// harness has told the format of its bytes, every second one is repaired, so that its change is
/// seen behind the first tests.
std::string Mutation(const std::string& Bytes, ClRandom& rRandom);

/// Hands bytes to the harness.
void Run(const std::string& Bytes);

/// Looks for the input that takes longest: what is slower than one of the slowest found takes its
/// place, and is changed further. Writes the slowest to a file and tells its time, and that of the
/// slowest of the inputs given.
void SearchSlowest(const std::vector<std::string>& aInputs, int nSeconds,
                   const std::string& OutputPath);

} // namespace Fuzz
